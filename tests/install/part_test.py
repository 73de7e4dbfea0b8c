#!/usr/bin/env python3
"""This project as a part of another one's build. Usage: part_test.py SOURCE PROGRAMS COMPILER"""

import pathlib
import re
import shutil
import sys
import tempfile
import unittest

import embedding
from embedding import HERE, run

SOURCE, PROGRAMS, COMPILER = (sys.argv.pop(1) for _ in range(3))
embedding.Embedding.programs = pathlib.Path(PROGRAMS)


class Part(embedding.Embedding):
    def configure(self, name, *options):
        folder = self.scratch / name
        launcher = ["-DCMAKE_CXX_COMPILER_LAUNCHER=ccache"] if shutil.which("ccache") else []
        run("cmake", "-G", "Ninja", "-S", HERE / "part", "-B", folder, f"-DKELVA_SOURCE={SOURCE}", f"-DCMAKE_CXX_COMPILER={COMPILER}",
            "-DCMAKE_UNITY_BUILD=ON", "-DCMAKE_UNITY_BUILD_BATCH_SIZE=0", *launcher, *options)
        return folder

    def expect_part(self, name, *options):
        """Only the library is built, it works, and the whole project's installation has nothing of it."""
        folder = self.configure(name, *options)
        compiled = re.findall(r" -o \S*CMakeFiles/(\w+)\.dir/\S+\.o ", run("ninja", "-C", folder, "-t", "commands", "all"))
        self.assertIn("kelva_wifi", compiled)
        self.assertEqual([room for room in compiled if not re.match("consumer|kelva_(?!helper|open)|darwin_", room)], [])
        run("cmake", "--build", folder)
        self.expect_consumer(folder / "consumer")
        run("cmake", "--install", folder, "--prefix", self.scratch / name / "installed")
        self.assertEqual([path for path in (self.scratch / name / "installed").rglob("*") if path.is_file()], [])

    def test_add_subdirectory_gives_the_library(self):
        self.expect_part("static")

    def test_FetchContent_gives_the_shared_library(self):
        self.expect_part("shared", "-DKELVA_FETCH=ON", "-DBUILD_SHARED_LIBS=ON")

    def test_no_package_of_the_programs_is_needed_and_what_is_not_linked_is_not_built(self):
        missing = ("OpenSSL", "PkgConfig", "GTest")
        folder = self.configure("unused", "-DKELVA_UNUSED=ON", *(f"-DCMAKE_DISABLE_FIND_PACKAGE_{name}=ON" for name in missing))
        self.assertIn("no work to do", run("ninja", "-C", folder))


class Options(unittest.TestCase):
    """One program alone, as a packager may want it."""

    def expect_programs(self, chosen, programs):
        options = [f"-DKELVA_BUILD_{name}={'ON' if name == chosen else 'OFF'}" for name in ("TOOL", "MOUNT", "DESKTOP", "VCAM", "HELPER")]
        with tempfile.TemporaryDirectory() as folder:
            run("cmake", "-G", "Ninja", "-S", SOURCE, "-B", folder, "-DKELVA_BUILD_TESTS=OFF", f"-DCMAKE_CXX_COMPILER={COMPILER}", *options)
            self.assertCountEqual(re.findall(r" -o bin/(\S+)", run("ninja", "-C", folder, "-t", "commands", "all")), programs)

    def test_tool_alone(self):
        self.expect_programs("TOOL", ["kelva-thumbnail", "kelva"])

    def test_virtual_camera_alone(self):
        self.expect_programs("VCAM", ["kelva-vcam"])

    def test_helper_alone(self):
        self.expect_programs("HELPER", ["kelva-open", "kelva-helper"])


if __name__ == "__main__":
    unittest.main()
