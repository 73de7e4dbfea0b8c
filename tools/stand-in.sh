#!/usr/bin/env bash
# Stands in for the desktop application in ./run: fetches the camera's pictures, at most 50, and says so.
# Usage: stand-in.sh KELVA SOCKET SERIAL SCRATCH STORAGE
set -uo pipefail
kelva=$1
socket=$2
serial=$3
scratch=$4
storage=$5

fetch_all() {
  local file folder
  while IFS= read -r -d '' file; do
    folder=$(dirname "$file")
    mkdir -p "$scratch/fetched/$folder"
    "$kelva" get --virtual "$socket" --serial "$serial" --quiet --into "$scratch/fetched/$folder" "I:/$file" || return
    printf '  fetched %s (%s bytes) with kelva get\n' "${file##*/}" "$(wc -c <"$scratch/fetched/$file")"
  done < <(cd "$storage" && find DCIM -mindepth 2 -maxdepth 2 -type f -print0 | sort -z | head -z -n 50)
}

echo started >>"$scratch/launched"
{
  echo "The helper started the desktop application (a stand-in), because camera $serial was plugged in:"
  fetch_all
  outcome=$?
} >"$scratch/said" 2>&1
# Under its name at once: whoever waits for the file reads it.
echo "$outcome" >"$scratch/finished.new"
mv "$scratch/finished.new" "$scratch/finished"
