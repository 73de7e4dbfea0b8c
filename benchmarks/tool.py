"""What the tool costs as a whole process: sync beside what bounds it, beside other programs and with a trace, a cold start of
list, the end by Ctrl-C.

Usage: tool.py BUILD FOLDER, the build folder with bin and bench-aid, and a folder on the disk to measure. Exits with 1
when a limit is missed.
"""

import os
import pathlib
import random
import shutil
import signal
import statistics
import subprocess
import sys
import tempfile
import time

from report import line

PICTURES = 10_000
FEW = 1_000
SIZE = 20_000
ROUNDS = 5
SYNC_LIMIT = 0.9
# A card of 1.94 GB.
CARD_FILES = 1_066
CARD_SIZE = 1_820_000
CARD_ROUNDS = 3
WHOLE_LIMIT = 2.2
DELETE_LIMIT = 2
# The catalogue has 128 bytes for each picture; it comes in one piece that grows by doubling and is decoded into another. A
# short run may also not fill the 4 MB that are on their way to the disk.
GROWTH_LIMIT_KB = 8 * 1024
TRACE_ROUNDS = 41
TRACE_LIMIT = 1.03
STARTS = 300
START_LIMIT_MS = 10
START_LIMIT_KB = 6 * 1024
INTERRUPTS = 10
INTERRUPT_LIMIT_S = 1


class Tool:
    """The programs, and a bus with three cameras: MANY and FEW pictures, and one that hangs."""

    def __init__(self, build, folder):
        self.build, self.folder = build, folder
        self.socket = str(folder / "bus")
        self.count = 0
        self.bus = subprocess.Popen([build / "bin/kelva-vcam", "serve", "--socket", self.socket], stdout=subprocess.PIPE)
        self.bus.stdout.readline()
        for serial, pictures in (("MANY", PICTURES), ("FEW", FEW)):
            self.plug(serial, self.drive(serial, pictures))
        self.plug("HANGS", self.drive("HANGS", 1))

    def drive(self, name, pictures, size=SIZE):
        for number in range(pictures):
            path = self.folder / name / f"DCIM/{100 + number // 1000}ABCDE/IMG_{number % 1000:04d}.JPG"
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_bytes(random.randbytes(size))
        return self.folder / name

    def vcam(self, *words):
        subprocess.run([self.build / "bin/kelva-vcam", *words, "--socket", self.socket], check=True, stdout=subprocess.DEVNULL)

    def plug(self, serial, drive):
        self.vcam("plug", "--serial", serial, "--storage", drive)

    def timed(self, *command, runs=1, start="warm", **environment):
        """(seconds, largest resident kilobytes, processor's seconds) of each run."""
        words = [self.build / "bench-aid/bench-timed", str(runs), start, *command]
        results = []
        for text in subprocess.check_output(words, text=True, stderr=subprocess.DEVNULL,
                                            env={**os.environ, **environment}).splitlines():
            nanoseconds, kilobytes, microseconds, status = map(int, text.split())
            if status != 0:
                sys.exit(f"tool: {' '.join(map(str, command))} ended with status {status}")
            results.append((nanoseconds / 1e9, kilobytes, microseconds / 1e6))
        return results

    def fresh(self):
        # Nothing is deleted before the end: a file system keeps away from what was deleted lately, which takes time.
        self.count += 1
        return self.folder / f"out{self.count}"

    def kelva(self, *words):
        return [self.build / "bin/kelva", "--virtual", self.socket, *words]

    def read(self, serial="MANY"):
        return self.timed(self.build / "bench-aid/bench-parts", "read", self.socket, serial)[0]

    def write(self, threads, files=PICTURES, size=SIZE):
        return self.timed(self.build / "bench-aid/bench-parts", "write", self.fresh(), str(files), str(size), str(threads))[0]

    def sync(self, serial, *words):
        """As timed, and the processor's seconds of the bus."""
        before = self.bus_seconds()
        result = self.timed(*self.kelva("sync", "--quiet", "-s", serial, self.fresh(), *words))[0]
        return (*result, self.bus_seconds() - before)

    def bus_seconds(self):
        fields = pathlib.Path(f"/proc/{self.bus.pid}/stat").read_text().rpartition(")")[2].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")

    def sync_without_flushing(self, serial, *words):
        preload = str(self.build / "bench-aid/bench-no-flush.so")
        result = self.timed(*self.kelva("sync", "--quiet", "-s", serial, self.fresh(), *words), LD_PRELOAD=preload)[0]
        os.sync()  # the next one finds the disk at rest
        return result

    def interrupt(self):
        """Seconds from Ctrl-C to the end of a command whose camera hangs."""
        self.vcam("fault", "HANGS", "hang", "1")
        run = subprocess.Popen(self.kelva("sync", "-s", "HANGS", self.fresh()), stderr=subprocess.DEVNULL)
        time.sleep(0.3)
        run.send_signal(signal.SIGINT)
        sent = time.monotonic()
        run.wait()
        self.vcam("fault", "HANGS", "none")
        return time.monotonic() - sent


def measure_sync(tool):
    measures = {"read": tool.read, "one": lambda: tool.write(1), "four": lambda: tool.write(4), "sync": lambda: tool.sync("MANY"),
                "unflushed": lambda: tool.sync_without_flushing("MANY")}
    results = {name: [] for name in measures}
    tool.read()  # the camera works out the keys of its pictures once
    os.sync()  # and its drives are on disk
    for _ in range(ROUNDS):
        for name in random.sample(list(measures), len(measures)):
            results[name].append(measures[name]())
    seconds = {name: statistics.median(result[0] for result in runs) for name, runs in results.items()}
    print(f"Reading {PICTURES:,} pictures of {SIZE // 1000} kB: {seconds['read']:.2f} s alone; writing and flushing them alone, "
          f"one after the other: {seconds['one']:.2f} s, four at a time: {seconds['four']:.2f} s; sync: {seconds['sync']:.2f} s")
    print(f"The same sync without flushing: {seconds['unflushed']:.2f} s; so durability costs "
          f"{seconds['sync'] - seconds['unflushed']:.2f} s, or {(seconds['sync'] - seconds['unflushed']) * 1000 / PICTURES:.2f} ms "
          "for one picture")
    kept = against_bound(f"sync of {PICTURES:,} pictures", seconds, results["sync"])
    return kept, statistics.median(result[1] for result in results["sync"])


def against_bound(what, seconds, syncs):
    """No overlap can make a sync faster than its slower half, or than the processors with what it and the camera compute."""
    processors = statistics.median(tool + bus for _, _, tool, bus in syncs) / os.cpu_count()
    print(f"{what}: reading alone {seconds['read']:.2f} s; writing four at a time alone {seconds['four']:.2f} s; processor's seconds "
          f"of tool and camera for each of {os.cpu_count()} processors {processors:.2f} s; sync {seconds['sync']:.2f} s")
    bound = max(seconds["read"], seconds["four"], processors)
    return line(f"{what}: speed against the slowest of these", bound / seconds["sync"], "at least", SYNC_LIMIT)


def measure_card(tool):
    """A card of photographs beside programs that copy its folder, and the same with the deletion on the camera."""
    drive = tool.drive("CARD", CARD_FILES, CARD_SIZE)
    tool.plug("CARD", drive)
    tool.read("CARD")

    def elsewhere(*words):
        return tool.timed(*words, drive / "DCIM", tool.fresh())[0]

    def with_deletion():
        copy = tool.folder / f"copy{tool.count}"
        subprocess.run(["cp", "-al", drive, copy], check=True)
        tool.plug(copy.name, copy)
        try:
            return tool.sync(copy.name, "--delete-after-verify")
        finally:
            tool.vcam("unplug", copy.name)

    measures = {"read": lambda: tool.read("CARD"), "four": lambda: tool.write(4, CARD_FILES, CARD_SIZE),
                "sync": lambda: tool.sync("CARD"), "whole": with_deletion, "rsync": lambda: elsewhere("rsync", "-a", "--fsync"),
                "rclone": lambda: elsewhere("rclone", "copy", "--config", "/dev/null")}
    results = {name: [] for name in measures}
    for _ in range(CARD_ROUNDS):
        for name in random.sample(list(measures), len(measures)):
            os.sync()
            results[name].append(measures[name]())
            shutil.rmtree(tool.folder / f"out{tool.count}", ignore_errors=True)
    seconds = {name: statistics.median(result[0] for result in runs) for name, runs in results.items()}
    what = f"sync of {CARD_FILES:,} files of {CARD_FILES * CARD_SIZE / 1e9:.2f} GB"
    print(f"{what}: {seconds['sync']:.2f} s; rsync --fsync {seconds['rsync']:.2f} s; rclone, which does not flush, {seconds['rclone']:.2f} s; "
          f"with the deletion on the camera {seconds['whole']:.2f} s")
    kept = against_bound(what, seconds, results["sync"])
    return kept & line(f"{what}: with the deletion on the camera against without", seconds["whole"] / seconds["sync"], "at most", WHOLE_LIMIT)


def measure_deletion(tool):
    """Files that are fetched and as their keys say, beside rm of as many."""
    ratios = []
    for turn in range(CARD_ROUNDS):
        copies = [tool.folder / f"del{turn}{name}" for name in "ab"]
        for copy in copies:
            subprocess.run(["cp", "-al", tool.folder / "FEW", copy], check=True)
            tool.plug(copy.name, copy)
        out = tool.fresh()
        tool.timed(*tool.kelva("sync", "--quiet", "-s", copies[0].name, out))
        sync = tool.timed(*tool.kelva("sync", "--quiet", "-s", copies[0].name, "--delete-after-verify", out))[0][0]
        remove = tool.timed(*tool.kelva("rm", "--quiet", "-s", copies[1].name, "I:/DCIM/*/*.JPG"))[0][0]
        ratios.append(sync / remove)
        for copy in copies:
            tool.vcam("unplug", copy.name)
    return line(f"sync --delete-after-verify of {FEW:,} fetched files against rm of as many", statistics.median(ratios), "at most",
                DELETE_LIMIT)


def measure_trace(tool):
    """A sync with a trace beside the same sync without one, in turns. Without flushing, so that the disk has no say."""
    seconds = {"with": [], "without": []}
    for turn in range(TRACE_ROUNDS):
        traced = ("--trace", str(tool.folder / f"trace{turn}"))
        for name, words in random.sample([("with", traced), ("without", ())], 2):
            seconds[name].append(tool.sync_without_flushing("FEW", *words)[2])
    with_trace, without = (statistics.median(seconds[name]) for name in ("with", "without"))
    # Of neighbours, since other work on the machine slows both of a pair alike.
    ratio = statistics.median(one / other for one, other in zip(seconds["with"], seconds["without"]))
    size = (tool.folder / "trace0").stat().st_size
    print(f"A sync of {FEW:,} pictures takes {without * 1000:.0f} ms of the processor, with a trace {with_trace * 1000:.0f} ms; the trace "
          f"has {size / 1000:.0f} kB")
    return line(f"sync of {FEW:,} pictures: processor time with a trace against without", ratio, "at most", TRACE_LIMIT)


def measure_memory(tool, many):
    few = statistics.median(tool.sync("FEW")[1] for _ in range(ROUNDS))
    print(f"Largest resident memory of sync: {few:.0f} kB for {FEW:,} pictures, {many:.0f} kB for {PICTURES:,}")
    return line(f"sync: kilobytes more for {PICTURES:,} pictures than for {FEW:,}", many - few, "at most", GROWTH_LIMIT_KB)


def measure_start(tool):
    kept = True
    for name, words in (("this machine", ["list"]), ("a virtual bus", ["--virtual", tool.socket, "list"])):
        runs = tool.timed(tool.build / "bin/kelva", *words, runs=STARTS, start="cold")
        p50 = statistics.median(run[0] for run in runs) * 1000
        kept &= line(f"Cold start of list on {name}: p50 in milliseconds", p50, "at most", START_LIMIT_MS)
        kept &= line(f"Cold start of list on {name}: largest resident, kB", max(run[1] for run in runs), "at most", START_LIMIT_KB)
    return kept


def main():
    build, disk = (pathlib.Path(word).resolve() for word in sys.argv[1:])
    with tempfile.TemporaryDirectory(dir=disk) as scratch:
        tool = Tool(build, pathlib.Path(scratch))
        try:
            kept, many = measure_sync(tool)
            kept &= measure_memory(tool, many)
            kept &= measure_trace(tool)
            kept &= measure_card(tool)
            kept &= measure_deletion(tool)
            kept &= measure_start(tool)
            longest = max(tool.interrupt() for _ in range(INTERRUPTS))
            kept &= line("Ctrl-C to the end of a command that hangs: longest, s", longest, "at most", INTERRUPT_LIMIT_S)
        finally:
            tool.bus.terminate()
            tool.bus.communicate()
    sys.exit(0 if kept else 1)


if __name__ == "__main__":
    main()
