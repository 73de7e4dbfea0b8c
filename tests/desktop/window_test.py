#!/usr/bin/python3
"""The window as its users have it: on a screen, pressed through the accessibility interface.

Usage: window_test.py FOLDER_OF_PROGRAMS FOLDER_FOR_SCREENSHOTS [TEST...]
"""

import pathlib
import subprocess
import sys
import threading
import unittest

import screen

BIN = pathlib.Path()
PICTURES = pathlib.Path()
PROGRAM = ""


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

    def test_a_desktop_that_prefers_dark_has_a_dark_window(self):
        light = self.open()
        screen.photograph(PICTURES / "empty_light.png")
        light.close()
        portal = DarkPortal()
        self.addCleanup(portal.close)
        self.open()
        screen.wait_for(lambda: max(screen.photograph(PICTURES / "empty_dark.png", 100, 600)[-300:]) < 90, "a dark window")


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
            bus.register_object("/org/freedesktop/portal/desktop", interface, answer, None, None)
            self.name = Gio.bus_own_name_on_connection(bus, "org.freedesktop.portal.Desktop", 0, lambda *_: self.ready.set(), None)
            self.loop.run()
            Gio.bus_unown_name(self.name)

        self.thread = threading.Thread(target=serve, daemon=True)
        self.thread.start()
        assert self.ready.wait(screen.PATIENCE)

    def close(self):
        self.loop.quit()
        self.thread.join()


if __name__ == "__main__":
    screen.enter_session()
    BIN, PICTURES = pathlib.Path(sys.argv.pop(1)).resolve(), pathlib.Path(sys.argv.pop(1)).resolve()
    PICTURES.mkdir(parents=True, exist_ok=True)
    PROGRAM = str(BIN / "kelva-desktop")
    unittest.main(verbosity=2)
