#!/usr/bin/env bash
# usage: snippets.sh <compiler flag>...
# Compiles and runs every program in the documents, and compares what it prints.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
export TMPDIR=$scratch
python3 tests/docs/snippets.py "$scratch" README.md docs/guide.md docs/filters.md docs/plugins.md >"$scratch/names"
xargs -P "$(nproc)" -I{} g++ -std=c++20 -Wall -Wextra -Woverloaded-virtual -Werror "$scratch/{}.cpp" -o "$scratch/{}" "$@" <"$scratch/names"
while read -r name; do
    "$scratch/$name" | diff "$scratch/$name.txt" - || { echo "$name does not print what is said"; exit 1; }
done <"$scratch/names"
echo "$(wc -l <"$scratch/names") programs of the documents do what is said"
