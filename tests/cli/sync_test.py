"""sync loses nothing and stores nothing half, whatever goes wrong; a second run completes it."""

import contextlib
import fcntl
import json
import os
import re
import shutil
import signal
import sqlite3
import subprocess
import time

import bench_of_cameras
from bench_of_cameras import Bus

FILLED = os.path.join(os.path.dirname(os.path.abspath(__file__)), "filled")


class SyncTest(Bus):
    def setUp(self):
        super().setUp()
        self.target = os.path.join(self.folder, "out")

    def complete(self, count):
        run = self.kelva("sync", self.target)
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertEqual(self.whole_files_only(self.target), count)

    def test_the_same_name_in_two_folders_stays_two_files(self):
        self.put("DCIM/100ABCDE/IMG_0001.JPG", b"one")
        self.put("DCIM/101ABCDE/IMG_0001.JPG", b"two")
        self.complete(2)

    def test_one_folder_for_all_numbers_what_would_collide_and_shows_it_before(self):
        self.put("DCIM/100ABCDE/IMG_0001.JPG", b"one")
        self.put("DCIM/101ABCDE/IMG_0001.JPG", b"two")
        words = ("sync", "--pattern", "{name}", self.target)
        preview = self.kelva(*words, "--dry-run").stdout
        self.assertEqual(re.findall("->  (.*)  3 B", preview), ["IMG_0001.JPG", "IMG_0001-2.JPG"])
        self.assertFalse(os.path.exists(self.target))
        self.assertEqual(self.kelva(*words).returncode, 0)
        with open(self.target + "/IMG_0001.JPG", "rb") as first, open(self.target + "/IMG_0001-2.JPG", "rb") as second:
            self.assertEqual((first.read(), second.read()), (b"one", b"two"))

    def test_files_of_a_picture_keep_one_name_also_over_two_runs(self):
        self.put("DCIM/100ABCDE/IMG_0001.JPG", b"an old picture")
        self.complete(1)
        os.remove(os.path.join(self.drive, "DCIM/100ABCDE/IMG_0001.JPG"))
        self.put("DCIM/100ABCDE/IMG_0001.JPG", b"a new picture")
        self.put("DCIM/100ABCDE/IMG_0001.RAW", b"its raw data")
        self.assertEqual(self.kelva("sync", "--types", "jpg", self.target).returncode, 0)
        self.assertEqual(self.kelva("sync", self.target).returncode, 0)
        folder = os.path.join(self.target, "100ABCDE")
        self.assertEqual(sorted(os.listdir(folder)), ["IMG_0001-2.JPG", "IMG_0001-2.RAW", "IMG_0001.JPG"])
        self.assertEqual(self.kelva("sync", self.target).stdout.split()[0], "0")

    def test_a_picture_is_known_whichever_of_its_files_are_still_on_the_camera(self):
        names = ("IMG_0001.JPG", "IMG_0001.RAW", "IMG_0001.TXT")
        for name in names[:2]:
            self.put("DCIM/100ABCDE/" + name, name.encode())
        self.complete(2)
        os.remove(os.path.join(self.drive, "DCIM/100ABCDE", names[0]))
        preview = json.loads(self.kelva("sync", "--dry-run", "--json", self.target).stdout.splitlines()[-1])
        self.assertEqual((preview["new"], preview["known"]), (0, 1))
        self.put("DCIM/100ABCDE/" + names[2], names[2].encode())
        run = json.loads(self.kelva("sync", "--json", self.target).stdout.splitlines()[-1])
        self.assertEqual((run["stored"], run["known"], run["numbered"]), (1, 1, 0))
        self.assertEqual(sorted(os.listdir(os.path.join(self.target, "100ABCDE"))), list(names))
        run = self.kelva("sync", "--delete-after-verify", self.target)
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertEqual(os.listdir(os.path.join(self.drive, "DCIM/100ABCDE")), [])

    def test_a_picture_that_was_put_back_on_the_card_is_deleted_again(self):
        self.pictures(3, 100)
        card = os.path.join(self.drive, "DCIM")
        shutil.copytree(card, os.path.join(self.folder, "copy"))
        for _ in range(2):
            run = json.loads(self.kelva("sync", "--delete-after-verify", "--json", self.target).stdout.splitlines()[-1])
            self.assertEqual((run["deleted"], run["to_delete"], run["failed"]), (3, 3, 0))
            self.assertEqual(os.listdir(os.path.join(card, "100ABCDE")), [])
            shutil.copytree(os.path.join(self.folder, "copy"), card, dirs_exist_ok=True)
        self.assertEqual(run["stored"], 0)

    def test_a_damaged_list_is_one_sentence_and_nothing_is_written(self):
        self.pictures(60, 10)
        self.complete(60)
        path = os.path.join(self.target, ".kelva-manifest.sqlite")
        os.truncate(path, 4096 + 2000)
        with open(path, "rb") as file:
            damaged = file.read()
        before = self.status()["K1"]["commands"]
        for words in (("sync",), ("sync", "--dry-run")):
            run = self.kelva(*words, self.target)
            self.assertEqual(run.returncode, 1)
            self.assertRegex(run.stderr, r"^kelva: The list of fetched files [^ ]*/out/\.kelva-manifest\.sqlite is damaged "
                                         r"\([^\n]*\); move it away, and files that are here are recognised by their "
                                         r"content\.\n$")
        self.assertEqual(self.status()["K1"]["commands"], before)
        with open(path, "rb") as file:
            self.assertEqual(file.read(), damaged)
        os.rename(path, path + ".away")
        run = self.kelva("sync", "--json", self.target)
        self.assertEqual(json.loads(run.stdout.splitlines()[-1])["already_here"], 60)

    def test_a_folder_that_takes_no_file_is_one_sentence_and_nothing_is_read(self):
        self.pictures(5, 10)
        os.mkdir(self.target)
        os.chmod(self.target, 0o555)
        run = self.sync_as_another_user()
        self.assertEqual(run.returncode, 1, run.stderr)
        self.assertRegex(run.stderr, r"^kelva: Cannot create a file in [^ ]*/out: Permission denied[^\n]*\n$")

    def sync_as_another_user(self, *words):
        os.chmod(self.folder, 0o755)
        os.chmod(self.socket, 0o777)
        return subprocess.run(["setpriv", "--reuid=65534", "--regid=65534", "--clear-groups", bench_of_cameras.BIN + "/kelva", "--virtual",
                               self.socket, "sync", *words, self.target], capture_output=True, text=True)

    def test_a_folder_below_that_takes_no_file_is_one_sentence_and_nothing_is_read_for_it(self):
        self.pictures(5, 10)
        os.makedirs(os.path.join(self.target, "100ABCDE"))
        os.chmod(os.path.join(self.target, "100ABCDE"), 0o555)
        os.chown(self.target, 65534, 65534)
        run = self.sync_as_another_user("--json")
        self.assertEqual(run.returncode, 1, run.stderr)
        # The same command would fail again, so it is not what the last line advises.
        self.assertEqual(json.loads(run.stderr.splitlines()[-1])["event"], "error", run.stderr)
        self.assertNotIn("Run the same command again", run.stderr)
        self.assertIn("Permission denied", run.stderr)
        document = json.loads(run.stdout)
        self.assertEqual((document["stored"], document["failed"], document["left"]), (0, 0, 5))

    def test_the_folders_above_a_target_are_made(self):
        self.target = os.path.join(self.folder, "new/deep/er")
        self.pictures(2, 10)
        self.complete(2)

    def test_too_many_bytes_end_one_file_and_not_the_rest(self):
        self.pictures(4, 70_000)
        for at in (5, 9, 12):
            self.fault("surplus2", at)
            run = self.kelva("sync", self.target)
            self.assertIn(run.returncode, (0, 6), run.stderr)
            self.whole_files_only(self.target)
            self.fault("none")
        self.complete(4)

    def test_too_many_bytes_of_a_known_file_leave_it_and_delete_the_rest(self):
        self.pictures(3, 100)
        self.unplug()
        self.vcam("plug", "--serial", "K1", "--storage", self.drive, "--no-keys")
        self.complete(3)
        # Two commands for the catalogue, five to look for other files; then, to delete, two for the catalogue, two for each
        # of two looks at the folder, and the third of the first file.
        self.fault("surplus2", 16)
        run = self.kelva("sync", "--delete-after-verify", "--json", self.target)
        document = json.loads(run.stdout.splitlines()[-1])
        self.assertEqual((run.returncode, document["deleted"], document["failed"]), (6, 2, 1), run.stderr)
        self.assertEqual(len(os.listdir(self.drive + "/DCIM/100ABCDE")), 1)

    def test_ctrl_c_ends_it_within_a_second(self):
        self.pictures(4, 700_000)
        self.fault("slow", 50)
        run = self.start("sync", self.target)
        time.sleep(0.7)
        run.send_signal(signal.SIGINT)
        asked = time.monotonic()
        _, messages = run.communicate(timeout=20)
        self.assertEqual(run.returncode, 130, messages)
        self.assertRegex(messages, r"Stopped: [0-4] of 4 files stored, 0 deleted on the camera; the same command goes on\.")
        self.assertLess(time.monotonic() - asked, 5)
        self.whole_files_only(self.target)
        self.fault("none")
        self.complete(4)

    def test_a_run_that_is_ended_gives_all_numbers(self):
        self.pictures(4, 700_000)
        self.complete(4)
        for number in range(5, 9):
            self.put(f"DCIM/100ABCDE/IMG_{number:04d}.JPG", os.urandom(700_000))
        self.fault("slow", 50)
        for words, code, start in ((("--timeout", "1.5"), 8, "Timed out after 1.5 s: "), ((), 130, "Stopped: ")):
            with self.subTest(code=code):
                run = self.start("sync", "--json", *words, self.target)
                if not words:
                    time.sleep(0.7)
                    run.send_signal(signal.SIGINT)
                out, _ = run.communicate(timeout=20)
                self.assertEqual(run.returncode, code)
                document = json.loads(out.splitlines()[-1])
                self.assertEqual((document["serial"], document["exit"], document["failed"], document["deleted"]), ("K1", code, 0, 0))
                self.assertEqual(document["stored"] + document["known"] + document["left"], 8)
                self.assertEqual(document["bytes"], 700_000 * document["stored"])
                self.assertTrue(document["error"].startswith(start), document["error"])

    def test_every_end_has_all_members(self):
        members = {"stored", "bytes", "already_here", "checked", "read_twice", "size_only", "unlike_key", "numbered", "resumed",
                   "undated", "known", "others", "others_bytes", "failed", "left", "deleted", "to_delete", "exit", "ok"}

        def end(code, *words):
            run = self.kelva("sync", "--json", *words, self.target)
            self.assertEqual(run.returncode, code, run.stderr)
            document = json.loads(run.stdout.splitlines()[-1])
            self.assertEqual(members - set(document), set())
            self.assertEqual("error" in document, code not in (0, 6))
            return document

        self.pictures(3, 100_000)
        end(3, "--serial", "K9")
        end(0)
        with open(self.target + "/.kelva-manifest.lock", "r+b") as lock:
            fcntl.flock(lock, fcntl.LOCK_EX)
            self.assertEqual(end(4)["serial"], "K1")
        self.put("DCIM/100ABCDE/IMG_0009.JPG", bytes(100_000))
        self.fault("unplug", 50_000)
        self.assertEqual(end(5)["left"], 1)
        end(3)
        self.vcam("plug", "--serial", "K1", "--storage", self.drive)
        with open(self.target + "/.kelva-manifest.sqlite", "r+b") as manifest:
            manifest.write(bytes(100))
        end(1)

    def test_a_target_that_cannot_be_made_is_one_sentence(self):
        self.pictures(1, 10)
        run = self.kelva("sync", "/proc/nowhere")
        self.assertEqual(run.returncode, 1)
        self.assertEqual(len(run.stderr.splitlines()), 1, run.stderr)

    def test_verified_files_are_deleted_on_the_camera_and_only_those(self):
        self.pictures(2, 1000)
        self.put("NOTE.TXT", b"stays")
        run = self.kelva("sync", "--delete-after-verify", "--json", self.target)
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertEqual(json.loads(run.stdout.splitlines()[-1])["deleted"], 2)
        self.assertEqual(os.listdir(self.drive + "/DCIM/100ABCDE"), [])
        self.assertTrue(os.path.exists(self.drive + "/NOTE.TXT"))
        self.assertEqual(len(os.listdir(self.target + "/100ABCDE")), 2)

    def others(self):
        self.pictures(2, 1000)
        self.put("DCIM/100ABCDE/MVI_0001.MP4", b"a video")
        self.put("DCIM/100ABCDE/Zürich.JPG", b"a town")
        self.put("DCIM/My folder/deep/IMG_0005 (1).JPG", b"a copy")
        self.put("MISC/AUTPRINT.MRK", b"a list")
        self.put("LOG.TXT", b"not a picture's")
        return {"100ABCDE/MVI_0001.MP4", "100ABCDE/Zürich.JPG", "My folder/deep/IMG_0005 (1).JPG", "MISC/AUTPRINT.MRK"}

    def test_what_is_not_in_the_catalogue_is_counted_and_said(self):
        self.others()
        run = self.kelva("sync", self.target)
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertIn("\n4 other files (25 B) below DCIM and MISC were not fetched; --everything fetches them.\n", run.stdout)
        self.assertIn("4 other files (25 B)", self.kelva("sync", "-n", self.target).stdout)
        self.assertEqual(self.whole_files_only(self.target), 2)

    def test_everything_is_fetched_once_and_deleted_when_it_was_read_twice(self):
        others = self.others()
        preview = self.kelva("sync", "--everything", "-n", self.target).stdout
        for name in others:
            self.assertIn(f"->  '{name}'  " if " " in name else f"->  {name}  ", preview)
        run = self.kelva("sync", "--everything", "--json", self.target)
        document = json.loads(run.stdout.splitlines()[-1])
        self.assertEqual((run.returncode, document["stored"], document["others"], document["left"]), (0, 6, 0, 0), run.stderr)
        found = {os.path.relpath(os.path.join(folder, name), self.target)
                 for folder, _, names in os.walk(self.target) for name in names}
        self.assertTrue(others <= found, found)
        self.put("DCIM/100ABCDE/MVI_0002.MP4", b"a new video")
        for words, stored, known, others in (((), 0, 2, 1), (("--everything",), 1, 6, 0), (("--everything",), 0, 7, 0)):
            run = self.kelva("sync", *words, "--json", self.target)
            document = json.loads(run.stdout.splitlines()[-1])
            self.assertEqual((document["stored"], document["known"], document["others"]), (stored, known, others), words)
        run = self.kelva("sync", "--everything", "--delete-after-verify", "--json", self.target)
        self.assertEqual(json.loads(run.stdout.splitlines()[-1])["deleted"], 7, run.stderr)
        self.assertEqual([names for _, _, names in os.walk(self.drive) if names], [["LOG.TXT"]])

    def test_a_folder_that_an_earlier_build_filled_goes_on(self):
        for filled, words in (("by-folder", ()), ("by-name", ("--pattern", "{name}"))):
            with self.subTest(filled=filled):
                target = os.path.join(self.folder, filled)
                stored = self.fill(target, filled + ".sql")
                for new in (0, 0, 1):
                    if new:
                        self.put("DCIM/102ABCDE/IMG_0007.JPG", b"new")
                    run = self.kelva("sync", "--json", *words, target)
                    document = json.loads(run.stdout.splitlines()[-1])
                    self.assertEqual((document["stored"], document["known"]), (new, 7), run.stderr)
                    found = {os.path.join(folder, name) for folder, _, names in os.walk(target) for name in names}
                    self.assertEqual(len(found - stored), new, found - stored)
                shutil.rmtree(self.drive + "/DCIM/102ABCDE")

    def fill(self, target, list_of_files):
        """A folder as an earlier build left it, and on the camera the same pictures; one was renamed here since."""
        os.mkdir(target)
        stored = {os.path.join(target, ".kelva-manifest" + end) for end in (".sqlite", ".lock")}
        with open(os.path.join(FILLED, list_of_files), encoding="utf-8") as file:
            with contextlib.closing(sqlite3.connect(os.path.join(target, ".kelva-manifest.sqlite"))) as manifest:
                manifest.executescript(file.read())
                rows = manifest.execute("SELECT picture, path FROM files").fetchall()
        for picture, path in rows:
            folder = f"{int.from_bytes(bytes.fromhex(picture)[16:20], 'little')}ABCDE"
            name = os.path.basename(path).replace("-2", "")
            content = f"the content of {folder}/{name}\n".encode()
            self.put(f"DCIM/{folder}/{name}", content)
            os.makedirs(os.path.dirname(os.path.join(target, path)), exist_ok=True)
            mine = os.path.join(target, path.replace("IMG_0002.JPG", "the cat.jpg"))
            with open(mine, "wb") as file:
                file.write(content)
            stored.add(mine)
        return stored


if __name__ == "__main__":
    bench_of_cameras.main()
