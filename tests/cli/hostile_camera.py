"""A camera that lies: a bus of its own in this process, which speaks the protocol of vcam/README.md from the other end."""

import contextlib
import os
import socketserver
import struct
import threading

CHUNK = 65536
HELLO, SUBSCRIBE, STATUS, START, END, COMMAND = 1, 2, 5, 7, 8, 9
OK, ERROR, REPLY, PLUGGED = 0x40, 0x41, 0x42, 0x80
NO_SUCH_THING = (2, 5, 0x14, 1)  # CHECK CONDITION, illegal request


def text(value):
    raw = value.encode()
    return struct.pack("<H", len(raw)) + raw


class Record:
    """One record of the catalogue, with every byte free. `key` is the SHA-1 of the picture's first file."""

    def __init__(self, suffix, prefix, folder, number, key="", size=0, types=(1, 0, 0, 0)):
        self.identity = suffix[:8].ljust(8, b"\0") + prefix[:8].ljust(8, b"\0") + struct.pack("<ii", folder, number)
        self.types, self.key, self.size = types, key, size

    def encoded(self, claim):
        size = self.size if claim is None else claim
        return (self.identity + struct.pack("<4IIf", *self.types, size, 0) +
                self.key.encode().ljust(48, b"\0") + b"2026-03-14 15:09:26".ljust(28, b"\0") + struct.pack("<I", 0))


class HostileCamera:
    """Serves the socket until stop. `files` maps a camera's path to its bytes; a path that is not there is refused."""

    def __init__(self, socket, records, files):
        self.records, self.files = records, files
        # What is said in place of a file's true size: by the catalogue, by the listing of its folder, when it is selected.
        self.claims = {"catalogue": None, "listing": None, "selection": None}
        self.read = []
        self.surplus = set()  # paths of files of which more is sent than was announced
        self.on_select = lambda path: None
        self.selected = b""
        camera = self

        class Connection(socketserver.BaseRequestHandler):
            def handle(self):
                # A program that ends in the middle of an answer resets the connection.
                with contextlib.suppress(ConnectionError):
                    camera.serve(self.request)

        class Server(socketserver.ThreadingUnixStreamServer):
            daemon_threads = True

        if os.path.exists(socket):
            os.remove(socket)
        self.server = Server(socket, Connection)
        threading.Thread(target=self.server.serve_forever, daemon=True).start()

    def stop(self):
        self.server.shutdown()
        self.server.server_close()

    def serve(self, connection):
        stream = connection.makefile("rwb")
        while len(header := stream.read(4)) == 4:
            frame = stream.read(struct.unpack("<I", header)[0])
            kind, tag = struct.unpack("<BI", frame[:5])
            for answer_kind, answer_tag, payload in self.answers(kind, tag, frame[5:]):
                stream.write(struct.pack("<IBI", len(payload) + 5, answer_kind, answer_tag) + payload)
            stream.flush()

    def status(self):
        texts = b"".join(map(text, ("K1", "Kelva", "Camera", "1.00", "")))
        return struct.pack("<I", 1) + texts + struct.pack("<BIQ", 3, 0, 0)

    def answers(self, kind, tag, payload):
        if kind == SUBSCRIBE:
            yield PLUGGED, 0, self.status()
        if kind == STATUS:
            yield OK, tag, struct.pack("<I", 1) + self.status()
        elif kind == COMMAND:
            direction, block, length = struct.unpack("<B16sI", payload[:21])
            yield REPLY, tag, self.reply(direction, block, length, payload[21:])
        else:
            yield OK, tag, b""

    def reply(self, direction, block, length, data):
        answer = self.execute(block, length, data.rstrip(b"\0"))
        if isinstance(answer, tuple):
            return struct.pack("<B4BI", 0, *answer, 0)
        moved = length if direction == 1 else len(answer)
        return struct.pack("<B4BI", 0, 0, 0, 0, 0, moved) + answer

    def execute(self, block, length, data):
        """Bytes for good status, otherwise status and sense."""
        operation, sub_code = block[0], block[2]
        if operation == 0xC2 and sub_code == 1:
            return self.select_file(data)
        if operation == 0xC2 and sub_code in (2, 3):
            self.selected = self.catalogue() if sub_code == 2 else self.listing(data)
            return b""
        if operation == 0xC6 and sub_code == 0:
            return self.number(self.claims["selection"], len(self.selected))
        if operation == 0xC6 and sub_code == 4:
            return struct.pack("<I", 1)
        if operation == 0xC4:
            offset = struct.unpack("<I", block[3:7])[0]
            chunk = self.selected[offset:offset + length]
            return chunk + b"!!" if self.read and self.read[-1] in self.surplus and length else chunk
        return NO_SUCH_THING

    @staticmethod
    def number(claim, truth):
        return struct.pack("<I", truth if claim is None else claim)

    def select_file(self, path):
        if path not in self.files:
            return NO_SUCH_THING
        self.read.append(path)
        self.on_select(path)
        self.selected = self.files[path]
        return b""

    def catalogue(self):
        offsets = (0, 24, 28, 32, 36, 40, 44, 48, 96, 124)
        fields = b"".join(struct.pack("<II", kind, offset) for kind, offset in enumerate(offsets))
        records = b"".join(record.encoded(self.claims["catalogue"]) for record in self.records)
        return struct.pack("<III", 1, 128, len(offsets)) + fields + records

    def listing(self, folder):
        """The entries of a folder: 8 bytes, a table of 12 bytes each, the names."""
        entries = [(path.rpartition(b"\\")[2], content) for path, content in self.files.items()
                   if path.rpartition(b"\\")[0] == folder]
        table, names = b"", b""
        for name, content in entries:
            table += struct.pack("<I", 0x20) + self.number(self.claims["listing"], len(content))
            table += struct.pack("<I", 8 + 12 * len(entries) + len(names))
            names += name + b"\0"
        return struct.pack("<II", 0, len(entries)) + table + names
