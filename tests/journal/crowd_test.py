"""Eight tills print under names that they share, on one slow printer whose link is cut now and then.

QUOR_CROWD_NAMES is the number of names; 1000 at night.
"""

import collections
import concurrent.futures
import os
import random
import threading
import time

from harness import Case, eventually, main, run

NAMES = int(os.environ.get("QUOR_CROWD_NAMES", "40"))
TILLS = 8
SPEED = 4000  # bytes a second


class Chaos:
    """Cuts the link at random bytes, again and again."""

    def __init__(self, simulator):
        self.simulator, self.dice = simulator, random.Random(1)
        self.ended = threading.Event()
        self.thread = threading.Thread(target=self.run)
        self.thread.start()

    def run(self):
        while not self.ended.is_set():
            self.simulator.control({"fault": {"cut-after-in": self.dice.randint(10, 120)}})
            self.ended.wait(self.dice.uniform(0.01, 0.1))
            self.simulator.control({"clear": "faults"})
            self.ended.wait(self.dice.uniform(0.1, 0.4))

    def end(self):
        self.ended.set()
        self.thread.join()


class ManyProcesses(Case):
    def test_each_named_job_is_printed_once_or_reported_as_unconfirmed(self):
        simulator = self.simulator("tcp:0", "--set", f"speed={SPEED}", "--receipts", str(self.folder / "paper"))
        journal = self.folder / "jobs.db"
        told = collections.defaultdict(set)

        def print_job(number: int):
            name = f"receipt-{number:04}."
            result = run("-d", simulator.place, "print", "-", "--json", "--job", name, "--journal", journal,
                         "--timeout", "20000", data=f"{name}\nthank you\n".encode())
            self.assertIn(result.code, (0, 1, 3, 4, 5, 6), result)
            told[name].add(result.json()["outcome"])

        dice = random.Random(2)
        order = [number for number in range(NAMES) for _ in range(2)]
        dice.shuffle(order)
        chaos = Chaos(simulator)
        self.addCleanup(chaos.end)
        began = time.monotonic()
        with concurrent.futures.ThreadPoolExecutor(TILLS) as tills:
            list(tills.map(print_job, order))
        seconds = time.monotonic() - began
        chaos.end()
        for number in range(NAMES):  # tries again to print the refused jobs
            print_job(number)
        eventually(lambda: simulator.state()["buffered"] == 0, "the printer has printed")
        simulator.control({"quit": True})
        simulator.process.wait()
        paper = "".join(receipt.read_text() for receipt in sorted((self.folder / "paper").glob("*.txt")))
        counts = collections.Counter()
        for name, outcomes in told.items():
            copies = paper.count(name)
            self.assertLessEqual(copies, 1, f"{name} twice; it was reported as {outcomes}")
            if "printed" in outcomes:
                self.assertEqual(copies, 1, f"{name} printed without paper")
            else:
                self.assertIn("unconfirmed", outcomes, f"{name} is neither on paper nor reported as unconfirmed")
            counts["printed" if "printed" in outcomes else "unconfirmed"] += 1
        self.assertGreater(counts["printed"], 0)
        self.assertGreater(counts["unconfirmed"], 0, "no link was cut in the middle of a job")
        print(f"{NAMES} cases: {len(order)} calls of {TILLS} tills: {dict(counts)}, {len(order) / seconds:.1f} calls a second")


if __name__ == "__main__":
    main()
