#!/usr/bin/env python3
"""Calls from sipp to qova-answer, over TCP on loopback.

usage: calls_test.py QOVA_ANSWER SIPP [TESTS]
"""

import os
import re
import signal
import socket
import subprocess
import sys
import threading
import unittest

import sipp

KEY = "A" * 40


def description(*media, session=("c=IN IP4 127.0.0.1",), version=1):
    return ["v=0", f"o=- 5 {version} IN IP4 127.0.0.1", "s=-", *session, "t=0 0", *media]


AUDIO = ["m=audio 30000 RTP/AVP 8 0 101", "a=rtpmap:101 telephone-event/8000"]
CALL = description(*AUDIO)
BROKEN = description("m=audio x RTP/AVP 8")
ANSWERED = ["^m=audio 32000 RTP/AVP 8 0 101$", "^a=rtpmap:101 telephone-event/8000$",
            "^c=IN IP4 127.0.0.1$"]
BOTH_WAYS = ["!^a=sendonly$", "!^a=recvonly$", "!^a=inactive$"]
METHODS = "^Allow: INVITE, ACK, BYE, CANCEL, OPTIONS, UPDATE$"


def version(number):
    return f"^o=- [0-9]+ {number} IN IP4 127.0.0.1$"


def audio(direction, sdp_version):
    return description(*AUDIO, f"a={direction}", version=sdp_version)


class CallCase(unittest.TestCase):
    maxDiff = None
    program = sipp_program = None

    def serve(self, *options, **where):
        server = sipp.Server(self.program, *options, **where)
        self.addCleanup(server.stop)
        return server

    def call(self, scenario, server, *options):
        errors = sipp.run(self.sipp_program, scenario, server, *options)
        if errors:
            self.fail(errors + server.log)

    def check(self, scenario, *options, hang_up=True, **where):
        """Makes one call, stops the program, and returns its log."""
        if hang_up:
            scenario.exchange("BYE", "200")
        server = self.serve(*options, **where)
        self.call(scenario, server)
        self.assertEqual(server.stop(), 0, server.log)
        return server.log


class Answers(CallCase):
    def test_accepted_and_rejected_lines(self):
        call = sipp.Scenario()
        call.exchange("INVITE", "200", *ANSWERED, *BOTH_WAYS, version(1), "^m=video 0 RTP/AVP 31$",
                      "^Content-Type: application/sdp$",
                      "^Contact: <sip:127.0.0.1:[0-9]+;transport=tcp>$",
                      body=description(*AUDIO, "a=ptime:soon", "m=video 30002 RTP/AVP 31"))
        self.assertRegex(self.check(call), "(?s)\\A"
                         "call 1: INVITE:8: warning: a=ptime: [^\n]+\n"
                         "call 1: INVITE:9: rejected: [^\n]+\n"
                         "call 1: offer: Capability\\(offer, Not Hold, silenceSuppSdp=no\\)\n.*"
                         "call 1: \t-> media\\(Audio\\)/Accepted @127.0.0.1/snd=32000~32001/.*"
                         "call 1: INVITE: accepted\ncall 1: ACK\ncall 1: BYE\ncall 1: ended\n\\Z")

    def test_options_of_the_answer(self):
        call = sipp.Scenario()
        call.exchange("INVITE", "200", "^m=audio 40000 RTP/AVP 0 101$", "^m=image 0 udptl t38$",
                      "^c=IN IP4 203.0.113.5$", body=[*CALL, "m=image 30000 udptl t38"])
        call.exchange("INVITE", "400", body=[*CALL, "a=ptime:soon"])
        log = self.check(call, "--codec", "PCMU", "--no-fax", "--local", "192.0.2.7", "--public",
                         "203.0.113.5", "--audio-port", "40000", "--fax-port", "7000", "--strict")
        self.assertIn("call 1: \t-> media(Audio)/Accepted @192.0.2.7/snd=32000", log)
        self.assertIn("call 1: public: Capability(answer, ", log)
        self.assertIn("call 1: INVITE:8: refused with 400: a=ptime: ", log)

    def test_invite_without_an_offer(self):
        call = sipp.Scenario()
        call.exchange("INVITE", "200", "^m=audio 32000 RTP/AVP 8 0 ", version(1),
                      answer=description("m=audio 30000 RTP/AVP 8"))
        call.exchange("INVITE", "200", *ANSWERED, version(2), body=CALL)
        call.exchange("INVITE", "200", *ANSWERED, version(2), answer=CALL)
        log = self.check(call)
        self.assertIn("call 1: offer: Capability(offer, ", log)
        self.assertIn("call 1: ACK\ncall 1: answer: Capability(answer, ", log)

    def test_ack_without_a_valid_answer(self):
        for answer, error in (((), "ACK: hanging up: no answer to our offer"),
                              (BROKEN, "ACK:6: hanging up: [^\n]+")):
            call = sipp.Scenario()
            call.exchange("INVITE", "200", "^m=audio 32000 ", answer=answer)
            call.respond("BYE")
            self.assertRegex(self.check(call, hang_up=False),
                             f"call 1: ACK\ncall 1: {error}\ncall 1: ended\n\\Z")

    def test_options_request(self):
        call = sipp.Scenario()
        call.exchange("OPTIONS", "200", "^Accept: application/sdp$", METHODS)
        self.check(call, hang_up=False)

    def test_ipv6(self):
        call = sipp.Scenario()
        call.exchange("INVITE", "200", "^c=IN IP6 ::1$", "^m=audio 32000 RTP/AVP 8 0 101$",
                      "^Contact: <sip:\\[::1\\]:[0-9]+;transport=tcp>$",
                      body=description(*AUDIO, session=["c=IN IP6 ::1"]))
        self.check(call, listen="sip:[::1]:0;transport=tcp")

    def test_log_shows_no_keys_and_no_control_characters(self):
        offer = description("m=audio 30000 RTP/SAVP 8",
                            f"a=crypto:3 AES_CM_128_HMAC_SHA1_80 inline:{KEY}",
                            "m=text 30004 RTP/AVP 98", "a=title:\x1b(0")
        call = sipp.Scenario()
        call.exchange("INVITE", "200", "^m=audio 32000 RTP/SAVP 8$", f"!{KEY}",
                      "^a=crypto:3 AES_CM_128_HMAC_SHA1_80 inline:[A-Za-z0-9+/]{40}$", body=offer)
        call.exchange("INVITE", "400", body=[*offer, "a=broken\nline"])
        log = self.check(call)
        self.assertIn("Crypto attributes (1) :", log)
        self.assertNotRegex(log, r"inline|[A-Za-z0-9+/]{30}")
        self.assertIn("call 1: m=text 30004 RTP/AVP 98\ncall 1: a=title:?(0\n", log)
        self.assertNotRegex(log, r"[^\t\n -~]")


class Changes(CallCase):
    def test_hold_and_resume(self):
        call = sipp.Scenario()
        call.exchange("INVITE", "200", *BOTH_WAYS, version(1), body=CALL)
        call.exchange("INVITE", "200", "^a=recvonly$", version(2), body=audio("sendonly", 2))
        call.exchange("UPDATE", "200", "^a=inactive$", version(3), body=audio("inactive", 3))
        call.exchange("UPDATE", "200", "^Content-Length: 0$", "!application/sdp")
        call.exchange("INVITE", "200", *BOTH_WAYS, version(4), body=audio("sendrecv", 4))
        call.exchange("INVITE", "200", *ANSWERED, version(4), body=audio("sendrecv", 4))
        log = self.check(call)
        self.assertEqual(re.findall(r"since the last answer: (\w+)\n", log),
                         ["changed"] * 3 + ["unchanged"])
        self.assertIn("call 1: UPDATE: accepted\n", log)

    def test_update_while_an_offer_is_open(self):
        call = sipp.Scenario()
        call.send("INVITE")
        call.expect("200", "^m=audio 32000 ")
        call.exchange("UPDATE", "491", body=CALL)
        call.send("ACK", *description("m=audio 30000 RTP/AVP 8"), sequence=1)
        self.assertIn("call 1: UPDATE: refused with 491: our own offer has not been answered yet\n",
                      self.check(call))


class Refusals(CallCase):
    def check_refusals(self, error, status, *checks, **request):
        """Checks that a first INVITE and a re-INVITE are refused; the latter changes nothing."""
        first = sipp.Scenario()
        first.exchange("INVITE", status, *checks, **request)
        error = f"call 1: INVITE{error}\n"
        self.assertRegex(self.check(first, hang_up=False), f"(?s){error}.*call 1: ended\n\\Z")
        later = sipp.Scenario()
        later.exchange("INVITE", "200", *ANSWERED, version(1), body=CALL)
        later.exchange("INVITE", status, *checks, **request)
        later.exchange("INVITE", "200", *ANSWERED, version(1), body=CALL)
        self.assertRegex(self.check(later),
                         f"(?s){error}.*call 1: since the last answer: unchanged\n")

    def test_broken_offer(self):
        self.check_refusals(":6: refused with 400: [^\n]+", "400",
                            "^Warning: 399 qova-answer \"line 6: [^\"]+\"$", body=BROKEN)

    def test_another_content_type(self):
        self.check_refusals(": refused with 415: unsupported content type", "415",
                            "^Accept: application/sdp$",
                            "^Warning: 399 qova-answer \"unsupported content type\"$",
                            body=["hello"], kind="text/plain")

    def test_nothing_in_common(self):
        self.check_refusals(":6: refused with 488: no codec in common", "488",
                            "^Warning: 399 qova-answer \"line 6: no codec in common\"$",
                            body=description("m=audio 30000 RTP/AVP 3", "m=video 5 RTP/AVP 31"))

    def test_unknown_extension(self):
        call = sipp.Scenario()
        for extension in ("somersault", "timer", "100rel"):
            call.exchange("INVITE", "420", f"^Unsupported: {extension}$", body=CALL,
                          headers=[f"Require: {extension}"])
        self.check(call, hang_up=False)


class Ends(CallCase):
    def test_memory_is_freed(self):
        for methods in (["INVITE", "BYE"], ["OPTIONS"]):
            call = sipp.Scenario()
            for method in methods:
                call.exchange(method, "200", body=CALL if method == "INVITE" else ())
            server = self.serve()
            heaps = []
            for number in ("20", "200"):
                self.call(call, server, "-m", number, "-r", "1000")
                heaps.append(server.statistics()[2])
            self.assertLess(heaps[1] - heaps[0], 100000)

    # sipp cannot send two requests at once, or leave one without a response.

    def connect(self, server):
        host, port = server.address.split(":")
        connection = socket.create_connection((host, int(port)), sipp.SECONDS)
        self.addCleanup(connection.close)
        return connection

    @staticmethod
    def request(connection, server, method, *body, parameters=""):
        text = "".join(line + "\r\n" for line in body)
        host, port = connection.getsockname()
        return "\r\n".join([
            f"{method} {server.uri} SIP/2.0", "Via: SIP/2.0/TCP 127.0.0.1;branch=z9hG4bK-1",
            "Max-Forwards: 70", "From: <sip:caller@127.0.0.1>;tag=1",
            f"To: <{server.uri}>{parameters}", "Call-ID: 1", f"CSeq: 1 {method}",
            f"Contact: <sip:caller@{host}:{port};transport=tcp>", "Content-Type: application/sdp",
            f"Content-Length: {len(text)}", "", text]).encode()

    @staticmethod
    def receive(connection, until):
        got = b""
        while not re.search(until, got, re.DOTALL):
            piece = connection.recv(10000)
            assert piece, got
            got += piece
        return got

    def test_cancel(self):
        server = self.serve()
        connection = self.connect(server)
        connection.sendall(self.request(connection, server, "INVITE", *CALL) +
                           self.request(connection, server, "CANCEL"))
        got = self.receive(connection, rb"\r\n\r\n.*\r\n\r\n")
        self.assertEqual(re.findall(rb"SIP/2.0 (\d+)|CSeq: 1 (\w+)", got),
                         [(b"200", b""), (b"", b"CANCEL"), (b"487", b""), (b"", b"INVITE")])
        server.wait_for("^call 1: ended$")
        self.assertEqual(server.stop(), 0, server.log)
        self.assertTrue(server.log.endswith("call 1: CANCEL\ncall 1: ended\n"), server.log)

    def test_second_signal_does_not_wait_for_calls(self):
        server = self.serve()
        connection = self.connect(server)
        connection.sendall(self.request(connection, server, "INVITE", *CALL))
        tag = re.search(rb"To:.*(;tag=\w+)", self.receive(connection, rb"\r\n\r\n.*m=audio"))[1]
        connection.sendall(self.request(connection, server, "ACK", parameters=tag.decode()))
        server.wait_for("^call 1: ACK$")
        server.process.send_signal(signal.SIGTERM)
        self.receive(connection, rb"BYE sip:caller@")
        self.assertEqual(server.stop(), 1)
        self.assertTrue(server.log.endswith("qova-answer: some calls did not end\n"), server.log)

    def test_signals_end_calls(self):
        for with_signal in (signal.SIGTERM, signal.SIGINT):
            call = sipp.Scenario()
            call.exchange("INVITE", "200", body=CALL)
            call.respond("BYE")
            server = self.serve()
            stop = threading.Thread(
                target=lambda: server.wait_for("call 1: ACK") and
                server.process.send_signal(with_signal))
            stop.start()
            self.call(call, server)
            stop.join()
            self.assertEqual(server.process.wait(sipp.SECONDS), 0, server.log)
            self.assertTrue(server.log.endswith("call 1: ended\n"), server.log)


class Output(CallCase):
    def test_quiet(self):
        call = sipp.Scenario()
        call.exchange("INVITE", "200", body=[*CALL, "a=ptime:soon"])
        call.exchange("INVITE", "400", body=BROKEN)
        self.assertRegex(self.check(call, "--quiet"),
                         "\\Acall 1: INVITE:6: refused with 400: [^\n]+\n\\Z")

    def test_each_line_has_the_number_of_its_call(self):
        call = sipp.Scenario()
        call.exchange("INVITE", "200", body=CALL)
        call.exchange("BYE", "200")
        server = self.serve()
        for _ in range(2):
            self.call(call, server)
        self.assertEqual(server.statistics()[:2], [2, 0])
        first, second = (re.findall(f"(?m)^call {number}: (.*)$", server.log) for number in (1, 2))
        self.assertEqual(first, second)
        self.assertEqual(len(first) + len(second) + 1, server.log.count("\n"))

    def test_cannot_start(self):
        uri = self.serve().uri
        with open("/dev/full", "wb") as full:
            for message, where, stdout in (
                    (f"cannot listen on {uri}: Address already in use", uri, subprocess.PIPE),
                    ("standard output: No space left on device", "sip:127.0.0.1:0;transport=tcp",
                     full)):
                # sofia-sip leaks if it cannot listen.
                done = subprocess.run([self.program, "--listen", where], stdout=stdout,
                                      stderr=subprocess.PIPE, timeout=sipp.SECONDS, check=False,
                                      env=os.environ | {"ASAN_OPTIONS": "detect_leaks=0"})
                self.assertEqual((done.returncode, done.stdout or b"", done.stderr.decode()),
                                 (1, b"", f"qova-answer: {message}\n"))


if __name__ == "__main__":
    CallCase.program, CallCase.sipp_program = sys.argv[1:3]
    unittest.main(argv=sys.argv[:1] + sys.argv[3:])
