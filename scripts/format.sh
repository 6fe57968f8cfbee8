#!/usr/bin/env bash
# usage: scripts/format.sh [check]   lays out the sources with clang-format 14, or tells which are not laid out.
# Two passes: RemoveBracesLLVM takes the braces off single statements, but breaks lines around lambdas in its own way.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/packages.sh
need clang-format=clang-format
clang-format --version | grep -q 'version 14\.' || { echo 'left out: this is not clang-format 14'; exit; }

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
{ cat .clang-format; echo 'RemoveBracesLLVM: true'; } >"$scratch/braces"

lay_out() {
    clang-format --style="file:$scratch/braces" "$1" | clang-format --assume-filename="$1"
}

status=0
while read -r file; do
    lay_out "$file" >"$scratch/now"
    cmp -s "$scratch/now" "$file" && continue
    echo "$file"
    [ "${1-}" = check ] && status=1 || cat "$scratch/now" >"$file"
done < <(find . -path '*/build*' -prune -o \( -name '*.h' -o -name '*.cpp' \) -print)
exit $status
