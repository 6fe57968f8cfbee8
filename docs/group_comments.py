#!/usr/bin/env python3
"""Tells Doxygen what the comments of the headers mean.

A comment stands for every declaration below it up to an empty line; here it is repeated for each. What needs no words,
such as copying, destruction and the types of an iterator, and what an internal comment with two strokes speaks of, is
left out of the reference.
"""
import re
import sys

PLAIN = re.compile(
    r"(virtual )?~|.*= (default|delete);$|(\w+::)*\w+ & operator=\(|using \w+::|friend |extern template "
    r"|using (iterator_category|value_type|difference_type|pointer|reference) =")
COPY = re.compile(r"(?:explicit )?(\w+)\((?:\w+::)*\1 const &( \w+)?\);$")
SCOPE = re.compile(r"(class|struct|enum|namespace|extern \"C\+\+\")\b")


def depth(line):
    code = re.sub(r"//.*|\"(\\.|[^\"])*\"|'(\\.|[^'])*'", "", line)
    return sum(code.count(c) for c in "({") - sum(code.count(c) for c in ")}")


def main(path):
    lines = open(path, encoding="utf-8").read().split("\n")
    comment, fresh, internal, at = [], False, False, 0
    while at < len(lines):
        line = lines[at]
        text = line.strip()
        if text.startswith("///"):
            if not fresh:
                comment = []
            comment.append(line)
            fresh, internal = True, False
            print(line)
        elif text.startswith("//"):
            comment, fresh, internal = [], False, True
            print(line)
        elif (text == "" or text in ("public:", "protected:", "private:", "};", "}") or text.startswith(("#", "}"))
              or SCOPE.match(text) and not text.endswith(";")
              or text.startswith("template") and SCOPE.match(lines[at + 1].strip())):
            comment, fresh, internal = [], False, False
            print(line)
        else:
            # A whole declaration, as far as its brackets and its end go.
            end, open_brackets = at, 0
            while True:
                open_brackets += depth(lines[end])
                if open_brackets <= 0 and re.search(r"[;}]\s*(//.*)?$", lines[end]):
                    break
                if end + 1 == len(lines):
                    break
                end += 1
            declared = lines[at:end + 1]
            hidden = internal or PLAIN.match(text) or COPY.match(text) or SCOPE.match(text) and not comment
            if hidden and not fresh:
                print("/// @cond")
            elif comment and not fresh and "///<" not in text:
                print("\n".join(comment))
            print("\n".join(declared))
            if hidden and not fresh:
                print("/// @endcond")
            fresh = False
            at = end
        at += 1


main(sys.argv[1])
