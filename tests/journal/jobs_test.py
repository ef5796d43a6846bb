"""Printing under a name, and the journal that records the names."""

import os
import signal
import time

from harness import Case, eventually, finish, main, run, start

KEYS = {"job", "attempt", "repeated"}
RECEIPT = b"Espresso  2.20\nTotal     2.20\n"


class NamedJobs(Case):
    def setUp(self):
        super().setUp()
        self.journal = self.folder / "jobs.db"

    def print_job(self, place: str, name: str, *arguments: str, data: bytes = RECEIPT):
        return run("-d", place, "print", "-", "--json", "--job", name, "--journal", self.journal, *arguments, data=data)

    def jobs(self, *arguments: str):
        result = run("jobs", "--json", "--journal", self.journal, *arguments)
        self.assertExit(0, result)
        return result.json()["jobs"]

    def receipts(self, simulator) -> int:
        return simulator.state()["printedBytes"]

    def test_a_job_with_a_known_name_is_printed_only_once(self):
        for emulation in ("line", "escpos"):
            simulator = self.simulator()
            first = self.print_job(simulator.place, emulation, "-e", emulation)
            self.assertExit(0, first)
            self.assertEqual({key: first.json()[key] for key in KEYS}, {"job": emulation, "attempt": 1, "repeated": False})
            printed = self.receipts(simulator)
            again = self.print_job(simulator.place, emulation, "-e", emulation, "--again")
            self.assertExit(0, again)
            self.assertEqual({key: again.json()[key] for key in KEYS}, {"job": emulation, "attempt": 1, "repeated": True})
            self.assertEqual(again.json()["bytesAccepted"], len(RECEIPT))
            self.assertEqual(self.receipts(simulator), printed)

    def test_the_message_says_that_the_job_was_printed_before(self):
        simulator = self.simulator()
        self.print_job(simulator.place, "one")
        result = run("-d", simulator.place, "print", "-", "--job", "one", "--journal", self.journal, data=RECEIPT)
        self.assertIn("printed: already printed in attempt 1; this time nothing was sent", result.out)

    def test_repeating_a_printed_job_succeeds_even_without_its_printer(self):
        simulator = self.simulator()
        self.assertExit(0, self.print_job(simulator.place, "one"))
        simulator.kill()
        self.assertExit(0, self.print_job(simulator.place, "one"))

    def test_a_job_of_a_killed_process_is_unconfirmed_until_a_user_prints_the_job_again(self):
        simulator = self.simulator("tcp:0", "--set", "speed=5")
        process = start("-d", simulator.place, "print", self.file("receipt", RECEIPT), "--job", "one", "--journal", self.journal)
        eventually(lambda: simulator.state()["printedBytes"] > 0, "it prints")
        self.assertEqual([job["outcome"] for job in self.jobs()], ["printing"])
        process.kill()
        process.communicate()
        cause = f"the process that printed the job ended too early; up to {len(RECEIPT)} bytes were sent"
        known = self.jobs()[0]
        self.assertEqual((known["outcome"], known["reason"], known["ended"]), ("unconfirmed", cause, None))
        simulator.set(speed=0)
        printed = eventually(lambda: simulator.state()["buffered"] == 0 and self.receipts(simulator), "the rest")
        told = self.print_job(simulator.place, "one")
        self.assertExit(6, told)
        self.assertEqual((told.json()["outcome"], told.json()["error"], told.json()["repeated"]), ("unconfirmed", cause, False))
        self.assertEqual(self.receipts(simulator), printed)
        again = self.print_job(simulator.place, "one", "--again")
        self.assertExit(0, again)
        self.assertEqual((again.json()["outcome"], again.json()["attempt"]), ("printed", 2))
        self.assertGreater(self.receipts(simulator), printed)

    def test_print_waits_for_another_process_that_prints_the_same_job(self):
        simulator = self.simulator("tcp:0", "--set", "speed=20")
        first = start("-d", simulator.place, "print", self.file("receipt", RECEIPT), "--job", "one", "--journal", self.journal)
        eventually(lambda: self.receipts(simulator) > 0, "it prints")
        impatient = self.print_job(simulator.place, "one", "--timeout", "0")
        self.assertExit(6, impatient)
        self.assertIn("another process is printing this job", impatient.json()["error"])
        patient = self.print_job(simulator.place, "one")
        self.assertExit(0, patient)
        self.assertIs(patient.json()["repeated"], True)
        self.assertIn("another process is printing this job: waiting", patient.err)
        self.assertExit(0, finish(first, time.monotonic()))

    def test_other_data_under_a_known_name_is_a_usage_error(self):
        simulator = self.simulator()
        self.assertExit(0, self.print_job(simulator.place, "one"))
        printed = self.receipts(simulator)
        other = self.print_job(simulator.place, "one", data=b"something else\n")
        self.assertExit(2, other)
        self.assertIn("other data", other.json()["error"])
        self.assertEqual((other.json()["outcome"], other.json()["bytesAccepted"]), ("refused", 0))
        self.assertEqual(self.receipts(simulator), printed)

    def test_an_invalid_name_is_a_usage_error(self):
        for name in ("", "n" * 256, "a\nb", b"\xff"):
            result = run("-d", "virtual:", "print", "-", "--json", "--job", name, "--journal", self.journal, data=RECEIPT)
            self.assertExit(2, result)
            self.assertIn("1 to 255 bytes of UTF-8", result.json()["error"])
        self.assertExit(0, self.print_job("virtual:", "n" * 255))

    def test_the_options_for_named_jobs_are_refused_without_a_job_name(self):
        self.assertExit(2, run("-d", "virtual:", "print", "-", "--again", data=RECEIPT))
        self.assertExit(2, run("-d", "virtual:", "print", "-", "--journal", self.journal, data=RECEIPT))

    def test_json_answers_to_usage_errors_of_named_jobs_contain_job_attempt_and_repeated(self):
        for arguments in (("-d", "virtual:", "print", "--job", "one"),  # no file
                          ("print", "-", "--job", "one"),  # no device
                          ("-d", "virtual:", "print", self.folder / "missing", "--job", "one"),
                          ("-d", "virtual:", "print", "-", "--job=one", "--no-such-option"),
                          ("-d", "pigeon:", "print", "-", "--job", "two", "--job", "one")):
            result = run(*arguments, "--json", data=RECEIPT)
            self.assertExit(2, result)
            answer = result.json()
            self.assertEqual({key: answer[key] for key in KEYS}, {"job": "one", "attempt": 0, "repeated": False}, arguments)
            self.assertEqual((answer["outcome"], answer["bytesAccepted"]), ("refused", 0))
        self.assertEqual(run("print", "--json", "--job").json()["job"], "")
        self.assertNotIn("job", run("print", "--json").json())

    def test_nothing_is_sent_if_the_journal_cannot_be_used(self):
        simulator = self.simulator()
        for journal in (self.file("other", b"no database at all\n" * 100), self.file("empty", b""), "/proc/jobs.db",
                        "/dev/full", str(self.folder)):
            result = run("-d", simulator.place, "print", "-", "--json", "--job", "one", "--journal", journal, data=RECEIPT)
            self.assertExit(7, result)
            self.assertEqual((result.json()["outcome"], result.json()["bytesAccepted"]), ("refused", 0))
            self.assertIn(journal, result.json()["error"])
            self.assertEqual(result.json()["job"], "one")
        self.assertEqual(self.receipts(simulator), 0)

    def test_a_job_for_an_unreachable_printer_is_recorded_as_refused_and_printed_later(self):
        place = self.refusing_place()
        result = self.print_job(place, "one")
        self.assertExit(3, result)
        self.assertEqual((result.json()["attempt"], result.json()["repeated"]), (1, False))
        known = self.jobs()[0]
        self.assertEqual((known["outcome"], known["device"], known["bytes"]), ("refused", place, len(RECEIPT)))
        later = self.print_job("virtual:", "one")
        self.assertExit(0, later)
        self.assertEqual(later.json()["attempt"], 2)

    def test_the_json_list_of_jobs_has_every_key(self):
        self.assertEqual(self.jobs(), [])
        self.assertFalse(self.journal.exists())
        self.print_job("virtual:", "one")
        job, = self.jobs()
        self.assertEqual(set(job), {"job", "device", "bytes", "attempts", "begun", "ended", "outcome", "reason"})
        self.assertEqual((job["job"], job["device"], job["attempts"], job["outcome"]), ("one", "virtual:", 1, "printed"))
        for key in ("begun", "ended"):
            self.assertRegex(job[key], r"^20\d\d-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z$")
        self.assertRegex(run("jobs", "--journal", self.journal).out, r"^20.* printed  one  30 bytes on virtual:\n$")

    def test_a_forgotten_job_is_printed_as_a_new_job(self):
        self.print_job("virtual:", "one")
        self.print_job("virtual:", "two")
        self.assertEqual([job["job"] for job in self.jobs("--forget", "one")], ["two"])
        self.assertIs(self.print_job("virtual:", "one").json()["repeated"], False)
        unknown = run("jobs", "--journal", self.journal, "--forget", "three")
        self.assertExit(2, unknown)
        self.assertIn('no job "three"', unknown.err)

    def test_only_jobs_older_than_the_given_days_are_forgotten(self):
        self.print_job("virtual:", "one")
        self.assertEqual(len(self.jobs("--older-than", "1")), 1)
        self.assertEqual(self.jobs("--older-than", "0"), [])
        self.assertExit(2, run("jobs", "--older-than", "soon"))

    def test_the_journal_is_in_the_state_folder_and_readable_by_its_user_alone(self):
        environment = {**os.environ, "XDG_STATE_HOME": str(self.folder / "state")}
        self.assertExit(0, run("-d", "virtual:", "print", "-", "--job", "one", data=RECEIPT, env=environment))
        folder = self.folder / "state" / "quorport"
        self.assertEqual(folder.stat().st_mode & 0o777, 0o700)
        self.assertEqual((folder / "jobs.db").stat().st_mode & 0o777, 0o600)

    def test_the_outcome_of_an_interrupted_job_is_recorded(self):
        simulator = self.simulator("tcp:0", "--set", "speed=5")
        process = start("-d", simulator.place, "print", self.file("receipt", RECEIPT), "--json", "--job", "one", "--journal",
                        self.journal)
        eventually(lambda: self.receipts(simulator) > 0, "it prints")
        process.send_signal(signal.SIGINT)
        result = finish(process, time.monotonic())
        self.assertExit(130, result)
        known = self.jobs()[0]
        self.assertEqual((known["outcome"], known["reason"]), ("unconfirmed", result.json()["error"]))


if __name__ == "__main__":
    main()
