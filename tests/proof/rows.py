"""The rows of the table in docs/proof.md. Each row has a claim, and the programs that test it at each size of a run."""

import sys
from dataclasses import dataclass

from steps import ROOT, Portions, Step, booting, fuzzing, seeds, testing


@dataclass(frozen=True)
class Row:
    key: str
    title: str
    shows: str
    steps: tuple
    suite: str  # which part of this work `./dev test` does: the text in the column "at each commit"


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
    # Without this option, the thread sanitizer delays each exit by a second.
    return Step((sys.executable, "-B", "tests/lifecycle/exits_test.py", f"{build}/bin/exit_with_live_port"),
                {"QUOR_EXITS": 1000, "TSAN_OPTIONS": "atexit_sleep_ms=100"})


def soak() -> Portions:
    # For a release, the work is divided into runs of half an hour. Such a run is long enough to show a leak, and short
    # enough that little is lost when it is stopped.
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
    # Each run begins with the corpus that the earlier runs have gathered.
    return Portions(("scripts/fuzz.sh", "build-fuzz", "-runs={amount}", *targets), runs, tuple(min(one, runs[1]) for one in runs),
                    lambda number, _amount: {"QUOR_SEED": str(1 + number)}, fuzzing)


WHOLE_ROW, REPLAYS, NOTHING = "all of it", "the corpora, replayed", "nothing"

ROWS = (
    Row("model", "Independent model",
        "On random scripts of link behaviour, the port has exactly the same effects as a model of it, which was "
        "written only from the port's contracts",
        (seeds("build/bin/trace_tests", "QUOR_SCRIPTS", (100_000, 1_000_000, 10_000_000)),), WHOLE_ROW),
    Row("faults", "Fault sweep",
        "Every call to the platform fails, in every possible way, once or from then on: each operation ends as "
        "its contract says",
        (faults("*FaultSweep*", "*MainThreadSweep*"),), WHOLE_ROW),
    Row("allocations", "Allocation sweep",
        "Each memory allocation fails in turn: the port throws only std::bad_alloc, and open and close throw "
        "nothing",
        (faults("*AllocationSweep*", "*WithoutMemory*", "*NoMemoryAtAll*"),), WHOLE_ROW),
    Row("torture", "Link torture",
        "Faults occur at each byte of every reply and command: splits, delays, cut links, repetitions and stray "
        "bytes. Each operation ends as the model says",
        (faults("*LinkTorture*"),), WHOLE_ROW),
    Row("jobs", "Job simulation",
        "Random print jobs run on a simulated printer that never lies, with faults of every kind: no job is "
        "reported as `printed` unless all of it is on paper",
        (seeds("build/bin/simulation_tests", "QUOR_SIMULATED_JOBS", (20_000, 1_000_000, 10_000_000),
               "--gtest_filter=*SimulatedJobs*"),), WHOLE_ROW),
    Row("proofs", "Proof simulation",
        "Random jobs run on simulated ESC/POS printers with every set of proofs. If answers are wrong, another "
        "host prints before the job, or answers to one job arrive during the next, no job is reported as "
        "`printed` unless all of it is on paper. The result says how many of the undisturbed jobs are confirmed",
        (seeds("build/bin/simulation_tests", "QUOR_SIMULATED_PROOFS", (20_000, 1_000_000, 10_000_000),
               "--gtest_filter=*SimulatedProofs*"),), WHOLE_ROW),
    Row("schedules", "Fault schedules",
        "A job of three commands runs with every combination of at most two faults, for each proof of ESC/POS: no "
        "job is reported as `printed` unless all of it is on paper",
        (Step(("build/bin/simulation_tests", "--gtest_filter=*EverySchedule*"), {}, testing),), WHOLE_ROW),
    Row("clocks", "Clocks",
        "The wall clock is changed at every reading: no time-out is early, and none is late by more than the "
        "change",
        (faults("*Clock*"),), WHOLE_ROW),
    Row("bounds", "Bounds",
        "Every operation ends within its limit; an operation without a limit ends when its link ends",
        (faults("TimeBounds.*"),), WHOLE_ROW),
    Row("fuzz", "Fuzzing",
        "The parsers, the text functions, the virtual printer and the operations of the port do not crash, hang "
        "or overrun on arbitrary input",
        (fuzz(PARSERS, (100_000, 10_000_000, 10_000_000)), fuzz(TEXTS, (20_000, 1_000_000, 10_000_000)),
         fuzz(WHOLE, (1_000, 100_000, 1_000_000))), REPLAYS),
    Row("threads", "Threads",
        "Thousands of ports are opened, closed and released, many threads use properties and the logger, and "
        "processes end while a port thread runs",
        (lifecycle("build", (10_000, 100_000, 100_000), (1_000, 10_000, 10_000), (20_000, 200_000, 1_000_000)),
         exits("build")), WHOLE_ROW),
    Row("sanitizers", "Threads, under the sanitizers",
        "The tests of the row above run under the sanitizers of threads, addresses, leaks and undefined "
        "behaviour, which find nothing; no finding is suppressed",
        tuple(step for build in ("build-tsan", "build-asan")
              for step in (lifecycle(build, (2_000, 100_000, 100_000), (500, 10_000, 10_000), (5_000, 50_000, 200_000)),
                           exits(build))), NOTHING),
    Row("soak", "Soak",
        "Tills print in real time over a local socket and a terminal, through a relay that splits, slows and "
        "delays the data and cuts the link: no undisturbed job fails, and the tills leak no descriptors, threads "
        "or memory",
        (soak(),), WHOLE_ROW),
    Row("journal", "Jobs under a name",
        "In separate tests, a process is killed at its system calls and started again; every system call of the "
        "database fails; the database file is truncated or partly overwritten; eight tills share job names on a "
        "printer whose link is cut. No job is on paper twice, and none is reported as `printed` unless it is on "
        "paper",
        (processes("kill_sweep_test.py", QUOR_KILL_POINTS=(16, "all", "all")),
         processes("crowd_test.py", QUOR_CROWD_NAMES=(40, 1000, 1000)),
         processes("command_storage_test.py"), tests("build/bin/journal_tests")), WHOLE_ROW),
    Row("machine", "A real kernel",
        "In a virtual machine, a link over the kernel's driver of USB printers fulfils its duties with one "
        "printer and with two. It does so even if a printer is unplugged at each kilobyte of a job, stalls, "
        "becomes silent or is in use",
        (Step(("ctest", "--test-dir", "build", "--verbose", "--tests-regex", "^machine/Usb"), {}, booting),),
        "all of it, with `--real`"),
    Row("queues", "Jobs of a queue",
        "In separate tests, the print system's scheduler or the processes of its back end are killed during a "
        "job, with each error policy of the queue; eight clients share four queues whose printers fail. No job is "
        "on paper twice unless a person asks for it, and none is reported as completed unless it is on paper",
        (queues("crash_test.py", QUOR_CRASH_MOMENTS=(2, 20, 20)), queues("load_test.py", QUOR_QUEUE_JOBS=(40, 200, 1000)),
         queues("time_test.py")),
        "all of it, with `--real`"),
    Row("coverage", "Branch coverage",
        "Tests take the branches of the port, the parsers, the print job, the logger, the back ends, the C "
        "interface and the virtual printer's replies",
        (Step(python("coverage.py", "build-coverage")),), NOTHING),
    Row("mutation", "Mutation",
        "Tests notice random small changes (mutants) of the code in the areas that the result names, drawn with "
        "seed 1. The result also shows the number of changes that no test could notice",
        (Step(python("mutation.py", (10, 60, 0)), ends_itself=True),), NOTHING),
    Row("breaks", "Chosen breaks",
        "Each of twenty deliberate defects, ten in the port and ten in other parts of the code, makes an ordinary "
        "test fail",
        (Step(python("breaks.py")),), NOTHING),
    Row("audit", "Untrusted input",
        "All tests that [security.md](security.md) names pass",
        (Step(python("audit.py", "build")),), WHOLE_ROW),
)
