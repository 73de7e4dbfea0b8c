"""Links between the documents resolve, the commands that they show exist, and the changelog has a dated entry for the version."""

import os
import pathlib
import re

import repository

LINK = re.compile(r"\[[^\]]*\]\(([^)\s]+)\)")
COMMAND = re.compile(r"^\s*(?:\$ )?\./([\w./-]+)", re.MULTILINE)
INLINE_COMMAND = re.compile(r"`\./([\w./-]+)")
VERSION = re.compile(r"^project\([^)]*\bVERSION ([\d.]+)", re.MULTILINE)
BLOCK = re.compile(r"^```.*?^```", re.MULTILINE | re.DOTALL)


def broken_links(path, content):
    for target in LINK.findall(BLOCK.sub("", content)):
        name = target.split("#")[0]
        if name and "://" not in name and not name.startswith("mailto:") and not (path.parent / name).exists():
            yield f"links to {target}, which is not there"


def missing_commands(root, content):
    shown = "\n".join(BLOCK.findall(content))
    for command in COMMAND.findall(shown) + INLINE_COMMAND.findall(content):
        if not command.startswith("build/") and not os.access(root / command, os.X_OK):
            yield f"shows the command ./{command}, which is not there"


def missing_entry(root):
    project, changelog = root / "CMakeLists.txt", root / "CHANGELOG.md"
    version = VERSION.search(repository.text(project)) if project.exists() else None
    if version and not re.search(rf"^## \[{re.escape(version[1])}\] - \d{{4}}-\d\d-\d\d$", repository.text(changelog), re.MULTILINE):
        yield f"CHANGELOG.md has no dated entry for {version[1]}, the version of CMakeLists.txt"


def check(root):
    yield from missing_entry(pathlib.Path(root))
    for path in repository.files(root, ".md"):
        content = repository.text(path)
        for complaint in [*broken_links(path, content), *missing_commands(root, content)]:
            yield f"{path.relative_to(root)} {complaint}"


if __name__ == "__main__":
    repository.main(check)
