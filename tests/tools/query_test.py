"""The commands that query the printer, over every kind of link."""

import re
import socket
import threading

from harness import (DEADLINE, FLAGS, STATUS_KEYS, STATUS_REQUEST, Case, answer_status, answering, at_once, eventually, in_pieces,
                     main, receive, run, status_block)


class QueriesOverEveryLink(Case):
    """Each test runs against a printer that the command itself serves."""

    def each_link(self, *arguments: str):
        for listen in ("tcp:0", f"unix:{self.folder}/printer,with,commas".replace(",", "\\,"), "pty:"):
            with self.subTest(listen=listen):
                yield self.simulator(listen, *arguments)

    def test_the_json_status_has_exactly_the_documented_fields(self):
        for simulator in self.each_link("--set", "receiptPaperNearEmptyInner=true", "--set", "connectedInterface=2"):
            result = run("-d", simulator.place, "status", "--json")
            self.assertExit(0, result)
            answer = result.json()
            self.assertEqual(set(answer), {"ok", "device", "status"})
            self.assertIs(answer["ok"], True)
            self.assertEqual(set(answer["status"]), STATUS_KEYS)
            up = {name for name in FLAGS if answer["status"][name] == 1}
            self.assertEqual(up, {"receiptPaperNearEmptyInner", "etbAvailable"})
            self.assertEqual(answer["status"]["connectedInterface"], 2)
            self.assertEqual(answer["status"]["raw"], "890100000420000002")

    def test_a_change_of_the_printer_is_in_the_next_status(self):
        for simulator in self.each_link():
            self.assertTrue(run("-d", simulator.place, "status").out.startswith(f"{simulator.place}: Ready to print.\n"))
            simulator.set(coverOpen=True, receiptPaperEmpty=True)
            result = run("-d", simulator.place, "status")
            self.assertExit(0, result)
            self.assertTrue(result.out.startswith(f"{simulator.place}: Not ready: cover open, paper out.\n"), result)

    def test_online_answers_in_text_and_in_json_and_by_exit_status(self):
        for simulator in self.each_link():
            for emulation in ("line", "escpos"):
                for offline, code, text in ((False, 0, "on line\n"), (True, 4, "off line\n")):
                    simulator.set(offline=offline)
                    plain = run("-d", simulator.place, "-e", emulation, "online")
                    self.assertExit(code, plain)
                    self.assertEqual(plain.out, f"{simulator.place}: {text}")
                    result = run("-d", simulator.place, "-e", emulation, "online", "--json")
                    self.assertExit(code, result)
                    self.assertAnswers(simulator.place, {"ok": True, "online": not offline}, result)

    def test_firmware_is_read_in_both_emulations(self):
        for simulator in self.each_link():
            text = '"Quor" 1.2 <' + "z" * 52
            self.assertEqual(len(text), 64)
            simulator.set(firmware=text)
            for emulation in ("line", "escpos"):
                result = run("-d", simulator.place, "-e", emulation, "firmware", "--json")
                self.assertExit(0, result)
                self.assertAnswers(simulator.place, {"ok": True, "firmware": text}, result)
                self.assertEqual(run("-d", simulator.place, "-e", emulation, "firmware").out, f"{simulator.place}: {text}\n")

    def test_dipswitch_returns_two_banks_in_hex(self):
        for simulator in self.each_link():
            simulator.set(dip1="0a1b", dip2="00FF")
            result = run("-d", simulator.place, "dipswitch", "--json")
            self.assertExit(0, result)
            self.assertAnswers(simulator.place, {"ok": True, "banks": ["0a1b", "00ff"]}, result)
            self.assertEqual(run("-d", simulator.place, "dipswitch").out,
                             f"{simulator.place}: DIP switches\n  bank 1: 0a 1b (hex)\n  bank 2: 00 ff (hex)\n")

    def test_button_security_returns_a_time_in_milliseconds(self):
        for simulator in self.each_link():
            times = {}
            for bank in ("0000", "4000", "8000", "c000"):
                simulator.set(dip1=bank)
                result = run("-d", simulator.place, "-t", "1234", "button-security", "--json")
                self.assertExit(0, result)
                self.assertEqual(set(result.json()), {"ok", "device", "milliseconds"})
                times[bank] = result.json()["milliseconds"]
            self.assertEqual(sorted(times.values()), [0, 6234, 11234, 21234])
            self.assertRegex(run("-d", simulator.place, "button-security").out, r": (off|[\d,]+ ms)\n$")

    def test_disconnect_makes_the_printers_module_drop_the_link(self):
        for simulator in self.each_link():
            result = run("-d", simulator.place, "disconnect", "--json")
            self.assertExit(0, result)
            self.assertAnswers(simulator.place, {"ok": True}, result)
            place = simulator.next_place() if simulator.place.startswith("serial:") else simulator.place
            self.assertExit(0, run("-d", place, "status"))

    def test_cancel_makes_the_printer_drop_its_data(self):
        for simulator in self.each_link("--set", "offline=true"):
            self.assertExit(6, run("-d", simulator.place, "print", "--unchecked", "-", data=b"never printed\n"))
            eventually(lambda: simulator.state()["buffered"] > 0, "the printer to hold the bytes")
            result = run("-d", simulator.place, "cancel", "--json")
            self.assertExit(0, result)
            self.assertAnswers(simulator.place, {"ok": True}, result)
            eventually(lambda: simulator.state()["buffered"] == 0, "the printer to drop it")

    def test_the_listening_address_of_a_virtual_printer_is_a_valid_device(self):
        for simulator in self.each_link():
            (accessory,) = run("-d", simulator.place + ",name=Till,serial=1", "list", "--json").json()["accessories"]
            self.assertEqual((accessory["name"], accessory["chosen"]), ("Till", True))


class ListCommand(Case):
    KEYS = {"name", "serialNumber", "modelNumber", "manufacturer", "protocolStrings", "connectionID", "connected",
            "chosen"}

    def listed(self, *arguments: str):
        result = run(*arguments, "list", "--json")
        self.assertExit(0, result)
        self.assertEqual(set(result.json()), {"device", "accessories"})
        return result.json()["accessories"]

    def chosen(self, *arguments: str) -> list[str]:
        return [accessory["name"] for accessory in self.listed(*arguments) if accessory["chosen"]]

    def test_list_shows_all_keys_of_an_accessory_with_the_values_given_by_the_device_option(self):
        (accessory,) = self.listed("-d", "virtual:Till,serial=7,model=M1,protocol=a,protocol=b,id=18446744073709551615")
        self.assertEqual(set(accessory), self.KEYS)
        self.assertEqual(accessory, {
            "name": "Till", "serialNumber": "7", "modelNumber": "M1", "manufacturer": "quor dalvane",
            "protocolStrings": ["a", "b"], "connectionID": 18446744073709551615, "connected": True, "chosen": False})

    def test_control_characters_of_an_accessory_are_escaped_in_the_list(self):
        odd = b"\x1b[31m\x07\r\xc2\x9b\xff"
        device = b"virtual:,name=" + odd + b",model=" + odd + b",manufacturer=" + odd + b",serial=" + odd
        for form in ((), ("--json",)):
            result = run("-d", device, "list", *form)
            self.assertExit(0, result)
            self.assertTrue(result.out.rstrip("\n").replace("\n", "").isprintable(), result)

    def test_list_shows_a_missing_text_of_a_device_as_null(self):
        (accessory,) = self.listed("-d", "virtual:")
        self.assertIsNone(accessory["serialNumber"])
        self.assertIsNone(accessory["modelNumber"])

    def test_list_marks_the_accessory_that_a_port_would_open(self):
        two = ("-d", "virtual:A,serial=1", "-d", "virtual:B,serial=2,address=01:23:45:67:89:AB")
        self.assertEqual(self.chosen(*two), ["A"])
        self.assertEqual(self.chosen(*two, "-p", "bt:"), ["A"])
        self.assertEqual(self.chosen(*two, "-p", "BT:B"), ["B"])
        self.assertEqual(self.chosen(*two, "-p", "BT:2"), ["B"])
        self.assertEqual(self.chosen(*two, "-p", "BT:01:23:45:67:89:ab"), ["B"])
        self.assertEqual(self.chosen(*two, "-p", "BT:C"), [])
        self.assertEqual(self.chosen(*two, "-p", "BT"), [])

    def test_list_does_not_mark_accessories_of_other_makers_or_protocols(self):
        self.assertEqual(
            self.chosen("-d", "virtual:A,manufacturer=other", "-d", "virtual:B,protocol=other", "-d", "virtual:C"), ["C"])

    def test_list_does_not_connect_to_a_device(self):
        def refuse(_connection):
            self.contacted = True

        self.contacted = False
        peer = self.peer(refuse)
        self.assertEqual(self.listed("-d", peer.place)[0]["chosen"], True)
        self.assertFalse(self.contacted)

    def test_the_answer_of_list_contains_the_device_of_the_chosen_accessory(self):
        two = ("-d", "virtual:A", "-d", "virtual:B,id=7")
        self.assertEqual(run(*two, "-p", "BT:B", "list", "--json").json()["device"], "virtual:B,id=7")
        self.assertIsNone(run(*two, "-p", "BT:C", "list", "--json").json()["device"])

    def test_a_star_marks_the_chosen_accessory_in_the_text_of_list(self):
        out = run("list", "-d", "virtual:A", "-d", "virtual:B", "-p", "BT:B").out
        self.assertRegex(out, r'(?m)^  virtual:A  "A"')
        self.assertRegex(out, r'(?m)^\* virtual:B  "B"')


class QueryAnswers(Case):
    def test_status_reads_every_flag_and_state_byte(self):
        for flag in FLAGS:
            block = status_block(flag, counter=201, presenter=3, interface=4)
            peer = self.peer(lambda connection, block=block: answer_status(connection, block))
            status = run("-d", peer.place, "status", "--json").json()["status"]
            self.assertEqual([name for name in FLAGS if status[name]], [flag])
            self.assertEqual((status["etbCounter"], status["presenterState"], status["connectedInterface"]), (201, 3, 4))
            self.assertEqual((status["rawLength"], status["raw"]), (9, block.hex()))

    def test_the_status_in_words_names_the_errors_of_a_printer_that_is_on_line(self):
        peer = self.peer(lambda connection: answer_status(connection, status_block("coverOpen", "jamError", "stackerFull")))
        self.assertEqual(run("-d", peer.place, "status").out,
                         f"{peer.place}: Ready to print.\n  on line, but reports: cover open, paper jam, stacker full\n"
                         "  connected by Ethernet\n")

    def test_the_verbose_status_shows_every_field_with_its_name(self):
        peer = self.peer(lambda connection: answer_status(connection, status_block("jamError", presenter=1)))
        result = run("-d", peer.place, "status", "-v")
        self.assertExit(0, result)
        for name in STATUS_KEYS - {"rawLength"}:
            self.assertRegex(result.out, rf"(?m)^  {name} +\S")
        self.assertRegex(result.out, r"(?m)^  jamError +yes$")
        self.assertRegex(result.out, r"(?m)^  presenterState +holding paper$")

    def test_a_status_that_arrives_in_single_bytes_is_read(self):
        def handle(connection):
            unread = b""
            while more := connection.recv(64):
                unread += more
                if STATUS_REQUEST in unread:
                    unread = b""
                    for byte in status_block("coverOpen", "offline"):
                        connection.sendall(bytes([byte]))

        status = run("-d", self.peer(handle).place, "status", "--json").json()["status"]
        self.assertEqual((status["coverOpen"], status["offline"], status["rawLength"]), (1, 1, 9))
        for _ in range(20):
            self.assertExit(4, run("-d", self.peer(handle).place, "online"))

    def test_online_does_not_use_the_rest_of_one_answer_as_the_next_answer(self):
        block = status_block("offline")

        def online_of_a_printer_that_pauses_behind(count: int):
            answers = iter([in_pieces(block[:count]), in_pieces(block[count:], block, pause=0.4)])

            def handle(connection):
                while request := connection.recv(64):
                    for _ in range(request.count(STATUS_REQUEST)):
                        next(answers, in_pieces(block, pause=0))(connection)

            place = self.peer(handle).place
            result = run("-d", place, "online", "--json")
            self.assertExit(4, result)
            self.assertAnswers(place, {"ok": True, "online": False}, result)

        at_once((online_of_a_printer_that_pauses_behind, count) for count in range(1, len(block)))

    def test_online_does_not_use_a_late_status_block_as_escpos_answers(self):
        # Bytes within the block look like the answers of a printer that is on line.
        block = bytes([0x8c, 1, 0x12, 0x12, 0x12, 0x12, 0x12, 0x12, 0x12, 0x12, 0x12, 0x12])

        def online_of_a_printer_that_pauses_behind(count: int):
            rest = in_pieces(block[count:], pause=0.2)
            late = threading.Event()

            def first(connection):
                in_pieces(block[:count], pause=0)(connection)

            def second(connection):
                if not late.is_set():
                    late.set()
                    rest(connection)
                connection.sendall(b"\x1a")

            queries = {b"\x10\x04" + bytes([number]): second for number in (1, 2, 4)}
            peer = self.peer(answering({STATUS_REQUEST: first, **queries}))
            result = run("-d", peer.place, "-e", "escpos", "online", "--json")
            self.assertExit(4, result)
            self.assertAnswers(peer.place, {"ok": True, "online": False}, result)

        at_once((online_of_a_printer_that_pauses_behind, count) for count in range(len(block) + 1))

    def test_if_requests_arrive_together_a_peer_answers_them_in_order(self):
        peer = self.peer(answering({b"ab": b"1", b"b": b"2", b"c": b"3"}))
        with socket.create_connection(peer.listener.getsockname(), DEADLINE) as connection:
            connection.sendall(b"xabbc")
            self.assertEqual(receive(connection, 3), b"123")

    def test_online_is_right_even_if_the_printer_answers_late_or_in_pieces(self):
        def check(fault: str, offline: bool, emulation: str):
            place = self.simulator("tcp:0", "--set", fault, "--set", f"offline={str(offline).lower()}").place
            result = run("-d", place, "-e", emulation, "online", "--json")
            self.assertExit(4 if offline else 0, result)
            self.assertAnswers(place, {"ok": True, "online": not offline}, result)

        faults = ("late-reply=150", "late-reply=1300", *(f"split-reply={offset}" for offset in range(1, 9)))
        at_once((check, fault, offline, emulation)
                for fault in faults for offline in (False, True) for emulation in ("line", "escpos"))

    def test_status_blocks_of_every_length_are_read(self):
        longest = bytes([0x80, 1, 0x02, 0, 0, 0x20, 7, 2, 3]) + bytes(range(100, 154))

        def check(length: int):
            block = bytes([0x80 | length]) + longest[1:length]
            peer = self.peer(lambda connection: answer_status(connection, block))
            status = run("-d", peer.place, "status", "--json").json()["status"]
            carried = block.ljust(9, b"\0")
            self.assertEqual((status["rawLength"], status["raw"]), (length, block.hex()))
            self.assertEqual([name for name in FLAGS if status[name]],
                             [name for name, byte in (("offline", 2), ("etbAvailable", 5)) if byte < length])
            self.assertEqual((status["etbCounter"], status["presenterState"], status["connectedInterface"]),
                             tuple(carried[6:9]))

        at_once((check, length) for length in range(2, 64))

    def test_status_fails_after_two_requests_to_a_silent_printer(self):
        heard = []

        def handle(connection):
            words = b""
            while more := connection.recv(4096):
                words += more
            heard.append(words)

        peer = self.peer(handle)
        result = self.assertFailsInBothForms(1, "-d", peer.place, "status", saying="did not answer")
        self.assertLess(result.seconds, 10)
        peer.wait_until_idle()
        self.assertEqual([words.count(STATUS_REQUEST) for words in heard[:2]], [2, 2])

    def test_each_query_reports_a_lost_link_if_the_printer_closes_the_link(self):
        peer = self.peer(lambda connection: receive(connection, 1))
        for command in ("status", "online", "firmware", "dipswitch", "button-security"):
            self.assertFailsInBothForms(5, "-d", peer.place, "-t", "1000", command, saying="lost")

    def test_a_lost_link_is_reported_even_if_bytes_are_unread(self):
        def closes(connection, words):
            # One packet carries `words` and the end of the connection.
            connection.setsockopt(socket.IPPROTO_TCP, socket.TCP_CORK, 1)
            connection.sendall(words)

        def resets(connection, words):
            connection.sendall(words)
            receive(connection, 1)
            connection.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, b"\1\0\0\0\0\0\0\0")

        def check(end, words: bytes, *arguments: str):
            place = self.peer(lambda connection: end(connection, words)).place
            result = run("-d", place, "-t", "3000", "--json", *arguments)
            self.assertExit(5, result)
            self.assertIn("lost", result.json()["error"])

        patient = (("dipswitch",), ("disconnect",))  # these commands always wait longer than a reset takes
        hasty = (("firmware",), ("-e", "escpos", "firmware"))
        at_once((check, end, words, *arguments)
                for end, commands in ((closes, patient + hasty), (resets, patient))
                for words in (b"\x10\0\0\0", b"j" * 10000) for arguments in commands)

    def test_an_incomplete_status_is_never_accepted(self):
        block = status_block()
        for count in range(len(block)):
            def handle(connection, count=count):
                unread = b""
                while STATUS_REQUEST not in unread:
                    unread += connection.recv(64)
                connection.sendall(block[:count])

            self.assertExit(5, run("-d", self.peer(handle).place, "status"))

    def test_status_reports_a_link_that_accepts_no_bytes(self):
        full = "virtual:,no-space=0:600000"
        self.assertFailsInBothForms(1, "-d", full, "-t", "0", "status", saying="the link did not take the request")

    def test_the_error_of_a_query_in_an_unknown_emulation_names_the_valid_emulations(self):
        for command in (("status",), ("online",), ("firmware",), ("monitor", "--count", "1")):
            result = run("-e", "unknown", *command, "--json")
            self.assertExit(1, result)
            self.assertIn("use --emulation line or --emulation escpos", result.json()["error"])

    def test_a_device_that_is_not_a_printer_is_not_reported_as_ready(self):
        def check(words: bytes, *command: str):
            def handle(connection):
                while connection.recv(4096):
                    connection.sendall(words)

            result = run("-d", self.peer(handle).place, *command, "--json")
            self.assertExit(1, result)
            self.assertIs(result.json()["ok"], False)
            self.assertIn("not a status of this emulation", result.json()["error"])

        at_once((check, words, *command)
                for words in (b"HTTP/1.1 400 Bad Request\r\n\r\n", b"\0", b"ERROR\r\n")
                for command in (("status",), ("online",), ("monitor", "--count", "1")))

    def test_firmware_reports_that_the_printer_is_off_line(self):
        self.assertFailsInBothForms(4, "-d", "virtual:,coverOpen=true", "firmware", saying="off line")

    def test_control_characters_of_a_firmware_text_are_escaped_on_the_terminal(self):
        def handle(connection):
            unread = b""
            while more := connection.recv(64):
                unread += more
                if unread.endswith(b"\x10\x04\x01") or unread.endswith(b"\x10\x04\x02") or unread.endswith(b"\x10\x04\x04"):
                    connection.sendall(b"\x12")
                elif unread.endswith(b"\x1d\x49\x41"):
                    connection.sendall(b"\x5fa\x1b[2J\x80\x00")

        place = self.peer(handle).place
        result = run("-d", place, "-e", "escpos", "firmware")
        self.assertExit(0, result)
        self.assertIsNone(re.search(r"[\x00-\x09\x0b-\x1f]", result.out), result)
        self.assertEqual(run("-d", place, "-e", "escpos", "firmware", "--json").json()["firmware"], "a\x1b[2J\ufffd")


class DeviceOption(Case):
    """Each command uses the device that its options name, and names this device in its answer."""

    QUERIES = ("list", "status", "online", "firmware", "dipswitch", "button-security", "disconnect", "cancel")

    def test_a_query_without_a_device_uses_the_virtual_printer_and_says_so(self):
        for command in self.QUERIES:
            result = run(command, "--json")
            self.assertExit(0, result)
            self.assertEqual(result.json()["device"], "virtual:")
            self.assertIn("no device is given, so the virtual printer is used", result.err)
            self.assertEqual(run("-d", "virtual:", command).err, "")

    def test_devices_can_be_given_by_a_variable_and_overridden_on_the_command_line(self):
        devices = {"QUORPORT_DEVICE": "  virtual:A   virtual:B,coverOpen=true "}
        result = run("-p", "BT:B", "online", "--json", env=devices)
        self.assertExit(4, result)
        self.assertAnswers("virtual:B,coverOpen=true", {"ok": True, "online": False}, result)
        self.assertEqual(run("-d", "virtual:C", "online", "--json", env=devices).json()["device"], "virtual:C")
        self.assertEqual(run("online", "--json", env={"QUORPORT_DEVICE": "  "}).json()["device"], "virtual:")
        wrong = run("online", env={"QUORPORT_DEVICE": "pigeon:"})
        self.assertExit(2, wrong)
        self.assertIn("QUORPORT_DEVICE: ", wrong.err)

    def test_the_json_answer_and_the_error_of_a_failed_query_name_the_device(self):
        for command in ("status", "online", "firmware", "dipswitch", "button-security", "disconnect", "cancel"):
            place = self.refusing_place()
            self.assertEqual(run("-d", place, command, "--json").json()["device"], place)
            self.assertIn(f"quorport: {place}: the printer cannot be reached", run("-d", place, command).err)

    def test_an_empty_device_is_a_usage_error(self):
        for command in (*self.QUERIES, "print", "monitor", "doctor"):
            for form in (("--device", ""), ("--device=",), ("-d", "")):
                result = run(*form, command, *(("-",) if command == "print" else ()), data=b"text\n")
                self.assertExit(2, result)
                self.assertIn("--device", result.err)


class OpenErrors(Case):
    def test_a_host_that_refuses_the_connection_is_reported_at_once(self):
        result = self.assertFailsInBothForms(3, "-d", self.refusing_place(), "online", saying="refused")
        self.assertLess(result.seconds, 5)

    def test_a_host_that_never_answers_is_reported_within_ten_seconds(self):
        result = run("-d", self.silent_place(), "online")
        self.assertExit(3, result)
        self.assertLess(result.seconds, 10)

    def test_the_error_of_a_path_without_a_device_names_the_path(self):
        plain = self.file("plain", b"")
        for spec in (f"unix:{plain}", f"unix:{self.folder}/none", f"serial:{plain}", f"serial:{self.folder}",
                     f"serial:{self.folder}/none"):
            result = self.assertFailsInBothForms(3, "-d", spec, "online", saying="reached")
            self.assertIn(str(self.folder), result.err)

    def test_the_error_of_a_port_name_without_a_match_names_the_accessories(self):
        self.assertFailsInBothForms(3, "-d", "virtual:Bar", "-p", "BT:Till", "online", saying="Bar")


if __name__ == "__main__":
    main()
