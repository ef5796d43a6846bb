"""The rows of the proof: the claim of each, and its programs at each of the three sizes."""

import sys
from dataclasses import dataclass

from steps import ROOT, Portions, Step, booting, fuzzing, seeds, testing


@dataclass(frozen=True)
class Row:
    key: str
    title: str
    shows: str
    steps: tuple
    suite: str  # its part in the ordinary tests, which run at each commit


def python(script: str, *arguments) -> tuple:
    return (sys.executable, "-B", f"tests/proof/{script}", *arguments)


def tests(program: str, **environment) -> Step:
    return Step((program,), environment, testing)


def faults(*filters: str) -> Step:
    return Step(("build/bin/faults_tests", "--gtest_filter=" + ":".join(filters)), {}, testing)


def lifecycle(build: str, cycles: tuple, releases: tuple, writes: tuple) -> Step:
    return tests(f"{build}/bin/lifecycle_tests", QUOR_PORT_CYCLES=cycles, QUOR_PORT_RELEASES=releases,
                 QUOR_PROPERTY_WRITES=writes, QUOR_LOG_RECORDS=writes)


def exits(build: str) -> Step:
    # Otherwise the thread sanitizer delays each exit by a second.
    return Step((sys.executable, "-B", "tests/lifecycle/exits_test.py", f"{build}/bin/exit_with_live_port"),
                {"QUOR_EXITS": 1000, "TSAN_OPTIONS": "atexit_sleep_ms=100"})


def soak() -> Portions:
    # Long enough to show a leak, short enough that a stopped run loses little.
    def settings(number: int, seconds: int) -> dict[str, str]:
        return {"QUOR_SOAK_SECONDS": str(seconds), "QUOR_SEED": str(1 + number), "QUORPORT": str(ROOT / "build/bin/quorport")}

    return Portions((sys.executable, "-B", "tests/soak/soak_test.py", "build/bin/till"), (10, 600, 28_800),
                    (10, 600, 1_800), settings)


def processes(script: str, **environment) -> Step:
    here = {"QUORPORT": str(ROOT / "build/bin/quorport"), "KILL_AT": str(ROOT / "build/bin/kill_at"),
            "FAULTY_STORAGE": str(ROOT / "build/bin/libfaulty_storage.so"), "PYTHONPATH": str(ROOT / "tests/tools")}
    return Step((sys.executable, "-B", f"tests/journal/{script}"), here | environment)


def queues(script: str, **environment) -> Step:
    here = {"QUORPORT": str(ROOT / "build/bin/quorport"), "QUOR": str(ROOT / "build/bin/quor"),
            "PYTHONPATH": str(ROOT / "tests/tools")}
    return Step((sys.executable, "-B", f"tests/cups/{script}"), here | environment)


PARSERS = ("status_length", "line_status", "escpos_status", "firmware_reply", "dip_switch_reply")
TEXTS = ("port_name", "port_settings", "bluetooth_address", "network_address", "device_spec", "log_record",
         "simulator_input", "control_line")
WHOLE = ("at_reply", "operation", "print_job")


def fuzz(targets: tuple[str, ...], runs: tuple) -> Portions:
    # Each portion begins with the corpus that the earlier ones have gathered.
    return Portions(("scripts/fuzz.sh", "build-fuzz", "-runs={amount}", *targets), runs, tuple(min(one, runs[1]) for one in runs),
                    lambda number, _amount: {"QUOR_SEED": str(1 + number)}, fuzzing)


WHOLE_ROW, REPLAYS, NOTHING = "all of it", "the corpora, replayed", "nothing"

ROWS = (
    Row("model", "Independent model",
        "random scripts of link behaviour have exactly the same effects on the port and on a model that was "
        "written from its contracts alone",
        (seeds("build/bin/trace_tests", "QUOR_SCRIPTS", (100_000, 1_000_000, 10_000_000)),), WHOLE_ROW),
    Row("faults", "Fault sweep",
        "every call to the platform fails, in every possible way, once or from then on: each operation ends as "
        "its contract says",
        (faults("*FaultSweep*", "*MainThreadSweep*"),), WHOLE_ROW),
    Row("allocations", "Allocation sweep",
        "each allocation fails, one after the other: the port throws only std::bad_alloc, and open and close throw nothing",
        (faults("*AllocationSweep*", "*WithoutMemory*", "*NoMemoryAtAll*"),), WHOLE_ROW),
    Row("torture", "Link torture",
        "every reply and command is split, stalled, cut, doubled and preceded by a stray byte at each of its "
        "bytes",
        (faults("*LinkTorture*"),), WHOLE_ROW),
    Row("jobs", "Job simulation",
        "random print jobs on a truthful printer with faults of every kind: no job is `printed` without its paper",
        (seeds("build/bin/simulation_tests", "QUOR_SIMULATED_JOBS", (20_000, 1_000_000, 10_000_000),
               "--gtest_filter=*SimulatedJobs*"),), WHOLE_ROW),
    Row("proofs", "Proof simulation",
        "random jobs on ESC/POS printers with every set of proofs: their answers are faulty, another host prints "
        "before them, or answers to one job arrive during the next. No job is `printed` without its paper; the "
        "result is how many of the undisturbed jobs are confirmed",
        (seeds("build/bin/simulation_tests", "QUOR_SIMULATED_PROOFS", (20_000, 1_000_000, 10_000_000),
               "--gtest_filter=*SimulatedProofs*"),), WHOLE_ROW),
    Row("schedules", "Fault schedules",
        "a job of three commands with every combination of at most two faults, for each proof of ESC/POS: no job "
        "is `printed` without its paper",
        (Step(("build/bin/simulation_tests", "--gtest_filter=*EverySchedule*"), {}, testing),), WHOLE_ROW),
    Row("clocks", "Clocks",
        "the wall clock is set at every reading: no time-out is early, and none is late by more than the step",
        (faults("*Clock*"),), WHOLE_ROW),
    Row("bounds", "Bounds",
        "every operation ends within its limit, and an operation without a limit ends with its link",
        (faults("Bounds.*"),), WHOLE_ROW),
    Row("fuzz", "Fuzzing",
        "arbitrary input makes no parser, text function, virtual printer or operation of the port crash, hang or "
        "overrun",
        (fuzz(PARSERS, (100_000, 10_000_000, 10_000_000)), fuzz(TEXTS, (20_000, 1_000_000, 10_000_000)),
         fuzz(WHOLE, (1_000, 100_000, 1_000_000))), REPLAYS),
    Row("threads", "Threads",
        "thousands of ports are opened, closed and released, many threads use properties and the logger, and "
        "processes end while a port thread runs",
        (lifecycle("build", (10_000, 100_000, 100_000), (1_000, 10_000, 10_000), (20_000, 200_000, 1_000_000)),
         exits("build")), WHOLE_ROW),
    Row("sanitizers", "Threads, under the sanitizers",
        "the tests of the row above, with no finding of the thread, address, leak and undefined-behaviour "
        "sanitizers; nothing is suppressed",
        tuple(step for build in ("build-tsan", "build-asan")
              for step in (lifecycle(build, (2_000, 100_000, 100_000), (500, 10_000, 10_000), (5_000, 50_000, 200_000)),
                           exits(build))), NOTHING),
    Row("soak", "Soak",
        "tills print in real time over a local socket and a terminal, through a relay that splits, slows, delays "
        "and cuts: no undisturbed job fails, and no descriptor, thread or memory is left",
        (soak(),), WHOLE_ROW),
    Row("journal", "Jobs under a name",
        "a process is killed at its system calls and started again, every call below the database fails, its file "
        "is cut and torn, and eight tills share names on a printer whose link is cut: no job is on paper twice, "
        "and none is `printed` without its paper",
        (processes("kill_sweep_test.py", QUOR_KILL_POINTS=(16, "all", "all")),
         processes("crowd_test.py", QUOR_CROWD_NAMES=(40, 1000, 1000)),
         processes("command_storage_test.py"), tests("build/bin/journal_tests")), WHOLE_ROW),
    Row("machine", "A real kernel",
        "in a virtual machine, a link over the kernel's driver of USB printers does its duties, even with "
        "printers that are pulled at each kilobyte of a job, stall, become silent, or are in use, and with two "
        "printers",
        (Step(("ctest", "--test-dir", "build", "--verbose", "--tests-regex", "^machine/Usb"), {}, booting),),
        "all of it, with `--real`"),
    Row("queues", "Jobs of a queue",
        "the processes of the print system's back end and its scheduler are killed at moments of a job, under "
        "every error policy, and eight clients share four queues whose printers fail: no job is on paper twice "
        "unless a person asks for it, and none is completed without its paper",
        (queues("crash_test.py", QUOR_CRASH_MOMENTS=(2, 20, 20)), queues("load_test.py", QUOR_QUEUE_JOBS=(40, 200, 1000)),
         queues("time_test.py")),
        "all of it, with `--real`"),
    Row("coverage", "Branch coverage",
        "tests take the branches of the port, the parsers, the print job, the logger, the back ends, the C "
        "interface and the virtual printer's replies",
        (Step(python("coverage.py", "build-coverage")),), NOTHING),
    Row("mutation", "Mutation", "tests notice random small changes of the code in the same rooms, drawn by seed 1",
        (Step(python("mutation.py", (10, 60, 0)), ends_itself=True),), NOTHING),
    Row("breaks", "Chosen breaks",
        "each of ten deliberate defects of the port, and of ten in the other rooms, makes an ordinary test fail",
        (Step(python("breaks.py")),), NOTHING),
    Row("audit", "Untrusted input", "all tests pass that [security.md](security.md) names",
        (Step(python("audit.py", "build")),), WHOLE_ROW),
)
