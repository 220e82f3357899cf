# SPDX-License-Identifier: MIT
"""gravlex-join: the data sets of several files in one."""
import csv
import io
import os
import pathlib
import re
import signal
import subprocess
import tempfile
import time
import unittest

import kova
import running
from kova import data_set, file, layout1, table

PROGRAM = "gravlex-join"
ONE = file(table(data_set("1-1", "s sms tsms", "1 2 3", "2 3 4", scale="0.5")))
TWO = layout1("s tsms sms", ("(1-1) Scale=0.250 x", " 1 2.50 -3e0", " 2 3 4"))
LEFT_OUT = "left out, because not every data set has them: "


def headings(text):
    """Label, old label and file of each data set."""
    return re.findall(r"^Set: (\S+)  (\S+) of (.*)$", text, re.M)


class Numbers(kova.Programs):
    def rows(self, name, text, *options):
        text = self.run_program("gravlex-table", *options, "--", name, files={name: text})
        return list(csv.reader(io.StringIO(text)))

    def test_samples(self):
        """What is read from the joined file is what is read from the single ones, to the bit."""
        names = "ccl4", "benzene", "ccl4"
        samples = [(running.EXAMPLES / f"{name}.out").read_text() for name in names]
        for number in "123":
            joined = self.run_program(PROGRAM, "-t", number,
                                      *(f"examples/{name}.out" for name in names))
            expected = []
            for place, sample in enumerate(samples, 1):
                header, *rows = self.rows("a", sample, "-t", number)
                prefix = "" if place == 1 else place
                expected += [[f"{prefix}{label}", *numbers] for label, *numbers in rows]
            self.assertEqual(self.rows("a", joined), [header, *expected])

    def test_gravlex_draws_the_same(self):
        joined = self.run_program(PROGRAM, "examples/ccl4.out", "examples/benzene.out")
        draw = ("gravlex", "--data", "sms,tsms,dsms,smss", "--smserrbars")
        for place, name in (("", "ccl4"), ("2", "benzene")):
            sets = f"{place}1-1,{place}2-1"
            one = running.run([*draw, "--curves", "1-1,2-1", f"examples/{name}.out"])
            both = running.run([*draw, "--curves", sets, "a"], {"a": joined})
            self.assertEqual((both.status, both.streams), (0, one.streams))
            self.assertIn(b"KOVA version: 1060987", both.stdout)

    def test_text_is_copied(self):
        rows = ["2.50 +3e0\t0x1p3", "1.5-2.5-3 and more", "1e 2 3", "-inf nan 0.10",
                "1 2 " + "9" * 350]
        text = file(table(data_set("1-1", "sms s tsms", *rows, scale="2.0,or_so\tx")))
        joined = self.run_program(PROGRAM, "a", files={"a": text})
        self.assertEqual([line.split() for line in joined.splitlines()[9:-2]],
                         [["2.50", "+3e0", "0x1p3"], ["1.5", "-2.5", "-3"], ["1e", "2", "3"],
                          ["-inf", "nan", "0.10"], rows[-1].split()])
        self.assertIn("\nScale=2.0,or_so\n", joined)
        self.assertEqual(self.rows("b", joined), self.rows("b", text))

    def test_factors_of_layout_1(self):
        """They may be in any text, and stand for the sets after theirs."""
        text = layout1("s sms", ("(1-1) x", " 1 2"), ("(2-1) k=\t+4e0\tx y", " 1 2"),
                       ("(3-1)", " 1 2"), ("(4-1) x=0x8p0 ", " 1 2"))
        joined = self.run_program(PROGRAM, "a", files={"a": text})
        self.assertEqual(re.findall("Scale=(.*)", joined), ["1", "+4e0", "+4e0", "0x8p0"])
        self.assertEqual(self.rows("b", joined), self.rows("b", text))


class Table(kova.Programs):
    def test_both_layouts(self):
        joined = self.run_program(PROGRAM, "a", "b", files={"a": ONE, "b": TWO})
        rule = "-" * 47 + "\n"
        header = rule + "       S      |   Exp. sM(s)  |   Thr. sM(s)  |\n" + rule
        self.assertEqual(joined, (
            " KOVA 1.6.987  data sets of 2 files, joined by gravlex-join\n\n"
            " Table 1. GED curves.\n====================\n"
            f"Set: 1-1  1-1 of a\nScale=0.5\n{header}"
            "              1               2               3\n"
            "              2               3               4\n"
            f"{rule}Set: 21-1  1-1 of b\nScale=0.250\n{header}"
            "              1            -3e0            2.50\n"
            f"              2               4               3\n{rule}\n"))

    def test_labels(self):
        for numbers, expected in (((1, 9), (21, 29)), ((1, 12), (201, 212)), ((100,), (2100,))):
            first = file(table(data_set(f"{numbers[-1]}-1", "s r", "1 2")))
            second = file(table(*(data_set(f"{N}-7", "s r", "1 2") for N in numbers)))
            joined = self.run_program(PROGRAM, "a", "b", files={"a": first, "b": second})
            self.assertEqual([label for label, _, _ in headings(joined)],
                             [f"{numbers[-1]}-1", *(f"{N}-7" for N in expected)])

    def test_tenth_file(self):
        joined = self.run_program(PROGRAM, *["a"] * 10, files={"a": ONE})
        self.assertEqual(headings(joined)[-1], ("101-1", "1-1", "a"))

    def test_names(self):
        """They cannot be taken for anything of the table."""
        for path in ("GED curves. Set: 5-5 Scale=2 ", f"a\n{'-' * 20}\nb\x1b",
                     "./" * 200 + "Scale=9", "ö" * 120, "-f"):
            name = path.rpartition("/")[2]
            text = self.run_program(PROGRAM, "--", "a", path, files={"a": ONE, name: ONE})
            kinds = self.run_program("gravlex-table", "--list", "j", files={"j": text})
            self.assertEqual([line.split()[1:6:4] for line in kinds.splitlines()],
                             [["set", "scale"], ["1-1", "0.5"], ["21-1", "0.5"]])

    def test_kinds(self):
        a = file(table(data_set("1-1", "s tsms r sms bgl", "1 2 3 4 5"),
                       data_set("2-1", "bgl s r tsms", "6 7 8 9")))
        result = running.run([PROGRAM, "a", "b"], {"a": a, "b": TWO.replace("1-1", "1-2")})
        self.assertEqual((result.status, result.stderr.decode()),
                         (0, f"{PROGRAM}: {LEFT_OUT}bgl, sms, r\n"))
        self.assertEqual(kova.read(result.stdout.decode())[1],
                         {"set": "2-1", "s": 7, "tsms": 9})
        for kinds, sentence in (("s r", "the data sets have no kind in common"),
                                ("sms tsms", "data set 1-1 of c has no s")):
            c = file(table(data_set("1-1", kinds, "1 2")))
            self.check_refused(sentence, PROGRAM, "b", "c", files={"b": TWO, "c": c})

    def test_options_for_every_file(self):
        joined = self.run_program(PROGRAM, "--table=2", "examples/ccl4.out", "--data", "bgl,int",
                                  "--cread=2-1", "examples/benzene.out")
        self.assertEqual([label for label, _, _ in headings(joined)], ["2-1", "22-1"])
        single = next(row for row in kova.read(running.CCL4.read_text(), 2) if row["set"] == "2-1")
        self.assertEqual(kova.read(joined)[0],
                         {kind: single[kind] for kind in ("set", "s", "int", "bgl")})


class Refused(kova.Programs):
    def test_input(self):
        """The file that is wrong is named."""
        files = {"a": ONE, "b": TWO, "cut": TWO[:-42], "csv": "set,s\n",
                 "odd": ONE.replace("3 4", "3"),
                 "gap": file(table(data_set("1-1", "s sms"), data_set("1-2", "s sms", "1 2")))}
        for sentence, *arguments in (
                ("no kind dsms in a (table 1 has sms, tsms)", "--data=dsms", "a", "b"),
                ("no data set 2-1 in a (table 1 has 1-1)", "-c2-1", "a", "b"),
                ("csv is no output of KOVA: there is no table in it", "a", "csv"),
                ("no table 2 in a (it has 1)", "-t2", "a", "b"),
                ("cut ends in the middle of data set 1-1", "a", "b", "cut"),
                ("table 1 of odd: a row of data set 1-1 does not have 3 numbers: is the file "
                 "complete?", "a", "odd"),
                ("data set 1-1 of gap has no rows", "a", "gap"),
                ("Cannot open file 'none'", "a", "none"),
                ("a exists already: -f replaces it", "-o", "a", "a", "b")):
            with self.subTest(sentence):
                self.check_refused(sentence, PROGRAM, "-o", "new", *arguments, files=files)

    def test_labels(self):
        for number in "214748365", "0xffffffff":
            files = {"a": ONE, "b": file(table(data_set(f"{number}-1", "s sms", "1 2")))}
            label = {"0xffffffff": "-1-1"}.get(number, f"{number}-1")
            self.check_refused(f"data set {label} of b cannot be given a label of its own",
                               PROGRAM, "-f", "-o", "a", "a", "b", files=files)

    def test_options(self):
        self.check_every_refused(PROGRAM, {"a.out": ONE}, {
            "numbers are copied; give it to gravlex with the joined file": "bglp1 smsef",
            kova.DRAW: "png", "whole curves are written": "xmax"})

    def test_full_disk(self):
        with open("/dev/full", "wb") as full:
            self.check_refused("Cannot write to standard output: No space left on device", PROGRAM,
                               "a", files={"a": ONE}, stdout=full)
        self.check_refused("cannot write a temporary file: File too large", "/bin/sh", "-c",
                           'ulimit -S -f 1; exec "$@"', "sh", PROGRAM, "-o", "new", "big",
                           files={"big": file(table(data_set("1-1", "s sms", *["1 2"] * 4000)))})

    def test_many_files(self):
        """More than a process may have open."""
        joined = self.run_program("sh", "-c", f'ulimit -n 20; {PROGRAM} {"a " * 40}',
                                  env={"PATH": f"{running.PROGRAM.parent}:/usr/bin:/bin"},
                                  files={"a": ONE})
        self.assertEqual(joined.count("Set: "), 40)

    def test_row_too_long(self):
        """Text that touches needs blanks in columns."""
        def text(length):
            """In columns the row has as many characters, and the end of the line."""
            return file(table(data_set("1-1", "s sms tsms",
                                       f"{'1' * 200}-{'1' * (length - 219)}-1")))
        self.run_program(PROGRAM, "a", files={"a": text(398)})
        self.check_refused("a row of data set 1-1 of a is too long", PROGRAM, "a",
                           files={"a": text(399)})

    def test_ended_while_it_reads(self):
        """One process waits for the other: neither outlives it."""
        with tempfile.TemporaryDirectory() as folder:
            pipe = pathlib.Path(folder, "pipe")
            os.mkfifo(pipe)
            for killed, status, said in (
                    # As the system does when memory runs out.
                    ("reader", 1, f"{PROGRAM}: the process that reads was ended: Killed\n"),
                    ("program", -signal.SIGKILL, "")):
                with subprocess.Popen([running.PROGRAM.parent / PROGRAM, pipe],
                                      stderr=subprocess.PIPE, text=True) as joining:
                    children = pathlib.Path(f"/proc/{joining.pid}/task/{joining.pid}/children")
                    while not (reader := children.read_text()):
                        self.assertIsNone(joining.poll())
                        time.sleep(0.01)
                    os.kill(int(reader) if killed == "reader" else joining.pid, signal.SIGKILL)
                    _, err = joining.communicate(timeout=60)  # the end of both
                self.assertEqual((joining.returncode, err), (status, said))


class Output(kova.Programs):
    def test_in_place(self):
        """The joined file may be one of those that it is made of."""
        made = []
        self.run_program(PROGRAM, "-f", "--output=a", "b", "a", files={"a": ONE, "b": TWO},
                         afterwards=lambda folder: made.append((folder / "work/a").read_text()))
        self.assertEqual(headings(made[0]), [("1-1", "1-1", "b"), ("21-1", "1-1", "a")])


if __name__ == "__main__":
    unittest.main()
