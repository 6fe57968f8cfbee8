#!/usr/bin/env bash
# usage: bench/catalog.sh <program> [<files in the first tree> [<MiB of the large file>]]
# Measures examples/catalog beside the programs that people use, on 100,000 small files in 1,000 folders, and on 10,000
# with one of 2 GiB. Each time is the best of three, in turns, with what is read in memory; what is written is brought
# to the disk before the clock stops. It takes some minutes, and 7 GiB of disk for the time. Prints lines for
# results.py:
#   ratio|<tree>|<task>|<seconds>|<program beside it>|<its seconds>|<at most so many times>
#   memory|<task>|<MiB>|<at most>
#   calls|<task>|<calls to the host, and how many a file>
set -euo pipefail
scripts=$(dirname "${BASH_SOURCE[0]}")/../scripts
. "$scripts/packages.sh"
[ -x "${1-}" ] || stop "there is no program ${1-}"
program=$(realpath "$1") count=${2:-100000} large=${3:-2048}
scratch=$(mktemp -d "${TMPDIR:-/var/tmp}/socle_catalog.XXXXXX")
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"

# make_tree <folder> <files> <files in each folder>: of 100 to 4,000 bytes.
make_tree() {
    python3 - "$@" <<'END'
import os, sys
files, each = int(sys.argv[2]), int(sys.argv[3])
for folder in range(files // each):
    path = f"{sys.argv[1]}/{folder % 32}/{folder}"
    os.makedirs(path)
    for file in range(each):
        with open(f"{path}/file {file}.txt", "wb") as out:
            out.write(os.urandom(100 + file % 100 * 39))
END
}

# seconds <prepare> <command>
seconds() {
    eval "$1"
    sync
    { TIMEFORMAT=%R; time eval "$2" >/dev/null 2>"$scratch/words"; } 2>&1 || stop "$2: $(tail -3 "$scratch/words")"
}

less() { awk -v a="$1" -v b="$2" 'BEGIN { print a < b ? a : b }'; }

# row <tree> <task> <prepare> <ours> <name beside it> <its command> <at most>
row() {
    local ours=1000000 theirs=1000000 run
    if ! command -v "${5%% *}" >/dev/null; then
        echo "left out: ${5%% *} is not installed" >&2
        return
    fi
    for run in 1 2 3; do
        run=$(seconds "$3" "$4")
        ours=$(less "$ours" "$run")
        run=$(seconds "$3" "$6")
        theirs=$(less "$theirs" "$run")
    done
    printf 'ratio|%s|%s|%.3f|%s|%.3f|%s\n' "$1" "$2" "$ours" "$5" "$theirs" "$7"
}

# measure <tree> <what it is>
measure() {
    local tree=$1
    row "$2" 'catalogue' : "'$program' $tree" 'find -printf' "find $tree -printf '%p %s %t %A+ %m\n'" 3
    row "$2" 'catalogue with checksums' : "'$program' --checksums $tree" 'xargs cksum' \
        "find $tree -type f -print0 | xargs -0 cksum" 2
    row "$2" 'carrying' 'rm -rf to' "'$program' --to to $tree; sync -f to" 'rsync -a' \
        "rsync -a $tree/ to/; sync -f to" 1.5
    rm -rf to
    "$program" --quiet --to ours "$tree"
    ! command -v rsync >/dev/null || rsync -a "$tree/" theirs/
    row "$2" 'carrying again' : "'$program' --to ours $tree" 'rsync -a' "rsync -a $tree/ theirs/" 5
    rm -rf ours theirs
}

# peak <tree> <what it is>
peak() {
    local task=carrying what
    for what in to again; do
        printf 'memory|%s %s|%.0f|32\n' "$task" "$2" "$(python3 - "$program" --quiet --to to --output out.xml "$1" <<'END'
import os, resource, subprocess, sys
subprocess.run(sys.argv[1:], check=True)
print(resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss / 1024)
END
)"
        task='carrying again'
    done
    rm -rf to
}

# calls <files> <task> <command>...
calls() {
    local files=$1 task=$2
    strace -f -c -o counted "${@:3}" >/dev/null 2>words || stop "${*:3}: $(tail -3 words)"
    awk -v files="$files" -v task="$task" '
        $1 ~ /^[0-9.]+$/ && $NF != "total" && $4 / files >= 0.1 {
            list = list (list ? ", " : "") sprintf("%s %.1f", $NF, $4 / files)
        }
        END { print "calls|" task "|" list }' counted
}

make_tree small "$count" 100
measure small "$count small files"
peak small "$count files in folders of 100"
rm -rf small
make_tree folder "$count" "$count"
peak folder "$count files in one folder"
rm -rf folder
make_tree mixed $((count / 10)) 100
head -c "${large}M" /dev/urandom >mixed/large
measure mixed "$((count / 10)) small files and one of $large MiB"
rm -rf mixed
if command -v strace >/dev/null; then
    make_tree few 2000 100
    calls 2000 'catalogue' "$program" few
    calls 2000 'catalogue with checksums' "$program" --checksums few
    calls 2000 'carrying' "$program" --to to few
    calls 2000 'carrying again' "$program" --to to few
    ! command -v rsync >/dev/null || calls 2000 '`rsync -a` again' rsync -a few/ to/
else
    echo 'calls|all|not counted, as strace is not installed'
fi
