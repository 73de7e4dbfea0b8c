"""The camera as a folder: what programs see, and how a mount begins and ends."""

import concurrent.futures
import datetime
import errno
import filecmp
import json
import os
import pathlib
import random
import shutil
import signal
import subprocess
import time

import mounted
import bench_of_cameras
import tiny_jpeg
from mounted import MountedBus

PIECE = 65_536


class Reads(MountedBus):
    def same_tree(self, one, other):
        compared = filecmp.dircmp(one, other)
        self.assertEqual((compared.left_only, compared.right_only, compared.funny_files), ([], [], []))
        _, different, errors = filecmp.cmpfiles(one, other, compared.common_files, shallow=False)
        self.assertEqual((different, errors), ([], []))
        for name in compared.common_dirs:
            self.same_tree(f"{one}/{name}", f"{other}/{name}")

    def test_programs_copy_the_whole_card(self):
        self.pictures(7, 300_001)
        for size in (0, 1, PIECE - 1, PIECE, PIECE + 1, 2 * PIECE):
            self.put(f"SIZES/{size}.BIN", random.randbytes(size))
        self.mount()
        subprocess.run(["cp", "-a", self.point, self.folder + "/copy"], check=True)
        self.same_tree(self.folder + "/copy", self.drive)
        archive = subprocess.Popen(["tar", "-C", self.point, "-cf", "-", "."], stdout=subprocess.PIPE)
        os.mkdir(self.folder + "/tar")
        subprocess.run(["tar", "-C", self.folder + "/tar", "-xf", "-"], stdin=archive.stdout, check=True)
        archive.stdout.close()
        self.assertEqual(archive.wait(), 0)
        self.same_tree(self.folder + "/tar", self.drive)

    def test_rsync_copies_nothing_the_second_time(self):
        self.pictures(3, 100_000)
        rsync = ["rsync", "-a", "--stats", self.point + "/", self.folder + "/copy"]
        run = self.mount()
        self.assertIn("Number of regular files transferred: 3", subprocess.check_output(rsync, text=True))
        self.assertIn("Number of regular files transferred: 0", subprocess.check_output(rsync, text=True))
        self.same_tree(self.folder + "/copy", self.drive)
        self.unmount(run)

    def test_sixteen_readers_at_once_get_their_own_bytes(self):
        self.pictures(16, 1_500_000)
        run = self.mount()
        names = sorted(os.listdir(self.card))
        readers = [subprocess.Popen(["cmp", f"{self.files}/{name}", f"{self.card}/{name}"]) for name in names]
        self.assertEqual([reader.wait() for reader in readers], [0] * 16)
        self.unmount(run)

    def test_any_part_is_what_the_file_has_there(self):
        content = random.randbytes(3_000_017)
        self.put("DCIM/100ABCDE/MOV_0001.MP4", content)
        self.mount()
        with open(self.files + "/MOV_0001.MP4", "rb", buffering=0) as file:
            for _ in range(200):
                offset = random.randrange(len(content) + 10)
                size = random.choice((1, 512, 4096, PIECE, 200_000))
                self.assertEqual(os.pread(file.fileno(), size, offset), content[offset:offset + size])

    def cost_of(self, file, offset, size):
        """How many commands a read takes that goes past the kernel's own memory."""
        os.posix_fadvise(file.fileno(), 0, 0, os.POSIX_FADV_RANDOM)
        os.posix_fadvise(file.fileno(), 0, 0, os.POSIX_FADV_DONTNEED)
        time.sleep(0.1)  # the camera is given up, and with it what was selected
        before = self.commands()
        data = os.pread(file.fileno(), size, offset)
        return self.commands() - before, data

    def test_a_part_costs_one_selection_and_one_read(self):
        content = random.randbytes(40 * PIECE + 5)
        self.put("DCIM/100ABCDE/MOV_0001.MP4", content)
        self.mount()
        with open(self.files + "/MOV_0001.MP4", "rb", buffering=0) as file:
            self.cost_of(file, 30 * PIECE, 1)  # with the proof that this camera honours offsets
            for place in (3, 20, 11):
                commands, data = self.cost_of(file, place * PIECE, PIECE)
                self.assertEqual(data, content[place * PIECE:(place + 1) * PIECE])
                self.assertLessEqual(commands, 3)  # a selection is two commands: the path, and the size
                commands, data = self.cost_of(file, (place + 3) * PIECE + 4096, PIECE)
                self.assertEqual(data, content[(place + 3) * PIECE + 4096:(place + 4) * PIECE + 4096])
                self.assertLessEqual(commands, 4)
            time.sleep(1.1)  # the file's attributes are not believed any longer
            commands, data = self.cost_of(file, 40 * PIECE, PIECE)
            self.assertEqual((data, commands <= 3), (content[40 * PIECE:], True))

    def test_hostile_names_are_shown_as_sync_writes_them(self):
        names = {"a%b": "a%25b", ".hidden": "%2Ehidden", " blank": "%20blank", "Gr\u00fc\u00dfe": "Gr\u00fc\u00dfe",
                 b"\xff\xfe".decode("utf-8", "surrogateescape"): "%FF%FE", "'quoted' $(word)": "'quoted' $(word)"}
        for name in (*names, "x" * 230):
            self.put(name, b"content of " + os.fsencode(name))
        self.mount()
        shown = os.listdir(self.point)
        self.assertEqual(len(shown), len(names) + 1)
        self.assertLessEqual(set(names.values()), set(shown))
        for name, written in names.items():
            with open(f"{self.point}/{written}", "rb") as file:
                self.assertEqual(file.read(), b"content of " + os.fsencode(name))

    def test_another_case_of_letters_is_the_same_file(self):
        self.put("DCIM/100ABCDE/IMG_0001.JPG", b"picture")
        self.mount()
        with open(self.point + "/dcim/100abcde/img_0001.jpg", "rb") as file:
            self.assertEqual(file.read(), b"picture")

    def test_a_large_folder_is_listed_at_once(self):
        os.mkdir(self.drive + "/MANY")
        for number in range(5_000):
            with open(f"{self.drive}/MANY/F{number:05d}.TXT", "wb"):
                pass
        self.mount()
        before = self.commands()
        began = time.monotonic()
        with os.scandir(self.point + "/MANY") as entries:
            self.assertEqual(sum(entry.stat().st_size == 0 for entry in entries), 5_000)
        self.assertLess(time.monotonic() - began, 10)
        self.assertLess(self.commands() - before, 400)

    def test_times_are_those_of_the_catalogue(self):
        self.put("DCIM/100ABCDE/IMG_0001.JPG", b"\xff\xd8 picture")
        self.put("DCIM/100ABCDE/IMG_0001.RAW", b"raw")
        taken = json.loads(self.kelva("pictures", "--json").stdout)["pictures"][0]["time"]
        self.mount()
        for name in ("IMG_0001.JPG", "IMG_0001.RAW"):
            changed = os.stat(f"{self.files}/{name}").st_mtime
            self.assertEqual(time.strftime("%Y-%m-%d %H:%M:%S", time.localtime(changed)), taken)

    def test_what_changes_on_the_camera_is_seen(self):
        self.put("A.TXT", b"one")
        self.mount()
        self.assertEqual(os.listdir(self.point), ["A.TXT"])
        with open(self.point + "/A.TXT", "rb") as file:
            self.assertEqual(file.read(), b"one")
        self.put("B.TXT", b"two")
        self.put("A.TXT", b"longer")
        time.sleep(1.1)
        self.assertEqual(sorted(os.listdir(self.point)), ["A.TXT", "B.TXT"])
        with open(self.point + "/A.TXT", "rb") as file:
            self.assertEqual(file.read(), b"longer")

    def test_nothing_can_be_changed(self):
        self.put("A.TXT", b"one")
        self.mount()
        for change in (lambda: os.remove(self.point + "/A.TXT"), lambda: open(self.point + "/B.TXT", "wb"),
                       lambda: os.mkdir(self.point + "/D"), lambda: os.truncate(self.point + "/A.TXT", 0)):
            with self.assertRaises(OSError) as raised:
                change()
            self.assertEqual(raised.exception.errno, errno.EROFS)

    def test_other_commands_use_the_camera_meanwhile(self):
        self.put("DCIM/100ABCDE/MOV_0001.MP4", random.randbytes(60_000_000))
        self.mount()
        with concurrent.futures.ThreadPoolExecutor() as pool:
            copy = pool.submit(subprocess.run, ["cp", "-r", self.point, self.folder + "/copy"], check=True)
            for _ in range(3):
                run = self.kelva("info")
                self.assertEqual(run.returncode, 0, run.stderr)
            copy.result()
        self.same_tree(self.folder + "/copy", self.drive)
        time.sleep(0.1)
        self.assertFalse(self.status()["K1"]["holder"], "an idle mount holds the camera")

    def test_a_read_waits_for_a_camera_that_is_held_and_then_fails(self):
        self.put("A.TXT", b"one")
        self.mount("--wait-busy", "0.3")
        time.sleep(0.1)
        self.fault("hang", 1)
        holder = self.start("battery")
        self.wait_until_held("K1")
        with self.assertRaises(OSError) as raised:
            with open(self.point + "/A.TXT", "rb") as file:
                file.read()
        self.assertEqual(raised.exception.errno, errno.EBUSY)
        holder.send_signal(signal.SIGINT)
        holder.communicate(timeout=60)
        with open(self.point + "/A.TXT", "rb") as file:
            self.assertEqual(file.read(), b"one")


class Dates(MountedBus):
    """A picture with a date in its JPG, one without, which the catalogue dates, and a file that nothing dates."""

    FOUR = tuple("IMG_0001." + extension for extension in ("JPG", "RAW", "TXT", "128"))

    def setUp(self):
        super().setUp()
        self.put("DCIM/100ABCDE/IMG_0001.JPG", tiny_jpeg.jpeg([[(200, 10, 10)]], tiny_jpeg.exif(1, "2024:02:29 23:59:58")))
        for name in (*self.FOUR[1:], "IMG_0002.JPG", "IMG_0002.RAW"):
            self.put("DCIM/100ABCDE/" + name, name.encode())
        seconds = datetime.datetime(2020, 1, 2, 3, 4, 5).timestamp()
        for name in os.listdir(self.card):
            os.utime(f"{self.card}/{name}", (seconds, seconds))
        self.put("NOTE.TXT", b"note")

    def times(self, folder):
        return {name: datetime.datetime.fromtimestamp(os.stat(f"{folder}/{name}").st_mtime)
                for name in sorted(os.listdir(folder)) if not name.startswith(".")}

    def sync(self):
        run = self.kelva("sync", self.folder + "/out")
        self.assertEqual(run.returncode, 0, run.stderr)
        return self.times(self.folder + "/out/100ABCDE")

    def test_files_have_the_times_that_sync_gives_them(self):
        self.mount()
        times = self.times(self.files)
        self.assertEqual(times, self.sync())
        self.assertEqual({times[name] for name in self.FOUR}, {datetime.datetime(2024, 2, 29, 23, 59, 58)})
        self.assertEqual(self.times(self.point)["NOTE.TXT"], datetime.datetime(1980, 1, 1))

    def test_files_have_them_when_the_catalogue_has_no_dates(self):
        self.replug("--opaque", "1")
        self.mount()
        times, synced = self.times(self.files), self.sync()
        for name in self.FOUR:
            self.assertEqual(times[name], datetime.datetime(2024, 2, 29, 23, 59, 58))
            self.assertEqual(times[name], synced[name])
        self.assertEqual(times["IMG_0002.JPG"], datetime.datetime(1980, 1, 1))

    def test_rsync_copies_nothing_from_another_mount(self):
        self.replug("--opaque", "1")
        for count in (7, 0):
            run = self.mount()
            said = subprocess.check_output(["rsync", "-a", "--stats", self.point + "/", self.folder + "/copy"], text=True)
            self.assertIn(f"Number of regular files transferred: {count}", said)
            self.unmount(run)

    def costs_of_a_date(self, name):
        """Commands for the names of a folder, for the date of a picture, and for reading its start and its other dates."""
        path, counts = f"{self.files}/{name}", []
        time.sleep(1.1)
        os.listdir(self.files)
        for use in (lambda: os.listdir(self.files), lambda: os.stat(path), lambda: pathlib.Path(path).read_bytes(),
                    lambda: [os.stat(path[:-3] + extension) for extension in ("RAW", "TXT", "128")]):
            before = self.commands()
            use()
            counts.append(self.commands() - before)
        return counts

    def test_a_date_costs_one_read_that_serves_the_next_reader_too(self):
        self.pictures(8, 60_000)
        names = sorted(name for name in os.listdir(self.card) if name > "IMG_0003")
        for name in names:
            for extension in ("RAW", "TXT", "128"):
                self.put("DCIM/100ABCDE/" + name[:-3] + extension, b"of a picture")
        self.mount()
        # Again on a machine so slow that the folder is listed once more meanwhile.
        self.assertTrue(any(self.costs_of_a_date(name) == [0, 3, 0, 0] for name in names))

    def test_without_the_decoder_the_catalogue_dates_and_it_is_said(self):
        alone = self.folder + "/alone"
        os.mkdir(alone)
        program = shutil.copy(bench_of_cameras.BIN + "/kelva-mount", alone)
        run = subprocess.Popen([program, "--virtual", self.socket, "--foreground", "--json", self.point],
                               stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        self.addCleanup(self.end, run)
        run.stdout.readline()
        self.assertEqual(set(self.times(self.files).values()), {datetime.datetime(2020, 1, 2, 3, 4, 5)})
        self.assertEqual(self.end(run)[1].count("Dates are those of the catalogue"), 1)


class Ends(MountedBus):
    def test_it_returns_when_the_mount_stands_and_the_folder_goes_with_it(self):
        self.put("A.TXT", b"one")
        run = self.kelva("mount", self.point)
        self.assertEqual((run.returncode, run.stdout, run.stderr), (0, f"Mounted camera K1 on {self.point}\n", ""))
        self.assertEqual(os.listdir(self.point), ["A.TXT"])
        again = self.kelva("mount", self.folder + "/second")
        self.assertEqual(again.returncode, 1)
        self.assertIn(f"Camera K1 is mounted on {self.point} already", again.stderr)
        subprocess.run(["fusermount3", "-u", self.point], check=True)
        until = time.monotonic() + 5
        while os.path.exists(self.point):
            self.assertLess(time.monotonic(), until)
            time.sleep(0.01)

    def test_all_mounts_each_camera_once_in_the_home_folder(self):
        self.plug("K2")
        home = dict(os.environ, HOME=self.folder)
        for was in (False, True):
            run = self.kelva("mount", "--all", "--json", env=home)
            self.assertEqual(run.returncode, 0, run.stderr)
            *events, result = map(json.loads, run.stdout.splitlines())
            self.assertEqual(result["mounts"], 2)
            self.assertEqual({event["serial"]: (event["path"], event["was_mounted"]) for event in events},
                             {serial: (f"{self.folder}/Kelva {serial}", was) for serial in ("K1", "K2")})
        self.assertEqual(len(mounted.mounts_below(self.folder)), 2)

    def test_a_folder_that_is_not_empty_is_refused(self):
        run = self.kelva("mount", self.drive + "/..")
        self.assertEqual(run.returncode, 1)
        self.assertEqual(run.stderr, f"kelva: There is something in {self.folder}; name an empty folder, or one that is "
                                     "missing.\n")

    def test_ctrl_c_ends_it(self):
        for number in (signal.SIGINT, signal.SIGTERM):
            run = self.mount()
            run.send_signal(number)
            out, messages = run.communicate(timeout=60)
            self.assertEqual(run.returncode, 130, messages)
            self.assertEqual(json.loads(out.splitlines()[0])["why"], "stopped")
            self.assertFalse(os.path.exists(self.point))

    def test_fusermount_ends_it(self):
        event, result = map(json.loads, self.unmount(self.mount()).splitlines())
        self.assertEqual((event["event"], event["why"], result["exit"]), ("unmounted", "unmounted", 0))

    def test_the_doctor_knows_it(self):
        self.mount()
        run = subprocess.run([bench_of_cameras.BIN + "/kelva", "doctor", "--json"], capture_output=True, text=True)
        mounts = [finding for finding in json.loads(run.stdout)["findings"] if self.point in finding["sentence"]]
        self.assertEqual([(finding["condition"], finding["serial"], finding["harmless"]) for finding in mounts],
                         [("mounted", "K1", True)])

    def test_the_doctor_does_not_wait_for_a_mount_that_is_stopped(self):
        run = self.mount()
        run.send_signal(signal.SIGSTOP)
        self.addCleanup(run.send_signal, signal.SIGCONT)
        # The search for leaks would wait for the thread that looks at the mount.
        doctor = subprocess.run([bench_of_cameras.BIN + "/kelva", "doctor"], capture_output=True, text=True, timeout=30,
                                env=dict(os.environ, ASAN_OPTIONS="detect_leaks=0"))
        self.assertIn(f"is mounted on {self.point}.", doctor.stdout)

    def test_a_killed_program_leaves_no_mount(self):
        self.put("A.TXT", b"one")
        run = self.mount()
        file = os.open(self.point + "/A.TXT", os.O_RDONLY)
        run.kill()
        self.gone_within(1)
        with self.assertRaises(OSError):
            os.close(file)  # nobody answers any more
        run.communicate(timeout=60)
        time.sleep(0.1)
        self.assertFalse(os.path.exists(self.point))

    def test_an_unplug_in_the_middle_of_a_copy_is_enodev_and_the_end(self):
        self.put("DCIM/100ABCDE/MOV_0001.MP4", random.randbytes(50_000_000))
        run = self.mount()
        copy = subprocess.Popen(["cp", self.files + "/MOV_0001.MP4", self.folder + "/copy"], stderr=subprocess.PIPE,
                                env=dict(os.environ, LC_ALL="C"), text=True)
        while not os.path.exists(self.folder + "/copy") or os.path.getsize(self.folder + "/copy") < 2_000_000:
            time.sleep(0.001)
        began = time.monotonic()
        self.unplug()
        messages = copy.communicate(timeout=60)[1]
        self.assertIn("No such device", messages)
        self.gone_within(1)
        self.assertLess(time.monotonic() - began, 1.5)
        out, messages = run.communicate(timeout=60)
        self.assertEqual(run.returncode, 5, messages)
        self.assertEqual(json.loads(out.splitlines()[0])["why"], "unplugged")
        self.assertFalse(os.path.exists(self.point))

    def test_an_unplug_answers_a_reader_whose_camera_hangs(self):
        self.put("A.TXT", b"one")
        self.mount()
        time.sleep(0.1)
        self.fault("hang", 1)
        reader = subprocess.Popen(["cat", self.point + "/A.TXT"], stderr=subprocess.PIPE, text=True,
                                  env=dict(os.environ, LC_ALL="C"))
        self.wait_until_held("K1")
        began = time.monotonic()
        self.unplug()
        self.assertIn("No such device", reader.communicate(timeout=60)[1])
        self.assertLess(time.monotonic() - began, 1)
        self.gone_within(1)

    def test_who_has_a_file_open_gets_enodev_after_the_unplug_too(self):
        self.put("A.BIN", random.randbytes(5_000_000))
        self.mount()
        with open(self.point + "/A.BIN", "rb", buffering=0) as file:
            file.read(10)
            self.unplug()
            self.gone_within(1)
            with self.assertRaises(OSError) as raised:
                os.pread(file.fileno(), 10, 4_000_000)
            self.assertEqual(raised.exception.errno, errno.ENODEV)

    def test_a_lazy_unmount_ends_it_while_the_camera_hangs(self):
        self.put("A.TXT", b"one")
        for kills in (True, False):
            run = self.mount()
            time.sleep(0.1)
            self.fault("hang", 1)
            reader = subprocess.Popen(["cat", self.point + "/A.TXT"], stderr=subprocess.PIPE, text=True,
                                      env=dict(os.environ, LC_ALL="C"))
            self.wait_until_held("K1")
            subprocess.run(["fusermount3", "-uz", self.point], check=True)
            began = time.monotonic()
            if kills:
                reader.kill()
            run.communicate(timeout=60)
            self.assertLess(time.monotonic() - began, 1.2)
            said = reader.communicate(timeout=60)[1]
            if not kills:
                self.assertIn("No such device", said)
            self.fault("none")
            self.assertFalse(os.path.exists(self.point))
            self.replug()

    def test_a_lazy_unmount_lets_a_copy_end(self):
        self.put("A.BIN", random.randbytes(3_000_000))
        run = self.mount()
        with open(self.point + "/A.BIN", "rb", buffering=0) as file:
            subprocess.run(["fusermount3", "-uz", self.point], check=True)
            time.sleep(0.7)
            self.assertEqual(file.read(), self.read("A.BIN"))
        run.communicate(timeout=60)
        self.assertEqual(run.returncode, 0)

    def test_a_killed_reader_ends_while_the_camera_hangs(self):
        self.put("A.TXT", b"one")
        self.mount()
        time.sleep(0.1)
        self.fault("hang", 1)
        reader = subprocess.Popen(["cat", self.point + "/A.TXT"])
        self.wait_until_held("K1")
        reader.kill()
        self.assertEqual(reader.wait(timeout=1), -signal.SIGKILL)


if __name__ == "__main__":
    mounted.main()
