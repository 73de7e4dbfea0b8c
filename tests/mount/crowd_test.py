"""Sixteen readers of a mounted camera: memory, large folders, and cables that are pulled."""

import glob
import os
import pathlib
import random
import subprocess
import sys
import time

import mounted
from mounted import MountedBus

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
MOST_KB = 24 << 10
CABLES = int(os.environ.get("KELVA_MOUNT_CABLES", "20"))
READERS = 16


def read_on(path):
    """Reads a file again and again, in any order, until the first error: its number, and how long a call took at most."""
    most = 0
    while True:
        began = time.monotonic()
        try:
            file = os.open(path, os.O_RDONLY)
            size = os.fstat(file).st_size
            for _ in range(50):
                most = max(most, time.monotonic() - began)
                began = time.monotonic()
                os.pread(file, random.choice((4096, 65536, 200000)), random.randrange(size))
            os.close(file)
        except OSError as error:
            return error.errno, max(most, time.monotonic() - began)


class Reader:
    """A process of its own that does read_on."""

    def __init__(self, path):
        self.answer, goes = os.pipe()
        self.process = os.fork()
        if self.process != 0:
            os.close(goes)
            self.ended = False
            return
        try:
            random.seed()
            os.write(goes, "{} {}".format(*read_on(path)).encode())
        finally:
            os._exit(0)

    def has_ended(self):
        self.ended = self.ended or os.waitpid(self.process, os.WNOHANG)[0] != 0
        return self.ended

    def said(self):
        with open(self.answer, encoding="ascii") as answer:
            number, most = answer.read().split()
        return int(number), float(most)


class Stuck:
    """Since when threads of processes have been in a sleep that no signal ends (state D)."""

    def __init__(self):
        self.since = {}
        self.longest = 0

    def look(self, processes):
        now, still = time.monotonic(), {}
        for path in (path for process in processes for path in glob.glob(f"/proc/{process}/task/*/stat")):
            try:
                with open(path, encoding="ascii", errors="replace") as stat:
                    state = stat.read().rpartition(") ")[2][:1]
            except OSError:
                continue
            if state == "D":
                still[path] = self.since.get(path, now)
                self.longest = max(self.longest, now - still[path])
        self.since = still


def peak_kb(process):
    with open(f"/proc/{process}/status", encoding="ascii") as status:
        return next(int(line.split()[1]) for line in status if line.startswith("VmHWM"))


class Crowd(MountedBus):
    def test_sixteen_readers_take_little_memory(self):
        for number in range(1, READERS + 1):
            self.put(f"DCIM/100ABCDE/MOV_{number:04d}.MP4", random.randbytes(12_000_000))
        self.replug("--no-keys")
        run = self.mount()
        names = sorted(os.listdir(self.card))
        readers = [subprocess.Popen(["cmp", f"{self.files}/{name}", f"{self.card}/{name}"]) for name in names]
        self.assertEqual([reader.wait() for reader in readers], [0] * READERS)
        peak = peak_kb(run.pid)
        print(f"{peak} kB under {READERS} readers", file=sys.stderr)
        if not os.environ.get("KELVA_SANITIZER"):
            self.assertLess(peak, MOST_KB)

    def test_fifty_thousand_files_are_listed(self):
        os.makedirs(self.drive + "/MANY")
        for number in range(50_000):
            os.close(os.open(f"{self.drive}/MANY/FILE{number:05d}.TXT", os.O_CREAT | os.O_WRONLY))
        run = self.mount()
        began = time.monotonic()
        listing = subprocess.check_output(["ls", "-l", self.point + "/MANY"], text=True)
        took = time.monotonic() - began
        self.assertEqual(len(listing.splitlines()), 50_001)
        print(f"{took:.1f} s and {peak_kb(run.pid)} kB for 50,000 files", file=sys.stderr)
        with open(self.point + "/MANY/FILE49999.TXT", "rb") as file:
            self.assertEqual(file.read(), b"")


class Cables(MountedBus):
    def wait_for_all(self, run, readers, stuck):
        until = time.monotonic() + 10
        while True:
            waiting = [reader.process for reader in readers if not reader.has_ended()]
            if not waiting and run.poll() is not None:
                return
            self.assertLess(time.monotonic(), until, "a reader or the mount has not ended")
            stuck.look([*waiting, run.pid])
            time.sleep(0.01)

    def test_every_call_ends_when_a_cable_is_pulled_and_nothing_is_left(self):
        self.pictures(READERS, 400_000)
        names = sorted(os.listdir(self.card))
        slowest = longest = 0
        stuck = Stuck()
        for _ in range(CABLES):
            run = self.mount()
            readers = [Reader(f"{self.files}/{name}") for name in names]
            time.sleep(random.uniform(0.02, 0.3))
            self.unplug()
            pulled = time.monotonic()
            self.wait_for_all(run, readers, stuck)
            longest = max(longest, time.monotonic() - pulled)
            slowest = max(slowest, *(reader.said()[1] for reader in readers))
            messages = run.communicate()[1]
            self.assertEqual(run.returncode, 5, messages)
            self.assertEqual(mounted.mounts_below(self.folder), [])
            self.assertFalse(os.path.exists(self.point))
            self.plug()
        print(f"{CABLES} cables: the slowest call took {slowest:.2f} s, the slowest end {longest:.2f} s, the longest sleep in "
              f"state D {stuck.longest:.2f} s", file=sys.stderr)
        patience = 1 if not os.environ.get("KELVA_SANITIZER") else 5
        self.assertLess(slowest, patience)
        self.assertLess(stuck.longest, patience)
        self.assertLess(longest, 3 * patience)


if __name__ == "__main__":
    mounted.main()
