"""How fast a program reads a large file of a mounted camera, beside `kelva get` of the same file.

Usage: mount.py PROGRAMS, the folder of the programs. Exits with 1 when a limit is missed.
"""

import pathlib
import statistics
import subprocess
import sys
import tempfile
import time

from report import line

SIZE = 400 << 20
ROUNDS = 9
SPEED_LIMIT = 0.9
MEMORY_LIMIT_MB = 24


def timed(command):
    began = time.monotonic()
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL)
    return time.monotonic() - began


def peak_mb(process):
    for text in pathlib.Path(f"/proc/{process}/status").read_text().splitlines():
        if text.startswith("VmHWM"):
            return int(text.split()[1]) / 1024
    sys.exit("mount: the system does not say how much memory a process has had")


def measure(programs, folder):
    file = folder / "drive/DCIM/100ABCDE/MOV_0001.MP4"
    file.parent.mkdir(parents=True)
    with open("/dev/urandom", "rb") as source, open(file, "wb") as sink:
        for _ in range(SIZE >> 20):
            sink.write(source.read(1 << 20))
    socket, point = str(folder / "bus"), folder / "mount"
    kelva = [programs / "kelva", "--virtual", socket]
    bus = subprocess.Popen([programs / "kelva-vcam", "serve", "--socket", socket], stdout=subprocess.PIPE)
    bus.stdout.readline()
    mount = None
    try:
        subprocess.run([programs / "kelva-vcam", "plug", "--serial", "K1", "--storage", folder / "drive", "--no-keys",
                        "--socket", socket], check=True, stdout=subprocess.DEVNULL)
        mount = subprocess.Popen([*kelva, "mount", "-q", "--foreground", point], stdout=subprocess.PIPE,
                                 stderr=subprocess.DEVNULL)
        mount.stdout.readline()
        read, get = [], []
        for _ in range(ROUNDS):
            # Each opening reads from the camera: the kernel keeps nothing of it.
            read.append(timed(["cat", point / "DCIM/100ABCDE/MOV_0001.MP4"]))
            get.append(timed([*kelva, "get", "-q", "-o", "-", "I:/DCIM/100ABCDE/MOV_0001.MP4"]))
        peak = peak_mb(mount.pid)
    finally:
        if mount:
            mount.terminate()
            mount.wait()
        bus.terminate()
        bus.communicate()
    kept = line("A read of 400 MiB through the mount: speed against kelva get",
                statistics.median(get) / statistics.median(read), "at least", SPEED_LIMIT)
    kept &= line("The most memory of kelva-mount meanwhile, in MB", peak, "at most", MEMORY_LIMIT_MB)
    return kept


def main():
    with tempfile.TemporaryDirectory() as folder:
        sys.exit(0 if measure(pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(folder)) else 1)


if __name__ == "__main__":
    main()
