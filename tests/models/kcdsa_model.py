#!/usr/bin/env python3
"""Independent model of KCDSA signing, with the whole of a long hash value. HAS-160, MD5 and
RIPEMD-160 are rhash's.

  kcdsa_model.py          prints the cases of tests/vectors/kcdsa_model.txt
  kcdsa_model.py --check  compares the model with that file and with published signatures
"""

import contextlib
import hashlib
import io
import random
import shutil
import subprocess
import sys

from legacy_rng_model import VECTORS, has160, number, read_cases, show

MESSAGE = b"One message for every hash."


def by_rhash(option):
    def digest(data):
        run = subprocess.run(["rhash", option, "--simple", "-"], input=data, check=True,
                             stdout=subprocess.PIPE)
        return bytes.fromhex(run.stdout.split()[0].decode())
    return digest


HASHES = {"sha1": lambda d: hashlib.sha1(d).digest(), "sha224": lambda d: hashlib.sha224(d).digest(),
          "sha256": lambda d: hashlib.sha256(d).digest(),
          "sha384": lambda d: hashlib.sha384(d).digest(),
          "sha512": lambda d: hashlib.sha512(d).digest(), "has160": has160,
          "ripemd160": by_rhash("--ripemd160"), "md5": by_rhash("--md5")}


def sign(digest, p, q, g, x, z, message, k, keep_zeros=True):
    w = pow(g, k, p)
    size = ((p if keep_zeros else w).bit_length() + 7) // 8
    r = digest(w.to_bytes(size, "big"))
    h = digest(z + message)
    e = number(bytes(a ^ b for a, b in zip(r, h))) % q
    return r, x * (k - e) % q


def low_bytes(y, name):
    size = 128 if name in ("sha384", "sha512") else 64
    return (y % 256 ** size).to_bytes(size, "big")


def minimal(value):
    return value.to_bytes((value.bit_length() + 7) // 8, "big")


def groups():
    """One group and key for each length of q, from the standard's keys."""
    found = {}
    for case in read_cases("kcdsa_keygen"):
        p, q, g, x, y = (int(case[name], 16) for name in "pqgxy")
        found.setdefault(q.bit_length(), (p, q, g, x, y))
    return [found[bits] for bits in (160, 224, 256)]


def print_cases():
    rng = random.Random(1998)
    print("# KCDSA signatures over every hash. Source: tests/models/kcdsa_model.py\n"
          "# r and s: z from the public key. r0 and s0: with the z given. short = 1: the power of g\n"
          "# begins with a zero byte, which the signer left out.\n")
    for p, q, g, x, y in groups():
        for name, digest in HASHES.items():
            k = rng.randrange(1, q)
            size = {"sha256": 32, "sha384": 48, "sha512": 64}.get(name, 20)
            z = bytes(rng.randrange(256) for _ in range(size))
            r, s = sign(digest, p, q, g, x, low_bytes(y, name), MESSAGE, k)
            r0, s0 = sign(digest, p, q, g, x, z, MESSAGE, k)
            show(alg="kcdsa", hash=name, p=minimal(p), q=minimal(q), g=minimal(g), x=minimal(x),
                 y=minimal(y), msg=MESSAGE, k=k.to_bytes((q.bit_length() + 7) // 8, "big"), r=r,
                 s=minimal(s), z=z, r0=r0, s0=minimal(s0))
    p, q, g, x, y = groups()[0]
    while True:
        k = rng.randrange(1, q)
        if pow(g, k, p).bit_length() <= p.bit_length() - 8:
            break
    r, s = sign(HASHES["sha1"], p, q, g, x, low_bytes(y, "sha1"), MESSAGE, k, False)
    show(alg="kcdsa", hash="sha1", p=minimal(p), q=minimal(q), g=minimal(g), x=minimal(x),
         y=minimal(y), msg=MESSAGE, k=k.to_bytes(20, "big"), r=r, s=minimal(s), note="short")


def check():
    for case in read_cases("kcdsa"):
        if "k" in case:
            p, q, g, x, y, k = (int(case[name], 16) for name in "pqgxyk")
            r, s = sign(HASHES[case["hash"]], p, q, g, x, low_bytes(y, case["hash"]),
                        bytes.fromhex(case["msg"]), k)
            assert (r, s) == (bytes.fromhex(case["r"]), int(case["s"], 16)), case
    printed = io.StringIO()
    with contextlib.redirect_stdout(printed):
        print_cases()
    with open(f"{VECTORS}/kcdsa_model.txt", encoding="ascii") as file:
        assert file.read() == printed.getvalue(), "not what the model prints"


if __name__ == "__main__":
    if not shutil.which("rhash"):
        print("rhash is not installed")
        sys.exit(77)
    check() if sys.argv[1:] == ["--check"] else print_cases()
