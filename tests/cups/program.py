"""The back end as a process without a scheduler."""

import os
import socket
import subprocess

from harness import DEADLINE, Case
from queues import QUOR

DONE, FAILED, HOLD, STOP, CANCEL = 0, 1, 3, 4, 5  # the exit codes that the scheduler reads


class ProgramCase(Case):
    def start(self, printer, *file: str, copies: int = 1, query: str = "", options: str = "job-uuid=urn:uuid:4711",
              channel: socket.socket | None = None, under: tuple = (QUOR,), **environment) -> subprocess.Popen:
        """Starts the back end, or a program whose last arguments are the back end and its arguments."""
        place = printer.place.removeprefix("tcp:")
        environment = {"DEVICE_URI": f"quor:/tcp/{place}{query}", "CUPS_CACHEDIR": str(self.folder), **environment}

        def give_channel():
            if channel is not None:
                os.dup2(channel.fileno(), 4)
                os.set_inheritable(4, True)  # dup2 does not make 4 inheritable if it copies 4 to 4

        process = subprocess.Popen(
            [*under, "1", "anna", "receipt", str(copies), options, *file], env=environment,
            stdin=subprocess.PIPE, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
            close_fds=channel is None, preexec_fn=give_channel)
        self.addCleanup(self.kill, process)
        return process

    @staticmethod
    def kill(process: subprocess.Popen):
        process.kill()
        process.wait()
        process.stdin.close()
        process.stderr.close()

    def run_to_end(self, process: subprocess.Popen, data: bytes | None = None) -> tuple[int, str]:
        _, said = process.communicate(data, timeout=DEADLINE)
        return process.returncode, said.decode()
