#!/usr/bin/env python3
"""usage: layers.py <top of the tree>

Holds the includes of the library to docs/layers.dot: a family includes only what its arrows lead to, and every arrow
stands for an include.
"""
import pathlib
import re
import sys

top = pathlib.Path(sys.argv[1])
arrows = re.findall(r"^ *(\w+) -> (\w+);$", (top / "docs/layers.dot").read_text(encoding="utf-8"), re.M)


def below(family):
    return {lower for upper, lower in arrows if upper == family} | {
        lowest for upper, lower in arrows if upper == family for lowest in below(lower)}


includes = {}
for path in sorted((top / "socle").glob("*/**/*.[hc]*")):
    family = path.relative_to(top / "socle").parts[0]
    for other in re.findall(r"^#include \"socle/(\w+)/", path.read_text(encoding="utf-8"), re.M):
        includes.setdefault((family, other), path)

faults = [f"{path.relative_to(top)} includes {other}, which docs/layers.dot does not show below {family}"
          for (family, other), path in includes.items() if other != family and other not in below(family)]
faults += [f"docs/layers.dot: nothing in {upper} includes {lower}" for upper, lower in arrows
           if (upper, lower) not in includes]
print("\n".join(faults or [f"{len(includes)} pairs of families, {len(arrows)} arrows"]))
sys.exit(1 if faults or not arrows or not includes else 0)
