"""Runs qova-sdp for the tests."""

import subprocess


class Program:
    def __init__(self, path):
        self.path = path

    def run(self, *arguments, text=b"", stdout=subprocess.PIPE):
        """Status, standard output and standard error."""
        done = subprocess.run([self.path, *arguments], input=text, stdout=stdout,
                              stderr=subprocess.PIPE, check=False)
        return done.returncode, done.stdout, done.stderr.decode()
