#!/usr/bin/env python3
"""Independent model of Hash_DRBG and HMAC_DRBG, departures included.

It follows the description of the generators step by step on big integers, as little-endian lists of
32-bit words where the description is in words, and shares nothing with the library.

  drbg_model.py          prints the cases of tests/vectors/drbg_model.txt
  drbg_model.py --check  compares the model with published values (tests/vectors) and that file
"""

import hashlib
import hmac
import os
import random
import sys

HASHES = {"sha224": (224, 440), "sha256": (256, 440), "sha384": (384, 888), "sha512": (512, 888)}
VECTORS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "vectors")


def digest(name, data):
    return hashlib.new(name, data).digest()


# Integers as lists of 32-bit words, least significant first: only what Hashgen needs.


def words_of(data):
    value = int.from_bytes(data, "big")
    words = []
    while value:
        words.append(value & 0xFFFFFFFF)
        value >>= 32
    return words


def value_of(words):
    return sum(word << (32 * i) for i, word in enumerate(words))


def add_integer(words, small):
    carry, result = small, []
    for word in words:
        carry += word
        result.append(carry & 0xFFFFFFFF)
        carry >>= 32
    if carry:
        result.append(carry)
    return result


def bit_length(words):
    for i in reversed(range(len(words))):
        if words[i]:
            return 32 * i + words[i].bit_length()
    return 0


def mod_2_exp(words, n):
    """The top word modulo n mod 32 where n is not a whole number of words: not a mask."""
    words = list(words)
    if n % 32:
        words[n // 32] %= n % 32
    return words[: -(-n // 32)]


def padded_bytes(words, length):
    value = value_of(words)
    return value.to_bytes(-(-value.bit_length() // 8), "big").rjust(length, b"\0")


class HashDrbg:
    def __init__(self, name):
        self.name = name
        self.outlen, self.seedlen = HASHES[name]
        self.bytes = self.seedlen // 8

    def df(self, data, out_bits):
        out = b""
        for counter in range(1, -(-out_bits // self.outlen) + 1):
            out += digest(self.name, bytes([counter & 255]) + out_bits.to_bytes(4, "big") + data)
        return out[: out_bits // 8]

    def instantiate(self, entropy, nonce, personalization):
        self.v = self.df(entropy + nonce + personalization, self.seedlen)
        material = bytearray(self.bytes + 1)
        material[: self.bytes] = self.v
        material[0] = 0
        self.c = self.df(bytes(material), self.seedlen)
        self.counter = 1

    def reseed(self, entropy, additional):
        self.v = self.df(b"\1" + self.v + entropy + additional, self.seedlen)
        self.c = self.df(b"\0" + self.v, self.seedlen)
        self.counter = 1

    def add_to_v(self, *numbers):
        total = int.from_bytes(self.v, "big") + sum(numbers)
        length = max(self.bytes, -(-total.bit_length() // 8))
        self.v = total.to_bytes(length, "big")[-self.bytes :]

    def hashgen(self, bits, buffer=b""):
        """`buffer` is what the caller's memory holds before."""
        data, digests = words_of(self.v), b""
        blocks = -(-bits // self.outlen)
        for block in range(blocks):
            one = digest(self.name, padded_bytes(data, self.bytes))
            last = block == blocks - 1 and bits % self.outlen
            digests += one[: (bits % self.outlen) // 8] if last else one
            data = add_integer(data, 1)
            if bit_length(data) > self.seedlen:
                data = mod_2_exp(data, self.seedlen)
        out = bytearray(buffer)
        out[: len(digests)] = digests
        if bits % 8:
            out[bits // 8] &= (0xFF << (8 - bits % 8)) & 0xFF
        return bytes(out)

    def generate(self, bits, additional=b"", buffer=b"", entropy=None):
        if entropy is not None:
            self.reseed(entropy, additional)
            additional = b""
        if additional:
            w = digest(self.name, b"\2" + self.v + additional)
            self.add_to_v(int.from_bytes(w, "big"))
        out = self.hashgen(bits, buffer)
        h = digest(self.name, b"\3" + self.v)
        self.add_to_v(int.from_bytes(h, "big"), int.from_bytes(self.c, "big"), self.counter)
        self.counter += 1
        return out


class HmacDrbg:
    def __init__(self, name):
        self.name = name
        self.bytes = HASHES[name][0] // 8

    def mac(self, data):
        return hmac.new(self.k, data, self.name).digest()

    def update(self, provided):
        for step in (0, 1) if provided else (0,):
            self.k = self.mac(self.v + bytes([step]) + provided)
            self.v = self.mac(self.v)

    def instantiate(self, entropy, nonce, personalization):
        self.v, self.k = b"\1" * self.bytes, b"\0" * self.bytes
        self.update(entropy + nonce + personalization)
        self.counter = 1

    def reseed(self, entropy, additional):
        self.update(entropy + additional)
        self.counter = 1

    def generate(self, bits, additional=b"", buffer=b"", entropy=None):
        if entropy is not None:
            self.reseed(entropy, additional)
            additional = b""
        elif additional:
            self.update(additional)
        out, copy = bytearray(), self.bytes
        while 8 * len(out) < bits:
            self.v = self.mac(self.v)
            if 8 * (len(out) + self.bytes) > bits:
                copy = bits % (8 * self.bytes) // 8
            # With less than a byte to go the steps would copy nothing for ever: one byte it is.
            out += self.v[: copy or 1]
        out = out[: -(-bits // 8)]
        if bits % 8:
            out[bits // 8] &= (0xFF << (8 - bits % 8)) & 0xFF
        self.update(additional)
        self.counter += 1
        return bytes(out) + buffer[len(out) :]


MODELS = {"hash_drbg": HashDrbg, "hmac_drbg": HmacDrbg}


def show(**values):
    for name, value in values.items():
        print(f"{name} = {value.hex() if isinstance(value, bytes) else value}".rstrip())
    print()


def hashgen_cases():
    """Around every carry, and around 2^seedlen, where the reduction differs from a mask."""
    for name, (outlen, seedlen) in HASHES.items():
        top = 1 << seedlen
        starts = [top - 1, top - 2, top - 5, top - 9, 0, 1, 0xFE, (1 << 24) - 2, (1 << 56) - 3]
        starts += [(1 << 120) - 1, (1 << (seedlen - 24)) - 2, (0xABCDE << (seedlen - 20)) + 77]
        for v in starts:
            model = HashDrbg(name)
            model.v = v.to_bytes(seedlen // 8, "big")
            bits = 11 * outlen
            show(alg="hashgen", hash=name, v=model.v, bits=bits, out=model.hashgen(bits))
        model.v = (top - 2).to_bytes(seedlen // 8, "big")
        for bits in (0, 1, 8, 12, 8 * 9 + 3, outlen - 8, outlen - 1, outlen + 5, 3 * outlen + 13):
            before = b"\xff" * (bits // 8 + 3)
            out = model.hashgen(bits, before)
            show(alg="hashgen", hash=name, v=model.v, bits=bits, before=before, out=out)


def generate_cases(rng):
    """One request on a given state: V + H + C + counter over the edge, and additional input."""
    for name, (outlen, seedlen) in HASHES.items():
        length = seedlen // 8
        ones = b"\xff" * length
        for v, c, counter in (
            (ones, ones, 0xFFFFFFF0),
            (ones, bytes(length), 1),
            (bytes(length), bytes(length), 1),
            (rng.randbytes(length), rng.randbytes(length), 77),
        ):
            for additional in (b"", rng.randbytes(200)):
                model = HashDrbg(name)
                model.v, model.c, model.counter = v, c, counter
                out = model.generate(5 * outlen + 16, additional)
                show(alg="generate", hash=name, v=v, c=c, counter=counter, add=additional,
                     bits=5 * outlen + 16, out=out, v_after=model.v)


def life_cases(rng):
    """Instantiate, request, request, reseed, request; lengths in bits."""
    for alg, make in MODELS.items():
        for name, (outlen, _) in HASHES.items():
            lengths = [8, 12, 7, outlen - 3, outlen + 4, outlen + 8, outlen + 9, 2 * outlen + 1]
            lengths += [3 * outlen, 8 * 5000 + 3]
            for bits in lengths:
                model = make(name)
                entropy, nonce = rng.randbytes(48), rng.randbytes(rng.choice((0, 16)))
                pers, add = rng.randbytes(rng.choice((0, 40))), rng.randbytes(rng.choice((0, 300)))
                fresh = rng.randbytes(64)
                before = b"\xff" * (bits // 8 + 3)
                model.instantiate(entropy, nonce, pers)
                out1 = model.generate(bits, b"", before)
                out2 = model.generate(bits, add, before)
                model.reseed(fresh, add)
                out3 = model.generate(bits, add, before)
                # Long outputs are kept as digests.
                outs = [o if len(o) < 300 else hashlib.sha256(o).digest() for o in (out1, out2, out3)]
                show(alg=alg, hash=name, entropy=entropy, nonce=nonce, pers=pers, add=add,
                     reseed_entropy=fresh, bits=bits, out1=outs[0], out2=outs[1], out3=outs[2])


def print_cases():
    print("# Hash_DRBG and HMAC_DRBG where no public vectors exist: departures, carries, odd lengths.")
    print("# Source: tests/models/drbg_model.py, an independent model; `--check` reproduces this file.")
    print("# alg = hashgen: from V alone. alg = generate: one request on a given state. Others: "
          "instantiate, two requests")
    print("# (the second with add), reseed with reseed_entropy and add, a third request with add. "
          "`before` (ff where absent in")
    print("# the long cases) is what the output buffer holds beforehand; out covers 3 bytes more "
          "than whole bytes. Outputs of 300")
    print("# bytes and more are given as their SHA-256.")
    print()
    rng = random.Random(2026)
    hashgen_cases()
    generate_cases(rng)
    life_cases(rng)


def read_cases(name):
    case = {}
    with open(os.path.join(VECTORS, name + ".txt"), encoding="ascii") as file:
        for line in list(file) + [""]:
            if line.startswith("#"):
                continue
            if "=" in line:
                key, value = line.split("=", 1)
                case[key.strip()] = value.strip()
            elif case:
                yield case
                case = {}


def check_published():
    """What is published must come out of the model wherever the standard is followed."""
    checked = 0
    for file in ("hash_drbg", "hash_drbg_standard", "hmac_drbg", "drbg_product"):
        for case in read_cases(file):
            def data(key, case=case):
                return bytes.fromhex(case.get(key, ""))
            model = MODELS[case["alg"]](case["hash"])
            model.instantiate(data("entropy"), data("nonce"), data("pers"))
            if "reseed_entropy" in case:
                model.reseed(data("reseed_entropy"), data("reseed_add"))
            for call in "12":
                if "bits" + call not in case:
                    continue
                due = case["pr"] == "1" or ("interval" in case
                                            and model.counter >= int(case["interval"]))
                entropy = data("entropy" + call) if due else None
                out = model.generate(int(case["bits" + call]), data("add" + call), b"", entropy)
                expected = case.get("product_out" + call, case.get("out" + call))
                if expected is not None:
                    assert out.hex() == expected, (file, case)
                    checked += 1
    for case in read_cases("hash_df"):
        out = HashDrbg(case["hash"]).df(bytes.fromhex(case["input"]), int(case["out_bits"]))
        assert out.hex() == case["out"], case
        checked += 1
    return checked


def check_file():
    import contextlib
    import io

    printed = io.StringIO()
    with contextlib.redirect_stdout(printed):
        print_cases()
    with open(os.path.join(VECTORS, "drbg_model.txt"), encoding="ascii") as file:
        assert file.read() == printed.getvalue(), "drbg_model.txt is not what the model prints"


if __name__ == "__main__":
    if sys.argv[1:] == ["--check"]:
        print(f"{check_published()} published outputs reproduced")
        check_file()
        print("drbg_model.txt reproduced")
    else:
        print_cases()
