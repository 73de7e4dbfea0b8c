#!/usr/bin/env python3
"""The property lists of the Mac's agent: well formed, complete, and about one program. Usage: bundle_test.py PROJECT"""

import pathlib
import plistlib
import re
import sys
import unittest

PROJECT = pathlib.Path()
VALUES = {
    "MACOSX_BUNDLE_EXECUTABLE_NAME": "KelvaHelper",
    "MACOSX_BUNDLE_GUI_IDENTIFIER": "com.kelva.KelvaHelper",
    "MACOSX_BUNDLE_BUNDLE_NAME": "KelvaHelper",
    "MACOSX_BUNDLE_SHORT_VERSION_STRING": "1.2.3",
    "MACOSX_BUNDLE_BUNDLE_VERSION": "1.2.3",
    "CMAKE_OSX_DEPLOYMENT_TARGET": "11.0",
}


def information():
    """Info.plist as the build fills it in; a name that the build does not set is a KeyError."""
    template = (PROJECT / "src/ui/osx/KelvaHelper/Info.plist.in").read_text()
    return plistlib.loads(re.sub(r"\$\{(\w+)\}", lambda match: VALUES[match[1]], template).encode())


def launch_agent():
    template = (PROJECT / "packaging/osx/com.kelva.KelvaHelper.plist.in").read_text()
    return plistlib.loads(template.replace("@KELVA_HELPER_APP@", "/prefix/Applications/KelvaHelper.app").encode())


class Bundle(unittest.TestCase):
    def test_the_application_has_a_principal_class_or_it_would_end_at_once(self):
        self.assertEqual(information()["NSPrincipalClass"], "NSApplication")

    def test_no_nib_is_named_since_there_is_none(self):
        self.assertNotIn("NSMainNibFile", information())

    def test_the_agent_shows_no_icon(self):
        self.assertIs(information()["LSUIElement"], True)

    def test_what_the_system_asks_of_every_bundle_is_there(self):
        expected = {
            "CFBundleIdentifier": "com.kelva.KelvaHelper",
            "CFBundleExecutable": "KelvaHelper",
            "CFBundleName": "KelvaHelper",
            "CFBundlePackageType": "APPL",
            "CFBundleInfoDictionaryVersion": "6.0",
            "CFBundleVersion": "1.2.3",
            "CFBundleShortVersionString": "1.2.3",
            "LSMinimumSystemVersion": "11.0",
        }
        self.assertEqual({key: information().get(key) for key in expected}, expected)

    def test_the_build_gives_the_values_that_this_test_gives(self):
        recipe = (PROJECT / "src/ui/osx/KelvaHelper/CMakeLists.txt").read_text()
        for name in ("MACOSX_BUNDLE_EXECUTABLE_NAME", "MACOSX_BUNDLE_GUI_IDENTIFIER", "MACOSX_BUNDLE_BUNDLE_NAME"):
            self.assertRegex(recipe, rf"{name} {re.escape(VALUES[name])}\b")

    def test_launchd_starts_the_program_inside_the_bundle(self):
        program = launch_agent()["ProgramArguments"][0]
        self.assertTrue(program.endswith(f"/KelvaHelper.app/Contents/MacOS/{information()['CFBundleExecutable']}"), program)

    def test_launchd_knows_it_by_the_bundles_identifier(self):
        self.assertEqual(launch_agent()["Label"], information()["CFBundleIdentifier"])

    def test_launchd_starts_it_at_login_and_after_a_crash_only(self):
        self.assertIs(launch_agent()["RunAtLoad"], True)
        self.assertEqual(launch_agent()["KeepAlive"], {"SuccessfulExit": False})

    def test_launchd_does_not_throttle_it(self):
        self.assertNotIn("ProcessType", launch_agent())

    def test_login_items_show_it_by_its_bundle(self):
        self.assertEqual(launch_agent()["AssociatedBundleIdentifiers"], information()["CFBundleIdentifier"])

    def test_a_second_user_of_the_mac_has_an_agent(self):
        # The key would refuse one; the agent's lock is each user's own.
        self.assertNotIn("LSMultipleInstancesProhibited", information())

    def test_the_icon_is_there(self):
        icon = (PROJECT / f"packaging/osx/{information()['CFBundleIconFile']}.icns").read_bytes()
        self.assertEqual(icon[:4], b"icns")
        self.assertEqual(int.from_bytes(icon[4:8], "big"), len(icon))


if __name__ == "__main__":
    PROJECT = pathlib.Path(sys.argv.pop(1))
    unittest.main()
