# shellcheck shell=bash
# What ./run shows. Needs say.sh, packages.sh, build.sh and window.sh. $build is the build folder whose programs are shown.
root=${root:?the folder of the repository}
build=${build:-$root/build/quick}
bin="$build/bin"
first=KV-0001
second=KV-0002
# What both demonstrations and --stay build.
programs=(kelva kelva-vcam draw-pictures)
if [ "$(uname -s)" = Darwin ]; then programs+=(kelva-virtual); else programs+=(kelva-helper kelva-open kelva-desktop kelva-desktop-worker kelva-thumbnail); fi

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

# files_of_card FOLDER: the files of a camera's card, as DCIM/100ABCDE/IMG_0001.JPG, each ended by a NUL. A camera knows no links.
files_of_card() {
  [ ! -d "$1/DCIM" ] || (cd "$1" && find DCIM -mindepth 2 -maxdepth 2 -type f -path 'DCIM/[1-9][0-9][0-9]*/*' -print0 | sort -z)
}

is_card() {
  [ "$(files_of_card "$1" | head -c 1 | wc -c)" != 0 ]
}

# need_pictures FOLDER: before anything is built, which takes a minute the first time.
need_pictures() {
  is_card "$1" || [ "$(pictures_of "$1" | head -c 1 | wc -c)" != 0 ] ||
    die 1 "there is no JPEG file (*.jpg, *.jpeg) in \"$1\", and no DCIM/100ABCDE/IMG_0001.JPG as on a camera's card; name a folder that holds some."
}

# run_on_macos MODE FOLDER: as on Linux, but that the helper of a Mac asks the frameworks, which know no virtual camera.
run_on_macos() {
  need_packages build
  case $1 in
    system) run_helper_on_macos ;;
    stay) stay "$2" ;;
    virtual) demonstrate_tool "$2" ;;
  esac
}

run_helper_on_macos() {
  build_preset dev KelvaHelper
  say "Starting KelvaHelper.app; plug a camera in. Ctrl-C ends it."
  exec "$root/build/dev/bin/KelvaHelper.app/Contents/MacOS/KelvaHelper"
}

run_on_system() {
  build_preset quick kelva kelva-helper kelva-open kelva-mount kelva-thumbnail
  say "Starting the helper on this machine's own cameras: each one plugged in from now on starts $(desktop_id). Ctrl-C ends it."
  exec "$bin/kelva-helper"
}

desktop_id() {
  sed -n 's/^KELVA_DESKTOP_ID:[A-Z]*=//p' "$build/CMakeCache.txt"
}

# demonstrate FOLDER: the main job with virtual cameras. FOLDER may be empty. The window stays where a person sits before it;
# otherwise it is used as a screen reader does, on a screen that nobody sees.
demonstrate() {
  build_preset quick "${programs[@]}"
  make_scratch
  trap clean_up EXIT
  trap 'exit 130' INT TERM
  prepare_storage "$1"
  prepare_desktop
  has_person || start_screen
  start_bus
  plug "$first" "It is there before the helper starts."
  start_helper
  expect_no_launch
  plug "$second" "The helper is told by the bus."
  expect_launch
  if has_person; then await_close; else use_window; fi
  stop_helper
  say "Done: the second camera started the application, the first did not."
}

# demonstrate_tool FOLDER: the tool fetches the pictures of a virtual camera. FOLDER may be empty.
demonstrate_tool() {
  build_preset quick "${programs[@]}"
  make_scratch
  trap clean_up EXIT
  trap 'exit 130' INT TERM
  prepare_storage "$1"
  start_bus
  plug "$first" "The tool sees it through the bus."
  "$bin/kelva" --virtual "$socket" list || die 1 "the tool did not find the camera; its words are above."
  mkdir "$scratch/fetched"
  "$bin/kelva" --virtual "$socket" sync "$scratch/fetched" || die 1 "the pictures could not be fetched; the reason is above."
  expect_fetched_of_camera "$scratch/fetched"
  say "Done: the tool fetched the pictures of camera $first, byte for byte."
}

make_scratch() {
  scratch=$(mktemp -d "${TMPDIR:-/tmp}/kelva-run.XXXXXX")
  socket="$scratch/bus"
  started=()
}

clean_up() {
  local process
  end_window
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

# The storage of the cameras: a card as it is, or pictures that are named and placed as a camera does.
prepare_storage() {
  storage="$scratch/storage"
  if [ -z "$1" ]; then
    "$bin/draw-pictures" "$storage" || die 1 "the pictures could not be drawn; the reason is above."
    say "Drew 12 pictures: they are the storage of the virtual cameras."
  elif is_card "$1"; then
    storage=$1
    say "Took $1 as it is, with $(files_of_card "$1" | tr -dc '\0' | wc -c) files: it is the storage of the virtual cameras. Nothing in it is changed."
  else
    copy_pictures "$1"
  fi
}

copy_pictures() {
  local pictures="$storage/DCIM/100KELVA" picture reason count=0
  mkdir -p "$pictures"
  while IFS= read -r -d '' picture; do
    count=$((count + 1))
    reason=$(cp "$picture" "$pictures/$(printf 'IMG_%04d.JPG' "$count")" 2>&1) ||
      die 1 "\"$picture\" cannot be copied (${reason##*: }); change its permissions or name another folder."
    [ "$count" -lt 50 ] || break
  done < <(pictures_of "$1" | sort -z)
  say "Took $count pictures of $1 (no more than 50): they are the storage of the virtual cameras."
}

# A home and a desktop of our own, with the window as the desktop application: nobody's settings and pictures are touched.
prepare_desktop() {
  mkdir -p "$scratch/home" "$scratch/data/applications" "$scratch/runtime"
  chmod 700 "$scratch/runtime"
  cat >"$scratch/data/applications/$(desktop_id).desktop" <<END
[Desktop Entry]
Type=Application
Name=Kelva
Exec="$root/tools/start-window.sh" "$bin/kelva-desktop" "$socket" "$scratch"
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
  "$bin/kelva-vcam" plug --socket "$socket" --serial "$1" --storage "$storage" >"$scratch/plug.log" 2>&1 ||
    die 1 "camera $1 could not be plugged in: $(cat "$scratch/plug.log")"
  say "Plugged in camera $1. $2"
}

start_helper() {
  env HOME="$scratch/home" XAUTHORITY="${XAUTHORITY:-$HOME/.Xauthority}" XDG_CONFIG_HOME="$scratch/config" \
    XDG_DATA_HOME="$scratch/data" XDG_RUNTIME_DIR="$scratch/runtime" \
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
  wait_for 20 test -s "$scratch/launched" ||
    die 1 "the application was not started within 20 s; the helper said: $(cat "$scratch/helper.log")"
  say "The helper started the desktop application, because camera $second was plugged in."
}

# checksums FOLDER: of its files, without names, as a tool may name them anew; hidden ones are the tool's own.
checksums() {
  find "$1" -type f ! -path '*/.*' -exec cksum {} + | cut -d ' ' -f 1,2 | sort -u
}

# expect_fetched_of_camera FOLDER
expect_fetched_of_camera() {
  local fetched
  fetched=$(cd "$1" && checksums .)
  [ -n "$fetched" ] || die 1 "no picture was fetched."
  [ -z "$(comm -23 <(printf '%s\n' "$fetched") <(cd "$storage" && checksums DCIM))" ] ||
    die 1 "the fetched pictures differ from those on the camera."
}

stop_helper() {
  local outcome=0
  kill "$helper"
  wait "$helper" || outcome=$?
  [ "$outcome" = 0 ] || die 1 "the helper ended with $outcome instead of 0: $(cat "$scratch/helper.log")"
  [ "$(wc -l <"$scratch/launched")" = 1 ] || die 1 "the application was started more than once."
  say "Ended the helper (SIGTERM); its exit code is 0."
}

# stay FOLDER: a bus and a camera that go on after this script, and what can be tried with them. FOLDER may be empty.
stay() {
  build_preset quick "${programs[@]}"
  make_scratch
  trap give_up_staying EXIT
  prepare_storage "$1"
  [ "$storage" = "$scratch/storage" ] || copy_card "$storage"
  start_bus_that_stays
  plug "$first" "It is there until you end the bus."
  trap - EXIT
  say_what_to_try
}

give_up_staying() {
  [ ! -e "$scratch/bus.pid" ] || kill "$(cat "$scratch/bus.pid")" 2>/dev/null || true
  rm -rf "$scratch"
}

# copy_card FOLDER: commands that delete shall not reach the pictures of the caller.
copy_card() {
  local needed free
  needed=$(du -sk "$1/DCIM" | cut -f 1)
  free=$(df -Pk "$scratch" | awk 'NR == 2 { print $4 }')
  [ "$needed" -lt "$free" ] ||
    die 1 "the copy of $1 needs $needed KiB, and ${scratch%/*} has $free KiB left; make room, or set TMPDIR to a folder with more."
  storage="$scratch/storage"
  mkdir "$storage"
  cp -R "$1/DCIM" "$storage/" || die 1 "$1 cannot be copied; the reason is above."
  say "Copied it to $storage, so that your own pictures stay whatever you try."
}

# The folder goes when the bus ends.
start_bus_that_stays() {
  # shellcheck disable=SC2016 # the words belong to the inner shell
  nohup bash -c '"$1" serve --virtual "$2/bus" >"$2/bus.log" 2>&1 & echo $! >"$2/bus.pid"; wait; rm -rf "$2"' \
    bus "$bin/kelva-vcam" "$scratch" </dev/null >/dev/null 2>&1 &
  wait_for 10 "$bin/kelva-vcam" status --virtual "$socket" ||
    die 1 "the bus of virtual cameras did not start: $(cat "$scratch/bus.log")"
  say "Started a bus of virtual cameras (kelva-vcam serve); it goes on when this script has ended."
}

say_what_to_try() {
  cat <<END

Try, in this folder or any other:
  export PATH="$bin:\$PATH"
  kelva --virtual $socket list
  kelva --virtual $socket sync ~/Pictures/kelva
  kelva-desktop --virtual $socket
  kelva --virtual $socket pictures --sheet ~/Pictures/kelva/index.html
  kelva-vcam unplug --virtual $socket --serial $first
  kelva-vcam plug --virtual $socket --serial $second --storage $storage

$(say_how_to_launch)
End the bus and remove its folder:
  kill $(cat "$scratch/bus.pid")
END
}

say_how_to_launch() {
  [ "$(uname -s)" != Darwin ] || return 0
  cat <<END
The launcher, with an application of your own (README.md says how to name it); plug a camera in while it runs:
  kelva-helper --virtual $socket

END
}
