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
catalog=$PWD/build/demo/examples/catalog/catalog macbinary=$PWD/build/demo/examples/macbinary/macbinary
samples=$PWD/examples/samples
cd "$scratch"

# show <program> <argument>...: the command line and what it prints. What a form cannot hold is reported, and then the
# status is 1.
show() {
    printf '\n$ %s\n' "$(basename "$1") ${*:2}"
    "$@" || printf '(exit status %s)\n' $?
}

printf '\nTested to their ends, and one that is cut short:\n'
head -c 600 "$samples/both_forks.bin" >cut.bin
cp "$samples"/*.bin .
show "$macbinary" --test both_forks.bin cut.bin
rm cut.bin

printf '\nUnpacked, each with a resource fork if it has one, and its Finder data, beside files with other sidecars:\n'
mkdir files
show "$macbinary" --unpack files -- *.bin
cp -R "$samples/appledouble" files
show "$macbinary" --walk files

printf '\nThe beginning of a catalogue of that folder, and one entry in JSON:\n\n'
"$catalog" --checksums --output files.xml files
head -36 files.xml
"$catalog" --json --quiet --output - --include Placed files | sed -n 2p

printf '\nCarried into AppleDouble files, from there into streams, and back to sidecars:\n'
show "$catalog" --to doubles --forks appledouble --dry-run files
show "$catalog" --to doubles --forks appledouble --verify files
from=streams
if ! "$catalog" --to streams --forks ntfs doubles; then
    echo 'left out: there are no streams here, for the reason above'
    from=doubles
fi
show "$catalog" --to sidecars --forks sidecar $from
printf '\nA second run finds it all; a file that has changed is carried again on demand:\n'
show "$catalog" --to sidecars --verify $from
touch -d 2030-01-01 "$from/Both Forks"
show "$catalog" --to sidecars $from
show "$catalog" --to sidecars --update $from
printf '\nWhat is in the folder then:\n'
show "$macbinary" --walk sidecars

printf '\nAnd one of the files packed again is the file that it came from:\n'
show "$macbinary" --pack again.bin 'sidecars/Placed Icon'
cmp placed_icon.bin again.bin
show "$macbinary" again.bin
