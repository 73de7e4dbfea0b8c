#!/usr/bin/env bash
# A second copy of the agent ends at once and in order, and the next one runs when the first was killed.
# Usage: second_agent_test.sh PROGRAM
set -euo pipefail
program=$1
fail() {
  echo "FAILED: $1" >&2
  exit 1
}

"$program" --stay >"$HOME/first" 2>&1 &
first=$!
trap 'kill -9 "$first" 2>/dev/null || true' EXIT
until grep -q "the agent stays" "$HOME/first"; do
  kill -0 "$first" || fail "the first agent ended: $(cat "$HOME/first")"
  sleep 0.1
done

timeout 60 "$program" --stay >"$HOME/second" 2>&1 || fail "the second agent ended with $?: $(cat "$HOME/second")"
grep -q "already running" "$HOME/second" || fail "no reason given: $(cat "$HOME/second")"
if grep -q "the agent stays" "$HOME/second"; then fail "the second agent listened first"; fi
kill -0 "$first" || fail "the first agent ended with the second"

kill -9 "$first"
wait "$first" 2>/dev/null || true
"$program" | grep -q "the scenario is over" || fail "a killed agent keeps the next one away"
echo "passed"
