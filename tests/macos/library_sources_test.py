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

FOLDERS = ("src/wifi", "src/usb/osx", "embed/macos")
# What a Mac compiles of a folder whose other files it does not.
SINGLE_FILES = ("embed/EventLoop.cpp",)
INCLUDES = ["-I.", "-Isrc", "-Isrc/wifi", "-Isrc/usb/osx", "-Idarwin/include"]
WARNINGS = ["-Wall", "-Wextra", "-Wpedantic", "-Wconversion", "-Werror"]
SYSTEMS = ("11.0", "12.0", "13.0", "14.0", "15.0")
# What Apple's headers say about the two names of one port, and the substitute's headers do not.
AVAILABILITY = """
#include <IOKit/IOKitLib.h>
extern const mach_port_t kIOMasterPortDefault __attribute__((availability(macos, introduced=10.0, deprecated=12.0)));
extern const mach_port_t kIOMainPortDefault __attribute__((availability(macos, introduced=12.0)));
"""
# What exists on both systems besides the C++ standard library, whose headers have neither folder nor suffix.
KNOWN_HEADERS = re.compile(r"boost/.*|IOKit/IOKitLib\.h|CoreFoundation/CoreFoundation\.h|execinfo\.h|[a-z_0-9]+")
FRAMEWORK_SYMBOL = re.compile(r"_*(IO[A-Z]|CF[A-Z]|kIO|kCF|mach_|NS[A-Z])\w*")


def sources():
    """The library: every .cpp of its folders that is not a test."""
    found = [path for folder in FOLDERS for path in sorted((PROJECT / folder).glob("*.cpp"))]
    found += [PROJECT / path for path in SINGLE_FILES]
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


def read_as_here(text):
    """The text with everything that it includes: the headers are this system's, so they are read as on this system."""
    with tempfile.NamedTemporaryFile("w", suffix=".h") as availability:
        availability.write(AVAILABILITY)
        availability.flush()
        command = [COMPILER, "-std=c++20", "-stdlib=libc++", *INCLUDES, "-include", availability.name, "-E", "-x", "c++", "-"]
        return subprocess.run(command, cwd=PROJECT, input=text, capture_output=True, text=True, check=True).stdout


def complaints_for(version, text):
    """What the compiler of a Mac with this deployment target says about a text that has been read."""
    mac = [f"--target=x86_64-apple-macos{version}", "-fsyntax-only", "-x", "c++-cpp-output", "-"]
    command = [COMPILER, "-std=c++20", *WARNINGS, *mac]
    return subprocess.run(command, input=text, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False).stdout


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

    def test_compiles_without_a_warning_for_every_system_from_11_on(self):
        library = read_as_here("".join(f'#include "{source}"\n' for source in sources()))
        for version in SYSTEMS:
            with self.subTest(version=version):
                self.assertEqual(complaints_for(version, library), "")

    def test_that_compiler_knows_when_the_names_of_the_port_exist(self):
        old = read_as_here("mach_port_t Port() { return kIOMasterPortDefault; }")
        new = read_as_here("mach_port_t Port() { return kIOMainPortDefault; }")
        self.assertEqual(complaints_for("11.0", old), "")
        self.assertIn("deprecated", complaints_for("12.0", old))
        self.assertIn("only available on macOS 12.0", complaints_for("11.0", new))


if __name__ == "__main__":
    PROJECT, COMPILER, DOCUMENT = pathlib.Path(sys.argv[1]), sys.argv[2], pathlib.Path(sys.argv[3])
    del sys.argv[1:4]
    unittest.main()
