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
for verb in serve plug unplug status fault; do
  expect 0 "--virtual PATH" "$verb" --help
  expect 0 "--socket" "$verb" --help
done
expect 0 "Usage: kelva-vcam COMMAND" --help
if [ "${2:-}" = usbip ]; then
  expect 0 "Usage: kelva-vcam usbip --serial SERIAL --storage FOLDER" usbip -h
else
  expect 2 "There is no command \"usbip\"" usbip -h
fi
expect 2 "No command was given; \`kelva-vcam help\` lists all."
expect 2 "There is no command \"frob\"; \`kelva-vcam help\` lists all." frob
expect 2 "There is no command " ""
expect 2 "needs --virtual PATH; \`kelva-vcam help status\`" status
expect 2 "There is no option --frob of \`kelva-vcam status\`" status --frob
expect 2 '"32" is not a SCSI peripheral type' plug --socket "$socket" --serial K --storage "$work/card" --type 32
expect 1 "start one with" status --socket "$socket"

start
expect 1 "another process serves it already" serve --socket "$socket"
expect 0 "No camera is plugged in." status --socket "$socket"
expect 0 "Plugged in K100" plug --socket "$socket" --serial K100 --storage "$work/card" --revision Q42 --type 5
expect 1 "plugged in already" plug --socket "$socket" --serial K100 --storage "$work/card"
expect 1 "There is no folder" plug --socket "$socket" --serial K200 --storage "$work/none"
expect 1 "catalogue layout odd" plug --socket "$socket" --serial K200 --storage "$work/card" --catalogue odd
expect 2 "a seed" plug --socket "$socket" --serial K300 --storage "$work/card" --opaque many
expect 0 "Plugged in K300" plug --socket "$socket" --serial K300 --storage "$work/card" --forward-only --no-keys --opaque 7
expect 0 "Unplugged K300." unplug --socket "$socket" K300
expect 0 "K100  revision Q42, type 5, free" status --socket "$socket"
expect 0 "K100  revision Q42" status --virtual "$socket"
expect 0 '{"schema":1,"command":"status","exit":0,"ok":true,"cameras":[{"serial":"K100","vendor":"Kelva","product":"Camera","revision":"Q42","type":5,"storage":"'"$work"'/card","holder":null,"commands":0}]}' status --socket "$socket" --json
expect 0 "Armed fail on K100." fault --socket "$socket" K100 fail 3
expect 0 "Armed none on K100." fault --socket "$socket" K100 none
expect 0 "Armed fail on K100." fault --virtual "$socket" --serial K100 fail
expect 0 "Armed slow on K100." fault --virtual "$socket" slow 5 --serial K100
expect 0 '"exit":0,"ok":true,"serial":"K100","name":"none","at":1}' fault --virtual "$socket" --serial K100 none --json
expect 1 "There is no fault boo" fault --socket "$socket" K100 boo
expect 2 "needs --serial SERIAL and NAME" fault --socket "$socket" fail
expect 2 "\`kelva-vcam fault\` needs NAME" fault --socket "$socket" --serial K100
expect 2 "needs --serial SERIAL and NAME" fault --socket "$socket" --serial K100 K100 fail 3
expect 2 '"x" is not AT' fault --socket "$socket" K100 fail x
expect 3 "No camera K999" fault --socket "$socket" K999 fail
expect 3 "No camera K999" unplug --socket "$socket" K999
expect 0 "Unplugged K100." unplug --socket "$socket" K100
expect 3 "No camera K100" unplug --socket "$socket" K100
expect 3 "No camera K100" unplug --virtual "$socket" --serial K100
expect 2 "needs one --serial SERIAL" unplug --virtual "$socket"
expect 2 "needs one --serial SERIAL" unplug --virtual "$socket" --serial K100 K200
expect 0 '"command":"plug","exit":0,"ok":true,"serial":"K100","storage":"'"$work"'/card"}' plug --json --virtual "$socket" --serial K100 --storage "$work/card"
expect 0 '{"schema":1,"command":"unplug","exit":0,"ok":true,"serial":"K100"}' unplug --virtual "$socket" --serial K100 --json

# Pictures that a camera would not find are named when their folder is plugged in; a camera's own folders are not.
mkdir -p "$work/plain/more" "$work/good/DCIM/100ABCDE"
: >"$work/plain/a.JPG"
: >"$work/plain/more/b.jpeg"
: >"$work/plain/more/notes.txt"
: >"$work/good/DCIM/100ABCDE/IMG_0001.JPG"
: >"$work/good/c.jpg"
expect 0 "kelva-vcam: The camera has no picture: 2 JPEG files lie elsewhere in the folder" plug --virtual "$socket" --serial K1 --storage "$work/plain"
expect 0 '{"schema":1,"event":"note","message":"The camera has no picture: 2 JPEG' plug --virtual "$socket" --serial K2 --storage "$work/plain" --json
for plain in good card; do
  expect 0 "Plugged in" plug --virtual "$socket" --serial "$plain" --storage "$work/$plain"
  [ ! -s "$work/err" ] || fail "a note about $plain: $(cat "$work/err")"
done
stop TERM

# A bus that died leaves a socket that nobody serves; the next one takes its place.
start
kill -KILL "$server"
wait "$server" || true
server=
[ -e "$socket" ] || fail "a killed bus has removed its socket"
start
stop INT

usbip() {
  code=$1 text=$2
  shift 2
  expect "$code" "$text" usbip --port 0 --serial K300 "$@"
}
# offer ARGUMENT...: offers a camera until it has said so, and counts the private folders for what hosts write.
offer() {
  mkfifo "$work/ready"
  mkdir "$work/temporary"
  TMPDIR=$work/temporary "$vcam" usbip --port 0 --serial K300 --storage "$work/card" "$@" >"$work/ready" &
  server=$!
  read -r line <"$work/ready"
  rm "$work/ready"
  folders=$(find "$work/temporary" -mindepth 1 -maxdepth 1 -name 'kelva-vcam-*' -perm 700 | wc -l)
  kill "$server"
  wait "$server" || fail "usbip ended with $? after SIGTERM"
  server=
  [ "${line#Offering camera K300; plug it in with: usbip --tcp-port }" != "$line" ] || fail "usbip said: $line"
  rmdir "$work/temporary" || fail "usbip left something in TMPDIR"
}

# What cannot be a USB camera is refused before anything is offered; whether it can be attached, a real kernel tells.
if [ "${2:-}" = usbip ]; then
  usbip 2 '--speed is one of high, super, not "full"' --storage "$work/card" --speed full
  usbip 2 '"32" is not a SCSI peripheral type' --storage "$work/card" --type 32
  usbip 2 '--catalogue is one of standard, reordered, unknown-fields, wide, not "odd"' --storage "$work/card" --catalogue odd
  usbip 1 "There is no fault boo" --storage "$work/card" --fault short@2 --fault boo
  usbip 1 "comes at a positive number" --storage "$work/card" --fault short@0
  usbip 1 "Cannot use $work/none as the camera's storage" --storage "$work/none"
  usbip 2 "needs --storage FOLDER"
  expect 2 "needs --serial SERIAL" usbip --storage "$work/card"
  expect 2 "too long" usbip --storage "$work/card" --serial "$(printf '%0200d' 0)"
  expect 2 '"65536" is not a port' usbip --storage "$work/card" --serial K --port 65536
  offer --speed super --catalogue wide --forward-only --no-keys --opaque 7 --fault short@2
  [ "$folders" = 1 ] || fail "what hosts write is not kept apart: $folders private folders"
  offer --writable
  [ "$folders" = 0 ] || fail "--writable has $folders private folders"
fi

: >"$work/file"
expect 1 "a file of that name exists" serve --socket "$work/file"

# With --json a failure is a document with the schema's number too, and every event of serve is one.
got=0
"$vcam" status --virtual "$work/none" --json >"$work/out" 2>"$work/err" || got=$?
[ "$got" = 1 ] || fail "status --json of no bus ended with $got"
grep -qF '{"schema":1,"command":"status","exit":1,"ok":false,"reason":"failed","error":"Cannot reach a bus at ' "$work/out" ||
  fail "status --json said: $(cat "$work/out")"
mkfifo "$work/ready"
"$vcam" serve --json --virtual "$socket" >"$work/ready" &
server=$!
exec 3<"$work/ready"
rm "$work/ready"
read -r line <&3
[ "$line" = '{"schema":1,"event":"serving","path":"'"$socket"'"}' ] || fail "serve --json said: $line"
stop TERM
read -r line <&3
[ "$line" = '{"schema":1,"command":"serve","exit":0,"ok":true}' ] || fail "serve --json ended with: $line"
exec 3<&-

# The manual and the completions come from the same table; the serial numbers on offer come from the bus.
expect 0 '.TH KELVA\-VCAM 1 ' manual
for shell in bash zsh fish; do expect 0 "kelva-vcam __complete $shell" completion "$shell"; done
start
expect 0 "Plugged in K100" plug --virtual "$socket" --serial K100 --storage "$work/card"
expect 0 "K100" __complete bash unplug --virtual "$socket" --serial ""
expect 0 "K100" __complete bash unplug --virtual "$socket" ""
expect 0 "wrong-count" __complete bash fault --virtual "$socket" K100 wr
[ -z "$("$vcam" __complete bash unplug --virtual "$work/none" "" 2>&1)" ] || fail "a bus that is not there offered something"
stop TERM
echo "all as expected"
