# shellcheck shell=bash
# How the scripts at the root speak: progress on standard output, one sentence on standard error when they give up.

say() {
  printf '%s\n' "$*"
}

# die CODE SENTENCE: says why and ends the script.
die() {
  local code=$1
  shift
  printf '%s: %s\n' "$(basename "$0")" "$*" >&2
  exit "$code"
}
