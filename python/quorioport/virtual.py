"""The virtual printer: a printer whose paper programs and tests can read."""

from __future__ import annotations

import json
import os
import queue
import re
import subprocess
import tempfile
import threading
from collections.abc import Mapping
from dataclasses import dataclass
from pathlib import Path
from types import TracebackType
from typing import Any, Self

from quorioport.errors import OperationError, SystemFailureError, UsageError

PATIENCE = 10.0  # seconds for an answer of the printer's process


@dataclass(frozen=True)
class Receipt:
    """The output of one job."""

    #: The paper as text.
    text: str
    #: The paper as a picture, a PNG file.
    picture: bytes
    #: The record of the job: cuts, drawer pulses, questions, unknown commands and more.
    record: Mapping[str, Any]


def key_of(name: str) -> str:
    """Converts cover_open or coverOpen to the printer's own spelling."""
    return re.sub(r"_(\w)", lambda letter: letter.group(1).upper(), name)


class VirtualPrinter:
    """A receipt printer without hardware, in a process of its own.

        with VirtualPrinter() as printer, Port(printer.device) as port:
            port.print(b"hello\\n")
        print(printer.next_receipt().text)

    docs/virtual-printer.md lists the settings and faults. Both spellings are accepted: cover_open and coverOpen.
    """

    def __init__(self, command: str | None = None, **settings: object) -> None:
        """Starts the printer. `command` is the path of the program quorport; the default is the variable QUORPORT, or
        the program in the search path.
        """
        self._folder = tempfile.TemporaryDirectory(prefix="quorport-")
        self._answers: queue.SimpleQueue[dict[str, Any] | None] = queue.SimpleQueue()
        self._jobs: queue.SimpleQueue[dict[str, Any]] = queue.SimpleQueue()
        self._control = threading.Lock()
        given = [word for name, value in settings.items() for word in ("--set", f"{key_of(name)}={_text(value)}")]
        self._errors = tempfile.TemporaryFile("w+", encoding="utf-8")  # noqa: SIM115 - closed with the printer
        program = command or os.environ.get("QUORPORT") or "quorport"
        try:
            self._process = subprocess.Popen(
                [program, "--json", "simulate", "--listen", "tcp:", "--receipts", self._folder.name, *given],
                stdin=subprocess.PIPE,
                stdout=subprocess.PIPE,
                stderr=self._errors,
                encoding="utf-8",
            )
        except OSError as error:
            self._errors.close()
            self._folder.cleanup()
            raise SystemFailureError(
                f"{error}; install the package quorport, or name the program by the argument command or in QUORPORT"
            ) from error
        assert self._process.stdout is not None
        first = self._process.stdout.readline()
        if not first or "listening" not in json.loads(first):
            raise UsageError(self._last_words(first))
        #: The device text for a Port.
        self.device: str = json.loads(first)["listening"][0]
        self._listener = threading.Thread(target=self._listen, daemon=True)
        self._listener.start()

    def __enter__(self) -> Self:
        """Does nothing: the printer runs already."""
        return self

    def __exit__(
        self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None
    ) -> None:
        """Stops the printer."""
        self.close()

    def close(self) -> None:
        """Stops the printer, and removes its receipts. Does nothing if the printer is stopped already."""
        if self._process.poll() is None:
            self._process.terminate()
        self._process.wait()
        self._listener.join()
        self._forget()

    def set(self, **settings: object) -> None:
        """Changes the printer's state: `set(cover_open=True)`. Raises UsageError for an unknown name or value."""
        self._ask({"set": {key_of(name): value for name, value in settings.items()}})

    def state(self) -> dict[str, Any]:
        """Returns the printer's state by name: flags, firmware, counters and more."""
        state = self._ask({"get": "state"})["state"]
        assert isinstance(state, dict)
        return state

    def fault(self, **faults: object) -> None:
        """Adds faults: `fault(late_reply=300)`."""
        self._ask({"fault": {name.replace("_", "-"): value for name, value in faults.items()}})

    def clear_faults(self) -> None:
        """Removes all faults."""
        self._ask({"clear": "faults"})

    def next_receipt(self, timeout: float = PATIENCE) -> Receipt:
        """Returns the oldest receipt that was not returned yet. Waits until its job has ended; raises OperationError if
        none has ended within `timeout` seconds. A job ends when its port is closed.
        """
        try:
            record = self._jobs.get(timeout=timeout)
        except queue.Empty:
            raise OperationError(f"no job ended within {timeout} s; a job ends when its port is closed") from None
        files = [Path(name) for name in record["files"]]
        text = "".join(file.read_text(encoding="utf-8") for file in files if file.suffix == ".txt")
        pictures = [file.read_bytes() for file in files if file.suffix == ".png"]
        return Receipt(text, pictures[0] if pictures else b"", record)

    def _listen(self) -> None:
        assert self._process.stdout is not None
        for line in self._process.stdout:
            said = json.loads(line)
            if "job" in said:
                self._jobs.put(said)
            else:
                self._answers.put(said)
        self._answers.put(None)

    def _ask(self, request: dict[str, Any]) -> dict[str, Any]:
        assert self._process.stdin is not None
        with self._control:
            try:
                self._process.stdin.write(json.dumps(request) + "\n")
                self._process.stdin.flush()
                answer = self._answers.get(timeout=PATIENCE)
            except (OSError, ValueError, queue.Empty) as error:
                raise OperationError("the virtual printer does not run any more") from error
        if answer is None:
            raise OperationError("the virtual printer does not run any more")
        if not answer["ok"]:
            raise UsageError(answer["error"])
        return answer

    def _last_words(self, first: str) -> str:
        self._process.wait()
        self._errors.seek(0)
        said = str(json.loads(first)["error"]) if first else self._errors.read().strip()
        self._forget()
        return said

    def _forget(self) -> None:
        for stream in (self._process.stdin, self._process.stdout, self._errors):
            if stream is not None:
                stream.close()
        self._folder.cleanup()


def _text(value: object) -> str:
    return str(value).lower() if isinstance(value, bool) else str(value)
