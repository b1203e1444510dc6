#!/usr/bin/env python3
"""The command line of qova-sdp answer: what it answers, and what it says of it.

usage: answer_test.py PROGRAM
"""

import base64
import os
import re
import sys
import unittest

from program import KEY, LOG, LOG_OF_OFFER, OFFER, PORTS, Program, ProgramCase

LOCAL = ["--local", "192.0.2.1"]
PUBLIC = ["--public", "203.0.113.5", *PORTS]
LOG_OF_ANSWER = LOG % ("answer", "192.0.2.1", 32000, 32001, 32000, 32001)
LOG_OF_PUBLIC = LOG % ("answer", "203.0.113.5", 40000, 40001, 40000, 40001)
LOGS = "offer: " + LOG_OF_OFFER + "answer: " + LOG_OF_ANSWER
SESSION = OFFER[:OFFER.index(b"m=")]
SUITE = b"a=crypto:1 AES_CM_128_HMAC_SHA1_80 inline:"
SECURE = SESSION + b"m=audio 5004 RTP/SAVP 8\r\n" + SUITE + KEY[:40] + b"\r\n"


def answer_at(address, port, identifier=b"[0-9]+", version=b"1", payloads=b"8"):
    """A pattern of the answer to the offer."""
    return (rb"v=0\r\no=- %s %s IN IP4 %s\r\ns=-\r\nc=IN IP4 %s\r\nt=0 0\r\n"
            rb"m=audio %d RTP/AVP %s\r\n" % (identifier, version, re.escape(address),
                                             re.escape(address), port, payloads))


class AnswerTest(ProgramCase):
    def answer(self, *arguments, text=OFFER):
        """Standard output and standard error of what is done."""
        status, output, errors = self.program.run("answer", *LOCAL, *arguments, text=text)
        self.assertEqual(status, 0, errors)
        return output, errors

    def media(self, *arguments, text=OFFER):
        """The media lines that are answered."""
        output = self.answer(*arguments, "-", text=text)[0]
        return re.findall(rb"^m=(.*)\r$", output, re.MULTILINE)

    def old(self, text):
        file = self.directory / "old.sdp"
        file.write_bytes(text)
        return str(file)

    def test_answer(self):
        for file in (self.file.name, "-"):
            output, errors = self.answer(file)
            self.assertRegex(output, rb"\A" + answer_at(b"192.0.2.1", 32000) + rb"\Z")
            self.assertEqual(errors, LOGS)

    def test_public_plan(self):
        output, errors = self.answer(*PUBLIC, "-")
        self.assertRegex(output, rb"\A" + answer_at(b"203.0.113.5", 40000) + rb"\Z")
        self.assertEqual(errors, LOGS + "public: " + LOG_OF_PUBLIC)

    def test_ipv6(self):
        offer = OFFER.replace(b"IP4 10.0.0.1", b"IP6 2001:db8::9")
        output, _ = self.answer("-", text=offer)
        self.assertIn(b"m=audio 0 RTP/AVP 8\r\n", output)
        status, output, _ = self.program.run("answer", "--local", "2001:DB8::0:1", "-", text=offer)
        self.assertEqual(status, 0)
        self.assertIn(b"c=IN IP6 2001:db8::1\r\nt=0 0\r\nm=audio 32000 RTP/AVP 8\r\n", output)

    def test_codecs(self):
        offer = (SESSION + b"m=audio 5004 RTP/AVP 0 3 8 9 18 97\r\na=rtpmap:97 opus/48000/2\r\n")
        for codecs, payloads in (([], b"0 8 9 18 97"), (["PCMA"], b"8"), (["pcma", "opus"], b"8 97"),
                                 (["G722", "PCMU", "G722"], b"0 9"), (["G729"], b"18")):
            options = [f"--codec={codec}" for codec in codecs]
            self.assertEqual(self.media(*options, text=offer), [b"audio 32000 RTP/AVP " + payloads])

    def test_fax(self):
        offer = SESSION + b"m=image 5004 udptl t38\r\n"
        for options, port in (([], b"6666"), (["--fax"], b"6666"), (["--no-fax"], b"0"),
                              (PUBLIC, b"7000")):
            self.assertEqual(self.media(*options, text=offer), [b"image " + port + b" udptl t38"])

    def test_rejected_lines(self):
        offer = (b"\r\n" + OFFER + b"m=video 5006 RTP/AVP 31\r\nm=audio 5008 RTP/AVP 3\r\n"
                 b"m=audio 0 RTP/AVP 8\r\n")
        output, errors = self.answer("-", text=offer)
        self.assertEqual(re.findall(rb"m=.*(?=\r)", output),
                         [b"m=audio 32000 RTP/AVP 8", b"m=video 0 RTP/AVP 31",
                          b"m=audio 0 RTP/AVP 3", b"m=audio 0 RTP/AVP 8"])
        self.assertTrue(errors.startswith(
            "standard input:8: rejected: unsupported media type\n"
            "standard input:9: rejected: no codec in common\noffer: "), errors)

    def test_nothing_in_common(self):
        output, errors = self.answer("--codec", "opus", self.file.name)
        self.assertIn(b"m=audio 0 RTP/AVP 8\r\n", output)
        self.assertTrue(errors.startswith(f"{self.file.name}:6: rejected: no codec in common\n"))

    def test_warnings(self):
        offer = OFFER + b"a=ptime:soon\r\n"
        message = "a=ptime: expected a number from 0 to 2147483647"
        errors = self.answer("-", text=offer)[1]
        self.assertEqual(errors, f"standard input:7: warning: {message}\n" + LOGS)
        self.assert_fails(1, f"standard input:7: {message}", "answer", *LOCAL, "--strict", "-",
                          text=offer)

    def test_refusals(self):
        for text, message in ((b"", ": the description is empty"),
                              (OFFER + b"broken\n", ":7: expected a line of the form x=value")):
            self.assert_fails(1, "standard input" + message, "answer", *LOCAL, "-", text=text)
        self.assert_fails(1, "the public ports of the answer exceed 65535",
                          "answer", *LOCAL, *PUBLIC[:2], "--audio-port=65535", "--fax-port=7000",
                          "-", text=OFFER)
        self.assert_fails(1, "/nowhere: No such file or directory", "answer", *LOCAL, "/nowhere")

    def test_an_offer_in_a_message(self):
        head = b"INVITE sip:a@b SIP/2.0\r\nContent-Type: application/sdp\r\n\r\n"
        self.assertEqual(self.answer("-", text=head + OFFER)[1], LOGS)
        errors = self.answer("-", text=head + OFFER.replace(b"AVP 8", b"AVP 3"))[1]
        self.assertTrue(errors.startswith("standard input:9: rejected: "), errors)
        for offer, old in (("message", "old.sdp"), ("offer.sdp", "message")):
            self.old(self.answer("-")[0])
            (self.directory / "message").write_bytes(head + OFFER)
            (self.directory / "offer.sdp").write_bytes(OFFER)
            self.assert_fails(
                1, "message: the description is a part of it, and --output would replace it all",
                "answer", *LOCAL, "--previous", old, "--output", "message", offer,
                directory=self.directory)
            self.assertEqual((self.directory / "message").read_bytes(), head + OFFER)

    # --- What was answered before ----------------------------------------------------------------

    def test_nothing_changed(self):
        for plan in ([], PUBLIC):
            first = self.answer(*plan, "-")[0]
            again, errors = self.answer(*plan, "--previous", self.old(first), "-",
                                        text=OFFER.replace(b"- 1 1 IN", b"- 1 2 IN"))
            self.assertEqual(again, first)
            self.assertTrue(errors.endswith("\nsince the last answer: unchanged\n"), errors)

    def test_something_changed(self):
        first = self.answer("-")[0]
        identifier = re.search(rb"o=- (\d+) 1 ", first)[1]
        held, errors = self.answer("--previous", self.old(first), "-",
                                   text=OFFER + b"a=inactive\r\n")
        self.assertTrue(errors.endswith("\nsince the last answer: changed\n"), errors)
        self.assertRegex(held, rb"\A" + answer_at(b"192.0.2.1", 32000, identifier, b"2") +
                         rb"a=inactive\r\n\Z")
        resumed, errors = self.answer("--previous", self.old(held), "-")
        self.assertTrue(errors.endswith("\nsince the last answer: changed\n"), errors)
        self.assertRegex(resumed, rb"\A" + answer_at(b"192.0.2.1", 32000, identifier, b"3") + rb"\Z")

    def test_the_previous_answer_from_standard_input(self):
        first = self.answer(self.file.name)[0]
        self.assertEqual(self.answer("--previous", "-", self.file.name, text=first)[0], first)

    def test_a_broken_previous_answer(self):
        for text, message in ((b"v=0\r\nbroken\r\n", ":2: expected a line of the form x=value"),
                              (b"", ": the description is empty"),
                              (b"SIP/2.0 200 OK\r\nContent-Type: application/sdp\r\n\r\nv=0\r\n"
                               b"broken\r\n", ":5: expected a line of the form x=value")):
            old = self.old(text)
            self.assert_fails(1, old + message, "answer", *LOCAL, "--previous", old, self.file.name)
        self.assert_fails(1, "/nowhere: No such file or directory", "answer", *LOCAL,
                          "--previous=/nowhere", self.file.name)

    # --- Output ----------------------------------------------------------------------------------

    def test_output(self):
        out = self.directory / "out.sdp"
        output, errors = self.answer("--output", str(out), "-")
        self.assertEqual((output, errors), (b"", LOGS))
        first = out.read_bytes()
        self.assertRegex(first, rb"\A" + answer_at(b"192.0.2.1", 32000) + rb"\Z")
        _, errors = self.answer("--previous", str(out), "--output", str(out), "-",
                                text=OFFER + b"a=inactive\r\n")
        self.assertTrue(errors.endswith("\nsince the last answer: changed\n"), errors)
        self.assertIn(b"\r\na=inactive\r\n", out.read_bytes())

    def test_output_is_written_whole_or_not_at_all(self):
        out = self.directory / "out.sdp"
        out.write_bytes(b"before")
        self.assert_fails(1, "standard input:7: expected a line of the form x=value", "answer",
                          *LOCAL, "--output", str(out), "-", text=OFFER + b"broken")
        limits = ["sh", "-c", 'ulimit -f 0; trap "" XFSZ; exec "$@"', "sh"]
        got = self.program.run("answer", *LOCAL, "--output", str(out), self.file.name,
                               before=limits)
        self.assertEqual(got, (1, b"", f"qova-sdp: {out}: File too large\n"))
        self.assertEqual(out.read_bytes(), b"before")
        self.assertEqual(os.listdir(self.directory), ["out.sdp"])
        with open("/dev/full", "wb") as full:
            self.assert_fails(1, "standard output: No space left on device", "answer", *LOCAL,
                              self.file.name, stdout=full)

    # --- Keys ------------------------------------------------------------------------------------

    def test_keys(self):
        for plan in ([], PUBLIC):
            keys = set()
            for _ in range(3):
                output, errors = self.answer(*plan, "-", text=SECURE)
                key = re.search(rb"\r\n" + re.escape(SUITE) + rb"(.*)\r\n\Z", output)[1]
                raw = base64.b64decode(key, validate=True)
                self.assertEqual(len(raw), 30)
                self.assertNotEqual(key, KEY[:40])
                keys.add(key)
                for shown in (key[:8].decode(), KEY[:8].decode(), raw[:8].hex(),
                              ", ".join(str(byte) for byte in raw[:8])):
                    self.assertNotIn(shown, errors)
            self.assertEqual(len(keys), 3)

    def test_messages_show_no_keys(self):
        old = self.old(self.answer("-", text=SECURE)[0] + KEY + b"\r\n")
        for arguments, text in (([], SECURE + KEY), (["--strict"], SECURE.replace(b"AES_CM", KEY)),
                                ([], SECURE + SUITE + KEY), (["--previous", old], SECURE)):
            _, output, errors = self.program.run("answer", *LOCAL, *arguments, "-", text=text)
            self.assertNotIn(KEY[:8].decode(), errors)
            self.assertNotIn(KEY[:8], output)
            self.assertNotEqual(errors, "")

    # --- Misuse ----------------------------------------------------------------------------------

    def test_misuse(self):
        def misused(message, *arguments):
            self.assert_misused(message, "answer", *arguments)

        misused("no FILE is given")
        misused("no FILE is given", *LOCAL)
        misused("answer needs --local", "a")
        misused("answer takes one OFFER", *LOCAL, "a", "b")
        misused("standard input is given twice", *LOCAL, "--previous", "-", "-")
        misused("standard input is given twice", *LOCAL, "--previous=-", "-")
        misused("--local needs a value", "a", "--local")
        misused("--codec needs a value", "a", "--codec")
        misused("--previous needs a value", "a", "--previous")
        misused("--public needs a value", "a", "--public")
        misused("--local is given twice", *LOCAL, *LOCAL, "a")
        misused("--previous is given twice", *LOCAL, "--previous", "b", "--previous", "c", "a")
        misused("--fax is given twice", *LOCAL, "--fax", "--fax", "a")
        misused("--no-fax is given twice", *LOCAL, "--no-fax", "--no-fax", "a")
        misused("--fax and --no-fax exclude each other", *LOCAL, "--no-fax", "--fax", "a")
        misused("--public: 2001:db8::1 is of another family than 192.0.2.1", "--local", "192.0.2.1",
                "--public", "2001:db8::1", *PORTS, "a")
        misused("--fax takes no value", *LOCAL, "--fax=yes", "a")
        misused("--codec: there is no codec GSM", *LOCAL, "--codec", "GSM", "a")
        misused("--codec: there is no codec ", *LOCAL, "--codec=", "a")
        misused("a public plan needs --public", *LOCAL, *PORTS, "a")
        misused("a public plan needs --audio-port", *LOCAL, *PUBLIC[:2], *PUBLIC[4:], "a")
        misused("a public plan needs --fax-port", *LOCAL, *PUBLIC[:4], "a")
        for option in ("--local", "--public"):
            for address in ("", "host", "10.0.0.256", "224.0.0.1", "ff02::1", "0.0.0.0", "::"):
                misused(f"{option}: {address} is no unicast IPv4 or IPv6 address",
                        f"{option}={address}", "a")
        misused("--audio-port: 0 is no port from 1 to 65535", *LOCAL, *PUBLIC[:2],
                "--audio-port=0", "a")

    def test_options_of_other_commands(self):
        for option in ("--answer", "--back", "--merge", "--verbose", "--address"):
            self.assert_misused(f"answer has no option {option}", "answer", option, "a")
        for command in ("log", "move"):
            for option in ("--local", "--public", "--previous", "--codec", "--fax", "--no-fax"):
                self.assert_misused(f"{command} has no option {option}", command, option, "a")

    def test_help(self):
        for option in ("--help", "-h"):
            self.assertEqual(self.program.run("answer", option), self.program.run("--help"))


if __name__ == "__main__":
    ProgramCase.program = Program(sys.argv[1])
    unittest.main(argv=sys.argv[:1])
