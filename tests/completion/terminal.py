"""A shell on a terminal of its own, and what it hands to the command that was typed."""

import os
import pty
import select
import signal
import threading
import time

PATIENCE = 60  # seconds; a shell on a busy machine takes some


class Terminal:
    def __init__(self, words, environment, folder):
        self.process, self.descriptor = pty.fork()
        if self.process == 0:
            os.chdir(folder)
            os.execvpe(words[0], words, environment)
        self.shown = b""
        self.ended = threading.Event()
        self.reader = threading.Thread(target=self.read)
        self.reader.start()

    def close(self):
        self.ended.set()
        self.reader.join()
        os.kill(self.process, signal.SIGKILL)
        os.waitpid(self.process, 0)
        os.close(self.descriptor)

    def read(self):
        """A shell whose words nobody reads stops before long."""
        while not self.ended.is_set():
            if select.select([self.descriptor], [], [], 0.1)[0]:
                try:
                    self.shown += os.read(self.descriptor, 1 << 16)
                except OSError:
                    return

    def type(self, keys):
        os.write(self.descriptor, keys.encode())

    def wait_for(self, path):
        """The content of a file that the shell is to make."""
        end = time.monotonic() + PATIENCE
        while not os.path.exists(path):
            if time.monotonic() > end:
                raise AssertionError(f"nothing was run within {PATIENCE} s; the terminal shows {self.shown!r}")
            time.sleep(0.01)
        with open(path, "rb") as file:
            content = file.read()
        os.remove(path)
        return content
