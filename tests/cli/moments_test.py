"""sync is ended at moments that nobody chose; what is there is whole, and the next run completes it."""

import os
import random
import shutil
import signal
import time

import bench_of_cameras
from bench_of_cameras import Bus

PICTURES = 8
SIZE = 120_000
ROUNDS = 20


class MomentsTest(Bus):
    def setUp(self):
        super().setUp()
        self.target = os.path.join(self.folder, "out")
        self.pictures(PICTURES, SIZE)

    def rounds(self):
        """Three runs on one target, then it is emptied; when it is complete, too."""
        for number in range(ROUNDS):
            if number % 3 == 0 or self.is_complete():
                shutil.rmtree(self.target, ignore_errors=True)
            yield number

    def is_complete(self):
        return os.path.exists(self.target) and self.whole_files_only(self.target) == PICTURES

    def complete(self):
        run = self.kelva("sync", self.target)
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertEqual(self.whole_files_only(self.target), PICTURES)

    def test_the_camera_is_unplugged_at_a_byte(self):
        for _ in self.rounds():
            self.fault("unplug", random.randrange(1, PICTURES * SIZE * 9 // 8))
            run = self.kelva("sync", self.target)
            self.assertIn(run.returncode, (0, 3, 5), run.stderr)
            self.whole_files_only(self.target)
            if "K1" in self.status():
                self.fault("none")
            else:
                self.plug()
        self.complete()

    def end_at_some_moment(self, number):
        run = self.start("sync", self.target)
        self.wait_until_held("K1", run=run)
        time.sleep(random.uniform(0, 0.25))
        run.send_signal(number)
        sent = time.monotonic()
        _, messages = run.communicate(timeout=60)
        # A second is the promise; a machine that also does other work gets some more here.
        self.assertLess(time.monotonic() - sent, 5)
        return run.returncode, messages

    def test_ctrl_c_comes_at_a_moment(self):
        self.fault("slow", 5)
        for _ in self.rounds():
            code, messages = self.end_at_some_moment(signal.SIGINT)
            self.assertIn(code, (0, 130), messages)
            if code == 130:
                self.assertRegex(messages, r"Stopped(: |\. Everything finished so far is kept)")
            self.whole_files_only(self.target)
        self.fault("none")
        self.complete()

    def test_the_tool_is_killed_and_the_next_run_removes_what_it_left(self):
        self.fault("slow", 5)
        for _ in self.rounds():
            code, messages = self.end_at_some_moment(signal.SIGKILL)
            self.assertIn(code, (0, -signal.SIGKILL), messages)
            # Its worker ends a moment later.
            while self.status()["K1"]["holder"]:
                time.sleep(0.01)
        self.fault("none")
        self.complete()


if __name__ == "__main__":
    bench_of_cameras.main()
