#!/usr/bin/env python3
"""Sums up gcov's counts: executed lines of each file, and of each room.

usage: coverage.py OBJECT_DIR
"""

import collections
import json
import os
import pathlib
import subprocess
import sys


def main():
    objects = pathlib.Path(sys.argv[1])
    counts = collections.defaultdict(dict)  # file -> line -> executions
    for data in sorted(objects.rglob("*.gcda")):
        text = subprocess.run(["gcov", "--json-format", "--stdout", str(data)], check=True,
                              capture_output=True, text=True).stdout
        for report in text.splitlines():
            for file in json.loads(report)["files"]:
                name = os.path.relpath(file["file"])
                if name.startswith(("..", "build/")):
                    continue
                lines = counts[name]
                for line in file["lines"]:
                    number = line["line_number"]
                    lines[number] = lines.get(number, 0) + line["count"]
    if not counts:
        sys.exit(f"coverage: no counts below {objects}")

    rooms = collections.defaultdict(lambda: [0, 0])
    for name, lines in sorted(counts.items()):
        missed = [number for number, count in sorted(lines.items()) if count == 0]
        for total in (rooms[name.split("/")[0]], rooms["all"]):
            total[0] += len(lines) - len(missed)
            total[1] += len(lines)
        shown = " ".join(map(str, missed[:12])) + (" ..." if len(missed) > 12 else "")
        print(f"{100 * (len(lines) - len(missed)) / len(lines):6.1f} %  {name}  {shown}")
    print()
    for room, (hit, total) in rooms.items():
        print(f"{100 * hit / total:6.1f} %  {room:10} {hit} of {total} lines")


if __name__ == "__main__":
    main()
