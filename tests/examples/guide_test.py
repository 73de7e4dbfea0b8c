#!/usr/bin/env python3
"""The guide shows what the examples hold, and its first program works with an installed library.

Usage: guide_test.py BUILD_FOLDER COMPILER
"""

import pathlib
import re
import subprocess
import sys
import tempfile
import textwrap
import unittest

import guide

BUILD, COMPILER = sys.argv.pop(1), sys.argv.pop(1)
PROGRAMS = sorted(guide.EXAMPLES.glob("*.cpp"))


def shows(code, source):
    """True when the lines of the code stand in the source one after the other, indented as a whole."""
    lines = source.splitlines()
    wanted = code.splitlines()
    return any(textwrap.dedent("\n".join(lines[at:at + len(wanted)])).splitlines() == wanted for at in range(len(lines)))


class Guide(unittest.TestCase):
    def test_every_piece_of_code_stands_in_an_example(self):
        self.assertGreater(len(guide.blocks("cpp")), 8)
        for code in guide.blocks("cpp"):
            with self.subTest(code=code):
                self.assertTrue(any(shows(code, program.read_text()) for program in PROGRAMS))

    def test_a_changed_piece_of_code_would_be_noticed(self):
        code = guide.first_program()
        self.assertFalse(any(shows(code.replace("GetDcf", "ReadDir"), program.read_text()) for program in PROGRAMS))

    def test_first_program_is_the_whole_example(self):
        self.assertEqual(guide.first_program(), (guide.EXAMPLES / "list.cpp").read_text())

    def test_every_example_is_named_and_short(self):
        for program in PROGRAMS:
            with self.subTest(program=program.name):
                self.assertLess(len(program.read_text().splitlines()), 60)
                if program.name not in ("list.cpp", "virtual_bus.cpp"):
                    self.assertIn(f"(../examples/{program.name})", guide.text())

    def test_every_example_is_built(self):
        lists = (guide.EXAMPLES / "CMakeLists.txt").read_text()
        built = re.findall(r"example\((\w+)", lists) + re.findall(r"add_executable\((\w+)", lists) + ["virtual_bus"]
        for program in PROGRAMS:
            self.assertIn(program.stem, built)

    def test_first_program_works_as_typed_off(self):
        with tempfile.TemporaryDirectory(prefix="kelva-guide-") as scratch:
            folder = pathlib.Path(scratch)
            project = guide.type_off(folder / "project", "find_package")
            for command in (["cmake", "--install", BUILD, "--prefix", folder / "installed"],
                            ["cmake", "-S", project, "-B", folder / "build", f"-DCMAKE_PREFIX_PATH={folder}/installed",
                             f"-DCMAKE_CXX_COMPILER={COMPILER}"],
                            ["cmake", "--build", folder / "build"]):
                subprocess.run(command, check=True, stdout=subprocess.DEVNULL)
            said = subprocess.check_output([folder / "build/program"], text=True)
            self.assertRegex(said, r"^(No camera is attached\.|A camera\b)")


if __name__ == "__main__":
    unittest.main()
