#!/usr/bin/env python3
"""Puts faults into the sources of a room, one at a time, and says which ones its tests notice.

Which faults is decided by a seed and by nobody's hand. Half of them stand on lines that release, lock, flush, rename or
unlink, since faults there show least. The tree is never changed: each fault is compiled in a scratch folder and linked with
the test programs of a build. docs/testing.md says how to use it.
"""

import argparse
import collections
import hashlib
import json
import os
import pathlib
import random
import sys
import tempfile
import tomllib

import operators
import workshop

HERE = pathlib.Path(__file__).resolve().parent
CAUGHT, LATER, SURVIVED, EQUIVALENT, STILLBORN = "caught", "caught by wider tests", "survived", "equivalent", "stillborn"


class Seeded:
    """One fault in one source, and how a person names it."""

    def __init__(self, root, path, text, fault):
        self.path, self.text, self.fault = path, text, fault
        self.file = path.relative_to(root).as_posix()
        begin = text.rfind("\n", 0, fault.start) + 1
        end = text.find("\n", fault.end)
        self.behind = one_line(text[:begin].rstrip("\n").rpartition("\n")[2])
        self.was = one_line(text[begin:end])
        self.made = one_line(text[begin:fault.start] + fault.made + text[fault.end:end])

    def key(self):
        whole = f"{self.file}\0{self.text}\0{self.fault}"
        return hashlib.sha256(whole.encode()).hexdigest()[:24]

    def __str__(self):
        return f"{self.file}:{self.fault.line} [{self.fault.operator}]"


def one_line(text):
    return " / ".join(line.strip() for line in text.strip().splitlines())


def sources(root, room):
    """The sources that a room's product is made of, in the order of their names."""
    return sorted(path for folder in room.get("folders", [room["name"]]) for path in (root / folder).glob("*.cpp")
                  if not path.stem.endswith("_test") and path.stem not in ("main",))


def choose(root, room, number, seed, kinds, compiled):
    """The faults of a room: `number` of them, half on lines that guard data; all there are when number is 0."""
    guards, others = collections.defaultdict(list), collections.defaultdict(list)
    for path in sources(root, room):
        if not compiled(path):
            continue
        text = path.read_text(encoding="utf-8")
        for fault in operators.faults(text, kinds):
            seeded = Seeded(root, path, text, fault)
            lines = guards if operators.guards_data(seeded.was) else others
            lines[seeded.file, fault.line].append(seeded)
    if number == 0:
        return [seeded for lines in (guards, others) for found in lines.values() for seeded in found]
    draw = random.Random(f"{seed} {room['name']}")
    first = list(drawn(guards, draw, number - number // 2))
    return first + list(drawn(others, draw, number - len(first)))


def drawn(lines, draw, number):
    """First a line, then a fault on it, so that a line with many numbers is no likelier than another."""
    left = {line: list(found) for line, found in lines.items()}
    while left and number > 0:
        line = draw.choice(sorted(left))
        yield left[line].pop(draw.randrange(len(left[line])))
        number -= 1
        if not left[line]:
            del left[line]


class Judge:
    """Tries faults, and remembers in the scratch folder what was found, so that a broken-off run goes on."""

    def __init__(self, shop, equivalents):
        self.shop, self.equivalents = shop, equivalents
        self.memory = shop.scratch / "outcomes.jsonl"
        lines = self.memory.read_text(encoding="utf-8").splitlines() if self.memory.exists() else []
        self.known = {outcome["key"]: outcome for outcome in map(json.loads, lines)}
        self.seconds = {}

    def outcome(self, seeded, stages):
        """The kind of outcome, and what says so: a test's name or a reason."""
        for behind in (seeded.behind, ""):
            reason = self.equivalents.get((seeded.file, seeded.fault.operator, seeded.was, seeded.made, behind))
            if reason:
                return EQUIVALENT, reason
        built = max(os.stat(program).st_mtime for tests in stages.values() for test in tests for program in self.shop.programs(test))
        known = self.known.get(seeded.key())
        # What passed may be noticed by tests that were built since.
        if known and (known["kind"] != SURVIVED or known["built"] == built):
            return known["kind"], known["by"]
        kind, by = self._try(seeded, stages)
        with open(self.memory, "a", encoding="utf-8") as memory:
            memory.write(json.dumps({"key": seeded.key(), "kind": kind, "by": by, "built": built, "fault": str(seeded)}) + "\n")
        return kind, by

    def _try(self, seeded, stages):
        for kind, tests in stages.items():
            concerned = [test for test in tests if any(self.shop.holds(program, seeded.path) for program in self.shop.programs(test))]
            for test in concerned:
                self._unchanged(test, seeded)
            if concerned:
                changed = self.shop.compile(seeded.path, operators.apply(seeded.text, seeded.fault))
                if changed is None:
                    return STILLBORN, "does not compile"
            for test in concerned:
                try:
                    exchanged = self._exchanged(test, seeded.path, changed)
                except workshop.Failed:
                    return STILLBORN, "does not link"
                if not self.shop.run(test, exchanged, workshop.limit(self.seconds[test, seeded.file]))[0]:
                    return kind, test
        return SURVIVED, ""

    def _exchanged(self, test, path, changed):
        return {program: self.shop.link(program, path, changed)
                for program in self.shop.programs(test) if self.shop.holds(program, path)}

    def _unchanged(self, test, seeded):
        """The same way without a fault has to pass, or nothing that follows says anything."""
        if (test, seeded.file) in self.seconds:
            return
        same = self.shop.compile(seeded.path, seeded.text)
        if same is None:
            raise workshop.Failed(f"{seeded.file} does not compile unchanged.")
        passed, seconds = self.shop.run(test, self._exchanged(test, seeded.path, same), 600)
        if not passed:
            raise workshop.Failed(f"{test} fails with {seeded.file} unchanged; {self.shop.scratch}/last.log says how.")
        self.seconds[test, seeded.file] = seconds


def read_equivalents(root, file):
    """The reasons, keyed by what the fault does, and a complaint for each entry whose fault its source no longer offers."""
    found, complaints, offered = {}, [], {}
    for entry in tomllib.loads(file.read_text(encoding="utf-8")).get("equivalent", []):
        name, behind = entry["file"], entry.get("behind", "")
        if name not in offered:
            offered[name] = offers(root, root / name)
        if (entry["operator"], entry["was"], entry["is"], behind) in offered[name]:
            found[name, entry["operator"], entry["was"], entry["is"], behind] = entry["reason"]
        else:
            after = f" behind: {behind}" if behind else ""
            complaints.append(f"{file.name}: {name} no longer offers [{entry['operator']}] of: {entry['was']}{after}")
    return found, complaints


def offers(root, path):
    """Every fault of a source as an entry names it, with the line behind which it stands and without; none of a missing one."""
    if not path.is_file():
        return set()
    text = path.read_text(encoding="utf-8")
    seeded = [Seeded(root, path, text, fault) for fault in operators.faults(text)]
    return {(each.fault.operator, each.was, each.made, behind) for each in seeded for behind in (each.behind, "")}


def round_of(judge, room, faults, say):
    """Tries the faults of one room; gives how many of each kind."""
    counts = collections.Counter()
    stages = {CAUGHT: room["unit"], LATER: room.get("wider", [])}
    for seeded in faults:
        kind, by = judge.outcome(seeded, stages)
        counts[kind] += 1
        say(f"{seeded} {kind}{': ' + by if by else ''}")
        if kind in (SURVIVED, EQUIVALENT):
            say(f"    was  {seeded.was}\n    is   {seeded.made}")
    return counts


def share(counts):
    """Per cent caught of the faults that could be; all of none."""
    caught = counts[CAUGHT] + counts[LATER]
    tried = caught + counts[SURVIVED]
    return 100 if tried == 0 else 100 * caught / tried


def row(name, counts):
    return (f"| {name} | {sum(counts.values())} | {counts[CAUGHT]} | {counts[LATER]} | {counts[SURVIVED]} | {counts[EQUIVALENT]} | "
            f"{counts[STILLBORN]} | {share(counts):.0f} % |")


def arguments():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("rooms", nargs="*", help="rooms of the list, for example darwin/sg; all when none is named")
    parser.add_argument("--build", help="a built folder, made by Ninja")
    parser.add_argument("--check", action="store_true", help="only looks whether the list of equivalents is true; needs no build")
    parser.add_argument("--seed", help="a number or a word; a new one when not given")
    parser.add_argument("--faults", type=int, default=30, help="for each room; 0 for every fault there is (30)")
    parser.add_argument("--operators", default="", help="commas between: these alone")
    parser.add_argument("--at", default="", help="FILE or FILE:LINE: every fault there")
    parser.add_argument("--least", type=float, default=90, help="per cent to be caught in each room (90)")
    parser.add_argument("--scratch", help="a folder that is kept; a run that is repeated with it goes on where it ended")
    parser.add_argument("--list", action="store_true", help="only prints the faults")
    parser.add_argument("--root", type=pathlib.Path, default=HERE.parent.parent, help="the repository")
    parser.add_argument("--table", type=pathlib.Path, default=HERE / "rooms.toml", help="the rooms and their tests")
    parser.add_argument("--equivalents", type=pathlib.Path, default=HERE / "equivalents.toml", help="faults that change nothing")
    given = parser.parse_args()
    if not (given.build or given.check):
        parser.error("--build is missing")
    return given


def rooms_of(given):
    table = tomllib.loads(given.table.read_text(encoding="utf-8"))
    unknown = sorted(set(given.rooms) - set(table))
    if unknown:
        raise SystemExit(f"{given.table.name} has no room {', '.join(unknown)}; it has {', '.join(table)}.")
    return [{"name": name, **table[name]} for name in given.rooms or table]


def kinds_of(given, threads):
    """Only ThreadSanitizer notices a lock that is gone, so other builds leave locks out unless they are asked for."""
    if given.operators:
        return tuple(given.operators.split(","))
    return tuple(name for name in operators.OPERATORS if threads or name != "droplock")


def main():
    given = arguments()
    equivalents, complaints = read_equivalents(given.root.resolve(), given.equivalents)
    print("".join(f"{complaint}\n" for complaint in complaints), end="", flush=True)
    if given.check:
        sys.exit(1 if complaints else 0)
    seed = given.seed or str(random.SystemRandom().randrange(10**6))
    with tempfile.TemporaryDirectory(prefix="seeded-") as folder:
        shop = workshop.Workshop(given.build, given.scratch or folder)
        judge = Judge(shop, equivalents)
        kinds = kinds_of(given, shop.threads)
        print(f"seed {seed}, {given.faults or 'all'} faults a room: {' '.join(kinds)}", flush=True)
        rows, enough = [], True
        for room in rooms_of(given):
            if shop.threads:
                room = {**room, "unit": room.get("threads", room["unit"]), "wider": []}
            faults = choose(given.root.resolve(), room, 0 if given.at else given.faults, seed, kinds, shop.entries_of)
            faults = [seeded for seeded in faults if given.at in ("", seeded.file, f"{seeded.file}:{seeded.fault.line}")]
            if given.list:
                print("\n".join(f"{seeded}\n    was  {seeded.was}\n    is   {seeded.made}" for seeded in faults))
                continue
            counts = round_of(judge, room, faults, lambda line: print(line, flush=True))
            enough = enough and share(counts) >= given.least
            rows.append(row(room["name"], counts))
        if rows:
            print("\n| Room | faults | caught by unit tests | by wider tests | survived | equivalent | stillborn | caught |\n"
                  "|---|---|---|---|---|---|---|---|")
            print("\n".join(rows))
    sys.exit(0 if enough else 1)


if __name__ == "__main__":
    os.nice(10)
    try:
        main()
    except workshop.Failed as failure:
        sys.exit(str(failure))
