#!/usr/bin/env bash
# The unit and the autostart entry, as they would be installed, in the eyes of the programs that read them.
# Usage: session_files_test.sh UNIT ENTRY PROGRAM   (PROGRAM: a kelva-helper that exists, in place of the installed one)
set -euo pipefail
unit=$1 entry=$2 program=$3
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
export XDG_RUNTIME_DIR=$scratch

fail() {
  echo "FAILED: $*" >&2
  exit 1
}

# expect FILE LINE: the file has this very line.
expect() {
  grep -qxF -- "$2" "$1" || fail "$1 lacks the line \"$2\""
}

# The verifier wants the program to be there, and reports what it does not know as a warning.
sed "s|^ExecStart=.*|ExecStart=$program|" "$unit" >"$scratch/kelva-helper.service"
warnings=$(systemd-analyze verify --user "$scratch/kelva-helper.service" 2>&1) || fail "the unit: $warnings"
[ -z "$warnings" ] || fail "the unit: $warnings"

expect "$unit" "PartOf=graphical-session.target"
expect "$unit" "WantedBy=graphical-session.target"
expect "$unit" "KillMode=process"

# The launched application would inherit each of these from the agent.
sandbox='^(Private|Protect|Restrict|ReadOnly|Inaccessible|NoNewPrivileges|SystemCall|MemoryDeny|LockPersonality|Limit)'
if grep -E "$sandbox" "$unit"; then fail "the unit has a sandbox option"; fi

desktop-file-validate "$entry" || fail "the autostart entry"
program_of_entry=$(sed -n 's/^Exec=//p' "$entry")
program_of_unit=$(sed -n 's/^ExecStart=//p' "$unit")
[ "$program_of_entry" = "$program_of_unit" ] || fail "\"$program_of_entry\" and \"$program_of_unit\" are not one program"
expect "$entry" "X-systemd-skip=true"
echo "passed"
