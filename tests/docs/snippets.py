#!/usr/bin/env python3
"""usage: snippets.py <folder> <document>...

Writes every C++ program of the documents into the folder, with the output that stands below it, and prints their names.
"""
import pathlib
import re
import sys

folder = pathlib.Path(sys.argv[1])
for document in map(pathlib.Path, sys.argv[2:]):
    blocks = re.findall(r"^```cpp\n(.*?)^```\n(?:```text\n(.*?)^```\n)?", document.read_text(encoding="utf-8"), re.M | re.S)
    if not blocks:
        sys.exit(f"no programs in {document}")
    for number, (program, output) in enumerate(blocks, 1):
        name = f"{document.stem}_{number}"
        if not output:
            sys.exit(f"{name} does not say what it prints")
        (folder / f"{name}.cpp").write_text(program, encoding="utf-8")
        (folder / f"{name}.txt").write_text(output, encoding="utf-8")
        print(name)
