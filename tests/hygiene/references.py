"""Nothing in the repository refers to a document, a ticket or a folder that a reader does not have."""

import re

import repository

# Written with brackets so that this file does not contain what it looks for.
FORBIDDEN = {
    "a numbered part of another document": r"\b[P]arts? [1-9]\.[0-9]",
    "a document that is not here": r"\b[Tt]he (spec|[s]pecification)\b|\b[s]pec\.md\b|\b[s]hared/",
    "a ticket": r"\b[i]ssue #?[0-9]|\b[I]ssue #?[0-9]",
    "a folder of one machine": r"(^|[\s\"'`=(])/(work|tmp/w|home/[a-z]+|root)/",
    "an unfinished piece": r"\b(TO[D]O|FIX[M]E|X[X]X)\b",
}


def check(root):
    for path in repository.files(root):
        for number, line in enumerate(repository.text(path).splitlines(), 1):
            for what, pattern in FORBIDDEN.items():
                if re.search(pattern, line):
                    yield f"{path.relative_to(root)}:{number}: refers to {what}: {line.strip()}"


if __name__ == "__main__":
    repository.main(check)
