#!/usr/bin/env python3
"""The command line of qova-sdp: what it prints, where, and with which exit status.

usage: program_test.py QOVA_SDP
"""

import base64
import os
import pathlib
import re
import shlex
import stat
import subprocess
import sys
import tempfile
import unittest

from options_test import ANSWER, MOVE, PUBLIC

OFFER = (b"v=0\r\no=- 1 1 IN IP4 10.0.0.1\r\ns=-\r\nc=IN IP4 10.0.0.1\r\nt=0 0\r\n"
         b"m=audio 32000 RTP/AVP 8\r\n")
MOVED = OFFER.replace(b"10.0.0.1", b"203.0.113.5").replace(b"32000", b"40000")
WARNED = OFFER + b"a=ptime:soon\r\n"
BROKEN = OFFER + b"broken\r\n"
MESSAGE = b"INVITE sip:a@b SIP/2.0\r\nContent-Type: application/sdp\r\n\r\n"  # three lines
KEY = b"SecretKeyMaterialThatNobodyMayEverSeeHere"
SUITE = b"a=crypto:1 AES_CM_128_HMAC_SHA1_80 inline:"
SECURE = OFFER.replace(b"AVP", b"SAVP") + SUITE + KEY[:40] + b"\r\n"
COMMANDS = (["log"], MOVE, ANSWER)
BACK = "back: qova-sdp move --back --address 10.0.0.1 --audio-port 40000 --fax-port 7000 %s\n"


def log(role, address, port):
    return (f"Capability({role}, Not Hold, silenceSuppSdp=no)\n\tFiltered=\n\t-> media(Audio)/Accepted "
            f"@{address}/snd={port}~{port + 1}/rcv={port}~{port + 1}/bsnd=1/brcv=1\n"
            "\t   Attributes :\t\t -> G711alaw / Accepted / framing=0 / vad=0 / echo=0 / mxFraming=0"
            " / MF=0\n\t   Crypto attributes (0) :\n")


LOG = log("offer", "10.0.0.1", 32000)
ANSWER_LOGS = "offer: " + LOG + "answer: " + log("answer", "192.0.2.1", 32000)


def answered(address="192.0.2.1", port=32000, version=1):
    """A pattern of the answer to the offer."""
    return (r"\Av=0\r\no=- (\d+) %d IN IP4 %s\r\ns=-\r\nc=IN IP4 %s\r\nt=0 0\r\n"
            r"m=audio %d RTP/AVP 8\r\n" % (version, address, address, port)).encode()


class ProgramCase(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.directory = pathlib.Path(directory.name)
        self.offer = self.file("offer.sdp", OFFER)

    def file(self, name, text):
        (self.directory / name).write_bytes(text)
        return str(self.directory / name)

    def run_program(self, *arguments, text=b"", stdout=subprocess.PIPE, before=()):
        """Returns the status, standard output and standard error."""
        done = subprocess.run([*before, program, *arguments], input=text, stdout=stdout,
                              stderr=subprocess.PIPE, cwd=self.directory, check=False)
        return done.returncode, done.stdout or b"", done.stderr.decode()

    def succeed(self, *arguments, text=b""):
        status, output, errors = self.run_program(*arguments, text=text)
        self.assertEqual(status, 0, errors)
        return output, errors

    def assert_fails(self, pattern, *arguments, **options):
        """One line on standard error, and nothing else."""
        status, output, errors = self.run_program(*arguments, **options)
        self.assertRegex(errors, rf"\Aqova-sdp: {pattern}\n\Z")
        self.assertEqual((status, output), (1, b""))


class Commands(ProgramCase):
    def test_log(self):
        for file, text in ((self.offer, b""), ("-", OFFER)):
            self.assertEqual(self.succeed("log", file, text=text), (LOG.encode(), ""))
        for arguments in (["--answer", self.offer], [self.offer, "--answer"]):
            self.assertEqual(self.succeed("log", *arguments)[0].decode(),
                             log("answer", "10.0.0.1", 32000))

    def test_move_and_back(self):
        for role, option in (("offer", ""), ("answer", "--answer ")):
            before, after = log(role, "10.0.0.1", 32000), log(role, "203.0.113.5", 40000)
            back = BACK.replace("--back ", "--back " + option)
            moved, errors = self.succeed(*MOVE, "--verbose", *option.split(), self.offer)
            self.assertEqual(moved, MOVED)
            self.assertEqual(errors, f"before: {before}after: {after}" + back % "-")
            restored, errors = self.succeed(*shlex.split(errors.splitlines()[-1])[2:], text=moved)
            self.assertEqual(restored, OFFER)
            back = back.replace("--back ", "").replace("10.0.0.1", "203.0.113.5")
            self.assertEqual(errors, f"after: {before}" + back % "-")

    def test_merge(self):
        text = OFFER + b"m=video 5 RTP/AVP 31\r\nc=IN IP4 10.0.0.2\r\n"
        self.assert_fails(r"standard input:8: .+ \(use --merge to allow it\)", *MOVE, "-", text=text)
        moved, errors = self.succeed(*MOVE, "--merge", "-", text=text)
        self.assertEqual(moved, MOVED + b"m=video 5 RTP/AVP 31\r\nc=IN IP4 203.0.113.5\r\n")
        self.assertTrue(errors.endswith("\nback: none (the move cannot be undone)\n"), errors)

    def test_answer(self):
        output, errors = self.succeed(*ANSWER, self.offer)
        self.assertRegex(output, answered() + rb"\Z")
        self.assertEqual(errors, ANSWER_LOGS)
        output, errors = self.succeed(*ANSWER, *PUBLIC, "-", text=OFFER)
        self.assertRegex(output, answered("203.0.113.5", 40000) + rb"\Z")
        self.assertEqual(errors, ANSWER_LOGS + "public: " + log("answer", "203.0.113.5", 40000))
        output, _ = self.succeed("answer", "--local", "2001:DB8::0:1", "-",
                                 text=OFFER.replace(b"IP4 10.0.0.1", b"IP6 2001:db8::9"))
        self.assertIn(b"c=IN IP6 2001:db8::1\r\nt=0 0\r\nm=audio 32000 ", output)

    def test_codecs_and_fax(self):
        offer = OFFER.replace(b" 8", b" 0 3 8 9 97\r\na=rtpmap:97 opus/48000/2") + b"m=image 5 udptl t38\r\n"
        for options, payloads, fax_port in (
                ([], b"0 8 9 97", b"6666"), (["--codec=PCMA", "--fax"], b"8", b"6666"),
                (["--codec=pcma", "--codec", "opus", "--no-fax"], b"8 97", b"0"),
                (["--codec=G722", "--codec=PCMU", "--codec=G722"], b"0 9", b"6666")):
            output, _ = self.succeed(*ANSWER, *options, "-", text=offer)
            self.assertEqual(re.findall(rb"m=.*(?=\r)", output),
                             [b"m=audio 32000 RTP/AVP " + payloads,
                              b"m=image " + fax_port + b" udptl t38"])

    def test_rejections(self):
        _, errors = self.succeed(*ANSWER, "-", text=MESSAGE + OFFER + b"m=video 5 RTP/AVP 31\r\n")
        self.assertRegex(errors, r"\Astandard input:10: rejected: .+\noffer: ")

    def test_warnings_are_errors_if_strict(self):
        for command in COMMANDS:
            _, errors = self.succeed(*command, "-", text=MESSAGE + WARNED)
            self.assertRegex(errors, r"\Astandard input:10: warning: a=ptime: .+\n")
            self.assert_fails("standard input:10: a=ptime: .+", *command, "--strict", "-",
                              text=MESSAGE + WARNED)

    def test_errors_name_the_file_and_the_line(self):
        for command in COMMANDS:
            for text, line in ((b"", ""), (BROKEN, ":7"), (MESSAGE + BROKEN, ":10"),
                               (MESSAGE.replace(b"sdp", b"pidf+xml") + OFFER, ""), (b"\x7fELF\0", ":1")):
                self.assert_fails(rf"standard input{line}: .+", *command, "-", text=text)
                self.assert_fails(rf"\S+/bad{line}: .+", *command, self.file("bad", text))
            self.assert_fails("/nowhere: No such file or directory", *command, "/nowhere")
        self.assert_fails("/: Is a directory", "log", "/")

    def test_messages_show_no_keys(self):
        for text in (SECURE, SECURE.replace(b"AES_CM", KEY), SECURE + SUITE + KEY + b"\r\n",
                     OFFER + b"q=" + KEY, OFFER + b"a=rtpmap:8 " + KEY, OFFER + b"m=" + KEY,
                     OFFER + b"m=text 5 RTP/SAVP 98\r\nk=clear:" + KEY, OFFER + KEY, KEY):
            for command in COMMANDS:
                _, output, errors = self.run_program(*command, "-", text=text)
                self.assertNotIn(KEY[:6].decode(), errors)
                if command != MOVE:
                    self.assertNotIn(KEY[:6], output)

    def test_keys_are_random(self):
        outputs = [self.succeed(*ANSWER, "-", text=SECURE)[0] for _ in range(3)]
        keys = {re.search(re.escape(SUITE) + rb"(.*)\r\n", output)[1] for output in outputs}
        self.assertEqual([len(base64.b64decode(key, validate=True)) for key in keys], [30] * 3)


class PreviousAnswer(ProgramCase):
    def answer(self, previous, text, *arguments):
        return self.succeed(*ANSWER, *arguments, "--previous", self.file("old.sdp", previous), "-",
                            text=text)

    def test_unchanged(self):
        for plan in ([], PUBLIC):
            first, _ = self.succeed(*ANSWER, *plan, self.offer)
            again, errors = self.answer(first, OFFER.replace(b"- 1 1 IN", b"- 1 2 IN"), *plan)
            self.assertEqual(again, first)
            self.assertTrue(errors.endswith("\nsince the last answer: unchanged\n"), errors)
        self.assertEqual(self.succeed(*ANSWER, *PUBLIC, "--previous=-", self.offer, text=first)[0],
                         first)

    def test_changed(self):
        first, _ = self.succeed(*ANSWER, self.offer)
        held, errors = self.answer(first, OFFER + b"a=inactive\r\n")
        self.assertTrue(errors.endswith("\nsince the last answer: changed\n"), errors)
        self.assertRegex(held, answered(version=2) + rb"a=inactive\r\n\Z")
        resumed, _ = self.answer(held, OFFER)
        session = re.match(answered(), first)[1]
        self.assertEqual(re.match(answered(version=3), resumed)[1], session)

    def test_errors_name_its_file(self):
        for text, line in ((BROKEN, ":7"), (b"", ""), (MESSAGE + BROKEN, ":10")):
            old = self.file("old.sdp", text)
            self.assert_fails(rf"{old}{line}: .+", *ANSWER, "--previous", old, self.offer)


class Files(ProgramCase):
    def test_output(self):
        self.assertEqual(self.succeed("log", "--output", "out", "-", text=OFFER), (b"", ""))
        self.assertEqual((self.directory / "out").read_text(), LOG)
        output, errors = self.succeed(*MOVE, "--output=-x", self.offer)
        self.assertEqual((output, (self.directory / "-x").read_bytes()), (b"", MOVED))
        self.assertTrue(errors.endswith(BACK % "./-x"), errors)
        self.assertEqual(self.succeed(*ANSWER, "--output", "out", "-", text=OFFER),
                         (b"", ANSWER_LOGS))

    def test_output_replaces_the_input(self):
        file = self.directory / "a b's.sdp"
        file.write_bytes(OFFER)
        file.chmod(0o640)
        (self.directory / "link").symlink_to(file)
        _, errors = self.succeed(*MOVE, "--output", "link", str(file))
        self.assertEqual(file.read_bytes(), MOVED)
        self.assertTrue((self.directory / "link").is_symlink())
        self.assertEqual(stat.S_IMODE(file.stat().st_mode), 0o640)
        file.write_bytes(OFFER)
        _, errors = self.succeed(*MOVE, "--output", file.name, file.name)
        command = shlex.split(errors.splitlines()[-1])[2:]
        self.assertEqual(self.succeed(*command)[0], OFFER)
        self.assertEqual(sorted(os.listdir(self.directory)), [file.name, "link", "offer.sdp"])

    def test_output_is_complete_or_unchanged(self):
        out = self.directory / "out"
        out.write_bytes(b"before")
        limits = ["sh", "-c", 'ulimit -f 0; trap "" XFSZ; exec "$@"', "sh"]
        for command in COMMANDS:
            self.assert_fails("standard input:7: .+", *command, "--output", "out", "-", text=BROKEN)
            self.assert_fails("out: File too large", *command, "--output", "out", "offer.sdp",
                              before=limits)
        self.assertEqual(out.read_bytes(), b"before")
        self.assertEqual(sorted(os.listdir(self.directory)), ["offer.sdp", "out"])
        self.assert_fails("/nowhere/out: No such file or directory", "log", "--output",
                          "/nowhere/out", self.offer)

    def test_output_to_a_pipe(self):
        pipe = self.directory / "pipe"
        os.mkfifo(pipe)
        end = os.open(pipe, os.O_RDONLY | os.O_NONBLOCK)
        self.addCleanup(os.close, end)
        self.assertEqual(self.succeed("log", "--output", "pipe", self.offer), (b"", ""))
        self.assertEqual(os.read(end, 65536).decode(), LOG)
        self.assertTrue(pipe.is_fifo())

    def test_full_output(self):
        for arguments in (*([*command, self.offer] for command in COMMANDS), ["--help"]):
            with open("/dev/full", "wb") as full:
                self.assert_fails("standard output: No space left on device", *arguments,
                                  stdout=full)

    def test_message_is_not_overwritten(self):
        message = self.file("message", MESSAGE + OFFER)
        for arguments in ([*MOVE, message], [*ANSWER, "--previous", message, self.offer]):
            self.assert_fails(f"{message}: --output would .+", *arguments, "--output", message)
            self.assertEqual(pathlib.Path(message).read_bytes(), MESSAGE + OFFER)

    def test_several_files(self):
        self.file("broken", BROKEN)
        status, output, errors = self.run_program("log", "offer.sdp", "broken", "-", text=OFFER)
        self.assertEqual((status, output.decode()), (
            1, f"==> offer.sdp <==\n{LOG}==> standard input <==\n{LOG}"))
        self.assertRegex(errors, r"\Aoffer.sdp: status 0\nqova-sdp: broken:7: .+\nbroken: status 1\n"
                         r"standard input: status 0\n\Z")
        self.file("unended", OFFER[:-2])
        after = log("offer", "203.0.113.5", 40000)
        output, errors = self.succeed(*MOVE, "unended", "offer.sdp")
        self.assertEqual(output, b"==> unended <==\n" + MOVED[:-2] + b"\n==> offer.sdp <==\n" + MOVED)
        self.assertEqual(errors, "".join(f"{file}: after: {after}{file}: {BACK % '-'}"
                                         f"{file}: status 0\n" for file in ("unended", "offer.sdp")))

    def test_names_are_shown_without_control_characters(self):
        name, shown = "a\x1b[31m\n\x7f\u009bé.sdp", "a?[31m????é.sdp"
        self.assert_fails(re.escape(shown) + ": No such file or directory", "log", name)
        self.file(name, OFFER)
        output, errors = self.succeed("log", name, name)
        self.assertEqual(errors, f"{shown}: status 0\n" * 2)
        self.assertEqual(output.decode(), f"==> {shown} <==\n{LOG}" * 2)
        self.assertTrue(self.succeed(*MOVE, "--output", name, self.offer)[1].endswith(f"'{shown}'\n"))


if __name__ == "__main__":
    program = sys.argv[1]
    unittest.main(argv=sys.argv[:1])
