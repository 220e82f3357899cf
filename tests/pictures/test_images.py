# SPDX-License-Identifier: MIT
"""What is in the images of the samples, drawn by the real gnuplot."""

import collections

import files
import sessions
from running import EXAMPLES
from sessions import draw, expect

SAMPLES = ("ccl4", "benzene")
LABELS = ("1-1", "2-1")
SELECTION = "--data sms,tsms,dsms --curves 1-1,2-1"
SMS, TSMS, DSMS = 1, 2, 3  # columns of the table
THEORY, BLACK = "#AA0000", "#000000"
EPS_SIZE = (360, 252)  # points; gnuplot's own, whatever --imgw and --imgl say
# The series of that selection in the order of drawing: experiment last, to lie on top.
ORDER = [("1-1", TSMS), ("1-1", DSMS), ("2-1", TSMS), ("2-1", DSMS), ("1-1", SMS), ("2-1", SMS)]


def each_sample(check):
    """Makes a test of a check for one sample: it runs for both, each in a folder of its own."""
    def test():
        for sample in SAMPLES:
            with sessions.work_folder() as folder:
                check(sample, folder)
    test.__name__ = check.__name__
    return test


# ---- Pixels ------------------------------------------------------------------------------------

def is_mixture(red, green, blue):
    """Whether that colour is between white, black and the red of the theory."""
    most_red = green + (255 - green) * 170 / 255
    return abs(green - blue) <= 2 and green - 2 <= red <= most_red + 2


def dark(pixels, start, stop, step=3):
    """How many dark grey pixels are in that range of bytes, or in every step-th byte of it."""
    return sum(byte < 64 for byte in pixels[start:stop:step])


def find_frame(width, height, pixels):
    """Left, top, right and bottom of the frame: the outermost lines that are black for long."""
    rows = [y for y in range(height)
            if dark(pixels, 3 * width * y, 3 * width * (y + 1)) > width / 2]
    columns = [x for x in range(width)
               if dark(pixels, 3 * x, len(pixels), 3 * width) > height / 2]
    expect(len(rows) >= 2 and len(columns) >= 2, "there is no frame")
    return columns[0], rows[0], columns[-1], rows[-1]


def count_colors(image, left, top, right, bottom):
    """The colours in a part of an image and how many pixels have each."""
    width, _, pixels = image
    counts = collections.Counter()
    for y in range(top, bottom):
        row = pixels[3 * (width * y + left):3 * (width * y + right)]
        counts.update(zip(row[0::3], row[1::3], row[2::3]))
    return counts


def count_dark(counts):
    return sum(number for color, number in counts.items() if max(color) < 64)


def check_pixels(image, points):
    """Checks a picture of stacked sets; "points" is how many markers it holds."""
    width, height, _ = image
    counts = count_colors(image, 0, 0, width, height)
    expect(counts[255, 255, 255] > 0.7 * width * height, "the background is not white")
    strange = [color for color in counts if not is_mixture(*color)]
    expect(not strange, f"colours that do not belong there: {strange[:5]}")
    red = sum(number for color, number in counts.items() if color[0] - color[1] > 150)
    expect(red > width, f"only {red} red pixels")
    left, top, right, bottom = find_frame(*image)
    # The upper half holds theory and experiment only, so what is dark there are markers.
    upper = count_colors(image, left + 4, top + 4, right - 4, (top + bottom) // 2)
    expect(count_dark(upper) > 2 * points, f"{count_dark(upper)} dark pixels for {points} points")
    check_margins(image, left, bottom)


def check_margins(image, left, bottom):
    """There are labels beside and below the frame, and none is cut off at the border."""
    width, height, _ = image
    expect(count_dark(count_colors(image, 0, 0, left, height)) > 20, "the y axis has no label")
    below = count_colors(image, 0, bottom + 4, width, height)
    expect(count_dark(below) > 100, "the x axis has no label")
    border = count_colors(image, 0, 0, width, 1) + count_colors(image, 0, height - 1, width, height)
    border += count_colors(image, 0, 0, 1, height) + count_colors(image, width - 1, 0, width, height)
    expect(not count_dark(border), "something is cut off at the border")


# ---- Curves ------------------------------------------------------------------------------------

def read_sample(sample):
    return files.read_sets(EXAMPLES / f"{sample}.out", 1)


def number_of_points(sample):
    sets = read_sample(sample)
    return sum(len(sets[label][1]) for label in LABELS)


def slope_and_start(values, places):
    """Of the straight line from the smallest value to the largest."""
    low, high = values.index(min(values)), values.index(max(values))
    slope = (places[high] - places[low]) / (values[high] - values[low])
    return slope, places[low] - slope * values[low]


def check_straight(values, places, slope, start, what):
    """Checks that the places are start + slope * value, as far as the image's numbers tell."""
    worst = max(abs(start + slope * value - place) for value, place in zip(values, places))
    expect(worst <= 0.03, f"{what} is off by {worst:.3f}")


def check_series(series, sample):
    """Checks number, colour and place of all that is drawn."""
    sets = read_sample(sample)
    expect(len(series) == len(ORDER), f"{len(series)} series instead of {len(ORDER)}")
    scales, starts = {}, {}
    for drawn, (label, column) in zip(series, ORDER):
        what = f"column {column} of {label}"
        factor, rows = sets[label]
        places, empty = drawn["points"], drawn["line"]
        if column != SMS:
            places, empty = empty, places
        expect(len(places) == len(rows), f"{what}: {len(places)} places for {len(rows)} rows")
        expect(not empty and not drawn["area"], f"{what} is drawn in two ways")
        color = THEORY if column == TSMS else BLACK
        expect(drawn["colors"] == {color}, f"{what} has the colours {drawn['colors']}")
        s, values = [row[0] for row in rows], [row[column] / factor for row in rows]
        # One scale for all, that of the first series, which is large and so tells it well.
        xs, ys = [x for x, _ in places], [y for _, y in places]
        scale = scales.setdefault("x", slope_and_start(s, xs))
        check_straight(s, xs, *scale, f"x of {what}")
        slope, _ = scales.setdefault("y", slope_and_start(values, ys))
        # Experiment and theory of a set are shifted alike.
        own_start = ys[0] - slope * values[0]
        start = starts.setdefault((label, column == DSMS), own_start)
        check_straight(values, ys, slope, start, f"y of {what}")


def check_stacked(series):
    """Checks that no two of the four stacks touch: theory of 2-1 on top, differences below."""
    theory, difference, upper_theory, upper_difference = [drawn["line"] for drawn in series[:4]]
    for upper, lower in ((upper_theory, theory), (theory, difference),
                         (theory, upper_difference)):
        below = {round(x): y for x, y in lower}
        gaps = [below[round(x)] - y for x, y in upper if round(x) in below]  # y counts downwards
        expect(gaps and min(gaps) > 0, "the curves are not clear of each other")


# ---- Tests -------------------------------------------------------------------------------------

def check_png(sample, folder):
    for options, size in (("", (1200, 800)), ("--imgw 600 --imgl 450", (600, 450))):
        draw(f"{SELECTION} {options} --png fit.png examples/{sample}.out", folder)
        image = files.read_png(folder / "fit.png")
        expect(image[:2] == size, f"{sample}: {image[:2]} pixels instead of {size}")
        check_pixels(image, number_of_points(sample))


def check_svg(sample, folder):
    for options, size in (("", (1200, 800)), ("--imgw 600 --imgl 450", (600, 450))):
        draw(f"{SELECTION} {options} --svg fit.svg examples/{sample}.out", folder)
        *found, series, texts = files.read_svg(folder / "fit.svg")
        expect(tuple(found) == size, f"{sample}: {found} pixels instead of {size}")
        check_series(series, sample)
        check_stacked(series)
        expect("sM(s)" in texts, f"the y axis is labelled with none of {texts}")
        expect("s, \N{LATIN CAPITAL LETTER A WITH RING ABOVE}-1" in texts,
               f"the x axis is labelled with none of {texts}")


def check_eps(sample, folder):
    for options in ("", "--imgw 600 --imgl 450"):
        draw(f"{SELECTION} {options} --eps fit.eps examples/{sample}.out", folder)
        size = files.eps_size(folder / "fit.eps")
        expect(size == EPS_SIZE, f"{sample}: {size} points instead of {EPS_SIZE}")
    files.render(folder / "fit.eps", folder / "fit.png", 144)
    image = files.read_png(folder / "fit.png")
    expect(image[:2] == (720, 504), f"{sample}: drawn with {image[:2]} pixels")
    check_pixels(image, number_of_points(sample))


def check_deviations(sample, folder):
    """Bars at each point, and a band as wide as two deviations."""
    draw("--data sms,tsms,dsms,smss --curves 2-1 --smserrbars --dsmserrfill --legend "
         f"--svg fit.svg examples/{sample}.out", folder)
    _, _, (theory, band, delta, bars, experiment), texts = files.read_svg(folder / "fit.svg")
    _, rows = read_sample(sample)["2-1"]
    expect(len(experiment["points"]) - 1 == len(rows), "not one marker a row, and the legend's")
    # A bar is an upright line with a line across at both ends.
    expect(len(bars["line"]) == 6 * len(rows), f"{len(bars['line'])} ends of lines in the bars")
    expect(bars["colors"] == {BLACK} and band["colors"] == {BLACK}, "bars and band are not black")
    low = band["area"][:len(rows)]
    high = dict(band["area"][len(rows):])
    expect(len(low) == len(rows) and all(x in high for x, _ in low), "the band is not closed")
    heights = [y - high[x] for x, y in low]
    ratio = [height / row[4] for height, row in zip(heights, rows)]
    expect(max(ratio) - min(ratio) < 0.05 * max(ratio), "the band does not follow the deviations")
    expect(theory["colors"] == {THEORY} and delta["colors"] == {BLACK}, "colours of the curves")
    wanted = {"Thr.sM(s) (2-1)", "D.sM(s) (2-1)", "Exp.sM(s) (2-1)"}
    expect(wanted <= set(texts), f"the legend has not all its entries: {texts}")


def check_separate_plots(sample, folder):
    """One image for each plot, numbered, with only its own curves."""
    draw("--dread sms,tsms --curves 1-1,2-1 --no-multiplot --png fit.png "
         f"examples/{sample}.out", folder)
    found = sorted(path.name for path in folder.glob("*.png"))
    expect(found == ["1_fit.png", "2_fit.png"], f"the images are {found}")
    reds = []
    for name in found:
        image = files.read_png(folder / name)
        counts = count_colors(image, 0, 0, *image[:2])
        reds.append(sum(number for color, number in counts.items() if color == (170, 0, 0)))
    expect(reds[0] == 0 and reds[1] > 1000, f"red pixels in them: {reds}")


TESTS = [check_png, check_svg, check_eps, check_deviations, check_separate_plots]

if __name__ == "__main__":
    sessions.run_tests([each_sample(check) for check in TESTS])
