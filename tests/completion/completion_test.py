"""Keys are typed into a shell, Tab among them, and what the shell then runs is looked at.

The tool that the shell finds is a stand-in, which notes its words; for what may come next it asks the tool itself.
"""

import os
import shutil
import subprocess
import sys

import bench_of_cameras
from bench_of_cameras import Bus
from terminal import Terminal

SHELL = ""
STAND_IN = """#!/bin/sh
[ "$1" != __complete ] || {{ shell=$2; shift 2; exec {bin}/kelva __complete "$shell" --virtual {socket} "$@"; }}
[ "$*" != list ] || exec {bin}/kelva --virtual {socket} list
printf '%s\\0' "$@" >{noted}.part
mv {noted}.part {noted}
"""
# How each shell finds a completion that a package has installed, and what starts it with nobody's own settings.
PLACES = {"bash": "kelva", "zsh": "_kelva", "fish": "config/fish/completions/kelva.fish"}
STARTS = {
    "bash": (["bash", "--noprofile", "--norc", "-i"], "source {completion}"),
    "zsh": (["zsh", "-f", "-i"], "fpath=({folder} $fpath); autoload -Uz compinit; compinit -u -d {folder}/dump"),
    "fish": (["fish", "-i"], "true"),
}


class Completion(Bus):
    def setUp(self):
        super().setUp()
        self.here = os.path.join(self.folder, "here")
        self.noted = os.path.join(self.folder, "noted")
        for folder in ("here", "here/folder", "programs", "config/fish/completions"):
            os.makedirs(os.path.join(self.folder, folder))
        for name in ("folder/inside", "footage of may.html", "firmware.bin"):
            with open(os.path.join(self.here, name), "w", encoding="utf-8"):
                pass
        self.files = sorted(os.listdir(self.here))
        self.install()
        self.terminal = self.start_shell()
        self.addCleanup(self.terminal.close)

    def install(self):
        program = os.path.join(self.folder, "programs", "kelva")
        with open(program, "w", encoding="utf-8") as file:
            file.write(STAND_IN.format(bin=bench_of_cameras.BIN, socket=self.socket, noted=self.noted))
        os.chmod(program, 0o755)
        self.completion = os.path.join(self.folder, PLACES[SHELL])
        with open(self.completion, "wb") as file:
            subprocess.run([bench_of_cameras.BIN + "/kelva", "completion", SHELL], check=True, stdout=file)

    def start_shell(self):
        environment = dict(os.environ, PATH=self.folder + "/programs:" + os.environ["PATH"], HOME=self.folder,
                           XDG_CONFIG_HOME=self.folder + "/config", XDG_DATA_HOME=self.folder + "/data", TERM="vt100",
                           LC_ALL="C.UTF-8", PS1="$ ")
        environment.pop("ZDOTDIR", None)
        words, first = STARTS[SHELL]
        terminal = Terminal(words, environment, self.here)
        terminal.type(first.format(completion=self.completion, folder=self.folder) + "; kelva ready\r")
        self.assertEqual(terminal.wait_for(self.noted), b"ready\0")
        return terminal

    def run_after(self, keys):
        """The words that the tool gets when these keys and Return are pressed."""
        self.terminal.type(keys + "\r")
        return self.terminal.wait_for(self.noted).decode().split("\0")[:-1]

    def check(self, *rows):
        for keys, words in rows:
            with self.subTest(keys=keys):
                self.assertEqual(self.run_after(keys), words)

    def test_commands_are_completed(self):
        self.check(
            ("kelva pict\t", ["pictures"]),
            ("kelva pictures r\tIMG_0001", ["pictures", "rm", "IMG_0001"]),
            ("kelva wifi pa\t", ["wifi", "passphrase"]),
            ("kelva control se\t7 1", ["control", "set", "7", "1"]),
            ("kelva nonsens\t", ["nonsens"]),
        )

    def test_options_are_those_of_the_command_and_of_all(self):
        self.check(
            ("kelva pictures --sh\t out.html", ["pictures", "--sheet", "out.html"]),
            ("kelva pictures rm --sh\t", ["pictures", "rm", "--sh"]),
            ("kelva sync --delete\tfolder", ["sync", "--delete-after-verify", "folder"]),
            ("kelva battery --js\t", ["battery", "--json"]),
            ("kelva battery --delete\t", ["battery", "--delete"]),
        )

    def test_values_are_offered_where_there_are_some(self):
        self.check(
            ("kelva completion z\t", ["completion", "zsh"]),
            ("kelva sync --types r\tfolder", ["sync", "--types", "raw", "folder"]),
            ("kelva help upg\t", ["help", "upgrade"]),
        )

    def test_files_and_folders_are_offered_where_they_belong(self):
        self.check(
            ("kelva pictures --sheet foot\t", ["pictures", "--sheet", "footage of may.html"]),
            ("kelva upgrade fi\t", ["upgrade", "firmware.bin"]),
            ("kelva sync fo\tx", ["sync", "folder/x"]),
            ("kelva get --into fo\tx I:/X", ["get", "--into", "folder/x", "I:/X"]),
        )

    def test_serial_numbers_are_those_of_attached_cameras(self):
        self.vcam("plug", "--serial", "KV-0042", "--storage", self.drive)
        self.check(("kelva info --serial KV\t", ["info", "--serial", "KV-0042"]),
                   ("kelva info -s KV\t", ["info", "-s", "KV-0042"]))

    def test_a_serial_number_is_never_evaluated(self):
        for number, serial in enumerate(("$(touch trap)", "`touch trap`", "${x:=trap}", "a b\tc", "it's", "say \"x\"",
                                         "back\\slash", "semi;touch trap", "~root", "*", "\x1b[2Jbare", "!!")):
            self.vcam("plug", "--serial", serial, "--storage", self.drive)
            self.vcam("unplug", "K1") if number == 0 else None
            offered = all(" " <= letter < "\x7f" for letter in serial) and serial[0] != "~"
            with self.subTest(serial=serial):
                if offered:
                    self.check(("kelva info --serial \t", ["info", "--serial", serial]),
                               ("kelva info --serial " + ("\\" if serial[0] in "$`*!" else "") + serial[0] + "\t",
                                ["info", "--serial", serial]))
                else:
                    self.assertNotIn(serial, self.run_after("kelva info --serial \tx"))
                self.assertEqual(os.listdir(self.here).count("trap"), 0)
            self.vcam("unplug", serial)

    def test_several_hostile_serial_numbers_are_listed_and_none_is_evaluated(self):
        for serial in ("$(touch trap)", "`touch trap`", "$(touch trap2)", "K;touch trap"):
            self.vcam("plug", "--serial", serial, "--storage", self.drive)
        self.terminal.type("kelva info --serial \t\t\t")
        self.run_after("\x15kelva done")
        self.assertEqual(sorted(os.listdir(self.here)), self.files)

    def test_paths_and_pictures_of_a_camera_are_offered(self):
        self.put("DCIM/100ABCDE/IMG_0001.JPG", b"1")
        self.put("DCIM/100ABCDE/IMG_0002.JPG", b"2")
        self.put("DCIM/101ABCDE/IMG_0002.JPG", b"3")
        self.check(
            ("kelva ls DC\t", ["ls", "DCIM/"]),
            ("kelva ls DC\t101\t", ["ls", "DCIM/101ABCDE/"]),
            ("kelva get DC\t101\tIM\t", ["get", "DCIM/101ABCDE/IMG_0002.JPG"]),
            ("kelva ls I:\t", ["ls", "I:/DCIM/"]),
            ("kelva get I:/DC\t101\tIM\t", ["get", "I:/DCIM/101ABCDE/IMG_0002.JPG"]),
            ("kelva pictures rm IM\t", ["pictures", "rm", "IMG_0001"]),
            ("kelva pictures rm 101\tIM\t", ["pictures", "rm", "101ABCDE/IMG_0002"]),
            ("kelva sync --folder 101\tfolder", ["sync", "--folder", "101ABCDE", "folder"]),
            ("kelva pictures --folder 100\t", ["pictures", "--folder", "100ABCDE"]),
        )

    def test_folders_of_a_camera_are_offered_and_never_evaluated(self):
        for name in ("$(touch trap)", "`touch trap`", "a b", "it's", "say \"x\"", "semi;touch trap", "*", "!!", "&touch trap"):
            self.put(f"DCIM/{name}/IMG_0001.JPG", b"1")
            with self.subTest(name=name):
                self.check(("kelva sync --folder \tfolder", ["sync", "--folder", name, "folder"]))
            shutil.rmtree(os.path.join(self.drive, "DCIM", name))
        self.assertEqual(sorted(os.listdir(self.here)), self.files)

    def test_times_that_say_how_long_ago_are_offered(self):
        self.check(("kelva sync --since 7\tfolder", ["sync", "--since", "7d", "folder"]),
                   ("kelva pictures --since 2\t", ["pictures", "--since", "2w"]))

    def test_a_camera_s_path_is_never_evaluated(self):
        for name in ("$(touch trap)", "`touch trap`", "a b", "it's", "say \"x\"", "semi;touch trap", "*", "!!", "&touch trap"):
            self.put("MISC/" + name, b"")
            with self.subTest(name=name):
                self.check(("kelva get MISC/\t", ["get", "MISC/" + name]))
            os.remove(os.path.join(self.drive, "MISC", name))
        self.assertEqual(sorted(os.listdir(self.here)), self.files)

    def test_a_path_is_never_evaluated(self):
        for name in ("$(touch trap)", "`touch trap`", "a b", "it's", "say \"x\"", "back\\slash", "semi;touch trap"):
            path = os.path.join(self.here, "only", name)
            os.makedirs(os.path.dirname(path))
            with open(path, "w", encoding="utf-8"):
                pass
            with self.subTest(name=name):
                self.check(("kelva upgrade only/\t", ["upgrade", "only/" + name]))
            os.remove(path)
            os.rmdir(os.path.dirname(path))
        self.assertEqual(sorted(os.listdir(self.here)), self.files)


if __name__ == "__main__":
    SHELL = sys.argv.pop(1)
    bench_of_cameras.main()
