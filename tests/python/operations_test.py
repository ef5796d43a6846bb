"""Several threads, and tasks of asyncio, call every public operation at the same time, on a virtual printer.

The test fails if a name of the package is in no table here, or if the package lacks an operation of a table.
"""

import ast
import asyncio
import inspect
import tempfile
import threading
import unittest
from collections.abc import Callable
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import quorioport
from quorioport import AsyncPort, AsyncPrintJob, Journal, Port, PrintJob, VirtualPrinter

RECEIPT = b"1 Espresso        1.80\n\n\n"
THREADS = 4
SETTINGS = {"firmware": "V7.1", "dip1": "c0ff", "dip2": "0102"}

# The operations of a port that leave it open, with their arguments, and the answer or its type.
OPERATIONS = {
    "open": ((), None),
    "is_connected": ((), True),
    "is_online": ((), True),
    "status": ((), quorioport.Status),
    "firmware": ((), "V7.1"),
    "dip_switches": ((), (b"\xc0\xff", b"\x01\x02")),
    "button_security_timeout": ((), 0),
    "name": ((), str),
    "serial_number": ((), ""),
    "connection_id": ((), int),
    "print": ((RECEIPT,), quorioport.PrintResult),
    "write": ((b"\n",), 1),
    "read": ((0,), b""),
    "send_command": ((b"\n",), None),
    "drop_all": ((), None),
}
ENDINGS = {"disconnect", "close"}
# Attributes of Port that only other classes of the package use.
INNER = {"handle", "start_job", "worker"}

# For each error, a call that raises it.
ERRORS: dict[type[Exception], Callable[[], object]] = {
    quorioport.UsageError: lambda: on("virtual:", lambda port: port.read(-1)),
    quorioport.OperationError: lambda: Port("virtual:").status(),
    quorioport.LinkLostError: lambda: on("virtual:,cut-after-in=0", Port.status),
    quorioport.UnreadableAnswerError: lambda: on("virtual:,stray-byte=41@1", Port.status),
    quorioport.NotReadyError: lambda: on("virtual:,coverOpen=true", Port.firmware),
    quorioport.JournalError: lambda: open_no_journal(),
    quorioport.SystemFailureError: lambda: VirtualPrinter(command="/nowhere/quorport"),
    quorioport.NotPrintedError: lambda: on(
        "virtual:,coverOpen=true", lambda port: port.print(RECEIPT).raise_unless_printed()),
}


def on(device: str, use: Callable[[Port], object]) -> object:
    with Port(device, timeout=2) as port:
        return use(port)


def open_no_journal() -> None:
    with tempfile.NamedTemporaryFile() as empty:
        Journal(empty.name)


def operations_of(kind: type) -> set[str]:
    return {name for name, member in vars(kind).items()
            if not name.startswith("_") and (callable(member) or isinstance(member, property))}


def in_threads(*calls: Callable[[], object]) -> list[object]:
    """Runs each call in THREADS threads; all threads begin at the same time. Returns THREADS results of each call: the
    first result of every call in order, followed by the second result of every call, and so on."""
    together = threading.Barrier(THREADS * len(calls))

    def begin(call: Callable[[], object]) -> object:
        together.wait(30)
        return call()

    with ThreadPoolExecutor(THREADS * len(calls)) as pool:
        return [future.result() for future in [pool.submit(begin, call) for call in calls * THREADS]]


class Operations(unittest.TestCase):
    def printer(self) -> VirtualPrinter:
        printer = VirtualPrinter(**SETTINGS)
        self.addCleanup(printer.close)
        return printer

    def assertAnswers(self, name: str, answer: object):
        expected = OPERATIONS[name][1]
        if isinstance(expected, type):
            self.assertIsInstance(answer, expected, name)
        else:
            self.assertEqual(answer, expected, name)
        if name == "print":
            self.assertTrue(answer.printed, answer)

    def test_each_operation_of_the_package_is_in_a_table_of_this_test(self):
        self.assertEqual(operations_of(Port) - INNER, {*OPERATIONS, *ENDINGS, "is_open"})
        self.assertEqual(operations_of(AsyncPort) - {"port"}, operations_of(Port) - INNER)
        self.assertEqual(operations_of(PrintJob), {"run", "steps", "cancel"})
        self.assertEqual(operations_of(AsyncPrintJob), operations_of(PrintJob))
        self.assertEqual(operations_of(Journal), {"close", "file", "forget", "forget_older_than", "jobs", "print"})
        self.assertEqual(operations_of(VirtualPrinter),
                         {"clear_faults", "close", "fault", "next_receipt", "set", "state"})

    def test_the_operations_of_a_port_can_be_called_by_any_thread(self):
        with Port(self.printer().device, timeout=5) as port:
            calls = [(name, arguments) for name, (arguments, _) in OPERATIONS.items()]
            answers = in_threads(*(lambda n=name, a=arguments: getattr(port, n)(*a) for name, arguments in calls))
            for (name, _), answer in zip(calls * THREADS, answers, strict=True):
                self.assertAnswers(name, answer)
            port.status()  # now all bytes have arrived; the module accepts `disconnect` only after 1 s without bytes
            self.assertRaises(quorioport.LinkLostError, in_threads, port.disconnect)  # the second call finds no link
            self.assertTrue(port.is_open)
            in_threads(port.close)
            self.assertFalse(port.is_open)

    def test_the_operations_of_an_async_port_can_be_awaited_by_several_tasks(self):
        async def run():
            async with AsyncPort(self.printer().device, timeout=5) as port:
                names = [*OPERATIONS] * THREADS
                answers = await asyncio.gather(*(getattr(port, name)(*OPERATIONS[name][0]) for name in names))
                for name, answer in zip(names, answers, strict=True):
                    self.assertAnswers(name, answer)
                await port.status()  # now all bytes have arrived; the module needs 1 s without bytes
                await port.disconnect()
                self.assertTrue(port.is_open and port.port.is_open)
                await asyncio.gather(*(port.close() for _ in range(THREADS)))
                self.assertFalse(port.is_open)

        asyncio.run(run())

    def test_the_operations_of_a_job_can_be_called_by_any_thread(self):
        def cancelled() -> quorioport.Obstacle:
            job = PrintJob(port)
            job.cancel()
            return job.run(RECEIPT).obstacle

        end = quorioport.Progress(len(RECEIPT), len(RECEIPT), "")
        with Port(self.printer().device) as port:
            self.assertEqual(in_threads(lambda: PrintJob(port).run(RECEIPT).printed), [True] * THREADS)
            self.assertEqual(in_threads(lambda: [*PrintJob(port).steps(RECEIPT)][-1]), [end] * THREADS)
            self.assertEqual(in_threads(cancelled), [quorioport.Obstacle.CANCELLED] * THREADS)

    def test_the_operations_of_an_async_job_can_be_awaited_by_several_tasks(self):
        async def steps(port: AsyncPort) -> int:
            return [progress.bytes_accepted async for progress in AsyncPrintJob(port).steps(RECEIPT)][-1]

        async def cancelled(port: AsyncPort) -> quorioport.Obstacle:
            job = AsyncPrintJob(port)
            job.cancel()
            return (await job.run(RECEIPT)).obstacle

        async def run():
            async with AsyncPort(self.printer().device) as port:
                results = await asyncio.gather(*(AsyncPrintJob(port).run(RECEIPT) for _ in range(THREADS)))
                self.assertTrue(all(result.printed for result in results), results)
                self.assertEqual(await asyncio.gather(*(steps(port) for _ in range(THREADS))), [len(RECEIPT)] * THREADS)
                self.assertEqual(await cancelled(port), quorioport.Obstacle.CANCELLED)

        asyncio.run(run())

    def test_threads_can_use_separate_journal_objects_for_the_same_file(self):
        def use() -> tuple[bool, str, list[quorioport.JobState], int]:
            with Journal(file) as journal:
                result, jobs = journal.print("order-1", RECEIPT, Port(printer.device), timeout=30), journal.jobs()
                self.assertEqual((type(result), type(jobs[0])), (quorioport.NamedResult, quorioport.JobRecord))
                return result.printed, journal.file, [job.state for job in jobs], journal.forget_older_than(1)

        def forget() -> bool:
            with Journal(file) as journal:
                return journal.forget(names.pop())

        printer, names = self.printer(), [f"order-{number}" for number in range(THREADS)]
        with tempfile.TemporaryDirectory() as folder:
            file = str(Path(folder).resolve() / "jobs.db")
            self.assertEqual(in_threads(use), [(True, file, [quorioport.JobState.PRINTED], 0)] * THREADS)
            self.assertEqual(asyncio.run(asyncio.to_thread(use))[0], True)
            self.assertEqual(sum(in_threads(forget)), 1)
        self.assertIn("Espresso", printer.next_receipt().text)
        with self.assertRaises(quorioport.OperationError):
            printer.next_receipt(timeout=0.2)

    def test_the_operations_of_a_virtual_printer_can_be_called_by_any_thread(self):
        printer = self.printer()
        in_threads(lambda: printer.set(cover_open=True), lambda: printer.fault(late_reply=1), printer.clear_faults)
        self.assertEqual(in_threads(lambda: printer.state()["coverOpen"]), [True] * THREADS)
        printer.set(cover_open=False)
        for _ in range(THREADS):
            on(printer.device, lambda port: port.print(RECEIPT))
        receipts = in_threads(printer.next_receipt)
        self.assertEqual({type(receipt) for receipt in receipts}, {quorioport.Receipt})
        self.assertTrue(all("Espresso" in receipt.text for receipt in receipts))
        in_threads(printer.close)


class PublicNames(unittest.TestCase):
    def test_each_exception_class_is_raised_by_its_cause(self):
        errors = {value for name in quorioport.__all__ if inspect.isclass(value := getattr(quorioport, name))
                  and issubclass(value, quorioport.QuorError) and value is not quorioport.QuorError}
        self.assertEqual(set(ERRORS), errors)
        for error, cause in ERRORS.items():
            with self.subTest(error), self.assertRaises(quorioport.QuorError) as raised:
                cause()
            self.assertIs(type(raised.exception), error)

    def test_each_public_name_of_the_package_is_used_by_a_test(self):
        used = set()
        for file in Path(__file__).parent.glob("*_test.py"):
            for node in ast.walk(ast.parse(file.read_text())):
                used |= {node.attr} if isinstance(node, ast.Attribute) else set()
                used |= {node.id} if isinstance(node, ast.Name) else set()
        self.assertEqual(set(quorioport.__all__) - used, set())


if __name__ == "__main__":
    unittest.main()
