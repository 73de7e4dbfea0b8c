"""Unit tests neither sleep nor draw random numbers that nobody can draw again."""

import re

import repository

ROOMS = ("src/", "base/", "wire/", "darwin/", "bus/", "embed/", "apps/", "vcam/", "tools/")
SLEEP = re.compile(r"\b(?:u?sleep|nanosleep|sleep_for|sleep_until)\(")
RANDOM = re.compile(r"\b(?:mt19937(?:_64)?|minstd_rand|random_device|default_random_engine) \w+[({]|\bs?rand\(")


def check(root):
    for path in repository.files(root, ".cpp", ".h"):
        inside = path.relative_to(root).as_posix()
        if not inside.startswith(ROOMS) or not (path.stem.endswith("_test") or "/testing/" in inside):
            continue
        for number, line in enumerate(repository.text(path).splitlines(), 1):
            if SLEEP.search(line):
                yield f"{inside}:{number}: sleeps; wait for what is to happen"
            if RANDOM.search(line) and "RandomSeed()" not in line:
                yield f"{inside}:{number}: draws at random without base::RandomSeed()"


if __name__ == "__main__":
    repository.main(check)
