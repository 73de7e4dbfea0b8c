"""kelva sync --all: every attached camera at once."""

import json
import os
import random
import signal

import bench_of_cameras
from bench_of_cameras import Bus


class AllCameras(Bus):
    def setUp(self):
        super().setUp()
        self.target = self.folder + "/target"
        self.pictures(3, 2000)
        self.other = self.folder + "/other"
        os.makedirs(self.other + "/DCIM/100ABCDE")
        # Another picture of the same name.
        with open(self.other + "/DCIM/100ABCDE/IMG_0001.JPG", "wb") as file:
            file.write(random.randbytes(1000))
        self.plug("K2", self.other)

    def sync(self, *words):
        return self.kelva("sync", "--all", self.target, *words)

    def names(self, serial):
        folder = f"{self.target}/{serial}/100ABCDE"
        return sorted(os.listdir(folder)) if os.path.isdir(folder) else []

    def complete(self):
        self.assertEqual(self.names("K1"), ["IMG_0001.JPG", "IMG_0002.JPG", "IMG_0003.JPG"])
        self.assertEqual(self.names("K2"), ["IMG_0001.JPG"])
        for serial, drive in (("K1", self.drive), ("K2", self.other)):
            for name in self.names(serial):
                with open(f"{self.target}/{serial}/100ABCDE/{name}", "rb") as mine:
                    with open(f"{drive}/DCIM/100ABCDE/{name}", "rb") as camera:
                        self.assertEqual(mine.read(), camera.read())

    def test_each_camera_has_a_folder(self):
        run = self.sync()
        self.assertEqual(run.returncode, 0, run.stderr)
        lines = run.stdout.splitlines()
        self.assertIn("K1: 3 stored (6.0 kB), 0 known before, 0 failed", lines)
        self.assertIn("K2: 1 stored (1.0 kB), 0 known before, 0 failed", lines)
        self.assertIn("2 of 2 cameras: 4 stored (7.0 kB), 0 known before, 0 failed", lines)
        self.complete()
        self.assertIn("2 of 2 cameras: 0 stored (0 B), 4 known before, 0 failed", self.sync().stdout)
        self.unplug("K2")
        self.assertIn("1 of 1 camera: 0 stored (0 B), 3 known before, 0 failed", self.sync().stdout)

    def test_each_line_of_json_says_whose_it_is(self):
        run = self.sync("--json")
        self.assertEqual(run.returncode, 0, run.stderr)
        *events, result = map(json.loads, run.stdout.splitlines())
        self.assertEqual(sorted((event["event"], event["serial"]) for event in events),
                         [("stored", "K1")] * 3 + [("stored", "K2")])
        self.assertEqual([(camera["serial"], camera["stored"], camera["exit"]) for camera in result["cameras"]],
                         [("K1", 3, 0), ("K2", 1, 0)])
        self.assertEqual((result["stored"], result["bytes"], result["failed"]), (4, 7000, 0))

    def test_options_are_handed_on(self):
        run = self.sync("--dry-run", "--pattern", "{serial}-{name}")
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertIn("K2-IMG_0001.JPG", run.stdout)
        self.assertFalse(os.path.exists(self.target))
        preview = json.loads(self.sync("--dry-run", "--json").stdout.splitlines()[-1])
        self.assertEqual([camera["new"] for camera in preview["cameras"]], [3, 1])
        self.assertEqual((preview["new"], preview["known"], preview["bytes"], preview["to_delete"]), (4, 0, 7000, 0))
        self.assertEqual(self.sync("--types", "raw").returncode, 0)
        self.assertEqual(self.names("K1") + self.names("K2"), [])

    def test_one_camera_that_fails_does_not_hold_up_the_others(self):
        self.fault("unplug", 500, serial="K2")
        run = self.sync("--json")
        self.assertEqual(run.returncode, 6, run.stderr)
        cameras = json.loads(run.stdout.splitlines()[-1])["cameras"]
        self.assertEqual([(camera["serial"], camera["exit"]) for camera in cameras], [("K1", 0), ("K2", 5)])
        self.assertEqual(len(self.names("K1")), 3)
        self.plug("K2", self.other)
        run = self.sync()
        self.assertEqual(run.returncode, 0, run.stderr)
        self.complete()

    def test_when_all_fail_the_exit_status_is_that_of_the_first(self):
        for serial in ("K1", "K2"):
            self.fault("unplug", 500, serial=serial)
        run = self.sync()
        self.assertEqual(run.returncode, 5, run.stderr)
        self.assertIn("kelva: K1: ", run.stderr)
        self.assertIn("kelva: K2: ", run.stderr)
        self.assertIn("0 of 2 cameras: 0 stored", run.stdout)
        self.assertEqual([line for line in run.stdout.splitlines() if line.startswith("K")], [])

    def test_ctrl_c_ends_all(self):
        for serial in ("K1", "K2"):
            self.fault("slow", 100, serial=serial)
        run = self.start("sync", "--all", self.target, "--json")
        self.wait_until_held("K1", "K2")
        run.send_signal(signal.SIGINT)
        out, messages = run.communicate(timeout=60)
        self.assertEqual(run.returncode, 130, messages)
        self.assertEqual(json.loads(out.splitlines()[-1])["reason"], "interrupted")
        for serial in ("K1", "K2"):
            self.fault("none", serial=serial)
        run = self.sync()
        self.assertEqual(run.returncode, 0, run.stderr)
        self.complete()

    def test_a_camera_that_hangs_is_counted_with_what_is_left_of_it(self):
        self.fault("hang", 18)
        run = self.kelva("--timeout", "3", "sync", "--all", self.target, "--json")
        self.assertEqual(run.returncode, 8, run.stderr)
        result = json.loads(run.stdout.splitlines()[-1])
        self.assertEqual([(camera["serial"], camera["stored"], camera["left"]) for camera in result["cameras"]],
                         [("K1", 0, 3), ("K2", 1, 0)])
        self.assertEqual((result["stored"], result["left"]), (1, 3))
        self.assertIn("1 of 4 files stored", result["error"])

    def test_a_trace_is_of_one_camera(self):
        run = self.sync("--trace", self.folder + "/trace")
        self.assertEqual(run.returncode, 2, run.stderr)

    def test_without_a_camera_there_is_nothing_to_do(self):
        self.unplug("K1")
        self.unplug("K2")
        self.assertEqual(self.sync().returncode, 3)
        self.assertFalse(os.path.exists(self.target))


if __name__ == "__main__":
    bench_of_cameras.main()
