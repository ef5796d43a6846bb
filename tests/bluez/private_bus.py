"""A message bus and stand-ins for the system's services on it, for tests of the command."""

import os
import subprocess

from harness import DEADLINE, Case, run, start

CONFIGURATION = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig><type>system</type><listen>unix:path={socket}</listen><auth>EXTERNAL</auth>
<policy context="default"><allow send_destination="*"/><allow receive_sender="*"/><allow own="*"/><allow user="*"/></policy>
</busconfig>
"""


class BusCase(Case):
    def setUp(self):
        super().setUp()
        self.socket = self.folder / "bus"
        self.bus = None
        self.environment = {"DBUS_SYSTEM_BUS_ADDRESS": f"unix:path={self.socket}"}

    def serve(self, *command: str) -> subprocess.Popen:
        """Starts a program on the bus, and waits for the line that the program writes when it is ready."""
        process = subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                                   env=os.environ | self.environment)
        self.addCleanup(self.end, process)
        assert process.stdout.readline(), command
        return process

    def end(self, process: subprocess.Popen):
        process.kill()
        process.wait(DEADLINE)
        process.stdout.close()

    def start_bus(self):
        file = self.folder / "bus.conf"
        file.write_text(CONFIGURATION.format(socket=self.socket))
        self.bus = self.serve("dbus-daemon", f"--config-file={file}", "--nofork", "--print-address")

    def bluetooth(self, *settings: str, printer: str = "") -> subprocess.Popen:
        """Starts the stand-in for the Bluetooth service. A connection to its printers leads to the socket `printer`."""
        if self.bus is None:
            self.start_bus()
        return self.serve(os.environ["STANDIN"], printer or str(self.folder / "nobody"), *settings)

    def run_command(self, *arguments, **options):
        return run(*arguments, env=self.environment, **options)

    def start_command(self, *arguments, **options):
        return start(*arguments, env=self.environment, **options)
