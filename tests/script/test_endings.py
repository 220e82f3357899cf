# SPDX-License-Identifier: MIT
"""How gravlex-script ends when gravlex does not end well, or when it is itself ended, and what it
needs to begin."""

import os
import random
import shutil
import signal
import time
import unittest

import script_runs
from running import CCL4, PROGRAM, TIME_LIMIT
from script_runs import ONE_PLOT, TWO_PLOTS, ScriptTest

SIGNALS = (signal.SIGHUP, signal.SIGINT, signal.SIGQUIT, signal.SIGTERM)
NEEDED = ("sh", "awk", "cat", "head", "ln", "mkfifo", "mktemp", "rm")


class Endings(ScriptTest):

    def wait_for_reader(self, fifo):
        """Waits until gravlex reads from the FIFO. Returns the open end to write to."""
        end = time.monotonic() + TIME_LIMIT
        while time.monotonic() < end:
            try:
                return os.open(fifo, os.O_WRONLY | os.O_NONBLOCK)
            except OSError:
                time.sleep(0.01)
        self.fail("gravlex does not read its input")

    def is_read(self, fifo):
        try:
            os.close(os.open(fifo, os.O_WRONLY | os.O_NONBLOCK))
        except OSError:
            return False
        return True

    def test_error_of_gravlex(self):
        (self.work / "nothing").mkdir()
        for arguments in ("missing",), ("--unknown", CCL4), ("nothing",), ("--data", "no", CCL4):
            with self.subTest(arguments=arguments):
                sessions, printed = self.sent(*arguments, status=1)
                self.assertEqual(sessions, [])
                self.assertEqual(self.run_script(*arguments, status=1), printed)
                self.assertEqual(self.files(), ["nothing"])

    def test_error_in_the_middle_of_a_plot(self):
        arguments = ("--style_sms", "0", *ONE_PLOT, CCL4)
        _, printed = self.sent(*arguments, status=1)
        self.assertIn(b"Invalid plotting style 0", printed[1])
        self.assertEqual(self.run_script(*arguments, status=1), printed)
        # The commands up to there went to gnuplot; they are kept as well.
        self.assertRegex(self.kept(), rb'\nplot  [^\n]* lc rgb "#AA0000"\Z')

    def test_error_in_the_second_session(self):
        arguments = ("--style_sms", "0", "--no-multiplot", "--no-autoshifts", "--dread",
                     "sms,tsms", "--dcombine", "tsms", "--cread", "1-1", "--png", "a.png", CCL4)
        self.run_script(*arguments, status=1)
        self.assertTrue(self.kept().endswith(b"\nreplot\n"))
        self.assertTrue(self.kept("gravlex-2.gp").endswith(b"\nplot "))

    def test_status_is_passed_on(self):
        for status in 0, 1, 2, 77, 127:
            with self.subTest(status=status):
                self.write_program("path/gravlex", "echo plot x | gnuplot -persist\n"
                                   f"exit {status}\n")
                self.run_script("-f", "x", status=status)
                self.assertEqual(self.kept(), b"plot x\n")

    def test_gravlex_is_killed(self):
        """In the middle of a row of the second copy, too."""
        self.write_program("path/gravlex", 'printf "plot\\n1 2\\ne\\nreplot\\n1.0000" | '
                           "gnuplot -persist\nkill -KILL $$\n")
        self.run_script("x", status=128 + signal.SIGKILL)
        self.assertEqual(self.kept(), b"plot\n1 2\ne\nreplot\n")

    def test_gnuplot_is_not_waited_for(self):
        """Where gravlex ends first, the commands still arrive."""
        self.write_program("path/gravlex", "{ sleep 0.5; gnuplot -persist <<END; } &\n"
                           "plot x\nEND\nexit 1\n")
        self.run_script("x", status=1)
        self.assertEqual(self.kept(), b"plot x\n")

    def test_signals(self):
        fifo = self.work / "fifo"
        os.mkfifo(fifo)
        for number in SIGNALS:
            for group in False, True:
                with self.subTest(signal=number.name, group=group):
                    process = self.start(*ONE_PLOT, "fifo")
                    with open(self.wait_for_reader(fifo), "wb", buffering=0) as pipe:
                        pipe.write(b" KOVA v1.6.990\n")
                        (os.killpg if group else os.kill)(process.pid, number)
                        process.communicate(timeout=TIME_LIMIT)
                    self.assertEqual(process.returncode, 128 + number)
                    self.assertFalse(self.is_read(fifo), "gravlex is still there")
                    self.assertEqual(os.listdir(self.tmp), [])
                    self.assertEqual(self.files(), ["fifo"])

    def test_signal_at_any_time(self):
        """Before, while and after gravlex runs: everything is tidy, and no gnuplot comes up."""
        chance = random.Random(1)
        for _ in range(30):
            process = self.start("-f", *TWO_PLOTS, "--png", "a.png", CCL4)
            time.sleep(chance.uniform(0, 0.15))
            process.send_signal(chance.choice(SIGNALS))
            process.communicate(timeout=TIME_LIMIT)
            if process.returncode < 0:
                continue  # so early that the shell had not yet read what to do then
            self.assertIn(process.returncode, (0, *(128 + number for number in SIGNALS)))
            self.assertEqual(os.listdir(self.tmp), [])

    def tools_only(self):
        tools = self.home / "tools"
        tools.mkdir()
        for name in NEEDED:
            (tools / name).symlink_to(shutil.which(name))
        return {"PATH": str(tools)}

    def test_no_gravlex(self):
        printed = self.run_script(*ONE_PLOT, CCL4, env=self.tools_only(), status=2)
        self.assertEqual(printed, (b"", b"gravlex-script: gravlex is neither beside this script "
                                        b"nor on the search path\n"))
        self.assertEqual(self.files(), [])

    def test_needs_no_more_tools_than_these(self):
        env = self.tools_only()
        (self.home / "tools" / "gravlex").symlink_to(PROGRAM)
        sessions, _ = self.sent(*ONE_PLOT, CCL4)
        self.run_script(*ONE_PLOT, CCL4, env=env)
        self.assertEqual([self.kept()], sessions)

    def test_gravlex_beside_the_script_is_the_right_one(self):
        self.write_program("path/gravlex", "exit 66\n")
        self.write_program("bin/gravlex", "exit 55\n")
        self.run_script("x", status=55)

    def test_ways_to_start_it(self):
        """Wherever it lies: it must find itself to take gnuplot's place."""
        sessions, _ = self.sent(*ONE_PLOT, CCL4)
        here = self.install(self.work).name
        odd = self.home / "an odd: folder"
        odd.mkdir()
        self.install(odd)
        (self.work / "link").symlink_to(odd / "gravlex-script")
        shell = self.shell.split()
        path = {"PATH": f"{self.home / 'bin'}:{self.env['PATH']}"}
        for command, env in (([f"./{here}"], {}), (["../bin/gravlex-script"], {}),
                             ([odd / "gravlex-script"], {}), (["./link"], {}), ([here], path),
                             (["env", here], path), ([*shell, here], {}),
                             ([*shell, self.script], {}), ([*shell, f"./{here}"], {})):
            with self.subTest(command=command):
                self.run_script("-f", *ONE_PLOT, CCL4, command=command, env=env)
                self.assertEqual([self.kept()], sessions)
                (self.work / "gravlex.gp").unlink()

    def test_script_that_is_not_executable(self):
        """It cannot take gnuplot's place, and must not let the real one come up instead."""
        self.script.chmod(0o644)
        _, err = self.run_script(*ONE_PLOT, CCL4, command=[*self.shell.split(), self.script],
                                 status=2)
        self.assertIn(b"gravlex-script: cannot take the place of gnuplot in ", err)
        self.assertEqual(self.files(), [])

    def test_folder_that_no_search_path_can_name(self):
        folder = self.tmp / "a:b"
        folder.mkdir()
        _, err = self.run_script(*ONE_PLOT, CCL4, env={"TMPDIR": str(folder)}, status=2)
        self.assertIn(b"gravlex-script: cannot take the place of gnuplot in ", err)
        self.assertEqual(os.listdir(folder), [])
        folder.rmdir()

    def test_folder_with_blanks(self):
        folder = self.tmp / "a b"
        folder.mkdir()
        sessions, _ = self.sent(*ONE_PLOT, CCL4)
        self.run_script(*ONE_PLOT, CCL4, env={"TMPDIR": str(folder)})
        self.assertEqual([self.kept()], sessions)
        self.assertEqual(os.listdir(folder), [])
        folder.rmdir()

    def test_no_folder_for_temporary_files(self):
        _, err = self.run_script(*ONE_PLOT, CCL4, env={"TMPDIR": "/nowhere"}, status=2)
        self.assertTrue(err)
        self.assertEqual(self.files(), [])


script_runs.under_each_shell(globals(), Endings)

if __name__ == "__main__":
    unittest.main()
