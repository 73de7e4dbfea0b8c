"""Chromium without a window and without a network, driven over its debugging pipe."""

import base64
import fcntl
import json
import os
import select
import shutil
import signal
import subprocess
import tempfile
import time

PATIENCE = 60  # seconds; a first start on a busy machine takes some


class Browser:
    """One page of one browser. Everything that it asks for is in `requests`, what it complains about in `complaints`."""

    def __init__(self):
        self.profile = tempfile.mkdtemp(prefix="kelva-browser-")
        to_browser, self.writer = pipe_with_high_ends()
        self.reader, from_browser = pipe_with_high_ends()
        # Its end of the pipe are the descriptors 3 and 4.
        launch = f'exec "$@" 3<&{to_browser} 4>&{from_browser}'
        self.process = subprocess.Popen(["bash", "-c", launch, "bash", *command(self.profile)],
                                        pass_fds=(to_browser, from_browser), stdout=subprocess.DEVNULL,
                                        stderr=subprocess.DEVNULL, start_new_session=True)
        os.close(to_browser)
        os.close(from_browser)
        self.pending = b""
        self.number = 0
        self.session = None
        self.events = []
        self.requests = []
        self.complaints = []
        self.open_page()

    def close(self):
        # The browser and its helpers have a group of their own; one that is left would write into the profile again.
        os.killpg(self.process.pid, signal.SIGKILL)
        self.process.wait()
        os.close(self.reader)
        os.close(self.writer)
        self.remove_profile()

    def remove_profile(self):
        end = time.monotonic() + PATIENCE
        while os.path.exists(self.profile):
            shutil.rmtree(self.profile, ignore_errors=True)
            if time.monotonic() > end:
                raise AssertionError(f"{self.profile} cannot be removed")

    def open_page(self):
        target = self.ask("Target.createTarget", url="about:blank")["targetId"]
        self.session = self.ask("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]
        for domain in ("Page", "Network", "Log", "Runtime", "Accessibility"):
            self.ask(domain + ".enable")
        self.ask("Network.emulateNetworkConditions", offline=True, latency=0, downloadThroughput=0, uploadThroughput=0)

    def show(self, path):
        """Opens a file of this machine and waits until it is loaded and painted."""
        self.forget("Page.loadEventFired")
        self.ask("Page.navigate", url="file://" + path)
        self.wait_for("Page.loadEventFired")
        # What is not painted yet has no size, and nobody hears of it.
        self.evaluate("new Promise(done => requestAnimationFrame(() => requestAnimationFrame(done)))")

    def click(self, selector):
        """Clicks the middle of an element as a person does, and waits for the page that it leads to."""
        place = self.evaluate("""(() => {
            const element = document.querySelector(%s);
            element.scrollIntoView({block: 'center'});
            const box = element.getBoundingClientRect();
            return [box.x + box.width / 2, box.y + box.height / 2];
        })()""" % json.dumps(selector))
        self.forget("Page.loadEventFired")
        for kind in ("mousePressed", "mouseReleased"):
            self.ask("Input.dispatchMouseEvent", type=kind, x=place[0], y=place[1], button="left", clickCount=1)
        self.wait_for("Page.loadEventFired")

    def evaluate(self, script):
        """The value of an expression on the page; a promise is waited for."""
        answer = self.ask("Runtime.evaluate", expression=script, returnByValue=True, awaitPromise=True)
        if "exceptionDetails" in answer:
            raise AssertionError(json.dumps(answer["exceptionDetails"]))
        return answer["result"].get("value")

    def screenshot(self):
        """What the window shows, as a PNG file."""
        return base64.b64decode(self.ask("Page.captureScreenshot", format="png")["data"])

    def resize(self, width, height):
        self.ask("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1, mobile=False)

    def media(self, kind="", scheme="light"):
        self.ask("Emulation.setEmulatedMedia", media=kind,
                 features=[{"name": "prefers-color-scheme", "value": scheme}])

    def ask(self, method, **parameters):
        self.number += 1
        message = {"id": self.number, "method": method, "params": parameters}
        if self.session:
            message["sessionId"] = self.session
        os.write(self.writer, json.dumps(message).encode() + b"\0")
        while True:
            answer = self.receive(method)
            if answer.get("id") == self.number:
                if "error" in answer:
                    raise AssertionError(f"{method}: {answer['error']}")
                return answer["result"]

    def forget(self, event):
        self.events = [name for name in self.events if name != event]

    def wait_for(self, event):
        while event not in self.events:
            self.receive(event)

    def receive(self, waiting_for):
        end = time.monotonic() + PATIENCE
        while b"\0" not in self.pending:
            if not select.select([self.reader], [], [], max(0, end - time.monotonic()))[0]:
                raise AssertionError(f"the browser said nothing for {PATIENCE} s; {waiting_for} was asked")
            piece = os.read(self.reader, 1 << 20)
            if not piece:
                raise AssertionError(f"the browser ended with {self.process.wait()}; {waiting_for} was asked")
            self.pending += piece
        line, self.pending = self.pending.split(b"\0", 1)
        message = json.loads(line)
        self.note(message)
        return message

    def note(self, message):
        method, parameters = message.get("method"), message.get("params", {})
        if method:
            self.events.append(method)
        if method == "Network.requestWillBeSent":
            self.requests.append(parameters["request"]["url"])
        if method == "Log.entryAdded":
            self.complaints.append(parameters["entry"]["text"])
        if method == "Runtime.consoleAPICalled":
            self.complaints.append(json.dumps(parameters["args"]))


def command(profile):
    program = shutil.which("chromium-headless-shell") or shutil.which("chromium")
    if program is None:
        raise AssertionError("chromium is missing; ./test browser installs it")
    words = [
        program, "--headless", "--remote-debugging-pipe", "--user-data-dir=" + profile, "--no-first-run", "--disable-gpu",
        "--hide-scrollbars", "--force-color-profile=srgb", "--disable-dev-shm-usage", "--disable-background-networking",
        "--host-resolver-rules=MAP * ~NOTFOUND"
    ]
    # Its sandbox does not work for root.
    return words + (["--no-sandbox"] if os.geteuid() == 0 else [])


def pipe_with_high_ends():
    """A pipe whose descriptors are none of those that the browser wants to have."""
    ends = []
    for low in os.pipe():
        ends.append(fcntl.fcntl(low, fcntl.F_DUPFD_CLOEXEC, 20))
        os.close(low)
    return ends
