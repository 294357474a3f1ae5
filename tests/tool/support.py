"""What the tests of the command share: running it as a user would, in a folder of their own."""

import os
import pathlib
import subprocess
import tempfile
import unittest

ZEL = os.environ["ZEL"]
ALGORITHMS = ["sha224", "sha256", "sha384", "sha512", "sha1", "has160", "ripemd160", "md5", "md2"]
APPROVED = ALGORITHMS[:4]

DONE, MISMATCH, USAGE, FILE, STATE, SELF_TEST, MALFORMED = 0, 1, 2, 3, 4, 5, 6


def available(program):
    """Whether another implementation is there to compare with."""
    return any(os.access(os.path.join(folder, program), os.X_OK)
               for folder in os.environ["PATH"].split(":"))


class ToolTest(unittest.TestCase):
    """Runs in an empty folder, which must hold no temporary of the command afterwards."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="zel-test-")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def tearDown(self):
        left = [str(path) for path in self.folder.rglob(".zel-*")]
        self.assertEqual(left, [], "temporaries left behind")

    def write(self, name, content):
        path = self.folder / name
        path.write_bytes(content)
        return path

    def run_program(self, *arguments, stdin=b"", **options):
        return subprocess.run(arguments, input=stdin, cwd=self.folder,
                              capture_output=True, timeout=600, **options)

    def zel(self, *arguments, exit=DONE, stdin=b"", **options):
        """Runs the command, which must end with that exit code; every message must be one line
        that begins with the name of the command."""
        done = self.run_program(ZEL, *arguments, stdin=stdin, **options)
        self.assertEqual(done.returncode, exit, done)
        for line in done.stderr.splitlines():
            self.assertTrue(line.startswith((b"zel", b"{")), done)
        if exit not in (DONE, MISMATCH):
            self.assertIn(b"; ", done.stderr, "no advice")
        return done

    def other(self, *arguments, stdin=b""):
        """Runs someone else's program, which must succeed, and gives its output as text."""
        done = self.run_program(*arguments, stdin=stdin)
        self.assertEqual(done.returncode, 0, done)
        return done.stdout.decode("utf-8", "surrogateescape")


def main():
    unittest.main(verbosity=2)
