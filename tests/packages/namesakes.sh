#!/usr/bin/env bash
# usage: tests/packages/namesakes.sh <folder>
# Makes headers of a client's own there, named as the library's are below socle/. What means the library's and finds
# these does not compile.
set -euo pipefail
folder=$(realpath -m "$1")
cd "$(dirname "${BASH_SOURCE[0]}")/../../socle"
find . -name '*.h' | while read -r header; do
    mkdir -p "$folder/$(dirname "$header")"
    echo '#error a header of the client, where the library meant one of its own' >"$folder/$header"
done
