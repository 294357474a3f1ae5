"""zel hash: digests and lists, against sha256sum and its relatives, openssl and rhash."""

import json
import os
import random

import support
from support import ALGORITHMS, APPROVED, DONE, FILE, MALFORMED, MISMATCH, STATE, USAGE, ToolTest

COREUTILS = {"sha1": "sha1sum", "sha224": "sha224sum", "sha256": "sha256sum",
             "sha384": "sha384sum", "sha512": "sha512sum", "md5": "md5sum"}
# Around the padding boundaries of both block sizes, the edges of the read buffer, and more.
SIZES = [0, 1, 55, 56, 63, 64, 65, 111, 112, 119, 120, 127, 128, 129, 1000, 65536, 262143, 262144,
         262145, 1 << 20, (3 << 20) + 7]
# RFC 1319, appendix A.5.
MD2 = {b"": "8350e5a3e24c153df2275c9f80692773", b"abc": "da853b0d3f88d99b30283a69e6ded6bb",
       b"abcdefghijklmnopqrstuvwxyz": "4e8ddff3650292ab5a4108c3aa47940b"}
AWKWARD = ["plain", "two words", " leading", "back\\slash", "line\nend", "return\rhere", "(round) = 1",
           "*star", "-dash", "snow\N{SNOWMAN}", "#hash"]


class Digests(ToolTest):
    def setUp(self):
        super().setUp()
        generator = random.Random(1)
        for size in SIZES:
            self.write(f"f{size}", generator.randbytes(size))
        self.files = [f"f{size}" for size in SIZES]

    def test_every_size_agrees_with_coreutils(self):
        for name, program in COREUTILS.items():
            with self.subTest(name):
                ours = self.zel("hash", "--legacy", "-a", name, *self.files).stdout
                self.assertEqual(ours.decode(), self.other(program, *self.files))

    def test_every_size_agrees_with_rhash(self):
        for name in ("has160", "ripemd160", "sha384"):
            with self.subTest(name):
                ours = self.zel("hash", "--legacy", "-a", name, *self.files).stdout
                theirs = self.other("rhash", "--simple", f"--{name}", *self.files)
                self.assertEqual(ours.decode(), theirs)

    def test_md2(self):
        for message, digest in MD2.items():
            done = self.zel("hash", "--legacy", "-a", "MD2", stdin=message)
            self.assertEqual(done.stdout.decode(), f"{digest}  -\n")

    def test_a_stream_is_its_file_however_it_is_cut(self):
        whole = (self.folder / self.files[-1]).read_bytes()
        expected = self.zel("hash", self.files[-1]).stdout.split()[0]
        slow = self.run_program("sh", "-c", f"(head -c 100; sleep 0.05; cat) | '{support.ZEL}' hash",
                                stdin=whole)
        self.assertEqual(slow.stdout.split(), [expected, b"-"])
        both = self.zel("hash", "-", self.files[0], stdin=whole).stdout.splitlines()
        self.assertEqual([line.split()[1] for line in both], [b"-", b"f0"])

    def test_beyond_the_sizes_where_counters_carry(self):
        # The library's own SHA-384 and SHA-512 leave the standard at 512 MiB; the command does not.
        with open(self.folder / "sparse", "wb") as sparse:
            sparse.truncate((512 << 20) + 113)
        ours = self.zel("hash", "-a", "sha512", "sparse").stdout.decode().split()[0]
        theirs = self.other("openssl", "dgst", "-sha512", "-r", "sparse").split()[0]
        self.assertEqual(ours, theirs)


class Long(ToolTest):
    def test_more_than_4_gib(self):
        with open(self.folder / "sparse", "wb") as sparse:
            sparse.truncate((4 << 30) + 4097)
            sparse.seek((4 << 30) + 5)
            sparse.write(b"beyond")
        for name in ("sha256", "sha384"):
            ours = self.zel("hash", "-a", name, "sparse").stdout.decode().split()[0]
            theirs = self.other("openssl", "dgst", f"-{name}", "-r", "sparse").split()[0]
            self.assertEqual(ours, theirs)


class Lists(ToolTest):
    def test_awkward_names_in_all_forms_both_ways(self):
        for name in AWKWARD:
            self.write(name, name.encode())
        names = ["--", *AWKWARD]
        for name, program in COREUTILS.items():
            for form in ([], ["--tag"], ["-z"], ["-z", "--tag"]):
                with self.subTest(f"{name} {form}"):
                    ours = self.zel("hash", "--legacy", "-a", name, *form, *names).stdout
                    theirs = self.run_program(program, *form, *names).stdout
                    self.assertEqual(ours, theirs)
                    if "-z" not in form:
                        self.other(program, "-c", "--strict", stdin=ours)
                    checked = self.zel("hash", "--legacy", "-a", name, *form[:form.count("-z")],
                                       "-c", "-", stdin=theirs).stdout
                    self.assertEqual(checked.count(b": OK\n"), len(AWKWARD))

    def test_lists_of_openssl_and_rhash(self):
        self.write("a b", b"abc")
        lists = [["openssl", "dgst", "-sha256"], ["openssl", "dgst", "-sha512", "-r"],
                 ["openssl", "dgst", "-ripemd160"], ["rhash", "--bsd", "--has160"],
                 ["rhash", "--bsd", "--ripemd160"], ["sha256sum", "-b"]]
        for program in lists:
            with self.subTest(program):
                content = self.other(*program, "a b").encode()
                done = self.zel("hash", "--legacy", "-c", "-", stdin=content.replace(b"\n", b"\r\n"))
                self.assertEqual(done.stdout, b"a b: OK\n")
        ours = self.zel("hash", "--legacy", "-a", "ripemd160", "--tag", "a b").stdout
        self.assertIn("a b", self.other("rhash", "-c", "-", stdin=ours))

    def test_the_length_tells_an_untagged_algorithm_where_it_can(self):
        self.write("f", b"abc")
        for name in APPROVED:
            content = self.zel("hash", "-a", name, "f").stdout
            self.assertEqual(self.zel("hash", "-c", "-", stdin=content).stdout, b"f: OK\n")
        content = self.other("sha1sum", "f").encode()
        done = self.zel("hash", "--legacy", "-c", "-", stdin=content, exit=MALFORMED)
        self.assertIn(b"line 1", done.stderr)
        self.assertIn(b"-a", done.stderr)

    def test_what_is_wrong_decides_the_exit_code(self):
        self.write("good", b"good")
        self.write("bad", b"bad")
        content = self.zel("hash", "good", "bad").stdout
        lines = content.splitlines(keepends=True)
        self.write("bad", b"changed")
        done = self.zel("hash", "-c", "-", stdin=content, exit=MISMATCH)
        self.assertEqual(done.stdout, b"good: OK\nbad: FAILED\n")
        self.assertIn(b"1 file of 2 did NOT match", done.stderr)
        quiet = self.zel("hash", "-q", "-c", "-", stdin=content, exit=MISMATCH)
        self.assertEqual((quiet.stdout, quiet.stderr), (b"bad: FAILED\n", b""))

        missing = lines[0] + lines[0].replace(b"good", b"missing")
        done = self.zel("hash", "-c", "-", stdin=missing, exit=FILE)
        self.assertIn(b"missing: FAILED open or read\n", done.stdout)
        self.assertIn(b"missing: No such file", done.stderr)
        self.zel("hash", "--ignore-missing", "-c", "-", stdin=missing)
        self.zel("hash", "--ignore-missing", "-c", "-", exit=FILE,
                 stdin=lines[0].replace(b"good", b"missing"))
        # A digest that does not match outweighs all else.
        self.zel("hash", "-c", "-", stdin=content + missing + b"?\n", exit=MISMATCH)

    def test_damaged_lines_are_named_and_fail(self):
        self.write("f", b"abc")
        line = self.zel("hash", "f").stdout
        damaged = [line[1:], line[:63] + b"g" + line[64:], line.replace(b"  ", b" "),
                   line.replace(b"  f", b""), b"\\" + line.replace(b"f\n", b"\\q\n"),
                   b"SHA256 (f = " + line[:64], b"SHA999 (f) = " + line[:64],
                   b"SHA512 (f) = " + line[:64], line[2:]]
        for bad in damaged:
            with self.subTest(bad):
                content = b"# comment\n\n" + line + bad.rstrip(b"\n") + b"\n"
                done = self.zel("hash", "-c", "-", stdin=content, exit=MALFORMED)
                self.assertIn(b"standard input, line 4: ", done.stderr)
                self.assertEqual(done.stdout, b"f: OK\n")
                self.zel("hash", "--lenient", "-c", "-", stdin=content)
        for nothing in (b"", b"\n", b"no list\n", b"\0\xff\xfe" * 1000):
            self.zel("hash", "-c", "-", stdin=nothing, exit=MALFORMED)

    def test_random_damage_never_passes_or_crashes(self):
        self.write("f", b"abc")
        good = self.zel("hash", "--tag", "f").stdout
        generator = random.Random(7)
        for _ in range(60):
            bad = bytearray(good)
            bad[generator.randrange(len(bad) - 1)] ^= 1 << generator.randrange(8)
            done = self.run_program(support.ZEL, "hash", "-c", "-", stdin=bytes(bad))
            # Only the case of a hexadecimal digit, the case of the tag and optional spaces may vary.
            same = bytes(bad).upper().replace(b" ", b"") == good.upper().replace(b" ", b"")
            self.assertIn(done.returncode, (DONE,) if same else (MISMATCH, FILE, MALFORMED), bad)


class Refusals(ToolTest):
    def test_algorithms_outside_the_approved_service(self):
        self.write("f", b"abc")
        for name in ALGORITHMS:
            with self.subTest(name):
                if name in APPROVED:
                    self.assertEqual(self.zel("hash", "-a", name, "f").stderr, b"")
                    continue
                refused = self.zel("hash", "-a", name, "f", "no such file", exit=STATE)
                self.assertEqual(refused.stdout, b"")
                self.assertEqual(refused.stderr.count(b"\n"), 1)
                self.assertIn(b"--legacy", refused.stderr)
                opened = self.zel("hash", "--legacy", "-a", name, "f")
                self.assertEqual(opened.stderr.count(b"\n"), 1)
                self.assertIn(b"warning", opened.stderr)
                self.zel("hash", "-c", "-", "-a", name, stdin=opened.stdout, exit=STATE)

    def test_files_that_cannot_be_read_do_not_stop_the_others(self):
        self.write("f", b"abc")
        (self.folder / "folder").mkdir()
        done = self.zel("hash", "missing", "folder", "new\nline", "f", exit=FILE)
        self.assertEqual(done.stdout.split(), [self.zel("hash", "f").stdout.split()[0], b"f"])
        lines = done.stderr.decode().splitlines()
        self.assertEqual(len(lines), 3)
        for line, name in zip(lines, ("missing: ", "folder: ", "new\\nline: ")):
            self.assertIn(name, line)
        if os.geteuid() != 0:
            self.write("shut", b"").chmod(0)
            self.zel("hash", "shut", exit=FILE)
        result = json.loads(self.zel("hash", "--json", "missing", "f", exit=FILE).stdout)
        self.assertEqual([sorted(file) for file in result["files"]],
                         [["error", "file"], ["bytes", "digest", "file"]])
        self.assertEqual(result["exit"], FILE)

    def test_usage(self):
        self.write("f", b"abc")
        for arguments in (["-a", "sha3", "f"], ["--no-such-flag"], ["-c"], ["-c", "f", "f"],
                          ["--lenient", "f"], ["--progress=fast", "f"]):
            with self.subTest(arguments):
                done = self.zel("hash", *arguments, exit=USAGE)
                self.assertEqual(done.stderr.count(b"\n"), 1)
        # Names of commands are names of files like any other.
        self.write("mac", b"")
        self.assertIn(b"  mac\n", self.zel("hash", "mac").stdout)


if __name__ == "__main__":
    support.main()
