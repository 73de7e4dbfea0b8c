#!/usr/bin/env python3
"""The formula of Homebrew, as far as this machine can follow it: what it installs, and the program of its test.

Usage: formula_test.py PROJECT CLANG BUILD_FOLDER COMPILER
CLANG configures the project as on a Mac; BUILD_FOLDER is a build for this machine, COMPILER its compiler.
"""

import os
import pathlib
import plistlib
import re
import shlex
import subprocess
import sys
import tempfile
import unittest

import configure_test
from configure_test import Configured, install_with_stand_ins

PROJECT, BUILD, COMPILER = pathlib.Path(), "", ""
PREFIX, OPT = "/opt/homebrew/Cellar/kelva/HEAD", "/opt/homebrew/opt/kelva"


def formula():
    return (PROJECT / "packaging/osx/kelva.rb").read_text()


def words_of(call):
    """The words of one `system` of the formula, without the brackets of Ruby."""
    return re.findall(r'"((?:[^"#]|#\{[^}]*\})*)"', call)


def filled(word, **values):
    """A word with its #{...} replaced; one that has no value here is a KeyError."""
    return re.sub(r"#\{([^}]*)\}", lambda match: values[match[1]], word)


class Installation(unittest.TestCase):
    """`install` of the formula, with Homebrew's own options, and products that stand in for what a Mac builds."""

    @classmethod
    def setUpClass(cls):
        call = re.search(r'system "cmake", "-S".*?(?=\n    system)', formula(), re.DOTALL)[0]
        options = [filled(word, **{"Hardware::CPU.arch": "arm64", "prefix": PREFIX, "opt_prefix": OPT})
                   for word in words_of(call) if word.startswith("-D")]
        standard = [f"-DCMAKE_INSTALL_PREFIX={PREFIX}", "-DCMAKE_INSTALL_LIBDIR=lib", "-DCMAKE_BUILD_TYPE=Release"]
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.build = Configured(folder.name, *options, *standard)
        root = tempfile.TemporaryDirectory()
        cls.addClassCleanup(root.cleanup)
        cls.root = pathlib.Path(root.name)
        cls.files = install_with_stand_ins(cls.build, cls.root)

    def test_all_lies_below_the_prefix_of_the_formula(self):
        for name in self.files:
            self.assertTrue(name.startswith(PREFIX[1:] + "/"), name)

    def test_it_builds_for_the_one_processor_of_the_mac(self):
        for entry in self.build.commands:
            self.assertIn("-arch arm64", entry["command"])
            self.assertEqual(re.findall(r"-arch (\w+)", entry["command"]), ["arm64"])

    def test_service_finds_its_property_list_and_that_the_application(self):
        label = re.search(r'name macos: "([^"]+)"', formula())[1]
        agent = plistlib.loads((self.root / PREFIX[1:] / f"{label}.plist").read_bytes())
        self.assertEqual(agent["Label"], label)
        program = agent["ProgramArguments"][0]
        self.assertEqual(program, f"{OPT}/Applications/KelvaHelper.app/Contents/MacOS/KelvaHelper")
        self.assertIn(program.replace(OPT, PREFIX)[1:], self.files)

    def test_property_list_that_its_test_reads_is_there(self):
        name = re.search(r'prefix/"([^"]+\.plist)"', formula())[1]
        self.assertIn(f"{PREFIX[1:]}/{name}", self.files)


class ItsTest(unittest.TestCase):
    """The program of `test do`, compiled and run with the library of this machine in place of the Mac's."""

    def test_its_program_compiles_links_and_runs(self):
        program = re.search(r"<<~EOS\n(.*?)\n *EOS", formula(), re.DOTALL)[1]
        call = re.search(r"system ENV\.cxx, (.*?)\n    system", formula(), re.DOTALL)[1]
        with tempfile.TemporaryDirectory() as scratch:
            for component in ("Library", "Development"):
                subprocess.run(["cmake", "--install", BUILD, "--prefix", scratch, "--component", component], check=True,
                               stdout=subprocess.DEVNULL)
            folders = {"include": f"{scratch}/include", "lib": f"{scratch}/lib", 'Formula["boost"].opt_include': "/usr/include"}
            pathlib.Path(scratch, "test.cpp").write_text(program)
            # Ruby's quotes inside a word end the word for the eye of words_of.
            call = call.replace('#{Formula["boost"].opt_include}', "/usr/include")
            words = [filled(word, **folders) for word in words_of(call)]
            for framework in ("IOKit", "CoreFoundation"):
                position = words.index(framework)
                self.assertEqual(words[position - 1], "-framework")
                del words[position - 1:position + 1]
            needed = subprocess.run(["pkg-config", "--static", "--libs-only-l", "kelva"], check=True, capture_output=True, text=True,
                                    env={**os.environ, "PKG_CONFIG_PATH": f"{scratch}/lib/pkgconfig"}).stdout
            subprocess.run([COMPILER, *words, *shlex.split(needed)], cwd=scratch, check=True)
            subprocess.run(["./test"], cwd=scratch, check=True, env={**os.environ, "LD_LIBRARY_PATH": f"{scratch}/lib"})


if __name__ == "__main__":
    PROJECT, clang, BUILD, COMPILER = pathlib.Path(sys.argv[1]), *sys.argv[2:5]
    configure_test.PROJECT, configure_test.COMPILER = PROJECT, clang
    unittest.main(argv=sys.argv[:1])
