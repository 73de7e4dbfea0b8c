"""sync loses nothing and stores nothing half, whatever goes wrong; a second run completes it."""

import json
import os
import random
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

    def test_one_folder_for_all_numbers_what_would_collide(self):
        self.put("DCIM/100ABCDE/IMG_0001.JPG", b"one")
        self.put("DCIM/101ABCDE/IMG_0001.JPG", b"two")
        self.assertEqual(self.kelva("sync", "--pattern", "{name}", self.target).returncode, 0)
        with open(self.target + "/IMG_0001.JPG", "rb") as first, open(self.target + "/IMG_0001-2.JPG", "rb") as second:
            self.assertEqual({first.read(), second.read()}, {b"one", b"two"})

    def test_files_and_links_that_are_there_stay_as_they_are(self):
        self.put("DCIM/100ABCDE/IMG_0001.JPG", b"camera")
        self.put("DCIM/101ABCDE/IMG_0001.JPG", b"other")
        os.makedirs(self.target + "/100ABCDE")
        with open(self.target + "/100ABCDE/IMG_0001.JPG", "w") as file:
            file.write("mine")
        os.mkdir(self.folder + "/elsewhere")
        os.symlink(self.folder + "/elsewhere", self.target + "/101ABCDE")
        run = self.kelva("sync", self.target)
        self.assertEqual(run.returncode, 6, run.stderr)
        self.assertIn("symbolic link", run.stderr)
        with open(self.target + "/100ABCDE/IMG_0001.JPG") as file:
            self.assertEqual(file.read(), "mine")
        with open(self.target + "/100ABCDE/IMG_0001-2.JPG") as file:
            self.assertEqual(file.read(), "camera")
        self.assertEqual(os.listdir(self.folder + "/elsewhere"), [])

    def test_an_unplugged_camera_at_any_byte_leaves_whole_files(self):
        self.pictures(6, 150_000)
        for _ in range(6):
            self.fault("unplug", random.randrange(1, 900_000))
            run = self.kelva("sync", self.target)
            self.assertIn(run.returncode, (0, 3, 5), run.stderr)
            self.whole_files_only(self.target)
            listed = json.loads(self.kelva("list", "--json").stdout)
            if not listed["cameras"]:
                self.plug()
            self.fault("none")
        self.complete(6)

    def test_too_many_bytes_end_one_file_and_not_the_rest(self):
        self.pictures(4, 70_000)
        for at in (5, 9, 12):
            self.fault("surplus2", at)
            run = self.kelva("sync", self.target)
            self.assertIn(run.returncode, (0, 6), run.stderr)
            self.whole_files_only(self.target)
            self.fault("none")
        self.complete(4)

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

    def test_two_at_once_do_not_meet(self):
        self.pictures(2, 400_000)
        self.fault("slow", 50)
        first = self.start("sync", self.target)
        time.sleep(0.5)
        second = self.kelva("sync", self.target)
        self.assertEqual(second.returncode, 4, second.stderr)
        first.communicate(timeout=60)
        self.fault("none")
        self.complete(2)

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
