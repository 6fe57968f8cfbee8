#!/usr/bin/env bash
# usage: socle_h_is_whole.sh <socle.h> <list of the public headers, one a line>
set -euo pipefail
diff -u --label 'public headers' --label 'included by socle.h' \
    <(sort "$2") <(sed -n 's/^#include "\(.*\)"$/\1/p' "$1" | sort)
