# SPDX-License-Identifier: MIT
"""gravlex-figure from its command line to its files, and what it says where there are none."""
import os
import signal
import time
import unittest
from pathlib import Path

import figures
import running
from figures import BENZENE, CCL4, CIRCLES, FIGURE, GNUPLOT, ONE_PLOT, content, drawn, figure

running.require("gnuplot")

ENDS = {"a.pdf": (b"%PDF-", b"%%EOF\n"), "a.eps": (b"%!PS-Adobe-3.0 EPSF-3.0", b"%%EOF\n"),
        "a.svg": (b"<?xml", b"</svg>\n\n"), "a.png": (b"\x89PNG", b"IEND\xae\x42\x60\x82"),
        "a.html": (b"<!DOCTYPE html>", b"</html>\n")}
LACKS_TERMINALS = f"""#!/bin/sh
sed 's/^set terminal .*/set terminal other/' "$2" | {GNUPLOT} -d /dev/stdin
""".encode()
# An input or option that is refused, and what is said.
REFUSED = (
    ((CCL4,), r"into which file\? -o FILE.pdf, .eps, .svg, .png or .html says it"),
    (("-o", "", CCL4), r"into which file\? -o FILE.pdf, .eps, .svg, .png or .html says it"),
    (("-o", "a.gif", CCL4), "a.gif has none of the endings .pdf, .eps, .svg, .png and .html"),
    (("-o", ".pdf", CCL4), ".pdf has none of the endings .*"),
    (("--png", "a.png", CCL4), "--png makes no sense here: use -o FILE.png"),
    (("--eps", "a.eps", CCL4), "--eps makes no sense here: use -o FILE.eps"),
    (("--svg", "a.svg", CCL4), "--svg makes no sense here: use -o FILE.svg"),
    (("-w", "100", CCL4), "--imgw makes no sense here: use -s WIDTHxHEIGHT, in cm"),
    (("-l", "100", CCL4), "--imgl makes no sense here: use -s WIDTHxHEIGHT, in cm"),
    (("--term", "dumb", CCL4), "--term makes no sense here: the ending of -o FILE decides"),
    (("-o", "a.pdf", "-s", "8,5x6", CCL4),
     "the size is WIDTHxHEIGHT in cm, each from 1 to 200, as in 17x11; not '8,5x6'"),
    (("-o", "a.pdf", "-s", "8x0.9", CCL4), "the size is .*"),
    (("-o", "a.pdf", "-s", "8x6cm", CCL4), "the size is .*"),
    (("-o", "a.pdf", "-s", "0.9x6", CCL4), "the size is .*"),
    (("-o", "a.pdf", "-s", "8x", CCL4), "the size is .*"),
    (("-o", "a.pdf", "-s", "201x6", CCL4), "the size is .*"),
    (("-o", "a.pdf", "-s", "20x201", CCL4), "the size is .*"),
    (("-o", "a.pdf", "-p", "0", CCL4), "--points is a number from 1 to 200"),
    (("-o", "a.png", "--dpi", "0", "none"), "--dpi is a number from 10 to 10000"),
    (("-o", "a.png", "-s", "17x1", "--dpi", "4896", CCL4),
     "a PNG has at most 32767 pixels a side: use a lower --dpi"),
    (("-o", "a.pdf", "--elw=-1", CCL4), "--elw is a number from 0 to 1000"),
    (("-o", "a.pdf", "--psf=-1", CCL4), "--psf is a number from 0 to 1000"),
    (("-o", "a.pdf", "--ratio", "2e6", CCL4), r"--ratio is a number from -1e\+06 to 1e\+06"),
    (("-o", "a.pdf", "--efa", "2", CCL4), "--efa is a number from 0 to 1"),
    (("-o", "a.pdf", "--lw", "nan", CCL4), "--lw is a number from 0 to 1000"),
    (("-o", "a.pdf", "--smsef=-1", CCL4), "--smsef is a number from 0 to 1000"),
    (("-o", "a.pdf", "--xmin=nan", CCL4), r"--xmin is a number from -1e\+15 to 1e\+15"),
    (("-o", "a.pdf", "--xmax=2e15", CCL4), r"--xmax is a number from -1e\+15 to 1e\+15"),
    *((("-o", "a.pdf", "--ratio", ratio, CCL4), "no page is large enough for this figure")
      for ratio in ("-1e-18", "1e6")),
    (("-o", "a.pdf", "--style_sms", "4", CCL4), "--style_sms is a number from 1 to 3"),
    (("-o", "a.pdf", "-n", "1-1", CCL4), "a name is N-M=TEXT, as in 1-1='500 mm'; not '1-1'"),
    (("-o", "a.pdf", "-n", "x=1-1", CCL4), "a name is N-M=TEXT, .*; not 'x=1-1'"),
    (("-o", "a.pdf", "-n", "1-1=a\nb", CCL4), "the name of 1-1 is no text in UTF-8 on one line"),
    *((("-o", "a.pdf", "-n", os.fsdecode(b"1-1=" + text), CCL4), "the name of 1-1 is no text .*")
      for text in (b"\xc5", b"\xc5\xc5", b"\xc2\x85", b"\x7f", b"\x80", b"\xff", b"\xc1\xa1",
                   b"\xf5\x80\x80\x80", b"\xe0\x80\x80", b"\xed\xa0\x80", b"\xed\xbf\xbf",
                   b"\xef\xbf\xbf", b"\xf0\x80\x80\x80", "\u2029".encode(), b"\xf4\x90\x80\x80",
                   b"\xf9\x90\x80\x80")),
    (("-o", "a.pdf", "-n", "9-9=x", CCL4),
     r"no data set 9-9 in .*ccl4.out \(table 1 has 1-1, 2-1, 3-1\)"),
    (("-o", "a.pdf", "--xmin", "9", "--xmax", "2", CCL4), "the axis of s cannot run from 9 to 2"),
    *((("-o", "a.pdf", "--xmin", low, "--xmax", high, *CIRCLES),
       "no curve has an s between --xmin and --xmax")
      for low, high in (("18.01", "200"), ("-9", "1.99"))),
    (("-o", "a.pdf", "--smserrbars", "--data", "sms", CCL4),
     "no deviations to show in .*: read smss as well"),
    (("-o", "a.pdf", running.EXAMPLES / "r_values.out"), "R-values cannot be drawn: .* --data"),
    (("-o", "a.pdf", "--smserrfill", "-d", "smss", CCL4), "nothing to draw in table 1 of .*"),
    (("-o", "a.pdf", "empty"), "empty is no output of KOVA: there is no table in it"),
    (("-o", "no/a.pdf", *CIRCLES), "cannot write no/a.pdf: No such file or directory"),
)


def refused(test, run, said):
    test.assertRegex(run.stderr, rf"\A(gravlex-figure: .*\n)*gravlex-figure: {said}\n\Z")
    test.assertEqual((run.status, run.files), (1, {}))


class Files(unittest.TestCase):
    def test_formats(self):
        for name, (start, end) in ENDS.items():
            with self.subTest(name):
                files = drawn("-o", name, *ONE_PLOT).files
                self.assertEqual(list(files), [name])
                self.assertTrue(files[name].startswith(start), files[name][:40])
                self.assertTrue(files[name].endswith(end), files[name][-40:])

    def test_numbered(self):
        """A plot of deviations that are shown with the curves has no file."""
        files = drawn("--no-multiplot", "-o", "fig.svg", "--smserrfill", "-d", "sms,tsms,smss",
                      "-c", "1-1,2-1", "--", CCL4).files
        self.assertEqual(list(files), [f"fig-{number}.svg" for number in (1, 2, 3, 4)])

    def test_what_is_there_stays_without_force(self):
        old = {"fig-2.pdf": b"old"}
        plots = ("--no-multiplot", "-d", "sms,tsms", "-c", "1-1", CCL4)
        run = figure("-o", "fig.pdf", *plots, files=old)
        refused(self, run, "fig-2.pdf exists already: -f replaces it")
        self.assertEqual(list(drawn("-f", "-o", "fig.pdf", *plots, files=old).files),
                         ["fig-1.pdf", "fig-2.pdf"])

    def test_names(self):
        for name in "it's \"a\" %d`id`$x.pdf", "|touch x.pdf", "-f.PDF", "a\nb.pdf", "ü\\.svg", \
                os.fsdecode(b"\xff.png"):
            with self.subTest(name):
                files = drawn("-o", name, "-s", "6x4", *CIRCLES).files
                self.assertEqual(list(files), [name])

    def test_several_or_none(self):
        """One of them cannot get its name."""
        gnuplot = ("#!/bin/sh\n[ ! -e ../once ] || touch fig-2.svg\ntouch ../once\n"
                   f'exec {GNUPLOT} "$@"\n').encode()
        run = figure("--no-multiplot", "-o", "fig.svg", "-d", "sms,tsms", "-c", "1-1", CCL4,
                     gnuplot=gnuplot)
        self.assertEqual((run.stderr, run.files), (
            "gravlex-figure: cannot write fig-2.svg: File exists\n", {}))

    def test_page(self):
        """All but the pictures."""
        name = "<a> & \"b'.out"
        stub = b"#!/bin/sh\necho '<svg gnuplot_svg = function />1</svg>\n<?xml?>\n<svg>2</svg>'\n"
        page = content("a.html", "--smserrbars", "-d", "sms,smss", "-c", "1-1,2-1", name,
                       files={name: CCL4.read_bytes()}, gnuplot=stub)
        self.assertEqual(page.decode(), Path(__file__).with_name("page.html").read_text())


class Refused(unittest.TestCase):
    def test_sentences(self):
        for arguments, said in REFUSED:
            with self.subTest(arguments):
                refused(self, figure(*arguments, files={"empty": ""}), said)

    def test_limits_themselves(self):
        drawn("-o", "a.png", "-p", "200", "-s", "200x200", "--dpi", "10", "--lw", "0",
              "--elw", "0", "--psf", "0", "--efa", "1", "--style_sms", "1", *CIRCLES)
        drawn("-o", "a.svg", "--xmin", "0", "--xmax", "2", *CIRCLES)
        drawn("-o", "a.svg", "--xmin", "18", *CIRCLES)
        drawn("-o", "a.svg", "--xmax", "2", *CIRCLES)
        drawn("-o", "a.pdf", "-p", "1", "-s", "1x1", "--efa", "0", "--style_sms", "3", *CIRCLES)

    def test_sets_with_other_columns(self):
        one, other = "|   Thr. sM(s)  |", "|  Delta sM(s)  |"
        text = CCL4.read_text().replace(one + other[1:], other + one[1:], 1)
        refused(self, figure("-o", "a.pdf", "a.out", files={"a.out": text}),
                "data sets 1-1 and 2-1 of a.out have different columns: .*")

    def test_without_arguments(self):
        run = running.run([FIGURE])
        self.assertEqual((run.status, run.stdout[:21]), (0, b"Usage: gravlex-figure"))


class Failures(unittest.TestCase):
    def test_gnuplot(self):
        for gnuplot, said in (
                (None, "gnuplot not found: install it, or put it on the search path"),
                (b"#!/bin/sh\necho a >&2\necho b >&2\necho >&2\nexit 1\n", "gnuplot says: b"),
                (LACKS_TERMINALS, "gnuplot says: (warning: )?unknown or ambiguous .*"),
                (b"#!/bin/sh\nexit 0\n", "gnuplot ended without a picture"),
                (b"#!/bin/sh\nprintf 'IEND\256\102\140\202'\n",
                 "gnuplot did not finish the picture: the disk of temporary files may be full"),
                (b"#!/bin/sh\nkill -9 $$\n", "gnuplot ended without a picture"),
                (f"#!/bin/sh\n{GNUPLOT} \"$@\" | head -c 9999\n".encode(),
                 "gnuplot did not finish the picture: the disk of temporary files may be full")):
            for name in ENDS:
                with self.subTest(said, name=name):
                    refused(self, figure("-o", name, *ONE_PLOT, gnuplot=gnuplot), said)

    def test_picture_without_a_size(self):
        stub = b"#!/bin/sh\necho '<svg></svg>'\n"
        self.assertEqual(content("a.svg", *ONE_PLOT, gnuplot=stub), b"<svg></svg>\n")

    def test_name_that_is_taken_meanwhile(self):
        for more, taking, why in ("-g", "touch", "File exists"), ("-f", "mkdir", "Is a directory"):
            gnuplot = f'#!/bin/sh\n{taking} a.svg\nexec {GNUPLOT} "$@"\n'.encode()
            run = figure("-o", "a.svg", more, *ONE_PLOT, gnuplot=gnuplot)
            self.assertEqual(run.stderr, f"gravlex-figure: cannot write a.svg: {why}\n")
            self.assertNotIn(b"<svg", b"".join(run.files.values()))

    def test_full_disk(self):
        """Of the file, and of temporary ones: blocks of 512 bytes."""
        for blocks in 4, 100:
            limited = ("sh", "-c", f'ulimit -S -f {blocks}; exec "$@"', "sh", FIGURE)
            run = figure("-o", "a.svg", *ONE_PLOT, command=limited)
            self.assertRegex(run.stderr, "gravlex-figure: .*\n")
            self.assertEqual((run.status, run.files), (1, {}))

    def test_few_descriptors(self):
        """Whichever file it is that there is none for; further plots need no more."""
        for limit in 4, 5, 6:
            limited = ("sh", "-c", f'ulimit -S -n {limit}; exec "$@"', "sh", FIGURE)
            refused(self, figure("-o", "a.svg", *ONE_PLOT, command=limited),
                    "cannot write a temporary file: Too many open files")
        limited = ("sh", "-c", 'ulimit -S -n 15; exec "$@"', "sh", FIGURE)
        run = drawn("-o", "a.svg", "--no-multiplot", "-d", "sms,tsms,dsms", BENZENE,
                    command=limited)
        self.assertEqual(len(run.files), 9)

    def test_signals(self):
        # A test that a shell has started in the background would pass on that it is ignored.
        signal.signal(signal.SIGINT, signal.default_int_handler)
        waits = b'#!/bin/sh\n: >"$RECORD/started"\nexec sleep 1000\n'
        for number in signal.SIGHUP, signal.SIGINT, signal.SIGTERM:
            def end(process, folder, number=number):
                while not (folder / "record" / "started").exists():
                    time.sleep(0.01)
                process.send_signal(number)
            run = figure("-f", "-o", "a.pdf", *ONE_PLOT, files={"a.pdf": b"old"}, gnuplot=waits,
                         meanwhile=end)
            self.assertEqual((run.status, run.files), (-number, {}))


if __name__ == "__main__":
    unittest.main()
