#!/usr/bin/env python3
"""The build as a Mac configures it: which parts there are, which tests, and how the agent is compiled and bundled.

Usage: configure_test.py PROJECT COMPILER GTEST_FOLDER
"""

import json
import os
import pathlib
import plistlib
import re
import subprocess
import sys
import tempfile
import unittest

PROJECT = pathlib.Path()
COMPILER = ""
GTEST_FOLDER = ""


class Configured:
    """One configured build folder."""

    def __init__(self, folder, *options):
        self.folder = pathlib.Path(folder)
        command = ["cmake", "-G", "Ninja", "-S", PROJECT, "-B", folder]
        command += [f"-DCMAKE_TOOLCHAIN_FILE={PROJECT}/tests/macos/darwin-toolchain.cmake", "-DCMAKE_HOST_APPLE=ON"]
        command += [f"-DCMAKE_CXX_COMPILER={COMPILER}", f"-DCMAKE_OBJCXX_COMPILER={COMPILER}"]
        run = subprocess.run([*command, *options], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
        if run.returncode != 0:
            raise AssertionError(run.stdout)
        self.commands = json.loads((self.folder / "compile_commands.json").read_text())

    def sources(self):
        """The repository's sources that are compiled; what CMake itself writes, such as precompiled headers, is left out."""
        paths = [pathlib.Path(entry["file"]) for entry in self.commands]
        return [path.relative_to(PROJECT).as_posix() for path in paths if path.is_relative_to(PROJECT)]

    def command_of(self, source):
        return next(entry["command"] for entry in self.commands if entry["file"].endswith(source))

    def tests(self):
        run = subprocess.run(["ctest", "-N"], cwd=self.folder, capture_output=True, text=True, check=True)
        return [line.split(": ")[1].strip() for line in run.stdout.splitlines() if line.strip().startswith("Test ") and "#" in line]

    def information(self, bundle="KelvaHelper"):
        return plistlib.loads((self.folder / f"bin/{bundle}.app/Contents/Info.plist").read_bytes())


def install_with_stand_ins(build, root, *options):
    """A whole `cmake --install` below a folder, of products that stand in for what a Mac builds; what it put there."""
    for name in ("libkelva.a", "bin/kelva", "bin/kelva-thumbnail", "bin/kelva-virtual", "bin/kelva-vcam", "bin/Kelva.app/Contents/MacOS/Kelva", "bin/Kelva.app/Contents/Resources/KelvaHelper.icns", "bin/kelva-desktop-worker", "bin/kelva-desktop-worker-virtual", "bin/KelvaHelper.app/Contents/MacOS/KelvaHelper", "bin/KelvaHelper.app/Contents/Resources/KelvaHelper.icns"):
        product = build.folder / name
        product.parent.mkdir(parents=True, exist_ok=True)
        product.touch()
    subprocess.run(["cmake", "--install", build.folder, *options], env={**os.environ, "DESTDIR": str(root)}, check=True, capture_output=True)
    return sorted(path.relative_to(root).as_posix() for path in pathlib.Path(root).rglob("*") if path.is_symlink() or not path.is_dir())


def everyday_build(folder, *options):
    # Nothing is built, so there is no precompiled header that a command could read.
    return Configured(folder, f"-DGTest_DIR={GTEST_FOLDER}", "-DCMAKE_FIND_PACKAGE_PREFER_CONFIG=ON",
                      "-DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON", *options)


class EverydayBuild(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.folder.cleanup)
        cls.build = everyday_build(cls.folder.name)

    def test_library_and_agent_are_built_and_nothing_of_the_linux_side(self):
        folders = {source.rsplit("/", 1)[0] for source in self.build.sources()}
        self.assertLessEqual({"src/wifi", "src/usb/osx", "src/ui/osx/KelvaHelper", "platform/macos"}, folders)
        for folder in folders:
            self.assertNotRegex(folder, r"^(darwin/(sg|udev)|vcam/usbip|platform/linux|src/ui/linux|tests/(kernel|umockdev|doors))")

    def test_only_tests_that_a_mac_can_run_are_there(self):
        tests = self.build.tests()
        self.assertLessEqual({"wifi_test", "platform_test", "protocol_document_test", "macos_bundle_test"}, set(tests))
        for test in tests:
            self.assertNotRegex(test, r"udev|_sg_|usbip|kernel|gnustep|debian|helper|agent|install|hygiene|every_fault")


class ShippedBuild(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.folder.cleanup)
        cls.build = Configured(cls.folder.name, "-DKELVA_BUILD_TESTS=OFF", "-DKELVA_DESKTOP_ID=com.example.Other")

    def test_every_source_is_compiled_for_the_oldest_system_and_the_library_and_agent_for_both_processors(self):
        for entry in self.build.commands:
            # What links libraries that are installed for one processor is built for that one.
            installed = re.search(r" -c \S*/(apps|tools|vcam)/", entry["command"])
            self.assertEqual(len(re.findall(r"-arch (x86_64|arm64)\b", entry["command"])), 1 if installed else 2, entry["file"])
            for words in ("-mmacosx-version-min=11.0", "-std=c++20"):
                self.assertIn(words, entry["command"])

    def link_of(self, program):
        """What the linker is given for a program."""
        rules = (self.build.folder / "build.ninja").read_text().split("\nbuild ")
        return next(rule for rule in rules if rule.startswith(f"bin/{program}: "))

    def test_the_tool_has_apples_registry_and_its_virtual_sibling_the_projects_own(self):
        tool = self.link_of("kelva")
        self.assertIn("-framework IOKit", tool)
        self.assertNotRegex(tool, r"lib(darwin|kelva_bus)")

    def test_the_tool_for_virtual_cameras_has_the_registry_of_this_project_alone(self):
        tool = self.link_of("kelva-virtual")
        self.assertRegex(tool, r"libdarwin_registry.*libdarwin_cf")
        self.assertNotIn("-framework", tool)
        for program in ("kelva-virtual", "kelva-vcam", "kelva-desktop-worker-virtual"):
            self.assertNotIn("-framework", self.link_of(program))

    def test_agent_knows_the_desktop_application_that_the_build_names(self):
        self.assertIn("com.example.Other", self.build.command_of("Callback.mm"))

    def test_bundle_says_what_the_system_needs_to_start_it(self):
        information = self.build.information()
        self.assertEqual(information["NSPrincipalClass"], "NSApplication")
        self.assertEqual(information["CFBundleExecutable"], "KelvaHelper")
        self.assertEqual(information["LSMinimumSystemVersion"], "11.0")
        self.assertIs(information["LSUIElement"], True)

    def test_the_window_is_an_application_of_its_own(self):
        information = self.build.information("Kelva")
        self.assertEqual(information["CFBundleIdentifier"], "com.kelva.KelvaWindow")
        self.assertEqual(information["CFBundleExecutable"], "Kelva")
        self.assertEqual(information["NSPrincipalClass"], "NSApplication")
        self.assertNotIn("LSUIElement", information)

    def test_installation_puts_the_agent_and_a_launch_agent_that_names_its_place(self):
        for prefix, folder in (("/usr/local", "/Library/LaunchAgents"), ("/opt/a place", "/opt/a place/Library/LaunchAgents")):
            with self.subTest(prefix=prefix), tempfile.TemporaryDirectory() as root:
                files = install_with_stand_ins(self.build, root, "--prefix", prefix)
                plist = f"{folder[1:]}/com.kelva.KelvaHelper.plist"
                self.assertEqual([name for name in files if "LaunchAgent" in name], [plist])
                agent = plistlib.loads((pathlib.Path(root) / plist).read_bytes())
                program = f"{prefix}/Applications/KelvaHelper.app/Contents/MacOS/KelvaHelper"
                self.assertEqual(agent["ProgramArguments"], [program])
                self.assertIn(program[1:], files)

    def test_installation_puts_library_agent_and_documents_and_nothing_of_linux(self):
        with tempfile.TemporaryDirectory() as root:
            files = install_with_stand_ins(self.build, root, "--prefix", "/opt/kelva")
            names = [name.removeprefix("opt/kelva/") for name in files]
            self.assertLessEqual({"lib/libkelva.a", "include/kelva/Camera.h", "lib/pkgconfig/kelva.pc", "share/doc/kelva/LICENSE",
                                  "share/doc/kelva/THIRD-PARTY-NOTICES.md", "share/doc/kelva/docs/macos.md", "bin/kelva", "bin/kelva-vcam",
                                  "libexec/kelva/kelva-thumbnail", "libexec/kelva/kelva-virtual", "libexec/kelva/kelva-desktop-worker",
                                  "Applications/Kelva.app/Contents/MacOS/Kelva", "Applications/Kelva.app/Contents/Resources/KelvaHelper.icns"}, set(names))
            homes = ("include/kelva/", "lib/libkelva", "lib/cmake/Kelva/", "lib/pkgconfig/", "share/doc/kelva/", "Applications/KelvaHelper.app/", "Applications/Kelva.app/",
                     "Library/LaunchAgents/", "bin/kelva", "libexec/kelva/")
            for name in names:
                self.assertTrue(name.startswith(homes), name)
                self.assertNotRegex(name, r"/man/|systemd|udev|autostart|kelva-(helper|open)|usbip|darwin")

    def test_release_preset_needs_no_benchmark_library(self):
        presets = json.loads((PROJECT / "CMakePresets.json").read_text())["configurePresets"]
        release = next(preset for preset in presets if preset["name"] == "release")
        self.assertEqual(release["cacheVariables"], {"CMAKE_BUILD_TYPE": "Release", "KELVA_BUILD_TESTS": "OFF"})


def take_arguments():
    global PROJECT, COMPILER, GTEST_FOLDER
    PROJECT, COMPILER, GTEST_FOLDER = pathlib.Path(sys.argv[1]), sys.argv[2], sys.argv[3]
    del sys.argv[1:4]


if __name__ == "__main__":
    take_arguments()
    unittest.main()
