"""The conditions under which the printer application listens, and things that it must not change."""

import os
import subprocess

from application import APPLICATION, free_port
from harness import Case, main


class ServerStart(Case):
    def assertFails(self, saying: str, *settings: str):
        result = subprocess.run([APPLICATION, "server", *(word for setting in settings for word in ("-o", setting))],
                                capture_output=True, text=True, timeout=30, env=os.environ | {"TMPDIR": str(self.folder)})
        self.assertNotEqual(result.returncode, 0)
        self.assertIn(saying, result.stderr)

    def test_other_machines_can_connect_only_if_there_is_a_password(self):
        for settings in ((), (f"password-file={self.folder}/missing",), (f"password-file={self.file('empty', b'')}",)):
            self.assertFails("password-file=FILE", f"state-directory={self.folder}", "listen-hostname=*", *settings)

    def test_the_error_of_a_wrong_option_names_the_valid_values(self):
        for setting, saying in (("upload-timeout=soon", "upload-timeout=\"soon\": takes seconds, from 1 to 86400"),
                                ("upload-timeout=0", "takes seconds"), ("server-port=65536", "port"),
                                ("log-level=loud", "takes debug, info, warn or error"),
                                ("listen-host=*", "the server has no option \"listen-host\"; its options are listen-hostname, server-port")):
            self.assertFails(saying, f"state-directory={self.folder}", setting)

    def test_a_state_directory_that_cannot_be_created_is_reported(self):
        self.assertFails("cannot be created", f"state-directory={self.file('file', b'')}")

    def test_a_server_started_by_root_does_not_change_the_host_name(self):
        log = self.folder / "log"
        script = f'hostname shop; "$@" & until grep -qs Listening {log}; do sleep 0.05; done; hostname; kill $!; wait'
        rights = [] if os.geteuid() == 0 else ["--user", "--map-root-user"]
        settings = (f"log-file={log}", "log-level=info", f"state-directory={self.folder}/state",
                    f"server-port={free_port()}")
        result = subprocess.run(
            ["unshare", *rights, "--uts", "sh", "-c", script, "sh", APPLICATION, "server",
             *(word for setting in settings for word in ("-o", setting))],
            capture_output=True, text=True, timeout=60, env=os.environ | {"TMPDIR": str(self.folder)})
        if "unshare:" in result.stderr:
            self.skipTest(result.stderr)
        self.assertEqual(result.stdout, "shop\n", result.stderr)


if __name__ == "__main__":
    main()
