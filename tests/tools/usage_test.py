"""The arguments of the command, and the errors of wrong arguments."""

import os
import re
import subprocess

from harness import Case, main, run

COMMANDS = """list status online print cancel firmware dipswitch button-security disconnect monitor doctor
    simulate help jobs find""".split()


class CommandLine(Case):
    def test_help_names_every_command_and_ends_with_status_0(self):
        result = run("--help")
        self.assertExit(0, result)
        self.assertEqual(result.err, "")
        listing = result.out.partition("Commands:\n")[2].partition("\n\n")[0]
        self.assertEqual(sorted(re.findall(r"^  (\S+)", listing, re.M)), sorted(COMMANDS))

    def test_every_command_has_its_own_help(self):
        for command in COMMANDS:
            result = run(command, "--help")
            self.assertExit(0, result)
            self.assertIn(f"quorport {command}", result.out)

    def test_the_help_of_a_command_mentions_the_global_options(self):
        for command in set(COMMANDS) - {"help"}:
            self.assertIn("--device and --json, can also follow the command; quorport --help lists them.", run(command, "--help").out)

    def test_the_help_of_doctor_says_that_it_needs_a_device(self):
        self.assertExit(2, run("doctor"))
        self.assertRegex(run("doctor", "--help").out, r"Without\s+--device the exit status is 2")

    def test_the_help_of_print_names_the_outcome_of_an_unchecked_job(self):
        self.assertIn("unconfirmed at best", " ".join(run("-d", "virtual:", "print", "--help").out.split()))

    def test_the_version_is_one_line(self):
        result = run("--version")
        self.assertExit(0, result)
        self.assertRegex(result.out, r"^quorport \d+\.\d+\.\d+\n$")

    def test_a_missing_command_is_an_error_that_names_the_commands(self):
        for command in set(COMMANDS) - {"help"}:
            self.assertFailsInBothForms(2, saying=command)

    def test_the_error_of_an_unknown_command_names_the_command_and_the_known_commands(self):
        self.assertFailsInBothForms(2, "statsu", saying="statsu")
        self.assertFailsInBothForms(2, "statsu", saying="button-security")

    def test_the_error_of_an_unknown_option_names_the_option(self):
        self.assertFailsInBothForms(2, "status", "--tiemout", "3", saying="--tiemout")

    def test_the_error_of_a_mistyped_command_or_option_suggests_a_similar_name(self):
        for arguments, meant in ((("statsu",), "status"), (("firm",), "firmware"), (("help", "prnt"), "print"),
                                 (("--tiemout=3", "online"), "--timeout"), (("online", "--devcie", "x"), "--device"),
                                 (("print", "-", "--reciept", "a.txt"), "--receipt")):
            self.assertFailsInBothForms(2, *arguments, saying=f"did you mean {meant}?")
        for arguments in (("xyzzy",), ("online", "--xyzzy"), ("x" * 100000,)):
            self.assertNotIn("did you mean", self.assertFailsInBothForms(2, *arguments).err)

    def test_the_error_of_an_option_before_its_command_shows_the_right_order(self):
        self.assertFailsInBothForms(2, "--end-timeout", "2000", "print", "-", saying='"--end-timeout" must follow the command print')
        self.assertFailsInBothForms(2, "-v", "status", saying='"-v" must follow the command status')

    def test_the_error_of_unexpected_arguments_names_the_arguments_in_order(self):
        self.assertFailsInBothForms(2, "status", "a", "b", "c", saying='"a", "b", "c"')

    def test_the_command_help_shows_the_same_text_as_the_option_help(self):
        self.assertEqual(run("help").out, run("--help").out)
        for command in COMMANDS:
            self.assertEqual(run("help", command).out, run(command, "--help").out, command)
            self.assertExit(0, run("help", command))

    def test_the_json_answer_of_a_usage_error_of_print_has_an_outcome(self):
        for arguments in (("print",), ("print", "-"), ("print", "a", "b"), ("-d", "virtual:", "print", "-", "--tiemout"),
                          ("-t", "x", "print", "-"), ("-d", "pigeon:", "print", "-"), ("print", "-", "-e", "pcl")):
            answer = run(*arguments, "--json", data=b"text\n").json()
            self.assertEqual((answer["ok"], answer["outcome"], answer["bytesAccepted"]), (False, "refused", 0), arguments)
            self.assertTrue(answer["error"])

    def test_the_error_of_a_missing_value_names_the_option(self):
        self.assertFailsInBothForms(2, "online", "--timeout=", saying="--timeout")
        self.assertIn("--timeout", run("online", "--timeout").err)

    def test_the_error_of_a_second_file_names_the_file(self):
        self.assertFailsInBothForms(2, "print", "a", "b", saying="b")

    def test_print_needs_a_file(self):
        self.assertFailsInBothForms(2, "print", saying="FILE")

    def test_the_error_of_an_invalid_time_names_the_valid_values(self):
        for wrong in ("abc", "-1", "4294967296", "1.5", "", "0x10", "99999999999999999999"):
            result = self.assertFailsInBothForms(2, "online", "--timeout", wrong, saying="4294967295")
            self.assertIn("--timeout", result.err)
        for option in ("--end-timeout", "--hold-print-timeout"):
            self.assertFailsInBothForms(2, "print", "-", option, "4294967296", saying=option)

    def test_times_at_both_ends_of_the_range_are_accepted(self):
        for right in ("0", "4294967295", "0010"):
            self.assertExit(0, run("online", "--timeout", right))

    def test_an_emulation_is_accepted_in_any_letter_case(self):
        for name in ("line", "LINE", "EscPos"):
            self.assertExit(0, run("online", "-e", name))

    def test_the_error_of_an_unknown_emulation_lists_the_known_emulations(self):
        self.assertFailsInBothForms(2, "online", "-e", "pcl", saying='takes "line", "escpos" or "unknown", not "pcl"')

    def test_a_log_level_must_be_from_0_to_63(self):
        refusal = self.assertFailsInBothForms(2, "online", "--log-level", "99").json()["error"]
        self.assertTrue(refusal.startswith('--log-level takes a level from 0 to 63, not "99"'), refusal)

    def test_a_receipt_file_must_be_a_png_or_txt_file(self):
        self.assertFailsInBothForms(2, "print", "-", "--receipt", "a.pdf", saying=".png or .txt")

    def test_the_error_of_an_invalid_device_shows_the_right_form(self):
        for spec, saying in [
            ("udp:h:1", "tcp:HOST:PORT"),
            ("kitchen:9100", "tcp:kitchen:9100"),
            ("serial:/dev/x,flow=dsr", "rtscts"),
            ("tcp:nowhere", "HOST:PORT"),
            ("tcp:h:0", "65535"),
            ("tcp:h:1,bad=1", "serial, model"),
            ("tcp:h:1,baud=9600", "baud"),
            ("serial:/dev/x,baud=1", "9600"),
            ("unix:", "path"),
            ("virtual:,coverOpen=maybe", "true or false"),
            ("virtual:,nonsense=1", "coverOpen"),
            ("virtual:,id=x", "18446744073709551615"),
            ("", "tcp:HOST:PORT"),
        ]:
            result = self.assertFailsInBothForms(2, "-d", spec, "online", saying=saying)
            self.assertIn("--device", result.err)

    def test_global_options_are_accepted_before_and_after_the_command(self):
        before = run("-d", "virtual:,coverOpen=true", "--json", "online")
        after = run("online", "--json", "-d", "virtual:,coverOpen=true")
        self.assertEqual((before.code, before.out), (after.code, after.out))
        self.assertExit(4, before)

    def test_the_last_value_of_a_repeated_option_is_used(self):
        self.assertExit(2, run("online", "-t", "5", "-t", "x"))
        self.assertExit(0, run("online", "-e", "unknown", "-e", "line"))

    def test_the_value_of_an_option_may_be_empty(self):
        self.assertExit(0, run("online", "--settings=", "--settings", ""))

    def test_a_command_may_follow_a_device_option(self):
        self.assertExit(0, run("-d", "virtual:A", "-d", "virtual:B", "online"))

    def test_a_word_after_a_double_dash_is_not_an_option(self):
        odd = self.file("--json", b"text\n")
        result = run("-d", "virtual:", "print", "--", os.path.basename(odd), cwd=self.folder)
        self.assertExit(0, result)
        self.assertIn("printed", result.out)

    def test_a_file_may_be_named_like_a_command(self):
        self.file("status", b"text\n")
        self.assertExit(0, run("-d", "virtual:", "print", "status", cwd=self.folder))

    def test_control_characters_and_invalid_bytes_of_arguments_are_escaped(self):
        for name in (b"BT:a\x1b[2J\x07", b"BT:\xff\xfe", b"BT:%s%n%d", b"BT:" + b"x" * 100000):
            result = run("-p", name, "online")
            self.assertExit(3, result)
            self.assertNotIn("\x1b", result.err)
            self.assertNotIn("\x07", result.err)
            self.assertLess(len(result.err), 2000)
            self.assertIs(run("-p", name, "online", "--json").json()["ok"], False)

    def test_a_port_name_that_is_too_short_is_reported(self):
        for name in ("", "B", "BT"):
            self.assertFailsInBothForms(3, "-p", name, "online", saying="shorter than its prefix of three characters")

    def test_arbitrary_port_settings_cause_no_failure(self):
        for settings in ("%s%n", "d300", "dd5", "x" * 100000, "\x1b"):
            self.assertExit(0, run("-s", settings, "online"))


class StandardStreams(Case):
    def test_a_printer_link_never_reuses_the_descriptor_of_a_closed_standard_stream(self):
        simulator = self.simulator()
        for closed in ("<&-", ">&-", "2>&-", "<&- >&- 2>&-"):
            command = f'exec "$QUORPORT" -d {simulator.place} print "$0" {closed}'
            shell = subprocess.run(["sh", "-c", command, self.file("job", b"text\n")], timeout=60,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            self.assertEqual(shell.returncode, 0, closed)
        self.assertEqual(simulator.state()["printedBytes"], 4 * len(b"text\n"))

    def test_a_command_fails_if_its_answer_cannot_be_written(self):
        with open("/dev/full", "wb") as full:
            for command in ("status", "list", "online", "firmware", "--help"):
                result = run(command, stdout=full)
                self.assertExit(1, result)
                self.assertIn("standard output", result.err)

    def test_print_exits_with_6_if_a_job_is_printed_but_standard_output_is_full(self):
        for options in ((), ("--json",)):
            with open("/dev/full", "wb") as full:
                result = run("-d", "virtual:", "print", "-", *options, data=b"text\n", stdout=full)
            self.assertExit(6, result)
            self.assertIn("the result could not be written to standard output: No space left", result.err)

    def test_print_ends_with_the_status_of_a_refused_job_even_if_the_answer_cannot_be_written(self):
        with open("/dev/full", "wb") as full:
            self.assertExit(4, run("-d", "virtual:coverOpen=true", "print", "-", data=b"text\n", stdout=full))

    def test_a_broken_output_pipe_does_not_kill_the_command(self):
        reader, writer = os.pipe()
        os.close(reader)
        with open(writer, "wb") as pipe:
            self.assertExit(1, run("status", stdout=pipe))


if __name__ == "__main__":
    main()
