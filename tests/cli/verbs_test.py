"""What holds for every command: JSON, quiet, deadlines, Ctrl-C, exit statuses. One table, one camera for each command."""

import json
import os
import signal
import subprocess
import time

import bench_of_cameras
import tiny_jpeg
from bench_of_cameras import Bus, digest

PICTURE = tiny_jpeg.jpeg([[(90, 90, 90)]])
KEY = digest(PICTURE)
# The words after each command's name. {out} is a folder of its own, {image} a file of this computer.
VERBS = {
    "list": "", "watch": "--count 1", "wait": "", "info": "", "ready": "", "battery": "", "done-count": "", "capture": "",
    "reboot": "", "time": "", "ls": "", "tree": "", "pictures": "", "pictures rm": "IMG_0001", "thumb": "IMG_0001 --into {out}",
    "sync": "{out}",
    "get": "I:/NOTE.TXT --into {out}", "mount": "{out}/mount", "put": "{image} I:/PUT.BIN", "rm": "I:/NOTE.TXT",
    "batch get": KEY + " --into {out}", "batch rm": KEY, "raw": KEY + " --into {out}", "wifi name": "den",
    "wifi passphrase": "", "wifi auth": "WPA2", "wifi off": "", "control": "", "control get": "",
    "control set": "3 bright", "console": "", "monitor": "help", "crash-logs": "--into {out}",
    "calibration": "--into {out}", "upgrade": "--yes {image}", "report": "{out}/report.tar",
    "survey": "--yes {out}/survey", "doctor": "", "completion": "bash", "manual": "", "help": "",
}
# These look at no camera, or at the machine's alone.
WITHOUT_CAMERA = {"doctor", "completion", "manual", "help"}
# These ask the system about cameras and send them nothing.
WITHOUT_COMMAND = WITHOUT_CAMERA | {"list", "watch", "wait"}
# A second name that a command answers to; help and manual do not list it.
SECOND_NAMES = {"control get"}
COMMANDS = sorted(VERBS.keys() - WITHOUT_COMMAND)


def setUpModule():
    if not os.path.exists(bench_of_cameras.BIN + "/kelva-mount"):  # only Linux can mount a camera
        del VERBS["mount"]
        COMMANDS.remove("mount")


ABREAST = 12


class EveryVerbTest(Bus):
    def setUp(self):
        super().setUp()
        self.serials = {}
        for number, verb in enumerate(VERBS):
            self.serials[verb] = f"V{number}"
            os.makedirs(self.out(verb))
        self.image = self.folder + "/image.bin"
        with open(self.image, "wb") as file:
            file.write(b"\1firmware")
        self.secret = self.folder + "/secret"
        with open(self.secret, "w", encoding="ascii") as file:
            file.write("nine chars and more\n")

        self.addCleanup(self.unmount)

    def unmount(self):
        mount = os.path.join(self.out("mount"), "mount") if "mount" in VERBS else ""
        if os.path.ismount(mount):
            subprocess.run(["fusermount3", "-uz", mount], check=True)

    def out(self, verb):
        return os.path.join(self.folder, "outs", self.serials[verb])

    def plug_all(self, verbs):
        for verb in verbs:
            drive = os.path.join(self.folder, "drives", self.serials[verb])
            for name, content in (("NOTE.TXT", b"note"), ("DCIM/100ABCDE/IMG_0001.JPG", PICTURE),
                                  ("DCIM/100ABCDE/IMG_0001.RAW", b"raw data"), ("CRASH/A.LOG", b"crash"),
                                  ("CALIB/GAIN", b"gain")):
                os.makedirs(os.path.dirname(os.path.join(drive, name)), exist_ok=True)
                with open(os.path.join(drive, name), "wb") as file:
                    file.write(content)
            self.plug(self.serials[verb], drive)

    def words(self, verb, *more):
        words = VERBS[verb].format(out=self.out(verb), image=self.image).split()
        serial = [] if verb in WITHOUT_CAMERA else ["-s", self.serials[verb]]
        return [*verb.split(), *words, *serial, *more]

    def begin(self, verb, *more, out=subprocess.PIPE):
        command = self.command(*self.words(verb, *more))
        if verb == "doctor":
            command = [command[0], *command[3:]]
        with open(self.secret if verb == "wifi passphrase" else os.devnull, encoding="ascii") as given:
            return subprocess.Popen(command, stdin=given, stdout=out, stderr=subprocess.PIPE, text=True)

    def run_all(self, verbs, check, *more):
        """Runs the commands, some at a time, and hands verb, exit status, output and messages of each to `check`."""
        verbs = list(verbs)
        for start in range(0, len(verbs), ABREAST):
            begun = [(verb, self.begin(verb, *more)) for verb in verbs[start:start + ABREAST]]
            for verb, run in begun:
                out, messages = run.communicate(timeout=60)
                with self.subTest(verb=verb):
                    check(verb, run.returncode, out, messages)

    def is_documented(self, verb, code, out, messages):
        """Every line is JSON, and the last one on standard output says how the command ended. Returns it."""
        for line in out.splitlines() + messages.splitlines():
            self.assertEqual(json.loads(line)["schema"], 1, line)
        for line in out.splitlines()[:-1] + messages.splitlines():
            self.assertIn("event", json.loads(line))
        document = json.loads(out.splitlines()[-1])
        self.assertEqual((document["command"], document["exit"], document["ok"]), (verb, code, code == 0))
        return document

    def test_the_table_has_every_verb(self):
        pages = os.path.join(self.folder, "pages")
        self.assertEqual(self.kelva("manual", "--into", pages).returncode, 0)
        expected = {"kelva.1"} | {"kelva-" + verb.replace(" ", "-") + ".1" for verb in VERBS.keys() - SECOND_NAMES}
        self.assertEqual(set(os.listdir(pages)), expected)

    def test_json_ends_with_one_document(self):
        self.plug_all(VERBS.keys() - WITHOUT_CAMERA)

        def check(verb, code, out, messages):
            # This machine may have a camera or none.
            self.assertIn(code, (0, 1) if verb == "doctor" else (0,), messages)
            document = self.is_documented(verb, code, out, messages)
            if verb in COMMANDS:
                self.assertEqual(document["serial"], self.serials[verb])

        self.run_all(VERBS, check, "--json")

    def test_quiet_says_nothing_but_errors(self):
        self.plug_all(VERBS.keys() - WITHOUT_CAMERA)

        def check(verb, code, _, messages):
            self.assertIn(code, (0, 1) if verb == "doctor" else (0,))
            self.assertEqual(messages, "")

        self.run_all(VERBS, check, "--quiet")

    def test_what_the_system_says_of_this_machine_is_a_note(self):
        environment = {name: value for name, value in os.environ.items() if not name.startswith("KELVA_")}
        for words in (["list"], ["watch", "--timeout", "0.3"]):
            command = [bench_of_cameras.BIN + "/kelva", *words]
            run = subprocess.run([*command, "--json"], capture_output=True, text=True, timeout=60, env=environment)
            for line in run.stderr.splitlines():
                self.assertIn(json.loads(line)["event"], ("note", "error"))
            run = subprocess.run([*command, "--quiet"], capture_output=True, text=True, timeout=60, env=environment)
            self.assertEqual(len(run.stderr.splitlines()), 1 if run.returncode else 0, run.stderr)

    def test_quiet_still_says_what_went_wrong(self):
        def check(_, code, out, messages):
            self.assertEqual((code, out), (3, ""))
            self.assertEqual(len(messages.splitlines()), 1, messages)

        self.run_all(COMMANDS, check, "--quiet")

    def test_a_camera_that_is_not_there_is_no_other_one(self):
        def check(verb, code, out, messages):
            self.assertEqual(code, 3, messages)
            document = self.is_documented(verb, code, out, messages)
            self.assertEqual(document["reason"], "no-camera")
            self.assertIn("K1", document["error"])

        self.run_all(COMMANDS, check, "--json")

    def test_several_cameras_without_a_choice_are_listed(self):
        self.plug("K2")
        for verb in COMMANDS:
            words = VERBS[verb].format(out=self.out(verb), image=self.image).split()
            with self.subTest(verb=verb):
                run = self.kelva(*verb.split(), *words, input="nine chars and more\n")
                self.assertEqual(run.returncode, 2, run.stderr)
                self.assertIn("K1, K2", run.stderr)

    def test_a_held_camera_is_busy_and_its_holder_is_named(self):
        self.fault("hang", 1)
        holder = self.start("battery")
        self.wait_until_held("K1")

        def check(verb, code, out, messages):
            self.assertEqual(code, 4, messages)
            document = self.is_documented(verb, code, out, messages)
            self.assertEqual(document["reason"], "busy")
            self.assertIn(f"kelva (process {holder.pid})", document["error"])

        self.run_all(COMMANDS, check, "--json", "-s", "K1", "--wait-busy", "0")
        holder.send_signal(signal.SIGINT)
        holder.communicate(timeout=60)
        self.assertEqual(holder.returncode, 130)

    def test_a_deadline_ends_a_command_whose_camera_hangs(self):
        self.plug_all(COMMANDS)
        for verb in COMMANDS:
            self.fault("hang", 1, serial=self.serials[verb])

        def check(verb, code, out, messages):
            self.assertEqual(code, 8, messages)
            document = self.is_documented(verb, code, out, messages)
            self.assertEqual(document["reason"], "timed-out")
            self.assertIn("Timed out after 0.5 s", document["error"])

        self.run_all(COMMANDS, check, "--json", "--timeout", "0.5")

    def test_ctrl_c_ends_a_command_whose_camera_hangs_and_sends_nothing_twice(self):
        self.plug_all(COMMANDS)
        for verb in COMMANDS:
            self.fault("hang", 1, serial=self.serials[verb])
        before = self.status()
        for start in range(0, len(COMMANDS), ABREAST):
            verbs = COMMANDS[start:start + ABREAST]
            begun = [(verb, self.begin(verb, "--json")) for verb in verbs]
            self.wait_until_held(*(self.serials[verb] for verb in verbs))
            for verb, run in begun:
                with self.subTest(verb=verb):
                    run.send_signal(signal.SIGINT)
                    sent = time.monotonic()
                    out, messages = run.communicate(timeout=60)
                    # A second is the promise; a machine that also does other work gets some more here.
                    self.assertLess(time.monotonic() - sent, 5)
                    self.assertEqual(run.returncode, 130, messages)
                    document = self.is_documented(verb, 130, out, messages)
                    self.assertEqual(document["reason"], "interrupted")
                    self.assertRegex(messages, r"Stopped[.:] ")
        after = self.status()
        for verb in COMMANDS:
            serial = self.serials[verb]
            self.assertLessEqual(after[serial]["commands"] - before[serial]["commands"], 1, verb)
            self.assertEqual([name for name in os.listdir(self.out(verb)) if name.endswith(".part")], [], verb)

    def test_without_a_reader_it_ends_and_says_nothing(self):
        self.plug_all(VERBS.keys() - WITHOUT_CAMERA)
        for verb in VERBS:
            with self.subTest(verb=verb):
                reader, writer = os.pipe()
                os.close(reader)
                run = self.begin(verb, "--json", out=writer)
                os.close(writer)
                messages = run.communicate(timeout=60)[1]
                self.assertEqual(run.returncode, 141, messages)
                self.assertNotIn('"event":"error"', messages)

    def test_waiting_ends_with_ctrl_c_and_with_a_deadline(self):
        for words in (["watch", "--json"], ["wait", "-s", "nobody", "--json"]):
            with self.subTest(words=words):
                run = self.kelva(*words, "--timeout", "0.3")
                self.assertEqual(run.returncode, 8, run.stderr)
                self.assertNotIn("longer --timeout", run.stderr)
                run = self.start(*words)
                time.sleep(0.3)
                run.send_signal(signal.SIGINT)
                out, messages = run.communicate(timeout=60)
                self.assertEqual(run.returncode, 130, messages)
                self.assertEqual(json.loads(out.splitlines()[-1])["reason"], "interrupted")

    def test_wrong_words_are_usage_errors(self):
        for verb in VERBS:
            with self.subTest(verb=verb):
                run = self.kelva(*self.words(verb, "--no-such-option", "--json"))
                self.assertEqual(run.returncode, 2, run.stderr)
                document = json.loads(run.stdout)
                self.assertEqual((document["exit"], document["reason"]), (2, "usage"))
                # What stands where a passphrase may stand is not repeated.
                secret = verb == "wifi passphrase"
                (self.assertNotIn if secret else self.assertIn)("--no-such-option", document["error"])

    def test_a_passphrase_at_the_wrong_place_is_not_repeated(self):
        secret = "hunter2secret"
        for words in ((secret,), ("--setting", secret), ("--setting=" + secret,), ("--timeout", secret), ("-s", secret),
                      ("-s" + secret,), ("--" + secret,), ("--json=" + secret,)):
            for line in (("wifi", "passphrase", *words), (*words, "wifi", "passphrase")):
                with self.subTest(line=line):
                    run = self.kelva(*line, "--json")
                    if line[0] == secret:
                        continue  # the name of a command, which is said
                    self.assertNotEqual(run.returncode, 0)
                    self.assertNotIn(secret, run.stdout + run.stderr)


if __name__ == "__main__":
    bench_of_cameras.main()
