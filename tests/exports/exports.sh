#!/usr/bin/env bash
# usage: exports.sh <nm> <libsocle.so>
# Every symbol of ours in the library's dynamic table belongs to a public family. Of the platform layer only what
# platform/host.h declares is public, and of the algorithms only the CRC and its digest.
set -euo pipefail
nm=$1 library=$2
host_header=$(dirname "$0")/../../socle/platform/host.h

families='basic|qpthr|un|nio|stream|any|io|command'
if [ -e "$host_header" ]; then
    host=$(sed -n 's/^SOCLE_API [^(]*\b\([a-z_][a-z_]*\)(.*/\1/p' "$host_header" | sort -u | paste -sd'|')
fi
about='(vtable for |VTT for |typeinfo for |typeinfo name for |construction vtable for |(non-)?virtual thunk to )'
checksums='algorithm::(digest|crc)\b'
ours="^$about?(($families)::|$checksums|platform::(${host:-none})(\[abi:cxx11\])?\()"
# What the compiler makes of the standard library's templates. It is told by the mangled names, as demanglers differ on
# result types. A sanitizer marks each of our constants with a symbol of its own.
standard='_Z(TV|TT|TI|TS|GV)?Z?N?K?(S[tabsiod]|9__gnu_cxx)|__odr_asan\.'

# list [option]: all symbols in the order of the table.
list() { "$nm" -D -p --defined-only "$@" "$library" | sed 's/^[0-9a-f]* . //'; }
symbols=$(paste <(list) <(list -C))
names=$(grep -vE "^($standard)" <<<"$symbols" | cut -f2 | sort -u)
grep -qxF 'un::exception::~exception()' <<<"$names" || { echo "no symbol table of ours in $library"; exit 1; }
foreign=$(
    grep -vE "$ours" <<<"$names" || true
    cut -f2 <<<"$symbols" | grep -E '\balgorithm::' | grep -vE "\b$checksums" || true
)
if [ -n "$foreign" ]; then
    printf 'exported, but no part of a public family:\n%s\n' "$foreign"
    exit 1
fi
