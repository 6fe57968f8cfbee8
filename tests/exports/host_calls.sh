#!/usr/bin/env bash
# usage: host_calls.sh <nm> <object>...
# All that the library asks of the host goes through the seam in platform/posix/host/host_calls.cpp, so that a test which
# lets each call fail leaves none out. What the C library answers by itself is listed here; anything else is a call
# that the seam does not know.
set -euo pipefail
nm=$1
shift
known='clock_gettime|dirfd|getegid|getenv|geteuid|iconv|iconv_close|iconv_open|isw[a-z]*|localtime_r|mem[a-z]*|mktime'
known="$known|newlocale|pthread_once|str[a-z]*|tow[a-z_]*|tzset"

objects=()
for object in "$@"; do
    case $object in
        */platform/posix/host/host_calls.cpp*) seam=$object ;;
        *) objects+=("$object") ;;
    esac
done
"$nm" -u "$seam" | grep -qw 'openat64\|openat\|open64\|open' || { echo "the seam opens nothing: $seam"; exit 1; }

unknown=$("$nm" -uA "${objects[@]}" | sed 's/:  *[Uwv] /: /' | grep -vE ": (_|($known)(@|\$))" || true)
if [ -n "$unknown" ]; then
    printf 'host calls past the seam:\n%s\n' "$unknown"
    exit 1
fi
