"""How long the window's worker needs for the first screen of a large card, and how little it reads for that.

Usage: first_screen.py PROGRAMS, the folder of the programs. Exits with 1 when a limit is missed.
"""

import json
import os
import pathlib
import random
import statistics
import subprocess
import sys
import tempfile
import time

from report import line

TESTS = pathlib.Path(__file__).resolve().parent.parent / "tests"
sys.path[:0] = [str(TESTS / "cli"), str(TESTS / "desktop")]

import tiny_jpeg
from worker_process import Worker

COUNT = 10_000
SIZE = 8 << 20
SCREEN = 40
ROUNDS = 9
SECONDS_LIMIT = 1
PARTS_LIMIT = 2000
MEMORY_LIMIT_MB = 30


def fill(drive):
    """Sparse files: the disk keeps nothing of them but their starts."""
    colours = [[tuple(random.choices(range(256), k=3)) for _ in range(20)] for _ in range(15)]
    content = tiny_jpeg.jpeg([colours[0]], tiny_jpeg.exif_with(tiny_jpeg.jpeg(colours)))
    for number in range(COUNT):
        folder = drive / f"DCIM/{100 + number // 1000}ABCDE"
        folder.mkdir(parents=True, exist_ok=True)
        path = folder / f"IMG_{number % 1000 + 1:04d}.JPG"
        path.write_bytes(content)
        os.truncate(path, SIZE)


def peak_mb(process):
    status = pathlib.Path(f"/proc/{process}/status").read_text()
    return int(status.split("VmHWM:")[1].split()[0]) / 1024


def first_screen(programs, socket, **environment):
    """Seconds from the start to the last thumbnail, and the most memory of the process that has the camera."""
    began = time.monotonic()
    worker = Worker(str(programs / "kelva-desktop-worker"), socket, "camera", "--serial", "K1", env={**os.environ, **environment})
    worker.until("catalogue")
    worker.say("thumbs", *range(SCREEN))
    for _ in range(SCREEN):
        if worker.until("thumb").get("width") != 160:
            sys.exit("first_screen: a thumbnail is missing")
    took = worker.seen[-1]["at"] - began
    worker.until("others")
    child = pathlib.Path(f"/proc/{worker.process.pid}/task/{worker.process.pid}/children").read_text().split()[0]
    peak = peak_mb(child)
    worker.close()
    return took, peak


def measure(programs, folder):
    fill(folder / "drive")
    socket, trace = str(folder / "bus"), folder / "trace"
    vcam = programs / "kelva-vcam"
    bus = subprocess.Popen([vcam, "serve", "--socket", socket], stdout=subprocess.PIPE)
    bus.stdout.readline()
    try:
        subprocess.run([vcam, "plug", "--serial", "K1", "--storage", folder / "drive", "--no-keys", "--socket", socket],
                       check=True, stdout=subprocess.DEVNULL)
        first_screen(programs, socket, KELVA_TRACE=str(trace))
        with open(trace, encoding="ascii") as exchanges:
            read = sum(one["moved"] for one in map(json.loads, exchanges) if one.get("direction") == 2)
        runs = [first_screen(programs, socket) for _ in range(ROUNDS)]
    finally:
        bus.terminate()
        bus.communicate()
    kept = line("The first screen of a card of 10,000 pictures, in seconds", statistics.median(took for took, _ in runs),
                "at most", SECONDS_LIMIT)
    kept &= line("What was read for it and for all sizes, in millionths of the card", read / (COUNT * SIZE) * 1e6, "at most", PARTS_LIMIT)
    kept &= line("The most memory of the worker meanwhile, in MB", max(peak for _, peak in runs), "at most", MEMORY_LIMIT_MB)
    return kept


def main():
    with tempfile.TemporaryDirectory() as folder:
        sys.exit(0 if measure(pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(folder)) else 1)


if __name__ == "__main__":
    main()
