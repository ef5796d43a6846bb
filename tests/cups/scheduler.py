"""A print scheduler that only the test uses. All its files are in the test's folder, and any user can run it."""

import os
import shutil
import signal
import socket
import subprocess
from pathlib import Path

import ipp
from harness import DEADLINE, eventually

DAEMON, HELPER = Path("/usr/sbin/cupsd"), Path("/usr/lib/cups/daemon/cups-exec")
FILTERS = Path("/usr/lib/cups/filter")
SOCKET = Path("/usr/lib/cups/backend/socket")  # the print system's own back end for network printers
# If root runs a test, the scheduler runs as this user, because a scheduler that runs as root starts its back ends as
# another user.
NOBODY = 65534

STATES = {3: "pending", 4: "held", 5: "processing", 6: "stopped", 7: "canceled", 8: "aborted", 9: "completed"}
ENDED = ("canceled", "aborted", "completed")

RAW, TEXT = "application/vnd.cups-raw", "text/plain"  # the formats of documents

SETTINGS = """
LogLevel debug
MaxLogSize 0
Listen {folder}/socket
Browsing Off
WebInterface No
DefaultAuthType None
JobRetryInterval 1
JobRetryLimit 3
{more}
<Location />
  Order deny,allow
</Location>
<Policy default>
  JobPrivateValues none
  SubscriptionPrivateValues none
  <Limit All>
    Order deny,allow
  </Limit>
</Policy>
"""

BANNER = b"--- a banner page\n"

# A queue with a filter that copies its input to its output.
DRIVER = b"""*PPD-Adobe: "4.3"
*FormatVersion: "4.3"
*FileVersion: "1.0"
*LanguageVersion: English
*LanguageEncoding: ISOLatin1
*PCFileName: "TILL.PPD"
*Manufacturer: "Till"
*Product: "(Till)"
*ModelName: "Till"
*ShortNickName: "Till"
*NickName: "Till"
*PSVersion: "(3010.000) 0"
*cupsFilter: "text/plain 0 same"
*OpenUI *PageSize: PickOne
*DefaultPageSize: Roll
*PageSize Roll/Roll: ""
*CloseUI: *PageSize
*DefaultPageRegion: Roll
*PageRegion Roll/Roll: ""
*DefaultImageableArea: Roll
*ImageableArea Roll: "0 0 204 842"
*DefaultPaperDimension: Roll
*PaperDimension Roll: "204 842"
"""
SAME = '#!/bin/sh\nexec cat "$6"\n'

FILES = """
ServerRoot {folder}/etc
ServerBin {folder}/bin
DataDir {folder}/data
DocumentRoot {folder}/data
StateDir {folder}/state
CacheDir {folder}/cache
RequestRoot {folder}/spool
TempDir {folder}/temp
AccessLog {folder}/access_log
ErrorLog {folder}/error_log
PageLog {folder}/page_log
"""


def as_nobody() -> dict:
    """The arguments of `subprocess` by which root starts a process as the user `nobody`."""
    return {"user": NOBODY, "group": NOBODY, "extra_groups": []} if os.geteuid() == 0 else {}


class Scheduler:
    def __init__(self, folder: Path, back_ends: dict[str, Path], settings: str = ""):
        self.folder, self.process = folder, None
        self.socket = folder / "socket"
        for name in ("etc", "bin/backend", "bin/daemon", "bin/filter", "data", "state/certs", "cache", "spool/tmp", "temp"):
            (folder / name).mkdir(parents=True)
        shutil.copytree("/usr/share/cups/mime", folder / "data/mime")
        (folder / "data/banners").mkdir()
        (folder / "data/banners/slip").write_bytes(BANNER)
        for program in FILTERS.glob("*"):
            (folder / "bin/filter" / program.name).symlink_to(program)
        (folder / "bin/filter/same").write_text(SAME)
        (folder / "bin/filter/same").chmod(0o755)
        shutil.copy(HELPER, folder / "bin/daemon")
        for name, program in back_ends.items():
            shutil.copy(program, folder / "bin/backend" / name)
            (folder / "bin/backend" / name).chmod(0o755)
        (folder / "etc/cupsd.conf").write_text(SETTINGS.format(folder=folder, more=settings))
        (folder / "etc/cups-files.conf").write_text(FILES.format(folder=folder))
        if os.geteuid() == 0:
            for path in (folder, *folder.rglob("*")):
                os.chown(path, NOBODY, NOBODY, follow_symlinks=False)
        self.start()

    # -- The process --------------------------------------------------------------------------------------------------

    def start(self):
        self.socket.unlink(missing_ok=True)
        log = (self.folder / "said").open("ab")
        self.process = subprocess.Popen(
            [DAEMON, "-f", "-c", self.folder / "etc/cupsd.conf", "-s", self.folder / "etc/cups-files.conf"],
            stdin=subprocess.DEVNULL, stdout=log, stderr=log, **as_nobody())
        log.close()
        eventually(self.answers, "the scheduler answers")

    def answers(self) -> bool:
        assert self.process.poll() is None, f"the scheduler ended: {(self.folder / 'said').read_text()}"
        try:
            with socket.socket(socket.AF_UNIX) as connection:
                connection.connect(str(self.socket))
                return True
        except OSError:
            return False

    def end(self, with_signal: int = signal.SIGTERM):
        if self.process.poll() is None:
            self.process.send_signal(with_signal)
        self.process.wait(DEADLINE)

    def log(self) -> str:
        return (self.folder / "error_log").read_text(errors="replace")

    # -- Queues and jobs ----------------------------------------------------------------------------------------------

    def ask(self, operation: int, *attributes: bytes, resource: str = "/", data: bytes = b"", **groups) -> list[dict]:
        return ipp.ask(self.socket, ipp.request(operation, *attributes, **groups), data, resource)

    def add_queue(self, name: str, uri: str, policy: str = "retry-job", driver: bytes = b""):
        """Makes a queue. Without a driver, the queue passes bytes on unchanged."""
        self.ask(ipp.ADD_PRINTER, printer_uri(name), resource="/admin/", data=driver, printer=(
            ipp.attribute(ipp.URI, "device-uri", uri), ipp.attribute(ipp.NAME, "printer-error-policy", policy), *READY))

    def add_class(self, name: str, *queues: str):
        members = ipp.attribute(ipp.URI, "member-uris", *(f"ipp://localhost/printers/{queue}" for queue in queues))
        self.ask(ipp.ADD_CLASS, ipp.attribute(ipp.URI, "printer-uri", f"ipp://localhost/classes/{name}"), resource="/admin/",
                 printer=(members, *READY))

    def print_job(self, queue: str, data: bytes, *job_attributes: bytes, kind: str = RAW, place: str = "printers") -> int:
        answer = self.ask(ipp.PRINT_JOB, ipp.attribute(ipp.URI, "printer-uri", f"ipp://localhost/{place}/{queue}"), user(),
                          ipp.attribute(ipp.NAME, "job-name", "receipt"), ipp.attribute(ipp.FORMAT, "document-format", kind),
                          resource=f"/{place}/{queue}", job=job_attributes, data=data)
        return answer[0]["job-id"][0]

    def print_documents(self, queue: str, *documents: bytes, kind: str = RAW) -> int:
        """Prints several documents as one job."""
        job, = self.ask(ipp.CREATE_JOB, printer_uri(queue), user(), resource=f"/printers/{queue}")
        for number, document in enumerate(documents, 1):
            self.ask(ipp.SEND_DOCUMENT, ipp.attribute(ipp.URI, "job-uri", job["job-uri"][0]), user(),
                     ipp.attribute(ipp.FORMAT, "document-format", kind),
                     ipp.attribute(ipp.BOOLEAN, "last-document", number == len(documents)),
                     resource=f"/printers/{queue}", data=document)
        return job["job-id"][0]

    def on_job(self, operation: int, job: int):
        self.ask(operation, ipp.attribute(ipp.URI, "job-uri", f"ipp://localhost/jobs/{job}"), user(), resource="/jobs/")

    def resume(self, queue: str):
        self.ask(ipp.RESUME_PRINTER, printer_uri(queue), user(), resource="/admin/")

    def move(self, job: int, queue: str):
        self.ask(ipp.MOVE_JOB, ipp.attribute(ipp.URI, "job-uri", f"ipp://localhost/jobs/{job}"), user(), resource="/jobs/",
                 job=(ipp.attribute(ipp.URI, "job-printer-uri", f"ipp://localhost/printers/{queue}"),))

    def job(self, job: int) -> dict:
        return self.ask(ipp.GET_JOB, ipp.attribute(ipp.URI, "job-uri", f"ipp://localhost/jobs/{job}"), user())[0]

    def state(self, job: int) -> str:
        return STATES[self.job(job)["job-state"][0]]

    def printer(self, name: str) -> dict:
        return self.ask(ipp.GET_PRINTER, printer_uri(name), user())[0]

    def reasons(self, name: str) -> set[str]:
        return set(self.printer(name)["printer-state-reasons"]) - {"none"}

    def message(self, name: str) -> str:
        return self.printer(name)["printer-state-message"][0]

    def await_state(self, job: int, *states: str) -> str:
        return eventually(lambda: (now := self.state(job)) in states and now, f"job {job} is {' or '.join(states)}")


READY = (ipp.attribute(ipp.ENUM, "printer-state", 3), ipp.attribute(ipp.BOOLEAN, "printer-is-accepting-jobs", True))


def printer_uri(name: str) -> bytes:
    return ipp.attribute(ipp.URI, "printer-uri", f"ipp://localhost/printers/{name}")


def user() -> bytes:
    return ipp.attribute(ipp.NAME, "requesting-user-name", "till")
