#!/usr/bin/env python3
"""./run --system in a terminal: it watches this machine until Ctrl-C, and then ends well. Usage: system_test.py REPOSITORY BUILD_FOLDER"""

import os
import pty
import select
import signal
import sys
import tempfile
import time
import unittest

ROOT = ""
BUILD = ""
# As ./run does it, with the programs of a build that is there already.
SCRIPT = """
set -euo pipefail
. "$root/tools/say.sh"
build_preset() { :; }
. "$root/tools/demonstration.sh"
run_on_system
"""
PATIENCE = 60


class Terminal:
    """The script as the foreground job of a terminal of its own."""

    def __init__(self, session):
        self.process, self.descriptor = pty.fork()
        if self.process == 0:
            os.execvpe("bash", ["bash", "-c", SCRIPT], {**os.environ, "root": ROOT, "build": BUILD, "XDG_RUNTIME_DIR": session})
        self.output = b""

    def read_until(self, words):
        deadline = time.monotonic() + PATIENCE
        while words not in self.output:
            if not select.select([self.descriptor], [], [], max(0, deadline - time.monotonic()))[0]:
                raise AssertionError(f"{words!r} was not said: {self.output!r}")
            self.output += os.read(self.descriptor, 4096)

    def exit_code(self):
        return os.waitstatus_to_exitcode(os.waitpid(self.process, 0)[1])


class RunOnThisMachine(unittest.TestCase):
    def setUp(self):
        # Of its own, so that a copy that serves this login session already is no rival.
        session = tempfile.TemporaryDirectory()
        self.addCleanup(session.cleanup)
        self.terminal = Terminal(session.name)
        self.terminal.read_until(b"kelva-helper: Watching;")

    def test_it_says_what_it_does_and_how_it_ends(self):
        self.assertIn(b"Starting the helper on this machine's own cameras", self.terminal.output)
        self.assertIn(b"Ctrl-C ends it.", self.terminal.output)
        os.kill(self.terminal.process, signal.SIGTERM)
        self.assertEqual(self.terminal.exit_code(), 0)

    def test_ctrl_c_ends_it(self):
        os.write(self.terminal.descriptor, b"\x03")
        self.assertEqual(self.terminal.exit_code(), 0)

    def test_an_interrupt_from_elsewhere_ends_it(self):
        os.kill(self.terminal.process, signal.SIGINT)
        self.assertEqual(self.terminal.exit_code(), 0)


if __name__ == "__main__":
    ROOT, BUILD = sys.argv[1:3]
    del sys.argv[1:3]
    unittest.main()
