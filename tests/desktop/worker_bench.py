"""A virtual bus, the tool, and the workers of the window."""

import hashlib
import os

import bench_of_cameras
import tiny_jpeg
from bench_of_cameras import Bus
from worker_process import Worker

RED = (200, 10, 10)
WITH_THUMBNAIL = tiny_jpeg.jpeg([[RED] * 30], tiny_jpeg.exif_with(tiny_jpeg.jpeg([[RED] * 20] * 15)))


def everything_in(folder):
    """Each file below a folder with its content, but for the list and the lock."""
    found = {}
    for path, _, names in os.walk(folder):
        for name in names:
            if not name.startswith(".kelva-manifest"):
                with open(os.path.join(path, name), "rb") as file:
                    found[os.path.relpath(os.path.join(path, name), folder)] = hashlib.sha1(file.read()).hexdigest()
    return found


class WorkerTest(Bus):
    def setUp(self):
        super().setUp()
        self.target = os.path.join(self.folder, "out")

    def worker(self, *words, **options):
        worker = Worker(bench_of_cameras.BIN + "/kelva-desktop-worker", self.socket, *words, **options)
        self.addCleanup(worker.end)
        return worker

    def camera(self, serial="K1"):
        return self.worker("camera", "--serial", serial)

    def run_import(self, *words, target=None, serial="K1"):
        worker = self.worker("import", "--serial", serial, target or self.target, *words)
        worker.wait()
        return worker

    def thumb(self, number, content=WITH_THUMBNAIL, folder="100ABCDE"):
        self.put(f"DCIM/{folder}/IMG_{number:04d}.JPG", content)

    def whole_so_far(self):
        """Every file under its final name is as it is on the camera."""
        for name in everything_in(self.target):
            if not os.path.basename(name).startswith(".kelva-"):
                with open(os.path.join(self.target, name), "rb") as mine:
                    with open(os.path.join(self.drive, "DCIM", name), "rb") as camera:
                        self.assertEqual(mine.read(), camera.read(), name)
