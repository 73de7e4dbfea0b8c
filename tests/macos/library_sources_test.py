#!/usr/bin/env python3
"""The library as macOS compiles it: the same files, another compiler, another standard library, the same framework calls.

Usage: library_sources_test.py PROJECT COMPILER DOCUMENT
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

PROJECT = pathlib.Path()
COMPILER = ""
DOCUMENT = pathlib.Path()

FOLDERS = ("src/wifi", "src/usb/osx")
INCLUDES = ["-I.", "-Isrc", "-Isrc/wifi", "-Isrc/usb/osx", "-Idarwin/include"]
WARNINGS = ["-Wall", "-Wextra", "-Wpedantic", "-Wconversion", "-Werror"]
# What exists on both systems besides the C++ standard library, whose headers have neither folder nor suffix.
KNOWN_HEADERS = re.compile(r"boost/.*|IOKit/IOKitLib\.h|CoreFoundation/CoreFoundation\.h|execinfo\.h|[a-z_0-9]+")
FRAMEWORK_SYMBOL = re.compile(r"_*(IO[A-Z]|CF[A-Z]|kIO|kCF|mach_|NS[A-Z])\w*")


def sources():
    """The library: every .cpp of its two folders that is not a test."""
    found = [path for folder in FOLDERS for path in sorted((PROJECT / folder).glob("*.cpp"))]
    return [path for path in found if not path.name.endswith("_test.cpp")]


def files():
    return sources() + [path for folder in FOLDERS for path in sorted((PROJECT / folder).glob("*.h"))]


def compile_all(*options):
    """Compiles every source, as many at a time as there are processors; returns what the compilers complained about."""
    complaints, waiting, running = [], list(sources()), []
    while waiting or running:
        while waiting and len(running) < (os.cpu_count() or 1):
            source = waiting.pop()
            output = [] if "-fsyntax-only" in options else ["-o", f"{options[-1]}/{source.stem}.o"]
            flags = [option for option in options if option.startswith("-")]
            command = [COMPILER, "-std=c++20", *WARNINGS, *INCLUDES, *flags, *output, str(source)]
            running.append(subprocess.Popen(command, cwd=PROJECT, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True))
        compiler = running.pop(0)
        text = compiler.communicate()[0]
        if compiler.returncode != 0 or text:
            complaints.append(text)
    return "".join(complaints)


def documented_symbols():
    """The lines of the document's list: "- `name`"."""
    section = DOCUMENT.read_text().split("## Framework symbols", 1)[1].split("\n## ", 1)[0]
    return set(re.findall(r"^- `(\w+)`", section, re.MULTILINE))


class LibrarySources(unittest.TestCase):
    def test_there_are_sources_to_look_at(self):
        self.assertGreater(len(sources()), 10)

    def test_compiles_without_a_warning_with_the_standard_library_of_macos(self):
        self.assertEqual(compile_all("-stdlib=libc++", "-fsyntax-only"), "")

    def test_framework_symbols_are_the_documented_ones(self):
        with tempfile.TemporaryDirectory() as folder:
            self.assertEqual(compile_all("-c", folder), "")
            objects = [str(path) for path in pathlib.Path(folder).glob("*.o")]
            undefined = subprocess.run(["nm", "--undefined-only", "--format=just-symbols", *objects], capture_output=True, text=True, check=True)
        used = {name for name in undefined.stdout.split() if FRAMEWORK_SYMBOL.fullmatch(name)}
        self.assertEqual(used, documented_symbols())

    def test_includes_nothing_that_only_one_system_has(self):
        for path in files():
            for header in re.findall(r"^\s*#\s*include\s*<([^>]+)>", path.read_text(), re.MULTILINE):
                with self.subTest(file=path.name, header=header):
                    self.assertRegex(header, f"^({KNOWN_HEADERS.pattern})$")

    def test_asks_nothing_about_the_platform(self):
        for path in files():
            for line in re.findall(r"^\s*#\s*(?:if|ifdef|ifndef|elif)\b.*", path.read_text(), re.MULTILINE):
                with self.subTest(file=path.name):
                    self.assertRegex(line, r"^#ifndef KELVA_\w+_H_$")

    def test_calls_nothing_that_is_deprecated_at_the_deployment_target(self):
        # kIOMasterPortDefault is deprecated from macOS 12 on, and 11.0 is the target; the name that replaced it does not
        # exist there.
        for path in sources():
            self.assertNotIn("kIOMainPortDefault", path.read_text(), path.name)


if __name__ == "__main__":
    PROJECT, COMPILER, DOCUMENT = pathlib.Path(sys.argv[1]), sys.argv[2], pathlib.Path(sys.argv[3])
    del sys.argv[1:4]
    unittest.main()
