"""Queues that share a printer, and printers that share a queue."""

from harness import main
from queues import RECEIPT, QueueCase, eventually, ipp


class OnePrinterOfTwoQueues(QueueCase):
    def test_a_printer_of_two_queues_prints_their_jobs_one_after_the_other(self):
        receipts = self.folder / "receipts"
        printer = self.simulator("tcp:0", "--receipts", str(receipts), "--set", "speed=200")
        first, second = self.queue(printer, "first"), self.queue(printer, "second")
        jobs = [self.print_job(first, b"for the first queue\n" * 20)]
        eventually(lambda: printer.state()["printedBytes"] > 0, "the first job is under way")
        jobs.append(self.print_job(second, b"for the second queue\n" * 20))
        eventually(lambda: self.scheduler.message(second) == "waiting: another job is on the printer", "the second job waits")
        printer.set(speed=0)
        for job in jobs:
            self.assertSettles(job, "completed")
        printer.control({"quit": True})
        printer.process.wait()
        self.assertEqual("".join(file.read_text() for file in sorted(receipts.glob("*.txt"))),
                         "for the first queue\n" * 20 + "for the second queue\n" * 20)

    def test_a_printer_of_two_queues_is_free_after_its_job_is_canceled(self):
        printer = self.simulator()
        printer.set(coverOpen=True)
        first, second = self.queue(printer, "first"), self.queue(printer, "second")
        waiting = self.print_job(first)
        self.assertWaits(waiting, first, "waiting: cover open", "cover-open-error", "offline-report")
        other = self.print_job(second)
        self.assertWaits(other, second, "waiting: another job is on the printer")
        self.scheduler.on_job(ipp.CANCEL_JOB, waiting)
        self.assertWaits(other, second, "waiting: cover open", "cover-open-error", "offline-report")
        printer.set(coverOpen=False)
        self.assertSettles(other, "completed")
        self.assertEqual(self.copies(printer), 1)


class PrinterClass(QueueCase):
    def setUp(self):
        super().setUp()
        self.printers = [self.simulator(), self.simulator()]
        self.scheduler.add_class("tills", *(self.queue(printer, f"till{number}") for number, printer in enumerate(self.printers)))

    def print_on_class(self) -> int:
        return self.scheduler.print_job("tills", RECEIPT, place="classes")

    def paper(self) -> list[float]:
        return [self.copies(printer) for printer in self.printers]

    def test_a_job_that_one_printer_refuses_is_printed_on_the_next_printer(self):
        self.printers[0].set(coverOpen=True)
        jobs = [self.print_on_class() for _ in range(3)]
        for job in jobs:
            self.assertSettles(job, "completed")
        self.assertEqual(self.paper(), [0, 3])

    def test_a_job_that_all_printers_refuse_is_printed_when_one_of_them_is_ready(self):
        for printer in self.printers:
            printer.set(coverOpen=True)
        job = self.print_on_class()
        for queue in ("till0", "till1"):
            eventually(lambda: "cover-open-error" in self.scheduler.reasons(queue), f"{queue} has refused it")
        self.assertNotIn(self.scheduler.state(job), ("completed", "aborted", "canceled"))
        self.printers[1].set(coverOpen=False)
        self.assertSettles(job, "completed")
        self.assertEqual(self.paper(), [0, 1])

    def test_a_job_that_may_be_on_paper_is_not_printed_on_the_next_printer(self):
        for printer in self.printers:
            printer.control({"fault": {"cut-after-in": 45}})
        self.assertSettles(self.print_on_class(), "held")
        self.assertLessEqual(sum(self.paper()), 1)


if __name__ == "__main__":
    main()
