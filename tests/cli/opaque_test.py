"""Every command on cameras whose clock, battery, information record and catalogue fields 5 to 9 are random bytes: all of it works, and no
meaning is invented."""

import datetime
import json
import os
import random
import re
import struct

import bench_of_cameras
import tiny_jpeg
from bench_of_cameras import Bus, digest

SEEDS = (1, 2, 3)


class OpaqueTest(Bus):
    def plug(self, serial="K1", drive=None):
        self.vcam("plug", "--serial", serial, "--storage", drive or self.drive, "--opaque", str(self.opaque))

    def each_seed(self):
        """A camera K1 for each seed, with two pictures, a crash log and a calibration file."""
        self.unplug()
        for self.opaque in SEEDS:
            for name, content in (("DCIM/100ABCDE/IMG_0001.JPG", self.picture), ("DCIM/100ABCDE/IMG_0001.RAW", self.raw),
                                  ("DCIM/101ABCDE/IMG_0001.JPG", self.other), ("CRASH/A.LOG", b"crash"),
                                  ("CALIB/GAIN", b"gain"), ("NOTE.TXT", b"note")):
                self.put(name, content)
            self.out = os.path.join(self.folder, f"out{self.opaque}")
            os.mkdir(self.out)
            self.plug()
            yield
            self.unplug()

    opaque = 0

    def setUp(self):
        super().setUp()
        self.picture = tiny_jpeg.jpeg([[(200, 10, 10)]]) + random.randbytes(100_000)
        self.other = tiny_jpeg.jpeg([[(10, 10, 200)]])
        self.raw = random.randbytes(1000)

    def works(self, *words, status=0, **options):
        run = self.kelva(*words, **options)
        self.assertEqual(run.returncode, status, (f"seed {self.opaque}", words, run.stdout, run.stderr))
        return run

    def document(self, *words, status=0):
        return json.loads(self.works(*words, "--json", status=status).stdout.splitlines()[-1])

    def content(self, *path):
        with open(os.path.join(self.out, *path), "rb") as file:
            return file.read()

    def test_clock_battery_and_information_are_shown_as_bytes(self):
        shown = set()
        for _ in self.each_seed():
            time = self.document("time")
            self.assertIsNone(time["time"])
            self.assertNotIn("seconds_ahead", time)
            self.assertEqual(len(time["record"]), 28)
            self.assertEqual(self.works("time").stdout, time["record"] + "\n")
            battery = self.document("battery")
            level = struct.unpack("<f", bytes.fromhex(battery["bits"][2:])[::-1])[0]
            readable = level == 0 or 0.001 <= level <= 1e6
            self.assertEqual(battery["level"] is not None, readable)
            self.assertEqual(self.works("battery").stdout.startswith("0x"), not readable)
            information = self.document("info")
            self.assertEqual(information["texts"], [])
            self.assertEqual(len(information["record"]), 1280)
            said = self.works("info").stdout
            self.assertEqual("".join(re.findall(r"^[0-9a-f]{3}  ([0-9a-f]{32})$", said, re.M)), information["record"])
            shown.add((time["record"], battery["bits"], information["record"]))
        self.assertEqual(len(shown), len(SEEDS))

    def test_a_clock_that_is_not_understood_is_not_set(self):
        for _ in self.each_seed():
            before = self.document("time")["record"]
            trace = self.out + "/trace"
            for words in (["--set", "now"], ["--set", "2026-01-01T00:00:00", "--zone", "local"]):
                run = self.works("time", *words, "--trace", trace, status=1)
                self.assertIn("so it was not set", run.stderr)
            self.assertNotIn(b'"set time"', self.content("trace"))
            self.assertEqual(self.document("time")["record"], before)

    def test_pictures_have_names_and_no_date(self):
        for _ in self.each_seed():
            pictures = self.document("pictures")["pictures"]
            self.assertEqual([(picture["folder"], picture["name"], picture["types"]) for picture in pictures],
                             [("100ABCDE", "IMG_0001", ["JPG", "RAW"]), ("101ABCDE", "IMG_0001", ["JPG"])])
            self.assertEqual({(picture["key"], picture["time"]) for picture in pictures}, {(None, None)})
            self.assertEqual(self.works("pictures").stdout.count("no date\n"), 2)

    def test_sync_fetches_verifies_by_a_second_read_and_deletes(self):
        for _ in self.each_seed():
            files = {"100ABCDE/IMG_0001.JPG": self.picture, "100ABCDE/IMG_0001.RAW": self.raw,
                     "101ABCDE/IMG_0001.JPG": self.other}
            self.works("sync", self.out, "--dry-run")
            self.works("sync", self.out)
            self.assertEqual(self.document("sync", self.out)["stored"], 0, "a second run fetches nothing")
            for name, content in files.items():
                self.assertEqual(self.content(name), content)
            again = self.out + "/again"
            trace = self.out + "/trace"
            self.works("sync", again, "--delete-after-verify", "--trace", trace)
            for name, content in files.items():
                self.assertEqual(self.content("again", name), content)
                self.assertFalse(os.path.exists(os.path.join(self.drive, "DCIM", name)))
            lines = [json.loads(line) for line in self.content("trace").splitlines()]
            selected = [line for line in lines if line.get("command") == "select file"]
            self.assertEqual(len(selected), 2 * len(files))
            self.assertEqual(self.document("pictures")["pictures"], [])

    def test_names_and_times_come_from_exif_for_all_files_of_a_picture(self):
        self.picture = tiny_jpeg.jpeg([[(200, 10, 10)]], tiny_jpeg.exif(1, "2024:02:29 23:59:58")) + random.randbytes(100_000)
        self.other = tiny_jpeg.jpeg([[(10, 10, 200)]], tiny_jpeg.exif(6, "2025:07:01 06:05:04"))
        names = ["2024/2024-02-29_235958_IMG_0001.JPG", "2024/2024-02-29_235958_IMG_0001.RAW",
                 "2025/2025-07-01_060504_IMG_0001.JPG"]
        words = ("--pattern", "{year}/{date}_{time}_{stem}.{ext}")
        for _ in self.each_seed():
            out = self.out + "/dated"
            preview = self.works("sync", out, *words, "--dry-run")
            self.assertEqual([line.split()[2] for line in preview.stdout.splitlines() if "->" in line], names)
            self.assertIn("Read up to 64 KiB of each of 2 pictures for their dates.", preview.stderr)
            self.assertEqual(self.document("sync", out, *words)["undated"], 0)
            for name, time in zip(names, ("2024-02-29 23:59:58", "2024-02-29 23:59:58", "2025-07-01 06:05:04")):
                changed = datetime.datetime.fromtimestamp(os.path.getmtime(os.path.join(out, name)))
                self.assertEqual(str(changed), time)

    def test_a_read_that_differs_is_not_stored_and_not_deleted(self):
        for _ in self.each_seed():
            self.fault("changing", 5)
            self.assertIn(self.kelva("sync", self.out, "--delete-after-verify").returncode, (1, 6))
            self.fault("none")
            self.assertTrue(os.path.exists(os.path.join(self.drive, "DCIM/100ABCDE/IMG_0001.JPG")))

    def test_upgrade_does_not_name_a_firmware(self):
        for _ in self.each_seed():
            image = self.out + "/image"
            with open(image, "wb") as file:
                file.write(b"\1firmware")
            run = self.works("upgrade", "--yes", image)
            self.assertIn("firmware now unknown; battery level ", run.stderr)
            self.assertIn("The camera is back; it does not say which firmware it has.", run.stderr)
            self.assertEqual(run.stdout, "unknown\n")

    def test_report_holds_the_bytes(self):
        for _ in self.each_seed():
            archive = self.out + "/report.tar"
            self.works("report", archive)
            content = self.content("report.tar")
            self.assertIn(b"information, in hexadecimal:\n000  ", content)
            self.assertNotIn(b"\ninformation: ", content)

    def test_every_other_command_works(self):
        for _ in self.each_seed():
            key = digest(self.picture)
            image = self.out + "/image"
            with open(image, "wb") as file:
                file.write(b"bytes")
            for words in (["list"], ["watch", "--count", "1"], ["wait"], ["ready"], ["done-count"], ["capture"], ["ls"], ["tree"],
                          ["get", "I:/DCIM/100ABCDE/IMG_0001.JPG", "--into", self.out], ["batch", "get", key, "--into", self.out],
                          ["raw", key, "--into", self.out], ["put", image, "I:/PUT.BIN"], ["rm", "I:/PUT.BIN"],
                          ["wifi", "name", "den"], ["wifi", "auth", "WPA2"], ["wifi", "off"], ["control"],
                          ["control", "set", "3", "bright"], ["console"], ["monitor", "help"],
                          ["crash-logs", "--into", self.out], ["calibration", "--into", self.out],
                          ["pictures", "--sheet", self.out + "/sheet.html"], ["batch", "rm", key],
                          ["pictures", "rm", "101ABCDE/IMG_0001"], ["reboot", "--wait", "--timeout", "30"]):
                self.works(*words)
            self.works("wifi", "passphrase", input="nine characters\n")
            self.assertEqual(self.content("IMG_0001.JPG"), self.picture)
            self.assertNotRegex(self.content("sheet.html").decode(), r"\d{4}-\d\d-\d\d \d\d:\d\d")
            self.assertFalse(os.path.exists(self.drive + "/DCIM/101ABCDE/IMG_0001.JPG"))


if __name__ == "__main__":
    bench_of_cameras.main()
