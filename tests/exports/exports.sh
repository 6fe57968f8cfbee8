#!/usr/bin/env bash
# usage: exports.sh <nm> <libsocle.so>
# Every symbol of ours in the library's dynamic table belongs to a public family. Of the platform layer only what
# platform/host.h declares is public, and nothing of the algorithms is.
set -euo pipefail
nm=$1 library=$2
host_header=$(dirname "$0")/../../platform/host.h

families='basic|qpthr|un|nio|stream|any|io|command'
if [ -e "$host_header" ]; then
    host=$(sed -n 's/^SOCLE_API .*\b\([a-z_]*\)(.*/\1/p' "$host_header" | sort -u | paste -sd'|')
fi
about='(vtable for |VTT for |typeinfo for |typeinfo name for |construction vtable for |(non-)?virtual thunk to )'
ours="^$about?(($families)::|platform::(${host:-none})\()"
# What the compiler makes of the standard library's templates, with or without a result type in front.
standard="^($about|guard variable for |[^(<]* )?(std|__gnu_cxx)::"

symbols=$("$nm" -DC --defined-only "$library")
grep -q ' un::exception::~exception()$' <<<"$symbols" || { echo "no symbol table of ours in $library"; exit 1; }

# One compiler tells result types as they are derived; a sanitizer marks each of our constants with a symbol of its own.
names=$(sed -E 's/^[0-9a-f]* . //; s/^decltype\(.*\) (std|__gnu_cxx)::/\1::/; /^__odr_asan\./d' <<<"$symbols" | sort -u)
foreign=$(
    grep -vE "$ours|$standard" <<<"$names" || true
    grep -E '\balgorithm::' <<<"$names" || true
)
if [ -n "$foreign" ]; then
    printf 'exported, but no part of a public family:\n%s\n' "$foreign"
    exit 1
fi
