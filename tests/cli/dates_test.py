"""The dates of pictures in sync: from EXIF, else from the catalogue, else from the clock; in names and as the files' times."""

import datetime
import json
import os
import shutil
import subprocess

import bench_of_cameras
import tiny_jpeg
from bench_of_cameras import Bus

TAKEN = "2024-02-29 23:59:58"
SAID = "2020-01-02 03:04:05"


class DatesTest(Bus):
    """One picture with a date in its JPG, and one without, which the catalogue dates."""

    def setUp(self):
        super().setUp()
        self.target = os.path.join(self.folder, "out")
        self.put("DCIM/100ABCDE/IMG_0001.JPG", tiny_jpeg.jpeg([[(200, 10, 10)]], tiny_jpeg.exif(1, "2024:02:29 23:59:58")))
        for name in ("IMG_0001.RAW", "IMG_0001.TXT", "IMG_0001.128", "IMG_0002.JPG", "IMG_0002.RAW"):
            self.put("DCIM/100ABCDE/" + name, name.encode())
        seconds = datetime.datetime.fromisoformat(SAID).timestamp()
        for name in os.listdir(self.drive + "/DCIM/100ABCDE"):
            os.utime(os.path.join(self.drive, "DCIM/100ABCDE", name), (seconds, seconds))

    def times(self, folder="100ABCDE"):
        folder = os.path.join(self.target, folder)
        return {name: str(datetime.datetime.fromtimestamp(os.path.getmtime(os.path.join(folder, name))))
                for name in sorted(os.listdir(folder)) if not name.startswith(".")}

    def sync(self, *words, status=0):
        run = self.kelva("sync", self.target, "--json", *words)
        self.assertEqual(run.returncode, status, run.stderr)
        return json.loads(run.stdout.splitlines()[-1]), run.stderr

    EXPECTED = {"IMG_0001.128": TAKEN, "IMG_0001.JPG": TAKEN, "IMG_0001.RAW": TAKEN, "IMG_0001.TXT": TAKEN,
                "IMG_0002.JPG": SAID, "IMG_0002.RAW": SAID}

    def test_all_files_of_a_picture_have_the_time_of_its_jpg(self):
        self.assertEqual(self.sync()[0]["undated"], 0)
        self.assertEqual(self.times(), self.EXPECTED)

    def test_a_camera_that_is_only_read_forward_gives_the_same(self):
        self.unplug()
        self.vcam("plug", "--serial", "K1", "--storage", self.drive, "--forward-only")
        self.sync("--by", "day")
        self.assertEqual(self.times("2024/02/29"), {name: TAKEN for name in self.EXPECTED if "1." in name})
        self.assertEqual(self.times("2020/01/02"), {name: SAID for name in self.EXPECTED if "2." in name})

    def test_types_and_runs_make_no_difference(self):
        for types in ("raw", "txt,128", "jpg"):
            self.sync("--types", types)
        self.assertEqual(self.times(), self.EXPECTED)

    def test_without_the_decoder_there_is_one_note_and_the_catalogue_dates(self):
        alone = os.path.join(self.folder, "alone")
        os.mkdir(alone)
        tool = bench_of_cameras.copy_tool(alone)
        run = subprocess.run([tool, *self.command("sync", self.target)[1:]], capture_output=True, text=True)
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertIn("Dates are those of the catalogue", run.stderr)
        self.assertEqual(len(run.stderr.splitlines()), 1, run.stderr)
        self.assertEqual(set(self.times().values()), {SAID})

    def test_files_that_nothing_dates_are_counted(self):
        self.unplug()
        self.vcam("plug", "--serial", "K1", "--storage", self.drive, "--opaque", "1")
        result, _ = self.sync()
        self.assertEqual((result["stored"], result["undated"]), (6, 2))
        shutil.rmtree(self.target)
        self.assertIn("6 stored", self.kelva("sync", self.target).stdout)
        shutil.rmtree(self.target)
        self.assertIn("\n2 without a date have the time", self.kelva("sync", self.target).stdout)

    def test_a_date_in_the_pattern_is_looked_up_before_and_said(self):
        run = self.kelva("sync", self.target, "--by", "month", "--dry-run")
        names = [line.split()[2] for line in run.stdout.splitlines() if "->" in line]
        self.assertEqual(names, ["2024/02/IMG_0001." + end for end in ("JPG", "RAW", "TXT", "128")] +
                         ["2020/01/IMG_0002.JPG", "2020/01/IMG_0002.RAW"])
        self.assertIn("Read up to 64 KiB of each of 2 pictures for their dates.", run.stderr)
        self.assertFalse(os.path.exists(self.target))
        _, said = self.sync("--by", "month")
        self.assertIn('"phase":"dates"', said.replace(" ", ""))
        self.assertNotIn("dates", self.sync("--by", "month")[1], "nothing is new")


if __name__ == "__main__":
    bench_of_cameras.main()
