# SPDX-License-Identifier: MIT
"""Input files for the tests of the programs that write numbers, and a plain reading of them."""
import re
import sys
import unittest

sys.path.append(f"{sys.path[0]}/..")
import running

WORDS = {"S": "s", "R": "r", "Total Int.": "int", "Red. Int.": "rint", "Lvl. Int.": "lint",
         "Background": "bgl", "Red. Bgl": "rbgl", "Lvl. Bgl": "lbgl", "Exp. sM(s)": "sms",
         "Thr. sM(s)": "tsms", "Delta sM(s)": "dsms", "Sec. Func.": "sec", "At. Scat.": "iat",
         "sM(s) St.dev": "smss", "Int. St.dev": "ints", "Thr. Tot. Int": "tint",
         "Delta Int.": "dint"}
LABELS = {"s": "       S      |", "r": "      R      |", "sms": "   Exp. sM(s)  |",
          "tsms": "   Thr. sM(s)  |", "dsms": "  Delta sM(s)  |", "bgl": "   Background  |",
          "smss": "  sM(s) St.dev |"}
# Options with an argument.
TAKING = {"png", "eps", "svg", "imgw", "imgl", "ratio", "term", "shiftmult", "lw", "elw", "psf",
          "smsef", "efa", "dcombine", "ccombine", "style_sms", "ptype_sms", "xmin", "xmax"}
DRAW = "gravlex and gravlex-figure draw, this program writes numbers"
FACTORED = {"sms", "tsms", "dsms", "smss"}
RULE = "-" * 30 + "\n"


def data_set(label, kinds, *rows, scale="1.0"):
    """One of layout 2."""
    header = "".join(LABELS[kind] for kind in kinds.split())
    return (f" Set: {label} \nScale={scale}\n{RULE}{header}\n{RULE}"
            + "".join(f"{row}\n" for row in rows) + RULE)


def table(*sets):
    return " GED curves.\n=====\n" + "".join(sets) + "\n"


def file(*tables):
    return " KOVA 1.6.990 x\n" + "".join(tables)


def layout1(kinds, *sets):
    """A file of one table; a set is the text of its line and its rows."""
    header = "".join(LABELS[kind] for kind in kinds.split())
    text = f" KOVA 1.6.412 x\n GED curves.\n{RULE}{header}\n{RULE}"
    for place, (line, *rows) in enumerate(sets, 1):
        text += f" Curve: {line}\n x\n" + "".join(f"{row}\n" for row in rows)
        text += ("-" if place == len(sets) else "=") * 40 + "\n"
    return text


def read(text, number=1):
    """The rows of a table of a well-formed file as a program of few lines reads them, as
    dictionaries by the words of the kinds."""
    rows, header, label, factor = [], [], None, 1.0
    for line in text.split("GED curves.")[number].split("\n\n")[0].splitlines():
        if "|" in line:
            header = [WORDS[cell.strip()] for cell in line.split("|")[:-1]]
        label = re.search(r"(?:Set: |Curve: \()(\d+-\d+)", line) or label
        factor = float((re.search(r"Scale=(\S+)", line) or [0, factor])[1])
        if header and re.fullmatch(r"( +-?[\d.]+)+", line):
            row = {"set": label[1]}
            for kind, number in zip(header, map(float, line.split()), strict=True):
                row[kind] = number / factor if kind in FACTORED else number
            rows.append(row)
    return rows


class Programs(unittest.TestCase):
    """Checks for runs of a program that is called by its name in a folder with some files."""

    def run_program(self, *command, files=(), **more):
        """What it writes on standard output. There is no gnuplot, and no other word."""
        result = running.run(command, files, gnuplot=None, **more)
        self.assertEqual((result.status, result.stderr.decode()), (0, ""))
        return result.stdout.decode()

    def check_refused(self, sentence, *command, files=(), **more):
        """It says this sentence and leaves the folder as it was."""
        left = {}

        def look(folder):
            for path in (folder / "work").iterdir():
                if path.is_file():
                    left[path.name] = path.read_bytes()

        result = running.run(command, files, gnuplot=None, afterwards=look, **more)
        program = next(word for word in command if word.startswith("gravlex"))
        self.assertEqual(result.stderr.decode(), f"{program}: {sentence}\n")
        self.assertEqual((result.status, result.stdout), (1, b""))
        self.assertEqual(left, {name: text if isinstance(text, bytes) else text.encode()
                                for name, text in dict(files).items()})

    def check_every_refused(self, program, files, instead):
        """What to use, and for which options."""
        for sentence, names in instead.items():
            for name in names.split():
                given = f"--{name}=1" if name in TAKING else f"--{name}"
                self.check_refused(f"--{name} makes no sense here: {sentence}", program, given,
                                   "a.out", files=files)
