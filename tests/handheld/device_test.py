"""The sources compile for the handheld device. The compiler uses the rules of the device's runtime, and sees only the
public names of the device's accessory service. Usage: device_test.py CLANG ROOT INCLUDE…
"""

import subprocess
import sys
import tempfile
from pathlib import Path

LANGUAGE = {
    ".cpp": [],
    ".mm": ["-fobjc-runtime=ios-13.0", "-fobjc-exceptions", "-D_NATIVE_OBJC_EXCEPTIONS", "-DGNUSTEP",
            "-DGNUSTEP_BASE_LIBRARY=1"],
}
STRICT = ["-Wall", "-Wextra", "-Wshadow", "-Wconversion", "-Werror"]
SWIFTS_VIEW = "@import QuorIOPort;\nQuorCode use(void) { return quor_use_handheld_platform(); }\n"


def compile_all(clang: str, root: Path, includes: list[str]) -> list[str]:
    folder = root / "backends/handheld"
    options = [f"-I{root}", f"-I{root}/include", f"-isystem{folder}/frameworks"]
    options += [f"-isystem{include}" for include in includes]
    failures = []
    for source in sorted([*folder.glob("*.mm"), *folder.glob("*.cpp")]):
        command = [clang, "-std=c++20", "-fsyntax-only", *LANGUAGE[source.suffix], *STRICT, *options,
                   str(source)]
        run = subprocess.run(command, capture_output=True, text=True)
        if run.returncode != 0:
            failures.append(f"{source.name}:\n{run.stderr}")
    return failures


def import_module(clang: str, root: Path) -> list[str]:
    with tempfile.TemporaryDirectory() as folder:
        source = Path(folder) / "uses.m"
        source.write_text(SWIFTS_VIEW)
        run = subprocess.run(
            [clang, "-x", "objective-c", "-fsyntax-only", "-fmodules", f"-fmodules-cache-path={folder}",
             f"-fmodule-map-file={root}/backends/handheld/module.modulemap", f"-I{root}/include",
             str(source)],
            capture_output=True, text=True)
    return [] if run.returncode == 0 else [f"module.modulemap:\n{run.stderr}"]


def main() -> None:
    clang, root, *includes = sys.argv[1:]
    failures = compile_all(clang, Path(root), includes) + import_module(clang, Path(root))
    if failures:
        sys.exit("\n".join(failures))


if __name__ == "__main__":
    main()
