"""What the agent costs while nothing happens, beside other programs that wait for devices, in one window of time.

Usage: idle.py PROGRAMS, the folder with kelva-helper and kelva-vcam. Exits with 1 when a limit is missed.
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import time

SETTLE_SECONDS = 10
WINDOW_SECONDS = 60
# The agent's limits: resident and private dirty kilobytes, threads, context switches in the window.
LIMITS = {"rss": 4.5 * 1024, "dirty": 0.6 * 1024, "threads": 1, "switches": 0}
TITLES = {
    "rss": "resident, kB",
    "dirty": "private dirty, kB",
    "threads": "threads",
    "switches": f"context switches in {WINDOW_SECONDS} s",
}
# Others that stay resident for devices; those that are installed are measured in the same window.
PEERS = {
    "usbmuxd": ["/usr/sbin/usbmuxd", "--foreground"],
    "GVfs volume monitor (MTP)": ["/usr/libexec/gvfs-mtp-volume-monitor"],
    "GVfs volume monitor (PTP)": ["/usr/libexec/gvfs-gphoto2-volume-monitor"],
}


class Resident:
    """One program that waits."""

    def __init__(self, name, command, environment):
        self.name = name
        self.process = subprocess.Popen(command, env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.proc = pathlib.Path("/proc", str(self.process.pid))
        self.before = {}

    def alive(self):
        return self.process.poll() is None

    def switches(self):
        """Context switches so far by thread, asked for or not."""
        texts = {task.name: (task / "status").read_text() for task in (self.proc / "task").iterdir()}
        return {task: sum(map(int, re.findall(r"ctxt_switches:\s+(\d+)", text))) for task, text in texts.items()}

    def cost(self):
        rollup = (self.proc / "smaps_rollup").read_text()
        return {
            "rss": int(re.search(r"^Rss:\s+(\d+)", rollup, re.MULTILINE)[1]),
            "dirty": int(re.search(r"^Private_Dirty:\s+(\d+)", rollup, re.MULTILINE)[1]),
            "threads": len(list((self.proc / "task").iterdir())),
            "switches": sum(count - self.before.get(task, 0) for task, count in self.switches().items()),
        }

    def end(self):
        self.process.terminate()
        self.process.wait()


def environment_of(folder, number):
    """A session of its own for each copy."""
    runtime = folder / f"run{number}"
    runtime.mkdir()
    return {**os.environ, "XDG_RUNTIME_DIR": str(runtime), "HOME": str(folder)}


def start_all(programs, folder):
    """The bus, the agent on it and on the machine, and the peers; the bus comes first."""
    socket = str(folder / "bus")
    bus = Resident("bus", [programs / "kelva-vcam", "serve", "--socket", socket], os.environ)
    while not os.path.exists(socket) and bus.alive():
        time.sleep(0.05)
    # A file that has just been written is still dirty in the page cache, which the kernel would count as the agent's.
    program = shutil.copy(programs / "kelva-helper", folder / "kelva-helper")
    os.sync()
    commands = {"kelva-helper": [program], "kelva-helper on a virtual bus": [program, "--virtual", socket]}
    commands.update({name: command for name, command in PEERS.items() if os.path.exists(command[0])})
    bridge = ["dbus-run-session", "--"] if shutil.which("dbus-run-session") else []
    residents = []
    for number, (name, command) in enumerate(commands.items()):
        command = [*bridge, *command] if "GVfs" in name else command
        residents.append(Resident(name, command, environment_of(folder, number)))
    return bus, residents


def follow_bridge(resident):
    """A program that was started through dbus-run-session is that process's child."""
    if not resident.name.startswith("GVfs"):
        return
    for stat in pathlib.Path("/proc").glob("[0-9]*/stat"):
        name, _, rest = stat.read_text().rpartition(")")
        if rest.split()[1] == str(resident.process.pid) and "gvfs" in name:
            resident.proc = stat.parent


def report(costs):
    """Prints every measurement; whether the agent kept its limits."""
    kept = True
    for key, title in TITLES.items():
        for name, cost in costs.items():
            words = ""
            if name.startswith("kelva-helper"):
                ok = cost[key] <= LIMITS[key]
                kept &= ok
                words = f"   at most {LIMITS[key]:g}   {'ok' if ok else 'MISSED'}"
            print(f"{'Idle, ' + name + ': ' + title:<68} {cost[key]:8d}{words}")
    return kept


def main():
    programs = pathlib.Path(sys.argv[1]).resolve()
    with tempfile.TemporaryDirectory() as scratch:
        bus, residents = start_all(programs, pathlib.Path(scratch))
        try:
            time.sleep(SETTLE_SECONDS)
            for resident in residents:
                follow_bridge(resident)
            waiting = [resident for resident in residents if resident.alive()]
            for resident in waiting:
                resident.before = resident.switches()
            time.sleep(WINDOW_SECONDS)
            costs = {resident.name: resident.cost() for resident in waiting if resident.alive()}
        finally:
            for resident in [*residents, bus]:
                resident.end()
    for name in ("kelva-helper", "kelva-helper on a virtual bus"):
        if name not in costs:
            sys.exit(f"idle: {name} did not stay")
    for name in PEERS:
        if name not in costs:
            print(f"{'Idle, ' + name + ': not measured, it is not installed or did not stay':<68}")
    sys.exit(0 if report(costs) else 1)


if __name__ == "__main__":
    main()
