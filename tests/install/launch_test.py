#!/usr/bin/env python3
"""Installs a build, moves it, and sees the installed helper start an application. Usage: launch_test.py BUILD_FOLDER AGENT_TESTS"""

import pathlib
import subprocess
import sys
import tempfile
import unittest

BUILD, AGENT_TESTS = sys.argv.pop(1), sys.argv.pop(1)
sys.path.insert(0, AGENT_TESTS)
from session import Session  # noqa: E402


class InstalledHelper(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory(prefix="kelva-install-")
        self.addCleanup(scratch.cleanup)
        first = pathlib.Path(scratch.name) / "first"
        subprocess.run(["cmake", "--install", BUILD, "--prefix", first], check=True, stdout=subprocess.DEVNULL)
        # Moved, so that a path of the build or of the first place would show.
        self.prefix = first.rename(pathlib.Path(scratch.name) / "moved")

    def test_opener_lies_where_the_helper_looks_for_it(self):
        self.assertEqual([path.relative_to(self.prefix).as_posix() for path in self.prefix.rglob("kelva-open")],
                         ["libexec/kelva/kelva-open"])

    def test_plug_starts_the_desktop_application(self):
        session = Session(self.prefix / "bin")
        self.addCleanup(session.close)
        session.install_application()
        session.plug("KV0001")
        session.watching_agent()
        session.plug("KV0002")
        self.assertEqual(session.launches.next(), "launched")


if __name__ == "__main__":
    unittest.main()
