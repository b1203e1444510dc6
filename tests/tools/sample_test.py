#!/usr/bin/env python3
"""What qova-sdp says about one sample, and that every move of it can be undone.

Beside NAME.sdp stand the log text, NAME.log; what it warns of, NAME.warnings, where it does; and why
a move is refused, NAME.refused, where it is.

usage: sample_test.py PROGRAM SAMPLE.sdp
"""

import base64
import pathlib
import re
import sys
import unittest

from program import Program

PLANS = [("203.0.113.5", "40000", "7000"), ("2001:db8:ffff::9", "31000", "6668"),
         ("203.0.113.5", "33000", "6000")]


def messages(suffix):
    """The lines of a file beside the sample, each after the name of the sample; often there is none."""
    file = sample.with_suffix(suffix)
    lines = file.read_text().splitlines() if file.exists() else []
    return "".join(f"{sample}:{line}\n" for line in lines)


class SampleTest(unittest.TestCase):
    maxDiff = None

    def test_log(self):
        role = ["--answer"] if "answer" in sample.stem else []
        status, log, errors = program.run("log", *role, str(sample))
        self.assertEqual((status, errors), (0, messages(".warnings")))
        self.assertEqual(log.decode(), sample.with_suffix(".log").read_bytes().decode())

    def test_move_and_back(self):
        text = sample.read_bytes()
        role = ["--answer"] if "answer" in sample.stem else []
        for target, audio, fax in PLANS:
            plan = ["--address", target, "--audio-port", audio, "--fax-port", fax]
            status, moved, errors = program.run("move", *role, *plan, str(sample))
            if refusal := messages(".refused"):
                self.assertEqual((status, moved, errors), (1, b"", "qova-sdp: " + refusal))
                continue
            self.assertEqual(status, 0, errors)
            warnings, log, back = re.fullmatch(
                r"(.*?)(after: Capability\(.*\n)back: qova-sdp (.*)\n", errors, re.DOTALL).groups()
            left = rf"{re.escape(str(sample))}:\d+: warning: this line still names .*\n"
            self.assertEqual(re.sub(left, "", warnings), messages(".warnings"))
            self.assertEqual(log.encode(),
                             b"after: " + program.run("log", *role, "-", text=moved)[1])
            if not re.search(rb"^c=IN IP4 0.0.0.0", text, re.MULTILINE):
                self.assertNotEqual(moved, text)
            status, restored, errors = program.run(*back.split(), text=moved)
            self.assertEqual((status, restored), (0, text), errors)

    def test_answer(self):
        lines = re.findall(rb"^m=(\S+) \S+ (\S+)", sample.read_bytes(), re.MULTILINE)
        for local, public in (("192.168.250.1", "203.0.113.5"), ("fd00:250::1", "2001:db8::5")):
            status, answer, errors = program.run("answer", "--local", local, "--public", public,
                                                 "--audio-port", "40000", "--fax-port", "7000",
                                                 str(sample))
            self.assertEqual(status, 0, errors)
            self.assertTrue(errors.startswith(messages(".warnings")), errors)
            self.assertEqual(re.findall(rb"^m=(\S+) \d+ (\S+)", answer, re.MULTILINE), lines)
            self.assertNotIn(local.encode(), answer)
            self.assertNotRegex(answer, rb"(?m)^m=\S+ (3[12]\d\d\d|6666) ")
            text = program.run("log", "--answer", "-", text=answer)[1].decode()
            sent = re.search(r"^public: (Capability\(answer.*)", errors, re.DOTALL | re.MULTILINE)
            rejected = re.compile(r"(Rejected) @.*?\n\t   Attributes :.*?Crypto", re.DOTALL)
            self.assertEqual(rejected.sub(r"\1", text), rejected.sub(r"\1", sent[1]))

    def test_keys_stay_in_the_description(self):
        keys = re.findall(rb"inline:([^|;\s]+)", sample.read_bytes())
        shown = program.run("log", str(sample))[1].decode()
        shown += program.run("move", "--address", "203.0.113.5", "--audio-port", "40000",
                             "--fax-port", "7000", str(sample))[2]
        _, answer, errors = program.run("answer", "--local", "192.0.2.1", str(sample))
        shown += answer.decode() + errors
        for key in keys:
            self.assertGreaterEqual(len(key), 40)
            self.assertNotIn(key[:8].decode(), shown)
            raw = base64.b64decode(key)
            self.assertNotIn(raw[:8].hex(), shown.lower())
            self.assertNotIn(", ".join(str(byte) for byte in raw[:8]), shown)


if __name__ == "__main__":
    program = Program(sys.argv[1])
    sample = pathlib.Path(sys.argv[2])
    unittest.main(argv=sys.argv[:1])
