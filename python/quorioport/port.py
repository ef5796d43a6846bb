"""The port: a connection to one printer."""

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
    """The command system that the printer is set to."""

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
    """Converts the options of a port to the library's units. Raises UsageError if a value is out of range."""
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
    """A connection to one printer. `with` or `open` opens it; it may be opened again after a close.

    Any thread may use it; calls from several threads take turns. A call that fails raises an error of
    `quorioport.errors`: LinkLostError if the link is lost, OperationError if there is no answer, UnreadableAnswerError
    if the answer is not a printer's.
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
        """Creates the port without connecting it.

        `device` is a text such as "tcp:192.0.2.10:9100", "usb:" or "virtual:". If it is a list, `port_name` chooses:
        "BT:" means the first, and "BT:" with a name, serial number or address means the device that has it. Times are
        in seconds. `timeout` limits each exchange with the printer. `end_timeout` limits the wait for the end of
        printing after a job's last byte (None: the value of `timeout`). `hold_print_timeout` limits the wait until
        somebody takes paper from the exit. The printer drops an unfinished job after `data_timeout` seconds without
        data; 0 means never, None means the printer's own setting.
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
        """Opens the port. If Ctrl-C interrupts the opening, the port is closed after the opening has ended."""
        try:
            self.open()
        except BaseException:
            self._worker.submit(self._handle.close)
            raise
        return self

    def __exit__(
        self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None
    ) -> None:
        """Closes the port."""
        self.close()

    def __del__(self) -> None:
        """Closes a port that the program did not close, and warns."""
        if self.is_open:
            warnings.warn("a port was not closed", ResourceWarning, stacklevel=2, source=self)
            with suppress(RuntimeError):  # the interpreter is ending and takes no more work
                self._worker.submit(self._handle.close)

    @property
    def worker(self) -> Worker:
        """The thread that uses the library's port."""
        return self._worker

    @property
    def handle(self) -> Handle:
        """The library's port, to be used on the worker's thread."""
        return self._handle

    def open(self) -> None:
        """Connects to the chosen printer; does nothing if the port is open.

        Raises UsageError for an invalid device text, and OperationError if no printer matches or the printer cannot be
        reached.
        """
        self._worker.call(self._handle.open)

    def close(self) -> None:
        """Closes the connection, after any running operation; does nothing if the port is closed."""
        self._worker.call(self._handle.close)

    @property
    def is_open(self) -> bool:
        """True from a successful `open` until `close`, even if the link is lost."""
        handle: Handle | None = getattr(self, "_handle", None)  # None if the constructor refused a value
        return handle is not None and handle.is_open

    def is_connected(self) -> bool:
        """True while the printer is connected."""
        return self._worker.call(self._handle.is_connected)

    def name(self) -> str:
        """The name of the chosen printer."""
        return self._worker.call(self._handle.name)

    def serial_number(self) -> str:
        """The serial number of the chosen printer; "" if it has none."""
        return self._worker.call(self._handle.serial_number)

    def connection_id(self) -> int:
        """The number of the connection; 0 if there is none."""
        return self._worker.call(self._handle.connection_id)

    def print(
        self,
        data: bytes | bytearray | memoryview,
        *,
        proof: Proof = Proof.AUTO,
        progress: Callable[[Progress], object] | None = None,
    ) -> PrintResult:
        """Prints the data once and returns the result; see PrintJob."""
        return PrintJob(self, proof=proof, progress=progress).run(data)

    def start_job(self, job: RunningJob, data: bytes) -> Future[PrintResult]:
        """Starts the job on the port's thread. For internal use."""
        return self._worker.submit(job.run, self._handle, data)

    def status(self) -> Status:
        """Asks the printer for its status."""
        return self._worker.call(self._handle.status)

    def is_online(self) -> bool:
        """Asks the printer whether it is ready to print."""
        return self._worker.call(self._handle.is_online)

    def firmware(self) -> str:
        """Asks for the firmware's text. Raises NotReadyError if the printer is off line."""
        return self._worker.call(self._handle.firmware)

    def dip_switches(self) -> tuple[bytes, bytes]:
        """Asks for the DIP switches: two bytes of bank 1 and two of bank 2."""
        return self._worker.call(self._handle.dip_switches)

    def button_security_timeout(self) -> float:
        """Asks for the button-security time-out, in seconds; 0 if it is off."""
        return self._worker.call(self._handle.button_security_timeout)

    def drop_all(self) -> None:
        """Makes the printer drop all data that it has received but not printed."""
        self._worker.call(self._handle.drop_all)

    def disconnect(self) -> None:
        """Makes the printer's Bluetooth module drop the link; the port remains open."""
        self._worker.call(self._handle.disconnect)

    def write(self, data: bytes) -> int:
        """Sends bytes over the link and returns how many the link accepted; this may be 0. Waits at most 0.1 s.

        Use this method for commands of your own; print receipts with `print`.
        """
        return self._worker.call(self._handle.write, data)

    def read(self, size: int) -> bytes:
        """Returns at most `size` bytes that the printer has sent. Waits at most 0.1 s for the first byte."""
        return self._worker.call(self._handle.read, size)

    def send_command(self, command: bytes) -> None:
        """Sends a whole short command, within the time-out."""
        self._worker.call(self._handle.send_command, command)
