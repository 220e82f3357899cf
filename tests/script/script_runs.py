# SPDX-License-Identifier: MIT
"""Runs gravlex-script in a folder of its own, under each shell that is there."""

import os
import pathlib
import shlex
import shutil
import sys
import tempfile
import unittest

sys.path.append(f"{sys.path[0]}/..")
import running
from running import PROGRAM, ROOT, TIME_LIMIT

SCRIPT = ROOT / "src" / "script" / "gravlex-script"
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
        self.env = running.environment(
            self.home, PATH=f"{self.home}/path:{os.environ['PATH']}", TMPDIR=str(self.tmp))

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
        return running.start([*(command or [self.script]), *arguments],
                             **{"env": {**self.env, **dict(env)}, "cwd": self.work, **more})

    def run_script(self, *arguments, status=0, **more):
        """Runs the script to its end. Returns what it printed on both streams."""
        process = self.start(*arguments, **more)
        out, err = process.communicate(timeout=TIME_LIMIT)
        self.assertEqual(process.returncode, status, err)
        return out, err

    def sent(self, *arguments, status=0):
        """The inputs of the gnuplot processes that gravlex itself starts, and what it prints."""
        result = running.run([PROGRAM, *arguments], cwd=self.work)
        self.assertEqual(result.status, status, result.stderr)
        return result.streams, (result.stdout, result.stderr)

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
