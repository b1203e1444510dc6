#!/usr/bin/env python3
"""The options of qova-sdp and qova-answer, and whether their manual pages list the same ones.

usage: options_test.py QOVA_SDP QOVA_ANSWER DIRECTORY_OF_THE_MANUAL_PAGES
"""

import pathlib
import re
import shutil
import subprocess
import sys
import unittest

PORTS = ["--audio-port", "40000", "--fax-port", "7000"]
MOVE = ["move", "--address", "203.0.113.5", *PORTS]
ANSWER = ["answer", "--local", "192.0.2.1"]
PUBLIC = ["--public", "203.0.113.5", *PORTS]
TOGETHER = "--public, --audio-port and --fax-port require each other"
MOVE_NEEDS = "move requires --address, --audio-port and --fax-port"


def run(*command):
    done = subprocess.run(command, capture_output=True, text=True, timeout=60, check=False)
    return done.returncode, done.stdout, done.stderr


class Misuse(unittest.TestCase):
    def check(self, program, cases):
        for message, *arguments in cases:
            with self.subTest(arguments=arguments):
                self.assertEqual(run(program, *arguments), (
                    2, "", f"{program.name}: {message} (see {program.name} --help)\n"))

    def test_commands_and_files(self):
        self.check(qova_sdp, (
            ("missing command",),
            ("unknown command 'print'", "print", "a"),
            ("unknown command '-x'", "-x", "a"),
            ("missing FILE", "log"),
            ("missing FILE", *MOVE),
            ("missing FILE", *ANSWER),
            ("answer takes only one FILE", *ANSWER, "a", "b"),
            ("--output takes only one FILE", "log", "--output", "x", "a", "b"),
            ("standard input ('-') is given twice", "log", "-", "a", "-"),
            ("standard input ('-') is given twice", *ANSWER, "--previous=-", "-")))
        self.check(qova_answer, (("qova-answer takes options only", "file"),))

    def test_options_of_other_commands(self):
        for command, options in (
                ("log", "--address --back --merge --verbose --codec --fax --local --quiet -x --?"),
                ("move", "--local --public --previous --codec --fax --no-fax --listen"),
                ("answer", "--answer --back --merge --verbose --address --quiet"),
                ("qova-answer", "--answer --output --previous --address --merge")):
            program, words = (qova_answer, []) if command == "qova-answer" else (qova_sdp, [command])
            self.check(program, ((f"{command}: unknown option '{option}'", *words, option, "a")
                                 for option in options.split()))
        self.check(qova_sdp, (("log: unknown option '--?x'", "log", "--\x1bx=1", "a"),))

    def test_repeated_options(self):
        self.check(qova_sdp, (
            ("--answer is given twice", "log", "--answer", "a", "--answer"),
            ("--help is given twice", "log", "-h", "--help"),
            ("--address is given twice", *MOVE, "--address=10.0.0.1", "a"),
            ("--fax and --no-fax exclude each other", *ANSWER, "--no-fax", "--fax", "a")))
        self.check(qova_answer, (("--quiet is given twice", "--quiet", "--quiet"),))

    def test_required_options(self):
        self.check(qova_sdp, (
            (MOVE_NEEDS, "move", *PORTS, "a"), (MOVE_NEEDS, *MOVE[:3], *PORTS[2:], "a"),
            (MOVE_NEEDS, *MOVE[:5], "a"), (MOVE_NEEDS, "move", "a"),
            ("answer requires --local", "answer", "a"),
            (TOGETHER, *ANSWER, *PORTS, "a"), (TOGETHER, *ANSWER, *PUBLIC[:2], "a"),
            (TOGETHER, *ANSWER, *PUBLIC[:4], "a")))
        self.check(qova_answer, ((TOGETHER, *PUBLIC[:4]),))

    def test_values(self):
        self.check(qova_sdp, (
            ("--back: unexpected value 'yes'", *MOVE, "--back=yes", "a"),
            ("--version: unexpected value ''", "log", "--version=", "a"),
            ("--output: missing value", "log", "a", "--output"),
            ("--output: missing value", "log", "a", "--output="),
            ("--codec: unknown codec 'GSM'", *ANSWER, "--codec", "GSM", "a"),
            ("--public: 2001:db8::1 and the local address 192.0.2.1 belong to different address "
             "families", *ANSWER, "--public", "2001:db8::1", *PORTS, "a"),
            *((f"{option}: invalid port '{port}' (1 to 65535)", "move", option, port, "a")
              for option in ("--audio-port", "--fax-port")
              for port in ("0", "-1", "65536", "40000x", "0x10", " 1")),
            *((f"{option}: invalid address '{address}' (expected a unicast IPv4 or IPv6 address)",
               command, option, address, "a")
              for command, option in (("move", "--address"), ("answer", "--local"),
                                      ("answer", "--public"))
              for address in ("host", "10.0.0", "10.0.0.256", "010.0.0.1", "10.0.0.1 ",
                              "224.0.0.1", "ff02::1", "fe80::1%eth0", "0.0.0.0", "::"))))
        self.check(qova_answer, (
            ("--public: ::1 and the local address 127.0.0.1 belong to different address families",
             "--public", "::1", *PORTS),
            ("--listen: the host in 'sip:0.0.0.0' is not a unicast address (use --local)",
             "--listen", "sip:0.0.0.0"),
            *((f"--listen: invalid URI '{uri}' (example: sip:127.0.0.1:5080;transport=tcp)",
               "--listen", uri)
              for uri in ("host", "sip:", "http://127.0.0.1", "sip:127.0.0.1:65536"))))

    def test_forms_of_values(self):
        sample = str(tools / "samples" / "offer.sdp")
        spaced = run(qova_sdp, *MOVE, sample)
        self.assertEqual(spaced[0], 0)
        words = [f"{name}={value}" for name, value in zip(MOVE[1::2], MOVE[2::2])]
        self.assertEqual(run(qova_sdp, "move", sample, *words), spaced)
        self.assertEqual(run(qova_sdp, "move", *words, "--", sample), spaced)
        self.assertEqual(run(qova_sdp, "log", "--", "--answer"),
                         (1, "", "qova-sdp: --answer: No such file or directory\n"))


class Help(unittest.TestCase):
    @staticmethod
    def options(lines):
        """The options that lines begin with, with the names of their values."""
        found = set()
        for line in lines:
            if match := re.match(r"(-h, )?--[a-z-]+( [A-Z]+\b)?", line):
                found.add(match[0])
        return found

    def test_help_and_version(self):
        for program, commands in ((qova_sdp, ([], ["log"], ["move"], ["answer"])), (qova_answer, ([],))):
            for command in commands:
                usage = run(program, *command, "--help")
                self.assertEqual(usage, run(program, *command, "-h"))
                self.assertEqual(usage[::2], (0, ""))
                self.assertRegex(usage[1], rf"\Ausage: {program.name} ")
                self.assertLessEqual(max(map(len, usage[1].splitlines())), 80)
                self.assertRegex(run(program, *command, "--version")[1],
                                 rf"\A{program.name} \d+\.\d+\.\d+\n\Z")

    def test_manual_lists_the_options_of_the_help(self):
        for program in (qova_sdp, qova_answer):
            usage = run(program, "--help")[1].splitlines()
            listed = self.options(line.strip() for line in usage)
            self.assertGreater(len(listed), 10)
            page = (tools / f"{program.name}.1").read_text()
            text = re.sub(r'\\(?=-)|"', "", page.replace(' ", " ', ", "))
            entries = re.findall(r"^\.TP\n\.B\w* (.*)$", text, re.MULTILINE)
            self.assertEqual(self.options(re.sub(" +", " ", entry) for entry in entries), listed)

    def test_readme_names_options_of_the_help(self):
        usages = run(qova_sdp, "--help")[1] + run(qova_answer, "--help")[1]
        named = set(re.findall(r"(?<![\w-])--[a-z][a-z-]*", (tools / "README.md").read_text()))
        self.assertNotEqual(named, set())
        self.assertEqual(named - set(re.findall(r"--[a-z-]+", usages)), set())

    def test_manual_pages_are_well_formed(self):
        linters = {"mandoc": ["-T", "lint", "-W", "warning"],
                   "man": ["--warnings", "-T", "utf8", "-l"]}
        linter = next(filter(shutil.which, linters), None)
        if linter is None:
            self.skipTest("neither mandoc nor man is installed")
        for program in (qova_sdp, qova_answer):
            page = tools / f"{program.name}.1"
            status, output, errors = run(linter, *linters[linter], page)
            self.assertEqual((status, errors, output if linter == "mandoc" else ""), (0, "", ""))


if __name__ == "__main__":
    qova_sdp, qova_answer, tools = map(pathlib.Path, sys.argv[1:4])
    unittest.main(argv=sys.argv[:1])
