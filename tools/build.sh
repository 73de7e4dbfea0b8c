# shellcheck shell=bash
# Configures and builds a preset, quietly unless something fails. Needs say.sh.
root=${root:?the folder of the repository}

need_tool() {
  command -v "$1" >/dev/null || die 1 "$1 is missing; install it (see tools/packages-debian.txt) and run this again."
}

# quietly LOG COMMAND...: keeps the output for the moment that it is needed.
quietly() {
  local log=$1
  shift
  mkdir -p "$(dirname "$log")"
  if ! "$@" >"$log" 2>&1; then
    cat "$log" >&2
    return 1
  fi
}

configure_preset() {
  need_tool cmake
  need_tool ninja
  quietly "$root/build/$1-configure.log" cmake --preset "$1" "${@:2}" ||
    die 1 "the build could not be configured (preset $1); the reason is above."
}

# build_preset PRESET [TARGET...]
build_preset() {
  local preset=$1 targets=()
  shift
  configure_preset "$preset"
  [ $# -eq 0 ] || targets=(--target "$@")
  say "Building (preset $preset) ..."
  quietly "$root/build/$preset-build.log" cmake --build --preset "$preset" ${targets[@]+"${targets[@]}"} ||
    die 1 "the build failed (preset $preset); the compiler's words are above."
}
