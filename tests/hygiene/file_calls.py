"""In the programs, calls on which a user's files rest go through FileCalls, so that tests can let each of them fail."""

import re

import repository

DOOR = "apps/files/SystemCalls.cpp"
CALL = re.compile(r"\b(?:f(?:data)?sync|sync_file_range|rename(?:at2?)?|link(?:at)?|mkdir(?:at)?|creat|f?utimen(?:s|sat)"
                  r"|platform::(?:RenameNoReplace|Flush(?:Folder)?|BeginFlush))\(")


def check(root):
    for path in repository.files(root, ".cpp", ".h"):
        inside = path.relative_to(root).as_posix()
        if not inside.startswith("apps/") or inside == DOOR or path.stem.endswith("_test") or "/testing/" in inside:
            continue
        for number, line in enumerate(repository.text(path).splitlines(), 1):
            call = CALL.search(line)
            if call:
                yield f"{inside}:{number}: calls {call[0][:-1]} past apps/files/FileCalls.h"


if __name__ == "__main__":
    repository.main(check)
