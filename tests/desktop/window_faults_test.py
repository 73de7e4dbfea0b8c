#!/usr/bin/python3
"""Every fault of the virtual camera during an import in the window: nothing wrong under a final name, a sentence in the window, and the
next import completes.

Usage: window_faults_test.py FOLDER_OF_PROGRAMS FOLDER_FOR_SCREENSHOTS
"""

import random
import shutil
import time

import screen
import window_test

FAULTS = ["fail", "short", "surplus1", "surplus2", "stall", "lie-size", "wrong-count", "wrong-offset", "unterminated-name", "endless",
          "changing"]


class Faults(window_test.CameraWindow):
    SIZE = 150000

    def fresh(self, window):
        """The same window with nothing imported: a camera that is plugged in again is read anew."""
        self.fault("none")
        self.unplug()
        window.wait("^Plug a camera in")
        shutil.rmtree(self.target, ignore_errors=True)
        self.plug()
        window.wait(r"^Import 12 new pictures \(")

    def finish(self, window):
        """Until no import runs; what the window says then, without what is always there."""
        screen.wait_for(lambda: window.find("^(Import|No new|Keep|Try again)", "push button"), "the end of the import", 60)
        return [name for role, name in window.names() if role == "label" and name.endswith((".", "?"))]

    def completes(self, window):
        self.fault("none")
        if keep := window.find("^Keep$"):
            keep.do_action(0)
        for _ in range(3):
            button = window.wait("^(Import .*new|No new)", "push button")
            if button.get_name().startswith("No new"):
                break
            button.do_action(0)
            window.press("^Keep$")
        self.assertEqual(self.imported(), 12)

    def test_every_fault_is_a_sentence_and_no_wrong_file(self):
        self.plug()
        window = self.open()
        for fault in FAULTS:
            at = random.randint(3, 60)
            with self.subTest(fault=fault, at=at):
                self.fresh(window)
                self.fault(fault, at)
                window.press("^Import 12 new")
                time.sleep(0.3)  # a press takes a tenth of a second to be heard, and an import may end before anybody looks
                sentences = self.finish(window)
                if self.imported(parts=True) < 12:
                    self.assertTrue([text for text in sentences if "on this computer" not in text], sentences)
                self.completes(window)

    def test_it_closes_while_the_camera_hangs(self):
        window = self.window_with_camera()
        self.fault("hang", 4)
        window.press("^Import 12 new")
        window.wait("^Cancel$")
        screen.wait_for(lambda: window.workers("import"), "the worker that imports")
        self.assertLess(window.close_by_its_button(), 1)


if __name__ == "__main__":
    window_test.main()
