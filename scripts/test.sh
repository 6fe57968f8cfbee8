#!/usr/bin/env bash
# Builds and tests everything: with both compilers, under the sanitizers, as an ordinary user, and as a client of an
# installed copy. The last line is the sum over all test runs.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/packages.sh

warnings=(-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
scratch=$(mktemp -d)
current=start
passed=0 failed=0 skipped=0

phase() {
    current=$*
    printf '\n===== %s (%d s)\n' "$current" $SECONDS
}

finish() {
    local status=$?
    rm -rf "$scratch"
    if [ $status -ne 0 ] && [ $failed -eq 0 ]; then
        printf '\nstopped at: %s\n' "$current"
        failed=1
    fi
    printf '\n===== total (%d s)\n' $SECONDS
    printf '%d passed, %d failed, %d skipped\n' $passed $failed $skipped
    exit $status
}
trap finish EXIT

# run_tests <command that runs ctest>...: adds what its report says to the sum. A failure does not stop the script.
run_tests() {
    local report=$scratch/tests/report.xml all bad left
    rm -f "$report"
    "$@" --output-junit "$report" || true
    all=$(sed -n 's/^\ttests="\([0-9]*\)".*/\1/p' "$report")
    bad=$(sed -n 's/^\tfailures="\([0-9]*\)".*/\1/p' "$report")
    left=$(sed -n 's/^\tskipped="\([0-9]*\)".*/\1/p' "$report")
    [ "$all" -gt 0 ]
    passed=$((passed + all - bad - left)) failed=$((failed + bad)) skipped=$((skipped + left))
}

build() {
    cmake --preset "$1"
    cmake --build --preset "$1"
}

# As root, many refusals of the system do not show. ctest writes beside the list of tests that it is given, so it is
# given one that the user owns.
test_as_ordinary_user() {
    local as_nobody=(setpriv --reuid=65534 --regid=65534 --clear-groups env HOME="$scratch/tests")
    if ! "${as_nobody[@]}" test -r "$PWD/build/dev/CTestTestfile.cmake"; then
        echo "left out: an ordinary user has no access to $PWD"
        return
    fi
    printf 'subdirs("%s")\n' "$PWD/build/dev" >"$scratch/tests/CTestTestfile.cmake"
    run_tests "${as_nobody[@]}" ctest --test-dir "$scratch/tests" --output-on-failure -j2
}

# check_client <program>: the installed library does for it what the built one does.
check_client() {
    LD_LIBRARY_PATH=$libraries bash tests/examples/macbinary.sh "$1" "$PWD/examples/samples" \
        "$PWD/tests/examples/macbinary.txt"
    echo "works: $1"
}

phase 'packages'
need cmake=cmake ninja-build=ninja g++=g++ clang=clang++ clang-format=clang-format pkg-config=pkg-config \
    ntfs-3g=ntfs-3g python3=python3 libxml2-utils=xmllint libgtest-dev=/usr/include/gtest/gtest.h \
    doxygen=doxygen hfsutils=hcopy macutils=macunpack file=file valgrind=valgrind \
    tzdata=/usr/share/zoneinfo/America/New_York
chmod 755 "$scratch"
mkdir "$scratch/tests"
if [ "$(id -u)" = 0 ]; then
    chown 65534:65534 "$scratch/tests"
fi
need abigail-tools=abidiff xz-utils=xz lintian=lintian mmdebstrap=mmdebstrap

phase 'format'
scripts/format.sh check

phase 'g++, all warnings are errors'
build dev
run_tests ctest --preset dev

if [ "$(id -u)" = 0 ]; then
    phase 'the same as an ordinary user'
    test_as_ordinary_user
fi

phase 'instructions of the hot paths'
scripts/kernels.sh build/dev

phase 'clang++, all warnings are errors'
build clang
run_tests ctest --preset clang

phase 'clang++, each public header alone'
cmake --build --preset clang --target all_verify_interface_header_sets

phase 'AddressSanitizer and UndefinedBehaviorSanitizer'
build asan
run_tests ctest --preset asan

phase 'ThreadSanitizer: what any thread may use at any time'
cmake --preset tsan
cmake --build --preset tsan --target threads_test
run_tests ctest --preset tsan -R '^threads\.'

phase 'each fuzzer for some seconds'
scripts/fuzz.sh 4

phase 'installed copy'
prefix=$scratch/prefix
cmake --install build/dev --prefix "$prefix"
libraries=$(dirname "$(find "$prefix" -name libsocle.so)")
export PKG_CONFIG_PATH=$libraries/pkgconfig
read -ra compile_flags <<<"$(pkg-config --cflags socle)"
read -ra link_flags <<<"$(pkg-config --libs socle)"

phase 'documents'
python3 tests/docs/messages.py .
LD_LIBRARY_PATH=$libraries bash tests/docs/snippets.sh "${compile_flags[@]}" "${link_flags[@]}"
cmake --workflow --preset docs

# A client in the compilers' own dialect has macros that a strict one has not, such as one named unix.
for dialect in gnu++20 c++20; do
    phase "installed copy, $dialect: each public header alone and first"
    (cd "$prefix/include" && find socle -name '*.h' -print0) |
        xargs -0 -P "$(nproc)" -I{} g++ -std=$dialect "${warnings[@]}" "${compile_flags[@]}" -fsyntax-only \
            -include {} -x c++ /dev/null

    phase "installed copy, $dialect: a client through pkg-config"
    g++ -std=$dialect "${warnings[@]}" "${compile_flags[@]}" -Iexamples examples/macbinary/*.cpp \
        examples/common/*.cpp "${link_flags[@]}" \
        -o "$scratch/client-$dialect"
    check_client "$scratch/client-$dialect"

    phase "installed copy, $dialect: a client through find_package"
    extensions=$([ $dialect = gnu++20 ] && echo ON || echo OFF)
    cmake -S examples/macbinary -B "$scratch/$dialect" -G Ninja -DCMAKE_CXX_COMPILER=g++ \
        -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_EXTENSIONS="$extensions" -DCMAKE_CXX_FLAGS="${warnings[*]}"
    cmake --build "$scratch/$dialect"
    check_client "$scratch/$dialect/macbinary"
done

phase 'the binary interface'
scripts/abi.sh

phase 'ways to have the library, and its packages'
mkdir "$scratch/ways"
tests/packages/ways.sh "$scratch/ways"

phase 'the packages in a clean system'
tests/packages/clean_system.sh "$scratch/ways/packages" "$scratch/ways/program.cpp" '3 files, the first is a TEXT at 32'

[ $failed -eq 0 ]
