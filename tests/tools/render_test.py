"""`quorport print` with text in any script, pictures, the drawer, the paper cut and the test page."""

import struct
import zlib

from harness import Case, main, run



def png(width: int, height: int, grey: int, claimed: tuple[int, int] | None = None) -> bytes:
    """A picture in one grey. If `claimed` is given, the header of the file states this width and height instead."""
    def chunk(name: bytes, data: bytes) -> bytes:
        return struct.pack(">I", len(data)) + name + data + struct.pack(">I", zlib.crc32(name + data))

    rows = (b"\0" + bytes([grey]) * width) * height
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", *(claimed or (width, height)), 8, 0, 0, 0, 0))
            + chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b""))


class Rendering(Case):
    def printed(self, contents: bytes, *options: str) -> str:
        """The receipt of the built-in printer, as text."""
        receipt = self.folder / "receipt.txt"
        result = run("-d", "virtual:", "print", self.file("job", contents), "--receipt", str(receipt), "--json",
                     *options)
        self.assertExit(0, result)
        self.assertEqual(result.json()["bytesTotal"], result.json()["bytesAccepted"])
        return receipt.read_text()

    def assertRefused(self, saying: str, contents: bytes, *options: str):
        result = run("-d", "virtual:", "print", self.file("job", contents), "--json", *options)
        self.assertExit(2, result)
        answer = result.json()
        self.assertEqual((answer["outcome"], answer["bytesAccepted"]), ("refused", 0))
        self.assertIn(saying, answer["error"])

    def test_a_line_with_characters_outside_the_code_page_is_drawn_as_an_image(self):
        text = "Total 3.00\nCafé 2 €\nСпасибо\n".encode()
        self.assertRegex(self.printed(text, "--text"), r"\ATotal 3\.00\n\[image 576 x \d+ dots\]\n\Z")
        self.assertRegex(self.printed(text, "--text", "--codepage", "16"),
                         r"\ATotal 3\.00\nCafé 2 €\n\[image 576 x \d+ dots\]\n\Z")

    def test_a_picture_is_scaled_down_to_the_width_of_the_paper(self):
        for width in ("384", "512", "576"):
            self.assertEqual(self.printed(png(1000, 500, 0), "--image", "--width", width).split("\n")[0],
                             f"[image {width} x {500 * int(width) // 1000} dots]")

    def test_a_job_without_text_or_image_option_is_sent_unchanged(self):
        for job in (b"\x1b@text\n", b"\x80\xff\n", "Café\n".encode()):
            result = run("-d", "virtual:", "print", "-", "--json", data=job)
            self.assertEqual(result.json()["bytesTotal"], len(job))

    def test_a_drawer_pulse_precedes_the_print_or_follows_the_paper_cut(self):
        pulse, cut = b"\x1bp\1\x32\xfa", b"\x1dVB\0"
        for options, job in ((("--drawer", "2", "--cut"), pulse + b"x" + cut),
                             (("--drawer", "2", "--drawer-after", "--cut"), b"x" + cut + pulse)):
            taken = []
            peer = self.peer(lambda connection: taken.append(connection.makefile("rb").read()))
            run("-d", peer.place, "print", "-", "--unchecked", *options, data=b"x")
            peer.wait_until_idle()
            self.assertEqual(taken[0], job)

    def test_utf8_data_causes_a_hint_unless_it_is_printed_as_text(self):
        hint = "--text prints the right ones"
        self.assertIn(hint, run("-d", "virtual:", "print", "-", data="Café\n".encode()).err)
        for job, options in ((b"Cafe\n", ()), ("\x1b@Café\n".encode(), ()), (b"Caf\xe9\n", ()),
                             ("Café\n".encode(), ("--text",))):
            self.assertNotIn(hint, run("-d", "virtual:", "print", "-", *options, data=job).err, job)

    def test_characters_without_a_glyph_are_reported(self):
        result = run("-d", "virtual:", "print", "--text", "-", data="\U0010fffd\n".encode())
        self.assertExit(0, result)
        self.assertIn("U+10FFFD", result.err)

    def test_a_file_that_is_neither_text_nor_picture_is_refused_and_nothing_is_sent(self):
        self.assertRefused("invalid UTF-8 at byte 3", b"Caf\xe9\n", "--text")
        self.assertRefused("a control character at byte 0", b"\x1b@", "--text")
        self.assertRefused("not a picture in PNG or JPEG", b"%PDF-1.4", "--image")
        self.assertRefused("64000000", png(8, 2, 0, claimed=(60000, 60000)), "--image")

    def printed_test_page(self, page: str) -> list[str]:
        """The lines of the test page, printed by a printer that has most code pages, but not all."""
        receipt = self.folder / "receipt.txt"
        self.assertExit(0, run("-d", "virtual:,profile=escpos-80", "-e", "escpos", "print", "--test-page", "--codepage",
                               page, "--receipt", str(receipt)))
        return receipt.read_text().splitlines()

    def test_the_test_page_shows_whether_the_printer_has_the_code_page(self):
        there = self.printed_test_page("16")
        self.assertIn("E0  àáâãäåæçèéêëìíîï", there)
        self.assertEqual(sum(line.startswith("[image 576 x ") for line in there), 8)
        letters = "E0  абвгдежзийклмноп"
        self.assertIn(letters, self.printed_test_page("46"))
        self.assertNotIn(letters, self.printed_test_page("6:1251"))

    def test_wrong_rendering_options_are_reported_before_the_job_is_sent(self):
        for saying, options in (("--width", ("--text", "--width", "500")), ("--drawer", ("--drawer", "3")),
                                ("--text", ("--codepage", "16")), ("--image", ("--text", "--image")),
                                ("16:1252", ("--text", "--codepage", "200")), ("FILE", ("--test-page", "--codepage", "16"))):
            self.assertRefused(saying, b"text", *options)
        for saying, options in (("--codepage", ("--test-page",)), ("FILE", ("--codepage", "16"))):
            result = run("-d", "virtual:", "print", *options)
            self.assertExit(2, result)
            self.assertIn(saying, result.err)


if __name__ == "__main__":
    main()
