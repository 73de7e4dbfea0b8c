#!/bin/sh
# Runs a program with one more argument: a bus of virtual cameras, empty at first. Usage: with_bus.sh PROGRAM [WORDS]
set -eu
folder=$(mktemp -d)
mkfifo "$folder/ready"
kelva-vcam serve --virtual "$folder/bus" >"$folder/ready" &
trap 'kill $!; rm -rf "$folder"' EXIT
read -r line <"$folder/ready" # says that the bus is ready
echo "$line" >&2
"$@" "$folder/bus"
