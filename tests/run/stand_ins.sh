# shellcheck shell=bash
# A copy of the scripts at the root, and a machine for them on which every command is a stand-in that writes down how it was
# called. Needs $root, the repository. Sourced; sets $scratch, which is removed at the end, and $copy.
root=${root:?the repository}
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
copy="$scratch/kelva"
export CALLS="$scratch/calls"
mkdir -p "$copy" "$scratch/bin" "$scratch/tmp"
cp -R "$root/run" "$root/test" "$root/tools" "$copy/"
# Nothing of this system but what every system has.
for tool in awk basename bash cat chmod cut dirname env find getconf grep head mkdir mktemp rm sed sort tail tr uniq wc; do
  ln -s "$(command -v "$tool")" "$scratch/bin/$tool"
done

fail() {
  printf '%s: %s\n' "$(basename "$0")" "$*" >&2
  exit 1
}

# stand_in NAME [BODY]: a command that writes down its call.
stand_in() {
  # shellcheck disable=SC2016 # the words belong to the stand-in
  printf '#!/bin/bash\necho "%s $*" >>"$CALLS"\n%s\n' "$1" "${2:-}" >"$scratch/bin/$1"
  chmod +x "$scratch/bin/$1"
}

# answer NAME WORDS: a command that only says something.
answer() {
  printf '#!/bin/bash\necho %s\n' "$2" >"$scratch/bin/$1"
  chmod +x "$scratch/bin/$1"
}

# on_it CODE COMMAND...: runs a script of the copy, and fails unless it ends with this code.
on_it() {
  local expected=$1 code=0
  shift
  : >"$CALLS"
  (cd "$copy" && PATH="$scratch/bin" TMPDIR="$scratch/tmp" CI='' "$scratch/bin/bash" "$@") >"$scratch/out" 2>"$scratch/err" ||
    code=$?
  [ "$code" = "$expected" ] || fail "$* ended with $code instead of $expected: $(cat "$scratch/out" "$scratch/err")"
}

called() {
  grep -qxF -- "$1" "$CALLS" || fail "\"$1\" was not called, but: $(cat "$CALLS")"
}

not_called() {
  ! grep -q -- "$1" "$CALLS" || fail "\"$1\" was called: $(cat "$CALLS")"
}

said() {
  grep -q -- "$1" "$scratch/out" || fail "\"$1\" was not said, but: $(cat "$scratch/out" "$scratch/err")"
}

# complained WORDS: one sentence on standard error.
complained() {
  [ "$(wc -l <"$scratch/err")" = 1 ] || fail "not one sentence: $(cat "$scratch/err")"
  grep -q -- "$1" "$scratch/err" || fail "no \"$1\" in: $(cat "$scratch/err")"
}
