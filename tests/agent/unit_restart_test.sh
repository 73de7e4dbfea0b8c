#!/usr/bin/env bash
# The user unit under a real service manager: the application gets a scope of its own and outlives a restart and a stop of
# the agent. So do the process that serves a camera's folder and the program that opens it.
# Usage: unit_restart_test.sh PROGRAMS UNIT
# The manager runs in namespaces of its own (processes, mounts, control groups), so that nothing of the machine's is
# touched and nothing is left behind. That takes root; without it this is skipped (exit code 77).
set -euo pipefail
programs=$(cd "$1" && pwd)
unit=$(realpath "$2")

fail() {
  echo "FAILED: $*" >&2
  [ ! -f "${scratch:-}/agent.log" ] || sed 's/^/agent: /' "$scratch/agent.log" >&2
  exit 1
}

# eventually COMMAND...: true when the command comes true within half a minute.
eventually() {
  local left
  for ((left = 600; left > 0; left--)); do
    if "$@" >/dev/null 2>&1; then return 0; fi
    sleep 0.05
  done
  return 1
}

enter_namespaces() {
  local hierarchy=/sys/fs/cgroup group
  [ -d $hierarchy/systemd ] && hierarchy=$hierarchy/systemd
  group=$hierarchy/kelva-unit-test-$$
  if [ "$(id -u)" != 0 ] || ! mkdir "$group" 2>/dev/null; then
    echo "skipped: starting a service manager of one's own takes root and a writable $hierarchy"
    exit 77
  fi
  scratch=$(mktemp -d)
  # shellcheck disable=SC2064 # the values of now
  trap "rm -rf '$scratch'; find '$group' -depth -type d -exec rmdir {} + 2>/dev/null || true" EXIT
  KELVA_SCRATCH=$scratch KELVA_GROUPS=$hierarchy:$group sh -c 'echo $$ >"$1/cgroup.procs" && shift && exec "$@"' \
    sh "$group" unshare --mount --pid --cgroup --fork --kill-child --mount-proc "$0" "$programs" "$unit"
}

# Everything that the manager and the agent see of a session.
prepare_session() {
  # The manager takes the root of the hierarchy for its own.
  mount --bind "${KELVA_GROUPS#*:}" "${KELVA_GROUPS%%:*}"
  mount -t tmpfs none /run
  mkdir -p /run/systemd/system /run/user/0 "$scratch"/{config/systemd/user,data/applications,card/DCIM,programs}
  export HOME=$scratch XDG_RUNTIME_DIR=/run/user/0 XDG_CONFIG_HOME=$scratch/config
  export XDG_DATA_HOME=$scratch/data XDG_DATA_DIRS=$scratch/data
  export DBUS_SESSION_BUS_ADDRESS=unix:path=/run/user/0/bus
  sed -e "s|^ExecStart=.*|ExecStart=$scratch/programs/kelva-helper --virtual $scratch/bus|" \
    -e "/^\[Service\]/aStandardOutput=append:$scratch/agent.log\nStandardError=append:$scratch/agent.log" \
    "$unit" >"$XDG_CONFIG_HOME/systemd/user/kelva-helper.service"
  mkfifo "$scratch/launched" "$scratch/gate"
  cat >"$scratch/application.sh" <<END
#!/bin/sh
echo "\$\$ \$(grep -o '[^/]*\.scope' /proc/self/cgroup | head -n 1)" >$scratch/launched
touch $scratch/told
read -r line <$scratch/gate
END
  chmod +x "$scratch/application.sh"
  install_entry com.kelva.Desktop
  install_stand_in_of_folders
}

# install_entry NAME
install_entry() {
  printf '[Desktop Entry]\nType=Application\nName=Stand-in\nExec=%s %%U\n' "$scratch/application.sh" >"$XDG_DATA_HOME/applications/$1.desktop"
}

# A kelva-mount whose folder is served by a process that stays, and tells of itself before the folder is opened.
install_stand_in_of_folders() {
  cp "$programs/kelva-helper" "$programs/kelva-open" "$scratch/programs/"
  cat >"$scratch/programs/kelva-mount" <<END
#!/bin/sh
rm -f $scratch/told
$scratch/application.sh >/dev/null 2>&1 &
until [ -e $scratch/told ]; do sleep 0.01; done
echo '{"event":"mounted","path":"/a","serial":"KV0003","was_mounted":false}'
END
  chmod +x "$scratch/programs/kelva-mount"
}

start_manager() {
  dbus-daemon --session --address="$DBUS_SESSION_BUS_ADDRESS" --fork --nopidfile
  /lib/systemd/systemd --user --log-target=console --log-level=warning >"$scratch/manager.log" 2>&1 &
  eventually busctl --user status org.freedesktop.systemd1 || fail "the service manager did not start: $(cat "$scratch/manager.log")"
  "$programs/kelva-vcam" serve --socket "$scratch/bus" >/dev/null &
  eventually test -S "$scratch/bus" || fail "the virtual bus did not start"
}

# watching TIMES: the agent has said so often that it watches.
watching() {
  [ "$(grep -c Watching "$scratch/agent.log")" = "$1" ]
}

# plug SERIAL: sets process and scope of the application that this launches.
plug() {
  "$programs/kelva-vcam" plug --socket "$scratch/bus" --serial "$1" --storage "$scratch/card" >/dev/null
  launched "$1"
}

# launched SERIAL: sets process and scope of the next one that was launched.
launched() {
  read -r -t 60 process scope <&3 || fail "$1 launched nothing"
}

run_inside() {
  scratch=$KELVA_SCRATCH
  prepare_session
  start_manager
  exec 3<>"$scratch/launched" 4<>"$scratch/gate"

  systemctl --user start kelva-helper.service
  eventually watching 1 || fail "the agent did not start"
  plug KV0001
  case $scope in
    app-kelva-com.kelva.Desktop-*.scope) echo "the application runs in $scope" ;;
    *) fail "the application runs in \"$scope\" and not in a scope of its own" ;;
  esac

  local first=$process
  systemctl --user restart kelva-helper.service
  eventually watching 2 || fail "the agent did not come back"
  kill -0 "$first" || fail "restarting the agent ended the application"
  echo "the application outlives a restart of the agent"

  plug KV0002
  [ "$process" != "$first" ] || fail "the restarted agent launched nothing new"
  echo "the restarted agent launches"

  local application=$process folder
  rm "$XDG_DATA_HOME/applications/com.kelva.Desktop.desktop"
  install_entry org.example.Viewer
  printf '[Default Applications]\nx-content/image-dcf=org.example.Viewer.desktop\n' >"$XDG_CONFIG_HOME/mimeapps.list"
  plug KV0003
  case $scope in
    'app-kelva-kelva\x2dmount-'*.scope) echo "a folder is served from $scope" ;;
    *) fail "a folder is served from \"$scope\" and not from a scope of its own" ;;
  esac
  folder=$process
  launched KV0003
  case $scope in
    app-kelva-org.example.Viewer-*.scope) echo "and opened in $scope" ;;
    *) fail "the program that opens a folder runs in \"$scope\" and not in a scope of its own" ;;
  esac

  systemctl --user stop kelva-helper.service
  kill -0 "$folder" || fail "stopping the agent ended the process that serves a folder"
  kill -0 "$process" || fail "stopping the agent ended the program that opened it"
  kill -0 "$first" || fail "stopping the agent ended the first application"
  kill -0 "$application" || fail "stopping the agent ended the second application"
  [ "$(systemctl --user show -P Result kelva-helper.service)" = success ] || fail "the agent did not end well"
  echo "all outlive its end"
}

if [ -z "${KELVA_SCRATCH:-}" ]; then
  enter_namespaces
else
  run_inside
fi
