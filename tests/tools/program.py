"""Runs qova-sdp for the tests."""

import pathlib
import subprocess
import tempfile
import unittest

OFFER = (b"v=0\r\no=- 1 1 IN IP4 10.0.0.1\r\ns=-\r\nc=IN IP4 10.0.0.1\r\nt=0 0\r\n"
         b"m=audio 32000 RTP/AVP 8\r\n")
MOVED = OFFER.replace(b"10.0.0.1", b"203.0.113.5").replace(b"32000", b"40000")
KEY = b"SecretKeyMaterialThatNobodyMayEverSeeHere"
LOG = ("Capability(%s, Not Hold, silenceSuppSdp=no)\n\tFiltered=\n"
       "\t-> media(Audio)/Accepted @%s/snd=%d~%d/rcv=%d~%d/bsnd=1/brcv=1\n"
       "\t   Attributes :\t\t -> G711alaw / Accepted / framing=0 / vad=0 / echo=0 / mxFraming=0"
       " / MF=0\n\t   Crypto attributes (0) :\n")
LOG_OF_OFFER = LOG % ("offer", "10.0.0.1", 32000, 32001, 32000, 32001)
LOG_AFTER = LOG % ("offer", "203.0.113.5", 40000, 40001, 40000, 40001)
BACK = ("back: qova-sdp move --back --address 10.0.0.1 --audio-port 40000 --fax-port 7000 %s\n")
PORTS = ["--audio-port", "40000", "--fax-port", "7000"]
PLAN = ["--address", "203.0.113.5", *PORTS]


class Program:
    def __init__(self, path):
        self.path = path

    def run(self, *arguments, text=b"", stdout=subprocess.PIPE, directory=None, before=()):
        """Status, standard output and standard error. What stands before it runs the program."""
        done = subprocess.run([*before, self.path, *arguments], input=text, stdout=stdout,
                              stderr=subprocess.PIPE, cwd=directory, check=False)
        return done.returncode, done.stdout, done.stderr.decode()


class ProgramCase(unittest.TestCase):
    """A test of the program, with a file that holds the offer, and a directory."""
    maxDiff = None
    program = None

    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.directory = pathlib.Path(directory.name)
        self.file = tempfile.NamedTemporaryFile(suffix=".sdp")
        self.addCleanup(self.file.close)
        self.file.write(OFFER)
        self.file.flush()

    def assert_fails(self, status, message, *arguments, **options):
        """Nothing but one line on standard error, and the status."""
        got_status, output, errors = self.program.run(*arguments, **options)
        self.assertEqual(errors, "qova-sdp: " + message + "\n")
        self.assertEqual((got_status, output or b""), (status, b""))

    def assert_misused(self, message, *arguments):
        self.assert_fails(2, message + " (see qova-sdp --help)", *arguments)
