"""kelva-desktop-worker as the window has it: what it shows of a camera, and imports that are those of kelva sync."""

import base64
import json
import os
import re
import shutil
import sqlite3
import time

import bench_of_cameras
import tiny_jpeg
from worker_bench import WITH_THUMBNAIL, RED, WorkerTest, everything_in

def rows_of(folder):
    """The list of what was imported, without the time at which that was."""
    with sqlite3.connect(f"file:{folder}/.kelva-manifest.sqlite?mode=ro", uri=True) as database:
        tables = [name for (name,) in database.execute("select name from sqlite_master where type = 'table'")]
        return {table: sorted(re.sub(r"'[-0-9]+T[:0-9]+Z'", "", repr(row))
                              for row in database.execute(f'select * from "{table}"')) for table in tables}


class WatchTest(WorkerTest):
    def test_cameras_come_and_go(self):
        watch = self.worker("watch")
        self.assertTrue(watch.until("attached", serial="K1")["present"])
        self.assertEqual(watch.until("trouble")["findings"], [])
        watch.until("ready")
        self.vcam("plug", "--serial", "K2", "--storage", self.drive)
        self.assertFalse(watch.until("attached", serial="K2")["present"])
        self.unplug("K1")
        watch.until("lost", serial="K1")
        self.assertLess(watch.close(), 1)

    def test_a_bad_camera_is_trouble_until_it_is_unplugged(self):
        watch = self.worker("watch")
        watch.until("ready")
        self.vcam("plug", "--serial", "K2", "--storage", self.drive, "--type", "5", "--revision", "Q42")
        watch.until("bad")
        finding, = watch.until("trouble")["findings"]
        self.assertEqual(finding["condition"], "bad-camera")
        self.assertTrue(finding["sentence"].endswith("."), finding)
        self.unplug("K2")
        self.assertEqual(watch.until("trouble")["findings"], [])
        watch.close()


class CameraTest(WorkerTest):
    def test_pictures_come_highest_first_with_sizes_and_other_files(self):
        self.thumb(1)
        self.put("DCIM/100ABCDE/IMG_0001.RAW", b"raw")
        self.thumb(2, b"22")
        self.thumb(1, b"4444", "101ABCDE")
        self.put("DCIM/101ABCDE/MVI_0009.MP4", b"video")
        camera = self.camera()
        self.assertEqual(camera.until("camera")["serial"], "K1")
        pictures = camera.until("pictures")
        self.assertEqual([item[:3] for item in pictures["items"]],
                         [["101ABCDE", "IMG_0001", 1], ["100ABCDE", "IMG_0002", 1], ["100ABCDE", "IMG_0001", 3]])
        self.assertEqual(camera.until("catalogue")["count"], 3)
        self.assertIn("battery", camera.until("camera"))
        others = camera.until("others")
        self.assertEqual((others["count"], others["bytes"], others["cut"]), (1, 5, False))
        sizes = [item for event in camera.all("sizes") for item in event["items"]]
        self.assertEqual(sizes, [[4], [2], [len(WITH_THUMBNAIL), 3]])
        camera.say("quit")
        self.assertTrue(camera.wait()["ok"])

    def test_thumbnails_come_in_the_order_asked_for_and_a_picture_large(self):
        for number in range(1, 20):
            self.thumb(number)
        self.thumb(20, tiny_jpeg.jpeg([[RED] * 8] * 4))  # without a thumbnail of its own
        self.thumb(21, b"no picture")
        self.put("DCIM/100ABCDE/IMG_0022.RAW", b"raw")
        camera = self.camera()
        camera.until("catalogue")
        camera.say("thumbs", *range(22))
        thumbs = {}
        while len(thumbs) < 22:
            thumb = camera.until("thumb")
            self.assertNotIn(thumb["index"], thumbs)
            thumbs[thumb["index"]] = thumb
        self.assertEqual(thumbs[0]["none"], "The picture has no JPEG file.")
        self.assertTrue(thumbs[1]["none"].startswith("There is no thumbnail of I:/DCIM/100ABCDE/IMG_0021.JPG: "))
        self.assertEqual((thumbs[2]["width"], thumbs[2]["height"]), (64, 32))
        for index in range(3, 22):
            self.assertEqual((thumbs[index]["width"], thumbs[index]["height"]), (160, 120))
            self.assertEqual(thumbs[index]["time"], "2026-03-14 15:09:26")
            self.assertEqual(base64.b64decode(thumbs[index]["jpeg"], validate=True)[:2], b"\xff\xd8")
        camera.say("preview", 3)
        large = camera.until("preview")
        self.assertEqual((large["index"], large["width"], large["height"]), (3, 240, 8))
        camera.say("preview", 0)
        self.assertEqual(camera.until("preview")["none"], "The picture has no JPEG file.")
        camera.close()

    def test_a_screen_of_thumbnails_reads_the_starts_of_files_alone(self):
        self.unplug()
        for number in range(1, 101):
            self.thumb(number)
            os.truncate(f"{self.drive}/DCIM/100ABCDE/IMG_{number:04d}.JPG", 8 << 20)  # the disk keeps nothing of the rest
        self.vcam("plug", "--serial", "K1", "--storage", self.drive, "--no-keys")
        trace = os.path.join(self.folder, "trace")
        camera = self.worker("camera", "--serial", "K1", env={**os.environ, "KELVA_TRACE": trace})
        camera.until("others")
        camera.say("thumbs", *range(40))
        for _ in range(40):
            self.assertEqual(camera.until("thumb")["width"], 160)
        camera.close()
        with open(trace, encoding="ascii") as lines:
            moved = sum(line["moved"] for line in map(json.loads, lines) if line.get("direction") == 2)
        self.assertGreater(moved, 40 * len(WITH_THUMBNAIL))
        self.assertLess(moved, 42 * 65_536)

    def test_what_is_wanted_now_comes_before_what_was_wanted_before(self):
        for number in range(1, 301):
            self.thumb(number)
        self.fault("slow", 2)
        camera = self.camera()
        camera.until("catalogue")
        camera.say("thumbs", *range(200))
        camera.until("thumb")
        camera.say("thumbs", 290)
        camera.until("thumb", index=290)
        self.assertLess(len(camera.all("thumb")), 60)
        camera.close()

    def test_a_target_tells_what_is_new_before_and_after_an_import(self):
        self.thumb(1)
        self.put("DCIM/100ABCDE/IMG_0001.RAW", b"raw")
        self.thumb(2)
        camera = self.camera()
        camera.until("others")
        camera.say("target", self.target, "", "jpg")
        before = camera.until("target")
        self.assertEqual((before["new"], before["new_pictures"], before["new_bytes"]), ("13", 2, 2 * len(WITH_THUMBNAIL)))
        self.run_import("--types", "jpg")
        camera.say("target", self.target, "", "")
        after = camera.until("target")
        self.assertEqual((after["new"], after["new_files"], after["new_bytes"]), ("02", 1, 3))
        camera.say("target", self.target, "{frob}", "")
        self.assertIn("{frob}", camera.until("target")["error"])
        camera.close()

    def test_the_list_is_read_again_when_asked(self):
        self.thumb(1)
        camera = self.camera()
        camera.until("others")
        self.thumb(2)
        camera.say("list")
        self.assertEqual(camera.until("catalogue")["count"], 2)
        camera.say("thumbs", 0, 1)
        self.assertEqual({camera.until("thumb")["index"], camera.until("thumb")["index"]}, {0, 1})
        camera.close()

    def test_the_tool_has_the_camera_while_nothing_is_asked_for(self):
        self.thumb(1)
        camera = self.camera()
        camera.until("others")
        start = time.monotonic()
        self.assertEqual(self.kelva("ls", "DCIM/100ABCDE").returncode, 0)
        self.assertLess(time.monotonic() - start, 1)
        self.assertFalse(self.status()["K1"]["holder"])
        camera.close()

    def test_a_camera_that_stays_held_is_said_and_waited_for(self):
        self.thumb(1)
        self.fault("hang")
        holder = self.start("ready")
        self.wait_until_held("K1")
        camera = self.camera()
        self.assertIn("kelva", camera.until("busy")["holders"])
        holder.kill()
        holder.communicate()
        camera.until("free")
        self.assertEqual(camera.until("catalogue")["count"], 1)
        camera.close()

    def test_an_unplugged_camera_ends_it_with_a_sentence(self):
        self.thumb(1)
        camera = self.camera()
        camera.until("others")
        self.unplug()
        camera.say("thumbs", 0)
        ended = camera.wait()
        self.assertEqual(ended["reason"], "no-camera")
        self.assertTrue(ended["error"].endswith("."), ended)

    def test_a_camera_that_hangs_keeps_it_from_nothing_but_an_answer(self):
        self.thumb(1)
        camera = self.camera()
        camera.until("others")
        self.fault("hang")
        camera.say("thumbs", 0)
        time.sleep(0.2)
        self.assertLess(camera.close(), 1)

    def test_the_second_camera_has_a_worker_of_its_own(self):
        second = os.path.join(self.folder, "second")
        shutil.copytree(self.drive, second)
        os.makedirs(second + "/DCIM/100ABCDE")
        self.plug("K2", second)
        self.thumb(1)
        one, two = self.camera("K1"), self.camera("K2")
        self.assertEqual((one.until("catalogue")["count"], two.until("catalogue")["count"]), (1, 0))
        one.close()
        two.close()


class ImportTest(WorkerTest):
    def some_files(self):
        for number in range(1, 6):
            self.thumb(number)
            self.put(f"DCIM/100ABCDE/IMG_{number:04d}.RAW", os.urandom(100_000))
        self.thumb(1, folder="101ABCDE")
        self.put("DCIM/101ABCDE/MVI_0009.MP4", os.urandom(3_000_000))

    def is_as_sync(self, *words):
        mine = self.run_import(*words)
        other = os.path.join(self.folder, "synced")
        run = self.kelva("sync", *words, other)
        self.assertEqual(mine.process.returncode, run.returncode, run.stderr)
        self.assertEqual(everything_in(self.target), everything_in(other))
        self.assertNotEqual(everything_in(other), {})
        mine_rows, other_rows = rows_of(self.target), rows_of(other)
        self.assertEqual(mine_rows.keys(), other_rows.keys())
        for table in mine_rows:
            self.assertEqual(mine_rows[table], other_rows[table], table)
        return mine

    def test_an_import_is_a_sync(self):
        self.some_files()
        worker = self.is_as_sync()
        self.assertEqual(worker.ended["stored"], 11)
        self.assertEqual(len(worker.all("stored")), 11)
        self.assertEqual(self.kelva("sync", self.target).stdout.splitlines()[0], "0 stored (0 B), 11 known before, 0 failed")

    def test_so_it_is_with_options(self):
        self.some_files()
        self.is_as_sync("--everything", "--types", "jpg", "--pattern", "{year}/{folder}-{name}")

    def test_chosen_pictures_alone_are_imported(self):
        self.some_files()
        chosen = os.path.join(self.folder, "chosen")
        with open(chosen, "w", encoding="ascii") as file:
            file.write("100ABCDE/IMG_0002\n101ABCDE/IMG_0001\n")
        worker = self.run_import("--pictures", chosen)
        self.assertEqual(sorted(everything_in(self.target)),
                         ["100ABCDE/IMG_0002.JPG", "100ABCDE/IMG_0002.RAW", "101ABCDE/IMG_0001.JPG"])
        self.assertEqual(worker.ended["stored"], 3)
        deleted = self.run_import("--pictures", chosen, "--delete-after-verify").ended
        self.assertEqual((deleted["deleted"], deleted["to_delete"], deleted["failed"]), (3, 3, 0))
        self.assertEqual(len(os.listdir(self.drive + "/DCIM/100ABCDE")), 8)

    def test_an_edited_file_is_not_deleted_on_the_camera(self):
        self.thumb(1)
        self.thumb(2)
        self.run_import()
        with open(self.target + "/100ABCDE/IMG_0001.JPG", "ab") as file:
            file.write(b"more")
        worker = self.run_import("--delete-after-verify")
        self.assertEqual((worker.ended["deleted"], worker.ended["failed"]), (1, 1))
        self.assertEqual(worker.all("failed")[0]["path"], "I:\\DCIM\\100ABCDE\\IMG_0001.JPG")

    def test_a_window_that_goes_cancels_and_the_next_import_goes_on(self):
        self.pictures(8, 2_000_000)
        self.fault("slow", 5)
        worker = self.worker("import", "--serial", "K1", self.target)
        worker.until("stored")
        self.assertLess(worker.close(), 2)
        self.whole_so_far()
        self.fault("none")
        worker = self.run_import()
        self.assertEqual((worker.ended["left"], worker.process.returncode), (0, 0))
        self.assertEqual(self.whole_files_only(self.target), 8)

    def test_a_pulled_cable_ends_it_and_it_goes_on_when_the_camera_is_back(self):
        self.pictures(8, 2_000_000)
        self.fault("slow", 5)
        worker = self.worker("import", "--serial", "K1", self.target)
        worker.until("stored")
        self.unplug()
        ended = worker.wait()
        self.assertEqual(ended["reason"], "gone")
        self.assertTrue(ended["error"].endswith("."), ended)
        self.whole_so_far()
        self.plug()
        self.assertEqual(self.run_import().ended["left"], 0)
        self.assertEqual(self.whole_files_only(self.target), 8)

    def test_thumbnails_come_during_an_import(self):
        self.pictures(6, 4_000_000)
        self.thumb(7)
        self.fault("slow", 2)
        camera = self.camera()
        camera.until("others")
        worker = self.worker("import", "--serial", "K1", self.target)
        worker.until("stored")
        camera.say("thumbs", 0)
        camera.until("thumb", index=0)
        self.assertIsNone(worker.process.poll())
        self.assertEqual(worker.wait()["left"], 0)
        camera.close()

    def test_a_folder_that_takes_no_file_is_a_sentence(self):
        self.thumb(1)
        worker = self.run_import(target="/dev/null/pictures")
        self.assertNotEqual(worker.process.returncode, 0)
        self.assertTrue(worker.ended["error"].endswith("."), worker.ended)


if __name__ == "__main__":
    bench_of_cameras.main()
