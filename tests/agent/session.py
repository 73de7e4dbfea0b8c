"""A login session of a test's own: XDG folders, a virtual bus, a stand-in of the desktop application, and agents."""

import os
import pathlib
import select
import signal
import subprocess
import tempfile

DESKTOP_ID = "com.kelva.Desktop"
# Long enough for a loaded machine; a test that passes never waits for it.
PATIENCE = 60


class Lines:
    """The lines that arrive at a descriptor, each waited for."""

    def __init__(self, descriptor):
        self.descriptor = descriptor
        self.rest = b""

    def next(self):
        """The next line; an AssertionError when none comes, "" at the end."""
        while b"\n" not in self.rest:
            if not select.select([self.descriptor], [], [], PATIENCE)[0]:
                raise AssertionError(f"no line came; there was only {self.rest!r}")
            piece = os.read(self.descriptor, 4096)
            if not piece:
                return self.rest.decode()
            self.rest += piece
        line, self.rest = self.rest.split(b"\n", 1)
        return line.decode()

    def waiting(self):
        """True when something has arrived that was not read yet."""
        return bool(self.rest) or bool(select.select([self.descriptor], [], [], 0)[0])


class Agent:
    """One running kelva-helper."""

    def __init__(self, program, arguments, environment):
        self.process = subprocess.Popen([program, *arguments], env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.output = Lines(self.process.stdout.fileno())
        self.errors = Lines(self.process.stderr.fileno())

    def until_it_watches(self):
        line = self.output.next()
        if not line.startswith("kelva-helper: Watching;"):
            raise AssertionError(f"the agent said {line!r}, and {self.process.stderr.read()!r}")
        return self

    def end(self, number=signal.SIGTERM):
        """Sends a signal and returns the exit code, negative for a death by signal."""
        self.process.send_signal(number)
        return self.wait()

    def wait(self):
        return self.process.wait(PATIENCE)

    def close(self):
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait()
        self.process.stdout.close()
        self.process.stderr.close()


class Session:
    """A folder that holds all that a session has; ends what it started."""

    def __init__(self, programs, helper=None):
        self.programs = pathlib.Path(programs)
        self.helper = helper or self.programs / "kelva-helper"
        self.scratch = tempfile.TemporaryDirectory(prefix="kelva-agent-")
        self.folder = pathlib.Path(self.scratch.name)
        for name in ("data/applications", "run", "card/DCIM"):
            (self.folder / name).mkdir(parents=True)
        self.socket = str(self.folder / "bus")
        self.environment = {
            "PATH": os.environ["PATH"],
            "HOME": str(self.folder),
            "XDG_DATA_HOME": str(self.folder / "data"),
            "XDG_DATA_DIRS": str(self.folder / "data"),
            "XDG_RUNTIME_DIR": str(self.folder / "run"),
            "XDG_CONFIG_HOME": str(self.folder / "config"),
            "DBUS_SESSION_BUS_ADDRESS": f"unix:path={self.folder}/no-bus",
            # What else this machine has for files is none of the tests' business.
            "GIO_MODULE_DIR": str(self.folder / "modules"),
            # Only tests of folders mount any.
            "KELVA_ON_PLUG": "desktop-only",
        }
        if "TSAN_OPTIONS" in os.environ:
            self.environment["TSAN_OPTIONS"] = os.environ["TSAN_OPTIONS"]  # GLib's own threads are suppressed there
        self.launches = self.make_pipe("launches")
        self.agents = []
        self.bus = subprocess.Popen([self.programs / "kelva-vcam", "serve", "--socket", self.socket], stdout=subprocess.PIPE)
        Lines(self.bus.stdout.fileno()).next()

    def close(self):
        for agent in self.agents:
            agent.close()
        self.bus.terminate()
        self.bus.wait()
        self.bus.stdout.close()
        os.close(self.launches.descriptor)
        self.scratch.cleanup()

    def make_pipe(self, name):
        """A named pipe that stays open whoever writes into it."""
        os.mkfifo(self.folder / name)
        return Lines(os.open(self.folder / name, os.O_RDWR | os.O_CLOEXEC))

    def install_application(self):
        script = self.folder / "application.sh"
        script.write_text(f"#!/bin/sh\necho launched >{self.folder}/launches\n")
        script.chmod(0o755)
        self.entry().write_text(f"[Desktop Entry]\nType=Application\nName=Stand-in\nExec={script}\n")

    def remove_application(self):
        self.entry().unlink()

    def install_viewer(self, content_type):
        """A program that is this user's own for a content type, and says what it is to open."""
        script = self.folder / "viewer.sh"
        script.write_text(f'#!/bin/sh\necho "viewer $*" >{self.folder}/launches\n')
        script.chmod(0o755)
        self.entry("org.example.Viewer").write_text(f"[Desktop Entry]\nType=Application\nName=Viewer\nExec={script} %U\n")
        (self.folder / "config").mkdir()
        (self.folder / "config/mimeapps.list").write_text(f"[Default Applications]\n{content_type}=org.example.Viewer.desktop\n")

    def entry(self, desktop_id=DESKTOP_ID):
        return self.folder / "data/applications" / f"{desktop_id}.desktop"

    def vcam(self, *arguments):
        subprocess.run([self.programs / "kelva-vcam", *arguments, "--socket", self.socket], check=True, stdout=subprocess.DEVNULL, timeout=PATIENCE)

    def plug(self, serial, *further):
        self.vcam("plug", "--serial", serial, "--storage", str(self.folder / "card"), *further)

    def unplug(self, serial):
        self.vcam("unplug", serial)

    def start_agent(self, *arguments, **environment):
        """An agent that watches the virtual bus, or what the arguments say."""
        arguments = arguments or ("--virtual", self.socket)
        agent = Agent(self.helper, arguments, {**self.environment, **environment})
        self.agents.append(agent)
        return agent

    def watching_agent(self):
        return self.start_agent().until_it_watches()
