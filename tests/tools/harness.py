"""Functions and classes for all tests of the command `quorport`.

They run the command and its virtual printer, and act as printers whose answers a test chooses. Each wait is for an
event, such as a line of output, a byte or the end of a process, and fails at a deadline. Only the printer of
`in_pieces` sleeps for a fixed time, after the host has read a piece of the reply.
"""

import concurrent.futures
import json
import os
import re
import select
import socket
import subprocess
import tempfile
import threading
import time
import unittest
from collections.abc import Callable, Iterable
from pathlib import Path

QUORPORT = os.environ["QUORPORT"]
# Whether a sanitizer checks the command, which then takes more time and memory.
IS_SANITIZED = "-fsanitize" in os.environ.get("CXXFLAGS", "")
DEADLINE = 30  # seconds; far beyond the time of any test here

FLAGS = """coverOpen offline compulsionSwitch overTemp unrecoverableError cutterError mechError
    headThermistorError receiveBufferOverflow pageModeCmdError paperDetectionError blackMarkError jamError
    presenterPaperJamError headUpError voltageError receiptBlackMarkDetection receiptPaperEmpty
    receiptPaperNearEmptyInner receiptPaperNearEmptyOuter paperPresent presenterPaperPresent
    peelerPaperPresent stackerFull slipTOF slipCOF slipBOF validationPaperPresent slipPaperPresent
    etbAvailable""".split()
STATUS_KEYS = {*FLAGS, "etbCounter", "presenterState", "connectedInterface", "rawLength", "raw"}


class Result:
    """How a run of the command ended."""

    def __init__(self, code: int, out: bytes, err: bytes, seconds: float):
        self.code, self.out, self.err, self.seconds = code, out.decode(), err.decode(), seconds

    def json(self):
        """Returns the JSON object on standard output, which contains nothing else."""
        lines = self.out.splitlines()
        assert len(lines) == 1, self
        return json.loads(lines[0])

    def __repr__(self):
        return f"exit {self.code} after {self.seconds:.2f} s, out {self.out!r}, err {self.err!r}"


def start(*arguments, **options) -> subprocess.Popen:
    """Starts the command. An argument that is not bytes is converted to a string."""
    environment = {name: value for name, value in os.environ.items() if name != "QUORPORT_DEVICE"}
    options = {"stdin": subprocess.DEVNULL, "stdout": subprocess.PIPE, "stderr": subprocess.PIPE,
               "env": environment | options.pop("env", {})} | options
    return subprocess.Popen([QUORPORT, *(a if isinstance(a, bytes) else str(a) for a in arguments)], **options)


def finish(process: subprocess.Popen, began: float, data: bytes | None = None) -> Result:
    try:
        out, err = process.communicate(data, timeout=DEADLINE)
    except subprocess.TimeoutExpired:
        process.kill()
        out, err = process.communicate()
        raise AssertionError(f"the command hangs; out {out!r}, err {err!r}") from None
    return Result(process.returncode, out or b"", err or b"", time.monotonic() - began)


def run(*arguments, data: bytes | None = None, **options) -> Result:
    began = time.monotonic()
    if data is not None:
        options["stdin"] = subprocess.PIPE
    return finish(start(*arguments, **options), began, data)


def proof_names() -> list[str]:
    """The names of the proofs that a printer can give, as the help of `print` lists them."""
    help_text = " ".join(run("print", "--help").out.split())
    return re.search(r"auto, (\S+(?:, \S+)*) or none", help_text)[1].split(", ")


def eventually(condition: Callable[[], object], what: str):
    """Calls `condition` until its answer is true, and returns the answer."""
    end = time.monotonic() + DEADLINE
    while not (answer := condition()):
        if time.monotonic() > end:
            raise AssertionError(f"never: {what}")
        time.sleep(0.005)
    return answer


def place_of(bound: socket.socket) -> str:
    return f"tcp:127.0.0.1:{bound.getsockname()[1]}"


def receive(source: socket.socket, count: int) -> bytes:
    """Returns `count` bytes, or fewer if the other side ends the connection first."""
    taken = b""
    while len(taken) < count and (more := source.recv(count - len(taken))):
        taken += more
    return taken


class Case(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def file(self, name: str, data: bytes) -> str:
        path = self.folder / name
        path.write_bytes(data)
        return str(path)

    def simulator(self, listen: str = "tcp:0", *arguments: str, **options) -> "Simulator":
        simulator = Simulator(listen, *arguments, **options)
        self.addCleanup(simulator.kill)
        return simulator

    def peer(self, handle: Callable[[socket.socket], None], room: int = 0) -> "Peer":
        peer = Peer(handle, room)
        self.addCleanup(peer.close)
        return peer

    def open_socket(self) -> socket.socket:
        made = socket.socket()
        self.addCleanup(made.close)
        return made

    def refusing_place(self) -> str:
        """An address at which no program listens."""
        bound = self.open_socket()
        bound.bind(("127.0.0.1", 0))
        return place_of(bound)

    def silent_place(self) -> str:
        """An address whose queue is full: a further connection is neither answered nor refused."""
        listener = self.open_socket()
        listener.bind(("127.0.0.1", 0))
        listener.listen(0)
        for _ in range(4):
            waiting = self.open_socket()
            waiting.setblocking(False)
            waiting.connect_ex(listener.getsockname())
        return place_of(listener)

    def assertExit(self, code: int, result: Result):
        self.assertEqual(result.code, code, result)

    def assertAnswers(self, device: str, answer: dict, result: Result):
        """Asserts that the command printed `answer` as JSON, with the key `device` added."""
        self.assertEqual(result.json(), answer | {"device": device})

    def assertFailsInBothForms(self, code: int, *arguments: str, saying: str = "") -> Result:
        """Asserts that the command reports its error on standard error, and with --json in a JSON object."""
        plain = run(*arguments)
        self.assertExit(code, plain)
        self.assertEqual(plain.out, "", plain)
        self.assertTrue(plain.err.startswith("quorport: "), plain)
        self.assertIn(saying, plain.err)
        result = run(*arguments, "--json")
        self.assertExit(code, result)
        self.assertIs(result.json()["ok"], False)
        self.assertIn(saying, result.json()["error"])
        return result


class Running:
    """The command while it runs. The test reads its standard output line by line."""

    def __init__(self, *arguments: str, **options):
        self.process = start(*arguments, **options)
        self.unread = b""

    def line(self) -> str:
        """The next line of the command's standard output."""
        out = self.process.stdout
        while b"\n" not in self.unread:
            ready, _, _ = select.select([out], [], [], DEADLINE)
            more = os.read(out.fileno(), 65536) if ready else b""
            assert more, f"the command said no whole line, but {self.unread!r}"
            self.unread += more
        line, self.unread = self.unread.split(b"\n", 1)
        return line.decode()

    def stop(self, signal: int) -> int:
        self.process.send_signal(signal)
        return self.process.wait(DEADLINE)

    def kill(self):
        self.process.kill()
        self.process.wait()
        for stream in (self.process.stdin, self.process.stdout, self.process.stderr):
            if stream is not None:
                stream.close()


class Simulator(Running):
    """`quorport simulate`, which the test controls over the standard streams."""

    def __init__(self, listen: str, *arguments: str, **options):
        self.err = tempfile.TemporaryFile()
        options = {"stdin": subprocess.PIPE, "stderr": self.err if listen == "pty:" else None} | options
        super().__init__("simulate", "--listen", listen, *arguments, **options)
        word, self.place = self.line().split(" ", 1)
        assert word == "listening", word

    def kill(self):
        super().kill()
        self.err.close()

    def next_place(self) -> str:
        """The path of the terminal that replaces a dropped terminal."""
        said = re.compile(rb"^listening (.*)\n", re.MULTILINE)
        return eventually(lambda: said.findall(os.pread(self.err.fileno(), 65536, 0)), "it listens again")[-1].decode()

    def raw_control(self, line: bytes):
        self.process.stdin.write(line)
        self.process.stdin.flush()
        return json.loads(self.line())

    def control(self, request: dict):
        return self.raw_control(json.dumps(request).encode() + b"\n")

    def set(self, **settings):
        answer = self.control({"set": settings})
        assert answer == {"ok": True}, answer

    def state(self) -> dict:
        return self.control({"get": "state"})["state"]

    def connect(self) -> socket.socket:
        """A connection of the test itself, over TCP or a local socket."""
        scheme, place = self.place.split(":", 1)
        if scheme == "unix":
            connection = socket.socket(socket.AF_UNIX)
            connection.connect(place)
        else:
            host, port = place.rsplit(":", 1)
            connection = socket.create_connection((host, int(port)))
        connection.settimeout(DEADLINE)
        return connection

    def descriptors(self) -> int:
        return len(os.listdir(f"/proc/{self.process.pid}/fd"))


class Peer:
    """A printer on TCP that the test controls: `handle` serves each host that connects, one after the other. `room` is
    roughly the number of bytes that the system keeps until the printer reads them; 0 means the system's default."""

    def __init__(self, handle: Callable[[socket.socket], None], room: int = 0):
        self.handle = handle
        self.listener = socket.create_server(("127.0.0.1", 0))
        if room > 0:
            self.listener.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, room)
        self.place = place_of(self.listener)
        self.thread = threading.Thread(target=self.serve, daemon=True)
        self.thread.start()

    def serve(self):
        while True:
            try:
                connection, _ = self.listener.accept()
            except OSError:
                return
            with connection:
                connection.settimeout(DEADLINE)
                try:
                    self.handle(connection)
                except OSError:
                    pass

    def wait_until_idle(self):
        """Waits until every host that has connected was served to the end."""
        with socket.create_connection(self.listener.getsockname(), DEADLINE) as connection:
            connection.shutdown(socket.SHUT_WR)
            while connection.recv(4096):
                pass

    def close(self):
        self.listener.shutdown(socket.SHUT_RDWR)
        self.listener.close()
        self.thread.join(DEADLINE)


# Answers of printers, written independently of the simulator, so that the command is not tested against the simulator
# alone.
STATUS_REQUEST = b"\x1b\x06\x01"
RESET_COUNTER = b"\x1b\x1e\x45\x00"


def status_block(*flags: str, counter: int = 0, presenter: int = 0, interface: int = 3) -> bytes:
    bits = sum(1 << FLAGS.index(flag) for flag in flags)
    return bytes([0x89, 1]) + bits.to_bytes(4, "little") + bytes([counter, presenter, interface])


def answer_status(connection: socket.socket, block: bytes):
    """Answers each status request with the status block `block` until the host disconnects."""
    unread = b""
    while more := connection.recv(4096):
        unread += more
        requests = unread.count(STATUS_REQUEST)
        connection.sendall(block * requests)
        unread = unread[-2:] if not requests else b""


def count_etbs(connection: socket.socket) -> bytes:
    """A printer in line mode that counts blocks until the host disconnects. Returns all bytes that it received."""
    seen, unread = bytearray(), b""
    while more := connection.recv(4096):
        seen.extend(more)
        unread += more
        counter = seen[seen.rfind(RESET_COUNTER) + 4:].count(b"\x17") if RESET_COUNTER in seen else 0
        while STATUS_REQUEST in unread:
            unread = unread.split(STATUS_REQUEST, 1)[1]
            connection.sendall(status_block(counter=counter))
    return bytes(seen)


def answering(replies: dict[bytes, bytes | Callable[[socket.socket], None]]):
    """A printer that answers requests until the host disconnects. `replies` gives the reply to each request: bytes, or
    a function that sends the reply. On a busy machine several requests arrive together; the printer answers them in
    order."""

    def handle(connection):
        unread = b""
        while more := connection.recv(4096):
            unread += more
            while there := [(unread.find(request), request) for request in replies if request in unread]:
                begin, request = min(there)
                unread = unread[begin + len(request):]
                reply = replies[request]
                reply(connection) if callable(reply) else connection.sendall(reply)

    return handle


def wait_until_taken(connection: socket.socket):
    """Waits until the other side has read all bytes sent to it, or has ended. Both sides use TCP on this machine."""
    ends = tuple(f":{end[1]:04X}" for end in (connection.getsockname(), connection.getpeername()))

    def is_taken():
        rows = [line.split() for line in Path("/proc/net/tcp").read_text().splitlines()[1:]]
        queues = {(row[1][-5:], row[2][-5:]): [int(count, 16) for count in row[4].split(":")] for row in rows}
        on_its_way, _ = queues.get(ends, (0, 0))
        _, unread = queues.get(ends[::-1], (0, 0))
        return on_its_way + unread == 0

    eventually(is_taken, "the other side to read the bytes")


def in_pieces(*pieces: bytes, pause: float = 0.05):
    """A reply in pieces. After each piece, the printer waits until the host has read the piece, and then pauses."""

    def send(connection: socket.socket):
        for piece in pieces:
            connection.sendall(piece)
            wait_until_taken(connection)
            time.sleep(pause)

    return send


def last_words(words: bytes = b""):
    """A reply after which the printer ends the link."""

    def send(connection: socket.socket):
        connection.sendall(words)
        connection.shutdown(socket.SHUT_RDWR)

    return send


def at_once(calls: Iterable[tuple]):
    """Makes all calls, up to 16 in parallel, because most calls only wait. A call is a tuple of a function and its
    arguments. Raises the first failure."""
    with concurrent.futures.ThreadPoolExecutor(max_workers=16) as pool:
        for call in [pool.submit(*call) for call in calls]:
            call.result()


def main():
    unittest.main()
