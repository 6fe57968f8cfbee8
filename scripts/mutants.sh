#!/usr/bin/env bash
# usage: scripts/mutants.sh NUMBER SEED   puts that many one-line faults into the library as it is committed, one at a
# time, and tells which the tests find. A fault that does not compile counts neither way.
# What is known so far is in build/mutants/SEED.txt: a run that was ended goes on where it was, if the commit is the same.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/packages.sh
[ $# = 2 ] || stop 'usage: mutants.sh NUMBER SEED'
[ "$(id -u)" = 0 ] || stop 'only root can run it, as it takes all rights of writing from the tests'
need cmake=cmake ninja-build=ninja g++=g++ python3=python3 lld=ld.lld libgtest-dev=/usr/include/gtest/gtest.h

top=$PWD
folder=$top/build/mutants
known=$folder/$2.txt
mkdir -p "$folder"
commit=$(git rev-parse HEAD)
if [ "$(head -n 1 "$known" 2>/dev/null)" != "$commit" ]; then
    echo "$commit" >"$known"
fi
rm -rf "$folder/tree"
git worktree prune
git worktree add -q --detach "$folder/tree" "$commit"
cd "$folder/tree"
cmake -S . -B "$folder/build" -G Ninja -DCMAKE_CXX_FLAGS='-O1 -w' -DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=lld \
    -DCMAKE_SHARED_LINKER_FLAGS=-fuse-ld=lld >"$folder/log"
cmake --build "$folder/build" >>"$folder/log"

# A library with a fault may delete what it should not: the tests run where only scratch folders can be written.
mkdir -p "$folder/scratch" "$folder/build/Testing"
chmod 1777 "$folder/scratch"
tests() {
    unshare --mount bash -euc '
        folder=$1
        mount --bind "$folder/scratch" /tmp
        mount --bind "$folder/scratch" /var/tmp
        mount --bind "$folder/build/Testing" "$folder/build/Testing"
        findmnt -rno TARGET | grep -vxF -e /tmp -e /var/tmp -e "$folder/build/Testing" | grep -v "^/proc" |
            while read -r mounted; do mount -o remount,bind,ro "$mounted"; done
        timeout 600 ctest --test-dir "$folder/build" --stop-on-failure --timeout 60 -j "$(nproc)" "${@:2}"
    ' - "$folder" "$@" >"$folder/log" 2>&1
}
tests -E docs || { tail -n 20 "$folder/log"; stop 'the tests fail without any fault'; }

python3 scripts/mutants.py socle "$1" "$2" >"$folder/faults"
while IFS=$'\t' read -r file line old new; do
    grep -qF "$file:$line: " "$known" && continue
    sed -n "${line}p" "$file" | grep -qxF -- "$old"
    printf '%s\n' "$new" | sed -i -e "${line}r /dev/stdin" -e "${line}d" "$file"
    if ! cmake --build "$folder/build" >"$folder/log" 2>&1; then
        result='does not compile'
    elif tests -E 'docs|each_fault|example|held_trees' && tests -R 'each_fault|example|held_trees'; then
        result=lives
    else
        result=found
    fi
    echo "$result $file:$line: $(sed 's/^ *//' <<<"$old")  =>  $(sed 's/^ *//' <<<"$new")" | tee -a "$known"
    git checkout -q -- "$file"
done <"$folder/faults"

found=$(grep -c '^found ' "$known" || true)
lives=$(grep -c '^lives ' "$known" || true)
echo "$found of $((found + lives)) faults were found"
