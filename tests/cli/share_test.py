"""Several programs and one camera."""

import signal
import time

import bench_of_cameras
from bench_of_cameras import Bus


class SharedCamera(Bus):
    def hold(self):
        """A program that keeps the camera until it is ended."""
        holder = self.start("console", "--follow")
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


if __name__ == "__main__":
    bench_of_cameras.main()
