"""The print system's own back end for network printers, to be measured beside ours. Taken out of Debian's package, not installed."""

import shutil
import subprocess
from pathlib import Path

PACKAGE = "cups"
INSTALLED = Path("/usr/lib/cups/backend/socket")


def socket_back_end(folder: Path) -> Path:
    """The program; it is downloaded into `folder` unless it is installed."""
    if INSTALLED.is_file():
        return INSTALLED
    unpacked = folder / "package"
    program = unpacked / "usr/lib/cups/backend-available/socket"
    if not program.is_file():
        folder.mkdir(parents=True, exist_ok=True)
        subprocess.run(["apt-get", "download", PACKAGE], cwd=folder, check=True, stdout=subprocess.DEVNULL,
                       stderr=subprocess.DEVNULL)
        shutil.rmtree(unpacked, ignore_errors=True)
        subprocess.run(["dpkg-deb", "-x", next(folder.glob(f"{PACKAGE}_*.deb")), unpacked], check=True)
    return program
