#!/usr/bin/env python3
"""Installs a build, compares the files with the written list, and sees the installed helper start an application.

Usage: launch_test.py BUILD_FOLDER AGENT_TESTS
"""

import os
import pathlib
import shlex
import subprocess
import sys
import tempfile
import time
import unittest

BUILD, AGENT_TESTS = sys.argv.pop(1), sys.argv.pop(1)
sys.path.insert(0, AGENT_TESTS)
from installation import Build, files_below  # noqa: E402
from session import PATIENCE, Session  # noqa: E402


def value_of(file, key):
    """The value of `key=value` in a unit or a desktop entry."""
    lines = [line for line in pathlib.Path(file).read_text().splitlines() if line.startswith(key + "=")]
    if len(lines) != 1:
        raise AssertionError(f"{file} has {len(lines)} lines {key}=")
    return lines[0].partition("=")[2]


class Installation(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory(prefix="kelva-install-")
        self.addCleanup(scratch.cleanup)
        self.scratch = pathlib.Path(scratch.name)
        self.build = Build(BUILD)
        self.maxDiff = None

    def files_of_the_list(self):
        return sorted(sum(self.build.written_list().values(), []))

    def program_of_the_unit(self, prefix):
        words = shlex.split(value_of(prefix / "lib/systemd/user/kelva-helper.service", "ExecStart"))
        self.assertEqual(len(words), 1)
        return words[0]

    def expect_launch(self, programs, helper=None):
        """Cameras are plugged into the installed kelva-vcam; the helper starts the application for the second."""
        session = Session(programs, helper)
        self.addCleanup(session.close)
        session.install_application()
        session.plug("KV0001")
        session.watching_agent()
        session.plug("KV0002")
        self.assertEqual(session.launches.next(), "launched")


class WhatIsInstalled(Installation):
    def test_every_file_of_the_written_list_and_no_other(self):
        self.build.install(self.scratch / "prefix")
        self.assertEqual(files_below(self.scratch / "prefix"), self.files_of_the_list())

    def test_each_component_has_its_own_files(self):
        for component, files in self.build.written_list().items():
            with self.subTest(component=component):
                folder = self.scratch / component
                self.build.install(folder, "--component", component)
                self.assertEqual(files_below(folder), files)

    def test_destdir_holds_the_same_files_below_the_prefix(self):
        self.build.install("/opt/kelva", root=self.scratch / "root")
        self.assertEqual(files_below(self.scratch / "root"), [f"opt/kelva/{name}" for name in self.files_of_the_list()])

    def test_no_file_names_the_build_or_the_root(self):
        self.build.install("/opt/kelva", root=self.scratch / "root")
        for name in files_below(self.scratch / "root"):
            content = (self.scratch / "root" / name).read_bytes()
            self.assertNotIn(str(self.scratch).encode(), content, name)
            if not content.startswith((b"\x7fELF", b"!<arch>")):
                self.assertNotIn(str(self.build.folder).encode(), content, name)


class UnitAndEntry(Installation):
    def test_both_name_the_helper_below_the_prefix_of_the_installation(self):
        for prefix in ("/usr", "/opt/kelva"):
            with self.subTest(prefix=prefix):
                root = self.scratch / prefix.strip("/")
                self.build.install(prefix, root=root)
                self.assertEqual(self.program_of_the_unit(root / prefix[1:]), f"{prefix}/bin/kelva-helper")
                entry = root / prefix[1:] / "share/kelva/autostart/kelva-helper.desktop"
                self.assertEqual(value_of(entry, "Exec"), f"{prefix}/bin/kelva-helper")

    def test_nothing_starts_the_helper_unasked(self):
        self.build.install("/usr", root=self.scratch)
        for name in files_below(self.scratch):
            self.assertNotRegex(name, r"\.preset$|\.wants/|etc/xdg/autostart|^etc/")


class Launch(Installation):
    def test_opener_lies_where_the_helper_looks_for_it(self):
        self.build.install(self.scratch / "prefix")
        self.assertEqual([path for path in files_below(self.scratch / "prefix") if path.endswith("/kelva-open")],
                         ["libexec/kelva/kelva-open"])

    def test_command_of_the_unit_starts_the_desktop_application(self):
        prefix = self.scratch / "a place"
        self.build.install(prefix)
        helper = self.program_of_the_unit(prefix)
        self.assertEqual(helper, f"{prefix}/bin/kelva-helper")
        self.expect_launch(prefix / "bin", helper)

    def test_unit_opens_the_camera_as_a_folder_without_the_application(self):
        if not os.access("/dev/fuse", os.W_OK):
            self.skipTest("this machine has no /dev/fuse, or not for this user")
        prefix = self.scratch / "prefix"
        self.build.install(prefix)
        session = Session(prefix / "bin", self.program_of_the_unit(prefix))
        self.addCleanup(session.close)
        name, _, value = value_of(prefix / "lib/systemd/user/kelva-helper.service", "Environment").partition("=")
        session.environment[name] = value
        session.install_viewer("x-content/image-dcf")
        picture = session.folder / "card/DCIM/100KELVA/IMG_0001.JPG"
        picture.parent.mkdir()
        picture.write_bytes(b"a picture" * 100_000)
        session.watching_agent()
        session.plug("KV0001")
        folder = pathlib.Path(session.launches.next().removeprefix("viewer "))
        self.assertEqual(folder.name, "Kelva KV0001")
        self.assertEqual((folder / picture.relative_to(session.folder / "card")).read_bytes(), picture.read_bytes())
        session.unplug("KV0001")
        end = time.monotonic() + PATIENCE
        while folder.exists() and time.monotonic() < end:
            time.sleep(0.05)
        self.assertFalse(folder.exists())

    def test_command_of_the_unit_starts_it_below_destdir(self):
        self.build.install("/opt/kelva", root=self.scratch)
        prefix = self.scratch / "opt/kelva"
        self.expect_launch(prefix / "bin", f"{self.scratch}{self.program_of_the_unit(prefix)}")

    def test_moved_installation_starts_it(self):
        self.build.install(self.scratch / "first")
        # Moved, so that a path of the build or of the first place would show.
        prefix = (self.scratch / "first").rename(self.scratch / "moved")
        self.expect_launch(prefix / "bin")


class UpgradeAndRemoval(Installation):
    def remove(self, **environment):
        command = ["cmake", f"-DBUILD={self.build.folder}", "-P", pathlib.Path(__file__).parents[2] / "cmake/uninstall.cmake"]
        return subprocess.run(command, capture_output=True, text=True, env={"PATH": "/usr/bin:/bin", **environment})

    def test_removal_leaves_nothing_of_ours_and_everything_of_others(self):
        root = self.scratch / "root"
        other = root / "usr/local/share/man/man1/other.1"
        other.parent.mkdir(parents=True)
        other.touch()
        self.build.install("/usr/local", root=root)
        done = self.remove(DESTDIR=str(root))
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(files_below(root), ["usr/local/share/man/man1/other.1"])
        folders = sorted(path.relative_to(root / "usr/local").as_posix() for path in (root / "usr/local").rglob("*") if path.is_dir())
        # What every system has below /usr/local stays.
        self.assertEqual(folders, ["bin", "include", "lib", "libexec", "share", "share/man", "share/man/man1"])

    def test_removal_from_a_folder_of_its_own_leaves_no_folder(self):
        self.build.install(self.scratch / "home" / "kelva")
        self.assertEqual(self.remove().returncode, 0)
        self.assertFalse((self.scratch / "home").exists())

    def test_removal_without_an_installation_says_so(self):
        self.build.install(self.scratch / "prefix")
        self.remove()
        done = self.remove()
        self.assertNotEqual(done.returncode, 0)
        self.assertIn("Nothing was installed", done.stderr)

    def test_upgrade_gives_the_files_of_the_list(self):
        prefix = self.scratch / "prefix"
        self.build.install(prefix)
        (prefix / "bin/kelva").write_text("an older version")
        # A file that the new version no longer has.
        (prefix / "bin/kelva-older").touch()
        with (self.build.folder / "install_manifest.txt").open("a") as manifest:
            manifest.write(f"\n{prefix}/bin/kelva-older\n")
        self.assertEqual(self.remove().returncode, 0)
        self.build.install(prefix)
        self.assertEqual(files_below(prefix), self.files_of_the_list())
        self.assertNotEqual((prefix / "bin/kelva").read_bytes(), b"an older version")


if __name__ == "__main__":
    unittest.main()
