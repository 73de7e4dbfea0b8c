#!/usr/bin/env bash
# The steps of signing and notarising, in their order, with stand-ins for the commands of a Mac. Usage: sign_test.sh REPOSITORY
set -euo pipefail
root=$1
# shellcheck source=tests/run/stand_ins.sh
. "$root/tests/run/stand_ins.sh"
cp -R "$root/packaging" "$copy/"

for command in codesign ditto spctl; do stand_in "$command"; done
# The notary's verdict is the word in the file; its log gives the reasons.
# shellcheck disable=SC2016 # the words belong to the stand-in
stand_in xcrun '
case "$2" in
  submit) printf "{\"path\":\"x\",\"id\":\"the-id\",\"status\":\"%s\"}\n" "$(cat verdict)" ;;
  log) echo "the binary is not signed" ;;
esac'
echo Accepted >"$copy/verdict"
identity="Developer ID Application: NAME (TEAM)"

on_it 0 packaging/osx/sign.sh KelvaHelper.app "$identity" profile
sed -E "s|$scratch/tmp/[^ ]*/KelvaHelper.zip|ARCHIVE|" "$CALLS" >"$scratch/steps"
diff - "$scratch/steps" >&2 <<END || fail "these are not the steps"
codesign --force --options runtime --timestamp --sign $identity KelvaHelper.app
codesign --verify --strict --verbose=2 KelvaHelper.app
ditto -c -k --keepParent KelvaHelper.app ARCHIVE
xcrun notarytool submit ARCHIVE --keychain-profile profile --wait --output-format json
xcrun stapler staple KelvaHelper.app
spctl --assess --type execute --verbose KelvaHelper.app
END
[ -z "$(ls "$scratch/tmp")" ] || fail "left behind: $(ls "$scratch/tmp")"

# The submission succeeds all the same when the verdict is a refusal.
echo Invalid >"$copy/verdict"
on_it 1 packaging/osx/sign.sh KelvaHelper.app "$identity" profile
called "xcrun notarytool log the-id --keychain-profile profile"
grep -q "the binary is not signed" "$scratch/err" || fail "no reasons: $(cat "$scratch/err")"
not_called stapler

# What was not signed is not sent away.
stand_in codesign "exit 1"
on_it 1 packaging/osx/sign.sh KelvaHelper.app "$identity" profile
not_called notarytool

on_it 2 packaging/osx/sign.sh KelvaHelper.app
grep -q "Usage: sign.sh" "$scratch/err" || fail "no usage: $(cat "$scratch/err")"
[ ! -s "$CALLS" ] || fail "signed all the same: $(cat "$CALLS")"
echo "passed"
