"""One thread for each port: whoever calls, the library sees one caller."""

from __future__ import annotations

import asyncio
from collections.abc import Callable
from concurrent.futures import Future, ThreadPoolExecutor
from typing import ParamSpec, TypeVar

Parameters = ParamSpec("Parameters")
Result = TypeVar("Result")


class Worker:
    """A thread that runs one call after the other. Starts with the first call."""

    def __init__(self) -> None:
        self._pool = ThreadPoolExecutor(max_workers=1, thread_name_prefix="quorioport")

    def submit(
        self, function: Callable[Parameters, Result], *args: Parameters.args, **kwargs: Parameters.kwargs
    ) -> Future[Result]:
        """Has the thread call the function."""
        return self._pool.submit(function, *args, **kwargs)

    def call(
        self, function: Callable[Parameters, Result], *args: Parameters.args, **kwargs: Parameters.kwargs
    ) -> Result:
        """Calls the function on the thread and waits for it; Ctrl-C ends the wait, not the function."""
        return self.submit(function, *args, **kwargs).result()

    async def wait(
        self, function: Callable[Parameters, Result], *args: Parameters.args, **kwargs: Parameters.kwargs
    ) -> Result:
        """The same for asyncio: other tasks run meanwhile, and a cancelled wait leaves the function running."""
        return await asyncio.shield(asyncio.wrap_future(self.submit(function, *args, **kwargs)))
