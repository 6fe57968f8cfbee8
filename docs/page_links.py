#!/usr/bin/env python3
"""usage: page_links.py <top of the tree> <page>

Tells Doxygen where the links of a page lead: those to a file of the tree that is no page start at its top, where the
reference has a copy of it.
"""
import pathlib
import re
import sys

top, page = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])


def from_top(match):
    target = (page.parent / match[1]).resolve()
    if not target.is_file() or target.suffix in (".md", ".svg"):
        return match[0]
    return f"]({target.relative_to(top)})"


print(re.sub(r"\]\(([^):#]+)\)", from_top, page.read_text(encoding="utf-8")), end="")
