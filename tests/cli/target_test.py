"""sync into folders that are full, read-only, in use or not empty: nothing lost, nothing overwritten, nothing half."""

import json
import fcntl
import os
import random

import bench_of_cameras
import small_disk
from bench_of_cameras import Bus

PICTURES = 6
SIZE = 40_000
ROOM = 4 << 20


class TargetTest(Bus):
    def setUp(self):
        super().setUp()
        self.target = os.path.join(self.folder, "out")

    def small(self, options):
        disk = small_disk.SmallDisk(self.target, options)
        self.addCleanup(disk.unmount)
        return disk

    def sync(self, *words):
        return self.kelva("sync", *words, self.target)

    def fails(self, run, *codes):
        """The command ended with one of the codes, and said why in sentences of its own."""
        self.assertIn(run.returncode, codes, run.stderr)
        self.assertTrue(run.stderr)
        for line in run.stderr.splitlines():
            self.assertTrue(line.startswith("kelva: "), run.stderr)

    def complete(self, count):
        run = self.sync("--json")
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertEqual(self.whole_files_only(self.target), count)
        return json.loads(run.stdout.splitlines()[-1])

    def text(self, name):
        with open(os.path.join(self.target, name), encoding="utf-8") as file:
            return file.read()

    def write(self, name, text):
        path = os.path.join(self.target, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)

    def test_a_disk_that_fills_at_any_byte_holds_whole_files_and_is_completed_later(self):
        self.pictures(PICTURES, SIZE)
        enough = PICTURES * SIZE + (200 << 10)
        sizes = [4096, 8192, 16384, 65536, *(random.randrange(4096, enough, 4096) for _ in range(12))]
        for size in sizes:
            with self.subTest(size=size):
                disk = small_disk.SmallDisk(self.target, f"size={size}")
                try:
                    # Two commands for the catalogue, five to look for other files, then the listing for the sizes: it
                    # fails, so they are not known before the files are read.
                    self.fault("fail", 8)
                    run = self.sync()
                    if run.returncode != 0:
                        self.fails(run, 1, 6)
                        self.assertRegex(run.stderr, "No space left on device|disk is full")
                    self.whole_files_only(self.target)
                    disk.remount(f"size={ROOM}")
                    self.complete(PICTURES)
                finally:
                    disk.unmount()

    def test_a_disk_that_is_too_small_is_said_before_anything_is_read(self):
        self.pictures(PICTURES, SIZE)
        self.small("size=100k")
        run = self.sync("--json")
        document = json.loads(run.stdout.splitlines()[-1])
        self.assertEqual((run.returncode, document["stored"], document["left"]), (1, 0, PICTURES), run.stderr)
        self.assertRegex(document["error"], r"^Not enough room in .*: 6 files \(240\.0 kB\) to fetch, [0-9.]+ kB free; "
                                            r"make room there, or choose another folder\.$")
        self.assertFalse([name for name in os.listdir(self.target) if not name.startswith(".kelva-manifest")])

    def test_what_is_here_needs_no_room(self):
        self.pictures(PICTURES, SIZE)
        disk = self.small("size=4m")
        self.complete(PICTURES)
        disk.remount("size=300k")
        self.put("DCIM/100ABCDE/IMG_0009.JPG", random.randbytes(10))
        self.complete(PICTURES + 1)

    def test_the_part_of_a_cut_file_needs_no_room_in_a_dry_run_either(self):
        size = 6 << 20
        self.put("DCIM/100ABCDE/IMG_0001.JPG", random.randbytes(size))
        disk = self.small("size=12m")
        self.fault("unplug", 5 << 20)
        self.fails(self.sync(), 5)
        self.plug()
        disk.remount("size=8m")
        dry = self.sync("-n")
        self.assertEqual((dry.returncode, dry.stderr), (0, "kelva: Nothing was fetched.\n"))
        disk.remount("size=5500k")
        self.assertIn("Not enough room", self.sync("-n").stderr)
        disk.remount("size=8m")
        self.complete(1)

    def test_a_cut_file_goes_on_under_another_pattern(self):
        content = random.randbytes(6 << 20)
        self.put("DCIM/100ABCDE/IMG_0001.JPG", content)
        self.fault("unplug", 5 << 20)
        self.fails(self.sync(), 5)
        self.plug()
        run = self.sync("--json", "--pattern", "all/{name}")
        document = json.loads(run.stdout.splitlines()[-1])
        self.assertEqual((run.returncode, document["stored"], document["resumed"]), (0, 1, 1), run.stderr)
        with open(self.target + "/all/IMG_0001.JPG", "rb") as file:
            self.assertEqual(file.read(), content)
        self.assertEqual([name for _, _, names in os.walk(self.target) for name in names if name.endswith(".part")], [])

    def test_a_disk_without_room_for_names_is_full_too(self):
        self.pictures(PICTURES, SIZE)
        disk = self.small("size=4m,nr_inodes=7")
        self.fails(self.sync(), 1, 6)
        self.whole_files_only(self.target)
        disk.remount("nr_inodes=1000")
        self.complete(PICTURES)

    def test_get_leaves_nothing_on_a_full_disk(self):
        self.put("A.BIN", random.randbytes(100_000))
        self.small("size=16k")
        self.fails(self.kelva("get", "I:/A.BIN", "--into", self.target), 1)
        self.assertEqual(os.listdir(self.target), [])

    def test_get_of_a_folder_says_the_same_each_time_a_disk_is_full(self):
        self.pictures(PICTURES, SIZE)
        self.small("size=100k")
        get = ("get", "-r", "DCIM", "--into", self.target)
        run = self.kelva(*get)
        self.fails(run, 1)
        self.assertEqual(run.stdout, "2 fetched (80.0 kB), 1 failed, 4 left\n")
        again = self.kelva(*get, "--json")
        self.assertEqual(again.returncode, 1, again.stderr)
        document = json.loads(again.stdout)
        self.assertEqual((document["fetched"], document["failed"], document["left"]), (0, 3, 6))
        self.assertIn("No space left on device", document["error"])
        self.assertEqual([file["reason"] for file in document["files"]], ["failed"] * 3)
        self.assertEqual(self.whole_files_only(os.path.join(self.target, "DCIM")), 2)

    def test_a_read_only_target_is_one_sentence_and_nothing_is_read(self):
        self.pictures(PICTURES, SIZE)
        disk = self.small("size=4m")
        disk.remount("ro")
        before = self.status()["K1"]["commands"]
        run = self.sync()
        self.fails(run, 1)
        self.assertEqual(len(run.stderr.splitlines()), 1, run.stderr)
        self.assertEqual(self.status()["K1"]["commands"], before)
        self.assertEqual(os.listdir(self.target), [])
        disk.remount("rw")
        self.complete(PICTURES)

    def test_a_target_that_turns_read_only_keeps_what_is_there(self):
        self.pictures(1, SIZE)
        disk = self.small("size=4m")
        self.complete(1)
        self.pictures(PICTURES, SIZE)
        disk.remount("ro")
        self.fails(self.sync(), 1)
        self.assertEqual(os.listdir(self.target + "/100ABCDE"), ["IMG_0001.JPG"])
        disk.remount("rw")
        self.assertEqual(self.sync().returncode, 0)

    def test_two_tools_with_two_cameras_on_one_target(self):
        self.pictures(2, 400_000)
        self.plug("K2")
        self.fault("slow", 100)
        first = self.start("sync", "-s", "K1", self.target)
        while not self.status()["K1"]["commands"] and first.poll() is None:
            pass  # the first command comes after the folder's lock
        second = self.sync("-s", "K2")
        self.fails(second, 4)
        self.assertIn("Another `kelva sync` is at work", second.stderr)
        first.communicate(timeout=60)
        self.assertEqual(first.returncode, 0)
        self.assertEqual(self.whole_files_only(self.target), 2)

    def test_a_reader_who_locks_the_target_keeps_nobody_out(self):
        self.pictures(1, 400)
        os.mkdir(self.target)
        reader = os.open(self.target, os.O_RDONLY)
        self.addCleanup(os.close, reader)
        fcntl.flock(reader, fcntl.LOCK_EX)
        self.complete(1)

    def test_two_tools_with_one_camera_on_two_targets(self):
        self.pictures(2, 400_000)
        self.fault("slow", 100)
        first = self.start("sync", self.target)
        self.wait_until_held("K1")
        second = self.kelva("sync", self.folder + "/other")
        self.assertEqual(second.returncode, 0, second.stderr)
        first.communicate(timeout=60)
        self.assertEqual(first.returncode, 0)
        for target in (self.target, self.folder + "/other"):
            self.assertEqual(self.whole_files_only(target), 2)

    def test_files_of_the_same_name_stay_and_the_new_ones_get_numbers(self):
        for folder in ("100ABCDE", "101ABCDE"):
            self.put(f"DCIM/{folder}/IMG_0001.JPG", folder.encode())
        self.write("100ABCDE/IMG_0001.JPG", "mine")
        self.write("100ABCDE/IMG_0001-2.JPG", "mine too")
        self.write("101ABCDE/IMG_0001.JPG", "101ABCDE")
        run = self.sync("--json")
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertEqual(json.loads(run.stdout.splitlines()[-1])["already_here"], 1)
        self.assertEqual(self.text("100ABCDE/IMG_0001.JPG"), "mine")
        self.assertEqual(self.text("100ABCDE/IMG_0001-2.JPG"), "mine too")
        self.assertEqual(self.text("100ABCDE/IMG_0001-3.JPG"), "100ABCDE")
        self.assertEqual(os.listdir(self.target + "/101ABCDE"), ["IMG_0001.JPG"])

    def test_links_are_never_followed_and_never_replaced(self):
        outside = os.path.join(self.folder, "outside")
        os.mkdir(outside)
        with open(outside + "/precious", "w", encoding="utf-8") as file:
            file.write("precious")
        links = {"IMG_0001.JPG": outside + "/precious", "IMG_0002.JPG": outside + "/dangling", "IMG_0003.JPG": outside,
                 "IMG_0004.JPG": "IMG_0004.JPG", "IMG_0005.JPG": "../../outside/dangling"}
        self.pictures(len(links), 1000)
        os.makedirs(self.target + "/100ABCDE")
        for name, aim in links.items():
            os.symlink(aim, f"{self.target}/100ABCDE/{name}")
        run = self.sync()
        self.assertEqual(run.returncode, 0, run.stderr)
        for name, aim in links.items():
            self.assertEqual(os.readlink(f"{self.target}/100ABCDE/{name}"), aim)
            beside = f"{self.target}/100ABCDE/{name[:-4]}-2.JPG"
            with open(beside, "rb") as mine, open(f"{self.drive}/DCIM/100ABCDE/{name}", "rb") as camera:
                self.assertEqual(mine.read(), camera.read(), name)
        self.assertEqual(os.listdir(outside), ["precious"])
        with open(outside + "/precious", encoding="utf-8") as file:
            self.assertEqual(file.read(), "precious")

    def test_a_link_in_place_of_a_folder_costs_its_pictures_and_no_others(self):
        for number, aim in enumerate((self.folder, "/nowhere", "102ABCDE"), 100):
            for picture in range(1, 4):
                self.put(f"DCIM/{number}ABCDE/IMG_000{picture}.JPG", b"one")
            os.makedirs(self.target, exist_ok=True)
            os.symlink(aim, f"{self.target}/{number}ABCDE")
        self.put("DCIM/200ABCDE/IMG_0001.JPG", b"two")
        before = sorted(os.listdir(self.folder))
        run = self.sync()
        self.fails(run, 6)
        self.assertEqual(run.stderr.count("is a symbolic link and is not followed"), 3, run.stderr)
        self.assertIn("9 failed", run.stderr + run.stdout)
        self.assertEqual(self.text("200ABCDE/IMG_0001.JPG"), "two")
        self.assertEqual(sorted(os.listdir(self.folder)), before)
        for number in (100, 101, 102):
            os.remove(f"{self.target}/{number}ABCDE")
        self.complete(10)

    def test_a_link_in_place_of_the_list_is_not_followed(self):
        self.pictures(1, 10)
        os.makedirs(self.target)
        os.symlink(self.folder + "/elsewhere", self.target + "/.kelva-manifest.sqlite")
        self.fails(self.sync(), 1)
        self.assertFalse(os.path.exists(self.folder + "/elsewhere"))

    def test_a_target_that_is_a_link_is_the_users_own_choice(self):
        self.pictures(2, 1000)
        os.mkdir(self.folder + "/real")
        os.symlink(self.folder + "/real", self.target)
        self.complete(2)
        self.assertEqual(len(os.listdir(self.folder + "/real/100ABCDE")), 2)

    def test_without_a_camera_nothing_is_made(self):
        self.unplug()
        self.fails(self.sync(), 3)
        self.assertFalse(os.path.exists(self.target))

    def test_a_file_that_was_renamed_or_deleted_here_is_not_fetched_again(self):
        self.pictures(3, 1000)
        self.complete(3)
        os.rename(self.target + "/100ABCDE/IMG_0001.JPG", self.target + "/beach.jpg")
        os.remove(self.target + "/100ABCDE/IMG_0002.JPG")
        run = self.sync("--json")
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertEqual(json.loads(run.stdout)["known"], 3)
        self.assertEqual(os.listdir(self.target + "/100ABCDE"), ["IMG_0003.JPG"])


if __name__ == "__main__":
    small_disk.need_own_mounts()
    bench_of_cameras.main()
