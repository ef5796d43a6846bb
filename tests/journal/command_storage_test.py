"""In the n-th run, the n-th call on the files of a command's journal fails: an open, a write, a sync or a truncation.

Either the command ends with status 7 and has sent nothing, or it reports the true outcome. The next
start finds an undamaged journal.
"""

import os

from harness import Case, main, run

RECEIPT = b"Espresso  2.20\nCake  3.80\n"


class StorageSweep(Case):
    def setUp(self):
        super().setUp()
        self.simulator_ = self.simulator()
        self.calls, self.outcomes = self.folder / "calls", {"printed": 0, "unconfirmed": 0, 7: 0}

    def paper(self) -> int:
        return self.simulator_.state()["printedBytes"]

    def print_job(self, journal, **environment):
        return run("-d", self.simulator_.place, "print", "-", "--json", "--job", "one", "--journal", journal, data=RECEIPT,
                   env=environment)

    def fail_at(self, call: int, later: dict[str, str]) -> bool:
        """Runs a command on a disk that fails at the call with this number, and then a second command on a sound
        disk. Returns false if the first command made fewer calls."""
        journal, before = self.folder / f"{call}{later}.db", self.paper()
        first = self.print_job(journal, LD_PRELOAD=os.environ["FAULTY_STORAGE"], QUOR_FAILING_CALL=str(call),
                               QUOR_STORAGE_CALLS=str(self.calls), ASAN_OPTIONS="verify_asan_link_order=0", **later)
        sent = self.paper() - before
        self.assertIn(first.code, (0, 7), first)
        if first.code == 7:
            self.assertEqual(sent, 0)
            self.assertEqual((first.json()["outcome"], first.json()["bytesAccepted"]), ("refused", 0))
            self.assertIn(str(journal), first.json()["error"])
            self.outcomes[7] += 1
        else:
            self.assertEqual(first.json()["outcome"], "printed")
            self.assertEqual(sent, len(RECEIPT))
        second = self.print_job(journal)
        self.assertIn(second.code, (0, 6), second)
        self.assertEqual(self.paper() - before, len(RECEIPT), "once on paper")
        if first.code == 7 or "not be recorded" not in first.err:
            self.assertEqual(second.json()["outcome"], "printed")
        self.outcomes[second.json()["outcome"]] += 1
        return int(self.calls.read_text()) >= call

    def test_print_either_sends_nothing_and_exits_with_7_or_reports_the_true_outcome(self):
        cases = 0
        for later in ({}, {"QUOR_AND_ALL_LATER": "1"}):
            call = 1
            while self.fail_at(call, later):
                call += 1
            self.assertGreater(call, 20)
            cases += call - 1
        for outcome, count in self.outcomes.items():
            self.assertGreater(count, 0, outcome)
        print(f"{cases} cases: {self.outcomes}")


if __name__ == "__main__":
    main()
