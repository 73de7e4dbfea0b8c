"""The shell scripts pass shellcheck."""

import subprocess

import repository


def is_shell(path):
    first = repository.text(path).partition("\n")[0]
    return path.suffix == ".sh" or (first.startswith("#!") and ("bash" in first or first.rstrip().endswith("sh")))


def check(root):
    scripts = [str(path.relative_to(root)) for path in repository.files(root) if is_shell(path)]
    if scripts:
        command = ["shellcheck", "-x", "-f", "gcc", *scripts]
        run = subprocess.run(command, cwd=root, capture_output=True, text=True, check=False)
        yield from (run.stdout + run.stderr).splitlines()


if __name__ == "__main__":
    repository.main(check)
