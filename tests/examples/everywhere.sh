#!/usr/bin/env bash
# usage: everywhere.sh <macbinary> <catalog> <folder of samples> <their headers> <what comes of them> [<command that runs
# them>...]
# What the examples show, unpack, pack, list and carry is the same on every system, but for the line ends of text and
# for dates of creation, which not every one keeps.
set -euo pipefail
macbinary=$1 catalog=$2 samples=$3 headers=$4 expected=$5
runner=("${@:6}")
export TZ=America/New_York
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
# Programs may run as another user.
chmod 777 "$scratch"
mkdir -m 777 "$scratch/files"
from=$scratch/from
cp -R "$samples" "$from"
chmod -R u=rwX,go=rX "$from"
find "$from" -exec touch -d 2001-02-03T04:05:06Z {} +
run() { "${runner[@]}" "$@" | tr -d '\r'; }
# undated <file>: without the date of creation and the checksum of it, if it is a sidecar's head.
undated() {
    case $1 in
        *.info) head -c 91 "$1" && tail -c +96 "$1" | head -c 29 && tail -c +127 "$1" ;;
        *) cat "$1" ;;
    esac
}
tell() { cksum | sed "s|\$| $1|"; }
# made <folder> <source>: the files in it that are not as the source's of that name, and the number of all.
made() {
    (cd "$1" && find . -type f | LC_ALL=C sort | while IFS= read -r file; do
        cmp -s "$file" "$2/$file" || undated "$file" | tell "$file"
    done; find . -type f | wc -l)
}

run "$macbinary" "$samples"/*.bin | sed "s|^$samples/||" | diff -u "$headers" -
run "$macbinary" --unpack="$scratch/files" "$samples"/*.bin >/dev/null
{
    echo 'unpacked:'
    (cd "$scratch/files" && find . -type f | LC_ALL=C sort | while IFS= read -r file; do tell "$file" <"$file"; done)
    echo 'packed again:'
    mkdir -m 777 "$scratch/packed"
    for sample in "$samples"/*.bin; do
        unpacked=$(run "$macbinary" "$sample" | sed -n 's/^  name *//p')
        run "$macbinary" --pack="$scratch/packed/${sample##*/}" "$scratch/files/$unpacked"
    done
    made "$scratch/packed" "$samples"
    run "$catalog" --quiet --output=- --checksums "$from" | sed "/<created>/d; s|$from|from|" | tell catalogue.xml
    run "$catalog" --quiet --output=- --json "$from" | sed "s|\"created\": *\"[^\"]*\",*||; s|$from|from|" |
        tell catalogue.json
    for form in sidecar appledouble; do
        # Some samples hold what cannot be carried, which is said, and is a status of 1.
        run "$catalog" --to="$scratch/$form" --forks=$form --verify "$from" >/dev/null 2>"$scratch/said" || true
        echo "$form:"
        tr -d '\r' <"$scratch/said" | sed -n "/date of creation/d; s|^catalog: $from/||p" | LC_ALL=C sort
        made "$scratch/$form" "$from"
        run "$catalog" --to="$scratch/$form" --forks=$form --verify "$from" 2>&1 | grep -o '[0-9]* there already' || true
        find "$scratch/$form" -name '*.bin' -newermt 2001-02-03T04:05:05Z ! -newermt 2001-02-03T04:05:06Z | wc -l
    done
} >"$scratch/report"
diff -u --label expected --label made "$expected" "$scratch/report"
