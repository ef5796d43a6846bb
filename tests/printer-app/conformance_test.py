"""The tests of IPP that come with the print system, run against the application by the print system's own client."""

import re
import subprocess

from application import Application
from harness import eventually, main

# The tests that fail with version 1.3 of the framework for every printer, and the reason of each.
LEFT_TO_THE_FRAMEWORK = {
    "overrides-supported",  # the framework prints all pages of a document alike
}


class Conformance(Application):
    def ipptool(self, test: str, *arguments: str) -> str:
        result = subprocess.run(["ipptool", "-tv", *arguments, self.client.uri, f"{test}.test"], capture_output=True,
                                text=True, timeout=60)
        return result.stdout

    def test_the_printer_application_passes_all_ipp_tests_that_its_framework_passes(self):
        eventually(lambda: self.client.printer()["printer-up-time"] > [0], "a second is over")
        document = self.file("document", b"a line of text\n")
        for test in ("ipp-1.1", "ipp-2.0", "ipp-everywhere"):
            answer = self.ipptool(test, "-f", document)
            passed, failed = (len(re.findall(rf"\[{word}\]", answer)) for word in ("PASS", "FAIL"))
            print(f"{test}: {passed} passed, {failed} failed")
            self.assertGreaterEqual(passed, 25)
            self.assertLessEqual(set(re.findall(r"EXPECTED: (\S+)", answer)), LEFT_TO_THE_FRAMEWORK, f"{test}: {answer}")


if __name__ == "__main__":
    main()
