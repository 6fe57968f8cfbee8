"""Draws the rows of bench/RESULTS.md as a picture (SVG) on standard output: how long the library takes in units of the
best peer, and of the limit.

usage: picture.py <page> [<the page of before>]
"""

import sys

import matplotlib

matplotlib.use("svg")
matplotlib.rcParams["svg.fonttype"] = "none"
matplotlib.rcParams["svg.hashsalt"] = "the same picture for the same page"
from matplotlib import pyplot

OURS, LIMIT = "#1f6feb", "#8c959f"


def rows(path):
    """row -> (times the best peer, times the limit) of the fastest of ours; what a row lacks is None."""
    found = {}
    with open(path, encoding="utf-8") as page:
        for line in page:
            cells = [cell.strip() for cell in line.replace("\\*", "*").split("|")]
            if len(cells) != 9 or not cells[2].startswith("**socle"):
                continue
            limit, peer = (float(cells[i]) if cells[i] else None for i in (4, 5))
            if peer and (cells[1] not in found or peer < found[cells[1]][0]):
                found[cells[1]] = (peer, limit)
    return found


now = rows(sys.argv[1])
before = rows(sys.argv[2]) if len(sys.argv) > 2 else {}
order = sorted(now, key=lambda row: now[row][0], reverse=True)

figure, axes = pyplot.subplots(figsize=(8, 1 + 0.19 * len(order)))
axes.axvline(1, color="#d0d7de")
for y, row in enumerate(order):
    peer, limit = now[row]
    if row in before:
        axes.plot([before[row][0], peer], [y, y], color=OURS, linewidth=0.8)
        axes.plot(before[row][0], y, "o", markersize=5, markerfacecolor="white", color=OURS)
    if limit:
        axes.plot(limit, y, "|", markersize=7, color=LIMIT)
    axes.plot(peer, y, "o", markersize=5, color=OURS)
axes.plot([], [], "o", color=OURS, label="times the best peer: left of 1 is faster")
if before:
    axes.plot([], [], "o", markerfacecolor="white", color=OURS, label="the same, before")
axes.plot([], [], "|", color=LIMIT, label="times the limit")
axes.set_xscale("log", base=2)
axes.xaxis.set_major_formatter("{x:g}")
axes.set_yticks(range(len(order)), order, fontsize=7)
axes.set_ylim(-1, len(order))
axes.tick_params(axis="y", length=0)
for side in ("top", "right", "left"):
    axes.spines[side].set_visible(False)
axes.legend(loc="upper right", fontsize=7, frameon=False)
figure.tight_layout()
figure.savefig(sys.stdout.buffer, metadata={"Date": None})
