"""zel keygen and zel key: keys that openssl reads, every form that it writes, and keys that are not."""

import json
import os
import pty
import re
import signal
import subprocess
import termios
import time
import unittest

import keys
import support
from keys import element, integer, openssl, sequence
from support import FILE, MALFORMED, MISMATCH, STATE, USAGE, ZEL, ToolTest

ENTROPY = 7
NO_DEVICE, _, FROZEN_CLOCK = os.environ["ZEL_TEST_SHIMS"].split(":")


def preloaded(shim):
    return dict(os.environ, LD_PRELOAD=shim, ASAN_OPTIONS="verify_asan_link_order=0")


class KeyTest(ToolTest):
    def key(self, name, content):
        path = self.write(name, content)
        return path

    def mode(self, name):
        return (self.folder / name).stat().st_mode & 0o777


class KeyForms(KeyTest):
    def test_every_form_of_openssl_is_the_same_key(self):
        pem = keys.rsa_key(2048)
        public = openssl("rsa", "-pubout", stdin=pem)
        forms = [pem, openssl("rsa", "-traditional", stdin=pem), public,
                 openssl("rsa", "-RSAPublicKey_out", stdin=pem),
                 openssl("rsa", "-outform", "DER", stdin=pem),
                 openssl("rsa", "-traditional", "-outform", "DER", stdin=pem),
                 openssl("rsa", "-pubout", "-outform", "DER", stdin=pem),
                 openssl("rsa", "-RSAPublicKey_out", "-outform", "DER", stdin=pem),
                 b"text before\n" + pem.replace(b"\n", b"\r\n") + b"and behind\n"]
        for form in forms:
            self.assertEqual(self.zel("key", "pub", "-", stdin=form).stdout, public)
        for form in (forms[0], forms[1], forms[4], forms[5]):
            self.assertEqual(self.zel("key", "convert", "-", stdin=form).stdout, pem)
        self.assertEqual(self.zel("key", "pub", "--der", "-", stdin=pem).stdout, forms[6])
        self.assertEqual(self.zel("key", "convert", "--der", "-", stdin=pem).stdout,
                         openssl("pkcs8", "-topk8", "-nocrypt", "-outform", "DER", stdin=pem))
        shown = json.loads(self.zel("key", "show", "--json", "-", stdin=public).stdout)
        n, e = keys.rsa_numbers(pem)[:2]
        self.assertEqual((int(shown["n"], 16), int(shown["e"], 16), shown["bits"]), (n, e, 2048))
        digest = self.other("openssl", "dgst", "-r", "-sha256", stdin=forms[6]).split()[0]
        self.assertEqual(shown["fingerprint"], digest)

    def test_dsa(self):
        pem = keys.dsa_key(1024, 160)
        self.write("k", pem)
        public = openssl("dsa", "-pubout", stdin=pem)
        for form in (pem, openssl("dsa", "-outform", "DER", stdin=pem), public):
            self.assertEqual(self.zel("key", "pub", "--legacy", "-", stdin=form).stdout, public)
        parameters = self.zel("key", "params", "--legacy", "k").stdout
        self.other("openssl", "dsaparam", "-noout", stdin=parameters)
        again = self.zel("key", "convert", "--legacy", "-", stdin=parameters).stdout
        self.assertEqual(again, parameters)
        done = self.zel("key", "check", "k", exit=STATE)
        self.assertIn(b"--legacy", done.stderr)

    def test_encrypted_keys_go_both_ways(self):
        pem = keys.rsa_key(2048)
        self.write("pass", b"correct horse\nsecond line\n")
        for cipher in ("aria-128-cbc", "aria-192-cbc", "aria-256-cbc", "seed-cbc", "aes-128-cbc",
                       "aes-256-cbc", "des3"):
            for prf in ("hmacWithSHA1", "hmacWithSHA224", "hmacWithSHA256", "hmacWithSHA384",
                        "hmacWithSHA512"):
                legacy = cipher.startswith(("aes", "des")) or prf == "hmacWithSHA1"
                if legacy and "256" not in cipher and prf != "hmacWithSHA256":
                    continue
                done = subprocess.run(["openssl", "pkcs8", "-topk8", "-v2", cipher, "-v2prf", prf,
                                       "-passout", "pass:correct horse", "-outform", "DER"],
                                      input=pem, capture_output=True)
                if done.returncode != 0:
                    self.assertIn(cipher, ("seed-cbc",))  # not without the legacy provider
                    continue
                arguments = ["key", "convert", "-", "--plain", "--passphrase-file", "pass"]
                if legacy:
                    self.zel(*arguments, stdin=done.stdout, exit=STATE)
                    arguments.append("--legacy")
                self.assertEqual(self.zel(*arguments, stdin=done.stdout).stdout, pem)
        self.zel("key", "convert", "-", "--new-passphrase-file", "pass", "-o", "locked", stdin=pem)
        self.assertEqual(self.mode("locked"), 0o600)
        locked = (self.folder / "locked").read_bytes()
        self.assertEqual(openssl("pkey", "-passin", "pass:correct horse", stdin=locked), pem)
        outline = openssl("asn1parse", stdin=locked).decode()
        for part in ("PBES2", "PBKDF2", ":0927C0", "hmacWithSHA256", "aria-256-cbc"):
            self.assertIn(part, outline)
        # It stays encrypted, with another salt, unless it is told not to.
        again = self.zel("key", "convert", "locked", "--passphrase-file", "pass").stdout
        self.assertNotEqual(again, locked)
        self.assertEqual(openssl("pkey", "-passin", "pass:correct horse", stdin=again), pem)

    def test_a_wrong_passphrase_opens_nothing(self):
        self.write("pass", b"right")
        self.write("wrong", b"Right")
        self.zel("keygen", "symmetric", "--passphrase-file", "pass", "-o", "k")
        for _ in range(3):
            done = self.zel("key", "convert", "k", "--passphrase-file", "wrong", "-o", "out",
                            exit=MISMATCH)
            self.assertIn(b"passphrase", done.stderr)
            self.assertFalse((self.folder / "out").exists())
        self.zel("key", "check", "k", "--passphrase-file", "pass")

    def test_usage(self):
        self.write("k", keys.rsa_key(2048))
        for arguments in ([], ["show"], ["sing", "k"], ["params", "k"],
                          ["convert", "k", "--plain", "-p"]):
            self.zel("key", *arguments, exit=USAGE)
        self.zel("key", "show", "missing", exit=FILE)
        self.zel("key", "convert", "k", "-o", "k", exit=FILE)


class MalformedKeys(KeyTest):
    def assert_malformed(self, content, *flags):
        done = self.zel("key", "convert", "-q", "-", *flags, stdin=content, exit=MALFORMED)
        self.assertEqual(done.stdout, b"")
        self.assertEqual(done.stderr.count(b"\n"), 1)

    def test_not_a_key_or_not_well_formed(self):
        pem = keys.rsa_key(2048)
        der = openssl("rsa", "-traditional", "-outform", "DER", stdin=pem)
        values = keys.rsa_numbers(pem)
        body = b"".join(map(integer, [0, *values]))
        lines = pem.splitlines(keepends=True)
        for content in (
                b"", b"text\n", b"\x30", b"\x30\x80\0\0", bytes(70000), der[:-1], der + b"\0",
                b"\x30\x80" + body + b"\0\0",                           # indefinite length
                b"\x30\x83\0" + len(body).to_bytes(2, "big") + body,    # length with a zero octet
                b"\x30\x84\x7f\xff\xff\xff" + body,                     # longer than there is
                sequence(b"\x02\x02\0\0", *map(integer, values)),       # zero in two octets
                sequence(integer(0), integer(-values[0]), *map(integer, values[1:])),
                sequence(integer(0), b"\x02\0", *map(integer, values[1:])),
                sequence(integer(1), *map(integer, values)),            # several primes
                sequence(integer(0), *map(integer, values), integer(1)),
                b"".join(lines[:-1]), b"".join(lines[:3] + lines[4:]), pem.replace(b"A", b"*", 1),
                pem.replace(b"END PRIVATE", b"END PUBLIC"), pem.replace(b"PRIVATE", b"PUBLIC"),
                pem.replace(b"PRIVATE KEY", b"KCDSA PRIVATE KEY"), pem.replace(b"PRIVATE", b"SECRET"),
                openssl("rsa", "-traditional", "-aes128", "-passout", "pass:x", stdin=pem),
                openssl("genpkey", "-algorithm", "EC", "-pkeyopt", "ec_paramgen_curve:P-256"),
                openssl("pkcs8", "-topk8", "-scrypt", "-passout", "pass:x", stdin=pem)):
            with self.subTest(content[:40]):
                self.assert_malformed(content)

    def test_encryption_that_cannot_be_meant(self):
        # Refused before anyone is asked for a passphrase, and before a round is computed.
        for changed in ({"rounds": 0}, {"rounds": 1 << 31}, {"rounds": 1 << 40}, {"iv": bytes(15)},
                        {"sealed": b""}, {"sealed": bytes(31)}, {"key_len": 16}, {"prf": 12},
                        {"salt": bytes(300)}, {"cipher": "60864801650304012e"}):
            with self.subTest(changed):
                self.assert_malformed(keys.encrypted_key(**changed))

    def test_rsa_numbers_that_do_not_fit(self):
        good = keys.rsa_numbers(keys.rsa_key(1024))
        self.zel("key", "check", "-", stdin=keys.rsa_pkcs1(good))
        n, e, d, p, q, dp, dq, q_inverse = good
        for bad in ((n, e, d, q, p, dp, dq, q_inverse), (n + 2, e, d, p, q, dp, dq, q_inverse),
                    (n + 1, e, d, p, q, dp, dq, q_inverse), (n, e + 2, d, p, q, dp, dq, q_inverse),
                    (n, e, d + 2, p, q, dp, dq, q_inverse), (n, e, d, p, q, dp + 2, dq, q_inverse),
                    (n, e, d, p, q, dp, dq, q_inverse + 1), (n, e, d, 1, n, dp, dq, q_inverse),
                    (n, e, d, 0, q, dp, dq, q_inverse), (0, 0, 0, 0, 0, 0, 0, 0),
                    (n, 1, 1, p, q, 1, 1, q_inverse), (n, 65536, d, p, q, dp, dq, q_inverse),
                    (n, e, d, p, p, dp, dp, q_inverse), (n << 4000, e, d, p, q, dp, dq, q_inverse),
                    (77, 7, 43, 7, 11, 1, 3, 2)):
            with self.subTest(good.index(bad[0]) if bad[0] in good else bad[0]):
                self.assert_malformed(keys.rsa_pkcs1(bad))
        for public in ((n, 1), (n, 2), (n, n), (n + 1, e), (15, 3), (1 << 5000 | 1, 3)):
            self.assert_malformed(sequence(*map(integer, public)))

    def test_dsa_numbers_that_do_not_fit(self):
        p, q, g, y, x = keys.dsa_numbers(keys.dsa_key(1024, 160))
        self.zel("key", "check", "--legacy", "-", stdin=keys.dsa_pkcs8(p, q, g, x))
        for bad in ((p + 1, q, g, x), (p + 2, q, g, x), (p, q + 1, g, x), (p, q + 2, g, x),
                    (p, q, 1, x), (p, q, p - 1, x), (p, q, g + 1, x), (p, q, p + g, x),
                    (p, q, g, 0), (p, q, g, q), (0, 0, 0, 0), (q, p, g, x), (p, 1, g, x)):
            self.assert_malformed(keys.dsa_pkcs8(*bad), "--legacy")
        for bad in (0, 1, p - 1, p, y + 1, p + y):
            self.assert_malformed(keys.dsa_public(p, q, g, bad), "--legacy")
        old = sequence(*map(integer, (0, p, q, g, y + 1, x)))
        self.assert_malformed(old, "--legacy")


class Passphrases(KeyTest):
    def on_a_terminal(self, *arguments, typed, send=None):
        """Runs the command on a terminal of its own: what it said there, its exit status, and
        whether the terminal shows what is typed afterwards."""
        child, terminal = pty.fork()
        if child == 0:
            os.chdir(self.folder)
            os.execv(ZEL, [ZEL, *arguments])
        heard = b""
        for line in typed:
            while not heard.endswith(b": "):
                heard += os.read(terminal, 4096)
            os.write(terminal, line + b"\n" if send is None else line)
            heard += b"|"
        if send is not None:
            time.sleep(0.2)
            os.kill(child, send)
        echoes = None
        try:
            while piece := os.read(terminal, 4096):
                heard += piece
                echoes = bool(termios.tcgetattr(terminal)[3] & termios.ECHO)
        except OSError:
            pass
        status = os.waitpid(child, 0)[1]
        if echoes is None:
            echoes = bool(termios.tcgetattr(terminal)[3] & termios.ECHO)
        os.close(terminal)
        return heard, status, echoes

    def test_asked_twice_and_not_shown(self):
        arguments = ["keygen", "symmetric", "-p", "-o", "k"]
        heard, status, echoes = self.on_a_terminal(*arguments, typed=[b"one", b"two"])
        self.assertEqual((os.waitstatus_to_exitcode(status), echoes), (USAGE, True))
        self.assertFalse((self.folder / "k").exists())
        heard, status, echoes = self.on_a_terminal(*arguments, typed=[b"hush", b"hush"])
        self.assertEqual(os.waitstatus_to_exitcode(status), 0, heard)
        self.assertNotIn(b"hush", heard)
        heard, status, _ = self.on_a_terminal("key", "check", "k", typed=[b"hush"])
        self.assertEqual(os.waitstatus_to_exitcode(status), 0, heard)
        self.assertEqual(heard.count(b"Passphrase for k: "), 1)

    def test_a_signal_at_the_prompt_leaves_terminal_and_folder_as_they_were(self):
        for number in (signal.SIGINT, signal.SIGTERM):
            _, status, echoes = self.on_a_terminal("keygen", "symmetric", "-p", "-o", "k",
                                                   typed=[b"hu"], send=number)
            self.assertEqual((os.waitstatus_to_exitcode(status), echoes), (-number, True))
            self.assertEqual(list(self.folder.iterdir()), [])

    def test_descriptors_and_files(self):
        shell = f"'{ZEL}' keygen symmetric --passphrase-fd 5 -o k 5<<<'a b' && printf 'a b\\r\\nc' | " \
                f"'{ZEL}' key check k --passphrase-fd 0"
        self.assertEqual(self.run_program("bash", "-c", shell).returncode, 0)
        self.write("empty", b"\n")
        self.write("long", bytes(1100))
        for source, code in (("empty", MALFORMED), ("long", MALFORMED), ("missing", FILE)):
            self.zel("keygen", "symmetric", "--passphrase-file", source, "-o", "x", exit=code)
        self.zel("keygen", "symmetric", "--passphrase-fd", "99", "-o", "x", exit=FILE)
        self.zel("keygen", "symmetric", "--passphrase-fd", "9", "--passphrase-file", "empty", exit=USAGE)
        done = self.zel("key", "check", "k", exit=USAGE, start_new_session=True)
        self.assertIn(b"--passphrase-fd", done.stderr)
        self.assertFalse((self.folder / "x").exists())


class Generation(KeyTest):
    def test_rsa(self):
        previous = os.umask(0)
        self.addCleanup(os.umask, previous)
        for bits, flags in ((3072, []), (2048, ["--bits", "2048"]), (1024, ["-b", "1024", "--legacy"])):
            self.zel("keygen", "rsa", *flags, "-f", "-o", "k")
            self.assertEqual(self.mode("k"), 0o600)
            self.assertIn("RSA key ok", self.other("openssl", "rsa", "-check", "-noout", "-in", "k"))
            n, e = keys.rsa_numbers((self.folder / "k").read_bytes())[:2]
            self.assertEqual((n.bit_length(), e), (bits, 65537))
        self.zel("keygen", "rsa", "--bits", "1024", exit=STATE)
        result = json.loads(self.zel("keygen", "rsa", "--bits", "2048", "--json").stdout)
        self.assertEqual((result["type"], result["bits"], result["private"]), ("RSA", 2048, True))
        self.zel("key", "check", "-", stdin=result["pem"].encode())

    def test_dsa(self):
        self.zel("keygen", "dsa", "-o", "k", exit=STATE)
        self.zel("keygen", "dsa", "--legacy", "--bits", "1024", "-o", "k")
        text = self.other("openssl", "dsa", "-in", "k", "-text", "-noout")
        self.assertIn("(1024 bit)", text)
        p, q, g, y, x = keys.dsa_numbers((self.folder / "k").read_bytes())
        self.assertEqual((q.bit_length(), pow(g, q, p), pow(g, x, p)), (160, 1, y))
        self.zel("keygen", "dsa", "--legacy", "--parameters", "k", "-o", "k2")
        other = keys.dsa_numbers((self.folder / "k2").read_bytes())
        self.assertEqual(other[:3], [p, q, g])
        self.assertNotEqual(other[4], x)

    def test_symmetric(self):
        for bits, length in ((None, 32), (128, 16), (192, 24), (512, 64)):
            flags = [] if bits is None else ["--bits", str(bits)]
            self.zel("keygen", "symmetric", "--raw", *flags, "-f", "-o", "raw")
            self.assertEqual((self.folder / "raw").stat().st_size, length)
            self.assertEqual(self.mode("raw"), 0o600)
            self.assertRegex(self.zel("keygen", "symmetric", "--hex", *flags).stdout,
                             rb"^[0-9a-f]{%d}\n$" % (2 * length))
            pem = self.zel("keygen", "symmetric", *flags).stdout
            self.assertTrue(pem.startswith(b"-----BEGIN SYMMETRIC KEY-----\n"))
            self.assertIn(f"{8 * length} bits".encode(), self.zel("key", "show", "-", stdin=pem).stdout)

    def test_a_symmetric_key_is_the_same_in_every_form(self):
        self.write("pass", b"x")
        self.write("f", b"text")
        self.zel("keygen", "symmetric", "-o", "k")
        self.zel("key", "convert", "k", "--new-passphrase-file", "pass", "-o", "locked")
        self.zel("encrypt", "-k", "k", "-o", "f.zel", "f")
        flags = ["-k", "locked", "--passphrase-file", "pass"]
        self.assertEqual(self.zel("decrypt", *flags, "-o", "-", "f.zel").stdout, b"text")
        self.zel("keygen", "symmetric", "--raw", "-o", "raw")
        self.zel("encrypt", "-k", "raw", "--passphrase-file", "pass", "-o", "x", "f", exit=USAGE)

    def test_two_runs_at_the_same_time_differ(self):
        for kind in (["rsa", "--bits", "2048"], ["symmetric"], ["rsa", "--bits", "1024", "--legacy"]):
            runs = [self.zel("keygen", *kind, env=preloaded(FROZEN_CLOCK)).stdout for _ in range(2)]
            self.assertNotEqual(runs[0], runs[1])
            if kind[0] == "rsa":
                first, second = map(keys.rsa_numbers, runs)
                self.assertFalse(set(first[3:5]) & set(second[3:5]), "a prime in common")

    def test_refused_without_the_full_entropy(self):
        for kind in ("rsa", "dsa", "kcdsa", "symmetric"):
            done = self.zel("keygen", kind, "--legacy", "-o", "k", exit=ENTROPY,
                            env=preloaded(NO_DEVICE))
            self.assertIn(b"count is", done.stderr)
            self.assertEqual(list(self.folder.iterdir()), [])

    def test_interrupted_it_leaves_nothing(self):
        process = subprocess.Popen([ZEL, "keygen", "rsa", "--bits", "4096", "-o", "k"],
                                   cwd=self.folder)
        for _ in range(200):
            if list(self.folder.iterdir()):
                break
            time.sleep(0.01)
        process.terminate()
        self.assertEqual(process.wait(30), -15)
        self.assertEqual(list(self.folder.iterdir()), [])

    def test_usage(self):
        self.write("taken", b"")
        for arguments in ([], ["ecdsa"], ["rsa", "--bits", "5000"], ["rsa", "--bits", "2047"],
                          ["rsa", "--raw"], ["rsa", "--order", "256"], ["kcdsa", "--bits", "2000"],
                          ["symmetric", "--bits", "100"], ["symmetric", "--raw", "--hex"],
                          ["symmetric", "--der", "--json"], ["kcdsa", "--order", "160"]):
            self.zel("keygen", *arguments, exit=USAGE)
        self.zel("keygen", "rsa", "-o", "taken", exit=FILE)


if __name__ == "__main__":
    support.main()
