#!/usr/bin/env bash
# The packages are built twice, in two folders, at two hours, in two time zones, and compared byte by byte.
# Usage: twice_test.sh SOURCE_FOLDER
set -euo pipefail
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
# What a cache keeps would not be built a second time.
export CCACHE_DISABLE=1

TZ=UTC LC_ALL=C "$1/package" --into "$scratch/first"
TZ=Asia/Kathmandu LC_ALL=C.UTF-8 "$1/package" --into "$scratch/another place/second"
packages=$(cd "$scratch/first" && ls ./*.deb)
[ "$(wc -l <<<"$packages")" = 6 ] || { echo "FAILED: there are not six packages: $packages" >&2; exit 1; }
for package in $packages; do
  cmp "$scratch/first/$package" "$scratch/another place/second/$package"
done
echo "passed"
