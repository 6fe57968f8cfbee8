#!/usr/bin/env bash
# usage: windows.sh <new folder>
# Makes the zip archive for Windows, builds a client against what is in it, and runs that under Wine.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
where=$1
mkdir "$where"

cmake --preset windows-package
cmake --build --preset windows-package
(cd build/windows-package && cpack)
unzip -q build/windows-package/socle-*-windows-x86_64.zip -d "$where"
root=$(echo "$where"/socle-*)

cmake -S examples/macbinary -B "$where/client" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/mingw_w64.cmake" \
    -DCMAKE_PREFIX_PATH="$root" -DCMAKE_CXX_FLAGS='-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror'
cmake --build "$where/client"
cp "$root"/bin/*.dll "$where/client"
chmod -R go+rX "$where"
for program in "$root/bin/macbinary.exe" "$where/client/macbinary.exe"; do
    scripts/wine.sh "$PWD/build/windows/wine" "$program" "$PWD/examples/samples/both_forks.bin" |
        grep 'Both Forks' >/dev/null
    echo "works: $program"
done
