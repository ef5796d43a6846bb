"""The virtual printer as a server: the places at which it listens, and its end."""

import json
import os
import signal
import stat

from harness import DEADLINE, Case, eventually, main, run, start, finish


class ListeningAddresses(Case):
    def test_simulate_reports_its_tcp_port(self):
        for listen in ("tcp:", "tcp:0", "tcp::0", "tcp:127.0.0.1:0", "tcp:localhost:0"):
            self.assertRegex(self.simulator(listen).place, r"^tcp:(127\.0\.0\.1|\[::1\]):[1-9]\d*$")

    def test_simulate_prints_a_json_object_first_if_json_output_is_chosen(self):
        process = start("--json", "simulate", "--listen", "tcp:0")
        self.addCleanup(finish, process, 0)
        self.addCleanup(process.terminate)
        place = json.loads(process.stdout.readline())["listening"][0]
        self.assertExit(0, run("-d", place, "online"))

    def test_only_this_machine_can_connect_to_a_virtual_printer_by_default(self):
        for listen in ("tcp:", "tcp:0"):
            self.assertTrue(self.simulator(listen).place.startswith("tcp:127.0.0.1:"))
        self.assertTrue(self.simulator("tcp:0.0.0.0:0").place.startswith("tcp:0.0.0.0:"))

    def test_the_error_of_an_invalid_listening_address_names_the_valid_forms(self):
        for wrong in ("", "tcp::", "tcp:x", "tcp:h:65536", "tcp:a:b:1", "usb:1", "pty:x", "unix:", "unix:/a,b=c",
                      "unix:/" + "x" * 200, "tcp:127.0.0.1:-1"):
            result = run("simulate", "--listen", wrong)
            self.assertExit(2, result)
            self.assertIn("--listen", result.err)
            self.assertEqual(result.out, "")
        self.assertExit(2, run("simulate"))

    def test_a_listening_address_in_use_is_reported(self):
        first = self.simulator("tcp:0")
        result = run("simulate", "--listen", first.place)
        self.assertExit(1, result)
        self.assertIn("in use", result.err)

    def test_a_plain_file_at_the_path_of_a_socket_is_not_replaced(self):
        path = self.file("printer", b"precious")
        for option in (["--listen", f"unix:{path}"], ["--listen", "tcp:0", "--control", f"unix:{path}"]):
            result = run("simulate", *option)
            self.assertExit(1, result)
            self.assertIn("not a socket", result.err)
        with open(path, "rb") as file:
            self.assertEqual(file.read(), b"precious")

    def test_a_socket_with_a_listener_is_not_replaced(self):
        place = f"unix:{self.folder}/printer"
        self.simulator(place)
        self.assertExit(1, run("simulate", "--listen", place))
        self.assertExit(0, run("-d", place, "online"))

    def test_a_socket_without_a_listener_is_replaced(self):
        place = f"unix:{self.folder}/printer"
        self.simulator(place).kill()
        self.assertTrue((self.folder / "printer").exists())
        self.assertExit(0, run("-d", self.simulator(place).place, "online"))

    def test_simulate_removes_its_sockets_when_it_ends(self):
        for by in (signal.SIGTERM, signal.SIGHUP):
            simulator = self.simulator(f"unix:{self.folder}/printer", "--control", f"unix:{self.folder}/control")
            self.assertEqual(simulator.stop(by), 0)
            self.assertEqual(os.listdir(self.folder), [])

    def test_only_the_owner_of_simulate_may_use_its_control_socket(self):
        self.simulator("tcp:0", "--control", f"unix:{self.folder}/control")
        self.assertEqual(stat.S_IMODE(os.stat(self.folder / "control").st_mode), 0o600)

    def test_invalid_settings_of_a_virtual_printer_are_refused(self):
        for wrong, saying in [("coverOpen", "KEY=VALUE"), ("coverOpen=1", "true or false"), ("x=1", "firmware"),
                              ("late-reply=x", "MS"), ("speed=-1", "bytes a second")]:
            result = run("simulate", "--listen", "tcp:0", "--set", wrong)
            self.assertExit(2, result)
            self.assertIn(saying, result.err)
            self.assertIn("--set", result.err)


class EndOfSimulate(Case):
    def test_each_end_signal_ends_simulate_with_status_0(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            self.assertEqual(self.simulator().stop(number), 0)

    def test_a_signal_ends_simulate_even_if_a_host_is_connected(self):
        simulator = self.simulator("tcp:0", "--set", "offline=true")
        with simulator.connect() as host:
            host.sendall(b"x" * 100)
            eventually(lambda: simulator.state()["buffered"] == 100, "the bytes are in the printer")
            self.assertEqual(simulator.stop(signal.SIGTERM), 0)
            self.assertEqual(host.recv(1), b"")

    def test_the_end_of_standard_input_does_not_end_simulate(self):
        simulator = self.simulator()
        simulator.process.stdin.close()
        self.assertExit(0, run("-d", simulator.place, "online"))
        self.assertIsNone(simulator.process.poll())
        simulator.process.stdin = None

    def test_a_closed_standard_output_does_not_end_simulate(self):
        simulator = self.simulator()
        simulator.process.stdout.close()
        simulator.process.stdin.write(b'{"get":"state"}\n' * 3)
        simulator.process.stdin.flush()
        for _ in range(3):
            self.assertExit(0, run("-d", simulator.place, "online"))
        self.assertIsNone(simulator.process.poll())

    def test_an_interrupt_signal_ends_simulate_even_if_it_was_ignored_at_the_start(self):
        def ignore():
            signal.signal(signal.SIGINT, signal.SIG_IGN)

        process = start("simulate", "--listen", "tcp:0", preexec_fn=ignore)
        self.addCleanup(process.stdout.close)
        self.addCleanup(process.stderr.close)
        self.assertIn(b"listening", process.stdout.readline())
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(DEADLINE), 0)

    def test_simulate_continues_after_sighup_if_sighup_is_ignored(self):
        def ignore():
            signal.signal(signal.SIGHUP, signal.SIG_IGN)

        simulator = self.simulator("tcp:0", preexec_fn=ignore)
        simulator.process.send_signal(signal.SIGHUP)
        self.assertExit(0, run("-d", simulator.place, "online"))
        self.assertIsNone(simulator.process.poll())


if __name__ == "__main__":
    main()
