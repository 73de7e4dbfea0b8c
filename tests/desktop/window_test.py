#!/usr/bin/python3
"""The window as its users have it: on a screen, pressed through the accessibility interface.

Usage: window_test.py FOLDER_OF_PROGRAMS FOLDER_FOR_SCREENSHOTS [TEST...]
"""

import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import threading
import time
import unittest

import bench_of_cameras
import screen
import small_disk
import tiny_jpeg
import translation

PICTURES = pathlib.Path()
PROGRAM = ""


def photo(day, size=0, colour=(40, 160, 90)):
    """A picture of a day of March 2026 with a thumbnail, and as many bytes as wanted."""
    small = tiny_jpeg.jpeg([[colour, (30, 60, 120)]] * 2)
    content = tiny_jpeg.jpeg([[colour] * 4] * 3, tiny_jpeg.exif_with(small, time=f"2026:03:{day:02d} 15:09:26"))
    return content + bytes(max(0, size - len(content)))


class OneWindow(unittest.TestCase):
    def open(self, *words, **environment):
        window = screen.Window(PROGRAM, "--virtual", "/nowhere/bus", *words, **environment)
        self.addCleanup(lambda: window.process.poll() is None and window.close())
        window.wait("Kelva")
        return window

    def test_a_second_start_raises_the_first_window_and_ends(self):
        first = self.open()
        second = subprocess.run([PROGRAM, "--virtual", "/nowhere/bus"], timeout=screen.PATIENCE, check=False)
        self.assertEqual(second.returncode, 0)
        self.assertIsNone(first.process.poll())

    def test_a_window_can_be_opened_again_after_the_first_was_closed(self):
        self.assertLess(self.open().close(), 1)
        self.open()

    def test_a_translation_takes_the_place_of_the_english_texts(self):
        data = tempfile.TemporaryDirectory()
        self.addCleanup(data.cleanup)
        translations = pathlib.Path(data.name, "kelva/translations")
        translations.mkdir(parents=True)
        (translations / "kelva-desktop_de.qm").write_bytes(translation.compiled(
            {("MainWindow", "Plug a camera in to see its pictures."): ["Die Kamera anstecken, um ihre Bilder zu sehen."]}))
        window = screen.Window(PROGRAM, "--virtual", "/nowhere/bus", LC_ALL="de_DE.UTF-8", XDG_DATA_HOME=data.name)
        self.addCleanup(lambda: window.process.poll() is None and window.close())
        window.wait("^Die Kamera anstecken, um ihre Bilder zu sehen")

    def test_a_desktop_that_prefers_dark_has_a_dark_window(self):
        light = self.open()
        screen.photograph(PICTURES / "empty_light.png")
        light.close()
        portal = DarkPortal()
        self.addCleanup(portal.close)
        self.open()
        screen.wait_for(lambda: max(screen.photograph(PICTURES / "empty_dark.png", 100, 600)[-300:]) < 90, "a dark window")


class CameraWindow(bench_of_cameras.Bus):
    """A window on a bus with one camera, K1, that has twelve pictures of two days, and a folder to import into."""

    SIZE = 20000

    def setUp(self):
        super().setUp()
        for number in range(1, 13):
            colour = (20 * number, 250 - 20 * number, 90)
            self.put(f"DCIM/100ABCDE/IMG_{number:04d}.JPG", photo(13 + (number + 3) // 8, self.SIZE + number, colour))
        self.put("DCIM/100ABCDE/MOV_0001.MP4", b"a film")
        self.home = pathlib.Path(self.folder) / "home"
        self.target = self.home / "Pictures/Kelva"
        self.home.mkdir()
        self.unplug()

    def open(self, *words, **environment):
        window = screen.Window(PROGRAM, "--virtual", self.socket, *words, HOME=str(self.home), XDG_CONFIG_HOME=str(self.home), **environment)
        self.addCleanup(lambda: window.process.poll() is None and window.close())
        return window

    def window_with_camera(self, **environment):
        self.plug()
        window = self.open(**environment)
        window.wait(r"^Import 12 new pictures \(")
        return window

    def imported(self, parts=False):
        """Every file in the folder is one of the camera's, byte for byte; how many there are. `parts`: an import was cut, whose
        parts the next one takes up."""
        count = 0
        for path in sorted(self.target.rglob("*")):
            if path.is_dir() or path.name.startswith(".kelva-" if parts else ".kelva-manifest"):
                continue
            self.assertEqual(path.read_bytes(), (pathlib.Path(self.drive) / "DCIM" / path.relative_to(self.target)).read_bytes(), path)
            count += 1
        return count

    def pictures_on_camera(self):
        return len(list(pathlib.Path(self.drive).glob("DCIM/*/*.JPG")))

    def chosen(self, window, *names):
        for name in names:
            window.wait(name, "list item").do_action(0)


class Browsing(CameraWindow):
    def test_without_a_camera_it_says_so_and_a_plug_shows_its_pictures(self):
        window = self.open()
        window.wait("^Plug a camera in")
        self.plug()
        window.wait("^IMG_0012, JPG, .*, new$", "list item")
        window.wait(r"^\w+ K1, battery 100$", "page tab")
        self.unplug()
        window.wait("^Plug a camera in")

    def test_what_ends_programs_closes_it_in_order(self):
        for ending in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            with self.subTest(ending=ending):
                window = self.open()
                window.wait("^Plug a camera in")
                workers = screen.wait_for(lambda: window.workers("watch"), "the worker that watches")
                self.assertLess(window.close(ending), 1)
                self.assertFalse([worker for worker in workers if os.path.exists(f"/proc/{worker}")])

    def test_thumbnails_bring_days_and_a_larger_view(self):
        window = self.window_with_camera()
        # Only a picture whose first bytes were read has a time.
        window.wait("^IMG_0012, JPG, .*15:09", "list item")
        screen.photograph(PICTURES / "light.png")
        window.click(window.wait("^IMG_0012", "list item"))
        window.wait("^Import 1 selected picture")
        window.key("space")
        larger = window.wait("^Larger view")
        screen.wait_for(lambda: larger.get_description().startswith("IMG_0012"), "the larger view of it")
        window.key("Right")
        screen.wait_for(lambda: larger.get_description().startswith("IMG_0011"), "the larger view of its neighbour")
        screen.photograph(PICTURES / "preview.png")
        window.key("Escape")
        window.wait("^IMG_0011", "list item")

    def test_the_newest_stands_first_whatever_its_number(self):
        self.put("DCIM/100ABCDE/IMG_0004.JPG", photo(28))
        window = self.window_with_camera()
        pictures = window.wait("^Pictures on the camera", "list")
        names = lambda: [pictures.get_child_at_index(row).get_name().split(",")[0] for row in range(pictures.get_child_count())]
        newest = ["IMG_0004", "IMG_0012", "IMG_0011", "IMG_0010", "IMG_0009", "IMG_0008", "IMG_0007", "IMG_0006", "IMG_0005"]
        rest = ["IMG_0003", "IMG_0002", "IMG_0001"]
        screen.wait_for(lambda: [name for name in names() if name.startswith("IMG")] == newest + rest, "the order of their times")
        window.click(window.wait("^IMG_0004", "list item"))
        window.key("space")
        larger = window.wait("^Larger view")
        screen.wait_for(lambda: larger.get_description().startswith("IMG_0004"), "the larger view of it")
        window.key("Right")
        screen.wait_for(lambda: larger.get_description().startswith("IMG_0012"), "the larger view of its neighbour")

    def test_at_200_per_cent_everything_is_there(self):
        window = self.window_with_camera(QT_SCALE_FACTOR="2")
        window.wait("^IMG_0012, JPG, .*15:09", "list item")
        screen.photograph(PICTURES / "200_per_cent.png", 2 * screen.WIDTH, 2 * screen.HEIGHT)

    def test_in_the_dark_everything_is_there(self):
        portal = DarkPortal()
        self.addCleanup(portal.close)
        window = self.window_with_camera()
        window.wait("^IMG_0012, JPG, .*15:09", "list item")
        screen.photograph(PICTURES / "dark.png")

    def test_a_second_camera_has_a_tab_and_is_shown(self):
        window = self.window_with_camera()
        os.makedirs(self.folder + "/other/DCIM/100ABCDE")
        pathlib.Path(self.folder, "other/DCIM/100ABCDE/IMG_0077.JPG").write_bytes(photo(1))
        self.plug("K2", self.folder + "/other")
        window.wait(r" K2, battery", "page tab")
        window.wait("^IMG_0077", "list item")
        window.wait(r" K1, battery", "page tab")

    def test_what_is_in_the_way_is_a_sentence_until_it_is_gone(self):
        window = self.open()
        window.wait("^Plug a camera in")
        self.vcam("plug", "--serial", "K2", "--storage", self.drive, "--type", "5", "--revision", "Q42")
        window.wait("CD drive", "label")
        screen.photograph(PICTURES / "trouble.png")
        self.unplug("K2")
        screen.wait_for(lambda: window.find("CD drive", "label") is None, "the sentence is gone")

    def test_every_part_that_can_be_used_has_a_name(self):
        window = self.window_with_camera()
        for role, name in window.names():
            if role in ("push button", "check box", "combo box", "list", "list item", "page tab", "text", "progress bar"):
                self.assertTrue(name, role)


class Importing(CameraWindow):
    def test_all_are_imported_and_deleted_when_their_user_agrees(self):
        window = self.window_with_camera()
        window.press("^Import 12 new")
        window.wait(r"^12 pictures are on this computer and checked\. Delete them from the camera\?$")
        screen.photograph(PICTURES / "imported.png")
        self.assertEqual(self.imported(), 12)
        self.assertEqual(self.pictures_on_camera(), 12)
        window.press("^Delete from the camera")
        window.wait(r"You can unplug the camera\.$")
        self.assertEqual(self.pictures_on_camera(), 0)
        self.assertTrue(os.path.exists(self.drive + "/DCIM/100ABCDE/MOV_0001.MP4"))

    def test_keeping_them_is_one_press(self):
        window = self.window_with_camera()
        window.press("^Import 12 new")
        window.press("^Keep$")
        window.wait(r"^You can unplug the camera\.$")
        window.wait("^No new pictures$")
        self.assertEqual(self.pictures_on_camera(), 12)

    def test_selected_pictures_alone_are_imported_and_deleted(self):
        window = self.window_with_camera()
        self.chosen(window, "^IMG_0012", "^IMG_0010")
        window.press("^Import 2 selected pictures")
        window.press("^Delete from the camera")
        window.wait("You can unplug")
        self.assertEqual(self.imported_of(12, 10), 2)
        self.assertEqual(self.pictures_on_camera(), 10)

    def imported_of(self, *numbers):
        return sum((self.target / f"100ABCDE/IMG_{number:04d}.JPG").exists() for number in numbers)

    def test_copies_of_before_are_checked_before_anything_is_said_or_deleted(self):
        window = self.window_with_camera()
        self.chosen(window, "^IMG_0012", "^IMG_0010")
        window.press("^Import 2 selected pictures")
        window.press("^Keep$")
        window.wait("^You can unplug")
        (self.target / "100ABCDE/IMG_0012.JPG").unlink()
        (self.target / "100ABCDE/IMG_0010.JPG").write_bytes(b"edited")
        window.press("^Import 2 selected pictures")
        window.wait(r"^2 pictures were imported\. Check them once more, and delete them from the camera\?$")
        window.press("^Delete from the camera")
        window.wait("^0 files were deleted from the camera")
        window.wait("IMG_0012")
        self.assertEqual(self.pictures_on_camera(), 12)

    def test_only_the_chosen_kinds_are_imported_called_imported_and_deleted(self):
        for name in ("IMG_0012.RAW", "IMG_0013.RAW"):
            self.put("DCIM/100ABCDE/" + name, b"raw")
        settings = self.home / "Kelva/Kelva.conf"
        settings.parent.mkdir()
        settings.write_text("[import]\ntypes=jpg\n", encoding="ascii")
        window = self.window_with_camera()
        window.wait("^IMG_0013, RAW, .* RAW not on this computer", "list item")
        self.chosen(window, "^IMG_0013")
        window.wait("^No such files selected$")
        self.chosen(window, "^IMG_0012")
        window.press("^Import 1 selected picture$")
        window.wait(r"^JPG only: 1 picture is on this computer and checked\.")
        window.press("^Delete from the camera")
        window.wait("^1 file was deleted from the camera")
        window.wait("^IMG_0012, RAW, .* RAW not on this computer", "list item")
        self.assertTrue(os.path.exists(self.drive + "/DCIM/100ABCDE/IMG_0012.RAW"))

    def test_other_files_are_imported_when_ticked(self):
        window = self.window_with_camera()
        window.press("^1 other file is not shown", "check box")
        window.press(r"^Import 12 new pictures")
        window.wait("^12 pictures are on")
        self.assertEqual(self.imported(), 13)

    def test_a_picture_that_fails_is_named_and_the_next_import_completes(self):
        window = self.window_with_camera()
        self.fault("fail", 30)
        window.press("^Import 12 new")
        window.wait("(pictures are|picture is) on this computer", patience=60)
        window.press("^Keep$")
        window.press("^Import 1 new")
        window.press("^Keep$")
        window.wait("^No new pictures$")
        self.assertEqual(self.imported(), 12)


class Interrupted(CameraWindow):
    SIZE = 1000000

    def begin(self, window):
        """An import that takes some seconds."""
        self.fault("slow", 10)
        window.press("^Import 12 new")
        window.wait("^Cancel$")
        screen.wait_for(lambda: self.target.exists() and self.imported_names(), "the first picture")

    def imported_names(self):
        return [path.name for path in self.target.rglob("IMG_*.JPG")]

    def test_cancel_keeps_what_is_finished_and_the_next_import_goes_on(self):
        window = self.window_with_camera()
        self.begin(window)
        window.press("^Cancel$")
        window.wait("^Stopped. ")
        count = self.imported(parts=True)
        self.assertGreater(count, 0)
        self.assertLess(count, 12)
        self.fault("none")
        window.press("^Import .* new")
        window.wait("on this computer and checked")
        self.assertEqual(self.imported(), 12)

    def test_the_end_of_a_session_stops_an_import_cleanly(self):
        window = self.window_with_camera()
        self.begin(window)
        workers = window.workers("import") + window.workers("camera")
        self.assertLess(window.close(), 1)
        self.assertFalse([worker for worker in workers if os.path.exists(f"/proc/{worker}")])
        self.assertLess(self.imported(parts=True), 12)
        self.fault("none")
        window = self.open()
        window.press("^Import .* new")
        window.wait("on this computer and checked")
        self.assertEqual(self.imported(), 12)

    def test_after_a_pulled_cable_it_goes_on(self):
        window = self.window_with_camera()
        self.begin(window)
        self.unplug()
        window.wait("^The cable was pulled")
        screen.photograph(PICTURES / "pulled.png")
        self.plug()
        window.wait("12 pictures are on this computer and checked", patience=60)
        self.assertEqual(self.imported(), 12)
        self.assertIsNone(window.find("^The cable was pulled"))

    def test_while_the_camera_hangs_the_window_answers_and_closes(self):
        window = self.window_with_camera()
        self.fault("hang", 20)
        window.press("^Import 12 new")
        cancel = window.wait("^Cancel$")
        time.sleep(0.5)  # it hangs by now, or soon does
        answers = []
        for _ in range(9):
            start = time.monotonic()
            cancel.get_extents(window.atspi.CoordType.SCREEN)  # one question, which nothing but the window can answer
            answers.append(time.monotonic() - start)
        self.assertLess(sorted(answers)[4], 0.1)
        cancel.do_action(0)
        self.assertLess(window.close(), 1.5)  # half a second is patience with its workers

    def test_a_full_disk_is_a_sentence_and_nothing_wrong_is_left(self):
        self.target.parent.mkdir()
        disk = small_disk.SmallDisk(str(self.target), "size=4m")
        self.addCleanup(disk.unmount)
        window = self.window_with_camera()
        window.press("^Import 12 new")
        window.wait(r"(?i)room|space|full")
        self.assertLess(self.imported(), 12)
        disk.remount("size=40m")
        window.press("^Import .* new")
        window.wait("on this computer and checked")
        self.assertEqual(self.imported(), 12)
        window.close()

    def test_a_worker_that_is_killed_is_one_sentence_and_can_be_started_again(self):
        window = self.window_with_camera()
        for process in window.workers("camera"):
            os.kill(process, signal.SIGKILL)
        window.wait("has stopped")
        window.press("^Try again")
        screen.wait_for(lambda: window.find("has stopped") is None, "the sentence is gone")
        window.wait("^IMG_0012", "list item")

    def test_without_the_worker_that_lists_an_import_goes_well_and_starts_it_again(self):
        window = self.window_with_camera()
        for process in window.workers("camera"):
            os.kill(process, signal.SIGKILL)
        window.wait("has stopped")
        window.press("^Import 12 new")
        window.press("^Keep$")
        window.wait("^No new pictures$")
        self.assertIsNone(window.find("has stopped"))
        self.assertEqual(self.imported(), 12)


class DarkPortal:
    """The portal of a desktop whose user wants dark colours."""

    def __init__(self):
        from gi.repository import Gio, GLib
        self.loop = GLib.MainLoop()
        self.ready = threading.Event()
        interface = Gio.DBusNodeInfo.new_for_xml(
            "<node><interface name='org.freedesktop.portal.Settings'><method name='Read'>"
            "<arg type='s' direction='in'/><arg type='s' direction='in'/><arg type='v' direction='out'/>"
            "</method></interface></node>").interfaces[0]

        def answer(_bus, _sender, _path, _interface, _method, _words, invocation):
            invocation.return_value(GLib.Variant("(v)", (GLib.Variant("v", GLib.Variant("u", 1)),)))

        def serve():
            bus = Gio.bus_get_sync(Gio.BusType.SESSION)
            thing = bus.register_object("/org/freedesktop/portal/desktop", interface, answer, None, None)
            self.name = Gio.bus_own_name_on_connection(bus, "org.freedesktop.portal.Desktop", 0, lambda *_: self.ready.set(), None)
            self.loop.run()
            Gio.bus_unown_name(self.name)
            bus.unregister_object(thing)

        self.thread = threading.Thread(target=serve, daemon=True)
        self.thread.start()
        assert self.ready.wait(screen.PATIENCE)

    def close(self):
        self.loop.quit()
        self.thread.join()


def main():
    """Runs the tests of the script that was started, with the programs and on the screen of its arguments."""
    global PICTURES, PROGRAM
    small_disk.need_own_mounts()
    screen.enter_session()
    programs, PICTURES = (pathlib.Path(sys.argv.pop(1)).resolve() for _ in range(2))
    PICTURES.mkdir(parents=True, exist_ok=True)
    PROGRAM = str(programs / "kelva-desktop")
    bench_of_cameras.BIN = str(programs)
    print(f"KELVA_RANDOM_SEED={bench_of_cameras.SEED}", file=sys.stderr)
    unittest.main(module="__main__", verbosity=2)


if __name__ == "__main__":
    main()
