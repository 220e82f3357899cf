# SPDX-License-Identifier: MIT
"""Runs the program on a broken machine, and says what a good end is."""

import argparse
import concurrent.futures
import dataclasses
import fcntl
import math
import os
import pathlib
import re
import select
import signal
import subprocess
import sys
import tempfile
import time

TIME_LIMIT = 60  # seconds; a run takes milliseconds
# Settings of the tools that watch the program; nothing else comes in from outside.
KEPT = re.compile(r"(ASAN|UBSAN|LSAN)_OPTIONS|GCOV_PREFIX(_STRIP)?|LLVM_PROFILE_FILE")
# What a build that counts coverage says when it cannot write its counts.
COVERAGE = re.compile(rb"(?m)^(libgcov )?profiling.*\n")
LABELS = ("       S      |", "   Exp. sM(s)  |", "   Thr. sM(s)  |", "  Delta sM(s)  |",
          "  sM(s) St.dev |")
RULE = "-" * 79


@dataclasses.dataclass
class Result:
    """How a run ended, and what it and all that it started had written when the last was gone."""
    status: int  # negative: the signal that ended it
    stdout: bytes
    stderr: bytes
    streams: list  # what each gnuplot read
    left: bool  # something that it started was still running in the end


def options():
    parser = argparse.ArgumentParser()
    for name in ("program", "preload", "gnuplot"):
        parser.add_argument(f"--{name}", required=True, type=os.path.abspath)
    return parser.parse_args()


# ---- Inputs ------------------------------------------------------------------------------------

def rows(points, phase):
    for k in range(points):
        s = 2 + 0.25 * k
        theory = math.sin(s + phase)
        delta = 0.05 * math.cos(7 * s)
        yield "".join(f"{v:15.5f}" for v in (s, theory + delta, theory, delta, 0.01 * s)) + "\n"


def layout_1(points=12):
    """Two sets below one header row."""
    text = f" KOVA 1.6.412 analysis\n Log.\n GED curves.\n{RULE}\n{''.join(LABELS)}\n{RULE}\n"
    for number, end in ((1, "=" * 79), (2, RULE)):
        text += f" Curve: ({number}-1)  Scale=0.9500 \n {points} points\n"
        text += "".join(rows(points, number)) + end + "\n"
    return text + " The end.\n"


def layout_2(points=12):
    """Two sets with a header row each."""
    text = f" KOVA 1.6.990 analysis\n Log.\n GED curves.\n{RULE}\n"
    for number in (1, 2):
        text += f" Set: {number}-1 of two\n {points} points\n Scale=0.9500 \n{RULE}\n"
        text += f"{''.join(LABELS)}\n{RULE}\n" + "".join(rows(points, number)) + RULE + "\n"
    return text + "\n The end.\n"


# ---- One run -----------------------------------------------------------------------------------

def environment(folder, gnuplot, more):
    """A path on which gnuplot is the stand-in, and nothing of the user's own settings."""
    bin_folder = folder / "bin"
    bin_folder.mkdir()
    if gnuplot is not None:
        (bin_folder / "gnuplot").symlink_to(gnuplot)
    # A list that a later one replaces is dropped, not freed: a short run needs no better.
    env = {"ASAN_OPTIONS": "detect_leaks=0:verify_asan_link_order=0"}
    env.update((name, value) for name, value in os.environ.items() if KEPT.fullmatch(name))
    env.update(PATH=f"{bin_folder}:/usr/bin:/bin", LC_ALL="C", HOME=str(folder),
               RECORD=str(folder / "record"))
    env.update(more)
    return env


def wait_for_all(process, witness):
    """Reads both outputs until nothing that holds the witness pipe is running any more."""
    texts = {process.stdout: b"", process.stderr: b""}
    waiting = [process.stdout, process.stderr, witness]
    end = time.monotonic() + TIME_LIMIT
    while waiting:
        ready = select.select(waiting, [], [], max(0, end - time.monotonic()))[0]
        if not ready:
            return texts, False
        for stream in ready:
            data = os.read(stream if stream == witness else stream.fileno(), 1 << 16)
            if not data:
                waiting.remove(stream)
            elif stream != witness:
                texts[stream] += data
    return texts, True


def read_streams(folder):
    """The recordings, in order; those of arguments must be as they always are."""
    for path in folder.glob("gnuplot-*.args"):
        if path.read_bytes() not in (b"-persist\n", b""):
            sys.exit(f"gnuplot was called with {path.read_bytes()}")
    return [path.read_bytes() for path in sorted(folder.glob("gnuplot-*.in"))]


def run(command, files=(), gnuplot=None, env=(), meanwhile=None, afterwards=None):
    """Runs a command in a new folder with these files. `meanwhile` gets the process and the
    folder, `afterwards` the folder when all is over."""
    with tempfile.TemporaryDirectory(prefix="gravlex-faults-") as name:
        folder = pathlib.Path(name)
        folder.chmod(0o755)
        for subfolder in ("record", "run"):
            (folder / subfolder).mkdir()
            (folder / subfolder).chmod(0o777)
        for file, text in dict(files).items():
            (folder / "run" / file).write_text(text)
        reader, writer = os.pipe()
        # Out of the way of descriptors that a test closes or counts.
        witness = fcntl.fcntl(writer, fcntl.F_DUPFD_CLOEXEC, 100)
        os.close(writer)
        process = subprocess.Popen(
            [str(word).replace("{folder}", name) for word in command], cwd=folder / "run",
            env=environment(folder, gnuplot, dict(env)), stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE, stderr=subprocess.PIPE, start_new_session=True,
            pass_fds=(witness,))
        os.close(witness)
        if meanwhile is not None:
            meanwhile(process, folder)
        texts, all_gone = wait_for_all(process, reader)
        if not all_gone:
            os.killpg(process.pid, signal.SIGKILL)
        process.wait()
        os.close(reader)
        stdout, stderr = texts[process.stdout], COVERAGE.sub(b"", texts[process.stderr])
        process.stdout.close()
        process.stderr.close()
        if afterwards is not None:
            afterwards(folder)
        return Result(process.returncode, stdout, stderr, read_streams(folder / "record"),
                      not all_gone)


# ---- What is good ------------------------------------------------------------------------------

NO_PIPE = re.compile(rb"Cannot connect to gnuplot pipe: [^\n]+\n\Z")
LOST = b"Unable to close GnuPlot pipe.\n"


def begins_like(found, right):
    """True if every stream is one of the right ones, or the beginning of it."""
    left = sorted(right, key=len, reverse=True)
    for stream in sorted(found, key=len, reverse=True):
        match = next((other for other in left if other.startswith(stream)), None)
        if match is None:
            return False
        left.remove(match)
    return True


def is_part(said, right):
    """True if all lines are lines of the right text, in any order."""
    left = right.splitlines()
    for line in said.splitlines():
        if line not in left:
            return False
        left.remove(line)
    return True


def faults_of(result, right):
    """What is wrong with a run that something happened to, given the same one undisturbed."""
    if result == right:
        return []
    if result.left:
        return ["did not end in time"]
    if result.status not in (0, 1):
        return [f"ended with {result.status}"]
    wrong = []
    if result.status == 0:
        if result.stdout != right.stdout:
            wrong.append("status 0 with another standard output")
        if LOST not in result.stderr:
            if (result.stderr, result.streams) != (right.stderr, right.streams):
                wrong.append("status 0 with another stream or standard error")
        elif not (is_part(result.stderr.replace(LOST, b""), right.stderr) and
                  begins_like(result.streams, right.streams)):
            wrong.append("a lost plot with a wrong stream or standard error")
        return wrong
    said = NO_PIPE.sub(b"", result.stdout)
    if not result.stderr and said == result.stdout:
        wrong.append("status 1 without a message")
    if not right.stdout.startswith(said):
        wrong.append("standard output is not the beginning of the right one")
    if not begins_like(result.streams, right.streams):
        wrong.append("a stream is not the beginning of the right one")
    return wrong


def describe(result):
    return (f"    status {result.status}\n    stdout ...{result.stdout[-200:]!r}\n"
            f"    stderr {result.stderr[-400:]!r}\n    streams {[len(s) for s in result.streams]}")


def side_by_side(function, items):
    """The results in order, from two runs at a time."""
    with concurrent.futures.ThreadPoolExecutor(max_workers=2) as pool:
        yield from pool.map(function, items)
