"""Turns the times of the benchmark programs into ratios, says which one is missed, and draws cost against size.

Usage: report.py FOLDER, where FOLDER holds the programs' JSON results; the plots are written there too.
"""

import json
import pathlib
import statistics
import sys

import plot

MIB = 1024 * 1024
# One line of the report each: title, numerator, denominator, comparison, limit. A name is a benchmark's without suffix.
COPY_FILE = f"CopyOnce/{64 * MIB}"
COPY_BUNDLE = f"CopyOnce/{62 * MIB}"
RATIOS = [
    ("ReadFile of 64 MiB: speed against one memcpy", COPY_FILE, "ReadFile", "at least", 0.8),
    ("ReadCrashLogs of 62 MiB: speed against one memcpy", COPY_BUNDLE, "ReadCrashLogs", "at least", 0.5),
    ("ReadCalibration of 62 MiB: speed against one memcpy", COPY_BUNDLE, "ReadCalibration", "at least", 0.5),
    ("ReadFilesBySha1 of 62 MiB: speed against one memcpy", COPY_BUNDLE, "ReadFilesBySha1", "at least", 0.5),
]
# Cost of one item at the largest size against that at the smallest; a cost that grows with the square would be 1,000.
# A catalogue's cost is taken in copies of its bytes, because the memory itself slows down when the caches are left.
LINEAR = {"GetDcf": "picture of a catalogue", "ReadDir": "entry of a listing", "TraverseDir": "file of a tree"}
YARDSTICKS = {"GetDcf": "CopyOfCatalogue"}
LINEAR_LIMIT = 3.0


# From plug to the first line of the application, in milliseconds; the tail is shown beside a bare posix_spawn's.
LAUNCH_LIMIT_MS = 10
# From plug to the first line of the opener, which the resident agent runs: its part of the above.
OPENER_LIMIT_MS = 2
OPENER_TAIL_LIMIT = 3


def runs(folder):
    for path in sorted(folder.glob("*.json")):
        for run in json.loads(path.read_text())["benchmarks"]:
            if run.get("error_occurred"):
                sys.exit(f"report: {run['name']} failed: {run['error_message']}")
            if run["run_type"] == "iteration":
                yield run


def load(folder):
    """Every repetition's real time in nanoseconds, by benchmark name."""
    unit = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}
    times = {}
    for run in runs(folder):
        name = run["run_name"].replace("/real_time", "")
        times.setdefault(name, []).append(run["real_time"] * unit[run["time_unit"]])
    return times


def median(times, name):
    if name not in times:
        sys.exit(f"report: no benchmark {name} was run")
    return statistics.median(times[name])


def curve(times, name):
    """(size, cost of one item in nanoseconds) in order of size."""
    points = ((int(key.split("/")[1]), statistics.median(value))
              for key, value in times.items() if key.split("/")[0] == name)
    return sorted((size, cost / size) for size, cost in points)


def growth(times, name):
    """Sizes and costs of one item, smallest and largest, the cost in units of the yardstick if there is one."""
    points = curve(times, name)
    if len(points) < 2:
        sys.exit(f"report: no benchmark {name} was run")
    units = dict(curve(times, YARDSTICKS[name])) if name in YARDSTICKS else {}
    (small, low), (large, high) = points[0], points[-1]
    return small, large, (high / units.get(large, 1)) / (low / units.get(small, 1))


def verdict(value, comparison, limit):
    kept = value >= limit if comparison == "at least" else value <= limit
    return kept, "ok" if kept else "MISSED"


def line(title, value, comparison, limit):
    kept, word = verdict(value, comparison, limit)
    print(f"{title:<68} {value:8.2f}   {comparison} {limit:g}   {word}")
    return kept


def launch(folder):
    """Prints the launch's lines; whether its limit was kept."""
    found = {run["run_name"].split("/")[0]: run for run in runs(folder) if "p50_ms" in run}
    if set(found) != {"PlugToStart", "PlugToOpener", "BareSpawn"}:
        sys.exit("report: the launch was not measured")
    plug, bare = found["PlugToStart"], found["BareSpawn"]
    kept = line("Plug to the start of the application: p50 in milliseconds", plug["p50_ms"], "at most", LAUNCH_LIMIT_MS)
    for name in ("p50_ms", "p99_ms"):
        title = f"Plug to start against a bare posix_spawn: {name[:3]}"
        print(f"{title:<68} {plug[name] / bare[name]:8.2f}   ({plug[name]:.2f} ms against {bare[name]:.2f} ms)")
    opener = found["PlugToOpener"]
    kept &= line("Plug to the start of the opener: p50 in milliseconds", opener["p50_ms"], "at most", OPENER_LIMIT_MS)
    ratio = opener["p99_ms"] / bare["p99_ms"]
    kept &= line("Plug to the opener against a bare posix_spawn: p99", ratio, "at most", OPENER_TAIL_LIMIT)
    return kept


def main():
    folder = pathlib.Path(sys.argv[1])
    times = load(folder)
    kept = [line(title, median(times, over) / median(times, under), comparison, limit)
            for title, over, under, comparison, limit in RATIOS]
    for name, item in LINEAR.items():
        small, large, ratio = growth(times, name)
        title = f"{name}: cost of one {item}, {large:,} against {small:,}"
        kept.append(line(title, ratio, "at most", LINEAR_LIMIT))
    kept.append(launch(folder))
    plot.write(folder / "cost-against-size.svg", {name: curve(times, name) for name in [*LINEAR, *YARDSTICKS.values()]})
    print(f"The cost of one item against the size: {folder / 'cost-against-size.svg'}")
    sys.exit(0 if all(kept) else 1)


if __name__ == "__main__":
    main()
