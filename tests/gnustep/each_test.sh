#!/usr/bin/env bash
# Runs each test of a GoogleTest program in a process of its own. Usage: each_test.sh PROGRAM
set -euo pipefail
program=$1
failed=0 count=0 suite=
while read -r name rest; do
  case $name in
    Running) ;;
    *.) suite=$name ;;
    *)
      count=$((count + 1))
      "$program" --gtest_filter="$suite$name" --gtest_brief=1 || failed=$((failed + 1))
      ;;
  esac
done < <("$program" --gtest_list_tests)
echo "$count tests, $failed failed"
[ "$failed" = 0 ] && [ "$count" -gt 0 ]
