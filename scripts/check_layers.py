#!/usr/bin/env python3
"""Which room may include what, and how long a source may be. The rules are in docs/architecture.md.

usage: check_layers.py [REPOSITORY]
"""

import pathlib
import re
import sys

from findings import report

ROOMS = ("core", "hash", "cipher", "mint", "rng", "pk", "keyshare")
ISAS = ("shani", "aesni", "avx2", "bmi2", "adx", "vaes", "pclmul", "ssse3")
INTRINSICS = {"immintrin.h", "cpuid.h", "x86intrin.h"}
# Standard headers that need more of the C++ runtime than its headers.
RUNTIME = {"string", "vector", "map", "set", "unordered_map", "memory", "functional", "iostream",
           "fstream", "sstream", "mutex", "thread", "stdexcept", "exception", "regex", "future",
           "condition_variable", "filesystem", "new", "typeinfo", "deque", "list", "locale"}
# Internal headers that a room holds out to the rooms above it.
HELD_OUT = {"cipher/algorithms.hpp", "hash/algorithms.hpp", "hash/blocks.hpp",
            "hash/direct.hpp", "hash/lanes.hpp", "mint/public_exp.hpp",
            "mint/secret.hpp", "mint/secret_crt.hpp", "mint/secret_exp.hpp"}
MAX_LINES = 500


def isa_of(path):
    """The instruction set that a file is for, from its name; empty for a portable file."""
    return next((isa for isa in ISAS if path.stem.endswith("_" + isa)), "")


def why_not(path, room, header, quoted):
    """Why `path`, in `room`, may not include `header`; empty when it may."""
    if room == "include":
        if quoted:
            return "" if re.fullmatch(r"zel_cc/\w+\.h", header) else "own parts only"
        return "" if header in ("stddef.h", "stdint.h", "stdio.h") else "C headers of the list only"
    if room == "tools":
        inside = quoted and re.match(r"(tests|bench|" + "|".join(ROOMS) + ")/", header)
        return "the tool knows the public headers and base/ alone" if inside else ""
    if not quoted:
        if header.startswith("zel_cc"):
            return "public headers are included with quotes"
        if header in INTRINSICS and not isa_of(path) and path.name != "cpu.cpp":
            return "intrinsics belong into a file named after an instruction set"
        return "needs the C++ runtime" if header in RUNTIME else ""
    if header.startswith("base/"):
        return ""
    if room == "base":
        return "base knows no room above it"
    if re.fullmatch(r"zel_cc(/\w+)?\.h", header):
        return ""
    if header == "core/gate.hpp":
        if room == "mint":
            return "mint does not read the module state"
        return "a bulk routine has no gate of its own" if isa_of(path) else ""
    if path.name.startswith("selftest_") and not header.startswith("core/"):
        names = header.endswith("/algorithms.hpp")  # of descriptors, whatever a program does to them
        return "" if names else "a self-test calls exported services only"
    if header.startswith(room + "/") or header in HELD_OUT:
        return ""
    return "across rooms only public headers are included"


def main():
    top = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ".")
    problems, files, includes = [], 0, 0
    for room in ("include", "base", *ROOMS, "tools"):
        for path in sorted((top / room).rglob("*.[ch]*")):
            if path.suffix not in (".c", ".h", ".cpp", ".hpp"):
                continue
            files += 1
            text = path.read_text()
            where = path.relative_to(top)
            for match in re.finditer(r'^\s*#\s*include\s*([<"])([^>"]+)', text, re.M):
                includes += 1
                reason = why_not(path, room, match.group(2), match.group(1) == '"')
                if reason:
                    line = text.count("\n", 0, match.start()) + 1
                    problems.append(f"{where}:{line}: {match.group(2)}: {reason}")
            tables = path.stem.endswith("_tables") or path.stem == "small_primes"
            if not tables and text.count("\n") > MAX_LINES:
                problems.append(f"{where}: {text.count(chr(10))} lines, at most {MAX_LINES}")
    if not includes:
        problems.append("found no source")
    return report("check_layers", f"{includes} includes in {files} files", problems)


if __name__ == "__main__":
    sys.exit(main())
