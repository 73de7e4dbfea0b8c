#!/usr/bin/env python3
"""Where no udev runs, whoever waits for cameras is told so, once, and nobody else. Usage: no_udev_test.py PROGRAMS"""

import signal
import subprocess
import sys
import tempfile
import unittest

from session import Lines

PROGRAMS = ""
SENTENCE = "kelva-helper: No udev runs here (a container?), so plugging in a camera goes unnoticed; "
# A /run of the test's own, with or without the socket by which udev is known to run.
SCRIPT = 'mount -t tmpfs none /run && eval "$1" && shift && exec "$@"'
WITHOUT_UDEV = ":"
WITH_UDEV = "mkdir /run/udev && : >/run/udev/control"


class NoUdev(unittest.TestCase):
    def start(self, run, program, *arguments):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        command = ["unshare", "--user", "--map-root-user", "--mount", "sh", "-c", SCRIPT, "sh", run, f"{PROGRAMS}/{program}", *arguments]
        environment = {"PATH": "/usr/sbin:/usr/bin:/sbin:/bin", "HOME": folder.name, "XDG_RUNTIME_DIR": folder.name}
        return subprocess.Popen(command, env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE)

    def errors_of_agent(self, run):
        agent = self.start(run, "kelva-helper")
        try:
            self.assertTrue(Lines(agent.stdout.fileno()).next().startswith("kelva-helper: Watching;"))
            agent.send_signal(signal.SIGTERM)
            errors = agent.communicate(timeout=60)[1].decode()
        finally:
            agent.kill()
        self.assertEqual(agent.returncode, 0)
        return errors

    def test_agent_says_it_once_and_stays(self):
        errors = self.errors_of_agent(WITHOUT_UDEV)
        self.assertTrue(errors.startswith(SENTENCE), errors)
        self.assertEqual(errors.count("\n"), 1)

    def test_agent_has_nothing_to_say_where_udev_runs(self):
        self.assertEqual(self.errors_of_agent(WITH_UDEV), "")

    def test_command_that_waits_for_nothing_says_what_is_wrong_with_itself_alone(self):
        tool = self.start(WITHOUT_UDEV, "kelva", "ready")
        output, errors = tool.communicate(timeout=60)
        self.assertEqual((tool.returncode, output), (3, b""))
        self.assertTrue(errors.startswith(b"kelva: No camera is attached;"), errors)
        self.assertEqual(errors.count(b"\n"), 1)


if __name__ == "__main__":
    PROGRAMS = sys.argv.pop(1)
    unittest.main()
