#!/bin/sh
# kelva-vcam as a person uses it: every verb, its words, its exit codes, and the end by signal.
#   program.sh KELVA_VCAM
set -eu
vcam=$1
work=$(mktemp -d)
server=
cleanup() {
  [ -z "$server" ] || kill "$server" 2>/dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT
socket=$work/bus
mkdir "$work/card"

fail() { echo "FAILED: $*" >&2; exit 1; }

# expect CODE TEXT ARGUMENT...: kelva-vcam ends with this code and says this text.
expect() {
  code=$1 text=$2
  shift 2
  got=0
  "$vcam" "$@" >"$work/out" 2>"$work/err" || got=$?
  [ "$got" = "$code" ] || fail "kelva-vcam $*: exit code $got instead of $code: $(cat "$work/out" "$work/err")"
  cat "$work/out" "$work/err" | grep -qF -- "$text" || fail "kelva-vcam $*: no '$text' in: $(cat "$work/out" "$work/err")"
  if [ "$code" != 0 ]; then
    [ ! -s "$work/out" ] || fail "kelva-vcam $*: an error on standard output"
    [ "$(wc -l <"$work/err")" = 1 ] || fail "kelva-vcam $*: more than one line: $(cat "$work/err")"
  fi
}

# start: serves the bus and waits for its line.
start() {
  mkfifo "$work/ready"
  "$vcam" serve --socket "$socket" >"$work/ready" &
  server=$!
  read -r line <"$work/ready"
  rm "$work/ready"
  [ "$line" = "Serving virtual cameras at $socket." ] || fail "serve said: $line"
}

# stop SIGNAL: ends the bus, which ends well and removes its socket.
stop() {
  kill "-$1" "$server"
  got=0
  wait "$server" || got=$?
  server=
  [ "$got" = 0 ] || fail "serve ended with $got after SIG$1"
  [ ! -e "$socket" ] || fail "serve left its socket after SIG$1"
}

expect 0 "kelva-vcam " --version
for verb in serve plug unplug status fault; do expect 0 "--socket" "$verb" --help; done
expect 2 "subcommand is required" 
expect 2 "There is no command frob; see" frob
expect 2 "There is no command " ""
expect 2 "--socket is required" status
expect 2 "see \`kelva-vcam --help\`" plug --socket "$socket" --serial K --storage "$work/card" --type 32
expect 1 "start one with" status --socket "$socket"

start
expect 1 "another process serves it already" serve --socket "$socket"
expect 0 "No camera is plugged in." status --socket "$socket"
expect 0 "Plugged in K100" plug --socket "$socket" --serial K100 --storage "$work/card" --revision Q42 --type 5
expect 1 "plugged in already" plug --socket "$socket" --serial K100 --storage "$work/card"
expect 1 "There is no folder" plug --socket "$socket" --serial K200 --storage "$work/none"
expect 1 "catalogue layout odd" plug --socket "$socket" --serial K200 --storage "$work/card" --catalogue odd
expect 0 "K100  revision Q42, type 5, free" status --socket "$socket"
expect 0 '"serial": "K100"' status --socket "$socket" --json
expect 0 "Armed fail on K100." fault --socket "$socket" K100 fail 3
expect 0 "Armed none on K100." fault --socket "$socket" K100 none
expect 1 "There is no fault boo" fault --socket "$socket" K100 boo
expect 3 "No camera K999" fault --socket "$socket" K999 fail
expect 3 "No camera K999" unplug --socket "$socket" K999
expect 0 "Unplugged K100." unplug --socket "$socket" K100
expect 3 "No camera K100" unplug --socket "$socket" K100
stop TERM

# A bus that died leaves a socket that nobody serves; the next one takes its place.
start
kill -KILL "$server"
wait "$server" || true
server=
[ -e "$socket" ] || fail "a killed bus has removed its socket"
start
stop INT

# What cannot be a USB camera is refused before anything is offered; whether it can be attached, a real kernel tells.
usbip() {
  code=$1 text=$2
  shift 2
  expect "$code" "$text" usbip --port 0 --serial K300 "$@"
}
usbip 2 "--speed: full not in {high,super}" --storage "$work/card" --speed full
usbip 2 "--type: Value 32 not in range" --storage "$work/card" --type 32
usbip 2 "--catalogue: odd not in {standard,reordered,unknown-fields,wide}" --storage "$work/card" --catalogue odd
usbip 1 "There is no fault boo" --storage "$work/card" --fault short@2 --fault boo
usbip 1 "comes at a positive number" --storage "$work/card" --fault short@0
usbip 1 "Cannot use $work/none as the camera's storage" --storage "$work/none"
usbip 2 "--storage is required"
expect 2 "--serial is required" usbip --storage "$work/card"
expect 2 "too long" usbip --storage "$work/card" --serial "$(printf '%0200d' 0)"

mkfifo "$work/ready"
"$vcam" usbip --port 0 --serial K300 --storage "$work/card" --speed super --catalogue wide --fault short@2 >"$work/ready" &
server=$!
read -r line <"$work/ready"
rm "$work/ready"
kill "$server"
wait "$server" || fail "usbip ended with $? after SIGTERM"
server=
[ "${line#Offering camera K300; plug it in with: usbip --tcp-port }" != "$line" ] || fail "usbip said: $line"

: >"$work/file"
expect 1 "a file of that name exists" serve --socket "$work/file"
echo "all as expected"
