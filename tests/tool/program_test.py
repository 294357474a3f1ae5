"""What all commands share: output files, signals, progress, JSON, help, completion, manual pages."""

import fcntl
import json
import os
import pathlib
import pty
import re
import resource
import signal
import struct
import subprocess
import termios
import time
import unittest

import support
from support import DONE, FILE, USAGE, ZEL, ToolTest, available

COMMANDS = ["hash", "mac", "rand", "prime", "split", "combine", "reissue", "selftest", "integrity", "keygen", "key", "sign", "verify", "encrypt", "decrypt", "raw", "info", "completion"]


def listen(terminal, seconds=60):
    """Everything that is written to a terminal until its other end closes."""
    heard = b""
    deadline = time.monotonic() + seconds
    while time.monotonic() < deadline:
        try:
            piece = os.read(terminal, 65536)
        except OSError:
            break
        if not piece:
            break
        heard += piece
    os.close(terminal)
    return heard


class OutputFiles(ToolTest):
    def setUp(self):
        super().setUp()
        self.write("f", b"abc")
        self.line = self.zel("hash", "f").stdout

    def test_a_new_file_has_the_usual_mode_and_an_old_one_stays(self):
        previous = os.umask(0o027)
        self.addCleanup(os.umask, previous)
        self.assertEqual(self.zel("hash", "-o", "list", "f").stdout, b"")
        self.assertEqual((self.folder / "list").read_bytes(), self.line)
        self.assertEqual((self.folder / "list").stat().st_mode & 0o777, 0o640)
        self.write("list", b"mine").chmod(0o600)
        done = self.zel("hash", "-o", "list", "f", exit=FILE)
        self.assertIn(b"-f", done.stderr)
        self.assertEqual((self.folder / "list").read_bytes(), b"mine")
        self.zel("hash", "-f", "-o", "list", "f")
        self.assertEqual((self.folder / "list").read_bytes(), self.line)
        self.assertEqual((self.folder / "list").stat().st_mode & 0o777, 0o600)

    def test_links_devices_and_folders(self):
        self.write("target", b"")
        (self.folder / "link").symlink_to("target")
        self.zel("hash", "-f", "-o", "link", "f")
        self.assertTrue((self.folder / "link").is_symlink())
        self.assertEqual((self.folder / "target").read_bytes(), self.line)
        self.zel("hash", "-o", "/dev/null", "f")
        self.zel("hash", "-o", ".", "f", exit=FILE)
        self.zel("hash", "-o", "no/such/folder", "f", exit=FILE)
        self.assertEqual(self.zel("hash", "-o", "/dev/stdout", "f").stdout, self.line)

    def test_nothing_is_left_when_not_all_could_be_done(self):
        self.zel("hash", "-o", "list", "f", "missing", exit=FILE)
        self.assertFalse((self.folder / "list").exists())

    def test_no_room(self):
        def small_files():
            resource.setrlimit(resource.RLIMIT_FSIZE, (40, 40))
        done = self.zel("hash", "-o", "list", "f", exit=FILE, preexec_fn=small_files)
        self.assertIn(b"list: File too large", done.stderr)
        self.assertFalse((self.folder / "list").exists())
        with open("/dev/full", "wb") as full:
            for flags in ([], ["--json"]):
                done = subprocess.run([ZEL, "hash", *flags, self.folder / "f"], stdout=full,
                                      stderr=subprocess.PIPE)
                self.assertEqual(done.returncode, FILE)
                self.assertIn(b"standard output: No space left", done.stderr)

    def test_signals_end_it_without_leftovers(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            with self.subTest(number):
                process = subprocess.Popen([ZEL, "hash", "-o", "list", "f", "-"], cwd=self.folder,
                                           stdin=subprocess.PIPE, stderr=subprocess.PIPE)
                for _ in range(500):
                    if list(self.folder.glob(".zel-*")):
                        break
                    time.sleep(0.01)
                self.assertEqual(len(list(self.folder.glob(".zel-*"))), 1)
                process.send_signal(number)
                _, errors = process.communicate(timeout=30)
                self.assertEqual(process.returncode, -number)
                self.assertEqual(errors, b"")
                self.assertEqual([path.name for path in self.folder.iterdir()], ["f"])

    def test_a_reader_that_leaves_ends_it(self):
        done = self.run_program("bash", "-c", f"'{ZEL}' hash f f f f | true; exit ${{PIPESTATUS[0]}}")
        self.assertIn(done.returncode, (0, 128 + signal.SIGPIPE))


class ProgressDisplay(ToolTest):
    def feed(self, *flags, seconds):
        """Hashes a stream that takes that long, on a terminal of 60 columns."""
        ours, theirs = pty.openpty()
        fcntl.ioctl(theirs, termios.TIOCSWINSZ, struct.pack("HHHH", 25, 60, 0, 0))
        process = subprocess.Popen([ZEL, "hash", *flags], stdin=subprocess.PIPE,
                                   stdout=subprocess.PIPE, stderr=theirs)
        os.close(theirs)
        process.stdin.write(bytes(1 << 20))
        process.stdin.flush()
        time.sleep(seconds)
        process.stdin.close()
        heard = listen(ours)
        process.stdout.close()
        self.assertEqual(process.wait(), 0)
        return heard.decode()

    def test_a_bar_only_after_half_a_second_and_gone_at_the_end(self):
        self.assertEqual(self.feed(seconds=0.1), "")
        heard = self.feed(seconds=1.2)
        self.assertRegex(heard, r"^\rhash  1 MiB  ")
        self.assertTrue(heard.endswith("\r\x1b[K"), heard)
        for line in heard.replace("\x1b[K", "").split("\r"):
            self.assertLess(len(line), 60)
        self.assertEqual(self.feed("--progress=never", seconds=0.8), "")
        self.assertEqual(self.feed("-q", seconds=0.8), "")

    def test_not_a_terminal(self):
        with open(self.folder / "sparse", "wb") as sparse:
            sparse.truncate(300 << 20)
        self.assertEqual(self.zel("hash", "-a", "sha512", "sparse").stderr, b"")
        done = self.run_program(ZEL, "hash", "--progress=always", "sparse")
        self.assertRegex(done.stderr.decode(), r"\rhash 100% \[#+\] 300/300 MiB  .*/s  ETA 0 s\x1b\[K"
                         r"|hash 100% \[#+\] 300/300 MiB")

    def test_events(self):
        self.write("f", bytes(1000))
        done = self.zel("hash", "--progress=json", "f", "f")
        events = [json.loads(line) for line in done.stderr.splitlines()]
        self.assertEqual([event["event"] for event in events], ["start", "done"])
        self.assertEqual([(event["done"], event["total"]) for event in events],
                         [(0, 2000), (2000, 2000)])
        done = self.zel("hash", "--progress=json", "f", "missing", exit=FILE)
        self.assertEqual(json.loads(done.stderr.splitlines()[-1])["event"], "failed")


class Json(ToolTest):
    def test_one_object_whatever_happens(self):
        name = b"not\xffutf8"
        path = os.path.join(os.fsencode(self.folder), name)
        with open(path, "wb") as file:
            file.write(b"abc")
        for arguments, code in ((["hash", os.fsdecode(name)], DONE), (["info"], DONE),
                                (["hash", "missing"], FILE), (["hash", "-a", "none"], USAGE),
                                (["hash", "-c", "missing"], FILE)):
            done = self.run_program(ZEL, arguments[0], "--json",
                                    *[os.fsencode(argument) for argument in arguments[1:]])
            result = json.loads(done.stdout)
            self.assertEqual((done.returncode, result["exit"]), (code, code))
            self.assertEqual(result["command"], arguments[0])
            self.assertEqual(done.stdout.count(b"\n"), 1)
            if code != DONE:
                self.assertEqual(len(result["errors"]), 1)
            if os.fsdecode(name) in arguments:
                self.assertEqual(result["files"][0]["file_hex"], name.hex())

    def test_data_in_a_file_leaves_standard_output_to_the_object(self):
        self.write("f", b"abc")
        result = json.loads(self.zel("hash", "--json", "-o", "list", "f").stdout)
        digest = result["files"][0]["digest"]
        self.assertEqual((self.folder / "list").read_text(), f"{digest}  f\n")
        self.assertEqual(result["files"][0]["bytes"], 3)


class Texts(ToolTest):
    def test_every_command_has_help_whose_examples_work(self):
        for command in COMMANDS:
            help_text = self.zel(command, "--help").stdout.decode()
            self.assertEqual(help_text, self.zel("help", command).stdout.decode())
            self.assertLessEqual(max(len(line) for line in help_text.splitlines()
                                     if not line.startswith("  ")), 100)
            examples = re.search(r"Examples:\n((?:  .*\n)+)", help_text).group(1).splitlines()
            lines = [line.strip() for line in examples if not line.startswith("  #")]
            self.assertTrue(lines)
            environment = dict(os.environ, PATH=f"{os.path.dirname(ZEL)}:{os.environ['PATH']}")
            for line in lines:
                if "fish" in line or "zsh" in line:
                    continue
                done = self.run_program("bash", "-euc", line, env=environment)
                self.assertEqual(done.returncode, 0, (line, done))

    def test_usage_of_the_program(self):
        bare = self.zel("--help").stdout
        for command in COMMANDS:
            self.assertIn(f"\n  {command} ".encode(), bare)
        done = self.run_program(ZEL)
        self.assertEqual((done.returncode, done.stdout, done.stderr), (USAGE, b"", bare))
        self.assertRegex(self.zel("--version").stdout, rb"^zel \d+\.\d+\n$")
        for arguments, subject in ((["nonsense", "a", "b"], b"zel: nonsense: "),
                                   (["--jsn"], b"zel: --jsn: "),
                                   (["hash", "--a\nb"], b"zel hash: --a\\nb: ")):
            done = self.zel(*arguments, exit=USAGE)
            self.assertEqual(done.stderr.count(b"\n"), 1)
            self.assertTrue(done.stderr.startswith(subject), done.stderr)

    def test_shared_options_may_stand_before_the_command(self):
        self.assertEqual(json.loads(self.zel("--json", "info").stdout)["command"], "info")

    def test_bash_completes(self):
        self.write("script", self.zel("completion", "bash").stdout)
        def complete(*words):
            program = ('source ./script; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _zel 2>/dev/null; '
                       'printf "%s\\n" "${COMPREPLY[@]}"')
            return self.other("bash", "-c", program, "bash", *words).split()
        self.assertEqual(complete("zel", "ha"), ["hash"])
        self.assertEqual(complete("zel", "hash", "--che"), ["--check"])
        self.assertEqual(complete("zel", "mac", "--key-he"), ["--key-hex-file", "--key-hex"])
        self.assertEqual(complete("zel", "hash", "--progress", "=", "al"), ["always"])
        self.assertEqual(complete("zel", "hash", "-a", "ripe"), ["ripemd160"])
        self.assertEqual(complete("zel", "completion", ""), ["bash", "zsh", "fish"])
        self.assertEqual(complete("zel", "key", "c"), ["check", "convert"])
        self.assertEqual(complete("zel", "key", "check", "scr"), ["script"])
        self.assertEqual(complete("zel", "hash", "-a", "sha1", "scr"), ["script"])

    def test_scripts_of_the_other_shells_parse(self):
        for shell in ("zsh", "fish"):
            script = self.zel("completion", shell).stdout
            for command in COMMANDS:
                self.assertIn(command.encode(), script)
            if available(shell):
                self.write("script", script)
                self.other(shell, "-n", "script")

    @unittest.skipUnless(available("man"), "man is not installed")
    def test_manual_pages_format_without_warnings(self):
        for command in ([], *[[name] for name in COMMANDS]):
            self.write("page.1", self.zel("manual", *command).stdout)
            done = self.run_program("man", "--warnings", "-l", "page.1",
                                    env=dict(os.environ, MANWIDTH="80", LC_ALL="C.UTF-8"))
            self.assertEqual((done.returncode, done.stderr), (0, b""))
            text = done.stdout.decode()
            for section in ("NAME", "SYNOPSIS", "DESCRIPTION", "EXIT STATUS", "SEE ALSO"):
                self.assertIn(section, text)
            for option in re.findall(r"--[a-z-]+", self.zel(*command, "--help").stdout.decode()):
                if command and option != "--version":
                    self.assertIn(option, text)


class Library(ToolTest):
    def test_info(self):
        text = self.zel("info").stdout.decode()
        result = json.loads(self.zel("info", "--json").stdout)
        self.assertTrue(pathlib.Path(result["library"]).samefile(
            pathlib.Path(ZEL).parent / os.environ["ZEL_LIBRARY"]))
        self.assertIn(result["library"], text)
        self.assertEqual(result["state"]["value"], 4)
        opened = json.loads(self.zel("info", "--json", "--legacy").stdout)
        self.assertEqual(opened["state"]["value"], 3)
        approved = [item["name"] for item in result["algorithms"] if item["approved"]]
        for name in support.ALGORITHMS:
            self.assertEqual(name in approved, name in support.APPROVED)
        flags = pathlib.Path("/proc/cpuinfo").read_text().split()
        for ours, theirs in (("sha", "sha_ni"), ("avx2", "avx2"), ("adx", "adx")):
            self.assertEqual(result["processor"][ours], theirs in flags)

    def test_finds_its_library_from_where_it_lies(self):
        dynamic = self.other("readelf", "-d", ZEL)
        self.assertRegex(dynamic, r"\(RUNPATH\) .*\[\$ORIGIN:\$ORIGIN/\.\./\w+\]")
        self.assertNotIn("(RPATH)", dynamic)

    def test_the_library_draws_from_the_kernel(self):
        # The dynamic linker says whose rand() the library's calls reach.
        self.assertIs(json.loads(self.zel("info", "--json").stdout)["strong_rand"], True)
        undefined = self.other("nm", "-D", "--undefined-only",
                               pathlib.Path(ZEL).parent / os.environ["ZEL_LIBRARY"])
        wanted = {name for name in ("rand", "srand") if re.search(rf" {name}(@|$)", undefined, re.M)}
        done = self.run_program(ZEL, "info", env=dict(os.environ, LD_DEBUG="bindings",
                                                      LD_BIND_NOW="1"))
        bound = re.findall(r"binding file (\S+) \[0\] to (\S+) \[0\]: normal symbol `(s?rand)'",
                           done.stderr.decode())
        ours = {name for user, owner, name in bound
                if os.environ["ZEL_LIBRARY"] in user and os.path.basename(owner) == "zel"}
        self.assertEqual(ours, wanted)
        self.assertFalse([owner for _, owner, _ in bound if os.path.basename(owner) != "zel"])


if __name__ == "__main__":
    support.main()
