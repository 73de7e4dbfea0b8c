"""sync and get from a camera that lies about names and sizes."""

import json
import os
import random
import resource
import shutil
import signal
import subprocess
import tempfile
import unittest

import bench_of_cameras
from bench_of_cameras import digest
from hostile_camera import HostileCamera, Record

# Pieces of names that are more than letters: to a file system, a shell, a terminal, a reader of JSON.
PIECES = [b"/", b"..", b"../", b".", b"\\", b" ", b"-", b"~", b"$(", b"`", b"\"", b"'", b";", b"|", b"*", b"%", b"%2", b"\n",
          b"\r", b"\t", b"\x1b[2J", b"\x1b]0;", b"\x07", b"\x7f", b"\x9b", b"\xc2\x9b", b"\xe2\x80\xae", b"\xff", b"\xc3", b"A",
          b"a", b"CON", b"NUL", b".kelva-", b".part", b"\x01", b"\xef\xbb\xbf", b"\xf0\x9f\x98\x80"]
NUMBERS = [0, 1, 9999, 10000, -1, -2147483648, 2147483647]
SIZES = [0, 1, 2 ** 31 - 1, 2 ** 31, 2 ** 32 - 1]


def library_path(record, extension=b"JPG"):
    """The path that a host asks for: at most 47 bytes, the rest is cut off."""
    suffix, prefix = record.identity[:8].split(b"\0")[0], record.identity[8:16].split(b"\0")[0]
    folder = int.from_bytes(record.identity[16:20], "little", signed=True)
    number = int.from_bytes(record.identity[20:24], "little", signed=True)
    return (b"I:\\DCIM\\%03d%s\\%s%04d.%s" % (folder, suffix, prefix, number, extension))[:47]


def unsafe_on_a_terminal(output):
    return [c for c in output if (ord(c) < 32 and c != "\n") or 127 <= ord(c) < 160 or c in "\u202e\u2066\u200f"]


def shown(path):
    """A path as the tool prints it."""
    return path.decode().replace("\\", "/")


class HostileTest(unittest.TestCase):
    def setUp(self):
        bench_of_cameras.seed(self)
        self.folder = tempfile.mkdtemp(prefix="kelva-hostile-")
        self.addCleanup(shutil.rmtree, self.folder)
        self.target = os.path.join(self.folder, "out")

    def serve(self, records, files):
        camera = HostileCamera(os.path.join(self.folder, "bus"), records, files)
        self.addCleanup(camera.stop)
        return camera

    def kelva(self, *words):
        command = [bench_of_cameras.BIN + "/kelva", "--virtual", os.path.join(self.folder, "bus"), *words]
        return subprocess.run(command, capture_output=True, text=True, timeout=120)

    def stored(self):
        """The bytes of every file in the target, sorted."""
        contents = []
        for folder, _, names in os.walk(os.fsencode(self.target)):
            for name in names:
                if not name.startswith(b".kelva-manifest"):
                    with open(os.path.join(folder, name), "rb") as file:
                        contents.append(file.read())
        return sorted(contents)


class EndlessTest(bench_of_cameras.Bus):
    """Whatever goes on without end, every verb that reads ends at a bound, in a sentence, and in little memory."""

    # A sanitizer takes more than half as much again.
    MOST_MEMORY_KB = 900_000 if os.environ.get("KELVA_SANITIZER") else 450_000

    def clean(self, *paths):
        for path in paths:
            if os.path.isdir(path):
                shutil.rmtree(path)
            elif os.path.exists(path):
                os.remove(path)

    def ends_at(self, bound, words, *leftovers):
        """Whether the verb says so when its camera goes on without end from some command on."""
        messages = []
        for at in range(1, 20):
            self.fault("endless", at)
            run = self.kelva(*words)
            self.fault("none")
            self.clean(*leftovers)
            messages.append(run.stderr)
            # The largest of all children until now.
            self.assertLess(resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss, self.MOST_MEMORY_KB, run.stderr)
            if bound in run.stderr:
                self.assertNotEqual(run.returncode, 0)
                return
        self.fail(messages)

    def test_every_verb_that_reads_ends_at_a_bound(self):
        self.pictures(1, 1000)
        self.put("LOG.TXT", b"log")
        self.put("CRASH/A.LOG", b"crash log")
        self.put("CALIB/A.DAT", b"calibration")
        upload = os.path.join(self.folder, "upload")
        with open(upload, "wb") as file:
            file.write(b"upload")
        target = os.path.join(self.folder, "out")
        bounds = {
            ("ls", "I:/"): "goes on after 16 MiB",
            ("get", "-o", target, "I:/LOG.TXT"): "more came than the 3 bytes that the camera announced",
            ("put", upload, "I:/NEW.TXT"): "more came than the 6 bytes that the camera announced",
            ("sync", target): "more came than the 1000 bytes that the camera announced",
            ("pictures", "--sheet", target + ".html"): "more came than the 1000 bytes that the camera announced",
            ("calibration", "--into", target): "64 MiB are read at most",
            ("report", target + ".tar"): "64 MiB are read at most",
        }
        for words, bound in bounds.items():
            with self.subTest(words[0]):
                self.ends_at(bound, words, target, target + ".html", target + ".tar", self.drive + "/NEW.TXT")


class HostileNamesTest(HostileTest):
    COUNT = 600

    def setUp(self):
        super().setUp()
        by_path = {}
        while len(by_path) < self.COUNT:
            suffix, prefix = (b"".join(random.choices(PIECES, k=random.randrange(5)))[:8] for _ in range(2))
            record = Record(suffix, prefix, random.choice([100, 101, *NUMBERS]),
                            random.choice([random.randrange(10000), *NUMBERS]))
            # One path, one picture: two records for one path are told apart by nothing.
            by_path.setdefault(library_path(record), record)
        self.files = {path: b"content of " + path for path in by_path}
        self.camera = self.serve(list(by_path.values()), self.files)

    def test_every_file_stays_below_the_target_whole_and_alone(self):
        run = self.kelva("sync", self.target)
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertEqual(self.stored(), sorted(self.files.values()))
        self.assertEqual(sorted(os.listdir(self.folder)), ["bus", "out"])
        for folder, folders, names in os.walk(self.target):
            for name in folders + names:
                self.assertFalse(unsafe_on_a_terminal(name) or "\n" in name, name)
                self.assertFalse(name.startswith(".") and not name.startswith(".kelva-manifest"), name)

    def test_a_second_run_knows_them_all(self):
        self.assertEqual(self.kelva("sync", "--quiet", self.target).returncode, 0)
        self.camera.read.clear()
        run = self.kelva("sync", "--json", self.target)
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertEqual(json.loads(run.stdout)["known"], self.COUNT)
        self.assertEqual(self.camera.read, [])

    def test_one_pattern_for_all_makes_no_name_of_two(self):
        run = self.kelva("sync", "--pattern", "{stem}.{ext}", self.target)
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertEqual(self.stored(), sorted(self.files.values()))

    def test_nothing_reaches_a_terminal_as_it_came(self):
        for words in (("sync", "--dry-run", self.target), ("sync", self.target), ("pictures",),
                      ("sync", "--json", self.folder + "/again")):
            run = self.kelva(*words)
            self.assertEqual(run.returncode, 0, run.stderr)
            self.assertEqual(unsafe_on_a_terminal(run.stdout + run.stderr), [], words)
        for line in run.stdout.splitlines():
            json.loads(line)


class HostileSizesTest(HostileTest):
    SIZE = 3000

    def setUp(self):
        super().setUp()
        self.files, records = {}, []
        for number in range(4):
            content = random.randbytes(self.SIZE + number)
            # Every second one has no key, as cameras have them that know none.
            records.append(Record(b"ABCDE", b"IMG_", 100, number, key=digest(content) if number % 2 else "",
                                  size=len(content)))
            self.files[library_path(records[-1])] = content
        self.camera = self.serve(records, self.files)

    def lies(self):
        """What is said, in each place alone and in all of them."""
        near = [self.SIZE - 1, self.SIZE + 1, self.SIZE // 2, self.SIZE + 100_000]
        for claim in SIZES + near:
            for places in (["catalogue"], ["listing"], ["selection"], ["listing", "selection"]):
                with self.subTest(claim=claim, places=places):
                    for place in self.camera.claims:
                        self.camera.claims[place] = claim if place in places else None
                    yield places
        for place in self.camera.claims:
            self.camera.claims[place] = None

    def only_right_ones(self, lied_twice):
        """Where size and listing agree on a lie, only a key shows it: a smaller file is then a possible one."""
        for content in self.stored():
            possible = [file for file in self.files.values() if file == content or
                        (lied_twice and file.startswith(content))]
            self.assertTrue(possible, f"{len(content)} bytes are no file of the camera")

    def test_sync_keeps_right_files_only_and_is_completed_by_the_truth(self):
        for places in self.lies():
            shutil.rmtree(self.target, ignore_errors=True)
            run = self.kelva("sync", self.target)
            self.assertIn(run.returncode, (0, 1, 6), run.stderr)
            agreed = "listing" in places and "selection" in places
            self.only_right_ones(agreed)
            for place in self.camera.claims:
                self.camera.claims[place] = None
            run = self.kelva("sync", self.target)
            self.assertEqual(run.returncode, 0, run.stderr)
            if not agreed:
                self.assertEqual(self.stored(), sorted(self.files.values()))

    def test_get_keeps_right_files_only(self):
        path, content = list(self.files.items())[1]
        for places in self.lies():
            shutil.rmtree(self.target, ignore_errors=True)
            os.mkdir(self.target)
            run = self.kelva("get", path.decode(), "--into", self.target)
            self.assertIn(run.returncode, (0, 1), run.stderr)
            if "listing" not in places:
                self.assertIn(self.stored(), ([], [content]))


class HostileEndsTest(HostileTest):
    """Files that end the process that reads them."""

    def setUp(self):
        super().setUp()
        records = [Record(b"ABCDE", b"IMG_", 100, number) for number in range(8)]
        self.files = {library_path(record): b"content of %d" % number for number, record in enumerate(records)}
        self.paths = list(self.files)
        self.camera = self.serve(records, self.files)

    def printed(self, path):
        return path.decode()

    def test_each_bad_file_is_one_error(self):
        self.camera.surplus = set(self.paths[1::2])
        self.camera.files = {path: content for path, content in self.files.items() if path != self.paths[0]}
        bad = 1 + len(self.camera.surplus)
        run = self.kelva("sync", self.target)
        self.assertEqual(run.returncode, 6, run.stderr)
        sentences = [line for line in run.stderr.splitlines() if line.startswith("kelva: ")]
        self.assertEqual((len(sentences), len(set(sentences))), (bad, bad), run.stderr)
        self.assertIn(f"{len(self.files) - bad} stored", run.stdout)
        self.assertIn(f"{bad} failed", run.stdout)

    def test_each_bad_file_is_one_event(self):
        self.camera.surplus = set(self.paths[1::2])
        run = self.kelva("sync", "--json", self.target)
        self.assertEqual(run.returncode, 6, run.stderr)
        events = [json.loads(line) for line in run.stdout.splitlines()]
        failed = [event for event in events if event.get("event") == "failed"]
        self.assertEqual(sorted(event["path"] for event in failed), sorted(map(self.printed, self.camera.surplus)))
        self.assertEqual({event["reason"] for event in failed}, {"failed"})
        errors = [line for line in run.stderr.splitlines() if '"event":"error"' in line]
        self.assertEqual(len(errors), len(self.camera.surplus), run.stderr)
        self.assertEqual(events[-1]["failed"], len(self.camera.surplus))

    def test_each_picture_that_cannot_be_drawn_is_one_error_of_the_sheet(self):
        self.camera.surplus = set(self.paths[1::2])
        run = self.kelva("pictures", "--sheet", os.path.join(self.folder, "sheet.html"))
        self.assertEqual(run.returncode, 6, run.stderr)
        sentences = [line for line in run.stderr.splitlines() if line.startswith("kelva: ")]
        self.assertEqual((len(sentences), len(set(sentences))), (len(self.files), len(self.files)), run.stderr)

    def kill_workers_at(self, path, times):
        """Kills the process that reads when it asks for a file."""
        kills = []

        def kill(asked):
            if asked == path and len(kills) < times:
                kills.append(path)
                with open(f"/proc/{self.run.pid}/task/{self.run.pid}/children", encoding="ascii") as children:
                    os.kill(int(children.read()), signal.SIGKILL)

        self.camera.on_select = kill

    def sync(self, *words):
        command = [bench_of_cameras.BIN + "/kelva", "--virtual", os.path.join(self.folder, "bus"), "sync", *words, self.target]
        # The camera answers in this process while the command runs.
        self.run = subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        printed, said = self.run.communicate(timeout=60)
        return self.run.returncode, printed, said

    def test_a_worker_that_is_killed_is_said_and_nothing_is_missing(self):
        self.kill_workers_at(self.paths[3], 1)
        code, printed, said = self.sync()
        self.assertEqual(code, 0, said)
        self.assertEqual(said, f"kelva: The process that read {shown(self.paths[3])} was killed (signal 9, Killed), as happens "
                               "when memory runs out; another one tries that file once more.\n")
        self.assertEqual(self.stored(), sorted(self.files.values()))

    def test_a_file_at_which_two_workers_were_killed_is_left_out(self):
        self.kill_workers_at(self.paths[3], 9)
        code, printed, said = self.sync("--quiet")
        self.assertEqual(code, 6, said)
        self.assertEqual(said, f"kelva: Two processes that read {shown(self.paths[3])} were killed, so the file was left out; close "
                               "other programs and try again.\n")
        del self.files[self.paths[3]]
        self.assertEqual(self.stored(), sorted(self.files.values()))
        self.assertIn("1 failed", printed)


if __name__ == "__main__":
    bench_of_cameras.main()
