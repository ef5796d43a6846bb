"""Jobs of a queue while the disk of the journal, or the disk of the scheduler, is full. Only root can mount the small
disks of these tests."""

import http.client
import os
import subprocess
import unittest

from harness import main
from queues import RECEIPT, QueueCase, eventually, ipp, printed
from scheduler import NOBODY


@unittest.skipUnless(os.geteuid() == 0, "only root can mount a file system")
class FullDisk(QueueCase):
    def mount(self, folder: str):
        """Mounts a disk of one mebibyte over a folder of the scheduler."""
        self.scheduler.end()
        self.disk = self.scheduler.folder / folder
        options = f"size=1m,uid={NOBODY},gid={NOBODY},mode=755"
        subprocess.run(["mount", "-t", "tmpfs", "-o", options, "tmpfs", self.disk], check=True)
        self.addCleanup(subprocess.run, ["umount", "--lazy", self.disk], check=True)
        (self.disk / "tmp").mkdir()
        os.chown(self.disk / "tmp", NOBODY, NOBODY)
        self.scheduler.start()

    def fill(self):
        """Fills the disk to the last byte."""
        with (self.disk / "filler").open("wb", buffering=0) as file:
            try:
                while file.write(bytes(4096)):
                    pass
            except OSError:
                return

    def make_room(self):
        (self.disk / "filler").unlink()


class FullDiskOfTheJournal(FullDisk):
    def setUp(self):
        super().setUp()
        self.mount("cache")
        self.printer = self.simulator()
        self.queue(self.printer)

    def test_a_job_waits_unsent_while_the_disk_of_the_journal_is_full(self):
        self.fill()
        job = self.print_job("till")
        eventually(lambda: "waiting: the journal" in self.scheduler.message("till"), "the journal is named")
        self.assertEqual(self.copies(self.printer), 0)
        self.make_room()
        self.assertSettles(job, "completed")
        self.assertEqual(self.copies(self.printer), 1)

    def test_a_job_is_printed_once_if_the_disk_fills_during_printing(self):
        self.printer.set(speed=200)
        job = self.print_job("till", RECEIPT * 20)
        eventually(lambda: self.printer.state()["printedBytes"] > 0, "the job is under way")
        self.fill()
        self.printer.set(speed=0)
        self.assertSettles(job, "completed")
        self.assertEqual(self.copies(self.printer, len(RECEIPT) * 20), 1)
        self.make_room()
        self.assertSettles(self.print_job("till", RECEIPT * 20), "completed")
        self.assertEqual(self.copies(self.printer, len(RECEIPT) * 20), 2)


class FullDiskOfTheSpool(FullDisk):
    def setUp(self):
        super().setUp()
        self.mount("spool")
        self.printer = self.simulator()
        self.queue(self.printer)

    def test_a_job_is_refused_while_the_disk_of_the_spool_is_full_and_the_next_is_printed(self):
        self.fill()
        with self.assertRaises((ipp.Refused, OSError, http.client.HTTPException)):
            self.print_job("till", RECEIPT * 10_000)
        self.make_room()
        self.assertSettles(self.print_job("till"), "completed")
        self.assertEqual(self.copies(self.printer), 1)

    def test_a_held_job_whose_record_is_lost_is_not_printed_twice(self):
        self.printer.set(coverOpen=True)
        job = self.print_job("till", RECEIPT * 40)
        self.assertWaits(job, "till", "waiting: cover open", "cover-open-error", "offline-report")
        self.fill()
        self.printer.control({"fault": {"cut-after-in": 300}})
        self.printer.set(coverOpen=False)
        self.assertSettles(job, "held")
        self.printer.control({"clear": "faults"})
        before = printed(self.printer)
        self.scheduler.end()
        self.scheduler.start()
        self.make_room()
        self.assertSettles(self.print_job("till"), "completed")
        self.assertEqual(printed(self.printer) - before, len(RECEIPT), "the next job alone")
        self.assertNotEqual(self.scheduler.state(job), "completed")



if __name__ == "__main__":
    main()
