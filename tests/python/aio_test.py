"""The port for asyncio: its operations return the answers of a Port and never block the event loop."""

import asyncio
import threading
import time
import unittest

import quorioport
from quorioport import AsyncPort, AsyncPrintJob, Obstacle, Outcome, VirtualPrinter

RECEIPT = b"1 Espresso        1.80\n\n\n"


class AsyncPorts(unittest.IsolatedAsyncioTestCase):
    def printer(self, **settings) -> VirtualPrinter:
        printer = VirtualPrinter(**settings)
        self.addCleanup(printer.close)
        return printer

    async def test_each_operation_of_an_async_port_returns_its_answer(self):
        printer = self.printer(firmware="V7.1", dip1="c0ff", dip2="0102")
        async with AsyncPort(printer.device, timeout=5) as port:
            self.assertTrue(port.is_open)
            self.assertTrue(await port.is_connected())
            self.assertTrue(await port.is_online())
            self.assertTrue((await port.status()).online)
            self.assertEqual(await port.firmware(), "V7.1")
            self.assertEqual(await port.dip_switches(), (b"\xc0\xff", b"\x01\x02"))
            self.assertEqual(await port.button_security_timeout(), 0)
            self.assertEqual(await port.serial_number(), "")
            self.assertIn(await port.name(), printer.device)
            self.assertGreater(await port.connection_id(), 0)
            self.assertEqual(await port.write(b"\n"), 1)
            self.assertIsInstance(await port.read(10), bytes)
            await port.send_command(b"\n")
            await port.drop_all()
            self.assertTrue((await port.print(RECEIPT)).printed)
            await port.disconnect()
            with self.assertRaises(quorioport.LinkLostError):
                await port.status()
        self.assertFalse(port.is_open)

    async def test_the_event_loop_runs_while_the_printer_prints(self):
        printer = self.printer(speed=50)
        longest, is_over = 0.0, False

        async def watch():
            nonlocal longest
            while not is_over:
                before = time.monotonic()
                await asyncio.sleep(0.005)
                longest = max(longest, time.monotonic() - before)

        watcher = asyncio.create_task(watch())
        async with AsyncPort(printer.device) as port:
            before = time.monotonic()
            result = await port.print(RECEIPT * 2)
            printing = time.monotonic() - before
        is_over = True
        await watcher
        self.assertTrue(result.printed, result)
        self.assertGreater(printing, 0.8)
        self.assertLess(longest, printing / 2)

    async def test_several_printers_print_simultaneously(self):
        async def one():
            async with AsyncPort(self.printer(speed=40).device) as port:
                return await port.print(RECEIPT * 2)

        before = time.monotonic()
        results = await asyncio.gather(one(), one(), one())
        self.assertTrue(all(result.printed for result in results), results)
        self.assertLess(time.monotonic() - before, 3 * len(RECEIPT) * 2 / 40)

    async def test_progress_is_reported_in_the_event_loop(self):
        loop, told = asyncio.get_running_loop(), []
        async with AsyncPort(self.printer().device) as port:
            await port.print(RECEIPT, progress=lambda p: told.append((p.bytes_accepted, asyncio.get_running_loop())))
        self.assertEqual([told[0][0], told[-1][0]], [0, len(RECEIPT)])
        self.assertTrue(all(where is loop for _, where in told))

    async def test_progress_can_be_read_from_an_iterator(self):
        async with AsyncPort(self.printer().device) as port:
            job = AsyncPrintJob(port)
            steps = [progress.bytes_accepted async for progress in job.steps(RECEIPT)]
            self.assertEqual(steps[-1], len(RECEIPT))
            self.assertTrue(job.result.printed)
            with self.assertRaisesRegex(quorioport.UsageError, "once"):
                await job.run(RECEIPT)

    async def test_a_cancelled_task_cancels_its_job_and_ends_after_the_job(self):
        async with AsyncPort(self.printer(speed=5).device, end_timeout=60) as port:
            begun = asyncio.Event()
            job = AsyncPrintJob(port, progress=lambda p: p.bytes_accepted and begun.set())
            task = asyncio.create_task(job.run(RECEIPT))
            await begun.wait()
            task.cancel()
            with self.assertRaises(asyncio.CancelledError):
                await task
            self.assertEqual((job.result.outcome, job.result.obstacle), (Outcome.UNCONFIRMED, Obstacle.CANCELLED))

    async def test_an_exception_of_the_progress_function_cancels_the_job_and_is_raised_after_the_job_ends(self):
        def fail(progress):
            raise LookupError("no such till")

        async with AsyncPort(self.printer(speed=10).device, end_timeout=60) as port:
            job = AsyncPrintJob(port, progress=fail)
            with self.assertRaisesRegex(LookupError, "no such till"):
                await job.run(RECEIPT)
            self.assertEqual(job.result.obstacle, Obstacle.CANCELLED)

    async def test_a_port_that_opens_after_its_task_was_cancelled_is_closed(self):
        port, may_open = AsyncPort(self.printer().device), threading.Event()
        self.addCleanup(may_open.set)
        port.port.worker.submit(may_open.wait)
        opening = asyncio.create_task(port.__aenter__())
        await asyncio.sleep(0)  # the call has begun
        opening.cancel()
        with self.assertRaises(asyncio.CancelledError):
            await opening
        may_open.set()
        self.assertFalse(await port.is_connected())
        self.assertFalse(port.is_open)

    async def test_a_job_that_is_cancelled_before_its_start_sends_nothing(self):
        async with AsyncPort(self.printer().device) as port:
            job = AsyncPrintJob(port)
            job.cancel()
            self.assertEqual((await job.run(RECEIPT)).outcome, Outcome.REFUSED)


if __name__ == "__main__":
    unittest.main()
