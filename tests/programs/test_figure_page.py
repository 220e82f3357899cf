# SPDX-License-Identifier: MIT
"""The page for a browser, in a real one without a network: with real events of the mouse."""
import json
import os
import pathlib
import subprocess
import tempfile
import time
import unittest

import figures
import running
from figures import CCL4, content

BROWSER = ("chromium", "--headless", "--no-sandbox", "--disable-gpu", "--remote-debugging-pipe",
           "--window-size=1100,900", "--proxy-server=127.0.0.1:9")
running.require("gnuplot")
running.skip_unless_it_runs("chromium", "--version")

BAND = ("--smserrfill", "--data", "sms,tsms,smss", "--curves", "1-1,2-1", "-n", "1-1=<b> & 'x'")
PANELS = ("--smserrbars", "-d", "sms,tsms,smss", "-c", "1-1,2-1")


class Browser:
    """Talks to it through two pipes; each message ends with a NUL."""

    def __init__(self, folder, url):
        (read, self.to), (self.source, write) = os.pipe(), os.pipe()
        self.process = subprocess.Popen(
            ["bash", "-c", f'exec "$@" 3<&{read} 4>&{write}', "bash", *BROWSER,
             f"--user-data-dir={folder}/browser", "about:blank"], pass_fds=(read, write),
            stdin=subprocess.DEVNULL, stderr=subprocess.DEVNULL, env=running.environment(folder))
        os.close(read)
        os.close(write)
        self.number, self.session, self.rest, self.events = 0, None, b"", []
        page = next(target for target in self.call("Target.getTargets")["targetInfos"]
                    if target["type"] == "page")
        self.session = self.call("Target.attachToTarget", targetId=page["targetId"],
                                 flatten=True)["sessionId"]
        for domain in "Page", "Runtime", "Network", "Log":
            self.call(f"{domain}.enable")
        self.call("Page.navigate", url=url)
        while "Page.loadEventFired" not in [event["method"] for event in self.events]:
            self.events.append(self.receive())

    def receive(self):
        while b"\0" not in self.rest:
            piece = os.read(self.source, 1 << 20)
            assert piece, "the browser has ended"
            self.rest += piece
        message, self.rest = self.rest.split(b"\0", 1)
        return json.loads(message)

    def call(self, method, **parameters):
        self.number += 1
        message = {"id": self.number, "method": method, "params": parameters}
        if self.session:
            message["sessionId"] = self.session
        os.write(self.to, json.dumps(message).encode() + b"\0")
        while True:
            answer = self.receive()
            if answer.get("id") == self.number:
                assert "error" not in answer, answer
                return answer["result"]
            self.events.append(answer)

    def value(self, expression):
        result = self.call("Runtime.evaluate", expression=expression, returnByValue=True)
        assert "exceptionDetails" not in result, result
        return result["result"].get("value")

    def mouse(self, kind, place, button="none", **more):
        self.call("Input.dispatchMouseEvent", type=kind, x=place[0], y=place[1], button=button,
                  buttons={"none": 0, "left": 1, "right": 2}[button], **more)

    def click(self, place, button="left"):
        self.mouse("mouseMoved", place)
        self.mouse("mousePressed", place, button, clickCount=1)
        self.mouse("mouseReleased", place, button, clickCount=1)

    def middle(self, element):
        return self.value(f"(() => {{ const r = {element}.getBoundingClientRect();"
                          "return [r.x + r.width / 2, r.y + r.height / 2]; })()")

    def close(self):
        self.process.terminate()
        self.process.wait()
        os.close(self.to)
        os.close(self.source)


class Page(unittest.TestCase):
    def show(self, *arguments):
        folder = tempfile.TemporaryDirectory(prefix="gravlex-test-", ignore_cleanup_errors=True)
        self.addCleanup(folder.cleanup)
        page = pathlib.Path(folder.name) / "a.html"
        page.write_bytes(content("a.html", *arguments, CCL4))
        self.browser = Browser(folder.name, page.as_uri())
        self.addCleanup(self.browser.close)

    def check_parts(self, count):
        """A click on a name hides the curve and what belongs to it, another one shows them."""
        def hidden():
            return [self.browser.value(f"document.getElementById('{name}')"
                                       ".getAttribute('visibility') == 'hidden'") for name in pair]
        parts = self.browser.value("parts")
        self.assertEqual(len(parts), count)
        for pair in parts:
            name = self.browser.middle(f"document.getElementById('{pair[0]}_keyentry')")
            for wanted in True, False:
                self.browser.click(name)
                self.assertEqual(hidden(), [wanted, wanted])

    def check_mouse(self, svg):
        def view():
            return [float(x) for x in self.browser.value(f"{svg}.getAttribute('viewBox')").split()]
        middle = self.browser.middle(svg)
        self.browser.mouse("mouseMoved", middle)
        self.assertRegex(self.browser.value(f"{svg}.getElementById('coord_text').textContent"),
                         r"^[\d.]+ -?[\d.]+$")
        whole = view()
        self.browser.mouse("mouseWheel", middle, deltaX=0, deltaY=120)
        zoomed = view()
        self.assertLess(zoomed[2], whole[2])
        self.browser.mouse("mousePressed", middle, "left", clickCount=1)
        time.sleep(0.5)  # gnuplot's script tells a drag from a click so
        self.browser.mouse("mouseMoved", [middle[0] + 50, middle[1] + 20], "left")
        self.browser.mouse("mouseReleased", [middle[0] + 50, middle[1] + 20], "left", clickCount=1)
        self.assertNotEqual(view()[:2], zoomed[:2])
        self.browser.click(middle, "right")
        self.assertEqual(view(), whole)

    def check_silence(self):
        """No errors, and nothing asked for but the file itself."""
        methods = [event["method"] for event in self.browser.events]
        for method in "Runtime.exceptionThrown", "Log.entryAdded", "Runtime.consoleAPICalled":
            self.assertNotIn(method, methods)
        self.assertEqual(methods.count("Network.requestWillBeSent"), 1)

    def test_one_panel(self):
        self.show(*BAND)
        self.check_parts(2)
        self.check_mouse("document.querySelector('svg')")
        self.assertIn("Exp.sM(s) (<b> & 'x')", self.browser.value("document.body.textContent"))
        self.check_silence()

    def test_panels(self):
        """Each has coordinates and names of its own, also without --legend."""
        self.show(*PANELS)
        self.check_parts(2)
        svgs = self.browser.value("[...document.querySelectorAll('svg')].map(svg => "
                                  "[svg.getBoundingClientRect().x, svg.getBoundingClientRect().y])")
        self.assertEqual([len(svgs), len({x for x, _ in svgs}), len({y for _, y in svgs})],
                         [4, 2, 2])
        self.assertIn("Thr.sM(s) (2-1)", self.browser.value("document.body.textContent"))
        for panel in 0, 3:
            self.check_mouse(f"document.querySelectorAll('svg')[{panel}]")
        self.check_silence()


class Gnuplot(unittest.TestCase):
    def test_without_its_script(self):
        stub = b"#!/bin/sh\necho '<svg></svg>'\n"
        run = figures.figure("-o", "a.html", *BAND, CCL4, gnuplot=stub)
        self.assertEqual(run.stderr, "gravlex-figure: gnuplot has no script for pages: its file "
                                     "gnuplot_svg.js is missing\n")
        self.assertEqual((run.status, run.files), (1, {}))


if __name__ == "__main__":
    unittest.main()
