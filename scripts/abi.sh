#!/usr/bin/env bash
# usage: scripts/abi.sh [renew]
# Compares the interface of the library in build/dev with the one that is written down in abi/libsocle.abi.xz, and fails
# where a program that was built against that one might not run with this one. What was only added passes. After a change
# that is meant, `renew` writes the interface down anew.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/packages.sh

need abigail-tools=abidiff xz-utils=xz
baseline=abi/libsocle.abi.xz
library=build/dev/libsocle.so
[ -e "$library" ] || stop "there is no $library: cmake --workflow --preset dev makes it"
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cmake --install build/dev --prefix "$scratch" --component development >/dev/null

# Only what the public headers tell of is interface.
options=(--drop-private-types --no-corpus-path --no-comp-dir-path)
abidw --headers-dir "$scratch/include" "${options[@]}" --short-locs "$(realpath "$library")" \
    --out-file "$scratch/now.abi"
if [ "${1-}" = renew ]; then
    mkdir -p abi
    xz -9c "$scratch/now.abi" >"$baseline"
    echo "$baseline is the interface of $library now"
    exit
fi

xz -dc "$baseline" >"$scratch/before.abi"
status=0
abidiff --no-added-syms "$scratch/before.abi" "$scratch/now.abi" || status=$?
[ $status -eq 0 ] || stop "the interface differs from $baseline; if that is meant, scripts/abi.sh renew"
echo "the interface is that of $baseline"
