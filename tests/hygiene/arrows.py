"""The include graph is the table "Rooms" of ARCHITECTURE.md: no include that its row does not allow, no row that no include needs.

A row is "| `folder`, ... | what it is | `room`, Library, ... |". A file belongs to the row with the longest folder that holds it. Tests
(X_test.cpp, testing/ and the row that says "everything") may include what they like.
"""

import collections
import pathlib
import re

import repository

ROW = re.compile(r"^\| (`[^|]+) \| [^|]+ \|\s*([^|]*?)\s*\|$", re.M)
INCLUDE = re.compile(r'^\s*#\s*(?:include|import)\s*(?:"([^"]+)"|<([^>]+)>)', re.M)
EVERYTHING = "everything"
# Where a header stands that is named without its folder: the library's headers are installed side by side.
BARE = ("src/wifi", "src/usb/osx")
FRAMEWORKS = "darwin/include"
LIBRARIES = (
    (r"kelva/.*", "libkelva"),
    (r"boost/.*", "Boost"),
    (r"libudev\.h", "libudev"),
    (r"(gio|glib|glib-unix)[/.].*", "GIO"),
    (r"Q[A-Z]\w+", "Qt"),
    (r"sqlite3\.h", "SQLite"),
    (r"openssl/.*", "OpenSSL"),
    (r"turbojpeg\.h", "libturbojpeg"),
    (r"libexif/.*", "libexif"),
    (r"libdeflate\.h", "libdeflate"),
    (r"fuse3/.*", "libfuse"),
    (r"benchmark/.*", "Google Benchmark"),
    (r"g(test|mock)/.*", "GoogleTest"),
    (r"(AppKit|Foundation|Cocoa)/.*", "AppKit"),
    (r"sys/(epoll|eventfd|signalfd|timerfd|inotify|prctl|syscall|sysmacros|sendfile)\.h|linux/.*|scsi/.*", "Linux"),
    (r"execinfo\.h", "execinfo"),
    (r"cxxabi\.h", None),
    (r".*\.h", "POSIX"),
)


def table(architecture):
    """{folder: [what it may use]} and, in the same order of rows, the folders of each row."""
    rooms, rows = {}, []
    for folders, uses in ROW.findall(architecture):
        names = re.findall(r"`([^`]+)`", folders)
        allowed = [use.strip().strip("`") for use in uses.split(",") if use.strip()]
        rows.append(names)
        rooms.update(dict.fromkeys(names, (len(rows) - 1, allowed)))
    return rooms, rows


def room_of(name, rooms):
    """The longest folder of the table that holds the file, or None."""
    path = pathlib.PurePosixPath(name)
    return next((folder.as_posix() for folder in path.parents if folder.as_posix() in rooms), None)


def is_test(name):
    return pathlib.PurePosixPath(name).stem.endswith("_test") or "testing/" in name


def target(name, quoted, bracketed, known):
    """The file of the repository that an include means, or the library that it belongs to, or None for the standard library."""
    wanted = quoted or bracketed
    folders = ([pathlib.PurePosixPath(name).parent.as_posix()] if quoted else []) + ["", *BARE, FRAMEWORKS]
    for folder in folders:
        candidate = f"{folder}/{wanted}".lstrip("/")
        if candidate in known:
            return candidate, None
    if quoted:
        return None, f"a file that is not there ({wanted})"
    return None, next((library for pattern, library in LIBRARIES if re.fullmatch(pattern, wanted)), None)


def arrows(root):
    """Every (file, its room, the room or library that it includes, as it is written)."""
    rooms, _ = table(repository.text(pathlib.Path(root) / "ARCHITECTURE.md"))
    paths = repository.files(root, ".h", ".cpp", ".mm")
    known = {path.relative_to(root).as_posix() for path in paths}
    for path in paths:
        name = path.relative_to(root).as_posix()
        for quoted, bracketed in INCLUDE.findall(repository.text(path)):
            file, library = target(name, quoted, bracketed, known)
            used = library if file is None else room_of(file, rooms) or f"{file}, which is in no row"
            if used is not None:
                yield name, room_of(name, rooms), used, quoted or bracketed


def circles(rows, rooms, needed):
    """Rows that include each other in a circle: what is left when rows that need nothing more are taken away."""
    left = {row: {rooms[use][0] for use in needed[row] if use in rooms} - {row} for row in range(len(rows))}
    while free := [row for row, uses in left.items() if not uses & left.keys()]:
        for row in free:
            del left[row]
    return sorted(rows[row][0] for row in left)


def check(root):
    rooms, rows = table(repository.text(pathlib.Path(root) / "ARCHITECTURE.md"))
    needed = collections.defaultdict(set)
    for name, room, used, written in arrows(root):
        if room is None:
            yield f"{name} is in no row of the table of rooms"
            continue
        row, allowed = rooms[room]
        if not is_test(name):
            needed[row].add(used)
        inside = used in rooms and rooms[used][0] == row
        if not (inside or used in allowed or EVERYTHING in allowed or is_test(name)):
            yield f"{name} includes {written}, but the row of {room} does not allow {used}"
    for row, names in enumerate(rows):
        _, allowed = rooms[names[0]]
        yield from (f"the row of {names[0]} allows {use}, which no include there needs"
                    for use in allowed if use != EVERYTHING and use not in needed[row])
        if EVERYTHING in allowed and names != ["tests"]:
            yield f"the row of {names[0]} allows everything, which is for tests alone"
    if round_trip := circles(rows, rooms, needed):
        yield f"these rows include each other in a circle, or stand on one: {', '.join(round_trip)}"


if __name__ == "__main__":
    repository.main(check)
