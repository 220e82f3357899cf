# SPDX-License-Identifier: MIT
"""gravlex-table: numbers as CSV, and the list of what a file holds."""
import csv
import gzip
import io
import math
import unittest

import kova
import running
from kova import data_set, file, table

PROGRAM = "gravlex-table"
SMALL = file(table(data_set("1-1", "s sms", "2 0.5", "3 -0.25", scale="0.5"),
                   data_set("2-1", "s tsms", "4 8", scale="2.0")),
             table(data_set("1-1", "s bgl", "5 6")))
HEAD = "table  set      points     s-min     s-max  scale     kinds\n"


def line(*cells):
    return "{:>5}  {:8} {:>6}  {:>8}  {:>8}  {:<8}  {}\n".format(*cells)


class Csv(kova.Programs):
    def rows(self, *arguments, files=()):
        text = self.run_program(PROGRAM, *arguments, files=files)
        self.assertNotIn("\r", text)
        return list(csv.DictReader(io.StringIO(text, newline="")))

    def test_samples(self):
        """Every number of the samples, to the last bit, and in no more digits than it takes."""
        for sample, tables in (("ccl4", 3), ("benzene", 3), ("r_values", 1)):
            content = (running.EXAMPLES / f"{sample}.out").read_text()
            for number in range(1, tables + 1):
                rows = self.rows("-t", number, f"examples/{sample}.out")
                expected = kova.read(content, number)
                self.assertEqual(list(rows[0]), list(expected[0]))
                for row, wanted in zip(rows, expected, strict=True):
                    self.assertEqual(row.pop("set"), wanted.pop("set"))
                    self.assertEqual({kind: float(text) for kind, text in row.items()}, wanted)
                    for text in row.values():
                        self.assertLessEqual(len(text), len(repr(float(text))))

    def test_own_header_rows(self):
        """The kinds stand in the order in which they are met, s before all of them."""
        first = data_set("1-1", "tsms s r", "1 2 3")
        text = file(table(first, data_set("2-1", "s bgl sms", "4 5 6"),
                          data_set("2-1", "sms tsms s", "7 8 9", "-0.0 1e-7 1e300")))
        self.assertEqual(self.run_program(PROGRAM, "a.out", files={"a.out": text}),
                         "set,s,tsms,r,bgl,sms\n1-1,2,1,3,,\n2-1,4,,,5,6\n"
                         "2-1,9,8,,,7\n2-1,1e+300,1e-07,,,-0\n")
        text = file(table(first, data_set("1-2", "s sms", "4 5"), data_set("2-2", "s r", "6 7")))
        self.assertEqual(self.run_program(PROGRAM, "-c", "2-2,1-2", "a", files={"a": text}),
                         "set,s,sms,r\n1-2,4,5,\n2-2,6,,7\n")

    def test_odd_numbers(self):
        texts = ("-nan", "nan", "0x1.8p3", "inf", "-Infinity", "4.9e-324", "0.1", "1e999",
                 "123456789012")
        text = file(table(data_set("1-1", "s r", *(f"{text} 1" for text in texts))))
        written = [row["s"] for row in self.rows("a.out", files={"a.out": text})]
        self.assertEqual(written[:2], ["nan", "nan"])
        self.assertEqual(list(map(float, written[2:])),
                         [12, math.inf, -math.inf, 5e-324, 0.1, math.inf, 123456789012])

    def test_options_of_reading(self):
        sample = kova.read(running.BENZENE.read_text(), 2)
        rows = self.rows("examples/benzene.out", "--table=2", "--bglp1", "--data", "bgl",
                         "--curves", "1-1,2-1")
        self.assertEqual([(row["set"], float(row["bgl"])) for row in rows],
                         [(row["set"], row["bgl"] + 1) for row in sample if row["set"] != "1-2"])
        rows = self.rows("--smsef", "3", "--dread=smss", "-c", "2-1", "examples/r_values.out")
        deviation = float(running.EXAMPLES.joinpath("r_values.out").read_text()
                          .split("Set: 2-1")[1].split("--|")[-1].splitlines()[6].split()[-1])
        self.assertEqual(float(rows[0]["smss"]), deviation * 3 / 1.16)

    def test_last_set_not_selected(self):
        """Layout 1: sets of the next table are none of this one."""
        rows = self.rows("-c", "1-1", "examples/benzene.out")
        self.assertEqual(len(rows), 161)

    def test_long_table(self):
        """More than fits into any block, with labels of the greatest length."""
        rows = [f"{k / 7} {-k / 3e200}" for k in range(20000)]
        label = "2147483647--2147483648"
        text = file(table(data_set(label, "s r", *rows)))
        read = [f"{row['s']} {row['r']}" for row in self.rows("a.out", files={"a.out": text})]
        self.assertEqual([tuple(map(float, row.split())) for row in read],
                         [tuple(map(float, row.split())) for row in rows])


class Files(kova.Programs):
    def test_output(self):
        made = {}

        def look(folder):
            made.update((path.name, path.read_text()) for path in (folder / "work").glob("*.csv"))

        files = {"a.out": SMALL, "old.csv": "old\n"}
        csv_text = "set,s,sms,tsms\n1-1,2,1,\n1-1,3,-0.5,\n2-1,4,,4\n"
        self.run_program(PROGRAM, "a.out", "--output=new.csv", files=files, afterwards=look)
        self.assertEqual(made, {"new.csv": csv_text, "old.csv": "old\n"})
        self.run_program(PROGRAM, "-fo", "old.csv", "a.out", files=files, afterwards=look)
        self.assertEqual(made["old.csv"], csv_text)
        self.check_refused("old.csv exists already: -f replaces it",
                           PROGRAM, "-o", "old.csv", "a.out", files=files)
        self.assertEqual(self.run_program(PROGRAM, "-o", "-", "a.out", files=files), csv_text)

    def test_names(self):
        for name in (" a  b", "quote\"'", "50%s", "line\nend", "|cat", "back\\", "größe", "-f"):
            with self.subTest(name):
                found = []
                self.run_program(
                    PROGRAM, f"--output={name}", "--", f"{name}.out", files={f"{name}.out": SMALL},
                    afterwards=lambda folder, name=name: found.append((folder / "work" / name)
                                                                      .read_text()))
                self.assertEqual(found[0][:4], "set,")

    def test_full_disk(self):
        big = file(table(data_set("1-1", "s sms", *["2.123456789 1.123456789"] * 4000)))
        files = {"a.out": SMALL, "big.out": big}
        with open("/dev/full", "wb") as full:
            for arguments in (["a.out"], ["--list", "a.out"], ["big.out"]):
                self.check_refused("Cannot write to standard output: No space left on device",
                                   PROGRAM, *arguments, files=files, stdout=full)
        limited = ("/bin/sh", "-c", 'ulimit -S -f 1; cat big.out | exec "$@"', "sh", PROGRAM)
        for sentence, *arguments in (
                ("cannot write big.csv: File too large", "-o", "big.csv", "big.out"),
                ("cannot write a temporary file: File too large", "--list", "/dev/stdin")):
            self.check_refused(sentence, *limited, *arguments, files=files,
                               env={"PATH": f"{running.PROGRAM.parent}:/usr/bin:/bin"})

    def test_reader_that_has_seen_enough(self):
        for option in "-t1", "--list":
            with running.unread_pipe() as pipe:
                self.run_program(PROGRAM, option, "examples/ccl4.out", stdout=pipe)

    def test_refused_options(self):
        self.check_every_refused(
            PROGRAM, {"a.out": SMALL},
            {kova.DRAW: "png eps svg imgw imgl grid legend no-xtics ytics x2tics y2tics ratio term "
                        "no-multiplot lw elw psf efa style_sms ptype_sms",
             "curves are written without shifts": "no-autoshifts shiftmult",
             "use --dread": "dcombine", "use --cread": "ccombine",
             "use --dread with smss": "smserrbars dsmserrbars smserrfill dsmserrfill dsmslerrfill",
             "whole curves are written": "xmin xmax"})


class Input(kova.Programs):
    def test_what_is_not_there(self):
        files = {"a.out": SMALL, "b.out": SMALL}
        for sentence, *arguments in (
                ("no data set 9-9 in a.out (table 1 has 1-1, 2-1)", "-c", "1-1,9-9", "a.out"),
                ("no kind dsms in a.out (table 2 has bgl)", "-t2", "-d", "bgl,dsms", "a.out"),
                ("no table 3 in a.out (it has 2)", "--table=3", "a.out"),
                ("no table 0 in a.out (it has 2)", "--table=0", "a.out"),
                ("one input file at a time, not b.out as well", "a.out", "b.out"),
                ("Cannot open file 'c.out'", "c.out"),
                ("No input file defined.", "-t1"),
                ("--list prints on standard output: use > instead of -o",
                 "--list", "-o", "x", "a.out"),
                ("--list shows all kinds and data sets: choose none", "--list", "-dsms", "a.out"),
                ("--list shows all kinds and data sets: choose none", "--list", "-c1-1", "a.out")):
            with self.subTest(sentence):
                self.check_refused(sentence, PROGRAM, *arguments, files=files)

    def test_no_output_of_kova(self):
        for content in (b"", gzip.compress(SMALL.encode()), b"set,s\n1-1,2\n", bytes(range(256))):
            for option in "-t1", "--list":
                self.check_refused("x is no output of KOVA: there is no table in it",
                                   PROGRAM, option, "x", files={"x": content})

    def test_half_written(self):
        """Cut off anywhere in a data set, whatever the layout."""
        middle = "a.out ends in the middle of data set 1-1"
        rows = "a row of data set 1-1 does not have 2 numbers: is the file complete?"
        for text, sentence in ((SMALL[:SMALL.index("-0.2") + 3], middle),
                               (SMALL[:SMALL.index("-0.2")], rows),
                               (SMALL[:SMALL.index("-0.25") + 6], rows),
                               (SMALL[:SMALL.index("Scale")], middle),
                               (kova.layout1("s sms", ("(1-1) =1.0 ", " 1 2"))[:-42], middle),
                               (file(table(data_set("1-1", "s r"))),
                                "data set 1-1 of a.out has no rows")):
            with self.subTest(text):
                self.check_refused(sentence, PROGRAM, "-o", "x", "a.out", files={"a.out": text})


class List(kova.Programs):
    def test_sample(self):
        text = HEAD
        for number, kinds in enumerate(("sms,tsms,dsms,smss", "int,bgl,tint,dint,ints",
                                        "rint,lint,rbgl,lbgl,sec,iat"), 1):
            text += line(number, "1-1", 161, 2, 18, 1.07, kinds)
            text += line(number, "1-2", 81, 2, 18, 0.88, kinds)
            text += line(number, "2-1", 281, 6, 34, 1.24, kinds)
        self.assertEqual(self.run_program(PROGRAM, "--list", "examples/benzene.out"), text)
        self.assertEqual(self.run_program(
            "sh", "-c", f"cat examples/benzene.out | {PROGRAM} --list /dev/stdin",
            env={"PATH": f"{running.PROGRAM.parent}:/usr/bin:/bin"}), text)

    def test_own_header_rows(self):
        text = HEAD + line(1, "1-1", 2, 2, 3, 0.5, "sms") + line(1, "2-1", 1, 4, 4, 2, "tsms")
        second = line(2, "1-1", 1, 5, 5, 1, "bgl")
        self.assertEqual(self.run_program(PROGRAM, "--list", "a", files={"a": SMALL}),
                         text + second)
        self.assertEqual(self.run_program(PROGRAM, "a", "--list", "-t", "1", files={"a": SMALL}),
                         text)
        self.check_refused("no table 7 in a (it has 2)", PROGRAM, "--list", "-t7", "a",
                           files={"a": SMALL})

    def test_s_behind_another(self):
        text = file(table(data_set("1-1", "sms s", "5 1", "6 2")))
        self.assertEqual(self.run_program(PROGRAM, "--list", "a", files={"a": text}),
                         HEAD + line(1, "1-1", 2, 1, 2, 1, "sms"))

    def test_nothing_in_it(self):
        text = file(table(), table(data_set("1-1", "r sms")),
                    table(data_set("1-1", "s r", "nan 1")))
        self.assertEqual(self.run_program(PROGRAM, "--list", "a", files={"a": text}),
                         HEAD + line(1, "-", 0, "-", "-", "-", "-")
                         + line(2, "1-1", 0, "-", "-", 1, "r,sms")
                         + line(3, "1-1", 1, "-", "-", 1, "r"))

    def test_damaged(self):
        """It is named, and the list goes on."""
        good = data_set("1-1", "s r", "1 2")
        text = file(table(good, data_set("2-1", "s r", "1 2", "3")), table(good),
                    table(good))[:-33]
        result = running.run([PROGRAM, "--list", "a"], {"a": text}, gnuplot=None)
        self.assertEqual(result.stdout.decode(),
                         HEAD + line(1, "1-1", 1, 1, 1, 1, "r") + line(2, "1-1", 1, 1, 1, 1, "r"))
        self.assertEqual(
            (result.status, result.stderr.decode()),
            (1, "gravlex-table: table 1 of a: Invalid number of columns: expected 2, read 1\n"
                "gravlex-table: table 3 of a: the file ends in the middle of data set 1-1\n"))

    def test_unreadable(self):
        self.check_refused("Cannot open file 'none'", PROGRAM, "--list", "none")
        self.check_refused("Cannot open file '.'", PROGRAM, "--list", ".")


if __name__ == "__main__":
    unittest.main()
