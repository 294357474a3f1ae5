#!/usr/bin/env python3
"""Independent model of the older generators, departures included. HAS-160 is rhash's.

  legacy_rng_model.py          prints the cases of tests/vectors/legacy_rng_model.txt
  legacy_rng_model.py --check  compares the model with that file and with published values
"""

import contextlib
import hashlib
import io
import os
import random
import shutil
import struct
import subprocess
import sys

VECTORS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "vectors")
Q160 = 0xC773218C737EC8EE993B4F2DED30F48EDACE915F
T = struct.pack(">5I", 0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476, 0xC3D2E1F0)


def sha1(data):
    return hashlib.sha1(data).digest()


def has160(data):
    run = subprocess.run(["rhash", "--has160", "--simple", "-"], input=data, check=True,
                         stdout=subprocess.PIPE)
    return bytes.fromhex(run.stdout.split()[0].decode())


HASHES = {"has160": (has160, 160), "sha224": (lambda d: hashlib.sha224(d).digest(), 224),
          "sha256": (lambda d: hashlib.sha256(d).digest(), 256)}


def number(data):
    return int.from_bytes(data, "big")


def minimal(value):
    return value.to_bytes(max(1, (value.bit_length() + 7) // 8), "big")


def randhash(state, clocks, size):
    out = b""
    for clock in clocks:
        t = sha1(struct.pack("<I", clock))
        r = sha1(state + t + state)
        state = sha1(t + r + t)
        out += r
    return out[:size], state


def compress_sha1(chaining, block):
    def rotate(x, n):
        return (x << n | x >> (32 - n)) & 0xFFFFFFFF

    words = list(struct.unpack(">16I", block))
    for i in range(16, 80):
        words.append(rotate(words[i - 3] ^ words[i - 8] ^ words[i - 14] ^ words[i - 16], 1))
    start = struct.unpack(">5I", chaining)
    a, b, c, d, e = start
    for i, word in enumerate(words):
        f, k = ((b & c | ~b & d, 0x5A827999), (b ^ c ^ d, 0x6ED9EBA1),
                (b & c | b & d | c & d, 0x8F1BBCDC), (b ^ c ^ d, 0xCA62C1D6))[i // 20]
        a, b, c, d, e = (rotate(a, 5) + (f & 0xFFFFFFFF) + e + k + word) & 0xFFFFFFFF, a, \
            rotate(b, 30), c, d
    return struct.pack(">5I", *((x + y) & 0xFFFFFFFF for x, y in zip(start, (a, b, c, d, e))))


def dsa_values(xseed, xkey, q, count):
    size = len(xseed)
    seed, key, values = number(xseed), number(xkey), []
    for _ in range(count):
        value = (key + seed) % 256 ** size
        block = value.to_bytes(size, "big")
        values.append(compress_sha1(T, block.ljust(64, b"\0")))
        used = len(minimal(value))
        key = (1 + key + number(values[0][:min(used, 20)]) % q) % 256 ** size
    return values


def prng(name, bits, seed):
    digest, size = HASHES[name]
    counter = -(-bits // size) - 1
    rest = (bits % size + 7) // 8 or size // 8
    out = bytearray(digest(seed + bytes([counter % 256]))[-rest:])
    shift = bits % 8
    out[0] = (out[0] << shift & 0xFF) >> shift
    for i in range(counter - 1, -1, -1):
        out += digest(seed + bytes([i % 256]))
    return bytes(out)


def kcdsa_values(seed, xkey, q, count):
    bits = 8 * len(xkey)
    a, b, values = number(prng("has160", bits, seed)), number(xkey), []
    for _ in range(count):
        x = number(prng("has160", bits, minimal((a + b) % 2 ** bits))) % q
        values.append(minimal(x))
        b += number(prng("has160", bits, minimal(x + a)))
    return values


def show(**values):
    for name, value in values.items():
        print(f"{name} = {value.hex() if isinstance(value, bytes) else value}")
    print()


def print_cases():
    rng = random.Random(1962)

    def some(size):
        return bytes(rng.randrange(256) for _ in range(size))

    print("# The older generators, departures included. Source: tests/models/legacy_rng_model.py\n"
          "# clocks: the words that the clock gives, 4 bytes big-endian each.\n")
    for size in (1, 20, 21, 60):
        clocks = [rng.randrange(2 ** 32) for _ in range(-(-size // 20))]
        state = some(20)
        out, after = randhash(state, clocks, size)
        show(alg="randhash", state=state, clocks=b"".join(struct.pack(">I", c) for c in clocks),
             out=out, after=after)
    for size, key in ((20, some(20)), (20, b"\xff" * 20), (21, some(21)), (64, some(60)),
                      (7, some(12))):
        xseed = some(size) if key != b"\xff" * 20 else bytes(18) + some(2)
        values = dsa_values(xseed, key, Q160, 4)
        show(alg="dsa", xseed=xseed, xkey=key, q=minimal(Q160), out=b"".join(values))
    for name in HASHES:
        seed = some(29)
        for bits in (1, 159, 160, 161, 256, 448, 2045, 160 * 257):
            show(alg="prng", hash=name, bits=bits, seed=seed, out=prng(name, bits, seed))
    for size, q in ((20, Q160), (22, Q160), (20, 251), (64, Q160)):
        seed, xkey = some(24), some(size)
        values = kcdsa_values(seed, xkey, q, 4)
        show(alg="kcdsa", seed=seed, xkey=xkey, q=minimal(q),
             **{f"x{i}": value for i, value in enumerate(values)})


def read_cases(name):
    with open(os.path.join(VECTORS, name + ".txt"), encoding="ascii") as file:
        for block in file.read().split("\n\n"):
            lines = [line for line in block.split("\n") if " = " in line and line[0] != "#"]
            if lines:
                yield dict(line.split(" = ", 1) for line in lines)


def check():
    printed = io.StringIO()
    with contextlib.redirect_stdout(printed):
        print_cases()
    with open(os.path.join(VECTORS, "legacy_rng_model.txt"), encoding="ascii") as file:
        assert file.read() == printed.getvalue(), "not what the model prints"
    for case in read_cases("fips186_2_rng"):
        if case["alg"] == "fips186_2_x":
            values = dsa_values(bytes.fromhex(case["xseed"]), bytes.fromhex(case["xkey"]),
                                int(case["q"], 16), int(case["m"]))
            assert values == [bytes.fromhex(case[f"x{i}"]) for i in range(len(values))], case
    for case in read_cases("kcdsa_params"):
        bits = int(case["pbits"]) - int(case["qbits"]) - 4
        j = number(prng(case["hash"], bits, bytes.fromhex(case["seed"])))
        assert j | 1 << (-(-bits // 32) * 32 - 1) | 1 == int(case["j"], 16), case


if __name__ == "__main__":
    if not shutil.which("rhash"):
        print("rhash is not installed")
        sys.exit(77)
    check() if sys.argv[1:] == ["--check"] else print_cases()
