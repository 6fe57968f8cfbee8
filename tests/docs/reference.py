#!/usr/bin/env python3
"""usage: reference.py <folder of the reference's pages> <folder of the headers> <compiler flag>...

Checks the pages that Doxygen has made: every link leads somewhere, every class is listed on the page of its family, the
include line of every class compiles and defines that class, and no page says "here" of another class.
"""
import html
import pathlib
import re
import subprocess
import sys
import urllib.parse

folder, headers, flags = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]), sys.argv[3:]
pages = {path.name: path.read_text(encoding="utf-8") for path in folder.glob("*.html")}
faults = []


def text(markup):
    return html.unescape(re.sub(r"<[^>]*>", "", markup))


anchors = {name: set(re.findall(r"\b(?:id|name)=\"([^\"]+)\"", page)) for name, page in pages.items()}
links = 0
for name, page in pages.items():
    for link in re.findall(r"<(?:a|link|img|script|object|iframe)\b[^>]*?\b(?:href|src|data)=\"([^\"]+)\"", page):
        target, _, anchor = urllib.parse.unquote(html.unescape(link)).partition("#")
        if re.match(r"(https?|mailto|javascript|data):", link):
            continue
        links += 1
        if target and not (folder / target).is_file():
            faults.append(f"{name}: nothing lies at {link}")
        elif anchor and anchor not in anchors.get(target or name, (anchor,)):
            faults.append(f"{name}: {link} has no such place")

includes, classes = set(), []
for name, page in pages.items():
    title = re.search(r"<div class=\"title\">(.*?)</div>", page, re.S)
    kind = title and re.fullmatch(r"(.+) (Class|Struct)(?: Template)? Reference", text(title[1]).strip())
    if not kind or name.endswith("-members.html"):
        continue
    classes.append(kind[1].replace("< T >", "<int>"))
    include = re.search(r"#include &lt;(.*?)&gt;", page)
    header = text(include[1]) if include else ""
    includes.add(header)
    own = re.sub(r"<.*", "", kind[1]).rpartition("::")[2]
    if not (headers / header).is_file() or not re.search(
            rf"(class|struct) (SOCLE_API )?(\w+::)?{own}\b[^;]*\{{", (headers / header).read_text(encoding="utf-8")):
        faults.append(f"{name}: its class is not in <{header}>")
    family = re.match(r"(?:io::(?:mac|win32|unix)|stream::random|\w+)(?=::)", kind[1])[0]
    if f'href="{name}"' not in pages.get(f"namespace{family.replace('::', '_1_1')}.html", ""):
        faults.append(f"{kind[1]} is not on the page of {family}")
for name, page in pages.items():
    if re.match(r"(class|struct|namespace)(?!s\.|es\.|members)", name):
        faults += [f"{name}: says \"{found}\"" for found in re.findall(r".*\b[Hh]ere\b.*", text(page))]
    for header in re.findall(r"<code>&lt;(socle/[^&]+)&gt;", page):
        includes.add(header)

program = "".join(f"#include <{header}>\n" for header in sorted(includes)) + "".join(
    f"static_assert(sizeof({named}) > 0);\n" for named in classes)
run = subprocess.run(["g++", "-std=c++20", "-fsyntax-only", "-x", "c++", "-", f"-I{headers}", *flags], input=program,
                     text=True, capture_output=True)
if run.returncode:
    faults.append(run.stderr)
if not classes or not links:
    faults.append(f"these are no pages of the reference: {folder}")
print("\n".join(faults or [f"{links} links, {len(classes)} classes and {len(includes)} headers of the reference hold"]))
sys.exit(1 if faults else 0)
