#!/usr/bin/env python3
"""This project as a part of another one's build. Usage: part_test.py SOURCE PROGRAMS COMPILER"""

import pathlib
import shutil
import sys
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
        plan = run("ninja", "-C", folder, "-n")
        for unwanted in ("vcam/", "apps/", "src/ui", "tests/", "draw-pictures"):
            self.assertNotIn(unwanted, plan.replace("tests/install", ""))
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


if __name__ == "__main__":
    unittest.main()
