# shellcheck shell=bash
# The sets of tests that ./test knows. Needs say.sh, packages.sh and build.sh.
root=${root:?the folder of the repository}
#
# Labels: long (minutes), full (longer than CI may take), kernel (needs an emulator), browser, gnustep. The quick set is what
# is neither long nor full.
labels_apart='^(long|full)$'

# On a Mac there are the library, the agent and their tests; all else is built on Linux only.
on_macos() {
  [ "$(uname -s)" = Darwin ]
}

not_on_macos() {
  ! on_macos || die 1 "the $1 tests run on Linux only; ./test runs what there is on this Mac."
}

suite_quick() {
  need_packages build test
  if on_macos; then
    build_preset dev
    run_ctest build/dev
    return
  fi
  build_preset quick
  run_ctest build/quick -LE "$labels_apart"
}

suite_sanitizer() {
  need_packages build test
  build_preset "$1"
  run_ctest "build/$1" -LE '^full$'
}

suite_labelled() {
  not_on_macos "$1"
  need_packages build test long package
  build_preset quick
  run_ctest build/quick -L "^$1\$"
}

suite_fuzz() {
  not_on_macos fuzz
  need_packages build test
  build_preset fuzz
  run_ctest build/fuzz
}

# Builds first, tests after, so that one run of ctest closes with the sum of everything.
suite_all() {
  build_everything
  run_ctest build/all -LE '^full$'
}

suite_full() {
  build_everything
  run_ctest build/all
}

build_everything() {
  local presets=(dev asan tsan) preset
  on_macos || presets+=(portable fuzz)
  need_packages build test long package
  for preset in "${presets[@]}"; do
    build_preset "$preset"
  done
  merge_suites build/all "${presets[@]}"
}

# run_ctest FOLDER ARGUMENT...: runs the tests of a build folder; its last lines are ctest's summary.
run_ctest() {
  local folder=$1 outcome=0
  shift
  export TSAN_OPTIONS="suppressions=$root/tools/tsan.supp:atexit_sleep_ms=0"
  # Most tests wait for most of their time; those that compute take two places (PROCESSORS).
  ctest --test-dir "$folder" --output-on-failure --no-tests=error -j "$(($(cores) * 2))" "$@" </dev/null || outcome=$?
  if [ "${CI:-}" = true ]; then
    refuse_skips "$folder/Testing/Temporary/LastTest.log"
  fi
  [ "$outcome" = 0 ] || exit 1
}

cores() {
  getconf _NPROCESSORS_ONLN
}

# refuse_skips LOG: a test that did not run proves nothing, whether ctest or the test program left it out.
refuse_skips() {
  local skipped
  skipped=$(grep -E '^(Test Skipped|Test not run|Unable to find executable|\[  SKIPPED \]|  YOU HAVE [0-9]+ DISABLED)' "$1" | sort | uniq -c || true)
  [ -z "$skipped" ] || die 1 "tests were skipped, which fails CI: $skipped"
}

# merge_suites FOLDER PRESET...: a folder for ctest with the tests of several builds, each named after its preset.
merge_suites() {
  local folder=$1 preset
  shift
  rm -rf "$folder"
  mkdir -p "$folder"
  for preset in "$@"; do
    merge_suite "$folder" "$preset"
    printf 'subdirs("%s")\n' "$preset" >>"$folder/CTestTestfile.cmake"
  done
}

# merge_suite FOLDER PRESET: copies the preset's test lists and prefixes every test's name, as in "asan.camera_test".
merge_suite() {
  local folder=$1 preset=$2 list
  while IFS= read -r list; do
    mkdir -p "$folder/$preset/$(dirname "$list")"
    sed -E "s/^(add_test|set_tests_properties)\((\[=*\[)?/&$preset./" "build/$preset/$list" >"$folder/$preset/$list"
  done < <(cd "build/$preset" && find . -name CTestTestfile.cmake)
}
