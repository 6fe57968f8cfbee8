#!/usr/bin/env bash
# usage: tests/packages/recipes.sh <scratch folder> <program.cpp> <what it prints>
# Installs the library from this tree by the recipes for package managers, and builds and runs the program with it.
set -euo pipefail
scratch=$(realpath "$1") program=$(realpath "$2") words=$3
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

# client <way> <option of cmake>...
client() {
    local said
    cmake -S tests/packages/client -B "$scratch/$1" -G Ninja -DWAY=found -DPROGRAM="$program" \
        -DNAMESAKES="$scratch/namesakes" -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_COMPILER=g++ "${@:2}" >/dev/null
    cmake --build "$scratch/$1" >/dev/null
    said=$("$scratch/$1/client")
    [ "$said" = "$words" ] || { echo "$1: the program says \"$said\""; exit 1; }
    echo "works: $1"
}

if command -v conan >/dev/null; then
    export CONAN_HOME=$scratch/conan-home
    conan profile detect >/dev/null 2>&1
    conan create packaging/conan --no-remote -s compiler.cppstd=20 >"$scratch/log" 2>&1 || { cat "$scratch/log"; exit 1; }
    package=$(find "$CONAN_HOME" -path '*/cmake/socle' | head -1)
    client conan -DCMAKE_PREFIX_PATH="${package%/lib*}"
else
    echo 'left out: there is no conan'
fi

if command -v vcpkg >/dev/null; then
    vcpkg install socle --overlay-ports=packaging/vcpkg --x-install-root="$scratch/vcpkg-installed" >"$scratch/log" 2>&1 ||
        { cat "$scratch/log"; exit 1; }
    client vcpkg -DCMAKE_PREFIX_PATH="$(find "$scratch/vcpkg-installed" -path '*/share/socle' | sed 's|/share/socle||')"
else
    echo 'left out: there is no vcpkg'
fi
