#!/usr/bin/python3
"""./run in a terminal of a desktop: the window stays until it is closed, then the demonstration ends well.

Usage: terminal_test.py REPOSITORY BUILD_FOLDER
"""

import os
import pty
import sys
import threading
import time
import unittest

import screen

ROOT, BUILD = sys.argv[1:3]
# As ./run does it, with the programs of a build that is there already.
SCRIPT = """
set -euo pipefail
. "$root/tools/say.sh"
build_preset() { :; }
. "$root/tools/demonstration.sh"
. "$root/tools/window.sh"
demonstrate ""
"""


class RunInATerminal(unittest.TestCase):
    def setUp(self):
        self.process, terminal = pty.fork()
        if self.process == 0:
            os.execvpe("bash", ["bash", "-c", SCRIPT], {**os.environ, "root": ROOT, "build": BUILD})
        self.said = b""
        threading.Thread(target=self.listen, args=(terminal,), daemon=True).start()

    def listen(self, terminal):
        try:
            while part := os.read(terminal, 4096):
                self.said += part
        except OSError:  # the terminal's last process has ended
            pass

    def test_the_window_stays_until_it_is_closed(self):
        window = screen.Started("kelva-desktop")
        window.wait("^Import 12 new pictures")
        screen.wait_for(lambda: b"close it to go on" in self.said, "the sentence about the window")
        time.sleep(1)
        self.assertEqual(os.waitpid(self.process, os.WNOHANG)[0], 0, "it goes on")
        self.assertTrue(window.find("^Import 12 new pictures"), "nobody pressed it")

        self.assertTrue(screen.ask_to_close("Kelva"))
        self.assertEqual(os.waitstatus_to_exitcode(os.waitpid(self.process, 0)[1]), 0, self.said)


if __name__ == "__main__":
    screen.enter_session()
    unittest.main(argv=sys.argv[:1], verbosity=2)
