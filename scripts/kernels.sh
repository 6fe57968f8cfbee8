#!/usr/bin/env bash
# usage: kernels.sh <folder of the build>   counts the instructions of the hot paths, and fails where a count is a
# multiple of what it was: instructions, unlike times, are the same on a busy machine. bench.sh is for the rest.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/packages.sh
need valgrind=valgrind

program=$1/tests/kernels/socle_kernels
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# The usual count of instructions for a byte of each kernel, in a build of the preset dev, and what it may grow by.
usual='
byte-reads      50
byte-writes     70
integer-reads   39
integer-writes  40
integer-runs    7.7
lines           19
crc             12.4
copies          0.5
wz              260
utf8            40
utf8-mixed      52
utf8-plain      95
match           300
split           73
numbers         217
'
factor=5
bytes=120000

count() {
    valgrind --tool=callgrind --callgrind-out-file="$scratch/out" "$program" "$1" >"$scratch/log" 2>&1 ||
        { cat "$scratch/log" >&2; return 1; }
    sed -n 's/^summary: //p; s/^totals: //p' "$scratch/out" | head -1
}

start=$(count nothing)
[ "$start" -gt 0 ]
bad=0
while read -r kernel known; do
    [ -n "$kernel" ] || continue
    counted=$(count "$kernel")
    found=$((counted - start))
    awk -v kernel="$kernel" -v found="$found" -v bytes=$bytes -v known="$known" -v factor=$factor 'BEGIN {
        bad = found > known * factor * bytes || found <= 0
        printf "%-16s %8.2f instructions a byte, usually %s%s\n", kernel, found / bytes, known, bad ? ": TOO MANY" : ""
        exit bad
    }' || bad=1
done <<<"$usual"
exit $bad
