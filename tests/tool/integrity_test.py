"""zel integrity, and the companion that the build writes."""

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


if __name__ == "__main__":
    support.main()
