"""Cables that are pulled again and again in the middle of one large file."""

import hashlib
import json
import os
import random
import unittest

import bench_of_cameras
from bench_of_cameras import Bus

SIZE = int(os.environ.get("KELVA_CABLES_SIZE", 128 << 20))
# As many for each byte as 200 for a gigabyte.
PULLS = SIZE * 200 >> 30


class CablesTest(Bus):
    def setUp(self):
        super().setUp()
        self.target = os.path.join(self.folder, "target")
        self.trace = os.path.join(self.folder, "trace")
        self.sum = hashlib.sha1()

    def large(self, name):
        os.makedirs(self.drive + "/DCIM/100ABCDE", exist_ok=True)
        with open(self.drive + "/DCIM/100ABCDE/" + name, "wb") as file:
            for _ in range(0, SIZE, 1 << 20):
                piece = random.randbytes(1 << 20)
                self.sum.update(piece)
                file.write(piece)

    def sent(self):
        """Bytes that the camera sent of files in all runs."""
        with open(self.trace, encoding="utf-8") as lines:
            exchanges = [json.loads(line) for line in lines]
        return sum(exchange["moved"] for exchange in exchanges
                   if exchange["event"] == "exchange" and exchange["block"].startswith("c400") and "crc32" in exchange)

    def sync_until_done(self, *options):
        """The camera goes at random moments, about as often as PULLS says; each time sync is run again."""
        pulls = 0
        self.unplug()
        for _ in range(10 * PULLS):
            self.vcam("plug", "--serial", "K1", "--storage", self.drive, *options)
            if pulls < PULLS:
                self.fault("unplug", random.randrange(1, 2 * SIZE // PULLS))
            run = self.kelva("sync", "-q", "--trace", self.trace, self.target)
            if run.returncode == 0:
                return pulls
            self.assertEqual(run.returncode, 5, run.stderr)
            self.assertEqual([name for _, _, names in os.walk(self.target) for name in names if not name.startswith(".kelva-")], [])
            pulls += 1
        self.fail("no end")

    def is_whole(self, name):
        with open(self.target + "/100ABCDE/" + name, "rb") as file:
            self.assertEqual(hashlib.file_digest(file, "sha1").hexdigest() if hasattr(hashlib, "file_digest")
                             else hashlib.sha1(file.read()).hexdigest(), self.sum.hexdigest())
        self.assertEqual([name for _, _, names in os.walk(self.target) for name in names if name.endswith(".part")], [])

    def test_with_a_key_hardly_more_than_the_file_is_sent(self):
        self.large("IMG_0001.JPG")
        pulls = self.sync_until_done()
        self.is_whole("IMG_0001.JPG")
        self.assertGreater(pulls, PULLS // 4)
        self.assertLessEqual(self.sent(), SIZE * 1.03, f"{pulls} pulls")

    def test_without_a_key_it_is_the_file_twice(self):
        self.large("IMG_0001.RAW")
        pulls = self.sync_until_done("--no-keys")
        self.is_whole("IMG_0001.RAW")
        self.assertGreater(pulls, PULLS // 4)
        self.assertLessEqual(self.sent(), SIZE * 2.03, f"{pulls} pulls")


if __name__ == "__main__":
    bench_of_cameras.main()
