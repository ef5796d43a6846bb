"""Jobs of several documents, such as a receipt between two banner pages, and jobs of several copies."""

import ipp
from harness import main
from queues import RECEIPT, QueueCase, eventually
from scheduler import BANNER, DRIVER, TEXT

FIRST, SECOND = b"the first document\n" * 3, b"the second document\n" * 3


class DocumentCase(QueueCase):
    def setUp(self):
        super().setUp()
        self.receipts = self.folder / "receipts"
        self.printer = self.simulator("tcp:0", "--receipts", str(self.receipts))

    def filtered_queue(self, name: str = "till") -> str:
        """A queue with a filter. The back end receives the jobs of such a queue through a pipe."""
        place = self.printer.place.removeprefix("tcp:")
        self.scheduler.add_queue(name, f"quor:/tcp/{place}", driver=DRIVER)
        return name

    def paper(self) -> str:
        """Ends the printer. Returns the text of all its receipts, in order."""
        self.printer.control({"quit": True})
        self.printer.process.wait()
        return "".join(receipt.read_text() for receipt in sorted(self.receipts.glob("*.txt")))

    def assertPaper(self, *documents: bytes):
        self.assertEqual(self.paper(), b"".join(documents).decode())


class Documents(DocumentCase):
    def test_all_documents_of_a_job_are_printed_once_by_a_raw_queue(self):
        job = self.scheduler.print_documents(self.queue(self.printer), FIRST, SECOND)
        self.assertSettles(job, "completed")
        self.assertPaper(FIRST, SECOND)

    def test_all_documents_of_a_job_are_printed_once_by_a_queue_with_a_filter(self):
        job = self.scheduler.print_documents(self.filtered_queue(), FIRST, SECOND, FIRST, kind=TEXT)
        self.assertSettles(job, "completed")
        self.assertPaper(FIRST, SECOND, FIRST)

    def test_documents_that_a_person_sends_again_are_printed_again(self):
        job = self.scheduler.print_documents(self.filtered_queue(), FIRST, SECOND, kind=TEXT)
        self.assertSettles(job, "completed")
        self.scheduler.on_job(ipp.RESTART_JOB, job)
        eventually(lambda: self.copies(self.printer, len(FIRST + SECOND)) == 2, "the second print")
        self.assertSettles(job, "completed")
        self.assertPaper(FIRST, SECOND, FIRST, SECOND)


class Banners(DocumentCase):
    SHEETS = ipp.attribute(ipp.NAME, "job-sheets", "slip", "slip")

    def test_banners_are_printed_before_and_after_a_receipt_of_a_raw_queue(self):
        self.assertSettles(self.print_job(self.queue(self.printer), RECEIPT, self.SHEETS), "completed")
        self.assertPaper(BANNER, RECEIPT, BANNER)

    def test_banners_are_printed_before_and_after_a_receipt_that_passes_a_filter(self):
        job = self.scheduler.print_job(self.filtered_queue(), RECEIPT, self.SHEETS, kind=TEXT)
        self.assertSettles(job, "completed")
        self.assertPaper(BANNER, RECEIPT, BANNER)


class Copies(DocumentCase):
    THREE = ipp.attribute(ipp.INTEGER, "copies", 3)

    def test_each_copy_is_confirmed_separately(self):
        job = self.print_job(self.queue(self.printer), RECEIPT, self.THREE)
        self.assertSettles(job, "completed")
        self.assertEqual(self.story(job).count("PAGE: "), 3)
        self.assertPaper(RECEIPT * 3)

    def test_all_copies_are_confirmed_together_if_the_queue_option_is_set(self):
        job = self.print_job(self.queue(self.printer, query="?copies=together"), RECEIPT, self.THREE)
        self.assertSettles(job, "completed")
        self.assertEqual(self.story(job).count("PAGE: "), 1)
        self.assertPaper(RECEIPT * 3)


if __name__ == "__main__":
    main()
