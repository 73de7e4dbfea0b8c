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
  bash -euo pipefail -c '. "$root/tools/say.sh"; build_preset() { :; }; . "$root/tools/demonstration.sh"; . "$root/tools/window.sh"; "$@"' run "$@" \
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
expect_line 'its button says "Import 12 new pictures'
expect_line "The window says: 12 pictures are on this computer and checked."
expect_line "The 12 imported files are equal to the camera's, byte for byte"
shot=$(sed -n 's/^The window as it was: //p' "$scratch_of_test/out")
[ "$(head -c 4 "$shot" | tail -c 3)" = PNG ] || fail "there is no photograph \"$shot\""

in_demonstration demonstrate_tool "" || fail "the tool alone: $(cat "$scratch_of_test/out" "$scratch_of_test/err")"
expect_line "the tool fetched the pictures of camera KV-0001"

mkdir "$scratch_of_test/my pictures"
"$build/bin/draw-pictures" "$scratch_of_test"
cp "$scratch_of_test/DCIM/100KELVA/IMG_0002.JPG" "$scratch_of_test/my pictures/a holiday.jpeg"
echo "no picture" >"$scratch_of_test/my pictures/notes.txt"
in_demonstration demonstrate "$scratch_of_test/my pictures" || fail "with a folder: $(cat "$scratch_of_test/err")"
expect_line "Took 1 pictures of $scratch_of_test/my pictures"
expect_line "The 1 imported files are equal"

# A card is taken as it is: its own names, whatever they end in, and nothing in it is touched. The name of its folder is hostile.
# shellcheck disable=SC2016 # the dollar sign belongs to the name
card="$scratch_of_test/"'a "card" of $HOME, 100 %'
mkdir -p "$card/DCIM/103TRIPS" "$card/MISC"
cp "$scratch_of_test/DCIM/100KELVA/IMG_0002.JPG" "$card/DCIM/103TRIPS/DSC_0107.JPG"
echo "raw" >"$card/DCIM/103TRIPS/DSC_0107.RAW"
contents() { (cd "$card" && find . -printf '%p %s %T@\n' | sort); }
before=$(contents)
in_demonstration need_pictures "$card" || fail "a card is refused: $(cat "$scratch_of_test/err")"
in_demonstration demonstrate "$card" || fail "with a card: $(cat "$scratch_of_test/out" "$scratch_of_test/err")"
expect_line "as it is, with 2 files"
expect_line "The 2 imported files are equal"
[ "$before" = "$(contents)" ] || fail "the card was changed: $(contents)"

# What stays: a bus that other programs reach, over a copy, until it is ended; then nothing is left.
in_demonstration stay "$card" || fail "--stay: $(cat "$scratch_of_test/out" "$scratch_of_test/err")"
socket=$(sed -n 's/^  kelva --virtual \(.*\) list$/\1/p' "$scratch_of_test/out")
"$build/bin/kelva" --virtual "$socket" list | grep -q KV-0001 || fail "no camera stays behind $socket"
"$build/bin/kelva" --virtual "$socket" rm 'I:/DCIM/103TRIPS/DSC_0107.RAW' || fail "a file of the copy cannot be deleted"
[ "$before" = "$(contents)" ] || fail "the card was changed through its copy: $(contents)"
eval "$(sed -n 's/^  \(kill [0-9]*\)$/\1/p' "$scratch_of_test/out")"
for _ in $(seq 200); do [ -e "$(dirname "$socket")" ] || break; sleep 0.05; done
[ ! -e "$(dirname "$socket")" ] || fail "the folder of the bus stays when the bus has ended"

mkdir "$scratch_of_test/empty"
expect_refusal "there is no JPEG file" need_pictures "$scratch_of_test/empty"
expect_refusal "there is no folder" absolute_folder "$scratch_of_test/missing"
expect_refusal "is not a folder" absolute_folder "$scratch_of_test/my pictures/notes.txt"
# shellcheck disable=SC2016 # the words belong to the inner shell
expect_refusal "IMG\|holiday.jpeg\" cannot be copied (Permission denied); change" \
  eval 'cp() { echo "cp: cannot open it for reading: Permission denied" >&2; return 1; }; demonstrate "'"$scratch_of_test/my pictures"'"'

leftovers=$(ls "$TMPDIR")
[ -z "$leftovers" ] || fail "left behind: $leftovers"
