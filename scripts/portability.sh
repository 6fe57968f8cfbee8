#!/usr/bin/env bash
# usage: scripts/portability.sh [preset...]
# Builds the library with each preset and runs all tests, by default with all of these:
#   s390x        a big-endian machine of 64 bits, by emulation
#   i686         a machine of 32 bits, by emulation
#   libcxx       clang++ with libc++, the newest of the distribution
#   gcc-c++23    g++ in C++23 mode
#   clang-c++23  clang++ in C++23 mode
# What they need is installed. One after the other they take about an hour. The last lines say what became of each.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

known=(s390x i686 libcxx gcc-c++23 clang-c++23)
presets=("$@")
case ${1-} in
    --help) sed -n '2,/^set/{/^# /s///p}' "$0" && exit ;;
    '') presets=("${known[@]}") ;;
esac
. scripts/packages.sh
for preset in "${presets[@]}"; do
    grep -qxFe "$preset" < <(printf '%s\n' "${known[@]}") || stop "there is no preset '$preset' for a port"
done
. scripts/ports.sh
. scripts/run_tests.sh
scratch=$(mktemp -d)
results=() failures=0
finish() {
    local status=$?
    rm -rf "$scratch"
    [ $status = 0 ] || results+=("stopped at $preset")
    printf '%s\n' '' "${results[@]}"
    exit $((status > 0 ? status : failures > 0))
}
trap finish EXIT

for preset in "${presets[@]}"; do
    printf '\n===== %s (%d s)\n' "$preset" $SECONDS
    start=$SECONDS passed=0 failed=0 skipped=0
    configure_port "$preset"
    cmake --build --preset "$preset"
    run_tests ctest --preset "$preset"
    results+=("$(printf '%-12s %d passed, %d failed, %d skipped (%d s)' "$preset" $passed $failed $skipped \
        $((SECONDS - start)))")
    failures=$((failures + failed))
done
