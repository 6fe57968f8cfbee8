#!/usr/bin/env bash
# usage: scripts/coverage.sh   runs the tests in a build that counts, and tells how much of the library they reach: in
# all, then for each file which lines they do not.
# Branches that only an exception takes are left out: each call has one, and tests/faults takes them in its own way.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/packages.sh

need cmake=cmake ninja-build=ninja g++=g++ gcovr=gcovr libgtest-dev=/usr/include/gtest/gtest.h
cmake --preset coverage
cmake --build --preset coverage
find build/coverage -name '*.gcda' -delete
# What counts exports symbols of its own.
ctest --preset coverage --exclude-regex "^exports\$"

options=(--root . --object-directory build/coverage --exclude-throw-branches --exclude-unreachable-branches
    --filter socle/)
gcovr "${options[@]}" --sort-uncovered --txt build/coverage/lines.txt --json build/coverage/all.json --print-summary
gcovr "${options[@]}" --add-tracefile build/coverage/all.json --branches --txt build/coverage/branches.txt
echo 'file by file: build/coverage/lines.txt and build/coverage/branches.txt'
