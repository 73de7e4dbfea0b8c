"""clang-tidy has nothing to say about the product's own files. Usage: tidy.py SOURCE_FOLDER BUILD_FOLDER

The build is one with a command for each file (preset dev). What was clean is remembered in the build folder, under a key of
all that decides: the compiler's command, every file that it reads, the list of checks, and the version of clang-tidy.
"""

import concurrent.futures
import functools
import hashlib
import itertools
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile

TIDY = "clang-tidy-14"
ROOMS = ("apps", "base", "bus", "darwin", "embed", "platform", "src", "tools", "vcam", "wire")


def is_product(path):
    parts = path.parts
    return (parts[0] in ROOMS and path.suffix == ".cpp" and not path.stem.endswith("_test") and "testing" not in parts
            and "conformance" not in parts)


def commands(root, build):
    """The product's files, each with the command that compiles it."""
    found = {}
    for entry in json.loads((build / "compile_commands.json").read_text(encoding="utf-8")):
        path = pathlib.Path(os.path.realpath(os.path.join(entry["directory"], entry["file"])))
        if path.is_relative_to(root) and is_product(path.relative_to(root)):
            found.setdefault(path, entry)
    return found


def dependencies(build):
    """Object file -> the files that its compiler read, as far as ninja knows them for sure."""
    run = subprocess.run(["ninja", "-C", str(build), "-t", "deps"], capture_output=True, text=True, check=False)
    found = {}
    if run.returncode != 0:
        return found
    for block in run.stdout.split("\n\n"):
        head, *files = block.strip().split("\n")
        if head.endswith("(VALID)"):
            found[head.split(": #deps")[0]] = [name.strip() for name in files]
    return found


@functools.cache
def digest(path):
    return hashlib.sha256(pathlib.Path(path).read_bytes()).hexdigest()


def object_of(entry):
    words = shlex.split(entry["command"])
    return words[words.index("-o") + 1]


def key_of(entry, read, common):
    """The name of a clean result, or nothing where it is not known what the compiler reads."""
    if not read:
        return None
    said = hashlib.sha256(common.encode())
    said.update(entry["command"].encode())
    for name in read:
        said.update(digest(os.path.join(entry["directory"], name)).encode())
    return said.hexdigest()


def for_clang(entry):
    """Without the precompiled headers of the tests, with which GCC compiles what only a test is linked with here."""
    return {**entry, "command": re.sub(r"-Winvalid-pch -include \S+/cmake_pch\.hxx ", "", entry["command"])}


def findings(path, build):
    """`build` has one command for the file. Of several, clang-tidy would run each, those that only GCC understands too."""
    run = subprocess.run([TIDY, "-p", str(build), "--quiet", str(path)], capture_output=True, text=True, check=False)
    complaints = [line for line in run.stdout.splitlines() if ": error: " in line or ": warning: " in line]
    if run.returncode != 0 and not complaints:
        complaints = [f"{path}: {TIDY} ended with {run.returncode}: {run.stderr.strip()[-400:]}"]
    return complaints


def check(root, build):
    root, build = pathlib.Path(os.path.realpath(root)), pathlib.Path(build)
    cache = build / "tidy-cache"
    cache.mkdir(exist_ok=True)
    version = subprocess.run([TIDY, "--version"], capture_output=True, text=True, check=True).stdout
    common = version + (root / ".clang-tidy").read_text(encoding="utf-8")
    known = dependencies(build)

    def one(path, entry, commands_alone):
        key = key_of(entry, known.get(object_of(entry)), common)
        if key and (cache / key).exists():
            return []
        complaints = findings(path, commands_alone)
        if key and not complaints:
            (cache / key).touch()
        return complaints

    found = commands(root, build)
    if not found:
        yield f"{build}/compile_commands.json names no file of the product"
    complaints = set()
    with (tempfile.TemporaryDirectory() as folder,
          concurrent.futures.ThreadPoolExecutor(len(os.sched_getaffinity(0))) as pool):
        (pathlib.Path(folder) / "compile_commands.json").write_text(json.dumps([for_clang(entry) for entry in found.values()]),
                                                                    encoding="utf-8")
        for result in pool.map(one, found.keys(), found.values(), itertools.repeat(folder)):
            complaints.update(result)
    yield from sorted(complaints)


def main():
    complaints = list(check(sys.argv[1], sys.argv[2]))
    for complaint in complaints:
        print(complaint)
    print(f"{len(complaints)} complaints")
    sys.exit(1 if complaints else 0)


if __name__ == "__main__":
    main()
