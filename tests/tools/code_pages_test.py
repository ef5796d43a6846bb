"""The characters of every code page, compared with Python's tables."""

import codecs
import signal
import socket

from harness import DEADLINE, Case, main, receive

# The code pages of the profile escpos-80: the number of each page, and Python's name for it.
COMMON = {0: "cp437", 2: "cp850", 3: "cp860", 4: "cp863", 5: "cp865", 13: "cp857", 14: "cp737", 15: "iso8859-7",
          16: "cp1252", 17: "cp866", 18: "cp852", 19: "cp858", 21: "cp874", 32: "cp720", 33: "cp775", 34: "cp855",
          35: "cp861", 36: "cp862", 37: "cp864", 38: "cp869", 39: "iso8859-2", 40: "iso8859-15", 44: "cp1125",
          45: "cp1250", 46: "cp1251", 47: "cp1253", 48: "cp1254", 49: "cp1255", 50: "cp1256", 51: "cp1257",
          52: "cp1258", 53: "kz1048"}
MISSING = "\ufffd"


def character(page: str, byte: int) -> str:
    """The character that printers print for a byte of a code page. A control character or no character is MISSING."""
    if (page, byte) == ("cp857", 0xd5):
        return "€"  # printers print the euro sign here; Python's table has no character
    text = codecs.decode(bytes([byte]), page, "replace")
    return text if ord(text) >= 0xa0 else MISSING


class CodePages(Case):
    def printed(self, profile: str, job: bytes) -> list[str]:
        """The lines of the receipt of a job."""
        folder = self.folder / profile
        simulator = self.simulator("tcp:0", "--set", f"profile={profile}", "--receipts", str(folder))
        with simulator.connect() as host:
            host.sendall(job + b"\x1dr\1")
            receive(host, 1)
            host.shutdown(socket.SHUT_WR)
            host.settimeout(DEADLINE)
            host.recv(1)
        simulator.stop(signal.SIGTERM)
        return (folder / "receipt-0001.txt").read_text().split("\n")

    def test_each_code_page_has_the_characters_that_python_maps(self):
        rows = [range(first, first + 32) for first in range(0x80, 0x100, 32)]
        job = b"".join(b"\x1bt%c" % number + b"".join(bytes(row) + b".\n" for row in rows) for number in COMMON)
        lines = iter(self.printed("escpos-80", job))
        for page in COMMON.values():
            for row in rows:
                expected = "".join(character(page, byte) for byte in row) + "."
                self.assertEqual(next(lines), expected, page)

    def test_printers_for_east_asia_print_multi_byte_text(self):
        for profile, select, encoding, text in (("japan", b"\x1cC\1", "cp932", "領収書 東京都 円"),
                                                ("china", b"", "gb18030", "收据 北京市 龦€"),
                                                ("taiwan", b"", "big5", "收據 臺北市"),
                                                ("korea", b"", "euc_kr", "영수증 서울시")):
            line = self.printed(f"escpos-80-{profile}", select + text.encode(encoding) + b"\n")[0]
            self.assertEqual(line, text, profile)


if __name__ == "__main__":
    main()
