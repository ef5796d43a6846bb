"""A fixture for pytest: `virtual_printer` is a virtual printer for a single test.

    def test_the_receipt_names_the_shop(virtual_printer):
        print_receipt(to=virtual_printer.device)
        assert "THE CORNER BAKERY" in virtual_printer.next_receipt().text
"""

from __future__ import annotations

from collections.abc import Iterator

import pytest
from quorioport.virtual import VirtualPrinter


@pytest.fixture
def virtual_printer() -> Iterator[VirtualPrinter]:
    """A virtual printer, on line and with paper, which runs until the test ends."""
    with VirtualPrinter() as printer:
        yield printer
