"""Every check complains about a repository that is wrong in its way, and about nothing else."""

import json
import pathlib
import shutil
import subprocess
import tempfile
import unittest

import arrows
import budget
import documents
import file_calls
import layout
import references
import scripts
import tested_sources
import tidy
import unit_tests


HERE = pathlib.Path(__file__).parent
PROJECT = HERE.parent.parent


class Checks(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.root = pathlib.Path(self.folder.name)
        subprocess.run(["git", "init", "-q", str(self.root)], check=True)

    def write(self, name, content):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(content, encoding="utf-8")

    def complaints(self, check):
        return list(check.check(self.root))

    def test_reference_to_a_numbered_part_is_found(self):
        self.write("a.md", "See Pa" + "rt 4.1.\n")
        self.assertEqual(len(self.complaints(references)), 1)

    def test_reference_to_a_folder_of_one_machine_is_found(self):
        self.write("a.cpp", 'auto path = "/wo' + 'rk/main/x";\n')
        self.assertEqual(len(self.complaints(references)), 1)

    def test_call_past_the_door_of_files_is_found(self):
        self.write("apps/import/A.cpp", "int a = ::fsync(3);\n::renameat2(3, a, 3, b, 0);\n::futimens(3, t);\nplatform::Flush(3);\n")
        self.assertEqual(self.complaints(file_calls), ["apps/import/A.cpp:1: calls fsync past apps/files/FileCalls.h",
                                                       "apps/import/A.cpp:2: calls renameat2 past apps/files/FileCalls.h",
                                                       "apps/import/A.cpp:3: calls futimens past apps/files/FileCalls.h",
                                                       "apps/import/A.cpp:4: calls platform::Flush past apps/files/FileCalls.h"])

    def test_calls_behind_the_door_and_in_tests_are_accepted(self):
        for name in ("apps/files/SystemCalls.cpp", "apps/files/A_test.cpp", "apps/files/testing/A.h", "vcam/device/A.cpp"):
            self.write(name, "int a = ::fsync(3);\n")
        self.write("apps/import/A.cpp", "calls.Rename(a, b);\nif (IsLink(folder, name)) return;\nfiles.unlinkat(a);\n")
        self.assertEqual(self.complaints(file_calls), [])

    def test_program_beyond_its_budget_is_found_and_tests_and_comments_are_free(self):
        most = budget.LINES["apps/desktop"]
        self.write("apps/desktop/A.cpp", "// Why.\n\nint a;\n" + "int b;\n" * (most - 1))
        self.write("apps/desktop/A_test.cpp", "int c;\n")
        self.write("apps/desktop/worker/B.cpp", "int d;\n")
        self.assertEqual(self.complaints(budget), [])
        self.write("apps/desktop/A.h", "int e;\n")
        self.assertEqual(self.complaints(budget), [f"apps/desktop: {most + 1} lines of code, {most} are its budget"])

    def test_parts_of_a_sentence_are_no_reference(self):
        self.write("a.md", "Two parts, 128 bytes each; part 1, then part 2; spec" + "ific.\n")
        self.assertEqual(self.complaints(references), [])

    def test_untidy_source_is_found(self):
        self.write(".clang-format", "BasedOnStyle: Google\n")
        self.write("a.cpp", "int  main( ) {}\n")
        self.assertNotEqual(self.complaints(layout), [])

    def test_tidy_source_is_accepted(self):
        self.write(".clang-format", "BasedOnStyle: Google\n")
        self.write("a.cpp", "int main() {}\n")
        self.assertEqual(self.complaints(layout), [])

    def test_clang_tidy_finds_a_missing_brace_a_wrong_name_and_a_likely_bug(self):
        shutil.copy(PROJECT / ".clang-tidy", self.root)
        self.write("src/a.cpp", """
            int wrongly_named(int value) {
              if (value > 1)
                return
                    2;
              return sizeof(sizeof(value)) > 4 ? 1 : 0;
            }
            """)
        command = {"directory": str(self.root), "file": "src/a.cpp", "command": "c++ -std=c++20 -o a.o -c src/a.cpp"}
        self.write("build/compile_commands.json", json.dumps([command]))
        complaints = "\n".join(tidy.check(self.root, self.root / "build"))
        self.assertIn("readability-braces-around-statements", complaints)
        self.assertIn("readability-identifier-naming", complaints)
        self.assertIn("bugprone-sizeof-expression", complaints)

    def arrow_complaints(self):
        """The complaints about includes, in a repository with this one's table."""
        self.write("ARCHITECTURE.md", (PROJECT / "ARCHITECTURE.md").read_text(encoding="utf-8"))
        return [complaint for complaint in self.complaints(arrows) if "no include there needs" not in complaint]

    def test_each_forbidden_include_is_found(self):
        forbidden = [line.split() for line in (HERE / "forbidden_includes.txt").read_text().splitlines() if line[:1] != "#"]
        self.assertEqual(len(forbidden), 22)
        for number, (room, header) in enumerate(forbidden):
            if not header.startswith("<"):
                self.write(header, "")
            quoted = header if header.startswith("<") else f'"{header}"'
            self.write(f"{room}/source{number}.cpp", f"#include {quoted}\n")
        complaints = self.arrow_complaints()
        for number, (room, header) in enumerate(forbidden):
            with self.subTest(room=room, header=header):
                found = [c for c in complaints if c.startswith(f"{room}/source{number}.cpp includes {header.strip('<>')}")]
                self.assertEqual(len(found), 1)

    def test_include_that_the_table_allows_and_any_include_of_a_test_are_no_complaint(self):
        self.write("base/a.h", "#include <vector>\n#include <unistd.h>\n")
        self.write("bus/b.cpp", '#include "base/a.h"\n')
        self.write("base/a_test.cpp", '#include "bus/b.h"\n')
        self.write("base/testing/c.h", "#include <sqlite3.h>\n")
        self.assertEqual(self.arrow_complaints(), [])

    def table(self, *rows):
        self.write("ARCHITECTURE.md", "| Folder | What it is | May use |\n|---|---|---|\n" + "".join(f"{row}\n" for row in rows))

    def test_entry_of_the_table_that_no_include_needs_is_found(self):
        self.table("| `a` | one | `b`, Boost |", "| `b` | two | |")
        self.write("a/x.cpp", '#include "b/y.h"\n')
        self.write("b/y.h", "")
        self.assertEqual(self.complaints(arrows), ["the row of a allows Boost, which no include there needs"])

    def test_circle_of_rooms_is_found(self):
        self.table("| `a` | one | `b` |", "| `b` | two | `c` |", "| `c` | three | `b` |")
        for room, header in (("a", "b"), ("b", "c"), ("c", "b")):
            self.write(f"{room}/x.h", f'#include "{header}/x.h"\n')
        self.assertEqual(self.complaints(arrows), ["these rows include each other in a circle, or stand on one: a, b, c"])

    def test_row_that_allows_everything_is_for_tests_alone(self):
        self.table("| `a` | one | everything |", "| `tests` | two | everything |")
        self.assertEqual(self.complaints(arrows), ["the row of a allows everything, which is for tests alone"])

    def test_folder_without_a_row_is_found(self):
        self.table("| `a` | one | |")
        self.write("c/x.cpp", "#include <vector>\n#include <unistd.h>\n")
        self.assertEqual(self.complaints(arrows), ["c/x.cpp is in no row of the table of rooms"])

    def test_source_without_a_test_is_found(self):
        self.write("src/wifi/a.cpp", "")
        self.write("src/wifi/b.cpp", "")
        self.write("src/wifi/b_test.cpp", "")
        self.write("src/wifi/main.cpp", "")
        self.assertEqual(self.complaints(tested_sources), ["src/wifi/a.cpp has no a_test.cpp beside it"])

    def test_exemption_that_nothing_needs_is_found(self):
        self.write("darwin/cf/WatchDescriptor.cpp", "")
        self.write("darwin/cf/WatchDescriptor_test.cpp", "")
        self.write("darwin/cf/EventLoop_test.cpp", "")
        self.write("darwin/cf/EventLoop.cpp", "")
        self.assertEqual(
            self.complaints(tested_sources), ["darwin/cf/WatchDescriptor.cpp has a test beside it and needs no exemption"]
        )

    def test_sleep_in_a_unit_test_is_found(self):
        self.write("bus/a_test.cpp", "::usleep(1);\nstd::this_thread::sleep_for(1ms);\n")
        self.write("bus/testing/b.h", "sleep(1);\n")
        self.write("bus/c.cpp", "sleep(1);\n")
        self.assertEqual(len(self.complaints(unit_tests)), 3)

    def test_random_numbers_without_a_seed_that_can_be_given_are_found(self):
        self.write("bus/a_test.cpp", "std::mt19937 random(1);\nstd::mt19937 other(base::RandomSeed());\n")
        self.assertEqual(self.complaints(unit_tests), ["bus/a_test.cpp:1: draws at random without base::RandomSeed()"])

    def test_dead_link_is_found_and_a_live_one_is_not(self):
        self.write("a.md", "[dead](b.md) [live](a.md#top) [far](https://example.com/x)\n")
        self.assertEqual(self.complaints(documents), ["a.md links to b.md, which is not there"])

    def test_command_that_does_not_exist_is_found(self):
        self.write("README.md", "```\n./walk now\n```\n")
        self.assertEqual(self.complaints(documents), ["README.md shows the command ./walk, which is not there"])

    def test_version_without_a_dated_entry_is_found(self):
        self.write("CMakeLists.txt", "project(It\n  VERSION 1.2.3)\n")
        self.write("CHANGELOG.md", "## [1.2.3]\n")
        self.assertEqual(self.complaints(documents), ["CHANGELOG.md has no dated entry for 1.2.3, the version of CMakeLists.txt"])
        self.write("CHANGELOG.md", "## [1.2.3] - 2026-01-31\n")
        self.assertEqual(self.complaints(documents), [])

    def test_careless_script_is_found(self):
        self.write("a.sh", "#!/bin/bash\nrm $1\n")
        self.assertEqual(len(self.complaints(scripts)), 1)


if __name__ == "__main__":
    unittest.main()
