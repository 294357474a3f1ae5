#!/usr/bin/env python3
"""What the shared library shows to the world, read off the built file.

The exported names, the names in cmake/exports.map and the names that the headers declare are the
same; the library needs libc alone; nothing of ours runs when it is loaded.

usage: check_exports.py LIBRARY EXPORTS_MAP INCLUDE_DIR COMPILER
"""

import os
import re
import subprocess
import sys

from findings import report

# What the C compiler's own start-up objects put into every shared library.
RUNTIME_HOOKS = {".init_array": {"frame_dummy"}, ".fini_array": {"__do_global_dtors_aux"}}


def run(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def names_in_map(path):
    """The names of the version script's global section; a name that stands twice is an error."""
    text = re.sub(r"#.*|/\*.*?\*/", "", open(path).read())
    section = re.search(r"global:(.*?)local:", text, re.S).group(1)
    names = section.replace(";", " ").split()
    twice = {name for name in names if names.count(name) > 1}
    if twice:
        sys.exit(f"check_exports: twice in {path}: {sorted(twice)}")
    return set(names)


def declarations(include, compiler):
    """File-scope declarations of our headers, after preprocessing, without bodies."""
    text = run(compiler, "-E", "-x", "c", "-std=c11", f"-I{include}", f"{include}/zel_cc.h")
    ours, lines = False, []
    for line in text.splitlines():
        marker = re.match(r'# \d+ "(.*?)"', line)
        if marker:
            ours = os.path.abspath(marker.group(1)).startswith(os.path.abspath(include))
        elif ours:
            lines.append(line)
    text = "\n".join(lines)
    previous = None
    while previous != text:  # innermost braces first
        previous, text = text, re.sub(r"\{[^{}]*\}", " BODY ", text)
    text = re.sub(r"\bBODY\s+(?=(static|extern|typedef|enum|struct|__attribute__)\b)", "BODY ;", text)
    return [" ".join(piece.split()) for piece in text.split(";")]


def names_declared(include, compiler):
    """Names of functions and objects; each must be marked for export."""
    visible = '__attribute__((visibility("default")))'
    names = set()
    for declaration in declarations(include, compiler):
        kind = re.match(r"\w*", declaration).group()
        if kind in ("", "BODY", "typedef", "enum", "struct", "union", "static", "_Static_assert"):
            continue
        rest = declaration.replace(visible, "")
        name = re.search(r"(\w+)\s*(\(|\[|$)", rest)
        if visible not in declaration or not name:
            sys.exit(f"check_exports: declared without ZEL_API: {declaration}")
        names.add(name.group(1))
    return names


def exported(library):
    """Dynamic symbols that the library defines: name to type."""
    symbols = {}
    for line in run("readelf", "-W", "--dyn-syms", library).splitlines():
        fields = line.split()
        if len(fields) >= 8 and fields[0].rstrip(":").isdigit() and fields[6] != "UND":
            symbols[fields[7].split("@")[0]] = fields[3]
    return symbols


def hooks(library, section):
    """Names of the functions in a section of pointers, from the relocations that fill it."""
    header = re.search(rf" {re.escape(section)} +\S+ +([0-9a-f]+) [0-9a-f]+ ([0-9a-f]+)",
                       run("readelf", "-SW", library))
    if not header:
        return []
    first, size = (int(text, 16) for text in header.groups())
    names = {}
    for line in run("readelf", "-sW", library).splitlines():
        fields = line.split()
        if len(fields) >= 8 and fields[3] in ("FUNC", "NOTYPE") and fields[6] != "UND":
            names.setdefault(int(fields[1], 16), fields[7])
    found = []
    for line in run("readelf", "-rW", library).splitlines():
        fields = line.split()
        if fields and re.fullmatch(r"[0-9a-f]{16}", fields[0]):
            if first <= int(fields[0], 16) < first + size:
                relative = fields[2] == "R_X86_64_RELATIVE"
                target = int(fields[3], 16)
                found.append(names.get(target, hex(target)) if relative else fields[4])
    if len(found) != size // 8:
        sys.exit(f"check_exports: {section} has {size // 8} entries but {len(found)} relocations")
    return found


def main():
    library, exports_map, include, compiler = sys.argv[1:]
    problems = []

    def same(what, left, right):
        for name in sorted(set(left) - set(right)):
            problems.append(f"{what[0]} but not {what[1]}: {name}")
        for name in sorted(set(right) - set(left)):
            problems.append(f"{what[1]} but not {what[0]}: {name}")

    symbols = exported(library)
    listed = names_in_map(exports_map)
    declared = names_declared(include, compiler)
    same(("exported", "listed in exports.map"), symbols, listed)
    same(("listed in exports.map", "declared in the headers"), listed, declared)
    for name, kind in symbols.items():
        # The table of gates takes names with a capital, p_min and p_max for functions.
        expected = "FUNC" if re.search("[A-Z]|^p_m", name) else "OBJECT"
        if kind != expected:
            problems.append(f"{name} is a {kind}, expected {expected} by its spelling")

    dynamic = run("readelf", "-dW", library)
    needed = re.findall(r"\(NEEDED\).*\[(.*)\]", dynamic)
    if needed != ["libc.so.6"]:
        problems.append(f"needs {needed}, expected libc.so.6 alone")
    soname = re.findall(r"\(SONAME\).*\[(.*)\]", dynamic)
    if soname != [os.path.basename(library)] or os.path.islink(library):
        problems.append(f"SONAME is {soname}, the file is {library}")
    for tag in ("RPATH", "RUNPATH", "TEXTREL", "SYMBOLIC"):
        if f"({tag})" in dynamic:
            problems.append(f"has {tag}")
    if not re.search(r"FLAGS.*BIND_NOW|FLAGS_1.*NOW", dynamic):
        problems.append("is not bound at load (-z now)")

    for section, allowed in RUNTIME_HOOKS.items():
        for name in hooks(library, section):
            if name not in allowed:
                problems.append(f"{section} holds {name}")
    everything = run("readelf", "-sW", library)
    if " IFUNC " in everything or "IRELATIV" in run("readelf", "-rW", library):
        problems.append("has an ifunc")
    for name in ("__cxa_atexit", "__cxa_guard_acquire", "atexit", "pthread_create"):
        if re.search(rf"UND {name}(@|$)", everything, re.M):
            problems.append(f"uses {name}")

    # Not every machine that this is tested on could run these.
    beyond = re.search(r".*(%zmm|%k[0-7]\b|\bgf2p8|\bvgf2p8).*", run("objdump", "-d", "--no-show-raw-insn", library))
    if beyond:
        problems.append(f"has AVX-512 or GFNI code: {beyond.group().strip()}")

    return report("check_exports", f"{len(symbols)} names", problems)


if __name__ == "__main__":
    sys.exit(main())
