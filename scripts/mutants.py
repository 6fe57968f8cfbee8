"""usage: mutants.py <folder of sources> <number> <seed>
Lists that many one-line faults, the same ones for the same sources and seed, a line for each, separated by tabs: file,
line, what stands there, what is to stand there."""
import pathlib
import random
import re
import sys

SWAPS = {
    " < ": " <= ", " <= ": " < ", " > ": " >= ", " >= ": " > ", " == ": " != ", " != ": " == ", " && ": " || ",
    " || ": " && ", " + ": " - ", " - ": " + ", " | ": " & ", " & ": " | ", " << ": " >> ", "++": "--",
    " += ": " -= ", "true": "false", "false": "true", "std::min": "std::max", "std::max": "std::min",
}
STATEMENT = re.compile(r"^ {4,}[\w:.>\[\]*+-]+(\(.*\)| [+|&-]?= .*);$")
DECLARES = re.compile(r"^\s*(return|throw|break|continue|using|typedef|static|constexpr|auto|delete)\b|^\s*[\w:<>]+ [&*]?\w+ = ")


def without_texts(line):
    """The line with blanks for its texts and comments, so that places in it stay the same."""
    blank = lambda found: " " * len(found[0])
    return re.sub(r"//.*", blank, re.sub(r'"(\\.|[^"\\])*"|\'(\\.|[^\'\\])*\'', blank, line))


def faults_in(line):
    """All changed forms of a line."""
    code = without_texts(line)
    if not code.strip() or code.lstrip().startswith(("#", "template", "namespace", "static_assert", "class ", "struct ")):
        return
    for old, new in SWAPS.items():
        pattern = re.escape(old) if not old[0].isalpha() else rf"\b{re.escape(old)}\b"
        for found in re.finditer(pattern, code):
            yield line[: found.start()] + new + line[found.end() :]
    for found in re.finditer(r"(?<![\w.'])(0x[0-9A-Fa-f]+|[1-9]\d*|0)(?![\w.'])", code):
        number = int(found[0], 0) + 1
        yield line[: found.start()] + (hex(number) if "x" in found[0] else str(number)) + line[found.end() :]
    for found in re.finditer(r"(?<=[(, ])(\w+), (\w+)(?=[,)])", code):
        if found[1] != found[2]:
            yield line[: found.start()] + f"{found[2]}, {found[1]}" + line[found.end() :]
    for found in re.finditer(r"\b(if|while) \((.*)\)(?= \{$|$)", code):
        yield line[: found.start()] + f"{found[1]} (!({line[found.start(2) : found.end(2)]}))" + line[found.end() :]
    if STATEMENT.match(code) and not DECLARES.match(code) and code.count("(") == code.count(")"):
        yield re.match(r"\s*", line)[0] + ";"


def main(folder, number, seed):
    places = []
    for path in sorted(pathlib.Path(folder).rglob("*.cpp")):
        if "win32" in path.parts:
            continue
        for at, line in enumerate(path.read_text().split("\n"), 1):
            if faults := list(faults_in(line)):
                places.append((path, at, line, faults))
    chance = random.Random(seed)
    for path, at, line, faults in chance.sample(places, number):
        print(path, at, line, chance.choice(faults), sep="\t")


main(sys.argv[1], int(sys.argv[2]), int(sys.argv[3]))
