#!/usr/bin/env python3
"""The examples against the installed library, static and shared, with the cameras of an installed kelva-vcam.

Usage: examples_test.py BUILD_FOLDER SHARED_LIBRARY COMPILER CLI_TESTS
BUILD_FOLDER is the build whose kelva-vcam is installed, SHARED_LIBRARY one of libkelva.so. The static library is built and installed as the
guide says.
"""

import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import unittest

import guide

BUILD, SHARED_LIBRARY, COMPILER, CLI_TESTS = (sys.argv.pop(1) for _ in range(4))
sys.path.insert(0, CLI_TESTS)
import bench_of_cameras  # noqa: E402

# The same library with fewer, larger compilations.
QUICKLY = ["-G", "Ninja", "-DCMAKE_UNITY_BUILD=ON", "-DCMAKE_UNITY_BUILD_BATCH_SIZE=0", f"-DCMAKE_CXX_COMPILER={COMPILER}"]
SCRATCH = pathlib.Path()


def run(*command, **options):
    done = subprocess.run([str(word) for word in command], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, **options)
    if done.returncode != 0:
        raise AssertionError(f"{command} ended with {done.returncode}:\n{done.stdout}")
    return done.stdout


def setUpModule():
    global SCRATCH
    scratch = tempfile.TemporaryDirectory(prefix="kelva-examples-")
    unittest.addModuleCleanup(scratch.cleanup)
    SCRATCH = pathlib.Path(scratch.name)
    run("cmake", "--install", BUILD, "--prefix", SCRATCH / "programs")
    bench_of_cameras.BIN = str(SCRATCH / "programs/bin")


def install_as_the_guide_says():
    """Runs the lines by which the guide builds and installs the library, and returns where it is."""
    lines = guide.block("sh", "cmake --install")
    source = SCRATCH / "source"
    source.mkdir()
    for entry in guide.PROJECT.iterdir():
        if entry.name not in ("build", ".git"):
            (source / entry.name).symlink_to(entry)
    lines = lines.replace("cmake -S .", " ".join(["cmake -S .", *QUICKLY])).replace("sudo ", "")
    run("sh", "-ec", lines, cwd=source, env={**os.environ, "DESTDIR": str(SCRATCH / "root")})
    return SCRATCH / "root/usr/local"


def install_shared_library():
    run("cmake", "--install", SHARED_LIBRARY, "--prefix", SCRATCH / "shared")
    return SCRATCH / "shared"


class Examples:
    """What the examples do. A subclass installs a library."""

    pkg_config = guide.block("sh", "pkg-config")

    @classmethod
    def setUpClass(cls):
        cls.prefix = cls.install()
        cls.programs = SCRATCH / f"{cls.__name__}-examples"
        run("cmake", "-S", guide.EXAMPLES, "-B", cls.programs, "-G", "Ninja", f"-DCMAKE_PREFIX_PATH={cls.prefix}",
            f"-DCMAKE_CXX_COMPILER={COMPILER}", "-DCMAKE_CXX_FLAGS=-Wall -Wextra -Wpedantic -Werror")
        run("cmake", "--build", cls.programs)

    def setUp(self):
        super().setUp()
        self.work = pathlib.Path(self.folder) / "work"
        self.work.mkdir()
        self.environment = {**os.environ, "KELVA_BUS": self.socket}

    def example(self, name, *words):
        done = subprocess.run([self.programs / name, *words], capture_output=True, text=True, cwd=self.work, env=self.environment, timeout=60)
        return done.returncode, done.stdout, done.stderr

    def start_example(self, name):
        process = subprocess.Popen([self.programs / name], stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                   text=True, cwd=self.work, env=self.environment)
        self.addCleanup(process.communicate)
        self.addCleanup(process.kill)
        return process

    def says(self, process, line):
        self.assertEqual(process.stdout.readline(), line + "\n")

    def test_list_counts_pictures(self):
        self.pictures(3, 1000)
        self.assertEqual(self.example("list"), (0, "A camera. Pictures: 3\n", ""))
        self.unplug()
        self.assertEqual(self.example("list"), (0, "No camera is attached. \n", ""))

    def test_newest_is_the_last_file_of_the_last_folder(self):
        self.pictures(9, 1000)
        newest = os.urandom(600_000)
        self.put("DCIM/101ABCDE/IMG_0002.JPG", newest)
        self.put("DCIM/101ABCDE/IMG_0001.JPG", b"older")
        self.assertEqual(self.example("newest"), (0, "Picture 101-2, 600000 bytes.\n", "0 %\n43 %\n87 %\n"))
        self.assertEqual((self.work / "newest.jpg").read_bytes(), newest)

    def test_part_copies_any_part_and_goes_on_behind_another_command(self):
        text = "".join(chr(33 + i * 7 % 90) for i in range(200_000))
        self.put("DCIM/100ABCDE/MOVIE.TXT", text.encode())
        path = "I:\\DCIM\\100ABCDE\\MOVIE.TXT"
        said = "The file has 200000 bytes; the camera's battery is at 100.\nBytes that would follow: {}\n"
        for offset, count, follow in ((0, 10, 16), (150_000, 20_000, 16), (199_990, 100, 0), (70_000, 129_999, 1)):
            self.assertEqual(self.example("part", path, str(offset), str(count)),
                             (0, text[offset:offset + count], said.format(follow)))
        self.assertEqual(self.example("part")[0], 1)

    def test_newest_can_be_stopped_and_the_camera_read_again(self):
        self.pictures(1, 3_000_000)
        self.fault("slow", 50)
        process = self.start_example("newest")
        self.assertEqual(process.stderr.readline(), "0 %\n")
        process.send_signal(signal.SIGINT)
        _, errors = process.communicate(timeout=60)
        self.assertEqual((process.returncode, errors.splitlines()[-1]), (1, "Stopped."))
        self.assertFalse((self.work / "newest.jpg").exists())
        self.fault("none")
        self.assertEqual(self.example("newest")[:2], (0, "Picture 100-1, 3000000 bytes.\n"))

    def test_newest_says_when_there_is_nothing_to_fetch(self):
        self.assertEqual(self.example("newest"), (1, "", "The camera has no JPEG picture.\n"))
        self.unplug()
        self.assertEqual(self.example("newest"), (1, "", "No camera is attached.\n"))

    def follow_cameras(self, name):
        process = self.start_example(name)
        self.says(process, "K1 attached")
        self.unplug()
        self.says(process, "K1 lost")
        self.plug("K2")
        self.plug("K3")
        self.assertEqual(sorted(process.stdout.readline() for _ in range(2)), ["K2 attached\n", "K3 attached\n"])
        self.unplug("K3")
        self.says(process, "K3 lost")
        return process

    def test_hotplug_in_poll(self):
        process = self.follow_cameras("hotplug_poll")
        self.vcam("plug", "--serial", "BAD", "--storage", self.drive, "--type", "5", "--revision", "Q42")
        self.says(process, "A camera was taken for a CD drive and cannot be used.")
        self.assertEqual(process.communicate(timeout=60), ("", ""))  # closes its standard input
        self.assertEqual(process.returncode, 0)

    def test_hotplug_in_glib(self):
        process = self.follow_cameras("hotplug_glib")
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.communicate(timeout=60), ("", ""))
        self.assertEqual(process.returncode, 0)

    def test_hotplug_in_qt(self):
        process = self.follow_cameras("hotplug_qt")
        process.terminate()
        self.assertEqual(process.communicate(timeout=60), ("", ""))

    def test_unplugged_in_the_middle_goes_on(self):
        self.pictures(3, 300_000)
        self.fault("unplug", 450_000)
        process = self.start_example("unplug")
        self.says(process, "Unplugged; plug it in again. Pictures read: 1")
        self.plug()
        self.says(process, "Pictures read: 3")
        self.assertEqual(process.wait(60), 0)

    def test_unplug_waits_for_a_camera(self):
        self.pictures(1, 1000)
        self.unplug()
        process = self.start_example("unplug")
        self.plug()
        self.says(process, "Pictures read: 1")

    def test_a_transfer_that_failed_for_another_reason_is_an_error(self):
        self.fault("fail", 1)
        code, said, errors = self.example("unplug")
        self.assertEqual((code, said), (1, ""))
        self.assertIn("Camera error", errors)

    def test_own_transport_answers(self):
        self.assertEqual(self.example("own_transport"), (0, "Camera in memory, battery level 80\n", ""))

    def test_trace_prints_each_exchange(self):
        self.pictures(2, 1000)
        code, said, errors = self.example("trace")
        self.assertEqual((code, said), (0, "Pictures: 2\n"))
        self.assertRegex(errors, r"^c2000200000000000000000000000000 0 -> 0 bytes, \d+ us\n"
                                 r"c4000100000000000000000000000000 65536 -> \d+ bytes, \d+ us\n$")

    def test_application_test_passes_with_a_bus_of_its_own(self):
        environment = {**os.environ, "PATH": f"{bench_of_cameras.BIN}:{os.environ['PATH']}"}
        run("ctest", "--test-dir", self.programs, "--output-on-failure", "--no-tests=error", env=environment)

    def test_first_program_works_with_pkg_config(self):
        (self.work / "program.cpp").write_text(guide.first_program())
        folder = next(self.prefix.rglob("kelva.pc")).parent
        environment = {**os.environ, "PKG_CONFIG_PATH": str(folder), "LD_LIBRARY_PATH": str(folder.parent)}
        run("sh", "-ec", self.pkg_config, cwd=self.work, env=environment)
        self.assertRegex(run(self.work / "program", env=environment), r"^(No camera is attached\.|A camera\b)")


class WithTheStaticLibrary(Examples, bench_of_cameras.Bus):
    install = staticmethod(install_as_the_guide_says)

    def test_lines_that_try_an_example_work_as_typed_off(self):
        (self.work / "examples").symlink_to(guide.EXAMPLES)
        (self.work / "build").mkdir()
        (self.work / "build/examples").symlink_to(self.programs)  # built already
        card = self.work / "Pictures/card/DCIM/100ABCDE"
        card.mkdir(parents=True)
        (card / "IMG_0001.JPG").write_bytes(b"a picture")
        environment = {**os.environ, "HOME": str(self.work), "PATH": f"{bench_of_cameras.BIN}:{os.environ['PATH']}"}
        lines = guide.block("sh", "KELVA_BUS").replace("/tmp/bus", str(self.work / "bus"))
        said = run("sh", "-ec", "trap 'kill $!' EXIT\n" + lines, cwd=self.work, env=environment)
        self.assertEqual(said.splitlines()[-1], "A camera. Pictures: 1")


class WithTheSharedLibrary(Examples, bench_of_cameras.Bus):
    install = staticmethod(install_shared_library)
    pkg_config = Examples.pkg_config.replace("--static ", "")

    def test_examples_use_libkelva_so(self):
        self.assertIn("libkelva.so", run("ldd", self.programs / "list"))


class AsAPartOfTheBuild(bench_of_cameras.Bus):
    def test_FetchContent_gives_the_first_program(self):
        project = guide.type_off(SCRATCH / "fetching", "FetchContent")
        (project / "kelva").symlink_to(guide.PROJECT)
        run("cmake", "-S", project, "-B", SCRATCH / "fetched", *QUICKLY)
        run("cmake", "--build", SCRATCH / "fetched")
        self.assertRegex(run(SCRATCH / "fetched/program"), r"^(No camera is attached\.|A camera\b)")


if __name__ == "__main__":
    unittest.main()
