"""Each check runs on a small tree with the fault that it must find, and on a tree without it."""

import json
import stat
import tempfile
import unittest
from pathlib import Path

import built_tests
import documentation
import files
import include_rules
import known_names
import wording


class SmallTree(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name).resolve()

    def write(self, path: str, text: str) -> Path:
        file = self.root / path
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text)
        return file


class IncludeRules(SmallTree):
    def objects_to(self, path: str, *lines: str) -> bool:
        self.write(path, "".join(line + "\n" for line in lines))
        return bool(include_rules.violations(self.root))

    def setUp(self):
        super().setUp()
        for header in ("include/quordalvane/QuorIOPort.h", "platform/Clock.h", "parsers/ReplyParsers.h",
                       "simulator/Printer.h", "backends/Devices.h", "backends/posix/TcpLink.h",
                       "backends/virtual/VirtualAccessory.h", "iphone-IOPort/Util.h", "job/PrintJob.h"):
            self.write(header, "#pragma once\n")

    def test_a_tree_that_follows_all_rules_is_accepted(self):
        self.write("iphone-IOPort/PortC.h", '#include "parsers/ReplyParsers.h"\n')
        self.write("backends/Devices.cpp", '#include "backends/posix/TcpLink.h"\n')
        self.write("backends/virtual/Link.cpp", '#include "simulator/Printer.h"\n')
        self.write("backends/posix/TcpLink.cpp", "#include <sys/socket.h>\n")
        self.write("parsers/ReplyParsers.cpp", "#include <quordalvane/QuorIOPort.h>\n#include <span>\n")
        self.write("iphone-IOPort/Status.cpp", '#include "Util.h"\n#include "iphone-IOPort/PortC.h"\n')
        self.write("tools/quorport/main.cpp", '#include "job/PrintJob.h"\n#include <CLI/CLI.hpp>\n')
        self.write("tests/unit/any_test.cpp", '#include <unistd.h>\n#include "simulator/Printer.h"\n')
        self.assertEqual(include_rules.violations(self.root), [])

    def test_the_port_may_include_the_parsers_through_one_header_only(self):
        self.assertTrue(self.objects_to("iphone-IOPort/Status.cpp", '#include "parsers/ReplyParsers.h"'))

    def test_the_port_may_not_include_a_system_header(self):
        self.assertTrue(self.objects_to("iphone-IOPort/Session.cpp", "#include <unistd.h>"))

    def test_the_port_may_not_use_threads(self):
        self.assertTrue(self.objects_to("iphone-IOPort/PortThread.cpp", "#include <thread>"))

    def test_the_port_may_not_read_a_clock(self):
        self.assertTrue(self.objects_to("iphone-IOPort/Status.cpp", "auto t = steady_clock::now();"))

    def test_the_port_may_not_parse_numbers_by_the_locale(self):
        self.assertTrue(self.objects_to("iphone-IOPort/Port.cpp", "float version = std::strtof(text, nullptr);"))

    def test_the_port_may_not_include_a_back_end(self):
        self.assertTrue(self.objects_to("iphone-IOPort/Session.cpp", '#include "backends/Devices.h"'))

    def test_an_include_with_a_relative_path_is_checked(self):
        self.assertTrue(self.objects_to("iphone-IOPort/Session.cpp", '#include "../simulator/Printer.h"'))

    def test_an_include_of_a_missing_header_is_checked_by_its_path(self):
        self.assertTrue(self.objects_to("parsers/Table.cpp", '#include "platform/NotYet.h"'))

    def test_the_parsers_may_not_include_the_port(self):
        self.assertTrue(self.objects_to("parsers/Table.cpp", '#include "iphone-IOPort/Util.h"'))

    def test_the_back_ends_may_not_include_each_other(self):
        self.assertTrue(
            self.objects_to("backends/posix/TcpLink.cpp", '#include "backends/virtual/VirtualAccessory.h"'))

    def test_the_common_part_of_the_back_ends_may_not_include_a_back_end(self):
        self.assertTrue(self.objects_to("backends/Identity.cpp", '#include "backends/posix/TcpLink.h"'))

    def test_only_the_virtual_back_end_may_include_the_simulator(self):
        self.assertTrue(self.objects_to("backends/posix/TcpLink.cpp", '#include "simulator/Printer.h"'))

    def test_the_simulator_may_not_include_the_parsers(self):
        self.assertTrue(self.objects_to("simulator/Status.cpp", '#include "parsers/ReplyParsers.h"'))

    def test_the_simulator_may_not_read_a_clock(self):
        self.assertTrue(self.objects_to("simulator/Printer.cpp", "std::chrono::steady_clock::now();"))

    def test_the_public_header_may_include_stdint_only(self):
        self.assertTrue(self.objects_to("include/quordalvane/QuorIOPort.h", "#include <stddef.h>"))

    def test_the_c_interface_may_not_include_a_back_end(self):
        self.assertTrue(self.objects_to("c-interface/Port.cpp", '#include "backends/posix/TcpLink.h"'))

    def test_a_job_may_not_include_a_back_end(self):
        self.assertTrue(self.objects_to("job/PrintJob.cpp", '#include "backends/Devices.h"'))


class KnownNames(SmallTree):
    def objections(self, *members: str) -> list[str]:
        names = [name for name in known_names.LIST.read_text().split() if name not in members]
        for room in known_names.ROOMS:
            self.write(f"{room}/Names.h", f"int {', '.join(names)};\n")
        self.write("iphone-IOPort/ExternalAccessoryPort.h", "".join(f"  int {member};\n" for member in members))
        return known_names.violations(self.root)

    def test_all_known_names_in_the_required_order_are_accepted(self):
        self.assertEqual(self.objections(*known_names.MEMBERS), [])

    def test_a_known_name_only_in_a_comment_or_a_string_counts_as_missing(self):
        self.objections(*known_names.MEMBERS)
        for room in known_names.ROOMS:
            (self.root / room / "Names.h").write_text('// etb\nconst char* text = "etb";\n')
        self.assertIn("etb: no name of the code", known_names.violations(self.root))

    def test_members_of_the_port_class_in_a_wrong_order_are_reported(self):
        self.assertEqual(len(self.objections(*reversed(known_names.MEMBERS))), 1)


class BuiltTests(SmallTree):
    def objections(self, source: str, built: bool, names: list[str]) -> list[str]:
        file = self.write("tests/unit/a_test.cpp", source)
        commands = [{"directory": str(self.root), "file": str(file)}] if built else []
        self.write("build/compile_commands.json", json.dumps(commands))
        listing = json.dumps({"tests": [{"name": name} for name in names]})
        ctest = self.write("ctest", f"#!/bin/sh\ncat <<'END'\n{listing}\nEND\n")
        ctest.chmod(ctest.stat().st_mode | stat.S_IXUSR)
        return built_tests.violations(self.root, self.root / "build", ctest)

    def test_a_test_that_is_built_and_run_is_accepted(self):
        self.assertEqual(self.objections("TEST(A, B) {}\n", True, ["unit/A.B"]), [])

    def test_a_parameterized_or_typed_test_is_found_under_its_longer_name(self):
        source = "TEST_P(A, B) {}\nTYPED_TEST(C, D) {}\n"
        self.assertEqual(self.objections(source, True, ["unit/All/A.B/0", "unit/C/1.D"]), [])

    def test_a_test_file_that_is_not_built_is_reported(self):
        self.assertTrue(self.objections("TEST(A, B) {}\n", False, ["unit/A.B"]))

    def test_a_test_that_is_not_run_is_reported(self):
        self.assertTrue(self.objections("TEST(A, B) {}\nTEST(A, C) {}\n", True, ["unit/A.B", "unit/A.CC"]))

    def test_a_parameterized_test_without_parameters_is_reported(self):
        self.assertTrue(self.objections("TEST_P(A, B) {}\n", True, ["unit/A.B"]))

    def test_a_disabled_test_is_reported(self):
        self.assertTrue(self.objections("TEST(A, DISABLED_B) {}\n", True, ["unit/A.B"]))

    def test_a_test_file_without_a_test_is_reported(self):
        self.assertTrue(self.objections("int nothing;\n", True, []))


class FileNames(SmallTree):
    def objects_to(self, path: str, text: str = "") -> bool:
        self.write(path, text)
        return bool(files.violations(self.root))

    def test_standard_file_names_are_accepted(self):
        for path in ("job/PrintJob.h", "tools/quorport/main.cpp", "tests/soak/till.cpp", "iphone-IOPort/enum.h"):
            self.assertFalse(self.objects_to(path), path)
        self.assertFalse(self.objects_to("tests/unit/job/print_job_test.cpp", "TEST(A, B) {}\n"))

    def test_a_source_file_with_a_lower_case_name_is_reported(self):
        self.assertTrue(self.objects_to("job/print_job.cpp"))

    def test_a_test_file_that_is_named_like_a_class_is_reported(self):
        self.assertTrue(self.objects_to("tests/unit/job/PrintJob_test.cpp", "TEST_F(A, B) {}\n"))
        self.assertTrue(self.objects_to("tests/unit/job/print_job.cpp", "TEST(A, B) {}\n"))

    def test_a_list_of_sources_is_reported_in_a_folder_with_only_one_library(self):
        self.assertFalse(self.objects_to("job/CMakeLists.txt", "quor_library(quor_job LINKS quor_port)\n"))
        self.assertTrue(self.objects_to("job/CMakeLists.txt", "quor_library(quor_job SOURCES A.cpp LINKS quor_port)\n"))

    def test_a_folder_with_two_libraries_may_list_their_sources(self):
        self.assertFalse(self.objects_to(
            "job/CMakeLists.txt", "quor_library(a SOURCES A.cpp)\nquor_library(b\n  SOURCES B.cpp)\n"))


class Wording(SmallTree):
    def objects_to(self, text: str, path: str = "docs/page.md") -> bool:
        self.write(path, text)
        return bool(wording.violations(self.root))

    def test_plain_text_is_accepted(self):
        text = "A session has two streams; the back end takes its part. See tests/home/x and /dev/tty.\n"
        self.assertFalse(self.objects_to(text))

    def test_a_reference_to_a_document_outside_the_project_is_reported(self):
        self.assertTrue(self.objects_to("as the sp" + "ec says in Part 3\n"))
        self.assertTrue(self.objects_to("see Pa" + "rt 2.1\n"))

    def test_a_reference_to_a_bug_tracker_is_reported(self):
        self.assertTrue(self.objects_to("as the iss" + "ue asks\n"))
        self.assertTrue(self.objects_to("fixes iss" + "ue 12\n"))

    def test_a_machine_specific_path_is_reported(self):
        for place in ("/wo" + "rk/main", "/ho" + "me/user/x", "/ro" + "ot/x"):
            self.assertTrue(self.objects_to(f"built in {place}\n"), place)

    def test_a_note_of_work_left_to_do_is_reported(self):
        self.assertTrue(self.objects_to("// TO" + "DO: later\n", "job/PrintJob.cpp"))

    def test_a_missing_or_doubled_final_line_feed_is_reported(self):
        self.assertTrue(self.objects_to("no line feed"))
        self.assertTrue(self.objects_to("two line feeds\n\n"))

    def test_build_folders_and_data_files_are_not_checked(self):
        self.write("build/cache.txt", "/wo" + "rk/main")
        self.write("build-asan/cache.txt", "/wo" + "rk/main")
        self.assertFalse(self.objects_to("no line feed", "fuzz/corpus/reply"))
        self.assertFalse(self.objects_to("no line feed\0", "logo.bin"))


class Documentation(SmallTree):
    def objects_to(self, text: str) -> bool:
        self.write("dev", 'case $command in\n  build | test) "${command}_command" ;;\nesac\n')
        self.write("docs/threads.md", "# Threads\n\n## Who runs what?\n")
        self.write("README.md", text)
        return bool(documentation.violations(self.root))

    def test_a_link_to_an_existing_file_is_accepted(self):
        self.assertFalse(self.objects_to(
            "[a](docs/threads.md) [b](docs/threads.md#who-runs-what) [c](#top) [d](https://example.org)"
            "`docs/threads.md` `docs/` `a/b` `/not/ours` `build/bin/quorport` ./dev test\n\n# Top\n"))

    def test_a_link_to_a_missing_file_is_reported(self):
        self.assertTrue(self.objects_to("[a](docs/nowhere.md)\n"))

    def test_a_link_to_a_missing_heading_is_reported(self):
        self.assertTrue(self.objects_to("[a](docs/threads.md#nobody)\n"))
        self.assertTrue(self.objects_to("[a](#nobody)\n"))

    def test_the_name_of_a_missing_file_is_reported(self):
        self.assertTrue(self.objects_to("`docs/nowhere.md`\n"))

    def test_an_unknown_command_of_dev_is_reported(self):
        self.assertTrue(self.objects_to("```\n./dev fly\n```\n"))

    def objections_to_rows(self, *rows: str) -> list[str]:
        self.write("iphone-IOPort/ExternalAccessoryPort.h", """
class TableOfPortOperations {
  struct Arguments;

 public:
  explicit ExternalAccessoryPort(Arguments arguments);
  ExternalAccessoryPort(const ExternalAccessoryPort&) = delete;

  /// Not an operation: move();
  bool open();
  std::optional<std::string> read(
      std::size_t count, std::shared_ptr<Clock> clock = processClock());
  bool isSet() const { return _set.get(); }

 private:
  void open71();
};
""")
        self.write("iphone-IOPort/Session.cpp", "bool ExternalAccessoryPort::open() {\n")
        self.write("iphone-IOPort/Transport.cpp", "bool ExternalAccessoryPort::read(\n")
        head = ("# Architecture", "", "| operation | source | |", "|---|---|---|")
        self.write("docs/architecture.md", "\n".join(head + rows))
        self.objects_to("")
        return documentation.violations(self.root)

    def test_a_table_that_gives_a_source_file_for_each_operation_is_accepted(self):
        self.assertEqual(self.objections_to_rows("| `open` | `iphone-IOPort/Session.cpp` | |",
                                                 "| `read` | `iphone-IOPort/Transport.cpp` | |"), [])

    def test_an_operation_without_a_source_file_is_reported(self):
        self.assertEqual(self.objections_to_rows("| `open` | `iphone-IOPort/Session.cpp` | |"),
                         ["docs/architecture.md: no source for the port's read"])

    def test_an_operation_that_is_in_another_source_file_is_reported(self):
        self.assertEqual(self.objections_to_rows("| `open`, `read` | `iphone-IOPort/Session.cpp` | |"),
                         ["docs/architecture.md: read is not in iphone-IOPort/Session.cpp"])

    def test_an_unknown_operation_is_reported(self):
        self.assertIn("docs/architecture.md: the port has no open71",
                      self.objections_to_rows("| `open`, `open71` | `iphone-IOPort/Session.cpp` | |",
                                              "| `read` | `iphone-IOPort/Transport.cpp` | |"))


if __name__ == "__main__":
    unittest.main()
