"""kelva pictures --sheet against virtual cameras: what is on the page, what is linked, and what stays after a fault."""

import base64
import html.parser
import json
import os
import random
import re
import resource
import shutil
import signal
import subprocess
import time

import bench_of_cameras
import tiny_jpeg
from bench_of_cameras import Bus

GREY = (90, 90, 90)


class Page(html.parser.HTMLParser):
    """The elements of a page, and its text."""

    def __init__(self, path):
        super().__init__()
        self.tags = []
        self.text = ""
        self.open = []
        with open(path, encoding="utf-8") as file:
            self.feed(file.read())
        self.close()

    def handle_starttag(self, tag, attrs):
        self.tags.append((tag, dict(attrs)))
        if tag not in ("meta", "img", "link"):
            self.open.append(tag)

    def handle_endtag(self, tag):
        assert self.open.pop() == tag, tag

    def handle_data(self, data):
        self.text += data

    def all(self, tag):
        return [attributes for name, attributes in self.tags if name == tag]


class SheetTest(Bus):
    def setUp(self):
        super().setUp()
        self.target = os.path.join(self.folder, "target")
        os.mkdir(self.target)
        self.path = os.path.join(self.target, "sheet.html")

    def draw(self, *words):
        return self.kelva("pictures", "--sheet", self.path, *words)

    def picture(self, number, content=None, folder="100ABCDE"):
        self.put(f"DCIM/{folder}/IMG_{number:04d}.JPG", content or tiny_jpeg.jpeg([[GREY, GREY]]))

    def forget(self):
        """What earlier sheets drew."""
        shutil.rmtree(os.environ["XDG_CACHE_HOME"], ignore_errors=True)

    def only_the_sheet(self):
        self.assertEqual(os.listdir(self.target), ["sheet.html"])

    def nothing_is_left(self):
        self.assertEqual(os.listdir(self.target), [])

    def test_the_tool_itself_has_no_decoder(self):
        """Its tables cost memory at each start, and a camera's pictures are for the process without rights."""
        with open(bench_of_cameras.BIN + "/kelva", "rb") as file:
            self.assertNotIn(b"InteroperabilityIndex", file.read())

    def test_the_page_holds_every_picture_and_needs_nothing_else(self):
        for number in range(1, 6):
            self.picture(number)
        self.put("DCIM/101ABCDE/IMG_0001.RAW", b"raw")
        run = self.draw()
        self.assertEqual(run.returncode, 0, run.stderr)
        page = Page(self.path)
        self.assertEqual(page.open, [])
        images = page.all("img")
        self.assertEqual(len(images), 5)
        for image in images:
            self.assertTrue(image["alt"].startswith("Picture 100ABCDE/IMG_000"))
            kind, content = image["src"].split(",")
            self.assertEqual(kind, "data:image/jpeg;base64")
            self.assertEqual(base64.b64decode(content, validate=True)[:2], b"\xff\xd8")
        self.assertEqual([page.all("script"), page.all("link"), page.all("a")], [[], [], []])
        self.assertEqual(page.all("html"), [{"lang": "en"}])
        self.assertIn("no JPEG", page.text)
        self.only_the_sheet()

    def test_fetched_files_are_linked_and_the_links_lead_to_them(self):
        self.picture(1)
        self.put("DCIM/100ABCDE/IMG_0001.RAW", b"raw")
        self.picture(2)
        self.assertEqual(self.kelva("sync", "-p", "a & b/{stem}#1.{ext}", self.target).returncode, 0)
        os.remove(os.path.join(self.target, "a & b", "IMG_0002#1.JPG"))
        run = self.draw("--json")
        self.assertEqual(run.returncode, 0, run.stderr)
        result = json.loads(run.stdout)
        self.assertEqual((result["drawn"], result["fetched"], result["failed"]), (2, 1, 0))
        self.assertEqual(result["pictures"][0]["links"], ["a & b/IMG_0001#1.JPG", "a & b/IMG_0001#1.RAW"])
        links = {link["href"] for link in Page(self.path).all("a")}
        self.assertEqual(links, {"./a%20%26%20b/IMG_0001%231.JPG", "./a%20%26%20b/IMG_0001%231.RAW"})

    def test_damaged_and_missing_pictures_are_reported_and_the_rest_goes_on(self):
        whole = tiny_jpeg.jpeg([[GREY] * 40] * 40)
        self.picture(1)
        self.picture(2, b"no picture at all")
        self.picture(3, whole[:len(whole) // 2])
        self.picture(4, b"\xff\xd8\xff\xd9")
        run = self.draw("--json")
        self.assertEqual(run.returncode, 6, run.stderr)
        result = json.loads(run.stdout)
        self.assertEqual((result["drawn"], result["failed"], result["exit"]), (2, 3, 6))
        self.assertEqual(["error" in picture for picture in result["pictures"]], [False, True, True, True])
        errors = [json.loads(line) for line in run.stderr.splitlines()]
        self.assertEqual(len([error for error in errors if error["event"] == "error"]), 3)
        page = Page(self.path)
        self.assertIn("damaged", page.text)
        self.assertEqual(len(page.all("img")), 2)

    def test_a_decoder_that_cannot_start_or_be_confined_is_one_error_and_no_damaged_pictures(self):
        for number in range(1, 6):
            self.picture(number)
        programs = os.path.join(self.folder, "bin")
        os.mkdir(programs)
        tool = bench_of_cameras.copy_tool(programs)
        decoder = os.path.join(programs, "kelva-thumbnail")
        for script, reason in (("#!/bin/sh\nexit 3\n", "give up its rights"), ("#!/nowhere\n", "install kelva again")):
            with open(decoder, "w", encoding="ascii") as file:
                file.write(script)
            os.chmod(decoder, 0o755)
            run = subprocess.run([tool, *self.command("pictures", "--sheet", self.path)[1:]], capture_output=True,
                                 text=True, timeout=60)
            self.assertEqual(run.returncode, 1, run.stderr)
            self.assertEqual(len(run.stderr.splitlines()), 1, run.stderr)
            self.assertIn(reason, run.stderr)
            self.nothing_is_left()

    def test_a_lower_limit_of_the_user_spoils_no_picture(self):
        self.picture(1)
        lower = lambda: resource.setrlimit(resource.RLIMIT_CPU, (300, 300))
        run = self.kelva("pictures", "--sheet", self.path, "--quiet", preexec_fn=lower)
        self.assertEqual((run.returncode, run.stderr), (0, ""))

    def test_hostile_names_are_text(self):
        names = [b"<B>%04d", b"'\"> %04d", b"\xff\xfe<%04d", b"a\x7f<%04d", b"&lt;%04d", b"--> %04d"]
        for number, name in enumerate(names, 1):
            folder = os.path.join(self.drive.encode(), b"DCIM", b"1%02d<'\">&" % number)
            os.makedirs(folder)
            with open(os.path.join(folder, name % number + b".JPG"), "wb") as file:
                file.write(tiny_jpeg.jpeg([[GREY]]))
        run = self.draw("--json")
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertEqual(json.loads(run.stdout)["drawn"], len(names))
        page = Page(self.path)
        self.assertEqual(page.open, [])
        self.assertEqual(page.all("script"), [])
        self.assertFalse([tag for tag, _ in page.tags if tag not in EXPECTED])
        self.assertFalse([name for _, attributes in page.tags for name in attributes if name.startswith("on")])
        self.assertFalse(re.search("[\0-\x09\x0b-\x1f\x7f-\x9f]", page.text))
        self.assertIn("<B>0001", page.text)

    def test_a_file_that_is_there_is_left_as_it_is(self):
        self.picture(1)
        for make in (lambda: self.write("mine"), lambda: os.symlink("/nowhere", self.path), lambda: os.mkdir(self.path)):
            make()
            run = self.draw()
            self.assertEqual(run.returncode, 1, run.stderr)
            self.assertIn("--force", run.stderr)
            self.only_the_sheet()
            os.rmdir(self.path) if os.path.isdir(self.path) else os.remove(self.path)
        self.write("mine")
        self.assertEqual(self.draw("--force").returncode, 0)
        self.only_the_sheet()

    def write(self, text):
        with open(self.path, "w", encoding="utf-8") as file:
            file.write(text)

    def test_a_disk_that_fills_up_or_cannot_be_written_leaves_nothing(self):
        for number in range(1, 20):
            self.picture(number)

        def fill_up():
            # What a process sees of a full disk: a write that is refused in the middle of a file.
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (10_000, 10_000))

        run = self.kelva("pictures", "--sheet", self.path, preexec_fn=fill_up)
        self.assertEqual(run.returncode, 1, run.stderr)
        self.assertIn("Cannot write into", run.stderr)
        self.nothing_is_left()
        run = self.kelva("pictures", "--sheet", "/proc/sheet.html")
        self.assertEqual(run.returncode, 1, run.stderr)

    def test_each_fault_is_a_whole_sheet_or_none(self):
        for number in (1, 2):
            self.picture(number)
        for fault in ("fail", "short", "surplus1", "surplus2", "stall", "lie-size"):
            for at in range(1, 13):
                self.forget()
                self.fault(fault, at)
                run = self.draw("--timeout", "20")
                if run.returncode in (0, 6):
                    self.assertEqual(Page(self.path).open, [], (fault, at))
                    os.remove(self.path)
                else:
                    self.assertIn(run.returncode, (1, 4, 7, 8), (fault, at, run.stderr))
                    self.assertIn("kelva: ", run.stderr)
                self.nothing_is_left()
                self.fault("none")

    def test_a_picture_of_which_the_camera_sends_too_much_is_left_out(self):
        self.picture(1)
        self.picture(2)
        seen = set()
        for at in range(4, 9):
            self.forget()
            self.fault("surplus2", at)
            run = self.draw()
            if run.returncode == 6:
                seen.add("announced" in run.stderr)
                self.assertEqual(len(Page(self.path).all("img")), 1)
            if os.path.exists(self.path):
                os.remove(self.path)
            self.fault("none")
        self.assertIn(True, seen)

    def test_a_camera_that_goes_in_the_middle_leaves_nothing(self):
        for number in range(1, 4):
            self.picture(number, random.randbytes(300_000))
        self.fault("unplug", 400_000)
        run = self.draw()
        self.assertEqual(run.returncode, 5, run.stderr)
        self.nothing_is_left()

    def test_the_deadline_and_ctrl_c_leave_nothing(self):
        for number in range(1, 4):
            self.picture(number)
        self.fault("hang", 10)
        run = self.draw("--timeout", "1")
        self.assertEqual(run.returncode, 8, run.stderr)
        self.nothing_is_left()
        self.fault("none")
        self.fault("hang", 10)
        running = self.start("pictures", "--sheet", self.path)
        self.wait_for_the_temporary_file()
        start = time.monotonic()
        running.send_signal(signal.SIGINT)
        _, messages = running.communicate(timeout=20)
        self.assertEqual(running.returncode, 130, messages)
        self.assertLess(time.monotonic() - start, 5)
        self.nothing_is_left()

    def wait_for_the_temporary_file(self):
        end = time.monotonic() + 20
        while not os.listdir(self.target):
            self.assertLess(time.monotonic(), end, "the tool wrote nothing")
            time.sleep(0.01)


EXPECTED = {
    "html", "head", "meta", "title", "style", "body", "header", "h1", "h2", "h3", "p", "span", "main", "section", "ul",
    "li", "div", "img", "time", "b", "footer"
}

if __name__ == "__main__":
    bench_of_cameras.main()
