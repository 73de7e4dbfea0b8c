"""A screen without a person: Xvfb, a session bus, the accessibility interface, and the window on them."""

import ctypes
import os
import pathlib
import re
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import time
import zlib

PATIENCE = 30  # seconds
WIDTH, HEIGHT = 1000, 720


def enter_session():
    """Starts this script again within a session bus and a screen of its own, and ends with its exit status."""
    if os.environ.get("KELVA_TEST_SESSION"):
        return
    folder = tempfile.mkdtemp(prefix="kelva-session-")
    os.mkdir(folder + "/run", 0o700)
    reader, writer = os.pipe()
    screen = subprocess.Popen(["Xvfb", "-noreset", "-screen", "0", f"{2 * WIDTH}x{2 * HEIGHT}x24", "-fbdir", folder, "-displayfd", str(writer)],
                              pass_fds=(writer,), stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    os.close(writer)
    display = os.read(reader, 32).decode().strip()
    environment = {**os.environ, "KELVA_TEST_SESSION": folder, "DISPLAY": ":" + display, "XDG_RUNTIME_DIR": folder + "/run",
                   "HOME": folder, "XDG_CONFIG_HOME": folder + "/config", "XDG_CACHE_HOME": folder + "/cache",
                   "XDG_DATA_HOME": folder + "/data", "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1", "QT_ACCESSIBILITY": "1", "LC_ALL": "C.UTF-8"}
    for name in ("WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "XDG_CURRENT_DESKTOP"):
        environment.pop(name, None)
    try:
        run = subprocess.run(["dbus-run-session", "--", sys.executable, "-B", *sys.argv], env=environment, check=False)
    finally:
        screen.terminate()
        screen.wait()
        shutil.rmtree(folder, ignore_errors=True)
    sys.exit(run.returncode)


def wait_for(condition, what, patience=PATIENCE):
    """What the condition gives, once that is true."""
    end = time.monotonic() + patience
    while True:
        found = condition()
        if found:
            return found
        if time.monotonic() > end:
            raise AssertionError(f"{what}: not within {patience} s")
        time.sleep(0.02)


def photograph(path, width=WIDTH, height=HEIGHT):
    """Writes the upper left part of the screen as PNG; its bytes of colour are returned."""
    data = (pathlib.Path(os.environ["KELVA_TEST_SESSION"]) / "Xvfb_screen0").read_bytes()
    header = struct.unpack(">25I", data[:100])
    pixels, line = header[0] + header[19] * 12, header[12]
    rows = []
    for row in range(height):
        colours = data[pixels + row * line:pixels + row * line + width * 4]
        rgb = bytearray(width * 3)
        rgb[0::3], rgb[1::3], rgb[2::3] = colours[2::4], colours[1::4], colours[0::4]
        rows.append(bytes(rgb))
    chunk = lambda kind, body: struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body))
    image = b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0))
    image += chunk(b"IDAT", zlib.compress(b"".join(b"\0" + row for row in rows), 6)) + chunk(b"IEND", b"")
    pathlib.Path(path).write_bytes(image)
    return b"".join(rows)


# A window may go while it is looked at, as its second one does once the first was asked to close. Xlib would end the program.
GONE = ctypes.CFUNCTYPE(ctypes.c_int, ctypes.c_void_p, ctypes.c_void_p)(lambda display, error: 0)


def ask_to_close(title):
    """Sends what a window manager sends when its button is pressed, to the windows of this title; how many there are."""
    x11 = ctypes.CDLL("libX11.so.6")
    number, pointer = ctypes.c_ulong, ctypes.c_void_p

    class Message(ctypes.Structure):
        _fields_ = [("type", ctypes.c_int), ("serial", number), ("sent", ctypes.c_int), ("display", pointer), ("window", number),
                    ("kind", number), ("format", ctypes.c_int), ("words", number * 5), ("rest", number * 16)]

    x11.XSetErrorHandler(GONE)
    x11.XOpenDisplay.restype = pointer
    x11.XDefaultRootWindow.restype = x11.XInternAtom.restype = number
    display = pointer(x11.XOpenDisplay(None))
    protocols, delete = (x11.XInternAtom(display, name, 0) for name in (b"WM_PROTOCOLS", b"WM_DELETE_WINDOW"))
    windows, count, ignored = ctypes.POINTER(number)(), ctypes.c_uint(), number()
    x11.XQueryTree(display, number(x11.XDefaultRootWindow(display)), ctypes.byref(ignored), ctypes.byref(ignored),
                   ctypes.byref(windows), ctypes.byref(count))
    asked = 0
    for window in windows[:count.value]:
        name = ctypes.c_char_p()
        if x11.XFetchName(display, number(window), ctypes.byref(name)) and name.value.decode() == title:
            client_message = 33
            message = Message(client_message, 0, 1, display, window, protocols, 32, (number * 5)(delete))
            asked += x11.XSendEvent(display, number(window), 0, 0, ctypes.byref(message))
    x11.XCloseDisplay(display)
    return asked


class Window:
    """A running kelva-desktop, seen and pressed as a screen reader does."""

    def __init__(self, program, *words, **environment):
        # Only here, in the session: importing it connects to the bus.
        import gi
        gi.require_version("Atspi", "2.0")
        from gi.repository import Atspi
        self.atspi = Atspi
        self.process = subprocess.Popen([program, *words], env={**os.environ, **environment})

    def close(self, ending=signal.SIGTERM):
        """As the end of a session does; the seconds that it took. A window that is not on the screen yet takes it, too."""
        start = time.monotonic()
        assert self.process.poll() is None, f"the window ended by itself ({self.process.returncode})"
        self.process.send_signal(ending)
        self.process.wait(PATIENCE)
        assert self.process.returncode == 0, f"the window ended with {self.process.returncode}"
        return time.monotonic() - start

    def close_by_its_button(self):
        """As a window manager asks it to close; the seconds that it took to end."""
        start = time.monotonic()
        assert ask_to_close("Kelva"), "there is no window to close"
        self.process.wait(PATIENCE)
        assert self.process.returncode == 0, f"the window ended with {self.process.returncode}"
        return time.monotonic() - start

    def application(self):
        desktop = self.atspi.get_desktop(0)
        for index in range(desktop.get_child_count()):
            child = desktop.get_child_at_index(index)
            if child is not None and child.get_process_id() == self.process.pid:
                return child
        return None

    def all(self, node=None):
        """Every part of the window; of a grid of pictures the first dozen."""
        node = node or self.application()
        if node is None:
            return
        yield node
        count = node.get_child_count()
        for index in range(min(count, 12) if node.get_role_name() == "list" else count):
            child = node.get_child_at_index(index)
            if child is not None:
                yield from self.all(child)

    def find(self, pattern, role=None):
        """The first visible part whose name has the pattern."""
        try:
            for node in self.all():
                name = node.get_name() or ""
                if re.search(pattern, name) and (role is None or node.get_role_name() == role):
                    if node.get_state_set().contains(self.atspi.StateType.SHOWING):
                        return node
        except Exception as error:  # a part that went while it was looked at
            if type(error).__name__ != "Error":
                raise
        return None

    def wait(self, pattern, role=None, patience=PATIENCE):
        return wait_for(lambda: self.find(pattern, role), f"{role or 'part'} named {pattern!r}", patience)

    def press(self, pattern, role="push button"):
        node = self.wait(pattern, role)
        node.do_action(0)
        return node

    def click(self, node):
        """With the mouse, in the middle of a part."""
        box = node.get_extents(self.atspi.CoordType.SCREEN)
        self.atspi.generate_mouse_event(box.x + box.width // 2, box.y + box.height // 2, "b1c")

    def key(self, name):
        """Presses a key of the keyboard, by its name in X."""
        keysym = {"space": 0x20, "Escape": 0xff1b, "Left": 0xff51, "Right": 0xff53, "Page_Up": 0xff55, "End": 0xff57}[name]
        self.atspi.generate_keyboard_event(keysym, None, self.atspi.KeySynthType.SYM)

    def workers(self, kind):
        """The processes that the window runs for this kind of work."""
        children = pathlib.Path(f"/proc/{self.process.pid}/task/{self.process.pid}/children").read_text().split()
        return [int(child) for child in children if f"\0{kind}\0" in pathlib.Path(f"/proc/{child}/cmdline").read_text()]

    def names(self):
        return [(node.get_role_name(), node.get_name()) for node in self.all()]


class Started(Window):
    """The window of a program that something else has started, by the program's name."""

    def __init__(self, program):
        import gi
        gi.require_version("Atspi", "2.0")
        from gi.repository import Atspi
        self.atspi, self.program = Atspi, program

    def application(self):
        desktop = self.atspi.get_desktop(0)
        children = [desktop.get_child_at_index(index) for index in range(desktop.get_child_count())]
        return next((child for child in children if child is not None and self.is_of_the_program(child.get_process_id())), None)

    def is_of_the_program(self, process):
        try:
            return os.path.basename(os.readlink(f"/proc/{process}/exe")) == self.program
        except OSError:
            return False

    def process_number(self):
        return self.application().get_process_id()
