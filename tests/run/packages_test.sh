#!/usr/bin/env bash
# How ./run, ./test and ./package get what they need on Debian, and what they say when they cannot. Usage: packages_test.sh REPOSITORY
set -euo pipefail
root=$1
# shellcheck source=tests/run/stand_ins.sh
. "$root/tests/run/stand_ins.sh"

all_packages=$(awk '!/^#/ && NF >= 3 { print "installed " $1 }' "$root/tools/packages-debian.txt")

# machine_with PACKAGES: dpkg's answer.
machine_with() {
  printf '#!/bin/bash\ncat <<END\n%s\nEND\n' "$1" >"$scratch/bin/dpkg-query"
  chmod +x "$scratch/bin/dpkg-query"
}

answer uname Linux
answer id 0
stand_in apt-get
stand_in cmake 'case "$*" in *--build*) exit 1 ;; esac'
stand_in ninja

# What is missing is named with its reason, and installed; nothing else is.
machine_with "$(grep -v -e 'libudev-dev$' -e 'clang-14$' <<<"$all_packages")"
on_it 1 ./run --system
said "libudev-dev *cameras of the machine"
grep -q '^apt-get .*install -y --no-install-recommends libudev-dev$' "$CALLS" || fail "not installed: $(cat "$CALLS")"
complained "the build failed"

# On a machine that has everything nothing is asked of apt.
machine_with "$all_packages"
on_it 1 ./run --system
not_called apt-get

# A command that should be there by now and is not.
rm "$scratch/bin/ninja"
on_it 1 ./run --system
complained "ninja is missing; install it"
stand_in ninja

# ./package asks for what it needs besides, and leaves a machine alone that cannot build packages.
cp "$root/package" "$root/CMakeLists.txt" "$copy/"
on_it 2 ./package --onto build
complained "is no argument of ./package"
machine_with "$(grep -v 'debhelper$' <<<"$all_packages")"
on_it 1 ./package
said "debhelper *the steps of that build"
grep -q '^apt-get .*install -y --no-install-recommends debhelper$' "$CALLS" || fail "not installed: $(cat "$CALLS")"
complained "packages are built on Debian only"
[ ! -e "$copy/build/packages" ] || fail "a folder was made for packages that cannot be built"

# Without a network: one sentence, with the reason and what to do.
machine_with ""
# shellcheck disable=SC2016 # the words belong to the stand-in
stand_in apt-get 'echo "Err:1 http://deb.example bookworm InRelease"; echo "  Temporary failure resolving deb.example"; echo "E: Unable to fetch some archives"; exit 100'
on_it 1 ./test
complained "Temporary failure resolving deb.example.*check the network"

# Neither root nor sudo.
answer id 1000
on_it 1 ./test
complained "needs root, and sudo is not here; run as root: apt-get install"

# With sudo, it asks as root.
# shellcheck disable=SC2016
stand_in sudo 'exec "$@"'
stand_in apt-get
on_it 1 ./test
grep -q '^sudo env DEBIAN_FRONTEND=noninteractive apt-get ' "$CALLS" || fail "not asked as root: $(cat "$CALLS")"

# A system with neither kind of package is said so, and what is missing then is named.
rm "$scratch/bin/apt-get" "$scratch/bin/cmake"
on_it 1 ./run --system
said "neither apt-get nor Homebrew"
complained "cmake is missing; install it"
echo "passed"
