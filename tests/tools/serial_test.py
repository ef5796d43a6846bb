"""A virtual printer on a serial line: two programs that use the line, and flow control."""

import fcntl
import os
import pty
import select
import socket
import struct
import termios
import threading
import tty

from harness import DEADLINE, Case, eventually, main, run, start


class SerialLine(Case):
    def slow_printer(self):
        return self.simulator("pty:", "--set", "speed=2000")

    def test_a_second_program_on_a_serial_line_is_refused_and_sends_nothing(self):
        printer = self.slow_printer()
        line = os.open(printer.place.removeprefix("serial:"), os.O_RDWR | os.O_NOCTTY)
        self.addCleanup(os.close, line)
        fcntl.flock(line, fcntl.LOCK_EX)
        result = run("-d", printer.place, "print", self.file("job", b"a line\n"), "--json")
        self.assertExit(4, result)
        answer = result.json()
        self.assertEqual((answer["outcome"], answer["bytesAccepted"]), ("refused", 0))
        self.assertIn("in use by another program: ", answer["error"])
        self.assertIn(f"(process {os.getpid()})", answer["error"])
        self.assertEqual(printer.state()["printedBytes"], 0)

    def test_a_query_during_a_job_is_refused_and_does_not_disturb_the_job(self):
        printer = self.slow_printer()
        long = self.file("long", b"".join(b"line %03d of the first\n" % i for i in range(200)))
        first = start("-d", printer.place, "print", long, "--json")
        eventually(lambda: printer.state()["printedBytes"] > 100, "the first job prints")
        second = run("-d", printer.place, "online", "--json")
        self.assertExit(4, second)
        self.assertIn(f"in use by another program: quorport (process {first.pid})", second.json()["error"])
        first.communicate()
        self.assertEqual(first.returncode, 0)

    def test_a_serial_line_can_be_opened_after_its_program_was_killed(self):
        printer = self.slow_printer()
        long = self.file("long", b"a line of the first\n" * 200)
        killed = start("-d", printer.place, "print", long)
        eventually(lambda: printer.state()["printedBytes"] > 100, "the first job prints")
        killed.kill()
        killed.communicate()
        self.assertExit(0, run("-d", printer.place, "status"))
        self.assertTrue(printer.state())

    def test_a_serial_line_is_released_at_the_end_of_the_command(self):
        printer = self.simulator("pty:")
        for _ in range(3):
            self.assertExit(0, run("-d", printer.place, "online"))


class FlowControlCharacters(Case):
    """The virtual printer pauses the host by XOFF and lets it continue by XON."""

    def printer(self):
        return self.simulator("pty:", "--set", "speed=2000", "--set", "buffer=512", "--set", "flow=xonxoff")

    def test_a_virtual_printer_sends_flow_control_characters_to_the_host(self):
        line = os.open(self.printer().place.removeprefix("serial:"), os.O_RDWR | os.O_NOCTTY)
        self.addCleanup(os.close, line)
        tty.setraw(line)
        os.write(line, b"a" * 450)
        for sign in (b"\x13", b"\x11"):
            self.assertTrue(select.select([line], [], [], DEADLINE)[0], sign)
            self.assertEqual(os.read(line, 1), sign)

    def test_a_job_is_printed_whole_if_the_printer_sends_flow_control_characters(self):
        job = self.file("job", b"a line of a long job\n" * 100)
        self.assertExit(0, run("-d", self.printer().place + ",flow=xonxoff", "print", job))


class FlowPrinter:
    """A printer on a serial line. After 5000 bytes, it makes the host pause. It passes all data on to a virtual printer,
    and the answers of the virtual printer back to the host."""

    MOMENT = 0.3  # seconds; bytes that are on their way arrive sooner

    def __init__(self, place: str, hold_back):
        self.hold_back = hold_back
        self.received, self.held_back_after = b"", None
        self.virtual = socket.socket(socket.AF_UNIX)
        self.virtual.connect(place.removeprefix("unix:"))
        self.master, self.line = pty.openpty()
        tty.setraw(self.line)
        self.path = os.ttyname(self.line)
        threading.Thread(target=self.answer, daemon=True).start()
        threading.Thread(target=self.take, daemon=True).start()

    def answer(self):
        while more := self.virtual.recv(4096):
            os.write(self.master, more)

    def take(self):
        while self.take_some():
            if len(self.received) > 5000 and self.held_back_after is None:
                self.held_back_after = self.hold_back(self)

    def take_some(self) -> bool:
        try:
            more = os.read(self.master, 512)
        except OSError:
            return False
        self.received += more
        self.virtual.sendall(more)
        return True

    def stop_by_bytes(self) -> int:
        """Pauses the host by XOFF until no more bytes arrive. Returns how many bytes the host has sent."""
        os.write(self.master, b"\x13")
        while select.select([self.master], [], [], self.MOMENT)[0] and self.take_some():
            pass
        count = len(self.received)
        os.write(self.master, b"\x11")
        return count

    def take_nothing(self) -> int:
        """Takes no bytes until the line is full. Returns how many bytes the host has sent."""
        waiting, before = self.waiting(), -1
        while waiting != before:
            select.select([], [], [], self.MOMENT)
            waiting, before = self.waiting(), waiting
        return len(self.received) + waiting

    def waiting(self) -> int:
        return struct.unpack("i", fcntl.ioctl(self.master, termios.FIONREAD, bytes(4)))[0]

    def close(self):
        os.close(self.line)
        self.virtual.close()


class FlowControl(Case):
    def assertPrintsAll(self, flow: str, hold_back):
        printer = FlowPrinter(self.simulator(f"unix:{self.folder}/printer").place, hold_back)
        self.addCleanup(printer.close)
        job = b"".join(b"line %05d of a long receipt\n" % i for i in range(8000))
        result = run("-d", f"serial:{printer.path},flow={flow}", "print", self.file(flow, job), "--json")
        self.assertExit(0, result)
        self.assertEqual(result.json()["outcome"], "printed")
        self.assertIn(job, printer.received)
        self.assertLess(printer.held_back_after, len(job), "the job waited for the printer")

    def test_a_job_loses_no_byte_if_the_printer_pauses_the_host_by_xoff(self):
        self.assertPrintsAll("xonxoff", FlowPrinter.stop_by_bytes)

    def test_a_job_loses_no_byte_if_the_printer_accepts_no_data_for_a_while(self):
        self.assertPrintsAll("rtscts", FlowPrinter.take_nothing)


if __name__ == "__main__":
    main()
