#!/usr/bin/env bash
# usage: plugin.sh <host> <folder of its plug-ins> [<command that runs it>...]
# Loads filters by name, and reports failures after they were unloaded.
set -euo pipefail
host=$1 plugins=$2
runner=("${@:3}")
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
# Programs may run as another user, and elsewhere.
chmod 777 "$scratch"
cd "$scratch"

fail() { echo "$*"; exit 1; }

# run <source> <target> <filter>...
run() { "${runner[@]}" "$host" "${option[@]}" --plugins="$plugins" "$scratch/$1" "$scratch/$2" "${@:3}"; }
option=()

# refused <words> <argument>...: with status 1, and no fork is left.
refused() {
    local status=0
    run "${@:2}" >out 2>err || status=$?
    [ "$status" = 1 ] || fail "status $status: ${*:2}"
    grep -qF -- "$1" err || fail "not \"$1\" but: $(cat err)"
    [ ! -e new ] || fail "left behind: ${*:2}"
}

printf '02 41 42\n43  FD 2D 80' >text
run text picture hex runs
option=(--resource)
run text picture hex
option=()
[ "$(cat picture)" = ABC---- ] || fail "data fork: $(cat picture)"
printf '\002ABC\375-\200' | cmp - picture.rsrc

refused 'io::fork: cannot create "' text picture hex
[ "$(cat picture)" = ABC---- ] || fail "overwritten"
printf '41 4x' >bad
refused 'hex: is no hexadecimal text at byte 4' bad new hex
printf '4' >bad
refused 'hex: ends in the middle of a byte' bad new hex
printf '05 41' >bad
refused 'runs: ends in the middle of a run' bad new hex runs
printf 'FD' >bad
refused 'runs: ends in the middle of a run' bad new hex runs
refused 'missing: ' text new hex missing
refused 'is no name of a filter' text new "$plugins/hex"
refused 'cannot open "' none new hex
