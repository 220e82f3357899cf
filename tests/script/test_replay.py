# SPDX-License-Identifier: MIT
"""The real gnuplot draws from the files of gravlex-script what gravlex draws. There is no
display, so pictures of the screen are drawn as images as well."""

import re
import subprocess
import unittest

from script_runs import ONE_PLOT, ScriptTest
import running
from running import BENZENE, CCL4, PROGRAM

# The head of an EPS image tells when it was made.
DATE = re.compile(rb"(?m)^%%CreationDate.*$|^ */CreationDate.*$")


class Replay(ScriptTest):

    def setUp(self):
        super().setUp()
        (self.home / "path" / "gnuplot").unlink()  # here the real one is wanted
        self.drawn, self.again = self.home / "drawn by gravlex", self.home / "drawn again"
        self.drawn.mkdir()
        self.again.mkdir()

    def pixels(self, path):
        """What the image shows, as a checksum of all its pixels and its size."""
        show = subprocess.run(["identify", "-format", "%# %w %h %k", path], check=True, text=True,
                              timeout=running.TIME_LIMIT, stdout=subprocess.PIPE)
        checksum, width, height, colors = show.stdout.split()
        self.assertGreater(int(colors), 2, f"{path.name} is blank")
        return checksum, width, height

    def same_picture(self, name):
        self.assertTrue((self.drawn / name).exists(), f"{name} was not drawn")
        self.assertTrue((self.again / name).exists(), f"{name} was not drawn again")
        if name.endswith(".png"):
            self.assertEqual(self.pixels(self.drawn / name), self.pixels(self.again / name), name)
        else:
            one, two = (DATE.sub(b"", (folder / name).read_bytes())
                        for folder in (self.drawn, self.again))
            self.assertGreater(len(one), 5000, f"{name} is too small to show anything")
            self.assertEqual(one, two, name)

    def check(self, *arguments, images, files=("gravlex.gp",), options=()):
        """Draws with gravlex, keeps the commands, draws from them and compares."""
        _, err = self.run_script(*arguments, command=[PROGRAM], cwd=self.drawn)
        self.assertIn(err, [n * running.PIPE_LINE.encode() for n in range(len(files) + 1)])
        self.run_script(*options, *arguments)
        self.assertEqual(self.files(), sorted(files))
        for name in files:
            _, err = self.run_script("-persist", self.work / name, command=["gnuplot"],
                                     # which gravlex itself asks for where there is no display
                                     env={"GNUTERM": "unknown"}, cwd=self.again)
            self.assertNotIn(b"invalid command", err)
        self.assertEqual(sorted(path.name for path in self.drawn.iterdir()), sorted(images))
        self.assertEqual(sorted(path.name for path in self.again.iterdir()), sorted(images))
        for name in images:
            self.same_picture(name)

    def draw_on_screen_into(self, name):
        """Has gnuplot's own settings file turn the screen into an image."""
        (self.home / ".gnuplot").write_text(
            f'set terminal pngcairo size 900,700\nset output "{name}"\n')

    def test_png(self):
        self.check(*ONE_PLOT, "--png", "fit.png", CCL4, images=["fit.png"])

    def test_png_of_the_other_layout(self):
        self.check("--data", "int,bgl,tint", "--table", "2", "--ccombine", "1-1", "--legend",
                   "--grid", "--png", "fit.png", BENZENE, images=["fit.png"])

    def test_eps(self):
        self.check(*ONE_PLOT, "--eps", "fit.eps", CCL4, images=["fit.eps"])

    def test_svg(self):
        self.check(*ONE_PLOT, "--svg", "fit.svg", BENZENE, images=["fit.svg"])

    def test_deviations(self):
        self.check("--data", "sms,tsms,dsms,smss", "--curves", "1-1,2-1", "--smserrbars",
                   "--dsmslerrfill", "--imgw", "700", "--png", "fit.png", CCL4, images=["fit.png"])

    def test_sessions(self):
        self.check("--no-multiplot", "--dread", "sms,tsms", "--cread", "1-1,2-1", "--png",
                   "fit.png", CCL4, images=[f"{n}_fit.png" for n in range(1, 5)],
                   files=["gravlex.gp", *(f"gravlex-{n}.gp" for n in range(2, 5))])

    def test_names_with_blanks(self):
        self.check(*ONE_PLOT, "--png", "my best fit.png", CCL4, images=["my best fit.png"],
                   options=("-o", "my best fit.gp"), files=["my best fit.gp"])

    def test_page(self):
        self.draw_on_screen_into("page.png")
        self.check("--dread", "sms,tsms", "--cread", "1-1,2-1", CCL4, images=["page.png"])

    def test_page_that_was_to_be_an_image(self):
        """Nothing is written for a page, and so it is again."""
        self.draw_on_screen_into("page.png")
        self.check("--png", "fit.png", "--cread", "1-1", CCL4, images=["page.png"])

    def test_window(self):
        self.draw_on_screen_into("screen.png")
        self.check(*ONE_PLOT, CCL4, images=["screen.png"])

    def test_window_and_image(self):
        self.draw_on_screen_into("screen.png")
        self.check(*ONE_PLOT, "--svg", "fit.svg", CCL4, images=["screen.png", "fit.svg"])

    def test_terminal(self):
        self.check(*ONE_PLOT, "--term", 'svg size 500,400\nset output "own.svg"', CCL4,
                   images=["own.svg"])


if __name__ == "__main__":
    running.require("gnuplot", "identify")
    unittest.main()
