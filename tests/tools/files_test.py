#!/usr/bin/env python3
"""The files of qova-sdp: where it writes, several of them, and how it names them.

usage: files_test.py PROGRAM
"""

import os
import pathlib
import re
import shlex
import stat
import sys
import unittest

from program import BACK, LOG_AFTER, LOG_OF_OFFER, MOVED, OFFER, PLAN, PORTS, Program, ProgramCase


class FilesTest(ProgramCase):
    def test_output(self):
        out = self.directory / "out.sdp"
        status, output, errors = self.program.run("move", *PLAN, "--output", str(out), self.file.name)
        self.assertEqual((status, output, out.read_bytes()), (0, b"", MOVED))
        self.assertEqual(errors, "after: " + LOG_AFTER + BACK % str(out))
        _, _, errors = self.program.run("move", *PLAN, "--output=-x", self.file.name,
                                   directory=self.directory)
        self.assertTrue(errors.endswith(BACK % "./-x"), errors)
        self.assertEqual(self.program.run("log", "--output", str(out), "-", text=OFFER), (0, b"", ""))
        self.assertEqual(out.read_text(), LOG_OF_OFFER)

    def test_output_over_the_input_and_back(self):
        file = self.directory / "a b's.sdp"
        file.write_bytes(OFFER)
        file.chmod(0o640)
        link = self.directory / "link.sdp"
        link.symlink_to(file)
        status, _, errors = self.program.run("move", *PLAN, "--output", str(link), str(file))
        self.assertEqual((status, file.read_bytes()), (0, MOVED))
        self.assertTrue(link.is_symlink())
        self.assertEqual(stat.S_IMODE(file.stat().st_mode), 0o640)
        back = self.program.run("move", "--back", "--address", "10.0.0.1", *PORTS,
                           "--output", str(file), str(file))
        self.assertEqual((back[0], file.read_bytes()), (0, OFFER))
        _, _, errors = self.program.run("move", *PLAN, "--output", str(file), str(file))
        command = shlex.split(re.search("^back: (.*)$", errors, re.MULTILINE)[1])
        self.assertEqual(command[0], "qova-sdp")
        self.assertEqual(self.program.run(*command[1:])[:2], (0, OFFER))
        self.assertEqual(sorted(os.listdir(self.directory)), ["a b's.sdp", "link.sdp"])

    def test_output_is_written_whole_or_not_at_all(self):
        out = self.directory / "out.sdp"
        out.write_bytes(b"before")
        self.assertEqual(self.program.run("log", "--output", str(out), "-", text=b"x")[0], 1)
        limits = ["sh", "-c", 'ulimit -f 0; trap "" XFSZ; exec "$@"', "sh"]
        got = self.program.run("log", "--output", str(out), self.file.name, before=limits)
        self.assertEqual(got, (1, b"", f"qova-sdp: {out}: File too large\n"))
        self.assertEqual(out.read_bytes(), b"before")
        self.assertEqual(os.listdir(self.directory), ["out.sdp"])
        self.assert_fails(1, "/nowhere/out: No such file or directory", "log", "--output",
                          "/nowhere/out", self.file.name)

    def test_output_to_a_pipe(self):
        pipe = self.directory / "pipe"
        os.mkfifo(pipe)
        end = os.open(pipe, os.O_RDONLY | os.O_NONBLOCK)
        self.addCleanup(os.close, end)
        self.assertEqual(self.program.run("log", "--output", str(pipe), self.file.name), (0, b"", ""))
        self.assertEqual(os.read(end, 65536).decode(), LOG_OF_OFFER)
        self.assertTrue(pipe.is_fifo())

    def test_several_files(self):
        broken = self.directory / "broken.sdp"
        broken.write_bytes(b"v=0\nbroken\n")
        name, unended = self.file.name, self.directory / "unended.sdp"
        unended.write_bytes(OFFER[:-2])
        status, output, errors = self.program.run("log", name, str(broken), "-", text=OFFER)
        self.assertEqual(status, 1)
        self.assertEqual(output.decode(), f"==> {name} <==\n{LOG_OF_OFFER}"
                         f"==> standard input <==\n{LOG_OF_OFFER}")
        self.assertEqual(errors, f"{name}: status 0\nqova-sdp: {broken}:2: expected a line of the "
                         f"form x=value\n{broken}: status 1\nstandard input: status 0\n")
        status, output, errors = self.program.run("move", *PLAN, str(unended), name)
        self.assertEqual(status, 0)
        self.assertEqual(output, f"==> {unended} <==\n".encode() + MOVED[:-2] +
                         f"\n==> {name} <==\n".encode() + MOVED)
        self.assertEqual(errors, "".join(
            f"{file}: after: {LOG_AFTER}{file}: {BACK % '-'}{file}: status 0\n"
            for file in (unended, name)))

    def test_names_are_shown_without_control_characters(self):
        name = str(self.directory / "a\x1b[31m\n\x7f\u009bé.sdp")
        shown = str(self.directory / "a?[31m????é.sdp")
        self.assert_fails(1, shown + ": No such file or directory", "log", name)
        pathlib.Path(name).write_bytes(OFFER)
        status, output, errors = self.program.run("log", name, name)
        self.assertEqual((status, errors), (0, f"{shown}: status 0\n" * 2))
        self.assertEqual(output.decode(), f"==> {shown} <==\n{LOG_OF_OFFER}" * 2)
        _, _, errors = self.program.run("move", *PLAN, "--output", name, self.file.name)
        self.assertTrue(errors.endswith(f"'{shown}'\n"), errors)
        self.assert_misused("log has no option --?x", "log", "--\x1bx", "a")


if __name__ == "__main__":
    ProgramCase.program = Program(sys.argv[1])
    unittest.main(argv=sys.argv[:1])
