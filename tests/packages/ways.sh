#!/usr/bin/env bash
# usage: tests/packages/ways.sh <scratch folder>
# Builds the README's first program with the library had in each way, shared and static, and makes the Debian packages.
# Wherever the library is compiled or included, headers named like its own lie first on the path.
set -euo pipefail
scratch=$(realpath "$1")
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

program=$scratch/program.cpp
{ echo '#include <socle/socle.h>'; sed -n '/^```cpp$/,/^```$/{//d;p}' README.md; } >"$program"
words='3 files, the first is a TEXT at 32'

tests/packages/namesakes.sh "$scratch/namesakes"

# check <way> <program>
check() {
    local said
    said=$("$2")
    [ "$said" = "$words" ] || { echo "$1: the program says \"$said\""; exit 1; }
    echo "works: $1"
}

# client <way> <folder> [option of cmake...]
client() {
    cmake -S tests/packages/client -B "$scratch/$2" -G Ninja -DWAY="$1" -DPROGRAM="$program" \
        -DNAMESAKES="$scratch/namesakes" -DCMAKE_CXX_COMPILER=g++ "${@:3}" >"$scratch/log" && cmake --build "$scratch/$2" >>"$scratch/log" ||
        { cat "$scratch/log"; exit 1; }
    check "$2" "$scratch/$2/client"
}

client fetched fetched -DSOCLE_TREE="$PWD"
[ -e "$scratch/fetched/_deps/socle-build/libsocle.so" ]

# A project that wants static libraries gets one, and can install it.
client added added-static -DSOCLE_TREE="$PWD" -DBUILD_SHARED_LIBS=OFF -DSOCLE_INSTALL=ON
cmake --install "$scratch/added-static" --prefix "$scratch/static" >/dev/null
[ -z "$(find "$scratch/static" -name '*.so*')" ]
client found found-static -DCMAKE_PREFIX_PATH="$scratch/static"
flags=$(PKG_CONFIG_PATH=$(dirname "$(find "$scratch/static" -name socle.pc)") pkg-config --cflags --libs socle)
read -ra flags <<<"$flags"
g++ -std=c++20 -I"$scratch/namesakes" "$program" "${flags[@]}" -o "$scratch/pkg-config-static"
check pkg-config-static "$scratch/pkg-config-static"

# Each component by itself.
cmake --preset package -B "$scratch/package" >/dev/null
cmake --build "$scratch/package" >/dev/null
cmake --install "$scratch/package" --component runtime --prefix "$scratch/runtime" >/dev/null
[ -z "$(find "$scratch/runtime" -type f ! -name 'libsocle.so.*' ! -path '*/share/doc/*')" ]
cmake --install "$scratch/package" --component development --prefix "$scratch/development" >/dev/null
[ -e "$scratch/development/include/socle/socle.h" ]
[ -z "$(find "$scratch/development" -type f -name 'libsocle.so*')" ]
echo 'works: components'

(cd "$scratch/package" && cpack -B "$scratch/packages" >/dev/null)
lintian --fail-on error "$scratch"/packages/*.deb
echo "works: $(cd "$scratch/packages" && echo *.deb)"
