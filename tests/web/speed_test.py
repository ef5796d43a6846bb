"""How soon the page shows a printed line, and how the page grows in a long day."""

import itertools
import socket
import statistics
import time

from chromium import Page, frames
from harness import main
from png import Picture
from shop import Shop, ShopCase

LINES = 40
GOAL = 0.1  # seconds

BLACK_LINE, BARE_LINE = b"\xdb" * 48 + b"\n", b"\n"  # full blocks of the code page 437
WIDTH, HEIGHT = 360, 480

LINE = b"2 Espresso        3.60\n"
CUT_RECEIPT = LINE * 4 + b"\x1dVA\0"
LONG_LINE = LINE + b"\x1bJ\x0a"  # 40 dots high, at eight dots a millimetre
LONG_LINES_OF_A_METRE = 200
RECEIPTS = 1000
FIRST = 200  # after this many receipts, each list of the page has its full length
HEAP_GROWTH = 1 << 20  # bytes


class PageSpeed(ShopCase):
    def place_of_the_newest_line(self, page: Page) -> tuple[int, int]:
        """The middle of the newest printed line, in pixels of the visible page."""
        page.evaluate("document.querySelector('.paper').scrollIntoView({block: 'end', behavior: 'instant'})")
        x, y = page.evaluate("""(() => {
            const box = document.querySelector('.paper').getBoundingClientRect();
            const border = parseFloat(getComputedStyle(document.querySelector('.paper')).borderBottomWidth);
            const dot = document.querySelector('.strip').getBoundingClientRect().width / (576 + 64);
            return [box.x + box.width / 2, box.bottom - border - 15 * dot];
          })()""")
        return round(x), round(y)

    def test_a_printed_line_is_visible_on_the_page_within_100_ms(self):
        shop = self.shop("--set", "profile=escpos-80")
        page = self.shop_page(shop, width=WIDTH, height=HEIGHT)
        with shop.connect() as till:
            till.sendall(BARE_LINE * 4)
            page.until("document.querySelector('.strip canvas')", "the paper appears")
            x, y = self.place_of_the_newest_line(page)
            is_black = lambda data: Picture(data).brightness(x, y) < 128  # noqa: E731
            page.call("Page.startScreencast", format="png", everyNthFrame=1, maxWidth=WIDTH, maxHeight=HEIGHT)
            delays = []
            for black in itertools.islice(itertools.cycle((True, False)), LINES):
                sent = time.time()
                till.sendall(BLACK_LINE if black else BARE_LINE)
                _, arrived = next(frames(page, lambda data: is_black(data) == black))
                delays.append(arrived - sent)
            page.call("Page.stopScreencast")
        median = statistics.median(delays)
        print(f"from the line to its picture in this process: median {median * 1000:.0f} ms, "
              f"{min(delays) * 1000:.0f} to {max(delays) * 1000:.0f} ms of {LINES}")
        self.assertLess(median, GOAL)

    def print_receipts(self, shop: Shop, page: Page, count: int, latest: int):
        with shop.connect() as till:
            till.sendall(CUT_RECEIPT * count)
            till.shutdown(socket.SHUT_WR)
            while till.recv(4096):
                pass
        page.until(f"document.querySelector('#receipts li strong')?.textContent === 'Receipt {latest}'", f"receipt {latest}")

    def memory_with_paper(self, shop: Shop, page: Page, metres: int) -> dict[str, int]:
        """The memory of the page while this many metres of paper hang out of the printer."""
        with shop.connect() as till:
            till.sendall(LONG_LINE * (metres * LONG_LINES_OF_A_METRE))
            page.until(f"document.querySelector('.strip').ariaLabel.startsWith('{metres}.0')", f"{metres} m hang out")
            return page.memory()

    def test_the_memory_of_the_page_is_bounded_after_a_thousand_receipts(self):
        shop = self.shop("--set", "profile=escpos-80", "--set", "speed=20000", "--per", "cut")
        page = self.shop_page(shop)
        self.print_receipts(shop, page, FIRST, FIRST)
        before = self.memory_with_paper(shop, page, 2)
        self.print_receipts(shop, page, RECEIPTS, FIRST + 1 + RECEIPTS)
        after = self.memory_with_paper(shop, page, 20)
        print(f"the page with 2 m of paper after {FIRST} receipts: {before}; "
              f"with 20 m after {RECEIPTS} more: {after}")
        self.assertLess(after["bytes"], before["bytes"] + HEAP_GROWTH)
        self.assertLess(after["nodes"], before["nodes"] * 1.05)
        self.assertLess(after["listeners"], before["listeners"] * 1.05)


if __name__ == "__main__":
    main()
