#!/usr/bin/env bash
# usage: windows.sh <preset> <new folder>
# Makes the zip archive for Windows of what the preset has built, and builds a client against what is in it, and one
# against a static library. Both run under Wine.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
built=build/$1 where=$2
mkdir "$where"

cpack --config "$built/CPackConfig.cmake" -B "$where"
archive=$(echo "$where"/socle-*.zip)
unzip -q "$archive" -d "$where"
root=${archive%.zip}

# client <folder> <project> [option of cmake...]
client() {
    cmake -S "$2" -B "$where/$1" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/mingw_w64.cmake" \
        -DCMAKE_CXX_FLAGS='-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror' "${@:3}"
    cmake --build "$where/$1"
}

# check <what it prints> <program> [<argument>...]
check() {
    scripts/wine.sh "$PWD/build/windows/wine" "${@:2}" | grep -F "$1" >/dev/null
    echo "works: $2"
}

client shared examples/macbinary -DCMAKE_PREFIX_PATH="$root"
cp "$root"/bin/*.dll "$where/shared"

program=$where/program.cpp
{ echo '#include <socle/socle.h>'; sed -n '/^```cpp$/,/^```$/{//d;p}' README.md; } >"$program"
tests/packages/namesakes.sh "$where/namesakes"
options=(-DPROGRAM="$program" -DNAMESAKES="$where/namesakes" -DBUILD_SHARED_LIBS=OFF -DCMAKE_EXE_LINKER_FLAGS=-static)
client added tests/packages/client "${options[@]}" -DWAY=added -DSOCLE_TREE="$PWD" -DSOCLE_INSTALL=ON
cmake --install "$where/added" --prefix "$where/static" >/dev/null
client found tests/packages/client "${options[@]}" -DWAY=found -DCMAKE_PREFIX_PATH="$where/static"
[ -z "$(find "$where/static" -name '*.dll*')" ]

chmod -R go+rX "$where"
for macbinary in "$root/bin/macbinary.exe" "$where/shared/macbinary.exe"; do
    check 'Both Forks' "$macbinary" "$PWD/examples/samples/both_forks.bin"
done
for way in added found; do
    check '3 files, the first is a TEXT at 32' "$where/$way/client.exe"
done
