#!/usr/bin/env bash
# Draws the pictures of the documents anew from the text beside them.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/packages.sh
need graphviz=dot
for text in docs/*.dot; do
    dot -Tsvg "$text" -o "${text%.dot}.svg"
done
