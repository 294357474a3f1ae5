"""Keys for the tests of the command: made by openssl once, and DER written by hand to break them."""

import functools
import re
import subprocess


def openssl(*arguments, stdin=b""):
    done = subprocess.run(["openssl", *arguments], input=stdin, capture_output=True)
    assert done.returncode == 0, done
    return done.stdout


@functools.lru_cache(None)
def rsa_key(bits, *options):
    """A private RSA key in PKCS #8 and PEM."""
    return openssl("genrsa", *options, str(bits))


@functools.lru_cache(None)
def dsa_key(bits, order_bits):
    parameters = openssl("genpkey", "-genparam", "-algorithm", "DSA", "-pkeyopt",
                         f"dsa_paramgen_bits:{bits}", "-pkeyopt", f"dsa_paramgen_q_bits:{order_bits}")
    return openssl("genpkey", "-paramfile", "/dev/stdin", stdin=parameters)


def element(tag, content):
    length = len(content)
    if length < 128:
        return bytes([tag, length]) + content
    octets = length.to_bytes((length.bit_length() + 7) // 8, "big")
    return bytes([tag, 128 + len(octets)]) + octets + content


def integer(value):
    return element(0x02, value.to_bytes(value.bit_length() // 8 + 1, "big", signed=True))


def sequence(*elements):
    return element(0x30, b"".join(elements))


def numbers(der):
    """All the INTEGERs of a structure in their order."""
    found = []
    for line in openssl("asn1parse", "-inform", "DER", stdin=der).decode().splitlines():
        match = re.search(r"INTEGER\s+:(-?[0-9A-F]+)", line)
        if match:
            found.append(int(match.group(1), 16))
    return found


def rsa_numbers(pem):
    """n, e, d, p, q, dP, dQ, qInv"""
    return numbers(openssl("rsa", "-traditional", "-outform", "DER", stdin=pem))[1:]


def rsa_pkcs1(values):
    return sequence(integer(0), *map(integer, values))


def dsa_numbers(pem):
    """p, q, g, y, x"""
    return numbers(openssl("dsa", "-outform", "DER", stdin=pem))[1:]


DSA_OID = bytes.fromhex("06072a8648ce380401")


def dsa_pkcs8(p, q, g, x):
    algorithm = sequence(DSA_OID, sequence(integer(p), integer(q), integer(g)))
    return sequence(integer(0), algorithm, element(0x04, integer(x)))


def dsa_public(p, q, g, y):
    algorithm = sequence(DSA_OID, sequence(integer(p), integer(q), integer(g)))
    return sequence(algorithm, element(0x03, b"\0" + integer(y)))


def encrypted_key(rounds=2048, salt=bytes(8), key_len=32, prf=9, cipher="2a831a8c9a6e01010c",
                  iv=bytes(16), sealed=bytes(32)):
    """An EncryptedPrivateKeyInfo of PBES2, sound unless an argument says otherwise."""
    function = sequence(bytes.fromhex("06082a864886f70d02") + bytes([prf]), b"\5\0")
    derivation = sequence(element(4, salt), integer(rounds), integer(key_len), function)
    parameters = sequence(sequence(bytes.fromhex("06092a864886f70d01050c"), derivation),
                          sequence(element(6, bytes.fromhex(cipher)), element(4, iv)))
    return sequence(sequence(bytes.fromhex("06092a864886f70d01050d"), parameters), element(4, sealed))
