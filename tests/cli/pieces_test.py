"""Files of any size, piece by piece: memory, both kinds of camera, and what arrives."""

import os
import random
import shutil
import subprocess
import time

import bench_of_cameras
from bench_of_cameras import Bus

MOST_KB = 16 << 10
TINY = 3_000_000


def peak_of(process):
    """The most memory that a process and its children have had until now, in kB; 0 when it has ended."""
    try:
        with open(f"/proc/{process}/status") as status:
            own = [int(line.split()[1]) for line in status if line.startswith("VmHWM")]
        with open(f"/proc/{process}/task/{process}/children") as children:
            return max(own + [peak_of(child) for child in children.read().split()], default=0)
    except OSError:
        return 0


def made_memory_group():
    """The folder of a control group whose processes have 64 MB together, page cache included. None on a machine where nobody may
    make one; in the guest of tests/kernel there always is one."""
    for root, file in (("/sys/fs/cgroup/memory", "memory.limit_in_bytes"), ("/sys/fs/cgroup", "memory.max")):
        folder = f"{root}/kelva-{os.getpid()}"
        try:
            os.mkdir(folder)
        except OSError:
            continue
        try:
            with open(f"{folder}/{file}", "w") as most:
                most.write(str(64 << 20))
            return folder
        except OSError:
            os.rmdir(folder)
    return None


class Pieces(Bus):
    """A bus with room for a large file."""

    SIZE = 0

    def large(self, path):
        """A file that is larger than the memory that may be used, and costs the disk nothing."""
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.truncate(self.SIZE)

    def replug(self, *options):
        self.unplug()
        self.vcam("plug", "--serial", "K1", "--storage", self.drive, *options)

    def runs_in_little_memory(self, *words, out=subprocess.DEVNULL, group=None):
        enter = ["sh", "-c", f'echo $$ > {group}/cgroup.procs && exec "$@"', "sh"] if group else []
        run = subprocess.Popen(enter + self.command(*words), stdout=out, stderr=subprocess.PIPE, text=True)
        most = 0
        while run.poll() is None:
            most = max(most, peak_of(run.pid))
            time.sleep(0.005)
        self.assertEqual(run.returncode, 0, run.stderr.read())
        run.stderr.close()
        self.assertGreater(most, 1000, "nothing was measured")
        self.assertLess(most, MOST_KB)

    def get_takes_little_memory(self):
        self.large(self.drive + "/DCIM/100ABCDE/IMG_0001.RAW")
        self.replug("--no-keys")
        self.runs_in_little_memory("get", "-q", "I:/DCIM/100ABCDE/IMG_0001.RAW", "--into", self.folder)
        self.assertEqual(os.path.getsize(self.folder + "/IMG_0001.RAW"), self.SIZE)
        os.remove(self.folder + "/IMG_0001.RAW")
        counter = subprocess.Popen(["wc", "-c"], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        self.runs_in_little_memory("get", "-q", "-o", "-", "I:/DCIM/100ABCDE/IMG_0001.RAW", out=counter.stdin)
        self.assertEqual(int(counter.communicate()[0]), self.SIZE)

    def sync_takes_little_memory(self, *options):
        self.large(self.drive + "/DCIM/100ABCDE/IMG_0001.RAW")
        self.replug("--no-keys")
        target = self.folder + "/target"
        group = made_memory_group()
        try:
            self.runs_in_little_memory("sync", "-q", *options, target, group=group)
        finally:
            if group:
                os.rmdir(group)
        self.assertEqual(os.path.getsize(target + "/100ABCDE/IMG_0001.RAW"), self.SIZE)
        shutil.rmtree(target)


class PiecesTest(Pieces):
    SIZE = 300_000_000

    def test_sync_takes_no_more_memory_for_a_larger_file(self):
        for options in ((), ("--verify",), ("--delete-after-verify",)):
            with self.subTest(options=options):
                self.sync_takes_little_memory(*options)

    def test_get_takes_no_more_memory_for_a_larger_file(self):
        self.get_takes_little_memory()

    def test_put_takes_no_more_memory_for_a_larger_file(self):
        self.large(self.folder + "/LARGE.BIN")
        self.runs_in_little_memory("put", "-q", self.folder + "/LARGE.BIN", "I:/LARGE.BIN")
        self.assertEqual(os.path.getsize(self.drive + "/LARGE.BIN"), self.SIZE)

    def test_a_camera_that_is_only_read_forward_gives_the_same_bytes(self):
        self.replug("--forward-only")
        for size in (1, 65_535, 65_536, 65_537, 2 * 65_536, TINY):
            content = random.randbytes(size)
            self.put("A.BIN", content)
            run = subprocess.run(self.command("get", "-o", "-", "I:/A.BIN"), capture_output=True, timeout=60)
            self.assertEqual((run.returncode, run.stderr), (0, b""))
            self.assertEqual(run.stdout, content)
            with open(self.folder + "/B.BIN", "wb") as file:
                file.write(content)
            self.assertEqual(self.kelva("put", "--force", self.folder + "/B.BIN", "I:/").returncode, 0)
            with open(self.drive + "/B.BIN", "rb") as file:
                self.assertEqual(file.read(), content)

    def test_every_fault_is_the_right_file_or_a_sentence_on_both_kinds_of_camera(self):
        content = random.randbytes(200_000)
        self.put("A.BIN", content)
        for kind in ((), ("--forward-only",)):
            for fault in ("fail", "short", "surplus1", "surplus2", "stall", "lie-size", "endless"):
                # The listing, the selection and its size, four chunks and one command beyond them.
                for at in range(1, 10):
                    self.replug(*kind)
                    self.fault(fault, at)
                    run = self.kelva("get", "I:/A.BIN", "--into", self.folder, "--timeout", "20")
                    where = (kind, fault, at, run.stderr)
                    if run.returncode == 0:
                        with open(self.folder + "/A.BIN", "rb") as file:
                            self.assertEqual(file.read(), content, where)
                        os.remove(self.folder + "/A.BIN")
                    else:
                        self.assertIn(run.returncode, (1, 4, 7, 8), where)
                        self.assertRegex(run.stderr, r"^kelva: (Cannot|The camera lists) [^\n]*\.\n$", where)
                    self.assertEqual(sorted(os.listdir(self.folder)), ["bus", "drive"], where)

    def test_an_unplug_after_any_number_of_bytes_leaves_nothing(self):
        self.put("A.BIN", random.randbytes(200_000))
        for after in (0, 1, 65_536, 131_072, 196_608, 200_000):
            self.fault("unplug", after)
            run = self.kelva("get", "I:/A.BIN", "--into", self.folder)
            self.assertEqual(run.returncode, 5, (after, run.stderr))
            self.assertEqual(sorted(os.listdir(self.folder)), ["bus", "drive"], after)
            self.plug()

    def test_an_image_that_changes_after_it_was_shown_is_not_completed(self):
        image = self.folder + "/image.bin"
        with open(image, "wb") as file:
            file.write(random.randbytes(TINY))
        self.fault("slow", 10)
        run = self.start("upgrade", "--yes", image)
        self.wait_until_held("K1", run=run)
        # Its last byte is another one before the last chunk is read.
        with open(image, "r+b") as file:
            file.seek(-1, os.SEEK_END)
            file.write(b"!")
        _, messages = run.communicate(timeout=60)
        self.fault("none")
        self.assertEqual(run.returncode, 1, messages)
        self.assertIn("changed while it was sent", messages)
        self.assertIn("factory", self.kelva("info").stdout)


if __name__ == "__main__":
    bench_of_cameras.main()
