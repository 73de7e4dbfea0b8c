#!/usr/bin/env python3
"""What the udev rule does for cameras and leaves alone for everything else. Usage: udev_rule_test.py RULE"""

import pathlib
import sys
import unittest

from udevadm import BLOCK, DEVICE, GENERIC, PARTITION, describe, evaluate

RULE = ""


class UdevRule(unittest.TestCase):
    def evaluate(self, path, action="add", group="plugdev", **camera):
        return evaluate(RULE, describe(**camera), path, action, group)

    def test_its_name_sorts_before_the_rule_that_gives_permissions(self):
        self.assertLess(pathlib.Path(RULE).name, "73-seat-late.rules")
        self.assertGreater(pathlib.Path(RULE).name, "60-persistent-storage.rules")

    def test_the_person_at_the_seat_may_use_a_camera(self):
        tags = self.evaluate(GENERIC).properties["CURRENT_TAGS"]
        self.assertIn(":uaccess:", tags)

    def test_without_a_seat_the_members_of_plugdev_may(self):
        outcome = self.evaluate(GENERIC, group="plugdev")
        self.assertTrue(outcome.says("GROUP plugdev(4711)"), outcome.text)
        self.assertTrue(outcome.says("MODE 0660"), outcome.text)

    def test_without_that_group_nobody_else_gets_the_camera_and_udev_has_nothing_to_complain_of(self):
        outcome = self.evaluate(GENERIC, group="other")
        self.assertFalse(outcome.says("GROUP "), outcome.text)
        # Rules of other packages may name groups that are missing here.
        complaints = [line for line in outcome.text.splitlines() if "Unknown group" in line and pathlib.Path(RULE).name in line]
        self.assertEqual(complaints, [])
        self.assertTrue(outcome.says("MODE 0660"), outcome.text)
        self.assertIn(":uaccess:", outcome.properties["CURRENT_TAGS"])

    def test_a_camera_is_found_by_its_serial_number(self):
        self.assertEqual(self.evaluate(GENERIC).properties["DEVLINKS"], "/dev/kelva/KV0001")

    def test_a_hostile_serial_number_becomes_no_link_or_a_harmless_one(self):
        expected = {"../../sda": None, "..": None, None: None, "a.b": None, "a/b": "/dev/kelva/a_b", "a b": "/dev/kelva/a_b"}
        for serial, link in expected.items():
            with self.subTest(serial=serial):
                outcome = self.evaluate(GENERIC, serial=serial)
                links = [name for name in outcome.properties.get("DEVLINKS", "").split() if "kelva" in name]
                self.assertEqual(links, [] if link is None else [link])
                self.assertIn(":uaccess:", outcome.properties["CURRENT_TAGS"])

    def test_another_makers_device_is_left_alone(self):
        for vendor in ("KelvaXY", "kelva", "Other"):
            with self.subTest(vendor=vendor):
                for path in (GENERIC, DEVICE, BLOCK):
                    outcome = self.evaluate(path, vendor=vendor, max_sectors=64)
                    self.assertEqual(outcome.ours, [])
                    self.assertNotIn("UDISKS_IGNORE", outcome.properties)

    def test_the_generic_driver_is_loaded_with_the_first_camera(self):
        self.assertTrue(self.evaluate(DEVICE).says("RUN 'kmod load sg'"))

    def test_a_transfer_limit_below_64_kib_is_raised(self):
        for limit in (8, 64, 100, 119, 127):
            with self.subTest(limit=limit):
                outcome = self.evaluate(DEVICE, max_sectors=limit)
                self.assertTrue(outcome.says("max_sectors' writing '128'"), outcome.text)

    def test_a_transfer_limit_of_64_kib_or_more_is_kept(self):
        for limit in (128, 130, 240, 1024, 2048):
            with self.subTest(limit=limit):
                self.assertFalse(self.evaluate(DEVICE, max_sectors=limit).says("max_sectors"))

    def test_automounters_keep_off_the_disk_and_its_partitions(self):
        for path in (BLOCK, PARTITION):
            with self.subTest(path=path):
                self.assertEqual(self.evaluate(path).properties["UDISKS_IGNORE"], "1")

    def test_a_camera_of_the_compact_disc_type_is_accessible_too(self):
        outcome = self.evaluate(GENERIC, kind=5, revision="Q42")
        self.assertIn(":uaccess:", outcome.properties["CURRENT_TAGS"])

    def test_unplugging_changes_nothing(self):
        self.assertEqual(self.evaluate(GENERIC, action="remove").ours, [])


if __name__ == "__main__":
    RULE = sys.argv.pop(1)
    unittest.main()
