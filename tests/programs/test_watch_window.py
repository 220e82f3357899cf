# SPDX-License-Identifier: MIT
"""The window of gravlex-watch on a display of its own, with a keyboard, a mouse and a window
manager."""

import contextlib
import re
import subprocess
import sys
import time
import unittest

sys.path += [f"{sys.path[0]}/..", f"{sys.path[0]}/../pictures"]
import running
import sessions
from test_watch import PATIENCE, Watched, table, watch

SETTINGS = ("--dread", "sms,tsms", "--dcombine", "sms,tsms")
SLOPE = ((2, 2, 2.1), (3, 1, 1.1), (4, 0, 0.1))
RED = bytes((0xAA, 0, 0))  # the theory
OTHER = ((2, 2, 2.1), (3, 1, 1.4), (4, 0, 0.1))
# Nothing of it may be a command for gnuplot, or in the protocol of its x11 terminal.
NAME = "'\";`touch x`$(touch x)\n|touch x"


def terminals():
    listed = subprocess.run(["gnuplot", "-e", "set terminal"], check=True, text=True,
                            stderr=subprocess.PIPE, timeout=PATIENCE).stderr
    return set(re.findall(r"(?m)^ +(x11|wxt|qt) ", listed))


class Desk:
    """A display with a window manager, which shows one window."""

    def __init__(self, display):
        self.display = display

    def ask(self, *words):
        return sessions.ask(self.display, *words).stdout.split()

    def until(self, question, text):
        end = time.monotonic() + PATIENCE
        while not (answer := question()):
            assert time.monotonic() < end, text
            time.sleep(0.1)
        return answer

    def window(self):
        """Once it is shown."""
        return self.until(lambda: self.ask("xdotool", "search", "--onlyvisible", "--class",
                                           "gnuplot"), "no window")[-1]

    def middle(self):
        """The pixels around its middle, where no text of the mouse's is; none without red ones,
        or while they change."""
        def now():
            with sessions.work_folder() as folder:
                self.ask("import", "-window", self.window(), "-depth", "8",
                         f"ppm:{folder}/window.ppm")
                _, size, _, pixels = (folder / "window.ppm").read_bytes().split(b"\n", 3)
            width, height = (int(number) for number in size.split())
            return pixels[height // 4 * width * 3:height * 3 // 4 * width * 3]
        shot = now()
        return shot if RED in shot and shot == now() else b""

    def picture(self):
        return self.until(self.middle, "no picture")

    def end_by(self, key, process):
        """Presses it in the window until that has an end: a key that comes early is lost."""
        def press():
            for window in self.ask("xdotool", "search", "--onlyvisible", "--class", "gnuplot"):
                self.ask("xdotool", "windowactivate", window, "key", key)
            return process.poll() is not None
        self.until(press, f"{key} does not end it")

    def zoom(self):
        """With the wheel, above the middle."""
        place = dict(re.findall(r"(X|Y|WIDTH|HEIGHT)=(\d+)", "\n".join(
            self.ask("xdotool", "getwindowgeometry", "--shell", self.window()))))
        x, y, width, height = (int(place[word]) for word in ("X", "Y", "WIDTH", "HEIGHT"))
        self.ask("xdotool", "mousemove", str(x + width // 2), str(y + height // 2))
        for action in (("keydown", "ctrl"), ("click", "4"), ("keyup", "ctrl")):
            self.ask("xdotool", *action)
            time.sleep(0.3)  # a program for windows wants time between the events


@contextlib.contextmanager
def desk():
    with sessions.x_display() as display, sessions.work_folder() as folder:
        ready = folder / "ready"  # a window that is shown too early is lost
        manager = running.start(["openbox", "--sm-disable", "--startup", f"touch {ready}"],
                                env=running.environment(folder, DISPLAY=display["name"]),
                                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        display["groups"].append(manager.pid)
        shown = Desk(display)
        try:
            shown.until(ready.exists, "no window manager")
            yield shown
        finally:
            manager.kill()
            manager.wait()


class Window(Watched):
    def observe(self, steps, arguments=(*SETTINGS, "fit.out"), status=0, but=None, **more):
        """On each terminal that has windows, but one: what the steps see of it ends it."""
        def begin(session, shown):
            session.wait("messages", "drawn 1\n")
            shown.window()
            steps(session, shown)
            session.process.wait(PATIENCE)
        for terminal in terminals() - {but}:
            with self.subTest(terminal), desk() as shown:
                env = {"DISPLAY": shown.display["name"], "GNUTERM": terminal}
                result = watch(arguments, lambda session: begin(session, shown), env=env, **more)
                self.check_end(result, status=status)

    def test_closed_by_the_window_manager(self):
        def steps(session, shown):
            title = " ".join(shown.ask("xdotool", "getwindowname", shown.window()))
            self.assertEqual(title, "gravlex-watch: " + NAME.replace("\n", "?"))
            shown.end_by("alt+F4", session.process)
            self.assertFalse((session.folder / "x").exists())
        self.observe(steps, (*SETTINGS, NAME), text={NAME: table("1-1")})

    def test_no_display(self):
        for terminal in terminals():
            with self.subTest(terminal):
                result = watch([*SETTINGS, "fit.out"],
                               env={"DISPLAY": "/nowhere", "GNUTERM": terminal})
                self.assertRegex(result.recorded["said"],
                                 rb"\Agravlex-watch: gnuplot says: .*(GTK|display|xcb).*\n\Z")
                self.assertEqual((result.status, result.left), (1, False))

    def test_closed_by_its_key(self):
        def steps(session, shown):
            shown.picture()
            shown.end_by("q", session.process)
        self.observe(steps, but="qt")  # which has no such key

    def test_ended_from_outside(self):
        def steps(session, shown):
            session.process.terminate()
            shown.until(lambda: not sessions.windows(shown.display), "the window stays")
        self.observe(steps, status=-15)

    def test_zoom(self):
        """It stays while the same curves are drawn, and goes with them."""
        def steps(session, shown):
            def draw(number, *what, **more):
                session.write(table(*what, **more))
                session.wait("messages", f"drawn {number}\n")
            whole = shown.picture()
            shown.zoom()
            zoomed = shown.until(lambda: (now := shown.picture()) != whole and now, "no zoom")
            draw(2, "1-1", rows=SLOPE)
            shown.until(lambda: shown.picture() == zoomed, "the zoom has gone")
            draw(3, "1-1", rows=OTHER)
            shown.until(lambda: shown.picture() not in (whole, zoomed), "the old data, or no zoom")
            draw(4, "2-1", rows=SLOPE)
            shown.until(lambda: shown.picture() == whole, "the zoom is still there")
            shown.end_by("alt+F4", session.process)
        self.observe(steps, text=table("1-1", rows=SLOPE))

    def test_window_stays_where_it_is(self):
        """Below another one, without the keyboard."""
        def steps(session, shown):
            def order():
                return shown.ask("xprop", "-root", "_NET_CLIENT_LIST_STACKING",
                                 "_NET_ACTIVE_WINDOW")
            other = running.start(["xmessage", "another"], env=running.environment(
                "/nonexistent", DISPLAY=shown.display["name"]))
            self.addCleanup(other.communicate)
            self.addCleanup(other.kill)
            above, = shown.until(lambda: shown.ask("xdotool", "search", "--onlyvisible",
                                                   "--name", "^xmessage$"), "no other window")
            shown.ask("xdotool", "windowactivate", "--sync", above)
            before = order()
            session.write(table("1-1", rows=OTHER))
            session.wait("messages", "drawn 2\n")
            shown.picture()
            self.assertEqual(order(), before)
            shown.end_by("alt+F4", session.process)
        self.observe(steps)


if __name__ == "__main__":
    running.require("Xvfb", "xdotool", "openbox", "xprop", "xmessage", "import")
    if not terminals():
        print("gnuplot has no windows here")
        sys.exit(running.SKIPPED)
    unittest.main(failfast=True)
