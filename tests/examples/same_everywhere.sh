#!/usr/bin/env bash
# usage: same_everywhere.sh <program> <folder of samples> <their headers> <what comes of them> [<command that runs it>...]
# What the example shows, unpacks and packs is the same on every system, but for the line ends of text.
set -euo pipefail
macbinary=$1 samples=$2 headers=$3 expected=$4
runner=("${@:5}")
export TZ=America/New_York
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
# Programs may run as another user.
chmod 777 "$scratch"
run() { "${runner[@]}" "$@"; }

mkdir -m 777 "$scratch/files"
run "$macbinary" --unpack="$scratch/files" "$samples"/*.bin >/dev/null
run "$macbinary" "$samples"/*.bin | tr -d '\r' | sed "s|^$samples/||" | diff -u "$headers" -
{
    echo 'unpacked:'
    (cd "$scratch/files" && find . -maxdepth 1 -type f -print0 | LC_ALL=C sort -z | xargs -0 cksum)
    echo 'packed again:'
    for sample in "$samples"/*.bin; do
        name=$(basename "$sample")
        unpacked=$(run "$macbinary" "$sample" | tr -d '\r' | sed -n 's/^  name *//p')
        run "$macbinary" --pack="$scratch/$name" "$scratch/files/$unpacked"
        cksum <"$scratch/$name" | sed "s|\$| $name|"
    done
} >"$scratch/report"
diff -u --label expected --label made "$expected" "$scratch/report"
