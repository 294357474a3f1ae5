"""zel integrity with the companion that the build writes, zel selftest, and what a failing self-test
does to every command."""

import hashlib
import hmac
import json
import os
import pathlib
import re
import subprocess
import unittest

import support
from support import FILE, SELF_TEST, USAGE, ZEL, ToolTest

LIBRARY = pathlib.Path(ZEL).parent / os.environ["ZEL_LIBRARY"]
STAMP = pathlib.Path(ZEL).parent / "zel_stamp"


def module_key():
    """The key, from the symbol table of the library file."""
    symbols = subprocess.run(["readelf", "-W", "--dyn-syms", LIBRARY], capture_output=True, text=True)
    address = int(re.search(r"([0-9a-f]+) +16 OBJECT .* g_hmac_key", symbols.stdout).group(1), 16)
    return LIBRARY.read_bytes()[address:address + 16]  # the first segment maps the file from 0


def digest(path):
    return hmac.new(module_key(), path.read_bytes(), hashlib.sha1).hexdigest()


class IntegrityCommand(ToolTest):
    def test_the_build_wrote_the_companion_of_its_library(self):
        companion = pathlib.Path(f"{LIBRARY}.hmac")
        self.assertEqual(companion.read_text(), digest(LIBRARY) + "\n")
        self.assertEqual(self.zel("integrity").stdout, f"{LIBRARY.resolve()}: OK\n".encode())

    def test_check_says_what_is_wrong(self):
        self.write("lib", b"module")
        good = digest(self.folder / "lib")
        self.assertIn(b"no digest in lib.hmac", self.zel("integrity", "--check", "lib", exit=SELF_TEST).stderr)
        self.write("lib.hmac", b"0" * 40)
        done = self.zel("integrity", "--check", "lib", "--json", exit=SELF_TEST)
        self.assertIn(f"expected {good}, found {'0' * 40} in lib.hmac".encode(), done.stderr)
        found = json.loads(done.stdout)
        self.assertEqual((found["expected"], found["found"], found["good"]), (good, "0" * 40, False))
        self.write("lib", bytes(65536))
        self.assertIn(b"65,536", self.zel("integrity", "--check", "lib", exit=SELF_TEST).stderr)
        self.zel("integrity", "--check", "missing", exit=FILE)
        self.zel("integrity", "--check", ".", exit=FILE)
        self.zel("integrity", "--check", "lib", "--stamp", "lib", exit=USAGE)

    def test_stamp_writes_and_does_not_overwrite_unasked(self):
        library = self.write("lib", b"module")
        self.assertEqual(self.zel("integrity", "--stamp", "lib").stdout, b"lib: OK\n")
        self.assertEqual((self.folder / "lib.hmac").read_text(), digest(library) + "\n")
        self.write("lib", b"Module")
        self.zel("integrity", "--stamp", "lib", exit=FILE)
        self.zel("integrity", "--check", "lib", exit=SELF_TEST)
        self.zel("integrity", "--stamp", "lib", "-f")
        self.zel("integrity", "--check", "lib")

    def test_the_build_lengthens_a_library_of_unlucky_length(self):
        library = self.write("lib", bytes(131072))
        self.assertEqual(self.run_program(STAMP, library).returncode, 0)
        self.assertEqual(library.stat().st_size, 131073)
        self.zel("integrity", "--check", "lib")
        self.assertEqual(self.run_program(STAMP, library).returncode, 0)
        self.assertEqual(library.stat().st_size, 131073)


def faulty(test):
    """An environment with a library in which that self-test fails, and without a companion."""
    return {"env": dict(os.environ, LD_LIBRARY_PATH=os.environ["ZEL_FAULTY"],
                        ZEL_FAULTY_SELF_TEST=f"SELFTEST_{test}")}


class SelfTestCommand(ToolTest):
    def exported_tests(self):
        """How many tests of one algorithm the library has."""
        symbols = self.other("nm", "-D", "--defined-only", LIBRARY)
        runs = "VerifiedAlgorithm|SequentialRNGTest|DoPowerUpSelfTest|VerifyModuleHMAC|DoModule"
        return len(re.findall(rf" T SELFTEST_(?!{runs})", symbols))

    def test_everything_is_in_order(self):
        text = self.zel("selftest").stdout.decode()
        found = json.loads(self.zel("selftest", "--json").stdout)
        self.assertEqual(len(found["tests"]), self.exported_tests())
        for test in found["tests"]:
            self.assertEqual(test["code"], 0)
            self.assertRegex(text, rf"(?m)^{re.escape(test['name'])} +ok +[0-9.]+ ms$")
        self.assertEqual((found["state"]["value"], found["ordered_run"]["code"]), (4, 0))
        self.assertIs(found["integrity"]["good"], True)
        self.assertIs(found["strong_rand"], True)
        self.assertTrue(text.endswith("module state         4, verified service\n"))

    def test_a_failure_shows_and_ends_every_command(self):
        found = json.loads(self.zel("selftest", "--json", exit=SELF_TEST, **faulty("HMAC_SHA384")).stdout)
        failed = [test["name"] for test in found["tests"] if test["code"] not in (0, -9001)]
        self.assertEqual((failed, found["state"]["value"]), (["HMAC-SHA-384"], -98))
        self.assertIs(found["integrity"]["good"], False)
        for command in (["hash"], ["rand", "1"], ["info"], ["hash", "--legacy", "-a", "md5"]):
            done = self.zel(*command, exit=SELF_TEST, **faulty("HMAC_SHA384"))
            self.assertEqual(done.stdout, b"")
            self.assertIn(b"-9145", done.stderr)
        self.zel("hash", **faulty("none"))
        self.zel("completion", "bash", **faulty("SEED"))


if __name__ == "__main__":
    support.main()
