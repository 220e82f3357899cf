# SPDX-License-Identifier: MIT
"""gravlex-watch with the real gnuplot: what it shows, says and leaves, event after event."""

import ctypes
import os
import pathlib
import re
import select
import shutil
import signal
import sys
import time
import unittest

sys.path.append(f"{sys.path[0]}/..")
import running

WATCH = running.PROGRAM.parent / "gravlex-watch"
PATIENCE = 60  # seconds until something must have happened
# Runs the real gnuplot and notes its messages on their way.
OBSERVED = f"""#!/bin/sh
{{ {shutil.which("gnuplot")} "$@" 2>&1 >&3 | tee -a "$RECORD/messages" >&2; }} 3>&1
""".encode()
# Shown on standard output, in a test's own folder.
START = 'exec "$0" "$@" >"$RECORD/shown" 2>"$RECORD/said"'
DUMB = ("--term", "dumb", "--legend", "--dread", "sms,tsms", "--dcombine", "sms,tsms")
RULE = "-" * 40
IN_CLOSE_NOWRITE = 0x10


def table(*labels, rows=((2, 1, 1.1), (3, -1, -0.9), (4, 2, 2.1))):
    """A file of layout 2 with these data sets."""
    lines = [" KOVA 1.6.990", " Table 1. GED curves.", "=" * 40]
    for label in labels:
        lines += [f" Set: {label}", " Scale=1.0", RULE,
                  "       S      |   Exp. sM(s)  |   Thr. sM(s)  |", RULE,
                  *("".join(f"{number:15.5f}" for number in row) for row in rows), RULE]
    return "\n".join([*lines, "", ""])


HALF = table("1-1")[:-60]
WAITING = "(waiting for a change)"
CUT = f"a row of data set 1-1 does not have 3 numbers: is the file complete? {WAITING}"
AWAY = f"Cannot open file 'fit.out' {WAITING}"


class Session:
    """A running gravlex-watch. Its file is fit.out in the folder."""

    def __init__(self, process, folder):
        self.process, self.record, self.folder = process, folder / "record", folder / "work"
        self.file = self.folder / "fit.out"

    def noted(self, name):
        path = self.record / name
        return path.read_text(errors="replace") if path.exists() else ""

    def wait(self, name, text, count=1):
        """Until the text has been noted so often; not longer than the program lives."""
        end = time.monotonic() + PATIENCE
        while self.noted(name).count(text) < count:
            assert time.monotonic() < end and self.process.poll() is None, \
                f"no {text!r} in {name}: {self.noted(name)!r}, but {self.noted('said')!r} and " \
                f"{self.noted('messages')!r}, status {self.process.returncode}"
            time.sleep(0.02)

    def write(self, text):
        """In place, and at once."""
        with open(self.file, "r+b" if self.file.exists() else "wb", buffering=0) as file:
            file.write(text.encode())
            file.truncate()

    def replace(self, text):
        """By a new file under the old name."""
        (self.folder / "fit.new").write_text(text)
        (self.folder / "fit.new").rename(self.file)

    def descriptors(self):
        return sorted(pathlib.Path(f"/proc/{self.process.pid}/fd").iterdir())

    def processor_time(self):
        """In seconds."""
        numbers = pathlib.Path(f"/proc/{self.process.pid}/stat").read_text().split()
        return sum(map(int, numbers[13:15])) / os.sysconf("SC_CLK_TCK")

    def commands(self):
        """What gnuplot loads, from the file without a name."""
        return "".join(path.read_text() for path in self.descriptors()
                       if os.readlink(path).endswith("(deleted)"))

    def replace_and_wait(self, text):
        """Until it has been read, whatever came of it."""
        (self.folder / "fit.new").write_text(text)
        libc = ctypes.CDLL(None)
        reads = libc.inotify_init1(os.O_CLOEXEC)
        libc.inotify_add_watch(reads, bytes(self.folder / "fit.new"), IN_CLOSE_NOWRITE)
        (self.folder / "fit.new").rename(self.file)
        assert select.select([reads], [], [], PATIENCE)[0], "the file is not read"
        os.close(reads)


def watch(arguments, steps=None, text=table("1-1"), gnuplot=OBSERVED, env=(), start=START,
          **more):
    """Watches fit.out while the steps are taken; then a signal ends it, if nothing else has."""
    def meanwhile(process, folder):
        session = Session(process, folder)
        if steps is not None:
            steps(session)
            process.terminate()
    files = text if isinstance(text, dict) else {} if text is None else {"fit.out": text}
    return running.run(["/bin/sh", "-c", start, WATCH, *arguments], files, gnuplot, env, meanwhile,
                       **more)


def said(result):
    return result.recorded.get("said", b"").decode().splitlines()


class Watched(unittest.TestCase):
    def check_end(self, result, sentences=(), status=-signal.SIGTERM):
        self.assertEqual(said(result), [f"gravlex-watch: {sentence}" for sentence in sentences])
        self.assertEqual(result.status, status)
        self.assertFalse(result.left, "something is still running")

    def refused(self, sentence, *arguments, **more):
        """It ends by itself, with the sentence."""
        self.check_end(watch(arguments, **more), [sentence], 1)


class File(Watched):
    def test_no_change(self):
        """For longer than it takes until the next look. Nor does it work while it waits."""
        def steps(session):
            session.wait("messages", "drawn 1\n")
            worked = session.processor_time()
            time.sleep(2.5)
            self.assertEqual(session.noted("messages").count("drawn"), 1)
            self.assertLess(session.processor_time() - worked, 0.3)
        self.check_end(watch([*DUMB, "fit.out"], steps))

    def test_plain_locale(self):
        """gnuplot would complain about it."""
        self.check_end(watch([*DUMB, "fit.out"], env={"LC_ALL": "C"},
                             steps=lambda session: session.wait("messages", "drawn 1\n")))

    def test_every_change(self):
        def steps(session):
            session.wait("messages", "drawn 1\n")
            first = session.descriptors()
            session.write(table("2-1"))
            session.wait("shown", "(2-1)")
            session.replace(table("3-1", "3-2"))
            session.wait("shown", "(3-2)")
            session.file.unlink()
            session.wait("said", "\n")
            session.write(table("4-1"))
            session.wait("shown", "(4-1)")
            end = time.monotonic() + PATIENCE
            while session.descriptors() != first:  # it may be reading once more
                self.assertLess(time.monotonic(), end, "a file stays open")
                time.sleep(0.02)
        result = watch([*DUMB, "fit.out"], steps)
        self.check_end(result, [AWAY])

    def test_the_system_tells(self):
        """A look would not see such a change."""
        def steps(session):
            session.wait("shown", "(1-1)")
            before = session.file.stat()
            session.write(table("2-1"))
            os.utime(session.file, ns=(before.st_atime_ns, before.st_mtime_ns))
            session.wait("shown", "(2-1)")
        self.check_end(watch([*DUMB, "fit.out"], steps))

    def test_half_written(self):
        def steps(session):
            session.wait("messages", "drawn 1\n")
            session.replace(HALF)
            session.wait("said", "\n", 1)
            session.replace_and_wait(HALF.replace("KOVA", " KOVA"))
            session.replace(table("1-1")[:40])
            session.wait("said", "\n", 2)
            session.replace(table("5-5"))
            session.wait("shown", "(5-5)")
            session.replace(table("1-1")[:40])
            session.wait("said", "\n", 3)
        result = watch([*DUMB, "fit.out"], steps)
        empty = f"no data sets in table 1 of fit.out {WAITING}"
        self.check_end(result, [CUT, empty, empty])
        self.assertEqual(result.recorded["messages"].count(b"drawn"), 2)

    def test_not_there_yet(self):
        def steps(session):
            session.wait("said", "\n", 1)
            session.write(HALF)
            session.wait("said", "\n", 2)
            session.write(table("1-1"))
            session.wait("shown", "(1-1)")
        result = watch([*DUMB, "fit.out"], steps, text=None)
        self.check_end(result, [AWAY, CUT])

    def test_what_is_seen_by_looking(self):
        """The folder of the link does not change; and it is made anew."""
        def steps(session):
            session.wait("said", "\n")
            away = session.folder / "away"
            away.mkdir()
            (session.folder / "here" / "fit.out").symlink_to(away / "fit.out")
            session.file = away / "fit.out"
            session.write(table("1-1"))
            session.wait("shown", "(1-1)")
            session.write(table("2-1"))
            session.wait("shown", "(2-1)")
            shutil.rmtree(session.folder / "here")
            session.wait("said", "\n", 2)
            (session.folder / "here").mkdir()
            session.file = session.folder / "here" / "fit.out"
            session.write(table("3-1"))
            session.wait("shown", "(3-1)")
        result = watch([*DUMB, "here/fit.out"], steps, start="mkdir here && " + START)
        self.check_end(result, [AWAY.replace("fit", "here/fit")] * 2)

    def test_pipe_in_between(self):
        def steps(session):
            session.wait("messages", "drawn 1\n")
            session.file.unlink()
            os.mkfifo(session.file)
            session.wait("said", f"again {WAITING}\n")
            session.replace(table("1-1"))
            session.wait("messages", "drawn 3\n")
        self.check_end(watch([*DUMB, "fit.out"], steps),
                       [f"fit.out is no file that can be read again and again {WAITING}"])

    def test_what_cannot_be_watched(self):
        self.refused("Cannot open file 'nowhere/fit.out'", "--term", "dumb", "nowhere/fit.out")
        self.refused("/dev/null is no file that can be read again and again", "--term", "dumb",
                     "/dev/null")
        self.refused("one input file at a time, not b as well", "--term", "dumb", "fit.out", "b")


class Picture(Watched):
    def drawn_and_drawn_again(self, arguments, text, again, env=()):
        def steps(session):
            session.wait("messages", "drawn 1\n")
            session.write(again)
            session.wait("messages", "drawn 2\n")
        result = watch(arguments, steps, text, env=env)
        self.check_end(result)
        return result.recorded["shown"].decode()

    def test_page(self):
        """A panel for each kind and set."""
        shown = self.drawn_and_drawn_again(
            ["--term", "dumb size 150,60", "--legend", "fit.out"], table("1-1", "2-1"),
            table("1-1", "3-1"))
        first, second = shown.split("\f")[-2:]
        for label, page in (("(2-1)", first), ("(3-1)", second)):
            self.assertEqual([page.count(f"{kind} {label}") for kind in ("Exp.sM(s)", "Thr.sM(s)")],
                             [1, 1])
            self.assertEqual(page.count("KOVA GED curves"), 1)

    def test_page_and_single_plot_in_turn(self):
        page, plot = table("1-1", "2-1"), table("2-1")
        for first, second in ((page, plot), (plot, page)):
            shown = self.drawn_and_drawn_again(
                ["--term", "dumb size 150,60", *DUMB[2:], "fit.out"], first, second)
            self.assertEqual(shown.count("(2-1"), 4)

    def test_curves_without_an_extent(self):
        flat = table("1-1", rows=((2, 0, 0), (3, 0, 0)))
        point = table("1-1", rows=((2, 1, 1),))
        shown = self.drawn_and_drawn_again([*DUMB, "fit.out"], flat, point)
        # gnuplot 6 has the -1 of the label between the numbers.
        self.assertRegex(shown, r"\n {5}1 {16}1\.5 {15}2[ 1-]{2} {14}2\.5 {15}3 {3}\n")

    def test_encoding(self):
        """Where a font for another one is missing, x11 would take that for a closed window."""
        for arguments in DUMB, DUMB[:-2]:
            def steps(session):
                session.wait("messages", "drawn 1\n")
                *_, last = re.findall("set encoding (.*)\n", session.commands())
                self.assertEqual(last, "default")
            self.check_end(watch([*arguments, "fit.out"], steps))

    def test_deviations(self):
        """A panel without a curve stays empty."""
        for kinds in ("--data", "--dread"):
            result = watch(["--term", "dumb", kinds, "sms,smss", "--smserrbars", "--curves", "1-1",
                            "examples/ccl4.out"],
                           lambda session: session.wait("messages", "drawn 1\n"))
            self.check_end(result)

    def test_values_without_a_place(self):
        nothing = table("1-1", rows=((2, 9, 9), (3, 0, 0))).replace("9.00000", "    inf")
        half = table("1-1", rows=((2, 9, 1), (3, 9, 2))).replace("9.00000", "    nan")
        def steps(session):
            session.wait("said", "\n", 1)
            session.write(half)
            session.wait("messages", "drawn")
        result = watch(["--term", "dumb", "fit.out"], steps, nothing)
        self.check_end(result, [f"no numbers to draw in fit.out {WAITING}"])

    def test_backward_axis(self):
        """As gravlex draws it: the ends are given so, or s falls."""
        falling = table("1-1", rows=((3, 0, 1), (2, 1, 0)))
        for more in ("--xmin", "3.05", "--xmax", "1.95"), ():
            shown = self.drawn_and_drawn_again([*DUMB, *more, "fit.out"], falling,
                                               falling.replace("3.0", "3.1"))
            # gnuplot 6 has the -1 of the label between the numbers.
            axes = re.findall(r"\n +3 +2\.8 +2\.6 [ 1-]+2\.4 +2\.2 +2 +\n", shown)
            self.assertEqual(len(axes), 2, shown)

    def test_examples_of_the_manual(self):
        shown = re.findall(r"(?m)^\.It Li gravlex-watch (.*) (\w+\.out)$",
                           (running.ROOT / "man/gravlex-watch.1").read_text())
        self.assertEqual(len(shown), 2)
        for options, file in shown:
            with self.subTest(options):
                self.check_end(watch([*options.split(), f"examples/{file}"],
                                     lambda session: session.wait("messages", "drawn 1\n"),
                                     env={"GNUTERM": "dumb"}))

    def test_r_values(self):
        def steps(session):
            session.wait("said", "\n")
        result = watch(["--term", "dumb", "examples/r_values.out"], steps)
        self.check_end(result, ["R-values cannot be drawn: name the kinds of examples/r_values.out "
                                f"with --data {WAITING}"])


NO_QT = "qt.qpa.xcb: could not connect to display"


class Gnuplot(Watched):
    def test_missing(self):
        self.refused("gnuplot not found: install it, or put it on the search path",
                     *DUMB, "fit.out", gnuplot=None)

    def test_gone(self):
        for script, sentence in (("exit 0", "gnuplot has ended"),
                                 ("echo no memory >&2; exit 1", "gnuplot says: no memory"),
                                 ("echo line 0: no plot >&2; exit 1", "gnuplot says: no plot"),
                                 ("read line; echo ready dumb >&2; exit 3", "gnuplot has ended"),
                                 (f"echo '{NO_QT}' >&2; exec sleep 99", f"gnuplot says: {NO_QT}")):
            with self.subTest(script):
                self.refused(sentence, *DUMB, "fit.out", gnuplot=f"#!/bin/sh\n{script}\n".encode())

    def test_stuck(self):
        script = b'#!/bin/sh\necho ready dumb | tee "$RECORD/messages" >&2\nexec sleep 1000'
        self.check_end(watch([*DUMB, "fit.out"], lambda session: session.wait("messages", "ready"),
                             gnuplot=script))

    def test_complaints(self):
        """Each is passed on once, and that of a library only if there is no picture."""
        def script(said, drawn):
            return f"""#!/bin/sh
echo ready dumb >&2
while read -r line; do
    case $line in load*) n=$((n + 1)); printf '%s\\n' '' {said} {said} >&2
        echo drawn {drawn} >&2;; esac
done
""".encode()
        def steps(session):
            for number in (1, 2, 3):
                session.replace_and_wait(table(f"{number}-1"))
        own = "'         \"/dev/fd/3\" line 7: no such thing'"
        for script_said, drawn, sentences in (
                (own, "$n", ["gnuplot says: no such thing"]),
                (own, "0", ["gnuplot says: no such thing"]),
                ("'Gtk: such a theme'", "$n", []),
                ("'Gtk: such a theme'", "0", ["gnuplot says: Gtk: such a theme"]),
                ('"Gtk: $((n > 1))"', "$((n == 1))", ["gnuplot says: Gtk: 1"])):
            with self.subTest(script_said, drawn=drawn):
                self.check_end(watch([*DUMB, "fit.out"], steps, gnuplot=script(script_said, drawn)),
                               sentences)

    def test_terminals(self):
        self.refused("no display for a window: --term dumb draws with letters", "fit.out",
                     env={"DISPLAY": ""})
        self.refused("gnuplot has no windows: install gnuplot-x11 or gnuplot-qt, "
                     "or use --term dumb", "fit.out", env={"GNUTERM": "unknown"})
        result = watch(["--term", "nosuch", "fit.out"])
        self.assertEqual(result.status, 1)
        self.assertRegex("\n".join(said(result)), "^gravlex-watch: gnuplot says: (warning: )?"
                                                  "unknown or ambiguous terminal .*$")

    def test_no_room(self):
        """A limit on the size of files is a disk that is full, for gnuplot as well."""
        start = 'ulimit -S -f 0; exec "$0" "$@"'
        result = running.run(["sh", "-c", start, WATCH, *DUMB, "fit.out"],
                             {"fit.out": table("1-1")}, b"#!/bin/sh\necho ready dumb >&2\ncat",
                             meanwhile=lambda process, folder: (
                                 select.select([process.stderr], [], [], PATIENCE),
                                 process.terminate()))
        self.assertRegex(result.stderr, rb"\Agravlex-watch: cannot write a temporary file: "
                                        rb"File too large")


class Line(Watched):
    def test_refused(self):
        for option, instead in {
                "--png=a": "gravlex --png writes an image",
                "--eps=a": "gravlex --eps writes an image",
                "--svg=a": "gravlex --svg writes an image",
                "--imgw=9": "resize the window, or use --term 'wxt size 900,600'",
                "-l9": "resize the window, or use --term 'wxt size 900,600'",
                "--no-multiplot": "there is one window; choose one plot with --data and --curves",
        }.items():
            name = "--imgl" if option == "-l9" else option.partition("=")[0]
            self.refused(f"{name} makes no sense here: {instead}", option, "fit.out")

    def test_signals(self):
        for name in ("HUP", "INT", "TERM"):
            number = getattr(signal, f"SIG{name}")
            def steps(session):
                session.wait("messages", "drawn 1\n")
                os.killpg(session.process.pid, number)  # as a terminal does
                session.process.wait(PATIENCE)
            with self.subTest(name):
                self.check_end(watch([*DUMB, "fit.out"], steps), (), -number)

    def test_ignored_hangup(self):
        def steps(session):
            session.wait("messages", "drawn 1\n")
            session.process.send_signal(signal.SIGHUP)
            session.write(table("2-1"))
            session.wait("messages", "drawn 2\n")
        result = watch([*DUMB, "fit.out"], steps,
                       preexec_fn=lambda: signal.signal(signal.SIGHUP, signal.SIG_IGN))
        self.check_end(result)


if __name__ == "__main__":
    unittest.main(failfast=True)  # where one hangs, others do, too
