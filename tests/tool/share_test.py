"""zel split, combine and reissue: every way back, by Lagrange's formula too, and all that goes wrong."""

import hashlib
import itertools
import json
import os
import pathlib
import pty
import random
import re
import subprocess
import unittest

import support
from support import FILE, MALFORMED, MISMATCH, STATE, USAGE, ZEL, ToolTest

NAMES = ["zel-share", "scheme", "threshold", "index", "set", "length", "prime", "x", "y", "checksum"]


def parse(text):
    """A share by docs/shares.md alone."""
    lines = text.decode("ascii").splitlines(keepends=True)
    share = dict(re.fullmatch(r"([a-z-]+): (\S+)\n", line).groups() for line in lines)
    assert list(share) == NAMES, share
    assert share["checksum"] == checksum("".join(lines[:-1]))
    return share


def checksum(body):
    return hashlib.sha256(body.encode()).hexdigest()[:16]


def forge(share, **changes):
    """The share with other values and a checksum that is right again."""
    share = {**share, **changes}
    body = "".join(f"{name}: {share[name]}\n" for name in NAMES[:-1])
    return (body + f"checksum: {checksum(body)}\n").encode()


def secret_of(shares):
    """The secret by Lagrange's formula and docs/shares.md."""
    p = int(shares[0]["prime"], 16)
    points = [(int(share["x"], 16), int(share["y"], 16)) for share in shares]
    s = 0
    for i, (xi, yi) in enumerate(points):
        for j, (xj, _) in enumerate(points):
            if j != i:
                yi = yi * xj * pow(xj - xi, -1, p) % p
        s += yi
    length = int(shares[0]["length"])
    encoded = (s % p).to_bytes(33 + length, "big")
    salt, tag, secret = encoded[1:17], encoded[17:33], encoded[33:]
    made = hashlib.sha256(b"zel-share 1" + bytes.fromhex(shares[0]["set"]) +
                          bytes([int(shares[0]["threshold"])]) + salt + secret).digest()
    assert encoded[0] == 1 and made[:16] == tag
    return secret


class Shares(ToolTest):
    def split(self, secret, threshold=2, count=3, name="s"):
        self.zel("split", "--legacy", "-q", "-f", "-t", str(threshold), "-n", str(count), "-o", name,
                 stdin=secret)
        return [f"{name}.share{i + 1}" for i in range(count)]

    def content(self, file):
        return (self.folder / file).read_bytes()

    def combine(self, *files, **options):
        done = self.zel("combine", "--legacy", "-q", *files, **options)
        if options.get("exit"):
            self.assertEqual((done.stdout, done.stderr.count(b"\n")), (b"", 1))
        return done.stdout if not options.get("exit") else done.stderr

    def test_every_choice_gives_exactly_the_bytes_back(self):
        generator = random.Random(3)
        secrets = [b"\0", b"\n", b"\0\0\0\x01", bytes(40), b"\xff" * 16, generator.randbytes(133)]
        for threshold, secret in itertools.product((2, 3), secrets):
            files = self.split(secret, threshold, 5)
            shares = {file: parse(self.content(file)) for file in files}
            for chosen in itertools.permutations(files, threshold):
                self.assertEqual(secret_of([shares[file] for file in chosen]), secret)
            for chosen in itertools.combinations(files, threshold):
                self.assertEqual(self.combine(*chosen), secret)
            self.assertEqual(self.combine(*files), secret)
        self.assertEqual(len({share["set"] for share in shares.values()}), 1)
        self.assertEqual([share["index"] for share in shares.values()], list("12345"))
        longest = generator.randbytes(478)
        self.assertEqual(self.combine(*self.split(longest)[1:]), longest)

    def test_files_and_streams(self):
        self.write("key", b"0123456789abcdef")
        result = json.loads(self.zel("split", "--legacy", "-q", "--json", "key").stdout)
        self.assertEqual(result["shares"], ["key.share1", "key.share2", "key.share3"])
        for file in result["shares"]:
            self.assertEqual((self.folder / file).stat().st_mode & 0o777, 0o600)
        before = self.content("key.share1")
        (self.folder / "key.share1").unlink()
        self.zel("split", "--legacy", "key", exit=FILE)
        self.assertFalse((self.folder / "key.share1").exists(), "all files or none")
        self.write("key.share1", before)
        self.zel("combine", "--legacy", "-q", "-o", "again", "key.share1", "key.share3")
        self.assertEqual(self.content("again"), b"0123456789abcdef")
        self.assertEqual((self.folder / "again").stat().st_mode & 0o777, 0o600)
        everything = self.zel("split", "--legacy", "-q", "-o", "-", "key").stdout
        self.assertEqual(everything.count(b"zel-share"), 3)
        self.assertEqual(self.combine(stdin=everything), b"0123456789abcdef")
        # As it comes back from paper and mail.
        typed = b"# mine\r\n\r\n" + everything.replace(b"\n", b" \r\n").replace(b"x: ", b"x: 000")
        typed = re.sub(rb"(?<=: )[0-9a-f]{16,}", lambda found: found.group().upper(), typed)
        self.assertEqual(self.combine(stdin=typed), b"0123456789abcdef")

        # Some editors put a mark in front, and some leave no line end behind.
        mark, shares = b"\xef\xbb\xbf", [self.content(file) for file in result["shares"]]
        self.assertEqual(self.combine(stdin=mark + shares[0] + mark + shares[1]), b"0123456789abcdef")
        message = self.combine(stdin=shares[0].rstrip() + shares[1], exit=MALFORMED)
        self.assertIn(b"line 10: the line end", message)

    def test_shares_that_cannot_be_written(self):
        files = self.split(b"old", 2, 3)
        # The last one does not fit: what is new goes, and what was there stays a share.
        (self.folder / files[1]).unlink()
        (self.folder / files[2]).unlink()
        (self.folder / files[2]).symlink_to("/dev/full")
        self.zel("split", "--legacy", "-f", "-o", "s", stdin=b"new", exit=FILE)
        parse(self.content(files[0]))
        self.assertFalse((self.folder / files[1]).exists())
        # Two names of one file.
        self.split(b"old", 2, 2)
        old = [self.content(file) for file in files[:2]]
        (self.folder / files[2]).unlink()
        (self.folder / files[2]).symlink_to(files[0])
        message = self.zel("split", "--legacy", "-f", "-o", "s", stdin=b"new", exit=FILE).stderr
        self.assertIn(b"s.share3: leads to the same file as s.share1", message)
        self.assertEqual([self.content(file) for file in files[:2]], old)

    def test_the_documented_shares_stay_readable(self):
        page = pathlib.Path(__file__).parents[2] / "docs/shares.md"
        examples = re.findall(rb"```\n(zel-share.*?)```", page.read_bytes(), re.S)
        self.assertEqual(secret_of([parse(example) for example in examples]), b"attack at dawn")
        self.assertEqual(self.combine(stdin=b"".join(examples)), b"attack at dawn")

    def test_reissued_shares(self):
        files = self.split(b"\0secret", 2, 3)
        (self.folder / "s.share2").unlink()
        for new, index in (("s.share2", "2"), ("fourth", None)):
            number = ["--index", index] if index else []
            self.zel("reissue", "--legacy", "-q", *number, "-o", new, "s.share1", "s.share3")
            self.assertEqual((self.folder / new).stat().st_mode & 0o777, 0o600)
            self.assertEqual(parse(self.content(new))["index"], index or "4")
        files.append("fourth")
        for chosen in itertools.combinations(files, 2):
            self.assertEqual(self.combine(*chosen), b"\0secret")
            self.assertEqual(secret_of([parse(self.content(file)) for file in chosen]), b"\0secret")
        self.zel("reissue", "--legacy", "-q", "s.share1", exit=USAGE)
        taken = self.zel("reissue", "--legacy", "--index", "3", "s.share1", "s.share3", exit=USAGE)
        self.assertIn(b"the number of s.share3", taken.stderr)
        self.zel("reissue", "--legacy", "-q", "--index", "256", *files, exit=USAGE)
        files = self.split(b"secret", 3, 3)
        self.assertIn(b"threshold 3", self.zel("reissue", "--legacy", *files, exit=USAGE).stderr)

    def test_too_few_or_of_different_secrets(self):
        files, others = self.split(b"one", 3, 4), self.split(b"two", 3, 3, "t")
        for given in (files[:2], [files[0], files[0], files[1]], files[:1]):
            self.assertIn(b"3 different shares", self.combine(*given, exit=USAGE))
        message = self.combine(*files[:3], others[0], exit=MALFORMED)
        self.assertIn(b"t.share1: of another set than s.share1", message)

    def test_damaged_files(self):
        first, second = self.split(b"secret", 2, 2)
        whole = self.content(first)
        lines = whole.splitlines(keepends=True)
        for i, line in enumerate(lines):
            for damaged in (lines[:i] + lines[i + 1:],               # a line is missing
                            lines[:i] + [line[:-3] + b"\n"] + lines[i + 1:],
                            lines[:i] + [line[:-2] + b"~\n"] + lines[i + 1:],
                            lines[:i] + [line.replace(b":", b"", 1)] + lines[i + 1:],
                            lines[:i] + [line, line] + lines[i + 1:]):
                self.write("damaged", b"".join(damaged))
                self.assertIn(b"damaged: ", self.combine("damaged", second, exit=MALFORMED))
        generator = random.Random(4)
        for _ in range(60):
            at = generator.randrange(len(whole))
            changed = bytes([generator.choice(b"0123456789abcdef")])
            if whole[at:at + 1] in (b"\n", changed):
                continue
            self.write("damaged", whole[:at] + changed + whole[at + 1:])
            self.assertIn(b"damaged: ", self.combine("damaged", second, exit=MALFORMED))
        for content in (b"", b"\n#\n", b"\xff" * 300, b"zel-share: 1\n", bytes(1 << 17)):
            self.write("damaged", content)
            self.combine(second, "damaged", exit=MALFORMED)
        self.combine(second, "missing", exit=FILE)

    def test_altered_shares_with_a_right_checksum(self):
        files = self.split(b"secret", 2, 3)
        share = parse(self.content(files[0]))
        p, x, y = (int(share[name], 16) for name in ("prime", "x", "y"))
        cases = [({"y": f"{(y + 1) % p:x}"}, MISMATCH), ({"x": f"{x ^ 1:x}"}, MISMATCH),
                 ({"x": f"{p - x:x}", "y": f"{p - y:x}"}, MISMATCH),
                 ({"x": "0"}, MALFORMED), ({"y": share["prime"]}, MALFORMED),
                 ({"x": f"{x + (1 << 320):x}"}, MALFORMED), ({"y": f"{1 << 4160:x}"}, MALFORMED),
                 ({"prime": f"{p - 1:x}"}, MALFORMED), ({"prime": f"{p + 2:x}"}, MALFORMED),
                 ({"prime": "0"}, MALFORMED), ({"length": "5"}, MALFORMED),
                 ({"length": "0"}, MALFORMED), ({"length": "479"}, MALFORMED),
                 ({"threshold": "3"}, MALFORMED), ({"threshold": "1"}, MALFORMED),
                 ({"index": "256"}, MALFORMED), ({"set": share["set"][2:]}, MALFORMED),
                 ({"set": "0" * 32}, MALFORMED), ({"zel-share": "2"}, MALFORMED),
                 ({"scheme": "other"}, MALFORMED)]
        for changes, code in cases:
            with self.subTest(changes):
                self.write("forged", forge(share, **changes))
                self.combine("forged", files[1], exit=code)
                self.zel("reissue", "--legacy", "-q", "-o", "new", files[1], "forged", exit=code)
                if code == MISMATCH:  # enough good ones name the bad one, wherever it stands
                    for given in ("forged", *files[1:]), (*files[1:], "forged"):
                        self.assertIn(b"forged: does not fit", self.combine(*given, exit=code))
        self.write("twin", forge(share, y="1"))
        self.assertIn(b"contradicts", self.combine(files[0], "twin", files[1], exit=MISMATCH))
        # All of them under another name of the set, which the tag knows.
        for file in files:
            self.write(file, forge(parse(self.content(file)), set="0" * 32))
        self.combine(*files, exit=MISMATCH)
        self.assertFalse((self.folder / "new").exists())

    def test_refusals(self):
        self.write("key", b"k")
        files = self.split(b"k")
        for arguments in (["split", "key"], ["combine", *files], ["reissue", *files]):
            done = self.zel(*arguments, exit=STATE)
            self.assertIn(b"--legacy", done.stderr)
            self.zel(arguments[0], "--legacy", "--json", "-o", "-", *arguments[1:], exit=USAGE)
        for flags in (["-t", "1"], ["-t", "4"], ["-n", "1"], ["-n", "6"], ["-t", "3", "-n", "2"]):
            self.zel("split", "--legacy", "-q", *flags, "key", exit=USAGE)
        self.zel("split", "--legacy", "-q", stdin=b"k", exit=USAGE)
        for secret in (b"", bytes(479), bytes(1 << 20)):
            self.zel("split", "--legacy", "-q", "-o", "x", stdin=secret, exit=MALFORMED)
        self.assertEqual(sorted(path.name for path in self.folder.iterdir()), ["key", *files])

    def test_a_terminal_gets_text_only(self):
        for secret, code in ((b"correct horse\n", 0), (b"\x1b[2J", USAGE)):
            files = self.split(secret)
            ours, theirs = pty.openpty()
            done = subprocess.run([ZEL, "combine", "--legacy", "-q", *files], cwd=self.folder,
                                  stdout=theirs, stderr=subprocess.PIPE)
            os.close(theirs)
            self.assertEqual(done.returncode, code)
            if code == 0:
                self.assertEqual(os.read(ours, 100), b"correct horse\r\n")
            os.close(ours)


if __name__ == "__main__":
    support.main()
