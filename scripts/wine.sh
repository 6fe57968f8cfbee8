#!/usr/bin/env bash
# wine.sh <folder> <program> [<argument>...]: runs a program for Windows under Wine, whose own files are kept in <folder>.
# It runs in a fresh folder, which goes afterwards, and as an ordinary user: Wine refuses nothing to root.
set -euo pipefail

folder=$1
shift
if [ "$(id -u)" = 0 ]; then
    install -d -o 65534 -g 65534 "$folder"
    exec setpriv --reuid=65534 --regid=65534 --clear-groups "${BASH_SOURCE[0]}" "$folder" "$@"
fi
wine=/usr/lib/wine/wine64
export HOME=$folder WINEPREFIX=$folder/prefix WINEDEBUG=${WINEDEBUG:--all} WINEDLLOVERRIDES='mscoree,mshtml='
export LC_ALL=${LC_ALL:-C.UTF-8} # the encoding of the host's names
unset DISPLAY WAYLAND_DISPLAY XDG_RUNTIME_DIR
mkdir -p "$folder/prefix"

# Whoever comes first makes what Wine keeps. The lock is not for its server, which stays a while.
exec {lock}>"$folder/lock"
flock "$lock"
# A server that outlives its programs by a minute: one that is about to go may refuse the next program. Where one runs,
# this does nothing.
/usr/lib/wine/wineserver64 --persistent=60 >/dev/null 2>&1 {lock}>&- || true
if [ ! -e "$folder/ready" ]; then
    "$wine" wineboot --init >"$folder/wineboot.txt" 2>&1 {lock}>&-
    touch "$folder/ready"
fi
exec {lock}>&-

run=$(mktemp -d "$folder/run.XXXXXX")
trap 'chmod -R u+w "$run" && rm -rf "$run"' EXIT
mkdir "$run/here"
cd "$run/here"
# Wine's own services, which the first program starts, hold what it writes to open for as long as they run.
status=0
"$wine" "$@" >"$run/out" 2>"$run/err" || status=$?
cat "$run/out"
cat "$run/err" >&2
exit $status
