"""zel encrypt and zel decrypt: against a second reader of docs/container.md, and against damage."""

import ctypes
import ctypes.util
import hashlib
import hmac
import json
import os
import random
import signal
import struct
import subprocess
import time

import support
from support import DONE, FILE, MALFORMED, MISMATCH, STATE, USAGE, ZEL, ToolTest

HEADER, CHUNK, TAG = 40, 65536, 16
CIPHERS = ["aria-256", "aria-192", "aria-128", "seed", "aes-256", "aes-128"]
KEY = bytes(range(32))


class Reader:
    """Opens containers with libcrypto, which has no SEED in this mode."""

    def __init__(self):
        self.crypto = ctypes.CDLL(ctypes.util.find_library("crypto"))
        for name in ("EVP_CIPHER_CTX_new", "EVP_get_cipherbyname"):
            getattr(self.crypto, name).restype = ctypes.c_void_p

    def gcm(self, cipher, key, nonce, aad, sealed):
        crypto, out, len = self.crypto, ctypes.create_string_buffer(CHUNK + TAG), ctypes.c_int()
        context = ctypes.c_void_p(crypto.EVP_CIPHER_CTX_new())
        algorithm = ctypes.c_void_p(crypto.EVP_get_cipherbyname(f"{cipher}-gcm".encode()))
        assert algorithm and crypto.EVP_DecryptInit_ex(context, algorithm, None, key, nonce) == 1
        crypto.EVP_DecryptUpdate(context, None, ctypes.byref(len), aad, aad.__len__())
        content, tag = sealed[:-TAG], sealed[-TAG:]
        crypto.EVP_DecryptUpdate(context, out, ctypes.byref(len), content, content.__len__())
        crypto.EVP_CIPHER_CTX_ctrl(context, 0x11, TAG, tag)
        rest = ctypes.create_string_buffer(16)
        good = crypto.EVP_DecryptFinal_ex(context, rest, ctypes.byref(len))
        crypto.EVP_CIPHER_CTX_free(context)
        assert good == 1, "tag"
        return out.raw[:content.__len__()]

    def key(self, secret, header, size):
        message = struct.pack(">I", 1) + b"zel container\0" + header + struct.pack(">I", 256)
        return hmac.new(secret, message, "sha256").digest()[:size]

    def seal(self, header, secret, data):
        """One chunk under ARIA-256."""
        crypto, out, len = self.crypto, ctypes.create_string_buffer(data.__len__()), ctypes.c_int()
        context = ctypes.c_void_p(crypto.EVP_CIPHER_CTX_new())
        algorithm = ctypes.c_void_p(crypto.EVP_get_cipherbyname(b"aria-256-gcm"))
        nonce = header[28:35] + struct.pack(">IB", 0, 1)
        crypto.EVP_EncryptInit_ex(context, algorithm, None, self.key(secret, header, 32), nonce)
        crypto.EVP_EncryptUpdate(context, None, ctypes.byref(len), header, header.__len__())
        crypto.EVP_EncryptUpdate(context, out, ctypes.byref(len), data, data.__len__())
        tag = ctypes.create_string_buffer(TAG)
        assert crypto.EVP_EncryptFinal_ex(context, tag, ctypes.byref(len)) == 1
        crypto.EVP_CIPHER_CTX_ctrl(context, 0x10, TAG, tag)
        crypto.EVP_CIPHER_CTX_free(context)
        return header + out.raw + tag.raw

    def open(self, container, secret=None, passphrase=None):
        magic, version, number, source, zero, rounds, salt, prefix, end, extra = struct.unpack(
            ">4sBBBBI16s7sBI", container[:HEADER])
        assert (magic, version, zero, end, extra) == (b"ZELC", 1, 0, 0, 0)
        if source == 1:
            secret = hashlib.pbkdf2_hmac("sha256", passphrase, salt, rounds)
        cipher = CIPHERS[number - 1]
        header, body = container[:HEADER], container[HEADER:]
        key = self.key(secret, header, 16 if cipher == "seed" else int(cipher[-3:]) // 8)
        pieces = [body[i:i + CHUNK + TAG] for i in range(0, len(body), CHUNK + TAG)]
        return b"".join(
            self.gcm(cipher, key, prefix + struct.pack(">IB", i, i == len(pieces) - 1), header, piece)
            for i, piece in enumerate(pieces))


class ContainerTest(ToolTest):
    def setUp(self):
        super().setUp()
        self.write("key", KEY)

    def seal(self, data, *arguments):
        return self.zel("encrypt", "-q", "-k", "key", *arguments, stdin=data).stdout

    def rejected(self, container, *codes):
        """The container leaves no output, from a file as from a pipe."""
        self.write("bad.zel", container)
        done = self.run_program(ZEL, "decrypt", "-k", "key", "bad.zel")
        self.assertIn(done.returncode, codes, done)
        self.assertFalse((self.folder / "bad").exists())
        for output in ([], ["-o", "bad"]):
            piped = self.run_program(ZEL, "decrypt", "-k", "key", *output, stdin=container)
            self.assertEqual(piped.returncode, done.returncode, piped)
            self.assertFalse((self.folder / "bad").exists())
        return done


class Container(ContainerTest):
    def test_a_second_reader_agrees(self):
        reader, generator = Reader(), random.Random(8)
        for cipher in CIPHERS:
            legacy = ["--legacy"] if cipher.startswith("aes") else []
            for length in (0, 1, CHUNK - 1, CHUNK, CHUNK + 1, 3 * CHUNK):
                data = generator.randbytes(length)
                sealed = self.seal(data, "-c", f"{cipher}-gcm", *legacy)
                chunks = max(1, -(-length // CHUNK))
                self.assertEqual(len(sealed), HEADER + length + TAG * chunks)
                if cipher != "seed":
                    self.assertEqual(reader.open(sealed, KEY), data)
                self.assertEqual(self.zel("decrypt", "-q", "-k", "key", *legacy, stdin=sealed).stdout,
                                 data)

    def test_passphrases(self):
        self.write("pass", b"correct horse\n")
        self.write("other", b"correct horses\n")
        self.write("report", b"figures")
        self.zel("encrypt", "-p", "--passphrase-file", "pass", "report")
        container = (self.folder / "report.zel").read_bytes()
        self.assertEqual(struct.unpack(">I", container[8:12])[0], 600000)
        self.assertEqual(Reader().open(container, passphrase=b"correct horse"), b"figures")
        self.zel("encrypt", "--passphrase-file", "pass", "report", exit=FILE)  # report.zel is there
        self.zel("decrypt", "--passphrase-file", "other", "report.zel", "-f", exit=MISMATCH)
        self.assertEqual((self.folder / "report").read_bytes(), b"figures")
        (self.folder / "report").unlink()
        self.zel("decrypt", "--passphrase-file", "pass", "report.zel")
        self.assertEqual((self.folder / "report").read_bytes(), b"figures")
        for rounds in (0, 999, 10000001, 0xffffffff):  # too few to be safe, too many to wait for
            self.write("r.zel", container[:8] + struct.pack(">I", rounds) + container[12:])
            self.zel("decrypt", "--passphrase-file", "pass", "r.zel", exit=MALFORMED)

    def test_rsa_recipients(self):
        for name, bits in (("me", 2048), ("you", 3072), ("small", 1024)):
            self.other("openssl", "genpkey", "-algorithm", "RSA", "-pkeyopt", f"rsa_keygen_bits:{bits}",
                       "-out", f"{name}.pem")
            self.other("openssl", "pkey", "-in", f"{name}.pem", "-pubout", "-out", f"{name}.pub")
        self.write("f", b"for you")
        self.zel("encrypt", "-r", "you.pub", "f")
        container = (self.folder / "f.zel").read_bytes()
        size = HEADER + 32 + 384
        self.assertEqual(len(container), size + 7 + TAG)
        der = self.run_program("openssl", "pkey", "-pubin", "-in", "you.pub", "-outform", "DER").stdout
        self.assertEqual(container[HEADER:HEADER + 32], hashlib.sha256(der).digest())
        # openssl finds the secret in it, and what it wraps, with a seed of its own, is opened.
        self.write("wrapped", container[HEADER + 32:size])
        self.other("openssl", "pkeyutl", "-decrypt", "-inkey", "you.pem", "-in", "wrapped", "-out", "secret",
                   "-pkeyopt", "rsa_padding_mode:oaep", "-pkeyopt", "rsa_oaep_md:sha256")
        secret = (self.folder / "secret").read_bytes()
        self.assertEqual(len(secret), 32)
        self.other("openssl", "pkeyutl", "-encrypt", "-pubin", "-inkey", "you.pub", "-in", "secret", "-out",
                   "wrapped", "-pkeyopt", "rsa_padding_mode:oaep", "-pkeyopt", "rsa_oaep_md:sha256")
        header = container[:HEADER + 32] + (self.folder / "wrapped").read_bytes()
        self.write("theirs.zel", Reader().seal(header, secret, b"from them"))
        self.assertEqual(self.zel("decrypt", "-r", "you.pem", "theirs.zel", "-o", "-").stdout, b"from them")
        self.assertEqual(self.zel("decrypt", "-r", "you.pem", "f.zel", "-o", "-").stdout, b"for you")
        self.zel("decrypt", "-r", "me.pem", "f.zel", "-o", "-", exit=MISMATCH)
        for i in (HEADER, HEADER + 31, HEADER + 32, HEADER + 200, size - 1):
            changed = bytearray(container)
            changed[i] ^= 1
            self.zel("decrypt", "-r", "you.pem", "-o", "out", exit=MISMATCH, stdin=bytes(changed))
        self.zel("decrypt", "-r", "you.pub", "f.zel", "-o", "-", exit=USAGE)
        self.zel("decrypt", "-k", "key", "f.zel", "-o", "-", exit=USAGE)
        self.zel("encrypt", "-r", "small.pub", "-f", "f", exit=MALFORMED)
        self.other("openssl", "genpkey", "-algorithm", "RSA", "-pkeyopt", "rsa_keygen_bits:2048", "-pkeyopt",
                   "rsa_keygen_pubexp:3", "-out", "three.pem")
        self.assertIn(b"65537", self.zel("encrypt", "-r", "three.pem", "-f", "f", exit=MALFORMED).stderr)
        self.assertIn(b"pkcs1", self.zel("sign", "-k", "three.pem", "f", exit=USAGE).stderr)
        self.zel("sign", "-k", "me.pem", "--passphrase-fd", "0", exit=USAGE, stdin=b"pass\ndata")
        self.zel("key", "check", "-", "--passphrase-fd", "0", exit=USAGE, stdin=b"pass\nkey")

    def test_every_changed_byte_is_found(self):
        container = self.seal(b"hello")
        for i in range(len(container)):
            for flip in (0x01, 0x80):
                changed = bytearray(container)
                changed[i] ^= flip
                # Cipher and source may become another one that exists, and ask for something else.
                codes = {5: (MISMATCH, MALFORMED, STATE), 6: (MALFORMED, USAGE)}
                self.rejected(bytes(changed), *codes.get(i, (MISMATCH, MALFORMED)))

    def test_cut_exchanged_and_repeated_chunks(self):
        container = self.seal(random.Random(9).randbytes(3 * CHUNK + 100))
        header, size = container[:HEADER], CHUNK + TAG
        chunks = [container[HEADER + i * size:HEADER + (i + 1) * size] for i in range(4)]
        joined = [header + b"".join(chunks[i] for i in order)
                  for order in ((0, 1, 2), (0, 1), (1, 0, 2, 3), (0, 2, 1, 3), (0, 1, 1, 2, 3), (0, 1, 3),
                                (3,), (0, 1, 2, 3, 3), (1, 2, 3))]
        tail = self.seal(b"")[HEADER:]  # a last chunk of none, of another container
        for bad in joined + [header, container + b"x", container + tail, container[:-1]] + [
                container[:cut] for cut in (0, 1, 39, 41, HEADER + TAG - 1, HEADER + size, len(container) - 117)]:
            self.rejected(bad, MISMATCH, MALFORMED)
        # What was good before the damage is shown on standard output, with an exit code that says so.
        done = self.zel("decrypt", "-k", "key", stdin=joined[0], exit=MISMATCH)
        self.assertEqual(len(done.stdout), 2 * CHUNK)
        self.assertIn(b"first 131072 bytes", done.stderr)
        self.assertIn(b"written to standard output", done.stderr)
        # So is a single chunk, which would fit into a buffer; a file is not there at all.
        one = container[:HEADER + size] + bytes(size)
        done = self.zel("decrypt", "-k", "key", stdin=one, exit=MISMATCH)
        self.assertEqual(len(done.stdout), CHUNK)
        done = self.zel("decrypt", "-k", "key", "-o", "out", stdin=one, exit=MISMATCH)
        self.assertIn(b"nothing was written", done.stderr)
        self.assertFalse((self.folder / "out").exists())

    def test_files_are_private_until_they_are_complete(self):
        self.write("c.zel", self.seal(bytes(4 * CHUNK)))
        os.mkfifo(self.folder / "pipe")
        process = subprocess.Popen([ZEL, "decrypt", "-q", "-k", "key", "pipe", "-o", "out"],
                                   cwd=self.folder, umask=0o027)
        with open(self.folder / "pipe", "wb") as pipe:
            pipe.write((self.folder / "c.zel").read_bytes())
            pipe.flush()
            self.assertEqual(self.temporary_of(CHUNK).stat().st_mode & 0o777, 0o600)
        self.assertEqual(process.wait(timeout=60), DONE)
        self.assertEqual((self.folder / "out").stat().st_mode & 0o777, 0o640)

    def test_progress_reaches_its_total(self):
        self.write("c.zel", self.seal(bytes(CHUNK + 1)))
        done = self.zel("decrypt", "-k", "key", "--progress=json", "c.zel")
        end = json.loads(done.stderr.splitlines()[-1])
        self.assertEqual((end["event"], end["done"]), ("done", end["total"]))

    def test_secret_and_data_are_not_both_standard_input(self):
        for command in ("encrypt", "decrypt"):
            for secret in (["-k", "-"], ["-r", "-"], ["--passphrase-fd", "0"], ["--passphrase-file", "-"]):
                for data in ([], ["-"]):
                    done = self.zel(command, *secret, *data, stdin=b"secret\n", exit=USAGE)
                    self.assertIn(b"cannot both be standard input", done.stderr)
        self.write("f", b"data")
        self.zel("encrypt", "-k", "-", "f", stdin=KEY)
        self.assertEqual(self.zel("decrypt", "-k", "-", "f.zel", "-o", "-", stdin=KEY).stdout, b"data")

    def test_containers_of_one_key_differ(self):
        first, second = self.seal(bytes(1000)), self.seal(bytes(1000))
        self.assertNotEqual(first[12:35], second[12:35])
        self.assertNotEqual(first[HEADER:], second[HEADER:])
        self.rejected(second[:HEADER] + first[HEADER:], MISMATCH)

    def test_refusals(self):
        self.write("f", b"data")
        self.write("short", bytes(15))
        self.write("public.pem", b"-----BEGIN PUBLIC KEY-----\nAAAA\n-----END PUBLIC KEY-----\n")
        for arguments, code in ((["f"], USAGE), (["-k", "key", "-p", "f"], USAGE),
                                (["-k", "short", "f"], MALFORMED), (["-k", "missing", "f"], FILE),
                                (["-k", "public.pem", "f"], USAGE), (["-k", "key", "missing"], FILE),
                                (["-k", "key", "-c", "aria-256-cbc", "f"], USAGE),
                                (["-k", "key", "-c", "aes-256-gcm", "f"], STATE),
                                (["-k", "key", "--json", "f", "-o", "-"], USAGE)):
            with self.subTest(arguments):
                self.zel("encrypt", *arguments, exit=code)
                self.assertFalse((self.folder / "f.zel").exists())
        self.write("plain.txt", b"no container at all, just some text that is long enough")
        self.zel("decrypt", "-k", "key", "plain.txt", exit=MALFORMED, stdin=b"")
        self.write("c.bin", self.seal(b"data"))
        self.zel("decrypt", "-k", "key", "c.bin", exit=USAGE)
        self.write(".zel", self.seal(b"data"))
        self.assertIn(b"nothing before .zel", self.zel("decrypt", "-k", "key", ".zel", exit=USAGE).stderr)
        self.zel("decrypt", "-p", "--passphrase-file", "key", "c.bin", "-o", "out", exit=USAGE)

    def temporary_of(self, least):
        """The output that is being written, once it has some bytes."""
        give_up = time.monotonic() + 60
        while time.monotonic() < give_up:
            for path in self.folder.iterdir():
                if path.name.startswith(".zel-") and path.stat().st_size >= least:
                    return path
            time.sleep(0.01)
        self.fail("nothing is written")

    def test_broken_off(self):
        container = self.folder / "c.zel"
        with open(container, "wb") as out:
            process = f"head -c 1M /dev/zero | '{ZEL}' encrypt -q -k key"
            subprocess.run(["sh", "-c", process], cwd=self.folder, stdout=out, check=True)
        # The pipe stays open: decryption waits for its last chunk.
        endless = {"encrypt": "cat /dev/zero", "decrypt": "cat c.zel; exec sleep 60"}
        before = sorted(os.listdir(self.folder))
        for command, source in endless.items():
            for sign in (signal.SIGINT, signal.SIGTERM):
                feed = subprocess.Popen(["sh", "-c", source], cwd=self.folder, stdout=subprocess.PIPE)
                process = subprocess.Popen([ZEL, command, "-q", "-k", "key", "-o", "out"],
                                           stdin=feed.stdout, cwd=self.folder)
                self.temporary_of(CHUNK)
                process.send_signal(sign)
                self.assertNotEqual(process.wait(timeout=60), DONE)
                feed.kill()
                feed.wait()
                feed.stdout.close()
                self.assertEqual(sorted(os.listdir(self.folder)), before)
        for command, source in (("encrypt", "/dev/zero"), ("decrypt", "c.zel")):
            full = subprocess.run(["bash", "-c", f"ulimit -f 200; '{ZEL}' {command} -k key -o out {source}"],
                                  cwd=self.folder, capture_output=True)
            self.assertEqual(full.returncode, FILE, full)
            self.assertEqual(sorted(os.listdir(self.folder)), before)


if __name__ == "__main__":
    support.main()
