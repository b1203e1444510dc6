#!/usr/bin/env python3
"""The command line of qova-sdp: what it prints, where, and with which exit status.

usage: program_test.py PROGRAM
"""

import sys
import tempfile
import unittest

from program import Program

OFFER = (b"v=0\r\no=- 1 1 IN IP4 10.0.0.1\r\ns=-\r\nc=IN IP4 10.0.0.1\r\nt=0 0\r\n"
         b"m=audio 32000 RTP/AVP 8\r\n")
KEY = b"SecretKeyMaterialThatNobodyMayEverSeeHere"
LOG = ("Capability(%s, Not Hold, silenceSuppSdp=no)\n\tFiltered=\n"
       "\t-> media(Audio)/Accepted @%s/snd=%d~%d/rcv=%d~%d/bsnd=1/brcv=1\n"
       "\t   Attributes :\t\t -> G711alaw / Accepted / framing=0 / vad=0 / echo=0 / mxFraming=0"
       " / MF=0\n\t   Crypto attributes (0) :\n")
LOG_OF_OFFER = LOG % ("offer", "10.0.0.1", 32000, 32001, 32000, 32001)
PORTS = ["--audio-port", "40000", "--fax-port", "7000"]
PLAN = ["--address", "203.0.113.5", *PORTS]


def with_attribute(attribute):
    return OFFER + b"a=" + attribute + b"\r\n"


class ProgramTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.file = tempfile.NamedTemporaryFile(suffix=".sdp")
        self.addCleanup(self.file.close)
        self.file.write(OFFER)
        self.file.flush()

    def assert_fails(self, status, message, *arguments, **options):
        """Nothing but one line on standard error, and the status."""
        got_status, output, errors = program.run(*arguments, **options)
        self.assertEqual(errors, "qova-sdp: " + message + "\n")
        self.assertEqual((got_status, output or b""), (status, b""))

    def assert_misused(self, message, *arguments):
        self.assert_fails(2, message + " (see qova-sdp --help)", *arguments)

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
            self.assertEqual(program.run("log", file, text=text), (0, LOG_OF_OFFER.encode(), ""))
        answer = LOG_OF_OFFER.replace("offer", "answer").encode()
        self.assertEqual(program.run("log", "--answer", self.file.name), (0, answer, ""))
        self.assertEqual(program.run("log", self.file.name, "--answer"), (0, answer, ""))

    def test_log_of_a_description_without_media(self):
        text = b"v=0\no=- 1 1 IN IP4 10.0.0.1\ns=-\nt=0 0\n"
        self.assertEqual(program.run("log", "-", text=text),
                         (0, b"Capability(offer, Not Hold, silenceSuppSdp=no)\n", ""))

    def test_move(self):
        status, moved, errors = program.run("move", *PLAN, self.file.name)
        self.assertEqual(status, 0)
        self.assertEqual(moved, OFFER.replace(b"10.0.0.1", b"203.0.113.5").replace(b"32000",
                                                                                  b"40000"))
        log_after = LOG % ("offer", "203.0.113.5", 40000, 40001, 40000, 40001)
        self.assertEqual(errors, "before: " + LOG_OF_OFFER + "after: " + log_after)
        status, restored, errors = program.run("move", "--back", "--address", "10.0.0.1", *PORTS,
                                               "-", text=moved)
        self.assertEqual((status, restored), (0, OFFER))
        self.assertEqual(errors, "before: " + log_after + "after: " + LOG_OF_OFFER)

    def test_help(self):
        for arguments in (["--help"], ["log", "--help"], ["move", "--help"]):
            status, output, errors = program.run(*arguments)
            self.assertEqual((status, errors), (0, ""))
            self.assertIn(b"usage: qova-sdp log [--answer] FILE|-\n", output)

    def test_misuse(self):
        self.assert_misused("no command is given")
        self.assert_misused("there is no command print", "print", self.file.name)
        self.assert_misused("no FILE is given", "log")
        self.assert_misused("no FILE is given", "log", "--answer")
        self.assert_misused("no FILE is given", "move", *PLAN)
        self.assert_misused("more than one FILE is given", "log", "a", "b")
        self.assert_misused("more than one FILE is given", "log", "-", "-")
        self.assert_misused("log has no option --quiet", "log", "--quiet", "a")
        self.assert_misused("log has no option -x", "log", "-x", "a")
        self.assert_misused("log has no option --back", "log", "--back", "a")
        self.assert_misused("move has no option --answer", "move", "--answer", "a")
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
        self.assert_refused(": no session description: there is nothing in it", b"")
        self.assert_refused(":1: no session description: it does not begin with v=0", b"hello\n")
        self.assert_refused(":1: no session description: it does not begin with v=0",
                            b"\x7fELF\0\0\0")
        self.assert_refused(":1: no o= line follows", b"v=0\n")

    def test_bad_lines(self):
        self.assert_refused(":6: the port is no number from 0 to 65535",
                            OFFER.replace(b"32000", b"65536"))
        self.assert_refused(":4: the address is neither an IP address nor a host name",
                            OFFER.replace(b"c=IN IP4 10.0.0.1", b"c=IN IP4 10.0.0.256"))
        self.assert_refused(":7: the line is not of the form x=value", OFFER + b"broken\n")

    def test_warnings(self):
        text = with_attribute(b"ptime:soon") + b"a=rtpmap:8 PCMA\r\n"
        warnings = ("{0}:7: warning: a=ptime: the value is no number from 0 to 2147483647\n"
                    "{0}:8: warning: a=rtpmap: the clock rate is missing\n")
        self.assertEqual(program.run("log", "-", text=text),
                         (0, LOG_OF_OFFER.encode(), warnings.format("standard input")))
        self.file.write(text[len(OFFER):])
        self.file.flush()
        status, moved, errors = program.run("move", *PLAN, self.file.name)
        self.assertEqual(status, 0)
        self.assertTrue(moved.endswith(text[len(OFFER):]))
        self.assertTrue(errors.startswith(warnings.format(self.file.name)), errors)

    def test_moves_that_are_refused(self):
        def refused(message, *plan):
            self.assert_fails(1, self.file.name + message, "move", *plan, self.file.name)

        refused(":6: the move takes port 32001 to 65536", *PLAN[:2], "--audio-port", "65535",
                *PLAN[4:])
        refused(":6: the move takes port 32000 to 0", "--back", *PLAN[:2], "--audio-port", "64000",
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
                _, output, errors = program.run(*arguments, "-", text=text)
                self.assertNotIn(KEY[:6].decode(), errors)
                self.assertRegex(errors, r"\A(qova-sdp: )?standard input:\d+: ", text)
                if arguments == ["log"]:
                    self.assertNotIn(KEY[:6], output)

    def test_pass_through_shows_no_keys(self):
        text = (OFFER + b"m=text 5 RTP/SAVP 98\r\na=crypto:1 AES_CM_128_HMAC_SHA1_80 inline:" +
                KEY[:40] + b"\r\nk=clear:" + KEY + b"\r\n")
        status, output, errors = program.run("log", "-", text=text)
        self.assertEqual((status, errors), (0, ""))
        self.assertIn(b"m=text 5 RTP/SAVP 98\r\na=crypto:(withheld)\r\nk=(withheld)\r\n", output)
        self.assertNotIn(KEY[:6], output)
        status, output, errors = program.run("move", *PLAN, "-", text=text)
        self.assertEqual(status, 0)
        self.assertIn(KEY[:40], output)
        self.assertNotIn(KEY[:6].decode(), errors)


if __name__ == "__main__":
    program = Program(sys.argv[1])
    unittest.main(argv=sys.argv[:1])
