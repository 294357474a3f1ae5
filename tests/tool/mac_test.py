"""zel mac: HMAC of files, verification and lists, against openssl."""

import json
import os
import random

import support
from support import FILE, MALFORMED, MISMATCH, STATE, USAGE, ToolTest

KEY = bytes(range(1, 33))


class MacTest(ToolTest):
    def setUp(self):
        super().setUp()
        self.key = self.write("key", KEY)
        self.write("f", b"what do ya want for nothing?")

    def openssl(self, name, key, file):
        return self.other("openssl", "dgst", f"-{name}", "-r", "-mac", "HMAC", "-macopt",
                          f"hexkey:{key.hex()}", file).split()[0]


class Mac(MacTest):
    def test_agrees_with_openssl_for_keys_around_the_block(self):
        generator = random.Random(2)
        self.write("long", generator.randbytes(300001))
        for name in ("sha224", "sha256", "sha384", "sha512", "sha1", "md5", "ripemd160"):
            for key_len in (16, 63, 64, 65, 127, 128, 129, 1000):
                key = generator.randbytes(key_len)
                self.write("k", key)
                ours = self.zel("mac", "--legacy", "-a", name, "--key-file", "k", "f", "long")
                for line, file in zip(ours.stdout.decode().splitlines(), ("f", "long")):
                    self.assertEqual(line, f"{self.openssl(name, key, file)}  {file}")

    def test_codes_over_block_ciphers_agree_with_openssl(self):
        generator = random.Random(7)
        compared = 0
        for name, size in (("aria-128", 16), ("aria-192", 24), ("aria-256", 32), ("aes-128", 16),
                           ("aes-256", 32)):
            key, nonce = generator.randbytes(size), generator.randbytes(12)
            self.write("k", key)
            for length in (0, 1, 15, 16, 17, 65535, 65536, 65553, 300001):
                self.write("data", generator.randbytes(length))
                for kind, mode, more, option in (("cmac", "CBC", [], []),
                                                 ("gmac", "GCM", ["--nonce", nonce.hex()],
                                                  ["-macopt", f"hexiv:{nonce.hex()}"])):
                    theirs = self.other("openssl", "mac", "-cipher", f"{name.upper()}-{mode}",
                                        "-macopt", f"hexkey:{key.hex()}", *option, "-in", "data",
                                        kind.upper()).strip().lower()
                    ours = self.zel("mac", "--legacy", "-a", f"{kind}-{name}", "--key-file", "k",
                                    *more, "data").stdout.decode()
                    self.assertEqual(ours, f"{theirs}  data\n")
                    compared += 1
        self.assertEqual(compared, 90)
        seed = ["mac", "-a", "cmac-seed", "--key-hex-file", "hex", "f"]
        self.write("hex", b"00" * 16)
        self.assertEqual(len(self.zel(*seed).stdout.split()[0]), 32)
        code = self.zel(*seed).stdout.decode().split()[0]
        self.assertEqual(self.zel(*seed, "--verify", code).stdout, b"f: OK\n")
        self.write("list", self.zel(*seed[:-1], "--tag", "f").stdout)
        self.zel("mac", "--key-hex-file", "hex", "-c", "list")
        for arguments, exit in ((["-a", "cmac-aria-256", "f"], MALFORMED), (["-a", "gmac-seed", "f"], USAGE),
                                (["-a", "gmac-seed", "--nonce", "00", "f"], MALFORMED),
                                (["-a", "gmac-seed", "--nonce", "00" * 12, "f", "f"], USAGE),
                                (["-a", "gmac-seed", "--nonce", "00" * 12, "-c", "f"], USAGE),
                                (["-a", "cmac-aes-128", "f"], STATE), (["-a", "cmac-rc4", "f"], USAGE)):
            self.zel("mac", "--key-hex-file", "hex", *arguments, exit=exit)
        for arguments, advice in (([], b"-a gmac-aria-256"), (["-a", "cmac-seed"], b"-a gmac-aria-256"),
                                  (["-a", "gmac-seed", "--tag"], b"GMAC has no lists")):
            done = self.zel("mac", "--key-hex-file", "hex", "--nonce", "00" * 12, *arguments, "f", exit=USAGE)
            self.assertIn(advice, done.stderr)

    def test_every_way_to_give_the_key(self):
        expected = self.zel("mac", "--key-file", "key", "f").stdout
        digits = KEY.hex().upper()
        self.write("hex", (digits[:20] + "\n " + digits[20:] + "\n").encode())
        self.assertEqual(self.zel("mac", "--key-hex-file", "hex", "f").stdout, expected)
        self.assertEqual(self.zel("mac", "--key-file", "-", "f", stdin=KEY).stdout, expected)
        shell = f"'{support.ZEL}' mac --key-fd 5 f 5<key"
        self.assertEqual(self.run_program("sh", "-c", shell).stdout, expected)
        shown = self.zel("mac", "--key-hex", digits, "f")
        self.assertEqual(shown.stdout, expected)
        self.assertIn(b"--key-hex-file", shown.stderr)

    def test_keys_that_cannot_be_meant(self):
        self.write("odd", b"123")
        self.write("not", b"0x11")
        self.write("empty", b"")
        with open(self.folder / "huge", "wb") as huge:
            huge.truncate(2 << 20)
        for arguments, code in ((["--key-hex-file", "odd"], MALFORMED),
                                (["--key-hex-file", "not"], MALFORMED),
                                (["--key-file", "empty"], MALFORMED),
                                (["--key-file", "huge"], MALFORMED),
                                (["--key-file", "missing"], FILE), (["--key-fd", "99"], FILE),
                                ([], USAGE), (["--key-file", "key", "--key-hex", "00"], USAGE)):
            with self.subTest(arguments):
                done = self.zel("mac", *arguments, "f", exit=code)
                self.assertEqual(done.stdout, b"")
        self.zel("mac", "--key-file", "-", stdin=KEY, exit=USAGE)
        short = self.zel("mac", "--key-hex", "0011223344556677889900112233"[:26], "f")
        self.assertIn(b"104 bits", short.stderr)

    def test_verify(self):
        for name in ("sha256", "hmac-sha512"):
            arguments = ["mac", "-a", name, "--key-file", "key", "f"]
            code = self.zel(*arguments).stdout.decode().split()[0]
            self.assertEqual(self.zel(*arguments, "--verify", code.upper()).stdout, b"f: OK\n")
            for i in (0, len(code) // 2, len(code) - 1):
                wrong = code[:i] + ("1" if code[i] == "0" else "0") + code[i + 1:]
                done = self.zel(*arguments, "--verify", wrong, exit=MISMATCH)
                self.assertEqual(done.stdout, b"")
                self.assertIn(b"f: ", done.stderr)
            for malformed in (code[:-2], code + "00", "zz" + code[2:], ""):
                self.zel(*arguments, "--verify", malformed, exit=MALFORMED)
        self.zel(*arguments, "--verify", wrong, "-o", "verdict", exit=MISMATCH)
        self.assertFalse((self.folder / "verdict").exists())
        result = json.loads(self.zel(*arguments, "--json", "--verify", wrong, exit=MISMATCH).stdout)
        self.assertIs(result["verified"], False)

    def test_lists_of_both_forms(self):
        self.write("g\nh", b"more")
        for form in ([], ["--tag"]):
            listed = self.zel("mac", "--key-file", "key", *form, "f", "g\nh").stdout
            done = self.zel("mac", "--key-file", "key", "-c", "-", stdin=listed)
            self.assertEqual(done.stdout, b"f: OK\n\\g\\nh: OK\n")
            self.write("other", KEY[::-1])
            self.zel("mac", "--key-file", "other", "-c", "-", stdin=listed, exit=MISMATCH)
        theirs = self.other("openssl", "dgst", "-sha384", "-mac", "HMAC", "-macopt",
                            f"hexkey:{KEY.hex()}", "f")
        done = self.zel("mac", "--key-file", "key", "-c", "-", stdin=theirs.encode())
        self.assertEqual(done.stdout, b"f: OK\n")

    def test_refused_without_legacy(self):
        done = self.zel("mac", "-a", "md5", "--key-file", "key", "f", exit=STATE)
        self.assertIn(b"--legacy", done.stderr)


class LongMac(MacTest):
    def test_beyond_512_mib(self):
        with open(self.folder / "sparse", "wb") as sparse:
            sparse.truncate((512 << 20) - 64)
        ours = self.zel("mac", "-a", "sha512", "--key-file", "key", "sparse").stdout.decode()
        self.assertEqual(ours.split()[0], self.openssl("sha512", KEY, "sparse"))


if __name__ == "__main__":
    support.main()
