"""Lists of a hundred thousand pictures: what they cost in memory, and that they are whole."""

import json
import os
import subprocess
import time

import bench_of_cameras
from bench_of_cameras import Bus
from pieces_test import peak_of

FOLDERS = 10
IN_A_FOLDER = 9999
COUNT = FOLDERS * IN_A_FOLDER


class LongListTest(Bus):
    def setUp(self):
        super().setUp()
        for folder in range(FOLDERS):
            path = os.path.join(self.drive, "DCIM", f"{100 + folder}ABCDE")
            os.makedirs(path)
            for number in range(1, IN_A_FOLDER + 1):
                with open(os.path.join(path, f"IMG_{number:04d}.JPG"), "wb"):
                    pass
        self.unplug()
        self.vcam("plug", "--serial", "K1", "--storage", self.drive, "--no-keys")

    def listed(self, *words):
        """What a command prints, and the most memory that it had, in MB."""
        path = self.folder + "/out"
        most = 0
        with open(path, "wb") as out:
            run = subprocess.Popen(self.command(*words), stdout=out)
        while run.poll() is None:
            most = max(most, peak_of(run.pid))
            time.sleep(0.005)
        self.assertEqual(run.returncode, 0)
        with open(path, encoding="utf-8") as out:
            text = out.read()
        print(f"{' '.join(words)}: {most / 1000:.0f} MB, {len(text) / 1e6:.1f} MB printed", flush=True)
        self.assertGreater(most, 1000, "nothing was measured")
        return text, most / 1000

    def test_a_list_takes_little_memory_and_is_whole(self):
        for words, member, expected, most in ((["pictures"], "pictures", COUNT, 48),
                                              (["tree"], "entries", COUNT + FOLDERS + 1, 32),
                                              (["ls", "I:/DCIM/100ABCDE"], "entries", IN_A_FOLDER, 16)):
            text, peak = self.listed(*words, "--json")
            document = json.loads(text)
            self.assertTrue(document["ok"])
            self.assertEqual(len(document[member]), expected)
            self.assertLess(peak, most, words)
        text, peak = self.listed("pictures")
        self.assertEqual(len(text.splitlines()), COUNT + 2)
        self.assertLess(peak, 48)


if __name__ == "__main__":
    bench_of_cameras.main()
