"""--trace and KELVA_TRACE: what is in a trace of the tool, what never is, and whose file it may be."""

import glob
import json
import os
import random
import signal
import stat
import subprocess
import time
import zlib

import bench_of_cameras
from bench_of_cameras import Bus

WINDOW = 16


def windows(content):
    """Every 16 bytes in a row."""
    return {content[at:at + WINDOW] for at in range(len(content) - WINDOW + 1)}


class TraceTest(Bus):
    def setUp(self):
        super().setUp()
        self.trace = os.path.join(self.folder, "camera.trace")

    def text(self):
        with open(self.trace, "rb") as file:
            return file.read()

    def lines(self, event=None):
        lines = [json.loads(line) for line in self.text().decode("ascii").splitlines()]
        return [line for line in lines if event in (None, line["event"])]

    def run_traced(self, *words, status=0, **options):
        run = self.kelva(*words, "--trace", self.trace, **options)
        self.assertEqual(run.returncode, status, run.stderr)
        return run

    def shown(self):
        """Every byte string that the trace shows in hexadecimal."""
        return [bytes.fromhex(line["hex"]) for line in self.lines("exchange") if "hex" in line]

    def windows_of_drive(self):
        found = set()
        for folder, _, names in os.walk(self.drive):
            for name in names:
                with open(os.path.join(folder, name), "rb") as file:
                    found |= windows(file.read())
        self.assertTrue(found)
        return found

    def assert_none_of(self, forbidden):
        """The file is ASCII alone, so it could show them as hexadecimal digits only."""
        for shown in self.shown():
            self.assertFalse(windows(shown) & forbidden)

    def test_sync_shows_no_sixteen_bytes_of_a_picture(self):
        for number in range(1, 1001):
            self.put(f"DCIM/{100 + number // 500}ABCDE/IMG_{number:04d}.JPG", random.randbytes(random.randrange(16, 900)))
        self.put("DCIM/100ABCDE/IMG_9000.JPG", random.randbytes(200_000))
        pictures = self.windows_of_drive()
        self.run_traced("sync", self.folder + "/out", "--delete-after-verify")
        chunks = [line for line in self.lines("exchange") if line["command"] == "read chunk" and "crc32" in line]
        self.assertGreater(len(chunks), 1000)
        self.assert_none_of(pictures)

    def test_no_other_verb_shows_a_file_or_what_was_typed(self):
        picture = random.randbytes(5000)
        self.put("DCIM/100ABCDE/IMG_0001.JPG", picture)
        self.put("DCIM/100ABCDE/IMG_0001.RAW", random.randbytes(9000))
        self.put("CRASH/A.LOG", random.randbytes(300))
        self.put("CALIB/GAIN", random.randbytes(300))
        image = self.folder + "/image"
        with open(image, "wb") as file:
            file.write(random.randbytes(70_000))
        out = self.folder + "/out"
        os.mkdir(out)
        key = bench_of_cameras.digest(picture)
        for words in (["get", "I:/DCIM/100ABCDE/IMG_0001.JPG", "--into", out], ["batch", "get", key, "--into", out],
                      ["raw", key, "--into", out], ["crash-logs", "--into", out], ["calibration", "--into", out],
                      ["put", image, "I:/PUT.BIN"], ["info"], ["pictures"],
                      ["ls"], ["tree"], ["time"], ["battery"]):
            self.run_traced(*words)
        self.run_traced("pictures", "--sheet", out + "/sheet.html", status=6)  # random bytes are no JPEG file
        self.run_traced("monitor", "my passphrase is correct horse")
        self.run_traced("console")
        self.run_traced("wifi", "passphrase", input="correct horse battery\n")
        self.run_traced("upgrade", "--yes", image)
        self.assert_none_of(self.windows_of_drive())
        for secret in (b"correct horse", b"passphrase is"):
            self.assertNotIn(secret, self.text())
            self.assertFalse(any(secret in shown for shown in self.shown()))
        hidden = [line for line in self.lines("exchange") if line.get("payload") == "hidden"]
        self.assertEqual({line["command"] for line in hidden}, {"monitor line", "set passphrase 0"})
        self.assertFalse(any("asked" in line or "moved" in line for line in hidden))

    def test_checksums_are_those_of_the_bytes(self):
        picture = random.randbytes(70_000)
        self.put("DCIM/100ABCDE/IMG_0001.JPG", picture)
        self.run_traced("get", "I:/DCIM/100ABCDE/IMG_0001.JPG", "--into", self.folder)
        sums = [(line["bytes"], line["crc32"]) for line in self.lines("exchange") if "crc32" in line]
        expected = [(len(part), f"{zlib.crc32(part):08x}") for part in (picture[:65536], picture[65536:])]
        self.assertEqual(sums, expected)

    def test_stand_ins_take_the_place_of_serial_number_and_network_name(self):
        serial = "SN-4711-XY"
        self.plug(serial, self.drive)
        self.put(f"DCIM/100ABCDE/{serial}.TXT", b"x")
        for words in (["info"], ["ls", "I:/DCIM/100ABCDE"], ["wifi", "name", "MyHome"], ["time"],
                      ["get", f"I:/DCIM/100ABCDE/{serial}.TXT", "--into", self.folder]):
            self.run_traced(*words, "-s", serial, "--trace-private")
        everything = b"\n".join([self.text(), *self.shown()])
        for name in (serial.encode(), b"MyHome"):
            self.assertNotIn(name, everything)
        self.assertIn(b"AA-0000-AA\0Aaaaa\0Aaaaaa\x00", everything)
        self.assertIn(b"I:\\DCIM\\100ABCDE\\**********.TXT", everything)
        self.assertEqual({camera["serial"] for camera in self.lines("camera")}, {None})

    def test_the_variable_names_the_file_for_every_command_and_the_option_another(self):
        self.kelva("battery", env={**os.environ, "KELVA_TRACE": self.trace})
        self.assertEqual([line["command"] for line in self.lines("trace")], ["battery"])
        other = self.folder + "/other.trace"
        self.kelva("ready", "--trace", other, env={**os.environ, "KELVA_TRACE": self.trace})
        self.assertEqual(len(self.lines("trace")), 1)
        self.assertEqual(stat.S_IMODE(os.stat(other).st_mode), 0o600)
        self.assertEqual(self.kelva("help", env={**os.environ, "KELVA_TRACE": "/nowhere/trace"}).returncode, 0)

    def test_without_a_trace_there_is_no_file(self):
        self.kelva("battery", env={**os.environ, "KELVA_TRACE": ""})
        self.assertEqual(sorted(os.listdir(self.folder)), ["bus", "drive"])
        self.assertEqual(self.kelva("battery", "--trace-private").returncode, 2)

    def test_a_file_of_another_kind_is_kept_and_nothing_is_sent(self):
        with open(self.trace, "w", encoding="ascii") as file:
            file.write("mine")
        before = self.status()["K1"]["commands"]
        run = self.run_traced("battery", status=1)
        self.assertIn("it is not a trace; it was kept", run.stderr)
        self.assertEqual(self.text(), b"mine")
        self.assertEqual(self.status()["K1"]["commands"], before)

    def test_a_camera_that_hangs_is_named_after_a_timeout_and_after_ctrl_c(self):
        self.fault("hang", 1)
        self.run_traced("battery", "--timeout", "0.3", status=8)
        self.fault("hang", 1)
        run = self.start("time", "--trace", self.trace)
        self.wait_until_held("K1", run=run)
        while len(self.lines("camera")) < 2:
            pass
        run.send_signal(signal.SIGINT)
        run.communicate(timeout=60)
        self.assertEqual([line["command"] for line in self.lines("unfinished")], ["battery", "time"])

    def test_a_name_from_a_camera_is_escaped(self):
        serial = 'E"\x1b[2J\\'
        self.plug(serial, self.drive)
        self.run_traced("battery", "-s", serial)
        self.assertNotIn(b"\x1b", self.text())
        self.assertEqual(self.lines("camera")[0]["serial"], serial)

    def test_every_process_of_a_sync_adds_to_one_trace(self):
        self.pictures(1, 3_000_000)
        self.fault("slow", 20)
        run = self.start("sync", self.folder + "/out", "--trace", self.trace)
        # Not the empty one by which the folder is tried.
        while not any(os.path.getsize(part) for part in glob.glob(self.folder + "/out/100ABCDE/.kelva-*.part")):
            self.assertIsNone(run.poll(), "it ended before a file began")
            time.sleep(0.01)
        with open(f"/proc/{run.pid}/task/{run.pid}/children", encoding="ascii") as children:
            os.kill(int(children.read()), signal.SIGKILL)
        _, messages = run.communicate(timeout=60)
        self.assertEqual(run.returncode, 0, messages)
        self.assertEqual(len(self.lines("trace")), 1)
        self.assertEqual(len({line["process"] for line in self.lines("exchange")}), 2)

    def test_a_full_disk_ends_the_trace_and_not_the_command(self):
        self.pictures(5, 1000)
        words = ["sh", "-c", 'ulimit -f 1; trap "" XFSZ; exec "$0" "$@"', *self.command("ls", "I:/DCIM/100ABCDE")]
        for _ in range(8):
            self.run_traced("battery")
        run = subprocess.run([*words, "--trace", self.trace], capture_output=True, text=True, timeout=60)
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertIn("IMG_0005.JPG", run.stdout)
        self.assertIn("ends early, because it cannot be written: File too large", run.stderr)


if __name__ == "__main__":
    bench_of_cameras.main()
