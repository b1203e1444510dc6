#!/usr/bin/env python3
"""The command line of qova-sdp: what it prints, where, and with which exit status.

usage: program_test.py PROGRAM MAN_PAGE
"""

import pathlib
import re
import sys
import tempfile
import unittest

from program import (BACK, KEY, LOG_AFTER, LOG_OF_OFFER, MOVED, OFFER, PLAN, PORTS, Program,
                     ProgramCase)


def with_attribute(attribute):
    return OFFER + b"a=" + attribute + b"\r\n"


class ProgramTest(ProgramCase):
    def assert_refused(self, message, text):
        """By both commands, from standard input and from a file."""
        for command in (["log"], ["move", *PLAN]):
            self.assert_fails(1, "standard input" + message, *command, "-", text=text)
            with tempfile.NamedTemporaryFile() as file:
                file.write(text)
                file.flush()
                self.assert_fails(1, file.name + message, *command, file.name)

    def test_log(self):
        for file, text in ((self.file.name, b""), ("-", OFFER)):
            self.assertEqual(self.program.run("log", file, text=text), (0, LOG_OF_OFFER.encode(), ""))
        answer = LOG_OF_OFFER.replace("offer", "answer").encode()
        self.assertEqual(self.program.run("log", "--answer", self.file.name), (0, answer, ""))
        self.assertEqual(self.program.run("log", self.file.name, "--answer"), (0, answer, ""))

    def test_log_of_a_description_without_media(self):
        text = b"v=0\no=- 1 1 IN IP4 10.0.0.1\ns=-\nt=0 0\n"
        self.assertEqual(self.program.run("log", "-", text=text),
                         (0, b"Capability(offer, Not Hold, silenceSuppSdp=no)\n", ""))

    def test_move(self):
        status, moved, errors = self.program.run("move", *PLAN, self.file.name)
        self.assertEqual((status, moved), (0, MOVED))
        self.assertEqual(errors, "after: " + LOG_AFTER + BACK % "-")
        status, restored, errors = self.program.run("move", "--back", "--address", "10.0.0.1", *PORTS,
                                               "-", text=moved)
        self.assertEqual((status, restored), (0, OFFER))
        self.assertEqual(errors, "after: " + LOG_OF_OFFER + BACK.replace("--back ", "").replace(
            "10.0.0.1", "203.0.113.5") % "-")

    def test_verbose_move(self):
        _, _, errors = self.program.run("move", "--verbose", *PLAN, self.file.name)
        self.assertEqual(errors, "before: " + LOG_OF_OFFER + "after: " + LOG_AFTER + BACK % "-")

    def test_move_of_an_answer(self):
        status, moved, errors = self.program.run("move", "--answer", *PLAN, self.file.name)
        self.assertEqual((status, moved), (0, MOVED))
        self.assertEqual(errors, "after: " + LOG_AFTER.replace("offer", "answer") +
                         BACK.replace("--back", "--back --answer") % "-")

    def test_merge(self):
        text = OFFER + b"m=video 5 RTP/AVP 31\r\nc=IN IP4 10.0.0.2\r\n"
        self.assert_fails(1, "standard input:8: the address differs from that of line 4; moving "
                          "both to one address cannot be undone (use --merge to allow it)", "move", *PLAN, "-", text=text)
        status, moved, errors = self.program.run("move", "--merge", *PLAN, "-", text=text)
        self.assertEqual((status, moved), (0, MOVED + b"m=video 5 RTP/AVP 31\r\n"
                                           b"c=IN IP4 203.0.113.5\r\n"))
        self.assertTrue(errors.endswith("\nback: none: no move restores the description\n"))

    def test_strict(self):
        text = with_attribute(b"candidate:1 1 UDP 1 10.0.0.1 32000 typ host")
        status, _, errors = self.program.run("move", *PLAN, "-", text=text)
        self.assertEqual(status, 0)
        warning = "this line still names the old address"
        self.assertTrue(errors.startswith("standard input:7: warning: " + warning + "\n"))
        self.assert_fails(1, "standard input:7: " + warning, "move", "--strict", *PLAN, "-",
                          text=text)
        text = with_attribute(b"ptime:soon")
        message = "standard input:7: a=ptime: expected a number from 0 to 2147483647"
        self.assert_fails(1, message, "log", "--strict", "-", text=text)
        self.assert_fails(1, message, "move", "--strict", *PLAN, "-", text=text)

    def test_help(self):
        for arguments in (["--help"], ["-h"], ["log", "--help"], ["move", "-h"]):
            status, output, errors = self.program.run(*arguments)
            self.assertEqual((status, errors), (0, ""))
            self.assertIn(b"usage: qova-sdp log [OPTION]... FILE...\n", output)

    def test_version(self):
        for arguments in (["--version"], ["log", "--version"], ["move", "--version"]):
            status, output, errors = self.program.run(*arguments)
            self.assertEqual((status, errors), (0, ""))
            self.assertRegex(output, rb"\Aqova-sdp \d+\.\d+\.\d+\n\Z")

    def test_the_manual_has_the_options_of_the_help(self):
        def options(text):
            return sorted(set(re.findall(r"(?<![\w-])--?[a-z][a-z-]*", text)))
        usage = self.program.run("--help")[1].decode()
        self.assertEqual(options(manual.replace("\\-", "-")), options(usage))

    def test_values_and_the_end_of_the_options(self):
        plan = ["--address=203.0.113.5", "--audio-port=40000", "--fax-port=7000"]
        self.assertEqual(self.program.run("move", *plan, self.file.name)[:2], (0, MOVED))
        for name in ("-dash.sdp", "--answer", "a=b"):
            (self.directory / name).write_bytes(OFFER)
            got = self.program.run("log", "--", name, directory=self.directory)
            self.assertEqual(got, (0, LOG_OF_OFFER.encode(), ""))
        self.assert_fails(1, "--: No such file or directory", "log", "--", "--")

    def test_message(self):
        head = b"INVITE sip:a@b SIP/2.0\r\nContent-Type: application/sdp\r\n\r\n"
        self.assertEqual(self.program.run("log", "-", text=head + OFFER),
                         (0, LOG_OF_OFFER.encode(), ""))
        self.assertEqual(self.program.run("move", *PLAN, "-", text=head + OFFER)[:2], (0, MOVED))
        _, _, errors = self.program.run("log", "-", text=head + with_attribute(b"ptime:soon"))
        self.assertTrue(errors.startswith("standard input:10: warning: a=ptime: "), errors)
        self.assert_fails(1, "standard input:10: expected a line of the form x=value", "log", "-",
                          text=head + OFFER + b"broken\r\n")
        self.assert_fails(1, "standard input: no body of type application/sdp",
                          "log", "-", text=head.replace(b"sdp", b"pidf+xml") + OFFER)
        file = self.directory / "message"
        file.write_bytes(head + OFFER)
        self.assert_fails(1, f"{file}: the description is a part of it, and --output would replace "
                          "it all", "move", *PLAN, "--output", str(file), str(file))
        self.assertEqual(file.read_bytes(), head + OFFER)
        status = self.program.run("log", "--output", str(self.directory / "log"), str(file))[0]
        self.assertEqual(status, 0)

    def test_misuse(self):
        self.assert_misused("no command is given")
        self.assert_misused("there is no command print", "print", self.file.name)
        self.assert_misused("no FILE is given", "log")
        self.assert_misused("no FILE is given", "log", "--answer")
        self.assert_misused("no FILE is given", "move", *PLAN)
        self.assert_misused("standard input is given twice", "log", "-", "a", "-")
        self.assert_misused("--output takes the output of one FILE only", "log", "--output", "x",
                            "a", "b")
        self.assert_misused("log has no option --quiet", "log", "--quiet", "a")
        self.assert_misused("log has no option -x", "log", "-x", "a")
        self.assert_misused("log has no option --back", "log", "--back", "a")
        self.assert_misused("there is no command -x", "-x", "a")
        self.assert_misused("log has no option --address", "log", "--address=10.0.0.1", "a")
        self.assert_misused("--answer is given twice", "log", "--answer", "a", "--answer")
        self.assert_misused("--address is given twice", "move", *PLAN, "--address=10.0.0.1", "a")
        self.assert_misused("--help is given twice", "log", "-h", "--help")
        self.assert_misused("--back takes no value", "move", "--back=yes", *PLAN, "a")
        self.assert_misused("--version takes no value", "log", "--version=1", "a")
        self.assert_misused("--output needs a value", "log", "a", "--output")
        self.assert_misused("--address needs a value", "move", "a", "--address")
        self.assert_misused("--fax-port needs a value", "move", "a", "--fax-port")
        self.assert_misused("move needs --address", "move", *PORTS, "a")
        self.assert_misused("move needs --audio-port", "move", *PLAN[:2], *PLAN[4:], "a")
        self.assert_misused("move needs --fax-port", "move", *PLAN[:4], "a")

    def test_option_values(self):
        for address in ("", "host", "10.0.0", "10.0.0.256", "224.0.0.1", "ff02::1",
                        "0.0.0.0", "::"):
            self.assert_misused(f"--address: {address} is no unicast IPv4 or IPv6 address", "move",
                                "--address", address, *PORTS, self.file.name)
        for option in ("--audio-port", "--fax-port"):
            for port in ("", "0", "-1", "65536", "40000x", "0x10", " 1"):
                self.assert_misused(f"{option}: {port} is no port from 1 to 65535", "move", option,
                                    port, self.file.name)

    def test_files(self):
        self.assert_fails(1, "/nowhere/a.sdp: No such file or directory", "log", "/nowhere/a.sdp")
        self.assert_fails(1, "/: Is a directory", "log", "/")
        self.assert_fails(1, "/nowhere: No such file or directory", "move", *PLAN, "/nowhere")

    def test_full_output(self):
        for arguments in (["log", self.file.name], ["move", *PLAN, self.file.name], ["--help"]):
            with open("/dev/full", "wb") as full:
                self.assert_fails(1, "standard output: No space left on device", *arguments,
                                  stdout=full)

    def test_no_description(self):
        self.assert_refused(": the description is empty", b"")
        self.assert_refused(":1: not a session description: the first line is not v=0", b"hello\n")
        self.assert_refused(":1: not a session description: the first line is not v=0",
                            b"\x7fELF\0\0\0")
        self.assert_refused(":1: the o= line is missing", b"v=0\n")

    def test_bad_lines(self):
        self.assert_refused(":6: m=: expected a port from 0 to 65535",
                            OFFER.replace(b"32000", b"65536"))
        self.assert_refused(":4: expected an IP address or a host name",
                            OFFER.replace(b"c=IN IP4 10.0.0.1", b"c=IN IP4 10.0.0.256"))
        self.assert_refused(":7: expected a line of the form x=value", OFFER + b"broken\n")

    def test_warnings(self):
        text = with_attribute(b"ptime:soon") + b"a=rtpmap:8 PCMA\r\n"
        warnings = ("{0}:7: warning: a=ptime: expected a number from 0 to 2147483647\n"
                    "{0}:8: warning: a=rtpmap: the clock rate is missing\n")
        self.assertEqual(self.program.run("log", "-", text=text),
                         (0, LOG_OF_OFFER.encode(), warnings.format("standard input")))
        self.file.write(text[len(OFFER):])
        self.file.flush()
        status, moved, errors = self.program.run("move", *PLAN, self.file.name)
        self.assertEqual(status, 0)
        self.assertTrue(moved.endswith(text[len(OFFER):]))
        self.assertTrue(errors.startswith(warnings.format(self.file.name)), errors)

    def test_moves_that_are_refused(self):
        def refused(message, *plan):
            self.assert_fails(1, self.file.name + message, "move", *plan, self.file.name)

        refused(":6: the move would change port 32001 to 65536", *PLAN[:2], "--audio-port", "65535",
                *PLAN[4:])
        refused(":6: the move would change port 32000 to 0", "--back", *PLAN[:2], "--audio-port", "64000",
                *PLAN[4:])

    def test_messages_show_no_keys(self):
        suite = b"crypto:1 AES_CM_128_HMAC_SHA1_80 inline:"
        texts = [
            with_attribute(suite + KEY),
            with_attribute(suite + KEY[:40] + b"|" + KEY),
            with_attribute(suite + KEY[:40] + b"|" + KEY + b":1"),
            with_attribute(b"crypto:" + KEY + b" AES_CM_128_HMAC_SHA1_80 inline:" + KEY),
            with_attribute(b"crypto:1 " + KEY + b" inline:x") + b"broken " + KEY,
            OFFER + b"inline:" + KEY + b"\r\n",
            OFFER + b"q=" + KEY + b"\r\n",
            OFFER + b"b=" + KEY + b"\r\n",
            with_attribute(b"rtpmap:8 " + KEY),
            with_attribute(b"rtcp:" + KEY),
            with_attribute(b"ptime:" + KEY),
            with_attribute(b"fmtp:" + KEY),
            OFFER + b"c=IN IP4 " + KEY + b"\r\n",
            OFFER + b"m=" + KEY + b"\r\n",
            b"v=0\r\n" + KEY,
            KEY,
        ]
        for text in texts:
            for arguments in (["log"], ["move", *PLAN]):
                _, output, errors = self.program.run(*arguments, "-", text=text)
                self.assertNotIn(KEY[:6].decode(), errors)
                self.assertRegex(errors, r"\A(qova-sdp: )?standard input:\d+: ", text)
                if arguments == ["log"]:
                    self.assertNotIn(KEY[:6], output)

    def test_pass_through_shows_no_keys(self):
        text = (OFFER + b"m=text 5 RTP/SAVP 98\r\na=crypto:1 AES_CM_128_HMAC_SHA1_80 inline:" +
                KEY[:40] + b"\r\nk=clear:" + KEY + b"\r\n")
        status, output, errors = self.program.run("log", "-", text=text)
        self.assertEqual((status, errors), (0, ""))
        self.assertIn(b"m=text 5 RTP/SAVP 98\r\na=crypto:(withheld)\r\nk=(withheld)\r\n", output)
        self.assertNotIn(KEY[:6], output)
        status, output, errors = self.program.run("move", *PLAN, "-", text=text)
        self.assertEqual(status, 0)
        self.assertIn(KEY[:40], output)
        self.assertNotIn(KEY[:6].decode(), errors)


if __name__ == "__main__":
    ProgramCase.program = Program(sys.argv[1])
    manual = pathlib.Path(sys.argv[2]).read_text()
    unittest.main(argv=sys.argv[:1])
