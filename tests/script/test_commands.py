# SPDX-License-Identifier: MIT
"""What gravlex-script keeps, where, and what it refuses."""

import os
import shutil
import subprocess
import unittest

import script_runs
from running import CCL4
from script_runs import ONE_PLOT, TWO_PLOTS, ScriptTest

REPLOT = b"\nreplot\n"


class Commands(ScriptTest):

    def check_kept(self, *arguments, names=("gravlex.gp",), image=True, status=0):
        """Each file holds what the session got, up to the second copy of all its data."""
        sessions, printed = self.sent(*arguments, status=status)
        self.assertEqual(self.run_script(*arguments, status=status), printed)
        self.assertEqual(self.files(), sorted(names))
        for name, commands in zip(names, sessions, strict=True):
            second = b""
            if image:
                first = commands.index(b"\n", commands.index(b"\nplot ") + 1) + 1
                second = commands[first:commands.index(b"\nset term", first - 1) + 1]
            self.assertEqual(self.kept(name) + second, commands)
            self.assertEqual(self.kept(name).endswith(REPLOT), image)

    def test_window(self):
        self.check_kept(*ONE_PLOT, CCL4, image=False)

    def test_image(self):
        for kind in "png", "eps", "svg":
            with self.subTest(kind=kind):
                self.check_kept(*ONE_PLOT, f"--{kind}", f"fit.{kind}", CCL4)
                (self.work / "gravlex.gp").unlink()

    def test_page(self):
        self.check_kept("--dread", "sms,tsms", "--png", "fit.png", CCL4, image=False)
        self.assertTrue(self.kept().endswith(b"\nunset multiplot\n"))

    def test_deviations(self):
        self.check_kept("--data", "sms,dsms,smss", "--curves", "1-1", "--smserrbars",
                        "--dsmslerrfill", "--png", "fit.png", CCL4)

    def test_sessions(self):
        self.check_kept(*TWO_PLOTS, "--png", "fit.png", CCL4, names=("gravlex.gp", "gravlex-2.gp"))

    def test_sessions_in_windows(self):
        self.check_kept(*TWO_PLOTS, CCL4, names=("gravlex.gp", "gravlex-2.gp"), image=False)

    def test_no_series(self):
        """A plot without series has no data to leave out."""
        self.check_kept("--no-multiplot", "--dread", "sms", "--cread", "1-1", "--dcombine", "sec",
                        "--png", "fit.png", CCL4, names=("gravlex.gp", "gravlex-2.gp"))
        self.assertIn(b"\nplot \n", self.kept())

    def test_rows_that_are_no_numbers(self):
        rows = "1 nan\n2 -nan\n3 inf\n4 -inf\n5 1e300\n6 -1e300\n"
        (self.home / "input").write_text(
            " KOVA v1.6.986\n GED curves.\n ==========\n       S      |   Sec. Func.  |\n"
            f" -------------------\n Curve: (1-1), scale factor k=1 \n x\n"
            f"{rows} -------------------\n")
        self.check_kept("--no-autoshifts", "--png", "fit.png", self.home / "input")

    def test_texts_that_look_like_the_end(self):
        texts = ("a\nreplot\n1.000000 2.000000\ne\n", "replot", "\nreplot\n", "1.0 2.0\n\nreplot",
                 'a"\nreplot\n1.000000 2.000000\ne\nset output "b', "e\ne\ne",
                 "\nreplot\n1 2\n3 4")
        for text in texts:
            for arguments in (("--png", text), ("--term", text, "--svg", text)):
                with self.subTest(arguments=arguments):
                    self.check_kept(*ONE_PLOT, *arguments, CCL4)
                    (self.work / "gravlex.gp").unlink()
            for arguments in (("--term", text), ("--term", text, "--dread", "sms,tsms")):
                with self.subTest(arguments=arguments):
                    self.check_kept("--data", "sms", *arguments, CCL4, image=False)
                    (self.work / "gravlex.gp").unlink()

    def test_names(self):
        for name, second in (("a.gp", "a-2.gp"), ("plot", "plot-2"), (".gp", ".gp-2"),
                             ("a.b.c", "a.b-2.c"), ("two words.gp", "two words-2.gp"),
                             ("-f", "-f-2"), ("a\nb.gp", "a\nb-2.gp"), ("*.gp", "*-2.gp"),
                             ("end.", "end-2."), ("gnuplot", "gnuplot-2")):
            with self.subTest(name=name):
                self.run_script("-o", name, *TWO_PLOTS, CCL4)
                self.assertEqual(self.files(), sorted((name, second)))
                self.run_script("-f", f"-o{name}", *TWO_PLOTS, CCL4)
                self.assertEqual(self.files(), sorted((name, second)))
                for path in self.work.iterdir():
                    path.unlink()

    def test_name_in_a_folder(self):
        (self.work / "my.plots").mkdir()
        self.run_script("-o", "my.plots/fit", *TWO_PLOTS, CCL4)
        self.assertEqual(sorted(os.listdir(self.work / "my.plots")), ["fit", "fit-2"])

    def test_arguments_arrive_as_they_are(self):
        self.write_program("path/gravlex", "printf '<%s>\\n' \"$@\"\n")
        arguments = ("--png", "", "a b", "*", "a\nb", "-o", "x", "-f", "--", "--help", "$HOME",
                     "\\")
        out, _ = self.run_script("-o", "y", *arguments)
        self.assertEqual(out.decode(), "".join(f"<{one}>\n" for one in arguments))

    def test_first_argument_for_gravlex(self):
        self.write_program("path/gravlex", "printf '<%s>\\n' \"$@\"\n")
        for first in "--", "-", "-v", "x", "", "-t":
            with self.subTest(first=first):
                out, _ = self.run_script(first, "-o", "z")
                self.assertEqual(out.decode(), f"<{first}>\n<-o>\n<z>\n")

    def test_usage(self):
        usage = b"usage: gravlex-script [-f] [-o FILE] GRAVLEX-ARGUMENTS...\n"
        self.assertEqual(self.run_script("--help"), (usage, b""))
        for arguments in (), ("-o",), ("-f",), ("-o", "x"), ("-o", "", "x"):
            with self.subTest(arguments=arguments):
                self.assertEqual(self.run_script(*arguments, status=2),
                                 (b"", b"gravlex-script: " + usage))

    def test_existing_file_is_refused(self):
        (self.work / "gravlex.gp").write_text("mine\n")
        message = b"gravlex-script: gravlex.gp exists already; -f overwrites it\n"
        self.assertEqual(self.run_script(*ONE_PLOT, CCL4, status=2), (b"", message))
        self.assertEqual(self.kept(), b"mine\n")

    def test_existing_further_file_is_refused(self):
        (self.work / "gravlex-2.gp").write_text("mine\n")
        _, err = self.run_script(*TWO_PLOTS, CCL4, status=2)
        self.assertEqual(err, b"gravlex-script: gravlex-2.gp exists already; -f overwrites it\n")
        self.assertEqual(self.files(), ["gravlex-2.gp"])
        self.assertEqual(self.kept("gravlex-2.gp"), b"mine\n")

    def test_link_to_nothing_is_refused(self):
        (self.work / "gravlex.gp").symlink_to("elsewhere")
        _, err = self.run_script(*ONE_PLOT, CCL4, status=2)
        self.assertEqual(err, b"gravlex-script: gravlex.gp exists already; -f overwrites it\n")
        self.assertEqual(self.files(), ["gravlex.gp"])

    def test_file_that_comes_up_meanwhile_is_not_overwritten(self):
        self.write_program("path/gravlex", "echo mine > gravlex.gp\n"
                           "echo plot | gnuplot -persist\n")
        self.run_script("x", status=2)
        self.assertEqual(self.kept(), b"mine\n")

    def test_file_that_comes_up_at_the_last_moment_is_not_overwritten(self):
        self.write_program("path/awk", "echo mine > gravlex-2.gp\n"
                           f'exec {shutil.which("awk")} "$@"\n')
        self.run_script(*TWO_PLOTS, CCL4, status=2)
        self.assertEqual(self.kept("gravlex-2.gp"), b"mine\n")

    def test_overwriting(self):
        for name in "gravlex.gp", "gravlex-2.gp":
            (self.work / name).write_text("mine\n" * 100000)
        self.run_script("-f", *TWO_PLOTS, CCL4)
        sessions, _ = self.sent(*TWO_PLOTS, CCL4)
        self.assertEqual([self.kept(), self.kept("gravlex-2.gp")], sessions)

    def test_file_that_cannot_be_written(self):
        (self.work / "folder").mkdir()
        for name in "nowhere/a.gp", "folder", "/dev/full":
            with self.subTest(name=name):
                _, err = self.run_script("-f", "-o", name, *ONE_PLOT, CCL4, status=2)
                self.assertTrue(err)
        self.assertEqual(self.files(), ["folder"])

    def test_nothing_to_keep(self):
        (self.work / "empty").write_text("")
        out, err = self.run_script("empty")
        self.assertIn(b"table=1\n", out)
        self.assertEqual(err, b"gravlex-script: nothing was sent to gnuplot, "
                              b"so there is nothing to keep\n")
        self.assertEqual(self.files(), ["empty"])

    def test_standard_input(self):
        sessions, _ = self.sent(*ONE_PLOT, CCL4)
        cat = subprocess.Popen(["cat", CCL4], stdout=subprocess.PIPE)
        with cat:
            self.run_script(*ONE_PLOT, "/dev/stdin", stdin=cat.stdout)
        self.assertEqual([self.kept()], sessions)

    def test_closed_standard_input(self):
        sessions, _ = self.sent(*ONE_PLOT, CCL4)
        self.run_script(*ONE_PLOT, CCL4, command=["sh", "-c", 'exec "$@" <&-', "sh", self.script])
        self.assertEqual([self.kept()], sessions)


script_runs.under_each_shell(globals(), Commands)

if __name__ == "__main__":
    unittest.main()
