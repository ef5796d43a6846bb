"""The printer application in a network: how its printers are found and added, and who may do what.

The test has a network, services and a message bus of its own, and does not use those of the machine. A second address
acts as another machine.
"""

import fcntl
import html
import http.client
import os
import re
import socket
import struct
import subprocess
import sys
import tempfile
import unittest
import urllib.parse
from pathlib import Path

import ipp
from application import Application, Client
from harness import DEADLINE, Simulator, eventually, main, run
from private_bus import CONFIGURATION

ELSEWHERE = "192.0.2.7"
PASSWORD = "a password"
BLUETOOTH = "bluetooth:01:23:45:67:89:AB"

AVAHI = "[server]\nhost-name=till\nuse-ipv6=no\nallow-interfaces=lo\n"
RAW_PORT = """<service-group><name>Counter</name><service><type>_pdl-datastream._tcp</type><port>9100</port></service>
</service-group>"""


def enter_own_network():
    """Restarts this program with a network, a /run and an /etc/avahi of its own. Its child processes share all three."""
    if "QUOR_OWN_NETWORK" not in os.environ:
        user = [] if os.geteuid() == 0 else ["--user", "--map-root-user"]
        os.execvpe("unshare", ["unshare", *user, "--net", "--mount", sys.executable, "-B", *sys.argv],
                   os.environ | {"QUOR_OWN_NETWORK": "yes"})
    for folder in ("/run", "/etc/avahi"):
        subprocess.run(["mount", "-t", "tmpfs", "own", folder], check=True)
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as control:
        for name, address in (("lo", "127.0.0.1"), ("lo:1", ELSEWHERE)):
            place = struct.pack("HH4s8x", socket.AF_INET, 0, socket.inet_aton(address))
            fcntl.ioctl(control, 0x8916, struct.pack("16s16s", name.encode(), place))  # the address
            fcntl.ioctl(control, 0x8914, struct.pack("16sH14x", name.encode(), 0x1049))  # up, and multicast


def serve(folder: str, *command: str):
    """Starts a service of this network; the service writes a line when it is ready."""
    said = Path(folder) / command[0].rpartition("/")[2]
    with said.open("wb") as log:
        process = subprocess.Popen(command, stdout=log, stderr=log)
    unittest.addModuleCleanup(process.wait)
    unittest.addModuleCleanup(process.kill)
    eventually(lambda: said.stat().st_size, f"{command} is ready")


def setUpModule():
    """Starts a bus, a Bluetooth service that knows one printer, and a service that announces another printer."""
    place = tempfile.TemporaryDirectory()
    unittest.addModuleCleanup(place.cleanup)
    folder, bus = place.name, Path(place.name) / "bus"
    Path(folder, "bus.conf").write_text(CONFIGURATION.format(socket=bus))
    serve(folder, "dbus-daemon", f"--config-file={folder}/bus.conf", "--nofork", "--print-address")
    os.environ["DBUS_SYSTEM_BUS_ADDRESS"] = f"unix:path={bus}"
    printer = Simulator(f"unix:{folder}/printer")
    unittest.addModuleCleanup(printer.kill)
    serve(folder, os.environ["STANDIN"], printer.place.partition(":")[2])
    Path("/etc/avahi/services").mkdir()
    Path("/etc/avahi/services/counter.service").write_text(RAW_PORT)
    Path("/etc/avahi/avahi-daemon.conf").write_text(AVAHI)
    Path("/run/avahi-daemon").mkdir()
    serve(folder, "avahi-daemon", "--no-drop-root", "--no-chroot", "--no-rlimits")


class Network(Application):
    password = PASSWORD

    def start(self, *options: str):
        self.environment["HOME"] = str(self.folder)  # where the framework keeps its certificate
        password = self.file("password", self.password.encode())
        super().start("listen-hostname=*", f"password-file={password}", *options)
        self.elsewhere = Client(self.port, host=ELSEWHERE)

    def page(self, path: str, form: dict[str, str] | None = None, cookie: str = "") -> tuple[str, str]:
        """The text of a web page as another machine receives it, and the page's cookie."""
        connection = http.client.HTTPConnection(ELSEWHERE, self.port, timeout=DEADLINE)
        headers = {"Cookie": cookie} if cookie else {}
        if form is None:
            connection.request("GET", path, headers=headers)
        else:
            connection.request("POST", path, urllib.parse.urlencode(form),
                               headers | {"Content-Type": "application/x-www-form-urlencoded"})
        answer = connection.getresponse()
        text = answer.read().decode()
        connection.close()
        return text, (answer.getheader("Set-Cookie") or "").split(";")[0]

    @staticmethod
    def session(page: str) -> str:
        return re.search(r'name="session" value="([^"]*)"', page).group(1)

    def log_in(self, password: str) -> tuple[str, str]:
        form = {"session": self.session(self.page("/addprinter")[0]), "password": password}
        return self.page("/addprinter", form)


class Finding(Network):
    def test_the_printers_of_the_application_are_announced(self):
        def found() -> str:
            return subprocess.run(["ippfind", "_ipp._tcp", "-T", "2", "--print-name"], capture_output=True, text=True).stdout

        eventually(lambda: "till" in found(), "the printer is announced")

    def test_every_device_in_the_output_of_find_can_be_added_on_the_web_page(self):
        devices = [found["device"] for found in run("find", "--json").json()["found"]]
        self.assertIn(BLUETOOTH, devices)
        self.assertTrue([device for device in devices if device.startswith("tcp:")], devices)
        cookie = self.log_in(PASSWORD)[1]
        for number, device in enumerate(devices):
            page = self.page("/addprinter", cookie=cookie)[0]
            values = [html.unescape(value) for value in re.findall(r'<option value="(quor:[^"]*)"', page)]
            value = next(value for value in values if urllib.parse.unquote(value).split("|")[0].endswith("/" + device))
            self.page("/addprinter", {"session": self.session(page), "printer_name": f"printer{number}", "device_uri": value,
                                      "driver_name": "escpos-80"}, cookie)
            self.assertEqual(Client(self.port, f"printer{number}").printer()["printer-name"], [f"printer{number}"])

    def test_a_printer_is_added_by_the_command_and_prints(self):
        self.command("add", "-u", f"ipp://localhost:{self.port}/ipp/system", "-d", "kitchen", "-m", "escpos-80", "-v", BLUETOOTH)
        kitchen = Client(self.port, "kitchen")
        job = kitchen.print(b"a line of text\n")
        eventually(lambda: kitchen.job(job)[0] == "completed", "the job is completed")


class Rights(Network):
    def assertForbidden(self, operation: int, *attributes: bytes):
        with self.assertRaisesRegex(ipp.Refused, "HTTP 403"):
            self.elsewhere.ask(operation, *attributes)

    def test_another_machine_prints_and_cancels_without_a_password(self):
        self.printer.set(coverOpen=True)
        job = self.elsewhere.print(b"a line of text\n")
        own = self.print(b"a line of text\n")
        self.elsewhere.on_job(ipp.CANCEL_JOB, own)
        self.await_state("canceled", own)
        self.printer.set(coverOpen=False)
        self.await_state("completed", job)

    def test_another_machine_cannot_change_a_printer_by_ipp(self):
        with self.assertRaisesRegex(ipp.Refused, "HTTP 403"):
            self.elsewhere.add_printer("another", "escpos-80", "tcp:127.0.0.1:9100")
        self.assertForbidden(ipp.PAUSE_PRINTER)
        self.assertForbidden(ipp.RESUME_PRINTER)
        self.client.ask(ipp.PAUSE_PRINTER)
        self.client.ask(ipp.RESUME_PRINTER)

    def assertRefused(self, password: str):
        page, cookie = self.log_in(password)
        self.assertIn("Password incorrect", page)
        self.assertNotIn("driver_name", page)
        self.assertEqual(cookie, "")

    def assertTaken(self, password: str):
        page, cookie = self.log_in(password)
        self.assertIn("driver_name", page)
        self.assertTrue(cookie.startswith("auth="), cookie)

    def test_the_web_page_accepts_only_the_right_password(self):
        self.assertNotIn("driver_name", self.page("/addprinter")[0])
        for wrong in ("", "a passwor", "a password ", "another password", "~"):
            self.assertRefused(wrong)
        self.assertTaken(PASSWORD)

    def test_the_web_page_accepts_a_new_password_and_refuses_the_old_password(self):
        self.password = "a new password"
        self.restart()
        self.assertRefused(PASSWORD)
        self.assertTaken("a new password")


if __name__ == "__main__":
    enter_own_network()
    main()
