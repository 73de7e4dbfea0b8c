#!/usr/bin/env bash
# What ./run and ./test do on a Mac: which packages they ask Homebrew for, what they build and run, and what they refuse.
# Usage: scripts_test.sh REPOSITORY
set -euo pipefail
root=$1
# shellcheck source=tests/run/stand_ins.sh
. "$root/tests/run/stand_ins.sh"

answer uname Darwin
# shellcheck disable=SC2016 # the words belong to the stand-ins
stand_in brew 'if [ "$1" = list ]; then printf "cmake\nninja\nccache\npkg-config\nboost\n"; fi'
# shellcheck disable=SC2016
stand_in cmake '
agent=build/dev/bin/KelvaHelper.app/Contents/MacOS
case "$*" in *KelvaHelper*) mkdir -p "$agent"; printf "#!/bin/bash\necho the agent runs\n" >"$agent/KelvaHelper"; chmod +x "$agent/KelvaHelper" ;; esac'
stand_in ninja
stand_in ctest 'echo "100% tests passed, 0 tests failed out of 3"'

# refused WORDS: one sentence, and nothing was installed or built.
refused() {
  complained "$1"
  [ ! -s "$CALLS" ] || fail "refused only after: $(cat "$CALLS")"
}

on_it 0 ./test
said "googletest *the unit tests"
called "brew install googletest openssl@3 libdeflate jpeg-turbo libexif qt"
called "cmake --preset dev"
called "cmake --build --preset dev"
not_called fuzz
grep -q '^ctest --test-dir build/dev ' "$CALLS" || fail "the tests did not run: $(cat "$CALLS")"
said "100% tests passed"

mkdir -p "$copy/build/asan" "$copy/build/tsan"
on_it 0 ./test all
for preset in dev asan tsan; do called "cmake --build --preset $preset"; done
not_called fuzz
grep -q '^ctest --test-dir build/all ' "$CALLS" || fail "the tests did not run: $(cat "$CALLS")"

for set in kernel gnustep long fuzz; do
  on_it 1 ./test "$set"
  refused "the $set tests run on Linux only"
done

on_it 0 ./run --system
called "cmake --build --preset dev --target KelvaHelper"
said "the agent runs"

mkdir -p "$copy/build/quick/bin"
for program in kelva-vcam draw-pictures kelva; do
  printf '#!/bin/bash\nexit 0\n' >"$copy/build/quick/bin/$program"
  chmod +x "$copy/build/quick/bin/$program"
done
on_it 1 ./run
called "cmake --build --preset quick --target kelva kelva-vcam draw-pictures kelva-virtual"
complained "no picture was fetched"

rm "$scratch/bin/brew"
on_it 1 ./test
refused "Homebrew is missing"
echo "passed"
