"""What the printer application requires before it listens."""

import os
import subprocess

from application import APPLICATION
from harness import Case, main


class Listening(Case):
    def assertFails(self, saying: str, *settings: str):
        result = subprocess.run([APPLICATION, "server", *(word for setting in settings for word in ("-o", setting))],
                                capture_output=True, text=True, timeout=30, env=os.environ | {"TMPDIR": str(self.folder)})
        self.assertNotEqual(result.returncode, 0)
        self.assertIn(saying, result.stderr)

    def test_others_are_listened_to_only_with_a_password(self):
        for settings in ((), (f"password-file={self.folder}/missing",), (f"password-file={self.file('empty', b'')}",)):
            self.assertFails("password-file=FILE", f"state-directory={self.folder}", "listen-hostname=*", *settings)

    def test_a_state_that_cannot_be_kept_is_reported(self):
        self.assertFails("cannot be made", f"state-directory={self.file('file', b'')}")


if __name__ == "__main__":
    main()
