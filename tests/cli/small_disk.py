"""File systems of a few kilobytes that only this test sees."""

import os
import subprocess
import sys


def _works(command):
    trial = [*command, "mount", "-t", "tmpfs", "-o", "size=4k", "none", "/mnt"]
    return subprocess.run(trial, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode == 0


def with_own_mounts():
    """What a command is put behind to have mounts of its own; as root, or as any user where the kernel lets users."""
    for command in (["unshare", "--mount"], ["unshare", "--user", "--map-root-user", "--mount"]):
        if _works(command):
            return command
    raise RuntimeError("This test mounts file systems of its own: run it as root, or allow user namespaces "
                       "(sysctl kernel.unprivileged_userns_clone=1).")


def need_own_mounts():
    """Starts this script again with mounts of its own."""
    if os.environ.get("KELVA_TEST_OWN_MOUNTS"):
        return
    command = with_own_mounts()
    environment = {**os.environ, "KELVA_TEST_OWN_MOUNTS": "1"}
    os.execvpe(command[0], [*command, sys.executable, "-B", *sys.argv], environment)


class SmallDisk:
    """A file system in memory, mounted at a folder."""

    def __init__(self, folder, options):
        self.folder = folder
        os.mkdir(folder)
        subprocess.run(["mount", "-t", "tmpfs", "-o", options, "small", folder], check=True)

    def remount(self, options):
        subprocess.run(["mount", "-o", "remount," + options, self.folder], check=True)

    def unmount(self):
        subprocess.run(["umount", self.folder], check=True)
        os.rmdir(self.folder)
