#!/usr/bin/env bash
# usage: scripts/test.sh [--all | --list | --help | phase...]
# Builds with g++ and runs the tests, which takes a few minutes. --all runs every phase, as CI does; --list shows them.
# A phase that is named runs with whatever it depends on. The last line is the sum over all test runs.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

phases=(
    'tools     install the programs that some tests use where they find them'
    'format    the sources are laid out by clang-format'
    'gcc       g++, all warnings are errors: the tests'
    'user      the same tests as an ordinary user'
    'kernels   how many instructions the hot paths take'
    'clang     clang++, all warnings are errors: the tests, and each public header alone'
    'asan      the tests under AddressSanitizer and UndefinedBehaviorSanitizer'
    'tsan      what any thread may use at any time, under ThreadSanitizer'
    'fuzz      each fuzzer for some seconds'
    'clients   programs built against an installed copy'
    'docs      the programs and tables of the documents, and the reference'
    'abi       the binary interface is the one that is written down'
    's390x     a big-endian machine, by emulation: streams, records, codes, text, AppleDouble'
    'windows   for Windows by mingw-w64, all warnings are errors'
    'wine      the tests for Windows, the zip archive and clients of it, under Wine'
    'packages  each way to have the library, its packages, and these in a clean system'
)

list() { printf '%s\n' "${phases[@]}"; }
names=$(list | cut -d' ' -f1)
case ${1-} in
    --all) [ $# -eq 1 ] && mapfile -t chosen <<<"$names" ;;
    --list) list && exit ;;
    --help) sed -n '2,/^set/{/^# /s///p}' "$0" && exit ;;
    '') chosen=(gcc) ;;
    *) chosen=("$@") ;;
esac
for name in "${chosen[@]-}"; do
    if ! grep -qxFe "$name" <<<"$names"; then
        echo "test.sh: there is no phase '${name:-$*}'; scripts/test.sh --list shows them" >&2
        exit 2
    fi
done

. scripts/packages.sh
. scripts/ports.sh
warnings=(-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
scratch=$(mktemp -d)
chmod 755 "$scratch"
as_nobody=(setpriv --reuid=65534 --regid=65534 --clear-groups env HOME="$scratch/tests")
. scripts/run_tests.sh
finished=

finish() {
    local status=$?
    rm -rf "$scratch"
    if [ -z "$finished" ]; then
        printf '\nstopped at: %s\n' "$phase"
        failed=$((failed > 0 ? failed : 1))
    fi
    printf '\n===== total (%d s)\n' $SECONDS
    printf '%d passed, %d failed, %d skipped\n' $passed $failed $skipped
    exit $((status > 0 ? status : failed > 0))
}
trap finish EXIT

# once <command>...: runs it unless it has been run.
declare -A ran
once() {
    [ -n "${ran[$*]-}" ] || "$@"
    ran[$*]=yes
}

build() {
    need cmake=cmake ninja-build=ninja g++=g++ libgtest-dev=/usr/include/gtest/gtest.h \
        tzdata=/usr/share/zoneinfo/America/New_York python3=python3
    [ "$1" != clang ] || need clang=clang++
    cmake --preset "$1"
    cmake --build --preset "$1" "${@:2}"
}

# Sets prefix, compile_flags and link_flags.
install_copy() {
    need pkg-config=pkg-config
    once build dev
    prefix=$scratch/prefix
    cmake --install build/dev --prefix "$prefix" >/dev/null
    LD_LIBRARY_PATH=$(dirname "$(find "$prefix" -name libsocle.so)")
    export LD_LIBRARY_PATH PKG_CONFIG_PATH=$LD_LIBRARY_PATH/pkgconfig
    read -ra compile_flags <<<"$(pkg-config --cflags socle)"
    read -ra link_flags <<<"$(pkg-config --libs socle)"
}

phase_tools() {
    need ntfs-3g=ntfs-3g libxml2-utils=xmllint hfsutils=hcopy macutils=macunpack file=file attr=getfattr
}

phase_format() {
    scripts/format.sh check
}

phase_gcc() {
    once build dev
    run_tests ctest --preset dev
}

# As root, many refusals of the system do not show. ctest writes beside the list of tests that it is given, so it is
# given one that the user owns.
phase_user() {
    once build dev
    if [ "$(id -u)" != 0 ]; then
        echo 'left out: whoever runs this is an ordinary user already'
    elif ! "${as_nobody[@]}" test -r "$PWD/build/dev/CTestTestfile.cmake"; then
        echo "left out: an ordinary user has no access to $PWD"
    else
        mkdir -p "$scratch/tests"
        chown 65534:65534 "$scratch/tests"
        printf 'subdirs("%s")\n' "$PWD/build/dev" >"$scratch/tests/CTestTestfile.cmake"
        run_tests "${as_nobody[@]}" ctest --test-dir "$scratch/tests" --output-on-failure -j2
    fi
}

phase_kernels() {
    once build dev
    scripts/kernels.sh build/dev
}

phase_clang() {
    build clang
    # Faults find the same with any compiler; the phases gcc, user and asan have them.
    run_tests ctest --preset clang -E '/each_fault\.'
    cmake --build --preset clang --target all_verify_interface_header_sets
}

phase_asan() {
    build asan
    run_tests ctest --preset asan
}

phase_tsan() {
    build tsan --target threads_test
    run_tests ctest --preset tsan -R '^threads\.'
}

phase_fuzz() {
    scripts/fuzz.sh 4
}

# In the compilers' own dialect a client has macros that a strict one has not, such as one named unix. Headers named like
# the library's come first on its path.
phase_clients() {
    local dialect extensions
    once install_copy
    tests/packages/namesakes.sh "$scratch/namesakes"
    for dialect in gnu++20 c++20; do
        echo "$dialect: each public header alone and first"
        (cd "$prefix/include" && find socle -name '*.h' -print0) |
            xargs -0 -P "$(nproc)" -I{} g++ -std=$dialect "${warnings[@]}" -I"$scratch/namesakes" \
                "${compile_flags[@]}" -fsyntax-only -include {} -x c++ /dev/null

        echo "$dialect: a client through pkg-config, optimised as one program"
        g++ -std=$dialect -O3 -flto=auto "${warnings[@]}" -I"$scratch/namesakes" "${compile_flags[@]}" -Iexamples \
            -DEXAMPLE_VERSION="\"$(pkg-config --modversion socle)\"" examples/macbinary/*.cpp \
            examples/common/*.cpp examples/common/posix/*.cpp "${link_flags[@]}" -o "$scratch/client-$dialect"
        check_client "$scratch/client-$dialect"

        echo "$dialect: a client through find_package"
        extensions=$([ $dialect = gnu++20 ] && echo ON || echo OFF)
        cmake -S examples/macbinary -B "$scratch/$dialect" -G Ninja -DCMAKE_CXX_COMPILER=g++ \
            -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_EXTENSIONS="$extensions" -DCMAKE_CXX_FLAGS="${warnings[*]}"
        cmake --build "$scratch/$dialect"
        check_client "$scratch/$dialect/macbinary"
    done
}

# check_client <program>: the installed library does for it what the built one does.
check_client() {
    bash tests/examples/macbinary.sh "$1" "$PWD/examples/samples" "$PWD/tests/examples/macbinary.txt"
    echo "works: $1"
}

phase_docs() {
    need doxygen=doxygen
    once install_copy
    run_tests ctest --preset dev -R '^docs\.'
    tests/docs/snippets.sh "${compile_flags[@]}" "${link_flags[@]}"
    cmake --workflow --preset docs
    tests/docs/reference.py build/docs/docs/html "$prefix/include"
}

phase_abi() {
    once build dev
    scripts/abi.sh
}

# The whole of it: scripts/portability.sh s390x.
phase_s390x() {
    local families='stream memory filter buffered chained lines transform codec command algorithm string code_pages
        integer_codes backup_filter mac_records io_attributes nio_file orders'
    local programs
    read -rd "" -a programs <<<"$families" || true
    programs=("${programs[@]/%/_test}" fuzz_buffers fuzz_input_streams fuzz_integer_codes fuzz_mac_records
        fuzz_output_streams fuzz_utf8)
    configure_port s390x
    cmake --build --preset s390x --target "${programs[@]}"
    run_tests ctest --preset s390x --label-regex "^($(IFS='|' && echo "${programs[*]}"))\$"
}

phase_windows() {
    need cmake=cmake ninja-build=ninja g++-mingw-w64-x86-64-posix=x86_64-w64-mingw32-g++-posix wine64=/usr/lib/wine/wine64 \
        googletest=/usr/src/googletest zip=zip unzip=unzip
    cmake --preset windows
    cmake --build --preset windows
}

# Programs run under Wine as an ordinary user.
phase_wine() {
    once phase_windows
    if [ "$(id -u)" = 0 ] && ! "${as_nobody[@]}" test -r "$PWD/build/windows/CTestTestfile.cmake"; then
        echo "left out: an ordinary user has no access to $PWD"
        return
    fi
    run_tests ctest --preset windows
    tests/packages/windows.sh windows "$scratch/windows"
}

phase_packages() {
    need cmake=cmake ninja-build=ninja g++=g++ pkg-config=pkg-config file=file lintian=lintian mmdebstrap=mmdebstrap
    mkdir "$scratch/ways"
    tests/packages/ways.sh "$scratch/ways"
    tests/packages/recipes.sh "$scratch/ways" "$scratch/ways/program.cpp" '3 files, the first is a TEXT at 32'
    tests/packages/clean_system.sh "$scratch/ways/packages" "$scratch/ways/program.cpp" \
        '3 files, the first is a TEXT at 32'
}

for phase in "${chosen[@]}"; do
    printf '\n===== %s (%d s)\n' "$(list | grep "^$phase ")" $SECONDS
    "phase_$phase"
done
finished=yes
