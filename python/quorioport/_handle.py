"""The operations of one port as plain calls, of which only one may run at a time."""

from __future__ import annotations

import ctypes
import threading
from collections.abc import Sequence
from dataclasses import dataclass

from quorioport import _library as c
from quorioport.errors import OperationError, UsageError
from quorioport.status import Status, StatusRecord, status_of

LONGEST = 2**32 - 1  # milliseconds

# The devices are set for the whole process, and a new port chooses among them. So only one thread at a time may set
# the devices and create a port.
_creation = threading.Lock()


def milliseconds(seconds: float, name: str) -> int:
    """Converts seconds to the library's milliseconds."""
    if not 0 <= seconds <= LONGEST / 1000:
        raise UsageError(f"{name} is {seconds} s; it must be 0 to {LONGEST // 1000} s")
    return round(seconds * 1000)


@dataclass(frozen=True)
class Configuration:
    """The arguments of a port; times are in milliseconds."""

    devices: Sequence[str]
    port_name: str
    settings: str
    timeout: int
    emulation: int
    end_timeout: int | None
    hold_print_timeout: int | None
    data_timeout: int | None


class Handle:
    """One port of the library, from its creation to its close."""

    def __init__(self, configuration: Configuration) -> None:
        self._configuration = configuration
        self._port = c.HANDLE()
        self._is_open = False

    @property
    def created(self) -> ctypes.c_void_p:
        """The library's handle. Raises OperationError if it was not created."""
        if not self._port:
            raise OperationError("the port is not open")
        return self._port

    @property
    def raw(self) -> ctypes.c_void_p:
        """The library's handle. Raises OperationError if the port is not open."""
        self.require_open()
        return self._port

    def require_open(self) -> None:
        if not self._is_open:
            raise OperationError("the port is not open")

    @property
    def is_open(self) -> bool:
        return self._is_open

    def open(self) -> None:
        if self._is_open:
            return
        self.create()
        try:
            c.call("port_open", self._port)
            self._is_open = True
        except BaseException:
            self.close()
            raise

    def create(self) -> None:
        """Creates the library's port without opening it. Does nothing if the port exists already."""
        if self._port:
            return
        it = self._configuration
        devices = (c.TEXT * len(it.devices))(*(device.encode() for device in it.devices))
        with _creation:
            c.call("connect_devices", devices, len(it.devices))
            c.call("port_create", it.port_name.encode(), it.settings.encode(), it.timeout, it.emulation,
                   ctypes.byref(self._port))
        if it.end_timeout is not None:
            c.call("port_set_end_checked_block_timeout", self._port, it.end_timeout)
        if it.hold_print_timeout is not None:
            c.call("port_set_hold_print_timeout", self._port, it.hold_print_timeout)
        if it.data_timeout is not None:
            c.call("port_set_data_timeout_seconds", self._port, it.data_timeout)

    def close(self) -> None:
        if not self._port:
            return
        self._is_open = False
        try:
            c.call("port_close", self._port)
        finally:
            c.function("port_free")(self._port)
            self._port = c.HANDLE()

    def is_connected(self) -> bool:
        return self._is_open and c.integer("port_is_connected", self._port) == 1

    def name(self) -> str:
        return c.text_of("port_name", self.raw)

    def serial_number(self) -> str:
        return c.text_of("port_serial_number", self.raw)

    def connection_id(self) -> int:
        return c.integer("port_connection_id", self.raw)

    def write(self, data: bytes) -> int:
        written = c.SIZE()
        c.call("port_write", self.raw, data, len(data), ctypes.byref(written))
        return written.value

    def read(self, size: int) -> bytes:
        if size < 0:
            raise UsageError(f"the size is {size}; it must be 0 or more")
        buffer, length = ctypes.create_string_buffer(max(size, 1)), c.SIZE()
        c.call("port_read", self.raw, buffer, size, ctypes.byref(length))
        return buffer.raw[: length.value]

    def send_command(self, command: bytes) -> None:
        written = c.SIZE()
        c.call("port_write_with_retry", self.raw, command, len(command), ctypes.byref(written))

    def status(self) -> Status:
        record = StatusRecord()
        c.call("printer_status", self.raw, ctypes.byref(record), 2)
        return status_of(record)

    def is_online(self) -> bool:
        online = c.INT()
        c.call("printer_is_online", self.raw, ctypes.byref(online))
        return online.value == 1

    def firmware(self) -> str:
        return c.text_of("printer_firmware", self.raw)

    def dip_switches(self) -> tuple[bytes, bytes]:
        settings = (ctypes.c_uint8 * 4)()
        c.call("printer_dip_switches", self.raw, settings)
        return bytes(settings[:2]), bytes(settings[2:])

    def button_security_timeout(self) -> float:
        time = c.UNSIGNED()
        c.call("printer_button_security_timeout", self.raw, ctypes.byref(time))
        return time.value / 1000

    def drop_all(self) -> None:
        c.call("printer_drop_all", self.raw)

    def disconnect(self) -> None:
        c.call("printer_disconnect", self.raw)
