#!/usr/bin/env python3
"""usage: messages.py <top of the tree>

Compares the table of messages with the sources: each has to know what the other says.
"""
import pathlib
import re
import sys

top = pathlib.Path(sys.argv[1])
families = ["basic", "qpthr", "un", "nio", "stream", "any", "io", "command", "library"]
sources = "".join(path.read_text(encoding="utf-8") for family in families
                  for path in (top / "socle" / family).rglob("*") if path.suffix in (".h", ".cpp"))
code = re.sub(r"^\s*//.*$", "", sources, flags=re.M)
raised = set(re.findall(r"(?:throw (?:\w+::)*\w*exception\(|throw std::logic_error\(|raise_system_error\([^\";]*|"
                        r"\b(?:raise|fail|refuse)\()\"([^\"\\]+)", code))
listed = set(re.findall(r"\"([^\"]+)\"", (top / "docs/messages.md").read_text(encoding="utf-8")))

unlisted = sorted(words for words in raised if not any(words.strip() in known for known in listed))
unknown = sorted(words for words in listed if f'"{words}' not in code and f'{words}"' not in code)
unlisted = [words for words in unlisted if "::" not in words]
for words in unlisted:
    print("not in the table:", words)
for words in unknown:
    print("not in the sources:", words)
print(len(raised), "messages in the sources")
sys.exit(1 if unlisted or unknown or not raised else 0)
