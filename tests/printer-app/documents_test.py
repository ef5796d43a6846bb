"""Documents are printed in every format that a client may send."""

import documents
import ipp
from application import RAW, ROOT, Application, collection, keyword
from documents import FIGURE, apple, figures, jpeg, page, png, pwg
from harness import main

# A page is 80 mm wide at 203 dots an inch. The print head has only 576 dots, so the page loses 31 dots at its left.
PAPER, LOST = 639, 31
EDGE = 48  # the left margin in the picture of a receipt, in dots
PAGE = page(PAPER, 320, LOST + 48, 40)
PICTURE = page(320, 160, 48, 40)


class DocumentFormats(Application):
    def figure(self, contents: bytes, kind: str) -> tuple[int, list[str]]:
        """The one figure that the document prints: its left edge, and its cells."""
        job = self.print(contents, kind)
        self.await_state("completed", job)
        (found,) = figures(self.receipt_files("png", job)[-1].read_bytes())
        return found

    def test_each_image_format_prints_the_same_picture_at_the_same_place(self):
        for contents, kind in ((pwg(PAGE), "image/pwg-raster"), (apple(PAGE), "image/urf"), (png(PICTURE), "image/png"),
                               (jpeg(PICTURE), "image/jpeg")):
            self.assertEqual(self.figure(contents, kind), (EDGE + 48, list(FIGURE)), kind)

    def test_white_rows_at_the_top_and_the_bottom_of_a_page_are_not_printed(self):
        self.await_state("completed", self.print(pwg(page(PAPER, 3000, 48, 1400)), "image/pwg-raster"))
        self.assertEqual(self.printed(1)[0].split("\n")[0], f"[image 576 x {documents.HEIGHT} dots]")

    def test_a_page_of_any_size_is_printed(self):
        for rows in (page(576, 3000, 48, 2000), page(2480, 300, 48 + (2480 - 576) // 2, 40), page(576, 4000, 48, 3800)):
            self.assertEqual(self.figure(pwg(rows), "image/pwg-raster"), (EDGE + 48, list(FIGURE)))

    def test_a_raw_document_is_sent_to_the_printer_unchanged(self):
        self.await_state("completed", self.print(b"plain bytes\n", RAW))
        self.assertEqual(self.printed(1), ["plain bytes\n"])

    def test_a_text_may_have_any_length(self):
        self.await_state("completed", self.print(b"word " * 40000))
        self.assertEqual(self.printed(1)[0].replace("\n", " ").count("word "), 40000)

    def test_a_character_without_a_glyph_is_drawn_as_a_box_and_logged(self):
        self.await_state("completed", self.print("\U0010fffd\n".encode()))
        self.assertRegex(self.printed(1)[0], r"\A\[image 576 x \d+ dots\]")
        self.assertIn("U+10FFFD", self.log())

    def test_a_custom_paper_length_is_accepted(self):
        size = {"media-size": {"x-dimension": 8000, "y-dimension": 43210}}
        self.await_state("completed", self.print(pwg(PAGE), "image/pwg-raster", collection("media-col", size)))
        self.await_state("completed", self.print(b"text\n", "text/plain", collection("media-col", size)))
        self.assertEqual(len(self.printed(2)), 2)


class UnprintableDocument(Application):
    def message(self, contents: bytes, kind: str) -> str:
        return self.await_state("aborted", self.print(contents, kind))

    def test_a_job_with_an_unprintable_document_is_aborted_with_the_reason(self):
        for contents, kind, why in (
                (b"Caf\xe9\n", "text/plain", "invalid UTF-8 at byte 3 of the text"),
                (png([b"\0" * 8], (60000, 60000)), "image/png", "the most is 64000000 in all"),
                (pwg(PAGE, height=4_000_000_000), "image/pwg-raster", "the most is 64000000 in all"),
                (pwg(PAGE, height=321), "image/pwg-raster", "incomplete"),
                (pwg(), "image/pwg-raster", "no page"),
                (b"a line of text\n", "image/urf", "not raster data"),
                (pwg(PAGE, bits=24), "image/pwg-raster", "8 bits of grey"),
                (png(PICTURE)[:200], "image/png", "incomplete"),
                (jpeg(PICTURE)[:100], "image/jpeg", "cannot be read")):
            self.assertIn(why, self.message(contents, kind))
        self.assertEqual(self.printed(), [])


class JobOptions(Application):
    def record(self, contents: bytes, kind: str, *attributes: bytes) -> dict:
        """Prints a document, and returns the printer's record of the printed receipt."""
        job = self.print(contents, kind, *attributes)
        self.await_state("completed", job)
        return self.records(job)[-1]

    def test_the_paper_is_cut_as_the_job_option_says(self):
        pages = pwg(PAGE, PAGE)
        for value, cuts in (("document", 1), ("job", 1), ("page", 2), ("none", 0)):
            self.assertEqual(self.record(pages, "image/pwg-raster", keyword("quor-cut", value))["cuts"], cuts, value)

    def test_the_paper_is_cut_after_each_copy_unless_one_cut_per_job_is_set(self):
        copies = ipp.attribute(ipp.INTEGER, "copies", 3)
        for kind, contents in (("text/plain", b"text\n"), ("image/png", png(PICTURE)), ("image/pwg-raster", pwg(PAGE)),
                               (RAW, b"raw\n\x1dV\0")):
            self.assertEqual(self.record(contents, kind, copies)["cuts"], 3, kind)
        self.assertEqual(self.record(b"text\n", "text/plain", copies, keyword("quor-cut", "job"))["cuts"], 1)
        self.assertEqual(self.printed(5)[-1].count("text\n"), 3)

    def test_a_job_of_any_format_can_open_the_drawer(self):
        for kind, contents in (("text/plain", b"text\n"), ("image/png", png(PICTURE)), (RAW, b"raw\n"),
                               ("image/pwg-raster", pwg(PAGE))):
            for number in (1, 2):
                record = self.record(contents, kind, keyword("quor-drawer", f"drawer-{number}"))
                self.assertEqual(record["drawer"], 1, kind)

    def test_paper_is_cut_after_a_raw_document_only_if_quor_cut_is_set(self):
        self.assertEqual(self.record(b"raw\n", RAW)["cuts"], 0)
        self.assertEqual(self.record(b"raw\n", RAW, keyword("quor-cut", "job"))["cuts"], 1)


if __name__ == "__main__":
    main()
