"""Chromium without a window, driven by its own protocol over a pair of pipes.

Every call that waits for an answer or an event fails at a deadline.
"""

import base64
import collections
import contextlib
import json
import os
import select
import shutil
import subprocess
import tempfile
import time
from collections.abc import Callable, Iterator
from pathlib import Path

CHROMIUM = shutil.which("chromium") or shutil.which("chromium-browser")
DEADLINE = 60  # seconds; far beyond the time of any step here

# For each key: its name in the browser's events, its key number, and the text that it types.
KEYS = {"Tab": ("Tab", 9, ""), "Enter": ("Enter", 13, "\r"), "Space": ("Space", 32, " "),
        "ArrowLeft": ("ArrowLeft", 37, "")}
SHIFT = 8


class Browser:
    """A run of Chromium with a profile of its own, which is removed when Chromium is closed."""

    def __init__(self):
        assert CHROMIUM, "chromium is not installed"
        self.profile = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
        commands, self.commands = os.pipe()
        self.answers, answers = os.pipe()
        self.process = subprocess.Popen(
            ["bash", "-c", f'exec "$@" 3<&{commands} 4>&{answers}', "-", CHROMIUM, "--headless", "--no-sandbox",
             "--disable-gpu", "--disable-dev-shm-usage", "--disable-background-networking", "--no-first-run",
             "--hide-scrollbars", "--force-device-scale-factor=1", "--remote-debugging-pipe",
             f"--user-data-dir={self.profile.name}", "about:blank"],
            pass_fds=(commands, answers), stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(commands)
        os.close(answers)
        self.unread = bytearray()
        self.events = collections.deque()
        self.replies = {}
        self.last = 0

    def close(self):
        with contextlib.suppress(AssertionError, OSError):
            self.call("Browser.close")
        try:
            self.process.wait(10)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()
        os.close(self.commands)
        os.close(self.answers)
        self.profile.cleanup()

    def call(self, method: str, session: str | None = None, **parameters) -> dict:
        """The result of a command; an error of the browser fails the test."""
        self.last += 1
        message = {"id": self.last, "method": method, "params": parameters}
        message |= {"sessionId": session} if session else {}
        data = json.dumps(message).encode() + b"\0"
        while data:
            data = data[os.write(self.commands, data):]
        number, end = self.last, time.monotonic() + DEADLINE
        while number not in self.replies:
            self.receive(end, method)
        reply = self.replies.pop(number)
        assert "error" not in reply, (method, reply["error"])
        return reply["result"]

    def receive(self, end: float, what: str):
        """Reads the next messages of the browser."""
        ready, _, _ = select.select([self.answers], [], [], max(0, end - time.monotonic()))
        more = os.read(self.answers, 1 << 20) if ready else b""
        assert more, f"the browser does not answer: {what}"
        *whole, self.unread = (self.unread + more).split(b"\0")
        for message in map(json.loads, whole):
            if "id" in message:
                self.replies[message["id"]] = message
            else:
                self.events.append(message | {"arrived": time.time()})

    def event(self, session: str, method: str) -> dict:
        """Waits for the next event of that name and removes it from the queue."""
        end = time.monotonic() + DEADLINE
        while True:
            for event in self.events:
                if event["method"] == method and event.get("sessionId") == session:
                    self.events.remove(event)
                    return event
            self.receive(end, method)

    def page(self, address: str, **emulation) -> "Page":
        return Page(self, address, **emulation)


class Page:
    """A tab. Its console and its exceptions are kept in `complaints`."""

    def __init__(self, browser: Browser, address: str, width: int = 1280, height: int = 900, dark: bool = False,
                 scale: float = 1, calm: bool = False):
        self.browser = browser
        self.target = browser.call("Target.createTarget", url="about:blank")["targetId"]
        self.session = browser.call("Target.attachToTarget", targetId=self.target, flatten=True)["sessionId"]
        for domain in ("Page", "Runtime", "Log", "Accessibility", "DOM"):
            self.call(f"{domain}.enable")
        self.resize(width, height, scale)
        self.call("Emulation.setEmulatedMedia", features=[
            {"name": "prefers-color-scheme", "value": "dark" if dark else "light"},
            {"name": "prefers-reduced-motion", "value": "reduce" if calm else "no-preference"}])
        self.go(address)

    def call(self, method: str, **parameters) -> dict:
        return self.browser.call(method, self.session, **parameters)

    def close(self):
        self.browser.call("Target.closeTarget", targetId=self.target)

    def go(self, address: str):
        """Opens an address and waits until its document is loaded."""
        answer = self.call("Page.navigate", url=address)
        if "loaderId" in answer:  # otherwise only the fragment of the address has changed
            self.browser.event(self.session, "Page.loadEventFired")

    def resize(self, width: int, height: int, scale: float = 1):
        self.call("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=scale,
                  mobile=False)

    def evaluate(self, expression: str):
        """The value of an expression in the page; a promise is waited for."""
        answer = self.call("Runtime.evaluate", expression=expression, returnByValue=True, awaitPromise=True)
        assert "exceptionDetails" not in answer, (expression, answer["exceptionDetails"])
        return answer["result"].get("value")

    def until(self, expression: str, what: str = ""):
        """Evaluates the expression until it is true, and returns its value."""
        answer = self.evaluate(f"""new Promise((resolve) => {{
            const ask = () => {{
              const value = ({expression});
              if (value) {{ clearInterval(timer); clearTimeout(limit); resolve(value); }}
            }};
            const timer = setInterval(ask, 10);
            const limit = setTimeout(() => {{ clearInterval(timer); resolve(null); }}, {DEADLINE * 500});
            ask();
          }})""")
        assert answer is not None, f"never: {what or expression}; the page says {self.evaluate('document.body.innerText')}"
        return answer

    def complaints(self) -> list[str]:
        """The complaints of the page and of the browser so far."""
        found = []
        for event in self.browser.events:
            if event.get("sessionId") != self.session:
                continue
            if event["method"] == "Runtime.exceptionThrown":
                found.append(json.dumps(event["params"]["exceptionDetails"]))
            if event["method"] == "Runtime.consoleAPICalled" and event["params"]["type"] in ("error", "warning"):
                found.append(json.dumps(event["params"]["args"]))
            if event["method"] == "Log.entryAdded" and event["params"]["entry"]["level"] in ("error", "warning"):
                found.append(json.dumps(event["params"]["entry"]))
        return found

    def press(self, key: str, shift: bool = False):
        code, number, text = KEYS[key]
        common = {"key": " " if key == "Space" else key, "code": code, "windowsVirtualKeyCode": number,
                  "modifiers": SHIFT if shift else 0}
        down = {"type": "keyDown", "text": text} if text else {"type": "rawKeyDown"}
        self.call("Input.dispatchKeyEvent", **down, **common)
        self.call("Input.dispatchKeyEvent", type="keyUp", **common)

    def type(self, text: str):
        self.call("Input.insertText", text=text)

    def click(self, expression: str):
        """Presses the mouse in the middle of an element."""
        x, y = self.evaluate(f"""(() => {{
            const element = {expression};
            element.scrollIntoView({{block: "center", behavior: "instant"}});
            const box = element.getBoundingClientRect();
            return [box.x + box.width / 2, box.y + box.height / 2];
          }})()""")
        for kind in ("mousePressed", "mouseReleased"):
            self.call("Input.dispatchMouseEvent", type=kind, x=x, y=y, button="left", clickCount=1)

    def follow(self, expression: str):
        """Clicks a link, and waits until its document is loaded."""
        self.click(expression)
        self.browser.event(self.session, "Page.loadEventFired")

    def tree(self) -> list[dict]:
        """The accessibility tree: role, name and properties of each element that is not ignored."""
        nodes = self.call("Accessibility.getFullAXTree")["nodes"]
        return [{"role": node["role"]["value"], "name": node.get("name", {}).get("value", ""),
                 **{entry["name"]: entry["value"].get("value") for entry in node.get("properties", [])}}
                for node in nodes if not node.get("ignored")]

    def picture(self, file: Path):
        """Writes the visible page as a PNG."""
        self.evaluate("new Promise((resolve) => requestAnimationFrame(() => requestAnimationFrame(resolve)))")
        file.write_bytes(base64.b64decode(self.call("Page.captureScreenshot", format="png")["data"]))

    def memory(self) -> dict[str, int]:
        """After a collection: bytes of the heap in use, and how many nodes and listeners there are."""
        self.call("HeapProfiler.collectGarbage")
        counts = self.call("Memory.getDOMCounters")
        return {"bytes": self.call("Runtime.getHeapUsage")["usedSize"], "nodes": counts["nodes"],
                "listeners": counts["jsEventListeners"]}


@contextlib.contextmanager
def running() -> Iterator[Browser]:
    browser = Browser()
    try:
        yield browser
    finally:
        browser.close()


def frames(page: Page, wanted: Callable[[bytes], bool]) -> Iterator[tuple[float, float]]:
    """For each picture of the page for which `wanted` is true: when the browser showed the picture, and when this
    process received it, in seconds since 1970."""
    while True:
        event = page.browser.event(page.session, "Page.screencastFrame")
        page.call("Page.screencastFrameAck", sessionId=event["params"]["sessionId"])
        if wanted(base64.b64decode(event["params"]["data"])):
            yield event["params"]["metadata"]["timestamp"], event["arrived"]
