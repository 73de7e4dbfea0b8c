#!/usr/bin/env bash
# Stands in for the desktop application in ./run: fetches every picture of the camera and says so.
# Usage: stand-in.sh KELVA SOCKET SERIAL SCRATCH
set -uo pipefail
kelva=$1
socket=$2
serial=$3
scratch=$4

fetch_all() {
  local picture target
  for picture in "$scratch"/storage/DCIM/*/*; do
    target=${picture#"$scratch/storage/"}
    mkdir -p "$scratch/fetched/$(dirname "$target")"
    "$kelva" --virtual "$socket" --serial "$serial" get "I:\\${target//\//\\}" --to "$scratch/fetched/$target" || return
    printf '  fetched %s (%s bytes)\n' "$(basename "$target")" "$(wc -c <"$scratch/fetched/$target")"
  done
}

echo started >>"$scratch/launched"
{
  echo "The helper started the desktop application (a stand-in), because camera $serial was plugged in:"
  fetch_all
  outcome=$?
} >"$scratch/said" 2>&1
echo "$outcome" >"$scratch/finished"
