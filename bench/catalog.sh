#!/usr/bin/env bash
# usage: bench/catalog.sh <program> [<files in the first tree> [<MiB of the large file>]]
# Measures examples/catalog beside the programs that people use, on 100,000 small files in 1,000 folders, and on 10,000
# with one of 2 GiB, and prints tables. Each row is the best of three runs, with what is read in memory; what is written
# is brought to the disk before the clock stops. It takes some minutes, and 6 GiB of disk for the time.
set -euo pipefail
program=$(realpath "$1") count=${2:-100000} large=${3:-2048}
scratch=$(mktemp -d "${TMPDIR:-/var/tmp}/socle_catalog.XXXXXX")
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"

# make_tree <folder> <files>: a hundred in each folder, of 100 to 4,000 bytes.
make_tree() {
    python3 - "$1" "$2" <<'END'
import os, sys
for folder in range(int(sys.argv[2]) // 100):
    path = f"{sys.argv[1]}/{folder % 32}/{folder}"
    os.makedirs(path)
    for file in range(100):
        with open(f"{path}/file {file}.txt", "wb") as out:
            out.write(os.urandom(100 + (file * 39)))
END
}

# seconds <prepare> <command>: the best of three.
seconds() {
    local best=1000000 run
    for run in 1 2 3; do
        eval "$1"
        sync
        run=$( { TIMEFORMAT=%R; time eval "$2" >/dev/null 2>&1 || true; } 2>&1)
        best=$(awk -v a="$best" -v b="$run" 'BEGIN { print a < b ? a : b }')
    done
    echo "$best"
}

# row <what> <prepare> <ours> <peer's name> <peer's command> <at most>
row() {
    local ours theirs
    ours=$(seconds "$2" "$3")
    if [ "$4" = rsync ] && ! command -v rsync >/dev/null; then
        echo "left out: rsync is not installed" >&2
        return
    fi
    theirs=$(seconds "$2" "$5")
    awk -v what="$1" -v a="$ours" -v peer="$4" -v b="$theirs" -v most="$6" \
        'BEGIN { printf "| %s | %.2f s | `%s` %.2f s | %.1f | %s |\n", what, a, peer, b, a / b, most }'
}

measure() {
    local tree=$1
    printf '\n| %s | catalog | beside it | ratio | aim |\n|---|---|---|---|---|\n' "$2"
    row 'catalogue' : "'$program' $tree" 'find -printf' "find $tree -printf '%p %s %t %A+ %m\n'" 3
    row 'catalogue with checksums' : "'$program' --checksums $tree" 'xargs cksum' \
        "find $tree -type f -print0 | xargs -0 cksum" 2
    row 'carrying' 'rm -rf to' "'$program' --to to $tree; sync -f to" rsync "rsync -a $tree/ to/; sync -f to" 1.5
    rm -rf to && "$program" --to to $tree 2>/dev/null || true
    row 'carrying again' : "'$program' --to to $tree" rsync "rsync -a $tree/ to/" 5
    printf '\nMost memory: %s.\n' "$(python3 - "$program" "$tree" <<'END'
import os, shutil, subprocess, sys
import resource
shutil.rmtree("to")
subprocess.run([sys.argv[1], "--quiet", "--to", "to", "--output", "out.xml", sys.argv[2]])
print(f"{resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss / 1024:.0f} MiB")
END
)"
    rm -rf to
}

make_tree small "$count"
measure small "$count small files"
rm -rf small
make_tree mixed $((count / 10))
head -c "${large}M" /dev/urandom >mixed/large
measure mixed "$((count / 10)) small files and one of $large MiB"
