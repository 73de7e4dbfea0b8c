"""A mounted camera that may be written to."""

import errno
import os
import random
import shutil
import subprocess
import time

import mounted
from mounted import MountedBus


class Writable(MountedBus):
    def setUp(self):
        super().setUp()
        self.put("DCIM/100ABCDE/IMG_0001.JPG", b"picture")
        self.run_of_mount = self.mount("--writable")

    def fails(self, number, change, *arguments):
        with self.assertRaises(OSError) as raised:
            change(*arguments)
        self.assertEqual(raised.exception.errno, number)

    def test_a_copied_file_is_on_the_camera_when_cp_returns(self):
        for size in (0, 1, 65_536, 1_000_003):
            content = random.randbytes(size)
            with open(self.folder + "/local", "wb") as file:
                file.write(content)
            subprocess.run(["cp", self.folder + "/local", f"{self.point}/NEW{size}.BIN"], check=True)
            if size == 0:
                self.eventually(lambda: os.path.exists(self.drive + "/NEW0.BIN"))
            self.assertEqual(self.read(f"NEW{size}.BIN"), content)
            self.assertEqual(os.path.getsize(f"{self.point}/NEW{size}.BIN"), size)
            with open(f"{self.point}/NEW{size}.BIN", "rb") as file:
                self.assertEqual(file.read(), content)

    def eventually(self, true):
        until = time.monotonic() + 10
        while not true():
            self.assertLess(time.monotonic(), until)
            time.sleep(0.01)

    def test_a_file_that_is_there_is_replaced_as_a_whole(self):
        path = self.files + "/IMG_0001.JPG"
        with open(path, "wb") as file:
            file.write(b"another picture")
        self.assertEqual(self.read("DCIM/100ABCDE/IMG_0001.JPG"), b"another picture")
        self.fails(errno.EOPNOTSUPP, open, path, "r+b")
        self.fails(errno.EOPNOTSUPP, open, path, "ab")
        self.fails(errno.EOPNOTSUPP, os.truncate, path, 3)
        self.assertEqual(self.read("DCIM/100ABCDE/IMG_0001.JPG"), b"another picture")

    def test_a_shell_writes_a_file(self):
        subprocess.run(["sh", "-c", f"echo one > {self.point}/A.TXT; (echo two; echo three) > {self.point}/B.TXT"], check=True)
        self.assertEqual((self.read("A.TXT"), self.read("B.TXT")), (b"one\n", b"two\nthree\n"))

    def test_deleted_files_are_gone_from_the_camera(self):
        self.put("A.TXT", b"one")
        time.sleep(1.1)
        os.remove(self.point + "/A.TXT")
        self.assertFalse(os.path.exists(self.drive + "/A.TXT"))
        self.assertFalse(os.path.exists(self.point + "/A.TXT"))
        self.fails(errno.ENOENT, os.remove, self.point + "/A.TXT")
        shutil.copy(self.files + "/IMG_0001.JPG", self.point + "/A.TXT")
        self.assertEqual(self.read("A.TXT"), b"picture")

    def test_a_file_that_is_deleted_while_it_is_written_stays_deleted(self):
        path = self.point + "/A.TXT"
        for sent in (True, False):
            with open(path, "wb", buffering=0) as file:
                file.write(b"one")
                if sent:
                    os.close(os.dup(file.fileno()))
                    self.assertEqual(self.read("A.TXT"), b"one")
                os.remove(path)
                self.fails(errno.ENOENT, os.stat, path)
                file.write(b"two")
            self.assertFalse(os.path.exists(self.drive + "/A.TXT"), sent)
        shutil.copy(self.files + "/IMG_0001.JPG", path)
        self.assertEqual(self.read("A.TXT"), b"picture")

    def test_what_a_camera_cannot_do_is_refused(self):
        self.fails(errno.EPERM, os.mkdir, self.point + "/FOLDER")
        self.fails(errno.EPERM, os.rmdir, self.point + "/DCIM")
        self.fails(errno.EXDEV, os.rename, self.files + "/IMG_0001.JPG", self.point + "/B.JPG")
        self.fails(errno.EINVAL, open, self.point + "/a%b", "wb")
        self.assertEqual(self.read("DCIM/100ABCDE/IMG_0001.JPG"), b"picture")

    def test_mv_copies_a_file_and_deletes_the_old_one(self):
        content = random.randbytes(200_000)
        self.put("A.BIN", content)
        time.sleep(1.1)
        subprocess.run(["mv", self.point + "/A.BIN", self.files + "/B.BIN"], check=True)
        self.assertEqual(self.read("DCIM/100ABCDE/B.BIN"), content)
        self.assertFalse(os.path.exists(self.drive + "/A.BIN"))
        subprocess.run(["mv", self.files + "/B.BIN", self.folder + "/C.BIN"], check=True)
        self.assertFalse(os.path.exists(self.drive + "/DCIM/100ABCDE/B.BIN"))
        subprocess.run(["mv", self.folder + "/C.BIN", self.point], check=True)
        self.assertEqual(self.read("C.BIN"), content)
        refused = subprocess.run(["mv", self.files, self.point + "/D"], capture_output=True)
        self.assertNotEqual(refused.returncode, 0)
        self.assertEqual(self.read("DCIM/100ABCDE/IMG_0001.JPG"), b"picture")

    def test_a_cut_upload_fails_the_close_and_is_deleted_on_the_camera(self):
        content = random.randbytes(300_000)
        failed = 0
        for at in range(1, 16):
            # A process that is started between write and close would close the file too.
            self.fault("fail", at)
            name = f"NEW{at}.BIN"
            try:
                file = os.open(f"{self.point}/{name}", os.O_WRONLY | os.O_CREAT)
            except OSError as error:
                self.assertEqual(error.errno, errno.EIO)
                self.fault("none")
                continue
            os.write(file, content)
            try:
                os.close(file)
            except OSError as error:
                self.assertEqual(error.errno, errno.EIO)
                failed += 1
                self.fault("none")
                # It is there when all of it had arrived, and reading it back failed.
                if os.path.exists(f"{self.drive}/{name}"):
                    self.assertEqual(self.read(name), content)
                else:
                    self.fails(errno.ENOENT, os.stat, f"{self.point}/{name}")
            else:
                self.fault("none")
                self.assertEqual(self.read(name), content)
        self.assertGreater(failed, 5)

    def test_an_unplug_in_mid_upload_fails_the_close(self):
        self.fault("unplug", 200_000)
        file = os.open(self.point + "/NEW.BIN", os.O_WRONLY | os.O_CREAT)
        os.write(file, random.randbytes(500_000))
        began = time.monotonic()
        self.fails(errno.ENODEV, os.close, file)
        self.assertLess(time.monotonic() - began, 1.5)
        self.gone_within(1)

    def test_a_missing_temporary_folder_is_said(self):
        self.end(self.run_of_mount)
        os.environ["TMPDIR"] = self.folder + "/missing"
        self.addCleanup(os.environ.pop, "TMPDIR")
        self.mount("--writable")
        self.fails(errno.ENOENT, open, self.point + "/NEW.BIN", "wb")


if __name__ == "__main__":
    mounted.main()
