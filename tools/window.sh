# shellcheck shell=bash
# The window of ./run, with a person before it or on a screen that nobody sees. Needs say.sh and demonstration.sh.
root=${root:?the folder of the repository}
build=${build:?the build folder}
scratch=${scratch:-}  # made later

# Whether somebody can see the window and close it.
has_person() {
  [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ] && [ -t 1 ]
}

# A screen, a session bus, and the accessibility interface, through which the window's buttons are pressed.
start_screen() {
  mkdir "$scratch/screen"
  Xvfb -noreset -screen 0 1000x720x24 -fbdir "$scratch/screen" -displayfd 5 5>"$scratch/display" >"$scratch/screen.log" 2>&1 &
  started+=($!)
  dbus-daemon --session --nofork --nopidfile --print-address=5 5>"$scratch/bus-address" >"$scratch/bus-of-session.log" 2>&1 &
  started+=($!)
  wait_for 20 test -s "$scratch/display" || die 1 "the screen did not start: $(cat "$scratch/screen.log")"
  wait_for 20 test -s "$scratch/bus-address" || die 1 "the session bus did not start: $(cat "$scratch/bus-of-session.log")"
  DISPLAY=":$(cat "$scratch/display")"
  DBUS_SESSION_BUS_ADDRESS=$(cat "$scratch/bus-address")
  export DISPLAY DBUS_SESSION_BUS_ADDRESS QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1 QT_ACCESSIBILITY=1
  unset WAYLAND_DISPLAY QT_QPA_PLATFORM XAUTHORITY
}

# Until the person closes the window.
await_close() {
  say "The window is yours: import, look around, and close it to go on. What it imports is removed at the end."
  while [ ! -e "$scratch/finished" ]; do sleep 0.2; done
  expect_end
}

expect_end() {
  [ "$(cat "$scratch/finished")" = 0 ] || die 1 "the window ended with $(cat "$scratch/finished"): $(cat "$scratch/window.log")"
}

# For a demonstration that ends before its window does.
end_window() {
  [ -e "$scratch/launched" ] && [ ! -e "$scratch/finished" ] || return 0
  xargs kill <"$scratch/launched" 2>/dev/null || true
}

# Imports the pictures by the button of the window, and compares them with those of the camera.
use_window() {
  local shot=$build/run.png python=python3
  # The accessibility interface comes with Debian's own Python.
  [ ! -x /usr/bin/python3 ] || python=/usr/bin/python3
  KELVA_TEST_SESSION="$scratch/screen" XDG_RUNTIME_DIR="$scratch/runtime" "$python" -B "$root/tools/press_import.py" "$shot" \
    2>"$scratch/press.log" || die 1 "the window could not be used: $(tail -n 3 "$scratch/press.log") $(cat "$scratch/window.log")"
  expect_fetched_of_camera "$scratch/home/Pictures"
  say "The $(find "$scratch/home/Pictures" -type f ! -path '*/.*' | wc -l) imported files are equal to the camera's, byte for byte."
  wait_for 20 test -e "$scratch/finished" || die 1 "the window did not close."
  expect_end
  say "The window as it was: $shot"
}
