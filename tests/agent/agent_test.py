#!/usr/bin/env python3
"""The agent, the opener and the virtual camera as processes, from plug to launch. Usage: agent_test.py PROGRAMS"""

import os
import pathlib
import shutil
import signal
import sys
import time
import unittest

from session import DESKTOP_ID, PATIENCE, Session

PROGRAMS = ""
NOT_INSTALLED = f"kelva-open: A camera was attached, but the application {DESKTOP_ID} is not installed: "


class AgentCase(unittest.TestCase):
    def setUp(self):
        self.session = Session(PROGRAMS)
        self.addCleanup(self.session.close)

    def expect_launch(self):
        self.assertEqual(self.session.launches.next(), "launched")

    def expect_no_launch(self):
        self.assertFalse(self.session.launches.waiting())


class Launching(AgentCase):
    def setUp(self):
        super().setUp()
        self.session.install_application()

    def test_camera_present_at_start_launches_nothing_and_a_second_one_launches_once(self):
        self.session.plug("KV0001")
        agent = self.session.watching_agent()
        self.session.plug("KV0002")
        self.expect_launch()
        # Everything that the agent has started by now has spoken: the opener says so after its launch.
        self.assertIn("Started Stand-in", agent.output.next())
        self.assertFalse(agent.output.waiting())
        self.expect_no_launch()

    def test_same_camera_plugged_in_again_launches_again(self):
        self.session.watching_agent()
        for _ in range(3):
            self.session.plug("KV0001")
            self.expect_launch()
            self.session.unplug("KV0001")
        self.expect_no_launch()

    def test_cameras_of_both_drivers_launch(self):
        self.session.watching_agent()
        for kind in ("0", "3"):
            self.session.plug("KV000" + kind, "--type", kind)
            self.expect_launch()

    def test_camera_that_the_system_took_for_a_compact_disc_launches_nothing(self):
        agent = self.session.watching_agent()
        self.session.plug("KV0001", "--type", "5", "--revision", "Q42")
        self.session.plug("KV0002")
        self.expect_launch()
        self.assertIn("Started Stand-in", agent.output.next())
        self.assertFalse(agent.output.waiting())

    def test_many_cameras_at_once_launch_once_each(self):
        agent = self.session.watching_agent()
        for number in range(10):
            self.session.plug(f"KV{number:04}")
        for _ in range(10):
            self.expect_launch()
            self.assertIn("Started Stand-in", agent.output.next())
        self.expect_no_launch()

    def test_launched_application_outlives_the_agent(self):
        agent = self.session.watching_agent()
        end = self.session.make_pipe("end")
        gate = self.session.make_pipe("gate")
        script = self.session.folder / "application.sh"
        script.write_text(f"#!/bin/sh\necho launched >{self.session.folder}/launches\nread line <{self.session.folder}/gate\necho ended >{self.session.folder}/end\n")
        self.session.plug("KV0001")
        self.expect_launch()
        self.assertEqual(agent.end(signal.SIGINT), 0)
        os.write(gate.descriptor, b"go\n")
        self.assertEqual(end.next(), "ended")

    def test_launched_application_has_no_signal_blocked_or_ignored_and_no_descriptor_of_the_agent(self):
        script = self.session.folder / "application.sh"
        seen = self.session.make_pipe("seen")
        script.write_text(
            "#!/bin/sh\n"
            f"exec >{self.session.folder}/seen\n"
            "grep -E '^Sig(Blk|Ign):' /proc/self/status\n"
            "ls -m /proc/$$/fd\n"
        )
        self.session.watching_agent()
        self.session.plug("KV0001")
        self.assertEqual(seen.next(), "SigBlk:\t0000000000000000")
        # Signals 32 and 33 are the C library's own; it ignores them in every program that it spawns.
        self.assertEqual(int(seen.next().split()[1], 16) & ~0x180000000, 0)
        # A shell keeps its script open at a number of its own choice, above 9.
        descriptors = [int(number) for number in seen.next().split(",")]
        self.assertEqual([number for number in descriptors if 2 < number < 10], [])


class NotInstalled(AgentCase):
    def test_one_line_for_each_attach_and_the_agent_goes_on(self):
        agent = self.session.watching_agent()
        for serial in ("KV0001", "KV0002"):
            self.session.plug(serial)
            self.assertTrue(agent.errors.next().startswith(NOT_INSTALLED))
            self.assertFalse(agent.errors.waiting())
        self.session.install_application()
        self.session.plug("KV0003")
        self.expect_launch()

    def test_application_removed_while_the_agent_runs(self):
        self.session.install_application()
        agent = self.session.watching_agent()
        self.session.plug("KV0001")
        self.expect_launch()
        self.session.remove_application()
        self.session.plug("KV0002")
        self.assertTrue(agent.errors.next().startswith(NOT_INSTALLED))


class Folders(AgentCase):
    """A plug without the application, and with a stand-in of the program that shows cameras as folders."""

    def setUp(self):
        super().setUp()
        self.session.environment["KELVA_ON_PLUG"] = "mount"
        programs = self.session.folder / "programs"
        programs.mkdir()
        for name in ("kelva-helper", "kelva-open"):
            shutil.copy(self.session.programs / name, programs)
        self.session.helper = programs / "kelva-helper"
        self.mounts = self.session.make_pipe("mounts")
        self.stand_in = programs / "kelva-mount"
        self.stand_in_says('{"event":"mounted","path":"/a folder","serial":"KV0001","was_mounted":false}')

    def stand_in_says(self, event, further=""):
        self.stand_in.write_text(f"#!/bin/sh\necho \"$*\" >{self.session.folder}/mounts\necho '{event}'\n{further}")
        self.stand_in.chmod(0o755)

    def test_camera_becomes_a_folder_that_the_users_own_program_opens(self):
        for content_type in ("x-content/image-dcf", "inode/directory"):
            with self.subTest(type=content_type):
                shutil.rmtree(self.session.folder / "config", ignore_errors=True)
                self.session.install_viewer(content_type)
                agent = self.session.watching_agent()
                self.session.plug("KV0001")
                self.assertEqual(self.mounts.next(), f"--all --json --virtual {self.session.socket}")
                self.assertEqual(self.session.launches.next(), "viewer /a folder")
                self.assertEqual(agent.output.next(), "kelva-open: Mounted camera KV0001 on /a folder and started Viewer there.")
                self.assertFalse(agent.errors.waiting())
                self.session.unplug("KV0001")
                agent.end()

    def test_cameras_that_come_at_once_are_mounted_one_after_the_other(self):
        self.session.install_viewer("x-content/image-dcf")
        running = self.session.folder / "running"
        self.stand_in.write_text(f"#!/bin/sh\nmkdir {running} || echo together >{self.session.folder}/mounts\nsleep 0.05\nrmdir {running}\n"
                                 """echo '{"event":"mounted","path":"/a","serial":"K","was_mounted":false}'\n""")
        agent = self.session.watching_agent()
        for number in range(5):
            self.session.plug(f"KV{number:04}")
        for _ in range(5):
            self.assertIn("started Viewer there", agent.output.next())
        self.assertFalse(self.mounts.waiting())

    def test_application_that_is_installed_goes_before(self):
        self.session.install_viewer("x-content/image-dcf")
        self.session.install_application()
        agent = self.session.watching_agent()
        self.session.plug("KV0001")
        self.expect_launch()
        self.assertIn("Started Stand-in", agent.output.next())
        self.assertFalse(self.mounts.waiting())

    def test_setting_leaves_the_camera_alone(self):
        self.session.environment["KELVA_ON_PLUG"] = "desktop-only"
        agent = self.session.watching_agent()
        self.session.plug("KV0001")
        self.assertTrue(agent.errors.next().startswith(NOT_INSTALLED))
        self.assertFalse(self.mounts.waiting())

    def test_camera_that_cannot_be_mounted_is_one_line(self):
        self.stand_in_says('{"event":"error","exit":5,"reason":"permission","message":"No permission; do this."}', "exit 5\n")
        agent = self.session.watching_agent()
        self.session.plug("KV0001")
        self.assertEqual(agent.errors.next(), "kelva-open: A camera was attached, and could not be mounted: No permission; do this.")
        self.assertFalse(agent.errors.waiting())

    def test_without_a_program_one_line_says_what_to_install(self):
        agent = self.session.watching_agent()
        self.session.plug("KV0001")
        self.assertRegex(agent.errors.next(), "^kelva-open: Camera KV0001 is the folder /a folder, and no installed program opens it. Install ")
        self.stand_in.unlink()
        self.session.plug("KV0002")
        self.assertRegex(agent.errors.next(), "Install it to have it started, or kelva-mount to see the pictures in a folder.$")


class Ending(AgentCase):
    def test_each_signal_that_asks_for_the_end_gives_exit_code_0(self):
        for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            with self.subTest(signal=number):
                agent = self.session.watching_agent()
                self.assertEqual(agent.end(number), 0)
                self.assertFalse(agent.errors.next())

    def test_signal_before_the_first_camera_is_not_lost(self):
        agent = self.session.start_agent()
        agent.until_it_watches()
        agent.process.send_signal(signal.SIGTERM)
        self.assertEqual(agent.wait(), 0)


class OneCopy(AgentCase):
    def test_second_copy_says_so_and_ends_with_0(self):
        first = self.session.watching_agent()
        second = self.session.start_agent()
        self.assertEqual(second.wait(), 0)
        self.assertEqual(
            second.output.next(),
            f"kelva-helper: Another copy (process {first.process.pid}) already serves this login session, so this one ends.",
        )

    def test_with_two_copies_started_each_camera_launches_once(self):
        self.session.install_application()
        first = self.session.watching_agent()
        self.session.start_agent().wait()
        self.session.plug("KV0001")
        self.expect_launch()
        self.assertIn("Started Stand-in", first.output.next())
        self.expect_no_launch()

    def test_another_session_has_a_copy_of_its_own(self):
        self.session.watching_agent()
        self.session.start_agent("--virtual", self.session.socket, DBUS_SESSION_BUS_ADDRESS="unix:abstract=another").until_it_watches()

    def test_after_a_crash_the_next_copy_starts(self):
        self.session.watching_agent().end(signal.SIGKILL)
        self.session.watching_agent()

    def test_lock_that_cannot_be_made_is_one_sentence_and_exit_code_1(self):
        agent = self.session.start_agent("--virtual", self.session.socket, XDG_RUNTIME_DIR="/nonexistent")
        self.assertEqual(agent.wait(), 1)
        line = agent.errors.next()
        self.assertRegex(line, r"^kelva-helper: The lock file /nonexistent/\S+ cannot be used \(No such file or directory\); .*\.$")
        self.assertEqual(agent.errors.next(), "")


class CommandLine(AgentCase):
    def test_bus_that_is_not_there_is_one_sentence_and_exit_code_1(self):
        agent = self.session.start_agent("--virtual", str(self.session.folder / "no-such-bus"))
        self.assertEqual(agent.wait(), 1)
        line = agent.errors.next()
        self.assertRegex(line, r"^kelva-helper: Cameras cannot be watched: .*no-such-bus.*\.$")
        self.assertEqual(agent.errors.next(), "")

    def test_wrong_argument_is_one_sentence_and_exit_code_2(self):
        agent = self.session.start_agent("--frobnicate")
        self.assertEqual(agent.wait(), 2)
        self.assertEqual(agent.errors.next(), 'kelva-helper: "--frobnicate" is not an argument of this program; --help lists them.')

    def test_help_and_version_end_with_0(self):
        for argument, beginning in (("--help", "Usage: kelva-helper"), ("--version", "kelva-helper ")):
            agent = self.session.start_agent(argument)
            self.assertEqual(agent.wait(), 0)
            self.assertTrue(agent.output.next().startswith(beginning))


class Residence(AgentCase):
    """What the agent is while it waits."""

    def setUp(self):
        super().setUp()
        self.session.install_application()
        self.agent = self.session.watching_agent()
        self.proc = pathlib.Path("/proc", str(self.agent.process.pid))

    def plug_and_unplug(self, times):
        for _ in range(times):
            self.session.plug("KV0001")
            self.expect_launch()
            self.session.unplug("KV0001")
            self.assertIn("Started Stand-in", self.agent.output.next())

    def children(self):
        """The processes, zombies included, whose parent is the agent."""
        found = []
        for stat in pathlib.Path("/proc").glob("[0-9]*/stat"):
            try:
                after_name = stat.read_text().rpartition(")")[2].split()
            except OSError:
                continue  # ended meanwhile
            if after_name[1] == str(self.agent.process.pid):
                found.append(after_name[0])
        return found

    def test_it_has_one_thread(self):
        self.plug_and_unplug(1)
        self.assertEqual(len(list((self.proc / "task").iterdir())), 1)

    def test_it_leaves_no_zombie(self):
        self.plug_and_unplug(5)
        # The opener is a zombie for the moment in which its last thread ends; one that was left stays.
        deadline = time.monotonic() + PATIENCE
        while "Z" in self.children() and time.monotonic() < deadline:
            time.sleep(0.01)
        self.assertNotIn("Z", self.children())

    def test_it_keeps_no_descriptor(self):
        self.plug_and_unplug(1)
        before = len(list((self.proc / "fd").iterdir()))
        self.plug_and_unplug(5)
        self.assertEqual(len(list((self.proc / "fd").iterdir())), before)

    def test_it_carries_neither_glib_nor_a_message_bus(self):
        maps = (self.proc / "maps").read_text()
        for library in ("libglib", "libgio", "libgobject", "libdbus", "libsystemd"):
            self.assertNotIn(library, maps)


if __name__ == "__main__":
    PROGRAMS = sys.argv.pop(1)
    unittest.main()
