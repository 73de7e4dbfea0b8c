"""A virtual bus in a folder of its own, and the two programs."""

import hashlib
import json
import os
import random
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

BIN = ""
# What a test draws at random depends on this and on its name alone.
SEED = os.environ.get("KELVA_RANDOM_SEED") or str(random.SystemRandom().randrange(10 ** 6))


def seed(test):
    random.seed(f"{SEED} {test.id()}")


def has_separate_tool():
    """Whether another program than `kelva` has the virtual cameras, as on a Mac."""
    return os.path.exists(os.path.join(BIN, "kelva-virtual"))


def copy_tool(folder):
    """The tool alone in a folder, without the programs that are beside it; its path."""
    if has_separate_tool():
        shutil.copy(os.path.join(BIN, "kelva-virtual"), folder)
    return shutil.copy(os.path.join(BIN, "kelva"), folder)


class Bus(unittest.TestCase):
    """One bus with one camera, K1, whose drive is the folder `drive`."""

    def setUp(self):
        seed(self)
        self.folder = tempfile.mkdtemp(prefix="kelva-cli-")
        self.drive = os.path.join(self.folder, "drive")
        os.mkdir(self.drive)
        os.environ["XDG_CACHE_HOME"] = os.path.join(self.folder, "cache")
        self.socket = os.path.join(self.folder, "bus")
        self.addCleanup(shutil.rmtree, self.folder)
        self.server = subprocess.Popen([BIN + "/kelva-vcam", "serve", "--socket", self.socket],
                                       stdout=subprocess.PIPE)
        self.addCleanup(self.stop)
        # The socket is there a moment before anyone listens; this line comes after that.
        self.server.stdout.readline()
        self.plug()

    def stop(self):
        self.server.terminate()
        self.server.communicate()

    def vcam(self, *words):
        subprocess.run([BIN + "/kelva-vcam", *words, "--socket", self.socket], check=True, stdout=subprocess.DEVNULL)

    def plug(self, serial="K1", drive=None):
        self.vcam("plug", "--serial", serial, "--storage", drive or self.drive)

    def unplug(self, serial="K1"):
        self.vcam("unplug", serial)

    def fault(self, *words, serial="K1"):
        self.vcam("fault", serial, *map(str, words))

    def status(self):
        """What the bus knows of each camera, by serial number."""
        words = [BIN + "/kelva-vcam", "status", "--json", "--socket", self.socket]
        return {camera["serial"]: camera for camera in json.loads(subprocess.check_output(words))["cameras"]}

    def wait_until_held(self, *serials, run=None):
        """Until programs have opened these cameras, or `run` has ended; from then on they heed signals."""
        until = time.monotonic() + 30
        while any(not self.status()[serial]["holder"] for serial in serials) and (run is None or run.poll() is None):
            self.assertLess(time.monotonic(), until, "nobody opened the camera")
            time.sleep(0.01)

    def command(self, *words):
        return [BIN + "/kelva", "--virtual", self.socket, *words]

    def kelva(self, *words, **options):
        if "input" not in options:
            options.setdefault("stdin", subprocess.DEVNULL)  # a terminal would be asked
        return subprocess.run(self.command(*words), capture_output=True, text=True, timeout=60, **options)

    def start(self, *words, **options):
        return subprocess.Popen(self.command(*words), stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                                **options)

    def put(self, name, content):
        path = os.path.join(self.drive, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.write(content)

    def pictures(self, count, size):
        for number in range(1, count + 1):
            self.put(f"DCIM/100ABCDE/IMG_{number:04d}.JPG", random.randbytes(size))

    def whole_files_only(self, target):
        """Every file below the target is one of the camera's, byte for byte; returns how many there are."""
        count = 0
        for folder, _, names in os.walk(target):
            for name in names:
                if name.startswith(".kelva-manifest"):
                    continue
                path = os.path.join(folder, name)
                with open(path, "rb") as mine:
                    with open(os.path.join(self.drive, "DCIM", os.path.relpath(path, target)), "rb") as camera:
                        self.assertEqual(mine.read(), camera.read(), path)
                count += 1
        return count


def digest(content):
    """The key of a file, and what the tool shows as its SHA-1."""
    return hashlib.sha1(content).hexdigest()


def main():
    global BIN
    BIN = os.path.abspath(sys.argv.pop(1))
    print(f"KELVA_RANDOM_SEED={SEED}", file=sys.stderr)
    unittest.main(module="__main__")
