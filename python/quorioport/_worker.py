"""A thread for each port. It makes all calls of the library for that port, whichever thread asks for them."""

from __future__ import annotations

import asyncio
from collections.abc import Callable
from concurrent.futures import Future, ThreadPoolExecutor
from typing import ParamSpec, TypeVar

Parameters = ParamSpec("Parameters")
Result = TypeVar("Result")


class Worker:
    """A thread that runs one call after another. It starts with the first call."""

    def __init__(self) -> None:
        self._pool = ThreadPoolExecutor(max_workers=1, thread_name_prefix="quorioport")

    def submit(
        self, function: Callable[Parameters, Result], *args: Parameters.args, **kwargs: Parameters.kwargs
    ) -> Future[Result]:
        """Runs the function on the thread, and returns at once."""
        return self._pool.submit(function, *args, **kwargs)

    def call(
        self, function: Callable[Parameters, Result], *args: Parameters.args, **kwargs: Parameters.kwargs
    ) -> Result:
        """Runs the function on the thread, and waits until it ends. Ctrl-C ends the wait, not the function."""
        return self.submit(function, *args, **kwargs).result()

    async def wait(
        self, function: Callable[Parameters, Result], *args: Parameters.args, **kwargs: Parameters.kwargs
    ) -> Result:
        """Runs the function on the thread, and waits for it in asyncio. Other tasks run during the wait; if the wait is
        cancelled, the function continues.
        """
        return await asyncio.shield(asyncio.wrap_future(self.submit(function, *args, **kwargs)))
