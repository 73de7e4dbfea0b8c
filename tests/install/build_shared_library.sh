#!/usr/bin/env bash
# Builds libkelva.so, and nothing else, with debug information. Usage: build_shared_library.sh SOURCE BUILD_FOLDER [COMPILER]
set -euo pipefail
mkdir -p "$2"
source=$(cd "$1" && pwd)
build=$(cd "$2" && pwd)
log=$(mktemp)
trap 'rm -f "$log"' EXIT
if ! {
  # No path of this machine in the debug information, which the written interface is made of. Without ccache, which would
  # hand over what another folder has compiled.
  cmake -S "$source" -B "$build" -G Ninja \
    -DCMAKE_CXX_FLAGS="-ffile-prefix-map=$source/= -ffile-prefix-map=$build/=" \
    -DCMAKE_CXX_COMPILER_LAUNCHER= -DBUILD_SHARED_LIBS=ON -DKELVA_BUILD_PROGRAMS=OFF -DKELVA_BUILD_TESTS=OFF \
    -DCMAKE_BUILD_TYPE=Debug -DCMAKE_UNITY_BUILD=ON -DCMAKE_UNITY_BUILD_BATCH_SIZE=0 ${3:+-DCMAKE_CXX_COMPILER="$3"} && cmake --build "$build"
} >"$log" 2>&1; then
  cat "$log"
  exit 1
fi
