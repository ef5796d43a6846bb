"""Eight clients print on four queues. The printer of each queue fails now and then.

QUOR_QUEUE_JOBS is the number of jobs; 200 at night.
"""

import collections
import concurrent.futures
import itertools
import os
import random
import threading

from harness import eventually, main
from queues import SETTLED, QueueCase

JOBS = int(os.environ.get("QUOR_QUEUE_JOBS", "40"))
CLIENTS, QUEUES = 8, 4
FAULTS = ({"coverOpen": True}, {"receiptPaperEmpty": True}, {"cutterError": True})


class Weather:
    """Makes a printer unready for a while, again and again."""

    def __init__(self, printer, seed: int):
        self.printer, self.dice = printer, random.Random(seed)
        self.ended = threading.Event()
        self.thread = threading.Thread(target=self.run)
        self.thread.start()

    def run(self):
        while not self.ended.wait(self.dice.uniform(0.2, 1.5)):
            fault = self.dice.choice(FAULTS)
            self.printer.set(**fault)
            self.ended.wait(self.dice.uniform(0.05, 0.5))
            self.printer.set(**dict.fromkeys(fault, False))

    def end(self):
        self.ended.set()
        self.thread.join()


class Load(QueueCase):
    def print_all(self, queues: list[str]) -> dict[int, tuple[str, str]]:
        """The queue of each job, and the text of its receipt."""
        jobs, numbers = {}, itertools.count(1)
        lock = threading.Lock()

        def client(_):
            while (number := next(numbers)) <= JOBS:
                queue, text = queues[number % QUEUES], f"receipt-{number:04}."
                with lock:  # a queue got its jobs in the order of their numbers
                    jobs[self.print_job(queue, f"{text}\nthank you\n".encode())] = (queue, text)

        with concurrent.futures.ThreadPoolExecutor(CLIENTS) as clients:
            list(clients.map(client, range(CLIENTS)))
        return jobs

    def settle(self, job: int) -> str:
        return eventually(lambda: (now := self.scheduler.state(job)) in SETTLED and now, f"job {job} ends")

    def test_each_job_is_printed_once_and_in_the_order_of_its_queue(self):
        printers = [self.simulator("tcp:0", "--receipts", str(self.folder / f"paper{number}")) for number in range(QUEUES)]
        queues = [self.queue(printer, f"till{number}") for number, printer in enumerate(printers)]
        weathers = [Weather(printer, seed) for seed, printer in enumerate(printers)]
        try:
            jobs = self.print_all(queues)
            states = collections.Counter(self.settle(job) for job in jobs)
        finally:
            for weather in weathers:
                weather.end()
        held = {job for job in jobs if self.scheduler.state(job) == "held"}
        self.assertEqual(set(states) - {"completed", "held"}, set(), states)
        waited = self.scheduler.log().count("] waiting: ")
        for number, (printer, queue) in enumerate(zip(printers, queues)):
            printer.control({"quit": True})
            printer.process.wait()
            paper = "".join(receipt.read_text() for receipt in sorted((self.folder / f"paper{number}").glob("*.txt")))
            for job, (its_queue, text) in jobs.items():
                most = 1 if its_queue == queue else 0
                self.assertLessEqual(paper.count(text), most, f"{text} on {queue}")
                if most and job not in held:
                    self.assertEqual(paper.count(text), 1, f"{text} is completed without paper")
            places = [paper.find(text) for job, (its_queue, text) in sorted(jobs.items())
                      if its_queue == queue and job not in held]
            self.assertEqual(places, sorted(places), f"the order of {queue}")
        self.assertGreater(waited, 0, "no printer failed while a job was for it")
        self.assertGreater(states["completed"], JOBS // 2)
        print(f"{len(jobs)} cases: jobs that are {dict(states)}; {waited} times one waited")


if __name__ == "__main__":
    main()
