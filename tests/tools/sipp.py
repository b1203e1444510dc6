"""Calls qova-answer with sipp, for the tests and for scripts/load."""

import itertools
import pathlib
import re
import signal
import socket
import subprocess
import tempfile
import threading
from xml.sax.saxutils import quoteattr

SECONDS = 30  # the time limit of everything


class Server:
    """A running qova-answer, with the lines of its log as they come."""

    def __init__(self, program, *options, listen="sip:127.0.0.1:0;transport=tcp", before=()):
        self.process = subprocess.Popen([*before, program, "--listen", listen, *options],
                                        stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                                        encoding="latin-1")
        self.log = ""
        self.is_closed = False
        self.news = threading.Condition()
        self.reader = threading.Thread(target=self._read_log)
        self.reader.start()
        self.uri = self.process.stdout.readline().removeprefix("listening on ").strip()
        self.address = self.uri.removeprefix("sip:").partition(";")[0]

    def _read_log(self):
        for line in itertools.chain(self.process.stderr, [None]):
            with self.news:
                self.log += line or ""
                self.is_closed = line is None
                self.news.notify()

    def wait_for(self, pattern, start=0):
        """Waits for a match in the log after a position, and returns it."""
        def find():
            return re.compile(pattern, re.MULTILINE).search(self.log, start)
        with self.news:
            self.news.wait_for(lambda: self.is_closed or find(), SECONDS)
            if not find():
                raise AssertionError(f"qova-answer does not log {pattern}:\n{self.log}")
            return find()

    def statistics(self):
        """Returns the numbers that it logs: calls, open calls, the heap in use, and its seconds."""
        start = len(self.log)
        self.process.send_signal(signal.SIGUSR1)
        line = self.wait_for(".*heap in use.*", start)[0]
        return [float(number) for number in re.findall(r"\d+(?:\.\d+)?", line)]

    def stop(self):
        """Returns the exit status; None if it had to be killed."""
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGTERM)
        try:
            self.process.wait(SECONDS)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()
            return None
        finally:
            self.reader.join()
            self.process.stdout.close()
            self.process.stderr.close()
        return self.process.returncode


class Scenario:
    """What the caller sends and expects."""

    def __init__(self):
        self.steps = []
        self.variables = 0
        self.sequence = 0
        self.target = "sip:qova@[remote_ip]:[remote_port];transport=tcp"

    def text(self, message):
        self.steps.append(f"<send><![CDATA[\n{message}\n\n]]></send>")

    def send(self, method, *body, kind="application/sdp", headers=(), sequence=None,
             branch="[branch]"):
        if sequence is None:
            self.sequence += method != "ACK"
            sequence = self.sequence
        self.text("\n".join([
            f"{method} {self.target} SIP/2.0",
            f"Via: SIP/2.0/[transport] [local_ip]:[local_port];branch={branch}",
            "Max-Forwards: 70",
            "From: <sip:caller@[local_ip]:[local_port]>;tag=[call_number]",
            "To: <sip:qova@[remote_ip]:[remote_port]>[peer_tag_param]",
            "Call-ID: [call_id]",
            f"CSeq: {sequence} {method}",
            "Contact: <sip:caller@[local_ip]:[local_port];transport=tcp>",
            *headers,
            *([f"Content-Type: {kind}"] if body else []),
            "Content-Length: [len]" if body else "Content-Length: 0",
            "", *body]))

    def expect(self, what, *checks):
        """Expects a status or a method, and regular expressions that match its text, or do not if
        they begin with "!"; ^ and $ match at each line."""
        actions = []
        for check in checks:
            self.variables += 1
            inverse = check.startswith("!")
            pattern = re.sub(r"^\^|\$$", "[[:cntrl:]]", check.removeprefix("!"))
            actions.append(f"<ereg regexp={quoteattr(pattern)} search_in=\"msg\" "
                           f"check_it{'_inverse' if inverse else ''}=\"true\" "
                           f"assign_to=\"v{self.variables}\"/>")
        kind = "response" if what.isdigit() else "request"
        has_contact = what == "200" and self.target != "[next_url]"
        if has_contact:
            self.target = "[next_url]"
        self.steps.append(
            f"<recv {kind}=\"{what}\" rrs=\"{str(has_contact).lower()}\" "
            f"timeout=\"{SECONDS * 1000}\"><action>{''.join(actions)}</action></recv>")

    def exchange(self, method, status, *checks, body=(), answer=(), **options):
        """Sends a request, expects its final response, and sends the ACK of an INVITE."""
        self.send(method, *body, **options)
        self.expect(status, f"^CSeq: {self.sequence} {method}$", *checks)
        if method == "INVITE":
            # The ACK of a refusal belongs to the transaction of its request, two steps before.
            self.send("ACK", *answer, branch="[branch]" if status == "200" else "[branch-2]")

    def respond(self, method):
        """Expects a request and responds to it."""
        self.expect(method)
        self.text("SIP/2.0 200 OK\n[last_Via:]\n[last_From:]\n[last_To:]\n[last_Call-ID:]\n"
                  "[last_CSeq:]\nContent-Length: 0")

    def xml(self):
        names = ",".join(f"v{i + 1}" for i in range(self.variables))
        reference = f"<Reference variables=\"{names}\"/>" if names else ""
        return ("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<scenario name=\"call\">\n" +
                "\n".join([*self.steps, reference]) + "\n</scenario>\n")


def run(sipp, scenario, server, *options, seconds=SECONDS):
    """Makes one call, or as many as the options say. Returns the errors, or an empty string."""
    local = server.address.rpartition(":")[0].strip("[]")
    with socket.socket(socket.AF_INET6 if ":" in local else socket.AF_INET) as free:
        free.bind((local, 0))
        port = free.getsockname()[1]
    with tempfile.TemporaryDirectory() as directory:
        directory = pathlib.Path(directory)
        (directory / "call.xml").write_text(scenario.xml())
        try:
            done = subprocess.run(
                [sipp, server.address, "-sf", "call.xml", "-t", "t1", "-i", local, "-p", str(port),
                 "-m", "1", "-nostdin", "-timeout", f"{seconds}s", "-timeout_error", "-trace_err",
                 "-error_file", "errors", *options],
                cwd=directory, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                encoding="latin-1", timeout=seconds + 5, check=False)
        except subprocess.TimeoutExpired:
            return "sipp does not end"
        if done.returncode == 0:
            return ""
        errors = directory / "errors"
        reasons = errors.read_text("latin-1") if errors.exists() else done.stdout[-2000:]
        return f"sipp: status {done.returncode}\n{reasons[:2000]}\n"
