"""One process of the back end prints, and another waits for it. The waiting process is killed at each system call that
it makes."""

import os
import subprocess

from harness import main
from program import DONE, ProgramCase
from queues import QUOR, RECEIPT, printed

KILL_AT = os.environ["KILL_AT"]
KILLED = 137
# The back end first opens this file, the scheduler's record in /proc. Calls are counted from then on.
FIRST_FILE = "/stat"


class KilledBackEnd(ProgramCase):
    def killed_at(self, call: int) -> tuple[int, bool, bool]:
        """The exit code, whether the back end asks the scheduler to stop the queue, and whether the receipt is on
        paper."""
        before = printed(self.printer)
        under = (KILL_AT, str(call), FIRST_FILE, QUOR)
        code, said = self.run_to_end(self.start(self.printer, self.receipt, options=f"job-uuid={call}", under=under))
        return code, "STATE: paused\n" in said, printed(self.printer) > before

    def test_a_back_end_killed_at_any_system_call_has_printed_the_job_or_stopped_the_queue(self):
        self.printer, self.receipt = self.simulator(), self.file("receipt", RECEIPT)
        call, code = 0, KILLED
        while code == KILLED:
            call += 1
            code, is_told, is_printed = self.killed_at(call)
            self.assertTrue(is_told or is_printed, f"call {call}")
        self.assertEqual(code, DONE)
        self.assertGreater(call, 10)
        print(f"{call} cases")

    def test_the_back_end_does_not_load_the_print_systems_library(self):
        said = subprocess.run(["ldd", QUOR], capture_output=True, text=True, check=True).stdout
        self.assertNotIn("libcups", said)


if __name__ == "__main__":
    main()
