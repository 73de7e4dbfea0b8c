#!/usr/bin/env bash
# What ./run and ./test do on a Mac: which packages they ask Homebrew for, what they build and run, and what they refuse.
# The commands of a Mac are stand-ins that write down how they were called.
# Usage: scripts_test.sh REPOSITORY
set -euo pipefail
root=$1
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
copy="$scratch/kelva"
mkdir -p "$copy" "$scratch/bin"
cp -R "$root/run" "$root/test" "$root/tools" "$copy/"
export CALLS="$scratch/calls"

fail() {
  printf 'scripts_test: %s\n' "$*" >&2
  exit 1
}

# stand_in NAME [BODY]: a command that writes down its call.
stand_in() {
  # shellcheck disable=SC2016 # the words belong to the stand-in
  printf '#!/bin/bash\necho "%s $*" >>"$CALLS"\n%s\n' "$1" "${2:-}" >"$scratch/bin/$1"
  chmod +x "$scratch/bin/$1"
}

# Nothing of this system but what every system has.
for tool in awk basename bash cat chmod cut dirname env find getconf grep mkdir mktemp rm sed sort tail tr uniq; do
  ln -s "$(command -v "$tool")" "$scratch/bin/$tool"
done
printf '#!/bin/bash\necho Darwin\n' >"$scratch/bin/uname"
chmod +x "$scratch/bin/uname"
# shellcheck disable=SC2016
stand_in brew 'if [ "$1" = list ]; then printf "cmake\nninja\nccache\npkg-config\nboost\n"; fi'
# shellcheck disable=SC2016
stand_in cmake '
agent=build/dev/bin/KelvaHelper.app/Contents/MacOS
case "$*" in *KelvaHelper*) mkdir -p "$agent"; printf "#!/bin/bash\necho the agent runs\n" >"$agent/KelvaHelper"; chmod +x "$agent/KelvaHelper" ;; esac'
stand_in ninja
stand_in ctest 'echo "100% tests passed, 0 tests failed out of 3"'

# on_a_mac CODE COMMAND...: runs it, and fails unless it ends with this code.
on_a_mac() {
  local expected=$1 code=0
  shift
  : >"$CALLS"
  (cd "$copy" && PATH="$scratch/bin" CI='' "$scratch/bin/bash" "$@") >"$scratch/out" 2>"$scratch/err" || code=$?
  [ "$code" = "$expected" ] || fail "$* ended with $code instead of $expected: $(cat "$scratch/out" "$scratch/err")"
}

called() {
  grep -qxF -- "$1" "$CALLS" || fail "\"$1\" was not called, but: $(cat "$CALLS")"
}

said() {
  grep -q -- "$1" "$scratch/out" || fail "\"$1\" was not said, but: $(cat "$scratch/out" "$scratch/err")"
}

# refused WORDS: one sentence, and nothing was installed or built.
refused() {
  [ "$(wc -l <"$scratch/err")" = 1 ] || fail "not one sentence: $(cat "$scratch/err")"
  grep -q -- "$1" "$scratch/err" || fail "no \"$1\" in: $(cat "$scratch/err")"
  [ ! -s "$CALLS" ] || fail "refused only after: $(cat "$CALLS")"
}

on_a_mac 0 ./test
said "googletest *the unit tests"
called "brew install googletest"
called "cmake --preset dev"
called "cmake --build --preset dev"
grep -q 'fuzz' "$CALLS" && fail "the fuzz targets were asked for: $(cat "$CALLS")"
grep -q '^ctest --test-dir build/dev ' "$CALLS" || fail "the tests did not run: $(cat "$CALLS")"
said "100% tests passed"

mkdir -p "$copy/build/asan" "$copy/build/tsan"
on_a_mac 0 ./test all
for preset in dev asan tsan; do called "cmake --build --preset $preset"; done
grep -q 'fuzz' "$CALLS" && fail "the fuzz targets were asked for: $(cat "$CALLS")"
grep -q '^ctest --test-dir build/all ' "$CALLS" || fail "the tests did not run: $(cat "$CALLS")"

for set in kernel gnustep long fuzz; do
  on_a_mac 1 ./test "$set"
  refused "the $set tests run on Linux only"
done

on_a_mac 0 ./run --system
called "cmake --build --preset dev --target KelvaHelper"
said "the agent runs"

on_a_mac 1 ./run
refused "./run --system"

rm "$scratch/bin/brew"
on_a_mac 1 ./test
refused "Homebrew is missing"
echo "passed"
