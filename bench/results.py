"""Turns what socle_bench and socle_peak measured into the page bench/RESULTS.md, on standard output.

usage: results.py <folder with full.json, tenth.json, peak and catalog> <load before> <load after> <compiler>
"""

import datetime
import json
import os
import sys

TIE = 1.3
UNKNOWN = "the cause is not known yet"
HERE = os.path.dirname(os.path.abspath(__file__))
# Peers that the distribution may lack, and how many rows they stand in otherwise.
PEERS = {"protobuf": "integers and wz", "boost": "CRC and splitting", "Boost.Iostreams": "files", "absl": "splitting",
         "ICU": "UTF-8 and code pages", "Qt": "UTF-8", "QFile": "files", "QDataStream": "integers",
         "Poco": "files, integers, wz and splitting", "kj": "single bytes"}


def medians(path):
    """row -> competitor -> (nanoseconds an item, bytes allocated an item or None), rows by name."""
    rows = {}
    with open(path, encoding="utf-8") as file:
        runs = json.load(file)["benchmarks"]
    for run in runs:
        if run.get("aggregate_name", "median") != "median" or "items_per_second" not in run:
            continue
        row, _, who = run["run_name"].removesuffix("/manual_time").partition("/")
        rows.setdefault(row, {})[who] = (1e9 / run["items_per_second"], run.get("allocated"))
    return dict(sorted(rows.items()))


def aims():
    with open(os.path.join(HERE, "aims.txt"), encoding="utf-8") as file:
        for line in file:
            if line.strip() and not line.startswith("#"):
                fields = [field.strip() for field in line.split(" | ")]
                row, who, aim = fields[:3]
                factor, _, other = aim.partition(" ")
                yield row, who, float(factor), other, fields[3] if len(fields) > 3 else UNKNOWN


def find(competitors, start):
    return next((who for who in competitors if who.startswith(start)), None)


def is_ours(who):
    return who.startswith("socle")


def processor():
    with open("/proc/cpuinfo", encoding="utf-8") as file:
        models = [line.split(":", 1)[1].strip() for line in file if line.startswith("model name")]
    return f"{len(models)} × {models[0]}" if models else f"{os.cpu_count()} unknown processors"


def nanoseconds(value):
    return f"{value:.2f}" if value < 100 else f"{value:,.0f}"


def table(full, tenth):
    print("| row | competitor | ns an item | × limit | × best peer | × at a tenth | bytes allocated |")
    print("|---|---|---:|---:|---:|---:|---:|")
    for row, competitors in full.items():
        limit = find(competitors, "limit:")
        peers = [time for who, (time, _) in competitors.items() if not is_ours(who) and not who.startswith("limit")]
        for who, (time, allocated) in sorted(competitors.items(), key=lambda entry: entry[1][0]):
            against_limit = f"{time / competitors[limit][0]:.2f}" if limit else ""
            against_peer = f"{time / min(peers):.2f}" if peers and is_ours(who) else ""
            small = tenth.get(row, {}).get(who)
            growth = f"{time / small[0]:.2f}" if small else ""
            heap = f"{allocated:.1f}" if allocated is not None else ""
            name = f"**{who}**" if is_ours(who) else who
            cells = (row, name, nanoseconds(time), against_limit, against_peer, growth, heap)
            print("| " + " | ".join(cells).replace("*.", "\\*.").replace("*a*e\\*", "\\*a\\*e\\*") + " |")


def judge(full):
    """The lines on aims that are met, on those that are not, and on rows that are behind a peer by more than a tie."""
    met, missed, behind = [], [], []
    causes = {}
    for row, who, factor, other, cause in aims():
        causes.setdefault(row, cause)
        competitors = full.get(row, {})
        absolute = other in ("ns", "ms more")
        unit = find(competitors, other if other and not absolute else "limit:")
        if who not in competitors or (unit is None and other != "ns"):
            missed.append(f"- {row}, {who}: not measured")
            continue
        time = competitors[who][0]
        if other == "ns":
            measured, words = time, "ns"
        elif other == "ms more":
            measured, words = (time - competitors[unit][0]) / 1e6, "ms more than the limit"
        else:
            measured, words = time / competitors[unit][0], f"times {unit}"
        text = f"- {row}, {who}: {measured:.2f} {words}, the aim is {factor:g}"
        if measured <= factor:
            met.append(text)
        else:
            missed.append(f"{text}: {cause}")
    for row, competitors in full.items():
        ours = [time for who, (time, _) in competitors.items() if is_ours(who)]
        peers = [(time, who) for who, (time, _) in competitors.items() if not is_ours(who) and not who.startswith("limit")]
        if not ours or not peers:
            continue
        measured = min(ours) / min(peers)[0]
        if measured > TIE:
            behind.append(f"- {row}: {measured:.2f} times {min(peers)[1]}: {causes.get(row, UNKNOWN)}")
        elif row not in causes:
            met.append(f"- {row}: {measured:.2f} times {min(peers)[1]}")
    return met, missed, behind


def lines_of(folder, name):
    """The fields of each line of what a script has measured."""
    with open(os.path.join(folder, name), encoding="utf-8") as file:
        return [line.strip().split("|") for line in file]


def programs(lines):
    """Prints the tables on examples/catalog. Returns its lines on aims that are met, and on those that are not."""
    met, missed = [], []

    def judge_one(text, measured, most):
        (met if measured <= float(most) else missed).append(f"- {text}, the aim is {most}")

    print("Seconds, the best of three, with what is read in memory and what is written brought to the disk.\n")
    print("| tree | task | catalog | beside it | | ratio | aim |\n|---|---|---:|---|---:|---:|---:|")
    for _, tree, task, ours, peer, theirs, most in (line for line in lines if line[0] == "ratio"):
        ratio = float(ours) / float(theirs)
        print(f"| {tree} | {task} | {ours} | `{peer}` | {theirs} | {ratio:.1f} | {most} |")
        judge_one(f"examples/catalog, {tree}, {task}: {ratio:.1f} times {peer}", ratio, most)
    print("\n| most memory | MiB | aim |\n|---|---:|---:|")
    for _, task, used, most in (line for line in lines if line[0] == "memory"):
        print(f"| {task} | {used} | {most} |")
        judge_one(f"examples/catalog, {task}: {used} MiB", float(used), most)
    print("\n| task | calls to the host a file, as `strace` counts them |\n|---|---|")
    for _, task, calls in (line for line in lines if line[0] == "calls"):
        print(f"| {task} | {calls} |")
    return met, missed


def main():
    folder, before, after, compiler = sys.argv[1:]
    full = medians(os.path.join(folder, "full.json"))
    tenth = medians(os.path.join(folder, "tenth.json"))
    met, missed, behind = judge(full)

    print("# How fast the library is\n")
    print("`scripts/bench.sh` wrote this page: do not edit it, but `bench/aims.txt`.\n")
    print(f"- {datetime.date.today().isoformat()}; {processor()}; {compiler}; optimised as by the preset `bench`.")
    print(f"- The machine's load was {before} before the run and {after} after it, the run itself being 1.")
    print("- Times are processor time, for loading that of the process that is started: medians of interleaved runs.")
    print("- \"× at a tenth\" sets the time of an item beside that in a second run, with a tenth of every size: 1 is a cost")
    print("  that grows with the size, 10 one that grows with its square. \"Bytes allocated\" is what was asked of the heap")
    print("  for an item, where a row allocates.")
    absent = [f"{peer} ({rows})" for peer, rows in PEERS.items()
              if not any(find(competitors, peer) for competitors in full.values())]
    if absent:
        print(f"- Not measured, as it is not installed: {', '.join(absent)}.")
    print("\n## Rows\n")
    table(full, tenth)
    print("\n## Peak memory\n")
    print("What one task adds to the resident memory of a process.\n")
    print("| task | files or bytes | KiB |\n|---|---:|---:|")
    for task, numbers in lines_of(folder, "peak"):
        count, kib = numbers.split()
        print(f"| {task} | {int(count):,} | {int(kib):,} |")
    print("\n## The program `catalog` beside the programs that people use\n")
    of_programs = programs(lines_of(folder, "catalog"))
    met += of_programs[0]
    missed += of_programs[1]
    print(f"\n## Aims missed: {len(missed)} of {len(missed) + len(met)}\n")
    print("\n".join(missed) if missed else "None.")
    print(f"\n## Behind the best peer by more than a tie, {TIE} times: {len(behind)} rows\n")
    print("\n".join(behind) if behind else "None.")
    print("\n## Aims met\n")
    print("\n".join(met))


if __name__ == "__main__":
    main()
