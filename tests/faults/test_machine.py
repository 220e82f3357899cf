# SPDX-License-Identifier: MIT
"""What a run makes of a machine that is not as it should be: of outputs that are closed or full,
of a gnuplot that goes, of signals, of limits, and of inputs that come slowly.

Unless a test says otherwise, all must be as in an undisturbed run.
"""

import os
import pathlib
import re
import signal
import stat
import subprocess
import tempfile
import threading
import time
import unittest

import harness
import running

RUNS = {
    "window": "--data sms,tsms --curves 1-1,2-1 two.out",
    "image": "--data sms,tsms --curves 1-1,2-1 --png a.png one.out",
    "panels": "--dread sms,tsms one.out",
    "windows": "--data sms,tsms --no-multiplot two.out",
}
ERRORS = {"no input": "none.out", "bad row": "bad.out", "bad option": "--nonsense"}
LONG = "--data sms --curves 1-1,2-1 --no-autoshifts long.out"  # more than a pipe can hold
FILES = {"one.out": harness.layout_1(), "two.out": harness.layout_2(),
         "bad.out": harness.layout_1().replace("0.0", "x"), "long.out": harness.layout_2(4000)}
LOST = harness.LOST
# What the shell may say about a gnuplot that was ended by a signal.
SHELL = re.compile(rb"(?m)^(Killed|Terminated)$\n")
OUTPUT_LOST = b"Cannot write to standard output: "


class Machine(unittest.TestCase):

    def start(self, arguments, before="", after="", shell=None, env=None, wrapper=(), **more):
        """Runs below a shell that prepares it and redirects it, or that does as it is told."""
        command = [*wrapper, running.PROGRAM, *arguments.split()]
        env = env or {}
        if any(name.startswith("FAULTS_") for name in env):
            command = ["env", f"LD_PRELOAD={harness.PRELOAD}", *command]
        if before or after:
            shell = f'{before}\nexec "$@" {after}'
        if shell:
            command = ["/bin/sh", "-c", shell, "sh", *command]
        more.setdefault("files", FILES)
        return running.run(command, env=env, **more)

    def right(self, arguments):
        """The undisturbed run."""
        if arguments not in Right:
            Right[arguments] = self.start(arguments)
            self.assertEqual(Right[arguments].status, int(arguments in ERRORS.values()))
        return Right[arguments]

    def assert_good(self, result, arguments):
        self.assertEqual(result, self.right(arguments))


# ---- Outputs -----------------------------------------------------------------------------------

class Outputs(Machine):

    def test_closed_streams(self):
        for arguments in (*RUNS.values(), *ERRORS.values(), LONG):
            right = self.right(arguments)
            for closed in ("0", "1", "2", "01", "02", "12", "012"):
                with self.subTest(arguments=arguments, closed=closed):
                    left = []
                    result = self.start(
                        arguments, after=" ".join(f"{number}>&-" for number in closed),
                        afterwards=lambda folder: left.extend(
                            (folder / "work" / file).read_text() for file in FILES))
                    self.assertEqual(result.status, right.status)
                    self.assertEqual(result.streams, right.streams)
                    self.assertEqual(result.stdout, b"" if "1" in closed else right.stdout)
                    self.assertEqual(result.stderr, b"" if "2" in closed else right.stderr)
                    self.assertEqual(left, list(FILES.values()))

    def test_full_output(self):
        for arguments in (*RUNS.values(), *ERRORS.values(), LONG, "--help", "--version", ""):
            with self.subTest(arguments=arguments):
                right = self.right(arguments) if "out" in arguments else self.start(arguments)
                result = self.start(arguments, after="> /dev/full")
                self.assertEqual(result.streams, right.streams)
                if right.stdout:
                    self.assertEqual(result.status, 1)
                    self.assertEqual(result.stderr,
                                     right.stderr + OUTPUT_LOST + b"No space left on device\n")
                else:
                    self.assertEqual((result.status, result.stderr), (right.status, right.stderr))

    def test_full_output_line_by_line(self):
        for arguments in (RUNS["window"], "bad.out", "--help", "--version one.out", ""):
            for buffering in ("-oL", "-o0"):
                with self.subTest(arguments=arguments, buffering=buffering):
                    wrapper = ("stdbuf", buffering)
                    result = self.start(arguments, wrapper=wrapper, after="> /dev/full")
                    self.assertEqual(result.status, 1)
                    self.assertRegex(result.stderr, OUTPUT_LOST)
                    # One who has read enough is no error.
                    result = self.start(arguments, wrapper=wrapper,
                                        shell='{ sleep 0.05; "$@"; echo "$?" >&2; } | true')
                    self.assertEqual(result.stderr, b"1\n" if arguments == "bad.out" else b"0\n")

    def test_full_errors(self):
        says = {"STANDIN_SAY": "gnuplot speaks\n"}
        for arguments in (*RUNS.values(), *ERRORS.values()):
            with self.subTest(arguments=arguments):
                right = self.right(arguments)
                result = self.start(arguments, after="2> /dev/full", env=says)
                self.assertEqual((result.status, result.stdout, result.streams),
                                 (right.status, right.stdout, right.streams))
                result = self.start(arguments, after="> /dev/full 2>&1", env=says)
                self.assertEqual((result.status, result.streams),
                                 (1 if right.stdout else right.status, right.streams))

    def test_reader_that_goes(self):
        for arguments in (*RUNS.values(), LONG, "--help"):
            with self.subTest(arguments=arguments):
                right = self.right(arguments)
                result = self.start(arguments, shell='{ "$@"; echo "$?" >&2; } | true')
                self.assertEqual((result.stderr, result.streams), (b"0\n", right.streams))


# ---- gnuplot -----------------------------------------------------------------------------------

class Gnuplot(Machine):

    def check_lost(self, result, right, sessions=1):
        self.assertEqual((result.status, result.left), (0, False))
        self.assertEqual(result.stdout, right.stdout)
        self.assertEqual(SHELL.sub(b"", result.stderr), sessions * LOST)

    def test_leaves(self):
        right = self.right(LONG)
        for take in (0, 1, 1000, 4096, 50000):
            for ending in ({}, {"STANDIN_STATUS": "3"}, {"STANDIN_SIGNAL": "9"},
                           {"STANDIN_SIGNAL": "13"}, {"STANDIN_SIGNAL": "2"}):
                with self.subTest(take=take, ending=ending):
                    result = self.start(LONG, env={"STANDIN_TAKE": str(take), **ending})
                    self.check_lost(result, right)
                    self.assertEqual(result.streams, [right.streams[0][:take]])

    def test_fails_in_the_end(self):
        for name, arguments in RUNS.items():
            right = self.right(arguments)
            for ending in ({"STANDIN_STATUS": "1"}, {"STANDIN_STATUS": "255"},
                           {"STANDIN_SIGNAL": "15"}, {"STANDIN_SIGNAL": "9"}):
                with self.subTest(name=name, ending=ending):
                    result = self.start(arguments, env=ending)
                    self.check_lost(result, right, len(right.streams))
                    self.assertEqual(result.streams, right.streams)

    def test_missing(self):
        for name, arguments in {**RUNS, "long": LONG}.items():
            with self.subTest(name=name):
                right = self.right(arguments)
                result = self.start(arguments, gnuplot=None)
                self.assertEqual((result.status, result.stdout), (0, right.stdout))
                self.assertEqual(result.stderr.count(LOST), len(right.streams))

    def test_speaks(self):
        for name, arguments in {**RUNS, "long": LONG}.items():
            with self.subTest(name=name):
                right = self.right(arguments)
                result = self.start(arguments, env={"STANDIN_SAY": "x" * 1000 + "\n",
                                                    "STANDIN_TIMES": "300"})
                self.assertEqual((result.status, result.stdout, result.streams),
                                 (0, right.stdout, right.streams))
                self.assertEqual(result.stderr,
                                 (b"x" * 1000 + b"\n") * 300 * len(right.streams))


# ---- Inputs ------------------------------------------------------------------------------------

def feed(pieces, pause, between=lambda pid: None):
    """Makes the FIFO, and writes the pieces into it once it is opened."""
    def start(process, folder):
        def write():
            os.mkfifo(folder / "work" / "fifo")
            with open(folder / "work" / "fifo", "wb", buffering=0) as fifo:
                for piece in pieces:
                    fifo.write(piece.encode())
                    time.sleep(pause)
                    between(process.pid)
        threading.Thread(target=write, daemon=True).start()
    return start


class Inputs(Machine):

    def test_short_reads(self):
        for size in ("1", "2", "3", "5", "19", "64", "398", "399", "400", "1000", "-1"):
            for name, arguments in RUNS.items():
                with self.subTest(name=name, size=size):
                    self.assert_good(self.start(arguments, env={"FAULTS_READ": size}), arguments)

    def test_growing(self):
        for name, arguments in RUNS.items():
            with self.subTest(name=name):
                file = arguments.split()[-1]
                text = FILES[file]
                left = []
                for begun in (100, len(text) // 2, len(text) - 1):
                    files = {file: text[:begun], "rest": text[begun:]}
                    result = self.start(arguments, files=files, env={"FAULTS_GROW": "rest"},
                                        afterwards=lambda folder: left.append(
                                            (folder / "work" / file).read_text()))
                    self.assert_good(result, arguments)
                    self.assertEqual(left.pop(), text)

    def fifo(self, pieces, pause=0, **more):
        """A run that reads long.out in pieces out of a FIFO."""
        arguments = LONG.replace("long.out", "fifo")
        return self.start(arguments, before="while test ! -p fifo; do :; done",
                          meanwhile=feed(pieces, pause, **more))

    def test_interrupted(self):
        text = FILES["long.out"]
        pieces = [text[i:i + 2000] for i in range(0, len(text), 2000)]

        def disturb(pid):
            for number in (signal.SIGPIPE, signal.SIGXFSZ, signal.SIGSTOP, signal.SIGCONT):
                os.kill(pid, number)
        result = self.fifo(pieces, 0.001, between=disturb)
        self.assert_good(result, LONG)


# ---- Signals -----------------------------------------------------------------------------------

IGNORED = ("--ignore-signal=PIPE", "--ignore-signal=CHLD", "--ignore-signal=XFSZ",
           "--block-signal=PIPE", "--block-signal=CHLD", "--block-signal=XFSZ",
           "--ignore-signal")


class Signals(Machine):

    def test_ignored_by_the_parent(self):
        for how in IGNORED:
            for name, arguments in RUNS.items():
                with self.subTest(how=how, name=name):
                    self.assert_good(self.start(arguments, wrapper=("env", how)), arguments)
            with self.subTest(how=how, name="gnuplot leaves"):
                result = self.start(LONG, wrapper=("env", how), env={"STANDIN_TAKE": "1000"})
                self.assertEqual((result.status, result.stderr), (0, LOST))
            with self.subTest(how=how, name="output full"):
                result = self.start(LONG, wrapper=("env", how), after="> /dev/full")
                self.assertEqual((result.status, result.streams),
                                 (1, self.right(LONG).streams))

    def interrupted(self, arguments, ready, number=signal.SIGINT, **more):
        """A run that gets a signal, together with all that it started, once it is ready."""
        def meanwhile(process, folder):
            end = time.monotonic() + running.TIME_LIMIT
            while not ready(process, folder) and time.monotonic() < end:
                time.sleep(0.01)
            time.sleep(0.05)
            os.killpg(process.pid, number)
        return self.start(arguments, meanwhile=meanwhile, **more)

    def test_interrupt_while_gnuplot_hangs(self):
        def started(_, folder):
            return (folder / "record" / "gnuplot-1.in").exists()
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            for take in ("0", "1000", "1000000000"):  # in a write; in the wait for the end
                for arguments in (LONG, LONG.replace("--data", "--png a.png --data")):
                    with self.subTest(number=number, take=take, arguments=arguments):
                        env = {"STANDIN_TAKE": take, "STANDIN_HANG": "1"}
                        result = self.interrupted(arguments, started, number, env=env)
                        self.assertEqual((result.status, result.left), (-number, False))
                        self.assertEqual(result.stderr, b"")

    def test_interrupt_while_reading(self):
        with tempfile.TemporaryDirectory(prefix="gravlex-fifo-") as name:
            fifo = pathlib.Path(name, "fifo")
            os.mkfifo(fifo)

            def ready(_, _folder):
                self.writer = open(fifo, "wb", buffering=0)  # waits until it is read
                self.writer.write(FILES["long.out"][:5000].encode())
                return True
            result = self.interrupted(f"--data sms {fifo}", ready)
            self.writer.close()
            self.assertEqual((result.status, result.left, result.streams),
                             (-signal.SIGINT, False, []))

    def test_interrupt_is_ignored(self):
        def started(_, folder):
            return (folder / "record" / "gnuplot-1.in").exists()
        result = self.interrupted(LONG, started, wrapper=("env", "--ignore-signal=INT"))
        self.assert_good(result, LONG)


# ---- Libraries ---------------------------------------------------------------------------------

class Libraries(Machine):

    def test_option_that_is_not_in_the_table(self):
        for code in (0, 99):
            with self.subTest(code=code):
                result = self.start(RUNS["window"], env={"FAULTS_OPTION": str(code)})
                self.assertEqual((result.status, result.stdout, result.stderr, result.streams),
                                 (1, b"", f"Cannot process option {code}\n".encode(), []))


# ---- Limits ------------------------------------------------------------------------------------

class Limits(Machine):

    def test_descriptors(self):
        for name, arguments in {**RUNS, "long": LONG}.items():
            right = self.right(arguments)
            statuses = []
            for limit in range(13):
                with self.subTest(name=name, limit=limit):
                    result = self.start(arguments, env={"FAULTS_FILES": str(limit)})
                    self.assertEqual(harness.faults_of(result, right), [])
                    statuses.append(result.status)
                    if limit < 4:
                        self.assertRegex(result.stderr, rb"^Cannot open file '\w+\.out'\n$")
                    elif result.status == 1:
                        self.assertTrue(result.stdout.endswith(
                            b"Cannot connect to gnuplot pipe: Too many open files\n"))
            self.assertEqual(statuses, sorted(statuses, reverse=True))
            self.assertEqual(statuses[5:], [0] * len(statuses[5:]))

    def test_descriptors_are_given_back(self):
        limits = {}
        for arguments in (RUNS["image"], "--no-multiplot --png a.png one.out"):
            limits[arguments] = next(
                limit for limit in range(20)
                if self.start(arguments, env={"FAULTS_FILES": str(limit)}).status == 0)
        self.assertGreater(len(self.right(arguments).streams), 5)
        self.assertEqual(len(set(limits.values())), 1)

    def test_descriptors_and_closed_streams(self):
        for limit in range(13):
            for closed in ("0>&-", "1>&-", "0>&- 1>&-"):
                with self.subTest(limit=limit, closed=closed):
                    result = self.start(RUNS["image"], after=closed,
                                        env={"FAULTS_FILES": str(limit)})
                    self.assertIn(result.status, (0, 1))
                    self.assertTrue(harness.begins_like(result.streams,
                                                        self.right(RUNS["image"]).streams))
                    if limit <= ("1" in closed):
                        self.assertEqual(
                            (result.status, result.stdout, result.stderr),
                            (1, b"", b"Cannot replace a closed stream: Too many open files\n"))
                    elif limit < 4:
                        self.assertEqual((result.status, result.stderr),
                                         (1, b"Cannot open file 'one.out'\n"))

    def test_file_size(self):
        for arguments in (*RUNS.values(), "bad.out"):
            with self.subTest(arguments=arguments):
                right = self.right(arguments)
                # What is written starts at the limit of 64 KiB; the recordings stay below.
                result = self.start(arguments, after=">> out",
                                    before="head -c 65536 /dev/zero > out; ulimit -f 128")
                self.assertEqual(result.streams, right.streams)
                self.assertEqual((result.status, result.stderr),
                                 (1, OUTPUT_LOST + b"File too large\n"))

    def test_file_size_and_much_to_say(self):
        for name, arguments in RUNS.items():
            with self.subTest(name=name):
                right = self.right(arguments)
                result = self.start(arguments, before="ulimit -f 128", env={
                    "STANDIN_SAY": "x" * 1000 + "\n", "STANDIN_TIMES": "100"})
                self.assertEqual(result.stderr, (b"x" * 1000 + b"\n") * 100 * len(right.streams))
                self.assertEqual((result.status, result.stdout, result.streams),
                                 (0, right.stdout, right.streams))

    def test_stack(self):
        for size in (128, 64000):
            for name, arguments in {**RUNS, **ERRORS, "long": LONG}.items():
                with self.subTest(name=name, size=size):
                    self.assert_good(self.start(arguments, before=f"ulimit -s {size}"), arguments)


# ---- The place ---------------------------------------------------------------------------------

class Place(Machine):

    def test_read_only_folder(self):
        if subprocess.run([*running.AS_NOBODY, "test", "-r", running.STANDIN, "-a", "-x",
                           running.PROGRAM], check=False, stdin=subprocess.DEVNULL).returncode:
            self.skipTest("the program is not there for an unprivileged user")
        for name, arguments in {**RUNS, "long": LONG}.items():
            with self.subTest(name=name):
                modes = []
                result = self.start(arguments, before="chmod 555 .", wrapper=running.AS_NOBODY,
                                    afterwards=lambda folder: modes.append(stat.S_IMODE(
                                        (folder / "work").stat().st_mode)))
                self.assertEqual(modes, [0o555])
                self.assert_good(result, arguments)

    def test_folder_that_is_gone(self):
        for name, arguments in RUNS.items():
            with self.subTest(name=name):
                words = arguments.split()
                result = self.start(" ".join([*words[:-1], "{folder}/work/" + words[-1]]),
                                    before="mkdir gone; cd gone; rmdir ../gone")
                right = self.right(arguments)
                # The shell that starts gnuplot has something to say to that.
                self.assertEqual((result.status, result.stdout, result.streams),
                                 (0, right.stdout, right.streams))


Right = {}

if __name__ == "__main__":
    # Ctrl-C reaches the runs even where this test is run in the background.
    for each in (signal.SIGINT, signal.SIGHUP, signal.SIGTERM):
        signal.signal(each, signal.SIG_DFL)
    unittest.main(verbosity=2)
