"""A fresh Debian system in a folder, made by debootstrap from the mirror that apt of this machine is configured with."""

import os
import pathlib
import re
import shutil
import subprocess

# What apt needs to reach its mirror: proxies and certificates, as far as this machine has set them.
REACH = re.compile(r'^Acquire::\S*(Proxy|CaInfo|CaPath|Verify-Peer|Verify-Host|SslCert|SslKey)\S* "[^"]*";$', re.MULTILINE | re.IGNORECASE)


def run(*command, **more):
    """Runs a command; its output is shown when it fails."""
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, **more)
    if done.returncode != 0:
        raise AssertionError(f"{' '.join(map(str, command))} ended with {done.returncode}:\n{done.stdout[-6000:]}")
    return done.stdout


def codename():
    return re.search(r"^VERSION_CODENAME=(\w+)$", pathlib.Path("/etc/os-release").read_text(), re.MULTILINE)[1]


def mirror():
    """(address, file of keys or "") of the first source of this release."""
    form = "$(REPO_URI)|$(RELEASE)|$(COMPONENT)|$(SIGNED_BY)"
    for line in run("apt-get", "indextargets", "--format", form, "Created-By: Packages").splitlines():
        address, release, component, keys = line.split("|")
        if release == codename() and component == "main":
            return address, keys if keys.startswith("/") else ""
    raise AssertionError(f"apt has no source of {codename()} main")


class FreshRoot:
    """Minimal Debian in a folder; commands run inside. The caller is root, in a mount namespace of its own."""

    def __init__(self, folder):
        self.folder = pathlib.Path(folder)
        address, keys = mirror()
        options = ["--variant=minbase", *([f"--keyring={keys}"] if keys else [])]
        proxy = run("apt-config", "shell", "proxy", "Acquire::http::Proxy").partition("=")[2].strip().strip("'")
        environment = {**os.environ, **({"http_proxy": proxy, "https_proxy": proxy} if proxy else {})}
        run("debootstrap", *options, codename(), self.folder, address, env=environment)
        # Nothing that a package brings is started.
        (self.folder / "usr/sbin/policy-rc.d").write_text("#!/bin/sh\nexit 101\n")
        (self.folder / "usr/sbin/policy-rc.d").chmod(0o755)
        # No flushing: this system is thrown away.
        (self.folder / "etc/dpkg/dpkg.cfg.d/unsafe-io").write_text("force-unsafe-io\n")
        run("mount", "-t", "proc", "proc", self.folder / "proc")

    def close(self):
        run("umount", self.folder / "proc")

    def configure_apt(self):
        here = self.folder / "etc/apt"
        (here / "sources.list").unlink(missing_ok=True)
        for name in ("sources.list", "sources.list.d", "trusted.gpg", "trusted.gpg.d", "keyrings"):
            there = pathlib.Path("/etc/apt", name)
            if there.is_dir():
                shutil.copytree(there, here / name, dirs_exist_ok=True)
            elif there.exists():
                shutil.copy(there, here / name)
        reach = "\n".join(match[0] for match in REACH.finditer(run("apt-config", "dump", "--format", '%F "%v";%n')))
        (here / "apt.conf.d/70reach").write_text(reach + "\n")
        files = ["/etc/resolv.conf", "/etc/hosts", "/etc/ssl/certs/ca-certificates.crt", *re.findall(r'"(/[^"]+)"', reach)]
        for name in filter(os.path.isfile, files):
            (self.folder / name[1:]).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(os.path.realpath(name), self.folder / name[1:])
        self.run("apt-get", "update")

    def run(self, *command):
        environment = {"PATH": "/usr/sbin:/usr/bin:/sbin:/bin", "HOME": "/root", "LC_ALL": "C", "DEBIAN_FRONTEND": "noninteractive"}
        return run("chroot", self.folder, *command, env=environment)

    def install(self, *packages):
        return self.run("apt-get", "install", "-y", "--no-install-recommends", *packages)

    def installed(self):
        """name -> version of the packages that are installed."""
        lines = self.run("dpkg-query", "-W", "-f", "${db:Status-Status} ${Package} ${Version}\n").splitlines()
        return {line.split()[1]: line.split()[2] for line in lines if line.startswith("installed ")}

    def files_of(self, package):
        names = self.run("dpkg", "-L", package).splitlines()
        return sorted(name for name in names if not os.path.isdir(self.folder / name[1:]) or os.path.islink(self.folder / name[1:]))
