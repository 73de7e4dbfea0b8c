"""Every fault of the virtual camera, a full disk and a killed process during an import of the window: nothing wrong under a final
name, a sentence, and the next import completes."""

import os
import random
import signal
import time

import bench_of_cameras
import small_disk
from worker_bench import WorkerTest

COUNT = 4
FAULTS = ["fail", "short", "surplus1", "surplus2", "stall", "lie-size", "wrong-count", "wrong-offset", "unterminated-name",
          "endless", "changing"]


class FaultsTest(WorkerTest):
    def setUp(self):
        super().setUp()
        self.pictures(COUNT, 150_000)
        self.fault("none")
        before = self.status()["K1"]["commands"]
        self.run_import(target=self.folder + "/trial")
        self.commands = self.status()["K1"]["commands"] - before

    def says_why(self, worker):
        """What did not work is in sentences, one of them in the last document or at a file."""
        ended = worker.ended
        if ended.get("ok"):
            return
        sentences = [ended.get("error"), *(failed["error"] for failed in worker.all("failed"))]
        sentences = [sentence for sentence in sentences if sentence]
        self.assertTrue(sentences, ended)
        for sentence in sentences:
            self.assertTrue(sentence.endswith("."), sentence)
            self.assertNotIn("[command", sentence, "people read it")

    def completes(self):
        self.fault("none")
        worker = self.run_import()
        self.assertEqual((worker.process.returncode, worker.ended["left"]), (0, 0), worker.ended)
        self.assertEqual(self.whole_files_only(self.target), COUNT)

    def fresh(self):
        self.target = os.path.join(self.folder, f"out{random.randrange(10 ** 9)}")

    def test_every_fault_at_any_command(self):
        for fault in FAULTS:
            for at in (1, random.randint(2, self.commands)):
                with self.subTest(fault=fault, at=at):
                    self.fresh()
                    self.fault(fault, at)
                    self.says_why(self.run_import())
                    self.whole_so_far()
                    self.completes()

    def test_an_unplug_after_any_byte(self):
        for _ in range(4):
            at = random.randint(0, COUNT * 150_000)
            with self.subTest(at=at):
                self.fresh()
                self.fault("unplug", at)
                worker = self.run_import()
                self.assertEqual(worker.ended["reason"], "gone")
                self.says_why(worker)
                self.whole_so_far()
                self.plug()
                self.completes()

    def test_a_camera_that_hangs_is_cancelled_within_a_second(self):
        self.fault("hang", random.randint(2, self.commands))
        worker = self.worker("import", "--serial", "K1", self.target)
        self.wait_until_held("K1")
        time.sleep(0.3)
        self.assertLess(worker.close(), 1.5)
        self.whole_so_far()
        self.unplug()
        self.plug()
        self.completes()

    def test_a_process_that_is_killed_in_a_file_is_followed_by_another(self):
        self.fault("slow", 40)
        worker = self.worker("import", "--serial", "K1", self.target)
        worker.until("stored")
        holder = None
        while not holder and worker.process.poll() is None:  # it gives the camera up for others now and then
            holder = self.status()["K1"]["holder"]
        os.kill(holder, signal.SIGKILL)
        self.assertEqual(worker.wait()["left"], 0)
        self.assertTrue(any("was killed" in note["message"] for note in worker.all("note")), worker.seen)
        self.completes()

    def test_what_ends_the_process_is_left_out_and_the_rest_is_shown(self):
        """Two bytes more than announced: the library aborts in some commands, in others it throws."""
        for number in range(10, 14):
            self.thumb(number)
        aborts = 0
        for at in range(1, 13):
            with self.subTest(at=at):
                self.fault("surplus2", at)
                camera = self.worker("camera", "--serial", "K1")
                while not camera.all("others") and camera.ended is None:
                    if camera.take().get("from") == 0 and camera.seen[-1]["event"] == "pictures":  # as the window does
                        camera.say("target", self.target, "", "")
                aborts += len(camera.all("pictures")) - 1
                if camera.ended is not None:  # there is nothing to show without the catalogue
                    self.assertFalse(camera.all("pictures"))
                    self.assertTrue(camera.ended["error"].endswith("."), camera.ended)
                    continue
                camera.say("thumbs", 0, 1, 2, 3)
                thumbs = [camera.until("thumb") for _ in range(4)]
                self.assertGreaterEqual(sum("jpeg" in thumb for thumb in thumbs), 3)
                target = camera.all("target") or [camera.until("target")]
                self.assertEqual(target[-1]["new_pictures"], 8)
                self.assertLess(camera.close(), 1)
                self.fault("none")
        self.assertGreater(aborts, 0)

    def test_a_full_disk_is_a_sentence_and_room_completes_it(self):
        for size in (40, 200, 400):
            with self.subTest(size=size):
                self.fresh()
                disk = small_disk.SmallDisk(self.target, f"size={size}k")
                try:
                    worker = self.run_import()
                    self.assertNotEqual(worker.process.returncode, 0)
                    self.assertTrue(worker.ended["error"].endswith("."), worker.ended)
                    self.whole_so_far()
                    disk.remount("size=4m")
                    self.completes()
                finally:
                    disk.unmount()


if __name__ == "__main__":
    small_disk.need_own_mounts()
    bench_of_cameras.main()
