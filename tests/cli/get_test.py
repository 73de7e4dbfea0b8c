"""Single commands: what goes to which stream, exit statuses, names of a camera, faults in the middle."""

import glob
import json
import os
import random
import signal
import subprocess
import time

import bench_of_cameras
import tiny_jpeg
from bench_of_cameras import Bus


class CommandTest(Bus):
    def fetched(self):
        return [name for name in os.listdir(self.folder) if name not in ("drive", "bus")]

    def test_results_go_to_one_stream_and_messages_to_the_other(self):
        run = self.kelva("wifi", "name", "den", "--json")
        self.assertEqual(run.returncode, 0)
        self.assertEqual(json.loads(run.stdout)["ssid"], "kelva.camera.den")
        self.assertEqual(json.loads(run.stderr)["event"], "note")

    def test_an_error_is_a_document_too(self):
        run = self.kelva("battery", "--json", "-s", "K9")
        self.assertEqual(run.returncode, 3)
        document = json.loads(run.stdout)
        self.assertEqual((document["exit"], document["reason"], document["ok"]), (3, "no-camera", False))

    def test_a_command_that_is_ended_names_the_files_that_it_has_done(self):
        self.put("A.BIN", b"first")
        self.put("B.BIN", os.urandom(3_000_000))
        self.fault("slow", 100)
        get = ("get", "--json", "I:/A.BIN", "I:/B.BIN", "--into", self.folder)
        run = self.kelva(*get, "--timeout", "1.5")
        self.assertEqual(run.returncode, 8, run.stderr)
        document = json.loads(run.stdout)
        self.assertEqual([file["path"] for file in document["files"]], ["I:\\A.BIN"])
        self.assertEqual((document["serial"], document["failed"], document["fetched"], document["bytes"]), ("K1", 0, 1, 5))
        self.fault("none")
        self.fault("unplug", 2_000_000)
        run = self.kelva(*get, "--force")
        self.assertEqual(run.returncode, 5, run.stderr)
        self.assertEqual([file["path"] for file in json.loads(run.stdout)["files"]], ["I:\\A.BIN"])

    def test_a_folder_that_is_not_fetched_to_its_end_says_what_is_left(self):
        for number in range(1, 5):
            self.put(f"DCIM/100ABCDE/IMG_000{number}.JPG", os.urandom(5 if number < 3 else 3_000_000))
        self.fault("slow", 100)
        get = ("get", "-r", "DCIM", "--into", self.folder + "/out")
        late = self.kelva(*get, "--timeout", "4", "--json")
        self.assertEqual(late.returncode, 8, late.stderr)
        document = json.loads(late.stdout)
        self.assertEqual((document["fetched"], document["bytes"], document["left"]), (2, 10, 2))
        run = self.start(*get, "--force")
        until = time.monotonic() + 30
        while not any(os.path.getsize(part) > 100_000 for part in glob.glob(self.folder + "/out/DCIM/100ABCDE/.kelva-*")):
            self.assertLess(time.monotonic(), until)
            time.sleep(0.05)
        run.send_signal(signal.SIGINT)
        _, messages = run.communicate(timeout=20)
        self.assertEqual(run.returncode, 130, messages)
        self.assertIn("kelva: Stopped: 2 of 4 files fetched (10 B), 2 left.\n", messages)
        self.fault("none")
        self.fault("unplug", 2_000_000)
        gone = self.kelva(*get, "--force")
        self.assertEqual((gone.returncode, gone.stdout), (5, "2 fetched (10 B), 0 failed, 2 left\n"), gone.stderr)

    def commands_for_one_more(self, *words):
        """What one named file more costs a command, in commands of the camera."""
        counts = []
        for files in (4, 12):
            before = self.status()["K1"]["commands"]
            run = self.kelva(*words, *(f"DCIM/100ABCDE/IMG_{number:04d}.JPG" for number in range(1, files + 1)))
            self.assertEqual(run.returncode, 0, run.stderr)
            counts.append(self.status()["K1"]["commands"] - before)
        return (counts[1] - counts[0]) / 8

    def test_a_folder_is_listed_once_for_all_files_that_are_named(self):
        picture = tiny_jpeg.jpeg([[(200, 10, 10)]]) + bytes(70_000)  # without a thumbnail, so it is read in full
        for number in range(1, 13):
            self.put(f"DCIM/100ABCDE/IMG_{number:04d}.JPG", picture)
        into = ("--force", "--into", self.folder)
        # Selected, asked for the size, and read in two pieces.
        self.assertEqual(self.commands_for_one_more("get", *into), 4)
        # The start of it, and then the whole.
        self.assertEqual(self.commands_for_one_more("thumb", *into), 7)
        self.assertEqual(self.commands_for_one_more("rm", "--dry-run"), 0)

    def test_one_file_takes_the_bytes_of_one_picture(self):
        for number in (1, 2):
            self.put(f"DCIM/100ABCDE/IMG_{number:04d}.JPG", b"bytes")
        one = self.folder + "/one.jpg"
        run = self.kelva("get", "-o", one, "IMG_*.JPG")
        self.assertEqual(run.returncode, 2, run.stderr)
        self.assertIn("matches 2 names on the camera; name one of them.", run.stderr)
        self.assertFalse(os.path.exists(one))
        self.assertEqual(self.kelva("get", "-o", one, "IMG_*1.JPG").returncode, 0)

    def test_an_empty_file_and_a_missing_one_are_told_apart(self):
        self.put("EMPTY", b"")
        self.assertEqual(self.kelva("get", "I:/EMPTY", "--into", self.folder).returncode, 0)
        self.assertEqual(os.path.getsize(self.folder + "/EMPTY"), 0)
        self.assertEqual(self.kelva("get", "I:/NOPE", "--into", self.folder).returncode, 1)

    def test_two_files_of_one_name_are_never_written_over_each_other(self):
        self.put("DCIM/100ABCDE/IMG_0001.JPG", b"one")
        self.put("DCIM/101ABCDE/IMG_0001.JPG", b"two")
        paths = ("I:/DCIM/100ABCDE/IMG_0001.JPG", "I:/DCIM/101ABCDE/IMG_0001.JPG")
        run = self.kelva("get", "--force", *paths, "--into", self.folder)
        self.assertEqual(run.returncode, 6, run.stderr)
        self.assertIn("fetch them into two folders with --into", run.stderr)
        with open(self.folder + "/IMG_0001.JPG", "rb") as file:
            self.assertEqual(file.read(), b"one")

    def test_hostile_names_stay_in_the_folder_and_off_the_terminal(self):
        names = set()
        while len(names) < 500:
            name = bytes(random.choice(b"ab.-%\x7f\xff\xc3\xe2 ~$;") for _ in range(random.randrange(1, 12)))
            if name not in (b".", b"..", b".kelva"):
                names.add(name)
        for name in names:
            with open(os.path.join(self.drive.encode(), name), "wb") as file:
                file.write(name)
        listing = self.kelva("ls").stdout
        self.assertFalse([c for c in listing if (ord(c) < 32 and c != "\n") or 127 <= ord(c) < 160])
        self.assertEqual(len(listing.splitlines()), 500)
        target = self.folder + "/names"
        os.mkdir(target)
        words = [b"I:/" + name for name in names]
        for start in range(0, 500, 100):
            run = self.kelva("get", *words[start:start + 100], "--into", target)
            self.assertEqual(run.returncode, 0, run.stderr)
        self.assertEqual(len(os.listdir(target)), 500)
        contents = set()
        for name in os.listdir(target):
            with open(os.path.join(target, name), "rb") as file:
                contents.add(file.read())
        self.assertEqual(contents, names)

    def test_each_fault_is_the_right_file_or_a_sentence_and_no_partial_file(self):
        content = random.randbytes(200_000)
        self.put("A.BIN", content)
        # Faults that put other bytes into the content of a file cannot be seen by one read; sync has the keys for that.
        for fault in ("fail", "short", "surplus1", "surplus2", "stall", "lie-size"):
            for at in range(1, 9):
                self.fault(fault, at)
                run = self.kelva("get", "I:/A.BIN", "--into", self.folder, "--timeout", "20")
                if run.returncode == 0:
                    with open(self.folder + "/A.BIN", "rb") as file:
                        self.assertEqual(file.read(), content, (fault, at))
                    os.remove(self.folder + "/A.BIN")
                else:
                    self.assertIn(run.returncode, (1, 4, 7, 8), (fault, at, run.stderr))
                    self.assertIn("kelva: ", run.stderr)
                self.assertEqual(self.fetched(), [], (fault, at))
                self.fault("none")

    def test_a_command_that_the_library_aborts_still_gives_an_event_and_a_document(self):
        aborts = 0
        for at in range(1, 9):
            self.fault("surplus2", at)
            run = self.kelva("info", "--json")
            self.fault("none")
            said = [line for line in run.stderr.splitlines() if not line.startswith("{")]
            if not said:
                continue
            aborts += 1
            self.assertEqual(len(said), 1, run.stderr)
            self.assertTrue(said[0].startswith("Assertion failed: "), run.stderr)
            event = json.loads(run.stderr.splitlines()[-1])
            self.assertEqual((event["event"], event["exit"], event["reason"]), ("error", 1, "failed"))
            document = json.loads(run.stdout)
            self.assertEqual((document["exit"], document["error"]), (1, event["message"]))
        self.assertGreater(aborts, 0)

    def test_a_camera_that_hangs_ends_at_the_deadline(self):
        self.put("A.BIN", b"x" * 100_000)
        self.fault("hang", 4)
        start = time.monotonic()
        run = self.kelva("get", "I:/A.BIN", "--into", self.folder, "--timeout", "1")
        self.assertEqual(run.returncode, 8, run.stderr)
        self.assertLess(time.monotonic() - start, 10)
        self.assertEqual(self.fetched(), [])

    def test_a_camera_that_goes_in_the_middle_is_gone(self):
        self.put("A.BIN", random.randbytes(500_000))
        self.fault("unplug", 200_000)
        run = self.kelva("get", "I:/A.BIN", "--into", self.folder)
        self.assertEqual(run.returncode, 5, run.stderr)
        self.assertEqual(self.fetched(), [])

    def test_watch_reports_plug_and_unplug_and_failing_hooks(self):
        watch = self.start("watch", "--json", "--count", "3", "--on", "attached,lost", "--exec",
                           "echo hook $KELVA_EVENT; test $KELVA_EVENT = attached")
        self.assertEqual(json.loads(watch.stdout.readline())["present"], True)
        self.vcam("unplug", "K1")
        self.assertEqual(json.loads(watch.stdout.readline())["event"], "lost")
        self.plug()
        self.assertEqual(json.loads(watch.stdout.readline())["event"], "attached")
        self.assertEqual(json.loads(watch.stdout.readline())["events"], 3)
        _, messages = watch.communicate(timeout=20)
        self.assertEqual(watch.returncode, 6, messages)
        self.assertIn("hook lost\n", messages)
        self.assertIn("hook attached\n", messages)
        self.assertIn("ended with status 1", messages)

    def test_the_command_of_watch_runs_at_plugs_alone(self):
        watch = self.start("watch", "--count", "4", "--exec", 'test -n "$KELVA_SERIAL" && echo ran at $KELVA_EVENT')
        watch.stdout.readline()
        self.unplug()
        self.plug()
        self.vcam("plug", "--serial", "CD", "--storage", self.drive, "--type", "5", "--revision", "Q42")
        out, messages = watch.communicate(timeout=20)
        self.assertEqual((watch.returncode, messages), (0, ""))
        self.assertEqual([line for line in out.splitlines() if line.startswith("ran")], ["ran at attached"])
        self.assertIn("bad ", out)

    def test_a_tool_in_the_command_of_watch_finds_the_same_bus_and_camera(self):
        self.plug("K2")
        here = os.path.dirname(self.socket)
        watch = subprocess.Popen([bench_of_cameras.BIN + "/kelva", "watch", "--virtual", os.path.basename(self.socket),
                                  "--count", "4", "--exec", f"cd / && {bench_of_cameras.BIN}/kelva info --json"],
                                 cwd=here, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        present = [watch.stdout.readline() for _ in range(2)]
        self.assertTrue(all(line.startswith("present ") for line in present), present)
        self.unplug()
        self.plug()
        out, messages = watch.communicate(timeout=20)
        self.assertEqual((watch.returncode, messages), (0, ""))
        told = [json.loads(line) for line in out.splitlines() if line.startswith("{")]
        self.assertEqual([(info["command"], info["serial"]) for info in told], [("info", "K1")])

    def test_the_environment_names_a_bus_and_the_command_line_goes_first(self):
        tool = bench_of_cameras.BIN + "/kelva"
        around = {**os.environ, "KELVA_VIRTUAL": self.socket}
        self.assertEqual(subprocess.check_output([tool, "ready"], env=around), b"ready\n")
        self.assertIn(b"K1\n", subprocess.check_output([tool, "__complete", "bash", "info", "--serial", ""], env=around))
        around["KELVA_VIRTUAL"] = "/nowhere/bus"
        self.assertEqual(self.kelva("ready", env=around).returncode, 0)
        self.assertEqual(subprocess.run([tool, "ready"], env=around, capture_output=True).returncode, 1)
        around["KELVA_VIRTUAL"] = ""
        empty = subprocess.run([tool, "list"], env=around, capture_output=True)
        del around["KELVA_VIRTUAL"]
        unset = subprocess.run([tool, "list"], env=around, capture_output=True)
        self.assertEqual((empty.returncode, empty.stdout, empty.stderr), (unset.returncode, unset.stdout, unset.stderr))

    def test_watch_reports_new_pictures(self):
        self.put("DCIM/100ABCDE/IMG_0001.JPG", b"old")
        watch = self.start("watch", "--json", "--pictures", "--count", "3", "--exec", "echo took $KELVA_PICTURE")
        self.assertEqual(json.loads(watch.stdout.readline())["event"], "attached")
        time.sleep(1)  # the first look is over
        self.put("DCIM/100ABCDE/IMG_0002.JPG", b"new")
        first = json.loads(watch.stdout.readline())
        self.assertEqual((first["event"], first["serial"], first["name"]), ("picture", "K1", "IMG_0002"))
        self.put("DCIM/100ABCDE/IMG_0001.JPG", b"another picture of an old name")
        self.assertEqual(json.loads(watch.stdout.readline())["name"], "IMG_0001")
        _, messages = watch.communicate(timeout=20)
        self.assertEqual((watch.returncode, messages),
                         (0, "took 100ABCDE/IMG_0002\ntook 100ABCDE/IMG_0001\n"))

    def test_an_idle_watch_ends_with_ctrl_c(self):
        watch = self.start("watch")
        watch.stdout.readline()
        watch.send_signal(signal.SIGINT)
        _, messages = watch.communicate(timeout=20)
        self.assertEqual(watch.returncode, 130, messages)


if __name__ == "__main__":
    bench_of_cameras.main()
