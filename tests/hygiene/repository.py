"""The files that the checks look at, and how a check reports."""

import pathlib
import subprocess
import sys


def files(root, *suffixes):
    """Every file of the repository that git knows or would add, as paths below root."""
    command = ["git", "-c", "safe.directory=*", "-C", str(root), "ls-files", "-z", "-co", "--exclude-standard"]
    names = subprocess.run(command, check=True, capture_output=True, text=True).stdout.split("\0")
    paths = (pathlib.Path(root) / name for name in sorted(names) if name)
    return [path for path in paths if path.is_file() and (not suffixes or path.suffix in suffixes)]


def text(path):
    """A file's text, or nothing for a binary one."""
    try:
        return path.read_text(encoding="utf-8")
    except UnicodeDecodeError:
        return ""


def main(check):
    """Runs a check on the folder that the command line names; each complaint is one line."""
    root = pathlib.Path(sys.argv[1])
    complaints = list(check(root))
    for complaint in complaints:
        print(complaint)
    print(f"{len(complaints)} complaints")
    sys.exit(1 if complaints else 0)
