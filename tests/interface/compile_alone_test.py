#!/usr/bin/env python3
"""The library compiles by its include directories alone, and includes only what it may know.

Usage: compile_alone_test.py PROJECT COMPILER [CLASS...]
"""

import concurrent.futures
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

PROJECT = pathlib.Path()
COMPILER = ""

WIFI = "src/wifi"
OSX = "src/usb/osx"
INCLUDES = ["-I.", "-Isrc", "-Isrc/wifi", "-Isrc/usb/osx", "-Idarwin/include"]
# The standard library's headers have neither folder nor suffix.
STANDARD = re.compile(r"[a-z_0-9]+")
BOOST = re.compile(r"boost/[a-z_/0-9]+\.hpp")
FRAMEWORKS = {"IOKit/IOKitLib.h", "CoreFoundation/CoreFoundation.h"}


def library(folder, pattern):
    """The files of the folder itself that are no test."""
    found = sorted((PROJECT / folder).glob(pattern))
    return [path for path in found if not path.name.endswith("_test.cpp")]


def included(path, brackets):
    """The headers that a file includes in <> or in quotes."""
    opening, closing = brackets
    return re.findall(rf"^\s*#\s*include\s*{opening}([^{closing}]+){closing}", path.read_text(), re.MULTILINE)


def compile_one(source, includes, output):
    launcher = ["ccache"] if shutil.which("ccache") else []
    command = [*launcher, COMPILER, "-std=c++20", *includes, "-c", str(source), "-o", output]
    result = subprocess.run(command, cwd=PROJECT, capture_output=True, text=True, check=False)
    return result.returncode, result.stdout + result.stderr


class Scratch(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)

    def compile_text(self, text, includes):
        source = pathlib.Path(self.folder.name) / "alone.cpp"
        source.write_text(text)
        return compile_one(source, includes, f"{self.folder.name}/alone.o")


class OneByOne(Scratch):
    def test_every_source_compiles_with_the_include_directories_and_nothing_else(self):
        sources = library(WIFI, "*.cpp") + library(OSX, "*.cpp")
        self.assertGreater(len(sources), 20)
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            jobs = {s: pool.submit(compile_one, s.relative_to(PROJECT), INCLUDES, f"{self.folder.name}/{s.stem}.o") for s in sources}
        for source, job in jobs.items():
            with self.subTest(source=source.name):
                self.assertEqual(job.result(), (0, ""))

    def test_every_header_of_the_library_compiles_first_and_alone(self):
        for header in library(WIFI, "*.h") + library(OSX, "*.h"):
            with self.subTest(header=header.name):
                self.assertEqual(self.compile_text(f'#include "{header.name}"\n#include "{header.name}"\n', INCLUDES), (0, ""))

    def test_wifi_needs_neither_the_platforms_folder_nor_the_frameworks_headers(self):
        for source in library(WIFI, "*.cpp"):
            with self.subTest(source=source.name):
                self.assertEqual(compile_one(source.relative_to(PROJECT), ["-Isrc/wifi"], f"{self.folder.name}/w.o"), (0, ""))


class Together(Scratch):
    def compile_sources(self, sources, includes):
        self.assertGreater(len(sources), 5)
        return self.compile_text("".join(f'#include "{source}"\n' for source in sources), includes)

    def test_wifi_compiles_with_its_own_folder_alone(self):
        self.assertEqual(self.compile_sources(library(WIFI, "*.cpp"), ["-Isrc/wifi"]), (0, ""))

    def test_the_library_compiles_with_the_include_directories_and_nothing_else(self):
        self.assertEqual(self.compile_sources(library(OSX, "*.cpp"), INCLUDES), (0, ""))

    def test_camera_h_alone_gives_the_whole_interface(self):
        text = """
        #include "Camera.h"
        int Use(Camera& camera) {
          std::vector<DcfObj> pictures = camera.GetDcf();
          std::vector<CameraDirent> entries = camera.ReadDir("I:");
          std::vector<_Sha1obj> logs = camera.ReadCrashLogs(nullptr, nullptr, false, true);
          _VscCdb block{};
          _VscCdbTime time = camera.GetTime();
          _VscCdbCameraInformation information{};
          _ManualControlsState state{};
          std::string header(2000, '0');
          logs = UnpackCrashLogHeader(header.data());
          logs = UnpackCalibrationHeader(header.data());
          std::vector<unsigned int> sizes = UnpackBatchHeader(1, header.data());
          sizes = UnpackRawCompressionHeader(header.data());
          camera.CameraInformation(information);
          camera.GetManualControlsState(state);
          camera.SetWifiAuthType(static_cast<_VscWifiType>(1), static_cast<_VscWifiAuthType>(0));
          Camera::ValidateDcfHeader(reinterpret_cast<const _VscCdbDcfHeader*>(header.data()));
          boost::shared_ptr<Camera> found = Camera::GetCamera("1", "", false, false);
          Camera::throwExceptions_ = true;
          (void)block; (void)time;
          throw CameraTransferError("x");
        }
        """
        self.assertEqual(self.compile_text(text, ["-Isrc/wifi"]), (0, ""))

    def test_the_exception_classes_have_their_home_in_the_library(self):
        text = '#include "Camera.h"\nvoid Throw() { throw CameraTransferError("x"); }\n'
        self.assertEqual(self.compile_text(text, ["-Isrc/wifi"]), (0, ""))
        symbols = subprocess.run(["nm", "--defined-only", f"{self.folder.name}/alone.o"], capture_output=True, text=True, check=True)
        self.assertNotRegex(symbols.stdout, "_ZT[IVS]19CameraTransferError")

    def test_every_operation_has_its_signature_to_the_letter(self):
        signatures = PROJECT / "tests/interface/Signatures.cpp"
        self.assertEqual(compile_one(signatures, INCLUDES, f"{self.folder.name}/signatures.o"), (0, ""))


class Includes(unittest.TestCase):
    def check(self, folder, allowed):
        for path in library(folder, "*.cpp") + library(folder, "*.h"):
            for header in included(path, "<>"):
                with self.subTest(file=path.name, header=header):
                    self.assertTrue(STANDARD.fullmatch(header) or BOOST.fullmatch(header) or header in allowed)

    def test_wifi_includes_no_header_of_a_system(self):
        self.check(WIFI, set())

    def test_osx_includes_the_two_frameworks_and_the_call_stack(self):
        self.check(OSX, FRAMEWORKS | {"execinfo.h"})

    def test_wifi_includes_nothing_of_the_platforms_folder(self):
        own = {path.name for path in library(WIFI, "*.h")}
        for path in library(WIFI, "*.cpp") + library(WIFI, "*.h"):
            for header in included(path, '""'):
                with self.subTest(file=path.name, header=header):
                    self.assertIn(header, own)

    def test_no_line_asks_about_the_platform(self):
        guard = re.compile(r"#ifndef KELVA_[A-Z0-9_]+_H_")
        for folder in (WIFI, OSX):
            for path in library(folder, "*.cpp") + library(folder, "*.h"):
                for line in re.findall(r"^\s*#\s*(?:if|ifdef|ifndef|elif)\b.*", path.read_text(), re.MULTILINE):
                    with self.subTest(file=path.name, line=line):
                        self.assertRegex(line, guard)


if __name__ == "__main__":
    PROJECT, COMPILER = pathlib.Path(sys.argv[1]), sys.argv[2]
    del sys.argv[1:3]
    unittest.main()
