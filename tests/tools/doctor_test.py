"""`quorport doctor` names the cause of each failure, and gathers a bundle for support."""

import fcntl
import json
import os
import pty
import shutil
import socket
import stat
import termios
import threading
import time
import tty
import unittest
from pathlib import Path

from harness import (QUORPORT, STATUS_KEYS, STATUS_REQUEST, Case, answer_status, finish, main, receive, run, start,
                     status_block)

NOISE = b"\x05\xff\x1b\x80\x00"  # arrives if the speeds differ; its first byte announces its length


class SerialPrinter:
    """A serial printer that understands one speed, and answers with noise at any other speed."""

    def __init__(self, speed: int):
        self.speed = speed
        self.master, self.line = pty.openpty()
        tty.setraw(self.line)
        self.path = os.ttyname(self.line)
        self.thread = threading.Thread(target=self.serve, daemon=True)
        self.thread.start()

    def serve(self):
        unread = b""
        while True:
            try:
                unread += os.read(self.master, 4096)
            except OSError:
                return
            if STATUS_REQUEST in unread:
                unread = b""
                is_right = termios.tcgetattr(self.master)[5] == self.speed
                os.write(self.master, status_block() if is_right else NOISE)

    def close(self):
        os.close(self.line)
        self.thread.join()  # the thread's read fails when no program has the line open
        os.close(self.master)


def answer_escpos_alone(connection: socket.socket):
    unread = b""
    while more := connection.recv(4096):
        unread += more
        requests = sum(unread.count(bytes([0x10, 4, n])) for n in (1, 2, 4))
        connection.sendall(b"\x12" * requests)
        unread = unread[-2:] if not requests else b""


def say_nothing(connection: socket.socket):
    while connection.recv(4096):
        pass


class DoctorCauses(Case):
    """Each test causes one failure; the first cause that the doctor names must be the right one."""

    def assertCause(self, cause: str, code: int, *arguments: str, process=run):
        result = process(*arguments, "doctor", "--json")
        self.assertExit(code, result)
        answer = result.json()
        self.assertIs(answer["ok"], False)
        named = [finding["cause"] for finding in answer["findings"]]
        named += [finding["cause"] for device in answer["devices"] for finding in device["findings"]]
        self.assertEqual(named[0], cause, result)
        plain = process(*arguments, "doctor")
        self.assertExit(code, plain)
        self.assertIn("  wrong: " + answer["error"], plain.out)
        self.assertRegex(plain.out, r"(?m)^  do:    \w")
        self.assertEqual(plain.err, "")
        return named

    def serial_printer(self, speed: int) -> SerialPrinter:
        printer = SerialPrinter(speed)
        self.addCleanup(printer.close)
        return printer

    def test_doctor_reports_that_no_program_listens_at_the_address(self):
        self.assertCause("nothing-listens", 3, "-d", self.refusing_place())

    def test_doctor_reports_that_the_host_does_not_answer(self):
        self.assertCause("unreachable", 3, "-d", self.silent_place())

    def test_doctor_reports_that_the_host_name_cannot_be_resolved(self):
        # No part of a host name may be this long, so the resolver asks no server.
        self.assertCause("not-resolved", 3, "-d", f"tcp:{'a' * 200}:9100")

    def test_doctor_reports_that_the_path_does_not_exist(self):
        for scheme in ("serial", "unix"):
            self.assertCause("no-such-path", 3, "-d", f"{scheme}:{self.folder}/none")

    def test_doctor_reports_that_the_path_is_not_a_serial_line(self):
        for path in (self.file("plain", b""), self.folder, "/dev/null"):
            self.assertCause("no-tty", 3, "-d", f"serial:{path}")

    def test_doctor_reports_that_the_user_may_not_open_the_serial_line(self):
        printer = self.serial_printer(termios.B9600)
        os.chmod(printer.path, 0)
        self.assertCause("no-permission", 3, "-d", f"serial:{printer.path}", process=self.run_without_rights)

    @unittest.skipIf(os.geteuid() != 0, "only root can give the line to a group")
    def test_doctor_advises_joining_the_group_of_the_serial_line_unless_the_group_is_root(self):
        printer = self.serial_printer(termios.B9600)
        os.chmod(printer.path, 0o660)
        for group in ("lp", "root"):
            shutil.chown(printer.path, "root", group)
            advice = self.run_without_rights("-d", f"serial:{printer.path}", "doctor").out
            self.assertIn("you are not allowed to open the device", advice)
            self.assertEqual(f"usermod -aG {group} " in advice, group != "root", advice)

    def run_without_rights(self, *arguments: str):
        """Root may open every file. If the test runs as root, another user runs a copy of the command instead."""
        if os.geteuid() != 0:
            return run(*arguments)
        self.folder.chmod(0o755)
        copy = Path(shutil.copy(QUORPORT, self.folder))
        began = time.monotonic()
        return finish(start(*arguments, executable=copy, user=65534, group=65534, extra_groups=[]), began)

    def test_doctor_reports_that_another_program_uses_the_serial_line(self):
        printer = self.serial_printer(termios.B9600)
        os.chmod(printer.path, 0o666)
        fcntl.ioctl(printer.line, termios.TIOCEXCL)
        self.assertCause("in-use", 4, "-d", f"serial:{printer.path}", process=self.run_without_rights)

    def test_doctor_names_the_program_that_has_locked_the_serial_line(self):
        printer = self.serial_printer(termios.B9600)
        fcntl.flock(printer.line, fcntl.LOCK_EX)
        self.assertCause("in-use", 4, "-d", f"serial:{printer.path}")
        self.assertIn(f"(process {os.getpid()})", run("-d", f"serial:{printer.path}", "doctor").out)

    def test_doctor_finds_the_speed_of_a_serial_printer(self):
        printer = self.serial_printer(termios.B19200)
        self.assertCause("wrong-speed", 1, "-d", f"serial:{printer.path}")
        result = run("-d", f"serial:{printer.path},baud=38400", "doctor")
        self.assertIn("answers at 19200 baud, but was asked at 38400", result.out)
        self.assertIn("set baud=19200 in the device", result.out)
        self.assertExit(0, run("-d", f"serial:{printer.path},baud=19200", "doctor"))

    def test_doctor_reports_that_the_printer_uses_the_other_emulation(self):
        escpos, line = self.peer(answer_escpos_alone), self.peer(lambda c: answer_status(c, status_block()))
        self.assertCause("other-emulation", 1, "-d", escpos.place)
        self.assertCause("other-emulation", 1, "-d", line.place, "-e", "escpos")
        self.assertIn("--emulation escpos", run("-d", escpos.place, "doctor").out)
        for place in (escpos.place, line.place):
            self.assertExit(0, run("-d", place, "-e", "unknown", "doctor"))

    def test_doctor_reports_a_silent_printer(self):
        place = self.peer(say_nothing).place
        self.assertCause("silent", 1, "-d", place)
        # The printer may be printing another till's job; switching the printer off would lose this job.
        self.assertIn("  do:    if another program uses the printer", run("-d", place, "doctor").out)

    def test_doctor_reports_a_device_that_is_not_a_printer(self):
        for greeting in (b"SSH-2.0-door\r\n", NOISE):
            peer = self.peer(lambda c, greeting=greeting: (receive(c, 7), c.sendall(greeting), say_nothing(c)))
            self.assertCause("not-understood", 1, "-d", peer.place)

    def test_doctor_reports_a_link_that_ends_after_the_first_byte(self):
        self.assertCause("link-lost", 5, "-d", self.peer(lambda connection: receive(connection, 1)).place)

    def test_doctor_reports_why_the_printer_does_not_print(self):
        for setting, cause in (("coverOpen", "cover-open"), ("receiptPaperEmpty", "paper-out"),
                               ("paperPresent", "paper-in-exit"), ("cutterError", "printer-error"),
                               ("offline", "off-line")):
            simulator = self.simulator("tcp:0", "--set", f"{setting}=true")
            self.assertEqual(self.assertCause(cause, 4, "-d", simulator.place), [cause])
        for setting, cause in (("coverOpen", "cover-open"), ("receiptPaperEmpty", "paper-out"), ("offline", "off-line")):
            self.assertEqual(self.assertCause(cause, 4, "-e", "escpos", "-d", f"virtual:{setting}=true"), [cause])

    def test_doctor_names_every_reason_why_the_printer_is_not_ready(self):
        named = self.assertCause("cover-open", 4, "-d", "virtual:coverOpen=true,receiptPaperEmpty=true,jamError=true")
        self.assertEqual(named, ["cover-open", "paper-out", "printer-error"])

    def test_doctor_reports_a_device_of_a_different_maker_as_no_printer(self):
        named = self.assertCause("no-printer", 3, "-d", "virtual:manufacturer=somebody")
        self.assertEqual(named, ["no-printer"])

    def test_doctor_reports_a_port_name_that_matches_no_device(self):
        self.assertCause("port-name", 3, "-d", "virtual:Bar", "-p", "BT:Till")

    def test_the_first_faulty_device_decides_the_exit_status_of_doctor(self):
        self.assertCause("paper-out", 4, "-d", "virtual:", "-d", "virtual:receiptPaperEmpty=true",
                         "-d", f"unix:{self.folder}/none")


class DoctorResult(Case):
    def test_doctor_also_reports_a_printer_without_a_fault(self):
        for listen in ("tcp:0", f"unix:{self.folder}/printer", "pty:"):
            simulator = self.simulator(listen, "--set", "receiptPaperNearEmptyInner=true")
            result = run("-d", simulator.place, "doctor")
            self.assertExit(0, result)
            self.assertRegex(result.out, r"  well:  answers in line mode.*; ready to print; the paper is near its end")
            answer = run("-d", simulator.place, "doctor", "--json").json()
            self.assertEqual(set(answer), {"ok", "findings", "devices"})
            (device,) = answer["devices"]
            self.assertEqual(device["device"], simulator.place)
            self.assertEqual(set(device["status"]), STATUS_KEYS)
            self.assertEqual(device["proof"], "block")
            self.assertIn("  proof: block: the printer counts the marks", result.out)

    def test_doctor_reports_how_an_escpos_printer_confirms_jobs(self):
        for proofs, found in (("block+in-order", "block"), ("process-id+in-order", "process-id"), ("in-order", "in-order"),
                              ("none", "none")):
            simulator = self.simulator("tcp:0", "--set", f"proofs={proofs}")
            result = run("-d", simulator.place, "-e", "escpos", "doctor")
            self.assertExit(0, result)
            self.assertIn(f"  proof: {found}: the printer ", result.out)
            self.assertIn(f"add ,proof={found} to the device", result.out)
            (device,) = run("-d", simulator.place, "-e", "escpos", "doctor", "--json").json()["devices"]
            self.assertEqual(device["proof"], found)
        self.assertIn("unconfirmed at best", result.out)

    def test_doctor_reports_no_proof_for_a_printer_that_is_off_line(self):
        result = run("-d", "virtual:coverOpen=true", "-e", "escpos", "doctor", "--json")
        self.assertIsNone(result.json()["devices"][0]["proof"])

    def test_doctor_prints_nothing_and_does_not_drop_data_in_the_printer(self):
        simulator = self.simulator("tcp:0", "--set", "offline=true")
        self.assertExit(6, run("-d", simulator.place, "print", "--unchecked", "-", data=b"kept\n"))
        held = simulator.state()["buffered"]
        for emulation in ("line", "escpos"):
            self.assertExit(4, run("-d", simulator.place, "-e", emulation, "doctor"))
        self.assertEqual(simulator.state()["buffered"], held)
        self.assertEqual(simulator.state()["printedBytes"], 0)

    def test_doctor_needs_a_device(self):
        self.assertFailsInBothForms(2, "doctor", saying="--device")
        self.assertFailsInBothForms(2, "-d", "pigeon:", "doctor", saying="pigeon")


class DoctorBundle(Case):
    def bundle(self, *arguments: str) -> tuple[int, dict]:
        path = self.folder / "bundle.json"
        result = run(*arguments, "doctor", "--bundle", path)
        self.assertIn(str(path), result.out)
        return result.code, json.loads(path.read_text())

    def test_a_bundle_contains_versions_options_findings_and_log_records(self):
        code, bundle = self.bundle("-d", "virtual:coverOpen=true", "-t", "1234")
        self.assertEqual(code, 4)
        self.assertEqual(set(bundle), {"time", "versions", "options", "findings", "log"})
        version = run("--version").out.split()[-1]
        self.assertEqual(bundle["versions"]["quorport"], version)
        self.assertEqual(bundle["options"]["timeout"], 1234)
        (device,) = bundle["findings"]["devices"]
        self.assertEqual(device["findings"][0]["cause"], "cover-open")
        self.assertEqual(device["status"]["coverOpen"], 1)
        self.assertTrue(any("getParsedStatus" in record["method"] for record in bundle["log"]))

    def test_a_bundle_can_be_written_together_with_a_log(self):
        log = self.folder / "log"
        _, bundle = self.bundle("-d", "virtual:", "--log", log)
        self.assertEqual(len(log.read_text().splitlines()), len(bundle["log"]))

    def test_only_its_owner_may_read_a_bundle(self):
        path = self.folder / "bundle.json"
        before = os.umask(0)
        self.addCleanup(os.umask, before)
        self.assertExit(0, run("-d", "virtual:", "doctor", "--json", "--bundle", path))
        self.assertEqual(stat.S_IMODE(path.stat().st_mode), 0o600)

    def test_a_bundle_does_not_replace_an_existing_file(self):
        path = self.file("precious", b"keep me")
        link = self.folder / "link"
        link.symlink_to(self.folder / "nowhere")
        for place in (path, link):
            self.assertFailsInBothForms(2, "-d", "virtual:", "doctor", "--bundle", str(place), saying="exists")
        self.assertEqual(Path(path).read_bytes(), b"keep me")

    def test_doctor_examines_nothing_if_the_bundle_cannot_be_written(self):
        asked = []
        peer = self.peer(asked.append)
        self.assertFailsInBothForms(2, "-d", peer.place, "doctor", "--bundle", f"{self.folder}/no/file",
                                    saying="No such file")
        self.assertEqual(asked, [])

    def test_doctor_writes_no_bundle_file_if_the_device_is_invalid(self):
        path = self.folder / "bundle.json"
        self.assertExit(2, run("-d", "pigeon:", "doctor", "--bundle", path))
        self.assertFalse(path.exists())


if __name__ == "__main__":
    main()
