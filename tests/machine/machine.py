"""A virtual machine with a kernel of its own: makes its file system, boots it, and counts the cases that ran in it.

The kernel is Debian's, downloaded into FOLDER and not installed. init.sh is the machine's first program; it loads the
modules and runs the CASES, a shell script. The options name the other files that the cases need.
"""

import argparse
import fcntl
import re
import shutil
import subprocess
import sys
import time
from pathlib import Path

HERE = Path(__file__).resolve().parent
LONGEST = 600  # seconds; on an idle machine a tenth of that is enough
LIBRARY = re.compile(r"(/\S+) \(0x")


def options() -> argparse.Namespace:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("folder", type=Path, help="the folder of the kernel and the machines")
    parser.add_argument("cases", type=Path, help="the shell script that runs in the machine")
    parser.add_argument("--modules", nargs="+", default=[], metavar="NAME[:KEY=VALUE]",
                        help="modules of the kernel, which may have a parameter; those that they need are added")
    parser.add_argument("--programs", nargs="+", default=[], metavar="NAME=PATH",
                        help="programs for /bin of the machine; their libraries are added")
    parser.add_argument("--files", nargs="+", default=[], metavar="PATH",
                        help="files and folders of this system that have the same path in the machine")
    return parser.parse_args()


def output(*command: str, **more) -> str:
    return subprocess.run(command, check=True, text=True, stdout=subprocess.PIPE, **more).stdout


def kernel(folder: Path) -> Path:
    """The unpacked package of the kernel. If several tests begin at once, only one unpacks it."""
    folder.mkdir(parents=True, exist_ok=True)
    unpacked = folder / "kernel"
    with (folder / "lock").open("w") as lock:
        fcntl.flock(lock, fcntl.LOCK_EX)
        if not unpacked.is_dir():
            depends = output("apt-cache", "depends", "linux-image-amd64")
            package = re.search(r"Depends: (linux-image-\S+)", depends).group(1)
            output("apt-get", "download", package, cwd=folder, stderr=subprocess.DEVNULL)
            partly = folder / "kernel.part"
            shutil.rmtree(partly, ignore_errors=True)
            output("dpkg-deb", "-x", str(next(folder.glob(f"{package}_*.deb"))), str(partly))
            output("depmod", "-b", str(partly), next((partly / "lib/modules").iterdir()).name)
            partly.rename(unpacked)
    return unpacked


def modules_in_order(unpacked: Path, wanted: list[str]) -> dict[Path, str]:
    """The modules and their parameters."""
    version = next((unpacked / "lib/modules").iterdir()).name
    found: dict[Path, str] = {}
    for text in wanted:
        name, _, parameter = text.partition(":")
        lines = output("modprobe", "-d", str(unpacked), "-S", version, "--show-depends", name).splitlines()
        for path in (Path(line.split()[1]) for line in lines if line.startswith("insmod ")):
            found.setdefault(path, parameter if path.stem.replace("-", "_") == name else "")
    return found


def install(root: Path, source: Path, target: str) -> None:
    place = root / target.lstrip("/")
    place.parent.mkdir(parents=True, exist_ok=True)
    if source.is_dir():
        shutil.copytree(source, place, dirs_exist_ok=True)
    else:
        shutil.copy(source, place)


def install_program(root: Path, program: Path, name: str) -> None:
    install(root, program, f"bin/{name}")
    for library in LIBRARY.findall(output("ldd", str(program))):
        install(root, Path(library), library)


def file_system(machine: Path, unpacked: Path, wanted: argparse.Namespace) -> Path:
    root = machine / "root"
    shutil.rmtree(root, ignore_errors=True)
    for name in ("bin", "etc", "modules", "proc", "run", "sys", "dev", "tmp"):
        (root / name).mkdir(parents=True)
    install(root, Path(shutil.which("busybox")), "bin/busybox")
    (root / "bin/sh").symlink_to("busybox")
    install(root, HERE / "init.sh", "init")
    (root / "init").chmod(0o755)
    install(root, wanted.cases, "cases.sh")
    for name, path in (program.split("=", 1) for program in wanted.programs):
        install_program(root, Path(path), name)
    for path in wanted.files:
        install(root, Path(path), path)
    order = modules_in_order(unpacked, wanted.modules)
    for module in order:
        install(root, module, f"modules/{module.name}")
    (root / "modules/order").write_text("".join(f"/modules/{path.name} {order[path]}\n" for path in order))
    return packed(root, machine / "root.cpio")


def packed(root: Path, archive: Path) -> Path:
    names = output("find", ".", cwd=root)
    with archive.open("wb") as file:
        subprocess.run(["busybox", "cpio", "-o", "-H", "newc"], input=names.encode(), stdout=file,
                       stderr=subprocess.DEVNULL, cwd=root, check=True)
    return archive


def boot(unpacked: Path, archive: Path, console: Path) -> str:
    """Runs the machine and returns its output. While the machine runs, its output so far is in the file `console`."""
    command = ["qemu-system-x86_64", "-accel", "tcg,thread=single", "-cpu", "max", "-m", "512", "-smp", "1",
               "-nodefaults", "-display", "none", "-serial", f"file:{console}", "-no-reboot",
               "-kernel", str(next((unpacked / "boot").glob("vmlinuz-*"))), "-initrd", str(archive),
               "-append", "console=ttyS0 quiet panic=-1 no_timer_check"]
    stopped = ""
    try:
        subprocess.run(command, stdin=subprocess.DEVNULL, timeout=LONGEST, check=True)
    except subprocess.TimeoutExpired:
        stopped = f"\nstopped after {LONGEST} s\n"
    return console.read_text(errors="replace") + stopped


def main() -> int:
    wanted = options()
    unpacked = kernel(wanted.folder)
    machine = wanted.folder / wanted.cases.stem
    archive = file_system(machine, unpacked, wanted)
    began = time.monotonic()
    said = boot(unpacked, archive, machine / "console.txt")
    lines = [line.rstrip() for line in said.splitlines()]
    passed = sum(line.startswith("ok ") for line in lines)
    ended = "end of the cases" in lines
    failed = [line for line in lines if "not ok " in line]
    print(said if failed or not ended else f"{passed} cases in {time.monotonic() - began:.0f} s")
    return 0 if ended and passed and not failed else 1


if __name__ == "__main__":
    sys.exit(main())
