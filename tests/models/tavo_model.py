#!/usr/bin/env python3
"""tavo and tavoold, written from docs/tavo.md alone.

  tavo_model.py          prints tests/vectors/tavo.txt
  tavo_model.py --check  compares what it would print with that file
"""
import functools
import hashlib
import math
import os
import sys

VECTORS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "vectors", "tavo.txt")


def primes_from(first):
    p = first
    while True:
        if all(p % d for d in range(2, math.isqrt(p) + 1)):
            yield p
        p += 1


def root(p):
    return math.isqrt(p << 64) % 2**32


def high(x):
    return x >> 16


def low(x):
    return x & 0xFFFF


def rotl(x, n):
    return (x << n | x >> (32 - n)) & 0xFFFFFFFF


PRIMES = primes_from(59)
ROW, CONSTANT = high(root(next(PRIMES))), high(root(next(PRIMES)))


def field_product(x, y):
    product = 0
    while y:
        if y & 1:
            product ^= x
        y >>= 1
        x <<= 1
        if x >> 16:
            x ^= 0x1100B
    return product


def field_inverses():
    """Every element but 0 is a power of x, and the inverse of power i is power 65535 - i."""
    powers = [1]
    while len(powers) < 65535:
        powers.append(field_product(powers[-1], 2))
    inverses = [0] * 65536
    for i, power in enumerate(powers):
        inverses[power] = powers[-i % 65535]
    assert all(field_product(x, inverses[x]) == 1 for x in range(1, 65536, 257))
    return inverses


def affine(y):
    total = CONSTANT
    for i in range(16):
        if ROW >> i & 1:
            total ^= (y << i | y >> (16 - i)) & 0xFFFF
    return total


def make_sbox():
    return [affine(inverse) for inverse in field_inverses()]


SBOX = make_sbox()
assert sorted(SBOX) == list(range(65536))


class Cipher:
    def __init__(self, whitened, mix):
        self.whitened, self.mix = whitened, mix
        self.q32 = [root(next(PRIMES)) for _ in range(8)]
        self.q16 = [half(r) for r in (root(next(PRIMES)) for _ in range(8)) for half in (high, low)]
        self.a = [root(next(PRIMES)) | 1 for _ in range(10)]

    @functools.lru_cache(maxsize=None)
    def schedule(self, key):
        words = [int.from_bytes(key[4 * i : 4 * i + 4], "big") for i in range(4)]
        q = [self.q32[i] ^ words[i % 4] for i in range(8)]
        for p in range(4):
            for i in range(8):
                s = (q[i] * self.a[p % 2] + q[(i + 7) % 8]) % 2**32
                q[i] = rotl(s, 11) ^ q[(i + 3) % 8]
        halves = [half(x) for x in q for half in (high, low)]
        e = [(c + h) % 2**16 for c, h in zip(self.q16, halves)]
        for s, d in enumerate((8, 4, 2, 1)):
            for j, i in enumerate(i for i in range(16) if not i & d):
                mask = high(rotl(q[(j + s) % 8] * self.a[2] % 2**32, 8 * s))
                keep = 0xFFFF ^ mask
                e[i], e[i + d] = e[i] & keep | e[i + d] & mask, e[i + d] & keep | e[i] & mask
        c, w = list(q), []
        for n in range(48):
            i = n % 8
            s = (c[i] * self.a[3 + n % 3] + c[(i + 1) % 8]) % 2**32
            c[i] = rotl(s, 7) ^ c[(i + 5) % 8] ^ (e[n % 16] << 16 | e[(n + 5) % 16])
            w.append(c[i])
        return q, e, w

    def f(self, r, e, w):
        k0, k1, k2, k3, k4, k5 = (half(x) for x in w for half in (high, low))

        def times(x, y):
            return (x or 65536) * (y or 65536) % 65537 % 65536

        def entry(t):
            return e[t >> 12]

        t0 = SBOX[times(r[0], k0)]
        t2 = SBOX[(r[2] + k1) % 65536]
        t1 = SBOX[self.mix((r[1] + k2) % 65536, entry(t0))]
        t3 = SBOX[self.mix(times(r[3], k3), entry(t2))]
        x0 = self.mix(t0, entry(t3))
        x2 = self.mix(t2, entry(t1))
        m = times(x0 ^ x2, k4)
        v = times(((t1 ^ t3) + m) % 65536, k5)
        u = (m + v) % 65536
        return x0 ^ v, t1 ^ u, x2 ^ v, t3 ^ u

    def crypt(self, key, block, order, before, after):
        q, e, w = self.schedule(key)
        words = [int.from_bytes(block[i : i + 2], "big") for i in range(0, 16, 2)]
        halves = [half(x) for x in q for half in (high, low)]
        if self.whitened:
            words = [x ^ y for x, y in zip(words, halves[before : before + 8])]
        left, right = tuple(words[:4]), tuple(words[4:])
        for n in order:
            added = self.f(right, e, w[3 * n : 3 * n + 3])
            left, right = right, tuple(x ^ y for x, y in zip(left, added))
        words = right + left
        if self.whitened:
            words = [x ^ y for x, y in zip(words, halves[after : after + 8])]
        return b"".join(x.to_bytes(2, "big") for x in words)

    def encrypt(self, key, block):
        return self.crypt(key, block, range(16), 0, 8)

    def decrypt(self, key, block):
        return self.crypt(key, block, range(15, -1, -1), 8, 0)


TAVO = Cipher(True, lambda x, y: (x + y) % 65536)
TAVOOLD = Cipher(False, lambda x, y: x ^ y)


def old_padding(data):
    rest = len(data) % 16
    return data + bytes([rest]) * (16 - rest)


def cases():
    yield bytes(16), bytes(16)
    yield bytes(range(16)), bytes(range(16, 32))
    yield b"\xff" * 16, b"\xff" * 16
    for bit in (0, 31, 127):
        yield (1 << 127 - bit).to_bytes(16, "big"), bytes(16)
        yield bytes(16), (1 << 127 - bit).to_bytes(16, "big")
    for i in range(16):
        digest = hashlib.sha256(b"tavo vector %d" % i).digest()
        yield digest[:16], digest[16:]


def lines():
    yield "# tavo and tavoold: one block, and the padding of tavoold"
    yield "# Source: tests/models/tavo_model.py, which is written from docs/tavo.md."
    yield "# round_keys: the 256 bytes of a little-endian machine."
    yield "# iterated: the block enciphered 1000 times under the same key."
    for name, cipher in (("tavo", TAVO), ("tavoold", TAVOOLD)):
        key = bytes(range(16))
        q, e, w = cipher.schedule(key)
        longs = b"".join(x.to_bytes(4, "little") for x in (*q, *w))
        words = b"".join(x.to_bytes(2, "little") for x in e)
        yield f"\nalg = {name}\nkey = {key.hex()}\nround_keys = {(longs[:32] + words + longs[32:]).hex()}"
        for key, block in cases():
            out = cipher.encrypt(key, block)
            assert cipher.decrypt(key, out) == block
            yield f"\nalg = {name}\nkey = {key.hex()}\npt = {block.hex()}\nct = {out.hex()}"
        key, block = bytes(range(16)), bytes(16)
        for _ in range(1000):
            block = cipher.encrypt(key, block)
        yield f"\nalg = {name}\nkey = {key.hex()}\npt = {bytes(16).hex()}"
        yield f"iterated = {block.hex()}"
    for length in range(18):
        data = bytes(range(100, 100 + length))
        yield f"\npadding = tavoold\npt = {data.hex()}\npadded = {old_padding(data).hex()}"


def main():
    text = "\n".join(lines()) + "\n"
    if sys.argv[1:] != ["--check"]:
        sys.stdout.write(text)
        return
    with open(VECTORS, encoding="ascii") as file:
        if file.read() != text:
            sys.exit("tests/vectors/tavo.txt is not what the model gives")


if __name__ == "__main__":
    main()
