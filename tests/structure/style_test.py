"""A source that breaks the written style fails the lint. Usage: style_test.py ROOT

Each case is a folder with one source file. The lint of ./dev check runs there, with the project's rules.
"""

import json
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(sys.argv.pop()).resolve()

GOOD = """#include <cstddef>

namespace sample {

enum class Colour { Red, Green };

constexpr std::size_t greatestLength = 60;

class Queue {
 public:
  std::size_t size() const { return size_; }
  void add(std::size_t count) {
    if (size_ + count <= greatestLength) {
      size_ += count;
    }
  }

 private:
  std::size_t size_ = 0;
};

}  // namespace sample
"""

FAULTS = {
    "a prefix before a constant": ("greatestLength", "GreatestLength"),
    "an enumerator in lower case": ("Red", "red"),
    "a private member without its underscore": ("size_", "mySize"),
    "a type in lower case": ("Queue", "queue"),
    "a function in upper case": ("add", "Add"),
    "a parameter with an underscore": ("count", "new_count"),
    "a namespace in upper case": ("sample", "Sample"),
    "a body without braces": ("{\n      size_ += count;\n    }", "size_ += count;"),
}


@unittest.skipUnless(shutil.which("clang-tidy"), "needs clang-tidy")
class Style(unittest.TestCase):
    def lint(self, text: str) -> subprocess.CompletedProcess:
        with tempfile.TemporaryDirectory() as folder:
            root = Path(folder).resolve()
            shutil.copy(ROOT / ".clang-tidy", root)
            (root / "job").mkdir()
            (root / "job/Sample.cpp").write_text(text)
            (root / "build").mkdir()
            command = {"directory": str(root), "file": "job/Sample.cpp", "command": "c++ -std=c++20 -c job/Sample.cpp"}
            (root / "build/compile_commands.json").write_text(json.dumps([command]))
            return subprocess.run([sys.executable, "-B", ROOT / "scripts/lint.py", "build"], cwd=root, text=True,
                                  stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=100)

    def test_code_in_the_documented_style_passes(self):
        done = self.lint(GOOD)
        self.assertEqual(done.returncode, 0, done.stdout)

    def test_each_violation_of_the_style_fails(self):
        for fault, (good, bad) in FAULTS.items():
            with self.subTest(fault):
                text = GOOD.replace(good, bad)
                self.assertNotEqual(text, GOOD)
                done = self.lint(text)
                self.assertEqual(done.returncode, 1, done.stdout)
                self.assertRegex(done.stdout, r"\[readability-(identifier-naming|braces-around-statements)")


if __name__ == "__main__":
    unittest.main()
