# shellcheck shell=bash
# What ./run shows. Needs say.sh, packages.sh and build.sh. $build is the build folder whose programs are shown.
root=${root:?the folder of the repository}
build=${build:-$root/build/quick}
bin="$build/bin"
first=KV-0001
second=KV-0002

# absolute_folder FOLDER: its full path, or the end with one sentence.
absolute_folder() {
  [ -e "$1" ] || die 1 "there is no folder \"$1\"; name one that holds JPEG files."
  [ -d "$1" ] || die 1 "\"$1\" is not a folder; name one that holds JPEG files."
  { [ -r "$1" ] && [ -x "$1" ] && cd "$1" 2>/dev/null && pwd; } ||
    die 1 "the folder \"$1\" cannot be read; change its permissions or name another."
}

# pictures_of FOLDER: the JPEG files that lie in it, each ended by a NUL.
pictures_of() {
  find "$1" -maxdepth 1 -type f \( -iname '*.jpg' -o -iname '*.jpeg' \) -print0
}

# need_pictures FOLDER: before anything is built, which takes a minute the first time.
need_pictures() {
  [ "$(pictures_of "$1" | head -c 1 | wc -c)" != 0 ] ||
    die 1 "there is no JPEG file (*.jpg, *.jpeg) in \"$1\"; name a folder that holds some."
}

run_on_macos() {
  [ "$1" = system ] || die 1 "the virtual cameras are built on Linux only; ./run --system starts the helper on this Mac's own cameras."
  need_packages build
  build_preset dev KelvaHelper
  say "Starting KelvaHelper.app; plug a camera in. Ctrl-C ends it."
  exec "$root/build/dev/bin/KelvaHelper.app/Contents/MacOS/KelvaHelper"
}

run_on_system() {
  build_preset quick kelva kelva-helper kelva-open
  say "Starting the helper on this machine's own cameras: each one plugged in from now on starts $(desktop_id). Ctrl-C ends it."
  exec "$bin/kelva-helper"
}

desktop_id() {
  sed -n 's/^KELVA_DESKTOP_ID:[A-Z]*=//p' "$build/CMakeCache.txt"
}

# demonstrate FOLDER: the main job with virtual cameras. FOLDER may be empty.
demonstrate() {
  build_preset quick kelva kelva-vcam kelva-helper kelva-open draw-pictures
  scratch=$(mktemp -d "${TMPDIR:-/tmp}/kelva-run.XXXXXX")
  socket="$scratch/bus"
  started=()
  trap clean_up EXIT
  trap 'exit 130' INT TERM
  prepare_storage "$1"
  prepare_desktop
  start_bus
  plug "$first" "It is there before the helper starts."
  start_helper
  expect_no_launch
  plug "$second" "The helper is told by the bus."
  expect_launch
  stop_helper
  say "Done: the second camera started the application, the first did not."
}

clean_up() {
  local process
  for process in ${started[@]+"${started[@]}"}; do
    kill "$process" 2>/dev/null || true
    wait "$process" 2>/dev/null || true
  done
  rm -rf "$scratch"
}

# wait_for SECONDS COMMAND...: until the command succeeds.
wait_for() {
  local turns=$(($1 * 20))
  shift
  until "$@" >/dev/null 2>&1; do
    turns=$((turns - 1))
    [ "$turns" -gt 0 ] || return 1
    sleep 0.05
  done
}

# The storage of both cameras: the pictures, named and placed as a camera does.
prepare_storage() {
  local pictures="$scratch/storage/DCIM/100KELVA" picture reason count=0
  if [ -z "$1" ]; then
    "$bin/draw-pictures" "$scratch/storage" || die 1 "the pictures could not be drawn; the reason is above."
    say "Drew 4 pictures: they are the storage of two virtual cameras."
    return
  fi
  mkdir -p "$pictures"
  while IFS= read -r -d '' picture; do
    count=$((count + 1))
    reason=$(cp "$picture" "$pictures/$(printf 'IMG_%04d.JPG' "$count")" 2>&1) ||
      die 1 "\"$picture\" cannot be copied (${reason##*: }); change its permissions or name another folder."
    [ "$count" -lt 50 ] || break
  done < <(pictures_of "$1" | sort -z)
  say "Took $count pictures of $1 (no more than 50): they are the storage of two virtual cameras."
}

# A desktop of our own: folders that nothing else looks into, and the stand-in for the desktop application.
prepare_desktop() {
  mkdir -p "$scratch/data/applications" "$scratch/runtime" "$scratch/fetched"
  chmod 700 "$scratch/runtime"
  cat >"$scratch/data/applications/$(desktop_id).desktop" <<END
[Desktop Entry]
Type=Application
Name=Stand-in for the desktop application
Exec="$root/tools/stand-in.sh" "$bin/kelva" "$socket" $second "$scratch"
END
}

start_bus() {
  "$bin/kelva-vcam" serve --socket "$socket" >"$scratch/bus.log" 2>&1 &
  started+=($!)
  wait_for 10 "$bin/kelva-vcam" status --socket "$socket" ||
    die 1 "the bus of virtual cameras did not start: $(cat "$scratch/bus.log")"
  say "Started a bus of virtual cameras (kelva-vcam serve). Nothing is plugged in."
}

# plug SERIAL REASON
plug() {
  "$bin/kelva-vcam" plug --socket "$socket" --serial "$1" --storage "$scratch/storage" >"$scratch/plug.log" 2>&1 ||
    die 1 "camera $1 could not be plugged in: $(cat "$scratch/plug.log")"
  say "Plugged in camera $1. $2"
}

start_helper() {
  env XDG_DATA_HOME="$scratch/data" XDG_RUNTIME_DIR="$scratch/runtime" \
    "$bin/kelva-helper" --virtual "$socket" >"$scratch/helper.log" 2>&1 &
  helper=$!
  started+=("$helper")
  wait_for 10 grep -q . "$scratch/helper.log" || die 1 "the helper did not start: $(cat "$scratch/helper.log")"
  say "Started the helper: $(head -n 1 "$scratch/helper.log")"
}

expect_no_launch() {
  [ ! -e "$scratch/launched" ] || die 1 "the helper started the application for camera $first, which was there already."
  say "Nothing was launched: camera $first was there already, and only an arrival launches."
}

expect_launch() {
  wait_for 20 test -e "$scratch/finished" ||
    die 1 "the application was not started within 20 s; the helper said: $(cat "$scratch/helper.log")"
  cat "$scratch/said"
  [ "$(cat "$scratch/finished")" = 0 ] || die 1 "the stand-in failed; its words are above."
  diff -r "$scratch/storage/DCIM" "$scratch/fetched/DCIM" >&2 ||
    die 1 "the fetched pictures differ from those on the camera."
  say "The fetched pictures are equal to the camera's, byte for byte."
}

stop_helper() {
  local outcome=0
  kill "$helper"
  wait "$helper" || outcome=$?
  [ "$outcome" = 0 ] || die 1 "the helper ended with $outcome instead of 0: $(cat "$scratch/helper.log")"
  [ "$(wc -l <"$scratch/launched")" = 1 ] || die 1 "the application was started more than once."
  say "Ended the helper (SIGTERM); its exit code is 0."
}
