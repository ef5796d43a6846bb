"""The diagnostic records that --log asks for."""

import json

from harness import Case, main, run

KEYS = {"time", "thread", "type", "typeName", "level", "object", "file", "line", "method", "message"}


class LogOption(Case):
    def logged(self, *arguments: str, code: int = 0) -> list[dict]:
        target = self.folder / "log"
        self.assertExit(code, run(*arguments, "--log", target))
        return [json.loads(line) for line in target.read_text().splitlines()]

    def test_every_log_record_is_a_json_object_with_every_key(self):
        records = self.logged("status")
        self.assertGreater(len(records), 10)
        for record in records:
            self.assertEqual(set(record), KEYS)
            self.assertIn(record["type"], range(8))
            self.assertEqual(record["level"], 0)

    def test_every_entry_record_of_a_method_has_an_exit_record(self):
        for code, arguments in ((0, ("-d", "virtual:", "print", self.file("job", b"text\n"))), (0, ("status",)),
                                (3, ("-d", f"unix:{self.folder}/none", "status"))):
            depth = {}
            for record in self.logged(*arguments, code=code):
                if record["typeName"].endswith("Start") or record["typeName"].endswith("End"):
                    step = 1 if record["typeName"].endswith("Start") else -1
                    key = record["method"], record["object"]
                    depth[key] = depth.get(key, 0) + step
            self.assertIn("-[ExternalAccessoryPort runLoop71]", {method for method, _ in depth})
            self.assertEqual({key: left for key, left in depth.items() if left}, {})

    def test_all_log_records_are_written_when_the_command_ends(self):
        ends = {record["method"] for record in self.logged("status")[-2:] if record["typeName"].endswith("End")}
        self.assertEqual(ends, {"-[ExternalAccessoryPort close]", "-[ExternalAccessoryPort runLoop71]"})

    def test_print_with_a_receipt_file_logs_only_one_port_and_no_error(self):
        job = self.file("job", b"text\n")
        records = self.logged("-d", "virtual:", "print", "--receipt", self.folder / "receipt.txt", job)
        self.assertEqual({record["object"] for record in records}, {record["object"] for record in records[:1]})
        self.assertEqual([record for record in records if record["typeName"] == "Error"], [])

    def test_a_command_that_opens_no_port_logs_nothing(self):
        self.assertEqual(self.logged("list"), [])

    def test_the_logged_levels_can_be_selected(self):
        self.assertEqual({record["level"] for record in self.logged("status", "--log-level", "1")}, {1})
        both = self.logged("status", "--log-level", "1", "--log-level", "0")
        self.assertEqual({record["level"] for record in both}, {0, 1})

    def test_a_dash_as_the_log_file_means_standard_error(self):
        result = run("-d", "virtual:", "online", "--log", "-")
        self.assertExit(0, result)
        self.assertEqual(result.out, "virtual: on line\n")
        for line in result.err.splitlines():
            self.assertEqual(set(json.loads(line)), KEYS)

    def test_control_characters_of_arguments_are_escaped_in_the_log(self):
        target = self.folder / "log"
        run("-p", b"BT:\x1b[2J\xff", "online", "--log", target)
        self.assertNotIn(b"\x1b", target.read_bytes())
        self.assertIn("BT:\x1b[2J\ufffd", json.loads(target.read_text().splitlines()[0])["message"])

    def test_control_characters_of_accessory_and_printer_are_escaped_in_the_log(self):
        target = self.folder / "log"
        odd = bytes(range(1, 0x20)) + b"\x7f\xc2\x9b\xff"
        device = b"virtual:,name=" + odd.replace(b",", b"") + b",serial=" + odd.replace(b",", b"")
        run("-d", device, "print", "--unchecked", "-", "--log", target, data=odd)

        def speak(connection):
            connection.sendall(b"\x1b#*" + odd + b"\n\0\x5f" + odd + b"\0")
            connection.recv(1)

        run("-d", self.peer(speak).place, "-e", "escpos", "-t", "0", "status", "--log", target)
        for line in target.read_bytes().decode().splitlines():
            self.assertTrue(line.isprintable(), line)
            json.loads(line)

    def test_a_log_file_that_cannot_be_opened_is_reported_before_the_command_starts(self):
        contacted = []
        peer = self.peer(contacted.append)
        for target in (self.folder, self.folder / "none" / "log", ""):
            result = self.assertFailsInBothForms(2, "-d", peer.place, "online", "--log", str(target), saying="--log")
            self.assertIn("cannot be opened", result.err)
        self.assertEqual(contacted, [])

    def test_a_full_disk_of_the_log_does_not_make_the_command_fail(self):
        result = run("online", "--log", "/dev/full")
        self.assertExit(0, result)
        self.assertEqual(result.out, "virtual: on line\n")


if __name__ == "__main__":
    main()
