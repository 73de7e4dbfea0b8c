"""upgrade and reboot: what goes over a restart of the camera."""

import hashlib
import json
import os
import subprocess
import threading
import time

import bench_of_cameras
from bench_of_cameras import Bus

IMAGE = b"\1firmware" * 20_000


class UpgradeTest(Bus):
    def setUp(self):
        super().setUp()
        self.image = os.path.join(self.folder, "image.bin")
        with open(self.image, "wb") as file:
            file.write(IMAGE)

    def firmware(self):
        return json.loads(self.kelva("info", "--json").stdout)

    def test_the_image_is_shown_sent_followed_and_the_new_version_said(self):
        self.kelva("capture")
        run = self.kelva("upgrade", "--yes", self.image)
        self.assertEqual(run.returncode, 0, run.stderr)
        sha1 = hashlib.sha1(IMAGE).hexdigest()
        self.assertIn("180.0 kB, SHA-1 " + sha1, run.stderr)
        self.assertIn("firmware now factory; battery level 99.75", run.stderr)
        self.assertIn("The camera is back with firmware " + sha1[:12], run.stderr)
        self.assertEqual(run.stdout, sha1[:12] + "\n")

    def test_json_follows_it_to_the_end(self):
        run = self.kelva("upgrade", "--yes", "--json", self.image)
        self.assertEqual(run.returncode, 0, run.stderr)
        sha1 = hashlib.sha1(IMAGE).hexdigest()
        document = json.loads(run.stdout)
        self.assertEqual((document["size"], document["sha1"], document["battery"]), (len(IMAGE), sha1, 100))
        self.assertEqual((document["before"], document["after"]), ("factory", sha1[:12]))
        written = [event["share"] for event in map(json.loads, run.stderr.splitlines())
                   if event["event"] == "progress" and event["what"].startswith("writing")]
        self.assertGreater(len(written), 2)
        self.assertEqual(written, sorted(written))
        self.assertTrue(all(0 <= share <= 1 for share in written), written)

    def test_an_upgrade_that_fails_is_refused_by_the_camera_and_changes_nothing(self):
        self.fault("upgrade-fails")
        run = self.kelva("upgrade", "--yes", "--json", self.image)
        self.assertEqual(run.returncode, 7, run.stderr)
        self.assertIn("keeps the firmware it had", json.loads(run.stdout)["error"])
        self.assertIn("factory", self.kelva("info").stdout)

    def test_an_image_that_breaks_off_is_a_failure(self):
        # The chunk after the announcement; what upgrade asks before are information and battery.
        self.fault("fail", 7)
        run = self.kelva("upgrade", "--yes", self.image)
        self.assertNotEqual(run.returncode, 0)
        self.assertIn("factory", self.kelva("info").stdout)

    def test_without_a_terminal_and_without_yes_nothing_is_sent(self):
        before = self.status()["K1"]["commands"]
        run = self.kelva("upgrade", self.image, stdin=subprocess.DEVNULL)
        self.assertEqual(run.returncode, 2)
        self.assertIn("--yes", run.stderr)
        self.assertIn("factory", self.kelva("info").stdout)
        self.assertLess(self.status()["K1"]["commands"] - before, 12)

    def test_a_camera_that_restarts_is_waited_for_and_no_other_takes_its_place(self):
        run = self.start("upgrade", "--yes", "--json", self.image)
        self.wait_until_held("K1")
        while self.status()["K1"]["commands"] < 12:
            time.sleep(0.01)
        os.mkdir(self.folder + "/other")
        self.plug("K2", self.folder + "/other")
        self.unplug()
        time.sleep(0.5)
        self.assertIsNone(run.poll())
        self.plug()
        out, messages = run.communicate(timeout=60)
        self.assertEqual(run.returncode, 0, messages)
        self.assertEqual(json.loads(out)["serial"], "K1")
        self.assertEqual(self.status()["K2"]["commands"], 0)


class RebootTest(Bus):
    def test_it_returns_at_once_unless_told_to_wait(self):
        self.assertEqual(self.kelva("reboot").returncode, 0)
        self.assertEqual(self.kelva("ready").returncode, 1)

    def test_wait_ends_when_the_camera_is_ready(self):
        run = self.kelva("reboot", "--wait", "--json")
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertIs(json.loads(run.stdout)["back"], True)
        self.assertEqual(self.kelva("ready").returncode, 0)

    def test_wait_is_for_the_same_camera(self):
        os.mkdir(self.folder + "/other")
        run = self.start("reboot", "--wait", "--timeout", "60")
        self.wait_until_held("K1")
        self.plug("K2", self.folder + "/other")
        self.unplug()
        time.sleep(1)
        self.assertIsNone(run.poll())
        self.plug()
        _, messages = run.communicate(timeout=60)
        self.assertEqual(run.returncode, 0, messages)
        self.assertEqual(self.status()["K2"]["commands"], 0)

    def test_wait_honours_the_deadline(self):
        unplugged = threading.Timer(0.3, self.unplug)
        unplugged.start()
        run = self.kelva("reboot", "--wait", "--timeout", "1")
        unplugged.join()
        self.assertEqual(run.returncode, 8, run.stderr)
        self.assertIn("Timed out after 1 s", run.stderr)


if __name__ == "__main__":
    bench_of_cameras.main()
