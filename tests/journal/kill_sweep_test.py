"""A process that prints a named job is killed at a system call, and is then started again with the same job.

QUOR_KILL_POINTS is the number of system calls that are tried for each printer. They are evenly spread over all calls;
"all" tries each call.
"""

import os
import subprocess

from harness import DEADLINE, QUORPORT, Case, eventually, main, proof_names, run

KILL_AT = os.environ["KILL_AT"]
POINTS = os.environ.get("QUOR_KILL_POINTS", "16")
KILLED = 137
RECEIPT = b"Espresso  2.20\nCake  3.80\n"


class KillSweep(Case):
    def sweep(self, emulation: str, proof: str) -> int:
        simulator = self.simulator("tcp:0")
        receipt = self.file("receipt", RECEIPT)
        job = 0

        def arguments() -> list[str]:
            more = ["--proof", proof] if proof else []
            return ["-d", simulator.place, "-e", emulation, "print", receipt, "--json", "--job", f"job {job}", "--journal",
                    f"{self.folder}/{emulation}{proof}.db", *more]

        def on_paper() -> int:
            state = eventually(lambda: (now := simulator.state())["buffered"] == 0 and now, "the printer has printed")
            return state["printedBytes"]

        def killed_at(call: int) -> bool:
            process = subprocess.run([KILL_AT, str(call), f"{emulation}{proof}.db", QUORPORT,
                                      *arguments()], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=DEADLINE)
            self.assertIn(process.returncode, (0, KILLED))
            return process.returncode == KILLED

        def calls() -> int:
            """Returns roughly how many system calls a run makes if it is not killed."""
            nonlocal job
            low, high = 1, 4096
            while high - low > 8:
                job += 1
                middle = (low + high) // 2
                low, high = (middle, high) if killed_at(middle) else (low, middle)
            return high

        before = on_paper()
        self.assertExit(0, run(*arguments()))
        whole = on_paper() - before
        self.assertGreater(whole, 0)
        count = calls()
        step = 1 if POINTS == "all" else max(1, count // int(POINTS))
        outcomes = {"printed": 0, "unconfirmed": 0}

        def try_kill_at(call: int) -> None:
            nonlocal job
            with self.subTest(emulation=emulation, proof=proof, call=call):
                job += 1
                before = on_paper()
                killed_at(call)
                next_start = run(*arguments())
                paper = on_paper() - before
                self.assertIn(next_start.code, (0, 6), "the journal opens, and says printed or unconfirmed")
                self.assertLessEqual(paper, whole, "never more than a copy")
                outcome = next_start.json()["outcome"]
                if outcome == "printed":
                    self.assertEqual(paper, whole, "never printed without paper")
                outcomes[outcome] += 1

        for call in range(1, count + 1, step):
            try_kill_at(call)
        # If the first byte and the outcome are only a few calls apart, the sweep may have skipped the calls between
        # them. For this case, each call is tried from the last backwards until an outcome is unconfirmed.
        for call in range(count, 0, -1):
            if outcomes["unconfirmed"]:
                break
            try_kill_at(call)
        self.assertGreater(outcomes["printed"], 0)
        self.assertGreater(outcomes["unconfirmed"], 0, "no call between the first byte and the outcome was tried")
        print(f"{emulation} {proof or 'auto'}: killed at {sum(outcomes.values())} of {count} calls: {outcomes}")
        return sum(outcomes.values())

    def test_after_a_kill_no_job_is_printed_twice_and_no_unprinted_job_is_reported_as_printed(self):
        settings = [("line", ""), *(("escpos", proof) for proof in proof_names())]
        print(f"{sum(self.sweep(*setting) for setting in settings)} cases")


if __name__ == "__main__":
    main()
