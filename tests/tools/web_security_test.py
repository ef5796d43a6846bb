"""`simulate --web` and untrusted clients: pages of another origin, foreign host names that lead to this machine, and
clients that use up its resources."""

import contextlib
import random
import socket
import time
import unittest
from pathlib import Path

from browser import BrowserCase
from harness import IS_SANITIZED, eventually, main, run

READERS = 64
CONNECTIONS = 128


def line_of(answer: bytes) -> bytes:
    return answer.split(b"\r\n", 1)[0]


class WebRequestsOfOthers(BrowserCase):
    def setUp(self):
        super().setUp()
        self.simulator_, self.browser = self.open()

    def refused(self, path: str = "api/printers", method: str = "GET", **headers: str):
        """Asserts that the request is refused, and that another page cannot read the answer."""
        body = b'{"set": {"coverOpen": true}}' if method == "POST" else None
        answer = self.browser.ask(path, method, body, **headers)
        self.assertEqual(answer.status, 403, (path, headers))
        self.assertNotIn(b"coverOpen", answer.content)
        self.assertFalse([name for name in answer.headers if name.lower().startswith("access-control")])
        self.assertFalse(self.simulator_.state()["coverOpen"])

    def test_requests_without_the_token_are_refused(self):
        token = self.browser.prefix.strip("/")
        other = ("0" if token[-1] != "0" else "1")
        for path in ("/", "/api/printers", "//", f"/{token}", f"/{token[:-1]}/", f"/{token}x/", f"/{token[:-1]}{other}/api/printers",
                     f"/x/{token}/", f"/{token.upper()}/" if token.upper() != token else "/X/", f"/?{token}"):
            self.refused(path)
        self.refused("/api/control", "POST", Content_Type="application/json")

    def test_pages_of_another_origin_can_neither_read_nor_change_anything(self):
        for origin in ("http://evil.example", "null", "https://" + self.browser.authority, "http://127.0.0.1",
                       f"http://localhost:{self.browser.port}", "http://127.0.0.1:1", ""):
            headers = {"Origin": origin or " x"}
            for path in ("", "api/printers", "api/events", "receipts/1.json", "page/main.js"):
                self.refused(path, **headers)
            self.refused("api/control", "POST", Content_Type="application/json", **headers)

    def test_requests_of_the_page_itself_are_answered(self):
        own = "http://" + self.browser.authority
        self.assertEqual(self.browser.ask("api/printers", Origin=own).status, 200)
        self.assertEqual(self.browser.control({"get": "state"}, Origin=own)["ok"], True)

    def test_preflight_requests_are_refused(self):
        answer = self.browser.ask("api/control", "OPTIONS", Origin="http://" + self.browser.authority,
                                  Access_Control_Request_Method="POST")
        self.assertEqual(answer.status, 405)
        self.assertFalse([name for name in answer.headers if name.lower().startswith("access-control")])

    def test_requests_under_another_host_name_are_refused(self):
        port = self.browser.port
        for host in (f"evil.example:{port}", "evil.example", f"127.0.0.1.evil.example:{port}", "127.0.0.1", f"127.0.0.1:{port}0",
                     f"127.0.0.1:{port}:{port}", f"[::1:{port}", "[", f":{port}", f"localhost.:{port}", f"127.0.0.1:{port}x", "x" * 5000):
            self.refused("", Host=host)
        for host in (f"127.0.0.1:{port}", f"localhost:{port}", f"[::1]:{port}"):
            self.assertEqual(self.browser.ask("", Host=host).status, 200, host)

    def test_form_submissions_are_refused_and_change_nothing(self):
        for kind in ("text/plain", "application/x-www-form-urlencoded", "multipart/form-data; boundary=x", "application/jsonx"):
            answer = self.browser.ask("api/control", "POST", b'{"set": {"coverOpen": true}}', Content_Type=kind)
            self.assertEqual(answer.status, 415, kind)
        self.assertFalse(self.simulator_.state()["coverOpen"])

    def test_answers_forbid_foreign_scripts_and_content_type_sniffing(self):
        for path in ("", "page/main.js", "api/printers", "receipts/9", "/elsewhere"):
            headers = self.browser.ask(path).headers
            self.assertIn("default-src 'none'", headers["Content-Security-Policy"])
            self.assertIn("frame-ancestors 'none'", headers["Content-Security-Policy"])
            self.assertNotIn("unsafe", headers["Content-Security-Policy"])
            self.assertEqual(headers["X-Content-Type-Options"], "nosniff")
            self.assertEqual(headers["Referrer-Policy"], "no-referrer")
            self.assertEqual(headers["Cross-Origin-Resource-Policy"], "same-origin")

    def test_other_machines_cannot_reach_the_web_server_by_default(self):
        inode_lines = [line.split() for line in Path("/proc/net/tcp").read_text().splitlines()[1:]]
        places = [fields[1] for fields in inode_lines if int(fields[1].split(":")[1], 16) == self.browser.port and fields[3] == "0A"]
        self.assertEqual(places, [f"0100007F:{self.browser.port:04X}"])


class WebRequestLimits(BrowserCase):
    def setUp(self):
        super().setUp()
        self.simulator_, self.browser = self.open()

    def send(self, data: bytes) -> bytes:
        """Sends bytes and returns what is answered until the server ends the connection."""
        with self.browser.connect() as connection, contextlib.suppress(ConnectionError):
            connection.sendall(data)
            with contextlib.suppress(OSError):  # the server may have ended the connection already
                connection.shutdown(socket.SHUT_WR)
            answer = b""
            while more := connection.recv(65536):
                answer += more
            return answer
        return b""

    def drop(self, data: bytes):
        """Sends bytes and disconnects."""
        with self.browser.connect() as connection, contextlib.suppress(ConnectionError):
            connection.sendall(data)

    def head(self, more: str = "", method: str = "POST") -> bytes:
        return (f"{method} {self.browser.prefix}api/control HTTP/1.1\r\nHost: {self.browser.authority}\r\n"
                f"Content-Type: application/json\r\n{more}").encode()

    def test_a_request_with_a_too_large_body_is_refused(self):
        answer = self.browser.ask("api/control", "POST", b" " * 65537, Content_Type="application/json")
        self.assertEqual(answer.status, 413)
        endless = self.head("Transfer-Encoding: chunked\r\n\r\n") + b"8000\r\n" + b" " * 32768 + b"\r\n" + \
            (b"8000\r\n" + b" " * 32768 + b"\r\n") * 8
        self.assertNotIn(b"200 OK", self.send(endless))
        longest = b'{"get": "state"}'.ljust(65536)
        self.assertTrue(self.browser.control(longest)["ok"])

    def test_a_request_with_a_too_large_header_is_refused(self):
        for more in (f"X: {'x' * 100000}\r\n\r\n", "X: y\r\n" * 20000 + "\r\n", "Cookie: " + "c" * 1000000):
            self.assertRegex(line_of(self.send(self.head(more))), rb"^(HTTP/1.1 4\d\d .*)?$")
        self.assertRegex(line_of(self.send(b"GET /" + b"x" * 200000 + b" HTTP/1.1\r\n\r\n")), rb"^(HTTP/1.1 4\d\d .*)?$")
        self.assertEqual(self.browser.ask("").status, 200)

    def test_too_many_readers_of_the_event_stream_are_refused_with_a_reason(self):
        readers = [self.events(self.browser) for _ in range(READERS)]
        for reader in readers:
            reader.next("snapshot")
        refused = self.events(self.browser)
        self.assertEqual(refused.status, 503)
        self.assertEqual(refused.response.headers["Retry-After"], "5")
        readers[0].close()
        self.assertEqual(self.events(self.browser).status, 200, "a reader that disconnected still holds its place")

    def test_arbitrary_bytes_do_not_end_the_web_server(self):
        chance = random.Random(22)
        samples = [self.head("Content-Length: 5\r\n\r\n") + b"hello", self.head("\r\n", "GET"),
                   self.head("Expect: 100-continue\r\nContent-Length: 70000\r\n\r\n"), self.head("Content-Length: -1\r\n\r\n"),
                   self.head("Content-Length: 99999999999999999999\r\n\r\n"), self.head("Transfer-Encoding: chunked\r\n\r\nZZ\r\n")]
        for _ in range(150):
            sample = bytearray(chance.choice(samples))
            for _ in range(chance.randrange(1, 6)):
                at = chance.randrange(len(sample))
                sample[at:at + chance.randrange(4)] = chance.randbytes(chance.randrange(4))
            self.drop(bytes(sample))
            self.drop(chance.randbytes(chance.randrange(1, 400)))
        self.assertIsNone(self.simulator_.process.poll())
        self.assertEqual(self.browser.ask("").status, 200)

    def test_unusual_paths_and_queries_cause_no_server_error(self):
        for path in ("receipts/1.json?from=-1", "receipts/99999999999999999999", "receipts/1.png%00", "api/receipts?before=x",
                     "api/printers/0/control", "api/printers/18446744073709551616/control", "page/%2e%2e/index.html",
                     "%2e%2e/", "api/receipts?before=%ff&&=&before"):
            for method in ("GET", "POST"):
                answer = self.browser.ask(path, method, b"{}" if method == "POST" else None, Content_Type="application/json")
                self.assertIn(answer.status, (200, 404), path)


class ManyWebClients(BrowserCase):
    """Clients that use up resources. They must not delay printing."""

    JOB = b"a line of text\n" * 200

    def print_in_time(self, simulator):
        result = run("-d", simulator.place, "print", "-", data=self.JOB)
        self.assertExit(0, result)
        self.assertLess(result.seconds, 5)

    def test_a_thousand_idle_web_clients_do_not_delay_other_clients(self):
        simulator, browser = self.open()
        clients = [browser.connect() for _ in range(500)]
        for client in clients[::2]:
            with contextlib.suppress(ConnectionError):
                client.sendall(b"GET / HTTP/1.1\r\nHost: ")  # and then nothing more
        clients += [browser.connect() for _ in range(500)]
        try:
            self.print_in_time(simulator)
            self.assertEqual(browser.ask("").status, 200)
            self.assertEqual(browser.control({"get": "state"})["ok"], True)
            eventually(lambda: simulator.descriptors() < CONNECTIONS + 40, "those that were there longest gave way")
        finally:
            for client in clients:
                client.close()

    def test_web_clients_that_read_a_byte_a_second_do_not_delay_other_clients(self):
        simulator, browser = self.open()
        quick = self.events(browser)
        slow = []
        for path in ("api/events", "receipts/1", "api/printers"):
            connection = browser.connect(room=2048)
            self.addCleanup(connection.close)
            connection.sendall(f"GET {browser.prefix}{path} HTTP/1.1\r\nHost: {browser.authority}\r\n\r\n".encode())
            slow.append(connection)
        end = time.monotonic() + 3
        while time.monotonic() < end:
            self.print_in_time(simulator)
            quick.next("receipt")
            for connection in slow:
                self.assertTrue(connection.recv(1))

    def test_a_web_client_that_reads_nothing_is_disconnected(self):
        simulator, browser = self.open()
        stuck = browser.connect(room=2048)
        self.addCleanup(stuck.close)
        stuck.sendall(f"GET {browser.prefix}api/events HTTP/1.1\r\nHost: {browser.authority}\r\n\r\n".encode())
        quick = self.events(browser)
        image = b"\x1d\x76\x30\x00\x48\x00\x00\x04" + random.Random(1).randbytes(72 * 1024)
        for _ in range(120):
            with simulator.connect() as host:
                host.sendall(image)
            quick.next("receipt")

        def has_ended():
            with contextlib.suppress(ConnectionError):
                while more := stuck.recv(1 << 20):
                    self.assertTrue(more)
            return True
        self.assertTrue(has_ended())


@unittest.skipIf(IS_SANITIZED, "a sanitizer takes memory")
class WebServerMemory(BrowserCase):
    def resident(self, simulator) -> int:
        """The memory of the process, in MiB."""
        for line in Path(f"/proc/{simulator.process.pid}/status").read_text().splitlines():
            if line.startswith("VmRSS:"):
                return int(line.split()[1]) // 1024
        raise AssertionError("no such line")

    def test_a_thousand_stored_receipts_take_no_more_memory_than_two_hundred(self):
        simulator, browser = self.open()
        events = self.events(browser)

        def print_until(last: int, done: int):
            for number in range(done + 1, last + 1):
                with simulator.connect() as host:
                    host.sendall(b"a receipt of some lines\n" * 5 + b"\x1d\x56\x00")
                while number % 50 == 0 and events.next("receipt")["id"] < number:
                    pass
        print_until(1000, 0)
        after = self.resident(simulator)
        print_until(1300, 1000)
        self.assertLess(self.resident(simulator), after + 2)
        self.assertEqual(browser.ask("receipts/1100.png").status, 404)
        self.assertEqual(browser.ask("receipts/1101.png").status, 200)
        self.assertEqual(len(browser.json("api/receipts")["receipts"]), 50)
        self.assertEqual(browser.json("api/receipts?before=1200")["receipts"][0]["id"], 1199)
        self.assertEqual(browser.json("api/receipts?before=1101")["receipts"], [])

    def test_twenty_metres_of_paper_take_bounded_memory(self):
        simulator, browser = self.open()
        events = self.events(browser)
        before = self.resident(simulator)
        with simulator.connect() as host:
            for _ in range(5334):  # lines of 30 dots; eight dots are a millimetre
                host.sendall(b"twenty metres of paper\n")
        length = 0
        while length < 160_000:
            length += events.next("receipt")["height"]
        self.assertLess(self.resident(simulator), before + 96)


if __name__ == "__main__":
    main()
