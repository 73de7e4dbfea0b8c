"""A mounted camera that misbehaves: an error or the right bytes, and a mount that goes on or ends."""

import concurrent.futures
import errno
import os
import random
import subprocess
import time

import mounted
from mounted import MountedBus

FAULTS = ("fail", "short", "surplus1", "surplus2", "stall", "lie-size", "wrong-count", "wrong-offset", "unterminated-name",
          "endless", "changing")
# What a program may get for a camera that sends nonsense.
ERRORS = (errno.EIO, errno.ENOENT, errno.ETIMEDOUT, errno.ENODEV, errno.ENOTCONN, errno.ECONNABORTED, errno.EBUSY)


PIECE = 65_536


class Faults(MountedBus):
    def try_all(self, serial, folder, falsified):
        """Reads all there is; returns how many files came whole."""
        whole = 0
        for name in ("IMG_0001.JPG", "IMG_0002.JPG"):
            try:
                with open(f"{folder}/DCIM/100ABCDE/{name}", "rb") as file:
                    content = file.read()
            except OSError as error:
                self.assertIn(error.errno, ERRORS)
                continue
            with open(f"{self.folder}/{serial}/DCIM/100ABCDE/{name}", "rb") as file:
                expected = file.read()
            self.assertEqual(len(content), len(expected))
            for at in range(0, len(expected), PIECE):
                # A camera that falsifies the first bytes of its answers, or every NUL, does so to a file's, and nobody can know.
                skip = PIECE if serial == "UNTERMINATED-NAME" else 32
                skip = skip if falsified else 0
                self.assertEqual(content[at + skip:at + PIECE], expected[at + skip:at + PIECE], "a program got wrong bytes")
            whole += 1
        return whole

    def camera(self, serial):
        for number in (1, 2):
            path = f"{self.folder}/{serial}/DCIM/100ABCDE/IMG_{number:04d}.JPG"
            os.makedirs(os.path.dirname(path), exist_ok=True)
            with open(path, "wb") as file:
                file.write(random.randbytes(150_000))
        self.vcam("plug", "--serial", serial, "--storage", f"{self.folder}/{serial}")

    def try_fault(self, fault):
        serial, point = fault.upper(), f"{self.folder}/mount-{fault}"
        self.camera(serial)
        mount = ["mount", "-s", serial, point]
        self.assertEqual(self.kelva(*mount).returncode, 0)
        # A listing without an end is read up to its bound, which takes seconds.
        for at in range(1, 8) if fault != "endless" else (1, 4):
            self.fault(fault, at, serial=serial)
            self.try_all(serial, point, True)
            self.fault("none", serial=serial)
            if point not in mounted.mounts_below(self.folder):
                self.assertEqual(self.kelva(*mount).returncode, 0, "the mount ended, and cannot be made again")
            time.sleep(1.05)  # what was listed is not believed any longer
        time.sleep(1.1)  # nor is what was read
        self.assertEqual(self.try_all(serial, point, False), 2, fault)

    def test_each_fault_at_each_command_gives_an_error_or_the_right_bytes(self):
        with concurrent.futures.ThreadPoolExecutor(len(FAULTS)) as pool:
            for fault, done in [(fault, pool.submit(self.try_fault, fault)) for fault in FAULTS]:
                with self.subTest(fault=fault):
                    done.result()

    def test_an_unplug_after_any_number_of_bytes_is_the_end(self):
        self.pictures(2, 200_000)
        for count in (1, 70_000, 140_000, 300_000):
            run = self.mount()
            self.fault("unplug", count)
            began = time.monotonic()
            copy = subprocess.run(["cp", "-r", self.files, f"{self.folder}/copy{count}"], capture_output=True)
            self.assertLess(time.monotonic() - began, 2)
            self.assertNotEqual(copy.returncode, 0)
            self.gone_within(1)
            run.communicate(timeout=60)
            self.assertEqual(run.returncode, 5)
            for name in os.listdir(f"{self.folder}/copy{count}") if os.path.exists(f"{self.folder}/copy{count}") else ():
                with open(f"{self.folder}/copy{count}/{name}", "rb") as file:
                    copied = file.read()
                self.assertTrue(self.read("DCIM/100ABCDE/" + name).startswith(copied))
            self.plug()

    def test_all_mounts_the_others_when_one_camera_hangs(self):
        self.camera("K2")
        self.fault("hang", 1)
        home = dict(os.environ, HOME=self.folder)
        run = self.kelva("mount", "--all", "--wait-busy", "0", env=home)
        self.assertEqual(run.returncode, 6, run.stderr)
        self.assertIn("Camera K1 has not become a folder within 5 seconds", run.stderr)
        self.assertEqual(mounted.mounts_below(self.folder), [self.folder + "/Kelva K2"])

    def test_a_slow_camera_is_waited_for(self):
        self.camera("SLOW")
        self.assertEqual(self.kelva("mount", "-s", "SLOW", self.point).returncode, 0)
        self.fault("slow", 50, serial="SLOW")
        self.assertEqual(self.try_all("SLOW", self.point, False), 2)


class ForwardOnly(MountedBus):
    def test_every_part_is_served_and_the_mount_says_that_it_takes_long(self):
        content = random.randbytes(3_000_001)
        self.put("DCIM/100ABCDE/MOV_0001.MP4", content)
        self.replug("--forward-only")
        run = self.mount()
        with open(self.files + "/MOV_0001.MP4", "rb", buffering=0) as file:
            for _ in range(60):
                offset, size = random.randrange(len(content)), random.choice((1, 4096, 65_536, 200_000))
                self.assertEqual(os.pread(file.fileno(), size, offset), content[offset:offset + size])
        subprocess.run(["cmp", self.files + "/MOV_0001.MP4", self.card + "/MOV_0001.MP4"], check=True)
        messages = self.end(run)[1]
        self.assertEqual(messages.count("sends files from start to end only"), 1, messages)


if __name__ == "__main__":
    mounted.main()
