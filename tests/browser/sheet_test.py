"""A contact sheet as a person sees it: drawn by the tool from a virtual camera, shown by a real browser."""

import base64
import os
import sys
from urllib.parse import unquote, urlsplit

import bench_of_cameras
import tiny_jpeg
from bench_of_cameras import Bus
from browser import Browser

RED, GREEN, BLUE, YELLOW = (220, 30, 30), (30, 200, 30), (30, 30, 220), (230, 220, 40)
# Six squares by four: every corner has its own colour.
SEEN = [[RED] * 3 + [GREEN] * 3] * 2 + [[BLUE] * 3 + [YELLOW] * 3] * 2
WIDTHS = (320, 800, 1600)
PICTURES = ""

CORNERS = """Promise.all([...document.images].map(async image => {
    await image.decode();
    const canvas = document.createElement('canvas');
    canvas.width = image.naturalWidth;
    canvas.height = image.naturalHeight;
    const context = canvas.getContext('2d');
    context.drawImage(image, 0, 0);
    const at = (x, y) => [...context.getImageData(x, y, 1, 1).data].slice(0, 3);
    const right = canvas.width - 4, bottom = canvas.height - 4;
    return [canvas.width, canvas.height, at(3, 3), at(right, 3), at(3, bottom), at(right, bottom)];
}))"""

# The contrast of every text with what is behind it, as WCAG 2 defines it: [text, contrast].
CONTRASTS = """(() => {
    const numbers = colour => colour.match(/[0-9.]+/g).map(Number);
    const light = colour => {
        const [r, g, b] = numbers(colour).map(v => v / 255).map(v => v <= .03928 ? v / 12.92 : ((v + .055) / 1.055) ** 2.4);
        return .2126 * r + .7152 * g + .0722 * b;
    };
    const behind = element => {
        const colour = getComputedStyle(element).backgroundColor;
        return numbers(colour)[3] === 0 ? behind(element.parentElement) : colour;
    };
    const texts = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT);
    const found = [];
    while (texts.nextNode()) {
        if (!texts.currentNode.data.trim()) continue;
        const element = texts.currentNode.parentElement;
        const [a, b] = [light(getComputedStyle(element).color), light(behind(element))].sort((x, y) => y - x);
        found.push([texts.currentNode.data, (a + .05) / (b + .05)]);
    }
    return found;
})()"""


class SheetInABrowser(Bus):
    @classmethod
    def setUpClass(cls):
        cls.browser = Browser()
        cls.addClassCleanup(cls.browser.close)

    def setUp(self):
        super().setUp()
        self.target = os.path.join(self.folder, "my <pictures> & more")
        os.mkdir(self.target)
        self.path = os.path.join(self.target, "sheet.html")
        self.browser.requests.clear()
        self.browser.complaints.clear()
        self.browser.resize(1280, 1600)
        self.browser.media()

    def picture(self, number, orientation=1, name="DCIM/100ABCDE/IMG_%04d.JPG"):
        self.put(name % number, tiny_jpeg.jpeg(tiny_jpeg.stored(SEEN, orientation), tiny_jpeg.exif(orientation)))

    def show_sheet(self, status=0):
        run = self.kelva("pictures", "--sheet", self.path)
        self.assertEqual(run.returncode, status, run.stderr)
        self.show_again()

    def show_again(self):
        self.browser.show(self.path.replace("%", "%25").replace("#", "%23").replace("?", "%3F"))

    def screenshot(self, name):
        """Kept beside the build, for people."""
        png = self.browser.screenshot()
        self.assertEqual(png[:8], b"\x89PNG\r\n\x1a\n")
        with open(os.path.join(PICTURES, name + ".png"), "wb") as file:
            file.write(png)
        return png

    def assert_close(self, colour, wanted, about):
        self.assertLess(max(abs(a - b) for a, b in zip(colour, wanted)), 40, (about, colour, wanted))

    def test_every_thumbnail_is_drawn_and_upright_however_the_camera_was_held(self):
        for orientation in range(1, 9):
            self.picture(orientation, orientation)
        self.show_sheet()
        images = self.browser.evaluate(CORNERS)
        self.assertEqual(len(images), 8)
        for orientation, (width, height, *corners) in enumerate(images, 1):
            self.assertEqual((width, height), (48, 32), orientation)
            for corner, wanted in zip(corners, (RED, GREEN, BLUE, YELLOW)):
                self.assert_close(corner, wanted, orientation)

    def test_the_window_shows_the_pictures(self):
        self.picture(1, 6)
        self.show_sheet()
        place = self.browser.evaluate("""(() => {
            const box = document.images[0].getBoundingClientRect();
            return [box.x, box.y, box.width, box.height];
        })()""")
        png = self.screenshot("one-picture")
        for part_x, part_y, wanted in ((.2, .2, RED), (.8, .2, GREEN), (.2, .8, BLUE), (.8, .8, YELLOW)):
            pixel = self.pixel(png, place[0] + place[2] * part_x, place[1] + place[3] * part_y)
            self.assert_close(pixel, wanted, (part_x, part_y))

    def pixel(self, png, x, y):
        return self.browser.evaluate("""(async () => {
            const image = new Image();
            image.src = 'data:image/png;base64,%s';
            await image.decode();
            const canvas = document.createElement('canvas');
            [canvas.width, canvas.height] = [image.width, image.height];
            const context = canvas.getContext('2d');
            context.drawImage(image, 0, 0);
            return [...context.getImageData(%d, %d, 1, 1).data].slice(0, 3);
        })()""" % (base64.b64encode(png).decode(), x, y))

    def test_there_is_no_script_and_nothing_else_is_asked_for(self):
        self.picture(1)
        self.picture(2, name="DCIM/101<'\">&/<b>'\"%04d.JPG")
        self.show_sheet()
        self.assertEqual(self.browser.evaluate("document.scripts.length"), 0)
        handlers = "[...document.querySelectorAll('*')].flatMap(e => [...e.attributes]).filter(a => /^on/i.test(a.name)).length"
        self.assertEqual(self.browser.evaluate(handlers), 0)
        self.assertEqual(self.browser.evaluate("document.querySelectorAll('h3').length"), 2)
        self.assertIn("<b>'\"0002", self.browser.evaluate("document.body.textContent"))
        asked = {url.split(":")[0] for url in self.browser.requests}
        self.assertLessEqual(asked, {"file", "data"})
        self.assertEqual([url for url in self.browser.requests if url.startswith("file")],
                         [url for url in self.browser.requests if url.endswith("/sheet.html")])
        self.assertEqual(self.browser.complaints, [])

    def test_the_policy_stops_what_a_page_could_fetch(self):
        self.picture(1)
        self.show_sheet()
        stopped = self.browser.evaluate("""new Promise(done => {
            document.addEventListener('securitypolicyviolation', event => done(event.violatedDirective));
            const image = new Image();
            image.src = 'http://203.0.113.1/x.png';
            document.body.append(image);
            setTimeout(() => done('nothing was stopped'), 5000);
            setTimeout(() => done('nothing was stopped'), 5000);
        })""")
        self.assertEqual(stopped, "img-src")

    def test_a_fetched_picture_opens_at_a_click(self):
        self.picture(1)
        self.picture(2)
        run = self.kelva("sync", "-p", "100% {stem} #1?.{ext}", self.target)
        self.assertEqual(run.returncode, 0, run.stderr)
        os.remove(os.path.join(self.target, "100% IMG_0002 #1?.JPG"))
        self.show_sheet()
        self.assertEqual(self.browser.evaluate("document.querySelectorAll('a.frame').length"), 1)
        for link in ("a.frame", "a.file"):
            self.show_again()
            self.browser.click(link)
            here = unquote(urlsplit(self.browser.evaluate("location.href")).path)
            self.assertEqual(here, os.path.join(self.target, "100% IMG_0001 #1?.JPG"))
            self.assertEqual(self.browser.evaluate("[document.images[0].naturalWidth, document.images[0].naturalHeight]"),
                             [48, 32])

    def many(self):
        for number in range(1, 25):
            self.picture(number, number % 8 + 1)
            self.put(f"DCIM/100ABCDE/IMG_{number:04d}.RAW", b"raw" * number)
        self.put("DCIM/100ABCDE/IMG_0025.JPG", b"no picture")
        self.put("DCIM/100ABCDE/IMG_0026.RAW", b"raw")
        self.assertEqual(self.kelva("sync", "-t", "jpg", self.target).returncode, 0)
        self.show_sheet(status=6)

    def test_text_can_be_read_in_light_and_dark_and_on_paper(self):
        self.many()
        papers = []
        for name, kind, scheme in (("light", "", "light"), ("dark", "", "dark"), ("print", "print", "dark")):
            self.browser.media(kind, scheme)
            contrasts = self.browser.evaluate(CONTRASTS)
            self.assertGreater(len(contrasts), 100)
            self.assertEqual([text for text, contrast in contrasts if contrast < 4.5], [], name)
            papers.append(self.browser.evaluate("getComputedStyle(document.body).backgroundColor"))
            self.screenshot(name)
        self.assertEqual(len(set(papers)), 3)
        self.assertEqual(papers[2], "rgb(255, 255, 255)")

    def test_the_page_fits_every_window(self):
        self.many()
        for width in WIDTHS:
            self.browser.resize(width, 900)
            self.assertLessEqual(self.browser.evaluate("document.documentElement.scrollWidth"), width)
            outside = "[...document.querySelectorAll('.card, .card *')].filter(e => e.getBoundingClientRect().right > %d).length"
            self.assertEqual(self.browser.evaluate(outside % width), 0, width)
            self.screenshot(f"width-{width}")

    def test_who_listens_to_the_page_hears_every_picture(self):
        self.many()
        tree = self.browser.ask("Accessibility.getFullAXTree")["nodes"]
        names = [node["name"]["value"] for node in tree if node.get("role", {}).get("value") == "image"]
        self.assertEqual(len(names), 26)
        self.assertEqual(names[0], "Picture 100ABCDE/IMG_0001")
        self.assertEqual(names[24:], ["Picture 100ABCDE/IMG_0025: cannot be drawn", "Picture 100ABCDE/IMG_0026: no JPEG"])
        links = [node["name"]["value"] for node in tree if node.get("role", {}).get("value") == "link"]
        self.assertNotIn("", links)


if __name__ == "__main__":
    PICTURES = os.path.abspath(sys.argv.pop())
    bench_of_cameras.main()
