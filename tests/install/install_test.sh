#!/usr/bin/env bash
# Installs a build into a scratch prefix, and builds and runs a program against it with CMake and with pkg-config.
# Usage: install_test.sh BUILD_FOLDER COMPILER
set -euo pipefail
build=$1
compiler=$2
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

fail() {
  printf 'install_test: %s\n' "$*" >&2
  exit 1
}

# Cameras come from the machine when the program names no source, and from a bus when it names one.
expect_consumer() {
  local said
  said=$("$1") || fail "$1 ended with $?: $said"
  case $said in
    *"source: "*) ;;
    *) fail "$1 said: $said" ;;
  esac
  if [ ! -e /run/udev/control ] && [[ $said != *"No udev runs here"* ]]; then fail "$1 does not say that no udev runs: $said"; fi
  said=$("$1" "$scratch/bus") || fail "$1 with a bus ended with $?: $said"
  [ "$said" = "found Camera, which opens
source: " ] || fail "$1 with a bus said: $said"
  if "$1" "$scratch/nobody" >"$scratch/said"; then fail "$1 has a bus that nobody serves"; fi
  grep -q "^error: .*$scratch/nobody" "$scratch/said" || fail "$1 without a bus said: $(cat "$scratch/said")"
}

cmake --install "$build" --prefix "$scratch/installed" >"$scratch/install.log" || fail "cmake --install: $(cat "$scratch/install.log")"
# A file without a component of its own is in no package. `cmake --install` gives such a file the name Unspecified.
cmake --install "$build" --prefix "$scratch/unnamed" --component Unspecified >"$scratch/install.log"
left=$(find "$scratch/unnamed" ! -type d 2>/dev/null || true)
[ -z "$left" ] || fail "installed without a component: $left"
# Moved, so that a path of the build or of the first place would show.
mv "$scratch/installed" "$scratch/moved"

for file in include/kelva/Camera.h include/kelva/CameraSource.h bin/kelva bin/kelva-vcam bin/kelva-helper; do
  [ -f "$scratch/moved/$file" ] || fail "$file was not installed"
done
for program in kelva kelva-vcam; do
  for file in share/man/man1/$program.1 share/bash-completion/completions/$program \
    share/zsh/site-functions/_$program share/fish/vendor_completions.d/$program.fish; do
    [ -s "$scratch/moved/$file" ] || fail "$file was not installed"
  done
done
for program in kelva kelva-vcam kelva-helper; do
  "$scratch/moved/bin/$program" --version >/dev/null || fail "the installed $program does not start"
done

for header in OsxCamera.h IOKitLib.h CoreFoundation.h; do
  found=$(find "$scratch/moved" -name "$header")
  [ -z "$found" ] || fail "$found was installed, and is the inside of the library"
done
"$scratch/moved/bin/kelva-vcam" serve --virtual "$scratch/bus" >"$scratch/serve.log" &
bus=$!
trap 'kill $bus; rm -rf "$scratch"' EXIT
mkdir "$scratch/card"
until [ -S "$scratch/bus" ]; do
  kill -0 $bus || fail "kelva-vcam serve ended: $(cat "$scratch/serve.log")"
  sleep 0.05
done
"$scratch/moved/bin/kelva-vcam" plug --virtual "$scratch/bus" --serial KV-0001 --storage "$scratch/card" >/dev/null

cmake -S "$here/consumer" -B "$scratch/consumer" -DCMAKE_PREFIX_PATH="$scratch/moved" -DCMAKE_CXX_COMPILER="$compiler" \
  >"$scratch/configure.log" || fail "find_package(Kelva): $(cat "$scratch/configure.log")"
cmake --build "$scratch/consumer" >"$scratch/build.log" || fail "building with CMake: $(cat "$scratch/build.log")"
expect_consumer "$scratch/consumer/consumer"

pc=$(find "$scratch/moved" -name kelva.pc)
[ -n "$pc" ] || fail "kelva.pc was not installed"
# --static: what is installed here is libkelva.a.
flags=$(PKG_CONFIG_PATH=$(dirname "$pc") pkg-config --static --cflags --libs kelva)
# shellcheck disable=SC2086 # the flags are several words
"$compiler" -std=c++20 "$here/consumer/main.cpp" -o "$scratch/with-pkg-config" $flags
expect_consumer "$scratch/with-pkg-config"

# Below /usr the paths are plain, and pkg-config leaves them out as the compiler's own.
DESTDIR=$scratch/root cmake --install "$build" --prefix /usr --component Development >"$scratch/install.log"
system_pc=$(find "$scratch/root/usr" -name kelva.pc)
grep -qx 'prefix=/usr' "$system_pc" || fail "kelva.pc below /usr says: $(cat "$system_pc")"
system_flags=$(PKG_CONFIG_PATH=$(dirname "$system_pc") pkg-config --cflags kelva)
[ -z "${system_flags// /}" ] || fail "pkg-config below /usr says: $system_flags"

# The program that README shows.
# shellcheck disable=SC2016 # the backquotes are Markdown
sed -n '/^```cpp$/,/^```$/p' "$here/../../README.md" | sed '/^```/d' >"$scratch/readme.cpp"
[ -s "$scratch/readme.cpp" ] || fail "README.md shows no program"
# shellcheck disable=SC2086 # the flags are several words
"$compiler" -std=c++20 -Wall -Wextra -Werror "$scratch/readme.cpp" -o "$scratch/readme" $flags || fail "README's program does not compile"
"$scratch/readme" || fail "README's program ended with $?"
