# SPDX-License-Identifier: MIT
"""Runs gravlex-script in a folder of its own, under each shell that is there."""

import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
SCRIPT = ROOT / "src" / "script" / "gravlex-script"
STANDIN = ROOT / "tests" / "standin" / "gnuplot"
CCL4 = ROOT / "examples" / "ccl4.out"
TIME_LIMIT = 120  # seconds; a run takes a fraction of one, but not on a busy machine
KEPT = re.compile(r"PATH|(ASAN|UBSAN|LSAN)_OPTIONS|GCOV_PREFIX(_STRIP)?|LLVM_PROFILE_FILE")
PROGRAM = pathlib.Path()
ONE_PLOT = ("--data", "sms,tsms", "--curves", "1-1,2-1")
TWO_PLOTS = ("--no-multiplot", "--no-autoshifts", "--dread", "sms,tsms", "--cread", "1-1")


class ScriptTest(unittest.TestCase):
    """Each test has the folders work, where it runs, bin with the script, path with gravlex and a
    gnuplot that must never be started, and tmp, which must be empty at the end."""

    shell = "/bin/sh"

    def setUp(self):
        home = tempfile.TemporaryDirectory(prefix="gravlex-script-test-")
        self.addCleanup(home.cleanup)
        self.home = pathlib.Path(home.name)
        for name in "work", "bin", "path", "tmp":
            (self.home / name).mkdir()
        self.work, self.tmp = self.home / "work", self.home / "tmp"
        self.script = self.install(self.home / "bin")
        (self.home / "path" / "gravlex").symlink_to(PROGRAM)
        self.write_program("path/gnuplot", f": > {shlex.quote(str(self.home))}/drawn\n")
        self.env = {name: value for name, value in os.environ.items() if KEPT.fullmatch(name)}
        self.env.update(PATH=f"{self.home}/path:{self.env['PATH']}", TMPDIR=str(self.tmp),
                        HOME=str(self.home), LC_ALL="C.UTF-8")

    def tearDown(self):
        self.assertEqual(os.listdir(self.tmp), [], "something was left behind")
        self.assertFalse((self.home / "drawn").exists(), "the other gnuplot was started")

    def install(self, folder):
        """Copies the script so that it runs under the shell of this class."""
        text = SCRIPT.read_text().split("\n", 1)[1]
        path = folder / "gravlex-script"
        path.write_text(f"#!{self.shell}\n{text}")
        path.chmod(0o755)
        return path

    def write_program(self, name, text):
        path = self.home / name
        path.unlink(missing_ok=True)
        path.write_text("#!/bin/sh\n" + text)
        path.chmod(0o755)
        return path

    def start(self, *arguments, env=(), command=None, **more):
        more = {"stdin": subprocess.DEVNULL, "cwd": self.work, **more}
        return subprocess.Popen([*(command or [self.script]), *arguments],
                                env={**self.env, **dict(env)}, stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE, start_new_session=True, **more)

    def run_script(self, *arguments, status=0, **more):
        """Runs the script to its end. Returns what it printed on both streams."""
        process = self.start(*arguments, **more)
        out, err = process.communicate(timeout=TIME_LIMIT)
        self.assertEqual(process.returncode, status, err)
        return out, err

    def sent(self, *arguments, status=0):
        """The inputs of the gnuplot processes that gravlex itself starts, and what it prints."""
        record = self.home / "record"
        shutil.rmtree(record, ignore_errors=True)
        record.mkdir()
        (record / "gnuplot").symlink_to(STANDIN)
        done = self.run_script(*arguments, status=status, command=[PROGRAM],
                               env={"RECORD": str(record), "PATH": f"{record}:{self.env['PATH']}"})
        count = len(list(record.glob("*.in")))
        return [(record / f"gnuplot-{n + 1}.in").read_bytes() for n in range(count)], done

    def files(self):
        return sorted(path.name for path in self.work.iterdir())

    def kept(self, name="gravlex.gp"):
        return (self.work / name).read_bytes()


def under_each_shell(scope, *classes):
    """Adds the test classes once more for each further shell."""
    for name in "dash", "bash", "busybox":
        path = shutil.which(name)
        same = path and os.path.realpath(path) == os.path.realpath(ScriptTest.shell)
        for test in classes if path and not same else ():
            shell = f"{path} sh" if name == "busybox" else path
            scope[f"{test.__name__}_{name}"] = type(f"{test.__name__}_{name}", (test,),
                                                    {"shell": shell})


def main():
    global PROGRAM
    if len(sys.argv) < 2:
        sys.exit(f"usage: {sys.argv[0]} PROGRAM [TEST...]")
    PROGRAM = pathlib.Path(sys.argv.pop(1)).resolve()
    unittest.main()
