#!/usr/bin/python3
"""The window on a machine whose one camera its user may not open.

Usage: permission_test.py FOLDER_OF_PROGRAMS LOCKED_CAMERA FOLDER_FOR_SCREENSHOTS
"""

import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import unittest

import screen
import tiny_jpeg

PROGRAMS, LOCKED, SCREENSHOTS = (pathlib.Path(word).resolve() for word in sys.argv[1:4])


class NoPermission(unittest.TestCase):
    def test_a_sentence_and_the_command_that_mends_it_until_the_permission_is_there(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        folder = pathlib.Path(scratch.name, "DCIM/100ABCDE")
        folder.mkdir(parents=True)
        (folder / "IMG_0001.JPG").write_bytes(tiny_jpeg.jpeg([[(1, 2, 3)]]))
        machine = subprocess.Popen([LOCKED, scratch.name, PROGRAMS / "kelva-desktop"], stdin=subprocess.PIPE)
        window = screen.Started("kelva-desktop")
        self.addCleanup(lambda: machine.poll() is None and machine.kill())

        window.wait("^This user may not read and write /dev/sg0 ", "label")
        window.wait("^Command that mends it: sudo ", "label")
        window.wait("^Copy command$", "push button")
        window.wait("^Plug a camera in")
        SCREENSHOTS.mkdir(parents=True, exist_ok=True)
        screen.photograph(SCREENSHOTS / "no_permission.png")

        machine.stdin.write(b"allow\n")
        machine.stdin.flush()
        window.wait("^IMG_0001, JPG", "list item")
        screen.wait_for(lambda: window.find("^This user may not", "label") is None, "the sentence is gone")

        os.kill(window.process_number(), signal.SIGTERM)
        machine.stdin.close()
        self.assertEqual(machine.wait(screen.PATIENCE), 0)


if __name__ == "__main__":
    screen.enter_session()
    unittest.main(argv=sys.argv[:1], verbosity=2)
