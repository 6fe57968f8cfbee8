#!/usr/bin/env bash
# usage: no_unique_symbols.sh <nm> <shared object>...
# A unique symbol pins the object that defines it: it would never be unloaded.
set -euo pipefail
nm=$1
shift
for object; do
    unique=$("$nm" -DC --defined-only "$object" | awk '$2 == "u"')
    if [ -n "$unique" ]; then
        printf '%s cannot be unloaded, it has unique symbols:\n%s\n' "$object" "$unique"
        exit 1
    fi
done
