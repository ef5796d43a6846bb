"""Helpers for the tests of the printer application: its process with a virtual printer, and a client that speaks IPP."""

import http.client
import json
import os
import random
import re
import socket
import struct
import subprocess
from pathlib import Path

import ipp
from harness import DEADLINE, Case, eventually

APPLICATION = os.environ["PRINTER_APP"]
ROOT = Path(__file__).parent.parent.parent
RAW = "application/vnd.escpos"

STATES = {3: "pending", 4: "held", 5: "processing", 6: "stopped", 7: "canceled", 8: "aborted", 9: "completed"}
CREATE_PRINTER = 0x4C
COLLECTION, END_OF_COLLECTION, MEMBER = 0x34, 0x37, 0x4A


def free_port() -> int:
    """A free port below the range that the system assigns by itself.

    A port counts as free if a connection to it fails. An attempt to listen to the port would prove nothing, because two
    servers of the framework can listen to the same port.
    """
    while True:
        port = random.randint(10000, 30000)
        with socket.socket() as client:
            if client.connect_ex(("127.0.0.1", port)) != 0:
                return port


def keyword(name: str, value: str) -> bytes:
    return ipp.attribute(ipp.KEYWORD, name, value)


def collection(name: str, members: dict) -> bytes:
    """A collection attribute, encoded. The value of each member is a number, or a dict for an inner collection."""

    def field(tag: int, name: str, data: bytes = b"") -> bytes:
        return struct.pack(">BH", tag, len(name)) + name.encode() + struct.pack(">H", len(data)) + data

    encoded = field(COLLECTION, name)
    for member, value in members.items():
        encoded += field(MEMBER, "", member.encode())
        encoded += collection("", value) if isinstance(value, dict) else field(ipp.INTEGER, "", struct.pack(">i", value))
    return encoded + field(END_OF_COLLECTION, "")


class Client:
    """Speaks IPP with one printer of the application."""

    def __init__(self, port: int, name: str = "till", host: str = "localhost"):
        self.host, self.port, self.resource = host, port, f"/ipp/print/{name}"
        self.uri = f"ipp://{host}:{port}{self.resource}"

    def request(self, operation: int, *attributes: bytes, job: tuple = ()) -> bytes:
        return ipp.request(operation, ipp.attribute(ipp.URI, "printer-uri", self.uri), *attributes,
                           ipp.attribute(ipp.NAME, "requesting-user-name", "till"), job=job)

    def ask(self, operation: int, *attributes: bytes, job: tuple = (), data: bytes = b"") -> list[dict]:
        return self.send(self.resource, self.request(operation, *attributes, job=job) + data)

    def send(self, resource: str, message: bytes) -> list[dict]:
        connection = http.client.HTTPConnection(self.host, self.port, timeout=DEADLINE)
        try:
            connection.request("POST", resource, message, {"Content-Type": "application/ipp"})
            answer = connection.getresponse()
            return ipp.groups_in(answer.status, answer.read())
        finally:
            connection.close()

    def add_printer(self, name: str, model: str, device: str):
        self.send("/ipp/system", ipp.request(
            CREATE_PRINTER, ipp.attribute(ipp.URI, "system-uri", "ipp://localhost/ipp/system"),
            keyword("printer-service-type", "print"), keyword("smi55357-driver", model),
            ipp.attribute(ipp.URI, "smi55357-device-uri", f"quor://device/{device}"),
            printer=(ipp.attribute(ipp.NAME, "printer-name", name),)))

    def print(self, contents: bytes, kind: str = "text/plain", *attributes: bytes) -> int:
        """Sends a print job and returns its number."""
        answer = self.ask(ipp.PRINT_JOB, ipp.attribute(ipp.FORMAT, "document-format", kind), job=attributes, data=contents)
        return answer[0]["job-id"][0]

    def on_job(self, operation: int, job: int):
        self.ask(operation, ipp.attribute(ipp.INTEGER, "job-id", job))

    def job(self, job: int) -> tuple[str, str]:
        """Returns the job's state and its message."""
        found = self.ask(ipp.GET_JOB, ipp.attribute(ipp.INTEGER, "job-id", job))[0]
        return STATES[found["job-state"][0]], found.get("job-state-message", [""])[0]

    def jobs(self) -> dict[int, str]:
        """The states of all jobs, including those that have ended."""
        found = self.ask(ipp.GET_JOBS, keyword("which-jobs", "all"),
                         ipp.attribute(ipp.KEYWORD, "requested-attributes", "job-id", "job-state"))
        return {job["job-id"][0]: STATES[job["job-state"][0]] for job in found if "job-id" in job}

    def printer(self) -> dict[str, list]:
        return self.ask(ipp.GET_PRINTER)[0]

    def begin_upload(self, contents: bytes, kind: str, sent: int, compression: str = "none") -> socket.socket:
        """Begins a print job, and sends only `sent` bytes of its document. Returns the open connection."""
        message = self.request(ipp.PRINT_JOB, ipp.attribute(ipp.FORMAT, "document-format", kind),
                               keyword("compression", compression))
        return self.begin_request(f"Content-Length: {len(message) + len(contents)}", message + contents[:sent])

    def begin_upload_in_chunks(self, contents: bytes, kind: str, sent: int) -> socket.socket:
        """Like `begin_upload`, but announces no length of the document. The bytes are sent as one chunk."""
        message = self.request(ipp.PRINT_JOB, ipp.attribute(ipp.FORMAT, "document-format", kind)) + contents[:sent]
        return self.begin_request("Transfer-Encoding: chunked", b"%x\r\n%b\r\n" % (len(message), message))

    def begin_request(self, length: str, body: bytes) -> socket.socket:
        connection = socket.create_connection((self.host, self.port), DEADLINE)
        connection.sendall(f"POST {self.resource} HTTP/1.1\r\nHost: {self.host}:{self.port}\r\n"
                           f"Content-Type: application/ipp\r\n{length}\r\n\r\n".encode() + body)
        return connection

    def leave_in_upload(self, contents: bytes, kind: str, sent: int):
        self.begin_upload(contents, kind, sent).close()


class Application(Case):
    """The application runs with one printer, the virtual printer `till`."""

    model = "escpos-80"

    def setUp(self):
        super().setUp()
        self.receipts = self.folder / "receipts"
        self.printer = self.simulator("tcp:0", "--receipts", str(self.receipts))
        self.environment = os.environ | {"TMPDIR": str(self.folder)}
        self.port = free_port()
        self.client = Client(self.port)
        self.start()
        # The client adds the printer over IPP. The program's own command would use a socket that all servers of a user
        # share.
        self.client.add_printer("till", self.model, self.printer.place)

    def start(self, *options: str):
        settings = [f"state-directory={self.folder}/state", f"server-port={self.port}", f"log-file={self.folder}/log",
                    "log-level=debug", *options]
        self.application = subprocess.Popen(
            [APPLICATION, "server", *(word for setting in settings for word in ("-o", setting))], env=self.environment)
        self.addCleanup(self.kill, self.application)
        eventually(self.listens, "the application listens")

    def listens(self) -> bool:
        self.assertIsNone(self.application.poll(), "the application has ended")
        with socket.socket() as client:
            return client.connect_ex(("127.0.0.1", self.port)) == 0

    @staticmethod
    def kill(process: subprocess.Popen):
        process.kill()
        process.wait()

    def restart(self, *options: str):
        """Waits until the application has saved its printer. Then kills the application and starts it again."""
        eventually(lambda: "till" in self.kept(), "the printer is saved")
        self.kill(self.application)
        self.start(*options)

    def kept(self) -> str:
        file = self.folder / "state/printers.conf"
        return file.read_text() if file.exists() else ""

    def command(self, *arguments: str) -> str:
        # At the end of a command the framework does not free the command's options, which a sanitizer reports as a leak.
        environment = self.environment | {"LSAN_OPTIONS": "detect_leaks=0"}
        result = subprocess.run([APPLICATION, *arguments], env=environment, timeout=30, capture_output=True, text=True)
        self.assertEqual(result.returncode, 0, result.stderr)
        return result.stdout

    def print(self, contents: bytes, kind: str = "text/plain", *attributes: bytes) -> int:
        return self.client.print(contents, kind, *attributes)

    def await_state(self, state: str, job: int) -> str:
        """Waits until the job is in this state, and returns the job's message."""
        eventually(lambda: self.client.job(job)[0] == state, f"job {job} is {state}: {self.client.job(job)}")
        return self.client.job(job)[1]

    def await_message(self, message: str, job: int):
        eventually(lambda: self.client.job(job) == ("processing", message), f"job {job} says {message}")

    def receipt_files(self, ending: str, count: int) -> list[Path]:
        """Waits until `count` receipts are complete, and returns their files. A receipt with a record is complete, because
        the record is written last."""
        eventually(lambda: len(list(self.receipts.glob("*.json"))) >= count, f"{count} receipts are there")
        return sorted(self.receipts.glob(f"*.{ending}"))

    def printed(self, count: int = 0) -> list[str]:
        return [path.read_text() for path in self.receipt_files("txt", count)]

    def records(self, count: int) -> list[dict]:
        return [json.loads(path.read_text()) for path in self.receipt_files("json", count)]

    def log(self) -> str:
        return (self.folder / "log").read_text()

    def saved(self, job: int, state: str = r"\d"):
        """Waits until the framework has written the job to disk."""
        eventually(lambda: re.search(rf'id="{job}".* state="{state}"', self.kept()), f"job {job} is saved")
