#!/usr/bin/env bash
# Stands in for the desktop application in ./run: fetches every picture of the camera and says so.
# Usage: stand-in.sh KELVA SOCKET SERIAL SCRATCH
set -uo pipefail
kelva=$1
socket=$2
serial=$3
scratch=$4

fetch_all() {
  local folder picture
  for folder in "$scratch"/storage/DCIM/*; do
    folder=${folder#"$scratch/storage/"}
    mkdir -p "$scratch/fetched/$folder"
    for picture in "$scratch/storage/$folder"/*; do
      picture=$(basename "$picture")
      "$kelva" get --virtual "$socket" --serial "$serial" --quiet --into "$scratch/fetched/$folder" "I:/$folder/$picture" ||
        return
      printf '  fetched %s (%s bytes) with kelva get\n' "$picture" "$(wc -c <"$scratch/fetched/$folder/$picture")"
    done
  done
}

echo started >>"$scratch/launched"
{
  echo "The helper started the desktop application (a stand-in), because camera $serial was plugged in:"
  fetch_all
  outcome=$?
} >"$scratch/said" 2>&1
echo "$outcome" >"$scratch/finished"
