"""USB printers at a real kernel: boots a virtual machine whose kernel has a USB gadget and the printer driver.

Usage: machine_test.py FOLDER QUORPORT RELAY. The kernel is Debian's own, downloaded into FOLDER and not
installed; init.sh has the cases.
"""

import re
import shutil
import subprocess
import sys
import time
from pathlib import Path

HERE = Path(__file__).resolve().parent
MODULES = ("dummy_hcd", "usb_f_printer", "usblp")
LONGEST = 300  # seconds
LIBRARY = re.compile(r"(/\S+) \(0x")


def output(*command: str, **options) -> str:
    return subprocess.run(command, check=True, text=True, stdout=subprocess.PIPE, **options).stdout


def kernel(folder: Path) -> Path:
    """The unpacked package of the kernel."""
    unpacked = folder / "kernel"
    if not unpacked.is_dir():
        depends = output("apt-cache", "depends", "linux-image-amd64")
        package = re.search(r"Depends: (linux-image-\S+)", depends).group(1)
        folder.mkdir(parents=True, exist_ok=True)
        output("apt-get", "download", package, cwd=folder, stderr=subprocess.DEVNULL)
        partly = folder / "kernel.part"
        shutil.rmtree(partly, ignore_errors=True)
        output("dpkg-deb", "-x", str(next(folder.glob(f"{package}_*.deb"))), str(partly))
        output("depmod", "-b", str(partly), next((partly / "lib/modules").iterdir()).name)
        partly.rename(unpacked)
    return unpacked


def modules_in_order(unpacked: Path) -> list[Path]:
    version = next((unpacked / "lib/modules").iterdir()).name
    found: list[Path] = []
    for name in MODULES:
        lines = output("modprobe", "-d", str(unpacked), "-S", version, "--show-depends", name).splitlines()
        for path in (Path(line.split()[1]) for line in lines if line.startswith("insmod ")):
            if path not in found:
                found.append(path)
    return found


def install_program(root: Path, program: Path, name: str) -> None:
    shutil.copy(program, root / "bin" / name)
    for library in LIBRARY.findall(output("ldd", str(program))):
        target = root / library.lstrip("/")
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy(library, target)


def file_system(folder: Path, unpacked: Path, quorport: Path, relay: Path) -> Path:
    root = folder / "root"
    shutil.rmtree(root, ignore_errors=True)
    for name in ("bin", "modules", "proc", "sys", "dev"):
        (root / name).mkdir(parents=True)
    shutil.copy(shutil.which("busybox"), root / "bin/busybox")
    (root / "bin/sh").symlink_to("busybox")
    shutil.copy(HERE / "init.sh", root / "init")
    (root / "init").chmod(0o755)
    install_program(root, quorport, "quorport")
    install_program(root, relay, "relay")
    order = modules_in_order(unpacked)
    for module in order:
        shutil.copy(module, root / "modules")
    (root / "modules/order").write_text("".join(f"/modules/{module.name}\n" for module in order))
    archive = folder / "root.cpio"
    names = output("find", ".", cwd=root)
    with archive.open("wb") as file:
        subprocess.run(["busybox", "cpio", "-o", "-H", "newc"], input=names.encode(), stdout=file,
                       stderr=subprocess.DEVNULL, cwd=root, check=True)
    return archive


def boot(unpacked: Path, archive: Path, console: Path) -> str:
    """What the machine said; it is also in `console` while it runs."""
    command = ["qemu-system-x86_64", "-accel", "tcg,thread=single", "-cpu", "max", "-m", "512", "-smp", "1",
               "-nodefaults", "-display", "none", "-serial", f"file:{console}", "-no-reboot",
               "-kernel", str(next((unpacked / "boot").glob("vmlinuz-*"))), "-initrd", str(archive),
               "-append", "console=ttyS0 quiet panic=-1"]
    stopped = ""
    try:
        subprocess.run(command, stdin=subprocess.DEVNULL, timeout=LONGEST, check=True)
    except subprocess.TimeoutExpired:
        stopped = f"\nstopped after {LONGEST} s\n"
    return console.read_text(errors="replace") + stopped


def main(folder: Path, quorport: Path, relay: Path) -> int:
    unpacked = kernel(folder)
    archive = file_system(folder, unpacked, quorport, relay)
    began = time.monotonic()
    said = boot(unpacked, archive, folder / "console.txt")
    lines = [line.rstrip() for line in said.splitlines()]
    passed = sum(line.startswith("ok ") for line in lines)
    ended = "end of the cases" in lines
    failed = [line for line in lines if "not ok " in line]
    print(said if failed or not ended else f"{passed} cases in {time.monotonic() - began:.0f} s")
    return 0 if ended and passed and not failed else 1


if __name__ == "__main__":
    sys.exit(main(*map(Path, sys.argv[1:])))
