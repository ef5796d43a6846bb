"""How long a job takes from `lp` to its end on a printer that answers at once, compared with the print system's own
back end."""

import statistics
import subprocess
import time
import unittest

from harness import IS_SANITIZED, main
from queues import QUOR, QueueCase
from scheduler import SOCKET, as_nobody

LEAST, GREATEST = 9, 40  # fewest and most jobs on each back end
MOST = 0.150  # how many seconds longer a job may take than with the print system's own back end


class JobTime(QueueCase):
    back_ends = {"quor": QUOR, "socket": SOCKET}

    def seconds(self, queue: str, file: str) -> float:
        began = time.monotonic()
        said = subprocess.run(["lp", "-h", self.scheduler.socket, "-d", queue, "-o", "raw", file], check=True,
                              capture_output=True, text=True, **as_nobody())
        job = int(said.stdout.split(f"{queue}-")[1].split()[0])
        self.assertSettles(job, "completed")
        return time.monotonic() - began

    @unittest.skipIf(IS_SANITIZED, "a sanitizer takes time")
    def test_a_job_takes_at_most_150_ms_more_than_with_a_back_end_that_confirms_nothing(self):
        """Compares the shortest time of each back end, because other work on the machine only makes a time longer."""
        ours, theirs = self.simulator(), self.simulator()
        self.queue(ours, "ours")
        self.scheduler.add_queue("theirs", f"socket://{theirs.place.removeprefix('tcp:')}")
        file = self.file("receipt", b"Espresso  2.20\n")
        mine, peers = [], []
        while len(mine) < LEAST or (min(mine) - min(peers) >= MOST and len(mine) < GREATEST):
            mine.append(self.seconds("ours", file))
            peers.append(self.seconds("theirs", file))
        said = [f"{name} least {min(times) * 1000:.0f} ms, median {statistics.median(times) * 1000:.0f} ms"
                for name, times in (("quor", mine), ("socket", peers))]
        print(f"{len(mine) + len(peers)} cases: {'; '.join(said)}")
        self.assertLess(min(mine) - min(peers), MOST)


if __name__ == "__main__":
    main()
