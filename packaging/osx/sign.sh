#!/usr/bin/env bash
# Signs and notarises KelvaHelper.app for use outside the App Store. Runs on macOS.
# Usage: sign.sh KelvaHelper.app "Developer ID Application: NAME (TEAM)" KEYCHAIN_PROFILE
# The profile is made once: xcrun notarytool store-credentials KEYCHAIN_PROFILE
set -euo pipefail

if [ $# -ne 3 ]; then
  sed -n '2,4s/^# //p' "$0" >&2
  exit 2
fi
app=$1 identity=$2 profile=$3
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
archive=$scratch/KelvaHelper.zip

# There is nothing nested in the bundle; a helper or library added later is signed before the bundle around it. Reading the
# registry and opening a user client need no entitlement outside the sandbox.
codesign --force --options runtime --timestamp --sign "$identity" "$app"
codesign --verify --strict --verbose=2 "$app"

ditto -c -k --keepParent "$app" "$archive"
# The command ends with 0 also when the verdict is "Invalid".
verdict=$(xcrun notarytool submit "$archive" --keychain-profile "$profile" --wait --output-format json)
if ! grep -Eq '"status" *: *"Accepted"' <<<"$verdict"; then
  printf 'The notary did not accept %s: %s\n' "$app" "$verdict" >&2
  id=$(sed -nE 's/.*"id" *: *"([^"]*)".*/\1/p' <<<"$verdict" | head -1)
  [ -z "$id" ] || xcrun notarytool log "$id" --keychain-profile "$profile" >&2
  exit 1
fi
xcrun stapler staple "$app"
spctl --assess --type execute --verbose "$app"
