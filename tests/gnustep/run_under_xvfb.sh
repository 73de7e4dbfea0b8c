#!/usr/bin/env bash
# Runs a program of GNUstep on a virtual screen with a home of its own, and leaves no process behind.
# Usage: run_under_xvfb.sh PROGRAM [ARGUMENT...]
set -euo pipefail
home=$(mktemp -d)

# The first use of the workspace starts a notification daemon that outlives its starter. It carries this home in its
# environment, which tells it from those of other programs.
end_daemons() {
  local process
  for process in /proc/[0-9]*; do
    if [ "$(cat "$process/comm" 2>/dev/null || true)" = gdnc ] &&
      grep -qzxF "HOME=$home" "$process/environ" 2>/dev/null; then
      kill "${process#/proc/}" 2>/dev/null || true
    fi
  done
}
trap 'end_daemons; rm -rf "$home"' EXIT

# What GNUstep says about the missing window manager is of no interest.
HOME=$home LC_ALL=C timeout 150 xvfb-run -a "$@" 2> >(grep -v "offsets for style" >&2) </dev/null
