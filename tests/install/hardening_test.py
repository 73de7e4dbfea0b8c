#!/usr/bin/env python3
"""What cmake/KelvaHardening.cmake promises, looked for in programs and libraries.

Usage: hardening_test.py programs FILE...                     what was built for x86-64, linked
       hardening_test.py arm64 SOURCE_FOLDER COMPILER PREFIX  compiles the library for arm64, and links no program
"""

import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

FILES = []
ARM64 = []


def words_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


class Programs(unittest.TestCase):
    def each(self, check):
        for file in FILES:
            with self.subTest(file=pathlib.Path(file).name):
                check(file)

    def test_loaded_at_a_random_address(self):
        self.each(lambda file: self.assertRegex(words_of("readelf", "-hW", file), r"Type:\s+DYN"))

    def test_tables_of_the_linker_cannot_be_written_after_the_start(self):
        def check(file):
            self.assertIn("GNU_RELRO", words_of("readelf", "-lW", file))
            self.assertRegex(words_of("readelf", "-dW", file), r"BIND_NOW|\(FLAGS_1\).*\bNOW\b")

        self.each(check)

    def test_no_memory_is_writable_and_executable(self):
        def check(file):
            segments = words_of("readelf", "-lW", file)
            self.assertRegex(segments, r"GNU_STACK .* RW ")
            self.assertNotRegex(segments, r"LOAD .* RWE ")

        self.each(check)

    def test_stacks_are_guarded(self):
        self.each(lambda file: self.assertIn("__stack_chk_fail", words_of("readelf", "-sW", "--dyn-syms", file)))

    def test_containers_check_their_indices(self):
        self.each(lambda file: self.assertIn("glibcxx_assert_fail", words_of("readelf", "-sW", "--dyn-syms", file)))

    def test_calls_land_at_marked_places(self):
        # Each function that a pointer may call begins with this instruction; with the protection off only the few of the
        # compiler's own start files do. The property of the whole file also takes start files of the C library that have it.
        self.each(lambda file: self.assertGreater(words_of("objdump", "-d", "--no-show-raw-insn", file).count("endbr64"), 20))

    def test_one_of_them_uses_checked_copies(self):
        # FORTIFY shows where a length is not known while compiling, which is not in every file.
        checked = [name for file in FILES for name in re.findall(r"\b(\w+_chk)@", words_of("readelf", "-sW", "--dyn-syms", file))]
        self.assertTrue({name for name in checked if name != "__stack_chk"}, checked)


class Arm64(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        source, compiler, prefix = ARM64
        scratch = tempfile.TemporaryDirectory(prefix="kelva-arm64-")
        cls.addClassCleanup(scratch.cleanup)
        cls.folder = pathlib.Path(scratch.name)
        cls.readelf = prefix + "readelf"
        command = ["cmake", "-G", "Ninja", "-S", source, "-B", cls.folder, "-DCMAKE_SYSTEM_NAME=Linux", "-DCMAKE_SYSTEM_PROCESSOR=aarch64",
                   f"-DCMAKE_CXX_COMPILER={compiler}", "-DCMAKE_BUILD_TYPE=Release", "-DCMAKE_UNITY_BUILD=ON", "-DKELVA_WERROR=ON",
                   "-DKELVA_BUILD_PROGRAMS=OFF", "-DKELVA_BUILD_TESTS=OFF",
                   "-DKELVA_UDEV=udev"]  # its headers serve every processor; nothing is linked
        subprocess.run(command, check=True, stdout=subprocess.DEVNULL)
        done = subprocess.run(["cmake", "--build", cls.folder], capture_output=True, text=True)
        if done.returncode != 0:
            raise AssertionError(done.stdout[-4000:])
        cls.library = cls.folder / "libkelva.a"

    def test_it_is_for_that_processor(self):
        self.assertIn("AArch64", words_of(self.readelf, "-hW", self.library))

    def test_every_object_marks_where_calls_land_and_signs_its_returns(self):
        members = words_of(self.readelf, "-nW", self.library).split("\nFile: ")[1:]
        self.assertGreater(len(members), 5)
        for member in members:
            self.assertIn("AArch64 feature: BTI, PAC", member)

    def test_stacks_are_guarded_and_containers_check(self):
        symbols = words_of(self.readelf, "-sW", self.library)
        self.assertIn("__stack_chk_fail", symbols)
        self.assertIn("glibcxx_assert_fail", symbols)


if __name__ == "__main__":
    kind, *rest = sys.argv[1:]
    FILES, ARM64 = (rest, []) if kind == "programs" else ([], rest)
    unittest.main(argv=sys.argv[:1], defaultTest="Programs" if FILES else "Arm64")
