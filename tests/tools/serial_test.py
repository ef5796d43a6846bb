"""Two programs and one serial line, with the virtual printer at its end."""

import fcntl
import os

from harness import Case, eventually, main, run, start


class SerialLine(Case):
    def slow_printer(self):
        return self.simulator("pty:", "--set", "speed=2000")

    def test_a_second_program_is_refused_before_anything_is_sent(self):
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

    def test_a_query_is_refused_while_a_job_prints_and_the_job_continues(self):
        printer = self.slow_printer()
        long = self.file("long", b"".join(b"line %03d of the first\n" % i for i in range(200)))
        first = start("-d", printer.place, "print", long, "--json")
        eventually(lambda: printer.state()["printedBytes"] > 100, "the first job prints")
        second = run("-d", printer.place, "online", "--json")
        self.assertExit(4, second)
        self.assertIn(f"in use by another program: quorport (process {first.pid})", second.json()["error"])
        first.communicate()
        self.assertEqual(first.returncode, 0)

    def test_a_program_that_is_killed_leaves_the_line_to_the_next(self):
        printer = self.slow_printer()
        long = self.file("long", b"a line of the first\n" * 200)
        killed = start("-d", printer.place, "print", long)
        eventually(lambda: printer.state()["printedBytes"] > 100, "the first job prints")
        killed.kill()
        killed.communicate()
        self.assertExit(0, run("-d", printer.place, "status"))
        self.assertTrue(printer.state())

    def test_the_line_is_given_back_with_the_end_of_the_command(self):
        printer = self.simulator("pty:")
        for _ in range(3):
            self.assertExit(0, run("-d", printer.place, "online"))


if __name__ == "__main__":
    main()
