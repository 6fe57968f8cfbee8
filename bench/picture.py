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
            if (peer or limit) and (cells[1] not in found or length((peer, limit)) < length(found[cells[1]])):
                found[cells[1]] = (peer, limit)
    return found


def length(ratios):
    """What rows are sorted by: against the best peer, or where there is none, against the limit."""
    return ratios[0] or ratios[1]


now = rows(sys.argv[1])
before = rows(sys.argv[2]) if len(sys.argv) > 2 else {}

# Rows that begin in one of these ways stand together, in this order, under the words behind it; all others come last.
GROUPS = (("job:", "whole jobs"), ("walk|scan|remove|path:|load", "files and folders"),
          ("byte |lines|copies|unread|big-endian|wz|p2", "streams and integers"),
          ("UTF|page", "text in bytes"), ("", "paths, patterns, numbers and checks"))


def group(row):
    return next(i for i, (starts, _) in enumerate(GROUPS) if row.startswith(tuple(starts.split("|"))))


def columns(order):
    """Cuts the rows in two, between groups, as evenly as that goes."""
    starts = [i for i in range(1, len(order)) if group(order[i]) != group(order[i - 1])]
    middle = min(starts, key=lambda i: abs(2 * i - len(order)), default=len(order))
    return order[:middle], order[middle:]


def lines(order):
    """The rows from the top down, each group under its title."""
    for i, row in enumerate(order):
        if i == 0 or group(row) != group(order[i - 1]):
            yield GROUPS[group(row)][1], None
        yield row.removeprefix("job: "), row


def draw(axes, entries):
    axes.axvline(1, color="#d0d7de")
    for y, (_, row) in enumerate(entries):
        if row is None:
            continue
        peer, limit = now[row]
        if row in before and peer and before[row][0]:
            axes.plot([before[row][0], peer], [y, y], color=OURS, linewidth=0.8)
            axes.plot(before[row][0], y, "o", markersize=5, markerfacecolor="white", color=OURS)
        if limit:
            axes.plot(limit, y, "|", markersize=7, color=LIMIT)
        if peer:
            axes.plot(peer, y, "o", markersize=5, color=OURS)
    axes.set_xscale("log", base=2)
    axes.xaxis.set_major_formatter("{x:g}")
    axes.set_yticks(range(len(entries)), [name for name, _ in entries], fontsize=8)
    for label, (_, row) in zip(axes.get_yticklabels(), entries):
        if row is None:
            label.set_fontweight("bold")
    axes.tick_params(axis="y", length=0)
    for side in ("top", "right", "left"):
        axes.spines[side].set_visible(False)


order = sorted(now, key=lambda row: (group(row), length(now[row])))
halves = [list(lines(half)) for half in columns(order)]
height = max(len(half) for half in halves)
figure, panels = pyplot.subplots(1, 2, figsize=(13, 1.2 + 0.2 * height), sharex=True)
for axes, half in zip(panels, halves):
    draw(axes, half)
    axes.set_ylim(height, -1)
axes = panels[1]
axes.plot([], [], "o", color=OURS, label="times the best peer: left of 1 is faster")
if before:
    axes.plot([], [], "o", markerfacecolor="white", color=OURS, label="the same, before")
axes.plot([], [], "|", color=LIMIT, label="times the limit")
figure.legend(loc="upper center", ncols=3, fontsize=8, frameon=False)
figure.tight_layout(rect=(0, 0, 1, 1 - 0.3 / figure.get_figheight()))
figure.savefig(sys.stdout.buffer, metadata={"Date": None})
