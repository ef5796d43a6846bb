"""Passes the library's diagnostic records to Python's logging."""

from __future__ import annotations

import ctypes
import logging
from collections.abc import Iterator, Sequence
from contextlib import contextmanager
from typing import Any

from quorioport import _library as c

ERROR = 7  # the type of a record


@contextmanager
def forward_log(
    logger: logging.Logger | None = None, levels: Sequence[int] = (0,)
) -> Iterator[logging.Logger]:
    """Passes the library's records to a logger until the `with` block ends. The default logger is "quorioport".

    Errors have the level ERROR, all other records DEBUG. The library creates records only while at least one block is
    active. All active blocks get the same records: the block that began last sets the `levels` for all.
    """
    target = logger or logging.getLogger("quorioport")

    def receive(_context: object, pointer: Any) -> None:
        record = pointer.contents
        target.log(
            logging.ERROR if record.type == ERROR else logging.DEBUG,
            "%s %s",
            record.method.decode("utf-8", "replace"),
            record.message.decode("utf-8", "replace"),
        )

    function, sink = c.LOG_FUNCTION(receive), c.HANDLE()
    c.call("log_add_function", function, None, ctypes.byref(sink))
    c.call("log_set_target_levels", (c.INT * len(levels))(*levels), len(levels))
    _begin()
    try:
        yield target
    finally:
        _end()
        c.integer("log_remove_sink", sink)


_blocks = 0


def _begin() -> None:
    global _blocks
    _blocks += 1
    c.function("log_set_logging")(1)


def _end() -> None:
    global _blocks
    _blocks -= 1
    if _blocks == 0:
        c.function("log_set_logging")(0)
