"""Every X.cpp of the product has its X_test.cpp beside it."""

import repository

FOLDERS = ("src", "tools")
# A main without a decision in it is tested by the end-to-end tests.
EXEMPT = ("main.cpp",)


def check(root):
    for path in repository.files(root, ".cpp"):
        inside = path.relative_to(root)
        if inside.parts[0] not in FOLDERS or path.name in EXEMPT or path.stem.endswith("_test"):
            continue
        if not path.with_name(path.stem + "_test.cpp").exists():
            yield f"{inside} has no {path.stem}_test.cpp beside it"


if __name__ == "__main__":
    repository.main(check)
