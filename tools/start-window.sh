#!/usr/bin/env bash
# The desktop application of ./run: the window, on the virtual bus, and a note of its start and its end.
# Usage: start-window.sh KELVA_DESKTOP SOCKET SCRATCH
set -uo pipefail
"$1" --virtual "$2" >"$3/window.log" 2>&1 &
echo $! >>"$3/launched"
wait $!
outcome=$?
# Under its name at once: whoever waits for the file reads it.
echo "$outcome" >"$3/finished.new"
mv "$3/finished.new" "$3/finished"
