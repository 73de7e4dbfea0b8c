#!/usr/bin/env bash
# What ./run shows, with the programs of a build that is there already; and what it says about a folder that cannot be used.
# Usage: run_test.sh REPOSITORY BUILD_FOLDER
set -euo pipefail
root=$1
build=$2
export root build
scratch_of_test=$(mktemp -d)
trap 'rm -rf "$scratch_of_test"' EXIT
mkdir "$scratch_of_test/tmp"
export TMPDIR="$scratch_of_test/tmp"

fail() {
  printf 'run_test: %s\n' "$*" >&2
  exit 1
}

# in_demonstration COMMAND...: in a process of its own, as ./run does it, without building.
in_demonstration() {
  # shellcheck disable=SC2016 # the words belong to the inner shell
  bash -euo pipefail -c '. "$root/tools/say.sh"; build_preset() { :; }; . "$root/tools/demonstration.sh"; "$@"' run "$@" \
    >"$scratch_of_test/out" 2>"$scratch_of_test/err"
}

expect_line() {
  grep -q -- "$1" "$scratch_of_test/out" || fail "no line \"$1\" in: $(cat "$scratch_of_test/out" "$scratch_of_test/err")"
}

# expect_refusal WORDS COMMAND...: exit code 1 and one sentence with these words.
expect_refusal() {
  local words=$1 outcome=0
  shift
  in_demonstration "$@" || outcome=$?
  [ "$outcome" = 1 ] || fail "\"$*\" ended with $outcome instead of 1"
  [ "$(wc -l <"$scratch_of_test/err")" = 1 ] || fail "not one sentence: $(cat "$scratch_of_test/err")"
  grep -q -- "$words" "$scratch_of_test/err" || fail "no \"$words\" in: $(cat "$scratch_of_test/err")"
}

in_demonstration demonstrate "" || fail "without a folder: $(cat "$scratch_of_test/out" "$scratch_of_test/err")"
expect_line "Nothing was launched: camera KV-0001"
expect_line "because camera KV-0002 was plugged in"
expect_line "fetched IMG_0004.JPG"
expect_line "equal to the camera's, byte for byte"

mkdir "$scratch_of_test/my pictures"
"$build/bin/draw-pictures" "$scratch_of_test"
cp "$scratch_of_test/DCIM/100KELVA/IMG_0002.JPG" "$scratch_of_test/my pictures/a holiday.jpeg"
echo "no picture" >"$scratch_of_test/my pictures/notes.txt"
in_demonstration demonstrate "$scratch_of_test/my pictures" || fail "with a folder: $(cat "$scratch_of_test/err")"
expect_line "Took 1 pictures of $scratch_of_test/my pictures"
expect_line "fetched IMG_0001.JPG ($(wc -c <"$scratch_of_test/my pictures/a holiday.jpeg") bytes)"

mkdir "$scratch_of_test/empty"
expect_refusal "there is no JPEG file" need_pictures "$scratch_of_test/empty"
expect_refusal "there is no folder" absolute_folder "$scratch_of_test/missing"
expect_refusal "is not a folder" absolute_folder "$scratch_of_test/my pictures/notes.txt"
# shellcheck disable=SC2016 # the words belong to the inner shell
expect_refusal "IMG\|holiday.jpeg\" cannot be copied (Permission denied); change" \
  eval 'cp() { echo "cp: cannot open it for reading: Permission denied" >&2; return 1; }; demonstrate "'"$scratch_of_test/my pictures"'"'

leftovers=$(ls "$TMPDIR")
[ -z "$leftovers" ] || fail "left behind: $leftovers"
