"""Devices that never stop sending: every command ends in time and accepts no false answer."""

import concurrent.futures
import itertools
import socket
import unittest

import harness

PATTERNS = ("00", "11 13", "12", "1a", "10 00 00 00", "17", "1b", "37 22 41 41 41 41 00", "48",
            "89 01 00 00 00 00 00 00 05", "89 01 00 00 00 00 02 00 05", "1b 1d 03 01 00 00 02 00")
COMMANDS = (("print",), ("status",), ("online",), ("cancel",), ("firmware",), ("dipswitch",), ("button-security",),
            ("disconnect",), ("doctor",), ("monitor", "--count", "1"))
# These commands must fail, because no pattern is an answer to them. Other commands may succeed: some patterns are
# complete real-time statuses.
UNANSWERED = ("print", "firmware", "dipswitch", "button-security", "disconnect")
EMULATIONS = ("line", "escpos")
PAUSE = 0.03  # seconds between two bytes
LIMIT = 25  # seconds; the time-out of each exchange is one second
AT_ONCE = 60  # commands that run in parallel; each waits nearly all the time


def chatter(pattern: str):
    """Sends the pattern byte by byte until the host disconnects, and reads the bytes of the host."""
    endless = itertools.cycle(bytes([value]) for value in bytes.fromhex(pattern))

    def handle(connection: socket.socket):
        connection.settimeout(PAUSE)
        while True:
            connection.sendall(next(endless))
            try:
                if not connection.recv(4096):
                    return
            except TimeoutError:
                pass

    return handle


class EndlessBytes(harness.Case):
    def attempt(self, pattern: str, command: tuple, emulation: str):
        arguments = (*command, self.receipt) if command == ("print",) else command
        peer = harness.Peer(chatter(pattern))
        try:
            result = harness.run("-d", peer.place, "-e", emulation, "-t", "1000", *arguments)
        finally:
            peer.close()
        return pattern, command, emulation, result

    def test_every_command_ends_and_reports_no_false_answer_if_the_printer_never_stops_sending(self):
        self.receipt = self.file("receipt", b"receipt\n")
        with concurrent.futures.ThreadPoolExecutor(AT_ONCE) as pool:
            runs = [pool.submit(self.attempt, *case) for case in itertools.product(PATTERNS, COMMANDS, EMULATIONS)]
            results = [run.result() for run in runs]
        for pattern, command, emulation, result in results:
            with self.subTest(pattern=pattern, command=command, emulation=emulation):
                self.assertLess(result.seconds, LIMIT, result)
                self.assertIn(result.code, range(8), result)
                if command[0] in UNANSWERED:
                    self.assertIn(result.code, (1, 4, 5, 6), result)


if __name__ == "__main__":
    unittest.main()
