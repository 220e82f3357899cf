# SPDX-License-Identifier: MIT
"""gravlex-script: the real gnuplot draws from its files what it draws for gravlex. What the
programs say in common about their input and their files is tested here for all of them."""

import gzip
import os
import re
import resource
import signal
import subprocess
import time
import unittest
import xml.etree.ElementTree as xml

import programs
import running
from programs import HOSTILE, ProgramTest, table
from running import PRELOAD, PROGRAM, TIME_LIMIT

ONE_PLOT = ("--data", "sms,tsms", "--curves", "1-1,2-1", "../ccl4.out")
PAGE = ("--dread", "sms,tsms", "--cread", "1-1,2-1", "../ccl4.out")
DEVIATIONS = ("--data", "sms,tsms,dsms,smss", "--curves", "1-1,2-1", "../ccl4.out")
INTENSITIES = ("--table", "2", "--data", "int,bgl,tint", "--ccombine", "1-1",
               "../benzene.out")
# The head of an EPS image tells when and what for it was made.
HEAD = re.compile(rb"(?m)^%%(CreationDate|Title).*$|^ */(CreationDate|Title).*$")


def limited(kind, limit):
    """For a process that is about to start."""
    return lambda: resource.setrlimit(kind, (limit, resource.getrlimit(kind)[1]))


class Script(ProgramTest):

    def script(self, *arguments, **more):
        return self.run_program("gravlex-script", *arguments, **more)

    def complaint(self, *arguments, **more):
        return self.refused("gravlex-script", *arguments, **more)

    def draw(self, *names):
        for name in names or ("gravlex.gp",):
            self.assertEqual(self.run_program("gnuplot", name), (b"", ""))

    def kept(self, name="gravlex.gp"):
        return (self.work / name).read_text(encoding="ascii")

    def blocks(self, *arguments):
        self.script("-f", *arguments)
        return re.findall(r"(?m)^(\S+) << EOD$", self.kept())

    # ---- Pictures --------------------------------------------------------------------------------

    def check_image(self, *arguments, images=("fit.png",), scripts=("gravlex.gp",)):
        """Nothing differs in the images, by whichever of the two they are drawn."""
        self.run_program("gravlex", *arguments)
        self.assertEqual(self.files(), sorted(images))
        drawn = self.state()
        self.clear()
        self.script(*arguments)
        self.assertEqual(self.files(), sorted(scripts))
        self.draw(*scripts)
        for name in images:
            self.assertGreater(len(drawn[name]), 5000)
            self.assertEqual(HEAD.sub(b"", (self.work / name).read_bytes()),
                             HEAD.sub(b"", drawn[name]), name)

    def test_images(self):
        for kind in "png", "svg", "eps":
            with self.subTest(kind):
                self.check_image(f"--{kind}", f"fit.{kind}", *ONE_PLOT, images=[f"fit.{kind}"])
                self.clear()

    def test_images_with_options(self):
        for more in (("--smserrbars", "--dsmslerrfill", *DEVIATIONS), ("--smserrfill", *DEVIATIONS),
                     ("--dsmserrfill", "-w", "700", "--psf", "2", *DEVIATIONS),
                     ("--legend", "--grid", "--ratio", "0.7", *INTENSITIES),
                     ("--term", "dumb", "--xmin", "3", "--no-autoshifts", *ONE_PLOT)):
            with self.subTest(more):
                self.check_image("--png", "fit.png", *more)
                self.clear()

    def test_images_of_each_plot(self):
        self.check_image("--no-multiplot", "--png", "a b.png", *PAGE,
                         images=[f"{n}_a b.png" for n in range(1, 5)],
                         scripts=[f"gravlex-{n}.gp" for n in range(1, 5)])

    def check_screen(self, *arguments):
        """What gravlex shows on a screen, which its user's settings make an image."""
        (self.home / ".gnuplot").write_text(
            "set terminal pngcairo size 900,700\nset output 'screen.png'\n")
        self.run_program("gravlex", *arguments)
        shown = self.state()
        self.clear()
        self.script(*arguments)
        self.draw()
        self.assertGreater(len(shown["screen.png"]), 5000)
        self.assertEqual((self.work / "screen.png").read_bytes(), shown["screen.png"])

    def test_window(self):
        self.check_screen(*ONE_PLOT)

    def test_page(self):
        self.check_screen(*PAGE)
        self.assertTrue(self.kept().endswith("\nunset multiplot\n"))

    def test_page_with_an_empty_panel(self):
        self.check_screen("--dread", "sms,tsms", "--dcombine", "dsms", *PAGE[2:])

    def test_image_of_a_page(self):
        self.script("--png", "./page.png", *PAGE)
        self.draw()
        size = self.run_program("identify", "-format", "%w %h %k", "page.png")[0].split()
        self.assertEqual(size[:2], [b"1200", b"800"])
        self.assertGreater(int(size[2]), 2)
        self.assertEqual(len(re.findall("(?m)^plot ", self.kept())), 4)
        self.assertIn('set output "./page.png"', self.kept())

    def test_letters_of_a_page(self):
        self.script("--svg", "page.svg", *PAGE)
        self.draw("gravlex.gp")
        letters = "".join(xml.parse(self.work / "page.svg").getroot().itertext())
        self.assertEqual(letters.count("\N{LATIN CAPITAL LETTER A WITH RING ABOVE}"), 4)

    def test_terminal(self):
        """Before the page: gnuplot changes it in none."""
        (self.home / ".gnuplot").write_text("set output 'shown'\n")
        self.script("--term", "svg size 500,400", *PAGE)
        self.draw()
        self.assertIn(b'width="500" height="400"', (self.work / "shown").read_bytes())
        self.assertEqual(self.kept().count("set terminal"), 1)

    def test_zoom_and_replot(self):
        self.script(*ONE_PLOT)
        self.run_program("gnuplot", "-e", "set terminal dumb; set output 'a'; load 'gravlex.gp'; "
                         "set output 'b'; set xrange [5:6]; replot; "
                         "set output 'c'; set xrange [*:*]; replot")
        self.assertEqual(len({(self.work / name).read_bytes() for name in "abc"}), 3)

    # ---- What stands in the script ---------------------------------------------------------------

    def test_the_ways_that_it_names(self):
        self.script("-o", "it's my fit.gp", *ONE_PLOT)
        ways = re.findall(r"(?m)^# (?:As|In) .*?: +(gnuplot .*)$", self.kept("it's my fit.gp"))
        self.assertEqual(len(ways), 3)
        for way in ways:
            self.assertEqual(self.run_program("bash", "-c", way)[1].count("\n"),
                             2 * ("persist" in way), way)  # that there is no terminal
        self.assertEqual((self.work / "plot.png").read_bytes()[:4], b"\x89PNG")
        self.assertEqual((self.work / "plot.pdf").read_bytes()[:5], b"%PDF-")

    def test_comment(self):
        self.script("--data", "sms,tsms", "--curves", "1-1,2-1", "--png", "my fit.png",
                    "../ccl4.out")
        self.assertEqual(self.kept().split("$")[0], """\
# A gnuplot script, written by
#    gravlex-script --data sms,tsms --curves 1-1,2-1 --png 'my fit.png' ../ccl4.out
# Table 1 of ../ccl4.out: Experimental sM(s), Theoretical sM(s)
# of the data sets 1-1, 2-1
# Draw the image:  gnuplot gravlex.gp

""")

    def test_comment_of_each_script(self):
        """What is in it, in lines that a letter can have."""
        sets = [f"{n}-1" for n in range(100, 200)]
        (self.work / "in").write_text(table(*sets))
        self.script("--no-multiplot", "--ccombine", ",".join(sets), "in")
        head = self.kept("gravlex-2.gp").split("# In a window")[0].split("\n", 2)[2]
        self.assertTrue(head.startswith("# Table 1 of in: Theoretical sM(s)\n# of the data sets "))
        self.assertEqual(head.split("sets ")[1].replace("\n#   ", "").strip().split(", "), sets)
        self.assertLess(max(map(len, head.splitlines())), 90)

    def test_blocks(self):
        """The numbers of the stream, and one series a line."""
        self.script("--smserrbars", *DEVIATIONS)
        sent = running.run([PROGRAM, "--smserrbars", *DEVIATIONS], cwd=self.work).streams[0]
        blocks = re.findall(r"(?m)^\$(\S+) << EOD\n([^$]*?)^EOD$", self.kept())
        self.assertEqual([name for name, _ in blocks],
                         ["tsms_1_1", "dsms_1_1", "tsms_2_1", "dsms_2_1",
                          "sms_1_1_dev", "sms_1_1", "sms_2_1_dev", "sms_2_1"])
        stream = sent.decode("latin-1").split("\nplot ")[1].split("\n", 1)[1]
        self.assertEqual([rows for _, rows in blocks], re.split(r"(?m)^e\n", stream)[:-1])
        plot = self.kept().split("\nplot ")[1]
        self.assertEqual(re.findall(r"(?m)^ +\$(\S+)", plot), [name for name, _ in blocks])

    def test_names_of_blocks(self):
        (self.work / "in").write_text(table("1-0", "2--3", "1-0"))
        self.assertEqual(self.blocks("--dread", "sms", "in"),
                         ["$sms_1_0", "$sms_2_m3", "$sms_1_0_2"])
        self.assertEqual(self.run_program("gnuplot", "-e", "set term dumb", "gravlex.gp")[1], "")
        self.assertEqual(self.blocks("--cread=1-0,1-0", "--dread", "sms", "in"),
                         ["$sms_1_0", "$sms_1_0_2"])
        # Labels that share one number are no repeats.
        (self.work / "in").write_text(table("1-0", "1-0", "1-4", "2-0"))
        self.assertEqual(self.blocks("--dread", "sms", "in"),
                         ["$sms_1_0", "$sms_1_0_2", "$sms_1_4", "$sms_2_0"])

    # ---- Where it goes ---------------------------------------------------------------------------

    def test_files(self):
        for name, second in (("a.gp", "a-2.gp"), ("plot", "plot-2"), (".gp", ".gp-2"),
                             ("a.b.c", "a.b-2.c"), ("end.", "end-2."), ("x.y/fit", "x.y/fit-2")):
            with self.subTest(name):
                (self.work / "x.y").mkdir(exist_ok=True)
                self.script("-o", name, "--no-multiplot", *PAGE)
                self.assertTrue((self.work / second).exists())
                self.assertFalse((self.work / name).exists())

    def test_standard_output(self):
        self.script(*ONE_PLOT)
        out, _ = self.script("-o", "-", *ONE_PLOT)
        self.assertEqual(out.split(b"\n", 2)[2], self.kept().encode().split(b"\n", 2)[2])
        shown = self.run_program("sh", "-c", '"$@" | gnuplot -persist', "sh",
                                 PROGRAM.parent / "gravlex-script", "-o-", "--term", "dumb",
                                 *ONE_PLOT)
        self.assertIn(b"s, A", shown[0])
        self.assertEqual((shown[1], self.files()), ("", ["gravlex.gp"]))

    def test_standard_output_with_a_window_each(self):
        out, _ = self.script("-o", "-", "--no-multiplot", *PAGE)
        commands = re.sub(rb"(?m)^(#|\$|[-\d]|EOD).*\n", b"", out)
        shown = re.findall(rb"set terminal '.GPVAL_TERM.' (\d)|^plot ()", commands, re.M)
        self.assertEqual(out[:2], b"# ")
        self.assertEqual(shown, [(b"%d" % (n // 2 + 1) if n % 2 == 0 else b"", b"")
                                 for n in range(8)])
        self.assertNotIn(b"PNG", out)
        (self.work / "all.gp").write_bytes(out)
        drawn = self.run_program("gnuplot", "-e", "set term dumb", "all.gp")[0]
        self.assertEqual(drawn.count(b"s, A"), 4)

    def test_standard_output_with_an_image_each(self):
        out, _ = self.script("-o", "-", "--no-multiplot", "--png", "a.png", *PAGE)
        self.run_program("gnuplot", input=out, stdin=None)
        self.assertEqual(self.files(), [f"{n}_a.png" for n in range(1, 5)])

    def test_hostile_names(self):
        for name in HOSTILE:
            with self.subTest(name):
                (self.work / name).write_text(table("1-1"))
                arguments = ("-o", f"{name}.gp", f"--png={name}.png", "--term", "", "--", name)
                self.script(*arguments)
                head = self.kept(f"{name}.gp").split("$sms_1_1")[0]
                self.assertEqual(self.run_program("bash", "-c",
                                                  head.split("# Draw the image:  ")[1]), (b"", ""))
                self.assertEqual(self.files(), sorted([name, f"{name}.gp", f"{name}.png"]))
                self.assertTrue(all(not line or line[0] == "#" for line in head.split("\n")))
                words = head.split("\n#    ")[1].split("\n")[0]
                self.assertEqual(self.run_program("bash", "-c", f"printf '%s\\0' {words}")[0],
                                 "\0".join(["gravlex-script", *arguments, ""]).encode())
                self.clear()

    def test_hostile_terminal(self):
        """Its name is gnuplot's own language, but not in the comment."""
        self.script("--term", "dumb\nsystem 'touch harm'", *ONE_PLOT)
        self.assertEqual(self.kept().count("\nsystem "), 1)
        self.assertIn("\nset terminal dumb\nsystem ", self.kept())

    # ---- Files that are there --------------------------------------------------------------------

    def test_existing_file(self):
        (self.work / "gravlex.gp").write_text("mine")
        self.assertEqual(self.complaint(*ONE_PLOT), "gravlex.gp exists already: -f replaces it")
        self.script("--force", *ONE_PLOT)
        self.assertIn("$sms_1_1", self.kept())

    def test_existing_further_file(self):
        (self.work / "gravlex-3.gp").write_text("mine")
        self.assertIn("gravlex-3.gp exists", self.complaint("--no-multiplot", *PAGE))

    def test_links(self):
        """They stay."""
        (self.work / "real").write_text("mine")
        (self.work / "gravlex.gp").symlink_to("real")
        self.assertIn("exists already", self.complaint(*ONE_PLOT))
        self.script("-f", *ONE_PLOT)
        self.assertTrue((self.work / "gravlex.gp").is_symlink())
        self.assertIn("$sms_1_1", self.kept("real"))
        (self.work / "real").unlink()
        self.assertIn("No such file", self.complaint("-f", *ONE_PLOT))

    def test_names_that_are_no_files(self):
        (self.work / "folder").mkdir()
        for name, why in (("", "'' is no name of a file"), ("new/", "'new/' is no name of a file"),
                          ("folder", "folder is no file that can be replaced"),
                          ("folder/", "folder/ is no file that can be replaced"),
                          ("/dev/full", "/dev/full is no file that can be replaced"),
                          ("no/a.gp", "cannot write no/a.gp: No such file or directory"),
                          ("a" * 300, f"cannot write {'a' * 300}: File name too long")):
            with self.subTest(name):
                self.assertEqual(self.complaint("-f", "-o", name, *ONE_PLOT), why)
        for name in "", "new/":
            self.assertIn("is no name", self.complaint("--no-multiplot", "-o", name, *PAGE))
        self.assertIn("-10: File name too long",  # none of the nine before
                      self.complaint("--no-multiplot", "-o", "a" * 253, "../benzene.out"))

    def test_rights(self):
        self.script("--no-multiplot", *PAGE, preexec_fn=lambda: os.umask(0o027))
        for name in self.files():
            self.assertEqual((self.work / name).stat().st_mode & 0o777, 0o640)
        self.script(*ONE_PLOT)
        (self.work / "gravlex.gp").chmod(0o604)
        self.script("-f", *ONE_PLOT)
        self.assertEqual((self.work / "gravlex.gp").stat().st_mode & 0o777, 0o604)

    def test_full_disk(self):
        """In the middle, and with the last byte."""
        self.script(*ONE_PLOT)
        for limit in 9000, len(self.kept()) + 2:
            more = {"preexec_fn": limited(resource.RLIMIT_FSIZE, limit)}
            self.assertRegex(self.complaint("-f", *ONE_PLOT, **more),
                             r"\Acannot write .*/gravlex.gp: File too large\Z")

    def test_more_scripts_than_descriptors(self):
        more = {"preexec_fn": limited(resource.RLIMIT_NOFILE, 8)}
        self.script("--no-multiplot", "../benzene.out", **more)
        self.assertEqual(len(self.files()), 12)

    def test_file_system_that_cannot_look_and_rename_at_once(self):
        self.script(*ONE_PLOT, env={**self.env, "LD_PRELOAD": PRELOAD, "FAULTS_RENAME": "1"})
        self.assertIn("$sms_1_1", self.kept())

    def test_full_output(self):
        with open("/dev/full", "wb") as full:
            for arguments in ("-o-", *ONE_PLOT), ("--help",):
                said = self.complaint(*arguments, stdout=full)
                self.assertRegex(said, r"\ACannot write to standard output: .*\Z")

    def test_unread_output(self):
        with running.unread_pipe() as pipe:
            self.assertEqual(self.run_program("gravlex-script", "-o-", *ONE_PLOT, stdout=pipe)[1],
                             "")

    def test_signals(self):
        """Where the first of many scripts has been begun and none has its name yet."""
        (self.home / "in").write_text(table(*(f"{n}-1" for n in range(200))))
        (self.work / "gravlex-2.gp").write_text("mine")
        before = self.state()
        for number in signal.SIGHUP, signal.SIGINT, signal.SIGTERM:
            with self.subTest(number.name):
                with subprocess.Popen([PROGRAM.parent / "gravlex-script", "-f", "--no-multiplot",
                                       "../in"], cwd=self.work, env=self.env) as process:
                    while process.poll() is None and len(self.files()) < 2:
                        pass
                    process.send_signal(number)
                self.assertEqual((process.returncode, self.state()), (-number, before))

    def test_ignored_signals(self):
        """One that is ignored stays so; the others do what they do."""
        (self.home / "in").write_text(table(*(f"{n}-1" for n in range(200))))
        for name, status, files in ("HUP", 0, 400), ("TERM", 128 + signal.SIGTERM, 0):
            self.run_program("sh", "-c", 'trap "" HUP; "$@" & while ! ls -A | grep -q gravlex-; do '
                             f":; done; kill -{name} $!; wait $!", "sh",
                             PROGRAM.parent / "gravlex-script", "--no-multiplot", "../in",
                             status=status)
            self.assertEqual(len(self.files()), files)
            self.clear()

    # ---- The command line ------------------------------------------------------------------------

    def test_options_in_any_order(self):
        self.script("../ccl4.out", "--curves=1-1,2-1", "-fo", "a", "--data", "sms,tsms")
        self.script("--output", "b", *ONE_PLOT)
        one, two = (self.kept(name).split("\n", 4) for name in "ab")
        self.assertEqual(one[2:4], two[2:4])
        self.assertEqual(one[4].replace(" a\n", " b\n"), two[4])

    def test_command_line(self):
        self.assertIn(b"Usage: gravlex-script", self.script()[0])
        self.assertIn(b"gravlex-script of Gravlex version ", self.script("-v")[0])
        self.assertEqual(self.complaint("-f"), "No input file defined.")
        self.assertEqual(self.complaint("--nonsense"), "--nonsense: unknown option (-11)")
        self.assertEqual(self.complaint("a", "b"), "one input file at a time, not b as well")
        self.assertEqual(self.complaint("--data", "nonsense", "../ccl4.out").count("\n"), 0)

    # ---- The input -------------------------------------------------------------------------------

    def test_no_input(self):
        (self.work / "folder").mkdir()
        for name in "none", "folder":
            self.assertEqual(self.complaint(name), f"Cannot open file '{name}'")

    def test_no_output_of_kova(self):
        for content in (b"", b"\0\xff\x89PNG\r\n" * 999, b"s,sms\n1,2\n", gzip.compress(b"x" * 999),
                        gzip.compress((self.home / "ccl4.out").read_bytes())):
            (self.work / "in").write_bytes(content)
            self.assertEqual(self.complaint("in"),
                             "in is no output of KOVA: there is no table in it")

    def check_input(self, content, message, *arguments):
        (self.work / "in").write_text(content)
        self.assertEqual(self.complaint(*arguments, "in"), message)

    def test_what_is_not_there(self):
        for arguments, message in (
                ("-t2", "no table 2 in in (it has 1)"), ("-t0", "no table 0 in in (it has 1)"),
                ("--cread=3-1", "no data set 3-1 in in (table 1 has 1-1, 2-1)"),
                ("--ccombine=1-1,3-2", "no data set 3-2 in in (table 1 has 1-1, 2-1)"),
                ("--data=sms,bgl,sec", "no kind bgl, sec in in (table 1 has sms, tsms)"),
                ("--dcombine=sec", "no kind sec in in (table 1 has sms, tsms)"),
                ("--data=sms", "no kind sms in in (table 1 has none)"),
                ("--smserrfill", "no deviations to show in in: read smss as well")):
            with self.subTest(arguments):
                labels = {"labels": ["    R    "]} if "none" in message else {}
                self.check_input(table("1-1", "2-1", **labels), message, arguments)

    def test_kinds_that_are_not_asked_for(self):
        (self.work / "in").write_text(table("1-1"))
        self.assertEqual(self.blocks("--dread", "all,!bgl", "in"), ["$sms_1_1", "$tsms_1_1"])

    def test_lists_that_are_replaced(self):
        """The last one holds, and all that a list names is in it until it says all."""
        (self.work / "in").write_text(table("1-1"))
        for arguments in (("--dread=bgl", "--dread=sms"), ("--dcombine=bgl", "--dcombine=sms"),
                          ("--data=bgl", "--dread=sms", "--dcombine=sms"), ("--data=bgl,all",)):
            self.script("-f", *arguments, "in")
        for arguments in ("--dread=bgl", "--dcombine=sms"), ("--dread=sms", "--dcombine=bgl"):
            self.assertIn("no kind bgl in in", self.complaint(*arguments, "in"))

    def test_nothing_left_of_a_header(self):
        self.check_input(table("1-1").replace("|", ":"),
                         "nothing to read in table 1 of in: is the file complete?")

    def test_many_sets(self):
        sets = [f"{n}-1" for n in range(1, 200)]
        message = self.complaint_about(table(*sets), "--cread=999-9")
        self.assertRegex(message, r"\Ano data set 999-9 in in \(table 1 has 1-1, .*, \.\.\.\)\Z")
        self.assertLess(len(message), 500)

    def complaint_about(self, content, *arguments):
        (self.work / "in").write_text(content)
        return self.complaint(*arguments, "in")

    def test_incomplete_tables(self):
        whole = table("1-1", "2-1")
        self.check_input(table(), "no data sets in table 1 of in")
        self.check_input(whole[:whole.rindex("\n---")], "in ends in the middle of data set 2-1")
        wrong = "a row of data set 2-1 does not have 3 numbers: is the file complete?"
        for cut in table("1-1", "2-1", end=False), whole[:whole.rindex("    3.") + 12]:
            self.check_input(cut, wrong)
        rows = whole.index("\n    2.000") + 1
        end = whole.index("-----", rows)
        self.check_input(whole[:rows] + whole[end:], "data set 1-1 of in has no rows")
        rows = whole.rindex("\n    2.000") + 1
        self.check_input(whole[:rows] + whole[whole.index("-----", rows):],
                         "data set 2-1 of in has no rows")

    def test_different_columns(self):
        first = "   Exp. sM(s)", "   Thr. sM(s)"
        second = first[::-1]
        content = table(("1-1", first), ("2-1", second), ("3-1", first[:1]), ("4-1", first))
        self.check_input(content, "data sets 1-1 and 2-1 of in have different columns: "
                         "choose with --curves")
        self.assertIn("1-1 and 3-1", self.complaint("--curves", "1-1,3-1", "in"))
        self.assertEqual(self.blocks("--data", "sms", "--curves", "1-1,4-1", "in"),
                         ["$sms_1_1", "$sms_4_1"])
        self.assertEqual(self.blocks("--curves", "2-1", "in"), ["$tsms_2_1", "$sms_2_1"])

    def test_first_column(self):
        for first in "  Delta sM(s)  |       S      |", "  Delta sM(s)  |   Exp. sM(s)  |":
            self.check_input(table("1-1").replace("       S      |   Exp. sM(s)  |", first),
                             "the first column of the data sets in in is not s")

    def test_nothing_to_draw(self):
        self.assertEqual(self.complaint("--data", "smss", "--smserrbars", "../ccl4.out"),
                         "nothing to draw in table 1 of ../ccl4.out")
        (self.work / "in").write_text(table("1-1", labels=("      R    ", "   Exp. sM(s)")))
        self.assertEqual(self.complaint("in"),
                         "R-values cannot be drawn: name the kinds of in with --data")

    def test_curves_without_an_extent(self):
        """gnuplot would stop at them, and leave out what stands behind. A backward axis is one."""
        (self.work / "flat").write_text(table("1-1", "2-1", value=lambda s: 0.5))
        (self.work / "high").write_text(table("1-1", "2-1", value=lambda s: 1e18))
        (self.work / "low").write_text(table("1-1", "2-1").replace("0.9500", "1e9"))
        for arguments in (("flat",), ("high",), ("low",), ("--xmin=5", "--xmax=5", *PAGE),
                          ("--xmin=5", "--xmax=3", *PAGE)):
            self.script("-f", *arguments)
            self.assertEqual(self.run_program("gnuplot", "-e", "set term dumb", "gravlex.gp")[0]
                             .count(b"s, A"), 4, arguments)

    def test_values_without_a_place(self):
        """They are not drawn; where there is nothing else, nothing is written."""
        (self.work / "in").write_text(table("1-1", "2-1").replace("0.9500", "0", 1))
        self.script("--no-multiplot", "in")
        self.assertEqual(self.files(), ["gravlex-3.gp", "gravlex-4.gp", "in"])
        self.assertEqual(self.complaint("--curves=1-1", "in"), "no numbers to draw in in")
        self.check_input(table("1-1").replace("    2.000 ", "      inf "),
                         "no numbers to draw in in")
        for option in "--psf=nan", "--lw=-1", "--style_sms=4", "--xmin=inf":
            self.assertIn(" is a number from ", self.complaint(option, *ONE_PLOT))

    def test_plots_without_series(self):
        """They have a number, but no script."""
        arguments = ("--data", "smss,sms", "--dcombine", "smss", "--smserrbars", "--no-multiplot",
                     "--curves", "1-1", "../ccl4.out")
        self.script(*arguments)
        self.assertEqual(self.files(), ["gravlex-2.gp"])
        plot = self.script("-o", "-", *arguments)[0].split(b"\nplot ")
        self.assertEqual(len(plot), 2)
        self.assertIn(b"set terminal '.GPVAL_TERM.' 2'", plot[0])

    def test_layout_1(self):
        """Its table ends where the next one begins, whichever sets are read."""
        self.assertEqual(self.complaint("--curves", "9-9", "../benzene.out"),
                         "no data set 9-9 in ../benzene.out (table 1 has 1-1, 1-2, 2-1)")
        self.assertEqual(self.blocks("--dread", "sms", "--cread", "1-1", "../benzene.out"),
                         ["$sms_1_1"])


if __name__ == "__main__":
    running.require("gnuplot", "identify", "bash")
    unittest.main()
