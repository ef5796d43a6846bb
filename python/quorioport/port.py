"""The port: one connection to one printer."""

from __future__ import annotations

import warnings
from collections.abc import Callable, Sequence
from concurrent.futures import Future
from contextlib import suppress
from enum import IntEnum
from types import TracebackType
from typing import Self

from quorioport._handle import Configuration, Handle, milliseconds
from quorioport._worker import Worker
from quorioport.job import PrintJob, PrintResult, Progress, Proof, RunningJob
from quorioport.status import Status


class Emulation(IntEnum):
    """The command system that a port speaks with its printer."""

    UNKNOWN = 0
    #: The maker's line mode.
    LINE = 1
    #: The common command set of receipt printers.
    ESCPOS = 2


def configuration(
    device: str | Sequence[str],
    *,
    port_name: str = "BT:",
    settings: str = "",
    timeout: float = 10,
    emulation: Emulation = Emulation.LINE,
    end_timeout: float | None = None,
    hold_print_timeout: float | None = None,
    data_timeout: int | None = None,
) -> Configuration:
    """The options of a port in the library's units; raises UsageError for one that is out of range."""
    return Configuration(
        devices=(device,) if isinstance(device, str) else tuple(device),
        port_name=port_name,
        settings=settings,
        timeout=milliseconds(timeout, "timeout"),
        emulation=Emulation(emulation),
        end_timeout=None if end_timeout is None else milliseconds(end_timeout, "end_timeout"),
        hold_print_timeout=(
            None if hold_print_timeout is None else milliseconds(hold_print_timeout, "hold_print_timeout")
        ),
        data_timeout=data_timeout,
    )


class Port:
    """One connection to one printer. Opened by `with` or `open`; may be opened again after a close.

    Any thread may use it; calls from several threads take turns. A call that goes wrong raises an error of
    `quorioport.errors`: LinkLostError if the link is lost, OperationError if there is no answer,
    UnreadableAnswerError if something else than a printer answers.
    """

    def __init__(
        self,
        device: str | Sequence[str],
        *,
        port_name: str = "BT:",
        settings: str = "",
        timeout: float = 10,
        emulation: Emulation = Emulation.LINE,
        end_timeout: float | None = None,
        hold_print_timeout: float | None = None,
        data_timeout: int | None = None,
    ) -> None:
        """Nothing is connected yet.

        `device` is a text such as "tcp:192.0.2.10:9100", "usb:" or "virtual:"; of several, `port_name` chooses:
        "BT:" for the first, "BT:" followed by a name, serial number or address for that one. Times are in seconds.
        `timeout` is for each exchange with the printer, `end_timeout` for the printing of a job after its last byte
        (None: as `timeout`), `hold_print_timeout` for paper to be taken from the exit. After `data_timeout` seconds
        without data the printer drops an unfinished job: 0 is never, None its own setting.
        """
        self.configuration = configuration(
            device,
            port_name=port_name,
            settings=settings,
            timeout=timeout,
            emulation=emulation,
            end_timeout=end_timeout,
            hold_print_timeout=hold_print_timeout,
            data_timeout=data_timeout,
        )
        self._handle = Handle(self.configuration)
        self._worker = Worker()

    def __enter__(self) -> Self:
        """Opens the port."""
        self.open()
        return self

    def __exit__(
        self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None
    ) -> None:
        """Closes the port."""
        self.close()

    def __del__(self) -> None:
        """Closes a port that was forgotten, and says so."""
        if self.is_open:
            warnings.warn("a port was not closed", ResourceWarning, stacklevel=2, source=self)
            with suppress(RuntimeError):  # the interpreter ends, and takes no more work
                self._worker.submit(self._handle.close)

    @property
    def worker(self) -> Worker:
        """The thread that uses the library's port."""
        return self._worker

    @property
    def handle(self) -> Handle:
        """The library's port, for that thread."""
        return self._handle

    def open(self) -> None:
        """Opens a session on the chosen printer; does nothing if the port is open.

        Raises UsageError for a text that is no device, OperationError if no printer matches or it cannot be reached.
        """
        self._worker.call(self._handle.open)

    def close(self) -> None:
        """Ends the session after the operation under way; does nothing if the port is closed."""
        self._worker.call(self._handle.close)

    @property
    def is_open(self) -> bool:
        """True from a successful `open` to `close`, also if the link was lost meanwhile."""
        handle: Handle | None = getattr(self, "_handle", None)  # none if a value was refused
        return handle is not None and handle.is_open

    def is_connected(self) -> bool:
        """True while the printer is attached."""
        return self._worker.call(self._handle.is_connected)

    def name(self) -> str:
        """The name of the chosen printer."""
        return self._worker.call(self._handle.name)

    def serial_number(self) -> str:
        """Its serial number; "" if it has none."""
        return self._worker.call(self._handle.serial_number)

    def connection_id(self) -> int:
        """The number of the connection; 0 if it has none."""
        return self._worker.call(self._handle.connection_id)

    def print(
        self,
        data: bytes | bytearray | memoryview,
        *,
        proof: Proof = Proof.AUTO,
        progress: Callable[[Progress], object] | None = None,
    ) -> PrintResult:
        """Prints the data once, and returns the result; see PrintJob."""
        return PrintJob(self, proof=proof, progress=progress).run(data)

    def start_job(self, job: RunningJob, data: bytes) -> Future[PrintResult]:
        """Has the port's thread run the job; for PrintJob."""
        return self._worker.submit(job.run, self._handle, data)

    def status(self) -> Status:
        """Asks the printer for its status."""
        return self._worker.call(self._handle.status)

    def is_online(self) -> bool:
        """Asks whether the printer is ready to print."""
        return self._worker.call(self._handle.is_online)

    def firmware(self) -> str:
        """Asks for the firmware text; raises NotReadyError if the printer is off line."""
        return self._worker.call(self._handle.firmware)

    def dip_switches(self) -> tuple[bytes, bytes]:
        """Asks for the two bytes of bank 1 and those of bank 2."""
        return self._worker.call(self._handle.dip_switches)

    def button_security_timeout(self) -> float:
        """Asks for the button-security time-out, in seconds; 0 if it is off."""
        return self._worker.call(self._handle.button_security_timeout)

    def drop_all(self) -> None:
        """Makes the printer drop the data that it has received and not printed."""
        self._worker.call(self._handle.drop_all)

    def disconnect(self) -> None:
        """Makes the printer's Bluetooth module drop the link; the port remains open."""
        self._worker.call(self._handle.disconnect)

    def write(self, data: bytes) -> int:
        """Offers bytes to the link, waits 0.1 s at most, and returns how many it took, which may be 0.

        For commands of your own; receipts go through `print`.
        """
        return self._worker.call(self._handle.write, data)

    def read(self, size: int) -> bytes:
        """Takes at most `size` bytes that the printer sent, and waits 0.1 s at most for the first."""
        return self._worker.call(self._handle.read, size)

    def send_command(self, command: bytes) -> None:
        """Sends a whole short command, within the time-out."""
        self._worker.call(self._handle.send_command, command)
