"""The print command: its answers and its receipts."""

import os
import pty

from harness import STATUS_KEYS, Case, finish, main, proof_names, run, start

KEYS = {"ok", "device", "outcome", "proof", "resultCode", "bytesTotal", "bytesAccepted", "status", "error"}


class PrintCommand(Case):
    def each_link(self, *arguments: str):
        for listen in ("tcp:0", f"unix:{self.folder}/printer", "pty:"):
            with self.subTest(listen=listen):
                yield self.simulator(listen, *arguments)

    def test_the_json_answer_of_a_printed_job_has_every_key_and_no_error(self):
        for simulator in self.each_link():
            for emulation in ("line", "escpos"):
                result = run("-d", simulator.place, "-e", emulation, "print", "-", "--json", data=b"one\ntwo\n")
                self.assertExit(0, result)
                answer = result.json()
                self.assertEqual(set(answer), KEYS)
                self.assertEqual((answer["ok"], answer["outcome"], answer["resultCode"]), (True, "printed", 0))
                self.assertEqual((answer["bytesTotal"], answer["bytesAccepted"]), (8, 8))
                self.assertEqual(set(answer["status"]), STATUS_KEYS)

    def test_the_text_answer_of_a_printed_job_is_a_sentence(self):
        result = run("-d", "virtual:", "print", "-", data=b"x" * 1203 + b"\n")
        self.assertExit(0, result)
        self.assertEqual((result.out, result.err), ("virtual: printed: the printer confirmed all 1,204 bytes\n", ""))

    def test_an_empty_job_is_a_usage_error(self):
        contacted = []
        place = self.peer(contacted.append).place
        for job in ("-", self.file("empty", b"")):
            result = run("-d", place, "print", job, "--json", data=b"")
            self.assertExit(2, result)
            answer = result.json()
            self.assertEqual(set(answer), KEYS)
            self.assertEqual((answer["ok"], answer["outcome"], answer["bytesAccepted"]), (False, "refused", 0))
            self.assertIn("there is nothing to print", answer["error"])
        self.assertEqual(contacted, [])

    def test_a_job_without_a_device_is_refused(self):
        result = run("print", "-", "--json", data=b"text\n")
        self.assertExit(2, result)
        answer = result.json()
        self.assertEqual(set(answer), KEYS)
        self.assertEqual((answer["outcome"], answer["bytesAccepted"], answer["device"]), ("refused", 0, None))
        for way in ("--device tcp:HOST:PORT", "QUORPORT_DEVICE", "--device virtual:"):
            self.assertIn(way, answer["error"])

    def test_the_answer_of_print_names_the_device(self):
        for device, code in (("virtual:", 0), ("virtual:,coverOpen=true", 4), (f"unix:{self.folder}/none", 3)):
            result = run("-d", device, "print", "-", "--json", data=b"text\n")
            self.assertExit(code, result)
            self.assertEqual(result.json()["device"], device)

    def test_an_error_before_the_job_is_reported_as_refused(self):
        for arguments in (("--log", self.folder), ("-p", "BT:nobody"), ("--receipt", self.folder / "no" / "a.txt")):
            result = run("-d", "virtual:", "print", "-", *arguments, "--json", data=b"text\n")
            self.assertEqual(set(result.json()), KEYS)
            self.assertEqual((result.json()["outcome"], result.json()["bytesAccepted"]), ("refused", 0))

    def test_an_unchecked_job_is_unconfirmed(self):
        for simulator in self.each_link():
            result = run("-d", simulator.place, "print", "--unchecked", "-", "--json", data=b"text\n")
            self.assertExit(6, result)
            answer = result.json()
            self.assertEqual(set(answer), KEYS)
            self.assertEqual((answer["ok"], answer["outcome"], answer["status"]), (False, "unconfirmed", None))
            self.assertEqual((answer["bytesTotal"], answer["bytesAccepted"]), (5, 5))

    def test_the_answer_of_print_names_the_proof_that_was_used(self):
        for proofs, used in (("block", "block"), ("process-id+in-order", "process-id"), ("in-order", "in-order")):
            device = f"virtual:,proofs={proofs}"
            answer = run("-d", device, "-e", "escpos", "print", "-", "--json", data=b"text\n").json()
            self.assertEqual((answer["outcome"], answer["proof"]), ("printed", used))

    def test_the_proof_can_be_selected_by_an_option(self):
        for proof in proof_names():
            answer = run("-d", "virtual:", "-e", "escpos", "print", "--proof", proof, "-", "--json", data=b"text\n").json()
            self.assertEqual((answer["outcome"], answer["proof"]), ("printed", proof))

    def test_the_proof_of_the_device_is_used_unless_the_option_overrides_it(self):
        for options, used in (((), "in-order"), (("--proof", "process-id"), "process-id"), (("--proof", "auto"), "block")):
            result = run("-d", "virtual:,proof=in-order", "-e", "escpos", "print", *options, "-", "--json", data=b"text\n")
            self.assertEqual((result.json()["outcome"], result.json()["proof"]), ("printed", used))

    def test_a_hint_names_the_device_key_that_makes_later_jobs_start_faster(self):
        asked = run("-d", "virtual:proofs=process-id", "-e", "escpos", "print", "-", data=b"text\n")
        self.assertIn("hint: add ,proof=process-id to the device", asked.out)
        for silent in ("proofs=none", "proofs=process-id,late-reply=3000@process-id"):
            result = run("-d", "virtual:" + silent, "-e", "escpos", "print", "-", data=b"text\n")
            self.assertIn("within 1 s", result.err)
            self.assertIn("hint: if every job ends without an answer, add ,proof=none to the device", result.err)
        for options in (("-d", "virtual:"), ("-d", "virtual:,proof=block", "-e", "escpos")):
            self.assertNotIn("hint", run(*options, "print", "-", data=b"text\n").out)

    def test_a_job_that_ends_before_the_printer_says_how_it_confirms_jobs_gives_no_hint(self):
        result = run("-d", "virtual:cut-after-in=24", "-e", "escpos", "print", "-", data=b"text\n")
        self.assertIn("refused: link lost", result.err)
        self.assertNotIn("hint", result.err)

    def test_a_job_without_a_proof_is_unconfirmed(self):
        for option in (("--proof", "none"), ("--unchecked",)):
            result = run("-d", "virtual:", "print", *option, "-", "--json", data=b"text\n")
            self.assertExit(6, result)
            self.assertEqual((result.json()["outcome"], result.json()["proof"]), ("unconfirmed", "none"))

    def test_an_unknown_proof_is_a_usage_error(self):
        result = run("-d", "virtual:", "print", "--proof", "hope", "-", data=b"text\n")
        self.assertExit(2, result)
        self.assertRegex(result.err, 'takes auto, block, .* or none, not "hope"')

    def test_a_job_is_refused_with_the_cause_if_the_printer_is_not_ready(self):
        for simulator in self.each_link("--set", "coverOpen=true"):
            for emulation in ("line", "escpos"):
                result = run("-d", simulator.place, "-e", emulation, "print", "-", "--json", data=b"text\n")
                self.assertExit(4, result)
                answer = result.json()
                self.assertEqual((answer["ok"], answer["outcome"], answer["bytesAccepted"]), (False, "refused", 0))
                self.assertIn("cover open", answer["error"])
                self.assertIn("next: ", result.err)

    def test_a_job_is_refused_if_paper_remains_in_the_exit_until_the_time_out(self):
        result = run("-d", "virtual:,paperPresent=true", "print", "-", "--json", "--hold-print-timeout", "0", data=b"x\n")
        self.assertExit(4, result)
        self.assertEqual(result.json()["resultCode"], -3)

    def test_a_job_that_is_not_confirmed_in_time_is_unconfirmed(self):
        result = run("-d", "virtual:,speed=1", "print", "-", "--json", "--end-timeout", "0", data=b"slow text\n" * 9)
        self.assertExit(6, result)
        self.assertEqual((result.json()["outcome"], result.json()["bytesAccepted"]), ("unconfirmed", 90))

    def test_a_job_is_refused_if_the_printer_cannot_be_reached(self):
        result = run("-d", f"unix:{self.folder}/none", "print", "-", "--json", data=b"text\n")
        self.assertExit(3, result)
        answer = result.json()
        self.assertEqual(set(answer), KEYS)
        self.assertEqual((answer["outcome"], answer["bytesTotal"], answer["bytesAccepted"]), ("refused", 5, 0))

    def test_a_job_file_that_cannot_be_read_is_named_and_nothing_is_sent(self):
        contacted = []
        peer = self.peer(contacted.append)
        for name in ("none", "."):
            result = run("-d", peer.place, "print", str(self.folder / name), "--json")
            self.assertExit(2, result)
            self.assertEqual((result.json()["ok"], result.json()["outcome"]), (False, "refused"))
            self.assertIn(str(self.folder), result.err)
        with open(os.devnull, "wb") as unreadable:
            self.assertExit(2, run("-d", peer.place, "print", "-", stdin=unreadable))
        self.assertEqual(contacted, [])

    def test_the_progress_is_shown_on_a_terminal_but_not_written_to_a_file(self):
        job = self.file("job", b"text\n" * 200)
        ours, theirs = pty.openpty()
        process = start("-d", "virtual:", "print", job, stderr=theirs)
        os.close(theirs)
        finish(process, 0)
        shown = b""
        try:
            while more := os.read(ours, 4096):
                shown += more
        except OSError:
            pass  # the system reports by this error that the terminal is closed
        os.close(ours)
        self.assertIn(b"1,000 of 1,000 bytes", shown)
        self.assertTrue(shown.endswith(b"\r\x1b[K"), shown)
        self.assertEqual(run("-d", "virtual:", "print", job).err, "")


class ReceiptOption(Case):
    def test_a_receipt_file_can_contain_the_paper_as_text(self):
        target = self.folder / "receipt.txt"
        self.assertExit(0, run("-d", "virtual:", "print", "-", "--receipt", target, data=b"Bread  4.20\n"))
        self.assertEqual(target.read_text().strip(), "Bread  4.20")

    def test_a_text_receipt_contains_no_control_character_of_the_job(self):
        target = self.folder / "receipt.txt"
        self.assertExit(0, run("-d", "virtual:", "print", "-", "--receipt", target, data=bytes(range(0x80, 0xa0)) + b"a\x7f\x05\x07\xc2\x9b\n"))
        self.assertTrue(target.read_text().replace("\n", "").isprintable(), target.read_text())

    def test_a_receipt_file_can_contain_the_paper_as_a_picture(self):
        target = self.folder / "receipt.png"
        self.assertExit(0, run("-d", "virtual:", "print", "-", "--receipt", target, data=b"Bread  4.20\n"))
        self.assertTrue(target.read_bytes().startswith(b"\x89PNG\r\n\x1a\n"))

    def test_the_receipt_option_needs_a_virtual_printer(self):
        contacted = []
        peer = self.peer(contacted.append)
        result = run("-d", peer.place, "print", "-", "--receipt", self.folder / "a.txt", data=b"x\n")
        self.assertExit(2, result)
        self.assertIn("virtual:", result.err)
        self.assertEqual(contacted, [])

    def test_the_receipt_file_contains_the_paper_of_the_printer_that_the_port_name_chooses(self):
        target = self.folder / "receipt.txt"
        peer = self.peer(lambda connection: None)
        self.assertExit(0, run("-d", peer.place, "-d", "virtual:B", "-p", "BT:B", "print", "-", "--receipt", target,
                               data=b"text\n"))
        self.assertEqual(target.read_text().strip(), "text")

    def test_a_receipt_file_that_cannot_be_created_is_reported_before_the_job_is_sent(self):
        result = run("-d", "virtual:", "print", "-", "--receipt", self.folder / "none" / "a.txt", "--json", data=b"text\n")
        self.assertExit(2, result)
        self.assertEqual(result.json()["bytesAccepted"], 0)

    def test_a_receipt_that_does_not_fit_on_the_disk_makes_the_command_fail_after_the_print(self):
        target = self.folder / "receipt.txt"
        target.symlink_to("/dev/full")
        result = run("-d", "virtual:", "print", "-", "--receipt", target, "--json", data=b"text\n")
        self.assertExit(1, result)
        answer = result.json()
        self.assertEqual((answer["ok"], answer["outcome"], answer["bytesAccepted"]), (False, "printed", 5))
        self.assertIn("No space left on device", answer["error"])
        self.assertIn("No space left on device", result.err)

    def test_an_older_receipt_is_kept_when_nothing_was_printed(self):
        target = self.folder / "receipt.txt"
        target.write_text("older")
        self.assertExit(3, run("-d", "virtual:A", "-p", "BT:B", "print", "-", "--receipt", target, data=b"text\n"))
        self.assertEqual(target.read_text(), "older")


if __name__ == "__main__":
    main()
