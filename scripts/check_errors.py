#!/usr/bin/env python3
"""The text of every error code is the sentence that documents it, and no code has two texts.

usage: check_errors.py include/zel_cc/errors.h
"""

import re
import sys

from findings import report


def sentence(text):
    """A docstring as zel_error_text prints it: no full stop, no capital unless it is a name."""
    text = " ".join(text.split()).rstrip(".")
    second = text[1:2]
    return text[0].lower() + text[1:] if second.islower() or second == " " else text


def main():
    source = open(sys.argv[1]).read()
    enum = re.search(r"enum ZEL_ERROR \{(.*?)\};", source, re.S).group(1)
    entry = re.compile(r"/\*\*(.*?)\*/\s*(ZEL_\w+) = (-?\d+)", re.S)
    documented = [(name, int(value), sentence(re.sub(r"\n\s*\*", " ", text)))
                  for text, name, value in entry.findall(enum)]
    table = re.search(r"texts\[\] = \{(.*?)\n  \};", source, re.S).group(1)
    rows = re.findall(r'\{(ZEL_\w+),\s*"(.*?)"\}', table, re.S)
    texts = dict(rows)

    problems = []
    if len(documented) != len(re.findall(r"ZEL_\w+ =", enum)):
        problems.append("an enumerator has no docstring")
    if len(texts) != len(rows):
        problems.append("a code stands twice in the table of texts")
    seen = set()
    for name, value, text in documented:
        if value in seen:  # a second name of the same code
            if name in texts:
                problems.append(f"{name} repeats the text of another name of {value}")
            continue
        seen.add(value)
        expected = "done" if value == 0 else text
        if texts.pop(name, None) != expected:
            problems.append(f'{name}: the text should be "{expected}"')
    problems += [f"{name} has a text but is no code" for name in texts]

    return report("check_errors", f"{len(seen)} codes", problems)


if __name__ == "__main__":
    sys.exit(main())
