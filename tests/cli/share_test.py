"""Several programs and one camera."""

import random
import signal
import time

import bench_of_cameras
from bench_of_cameras import Bus


class SharedCamera(Bus):
    def hold(self):
        """A program that keeps the camera until it is ended, because the camera does not answer it."""
        self.fault("hang", 1)
        holder = self.start("battery")
        self.wait_until_held("K1")
        self.addCleanup(self.end, holder)
        return holder

    @staticmethod
    def end(run):
        if run.poll() is None:
            run.send_signal(signal.SIGINT)
        return run.communicate(timeout=60)

    def await_line(self, run, what):
        """Until a program has said this on standard error."""
        while what not in (line := run.stderr.readline()):
            self.assertNotEqual(line, "", "it ended without a word about " + what)
        return line

    def test_who_never_gives_the_camera_up_is_waited_for_as_long_as_asked(self):
        holder = self.hold()
        began = time.monotonic()
        run = self.kelva("battery", "--wait-busy", "1.5")
        self.assertEqual(run.returncode, 4, run.stderr)
        name = f"kelva (process {holder.pid})"
        self.assertEqual(run.stderr, f"kelva: Waiting for {name}, which holds the camera ...\n"
                                     f"kelva: Camera K1 is held by {name}; wait until it has finished, or close it. A "
                                     "longer --wait-busy waits longer.\n")
        self.assertGreater(time.monotonic() - began, 1.4)
        # Nobody waits who does not want to.
        run = self.kelva("battery", "--wait-busy", "0")
        self.assertEqual(run.returncode, 4, run.stderr)
        self.assertNotIn("Waiting", run.stderr)

    def test_who_waits_gets_the_camera_when_it_is_free(self):
        holder = self.hold()
        run = self.start("battery")
        self.await_line(run, f"Waiting for kelva (process {holder.pid})")
        self.end(holder)
        self.assertEqual(run.communicate(timeout=60)[0], "100\n")
        self.assertEqual(run.returncode, 0)

    def test_ctrl_c_and_the_deadline_end_a_wait(self):
        self.hold()
        run = self.start("battery", "--wait-busy", "1000")
        self.await_line(run, "Waiting for")
        run.send_signal(signal.SIGINT)
        self.assertIn("Stopped. ", run.communicate(timeout=60)[1])
        self.assertEqual(run.returncode, 130)
        run = self.kelva("battery", "--wait-busy", "1000", "--timeout", "0.3")
        self.assertEqual(run.returncode, 8, run.stderr)

    def test_a_camera_that_goes_ends_a_wait(self):
        self.hold()
        run = self.start("battery", "--wait-busy", "1000")
        self.await_line(run, "Waiting for")
        self.unplug()
        self.assertIn("Camera K1 went away before it could be opened", run.communicate(timeout=60)[1])
        self.assertEqual(run.returncode, 5)

    def test_a_time_that_is_none_is_said_before_a_camera_is_looked_for(self):
        run = self.kelva("battery", "--wait-busy", "soon", "-s", "K9")
        self.assertEqual(run.returncode, 2, run.stderr)
        self.assertIn("--wait-busy needs a number of seconds", run.stderr)

    def test_ten_at_once_all_succeed(self):
        for _ in range(3):
            runs = [self.start("info") for _ in range(10)]
            for run in runs:
                messages = run.communicate(timeout=60)[1]
                self.assertEqual(run.returncode, 0, messages)

    def all_succeed(self, runs):
        for run in runs:
            messages = run.communicate(timeout=60)[1]
            self.assertEqual(run.returncode, 0, messages)

    def test_ten_programs_have_their_turns_beside_a_sync(self):
        self.pictures(400, 1000)
        target = self.folder + "/target"
        self.fault("slow", 5)
        sync = self.start("sync", target)
        self.wait_until_held("K1")
        self.all_succeed([self.start("info") for _ in range(10)])
        self.assertIsNone(sync.poll(), "it goes on afterwards")
        self.fault("none")
        self.all_succeed([sync])
        self.assertEqual(self.whole_files_only(target), 400)

    def test_ten_syncs_share_a_camera(self):
        self.pictures(30, 1000)
        self.fault("slow", 1)
        targets = [f"{self.folder}/target{number}" for number in range(10)]
        self.all_succeed([self.start("sync", target) for target in targets])
        for target in targets:
            self.assertEqual(self.whole_files_only(target), 30)

    def test_a_large_file_is_interrupted_in_its_middle(self):
        content = random.randbytes(48 << 20)
        self.put("LARGE.BIN", content)
        self.fault("slow", 5)
        get = self.start("get", "LARGE.BIN", "-d", self.folder)
        self.wait_until_held("K1")
        self.all_succeed([self.start("info") for _ in range(3)])
        self.assertIsNone(get.poll(), "it goes on afterwards")
        self.fault("none")
        self.all_succeed([get])
        with open(self.folder + "/LARGE.BIN", "rb") as file:
            self.assertEqual(file.read(), content)

    def test_a_file_that_comes_forward_only_is_waited_for(self):
        self.vcam("plug", "--serial", "K2", "--storage", self.drive, "--forward-only")
        content = random.randbytes(32 << 20)
        self.put("LARGE.BIN", content)
        self.fault("slow", 5, serial="K2")
        get = self.start("get", "LARGE.BIN", "-d", self.folder, "-s", "K2")
        self.wait_until_held("K2")
        info = self.start("info", "-s", "K2", "--wait-busy", "0.7")
        # The time counts from the end of the file, which takes longer.
        self.await_line(info, "holds the camera for one long file")
        self.all_succeed([get])
        self.all_succeed([info])
        with open(self.folder + "/LARGE.BIN", "rb") as file:
            self.assertEqual(file.read(), content)

    def test_a_camera_that_goes_while_others_have_their_turns_ends_the_work(self):
        self.pictures(400, 1000)
        self.fault("slow", 5)
        sync = self.start("sync", self.folder + "/target")
        self.wait_until_held("K1")
        self.all_succeed([self.start("info")])
        self.unplug()
        self.plug()
        messages = sync.communicate(timeout=60)[1]
        self.assertEqual(sync.returncode, 5, messages)
        self.whole_files_only(self.folder + "/target")


if __name__ == "__main__":
    bench_of_cameras.main()
