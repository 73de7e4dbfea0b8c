"""Thumbnails of large pictures cost the starts of their files: at most one byte in a hundred is read."""

import json
import os
import shutil

import bench_of_cameras
import tiny_jpeg
from bench_of_cameras import Bus

COUNT = 60
SIZE = 8 << 20


class StartsTest(Bus):
    def setUp(self):
        super().setUp()
        self.unplug()
        self.target = os.path.join(self.folder, "out")
        os.mkdir(self.target)
        thumbnail = tiny_jpeg.jpeg([[(200, 10, 10)] * 20] * 15)
        for number in range(1, COUNT + 1):
            name = f"DCIM/100ABCDE/IMG_{number:04d}.JPG"
            time = f"2024:02:29 {number // 60:02d}:{number % 60:02d}:58"
            self.put(name, tiny_jpeg.jpeg([[(200, 10, 10)] * 30], tiny_jpeg.exif_with(thumbnail, time=time)))
            os.truncate(os.path.join(self.drive, name), SIZE)  # the disk keeps nothing of the rest

    def read(self, *words):
        """How many bytes a command took from the camera."""
        trace = os.path.join(self.folder, "trace")
        run = self.kelva(*words, "--trace", trace)
        self.assertEqual(run.returncode, 0, run.stderr)
        with open(trace, encoding="ascii") as lines:
            exchanges = [json.loads(line) for line in lines]
        os.remove(trace)
        return sum(line["moved"] for line in exchanges if line.get("direction") == 2), run.stdout

    def each_camera(self):
        for options in ([], ["--forward-only"]):
            self.vcam("plug", "--serial", "K1", "--storage", self.drive, "--no-keys", *options)
            yield
            self.unplug()

    def test_a_sheet_reads_one_byte_in_a_hundred(self):
        for _ in self.each_camera():
            count, said = self.read("pictures", "--sheet", self.target + "/sheet.html", "--force", "--json")
            self.assertEqual(json.loads(said.splitlines()[-1])["drawn"], COUNT)
            self.assertLess(count, COUNT * SIZE // 100)
            self.assertGreater(count, COUNT * 1000)
            count, said = self.read("pictures", "--sheet", self.target + "/sheet.html", "--force", "--json")
            self.assertEqual(json.loads(said.splitlines()[-1])["kept"], COUNT)
            self.assertLess(count, COUNT * 300, "the catalogue and a listing")
            shutil.rmtree(os.environ["XDG_CACHE_HOME"])

    def test_thumbnails_read_one_byte_in_a_hundred(self):
        for _ in self.each_camera():
            count, said = self.read("thumb", "*", "-d", self.target, "--force", "--json")
            made = json.loads(said.splitlines()[-1])["pictures"]
            self.assertEqual([(one["width"], one["height"]) for one in made], [(160, 120)] * COUNT)
            self.assertLess(count, COUNT * SIZE // 100)

    def test_a_preview_with_dates_reads_one_byte_in_a_hundred(self):
        for _ in self.each_camera():
            count, said = self.read("sync", self.target, "--by", "day", "--dry-run")
            self.assertEqual(said.count("2024/02/29/IMG_"), COUNT)
            self.assertLess(count, COUNT * SIZE // 100)


if __name__ == "__main__":
    bench_of_cameras.main()
