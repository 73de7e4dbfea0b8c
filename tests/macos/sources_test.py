#!/usr/bin/env python3
"""Every file that a Mac builds compiles there, as far as that can be seen without one: clang, libc++ with the marks that say in
which macOS a function appeared, the deployment target of the build, and nothing of Linux. The files are those of a build that
CMake configured as on a Mac.

What does not pass yet stands in not_yet.txt, each with its reason. A line of it that has become untrue fails the test.

Usage: sources_test.py PROJECT COMPILER GTEST_FOLDER product|tests. The product are all programs, the library and the suite of
conformance; the tests are the unit tests, which take longer than all the rest and which the preset portable builds too.
"""

import concurrent.futures
import os
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile
import unittest

import configure_test
import forbidden

HERE = pathlib.Path(__file__).resolve().parent
TARGET = "--target=x86_64-apple-macos11.0"
UNITY = re.compile(r'^#include "(/[^"]+)"$', re.MULTILINE)
# A line marker of the preprocessor: the file that follows.
MARKER = re.compile(r'^# \d+ "([^"]+)"', re.MULTILINE)
# Folders whose sources no Mac builds, and why.
LINUX_ALONE = {
    "darwin/sg": "/dev/sgN",
    "darwin/udev": "udev",
    "src/ui/linux": "the agent of Linux",
    "apps/mount": "FUSE",
    "apps/desktop/dbus": "a session bus; apps/desktop/alone is its sibling",
    "vcam/usbip": "USB/IP: a Mac has no virtual host controller",
    "platform/linux": "the sibling of platform/macos",
    "tests/umockdev": "udev", "tests/kernel": "a Linux kernel", "tests/doors": "USB/IP", "tests/gnustep": "stands in for AppKit",
    "tests/install": "Debian", "tests/debian": "Debian", "tests/agent": "the agent of Linux", "tests/interface": "compiled by itself",
    "tests/macos/stand_in": "stands in for a Mac", "tools/seed_faults": "an example for the seeder of faults",
    "benchmarks": "measures Linux", "fuzz": "needs Linux's libFuzzer", "examples": "compiled against an installation",
}


class NotYet:
    """The lines "NAME  reason" of the file: folders that a Mac does not build yet, and files that do not pass."""

    def __init__(self, path):
        lines = [line.split(maxsplit=1) for line in path.read_text().splitlines() if line.strip() and not line.startswith("#")]
        self.reasons = dict(lines)

    def holds(self, path):
        return path in self.reasons or any(path.startswith(name + "/") for name in self.reasons)


def read(text, command):
    """A text with all that it includes, read with this system's headers but the marks of a Mac's standard library. What only
    a Mac's headers declare is declared for the sources of platform/ alone."""
    kept = [word for word in command if re.match(r"-(D|I|isystem|std)", word)]
    for index, word in enumerate(command):
        if word == "-isystem":
            kept[kept.index(word):kept.index(word) + 1] = ["-isystem" + command[index + 1]]
    marks = f"-isystem{HERE}/stand_in/libcxx"
    frameworks = f"-isystem{configure_test.PROJECT}/darwin/include"
    if "/platform/" in text:
        marks = f"-isystem{HERE}/stand_in {marks}"
    run = subprocess.run([configure_test.COMPILER, *kept, "-stdlib=libc++", *marks.split(), frameworks, "-E", "-x", "c++", "-"],
                         input=text, capture_output=True, text=True, check=False)
    return run.stdout, run.stderr if run.returncode else ""


def compile_as_on_a_mac(text, command):
    """What the compiler of a Mac says about a text that has been read; the warnings are those of the build."""
    warnings = [word for word in command if word.startswith("-W") and not word.startswith("-Wl,")]
    run = subprocess.run([configure_test.COMPILER, "-std=c++20", *warnings, "-Werror", TARGET, "-fsyntax-only", "-x", "c++-cpp-output", "-"],
                         input=text, capture_output=True, text=True, check=False)
    return run.stderr


class Unit:
    """One command of the build: what it compiles, and what came of it."""

    def __init__(self, sources, command):
        self.sources, self.command = sources, command

    def check(self):
        text, complaint = read("".join(f'#include "{source}"\n' for source in self.sources), self.command)
        self.files = {path for path in MARKER.findall(text) if path.startswith(f"{configure_test.PROJECT}/") and "/stand_in/" not in path}
        self.complaint = complaint or compile_as_on_a_mac(text, self.command)
        return self


def units(build):
    """The commands of a build, each with the sources that it compiles: one, or all those that a unity file names."""
    for entry in build.commands:
        path = pathlib.Path(entry["file"])
        if path.suffix != ".cpp" and path.suffix != ".cxx" or "CMakeFiles/cmake_pch" in entry["file"]:
            continue  # Objective-C++ is compiled by the tests of the agent
        sources = UNITY.findall(path.read_text()) if path.name.startswith("unity_") else [entry["file"]]
        yield Unit(sources, shlex.split(entry["command"]))


def run_all(work):
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        return list(pool.map(Unit.check, work))


PART = "product"


def is_test(name):
    """A unit test or its fixtures. The suite of conformance is what a Mac proves the substitute with, so it counts as product."""
    return (name.endswith("_test.cpp") or "/testing/" in name or name.startswith("tests/")) and not name.startswith("darwin/conformance/")


class SourcesOfAMac(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.folder.cleanup)
        cls.build = configure_test.everyday_build(cls.folder.name, "-DCMAKE_UNITY_BUILD=ON", "-DCMAKE_UNITY_BUILD_BATCH_SIZE=0")
        # What is built once for the frameworks and once for their substitute reads the same headers here.
        cls.units = list({tuple(unit.sources): unit for unit in units(cls.build)}.values())
        cls.not_yet = NotYet(HERE / "not_yet.txt")
        good, late = [], []
        for unit in cls.units:
            if all(is_test(cls.name_of(source)) for source in unit.sources) != (PART == "tests"):
                continue
            late += [Unit([source], unit.command) for source in unit.sources if cls.not_yet.holds(cls.name_of(source))]
            rest = [source for source in unit.sources if not cls.not_yet.holds(cls.name_of(source))]
            if rest:
                good.append(Unit(rest, unit.command))
        cls.good, cls.late = run_all(good), run_all(late)

    @staticmethod
    def name_of(path):
        return os.path.relpath(path, configure_test.PROJECT)

    def test_every_file_compiles_without_a_warning(self):
        for unit in self.good:
            with self.subTest(first=self.name_of(unit.sources[0]), files=len(unit.sources)):
                self.assertEqual(unit.complaint, "")

    def test_no_file_uses_what_only_linux_has(self):
        for path in sorted({path for unit in self.good for path in unit.files}):
            with self.subTest(file=self.name_of(path)):
                if not self.not_yet.holds(self.name_of(path)):
                    self.assertEqual(forbidden.complaints(pathlib.Path(path).read_text()), [])

    def test_there_are_files_to_look_at(self):
        self.assertGreater(len(self.good), 10)

    def test_every_folder_is_built_or_has_a_reason(self):
        listed = subprocess.run(["git", "ls-files", "*.cpp"], cwd=configure_test.PROJECT, capture_output=True, text=True, check=True).stdout
        built = {self.name_of(source).rpartition("/")[0] for unit in self.units for source in unit.sources}
        for folder in sorted({line.rpartition("/")[0] for line in listed.splitlines()}):
            # A room keeps what is of Linux alone in a folder of that name.
            if folder.endswith("/linux") or any(f"{folder}/".startswith(name + "/") for name in LINUX_ALONE) or self.not_yet.holds(folder):
                continue
            with self.subTest(folder=folder):
                self.assertIn(folder, built)

    def test_what_does_not_pass_yet_does_not_pass(self):
        built = {self.name_of(source).rpartition("/")[0] for unit in self.units for source in unit.sources}
        failing = {self.name_of(unit.sources[0]) for unit in self.late if unit.complaint}
        for name in self.not_yet.reasons:
            with self.subTest(line=name):
                path = configure_test.PROJECT / name
                self.assertTrue(path.exists(), "there is no such file; take the line out")
                if path.is_dir():
                    self.assertNotIn(name, built, "it is built; take the line out")
                else:
                    self.assertTrue(name in failing or forbidden.complaints(path.read_text()), "it passes; take the line out")


class TheCheckItself(unittest.TestCase):
    def complaint_about(self, text):
        whole, complaint = read(text, ["-std=c++20"])
        return complaint or compile_as_on_a_mac(whole, [])

    def test_a_function_of_a_later_system_is_refused(self):
        late = {
            "to_chars of a floating number": "#include <charconv>\nauto F(char* at, double value) { return std::to_chars(at, at + 9, value); }",
            "jthread": "#include <thread>\nstd::jthread thread;",
            "from_chars of a floating number": "#include <charconv>\nauto F(const char* at, double& value) { return std::from_chars(at, at + 9, value); }",
        }
        for name, text in late.items():
            with self.subTest(name):
                self.assertIn("error", self.complaint_about(text))

    def test_the_marks_are_on(self):
        text = '#include <filesystem>\nbool F() { return std::filesystem::exists("/"); }'
        whole, complaint = read(text, ["-std=c++20"])
        self.assertEqual(complaint, "")
        self.assertRegex(whole, r"availability\(macosx, *strict, *introduced=10\.15\)")
        self.assertEqual(compile_as_on_a_mac(whole, []), "")
        old = subprocess.run([configure_test.COMPILER, "-std=c++20", "--target=x86_64-apple-macos10.14", "-fsyntax-only", "-x", "c++-cpp-output", "-"],
                             input=whole, capture_output=True, text=True, check=False).stderr
        self.assertIn("unavailable: introduced in macOS 10.15", old)

    def test_a_header_or_a_call_of_linux_is_refused(self):
        for text in ("#include <sys/eventfd.h>\n", "int F() { return pipe2(ends, O_CLOEXEC); }", 'open("/proc/self/fd")', "send(fd, a, n, MSG_NOSIGNAL);",
                     "status.st_mtim.tv_sec", "char** all = environ;", "locale_t c = newlocale(LC_ALL_MASK, name, nullptr);"):
            with self.subTest(text):
                self.assertEqual(len(forbidden.complaints(text)), 1)

    def test_a_comment_or_a_longer_name_is_not(self):
        for text in ("// eventfd, as on Linux", "/* openat2 */", 'Say("no pipe2 here");', "PrlimitLike();", "my_statx();"):
            with self.subTest(text):
                self.assertEqual(forbidden.complaints(text), [])


if __name__ == "__main__":
    configure_test.take_arguments()
    PART = sys.argv.pop(1)
    unittest.main()
