#!/usr/bin/env bash
# Builds the fuzzers and runs each of them for as many seconds as are given, 60 if none are, or only those of the
# targets named: scripts/fuzz.sh [seconds] [target...]. New inputs are kept in build/fuzz/corpus/<target>. What ends a
# target is written to build/fuzz/findings.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/packages.sh

seconds=${1:-60}
shift || true
need cmake=cmake ninja-build=ninja clang=clang++
# The engine and the sanitizers are a package of their own, which the compiler only recommends.
engine=$(clang++ -print-resource-dir)/lib/linux/libclang_rt.fuzzer-$(uname -m).a
need "libclang-rt-$(clang++ -dumpversion | cut -d. -f1)-dev=$engine"
cmake --preset fuzz
cmake --build --preset fuzz

# Scratch folders in memory cost less.
if [ -w /dev/shm ]; then
    export TMPDIR=/dev/shm
fi

targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
    for corpus in fuzz/corpus/*/; do
        targets+=("$(basename "$corpus")")
    done
fi

# fuzz_one <target>: what is said of it goes to its log, its last line and any finding to the output as well.
fuzz_one() {
    local name=$1 corpus=build/fuzz/corpus/$1 log=build/fuzz/$1.log options=()
    mkdir -p "$corpus" build/fuzz/findings
    if [ -e "fuzz/dictionaries/$name" ]; then
        options=(-dict="fuzz/dictionaries/$name")
    fi
    if build/fuzz/fuzz/fuzz_"$name" -max_total_time="$seconds" -timeout=20 -artifact_prefix="build/fuzz/findings/$name-" \
        "${options[@]}" "$corpus" "fuzz/corpus/$name" >"$log" 2>&1; then
        printf '%-16s %s\n' "$name" "$(tail -n 1 "$log")"
        return
    fi
    printf '%-16s ended by a finding, see %s\n' "$name" "$log"
    grep -a -E -m 4 'a promise is broken|ERROR|runtime error|SUMMARY|Test unit written' "$log" || tail -n 4 "$log"
    return 1
}
export -f fuzz_one
export seconds

# One for each processor at a time.
printf '%s\0' "${targets[@]}" | xargs -0 -n 1 -P "$(nproc)" bash -c 'fuzz_one "$0"'
