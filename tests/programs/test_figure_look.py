# SPDX-License-Identifier: MIT
"""What is in the figures: sizes, letters, colours, and that everything has its place."""
import pathlib
import re
import shlex
import struct
import sys
import unittest
import zlib

import figures
import kova
import running
from figures import BENZENE, CCL4, CIRCLES, ONE_PLOT, content, drawn

running.require("gnuplot", "pdffonts", "pdftotext")

STREAMS = pathlib.Path(__file__).with_name("figures.txt")
ACCEPTING = False  # that what is sent is right
NAMES = ("-n", "1-1=500 mm", "-n", "2-1=the long nozzle distance, Ångström λ°")
PLOTS = {
    "circles": CIRCLES,
    "names": (*NAMES, *ONE_PLOT),
    "numbers": ("--ytics", "--no-autoshifts", "--x2tics", "--y2tics", "--grid", "--legend",
                "--data", "int,bgl,tint", "-t", "2", "--curves", "2-1", BENZENE),
    "many labels": ("--data", "all", "-t", "3", "--curves", "2-1", CCL4),
    "band": ("--smserrfill", "--dsmslerrfill", "--data", "sms,tsms,dsms,smss", "--legend",
             "--curves", "1-1,2-1", CCL4),
    "ratio": ("--ratio", "0.5", "--data", "sms,tsms", "--curves", "1-1", CCL4),
    "ratio of units": ("--ratio=-2", "--ytics", "--no-autoshifts", "--data", "sms,tsms",
                       "--curves", "1-1", CCL4),
    "flat": ("--ratio", "0.02", *CIRCLES),
    "panels": ("--legend", "--ytics", "-c", "1-1,2-1", "-d", "sms,tsms", CCL4),
}
SIZES = (("6x4", 8), ("8.5x6", 8), ("30x20", 8), ("25x15", 18))
# The size that is needed instead.
TOO_SMALL = {("names", "6x4"): "7.9x4", ("panels", "6x4"): "8x6",
             ("circles", "6x1"): "6x1.9", ("numbers", "2x6"): "3.5x6",
             ("flat", "6x4"): "43.2x4", ("flat", "8.5x6"): "43.2x6",
             ("flat", "30x20"): "43.2x20", ("flat", "25x15"): "97.1x15"}
# The same for letters of 60 points, where small parts of them can be seen.
FOR_LARGE = {"circles": "18.7x13.6", "names": "59.2x29.7", "numbers": "28.2x21.7",
             "many labels": "26.3x13.6", "band": "22x29.7", "ratio": "18.7x13.6",
             "ratio of units": "28.7x13.6", "flat": "323.5x13.6", "panels": "44x32.9"}


def trimmed(word, points):
    """Letters do not fill the box of a line: less of it, across the direction of the text."""
    left, top, right, bottom, text = word
    edge = 0.12 * points
    if bottom - top > 1.3 * points > right - left:
        return left + edge, top, right - edge, bottom, text
    return left, top + edge, right, bottom - edge, text


def meet(one, other):
    return (one[0] < other[2] - 0.05 and one[2] > other[0] + 0.05
            and one[1] < other[3] - 0.05 and one[3] > other[1] + 0.05)


def how_many(block):
    rows = block[2].splitlines()
    return f"{block[1]}: {len(rows)} rows to {rows[-1]}\n"


def letter_widths():
    """Of ' ' to '~', in em, as the font has them that stands in for Arial: they are the glyphs from
    the fourth on."""
    font = pathlib.Path(figures.tool("fc-match", "-f", "%{file}", "Arial")).read_bytes()
    tables = {name: font[offset:offset + size] for name, _, offset, size in
              struct.iter_unpack(">4sIII", font[12:12 + 16 * struct.unpack(">H", font[4:6])[0]])}
    widths = struct.unpack_from(">" + "Hh" * (3 + 95), tables[b"hmtx"])[2 * 3::2]
    return [width / struct.unpack_from(">H", tables[b"head"], 18)[0] for width in widths]


class Commands(unittest.TestCase):
    maxDiff = None

    def test_all(self):
        """After looking at the pictures: test_figure_look.py --accept Commands"""
        found = ""
        for arguments in re.findall(r"(?m)^> (.*)$", STREAMS.read_text()):
            commands = drawn(*shlex.split(arguments)).commands
            found += f"> {arguments}\n" + re.sub(r"(?ms)^(\$\w+) << EOD\n(.*?)^EOD\n",
                                                 how_many, commands)
        if ACCEPTING:
            STREAMS.write_text(found)
        self.assertEqual(found, STREAMS.read_text())


class Places(unittest.TestCase):
    def check(self, arguments, size, points):
        run = drawn("-o", "a.pdf", "-s", size, "-p", str(points), *arguments)
        width, height = figures.page_size(run.files["a.pdf"])
        words = [trimmed(word, points) for word in figures.words(run.files["a.pdf"])]
        places = figures.frames(run.commands, width, height)
        self.assertGreater(len(words), 5)
        for index, word in enumerate(words):
            self.assertTrue(0 <= word[0] and 0 <= word[1], f"cut off: {word}")
            self.assertTrue(word[2] <= width and word[3] <= height, f"cut off: {word}")
            for other in words[:index] + places:
                self.assertFalse(meet(word, other), f"{word} on {other}")

    def test_nothing_is_cut_off_or_overlaps(self):
        for (name, arguments) in PLOTS.items():
            for size, points in SIZES:
                if (name, size) not in TOO_SMALL:
                    with self.subTest(name, size=size):
                        self.check(arguments, size, points)

    def test_ratio(self):
        commands = drawn("-o", "a.png", "-s", "8x6", *PLOTS["ratio"]).commands
        [(left, top, right, bottom)] = figures.frames(commands, 8, 6)
        self.assertAlmostEqual((bottom - top) / (right - left), 0.5, delta=0.001)

    def test_long_label(self):
        """That of five kinds is longer than the page is high."""
        self.check(PLOTS["many labels"], "6x4", 11)

    def test_falling_s(self):
        """Where s falls, the axis still rises."""
        rows = [(3 - k / 10, k, k) for k in range(20)]
        commands = drawn("-o", "a.svg", "-d", "sms", "-c", "1-1", "a",
                         files={"a": figures.table(rows)}).commands
        self.assertIn("set xrange [1.005 : 3.095]", commands)

    def test_long_numbers_at_the_ends(self):
        self.check(("--xmin", "-1000", "--xmax", "1000", *ONE_PLOT), "8.5x6", 8)

    def test_what_is_too_small_says_which_size_would_do(self):
        for (name, size), needed in TOO_SMALL.items():
            with self.subTest(name, size=size):
                points = dict(SIZES).get(size, 8)
                run = figures.figure("-o", "a.pdf", "-s", size, "-p", str(points), *PLOTS[name])
                self.assertEqual(run.stderr, f"gravlex-figure: {size} cm is too small for this "
                                             f"figure: it needs {needed} cm\n")
                self.assertEqual((run.status, run.files), (1, {}))
                self.check(PLOTS[name], needed, points)

    def test_large_letters_need_more(self):
        for name, needed in FOR_LARGE.items():
            run = figures.figure("-o", "a.pdf", "-s", "1x1", "-p", "60", *PLOTS[name])
            self.assertIn(f"it needs {needed} cm\n", run.stderr, name)

    def test_panels_have_a_least_size(self):
        """Letters of any size fit, but nothing could be seen."""
        for size, needed in ("7x5", "8x9"), ("7x10", "8x10"), ("10x8.9", "10x9"):
            run = figures.figure("-o", "a.pdf", "-p", "1", "-s", size, "-d", "sms,tsms", CCL4)
            self.assertIn(f"it needs {needed} cm\n", run.stderr)
        drawn("-o", "a.pdf", "-p", "1", "-s", "8x9", "-d", "sms,tsms", CCL4)

    def test_frames_of_panels_stand_in_line(self):
        """Whatever numbers are beside them."""
        commands = drawn("-o", "a.pdf", "--ytics", "--no-autoshifts", "-t", "2", "-d", "int,dint",
                         "-c", "2-1", CCL4).commands
        left, right = figures.frames(commands, 2, 1)
        for one, other in (left[0], right[0]), (left[2], right[2]):
            self.assertAlmostEqual(other - one, 1, delta=0.001)

    def test_no_room_for_what_is_not_drawn(self):
        """Deviations that are shown with the curves have no panel."""
        run = drawn("-o", "a.pdf", "--smserrfill", "-c", "1-1", "-d", "sms,tsms,smss", CCL4)
        self.assertEqual(len(figures.frames(run.commands, 1, 1)), 2)


class Letters(unittest.TestCase):
    def test_size(self):
        for points in 8, 18:
            pdf = content("a.pdf", "-s", "25x15", "-p", str(points), "--legend", *ONE_PLOT)
            self.assertAlmostEqual(max(figures.letter_sizes(pdf)), points, delta=0.05)

    def test_widths(self):
        """Those that make room for a legend: a thousand of a letter are this wide, in cm."""
        def needed(letter):
            run = figures.figure("-o", "a.pdf", "-n", f"1-1={1000 * letter}", *CIRCLES)
            return float(re.search(r"it needs ([\d.]+)x11 cm\n", run.stderr)[1])

        letters = [chr(code) for code in range(ord(" "), ord("~") + 1)]
        found = list(running.side_by_side(needed, letters))
        em = 1000 * 8 / 72 * 2.54
        rest = found[letters.index("0")] - 0.556 * em
        for letter, centimetres, width in zip(letters, found, letter_widths()):
            self.assertAlmostEqual((centimetres - rest) / em, width, delta=0.0006, msg=letter)

    def test_fonts_are_embedded(self):
        lines = figures.tool("pdffonts", "-", given=content("a.pdf", *ONE_PLOT)).splitlines()[2:]
        self.assertTrue(any("Italic" in line for line in lines), lines)
        for line in lines:
            self.assertRegex(line, r" yes (yes|no) +(yes|no) +\d+ +\d+$")
        eps = content("a.eps", *ONE_PLOT)
        self.assertEqual(eps.count(b"/FontType 42"), 2)

    def test_names_are_literal(self):
        text = "it's '';system 'touch harm';# {/:Bold x}_1^2 & <b> \"q\" \\n $x @a %s `id` λÅ—"
        run = drawn("-o", "a.pdf", "-s", "30x11", "-n", f"1-1={text}", "-d", "sms", "-c", "1-1,1-2",
                    BENZENE)
        self.assertEqual(list(run.files), ["a.pdf"])
        shown = " ".join(figures.tool("pdftotext", "-raw", "-", "-",
                                      given=run.files["a.pdf"]).split())
        self.assertIn(f"Exp.sM(s) ({text})", shown)
        self.assertIn("Exp.sM(s) (1-2)", shown)
        ends = "~\u00a0\u07ff\u0800\ud7ff\ue000\ufffd\U00010000\U0010fffd"
        self.assertIn(f"({ends})", content("a.svg", "-n", f"1-1={ends}", *ONE_PLOT).decode())

    def test_places_of_names(self):
        """The kinds of a set stand in one row as soon as they fit, and below each other before."""
        for width, rows in (8.5, 3), (9, 1), (17, 1):
            commands = drawn("-o", "a.svg", "-s", f"{width}x9", "--legend", *ONE_PLOT).commands
            heights = re.findall(r'title ".*\(1-1\)" at screen .*, screen (\S+)',
                                 commands.replace(r"\055", "-"))
            self.assertEqual((len(heights), len(set(heights))), (3, rows), commands)

    def test_numbers_of_y(self):
        """Where they mean something: no curve is shifted, not only the first."""
        flat = kova.file(kova.table(kova.data_set("1-1", "s sms", "1 0", "2 0", "3 0"),
                                    kova.data_set("2-1", "s sms", "1 -1", "2 1", "3 -1")))
        for arguments, numbers in (("--ytics", *ONE_PLOT), False), \
                (("--no-autoshifts", *ONE_PLOT), False), \
                (("--ytics", "--no-autoshifts", *ONE_PLOT), True), \
                (("--ytics", "--data", "sms", "--curves", "1-1,2-1", "flat"), False):
            commands = drawn("-o", "a.svg", *arguments, files={"flat": flat}).commands
            self.assertEqual("set format y '%.10g'" in commands, numbers, arguments)


class Sizes(unittest.TestCase):
    def test_page(self):
        for width, height in (8.5, 6), (17, 11):
            exact = [side / 2.54 * 72 for side in (width, height)]
            size = f"{width}x{height}"
            pdf = content("a.pdf", "-s", size, *CIRCLES)
            eps = content("a.eps", "-s", size, *CIRCLES).decode("latin-1")
            box = re.search(r"%%BoundingBox: 0 0 (\d+) (\d+)", eps)
            for sides in figures.page_size(pdf), map(float, box.groups()):
                for side, wanted in zip(sides, exact):
                    self.assertAlmostEqual(side, wanted, delta=0.51)

    def test_png(self):
        for dpi, unit in ((), 23622), (("--dpi", "100"), 3937):
            png = content("a.png", "-s", "8.5x6", *dpi, *CIRCLES)
            wanted = [round(side / 2.54 * int(dpi[1] if dpi else 600)) for side in (8.5, 6)]
            self.assertEqual(list(struct.unpack(">II", png[16:24])), wanted)
            piece = b"pHYs" + struct.pack(">IIB", unit, unit, 1)
            self.assertEqual(png[33:54], struct.pack(">I", 9) + piece +
                             struct.pack(">I", zlib.crc32(piece)))

    def test_svg(self):
        svg = content("a.svg", "-s", "8.5x6", *CIRCLES).decode()
        self.assertRegex(svg, r'(?s)^.*?<svg.*?\n width="8.5cm" height="6cm"\n viewBox="0 0 ')


class Curves(unittest.TestCase):
    def test_bands_are_behind_all_curves(self):
        for name in "a.eps", "a.png":
            commands = drawn("-o", name, *PLOTS["band"]).commands
            series = re.search(r"plot ((?:.*\\\n)*.*)", commands)[1].split("\\\n")
            kinds = ["filledcurves" in line for line in series]
            self.assertEqual(kinds, sorted(kinds, reverse=True))
            self.assertEqual(sum(kinds), 4)
        self.assertIn("fillcolor rgb '#808080'", commands)

    def test_bars(self):
        """Neither a dot nor a cleared disk at a bar hides the curve or the circle."""
        svg = content("a.svg", "--smserrbars", "--data", "sms,tsms,smss", "--curves", "1-1",
                      CCL4).decode()
        self.assertEqual(svg.count("<use xlink:href='#gpDot'"), 0)
        disks = re.findall(r"scale\((.*?)\)' color='#FFFFFF'", svg)
        self.assertLess(max(map(float, disks), default=0), 0.1)

    def test_room_for_deviations(self):
        """Where they are drawn, and none for their column."""
        for option in "--dsmserrbars", "--dsmserrfill", "--dsmslerrfill":
            commands = drawn("-o", "a.pdf", option, "--smsef", "9", "--data", "dsms,smss",
                             "--curves", "3-1", CCL4).commands
            low, high = map(float, re.search(r"set yrange \[(\S+) : (\S+)\]", commands).groups())
            block = re.search(r"_dev << EOD\n(.*?)EOD", commands, re.S)[1]
            ends = [end for _, a, b in (map(float, row.split()) for row in block.splitlines())
                    for end in ((a - b, a + b) if "bars" in option else (a, b))]
            self.assertTrue(0 < min(ends) - low < 0.1 * (high - low), option)
            self.assertTrue(0 < high - max(ends) < 0.1 * (high - low), option)

    def test_colors(self):
        for grey, color in ((), "170,0,0"), (("-g",), "112,112,112"):
            svg = content("a.svg", *grey, *ONE_PLOT).decode().replace(" ", "")
            found = {color for color in re.findall(r"rgb\((.*?)\)", svg) if color != "0,0,0"}
            self.assertEqual(found, {color})

    def test_widths(self):
        """On paper, whatever the factors of gnuplot's terminals."""
        pdf = content("a.pdf", *ONE_PLOT)
        widths = set()
        for stream in re.findall(rb"stream\r?\n(.*?)endstream", pdf, re.S):
            try:
                text = zlib.decompressobj().decompress(stream)
            except zlib.error:
                continue
            widths |= {round(float(value), 2) for value in re.findall(rb"(\S+) w\b", text)}
        self.assertEqual(widths, {0.35, 0.5, 0.8})

    def test_thin_lines(self):
        """In a PNG a line of very many rows keeps those that can be seen; circles stay."""
        rows = [(f"{k / 1000:.3f}", "0.5", f"{k * 7919 % 1000 / 1000:.3f}") for k in range(5000)]
        rows[2500] = ("2.500", "0.5", "9")
        rows[1000:1010] = [("1.005", "0.5", "nan")] * 10
        def block(name, kind):
            commands = drawn("-o", name, "-s", "8.5x6", "--dpi", "100", "--no-autoshifts",
                             "--data", "sms,tsms", "--curves", "1-1", "a.out",
                             files={"a.out": figures.table(rows)}).commands
            return re.search(rf"\${kind}_1_1 << EOD\n(.*?)EOD", commands, re.S)[1].splitlines()
        thin, whole = block("a.png", "tsms"), block("a.pdf", "tsms")
        self.assertEqual(len(whole), 5000)
        self.assertLess(len(thin), 1300)
        self.assertEqual(sorted(thin, key=whole.index), thin)
        self.assertIn("2.500000 9.000000", thin)
        self.assertEqual(sum("nan" in row for row in thin), 10)
        self.assertEqual(len(block("a.png", "sms")), 5000)

    def test_degenerate_ranges(self):
        flat = [("2.0", "1.0", "1.0"), ("3.0", "1.0", "1.0")]
        for rows, axis in ((flat, "0 : 2"), (flat[:1], "0 : 2"), (
                [("2.0", "nan", "1.0"), ("3.0", "1.0", "2.0")], "0.95 : 2.05"), (
                [("2.0", "1e-6", "2e-6"), ("3.0", "1e-6", "3e-6")], "-0.9999991 : 1.0000031"), (
                [("2.0", "100", "100"), ("3.0", "100.00001", "100")], "89.999999 : 110.000011")):
            run = drawn("-o", "a.pdf", "--ytics", "--no-autoshifts", "--data", "sms,tsms",
                        "--curves", "1-1", "a.out", files={"a.out": figures.table(rows)})
            self.assertIn(f"set yrange [{axis}]", run.commands)
        close = [("2.0", "100", "100"), ("3.0", "100.0005", "100.0003")]
        pdf = content("a.pdf", "--ytics", "--no-autoshifts", "--data", "sms,tsms", "--curves",
                      "1-1", "a.out", files={"a.out": figures.table(close)})
        numbers = [word for *_, word in figures.words(pdf) if word.startswith("100")]
        self.assertEqual(len(set(numbers)), len(numbers))
        self.assertIn("100.0005", numbers)
        for rows in [("2.0", "inf", "1.0"), flat[1]], [("2.0", "nan", "nan")], \
                [("2.0", "1e300", "1.0"), flat[1]]:
            run = figures.figure("-o", "a.pdf", "--data", "sms,tsms", "--no-autoshifts", "--curves",
                                 "1-1", "a.out", files={"a.out": figures.table(rows)})
            self.assertRegex(run.stderr, "^gravlex-figure: the (values of y are no numbers that "
                             "can be drawn|axis of y cannot run from .*)\n$")
            self.assertEqual((run.status, run.files), (1, {}))


if __name__ == "__main__":
    if "--accept" in sys.argv:
        sys.argv.remove("--accept")
        ACCEPTING = True
    unittest.main()
