"""zel rand and zel prime: amounts, encodings, refusals when a source fails, properties of primes."""

import base64
import collections
import json
import math
import os
import re
import subprocess
import time
import unittest

import support
from support import USAGE, ZEL, ToolTest, available

ENTROPY = 7
SHIMS = os.environ["ZEL_TEST_SHIMS"].split(":")


class Rand(ToolTest):
    def test_amounts_and_encodings(self):
        for amount in (0, 1, 2, 3, 47, 48, 49, 49151, 49152, 49153, 65536, 200001):
            hexadecimal = self.zel("rand", str(amount)).stdout
            self.assertRegex(hexadecimal, rb"^[0-9a-f]*\n$")
            self.assertEqual(len(hexadecimal), 2 * amount + 1)
            lines = self.zel("rand", "--base64", str(amount)).stdout
            self.assertEqual(len(base64.b64decode(lines, validate=False)), amount)
            self.assertTrue(all(len(line) == 64 for line in lines.split()[:-1]))
            self.assertEqual(len(self.zel("rand", "--raw", str(amount)).stdout), amount)
        self.assertEqual(len(self.zel("rand", "--raw", "3K").stdout), 3 << 10)
        self.assertEqual(len(self.zel("rand", "--raw", "2M", "-o", "f").stdout), 0)
        self.assertEqual((self.folder / "f").stat().st_size, 2 << 20)
        self.assertEqual((self.folder / "f").stat().st_mode & 0o777, 0o600)
        for amount in ("-1", "1.5", "x", "K", "1KK", "1k", "20000000000000000000", "99999999999T"):
            self.zel("rand", "--", amount, exit=USAGE)
        self.zel("rand", "--raw", "--hex", exit=USAGE)

    def test_nothing_repeats_and_bytes_are_even(self):
        # More than one request and more than one piece; no aligned 16 bytes may come twice.
        data = self.zel("rand", "--raw", "1M").stdout + self.zel("rand", "--raw", "1M").stdout
        blocks = collections.Counter(data[i:i + 16] for i in range(0, len(data), 16))
        self.assertEqual(max(blocks.values()), 1)
        counts = collections.Counter(data)
        expected = len(data) / 256
        chi_square = sum((counts[value] - expected) ** 2 / expected for value in range(256))
        self.assertLess(abs(chi_square - 255), 7 * math.sqrt(2 * 255))

    def test_reseeds_and_goes_on(self):
        done = self.zel("rand", "--raw", "70M", "--progress=json", "-o", "f")
        self.assertEqual((self.folder / "f").stat().st_size, 70 << 20)
        last = json.loads(done.stderr.splitlines()[-1])
        self.assertEqual((last["event"], last["done"], last["total"]), ("done", 70 << 20, 70 << 20))

    def test_json_carries_the_data(self):
        result = json.loads(self.zel("rand", "--json", "20").stdout)
        self.assertEqual(len(bytes.fromhex(result["data"])), 20)
        self.zel("rand", "--json", "--raw", "20", exit=USAGE)
        self.zel("rand", "--json", "2M", exit=USAGE)

    def test_failing_sources_end_it_loudly_and_empty_handed(self):
        for shim, words in zip(SHIMS, (b"count is 13", b"successive output blocks equal")):
            # The address sanitizer, where there is one, would refuse to come second.
            preloaded = dict(os.environ, LD_PRELOAD=shim, ASAN_OPTIONS="verify_asan_link_order=0")
            done = self.zel("rand", "--raw", "-o", "f", exit=ENTROPY, env=preloaded)
            self.assertIn(words, done.stderr)
            self.assertFalse((self.folder / "f").exists())
            self.assertEqual(self.zel("rand", exit=ENTROPY, env=preloaded).stdout, b"")

    def test_not_onto_a_terminal(self):
        ours, theirs = os.openpty()
        done = subprocess.run([ZEL, "rand", "--raw"], stdout=theirs, stderr=subprocess.PIPE)
        os.close(theirs)
        os.close(ours)
        self.assertEqual(done.returncode, USAGE)


class LongRand(ToolTest):
    @unittest.skipUnless(available("rngtest"), "rngtest of rng-tools5 is not installed")
    def test_fips_140_2(self):
        self.zel("rand", "--raw", "16M", "-o", "f")
        with open(self.folder / "f", "rb") as data:
            done = subprocess.run(["rngtest"], stdin=data, capture_output=True)
        failures = int(re.search(rb"failures: (\d+)", done.stderr).group(1))
        # About 8 blocks of 10,000 fail by chance: 5 of these 6710.
        self.assertLess(failures, 20, done.stderr)


class Prime(ToolTest):
    def primes(self, *arguments):
        return [int(line, 16) for line in self.zel("prime", *arguments).stdout.split()]

    def assert_prime(self, number):
        self.assertIn("is prime", self.other("openssl", "prime", str(number)))

    def test_sizes(self):
        for bits in (16, 17, 31, 32, 33, 64, 127, 512, 1024):
            found = self.primes(str(bits), "--count", "3" if bits < 512 else "1")
            for prime in found:
                self.assertEqual(prime.bit_length(), bits)
                self.assert_prime(prime)
            if bits >= 64:
                self.assertEqual(len(set(found)), len(found))
        # Small primes sometimes fail a round of the test themselves; that must not show.
        for prime in self.primes("16", "-n", "2000"):
            self.assertTrue(all(prime % divisor for divisor in range(2, 256)))
        decimal = self.zel("prime", "300", "--decimal").stdout.decode().strip()
        self.assertEqual(int(decimal).bit_length(), 300)
        self.assert_prime(int(decimal))

    def test_e_and_strong(self):
        for arguments, e in ((["256", "--e", "3"], 3), (["256", "-e", "0x10001", "--strong"], 65537)):
            for prime in self.primes(*arguments, "-n", "8"):
                self.assertEqual(math.gcd(e, prime - 1), 1)
                self.assertEqual(prime.bit_length(), 256)
                self.assert_prime(prime)

    def test_results_for_programs(self):
        done = self.zel("prime", "--json", "64", "-n", "2", "--progress=json")
        result = json.loads(done.stdout)
        self.assertEqual([int(text, 16).bit_length() for text in result["primes"]], [64, 64])
        self.assertEqual(json.loads(done.stderr.splitlines()[-1])["unit"], "primes")
        self.zel("prime", "64", "-o", "p")
        self.assertEqual((self.folder / "p").stat().st_mode & 0o777, 0o600)

    def test_usage(self):
        for arguments in ([], ["15"], ["4097"], ["255", "--strong"], ["64", "--e", "4"],
                          ["64", "--e", "1"], ["64", "--e", "0x"], ["many"]):
            self.zel("prime", *arguments, exit=USAGE)

    def test_interrupted_it_leaves_nothing(self):
        process = subprocess.Popen([ZEL, "prime", "4096", "-n", "50", "-o", "p"], cwd=self.folder)
        time.sleep(0.3)
        process.terminate()
        self.assertEqual(process.wait(30), -15)
        self.assertEqual(list(self.folder.iterdir()), [])


if __name__ == "__main__":
    support.main()
