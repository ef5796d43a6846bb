"""A port for asyncio. It never blocks the event loop: each call runs on the port's own thread."""

from __future__ import annotations

import asyncio
from collections.abc import AsyncGenerator, Callable, Sequence
from contextlib import aclosing
from types import TracebackType
from typing import Self

from quorioport.errors import UsageError
from quorioport.job import PrintResult, Progress, Proof, RunningJob, bytes_of
from quorioport.port import Emulation, Port
from quorioport.status import Status


class AsyncPort:
    """A Port whose operations are coroutines. Port describes their effects and errors.

        async with AsyncPort("tcp:192.0.2.10:9100") as port:
            result = await port.print(receipt)

    If a task is cancelled while it prints, the job is cancelled, and the task ends after the job has ended.
    """

    def __init__(
        self,
        device: str | Sequence[str],
        *,
        port_name: str = "BT:",
        settings: str = "",
        timeout: float = 10,
        emulation: Emulation = Emulation.LINE,
        end_timeout: float | None = None,
        hold_print_timeout: float | None = None,
        data_timeout: int | None = None,
    ) -> None:
        """Takes the arguments of Port."""
        self._port = Port(
            device,
            port_name=port_name,
            settings=settings,
            timeout=timeout,
            emulation=emulation,
            end_timeout=end_timeout,
            hold_print_timeout=hold_print_timeout,
            data_timeout=data_timeout,
        )
        self._wait = self._port.worker.wait
        self._handle = self._port.handle

    async def __aenter__(self) -> Self:
        """Opens the port. If the task is cancelled during the opening, the port is closed after the opening."""
        try:
            await self.open()
        except BaseException:
            self._port.worker.submit(self._handle.close)
            raise
        return self

    async def __aexit__(
        self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None
    ) -> None:
        """Closes the port."""
        await self.close()

    @property
    def port(self) -> Port:
        """The Port that this object uses. Its operations block the thread that calls them."""
        return self._port

    @property
    def is_open(self) -> bool:
        """See Port.is_open."""
        return self._port.is_open

    async def open(self) -> None:
        """See Port.open."""
        await self._wait(self._handle.open)

    async def close(self) -> None:
        """See Port.close."""
        await self._wait(self._handle.close)

    async def is_connected(self) -> bool:
        """See Port.is_connected."""
        return await self._wait(self._handle.is_connected)

    async def name(self) -> str:
        """See Port.name."""
        return await self._wait(self._handle.name)

    async def serial_number(self) -> str:
        """See Port.serial_number."""
        return await self._wait(self._handle.serial_number)

    async def connection_id(self) -> int:
        """See Port.connection_id."""
        return await self._wait(self._handle.connection_id)

    async def print(
        self,
        data: bytes | bytearray | memoryview,
        *,
        proof: Proof = Proof.AUTO,
        progress: Callable[[Progress], object] | None = None,
    ) -> PrintResult:
        """See Port.print. `progress` is called in the event loop."""
        return await AsyncPrintJob(self, proof=proof, progress=progress).run(data)

    async def status(self) -> Status:
        """See Port.status."""
        return await self._wait(self._handle.status)

    async def is_online(self) -> bool:
        """See Port.is_online."""
        return await self._wait(self._handle.is_online)

    async def firmware(self) -> str:
        """See Port.firmware."""
        return await self._wait(self._handle.firmware)

    async def dip_switches(self) -> tuple[bytes, bytes]:
        """See Port.dip_switches."""
        return await self._wait(self._handle.dip_switches)

    async def button_security_timeout(self) -> float:
        """See Port.button_security_timeout."""
        return await self._wait(self._handle.button_security_timeout)

    async def drop_all(self) -> None:
        """See Port.drop_all."""
        await self._wait(self._handle.drop_all)

    async def disconnect(self) -> None:
        """See Port.disconnect."""
        await self._wait(self._handle.disconnect)

    async def write(self, data: bytes) -> int:
        """See Port.write."""
        return await self._wait(self._handle.write, data)

    async def read(self, size: int) -> bytes:
        """See Port.read."""
        return await self._wait(self._handle.read, size)

    async def send_command(self, command: bytes) -> None:
        """See Port.send_command."""
        await self._wait(self._handle.send_command, command)


class AsyncPrintJob:
    """A PrintJob for asyncio. `async for` iterates over its `steps`."""

    def __init__(
        self, port: AsyncPort, *, proof: Proof = Proof.AUTO, progress: Callable[[Progress], object] | None = None
    ) -> None:
        """Takes the arguments of PrintJob. `progress` is called in the event loop."""
        self._port = port.port
        self._proof = proof
        self._progress = progress
        self._running: RunningJob | None = None
        self._is_cancelled = False
        #: The result of the job; None until it ends.
        self.result: PrintResult | None = None

    async def run(self, data: bytes | bytearray | memoryview) -> PrintResult:
        """See PrintJob.run."""
        async with aclosing(self.steps(data)) as steps:
            async for progress in steps:
                if self._progress is not None:
                    self._progress(progress)
        assert self.result is not None
        return self.result

    async def steps(self, data: bytes | bytearray | memoryview) -> AsyncGenerator[Progress, None]:
        """See PrintJob.steps."""
        loop = asyncio.get_running_loop()
        told: asyncio.Queue[Progress | None] = asyncio.Queue()
        if self._running is not None:
            raise UsageError("the job was run already: a job is sent once")
        self._running = RunningJob(
            lambda progress: loop.call_soon_threadsafe(told.put_nowait, progress), self._proof
        )
        if self._is_cancelled:
            self._running.cancel()
        job = asyncio.wrap_future(self._port.start_job(self._running, bytes_of(data)))
        job.add_done_callback(lambda _: told.put_nowait(None))
        is_left = True
        try:
            while (progress := await told.get()) is not None:
                yield progress
            is_left = False
        finally:
            if is_left:
                self.cancel()
            self.result = await asyncio.shield(job)

    def cancel(self) -> None:
        """See PrintJob.cancel."""
        self._is_cancelled = True
        if self._running is not None:
            self._running.cancel()
