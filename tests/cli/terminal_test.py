"""What a person at a terminal sees: prompts without echo, bars, colours."""

import hashlib
import os
import pty
import re
import select
import signal
import time

import bench_of_cameras
from bench_of_cameras import Bus


class Terminal:
    """A program on a terminal of its own."""

    def __init__(self, command, **environment):
        environment = {**os.environ, "TERM": "xterm", **environment}
        self.pid, self.fd = pty.fork()
        if self.pid == 0:
            os.execve(command[0], command, environment)
        self.seen = b""

    def read_until(self, wanted, seconds=30):
        """Everything shown so far, once `wanted` is in it or the program has ended."""
        until = time.monotonic() + seconds
        while wanted is None or wanted not in self.seen:
            ready = select.select([self.fd], [], [], max(0, until - time.monotonic()))[0]
            if not ready:
                raise AssertionError(f"{wanted!r} did not come: {self.seen!r}")
            try:
                piece = os.read(self.fd, 65536)
            except OSError:
                piece = b""
            if not piece:
                break
            self.seen += piece
        return self.seen

    def type(self, text):
        os.write(self.fd, text)

    def end(self):
        """(exit status, everything shown)"""
        seen = self.read_until(None)
        status = os.waitpid(self.pid, 0)[1]
        os.close(self.fd)
        return os.waitstatus_to_exitcode(status), seen


class TerminalTest(Bus):
    def terminal(self, *words, **environment):
        return Terminal(self.command(*words), **environment)

    def passphrase(self):
        with open(self.drive + "/.kelva/state", encoding="ascii") as file:
            return re.search(r"wifi\.0\.passphrase\.sha256=(\w*)", file.read())[1]

    def test_a_passphrase_is_asked_for_and_not_shown(self):
        run = self.terminal("wifi", "passphrase")
        run.read_until(b"passphrase: ")
        run.type(b"nine chars and more\n")
        code, seen = run.end()
        self.assertEqual(code, 0, seen)
        self.assertNotIn(b"nine", seen)
        self.assertEqual(self.passphrase(), hashlib.sha256(b"nine chars and more").hexdigest())

    def test_ctrl_c_at_the_prompt_gives_the_terminal_back(self):
        run = self.terminal("wifi", "passphrase")
        run.read_until(b"passphrase: ")
        run.type(b"half a pass\x03")
        code, seen = run.end()
        self.assertEqual(code, 130, seen)
        self.assertNotIn(b"half", seen)
        self.assertIn(b"Stopped. ", seen)

    def test_a_passphrase_from_standard_input_needs_no_terminal(self):
        run = self.kelva("wifi", "passphrase", input="from a password store\nnot this line\n")
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertEqual(run.stdout, "")
        self.assertEqual(self.passphrase(), hashlib.sha256(b"from a password store").hexdigest())

    def test_a_passphrase_is_no_argument(self):
        run = self.kelva("wifi", "passphrase", "nine chars and more")
        self.assertEqual(run.returncode, 2)
        self.assertIn("is one too many", run.stderr)
        self.assertNotIn("nine chars", run.stderr)

    def test_upgrade_asks_and_takes_no_for_an_answer(self):
        with open(self.folder + "/image", "wb") as file:
            file.write(b"\1firmware")
        for answer, expected in ((b"no\n", 1), (b"yes\n", 0)):
            run = self.terminal("upgrade", self.folder + "/image")
            run.read_until(b"Type yes and press Enter:")
            run.type(answer)
            code, seen = run.end()
            self.assertEqual(code, expected, seen)
        self.assertIn(b"writing (do not switch", seen)
        self.assertRegex(seen, rb"\d+ %  +\d+ s left  writing")

    def test_rm_asks_on_a_terminal_and_takes_no_for_an_answer(self):
        path = os.path.join(self.drive, "A.TXT")
        for answer, expected in ((b"no\n", 1), (b"yes\n", 0)):
            with open(path, "w") as file:
                file.write("x")
            run = self.terminal("rm", "I:/A.TXT")
            seen = run.read_until(b"Type yes and press Enter:")
            self.assertIn(b"kelva: 1 file to delete on the camera:\r\nkelva:   I:/A.TXT\r\nkelva: Delete?", seen)
            run.type(answer)
            self.assertEqual(run.end()[0], expected)
            self.assertEqual(os.path.exists(path), expected == 1)
        with open(path, "w") as file:
            file.write("x")
        self.assertEqual(self.terminal("rm", "--yes", "I:/A.TXT").end()[0], 0)
        self.assertFalse(os.path.exists(path))

    def test_ctrl_c_at_a_question_is_a_no(self):
        self.put("A.TXT", b"x")
        for options in ((), ("--json",)):
            run = self.terminal("rm", "I:/A.TXT", *options)
            run.read_until(b"Type yes and press Enter:")
            run.type(b"\x03")
            code, seen = run.end()
            self.assertEqual(code, 130, seen)
            self.assertIn(b"Stopped: nothing was deleted.", seen)
            self.assertTrue(os.path.exists(self.drive + "/A.TXT"))
        self.assertIn(b'"error":"Stopped: nothing was deleted."', seen)

    def test_batch_rm_asks_on_a_terminal_too(self):
        self.put("DCIM/100ABCDE/IMG_0001.JPG", b"one")
        key = bench_of_cameras.digest(b"one")
        for answer, expected in ((b"no\n", 1), (b"yes\n", 0)):
            run = self.terminal("batch", "rm", key)
            seen = run.read_until(b"Type yes and press Enter:")
            self.assertIn(b"kelva: 1 file to delete on the camera:\r\nkelva:   " + key.encode() + b"\r\n", seen)
            run.type(answer)
            self.assertEqual(run.end()[0], expected)
            self.assertEqual(os.listdir(self.drive + "/DCIM/100ABCDE"), ["IMG_0001.JPG"] if expected else [])
        self.put("DCIM/100ABCDE/IMG_0001.JPG", b"one")
        self.assertEqual(self.terminal("batch", "rm", "--yes", key).end()[0], 0)
        self.assertEqual(os.listdir(self.drive + "/DCIM/100ABCDE"), [])

    def test_a_question_keeps_nobody_out_and_what_changes_meanwhile_is_kept(self):
        self.put("DCIM/100ABCDE/IMG_0001.JPG", b"one")
        self.put("DCIM/100ABCDE/IMG_0002.JPG", b"two")
        run = self.terminal("pictures", "rm", "IMG_*")
        seen = run.read_until(b"Type yes and press Enter:")
        self.assertIn(b"2 pictures to delete on the camera, with all files:\r\nkelva:   100ABCDE/IMG_0001  JPG\r\n", seen)
        info = self.kelva("info", "--wait-busy", "0")
        self.assertEqual(info.returncode, 0, info.stderr)
        self.put("DCIM/100ABCDE/IMG_0001.JPG", b"another one")
        run.type(b"yes\n")
        code, seen = run.end()
        self.assertEqual(code, 6, seen)
        self.assertIn(b"changed on the camera meanwhile and were kept", seen)
        self.assertEqual(os.listdir(self.drive + "/DCIM/100ABCDE"), ["IMG_0001.JPG"])

    def test_a_quiet_upgrade_still_says_what_it_asks_about(self):
        with open(self.folder + "/image", "wb") as file:
            file.write(b"\1firmware")
        run = self.terminal("-q", "upgrade", self.folder + "/image")
        seen = run.read_until(b"Type yes and press Enter:")
        self.assertIn(hashlib.sha1(b"\1firmware").hexdigest().encode(), seen)
        self.assertIn(b"firmware now factory; battery level", seen)
        run.type(b"no\n")
        self.assertEqual(run.end()[0], 1)

    def test_a_bar_shows_share_rate_and_time_left_on_a_terminal_alone(self):
        self.put("BIG.BIN", os.urandom(3_000_000))
        self.fault("slow", 30)
        run = self.terminal("get", "I:/BIG.BIN", "--into", self.folder)
        code, seen = run.end()
        self.assertEqual(code, 0, seen)
        self.assertRegex(seen, rb"\d+ %  +\S+ .B of 3\.0 MB  .*/s  +\d s left  BIG.BIN")
        os.remove(self.folder + "/BIG.BIN")
        run = self.kelva("get", "I:/BIG.BIN", "--into", self.folder)
        self.assertEqual((run.returncode, run.stdout, run.stderr), (0, "", ""))

    def test_deleting_after_a_sync_is_asked_about_before_anything_is_read(self):
        self.pictures(2, 3000)
        run = self.terminal("sync", "--delete-after-verify", self.folder + "/out")
        seen = run.read_until(b"press Enter:")
        self.assertIn(b"2 files (6.0 kB) will be deleted on camera K1", seen)
        self.assertIn(b"kelva:   100ABCDE/IMG_0001  JPG\r\nkelva:   100ABCDE/IMG_0002  JPG\r\n", seen)
        run.type(b"no\n")
        self.assertEqual(run.end()[0], 1)
        self.assertEqual(len(os.listdir(self.drive + "/DCIM/100ABCDE")), 2)
        self.assertFalse(os.path.exists(self.folder + "/out/100ABCDE"))
        run = self.terminal("sync", "--delete-after-verify", self.folder + "/out")
        run.read_until(b"press Enter:")
        run.type(b"yes\n")
        self.assertEqual(run.end()[0], 0)
        self.assertEqual(os.listdir(self.drive + "/DCIM/100ABCDE"), [])

    def test_a_camera_that_does_not_answer_is_said(self):
        self.pictures(2, 30_000)
        # In the catalogue, before anything is shown, and in the first file.
        for words, command in (("pictures",), 1), (("sync", self.folder + "/out"), 13):
            self.fault("hang", command)
            run = self.terminal(*words)
            said = run.read_until(b"Ctrl-C stops.")
            self.assertRegex(said, rb"No answer from the camera for \d+ s; check the cable. Ctrl-C stops.")
            os.kill(run.pid, signal.SIGINT)
            self.assertEqual(run.end()[0], 130)

    def test_the_line_of_sync_counts_files_and_goes_before_the_result(self):
        self.pictures(40, 30_000)
        self.fault("slow", 10)
        code, seen = self.terminal("sync", self.folder + "/out").end()
        self.assertEqual(code, 0, seen)
        self.assertRegex(seen, rb"\r\x1b\[K40 stored")
        self.assertRegex(seen, rb"\d+/40  +\d+ %  .*/s  +\d+ s left  100ABCDE/IMG_\d+.JPG")

    def test_a_line_of_progress_fits_the_terminal(self):
        name = "LONG" * 40 + ".BIN"
        self.put(name, os.urandom(1_000_000))
        self.fault("slow", 30)
        run = self.terminal("get", "I:/" + name, "--into", self.folder)
        code, seen = run.end()
        self.assertEqual(code, 0, seen)
        shown = [re.sub(rb"\x1b\[\w*", b"", line) for line in re.split(rb"[\r\n]", seen)]
        self.assertLess(max(map(len, shown)), 80)

    def test_colours_respect_no_color(self):
        for environment, coloured in (({}, True), ({"NO_COLOR": "1"}, False), ({"TERM": "dumb"}, False)):
            code, seen = self.terminal("get", "I:/NOPE", **environment).end()
            self.assertEqual(code, 1)
            self.assertEqual(b"\x1b[1;31m" in seen, coloured, environment)

    def test_the_screen_is_left_alone_by_names_of_a_camera(self):
        self.put(b"\xc2\x9b2J\xe2\x80\xae.TXT".decode(), b"x")
        code, seen = self.terminal("ls").end()
        self.assertEqual(code, 0)
        self.assertNotIn(b"\xc2\x9b", seen)
        self.assertNotIn(b"\xe2\x80\xae", seen)

    def test_hanging_up_ends_it(self):
        run = self.terminal("watch")
        run.read_until(b"K1")
        os.kill(run.pid, signal.SIGHUP)
        self.assertEqual(run.end()[0], 130)


if __name__ == "__main__":
    bench_of_cameras.main()
