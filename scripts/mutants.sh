#!/usr/bin/env bash
# usage: scripts/mutants.sh NUMBER SEED   puts that many one-line faults into the library as it is committed, one at a
# time, and tells which the tests find. A fault that does not compile counts neither way.
# What is known so far is in build/mutants/SEED-COMMIT.txt: a run that was ended goes on where it was.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/packages.sh
[ $# = 2 ] || stop 'usage: mutants.sh NUMBER SEED'
[ "$(id -u)" = 0 ] || stop 'only root can run it, as it takes all rights of writing from the tests'
need cmake=cmake ninja-build=ninja g++=g++ python3=python3 lld=ld.lld libgtest-dev=/usr/include/gtest/gtest.h

top=$PWD
folder=$top/build/mutants
commit=$(git rev-parse HEAD)
known=$folder/$2-$commit.txt
mkdir -p "$folder"
touch "$known"
rm -rf "$folder/tree"
git worktree prune
git worktree add -q --detach "$folder/tree" "$commit"
cd "$folder/tree"
cmake -S . -B "$folder/build" -G Ninja -DCMAKE_CXX_FLAGS='-O1 -w' -DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=lld \
    -DCMAKE_SHARED_LINKER_FLAGS=-fuse-ld=lld -DCMAKE_LINK_DEPENDS_NO_SHARED=ON >"$folder/log"
cmake --build "$folder/build" >>"$folder/log"

# A library with a fault may delete what it should not: the tests run where only scratch folders can be written.
mkdir -p "$folder/scratch"
chmod 1777 "$folder/scratch"
# tests [<program to try first>...]: sets `finder` to the program that fails.
tests() {
    finder=$(unshare --mount bash -euc '
        scratch=$1
        mount --bind "$scratch" /tmp
        mount --bind "$scratch" /var/tmp
        mount --bind "$scratch" "$scratch"
        mount -t tmpfs tmpfs /dev/shm
        findmnt -rno TARGET | grep -vxF -e /tmp -e /var/tmp -e "$scratch" -e /dev/shm | grep -v "^/proc" |
            while read -r mounted; do mount -o remount,bind,ro "$mounted"; done
        python3 "${@:2}"
    ' - "$folder/scratch" "$top/scripts/mutants_tests.py" "$folder/build" "$folder/scratch/seconds" "$@" 2>&1)
}
rm -f "$folder/scratch/seconds"
tests || stop "without any fault there fails: $finder"

python3 scripts/mutants.py socle "$1" "$2" >"$folder/faults"
while IFS=$'\t' read -r file line old new; do
    what="$file:$line: $(sed 's/^ *//' <<<"$old")  =>  $(sed 's/^ *//' <<<"$new")"
    grep -qF " $what" "$known" && continue
    sed -n "${line}p" "$file" | grep -qxF -- "$old"
    printf '%s\n' "$new" | sed -i -e "${line}r /dev/stdin" -e "${line}d" "$file"
    # What found a fault in the file before is likely to find this one.
    mapfile -t first < <(cat "$folder/$2"-*.txt | sed -n "s|^found by \([^ ]*\) $file:.*|\1|p" | tac | awk '!seen[$0]++')
    if ! cmake --build "$folder/build" >"$folder/log" 2>&1; then
        result='does not compile:'
    elif tests "${first[@]}"; then
        result=lives:
    else
        result="found by $finder"
    fi
    echo "$result $what" | tee -a "$known"
    git checkout -q -- "$file"
done <"$folder/faults"

found=$(grep -c '^found ' "$known" || true)
lives=$(grep -c '^lives' "$known" || true)
echo "$found of $((found + lives)) faults were found"
