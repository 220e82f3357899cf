# SPDX-License-Identifier: MIT
"""The windows of the real gnuplot, which outlive gravlex."""

import re
import subprocess
import time

import files
import sessions
from running import PROGRAM
from sessions import draw, expect
from test_images import count_colors

SAMPLE = "examples/ccl4.out"
STACKED = "--data sms,tsms,dsms --curves 1-1,2-1"


def count_red_and_black(display, window, folder):
    """How many pixels of a window have the colour of the theory, and how many are black."""
    sessions.screenshot(display, window, folder / "window.png")
    image = files.read_png(folder / "window.png")
    counts = count_colors(image, 0, 0, *image[:2])
    return counts[170, 0, 0], counts[0, 0, 0]


def stays_open(folder):
    with sessions.x_display() as display:
        draw(f"{STACKED} {SAMPLE}", folder, display)
        window, = sessions.wait_for_windows(display, 1)
        time.sleep(2)  # long after gravlex has ended
        expect(sessions.windows(display) == [window], "the window does not stay open")
        red, black = count_red_and_black(display, window, folder)
        expect(red > 500 and black > 2000, f"the window has {red} red and {black} black pixels")


def opens_beside_an_image(folder):
    with sessions.x_display() as display:
        draw(f"{STACKED} --png fit.png {SAMPLE}", folder, display)
        expect(files.read_png(folder / "fit.png")[:2] == (1200, 800), "the image's size")
        window, = sessions.wait_for_windows(display, 1)
        red, _ = count_red_and_black(display, window, folder)
        expect(red > 500, f"the window has {red} red pixels")


def holds_all_panels(folder):
    """A page is for the window only: the image is not written."""
    with sessions.x_display() as display:
        draw("--dread sms,tsms,dsms --dcombine sms,tsms --cread 1-1,2-1 --png page.png "
             f"{SAMPLE}", folder, display)
        window, = sessions.wait_for_windows(display, 1)
        sessions.screenshot(display, window, folder / "window.png")
        width, height, pixels = files.read_png(folder / "window.png")
        # Theory on the left, differences on the right, in both rows.
        image, middle, half = (width, height, pixels), width // 2, height // 2
        for top, bottom in ((0, half), (half, height)):
            left = count_colors(image, 0, top, middle, bottom)[170, 0, 0]
            right = count_colors(image, middle, top, width, bottom)
            expect(left > 100, f"{left} red pixels on the left")
            expect(right[170, 0, 0] == 0, f"{right[170, 0, 0]} red pixels on the right")
            expect(right[0, 0, 0] > 500, f"{right[0, 0, 0]} black pixels on the right")
        expect(not (folder / "page.png").exists(), "a page of panels has become an image")


def one_for_each_plot(folder):
    with sessions.x_display() as display:
        draw(f"--dread sms,tsms --curves 2-1 --no-multiplot {SAMPLE}", folder, display)
        found = sessions.wait_for_windows(display, 2)
        expect(len(found) == 2, f"{len(found)} windows")


def in_a_folder(check):
    def test():
        with sessions.work_folder() as folder:
            check(folder)
    test.__name__ = check.__name__
    return test


def is_text(folder):
    """Without a display a plot can be looked at all the same."""
    out = draw(f"{STACKED} --term dumb {SAMPLE}", folder)
    expect(re.search(r"(?m)^ *\+-----", out), "no picture is made of letters")


def is_missed(folder):
    """Where gnuplot has no windows it says so, and the image is written all the same."""
    with sessions.x_display() as display:
        arguments = [*STACKED.split(), "--png", "fit.png", SAMPLE]
        _, _, err = sessions.run([PROGRAM, *arguments], folder, display)
        expect("'unknown' terminal" in err, f"no word of the missing window, but {err}")
        expect(files.read_png(folder / "fit.png")[:2] == (1200, 800), "the image's size")


WITH_WINDOWS = [is_text, stays_open, opens_beside_an_image, holds_all_panels, one_for_each_plot]
WITHOUT = [is_text, is_missed]

if __name__ == "__main__":
    terminals = subprocess.run(["gnuplot", "-e", "set terminal"], check=True,
                               stderr=subprocess.PIPE).stderr
    has_windows = re.search(rb"(?m)^ +(x11|qt|wxt) ", terminals)
    sessions.run_tests([in_a_folder(check) for check in (WITH_WINDOWS if has_windows else WITHOUT)])
