"""Every X.cpp of the library, the agent and the tools has its X_test.cpp beside it.

The sources of the command-line tool are tested by the folder, and its verbs as the program that people run.
"""

import repository

FOLDERS = ("src/wifi/", "src/usb/", "src/ui/", "tools/")
# A main without a decision in it is tested by the end-to-end tests.
EXEMPT = ("main.cpp",)


def check(root):
    for path in repository.files(root, ".cpp"):
        inside = path.relative_to(root)
        if not inside.as_posix().startswith(FOLDERS) or path.name in EXEMPT or path.stem.endswith("_test"):
            continue
        if not path.with_name(path.stem + "_test.cpp").exists():
            yield f"{inside} has no {path.stem}_test.cpp beside it"


if __name__ == "__main__":
    repository.main(check)
