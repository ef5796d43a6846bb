"""A process with a live port thread ends cleanly when it returns from main, and when it calls exit or quick_exit.

The test runs 1000 processes, or as many as QUOR_EXITS says. The first argument is the program."""
import os
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor

PROGRAM = sys.argv[1]
RUNS = int(os.environ.get("QUOR_EXITS", "1000"))


def end(number):
    how = ("return", "exit", "quick")[number % 3]
    done = subprocess.run([PROGRAM, how], capture_output=True, text=True, timeout=60)
    return None if done.returncode == 0 and not done.stderr else (how, done)


with ThreadPoolExecutor(2) as pool:
    failures = [failure for failure in pool.map(end, range(RUNS)) if failure]
for how, done in failures[:3]:
    print(f"{how}: exit status {done.returncode}\n{done.stderr}", file=sys.stderr)
print(f"{RUNS} exits, {len(failures)} of them unclean")
sys.exit(1 if failures else 0)
