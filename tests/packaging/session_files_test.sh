#!/usr/bin/env bash
# What the installation gives to a session, in the eyes of the programs that read it: unit, autostart entry, metainfo, icon,
# and the helper's completions and page. Usage: session_files_test.sh BUILD_FOLDER
set -euo pipefail
build=$1
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

prefix=$scratch/prefix
for component in Helper Tool VirtualCamera Desktop; do
  cmake --install "$build" --prefix "$prefix" --component $component >"$scratch/install.log" || fail "$(cat "$scratch/install.log")"
done
unit=$prefix/lib/systemd/user/kelva-helper.service
entry=$prefix/share/kelva/autostart/kelva-helper.desktop

# The verifier wants the program to be there, and reports what it does not know as a warning.
warnings=$(systemd-analyze verify --user "$unit" 2>&1) || fail "the unit: $warnings"
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

icon=$(sed -n 's/^Icon=//p' "$entry")
[ -s "$prefix/share/icons/hicolor/scalable/apps/$icon.svg" ] || fail "there is no icon \"$icon\""

metainfo=$prefix/share/metainfo/com.kelva.Kelva.metainfo.xml
said=$(appstreamcli validate --no-net "$metainfo" 2>&1) || fail "the metainfo: $said"
grep -qF "<icon type=\"stock\">$icon</icon>" "$metainfo" || fail "the metainfo has another icon than $icon"
while read -r program; do
  [ -x "$prefix/bin/$program" ] || fail "the metainfo names the program $program, which is not installed"
done < <(sed -n 's/.*<binary>\(.*\)<\/binary>.*/\1/p' "$metainfo")

# The window is started by its entry, or by a message to the name of that.
window=$prefix/share/applications/com.kelva.Desktop.desktop
desktop-file-validate "$window" || fail "the entry of the window"
program_of_window=$(sed -n 's/^Exec=//p' "$window")
[ "$program_of_window" = "$prefix/bin/kelva-desktop" ] || fail "the entry starts \"$program_of_window\""
[ -x "$program_of_window" ] || fail "the window is not installed"
expect "$window" "DBusActivatable=true"
expect "$window" "Icon=$icon"
service=$prefix/share/dbus-1/services/com.kelva.Desktop.service
expect "$service" "Name=com.kelva.Desktop"
expect "$service" "Exec=$program_of_window"
said=$(appstreamcli validate --no-net "$prefix/share/metainfo/com.kelva.Desktop.metainfo.xml" 2>&1) || fail "the metainfo of the window: $said"

# The completions and the page are written by hand: each option that the helper's own help lists is in all of them.
bash -n "$prefix/share/bash-completion/completions/kelva-helper" || fail "the completion of bash"
zsh -n "$prefix/share/zsh/site-functions/_kelva-helper" || fail "the completion of zsh"
fish --no-execute "$prefix/share/fish/vendor_completions.d/kelva-helper.fish" || fail "the completion of fish"
options=$("$prefix/bin/kelva-helper" --help | grep -oE '^  --[a-z]+' | tr -d ' -' | sort -u)
[ -n "$options" ] || fail "the helper's help lists no options"
for option in $options; do
  for file in bash-completion/completions/kelva-helper zsh/site-functions/_kelva-helper; do
    grep -qF -- "--$option" "$prefix/share/$file" || fail "$file lacks --$option"
  done
  grep -qE -- "-l $option( |\$)" "$prefix/share/fish/vendor_completions.d/kelva-helper.fish" || fail "the completion of fish lacks --$option"
  grep -qF -- "\\-\\-$option" "$prefix/share/man/man1/kelva-helper.1" || fail "the helper's page lacks --$option"
done
# shellcheck disable=SC2016 # the words belong to the other shell
offered=$(bash --norc -c '. "$1"; COMP_WORDS=(kelva-helper --v) COMP_CWORD=1; _kelva_helper; echo "${COMPREPLY[*]}"' \
  bash "$prefix/share/bash-completion/completions/kelva-helper")
[ "$offered" = "--virtual --version" ] || fail "bash offers \"$offered\" for --v"
echo "passed"
