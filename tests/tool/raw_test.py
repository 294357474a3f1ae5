"""zel raw: every cipher and mode against openssl, pieces, padding, refusals."""

import random
import subprocess
import unittest

import support
from support import DONE, FILE, MALFORMED, STATE, USAGE, ZEL, ToolTest

BLOCK = {"aria-128": 16, "aria-192": 16, "aria-256": 16, "seed": 16, "aes-128": 16, "aes-256": 16}
KEY = {"aria-128": 16, "aria-192": 24, "aria-256": 32, "seed": 16, "aes-128": 16, "aes-256": 32,
       "des": 8, "des-ede": 16, "des-ede3": 24, "bf": 16, "cast5": 16, "rc2": 16}
MODES = ["ecb", "cbc", "cfb", "cfb8", "cfb1", "ofb", "ctr"]
APPROVED = ["aria-128", "aria-192", "aria-256", "seed"]
PIECE = 1 << 20


class RawTest(ToolTest):
    def raw(self, name, key, iv, *arguments, stdin=b"", exit=DONE):
        legacy = [] if name.rsplit("-", 1)[0] in APPROVED else ["--legacy"]
        iv = [] if name.endswith("-ecb") else ["--iv", iv.hex()]
        return self.zel("raw", name, "-q", *legacy, "--key-hex", key.hex(), *iv, *arguments,
                        stdin=stdin, exit=exit).stdout

    def openssl(self, name, key, iv, *arguments, stdin):
        iv = ["-iv", iv.hex()] if iv and not name.endswith("-ecb") else []
        done = self.run_program("openssl", "enc", f"-{name}", "-K", key.hex(), *iv, *arguments,
                                "-provider", "default", "-provider", "legacy", stdin=stdin)
        return done.stdout if done.returncode == 0 else None


class Raw(RawTest):
    def test_agrees_with_openssl(self):
        generator = random.Random(3)
        compared = set()
        for cipher, key_len in KEY.items():
            for mode in MODES:
                name = f"{cipher}-{mode}"
                key = generator.randbytes(key_len)
                iv = generator.randbytes(BLOCK.get(cipher, 8))
                for length in (0, 37, 65537):
                    data = generator.randbytes(length)
                    theirs = self.openssl(name, key, iv, stdin=data)
                    if theirs is None:
                        continue
                    compared.add(name)
                    with self.subTest(name=name, length=length):
                        self.assertEqual(self.raw(name, key, iv, stdin=data), theirs)
                        self.assertEqual(self.raw(name, key, iv, "-d", stdin=theirs), data)
        self.assertEqual(len(compared), 67, sorted(compared))

    def test_every_cipher_and_mode_comes_back(self):
        generator = random.Random(4)
        names = self.zel("completion", "bash").stdout.decode()
        for cipher, key_len in dict(KEY, idea=16, rc5=16, tavo=16, tavoold=16).items():
            for mode in MODES + ["cts", "cfb-block", "ofb8"]:
                name = f"{cipher}-{mode}"
                self.assertIn(name, names)
                key = generator.randbytes(key_len)
                iv = generator.randbytes(16 if cipher.startswith("tavo") else BLOCK.get(cipher, 8))
                data = generator.randbytes(70001)
                sent = self.raw(name, key, iv, stdin=data)
                self.assertNotEqual(sent[:70001], data)
                self.assertEqual(self.raw(name, key, iv, "-d", stdin=sent), data)

    def test_pieces_of_a_pipe_and_of_a_file_are_one_message(self):
        key, iv = bytes(range(32)), bytes(16)
        data = random.Random(5).randbytes(2 * PIECE + 17)
        for length in (PIECE - 1, PIECE, PIECE + 1, 2 * PIECE, len(data)):
            self.write("f", data[:length])
            whole = self.raw("aria-256-cbc", key, iv, "f")
            self.assertEqual(len(whole), length // 16 * 16 + 16)
            self.assertEqual(self.raw("aria-256-cbc", key, iv, stdin=data[:length]), whole)
            slow = f"(head -c 5; sleep 0.1; cat) <f | '{ZEL}' raw aria-256-cbc -q -K {key.hex()} --iv {iv.hex()}"
            self.assertEqual(self.run_program("sh", "-c", slow).stdout, whole)
            self.write("c", whole)
            self.assertEqual(self.raw("aria-256-cbc", key, iv, "-d", "c"), data[:length])

    def test_rc4_and_effective_bits(self):
        # RFC 6229, and RFC 2268, section 5.
        stream = self.zel("raw", "--legacy", "-q", "rc4", "-K", "0102030405", stdin=bytes(16)).stdout
        self.assertEqual(stream.hex(), "b2396305f03dc027ccc3524a0a1118a8")
        data = random.Random(6).randbytes(PIECE + 3)
        theirs = self.openssl("rc4", bytes(range(16)), b"", stdin=data)
        self.assertEqual(self.zel("raw", "--legacy", "-q", "rc4", "-K", bytes(range(16)).hex(), stdin=data).stdout,
                         theirs)
        key = ["--legacy", "-q", "rc4", "-K", "00112233445566778899aabbccddeeff"]
        self.assertEqual(self.zel("raw", *key, stdin=self.zel("raw", *key, stdin=data).stdout).stdout,
                         data)
        block = self.zel("raw", "--legacy", "-q", "rc2-ecb", "--no-padding", "--effective-bits", "63",
                         "-K", "00" * 8, stdin=bytes(8)).stdout
        self.assertEqual(block.hex(), "ebb773f993278eff")

    def test_padding(self):
        key, iv = bytes(16), bytes(16)
        sent = self.raw("seed-cbc", key, iv, stdin=b"sixteen bytes...")
        self.assertEqual(len(sent), 32)
        bare = self.raw("seed-cbc", key, iv, "--no-padding", stdin=b"sixteen bytes...")
        self.assertEqual(bare, sent[:16])
        for wrong in (sent[:31], b"", bare[:-1] + bytes([bare[-1] ^ 1])):
            self.raw("seed-cbc", key, iv, "-d", "-o", "plain", stdin=wrong, exit=MALFORMED)
            self.assertFalse((self.folder / "plain").exists())
        self.raw("seed-cbc", key, iv, "--no-padding", stdin=b"odd", exit=MALFORMED)
        self.raw("aria-128-cts", key, iv, stdin=bytes(16), exit=MALFORMED)

    def test_refusals(self):
        key = ["-q", "-K", "00" * 16]
        iv = ["--iv", "00" * 16]
        self.write("f", b"data")
        for arguments, code in ((["aria-128-cbc", *key], USAGE), (["aria-128-ecb", *key, *iv], USAGE),
                                (["aria-128-cbc", *key, "--iv", "00" * 8], MALFORMED),
                                (["aria-128-cbc", *key, "--iv", "x" * 32], MALFORMED),
                                (["aria-256-ctr", *key, *iv], MALFORMED), (["aria-128", *key], USAGE),
                                (["cbc", *key], USAGE), ([], USAGE),
                                (["aria-128-ctr", *iv], USAGE),
                                (["aria-128-ctr", "--no-padding", *key, *iv], USAGE),
                                (["aria-128-ctr", "--effective-bits", "8", *key, *iv], USAGE),
                                (["aes-128-ctr", *key, *iv], STATE), (["rc4", *key], STATE),
                                (["aria-128-ctr", "missing", *key, *iv], FILE)):
            with self.subTest(arguments):
                files = [] if "missing" in arguments or not arguments else ["f"]
                self.assertEqual(self.zel("raw", *arguments, *files, exit=code).stdout, b"")
        self.zel("raw", "aria-128-ctr", "--json", *key, *iv, "f", exit=USAGE)

    @unittest.skipUnless(support.available("sh"), "no shell")
    def test_full_disk_leaves_nothing(self):
        command = (f"ulimit -f 64; '{ZEL}' raw aria-128-ctr -q -K {'00' * 16} --iv {'00' * 16} "
                   "/dev/zero -o out")
        done = subprocess.run(["bash", "-c", command], cwd=self.folder, capture_output=True)
        self.assertEqual(done.returncode, FILE, done)
        self.assertEqual(list(self.folder.iterdir()), [])


if __name__ == "__main__":
    support.main()
