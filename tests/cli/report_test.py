"""report, opened with tar; doctor; time, console and what else a person looks at."""

import json
import os
import subprocess

import bench_of_cameras
import small_disk
from bench_of_cameras import Bus


class ReportTest(Bus):
    def setUp(self):
        super().setUp()
        self.put("CRASH/A.LOG", b"went wrong\n")
        self.put("CRASH/B.LOG", b"again\n")
        self.put("CALIB/GAIN", bytes(range(256)))
        self.pictures(3, 100)
        self.archive = os.path.join(self.folder, "report.tar")

    def tar(self, *words):
        return subprocess.run(["tar", *words], check=True, capture_output=True).stdout

    def member(self, name):
        return self.tar("-xOf", self.archive, "kelva-report/" + name)

    def members(self):
        return self.tar("-tf", self.archive).decode().splitlines()

    def test_everything_is_in_one_archive(self):
        self.kelva("monitor", "hello")
        run = self.kelva("report", "--json", self.archive)
        self.assertEqual(run.returncode, 0, run.stderr)
        expected = ["host.txt", "camera.txt", "console.txt", "crash/A.LOG", "crash/B.LOG", "calibration/GAIN"]
        self.assertEqual(sorted(self.members()), sorted("kelva-report/" + name for name in expected))
        self.assertEqual(json.loads(run.stdout)["files"], len(expected))
        self.assertEqual(self.member("crash/A.LOG"), b"went wrong\n")
        self.assertEqual(self.member("calibration/GAIN"), bytes(range(256)))
        self.assertIn(b"hello", self.member("console.txt"))
        camera = self.member("camera.txt").decode()
        for line in ("serial: K1", "product: Camera", "information: factory", "battery: 100", "pictures: 3"):
            self.assertIn(line + "\n", camera)
        host = self.member("host.txt").decode()
        self.assertIn("system: Linux " + os.uname().release, host)
        self.assertRegex(host, r"tool: kelva \d+\.\d+")
        self.assertEqual(sorted(os.listdir(self.drive + "/CRASH")), ["A.LOG", "B.LOG"])

    def test_a_part_that_fails_is_said_in_the_archive_and_the_rest_is_there(self):
        self.fault("fail", 1)
        run = self.kelva("report", self.archive)
        self.assertEqual(run.returncode, 6, run.stderr)
        self.assertIn("kelva-report/errors.txt", self.members())
        self.assertNotIn("kelva-report/camera.txt", self.members())
        self.assertEqual(self.member("errors.txt").decode(), run.stderr.splitlines()[0].removeprefix("kelva: ") + "\n")
        self.assertEqual(self.member("crash/B.LOG"), b"again\n")

    def test_an_archive_that_is_there_is_left_alone(self):
        with open(self.archive, "w", encoding="ascii") as file:
            file.write("mine")
        self.kelva("monitor", "hello")
        run = self.kelva("report", self.archive)
        self.assertEqual(run.returncode, 1)
        self.assertIn("choose another name for the report", run.stderr)
        self.assertIn("hello", self.kelva("console").stdout)  # the camera hands it over once, and it was not asked
        with open(self.archive, encoding="ascii") as file:
            self.assertEqual(file.read(), "mine")

    def test_calibration_files_with_long_names_are_unpacked_whole_and_privately(self):
        # 31 bytes are the longest; each control byte is written with three.
        name = "\x7f" * 31
        self.put("CALIB/" + name, b"long")
        self.assertEqual(self.kelva("report", self.archive).returncode, 0)
        self.assertEqual(os.stat(self.archive).st_mode & 0o777, 0o600)
        self.tar("-xf", self.archive, "-C", self.folder)
        path = os.path.join(self.folder, "kelva-report/calibration", "%7F" * 31)
        with open(path, "rb") as file:
            self.assertEqual(file.read(), b"long")
        self.assertEqual(os.stat(path).st_mode & 0o777, 0o600)

    def test_a_trace_is_in_it_when_one_is_written(self):
        trace = self.folder + "/camera.trace"
        self.kelva("battery", "--trace", trace)
        self.assertEqual(self.kelva("report", self.archive, "--trace", trace).returncode, 0)
        lines = [json.loads(line) for line in self.member("trace.jsonl").decode().splitlines()]
        self.assertEqual([line["command"] for line in lines if line["event"] == "trace"], ["report"])
        self.assertIn("read bundle", [line["command"] for line in lines if line["event"] == "exchange"])
        with open(trace, "rb") as file:
            before, found, after = file.read().partition(self.member("trace.jsonl"))
        self.assertIn(b'"command":"battery"', before)
        self.assertTrue(found)
        self.assertEqual(after, b"")
        self.assertNotIn(b"went wrong".hex().encode(), self.member("trace.jsonl"))

    def test_names_that_an_earlier_trace_left_in_the_file_stay_out_of_it(self):
        trace = self.folder + "/camera.trace"
        self.plug("SN-4711-XY", self.drive)
        self.kelva("wifi", "name", "MyHome", "-s", "SN-4711-XY", "--trace", trace)
        self.kelva("report", self.archive, "-s", "SN-4711-XY", "--trace", trace, "--trace-private")
        with open(trace, "rb") as file:
            before = file.read()
        for name in (b"SN-4711-XY", b"MyHome".hex().encode()):
            self.assertIn(name, before)
            self.assertNotIn(name, self.member("trace.jsonl"))

    def test_no_passphrase_is_in_it(self):
        self.kelva("wifi", "passphrase", input="correct horse battery\n")
        self.assertEqual(self.kelva("report", self.archive).returncode, 0)
        with open(self.archive, "rb") as file:
            self.assertNotIn(b"correct horse", file.read())


class DoctorTest(Bus):
    def doctor(self):
        run = self.kelva("doctor", "--json")
        return run.returncode, [finding["condition"] for finding in json.loads(run.stdout)["findings"]]

    def test_on_a_virtual_bus_it_looks_at_the_cameras(self):
        self.assertEqual(self.doctor(), (0, ["well"]))
        holder = self.start("console", "--follow", "--quiet")
        self.wait_until_held("K1", run=holder)
        run = self.kelva("doctor")
        self.assertEqual(run.returncode, 1)
        self.assertIn(f"The virtual camera K1 is held by kelva (process {holder.pid}", run.stdout)
        holder.terminate()
        holder.communicate()
        self.vcam("plug", "--serial", "CD", "--storage", self.drive, "--type", "5", "--revision", "Q42")
        self.assertEqual(self.doctor(), (1, ["well", "bad-camera"]))
        self.unplug("CD")
        self.fault("fail", 1)
        self.assertEqual(self.doctor(), (1, ["not-answering"]))
        self.unplug()
        self.assertEqual(self.doctor(), (1, ["no-device"]))

    def test_without_a_camera_it_says_so_and_what_to_do(self):
        # A machine whose /sys is empty has no camera, whatever is plugged into this one.
        words = [*small_disk.with_own_mounts(), "sh", "-c", 'mount -t tmpfs none /sys && exec "$0" "$@"']
        run = subprocess.run([*words, bench_of_cameras.BIN + "/kelva", "doctor", "--json"], capture_output=True,
                             text=True, timeout=60)
        self.assertEqual(run.returncode, 1, run.stderr)
        findings = {finding["condition"]: finding for finding in json.loads(run.stdout)["findings"]}
        self.assertIn("No camera is attached", findings["no-device"]["sentence"])
        self.assertTrue(findings["no-device"]["advice"])
        if not os.path.exists("/run/udev/control") and not bench_of_cameras.has_separate_tool():
            self.assertEqual(findings["no-udev"]["command"], "sudo systemctl start systemd-udevd")


if __name__ == "__main__":
    bench_of_cameras.main()
