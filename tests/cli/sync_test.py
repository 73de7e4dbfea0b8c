"""sync loses nothing and stores nothing half, whatever goes wrong; a second run completes it."""

import json
import os
import signal
import time

import bench_of_cameras
from bench_of_cameras import Bus


class SyncTest(Bus):
    def setUp(self):
        super().setUp()
        self.target = os.path.join(self.folder, "out")

    def complete(self, count):
        run = self.kelva("sync", self.target)
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertEqual(self.whole_files_only(self.target), count)

    def test_the_same_name_in_two_folders_stays_two_files(self):
        self.put("DCIM/100ABCDE/IMG_0001.JPG", b"one")
        self.put("DCIM/101ABCDE/IMG_0001.JPG", b"two")
        self.complete(2)

    def test_one_folder_for_all_numbers_what_would_collide_and_shows_it_before(self):
        self.put("DCIM/100ABCDE/IMG_0001.JPG", b"one")
        self.put("DCIM/101ABCDE/IMG_0001.JPG", b"two")
        words = ("sync", "--pattern", "{name}", self.target)
        preview = self.kelva(*words, "--dry-run").stdout.split()
        self.assertEqual(preview[2::3], ["IMG_0001.JPG", "IMG_0001-2.JPG"])
        self.assertFalse(os.path.exists(self.target))
        self.assertEqual(self.kelva(*words).returncode, 0)
        with open(self.target + "/IMG_0001.JPG", "rb") as first, open(self.target + "/IMG_0001-2.JPG", "rb") as second:
            self.assertEqual((first.read(), second.read()), (b"one", b"two"))

    def test_too_many_bytes_end_one_file_and_not_the_rest(self):
        self.pictures(4, 70_000)
        for at in (5, 9, 12):
            self.fault("surplus2", at)
            run = self.kelva("sync", self.target)
            self.assertIn(run.returncode, (0, 6), run.stderr)
            self.whole_files_only(self.target)
            self.fault("none")
        self.complete(4)

    def test_too_many_bytes_of_a_known_file_leave_it_and_delete_the_rest(self):
        self.pictures(3, 100)
        self.complete(3)
        self.fault("surplus2", 5)
        run = self.kelva("sync", "--delete-after-verify", "--json", self.target)
        document = json.loads(run.stdout.splitlines()[-1])
        self.assertEqual((run.returncode, document["deleted"], document["failed"]), (6, 2, 1), run.stderr)
        self.assertEqual(len(os.listdir(self.drive + "/DCIM/100ABCDE")), 1)

    def test_ctrl_c_ends_it_within_a_second(self):
        self.pictures(4, 700_000)
        self.fault("slow", 50)
        run = self.start("sync", self.target)
        time.sleep(0.7)
        run.send_signal(signal.SIGINT)
        asked = time.monotonic()
        _, messages = run.communicate(timeout=20)
        self.assertEqual(run.returncode, 130, messages)
        self.assertIn("Interrupted", messages)
        self.assertLess(time.monotonic() - asked, 5)
        self.whole_files_only(self.target)
        self.fault("none")
        self.complete(4)

    def test_a_target_that_cannot_be_made_is_one_sentence(self):
        self.pictures(1, 10)
        run = self.kelva("sync", "/proc/nowhere")
        self.assertEqual(run.returncode, 1)
        self.assertEqual(len(run.stderr.splitlines()), 1, run.stderr)

    def test_verified_files_are_deleted_on_the_camera_and_only_those(self):
        self.pictures(2, 1000)
        self.put("NOTE.TXT", b"stays")
        run = self.kelva("sync", "--delete-after-verify", "--json", self.target)
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertEqual(json.loads(run.stdout.splitlines()[-1])["deleted"], 2)
        self.assertEqual(os.listdir(self.drive + "/DCIM/100ABCDE"), [])
        self.assertTrue(os.path.exists(self.drive + "/NOTE.TXT"))
        self.assertEqual(len(os.listdir(self.target + "/100ABCDE")), 2)


if __name__ == "__main__":
    bench_of_cameras.main()
