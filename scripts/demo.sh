#!/usr/bin/env bash
# Builds the library with its examples, and shows what they make of real files.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/packages.sh

need cmake=cmake ninja-build=ninja g++=g++
cmake --preset release -B build/demo -DCMAKE_CXX_COMPILER=g++ -DSOCLE_BUILD_TESTS=OFF
cmake --build build/demo

printf '\nHeaders of MacBinary files, as other programs wrote them:\n\n'
build/demo/examples/macbinary/macbinary examples/samples/*.bin

# Below the build, where extended attributes are kept if anywhere.
scratch=$(mktemp -d "$PWD/build/demo/scratch.XXXXXX")
trap 'chmod -R u+w "$scratch" && rm -rf "$scratch"' EXIT
printf '\nUnpacked, each with a resource fork if it has one, and its Finder data, beside files with other sidecars:\n\n'
mkdir "$scratch/files"
build/demo/examples/macbinary/macbinary --unpack="$scratch/files" examples/samples/*.bin
cp -R examples/samples/appledouble "$scratch/files"
build/demo/examples/macbinary/macbinary --walk "$scratch/files"

catalog=build/demo/examples/catalog/catalog
printf '\nThe beginning of a catalogue of that folder:\n\n'
"$catalog" --checksums "$scratch/files" >"$scratch/files.xml"
head -32 "$scratch/files.xml"

# What a form cannot hold of these files is reported, and then the status is 1.
printf '\nCarried into AppleDouble files, from there into streams, and back to sidecars:\n\n'
"$catalog" --to="$scratch/doubles" --forks=appledouble "$scratch/files" >/dev/null || true
from=$scratch/streams
if ! "$catalog" --to="$from" --forks=ntfs "$scratch/doubles" >/dev/null; then
    echo 'left out: there are no streams here, for the reason above'
    from=$scratch/doubles
fi
"$catalog" --to="$scratch/sidecars" --forks=sidecar "$from" >/dev/null || true
printf '\nWhat is in the folder then:\n\n'
build/demo/examples/macbinary/macbinary --walk "$scratch/sidecars"

printf '\nAnd one of the files packed again is the file that it came from:\n\n'
build/demo/examples/macbinary/macbinary --pack="$scratch/again.bin" "$scratch/sidecars/Both Forks"
cmp examples/samples/both_forks.bin "$scratch/again.bin"
build/demo/examples/macbinary/macbinary "$scratch/again.bin"
