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
    # The thread sanitizer delays each exit by a second otherwise.
    return Step((sys.executable, "-B", "tests/lifecycle/exits_test.py", f"{build}/bin/exit_with_live_port"),
                {"QUOR_EXITS": 1000, "TSAN_OPTIONS": "atexit_sleep_ms=100"})


def soak() -> Portions:
    # Long enough that a leak shows, short enough that a run that is stopped loses little.
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
    Row("model", "Independent model", "random scripts of link behaviour run alike, in everything, on the port and on a "
        "model written from its contracts alone",
        (seeds("build/bin/trace_tests", "QUOR_SCRIPTS", (100_000, 1_000_000, 10_000_000)),), WHOLE_ROW),
    Row("faults", "Fault sweep", "every call to the platform fails, in every way, once and from there on: each "
        "operation ends as its contract says", (faults("*FaultSweep*", "*MainThreadSweep*"),), WHOLE_ROW),
    Row("allocations", "Allocation sweep", "every allocation fails in turn: no exception but std::bad_alloc, and none from "
        "open and close", (faults("*AllocationSweep*", "*WithoutMemory*", "*NoMemoryAtAll*"),), WHOLE_ROW),
    Row("torture", "Link torture", "every reply and command is split, stalled, cut, doubled and preceded by a stray byte "
        "at each of its bytes", (faults("*LinkTorture*"),), WHOLE_ROW),
    Row("jobs", "Job simulation", "seeded print jobs on a truthful printer with faults of every kind: `printed` never "
        "without the paper",
        (seeds("build/bin/simulation_tests", "QUOR_SIMULATED_JOBS", (20_000, 1_000_000, 10_000_000),
               "--gtest_filter=*SimulatedJobs*"),), WHOLE_ROW),
    Row("proofs", "Proof simulation", "seeded jobs on ESC/POS printers of every set of proofs, with every fault of their "
        "answers, another host's job before them and answers to one job during the next: `printed` never without the paper; "
        "the share of jobs without trouble that are confirmed",
        (seeds("build/bin/simulation_tests", "QUOR_SIMULATED_PROOFS", (20_000, 1_000_000, 10_000_000),
               "--gtest_filter=*SimulatedProofs*"),), WHOLE_ROW),
    Row("schedules", "Fault schedules", "all schedules of at most two faults over a job of three commands, for each proof "
        "of ESC/POS: `printed` never without the paper",
        (Step(("build/bin/simulation_tests", "--gtest_filter=*EverySchedule*"), {}, testing),), WHOLE_ROW),
    Row("clocks", "Clocks", "the wall clock steps at every reading: no early time-out, no delay beyond the step",
        (faults("*Clock*"),), WHOLE_ROW),
    Row("bounds", "Bounds", "every operation ends within its limit, and one without a limit ends with the link",
        (faults("Bounds.*"),), WHOLE_ROW),
    Row("fuzz", "Fuzzing", "arbitrary input to parsers, texts, the virtual printer and whole operations",
        (fuzz(PARSERS, (100_000, 10_000_000, 10_000_000)), fuzz(TEXTS, (20_000, 1_000_000, 10_000_000)),
         fuzz(WHOLE, (1_000, 100_000, 1_000_000))), REPLAYS),
    Row("threads", "Threads", "ports opened, closed and released by the thousand, properties and the logger from many "
        "threads, processes that end with a live port thread",
        (lifecycle("build", (10_000, 100_000, 100_000), (1_000, 10_000, 10_000), (20_000, 200_000, 1_000_000)),
         exits("build")), WHOLE_ROW),
    Row("sanitizers", "Threads, under the sanitizers", "the same, silent under the thread sanitizer, and under the "
        "address, leak and undefined-behaviour sanitizers, without suppressions",
        tuple(step for build in ("build-tsan", "build-asan")
              for step in (lifecycle(build, (2_000, 100_000, 100_000), (500, 10_000, 10_000), (5_000, 50_000, 200_000)),
                           exits(build))), NOTHING),
    Row("soak", "Soak", "tills in real time over a local socket and a terminal, through a relay that slices, throttles, "
        "delays and cuts: no failed clean job, no descriptor, thread or memory left", (soak(),), WHOLE_ROW),
    Row("journal", "Jobs under a name", "a process is killed at its system calls and started again, every call below the "
        "database fails, its file is cut and torn, and eight tills share names on a printer whose link is cut: never two "
        "copies, never `printed` without paper",
        (processes("kill_sweep_test.py", QUOR_KILL_POINTS=(16, "all", "all")),
         processes("crowd_test.py", QUOR_CROWD_NAMES=(40, 1000, 1000)),
         processes("command_storage_test.py"), tests("build/bin/journal_tests")), WHOLE_ROW),
    Row("machine", "A real kernel", "in a virtual machine: the duties of a link at the kernel's driver of USB printers, and "
        "printers that are pulled at each kilobyte of a job, stall, fall silent, are held by others or come in twos",
        (Step(("ctest", "--test-dir", "build", "--verbose", "--tests-regex", "^machine/Usb"), {}, booting),),
        "all of it, with `--real`"),
    Row("queues", "Jobs of a queue", "the processes of the print system's back end and its scheduler are killed at moments of "
        "a job, under every error policy, and eight clients share four queues whose printers fail: never two copies without a "
        "person, never completed without paper",
        (queues("crash_test.py", QUOR_CRASH_MOMENTS=(2, 20, 20)), queues("load_test.py", QUOR_QUEUE_JOBS=(40, 200, 1000)),
         queues("time_test.py")),
        "all of it, with `--real`"),
    Row("coverage", "Branch coverage", "of the port, the parsers, the print job, the logger, the back ends, the C interface "
        "and the virtual printer's replies", (Step(python("coverage.py", "build-coverage")),), NOTHING),
    Row("mutation", "Mutation", "small changes of the same rooms, drawn by a seed, are noticed",
        (Step(python("mutation.py", (10, 60, 0)), ends_itself=True),), NOTHING),
    Row("breaks", "Chosen breaks", "each of ten breaks of the port, and of as many of the other rooms together, fails a "
        "test of the commit tier", (Step(python("breaks.py")),), NOTHING),
    Row("audit", "Untrusted input", "the tests that [security.md](security.md) names",
        (Step(python("audit.py", "build")),), WHOLE_ROW),
)
