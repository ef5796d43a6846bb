"""Makes the pictures in docs/browser.md. They show the page of `simulate --web`. Usage: browser_pictures.py QUORPORT"""

import os
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).parents[1]
DOCS = ROOT / "docs"
LARGEST = 150_000  # bytes

os.environ["QUORPORT"] = sys.argv[1]
sys.path += [str(ROOT / "tests/tools"), str(ROOT / "tests/web")]

from chromium import Browser, Page, running  # noqa: E402
from shop import SWITCH, Shop  # noqa: E402

RECEIPT = subprocess.run([sys.executable, ROOT / "scripts/escpos_receipt.py"], check=True, capture_output=True).stdout
CUT = b"\x1dV"


def save(page: Page, name: str):
    page.picture(DOCS / name)
    size = (DOCS / name).stat().st_size
    assert size < LARGEST, f"{name}: {size} bytes"


def print_receipts(shop: Shop, page: Page):
    """Prints two receipts, which are torn off, and a third one, which remains in the printer because its host is still
    connected.
    """
    for number in (1, 2):
        with shop.connect() as till:
            till.sendall(RECEIPT)
        page.until(f"document.querySelectorAll('#receipts li').length === {number}", "a receipt")
    till = shop.connect()
    till.sendall(RECEIPT[:RECEIPT.rindex(CUT)])
    page.until("document.querySelector('.printer .figures').textContent.includes('connected')")
    page.until("document.querySelector('.strip canvas')")
    page.until("[...document.querySelectorAll('#receipts img')].every((image) => image.complete)")
    return till


def look_at(browser: Browser, shop: Shop):
    page = browser.page(shop.address, width=1060, height=1480, calm=True)
    page.until("document.querySelector('.printer')")
    till = print_receipts(shop, page)
    save(page, "browser.png")
    page.click(SWITCH.format("Cover open"))
    page.until("document.querySelector('.condition').classList.contains('stopped')")
    page.resize(360, 780)
    page.evaluate("document.activeElement.blur(); scrollTo(0, 0)")
    save(page, "browser-phone.png")
    page.resize(1060, 1280)
    page.go(f"{shop.address}receipts/1")
    page.until("document.querySelector('.commands tr') && document.querySelector('.whole img').complete")
    save(page, "browser-receipt.png")
    till.close()


with running() as browser:
    shop = Shop("--set", "profile=escpos-80", printers=("tcp:9100,name=till",))
    try:
        look_at(browser, shop)
    finally:
        shop.kill()
