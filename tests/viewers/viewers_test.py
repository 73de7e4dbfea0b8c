#!/usr/bin/env python3
"""Programs of Debian, as they are, with a camera's folder: what a plug starts, what it shows, and the files that it copies.

Usage: viewers_test.py PROGRAMS
"""

import filecmp
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import unittest

TESTS = pathlib.Path(__file__).resolve().parents[1]
sys.path[:0] = [str(TESTS / "agent"), str(TESTS / "desktop")]
import screen  # noqa: E402
from session import PATIENCE, Session  # noqa: E402

PROGRAMS = ""
IMPORTER = "org.gnome.gThumb.Import.desktop"


def files_below(folder):
    return sorted(path for path in pathlib.Path(folder).rglob("*") if path.is_file())


def mounted_below(folder):
    """The places below a folder where something is mounted."""
    places = [line.split()[4].replace("\\040", " ") for line in pathlib.Path("/proc/self/mountinfo").read_text().splitlines()]
    return [place for place in places if place.startswith(f"{folder}/")]


class Importer(screen.Started):
    """The importer on the screen."""

    def press_when_usable(self, name):
        button = self.wait(f"^{name}$", "push button")
        screen.wait_for(lambda: button.get_state_set().contains(self.atspi.StateType.SENSITIVE), f"the button {name} can be pressed")
        button.do_action(0)


class Desktop(Session):
    """A session with a home folder, with the programs of this machine, and with a card of drawn pictures."""

    def __init__(self):
        super().__init__(PROGRAMS)
        self.pictures = self.folder / "Pictures"
        self.pictures.mkdir()
        (self.folder / "config").mkdir()
        (self.folder / "config/user-dirs.dirs").write_text('XDG_PICTURES_DIR="$HOME/Pictures"\n')
        (self.folder / "config/mimeapps.list").write_text(f"[Default Applications]\nx-content/image-dcf={IMPORTER}\n")
        self.card = self.folder / "card"
        shutil.rmtree(self.card)
        subprocess.run([self.programs / "draw-pictures", self.card], check=True)
        self.environment.update(
            {name: os.environ[name] for name in ("DISPLAY", "XAUTHORITY", "DBUS_SESSION_BUS_ADDRESS") if name in os.environ},
            XDG_DATA_DIRS=f"{self.folder}/data:/usr/share",
            XDG_CACHE_HOME=str(self.folder / "cache"),
            # The local half of GIO is in every installation; another one finds daemons of the machine.
            GIO_USE_VFS="local",
            GIO_USE_VOLUME_MONITOR="unix",
            GSETTINGS_BACKEND="memory",
            KELVA_ON_PLUG="mount",
            LC_ALL="C.UTF-8",
        )

    def close(self):
        for place in mounted_below(self.folder):
            subprocess.run(["fusermount3", "-u", "-z", place], check=False)
        self.end_viewers()
        screen.wait_for(lambda: not mounted_below(self.folder), "the folder is gone")
        # What was ended may have been writing.
        shutil.rmtree(self.folder, ignore_errors=True)
        self.folder.mkdir(exist_ok=True)
        super().close()

    def end_viewers(self):
        """The programs that a plug started are nobody's children; no other program has this home folder."""
        home = f"HOME={self.folder}".encode()
        for environment in pathlib.Path("/proc").glob("[0-9]*/environ"):
            try:
                if home in environment.read_bytes().split(b"\0"):
                    os.kill(int(environment.parent.name), signal.SIGKILL)
            except OSError:
                continue  # ended meanwhile

    def run(self, *command):
        """What a command prints."""
        return subprocess.run(command, env=self.environment, check=True, stdout=subprocess.PIPE, text=True, timeout=PATIENCE).stdout

    def plug_and_mount(self):
        """The folder of a camera that is mounted without a window."""
        self.plug("KV0001")
        self.run(self.programs / "kelva-mount", "--all", "--json", "--virtual", self.socket)
        return self.place()

    def place(self):
        return pathlib.Path(mounted_below(self.folder)[0])


class Viewers(unittest.TestCase):
    def setUp(self):
        self.desktop = Desktop()
        self.addCleanup(self.desktop.close)

    def assert_equal_files(self, copies):
        originals = files_below(self.desktop.card)
        self.assertEqual(len(copies), len(originals))
        for original in originals:
            self.assertTrue(any(filecmp.cmp(original, copy, shallow=False) for copy in copies), f"{original} was not copied rightly")

    def test_gio_lists_the_camera_as_a_place_and_copies_its_files(self):
        place = self.desktop.plug_and_mount()
        self.assertIn(f"Mount(0): {place.name} -> file://", self.desktop.run("gio", "mount", "-l"))
        self.assertEqual(self.desktop.run("gio", "list", place), "DCIM\n")
        copies = self.desktop.folder / "copies"
        copies.mkdir()
        for original in files_below(self.desktop.card):
            shown = place / original.relative_to(self.desktop.card)
            self.assertIn(f"standard::size: {original.stat().st_size}\n", self.desktop.run("gio", "info", "-a", "standard::size", shown))
            self.desktop.run("gio", "copy", shown, copies)
        self.assert_equal_files(files_below(copies))

    def test_plug_starts_an_importer_that_shows_and_copies_the_pictures(self):
        agent = self.desktop.watching_agent()
        self.desktop.plug("KV0001")
        importer = Importer("gthumb")
        importer.wait("^Files to import: 12 ", "label")
        self.assertRegex(agent.output.next(), "^kelva-open: Mounted camera KV0001 on .* and started .*gThumb.* there.$")
        importer.wait(f"^{self.desktop.place().name}$", "combo box")
        importer.press_when_usable("Import")
        # It writes into the files under their own names.
        sizes = sorted(path.stat().st_size for path in files_below(self.desktop.card))
        screen.wait_for(lambda: sorted(path.stat().st_size for path in files_below(self.desktop.pictures)) == sizes, "the pictures are copied")
        self.assert_equal_files(files_below(self.desktop.pictures))

        # The folder outlives the agent, and goes with the camera.
        self.assertEqual(agent.end(signal.SIGTERM), 0)
        self.assertTrue(self.desktop.place().is_dir())
        self.desktop.unplug("KV0001")
        screen.wait_for(lambda: not mounted_below(self.desktop.folder), "the folder is gone")


if __name__ == "__main__":
    screen.enter_session()
    PROGRAMS = sys.argv.pop(1)
    unittest.main()
