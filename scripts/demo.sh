#!/usr/bin/env bash
# Builds the library with its example, and shows what the example makes of real files.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/packages.sh

need cmake=cmake ninja-build=ninja g++=g++
cmake --preset release -B build/demo -DCMAKE_CXX_COMPILER=g++ -DSOCLE_BUILD_TESTS=OFF
cmake --build build/demo

printf '\nHeaders of MacBinary files, as other programs wrote them:\n\n'
build/demo/examples/macbinary/macbinary examples/samples/*.bin

unpacked=$(mktemp -d)
trap 'rm -rf "$unpacked"' EXIT
printf '\nUnpacked, each with a resource fork if it has one, and its Finder data:\n\n'
build/demo/examples/macbinary/macbinary --unpack="$unpacked" examples/samples/*.bin
printf '\nWhat a walk over that folder shows:\n\n'
build/demo/examples/macbinary/macbinary --walk "$unpacked"

printf '\nAnd packed again:\n\n'
build/demo/examples/macbinary/macbinary --pack="$unpacked/again.bin" "$unpacked/Both Forks"
cmp examples/samples/both_forks.bin "$unpacked/again.bin"
build/demo/examples/macbinary/macbinary "$unpacked/again.bin"
