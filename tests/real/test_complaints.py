# SPDX-License-Identifier: MIT
"""What the real gnuplot says about a plot, and what of it gravlex passes on. There is no
display, as on a server."""

import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

sys.path.append(f"{sys.path[0]}/..")
import running
from running import BENZENE, CCL4, PIPE_LINE, PROGRAM

ONE_PLOT = ("--data", "sms,tsms", "--curves", "1-1,2-1")
PAGE = ("--dread", "sms,tsms")
PANELS = 6  # on that page: two kinds of three sets
# What gnuplot makes of a row that it takes for a command, or of the end of a block of them.
COMPLAINT = re.compile(r"\ngnuplot> (?:e|(?:\S+ ){1,2}\S+)\n +\^\n +line \d+: invalid command\n\n")
WARNINGS = re.compile(r"(?m)^WARNING: Plotting with (?:an )?'unknown' terminal\.\n"
                      r"No output will be generated\. Please select a terminal with .*\n")


def text_picture(printed):
    """Width, height and number of frames of the picture that is drawn with letters."""
    lines = printed.rpartition("\f")[2].splitlines()
    frames = sum(len(re.findall(r"\+-+\+", line)) for line in lines) // 2
    return max(map(len, lines)), len(lines), frames


class Complaints(unittest.TestCase):

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="gravlex-real-")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.env = running.environment(folder.name)

    def start(self, command, **more):
        # An image without a file of its own goes to standard output, so not all of it is text.
        return subprocess.run(command, cwd=self.folder, timeout=running.TIME_LIMIT,
                              encoding="latin-1", stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, **more)

    def gravlex(self, *arguments, **env):
        """Runs gravlex and returns what it printed; it must end well."""
        done = self.start([PROGRAM, *arguments], env={**self.env, **env}, stdin=subprocess.DEVNULL)
        self.assertEqual(done.returncode, 0, done.stderr)
        return done

    def gnuplot_alone(self, *arguments, terminal="unknown"):
        """What gnuplot says about the same commands when nobody stands between."""
        commands, = running.run([PROGRAM, *arguments]).streams
        return self.start(["gnuplot"], env={**self.env, "GNUTERM": terminal},
                          input=commands.decode("latin-1")).stderr

    def image(self, name):
        path = self.folder / name
        self.assertTrue(path.exists(), f"{name} was not written")
        self.assertGreater(path.stat().st_size, 5000, f"{name} is too small to show anything")

    def test_image_prints_no_complaint(self):
        for sample in CCL4, BENZENE:
            for kind in "png", "eps", "svg":
                with self.subTest(sample=sample.name, kind=kind):
                    done = self.gravlex(*ONE_PLOT, f"--{kind}", f"{sample.stem}.{kind}", sample)
                    self.assertIn(done.stderr, ("", PIPE_LINE))
                    self.image(f"{sample.stem}.{kind}")

    def test_gnuplot_alone_complains(self):
        """There is something to keep back, or the other tests would show nothing."""
        rows = len(COMPLAINT.findall(self.gnuplot_alone(*ONE_PLOT, "--png", "a.png", CCL4)))
        self.assertEqual(rows, 2 * (161 + 281) + 4, "rows and ends of the second copy")

    def test_deviations_print_no_complaint(self):
        done = self.gravlex("--data", "sms,tsms,dsms,smss", "--curves", "1-1", "--smserrbars",
                            "--dsmserrfill", "--png", "a.png", CCL4)
        self.assertIn(done.stderr, ("", PIPE_LINE))
        self.image("a.png")

    def test_image_prints_no_complaint_in_the_c_locale(self):
        done = self.gravlex(*ONE_PLOT, "--png", "a.png", CCL4, LC_ALL="C")
        self.assertIn(done.stderr, ("", PIPE_LINE))
        self.image("a.png")

    def test_several_images_print_no_complaint(self):
        done = self.gravlex("--no-multiplot", "--dread", "sms,tsms", "--cread", "1-1,2-1",
                            "--png", "a.png", CCL4)
        self.assertIn(done.stderr, [n * PIPE_LINE for n in range(5)])
        for n in range(1, 5):
            self.image(f"{n}_a.png")

    def test_page_prints_no_complaint(self):
        done = self.gravlex(*PAGE, CCL4, GNUTERM="dumb")
        self.assertEqual(done.stderr, "")
        self.assertIn("KOVA GED curves", done.stdout)

    def test_page_is_drawn_with_the_terminal_asked_for(self):
        for locale in "C.UTF-8", "C":
            for size in ((79, 24), (120, 40)):
                with self.subTest(locale=locale, size=size):
                    term = "dumb size {},{}".format(*size)
                    done = self.gravlex("--term", term, *PAGE, CCL4, GNUTERM="", LC_ALL=locale)
                    self.assertIn(done.stderr, ("", PIPE_LINE))
                    self.assertEqual(text_picture(done.stdout), (*size, PANELS))

    def test_gnuplot_alone_complains_of_the_terminal(self):
        said = self.gnuplot_alone("--term", "dumb", *PAGE, CCL4, terminal="dumb")
        self.assertEqual(said.count("You can't change the terminal in multiplot mode"), PANELS)

    def test_one_plot_is_drawn_with_the_terminal_asked_for(self):
        done = self.gravlex("--term", "dumb", *ONE_PLOT, CCL4)
        self.assertEqual(done.stderr, "")
        self.assertEqual(text_picture(done.stdout), (79, 24, 1))
        done = self.gravlex("--term", "dumb", *ONE_PLOT, "--png", "a.png", CCL4)
        self.assertIn(done.stderr, ("", PIPE_LINE))
        self.assertEqual(text_picture(done.stdout), (79, 24, 1))
        self.image("a.png")

    def test_wrong_terminal_of_a_page_is_shown(self):
        done = self.gravlex("--term", "wrong", *PAGE, CCL4)
        self.assertIn("\nset term wrong\n", done.stderr)
        self.assertIn("unknown or ambiguous terminal type", done.stderr)

    def test_wrong_terminal_is_shown(self):
        done = self.gravlex("--term", "wrong", *ONE_PLOT, "--png", "a.png", CCL4)
        self.assertIn("\ngnuplot> set terminal wrong\n", done.stderr)
        self.assertIn("unknown or ambiguous terminal type", done.stderr)
        self.assertNotIn("invalid command", done.stderr)
        self.image("a.png")

    def test_wrong_terminal_is_shown_without_image(self):
        done = self.gravlex("--term", "wrong", *ONE_PLOT, CCL4)
        self.assertIn("\ngnuplot> set terminal wrong\n", done.stderr)
        self.assertIn("unknown or ambiguous terminal type", done.stderr)

    def test_missing_folder_is_shown(self):
        done = self.gravlex(*ONE_PLOT, "--png", "nowhere/a.png", CCL4)
        self.assertIn('\ngnuplot> set output "nowhere/a.png"\n', done.stderr)
        self.assertIn("cannot open file; output not changed", done.stderr)
        self.assertNotIn("invalid command", done.stderr)

    def test_nothing_else_is_lost(self):
        """A message of gnuplot's own among the complaints: it alone is left, to the byte."""
        arguments = (*ONE_PLOT, "--png", "nowhere/a.png", CCL4)
        alone = WARNINGS.sub("", COMPLAINT.sub("", self.gnuplot_alone(*arguments)))
        self.assertTrue(alone)
        done = self.gravlex(*arguments)
        self.assertEqual(done.stderr.removesuffix(PIPE_LINE), alone)


if __name__ == "__main__":
    running.require("gnuplot")
    unittest.main()
