#!/usr/bin/env python3
"""The examples that need no package of Linux compile on a Mac, with the headers that it installs.

Usage: examples_test.py PROJECT COMPILER GTEST_FOLDER
"""

import shlex
import subprocess
import tempfile
import unittest

import configure_test

# What a compiler that is not on a Mac has no use for, and says so.
STAND_IN = ["-stdlib=libc++", "-fsyntax-only", "-Wno-unused-command-line-argument"]


def compile_one(entry):
    command = shlex.split(entry["command"])
    run = subprocess.run([*command, *STAND_IN], cwd=entry["directory"], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
    return run.stdout if run.returncode != 0 or run.stdout else ""


# They include what is not on a Mac: virtual cameras, or packages that are tried on Linux alone.
NOT_HERE = ("application_test.cpp", "virtual_bus.cpp", "hotplug_glib.cpp", "hotplug_qt.cpp")


class ExamplesOfAMac(unittest.TestCase):
    def test_every_example_compiles_with_the_headers_of_a_mac(self):
        with tempfile.TemporaryDirectory() as folder:
            build = configure_test.everyday_build(folder)
            self.assertFalse((build.folder / "include/kelva/VirtualBus.h").exists())
            examples = [path for path in sorted((configure_test.PROJECT / "examples").glob("*.cpp")) if path.name not in NOT_HERE]
            self.assertGreater(len(examples), 4)
            for path in examples:
                command = f"{configure_test.COMPILER} -std=c++20 -Wall -Wextra -Werror -I{build.folder}/include {path}"
                with self.subTest(file=path.name):
                    self.assertEqual(compile_one({"command": command, "directory": folder}), "")


if __name__ == "__main__":
    configure_test.take_arguments()
    unittest.main()
