"""Runs qova-sdp for the tests."""

import subprocess


class Program:
    def __init__(self, path):
        self.path = path

    def run(self, *arguments, text=b"", stdout=subprocess.PIPE, directory=None, before=()):
        """Status, standard output and standard error. What stands before it runs the program."""
        done = subprocess.run([*before, self.path, *arguments], input=text, stdout=stdout,
                              stderr=subprocess.PIPE, cwd=directory, check=False)
        return done.returncode, done.stdout, done.stderr.decode()
