"""Compiles one changed file of a built tree, links test programs with it, and runs them; all in a scratch folder."""

import json
import os
import pathlib
import re
import resource
import shlex
import shutil
import signal
import subprocess
import time

# What a fault may use before it counts as caught: it may allocate, write or wait for ever.
MOST_MEMORY = 4 << 30
MOST_FILE = 8 << 30
LEAST_SECONDS = 10


class Failed(Exception):
    """The unchanged tree did not compile, link or pass: no fault can be judged."""


class Workshop:
    def __init__(self, build, scratch):
        self.build = pathlib.Path(build).resolve()
        self.scratch = pathlib.Path(scratch).resolve()
        commands = self.build / "compile_commands.json"
        if not commands.is_file():
            raise Failed(f"{self.build} has no compile_commands.json; configure it, for example with `cmake --preset dev`.")
        self.entries = json.loads(commands.read_text(encoding="utf-8"))
        listed = self._ask("ctest", "--test-dir", str(self.build), "--show-only=json-v1")
        self.tests = {test["name"]: test for test in json.loads(listed)["tests"]}
        self.threads = "-fsanitize=thread" in json.dumps(self.entries[:1])
        self.links = {}
        for name in ("object", "bin", "run", "tmp"):
            (self.scratch / name).mkdir(parents=True, exist_ok=True)

    def _ask(self, *command):
        return subprocess.run(command, check=True, capture_output=True, text=True, cwd=self.build).stdout

    # Compiling

    def entries_of(self, path):
        """How the build compiles a source: alone, or as a part of a unity file. Several targets may do so."""
        alone = [entry for entry in self.entries if entry["file"] == str(path)]
        if alone:
            return alone
        unity = [entry for entry in self.entries if "/Unity/" in entry["file"]]
        return [entry for entry in unity if f'"{path}"' in pathlib.Path(entry["file"]).read_text(encoding="utf-8")]

    def compile(self, path, text):
        """The object file of a source that has this text; None if it does not compile."""
        entry = self._entry(path)
        changed = self.scratch / "object" / path.name
        changed.write_text(text, encoding="utf-8")
        source = changed
        if entry["file"] != str(path):
            whole = pathlib.Path(entry["file"]).read_text(encoding="utf-8").replace(f'"{path}"', f'"{changed}"')
            source = self.scratch / "object" / "unity.cpp"
            source.write_text(whole, encoding="utf-8")
        target = self.scratch / "object" / "changed.o"
        words = self._compiler(entry["command"])
        words = [str(source) if word == entry["file"] else word for word in words]
        words[words.index("-o") + 1] = str(target)
        # Without optimisation it compiles faster, but GCC then leaves some stores out of ThreadSanitizer's sight: those of
        # what a function returns.
        words += ([] if self.threads else ["-O0"]) + ["-w", "-iquote", str(path.parent)]
        done = subprocess.run(words, cwd=entry["directory"], capture_output=True, check=False, timeout=600)
        return target if done.returncode == 0 else None

    def _entry(self, path):
        entries = self.entries_of(path)
        if not entries:
            raise Failed(f"{path} is not compiled in {self.build}.")
        return entries[0]

    @staticmethod
    def _compiler(command):
        """Without the launcher: a cache of faults is of no use. A warning is not what a fault is about."""
        words = shlex.split(command)
        first = next(i for i, word in enumerate(words) if re.fullmatch(r"(.*/)?[\w-]*(c\+\+|g\+\+|clang\+\+)(-\d+)?", word))
        return [word for word in words[first:] if not word.startswith("-W") or word.startswith("-Wl")]

    # Linking

    def programs(self, test):
        """The programs of this build that a test runs: its own, or those that a script is given, one by one or as a folder."""
        if test not in self.tests:
            raise Failed(f"{self.build} has no test {test}.")
        if "command" not in self.tests[test]:
            raise Failed(f"{test} is not built; build everything first.")
        known = self.build / "test-bin", self.build / "bin"
        found = []
        for word in self.tests[test]["command"]:
            if pathlib.Path(word).parent in known:
                found.append(word)
            elif pathlib.Path(word) == known[1]:
                found += sorted(str(path) for path in known[1].iterdir())
        return found

    def link_command(self, program):
        if program not in self.links:
            target = str(pathlib.Path(program).relative_to(self.build))
            if not pathlib.Path(program).is_file():
                raise Failed(f"{program} is not built; build everything first.")
            link = self._ask("ninja", "-t", "commands", target).strip().splitlines()[-1]
            self.links[program] = shlex.split(link.removeprefix(": && ").partition(" && ")[0])
        return list(self.links[program])

    def holds(self, program, path):
        """Whether a program is linked from a source's own object file, or from the library that has it."""
        words = self.link_command(program)
        for entry in self.entries_of(path):
            room = re.search(r"CMakeFiles/([^/]+)\.dir/", self._output(entry))[1]
            if self._output(entry) in words or any(pathlib.Path(word).name == f"lib{room}.a" for word in words):
                return True
        return False

    def _output(self, entry):
        words = shlex.split(entry["command"])
        return os.path.relpath(os.path.join(entry["directory"], words[words.index("-o") + 1]), self.build)

    def link(self, program, path, changed):
        """The program with this object file for that source's. The linker takes it before a library's member."""
        words = self.link_command(program)
        outputs = {self._output(entry) for entry in self.entries_of(path)}
        kept = [word for word in words if word not in outputs]
        target = self.scratch / "bin" / pathlib.Path(program).name
        self._put_beside(target)
        kept[kept.index("-o") + 1] = str(target)
        kept.insert(kept.index("-o"), str(changed))
        if shutil.which("ld.lld"):
            kept.append("-fuse-ld=lld")
        done = subprocess.run(kept, cwd=self.build, capture_output=True, text=True, check=False, timeout=600)
        if done.returncode != 0:
            raise Failed(f"{program} does not link with {path.name}:\n{done.stderr[-2000:]}")
        return str(target)

    def _put_beside(self, target):
        """The build's programs, which a test may start from beside its own."""
        programs = self.build / "bin"
        for path in programs.iterdir() if programs.is_dir() else ():
            link = target.parent / path.name
            if path.is_file() and link != target and not link.is_symlink() and not link.exists():
                link.symlink_to(path)

    # Running

    def run(self, test, exchanged, seconds):
        """Whether a test passes with these programs in the place of the build's own, and how long it took."""
        command = [exchanged.get(word, word) for word in self._given(test, exchanged)]
        began = time.monotonic()
        with open(self.scratch / "last.log", "wb") as log:
            process = subprocess.Popen(command, cwd=self.scratch / "run", env=self._environment(test), stdin=subprocess.DEVNULL,
                                       stdout=log, stderr=log, start_new_session=True, preexec_fn=self._limits)
            try:
                passed = process.wait(timeout=seconds) == 0
            except subprocess.TimeoutExpired:
                passed = False
            finally:
                self._end(process)
        shutil.rmtree(self.scratch / "tmp", ignore_errors=True)
        (self.scratch / "tmp").mkdir()
        return passed, time.monotonic() - began

    def _given(self, test, exchanged):
        """A test's command; a folder of programs in it becomes one with the exchanged programs."""
        words, programs = self.tests[test]["command"], self.build / "bin"
        if str(programs) in words:
            folder = self.scratch / "programs"
            shutil.rmtree(folder, ignore_errors=True)
            folder.mkdir()
            for path in programs.iterdir():
                (folder / path.name).symlink_to(exchanged.get(str(path), path))
            words = [str(folder) if word == str(programs) else word for word in words]
        return words

    @staticmethod
    def _end(process):
        """The test and what it has started: they are one session."""
        try:
            os.killpg(process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        process.wait()

    def _limits(self):
        os.nice(5)
        resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
        resource.setrlimit(resource.RLIMIT_FSIZE, (MOST_FILE, MOST_FILE))
        if not self.threads:  # a sanitizer reserves more than any machine has
            resource.setrlimit(resource.RLIMIT_AS, (MOST_MEMORY, MOST_MEMORY))

    def _environment(self, test):
        root = self.build.parent.parent
        environment = dict(os.environ, TMPDIR=str(self.scratch / "tmp"), GTEST_FAIL_FAST="1", GTEST_BRIEF="1")
        environment["TSAN_OPTIONS"] = f"halt_on_error=1:exitcode=66:suppressions={root}/tools/tsan.supp:atexit_sleep_ms=0"
        for property_ in self.tests[test].get("properties", []):
            if property_["name"] == "ENVIRONMENT":
                environment.update(value.split("=", 1) for value in property_["value"])
        return environment


def limit(seconds):
    """How long a test with a fault may take that took so long without."""
    return max(LEAST_SECONDS, 10 * seconds)
