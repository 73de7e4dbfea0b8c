#!/usr/bin/env bash
# Builds libkelva.so, and nothing else, with debug information. Usage: build_shared_library.sh SOURCE BUILD_FOLDER [COMPILER]
set -euo pipefail
log=$(mktemp)
trap 'rm -f "$log"' EXIT
if ! {
  cmake -S "$1" -B "$2" -G Ninja -DBUILD_SHARED_LIBS=ON -DKELVA_BUILD_PROGRAMS=OFF -DKELVA_BUILD_TESTS=OFF -DCMAKE_BUILD_TYPE=Debug \
    -DCMAKE_UNITY_BUILD=ON -DCMAKE_UNITY_BUILD_BATCH_SIZE=0 ${3:+-DCMAKE_CXX_COMPILER="$3"} && cmake --build "$2"
} >"$log" 2>&1; then
  cat "$log"
  exit 1
fi
