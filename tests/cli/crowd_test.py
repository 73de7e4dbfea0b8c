"""Sixteen programs on one camera, for as many seconds as the environment says."""

import json
import os
import random
import shutil
import sys
import threading
import time

import bench_of_cameras
from bench_of_cameras import Bus

SECONDS = float(os.environ.get("KELVA_CROWD_SECONDS", "60"))
PICTURES = 40


class Crowd(Bus):
    def setUp(self):
        super().setUp()
        self.pictures(PICTURES, 100_000)
        self.large = random.randbytes(8 << 20)
        self.put("LARGE.BIN", self.large)
        os.mkdir(self.drive + "/MISC")
        self.until = time.monotonic() + SECONDS
        self.done = {}
        self.failures = []

    def run_well(self, *words):
        run = self.kelva(*words)
        if run.returncode:
            raise AssertionError(f"kelva {' '.join(words)}: {run.returncode} {run.stderr}")
        return run.stdout

    def expect(self, is_right, what):
        if not is_right:
            raise AssertionError(what)

    # What the programs do, again and again. Each has a folder of its own.

    def info(self, _):
        self.expect("K1" in self.run_well("info"), "the information record of another camera")

    def battery(self, _):
        self.expect(self.run_well("battery") == "100\n", "another battery level")

    def tree(self, _):
        members = json.loads(self.run_well("tree", "DCIM", "--json"))
        self.expect(members["files"] == PICTURES, "files are missing from the tree")

    def catalogue(self, _):
        members = json.loads(self.run_well("pictures", "--json").splitlines()[-1])
        self.expect(len(members["pictures"]) == PICTURES, "pictures are missing from the catalogue")

    def get(self, folder):
        self.run_well("get", "-f", "-d", folder, "DCIM/100ABCDE/IMG_0001.JPG", "LARGE.BIN")
        with open(folder + "/LARGE.BIN", "rb") as file:
            self.expect(file.read() == self.large, "another file than the camera's")

    def sync(self, folder):
        target = folder + "/target"
        shutil.rmtree(target, ignore_errors=True)
        self.run_well("sync", "--verify", target)
        self.expect(self.whole_files_only(target) == PICTURES, "files are missing after a sync")

    def send(self, folder):
        """Sends a file, which the tool reads back, and deletes it."""
        name = os.path.basename(folder) + ".BIN"
        with open(f"{folder}/{name}", "wb") as file:
            file.write(random.randbytes(300_000))
        self.run_well("put", f"{folder}/{name}", "MISC/")
        self.run_well("rm", "--yes", "MISC/" + name)

    def repeat(self, number, work):
        folder = f"{self.folder}/program{number}"
        os.mkdir(folder)
        times = 0
        try:
            while time.monotonic() < self.until and not self.failures:
                work(folder)
                times += 1
        except Exception as failure:  # said by the test's own thread
            self.failures.append(failure)
        self.done[f"{number} {work.__name__}"] = times

    def test_sixteen_programs_share_a_camera(self):
        programs = [self.info, self.info, self.info, self.battery, self.battery, self.tree, self.tree, self.catalogue,
                    self.get, self.get, self.get, self.sync, self.sync, self.sync, self.send, self.send]
        threads = [threading.Thread(target=self.repeat, args=each) for each in enumerate(programs)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        print(self.done, file=sys.stderr)
        self.assertEqual(self.failures, [])
        self.assertTrue(all(self.done.values()), "everybody had a turn")
        self.assertEqual(os.listdir(self.drive + "/MISC"), [])


if __name__ == "__main__":
    bench_of_cameras.main()
