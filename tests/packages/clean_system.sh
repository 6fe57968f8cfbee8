#!/usr/bin/env bash
# usage: tests/packages/clean_system.sh <folder of packages> <program.cpp> <what it prints>
# Installs the packages into a new minimal system with a compiler, and builds and runs the program there.
set -euo pipefail
packages=$(realpath "$1") program=$(realpath "$2") words=$3
. /etc/os-release

# The system is built by mounting in it, which a container may forbid.
if [ "$(id -u)" != 0 ] || ! unshare --mount true 2>/dev/null; then
    echo 'left out: making a minimal system takes root and the right to mount'
    exit
fi
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
if ! mmdebstrap --quiet --variant=minbase --include=g++,pkg-config "$VERSION_CODENAME" "$scratch/system" 2>"$scratch/log"; then
    tail -n 1 "$scratch/log"
    echo 'left out: no minimal system could be made'
    exit
fi
cp "$packages"/*.deb "$program" "$scratch/system/root"
chroot "$scratch/system" sh -c 'cd /root && dpkg -i *.deb >/dev/null'
said=$(chroot "$scratch/system" sh -c "cd /root && c++ -std=c++20 '$(basename "$program")' \
    \$(pkg-config --cflags --libs socle) && ./a.out")
[ "$said" = "$words" ] || { echo "the program says \"$said\""; exit 1; }
echo 'works: packages in a clean system'
