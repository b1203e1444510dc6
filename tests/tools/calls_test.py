#!/usr/bin/env python3
"""Calls that qova-answer gets from sipp, over TCP on loopback.

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
FAX = ["m=image 30000 udptl t38", "a=T38FaxVersion:0", "a=T38MaxBitRate:14400",
       "a=T38FaxUdpEC:t38UDPRedundancy"]
CALL = description(*AUDIO)
ANSWERED = ["^m=audio 32000 RTP/AVP 8 0 101$", "^a=rtpmap:101 telephone-event/8000$",
            "^c=IN IP4 127.0.0.1$"]
BOTH_WAYS = ["!^a=sendonly$", "!^a=recvonly$", "!^a=inactive$"]


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

    def call(self, scenario, server):
        errors = sipp.run(self.sipp_program, scenario, server)
        if errors:
            self.fail(errors + server.log)

    def check(self, scenario, *options, **where):
        """One call, after which the program stops. Returns its log."""
        server = self.serve(*options, **where)
        self.call(scenario, server)
        self.assertEqual(server.stop(), 0, server.log)
        return server.log


class Answers(CallCase):
    def test_audio_and_video(self):
        call = sipp.Scenario()
        call.exchange("INVITE", "200", *ANSWERED, *BOTH_WAYS, version(1),
                      "^m=video 0 RTP/AVP 31$", "^Content-Type: application/sdp$",
                      "^Contact: <sip:127.0.0.1:[0-9]+;transport=tcp>$",
                      body=description(*AUDIO, "m=video 30002 RTP/AVP 31", "a=ptime:soon"))
        call.exchange("BYE", "200")
        log = self.check(call)
        self.assertIn("call 1: INVITE:8: rejected: unsupported media type\n", log)
        self.assertIn("call 1: offer: Capability(offer, Not Hold, silenceSuppSdp=no)\n", log)
        self.assertIn("call 1: \t-> media(Audio)/Accepted @127.0.0.1/snd=32000~32001/", log)
        self.assertTrue(log.endswith("call 1: INVITE: accepted\ncall 1: ACK\ncall 1: BYE\ncall 1: "
                                     "ended\n"), log)

    def test_warning(self):
        call = sipp.Scenario()
        call.exchange("INVITE", "200", *ANSWERED, body=[*CALL, "a=ptime:soon"])
        call.exchange("BYE", "200")
        self.assertIn("call 1: INVITE:8: warning: a=ptime: ", self.check(call))

    def test_strict(self):
        call = sipp.Scenario()
        call.exchange("INVITE", "400", body=[*CALL, "a=ptime:soon"])
        self.assertIn("call 1: INVITE:8: refused with 400: a=ptime: ", self.check(call, "--strict"))

    def test_options_of_the_answer(self):
        call = sipp.Scenario()
        call.exchange("INVITE", "200", "^m=audio 40000 RTP/AVP 0 101$", "^m=image 0 udptl t38$",
                      "^c=IN IP4 203.0.113.5$", body=description(*AUDIO, *FAX))
        call.exchange("BYE", "200")
        log = self.check(call, "--codec", "PCMU", "--no-fax", "--local", "192.0.2.7", "--public",
                         "203.0.113.5", "--audio-port", "40000", "--fax-port", "7000")
        self.assertIn("call 1: \t-> media(Audio)/Accepted @192.0.2.7/snd=32000", log)
        self.assertIn("call 1: public: Capability(answer, ", log)

    def test_no_offer(self):
        call = sipp.Scenario()
        call.exchange("INVITE", "200", "^m=audio 32000 RTP/AVP 8 0 ", version(1),
                      answer=description("m=audio 30000 RTP/AVP 8"))
        call.exchange("INVITE", "200", *ANSWERED, version(2), body=CALL)
        call.exchange("INVITE", "200", *ANSWERED, version(2), answer=CALL)
        call.exchange("BYE", "200")
        log = self.check(call)
        self.assertIn("call 1: offer: Capability(offer, ", log)
        self.assertIn("call 1: ACK\ncall 1: answer: Capability(answer, ", log)

    def test_no_answer_in_the_ack(self):
        call = sipp.Scenario()
        call.exchange("INVITE", "200", "^m=audio 32000 ")
        call.expect("BYE")
        call.respond()
        self.assertIn("call 1: ACK\ncall 1: ACK: the call ends: no answer to the offer of our own\n"
                      "call 1: ended\n", self.check(call))

    def test_broken_answer_in_the_ack(self):
        call = sipp.Scenario()
        call.exchange("INVITE", "200", "^m=audio 32000 ", answer=description("m=audio x RTP/AVP 8"))
        call.expect("BYE")
        call.respond()
        self.assertIn("call 1: ACK:6: the call ends: m=: expected a port from 0 to 65535\n",
                      self.check(call))

    def test_options(self):
        call = sipp.Scenario()
        call.exchange("OPTIONS", "200", "^Accept: application/sdp$",
                      "^Allow: INVITE, ACK, BYE, CANCEL, OPTIONS, UPDATE$")
        self.check(call)

    def test_options_within_a_call(self):
        call = sipp.Scenario()
        call.exchange("INVITE", "200", body=CALL)
        call.exchange("OPTIONS", "200", "^Accept: application/sdp$")
        call.exchange("INVITE", "200", *ANSWERED, version(1), body=CALL)
        call.exchange("BYE", "200")
        self.check(call)

    def test_ipv6(self):
        call = sipp.Scenario()
        call.exchange("INVITE", "200", "^c=IN IP6 ::1$", "^m=audio 32000 RTP/AVP 8 0 101$",
                      "^Contact: <sip:\\[::1\\]:[0-9]+;transport=tcp>$",
                      body=description(*AUDIO, session=["c=IN IP6 ::1"]))
        call.exchange("BYE", "200")
        self.check(call, listen="sip:[::1]:0;transport=tcp")

    def test_secure_audio(self):
        def offer(sdp_version, *attributes):
            return description("m=audio 30000 RTP/SAVP 8",
                               f"a=crypto:3 AES_CM_128_HMAC_SHA1_80 inline:{KEY}", *attributes,
                               version=sdp_version)
        call = sipp.Scenario()
        own_key = "^a=crypto:3 AES_CM_128_HMAC_SHA1_80 inline:[A-Za-z0-9+/]{40}$"
        call.exchange("INVITE", "200", "^m=audio 32000 RTP/SAVP 8$", own_key, f"!{KEY}",
                      body=offer(1))
        call.exchange("INVITE", "200", "^a=recvonly$", own_key, body=offer(2, "a=sendonly"))
        call.exchange("INVITE", "400", body=offer(3, "a=broken\nline"))
        call.exchange("BYE", "200")
        log = self.check(call)
        self.assertIn("Crypto attributes (1) :", log)
        self.assertNotRegex(log, r"inline|[A-Za-z0-9+/]{30}")


class Changes(CallCase):
    def test_hold_and_resume(self):
        call = sipp.Scenario()
        call.exchange("INVITE", "200", *BOTH_WAYS, version(1), body=CALL)
        call.exchange("INVITE", "200", *ANSWERED, "^a=recvonly$", version(2),
                      body=audio("sendonly", 2))
        call.exchange("INVITE", "200", *ANSWERED, "^a=inactive$", version(3),
                      body=audio("inactive", 3))
        call.exchange("INVITE", "200", *ANSWERED, *BOTH_WAYS, version(4),
                      body=audio("sendrecv", 4))
        call.exchange("BYE", "200")
        log = self.check(call)
        self.assertEqual(log.count("since the last answer: changed\n"), 3)
        self.assertEqual(re.findall(r"answer: Capability\(answer, (Hold|Not Hold),", log),
                         ["Not Hold", "Not Hold", "Hold", "Not Hold"])

    def test_hold_by_an_unspecified_address(self):
        call = sipp.Scenario()
        call.exchange("INVITE", "200", *BOTH_WAYS, body=CALL)
        call.exchange("INVITE", "200", *ANSWERED, "^a=recvonly$", version(2),
                      body=description(*AUDIO, session=["c=IN IP4 0.0.0.0"], version=2))
        call.exchange("INVITE", "200", *ANSWERED, *BOTH_WAYS, version(3),
                      body=description(*AUDIO, version=3))
        call.exchange("BYE", "200")
        self.check(call)

    def test_fax_and_back(self):
        call = sipp.Scenario()
        call.exchange("INVITE", "200", *ANSWERED, body=CALL)
        call.exchange("INVITE", "200", "^m=audio 0 RTP/AVP 8$", "^m=image 6666 udptl t38$",
                      "^a=T38MaxBitRate:14400$", "^a=T38FaxUdpEC:t38UDPRedundancy$", version(2),
                      body=description("m=audio 0 RTP/AVP 8", *FAX, version=2))
        call.exchange("INVITE", "200", *ANSWERED, "^m=image 0 udptl t38$", version(3),
                      body=description(*AUDIO, "m=image 0 udptl t38", version=3))
        call.exchange("BYE", "200")
        log = self.check(call)
        self.assertIn("media(Fax)/Accepted @127.0.0.1/snd=6666~6667/", log)

    def test_unchanged_offers(self):
        """The same text once more, and another text of the same media."""
        call = sipp.Scenario()
        call.exchange("INVITE", "200", *ANSWERED, version(1), body=CALL)
        call.exchange("INVITE", "200", *ANSWERED, version(1), body=CALL)
        call.exchange("INVITE", "200", *ANSWERED, version(1), body=description(*AUDIO, version=2))
        call.exchange("BYE", "200")
        log = self.check(call)
        self.assertEqual(log.count("call 1: since the last offer: unchanged\n"
                                   "call 1: since the last answer: unchanged\n"), 2, log)

    def test_update(self):
        call = sipp.Scenario()
        call.exchange("INVITE", "200", *ANSWERED, "^Allow: .*UPDATE", body=CALL)
        call.exchange("UPDATE", "200", *ANSWERED, "^a=recvonly$", version(2),
                      body=audio("sendonly", 2))
        call.exchange("UPDATE", "200", "^Content-Length: 0$", "!application/sdp")
        call.exchange("UPDATE", "400", body=description("m=audio x RTP/AVP 8"))
        call.exchange("UPDATE", "200", *ANSWERED, *BOTH_WAYS, version(3),
                      body=audio("sendrecv", 3))
        call.exchange("BYE", "200")
        self.assertIn("call 1: UPDATE: accepted\n", self.check(call))

    def test_update_while_an_offer_is_open(self):
        call = sipp.Scenario()
        call.send("INVITE")
        call.expect("200", "^m=audio 32000 ")
        call.exchange("UPDATE", "491", body=CALL)
        call.send("ACK", *description("m=audio 30000 RTP/AVP 8"), sequence=1)
        call.exchange("BYE", "200")
        self.check(call)


class Refusals(CallCase):
    def check_refusals(self, error, exchange):
        """Of a first INVITE, and of another one, which leaves the call as it was."""
        first = sipp.Scenario()
        exchange(first)
        self.assertRegex(self.check(first), f"call 1: {error}\n(.*\n)*call 1: ended\n")
        later = sipp.Scenario()
        later.exchange("INVITE", "200", *ANSWERED, version(1), body=CALL)
        exchange(later)
        later.exchange("INVITE", "200", *ANSWERED, version(1), body=CALL)
        later.exchange("BYE", "200")
        self.assertRegex(self.check(later), f"call 1: {error}\n(.*\n)*call 1: since the last "
                         "answer: unchanged\n")

    def test_broken_offer(self):
        self.check_refusals(
            "INVITE:6: refused with 400: m=: expected a port from 0 to 65535",
            lambda call: call.exchange(
                "INVITE", "400", "^Warning: 399 qova-answer \"line 6: m=: expected a port from 0 "
                "to 65535\"$", body=description("m=audio x RTP/AVP 8")))

    def test_another_content_type(self):
        self.check_refusals(
            "INVITE: refused with 415: its body is no application/sdp",
            lambda call: call.exchange("INVITE", "415", "^Accept: application/sdp$", body=["hello"],
                                       kind="text/plain"))

    def test_nothing_in_common(self):
        self.check_refusals(
            "INVITE:6: refused with 488: no codec in common",
            lambda call: call.exchange(
                "INVITE", "488", "^Warning: 399 qova-answer \"line 6: no codec in common\"$",
                body=description("m=audio 30000 RTP/AVP 3")))

    def test_unknown_extension(self):
        for extension in ("somersault", "timer", "100rel"):
            call = sipp.Scenario()
            call.exchange("INVITE", "420", f"^Unsupported: {extension}$", body=CALL,
                          headers=[f"Require: {extension}"])
            self.check(call)

    def test_unknown_method(self):
        call = sipp.Scenario()
        call.exchange("MESSAGE", "405", "^Allow: INVITE, ACK, BYE, CANCEL, OPTIONS, UPDATE$",
                      body=["hello"], kind="text/plain")
        self.check(call)


class Ends(CallCase):
    def test_memory_is_given_back(self):
        calls = sipp.Scenario(), sipp.Scenario()
        calls[0].exchange("INVITE", "200", body=CALL)
        calls[0].exchange("BYE", "200")
        calls[1].exchange("OPTIONS", "200")
        for call in calls:
            server = self.serve()
            heaps = []
            for number in ("20", "200"):
                self.assertEqual(
                    sipp.run(self.sipp_program, call, server, "-m", number, "-r", "1000"), "")
                heaps.append(server.statistics()[2])
            self.assertLess(heaps[1] - heaps[0], 100000)

    def test_bye_before_the_ack(self):
        call = sipp.Scenario()
        call.send("INVITE", *CALL)
        call.expect("200", *ANSWERED)
        call.exchange("BYE", "200")
        self.assertTrue(self.check(call).endswith("call 1: ended\n"))

    # What sipp cannot do: send two requests in one piece, or leave one without a response.

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
        """Together with its INVITE, as every INVITE is answered at once."""
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
        self.assertTrue(server.log.endswith("qova-answer: 1 calls have not ended\n"), server.log)

    def test_signals_end_calls(self):
        for with_signal in (signal.SIGTERM, signal.SIGINT):
            call = sipp.Scenario()
            call.exchange("INVITE", "200", body=CALL)
            call.expect("BYE")
            call.respond()
            server = self.serve()
            stop = threading.Thread(
                target=lambda: server.wait_for("call 1: ACK") and
                server.process.send_signal(with_signal))
            stop.start()
            self.call(call, server)
            stop.join()
            self.assertEqual(server.process.wait(sipp.SECONDS), 0, server.log)
            self.assertTrue(server.log.endswith("call 1: ended\n"), server.log)


class Log(CallCase):
    def test_quiet(self):
        call = sipp.Scenario()
        call.exchange("INVITE", "200", body=[*CALL, "a=ptime:soon"])
        call.exchange("INVITE", "400", body=description("m=audio x RTP/AVP 8"))
        call.exchange("BYE", "200")
        self.assertEqual(self.check(call, "--quiet"), "call 1: INVITE:6: refused with 400: m=: "
                         "expected a port from 0 to 65535\n")

    def test_no_control_characters_of_a_description(self):
        call = sipp.Scenario()
        call.exchange("INVITE", "200",
                      body=[*CALL, "m=text 30004 RTP/AVP 98", "a=title:\x1b(0"])
        call.exchange("BYE", "200")
        log = self.check(call)
        self.assertIn("call 1: m=text 30004 RTP/AVP 98\ncall 1: a=title:?(0\n", log)
        self.assertNotRegex(log, r"[^\t\n -~]")

    def test_calls_are_told_apart(self):
        call = sipp.Scenario()
        call.exchange("INVITE", "200", body=CALL)
        call.exchange("BYE", "200")
        server = self.serve()
        self.call(call, server)
        self.call(call, server)
        self.assertEqual(server.statistics()[:2], [2, 0])
        self.assertEqual(server.stop(), 0)
        first, second = (re.findall(f"(?m)^call {number}: (.*)$", server.log) for number in (1, 2))
        self.assertEqual(first, second)
        self.assertEqual(len(first) + len(second) + 1, server.log.count("\n"))


class CommandLine(CallCase):
    def run_program(self, *arguments, stdout=subprocess.PIPE, environment=None):
        done = subprocess.run([self.program, *arguments], stdout=stdout, stderr=subprocess.PIPE,
                              text=True, timeout=sipp.SECONDS, check=False, env=environment)
        return done.returncode, done.stdout, done.stderr

    def assert_fails(self, status, message, *arguments, **options):
        got_status, output, errors = self.run_program(*arguments, **options)
        self.assertEqual(errors, "qova-answer: " + message + "\n")
        self.assertEqual((got_status, output or ""), (status, ""))

    def test_port_that_is_taken(self):
        uri = self.serve().uri
        # sofia-sip leaks what it has made until then.
        self.assert_fails(1, f"cannot listen on {uri}: Address already in use", "--listen", uri,
                          environment=os.environ | {"ASAN_OPTIONS": "detect_leaks=0"})

    def test_misuse(self):
        for message, *arguments in (
                ("qova-answer has no option --output", "--output", "x"),
                ("qova-answer takes options only, and no file", "file"),
                ("--listen needs a value", "--listen"),
                ("--quiet is given twice", "--quiet", "--quiet"),
                ("--fax is given twice", "--fax", "--fax"),
                ("--codec: there is no codec GSM", "--codec", "GSM"),
                ("--local: host is no unicast IPv4 or IPv6 address", "--local", "host"),
                ("--audio-port: 0 is no port from 1 to 65535", "--audio-port", "0"),
                ("a public plan needs --fax-port", "--public", "192.0.2.1", "--audio-port", "1"),
                ("--public: ::1 is of another family than 127.0.0.1", "--public", "::1",
                 "--audio-port", "1", "--fax-port", "1"),
                ("--listen: sip:0.0.0.0 has no unicast address: say --local", "--listen",
                 "sip:0.0.0.0"),
                *((f"--listen: {uri} is no URI such as sip:127.0.0.1:5080;transport=tcp",
                   "--listen", uri)
                  for uri in ("", "host", "http://127.0.0.1", "sip:127.0.0.1:65536"))):
            self.assert_fails(2, message + " (see qova-answer --help)", *arguments)

    def test_help_and_version(self):
        status, output, errors = self.run_program("--help")
        self.assertEqual((status, errors), (0, ""))
        self.assertTrue(output.startswith("usage: qova-answer [OPTION]...\n"))
        status, output, errors = self.run_program("--version")
        self.assertEqual((status, errors), (0, ""))
        self.assertRegex(output, r"\Aqova-answer \d+\.\d+\.\d+\n\Z")

    def test_full_output(self):
        with open("/dev/full", "w", encoding="ascii") as full:
            self.assert_fails(1, "standard output: No space left on device", "--listen",
                              "sip:127.0.0.1:0;transport=tcp", stdout=full)


if __name__ == "__main__":
    CallCase.program, CallCase.sipp_program = sys.argv[1:3]
    unittest.main(argv=sys.argv[:1] + sys.argv[3:])
