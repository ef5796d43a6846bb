"""A stand-in for a browser with `simulate --web`: requests and server-sent events. Several tests share it."""

import http.client
import json
import socket
from urllib.parse import urlsplit

from harness import DEADLINE, Case


class Browser:
    """Sends requests to the address that the command prints."""

    def __init__(self, address: str):
        parts = urlsplit(address)
        self.host, self.port, self.prefix = parts.hostname, parts.port, parts.path
        self.authority = parts.netloc

    def connect(self, room: int = 0) -> socket.socket:
        connection = socket.socket()
        if room > 0:
            connection.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, room)
        connection.settimeout(DEADLINE)
        connection.connect((self.host, self.port))
        return connection

    def ask(self, path: str, method: str = "GET", body: bytes | None = None, **headers: str) -> http.client.HTTPResponse:
        """Returns the answer to a request. A path that begins with a slash is used as it is. Any other path is
        appended to the address that the command prints. In the names of headers, an underscore means a hyphen."""
        connection = http.client.HTTPConnection(self.host, self.port, timeout=DEADLINE)
        sent = {name.replace("_", "-"): value for name, value in headers.items()}
        connection.request(method, path if path.startswith("/") else self.prefix + path, body, sent)
        answer = connection.getresponse()
        answer.content = answer.read()
        connection.close()
        return answer

    def json(self, path: str) -> dict:
        answer = self.ask(path)
        assert answer.status == 200, (path, answer.status, answer.content)
        return json.loads(answer.content)

    def control(self, line: dict | bytes, printer: int | None = None, **headers: str) -> dict:
        path = "api/control" if printer is None else f"api/printers/{printer}/control"
        body = line if isinstance(line, bytes) else json.dumps(line).encode()
        answer = self.ask(path, "POST", body, Content_Type="application/json", **headers)
        assert answer.status == 200, (answer.status, answer.content)
        return json.loads(answer.content)

    def events(self, **headers: str) -> "Events":
        return Events(self, headers)


class Events:
    """A stream of events, read one by one."""

    def __init__(self, browser: Browser, headers: dict[str, str]):
        self.connection = browser.connect()
        lines = [f"GET {browser.prefix}api/events HTTP/1.1", f"Host: {browser.authority}"]
        lines += [f"{name.replace('_', '-')}: {value}" for name, value in headers.items()]
        self.connection.sendall("\r\n".join([*lines, "", ""]).encode())
        self.response = http.client.HTTPResponse(self.connection)
        self.response.begin()
        self.status = self.response.status
        self.last = ""

    def next(self, *names: str) -> dict:
        """The next event, or the next one with one of the given names; the key `event` holds its name."""
        while True:
            event, data = "", ""
            for line in iter(self.response.readline, b"\n"):
                assert line, "the stream has ended"
                field, _, value = line.decode().rstrip("\n").partition(": ")
                event, data = (value, data) if field == "event" else (event, value if field == "data" else data)
                self.last = value if field == "id" else self.last
            if event and (not names or event in names):
                return {"event": event} | json.loads(data)

    def all_of(self, *names: str) -> dict[str, dict]:
        """One event of each of these names, in any order."""
        seen = {}
        while len(seen) < len(names):
            event = self.next(*(name for name in names if name not in seen))
            seen[event["event"]] = event
        return seen

    def close(self):
        self.response.close()
        self.connection.close()


class BrowserCase(Case):
    def open(self, *arguments: str, **options):
        """A simulator of one printer, and a browser that has its address."""
        simulator = self.simulator("tcp:0", *arguments, "--web", "0", **options)
        word, address = "listening", ""
        while word == "listening":
            word, address = simulator.line().split(" ", 1)
        self.assertEqual(word, "web")
        return simulator, Browser(address)

    def events(self, browser: Browser, **headers: str) -> Events:
        events = browser.events(**headers)
        self.addCleanup(events.close)
        return events
