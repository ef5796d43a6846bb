"""A shop: the virtual printers of a run of `quorport simulate --web`, and their page in the browser."""

import re
import socket

from chromium import Browser, Page
from harness import DEADLINE, Case, Running

SWITCH = "[...document.querySelectorAll('.switch label')].find((label) => label.textContent === {0!r}).control"
BUTTON = "[...document.querySelectorAll('button')].find((button) => button.textContent === {0!r})"


class Shop(Running):
    """A run of the command that serves printers and their page."""

    def __init__(self, *arguments: str, printers: tuple[str, ...] = ("tcp:0",)):
        listening = [word for printer in printers for word in ("--listen", printer)]
        super().__init__("simulate", *listening, "--web", "0", *arguments)
        said = [self.line().split(" ", 1) for _ in range(len(printers) + 1)]
        self.places = [place for word, place in said if word == "listening"]
        (self.address,) = [place for word, place in said if word == "web"]

    def connect(self, printer: int = 0) -> socket.socket:
        host, port = re.fullmatch(r"tcp:(.*):(\d+)", self.places[printer].split(",")[0]).groups()
        connection = socket.create_connection((host, int(port)), DEADLINE)
        connection.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        return connection


class ShopCase(Case):
    """Tests that share one browser. Each test starts its own shop."""

    @classmethod
    def setUpClass(cls):
        cls.browser = Browser()
        cls.addClassCleanup(cls.browser.close)

    def shop(self, *arguments: str, **options) -> Shop:
        shop = Shop(*arguments, **options)
        self.addCleanup(shop.kill)
        return shop

    def page(self, address: str, **emulation) -> Page:
        """A tab whose console must remain empty."""
        page = self.browser.page(address, **emulation)
        self.addCleanup(page.close)
        self.addCleanup(lambda: self.assertEqual(page.complaints(), []))
        return page

    def shop_page(self, shop: Shop, **emulation) -> Page:
        page = self.page(shop.address, **emulation)
        page.until("document.querySelector('.printer')", "the printer is shown")
        return page

    @staticmethod
    def turn(page: Page, label: str):
        page.click(SWITCH.format(label))

    @staticmethod
    def press(page: Page, label: str):
        page.click(BUTTON.format(label))

    @staticmethod
    def condition(page: Page, text: str):
        page.until(f"document.querySelector('.condition').textContent === {text!r}")
