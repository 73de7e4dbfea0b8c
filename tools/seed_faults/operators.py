"""The kinds of fault: where in a C++ source each may stand, and what it makes of the text there."""

import re
from typing import NamedTuple


class Fault(NamedTuple):
    """Replaces text[start:end] of a source by `made`."""

    operator: str
    line: int
    start: int
    end: int
    made: str


def masked(text):
    """The text with comments, literals and preprocessor lines blanked, every other character at its place."""
    token = re.compile(
        r'(?P<comment>//[^\n]*|/\*.*?\*/)|(?P<raw>R"(?P<tag>[^(\s]*)\(.*?\)(?P=tag)")|(?P<string>"(?:\\.|[^"\\\n])*")'
        r"|(?P<char>(?<![0-9a-fA-F])'(?:\\.|[^'\\\n])+')|(?P<directive>^[ \t]*#(?:[^\n]*\\\n)*[^\n]*)", re.DOTALL | re.MULTILINE)
    return token.sub(lambda found: re.sub(r"[^\n]", " ", found.group()), text)


class Source:
    """A source's text, and its statements: (start, end) of each that begins a line."""

    def __init__(self, text):
        self.text = text
        self.code = masked(text)
        self.starts = [0] + [found.end() for found in re.finditer("\n", text)]

    def line(self, at):
        """The number of the line at an offset, from 1."""
        return self.text.count("\n", 0, at) + 1

    def closing(self, at):
        """The offset behind the bracket that closes the one at `at`; -1 if none does."""
        depth = 0
        for index in range(at, len(self.code)):
            depth += (self.code[index] in "([{") - (self.code[index] in ")]}")
            if depth == 0:
                return index + 1
        return -1

    def statements(self):
        """Simple statements: from the first character of a line to a semicolon outside brackets."""
        for start in self.starts:
            begin = start + len(self.code[start:]) - len(self.code[start:].lstrip(" "))
            before = self.code[:start].rstrip()
            if before and before[-1] not in ";{}:":
                continue
            end = self._end(begin)
            if end > 0:
                yield begin, end

    def _end(self, begin):
        depth = 0
        for index in range(begin, len(self.code)):
            character = self.code[index]
            if depth == 0 and character in "{}" and character == "}":
                return -1
            if depth == 0 and character == ";":
                return index + 1 if self.code[begin:index].strip() else -1
            depth += (character in "([{") - (character in ")]}")
            if depth == 0 and character == "}" and self.code[index + 1:index + 2] == "\n":
                return -1  # a block, not a statement
        return -1


def replaced(operator, pattern, make):
    """An operator that replaces each match of a pattern by what `make` says; None is no fault."""

    def find(source):
        for found in re.finditer(pattern, source.code):
            made = make(found)
            line = source.code[source.code.rfind("\n", 0, found.start()) + 1:source.code.find("\n", found.end())]
            if made is not None and "static_assert" not in line:
                yield Fault(operator, source.line(found.start()), found.start(), found.end(), made)

    return find


def table(operator, pairs, pattern):
    return replaced(operator, pattern, lambda found: pairs.get(found.group()))


def both(*pairs):
    return {**dict(pairs), **{second: first for first, second in pairs}}


COMPARE = {" < ": " <= ", " <= ": " < ", " > ": " >= ", " >= ": " > ", " == ": " != ", " != ": " == "}
ARITHMETIC = both((" + ", " - "), (" += ", " -= "), (" * ", " / "))
FLAG = r"(?!O_RDONLY)[A-Z][A-Z0-9_]{2,}"  # O_RDONLY is 0: without it everything stays as it is


def conditions(source):
    """Each `if` with the (start, end) of what it decides on, behind an initialiser."""
    for found in re.finditer(r"\bif (?:constexpr )?\(", source.code):
        end = source.closing(found.end() - 1)
        inside = source.code[found.end():end - 1]
        start = found.end() + inside.rfind(";") + 1
        start += len(source.code[start:]) - len(source.code[start:].lstrip())
        declares = re.match(r"[\w:<>&*, ]+[ &*]\w+ = ", source.code[start:end - 1])
        if end > 0 and not declares and "constexpr" not in found.group():
            yield found.start(), start, end - 1


def negif(source):
    for begin, start, end in conditions(source):
        yield Fault("negif", source.line(begin), start, end, f"!({source.text[start:end]})")


def dropif(source):
    for begin, start, end in conditions(source):
        if source.code[end + 1:end + 3] == " {":
            yield Fault("dropif", source.line(begin), start, end, f"false && ({source.text[start:end]})")


def dropguard(source):
    for found in re.finditer(r"^ *(if \()", source.code, re.MULTILINE):
        start = found.start(1)
        closed = source.closing(found.end() - 1)
        end = source.code.find("\n", closed)
        behind = source.code[closed:end]
        if closed > 0 and behind.strip().endswith(";") and not source.code[end:].lstrip().startswith("else"):
            yield Fault("dropguard", source.line(start), start, start + len(source.code[start:end].rstrip()), "(void)0;")


LOCK = re.compile(r"(?:const )?std::(lock_guard|scoped_lock|unique_lock)(?:<[^;]*>)? \w+[({][^;]*[)}];")
# What stands before the bracket or the sign of assignment has no space in it; that of a declaration has.
CALL = re.compile(r"(?:\+\+|--)?[\w:.>\-\[\]*()]+\(.*\);|(?:\+\+|--)[\w.>\-]+;|delete [^;]+;", re.DOTALL)
HEAD = re.compile(r"[\w:.>\-\[\]*]+\(")
ASSIGNMENT = re.compile(r"[\w:.>\-\[\]*]+ (?:[-+|&]?=) .*;", re.DOTALL)


def is_call(code):
    return (CALL.fullmatch(code) is not None and (HEAD.match(code) is not None or code[:2] in ("++", "--"))
            and re.match(r"(return|throw|if|for|while|switch|static_assert|using)\b", code) is None) or code.startswith("delete ")


def is_assignment(code):
    return ASSIGNMENT.fullmatch(code) is not None and not code.startswith(("return", "using"))


def dropping(operator, wanted):
    def find(source):
        for start, end in source.statements():
            if wanted(source.code[start:end]):
                yield Fault(operator, source.line(start), start, end, "(void)0;")

    return find


def droplock(source):
    """A unique_lock stays, since others wait with it, but is not taken."""
    for start, end in source.statements():
        found = LOCK.fullmatch(source.code[start:end])
        if found:
            made = source.text[start:end - 2] + ", std::defer_lock" + source.text[end - 2:end]
            yield Fault("droplock", source.line(start), start, end, made if found[1] == "unique_lock" else "(void)0;")


def swap(source):
    """Two assignments are left as they are: their order hardly ever matters."""
    simple = [(start, end) for start, end in source.statements()
              if is_call(source.code[start:end]) or is_assignment(source.code[start:end])]
    for (first, middle), (second, end) in zip(simple, simple[1:]):
        between = source.code[middle:second]
        calls = is_call(source.code[first:middle]) or is_call(source.code[second:end])
        if calls and not between.strip() and between.count("\n") == 1:
            made = source.text[second:end] + source.text[middle:second] + source.text[first:middle]
            yield Fault("swap", source.line(first), first, end, made)


# Values for which {} is another name, or that another operator takes.
NOTHING = ("true", "false", "{}", "0", '""', "nullptr", "std::nullopt", "kIOReturnSuccess", "Done()", "*this")


def ret(source):
    for start, end in source.statements():
        value = source.text[start + 7:end - 1].strip()
        if source.code[start:start + 7] == "return " and value not in NOTHING:
            yield Fault("ret", source.line(start), start, end, "return {};")


def flag(source):
    for pattern in (rf" \| {FLAG}\b", rf"(?<!\| )\b{FLAG} \| "):
        yield from replaced("flag", pattern, lambda found: "")(source)


OPERATORS = {
    "cmp": table("cmp", COMPARE, r" (?:[<>]=?|[=!]=) "),
    "const": replaced("const", r"(?<![\w.'])(?:0x[0-9a-fA-F]+|\d[\d']*)(?![\w.'])", lambda found: f"({found.group()}+1)"),
    "arith": table("arith", ARITHMETIC, r" (?:[-+*/]|[-+]=) "),
    "incdec": table("incdec", both(("++", "--")), r"\+\+|--"),
    "andor": table("andor", both((" && ", " || ")), r" (?:&&|\|\|) "),
    "bool": table("bool", both(("true", "false")), r"(?<!return )\b(?:true|false)\b"),
    "retbool": table("retbool", both(("return true;", "return false;")), r"\breturn (?:true|false);"),
    "not": replaced("not", r"(?<=[\s(])!(?=[\w(:])", lambda found: ""),
    "minmax": table("minmax", both(("std::min", "std::max")), r"std::(?:min|max)\b"),
    "negif": negif,
    "dropif": dropif,
    "dropguard": dropguard,
    "dropcall": dropping("dropcall", is_call),
    "dropassign": dropping("dropassign", is_assignment),
    "droplock": droplock,
    "swap": swap,
    "ret": ret,
    "flag": flag,
}


def faults(text, operators=tuple(OPERATORS)):
    """Every fault of these operators that a text may be given, in the order of the text."""
    source = Source(text)
    return sorted({fault for name in operators for fault in OPERATORS[name](source)}, key=lambda fault: (fault.start, fault))


GUARDS = frozenset(
    "release reset lock guard unlock flock flush fsync fdatasync sync rename renameat unlink unlinkat close "
    "erase clear remove rollback commit free munmap".split())


def guards_data(line):
    """Whether a line releases, locks, flushes, renames or unlinks, by the words of its names."""
    words = re.findall(r"[A-Z]?[a-z]+", re.sub(r"remove_(?:prefix|suffix)", "", masked(line)))
    return any(word.lower() in GUARDS for word in words)


def apply(text, fault):
    return text[:fault.start] + fault.made + text[fault.end:]
