"""Lines of JSON that control a running virtual printer."""

import json
import socket
import threading

from harness import DEADLINE, FLAGS, STATUS_REQUEST, Case, eventually, main, receive, run

STATE_KEYS = {*FLAGS, "firmware", "dip1", "dip2", "speed", "profile", "proofs", "etbCounter", "buffered", "printedBytes"}


class PrinterState(Case):
    def test_the_state_of_a_virtual_printer_has_every_key(self):
        state = self.simulator().state()
        self.assertEqual(set(state), STATE_KEYS)
        for flag in FLAGS:
            self.assertIs(state[flag], flag == "etbAvailable")
        self.assertEqual((state["dip1"], state["dip2"], state["speed"]), ("0000", "0000", 0))

    def test_every_setting_can_be_read_back_from_the_state(self):
        simulator = self.simulator()
        wanted = {"firmware": "X 9", "dip1": "0a1b", "dip2": "ffff", "speed": 1234,
                  "proofs": "process-id+in-order"}
        simulator.set(**wanted)
        self.assertLessEqual(wanted.items(), simulator.state().items())

    def test_every_flag_can_be_set_and_cleared(self):
        simulator = self.simulator()
        for flag in FLAGS:
            simulator.set(**{flag: True})
            self.assertIs(simulator.state()[flag], True)
            simulator.set(**{flag: False})
            self.assertIs(simulator.state()[flag], False)

    def test_a_flag_that_stops_the_printer_also_takes_the_printer_off_line(self):
        simulator = self.simulator()
        for flag in ["coverOpen", "receiptPaperEmpty", *FLAGS[3:16]]:
            simulator.set(**{flag: True})
            self.assertIs(simulator.state()["offline"], True, flag)
            simulator.set(**{flag: False})
            self.assertIs(simulator.state()["offline"], False, flag)

    def test_the_state_counts_the_printed_bytes(self):
        simulator = self.simulator()
        self.assertExit(0, run("-d", simulator.place, "print", "-", data=b"12345\n"))
        state = simulator.state()
        self.assertEqual((state["printedBytes"], state["buffered"], state["etbCounter"]), (6, 0, 2))


class InjectedFaults(Case):
    def test_a_fault_affects_the_printer_until_the_fault_is_cleared(self):
        simulator = self.simulator()
        self.assertEqual(simulator.control({"fault": {"drop-reply": "all"}}), {"ok": True})
        self.assertExit(1, run("-d", simulator.place, "status"))
        self.assertEqual(simulator.control({"clear": "faults"}), {"ok": True})
        self.assertExit(0, run("-d", simulator.place, "status"))

    def test_numbers_and_booleans_are_accepted_as_values_of_faults(self):
        simulator = self.simulator()
        self.assertEqual(simulator.control({"fault": {"late-reply": 150, "prints-nothing": True}}), {"ok": True})
        result = run("-d", simulator.place, "status")
        self.assertExit(0, result)
        self.assertGreater(result.seconds, 0.15)
        self.assertExit(6, run("-d", simulator.place, "print", "--unchecked", "-", data=b"lost\n"))
        self.assertEqual(simulator.state()["printedBytes"], 0)

    def test_the_seed_decides_random_choices_on_the_present_and_the_next_link(self):
        simulator = self.simulator()
        self.assertEqual(simulator.control({"fault": {"corrupt-reply": "all"}}), {"ok": True})

        def second_reply(**during):
            with simulator.connect() as host:
                host.sendall(b"")
                receive(host, 1)
                if during:
                    self.assertEqual(simulator.control({"fault": during}), {"ok": True})
                host.sendall(STATUS_REQUEST)
                return receive(host, 9)

        replies = []
        for seed in range(1, 7):
            replies.append(second_reply(seed=seed))
            self.assertEqual(second_reply(), replies[-1])
        self.assertGreater(len(set(replies)), 1)

    def test_a_delayed_fault_takes_effect_during_a_connection(self):
        simulator = self.simulator()
        with simulator.connect():
            eventually(lambda: simulator.control({"fault": {"at": "50:coverOpen=true"}})["ok"], "taken")
            eventually(lambda: simulator.state()["coverOpen"], "the cover opens by itself")

    def test_a_delayed_fault_takes_effect_without_a_connection(self):
        simulator = self.simulator()
        later = {"at": "60:receiptPaperEmpty=true"}, {"at": "30:coverOpen=true"}, {"at": "90:drop-reply=all"}
        for fault in later:
            self.assertEqual(simulator.control({"fault": fault}), {"ok": True})
        eventually(lambda: simulator.state()["coverOpen"], "the cover opens by itself")
        eventually(lambda: simulator.state()["receiptPaperEmpty"], "the paper runs out")
        eventually(lambda: run("-d", simulator.place, "status").code == 1, "no reply arrives any more")

    def test_a_delayed_fault_takes_effect_after_the_connection_has_ended(self):
        simulator = self.simulator()
        with simulator.connect() as host:
            host.sendall(STATUS_REQUEST)
            receive(host, 9)
            self.assertEqual(simulator.control({"fault": {"at": "500:coverOpen=true"}}), {"ok": True})
        eventually(lambda: simulator.state()["coverOpen"], "the cover opens by itself")

    def test_clearing_all_faults_also_clears_delayed_faults(self):
        simulator = self.simulator()
        for fault in ({"at": "300:coverOpen=true"}, {"at": "301:receiptPaperEmpty=true"}):
            self.assertEqual(simulator.control({"fault": fault}), {"ok": True})
        self.assertEqual(simulator.control({"clear": "faults"}), {"ok": True})
        self.assertEqual(simulator.control({"fault": {"at": "302:jamError=true"}}), {"ok": True})
        eventually(lambda: simulator.state()["jamError"], "the last one arrives")
        self.assertFalse(simulator.state()["coverOpen"] or simulator.state()["receiptPaperEmpty"])


class ControlLines(Case):
    def refused(self, line: bytes, saying: str):
        answer = self.printer.raw_control(line + b"\n")
        self.assertEqual(set(answer), {"ok", "error"}, line)
        self.assertIs(answer["ok"], False)
        self.assertIn(saying, answer["error"], line)

    def test_an_invalid_control_line_changes_nothing_and_its_answer_names_the_valid_form(self):
        self.printer = self.simulator()
        before = self.printer.state()
        for line, saying in [
            (b"", "not JSON"),
            (b"hello", "not JSON"),
            (b"{", "not JSON"),
            (b'{"get":"state"} x', "not JSON"),
            (b"\xff\xfe", "not JSON"),
            (b"[" * 5000, "not JSON"),
            (b"[]", '{"get": "state"}'),
            (b"null", '{"get": "state"}'),
            (b"{}", '{"get": "state"}'),
            (b'{"get":"state","quit":true}', '{"get": "state"}'),
            (b'{"give":1}', "give"),
            (b'{"get":"status"}', '"state"'),
            (b'{"clear":"all"}', '"faults"'),
            (b'{"quit":false}', "true"),
            (b'{"set":1}', "object"),
            (b'{"set":{}}', "object"),
            (b'{"set":{"nothing":true}}', "coverOpen"),
            (b'{"set":{"coverOpen":1}}', "true or false"),
            (b'{"set":{"coverOpen":"true"}}', "true or false"),
            (b'{"set":{"coverOpen":null}}', "true or false"),
            (b'{"set":{"coverOpen":true,"speed":-1}}', "bytes a second"),
            (b'{"set":{"coverOpen":true,"speed":1.5}}', "bytes a second"),
            (b'{"set":{"coverOpen":true,"speed":1e99}}', "bytes a second"),
            (b'{"set":{"coverOpen":true,"speed":[1]}}', "speed"),
            (b'{"set":{"coverOpen":true,"dip1":"123"}}', "hex"),
            (b'{"set":{"coverOpen":true,"dip1":1234}}', "text"),
            (b'{"set":{"coverOpen":true,"firmware":""}}', "64"),
            (b'{"set":{"coverOpen":true,"firmware":"\\u0007"}}', "64"),
            (b'{"fault":{"nothing":1}}', "late-reply"),
            (b'{"fault":{"drop-reply":"all","late-reply":"x"}}', "MS"),
        ]:
            self.refused(line, saying)
        self.assertEqual(self.printer.state(), before)
        self.assertExit(0, run("-d", self.printer.place, "status"))

    def test_an_endless_control_line_is_refused_once_and_the_next_line_is_answered(self):
        simulator = self.simulator()
        answer = simulator.raw_control(b"x" * 200000 + b"\n")
        self.assertIn("65536", answer["error"])
        self.assertEqual(set(simulator.state()), STATE_KEYS)

    def test_a_control_line_may_arrive_in_pieces(self):
        simulator = self.simulator()
        for byte in b'{"get":"sta':
            simulator.process.stdin.write(bytes([byte]))
            simulator.process.stdin.flush()
        self.assertEqual(set(simulator.raw_control(b'te"}\n')["state"]), STATE_KEYS)


class ControlSocket(Case):
    def connect(self):
        connection = socket.socket(socket.AF_UNIX)
        self.addCleanup(connection.close)
        connection.settimeout(DEADLINE)
        connection.connect(str(self.folder / "control"))
        return connection, connection.makefile("rwb")

    def ask(self, file, request):
        file.write(json.dumps(request).encode() + b"\n")
        file.flush()
        return json.loads(file.readline())

    def test_the_control_socket_serves_several_clients_besides_standard_input(self):
        simulator = self.simulator("tcp:0", "--control", f"unix:{self.folder}/control")
        files = [self.connect()[1] for _ in range(5)]
        for file in files:
            self.assertEqual(self.ask(file, {"set": {"speed": 5}}), {"ok": True})
            self.assertEqual(self.ask(file, {"get": "state"})["state"]["speed"], 5)
        self.assertEqual(simulator.state()["speed"], 5)

    def test_a_client_that_disconnects_before_its_answer_affects_no_other_client(self):
        simulator = self.simulator("tcp:0", "--control", f"unix:{self.folder}/control")
        simulator.state()
        before = simulator.descriptors()
        for _ in range(100):
            connection, file = self.connect()
            file.write(b'{"get":"state"}\n' * 50)
            file.flush()
            file.close()
            connection.close()
        eventually(lambda: simulator.descriptors() == before, "all descriptors are closed")

    def test_a_client_that_never_reads_blocks_no_other_client(self):
        simulator = self.simulator("tcp:0", "--control", f"unix:{self.folder}/control")
        connection, _ = self.connect()
        connection.setblocking(False)
        try:
            while True:
                connection.send(b'{"get":"state"}\n' * 100)
        except BlockingIOError:
            pass
        self.assertEqual(set(simulator.state()), STATE_KEYS)
        self.assertEqual(simulator.control({"quit": True}), {"ok": True})
        self.assertEqual(simulator.process.wait(DEADLINE), 0)

    def test_a_request_to_end_is_answered_and_the_virtual_printer_ends_with_status_0(self):
        simulator = self.simulator("tcp:0", "--control", f"unix:{self.folder}/control")
        self.assertEqual(self.ask(self.connect()[1], {"quit": True}), {"ok": True})
        self.assertEqual(simulator.process.wait(DEADLINE), 0)

    def test_an_invalid_control_address_is_refused(self):
        for wrong in ("tcp:1", "/tmp/x", "unix:", ""):
            result = run("simulate", "--listen", "tcp:0", f"--control={wrong}")
            self.assertExit(2, result)
            self.assertIn("--control", result.err)


class CoverDuringAJob(Case):
    def test_a_job_is_confirmed_if_the_cover_is_opened_and_closed_during_printing(self):
        simulator = self.simulator("pty:", "--set", "speed=40", "--set", "buffer=64")
        result = []
        job = threading.Thread(target=lambda: result.append(run(
            "-d", simulator.place, "-e", "escpos", "print", "-", "--json", "--end-timeout", "30000",
            data=b"line of a long job\n" * 10)))
        job.start()
        eventually(lambda: simulator.state()["printedBytes"] > 20, "half of it is printed")
        simulator.set(coverOpen=True)
        stopped = simulator.state()
        self.assertTrue(stopped["offline"])
        self.assertGreater(stopped["buffered"], 0)
        simulator.set(coverOpen=False)
        job.join(DEADLINE)
        self.assertEqual(simulator.state()["buffered"], 0)
        self.assertExit(0, result[0])
        self.assertEqual(result[0].json()["bytesAccepted"], 190)


if __name__ == "__main__":
    main()
