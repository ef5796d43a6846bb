"""A realistic link between a till and its printer: it splits, slows down and delays the bytes, and ends connections."""

import os
import pty
import selectors
import socket
import threading
import time
import tty
from collections import deque
from dataclasses import dataclass
from pathlib import Path

READ_SIZE = 4096
FULL = 65536  # bytes on their way in one direction; at this number the sender must wait


@dataclass(frozen=True)
class Weather:
    """How the link behaves until it is cut, or until the next `set_weather`."""

    slice: int = READ_SIZE  # the size of a slice in bytes; the bytes of a slice arrive together
    rate: float = 0  # bytes a second; 0 means without a limit
    delay: float = 0  # seconds
    # The number of bytes after which the link is cut: all that have passed since `set_weather`, both directions added.
    # None: never.
    cut_after: int | None = None


class Direction:
    """Bytes on their way, each slice with the time at which it arrives."""

    def __init__(self, source: int, target: int):
        self.source, self.target = source, target
        self.under_way: deque[tuple[float, bytes]] = deque()
        self.size = 0
        self.last = 0.0

    def take(self, data: bytes, weather: Weather):
        due = max(self.last, time.monotonic() + weather.delay)
        for start in range(0, len(data), weather.slice):
            piece = data[start : start + weather.slice]
            if weather.rate:
                due += len(piece) / weather.rate
            self.under_way.append((due, piece))
            self.size += len(piece)
        self.last = due

    def deliver(self) -> int:
        """Passes on the bytes that are due; returns their number."""
        count = 0
        while self.under_way and self.under_way[0][0] <= time.monotonic():
            due, piece = self.under_way.popleft()
            try:
                written = os.write(self.target, piece)
            except BlockingIOError:
                written = 0
            count += written
            self.size -= written
            if written < len(piece):
                self.under_way.appendleft((due, piece[written:]))
                break
        return count


class Relay(threading.Thread):
    """Serves tills, one after the other, at an address of its own, and passes all bytes to the printer."""

    def __init__(self, printer: str):
        super().__init__(daemon=True)
        self.printer = printer
        self.weather = Weather()
        self.passed = 0
        self.cuts = 0
        self.cut_done = threading.Event()  # cleared when the link is cut; set when the next till can connect
        self.cut_done.set()
        self.lock = threading.Lock()
        self.stopping = False

    def set_weather(self, weather: Weather):
        with self.lock:
            self.weather, self.passed = weather, 0

    def run(self):
        while not self.stopping:
            till = self.accept()
            if till is None:
                continue
            with socket.socket(socket.AF_UNIX) as printer:
                printer.connect(self.printer)
                printer.setblocking(False)
                self.carry(till, printer.fileno())
                self.take_leave(printer)
            self.hang_up(till)
            self.cut_done.set()

    @staticmethod
    def take_leave(printer: socket.socket):
        """Waits until the printer has taken all bytes that reached it."""
        printer.settimeout(10)
        try:
            printer.shutdown(socket.SHUT_WR)
            while printer.recv(READ_SIZE):
                pass
        except OSError:
            return

    def carry(self, till: int, printer: int):
        """Passes bytes on in both directions until one side ends or the link is cut."""
        directions = Direction(till, printer), Direction(printer, till)
        while not self.stopping:
            with self.lock:
                weather = self.weather
            self.wait(directions)
            for direction in directions:
                try:
                    if direction.size < FULL and not self.take(direction, weather):
                        return
                    delivered = direction.deliver()
                except OSError:
                    return
                with self.lock:
                    self.passed += delivered
                    if self.weather.cut_after is not None and self.passed >= self.weather.cut_after:
                        self.cuts += 1
                        self.cut_done.clear()
                        self.weather = Weather()
                        return

    @staticmethod
    def take(direction: Direction, weather: Weather) -> bool:
        """Takes the bytes that have arrived; returns False if the source has ended."""
        try:
            data = os.read(direction.source, READ_SIZE)
        except BlockingIOError:
            return True
        direction.take(data, weather)
        return bool(data)

    @staticmethod
    def wait(directions: tuple[Direction, Direction]):
        """Waits until bytes can be read or delivered, at most 50 ms."""
        due = [d.under_way[0][0] for d in directions if d.under_way]
        left = min(due, default=time.monotonic() + 0.05) - time.monotonic()
        with selectors.DefaultSelector() as selector:
            for direction in directions:
                if direction.size < FULL:
                    selector.register(direction.source, selectors.EVENT_READ)
            selector.select(min(max(left, 0.0005), 0.05))

    def stop(self):
        self.stopping = True
        self.join()


class SocketRelay(Relay):
    def __init__(self, folder: Path, printer: str):
        super().__init__(printer)
        self.device = f"unix:{folder}/till"
        self.listener = socket.socket(socket.AF_UNIX)
        self.listener.bind(f"{folder}/till")
        self.listener.listen()
        self.listener.settimeout(0.1)
        self.start()

    def accept(self) -> int | None:
        try:
            connection, _ = self.listener.accept()
        except TimeoutError:
            return None
        connection.setblocking(False)
        return connection.detach()

    def hang_up(self, till: int):
        os.close(till)


class TerminalRelay(Relay):
    """A serial line. After each cut of the link, a new terminal replaces the old one at the same path."""

    def __init__(self, folder: Path, printer: str):
        super().__init__(printer)
        self.link = folder / "terminal"
        self.device = f"serial:{self.link}"
        self.other_side = -1
        self.master = -1
        self.open_terminal()
        self.start()

    def open_terminal(self):
        self.master, self.other_side = pty.openpty()
        tty.setraw(self.other_side)
        os.set_blocking(self.master, False)
        fresh = self.link.with_suffix(".new")
        fresh.symlink_to(os.ttyname(self.other_side))
        fresh.rename(self.link)

    def accept(self) -> int:
        return self.master

    def hang_up(self, till: int):
        os.close(till)
        os.close(self.other_side)
        if not self.stopping:
            self.open_terminal()
