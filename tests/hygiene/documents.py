"""Links between the documents resolve, and the commands that they show exist."""

import os
import re

import repository

LINK = re.compile(r"\[[^\]]*\]\(([^)\s]+)\)")
COMMAND = re.compile(r"^\s*(?:\$ )?\./([\w./-]+)", re.MULTILINE)
INLINE_COMMAND = re.compile(r"`\./([\w./-]+)")
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


def check(root):
    for path in repository.files(root, ".md"):
        content = repository.text(path)
        for complaint in [*broken_links(path, content), *missing_commands(root, content)]:
            yield f"{path.relative_to(root)} {complaint}"


if __name__ == "__main__":
    repository.main(check)
