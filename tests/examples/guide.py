"""What docs/embedding.md shows: its blocks of code, by language."""

import pathlib
import re
import textwrap

PROJECT = pathlib.Path(__file__).resolve().parents[2]
EXAMPLES = PROJECT / "examples"
BLOCK = re.compile(r"^```(\w+)\n(.*?)^```$", re.MULTILINE | re.DOTALL)


def text():
    return (PROJECT / "docs/embedding.md").read_text()


def blocks(language):
    return [textwrap.dedent(code) for kind, code in BLOCK.findall(text()) if kind == language]


def block(language, word):
    """The only block of this language with this word."""
    found = [code for code in blocks(language) if word in code]
    assert len(found) == 1, f"{len(found)} blocks of {language} have {word}"
    return found[0]


def first_program():
    return block("cpp", "int main")


def type_off(folder, cmake_word):
    """A project as the guide shows it: its CMakeLists.txt with this word, and the first program."""
    folder.mkdir()
    (folder / "CMakeLists.txt").write_text(block("cmake", cmake_word))
    (folder / "program.cpp").write_text(first_program())
    return folder
