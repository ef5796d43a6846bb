"""A queue without a driver of its own: the print system's filters make raster of a document, and the printer application prints it."""

import subprocess
from pathlib import Path

import pictures
from application import Application
from harness import main
from queues import SETTLED, QueueCase, eventually, printed
from scheduler import as_nobody

INSTALLED = Path("/usr/lib/cups")
DOTS_PER_INCH, MILLIMETRE = 203, 72 / 25.4

# An upright page of 80 by 200 mm whose marks would differ if the page were turned or mirrored.
MARKS = b"""0.8 w 20 300 187 240 re S
30 460 60 60 re f
90 320 m 200 320 l 200 420 l f
BT /F 26 Tf 40 430 Td (TOTAL 12.40) Tj ET
"""


def pdf(content: bytes, width: float, height: float) -> bytes:
    """A document of one page; sizes in points."""
    objects = [b"<</Type/Catalog/Pages 2 0 R>>", b"<</Type/Pages/Kids[3 0 R]/Count 1>>",
               b"<</Type/Page/Parent 2 0 R/MediaBox[0 0 %.2f %.2f]/Contents 4 0 R/Resources<</Font<</F 5 0 R>>>>>>" % (width, height),
               b"<</Length %d>>stream\n%sendstream" % (len(content), content),
               b"<</Type/Font/Subtype/Type1/BaseFont/Helvetica-Bold>>"]
    file, places = b"%PDF-1.4\n", []
    for number, body in enumerate(objects, 1):
        places.append(len(file))
        file += b"%d 0 obj\n%s\nendobj\n" % (number, body)
    table = b"".join(b"%010d 00000 n \n" % place for place in places)
    return file + (b"xref\n0 %d\n0000000000 65535 f \n%strailer<</Size %d/Root 1 0 R>>\nstartxref\n%d\n%%%%EOF\n"
                   % (len(objects) + 1, table, len(objects) + 1, len(file)))


class DriverlessQueue(Application, QueueCase):
    """The queue `till` of a scheduler, for the printer `till` of the application."""

    back_ends = {"ipp": INSTALLED / "backend/ipp"}

    def setUp(self):
        super().setUp()
        for folder in ("charsets", "data", "fonts"):
            if (Path("/usr/share/cups") / folder).exists():
                (self.scheduler.folder / "data" / folder).symlink_to(Path("/usr/share/cups") / folder)
        subprocess.run(["lpadmin", "-h", self.scheduler.socket, "-p", "till", "-E", "-m", "everywhere", "-v", self.client.uri],
                       check=True, capture_output=True, **as_nobody())
        # The scheduler asks the printer for its formats only after it has created the queue. Until then the queue
        # passes documents on unchanged.
        eventually(lambda: "Raw" not in self.scheduler.printer("till")["printer-make-and-model"][0], "the queue knows its printer")

    def print_file(self, name: str, contents: bytes, *options: str) -> int:
        file = Path(self.file(name, contents))
        said = subprocess.run(["lp", "-h", self.scheduler.socket, "-d", "till", *options, file], check=True, capture_output=True,
                              text=True, **as_nobody())
        return int(said.stdout.split("till-")[1].split()[0])

    def picture(self) -> Path:
        """The picture of the only receipt."""
        found, = self.receipt_files("png", 1)
        return found

    def test_a_pdf_job_is_confirmed_and_the_receipt_looks_like_the_page(self):
        page = pdf(MARKS, 80 * MILLIMETRE, 200 * MILLIMETRE)
        self.assertSettles(self.print_file("page.pdf", page), "completed")
        drawn = subprocess.run(["gs", "-q", "-sDEVICE=pgmraw", f"-r{DOTS_PER_INCH}", "-o", "-", self.folder / "page.pdf"],
                               check=True, capture_output=True).stdout
        ours, own = pictures.inked(pictures.of_receipt(self.picture())), pictures.inked(pictures.of_grey_map(drawn))
        self.assertAlmostEqual(len(ours), len(own), delta=3, msg="its height in dots")
        self.assertAlmostEqual(len(ours[0]), len(own[0]), delta=3, msg="its width in dots")
        differences = [abs(one - other) for one, other in zip(pictures.shares(ours, 16, 24), pictures.shares(own, 16, 24))]
        self.assertLess(sum(differences) / len(differences), 0.01)
        self.assertLess(max(differences), 0.1)

    def test_two_copies_take_twice_the_bytes_of_one(self):
        page = pdf(MARKS, 80 * MILLIMETRE, 200 * MILLIMETRE)
        self.assertSettles(self.print_file("page.pdf", page), "completed")
        once = printed(self.printer)
        self.assertSettles(self.print_file("page.pdf", page, "-n", "2"), "completed")
        self.assertAlmostEqual((printed(self.printer) - once) / once, 2, delta=0.05)

    def test_a_text_is_printed_and_confirmed(self):
        self.assertSettles(self.print_file("receipt.txt", b"Espresso  2.20\nCake  3.80\n"), "completed")
        ink = pictures.inked(pictures.of_receipt(self.picture()))
        self.assertGreater(sum(map(sum, ink)), 500)

    def test_a_job_waits_until_the_cover_is_closed_and_is_then_completed(self):
        self.printer.set(coverOpen=True)
        job = self.print_file("page.pdf", pdf(MARKS, 80 * MILLIMETRE, 200 * MILLIMETRE))
        eventually(lambda: "cover-open" in " ".join(self.scheduler.reasons("till")), "the queue shows the cover")
        self.assertNotIn(self.scheduler.state(job), SETTLED)
        self.printer.set(coverOpen=False)
        self.assertSettles(job, "completed")
        self.assertTrue(self.picture())

    def test_a_job_that_may_be_on_paper_is_not_printed_again(self):
        """The print system itself decides the state of this job, and may call it completed: see the guide."""
        page = pdf(MARKS, 80 * MILLIMETRE, 200 * MILLIMETRE)
        self.assertSettles(self.print_file("page.pdf", page), "completed")
        whole = printed(self.printer)
        self.printer.control({"fault": {"cut-after-in": whole // 2}})
        self.scheduler.await_state(self.print_file("cut.pdf", page), *SETTLED)
        self.printer.control({"clear": "faults"})
        begun = printed(self.printer) - whole
        self.assertLess(begun, whole)
        self.assertSettles(self.print_file("next.pdf", page), "completed")
        self.assertEqual(printed(self.printer), whole + begun + whole)
        self.assertEqual(self.client.jobs(), {1: "completed", 2: "aborted", 3: "completed"})



if __name__ == "__main__":
    main()
