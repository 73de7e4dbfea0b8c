"""The sources are laid out as .clang-format says."""

import subprocess

import repository

FORMATTER = "clang-format-14"
SUFFIXES = (".h", ".cpp", ".cc", ".mm")


def check(root):
    sources = repository.files(root, *SUFFIXES)
    if not sources:
        return
    command = [FORMATTER, "--dry-run", "-Werror", *map(str, sources)]
    run = subprocess.run(command, capture_output=True, text=True, check=False)
    if run.returncode != 0:
        yield from (line for line in run.stderr.splitlines() if "error:" in line)


if __name__ == "__main__":
    repository.main(check)
