"""The printer application: IPP clients on one side, a virtual printer on the other."""

import json
import os
import re
import socket
import subprocess
from pathlib import Path

from harness import Case, eventually, main

APPLICATION = os.environ["PRINTER_APP"]
HERE = Path(__file__).parent
ROOT = HERE.parent.parent
TEXT = "Café 2,40 €\nTotal 2.40\n".encode()

# Tests that the framework's version 1.3 does not pass, whatever a printer does.
LEFT_TO_THE_FRAMEWORK = {"overrides-supported"}  # it prints all pages of a document alike


def free_port() -> int:
    with socket.socket() as bound:
        bound.bind(("127.0.0.1", 0))
        return bound.getsockname()[1]


class Application(Case):
    def setUp(self):
        super().setUp()
        self.port = free_port()
        self.uri = f"ipp://localhost:{self.port}/ipp/print/till"
        self.receipts = self.folder / "receipts"
        self.printer = self.simulator("tcp:0", "--receipts", str(self.receipts))
        self.environment = os.environ | {"TMPDIR": str(self.folder)}
        self.start()
        self.command("add", "-h", f"localhost:{self.port}", "-d", "till", "-m", "escpos-80", "-v", self.printer.place)

    def start(self):
        self.application = subprocess.Popen(
            [APPLICATION, "server", "-o", f"state-directory={self.folder}/state", "-o", f"server-port={self.port}",
             "-o", f"log-file={self.folder}/log", "-o", "log-level=debug"], env=self.environment)
        self.addCleanup(self.kill, self.application)
        eventually(self.listens, "the application listens")

    def listens(self) -> bool:
        self.assertIsNone(self.application.poll())
        with socket.socket() as client:
            return client.connect_ex(("127.0.0.1", self.port)) == 0

    @staticmethod
    def kill(process: subprocess.Popen):
        process.kill()
        process.wait()

    def command(self, *arguments: str):
        subprocess.run([APPLICATION, *arguments], env=self.environment, check=True, timeout=30)

    def ipptool(self, test: str, *arguments: str) -> str:
        result = subprocess.run(["ipptool", "-tv", *arguments, self.uri, test], capture_output=True, text=True, timeout=60)
        return result.stdout

    def print(self, contents: bytes, kind: str = "text/plain", drawer: str = "none"):
        answer = self.ipptool(HERE / "print.test", "-f", self.file("document", contents), "-d", f"filetype={kind}",
                              "-d", f"drawer={drawer}")
        self.assertIn("[PASS]", answer)

    def jobs(self) -> dict[int, tuple[str, str]]:
        """State and message of each job."""
        answer = self.ipptool(HERE / "jobs.test")
        found = re.findall(r"job-id \(integer\) = (\d+)\s+job-state \(enum\) = (\S+)\s+job-state-message \S+ = (.*)", answer)
        return {int(number): (state, message) for number, state, message in found}

    def await_state(self, state: str, job: int = 1) -> str:
        """The message of the job in this state."""
        eventually(lambda: self.jobs().get(job, ("", ""))[0] == state, f"job {job} is {state}: {self.jobs()}")
        return self.jobs()[job][1]

    def printed(self) -> list[str]:
        return [path.read_text() for path in sorted(self.receipts.glob("*.txt"))]

    def saved(self, job: int):
        """Waits until the framework has noted that it prints the job."""
        state = self.folder / "state/printers.conf"
        eventually(lambda: re.search(rf'id="{job}".* state="5"', state.read_text()), "the state is saved")


class Printing(Application):
    def test_a_job_is_completed_when_the_printer_has_confirmed_it(self):
        self.print(TEXT, drawer="drawer-1")
        self.assertEqual(self.await_state("completed"), "the printer confirmed it")
        (receipt,) = self.printed()
        self.assertRegex(receipt, r"\A\[image 576 x \d+ dots\]\nTotal 2\.40\n")
        self.assertIn("partial cut", receipt)
        (record,) = [json.loads(path.read_text()) for path in self.receipts.glob("*.json")]
        self.assertEqual((record["drawer"], record["cuts"], record["unknown"]), (1, 1, []))

    def test_a_picture_is_printed_and_bytes_are_handed_on(self):
        self.print((ROOT / "docs/receipt.png").read_bytes(), "image/png")
        self.await_state("completed")
        self.print(b"plain bytes\n", "application/vnd.escpos")
        self.await_state("completed", 2)
        picture, plain = self.printed()
        self.assertRegex(picture, r"\A\[image 576 x \d+ dots\]")
        self.assertEqual(plain, "plain bytes\n")

    def test_a_job_that_the_printer_refuses_waits_and_goes_on_by_itself(self):
        self.printer.set(coverOpen=True)
        self.print(TEXT)
        eventually(lambda: self.jobs()[1] == ("processing", "waiting: cover open"), "the job waits")
        self.assertIn("printer-state-reasons (keyword) = cover-open", self.ipptool("get-printer-attributes.test"))
        self.assertEqual(self.printed(), [])
        self.printer.set(coverOpen=False)
        self.await_state("completed")
        self.assertEqual(len(self.printed()), 1)
        eventually(lambda: "printer-state-reasons (keyword) = none" in self.ipptool("get-printer-attributes.test"),
                   "the reason is gone")

    def test_jobs_that_wait_are_printed_in_the_order_in_which_they_arrived(self):
        self.printer.set(coverOpen=True)
        for number in range(1, 7):
            self.print(b"job %d\n" % number)
        eventually(lambda: self.jobs()[1][1] == "waiting: cover open", "the first one waits")
        self.printer.set(coverOpen=False)
        for number in range(1, 7):
            self.await_state("completed", number)
        self.assertEqual([text.split("\n")[0] for text in self.printed()], [f"job {number}" for number in range(1, 7)])

    def test_a_job_that_waits_can_be_canceled(self):
        self.printer.set(coverOpen=True)
        self.print(TEXT)
        eventually(lambda: self.jobs()[1][1] == "waiting: cover open", "the job waits")
        self.assertIn("[PASS]", self.ipptool(HERE / "cancel.test", "-d", "job=1"))
        self.await_state("canceled")
        self.printer.set(coverOpen=False)
        self.print(TEXT)
        self.await_state("completed", 2)
        self.assertEqual(len(self.printed()), 1)

    def test_a_job_that_may_be_on_paper_is_aborted_and_never_repeated(self):
        self.printer.control({"fault": {"cut-after-in": 200}})
        self.print(b"line of text\n" * 100)
        self.assertIn("unconfirmed: link lost", self.await_state("aborted"))
        self.print(b"the next one\n")
        self.await_state("completed", 2)
        self.assertEqual(self.jobs()[1][0], "aborted")

    def test_text_that_is_no_utf8_is_aborted_and_says_why(self):
        self.print(b"Caf\xe9\n")
        self.assertEqual(self.await_state("aborted"), "this is no UTF-8 at byte 3 of the text")


class Restarting(Application):
    def restart(self):
        self.kill(self.application)
        self.start()

    def test_jobs_that_waited_are_printed_once_after_a_kill(self):
        self.printer.set(coverOpen=True)
        for number in (1, 2, 3):
            self.print(b"job %d\n" % number)
        eventually(lambda: self.jobs()[1][1] == "waiting: cover open", "the job waits")
        self.saved(1)
        eventually(lambda: 'id="3"' in (self.folder / "state/printers.conf").read_text(), "all are saved")
        self.restart()
        self.printer.set(coverOpen=False)
        for job in (1, 2, 3):
            self.await_state("completed", job)
        self.assertEqual([text.split("\n")[0] for text in self.printed()], ["job 1", "job 2", "job 3"])

    def test_a_job_that_was_being_printed_at_a_kill_is_told_and_not_repeated(self):
        self.printer.set(speed=200)
        self.print(b"line of text\n" * 200)
        eventually(lambda: self.printer.state()["printedBytes"] > 100, "the job is under way")
        self.saved(1)
        self.restart()
        self.assertIn("unconfirmed", self.await_state("aborted"))
        self.printer.set(speed=0)
        self.print(b"the next one\n")
        self.await_state("completed", 2)
        self.assertLessEqual("".join(self.printed()).count("line of text"), 200)

    def test_a_job_that_was_completed_is_not_printed_again(self):
        self.print(TEXT)
        self.await_state("completed")
        self.restart()
        self.print(b"the next one\n")
        self.await_state("completed", 2)
        self.assertEqual(len(self.printed()), 2)


class Conforming(Application):
    def test_it_passes_the_tests_of_ipp_but_for_those_of_the_framework(self):
        eventually(lambda: "printer-up-time (integer) = 0" not in self.ipptool("get-printer-attributes.test"), "a second is over")
        document = self.file("document", TEXT)
        for test in ("ipp-1.1", "ipp-2.0", "ipp-everywhere"):
            answer = self.ipptool(f"{test}.test", "-f", document)
            self.assertIn("[PASS]", answer)
            expected = set(re.findall(r"EXPECTED: (\S+)", answer))
            self.assertLessEqual(expected, LEFT_TO_THE_FRAMEWORK, f"{test}: {answer}")


class Listening(Case):
    def test_others_are_listened_to_only_with_a_password(self):
        result = subprocess.run([APPLICATION, "server", "-o", f"state-directory={self.folder}", "-o", "listen-hostname=*"],
                                capture_output=True, text=True, timeout=30, env=os.environ | {"TMPDIR": str(self.folder)})
        self.assertNotEqual(result.returncode, 0)
        self.assertIn("password-file=FILE", result.stderr)

    def test_a_state_that_cannot_be_kept_is_told(self):
        place = self.file("file", b"")
        result = subprocess.run([APPLICATION, "server", "-o", f"state-directory={place}"], capture_output=True, text=True,
                                timeout=30, env=os.environ | {"TMPDIR": str(self.folder)})
        self.assertNotEqual(result.returncode, 0)
        self.assertIn("cannot be made", result.stderr)


if __name__ == "__main__":
    main()
