"""The example in JavaScript prints. It calls the C interface through a package from npm.

The test is skipped on a machine without npm. It does not require Debian's npm, because this npm may not work with the
node that a machine has.
"""

import os
import shutil
import subprocess
import tempfile
import unittest

from programs import SOURCES, ProgramTest

PACKAGE = "koffi@2.16.3"


@unittest.skipUnless(shutil.which("npm"), "needs npm")
@unittest.skipIf("-fsanitize" in os.environ["CXXFLAGS"], "the library is built with a sanitizer")
class JavaScript(ProgramTest):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        subprocess.run(["npm", "install", "--silent", "--no-audit", "--no-fund", PACKAGE], cwd=folder.name, check=True,
                       capture_output=True, timeout=240)
        cls.modules = f"{folder.name}/node_modules"

    def outcome(self, device: str) -> tuple[int, str]:
        done = subprocess.run(["node", SOURCES / "examples/print.js", device, "2 Espresso   3.60\n" * 20],
                              capture_output=True, text=True, timeout=60, env={**os.environ, "NODE_PATH": self.modules})
        return done.returncode, done.stdout + done.stderr

    def test_the_javascript_example_reports_each_outcome(self):
        self.assertEqual(self.outcome("virtual:"), (0, "printed \n"))
        self.assertEqual(self.outcome("virtual:,coverOpen=true"), (1, "refused cover open\n"))
        code, text = self.outcome("virtual:,cut-after-in=300")
        self.assertEqual((code, text.split()[0]), (6, "unconfirmed"))

    def test_the_javascript_example_names_the_cause_of_a_failure(self):
        code, text = self.outcome("nonsense:")
        self.assertEqual(code, 1)
        self.assertIn("nonsense", text)
        code, text = self.outcome(f"unix:{self.folder}/nobody")
        self.assertEqual(code, 1)
        self.assertIn("nobody", text)


if __name__ == "__main__":
    unittest.main()
