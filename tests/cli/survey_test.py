"""survey: what it learns of the virtual camera, of an opaque one, and of one that goes wrong in every way."""

import hashlib
import json
import os
import pty
import shutil
import stat
import struct
import subprocess

import bench_of_cameras
from bench_of_cameras import Bus

# What kelva-vcam calls its faults, but for the ones that only change what a survey does not do.
FAULTS = ("fail", "short", "surplus1", "surplus2", "stall", "lie-size", "wrong-count", "wrong-offset", "unterminated-name",
          "endless", "changing", "upgrade-fails")
# Commands of a survey that are told apart: a fault meets each of them first.
FIRST = (1, 2, 3, 4, 6, 7, 9, 10, 12, 14, 16, 17, 18, 20, 24, 30)
ABREAST = 16
READS = {"select information", "select catalogue", "select folder", "select file", "read chunk", "size", "time", "battery",
         "controls"}


class SurveyTest(Bus):
    def setUp(self):
        super().setUp()
        self.out = os.path.join(self.folder, "survey")
        self.pictures(3, 100_000)

    def survey(self, *words, status=0):
        run = self.kelva("survey", self.out, "--yes", *words)
        self.assertEqual(run.returncode, status, run.stdout + run.stderr)
        return run

    def content(self, name):
        with open(os.path.join(self.out, name), "rb") as file:
            return file.read()

    def found(self):
        return json.loads(self.content("survey.json"))

    def holds(self):
        return {one["name"]: one["holds"] for one in self.found()["assumptions"]}

    def exchanges(self):
        lines = [json.loads(line) for line in self.content("trace.jsonl").splitlines()]
        return [line for line in lines if line["event"] == "exchange"]

    def digests(self):
        found = {}
        for folder, _, names in os.walk(self.drive):
            for name in names:
                with open(os.path.join(folder, name), "rb") as file:
                    found[name] = hashlib.sha1(file.read()).hexdigest()
        return found

    def test_every_assumption_holds_for_the_virtual_camera(self):
        run = self.survey()
        self.assertEqual(set(self.holds().values()), {True}, run.stdout)
        self.assertEqual(len(self.holds()), 13)
        self.assertEqual(self.found()["failed"], [])
        chunks = [timing["chunk"] for timing in self.found()["timing"]]
        self.assertEqual(chunks, [512 << power for power in range(8)])
        self.assertIn("yes", run.stdout)
        self.assertEqual(run.stdout, self.content("summary.txt").decode())

    def test_records_are_kept_as_bytes(self):
        self.survey()
        self.assertEqual(self.content("information.bin")[:9], b"K1\0Kelva\0")
        self.assertEqual(len(self.content("information.bin")), 644)
        self.assertEqual(len(self.content("clock.bin")), 28)
        self.assertEqual(struct.unpack("<f", self.content("battery.bin")), (100.0,))
        self.assertEqual(len(self.content("controls.bin")), 32)
        head = self.content("catalogue-head.bin")
        self.assertEqual(len(head), 12 + 80 + 3 * 128)
        self.assertEqual(head[:12], struct.pack("<3I", 1, 128, 10))
        self.assertIn(b"100ABCDE\0", self.content("folder-1.bin"))
        self.assertIn(b"IMG_0001.JPG\0", self.content("folder-2.bin"))

    def test_it_only_selects_asks_and_reads(self):
        self.put("CRASH/A.LOG", b"crash")
        self.kelva("monitor", "hello")
        before = self.digests()
        self.survey()
        self.assertEqual({line["command"] for line in self.exchanges()}, READS)
        self.assertEqual(self.digests(), before)
        self.assertIn("hello", self.kelva("console").stdout, "the console log is handed over once, and was not asked for")

    def test_a_default_acl_lets_nobody_else_read_its_files(self):
        entries = ((1, 7, 0xFFFFFFFF), (2, 7, 65534), (4, 5, 0xFFFFFFFF), (0x10, 7, 0xFFFFFFFF), (0x20, 5, 0xFFFFFFFF))
        acl = struct.pack("<I", 2) + b"".join(struct.pack("<HHI", *entry) for entry in entries)
        os.setxattr(os.path.dirname(self.out), "system.posix_acl_default", acl)
        self.survey()
        for name in os.listdir(self.out):
            # The bits of the group are the mask of what the list gives to others.
            self.assertEqual(stat.S_IMODE(os.stat(os.path.join(self.out, name)).st_mode), 0o600, name)

    def test_only_its_owner_may_read_it_and_it_holds_no_picture(self):
        self.survey()
        with open(os.path.join(self.drive, "DCIM/100ABCDE/IMG_0001.JPG"), "rb") as file:
            picture = file.read()
        for name in os.listdir(self.out):
            path = os.path.join(self.out, name)
            self.assertEqual(stat.S_IMODE(os.stat(path).st_mode), 0o600, name)
            for at in range(0, len(picture) - 16, 1000):
                self.assertNotIn(picture[at:at + 16], self.content(name))
                self.assertNotIn(picture[at:at + 16].hex().encode(), self.content(name))
        self.assertEqual(stat.S_IMODE(os.stat(self.out).st_mode), 0o700)

    def test_an_opaque_camera_bears_out_nothing_that_is_made_up(self):
        self.unplug()
        self.vcam("plug", "--serial", "K1", "--storage", self.drive, "--opaque", "5")
        self.survey()
        holds = self.holds()
        for name in ("information-texts", "clock-layout", "battery-unit", "date-shape", "key-shape", "size-field"):
            self.assertIs(holds[name], False, name)
        self.assertIsNone(holds["key-is-sha1"])
        for name in ("information-size", "catalogue-fields", "catalogue-size", "listed-size", "surplus-byte", "offsets"):
            self.assertIs(holds[name], True, name)

    def test_a_camera_that_is_read_forward_only_is_told(self):
        self.unplug()
        self.vcam("plug", "--serial", "K1", "--storage", self.drive, "--forward-only")
        self.survey()
        self.assertIs(self.holds()["offsets"], False)
        self.assertIs(self.holds()["surplus-byte"], True)

    def test_a_first_file_that_proves_nothing_tells_nothing_about_offsets(self):
        first = os.path.join(self.drive, "DCIM", "100ABCDE", "IMG_0001.JPG")
        for content in (b"small", b"\0" * 100_000):
            with open(first, "wb") as file:
                file.write(content)
            run = self.survey()
            self.assertIsNone(self.holds()["offsets"], run.stdout)
            shutil.rmtree(self.out)

    def test_a_camera_without_pictures_is_surveyed_as_far_as_it_goes(self):
        empty = os.path.join(self.folder, "empty")
        os.mkdir(empty)
        self.plug("K2", empty)
        self.survey("-s", "K2", status=6)  # there is no folder DCIM
        self.assertIsNone(self.holds()["date-shape"])
        self.assertEqual(self.found()["timing"], [])

    def test_with_private_no_file_names_the_camera(self):
        serial = "SN-4711-XY"
        self.plug(serial, self.drive)
        self.survey("-s", serial, "--private")
        for name in os.listdir(self.out):
            self.assertNotIn(serial.encode(), self.content(name), name)
            self.assertNotIn(serial.encode().hex().encode(), self.content(name), name)
        self.assertEqual(self.content("information.bin")[:11], b"AA-0000-AA\0")

    def test_it_is_confirmed_and_a_survey_that_is_there_is_kept(self):
        before = self.status()["K1"]["commands"]
        run = self.kelva("survey", self.out, stdin=subprocess.DEVNULL)
        self.assertEqual(run.returncode, 2)
        self.assertIn("nothing was sent", run.stderr)
        self.assertEqual(self.status()["K1"]["commands"], before)
        self.assertFalse(os.path.exists(self.out))
        self.survey()
        summary = self.content("summary.txt")
        self.survey(status=1)
        self.assertEqual(self.content("summary.txt"), summary)

    def ask(self, answer):
        master, terminal = pty.openpty()
        run = self.start("survey", self.out, stdin=terminal)
        os.write(master, answer)
        out, messages = run.communicate(timeout=60)
        os.close(terminal)
        os.close(master)
        return run.returncode, messages

    def test_on_a_terminal_it_asks_once(self):
        code, messages = self.ask(b"no\n")
        self.assertEqual(code, 1)
        self.assertIn("was not confirmed; nothing was sent", messages)
        code, messages = self.ask(b"yes\n")
        self.assertEqual(code, 0, messages)
        self.assertEqual(messages.count("Type yes and press Enter"), 1)

    def check_outcome(self, code, out, messages):
        """A report, or an error of a documented kind that is also in a sentence."""
        document = json.loads(out.splitlines()[-1])
        self.assertEqual(document["exit"], code)
        self.assertIn(code, (0, 5, 6, 8), messages)
        self.assertNotIn("Assertion failed", messages)
        if code in (0, 6):
            self.assertEqual(document["assumptions"], self.found()["assumptions"])
            self.assertEqual(code == 6, bool(document["failed"]))
        else:
            self.assertTrue(document["error"].endswith("."))
        self.assertTrue(self.content("trace.jsonl"))

    def test_every_fault_ends_with_a_report_or_a_typed_error(self):
        cases = [(fault, at) for number, fault in enumerate(FAULTS) for at in FIRST[number % 3::3]]
        for start in range(0, len(cases), ABREAST):
            runs = []
            for number, (fault, at) in enumerate(cases[start:start + ABREAST], start):
                serial = f"F{number}"
                self.plug(serial)
                self.fault(fault, at, serial=serial)
                out = os.path.join(self.folder, serial)
                runs.append((fault, at, out, self.start("survey", out, "--yes", "--json", "--timeout", "30", "-s", serial)))
            for fault, at, self.out, run in runs:
                with self.subTest(fault=fault, at=at):
                    out, messages = run.communicate(timeout=60)
                    self.check_outcome(run.returncode, out, messages)

    def test_a_camera_that_hangs_is_named_in_the_trace(self):
        self.fault("hang", 4)
        run = self.kelva("survey", self.out, "--yes", "--timeout", "1")
        self.assertEqual(run.returncode, 8)
        last = json.loads(self.content("trace.jsonl").splitlines()[-1])
        self.assertEqual(last["event"], "unfinished")

    def test_a_camera_that_goes_away_leaves_what_was_learnt(self):
        self.fault("unplug", 20_000)
        run = self.kelva("survey", self.out, "--yes")
        self.assertEqual(run.returncode, 5, run.stderr)
        self.assertIs(self.holds()["clock-layout"], True)
        self.assertEqual(len(self.found()["failed"]), 1)

    def test_a_slow_camera_is_surveyed(self):
        self.fault("slow", 3)
        self.survey()
        self.assertTrue(all(timing["median_us"] >= 3000 for timing in self.found()["timing"]))


if __name__ == "__main__":
    bench_of_cameras.main()
