#!/usr/bin/env bash
# usage: catalog_everywhere.sh <program> <folder of samples> <what comes of them> [<command that runs it>...]
# The catalogue of a folder, and what is carried to another one in files, are the same on every system, but for dates of
# creation, which not every one keeps, and the line ends of what is said.
set -euo pipefail
catalog=$1 samples=$2 expected=$3
runner=("${@:4}")
export TZ=America/New_York
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
# Programs may run as another user.
chmod 777 "$scratch"
run() { "${runner[@]}" "$catalog" "$@" | tr -d '\r'; }
# undated <file>: without the date of creation and the checksum of it, if it is a sidecar's head.
undated() {
    case $1 in
        *.info) head -c 91 "$1" && tail -c +96 "$1" | head -c 29 && tail -c +127 "$1" ;;
        *) cat "$1" ;;
    esac
}
tell() { cksum | sed "s|\$| $1|"; }

from=$scratch/from
cp -R "$samples" "$from"
chmod -R u=rwX,go=rX "$from"
find "$from" -exec touch -d 2001-02-03T04:05:06Z {} +
{
    run --quiet --output=- --checksums "$from" | sed "/<created>/d; s|$from|from|" | tell catalogue.xml
    run --quiet --output=- --json "$from" | sed "s|\"created\": *\"[^\"]*\",*||; s|$from|from|" | tell catalogue.json
    for form in sidecar appledouble; do
        # Some samples hold what cannot be carried, which is said, and is a status of 1.
        run --to="$scratch/$form" --forks=$form --verify "$from" >/dev/null 2>"$scratch/said" || true
        echo "$form:"
        tr -d '\r' <"$scratch/said" | sed -n "/date of creation/d; s|^catalog: $from/||p" | LC_ALL=C sort
        (cd "$scratch/$form" && find . -type f | LC_ALL=C sort | while IFS= read -r file; do
            undated "$file" | cksum | sed "s|\$| $file|"
        done)
        run --to="$scratch/$form" --forks=$form --verify "$from" 2>&1 | grep -o '[0-9]* there already' || true
        find "$scratch/$form" -name '*.bin' -newermt 2001-02-03T04:05:05Z ! -newermt 2001-02-03T04:05:06Z | wc -l
    done
} >"$scratch/report"
diff -u --label expected --label made "$expected" "$scratch/report"
