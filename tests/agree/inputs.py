# SPDX-License-Identifier: MIT
"""Random input files and command lines for agree.py.

Everything comes from the random.Random that is handed in, so one number names a run. Most files
are as an analysis program would write them; each oddity has a small chance of its own, because a
file full of them ends at the first error and shows nothing of what comes later.
"""

import math

LABELS = {
    "int": "   Total Int.  |", "rint": "    Red. Int.  |", "lint": "    Lvl. Int.  |",
    "bgl": "   Background  |", "sms": "   Exp. sM(s)  |", "tsms": "   Thr. sM(s)  |",
    "dsms": "  Delta sM(s)  |", "sec": "   Sec. Func.  |", "iat": "   At. Scat.   |",
    "s": "       S      |", "rbgl": "    Red. Bgl   |", "lbgl": "    Lvl. Bgl   |",
    "smss": "  sM(s) St.dev |", "ints": "  Int. St.dev  |", "r": "      R      |",
    "tint": " Thr. Tot. Int |", "dint": "   Delta Int.  |",
}
WORDS = [kind for kind in LABELS if kind not in ("s", "r")]
SMS_KINDS = ["sms", "tsms", "dsms", "smss"]
INT_KINDS = ["int", "bgl", "tint", "dint", "ints"]

ODD_NUMBERS = [
    "-0.0", "0", "-0", "inf", "-inf", "nan", "-nan", "nan(1)", "NAN", "Infinity", "infinit",
    "0x1.8p3", "0x", "0x 1", "1e400", "-1e400", "1e-400", "1e-310", "1e308", "-1e308", "1e99",
    "-1e99", "1e100", "1.5-2.5", "1e", "1e 2", "1e+", "1d5", "+3", "--1", "+", "-", ".", ".5",
    "5.", "1,5", "1.2.3", "1_000", "12abc", "abc", "1" * 40, "0." + "3" * 60, "1e5.5",
    "0.1e-0000000000001", "4.9e-324", "2.2250738585072011e-308", "9007199254740993",
    "0x1p-1080", "0x.8", "i", "n", "in", "+nan", "nan(", "nan(abc)", "1e+308", "123456789.125",
]
ODD_FACTORS = [
    "1e400", "1e-400", "1e-310", "0", "-0.0", "-2.5", "inf", "nan", "abc", "", "1.5x", "0x1p2",
    "1e", "+", "1.0\t", "\t1.25", "\v2", " 1.0", "1.0=2.0", "=3", "1,5", "4.9e-324", "1e308",
]
ODD_LABELS = [
    "1", "1-", "-1-1", "1-2-3", "a-b", "", "01-1", "08-1", "0x10-2", "1--1", "+1-+2", " 1-1",
    "99999999999999999999-1", "4294967297-1", "1 -1", "1-\t1", "0x-1", "0" * 98 + "1-1",
    "0" * 99 + "1-1", "1-" + "0" * 120 + "1", "1-1\x00", "-", "1-0b1",
]
ODD_VERSIONS = [
    "1.6.986", "v1.6.986", "1.6.987", "1.6-987", "1-6-987", "1.6.987.5", "1.06.0987", "1.010.0",
    "0.0.0", "1.6", "1", "", "v", "vvv1v.v6v.987v", "2.0.0", "0x2.0.0", "99999999999.0.0",
    "4294967297.6.987", "2147483647.1.1", "+1.6.990", "1. 6.987", "1.6.987-rc1", "1..987",
    "1.6.98a", "1.6." + "9" * 60, "0" * 45 + "2.0.0", "0" * 44 + "2.0.0", "-1.6.990", "1.6.987.",
    "1.6.+987", "2.0.-1", "3000.0.0", "-2.0.0",
]
LOG_LINES = [
    "Least squares refinement", "R-factor 4.32 %", "", "   ", "\t", "1.0 2.0 3.0", "Curve:",
    "Set:", "Scale = 1", "===== result =====", "-------", "GED curves", "Iteration 12, step 0.5",
    "some (text) with = signs = 3 and ) more", "Set of parameters", "\v\f", "\r",
]
BAIT_LINES = [
    "GED curves.", "a GED curves. b", "Set: 9-9 here", "Curve: (9-9) f=1.0 ", "Scale=1.0 ",
    "-" * 16, "-" * 19, "=" * 19, "-" * 400, "=" * 30 + "-" * 30, "Set: 1-1", "Curve: (1-1)",
    "Curve: 1-1 =2.5 ", ")Curve: 1-1 =1 ", "=1 Curve: (1-1) ", "Curve: )(1-1",
    "Curve: ((2-1) (=2 ",
]


def chance(rnd, share):
    return rnd.random() < share


class Oddity:
    """How odd one file is: most hold nothing odd at all.

    A quarter of the files is for the stacking of curves: sound in everything but the order and the
    spacing of the abscissae, where one odd number would end the run too early.
    """

    def __init__(self, rnd):
        self.stacking = chance(rnd, 0.25)
        level = 0 if self.stacking else rnd.choice([0, 0, 0, 0, 1, 1, 2])
        self.unsorted = 0.4 if self.stacking else 0.05
        self.double = 0.2 if self.stacking else 0.03
        self.number = [0, 0.003, 0.03][level]
        self.line = [0, 0.03, 0.15][level]
        self.label = [0, 0.06, 0.2][level]
        self.shape = [0, 0.1, 0.4][level]


def long_line(rnd):
    length = rnd.choice([397, 398, 399, 400, 401, 797, 798, 799, 1197, 1500])
    text = "".join(rnd.choice("abc 1.-=") for _ in range(rnd.randrange(1, 9)))
    text = (text * (length // len(text) + 1))[:length]
    if chance(rnd, 0.2):
        bait = rnd.choice(BAIT_LINES)
        at = rnd.randrange(len(text))
        text = text[:at] + bait + text[at:]
    return text


def log_lines(rnd, odd, most=4, empty=True):
    lines = []
    for _ in range(rnd.randrange(most + 1)):
        if chance(rnd, odd.line):
            lines.append(rnd.choice(BAIT_LINES))
        elif chance(rnd, 0.02):
            lines.append(long_line(rnd))
        else:
            lines.append(rnd.choice(LOG_LINES))
    return [line for line in lines if empty or line.strip()]


def number(rnd, odd, value):
    if chance(rnd, odd.number):
        return rnd.choice(ODD_NUMBERS)
    style = rnd.randrange(8)
    if style < 5:
        return "%.5f" % value
    return ["%.8e", "%g", "%.17g"][style - 5] % value


def abscissae(rnd, odd):
    n = rnd.choice([2, 3, 4, 5, 6, 8, 12, 20, 40])
    if chance(rnd, 0.05):
        n = 1 if odd.stacking else rnd.choice([1, 1, 0])
    start = rnd.choice([0.0, 1.0, 2.0, 2.0, 6.0, -3.0, rnd.uniform(0, 10)])
    step = rnd.choice([0.1, 0.2, 0.25, 0.5, 1.0, rnd.uniform(0.01, 2)])
    if odd.stacking:
        start, step = 2.0 + rnd.choice([0, 0, 1, rnd.uniform(0, 2)]), max(step, 0.25)
    xs = [start + step * i for i in range(n)]
    if chance(rnd, 0.25):
        xs = sorted(rnd.uniform(start, start + step * max(n, 1)) for _ in range(n))
    if chance(rnd, odd.unsorted) and n > 3:
        # Out of order between its ends, a curve still takes part in the stacking.
        middle = xs[1:-1]
        rnd.shuffle(middle)
        xs[1:-1] = middle
    if chance(rnd, odd.double) and n > 1:
        i = rnd.randrange(n - 1)
        xs[i] = xs[i + 1]
    if chance(rnd, odd.shape) and n > 1:
        how = rnd.randrange(5)
        i, j = rnd.randrange(n), rnd.randrange(n)
        if how == 0:
            xs[i] = xs[j]
        elif how == 1:
            xs[i], xs[j] = xs[j], xs[i]
        elif how == 2:
            rnd.shuffle(xs)
        elif how == 3:
            xs.reverse()
        else:
            xs[i:] = [xs[i]] * (n - i)
    return xs


def column(rnd, kind, xs):
    """Waves for what oscillates, slow curves for the rest, now and then a flat or coarse one."""
    a, b, c = rnd.uniform(0.1, 3), rnd.uniform(0.3, 4), rnd.choice([0, 0, 1, 10, 100])
    if kind in SMS_KINDS:
        ys = [a * math.sin(b * x) for x in xs]
    else:
        ys = [c + a * math.exp(-b * abs(x) / 10) for x in xs]
    shape = rnd.randrange(12)
    if shape == 0:
        ys = [float(c)] * len(xs)
    elif shape == 1:
        ys = [float(round(y)) for y in ys]
    elif shape == 2:
        ys = [rnd.uniform(-5, 5) for _ in xs]
    elif shape == 3:
        ys = [y * 10.0 ** rnd.randrange(-12, 13) for y in ys]
    return ys


def pick_kinds(rnd, odd):
    base = rnd.choice([SMS_KINDS, SMS_KINDS, INT_KINDS, WORDS, []])
    kinds = [kind for kind in base if chance(rnd, 0.75)]
    for _ in range(rnd.choice([0, 0, 1, 2, 3])):
        kinds.append(rnd.choice(WORDS))
    kinds = list(dict.fromkeys(kinds)) or ["sms"]
    if chance(rnd, 0.4):
        rnd.shuffle(kinds)
    if chance(rnd, 0.03):
        kinds.insert(rnd.randrange(len(kinds) + 1), "r")
    if not chance(rnd, 0.05 + odd.shape / 4):
        return ["s"] + kinds
    if chance(rnd, 0.7):
        kinds.insert(rnd.randrange(len(kinds) + 1), "s")
    return kinds


def header(rnd, odd, kinds):
    labels = [LABELS[kind] for kind in kinds]
    if chance(rnd, odd.line):
        i = rnd.randrange(len(labels))
        labels[i] = rnd.choice([labels[i] * 2, labels[i].strip(), labels[i].lower(), "  Other |"])
    text = rnd.choice(["", "", " ", "|", " #  "]).join([""] + labels)
    return text + rnd.choice(["", "", " ", " notes", "\t"])


def rows(rnd, odd, kinds, xs):
    columns = [xs if kind == "s" else column(rnd, kind, xs) for kind in kinds]
    lines = []
    for k in range(len(xs)):
        items = [number(rnd, odd, values[k]) for values in columns]
        if chance(rnd, odd.line / 20):
            items.append("7.5")
        if chance(rnd, odd.line / 20):
            items.pop()
        between = rnd.choice(["  ", "  ", " ", "\t", "    "])
        text = rnd.choice(["", " ", "   "]) + between.join(items)
        if chance(rnd, 0.02):
            text += rnd.choice([" ", "  text", "\t*", " text 5.0"])
        lines.append(text)
    return lines


def set_label(rnd, odd, taken):
    if chance(rnd, odd.label):
        return rnd.choice(ODD_LABELS)
    label = "%d-%d" % (rnd.choice([1, 1, 2, 2, 3, rnd.randrange(20)]), rnd.choice([1, 1, 1, 2, 3]))
    taken.append(label)
    return label


def factor(rnd, odd):
    if chance(rnd, odd.label):
        return rnd.choice(ODD_FACTORS)
    return rnd.choice(["1.0", "1.0000E+00", "0.87", "2", "%.6f" % rnd.uniform(0.7, 1.3)])


def table_one(rnd, odd, labels):
    """A table of layout 1: one header row, the sets divided by rules of equals signs."""
    kinds = pick_kinds(rnd, odd)
    lines = ["     GED curves.", "=" * 40, header(rnd, odd, kinds), "-" * 60]
    shared = abscissae(rnd, odd)
    count = rnd.choice([1, 2, 2, 3, 4])
    for i in range(count):
        lines += log_lines(rnd, odd, 1)
        opening = "Curve: (%s)" % set_label(rnd, odd, labels)
        if chance(rnd, odd.label):
            opening = rnd.choice(["Curve: %d-1", "(Curve: %d-1)", "Curve: (%d-1", ")Curve: %d-1",
                                  "((Curve: ( (%d-1)) x"]) % rnd.randrange(1, 4)
        if not chance(rnd, 0.1):
            opening += rnd.choice([", scale factor =%s ", " f=%s x", " =%s \t", " a=b=%s "]) % \
                factor(rnd, odd)
        elif chance(rnd, 0.5):
            opening += " f=" + factor(rnd, odd)
        lines += [opening, "-" * rnd.choice([10, 30])]
        xs = shared if chance(rnd, 0.5) else abscissae(rnd, odd)
        lines += rows(rnd, odd, kinds, xs)
        rule = rnd.choice(["=" * 19, "=" * 60, " " + "=" * 25])
        if i == count - 1 or chance(rnd, odd.line / 4):
            rule = rnd.choice(["-" * 19, "-" * 60])
        if not chance(rnd, odd.line / 4):
            lines.append(rule)
    return lines


def table_two(rnd, odd, labels):
    """A table of layout 2: every set brings its factor and its own header row."""
    kinds = pick_kinds(rnd, odd)
    lines = ["     GED curves.", "=" * 40]
    shared = abscissae(rnd, odd)
    differing = chance(rnd, 0.12)
    for _ in range(rnd.choice([1, 2, 2, 3, 4])):
        lines += log_lines(rnd, odd, 1, empty=False)
        label = set_label(rnd, odd, labels)
        lines.append("  Set: " + label + rnd.choice([" ", "\t", "  a curve", "", ""]))
        lines += log_lines(rnd, odd, 1, empty=chance(rnd, 0.2))
        lines.append(" Scale=" + factor(rnd, odd) + rnd.choice([" ", "", " +- 0.1"]))
        lines += log_lines(rnd, odd, 1, empty=chance(rnd, 0.2))
        lines.append("-" * rnd.choice([16, 17, 60]))
        if differing:
            kinds = pick_kinds(rnd, odd)
        lines += [header(rnd, odd, kinds), "-" * 60]
        xs = shared if chance(rnd, 0.5) else abscissae(rnd, odd)
        lines += rows(rnd, odd, kinds, xs)
        if not chance(rnd, odd.line / 4):
            lines.append("-" * rnd.choice([16, 60]))
    return lines + rnd.choice([[""], [""], ["   "], []])


def first_line(rnd, layout, odd):
    if chance(rnd, 0.03 + odd.line / 2):
        return rnd.choice([" KOVA %s", "\tKOVA %s ", " KOVA  %s b c", "a KOVA %s", "KOVA %s",
                           " KOVA" + " " * 380 + "%s"]) % rnd.choice(ODD_VERSIONS)
    versions = [["1.6.986", "v1.5.3", "1.0-12"], ["1.6.987", "v1.7.55", "2.0-1"]][layout - 1]
    return " KOVA " + rnd.choice(versions) + rnd.choice(["", " of today", " (Linux) build 7 x"])


def damage(rnd, content):
    """Spoils a file as a bad disk or a bad hand would."""
    lines = content.split(b"\n")
    for _ in range(rnd.choice([1, 1, 1, 2, 5])):
        how = rnd.randrange(8)
        at = rnd.randrange(len(lines))
        if how == 0:
            del lines[at]
        elif how == 1:
            lines.insert(rnd.randrange(len(lines) + 1), lines[at])
        elif how == 2:
            lines = lines[:at + 1]
        elif how == 3:
            lines[at] = lines[at][:rnd.randrange(len(lines[at]) + 1)]
        elif how == 4:
            i = rnd.randrange(len(lines[at]) + 1)
            byte = rnd.choice([b"\0", b"\0\0", b"\r", b"\xc5"])
            lines[at] = lines[at][:i] + byte + lines[at][i:]
        elif how == 5 and lines[at]:
            flipped = bytearray(lines[at])
            flipped[rnd.randrange(len(flipped))] ^= 1 << rnd.randrange(8)
            lines[at] = bytes(flipped)
        elif how == 6:
            lines[at] = lines[at] + b" " * rnd.choice([200, 390, 400]) + b"1.0"
        else:
            other = rnd.randrange(len(lines))
            lines[at], lines[other] = lines[other], lines[at]
        lines = lines or [b""]
    return b"\n".join(lines)


def input_file(rnd):
    """Returns the bytes of one file, its number of tables, the labels of its sets, and whether it
    is there to be stacked."""
    odd = Oddity(rnd)
    layout = rnd.choice([1, 2])
    tables = 1 if odd.stacking else rnd.choice([1, 1, 2, 3])
    labels = []
    lines = [first_line(rnd, layout, odd)]
    for _ in range(tables):
        lines += log_lines(rnd, odd)
        lines += (table_one if layout == 1 else table_two)(rnd, odd, labels)
    lines += log_lines(rnd, odd)
    end = "\r\n" if chance(rnd, 0.03) else "\n"
    content = end.join(lines) + (end if chance(rnd, 0.8) else "")
    content = content.encode("latin-1")
    if not odd.stacking and chance(rnd, 0.3):
        content = damage(rnd, content)
    return content, tables, labels or ["1-1"], odd.stacking
