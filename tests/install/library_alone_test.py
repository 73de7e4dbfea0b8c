"""Builds, installs and uses the library in a root that has g++, CMake, Boost and libudev, and nothing else of a developer's.

The root is made of this machine's own packages: what these four need, and what every Debian has. Nothing is downloaded.
Usage: library_alone_test.py SOURCE_FOLDER
"""

import os
import re
import shutil
import subprocess
import sys
import tempfile

WANTED = ["g++", "cmake", "make", "libboost-dev", "libudev-dev"]
# What the library must do without. The first three name programs, the others headers.
UNWANTED = ["usr/bin/pkg-config", "usr/bin/pkgconf", "usr/bin/ninja", "usr/include/sqlite3.h", "usr/include/openssl",
            "usr/include/glib-2.0", "usr/include/turbojpeg.h", "usr/include/libexif", "usr/include/gtest",
            "usr/include/CLI", "usr/include/nlohmann"]
# What is done in there. The sources can only be read.
STEPS = """
set -eu
export CXX=/usr/bin/g++ HOME=/ PATH=/usr/bin:/bin
cmake -S /source -B /build -DCMAKE_UNITY_BUILD=ON -DKELVA_BUILD_PROGRAMS=OFF -DKELVA_BUILD_TESTS=OFF
cmake --build /build -j "$(nproc)"
cmake --install /build --prefix /installed
cmake -S /source/tests/install/consumer -B /consumer -DCMAKE_PREFIX_PATH=/installed
cmake --build /consumer
/consumer/consumer
cd /installed
find . -type f
"""


def installed():
    """The installed packages: name -> alternatives of each dependency; and who provides a virtual name."""
    form = "${db:Status-Status}\t${Essential}\t${Package}\t${Pre-Depends}, ${Depends}\t${Provides}\n"
    listing = subprocess.run(["dpkg-query", "-W", "-f", form], check=True, capture_output=True, text=True).stdout
    depends, providers, essential = {}, {}, []
    for line in listing.splitlines():
        status, is_essential, name, needs, provides = line.split("\t")
        if status != "installed":
            continue
        names = lambda text, mark: [re.sub(r"[ (:].*", "", part.strip()) for part in text.split(mark) if part.strip()]
        depends[name] = [names(need, "|") for need in needs.split(",") if need.strip()]
        for virtual in names(provides, ","):
            providers.setdefault(virtual, []).append(name)
        if is_essential == "yes":
            essential.append(name)
    return depends, providers, essential


def closure(wanted, depends, providers):
    found, waiting = set(), list(wanted)
    while waiting:
        name = waiting.pop()
        if name in found:
            continue
        found.add(name)
        for alternatives in depends[name]:
            real = [one for name in alternatives for one in [name, *providers.get(name, [])] if one in depends]
            if real:
                waiting.append(real[0])
    return sorted(found)


def copy(path, root):
    """Puts a file, a link or a folder of this machine into the root, at its own place."""
    folder, name = os.path.split(path)
    there = os.path.join(os.path.realpath(folder), name)
    here = root + there
    if os.path.lexists(here):
        return
    os.makedirs(os.path.dirname(here), exist_ok=True)
    if os.path.islink(there):
        os.symlink(os.readlink(there), here)
    elif os.path.isdir(there):
        os.mkdir(here)
    elif os.path.isfile(there):
        try:
            os.link(there, here)
        except OSError:  # another file system, or a file of somebody else's
            shutil.copy2(there, here)


def make_root(root):
    for name in ["bin", "sbin", "lib", "lib32", "lib64", "libx32"]:
        if os.path.islink("/" + name):
            os.symlink(os.readlink("/" + name), os.path.join(root, name))
    depends, providers, essential = installed()
    missing = [name for name in WANTED if name not in depends]
    if missing:
        sys.exit(f"not installed, so there is nothing to make the root of: {' '.join(missing)}")
    packages = closure(WANTED + essential, depends, providers)
    listing = subprocess.run(["dpkg-query", "-L", *packages], check=True, capture_output=True, text=True).stdout
    for path in listing.splitlines():
        if path.startswith("/usr/share/doc/") or not path.startswith("/") or not os.path.lexists(path):
            continue
        copy(path, root)
    copy("/bin/sh", root)
    for folder in ["dev", "proc", "tmp", "source"]:
        os.makedirs(os.path.join(root, folder), exist_ok=True)
    return packages


def main():
    source = os.path.abspath(sys.argv[1])
    if os.environ.get("KELVA_IN_A_NAMESPACE") is None:
        # Mounts that nobody else sees and that end with this process.
        as_root = [] if os.geteuid() == 0 else ["--user", "--map-root-user"]
        os.environ["KELVA_IN_A_NAMESPACE"] = "1"
        os.execvp("unshare", ["unshare", *as_root, "--mount", sys.executable, "-B", *sys.argv])
    with tempfile.TemporaryDirectory(prefix="kelva-root.") as root:
        packages = make_root(root)
        present = [path for path in UNWANTED if os.path.lexists(os.path.join(root, path))]
        assert not present, f"the root has what it should lack: {present}"
        for what in ["/dev", source]:
            where = os.path.join(root, "dev" if what == "/dev" else "source")
            subprocess.run(["mount", "--rbind", what, where], check=True)
        try:
            done = subprocess.run(["chroot", root, "/bin/sh", "-c", STEPS], stdout=subprocess.PIPE,
                                  stderr=subprocess.STDOUT, text=True)
        finally:
            for where in ["dev", "source"]:
                subprocess.run(["umount", "--lazy", os.path.join(root, where)], check=True)
        print(done.stdout[-6000:])
        assert done.returncode == 0, f"the library cannot be built in a root of {len(packages)} packages"
        # The consumer named no source, so it asked udev, and none runs in there.
        assert "source: No udev runs here" in done.stdout, "the library does not say that it hears of no camera"
        files = done.stdout.split("\nsource: ")[1].splitlines()[1:]
        for needed in ["libkelva.a", "kelva.pc", "KelvaConfig.cmake", "kelva/Camera.h", "kelva/CameraSource.h"]:
            assert any(path.endswith("/" + needed) for path in files), f"{needed} was not installed"
        programs = [path for path in files if path.startswith("./bin") or "/man/" in path]
        assert not programs, f"more than the library was installed: {programs}"


main()
