"""Tills that print for long in real time, over a local socket and a terminal, through bad weather.

Arguments: the till program. In the environment: QUORPORT, the command; QUOR_SOAK_SECONDS, how long (10
unless it says otherwise); QUOR_SEED, the seed of the first job. The last line tells what was done.

No job fails on a link that was not cut; what is called printed is on the paper once and whole; the till
holds no more descriptors and threads in the end than in the beginning, and less than 1 MiB more memory
than after its first jobs.
"""

import json
import os
import random
import subprocess
import sys
import tempfile
import threading
import time
from collections import Counter
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent.parent / "tools"))
import harness  # noqa: E402
from relay import Relay, SocketRelay, TerminalRelay, Weather  # noqa: E402

SECONDS = float(os.environ.get("QUOR_SOAK_SECONDS", "10"))
SEED = int(os.environ.get("QUOR_SEED", "1"))
MOST_DRIFT = 1 << 20
# Memory is measured from here on: by then everything has been allocated once, the log's file rotated too.
WARM_UP_JOBS = 40


class Failure(Exception):
    pass


class Till:
    """The process under test. Its port, platform, job and logger are the product's own."""

    def __init__(self, program: str, device: str, log: Path, emulation: str):
        self.process = subprocess.Popen(
            [program, device, log, emulation], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True
        )

    def ask(self, request: str) -> dict:
        self.process.stdin.write(request + "\n")
        self.process.stdin.flush()
        line = self.process.stdout.readline()
        if not line:
            raise Failure(f"the till ended at: {request}")
        return json.loads(line)

    def end(self) -> int:
        self.process.stdin.close()
        return self.process.wait(60)


def weather_for(dice: random.Random) -> Weather:
    return Weather(
        slice=dice.choice([1, 2, 7, 64, 4096]),
        rate=dice.choice([0, 0, 1000, 4000, 20000]),
        delay=dice.choice([0, 0, 0, 0.005, 0.05, 0.15]),
        cut_after=dice.randrange(1, 800) if dice.random() < 0.3 else None,
    )


class Soak:
    """One till, one link, one printer."""

    def __init__(self, name: str, relay: type[Relay], emulation: str, program: str, folder: Path):
        self.name, self.dice = name, random.Random(f"{SEED} {name}")
        folder.mkdir()
        self.printer = harness.Simulator(f"unix:{folder}/printer")
        self.relay = relay(folder, f"{folder}/printer")
        self.till = Till(program, self.relay.device, folder / "log", emulation)
        self.counts = Counter()
        self.error: str | None = None
        self.warm: dict | None = None
        self.before = self.till.ask("resources")

    def printed_bytes(self) -> int:
        """Of a printer that has taken all that reached it, and prints at once."""
        if not self.relay.cut_done.wait(30):
            raise Failure(f"{self.name}: the relay does not come back after a cut")
        return self.printer.state()["printedBytes"]

    def job(self):
        weather = weather_for(self.dice)
        size = self.dice.choice([0, 1, 32, 500, 2000])
        port = self.dice.choice(["keep", "keep", "anew"])
        before = self.printed_bytes()
        cuts = self.relay.cuts
        self.relay.set_weather(weather)
        result = self.till.ask(f"print {size} {port}")
        self.relay.set_weather(Weather())
        paper = self.printed_bytes() - before
        was_cut = self.relay.cuts > cuts
        self.counts["cut" if was_cut else "clean"] += 1
        self.counts[result["outcome"]] += 1
        if os.environ.get("QUOR_SOAK_TELL"):
            print(self.name, weather, size, port, result, "cut" if was_cut else "", flush=True)
        what = f"{self.name}: {size} bytes on {port}, {weather}: {result}, {paper} bytes on the paper"
        if not was_cut and result["outcome"] != "printed":
            raise Failure("a job failed on a link that was not cut: " + what)
        if result["outcome"] == "printed" and paper != size:
            raise Failure("called printed, and is not: " + what)
        if paper > result["accepted"]:
            raise Failure("more on the paper than the link took: " + what)

    def run(self, end: float):
        try:
            while time.monotonic() < end:
                self.job()
                if sum(self.counts[kind] for kind in ("cut", "clean")) == WARM_UP_JOBS:
                    self.warm = self.till.ask("resources")
            self.check_resources()
        except (Failure, AssertionError, OSError) as error:
            self.error = f"{error}"

    def check_resources(self):
        after = self.till.ask("resources")
        for kind in ("descriptors", "threads"):
            if after[kind] != self.before[kind]:
                raise Failure(f"{self.name}: {kind} were {self.before[kind]}, are {after[kind]}")
        self.counts["drift"] = after["allocated"] - self.warm["allocated"] if self.warm else 0
        self.counts["resident drift"] = after["resident"] - self.warm["resident"] if self.warm else 0
        if self.counts["drift"] >= MOST_DRIFT:
            raise Failure(f"{self.name}: {self.counts['drift']} bytes more are allocated")
        if self.counts["resident drift"] >= MOST_DRIFT and not os.environ.get("QUOR_SANITIZED"):
            raise Failure(f"{self.name}: {self.counts['resident drift']} bytes more are resident")

    def end(self):
        status = self.till.end()
        if status != 0 and self.error is None:
            self.error = f"{self.name}: the till ended with status {status}"
        self.relay.stop()
        self.printer.kill()


def main() -> int:
    with tempfile.TemporaryDirectory() as folder:
        soaks = [
            Soak(f"{link}-{emulation}", relay, emulation, sys.argv[1], Path(folder, f"{link}-{emulation}"))
            for link, relay in (("socket", SocketRelay), ("terminal", TerminalRelay))
            for emulation in ("line", "escpos")
        ]
        end = time.monotonic() + SECONDS
        threads = [threading.Thread(target=soak.run, args=(end,)) for soak in soaks]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        for soak in soaks:
            soak.end()
    total = Counter()
    for soak in soaks:
        print(f"{soak.name}: {json.dumps(soak.counts)}")
        if soak.error:
            print(f"repeat with QUOR_SEED={SEED}: {soak.error}", file=sys.stderr)
        total += soak.counts
    print(
        f"{total['clean'] + total['cut']} jobs in {SECONDS:.0f} s, {total['cut']} of them cut; "
        f"{total['printed']} printed, {total['unconfirmed']} unconfirmed, {total['refused']} refused; memory "
        f"grew by {max(s.counts['resident drift'] for s in soaks) / 1024:.0f} KiB at most in a till"
    )
    return 1 if any(soak.error for soak in soaks) else 0


if __name__ == "__main__":
    sys.exit(main())
