"""A camera of a virtual bus, mounted on a folder."""

import json
import os
import pathlib
import signal
import subprocess
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "cli"))
import bench_of_cameras  # noqa: E402
from bench_of_cameras import Bus  # noqa: E402


def mounts_below(folder):
    """The paths of the cameras that are mounted below a folder."""
    with open("/proc/self/mountinfo", encoding="utf-8", errors="surrogateescape") as table:
        lines = [line.split() for line in table]
    paths = [words[4].encode().decode("unicode_escape") for words in lines if "fuse.kelva" in words]
    return [path for path in paths if path.startswith(folder)]


class MountedBus(Bus):
    def setUp(self):
        super().setUp()
        self.point = self.folder + "/mount"
        self.files = self.point + "/DCIM/100ABCDE"
        self.card = self.drive + "/DCIM/100ABCDE"
        self.addCleanup(self.end_all)

    def end_all(self):
        paths = mounts_below(self.folder)
        for path in paths:
            subprocess.run(["fusermount3", "-uz", path], check=False)
        # Each program removes its folder, while the test's own is removed with all that is in it.
        until = time.monotonic() + 5
        while any(map(os.path.exists, paths)) and time.monotonic() < until:
            time.sleep(0.01)

    def replug(self, *options):
        self.unplug()
        self.vcam("plug", "--serial", "K1", "--storage", self.drive, *options)

    def mount(self, *words):
        """In the foreground; returns the process, when the mount stands."""
        run = self.start("mount", "--foreground", "--json", *words, self.point)
        self.addCleanup(self.end, run)
        event = json.loads(run.stdout.readline() or "{}")
        self.assertEqual(event.get("event"), "mounted", run.stderr.read() if not event else event)
        return run

    def end(self, run):
        """Ends the process, if it still runs; returns what it printed."""
        if run.poll() is None:
            run.send_signal(signal.SIGTERM)
        out, messages = run.communicate(timeout=60)
        return out, messages

    def unmount(self, run):
        subprocess.run(["fusermount3", "-u", self.point], check=True)
        out, messages = run.communicate(timeout=60)
        self.assertEqual(run.returncode, 0, messages)
        self.assertFalse(os.path.exists(self.point))
        return out

    def gone_within(self, seconds):
        until = time.monotonic() + seconds
        while mounts_below(self.folder):
            self.assertLess(time.monotonic(), until, "it is still mounted")
            time.sleep(0.01)

    def commands(self):
        """How many commands the camera has had."""
        return self.status()["K1"]["commands"]

    def read(self, name):
        with open(os.path.join(self.drive, name), "rb") as file:
            return file.read()


main = bench_of_cameras.main
