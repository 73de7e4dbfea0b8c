"""Installs a build with `cmake --install`, and compares what is there with the written list."""

import os
import pathlib
import re
import subprocess

LIST = pathlib.Path(__file__).parent / "installed_files.txt"


class Build:
    """A build folder."""

    def __init__(self, folder):
        self.folder = pathlib.Path(folder).resolve()
        cache = (self.folder / "CMakeCache.txt").read_text()
        self.cache = dict(re.findall(r"^(\w+):\w+=(.*)$", cache, re.MULTILINE))

    def install(self, prefix, *options, root=""):
        """Installs below ROOT (DESTDIR) for the prefix."""
        command = ["cmake", "--install", self.folder, "--prefix", prefix, *options]
        subprocess.run(command, check=True, stdout=subprocess.DEVNULL, env={**os.environ, "DESTDIR": str(root)})

    def written_list(self):
        """component -> the files that the list names for this kind of build, below the prefix."""
        kind = "shared" if self.cache.get("BUILD_SHARED_LIBS", "OFF") in ("ON", "TRUE", "1") else "static"
        build_type = self.cache["CMAKE_BUILD_TYPE"].lower() or "noconfig"
        return written_list(kind, self.cache["CMAKE_PROJECT_VERSION"], self.cache.get("CMAKE_INSTALL_LIBDIR", "lib"), build_type)


def written_list(kind, version, libraries, build_type):
    """component -> the files that the list names for a kind of build, "static" or "shared"."""
    values = {"lib": libraries, "version": version, "soversion": version.rpartition(".")[0], "type": build_type}
    components, files = {}, []
    for line in LIST.read_text().splitlines():
        name, _, condition = line.partition("  if ")
        if not name or name.startswith("#"):
            continue
        if name.startswith("["):
            files = components.setdefault(name.strip("[]"), [])
        elif condition in ("", kind):
            files.append(name.format(**values))
    return {component: sorted(names) for component, names in components.items()}


def files_below(folder):
    """Every file and link below a folder, by its path from there."""
    folder = pathlib.Path(folder)
    return sorted(path.relative_to(folder).as_posix() for path in folder.rglob("*") if path.is_symlink() or not path.is_dir())
