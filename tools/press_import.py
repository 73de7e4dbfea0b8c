#!/usr/bin/env python3
"""Uses the window of ./run as a screen reader does: imports what is new, takes a photograph, and closes the window.

Usage: press_import.py PHOTOGRAPH.png
"""

import os
import pathlib
import signal
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "tests/desktop"))
import screen  # noqa: E402


def main():
    window = screen.Started("kelva-desktop")
    button = window.wait(r"^Import \d+ new", "push button", 60)
    print(f"The window shows them, and its button says \"{button.get_name()}\". Pressing it ...")
    window.press(r"^Import \d+ new")
    said = window.wait(r"^\d+ pictures? (is|are) on this computer", "label", 600).get_name()
    print(f"The window says: {said}")
    screen.photograph(sys.argv[1])
    window.press("^Keep$")
    os.kill(window.process_number(), signal.SIGTERM)


main()
