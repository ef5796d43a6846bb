"""Tills that print for a long time in real time, over a local socket and a terminal, on bad links.

The argument is the till program. The environment variable QUORPORT names the command `quorport`. QUOR_SOAK_SECONDS sets
the seconds for which the tills print, 10 by default. QUOR_SEED sets the seed of the random choices, 1 by default. The
last line of the output is a summary.

No job fails if its link was not cut. The jobs are on the paper in their order, and no job is there twice. If a job's
result is "printed", the whole job is on the paper. Of any other job, at most the beginning is on the paper. At the end,
a till has as many descriptors and threads as at the start, and less than 1 MiB more memory than after its fourth job.
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
WARM_JOBS = 4  # after so few jobs, the till has already allocated all memory that it keeps
NOT_MEASURED = "not measured"


class Failure(Exception):
    pass


class Till:
    """The process under test. Its port, platform, job and logger are the product's own."""

    def __init__(self, program: str, device: str, log: Path, emulation: str):
        self.process = subprocess.Popen(
            [program, device, log, emulation], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True
        )

    def ask(self, request: str, data: str = "") -> dict:
        self.process.stdin.write(request + "\n" + data)
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


def receipt(job: int, size: int) -> str:
    """Lines that no other job has. They contain no spaces, because paper does not show a space at the end of a line."""
    return "".join(f"{f'job-{job}/line-{line}':.<31}\n" for line in range(size // 32 + 1))[:size]


class Soak:
    """One till, one link, one printer."""

    def __init__(self, name: str, relay: type[Relay], emulation: str, program: str, folder: Path):
        self.name, self.dice = name, random.Random(f"{SEED} {name}")
        folder.mkdir()
        self.receipts = folder / "receipts"
        self.printer = harness.Simulator(f"unix:{folder}/printer", "--receipts", str(self.receipts))
        self.relay = relay(folder, f"{folder}/printer")
        self.till = Till(program, self.relay.device, folder / "log", emulation)
        self.counts = Counter()
        self.jobs = 0
        self.paper = ""  # the text of the jobs that must be on the paper
        self.error: str | None = None
        self.drift: dict[str, int | str] = {"allocated": NOT_MEASURED, "resident": NOT_MEASURED}
        self.warm: dict | None = None
        self.before = self.till.ask("resources")

    def printed_bytes(self) -> int:
        """How many bytes the printer has printed, after it has taken all bytes that reached it."""
        if not self.relay.cut_done.wait(30):
            raise Failure(f"{self.name}: the relay does not listen again after a cut")
        return self.printer.state()["printedBytes"]

    def job(self):
        weather = weather_for(self.dice)
        size = self.dice.choice([1, 32, 500, 2000])
        port = self.dice.choice(["keep", "keep", "anew"])
        before = self.printed_bytes()
        cuts = self.relay.cuts
        self.relay.set_weather(weather)
        self.jobs += 1
        data = receipt(self.jobs, size)
        result = self.till.ask(f"print {size} {port}", data)
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
        self.paper += data[:paper]

    def run(self, end: float):
        try:
            while time.monotonic() < end:
                self.job()
                if self.jobs == WARM_JOBS:
                    self.warm = self.till.ask("resources")
            self.check_resources()
        except (Failure, AssertionError, OSError) as error:
            self.error = f"{error}"

    def check_resources(self):
        after = self.till.ask("resources")
        for kind in ("descriptors", "threads"):
            if after[kind] != self.before[kind]:
                raise Failure(f"{self.name}: {kind} were {self.before[kind]}, are {after[kind]}")
        if self.warm is None or self.jobs == WARM_JOBS:
            return
        self.drift = {kind: after[kind] - self.warm[kind] for kind in self.drift}
        for kind, drift in self.drift.items():
            if drift >= MOST_DRIFT and not (kind == "resident" and "-fsanitize" in os.environ.get("CXXFLAGS", "")):
                raise Failure(f"{self.name}: {drift} bytes more are {kind}")

    def check_paper(self):
        """Compares the paper without spaces and line ends, because the printer may wrap lines and omit the last line end."""
        expected, whole_lines = ("".join(text.split()) for text in (self.paper, self.paper.rpartition("\n")[0]))

        def torn_off() -> str:
            files = sorted(self.receipts.glob("*.txt"), key=lambda file: int(file.stem.rsplit("-")[1]))
            return "".join("".join(file.read_text().split()) for file in files)

        harness.eventually(lambda: len(torn_off()) >= len(whole_lines), f"{self.name}: the paper is torn off")
        paper = torn_off()
        if not expected.startswith(paper):
            place = len(os.path.commonprefix([paper, expected]))
            raise Failure(f"{self.name}: the paper holds {paper[place:][:80]!r} for {expected[place:][:80]!r}")

    def end(self):
        status = self.till.end()
        self.relay.stop()
        try:
            if status != 0:
                raise Failure(f"{self.name}: the till ended with status {status}")
            self.check_paper()
        except (Failure, AssertionError) as error:
            self.error = self.error or f"{error}"
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
        print(f"{soak.name}: {json.dumps(soak.counts)}, memory drift {json.dumps(soak.drift)}")
        if soak.error:
            print(f"repeat with QUOR_SEED={SEED}: {soak.error}", file=sys.stderr)
        total += soak.counts
    drifts = [soak.drift["resident"] for soak in soaks if soak.drift["resident"] != NOT_MEASURED]
    print(
        f"{total['clean'] + total['cut']} jobs in {SECONDS:.0f} s, {total['cut']} of them cut; "
        f"{total['printed']} printed, {total['unconfirmed']} unconfirmed, {total['refused']} refused; memory "
        + (f"grew by {max(drifts) / 1024:.0f} KiB at most in {len(drifts)} of {len(soaks)} tills" if drifts else NOT_MEASURED)
    )
    return 1 if any(soak.error for soak in soaks) else 0


if __name__ == "__main__":
    sys.exit(main())
