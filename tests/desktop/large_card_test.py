#!/usr/bin/python3
"""A card of 10,000 pictures of 8 MB in the window: how little is read of it, and how much memory that takes.

Usage: large_card_test.py FOLDER_OF_PROGRAMS
"""

import os
import pathlib
import re
import sys
import unittest

import bench_of_cameras
import screen
import tiny_jpeg

PICTURES, BYTES = 10000, 8 * 1000 * 1000
# Most that the window and its workers may hold, in kB.
MEMORY = 200 * 1000
# A picture's beginning; a card's worth of pieces may be read for the first screen.
PIECE, SHARE = 65536, 0.002


class LargeCard(bench_of_cameras.Bus):
    def plug(self, serial="K1", drive=None):
        pass  # the card is filled first

    def setUp(self):
        super().setUp()
        beginnings = []
        for day in range(1, 29):
            small = tiny_jpeg.jpeg([[(9 * day, 250 - 8 * day, 90)] * 20] * 15)
            beginnings.append(tiny_jpeg.jpeg([[(1, 2, 3)]], tiny_jpeg.exif_with(small, time=f"2026:03:{day:02d} 15:09:26")))
        for number in range(PICTURES):
            folder = pathlib.Path(self.drive, f"DCIM/{100 + number // 1000}ABCDE")
            folder.mkdir(parents=True, exist_ok=True)
            with open(folder / f"IMG_{number % 1000 + 1:04d}.JPG", "wb") as file:
                file.write(beginnings[number // 400])
                file.truncate(BYTES)
        self.vcam("plug", "--no-keys", "--serial", "K1", "--storage", self.drive)

    def memory(self, window):
        """What the window and its workers hold at most, in kB."""
        processes = [window.process.pid, *window.workers("watch"), *window.workers("camera")]
        self.assertEqual(len(processes), 3)
        lines = "".join(pathlib.Path(f"/proc/{process}/status").read_text() for process in processes).splitlines()
        return sum(int(line.split()[1]) for line in lines if line.startswith("VmHWM:"))

    def test_little_is_read_and_held(self):
        home = self.folder + "/home"
        os.mkdir(home)
        window = screen.Window(str(pathlib.Path(bench_of_cameras.BIN) / "kelva-desktop"), "--virtual", self.socket, HOME=home, XDG_CONFIG_HOME=home)
        self.addCleanup(lambda: window.process.poll() is None and window.close())
        window.wait("^IMG_1000, JPG.*15:09", "list item")
        window.wait("^Import 10,?000 new pictures")
        # Each command that carries a picture carries a piece at most.
        self.assertLess(self.status()["K1"]["commands"] * PIECE, SHARE * PICTURES * BYTES)
        pictures = window.wait("^Pictures on the camera", "list")
        window.click(pictures.get_child_at_index(1))  # below its headline
        window.key("End")
        from_end = lambda back: pictures.get_child_at_index(pictures.get_child_count() - 1 - back).get_name()
        screen.wait_for(lambda: re.match("^IMG_0001, .*15:09", from_end(0)), "the thumbnail of the last picture")
        for page in range(1, 60):
            window.key("Page_Up")
            screen.wait_for(lambda: "15:09" in from_end(10 * page) or "2026" in from_end(10 * page), f"the thumbnail {10 * page} before it")
        self.assertLess(self.memory(window), MEMORY)
        self.assertLess(window.close_by_its_button(), 1)


if __name__ == "__main__":
    screen.enter_session()
    bench_of_cameras.main()
