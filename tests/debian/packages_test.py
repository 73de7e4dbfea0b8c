#!/usr/bin/env python3
"""Builds the Debian packages and tries them in a fresh system, from an older version to their removal.

Usage: packages_test.py SOURCE_FOLDER SCRATCH_FOLDER
It takes root, for the fresh system; without it this is skipped (exit code 77).
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

SOURCE, SCRATCH = (pathlib.Path(word).resolve() for word in sys.argv[1:3])
sys.path[:0] = [str(SOURCE / "tests" / name) for name in ("debian", "install", "packaging")]
from fresh_root import FreshRoot, run  # noqa: E402
from installation import written_list  # noqa: E402
import udevadm  # noqa: E402

COMPONENTS = {"libkelva0.1": ["Library"], "libkelva-dev": ["Development"], "kelva": ["Tool", "VirtualCamera", "DeviceRules", "Documentation"],
              "kelva-mount": ["Mount"], "kelva-desktop": ["Desktop"], "kelva-helper": ["Helper"]}
PROGRAMS = ["/usr/bin/kelva", "/usr/bin/kelva-vcam", "/usr/bin/kelva-helper", "/usr/libexec/kelva/kelva-open", "/usr/bin/kelva-desktop"]
# The others are run by these.
BUILT = [*PROGRAMS, "/usr/libexec/kelva/kelva-mount", "/usr/libexec/kelva/kelva-thumbnail",
         "/usr/libexec/kelva/kelva-desktop-worker"]
# Licences that Debian keeps in /usr/share/common-licenses, and notices about libraries that its packages do not hold.
NOT_PACKAGED = re.compile(r"^share/doc/kelva/(LICENSE|THIRD-PARTY-NOTICES\.md|packaging/)")
FOR_PROGRAMMERS = re.compile(r"^share/doc/kelva/(docs/embedding\.md|docs/protocol\.md|examples/)")
OLDER = "0.0.1"
# The application that a plug starts leaves a file; the helper runs by the command of its unit. The first plug finds the
# application. For the second it is hidden, so that the camera becomes a folder, which a program for pictures copies.
LAUNCH = """
set -eu
export HOME=/root XDG_RUNTIME_DIR=/tmp/session XDG_DATA_HOME=/tmp/session/data
mkdir -p /tmp/session/data/applications /tmp/session/card/DCIM/100KELVA
echo picture >/tmp/session/card/DCIM/100KELVA/IMG_0001.JPG
printf '[Desktop Entry]\\nType=Application\\nName=Stand-in\\nExec=touch /tmp/session/launched\\n' \\
  >/tmp/session/data/applications/com.kelva.Desktop.desktop
kelva-vcam serve --virtual /tmp/session/bus & bus=$!
trap 'kill $bus $helper' EXIT
until kelva-vcam status --virtual /tmp/session/bus; do sleep 0.1; done
$(sed -n 's/^ExecStart=//p' /usr/lib/systemd/user/kelva-helper.service) --virtual /tmp/session/bus >/tmp/session/said & helper=$!
until grep Watching /tmp/session/said; do sleep 0.1; done
await() {
  for turn in $(seq 300); do
    [ ! -e "$1" ] || return 0
    sleep 0.1
  done
  echo "$1 never came"
  exit 1
}
kelva-vcam plug --virtual /tmp/session/bus --serial KV0001 --storage /tmp/session/card
await /tmp/session/launched
echo Hidden=true >>/tmp/session/data/applications/com.kelva.Desktop.desktop
printf '[Desktop Entry]\\nType=Application\\nName=Viewer\\nExec=cp -a %%f /tmp/session/copy\\n' \
  >/tmp/session/data/applications/org.example.Viewer.desktop
printf '[Default Applications]\\nx-content/image-dcf=org.example.Viewer.desktop\\n' >/tmp/session/data/applications/mimeapps.list
kelva-vcam unplug --virtual /tmp/session/bus KV0001
kelva-vcam plug --virtual /tmp/session/bus --serial KV0002 --storage /tmp/session/card
await /tmp/session/copy/DCIM/100KELVA/IMG_0001.JPG
kelva-vcam unplug --virtual /tmp/session/bus KV0002
sleep 1
! grep Kelva /proc/mounts
"""


def log(words, began=time.monotonic()):
    print(f"{time.monotonic() - began:6.1f} s  {words}", flush=True)


def version_of_sources():
    return re.search(r"^project\(.*?VERSION ([\d.]+)", (SOURCE / "CMakeLists.txt").read_text(), re.MULTILINE | re.DOTALL)[1]


def older_version(package, folder):
    """The same package with a lower version number, and a file that the real one does not have."""
    tree = folder / package.stem
    run("dpkg-deb", "--raw-extract", package, tree)
    control = tree / "DEBIAN/control"
    control.write_text(re.sub(rf"(Version: |\(= ){re.escape(version_of_sources())}", rf"\g<1>{OLDER}", control.read_text()))
    name = package.name.partition("_")[0]
    (tree / "usr/share/doc" / name / "of-the-older-version").touch()
    run("dpkg-deb", "-Znone", "--root-owner-group", "--build", tree, folder / f"{name}_older.deb")
    shutil.rmtree(tree)


def expected_files(package):
    """What the written list of installed files says of a package's components, by the names that Debian's tools give."""
    architecture = run("dpkg-architecture", "-qDEB_HOST_MULTIARCH").strip()
    listed = written_list("shared", version_of_sources(), f"lib/{architecture}", "none")
    names = [name for component in COMPONENTS[package] for name in listed[component]
             if not NOT_PACKAGED.match(name) and not FOR_PROGRAMMERS.match(name)]
    names = [name + ".gz" if name.startswith("share/man/") else name for name in names]
    names += [f"share/doc/{package}/{name}" for name in ("changelog.gz", "copyright")]
    if package == "libkelva-dev":
        names += [name.replace("doc/kelva", f"doc/{package}") for name in listed["Documentation"] if FOR_PROGRAMMERS.match(name)]
    return sorted("/usr/" + name for name in names)


class Packages(unittest.TestCase):
    """One life of the packages in one system; the tests run in the order of their names."""

    @classmethod
    def setUpClass(cls):
        cls.maxDiff = None
        shutil.rmtree(SCRATCH, ignore_errors=True)
        run(SOURCE / "package", "--into", SCRATCH / "packages")
        log("the packages are built")
        root = tempfile.TemporaryDirectory(prefix="kelva-debian-")
        cls.addClassCleanup(root.cleanup)
        cls.root = FreshRoot(root.name)
        cls.addClassCleanup(cls.root.close)
        cls.root.configure_apt()
        log("the fresh system is there")
        cls.debs = sorted((SCRATCH / "packages").glob("*.deb"))
        older = cls.root.folder / "older"
        older.mkdir()
        for package in cls.debs:
            older_version(package, older)
        shutil.copytree(SCRATCH / "packages", cls.root.folder / "packages")
        cls.root.install(*(f"/older/{name}" for name in sorted(os.listdir(older))))
        cls.older = cls.root.installed()
        cls.root.install(*(f"/packages/{package.name}" for package in cls.debs))
        log("the older version is installed, and upgraded")

    def test_1_there_are_six_packages(self):
        self.assertEqual(sorted(package.name.partition("_")[0] for package in self.debs), sorted(COMPONENTS))

    def test_1_lintian_has_nothing_to_say(self):
        command = ["lintian", "--allow-root", "--fail-on", "error,warning", next((SCRATCH / "packages").glob("*.changes"))]
        done = subprocess.run(command, capture_output=True, text=True)
        self.assertEqual((done.returncode, done.stdout), (0, ""), done.stderr)

    def test_2_upgrade_replaces_every_package_and_leaves_no_old_file(self):
        installed = self.root.installed()
        for package in COMPONENTS:
            self.assertEqual((self.older[package], installed[package]), (OLDER, version_of_sources()))
        self.assertEqual(list(self.root.folder.glob("usr/share/doc/*/of-the-older-version")), [])

    def test_3_each_package_has_the_files_of_the_written_list(self):
        for package in COMPONENTS:
            with self.subTest(package=package):
                self.assertEqual(self.root.files_of(package), expected_files(package))

    def test_3_every_program_says_its_version(self):
        for program in PROGRAMS:
            self.assertIn(version_of_sources(), self.root.run(program, "--version"))

    def test_3_no_program_holds_a_library_of_the_system(self):
        loaded = set()
        for program in BUILT:
            needed = re.findall(r"Shared library: \[(\w[^]]*?)\.so", run("readelf", "-d", f"{self.root.folder}{program}"))
            self.assertIn("libstdc++", needed)
            loaded.update(needed)
        self.assertLessEqual({"libcrypto", "libsqlite3", "libturbojpeg", "libexif", "libdeflate", "libudev", "libfuse3"}, loaded)

    def test_3_programs_and_library_are_hardened(self):
        library = self.root.folder / f"{next(name for name in expected_files('libkelva0.1') if name.endswith(version_of_sources()))[1:]}"
        files = [library, *(f"{self.root.folder}{program}" for program in BUILT)]
        # Their tables of symbols are stripped; what the linker needs shows the rest.
        run(sys.executable, "-B", SOURCE / "tests/install/hardening_test.py", "programs", *files)

    def test_3_unit_and_entry_are_valid_and_start_nothing_unasked(self):
        unit = "/usr/lib/systemd/user/kelva-helper.service"
        with tempfile.TemporaryDirectory() as runtime:
            # The verifier of this machine looks for the program at its place in the fresh system.
            copy = pathlib.Path(runtime, "kelva-helper.service")
            copy.write_text((self.root.folder / unit[1:]).read_text().replace("ExecStart=/", f"ExecStart={self.root.folder}/"))
            said = run("systemd-analyze", "--user", "verify", copy, env={**os.environ, "XDG_RUNTIME_DIR": runtime})
        self.assertEqual(said, "")
        run("desktop-file-validate", self.root.folder / "usr/share/kelva/autostart/kelva-helper.desktop")
        run("desktop-file-validate", self.root.folder / "usr/share/applications/com.kelva.Desktop.desktop")
        for name in ("Kelva", "Desktop"):
            run("appstreamcli", "validate", "--no-net", self.root.folder / f"usr/share/metainfo/com.kelva.{name}.metainfo.xml")
        asked = [path for folder in ("etc", "usr/lib/systemd", "var/lib/systemd") for path in (self.root.folder / folder).rglob("*kelva*")]
        self.assertEqual([path.relative_to(self.root.folder).as_posix() for path in asked], [unit[1:]])

    def test_3_rule_is_where_udev_reads_it_and_takes_the_camera(self):
        rule = self.root.folder / "usr/lib/udev/rules.d/70-kelva.rules"
        outcome = udevadm.evaluate(str(rule), udevadm.describe(), udevadm.GENERIC)
        self.assertIn(":uaccess:", outcome.properties["CURRENT_TAGS"])

    def test_4_plug_starts_an_application_or_opens_a_folder(self):
        device = self.root.folder / "dev/fuse"
        device.touch()
        run("mount", "--bind", "/dev/fuse", device)
        self.addCleanup(run, "umount", device)
        self.root.run("sh", "-c", LAUNCH)
        log("a plug started an application, and another one opened a folder")

    def test_5_removal_leaves_nothing_and_purge_neither(self):
        shutil.rmtree(self.root.folder / "older")
        shutil.rmtree(self.root.folder / "packages")
        shutil.rmtree(self.root.folder / "tmp/session", ignore_errors=True)
        self.root.run("apt-get", "remove", "-y", *COMPONENTS)
        self.assertEqual(self.left(), [])
        self.root.run("dpkg", "--purge", *COMPONENTS)
        self.assertEqual(self.left(), [])
        self.assertEqual([name for name in self.root.installed() if "kelva" in name], [])
        log("removed and purged")

    def left(self):
        # dpkg and apt keep notes of their own, until a purge and for ever.
        names = self.root.run("find", "/", "-xdev", "-iname", "*kelva*").splitlines()
        return [name for name in names if not name.startswith(("/var/lib/dpkg/", "/var/log/", "/var/cache/", "/proc/"))]


def main():
    if os.geteuid() != 0:
        print("skipped: a fresh system takes root")
        sys.exit(77)
    if os.environ.get("KELVA_IN_A_NAMESPACE") is None:
        # Mounts that nobody else sees, and processes that end with this one.
        os.environ["KELVA_IN_A_NAMESPACE"] = "1"
        os.execvp("unshare", ["unshare", "--mount", "--pid", "--fork", "--kill-child", sys.executable, "-B", *sys.argv])
    unittest.main(argv=sys.argv[:1])


if __name__ == "__main__":
    main()
