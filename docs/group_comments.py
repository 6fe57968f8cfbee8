#!/usr/bin/env python3
"""Tells Doxygen what the comments of the headers mean.

A comment stands for the declaration below it and for the overloads that follow without a comment of their own; between
`/// @{` and `/// @}` the first comment stands for every declaration. Here it is repeated for each. What needs no words,
such as copying, destruction and the types of an iterator, what an internal comment with two strokes speaks of, and what
is private, is left out of the reference.
"""
import re
import sys

PLAIN = re.compile(
    r"(virtual )?~|.*= (default|delete);$|(\w+::)*\w+ & operator=\(|using \w+::|friend |extern template |using "
    r"(iterator_category|value_type|difference_type|pointer|reference) =|(?P<own>\w+)\((\w+::)*(?P=own) const &( \w+)?\);$")
SCOPE = re.compile(r"(class|struct|enum|namespace|extern \"C\+\+\")\b(?!.*;$)|(public|protected|private):$|[#}]")


def is_scope(lines, at):
    return SCOPE.match(lines[at + lines[at].strip().startswith("template")].strip())


def depth(line):
    code = re.sub(r"//.*|\"(\\.|[^\"])*\"|'(\\.|[^'])*'", "", line)
    return sum(code.count(c) for c in "({") - sum(code.count(c) for c in ")}")


def declaration(lines, at):
    """The end of the declaration that begins in this line, as far as its brackets and its semicolon go."""
    end, brackets = at, depth(lines[at])
    while end + 1 < len(lines) and (brackets > 0 or not re.search(r"[;}]\s*(//.*)?$", lines[end])):
        end += 1
        brackets += depth(lines[end])
    return end + 1


def declared_name(text):
    found = re.search(r"(operator\W+|\w+)\(|(\w+)(?: = .*|\{.*)?;", re.sub(r"^template <.*?> ", "", text))
    return found and (found[1] or found[2])


def main(path):
    lines = open(path, encoding="utf-8").read().split("\n")
    # The comment that stands for what follows, the name that it was last put to, and whether in a group.
    comment, name, group, internal, at = [], None, False, False, 0
    while at < len(lines):
        text = lines[at].strip()
        end = at + 1
        shown = []
        if text == "private:":
            outer = re.match(r" *", lines[at])[0]
            while not re.match(outer + r"(public:|protected:|\};)", lines[end]):
                end += 1
        elif text in ("/// @{", "/// @}"):
            comment, group = [], text.endswith("{")
        elif text.startswith("///"):
            while lines[end].strip().startswith("///"):
                end += 1
            comment, name, internal = lines[at:end], None, False
        elif text == "" or text.startswith("//") or is_scope(lines, at):
            shown = (comment if name is None else []) + [lines[at]]
            if comment and text.startswith("namespace"):
                # Several headers speak to the page of a family, each under its name.
                shown.insert(0, f"/// @par &lt;{path[path.rindex('socle/'):]}&gt;")
            comment, name = ([], None) if not group else (comment, name)
            internal = text.startswith("//")
        else:
            end = declaration(lines, at)
            declared = lines[at:end]
            of = declared_name(" ".join(line.strip() for line in declared))
            fresh = name is None
            told = comment if fresh or group or name == of else []
            plain = PLAIN.match(text) and not (fresh and comment)
            if plain or internal and not told and "///<" not in declared[-1]:
                shown = ["/// @cond"] + declared + ["/// @endcond"]
            else:
                shown = told + declared
                comment, name = told, of or ""
        print("".join(line + "\n" for line in shown), end="")
        at = end


main(sys.argv[1])
