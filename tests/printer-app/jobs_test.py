"""Jobs of the printer application, from their arrival to their end."""

import gzip
import random
import re
import threading

import ipp
from application import RAW, Application, keyword
from documents import apple, page, pwg
from harness import eventually, main

ANY = "application/octet-stream"
INCOMPLETE = "the document is incomplete; print it again"
PAGE = page(639, 320, 80, 40)
TEXT = "Café 2,40 €\nTotal 2.40\n".encode()


class Jobs(Application):
    def test_a_job_is_completed_when_the_printer_has_confirmed_it(self):
        job = self.print(TEXT, "text/plain", keyword("quor-drawer", "drawer-1"))
        self.assertEqual(self.await_state("completed", job), "the printer confirmed the job")
        (receipt,) = self.printed(1)
        self.assertRegex(receipt, r"\A\[image 576 x \d+ dots\]\nTotal 2\.40\n")
        self.assertIn("partial cut", receipt)
        (record,) = self.records(1)
        self.assertEqual((record["drawer"], record["cuts"], record["unknown"]), (1, 1, []))

    def test_a_job_that_the_printer_refuses_is_printed_when_the_printer_is_ready(self):
        self.printer.set(coverOpen=True)
        job = self.print(TEXT)
        self.await_message("waiting: cover open", job)
        self.assertEqual(self.client.printer()["printer-state-reasons"], ["cover-open"])
        self.assertEqual(self.printed(), [])
        self.printer.set(coverOpen=False)
        self.await_state("completed", job)
        self.assertEqual(len(self.printed(1)), 1)
        eventually(lambda: self.client.printer()["printer-state-reasons"] == ["none"], "the reason is gone")

    def test_a_hundred_waiting_jobs_are_printed_once_in_their_order_of_arrival(self):
        self.printer.set(coverOpen=True)
        texts = [f"job {number}" for number in range(1, 101)]
        for text in texts:
            self.print(text.encode() + b"\n")
        self.await_message("waiting: cover open", 1)
        self.printer.set(coverOpen=False)
        for job in range(1, 101):
            self.await_state("completed", job)
        self.assertEqual([text.split("\n")[0] for text in self.printed(100)], texts)

    def test_raster_jobs_and_text_jobs_wait_in_the_same_queue(self):
        self.printer.set(coverOpen=True)
        first = self.print(pwg(PAGE), "image/pwg-raster")
        self.await_message("waiting: cover open", first)
        others = ((b"job 2\n", "text/plain"), (apple(PAGE), "image/urf"), (pwg(PAGE), ANY), (b"job 5\n", "text/plain"))
        jobs = [first, *(self.print(contents, kind) for contents, kind in others)]
        self.printer.set(coverOpen=False)
        for job in jobs:
            self.await_state("completed", job)
        self.assertEqual([text.split(" ")[0] for text in self.printed(5)], ["[image", "job", "[image", "[image", "job"])

    def test_a_waiting_job_can_be_canceled(self):
        self.printer.set(coverOpen=True)
        job = self.print(TEXT)
        self.await_message("waiting: cover open", job)
        self.client.on_job(ipp.CANCEL_JOB, job)
        self.await_state("canceled", job)
        self.printer.set(coverOpen=False)
        self.await_state("completed", self.print(TEXT))
        self.assertEqual(len(self.printed(1)), 1)

    def test_a_job_that_a_user_holds_is_printed_after_its_release(self):
        self.printer.set(coverOpen=True)
        first = self.print(b"job 0\n")
        self.await_message("waiting: cover open", first)
        held, last = self.print(b"job 1\n"), self.print(b"job 2\n")
        self.client.on_job(ipp.HOLD_JOB, held)
        self.printer.set(coverOpen=False)
        self.await_state("completed", last)
        self.assertEqual(self.client.job(held)[0], "held")
        self.client.on_job(ipp.RELEASE_JOB, held)
        self.await_state("completed", held)
        self.assertEqual([text.split("\n")[0] for text in self.printed(3)], ["job 0", "job 2", "job 1"])

    def test_a_job_that_may_be_on_paper_is_aborted_and_never_repeated(self):
        self.printer.control({"fault": {"cut-after-in": 200}})
        job = self.print(b"line of text\n" * 100)
        self.assertIn("unconfirmed: link lost", self.await_state("aborted", job))
        self.await_state("completed", self.print(b"the next one\n"))
        self.assertEqual(self.client.job(job)[0], "aborted")


class PrinterConditions(Application):
    model = "line-80"

    def test_each_printer_condition_is_listed_in_printer_state_reasons(self):
        for condition, reason in {"headUpError": "other", "receiptPaperNearEmptyInner": "media-low", "jamError": "media-jam",
                                  "overTemp": "other"}.items():
            self.printer.set(**{condition: True})
            eventually(lambda: self.client.printer()["printer-state-reasons"] == [reason], f"{condition} is {reason}")
            self.printer.set(**{condition: False})


class DisconnectedClient(Application):
    """Clients that disappear while they send a document."""

    def check(self, contents: bytes, kind: str, *sent: int):
        for count in sent:
            self.client.leave_in_upload(contents, kind, count)
        self.check_aborted(sum(count > 0 for count in sent))  # the framework makes no job for an empty document

    def check_aborted(self, count: int):
        """Checks that `count` jobs were aborted because of their clients, and that a later job is printed."""
        last = self.print(b"the next one\n", RAW)
        self.await_state("completed", last)
        eventually(lambda: list(self.client.jobs().values()).count("aborted") == count, f"{count} jobs are aborted")
        self.assertEqual({self.client.job(job)[1] for job in self.client.jobs() if job != last}, {INCOMPLETE})
        self.assertEqual(self.printed(1), ["the next one\n"])

    def test_a_client_that_disconnects_during_a_text_prints_nothing(self):
        text = b"line of text\n" * 1000
        self.check(text, "text/plain", 0, 1, 6500, len(text) - 1)

    def test_a_client_that_disconnects_during_a_raster_page_prints_nothing(self):
        whole = pwg(PAGE)
        self.check(whole, "image/pwg-raster", 0, 2, 1000, len(whole) - 50, len(whole) - 1)

    def test_a_client_that_disconnects_between_two_raster_pages_prints_nothing(self):
        self.check(apple(PAGE, PAGE), "image/urf", len(apple(PAGE)))

    def test_a_client_that_disconnects_during_command_data_prints_nothing(self):
        self.check(b"line of text\n" * 1000, RAW, 0, 1, 6500)

    def test_a_client_that_disconnects_between_two_chunks_prints_nothing(self):
        for kind in ("text/plain", RAW):
            self.client.begin_upload_in_chunks(b"line of text\n" * 1000, kind, 6500).close()
        self.check_aborted(2)

    def test_a_document_that_arrives_in_chunks_is_printed(self):
        with self.client.begin_upload_in_chunks(b"the next one\n", RAW, 4) as connection:
            connection.sendall(b"9\r\nnext one\n\r\n0\r\n\r\n")
            self.assertEqual(connection.recv(4), b"HTTP")
        self.await_state("completed", 1)
        self.assertEqual(self.printed(1), ["the next one\n"])

    def test_damaged_compressed_data_prints_nothing(self):
        damaged = gzip.compress(random.Random(1).randbytes(5000))[:-1000] + bytes(1000)
        with self.client.begin_upload(damaged, RAW, len(damaged), "gzip") as connection:
            self.assertEqual(connection.recv(1), b"", "the application ends the connection")
        self.check_aborted(1)

    def test_a_client_that_is_silent_before_its_document_is_disconnected(self):
        self.restart("upload-timeout=1")
        with self.client.begin_upload(pwg(PAGE), "image/pwg-raster", 0) as connection:
            self.assertEqual(connection.recv(1), b"", "the application ends the connection")

    def test_the_document_of_a_silent_client_is_aborted(self):
        self.restart("upload-timeout=1")
        with self.client.begin_upload(pwg(PAGE), "image/pwg-raster", len(pwg(PAGE)) - 1) as connection:
            self.assertEqual(connection.recv(1), b"", "the application ends the connection")
            self.check_aborted(1)

    def test_an_incomplete_document_that_waits_is_still_aborted_after_a_restart(self):
        self.printer.set(coverOpen=True)
        first = self.print(b"the first one\n", RAW)
        self.await_message("waiting: cover open", first)
        self.client.leave_in_upload(b"line of text\n" * 1000, RAW, 6500)
        eventually(lambda: re.search('filename=.* id="2"', self.kept()), "the document is saved")
        self.restart()
        self.printer.set(coverOpen=False)
        self.assertEqual(self.await_state("aborted", 2), INCOMPLETE)

    def test_other_clients_are_answered_while_clients_disconnect(self):
        page, left = pwg(PAGE), []

        def leave_often():
            while len(left) < 200:
                left.append(self.client.leave_in_upload(page, "image/pwg-raster", 1000))

        leaving = threading.Thread(target=leave_often)
        leaving.start()
        while leaving.is_alive():
            self.print(b"one of many\n", RAW)
        leaving.join()
        self.assertEqual(len(left), 200)


if __name__ == "__main__":
    main()
