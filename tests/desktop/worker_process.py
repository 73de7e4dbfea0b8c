"""One process of kelva-desktop-worker, as the window has it: events come line by line on both streams, commands go in."""

import json
import queue
import subprocess
import threading
import time
import urllib.parse


class Worker:
    def __init__(self, binary, socket, *words, **options):
        self.process = subprocess.Popen([binary, *words, "--virtual", socket], stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, stderr=subprocess.PIPE, **options)
        self.events = queue.Queue()
        self.seen = []
        self.ended = None  # the last document
        self.others = []  # lines that are no events
        self.readers = [threading.Thread(target=self._read, args=(stream,), daemon=True)
                        for stream in (self.process.stdout, self.process.stderr)]
        for reader in self.readers:
            reader.start()

    def _read(self, stream):
        for line in stream:
            if not line.startswith(b"{"):
                self.others.append(line.decode(errors="replace"))
                continue
            said = json.loads(line)
            said["at"] = time.monotonic()
            if "event" not in said:
                self.ended = said
            self.events.put(said)

    def say(self, *words):
        line = "\t".join(urllib.parse.quote(str(word), safe="/_-.{},") for word in words)
        self.process.stdin.write(line.encode() + b"\n")
        self.process.stdin.flush()

    def take(self, seconds=30):
        said = self.events.get(timeout=seconds)
        self.seen.append(said)
        return said

    def until(self, event, seconds=30, **members):
        """The next event of this name with these members; what comes before is in `seen`."""
        end = time.monotonic() + seconds
        while True:
            try:
                said = self.take(max(end - time.monotonic(), 0.001))
            except queue.Empty:
                raise AssertionError(f"no {event} {members} came; these did: {[str(one)[:200] for one in self.seen[-20:]]}") from None
            if said.get("event") == event and all(said.get(name) == value for name, value in members.items()):
                return said

    def wait(self, seconds=60):
        """To its own end: the last document."""
        self.process.wait(seconds)
        for reader in self.readers:
            reader.join()
        while not self.events.empty():
            self.seen.append(self.events.get())
        self.end()
        return self.ended

    def close(self):
        """As the window closes it; how long that took."""
        start = time.monotonic()
        self.process.stdin.close()
        self.process.wait(10)
        took = time.monotonic() - start
        self.end()
        return took

    def end(self):
        """Whatever state it is in; may be called again."""
        if self.process.poll() is None:
            self.process.kill()
            self.process.wait()
        for reader in self.readers:
            reader.join()
        for stream in (self.process.stdin, self.process.stdout, self.process.stderr):
            stream.close()
        if any("Sanitizer" in line for line in self.others):
            raise AssertionError("".join(self.others))

    def all(self, event):
        return [said for said in self.seen if said.get("event") == event]
