# SPDX-License-Identifier: MIT
"""Runs programs for the tests: in surroundings that are always the same, within a limit of time,
and until everything that was started is gone.

The program is that of the environment variable GRAVLEX, or build/gravlex. The stand-in for gnuplot
has been built beside it.
"""

import concurrent.futures
import contextlib
import dataclasses
import fcntl
import os
import pathlib
import re
import select
import shutil
import signal
import subprocess
import sys
import tempfile
import threading

ROOT = pathlib.Path(__file__).resolve().parents[1]
EXAMPLES = ROOT / "examples"
CCL4, BENZENE = EXAMPLES / "ccl4.out", EXAMPLES / "benzene.out"
PROGRAM = pathlib.Path(os.environ.get("GRAVLEX", ROOT / "build" / "gravlex")).absolute()
TIME_LIMIT = 120  # seconds; a run takes milliseconds, but not under a checker on a busy machine
SKIPPED = 77  # the exit status of a test that cannot be made here
# What comes in from outside: where programs are, and settings of the tools that watch them.
KEPT = re.compile(r"PATH|(ASAN|UBSAN|LSAN)_OPTIONS|GCOV_PREFIX(_STRIP)?|LLVM_PROFILE_FILE")
# What a build that counts coverage says when it cannot write its counts.
COVERAGE = re.compile(rb"(?m)^(libgcov )?profiling.*\n")
# Starts a program as a user who may do nothing.
AS_NOBODY = ("setpriv", "--reuid=65534", "--regid=65534", "--clear-groups") \
    if os.getuid() == 0 else ()
# A program that is still open for writing cannot be started, and one that another thread forks has
# it open for a moment: a shell would take the next gnuplot of the path.
STARTING = threading.Lock()
# What gnuplot leaves behind that takes the second copy of the data of an image for commands.
PIPE_LINE = "Unable to close GnuPlot pipe.\n"


def standin_of(program):
    return program.parent / "tests" / "standin" / "gnuplot"


STANDIN = standin_of(PROGRAM)
PRELOAD = PROGRAM.parent / "tests" / "faults" / "libfaults_preload.so"


@dataclasses.dataclass
class Result:
    """How a run ended, and what it and all that it started had written when the last was gone."""
    status: int  # negative: the signal that ended it
    stdout: bytes
    stderr: bytes
    recorded: dict  # what the stand-ins have noted: text by name of the file, in order
    left: bool  # something that it started was still running in the end

    @property
    def streams(self):
        """What each gnuplot read."""
        return [text for name, text in self.recorded.items() if name.endswith(".in")]


def environment(home, **more):
    """Nothing of the user's own settings."""
    # A list that a later one replaces is dropped, not freed: a short run needs no better.
    env = {"ASAN_OPTIONS": "detect_leaks=0:verify_asan_link_order=0"}
    env.update((name, value) for name, value in os.environ.items() if KEPT.fullmatch(name))
    # In the C locale the real gnuplot would warn about the encoding that every plot sets.
    return {**env, "LC_ALL": "C.UTF-8", "HOME": str(home), **more}


def start(command, **more):
    with STARTING:
        return subprocess.Popen(command, **{
            "stdin": subprocess.DEVNULL, "stdout": subprocess.PIPE, "stderr": subprocess.PIPE,
            "start_new_session": True, **more})


def recorded(folder):
    paths = sorted(folder.iterdir(), key=lambda path: (len(path.name), path.name))
    return {path.name: path.read_bytes() for path in paths}


def run_to_the_end(command, env, meanwhile=None, **more):
    """Runs a command until all that it starts is gone, too. `meanwhile` gets the process."""
    reader, writer = os.pipe()
    # Held by all of them, out of the way of descriptors that a test closes or counts.
    witness = fcntl.fcntl(writer, fcntl.F_DUPFD_CLOEXEC, 100)
    os.close(writer)
    left = True
    with start(command, env=env, pass_fds=(witness,), **more) as process:
        os.close(witness)
        try:
            if meanwhile is not None:
                meanwhile(process)
            out, err = process.communicate(timeout=TIME_LIMIT)
            left = not select.select([reader], [], [], TIME_LIMIT)[0]
        except subprocess.TimeoutExpired as late:
            out, err = late.stdout, late.stderr
        finally:
            os.close(reader)
            if left:
                with contextlib.suppress(ProcessLookupError):
                    os.killpg(process.pid, signal.SIGKILL)
    notes = recorded(pathlib.Path(env["RECORD"])) if "RECORD" in env else {}
    return Result(process.returncode, out or b"", COVERAGE.sub(b"", err or b""), notes, left)


@contextlib.contextmanager
def unread_pipe():
    """Where to write to a reader that is gone."""
    reader, writer = os.pipe()
    os.close(reader)
    try:
        yield writer
    finally:
        os.close(writer)


def put(path, content):
    """Writes a file; what begins like a script becomes a program."""
    path.parent.mkdir(exist_ok=True)
    with STARTING:
        path.write_bytes(content.encode() if isinstance(content, str) else content)
    if path.read_bytes().startswith(b"#!"):
        path.chmod(0o755)


def run(command, files=(), gnuplot=STANDIN, env=(), meanwhile=None, afterwards=None, **more):
    """Runs a command in a new folder with these files, beside a link to the samples; gravlex is on
    the search path with the programs beside it, and so is gnuplot: the path of a program, the text
    of a script, or None. In the command {folder} stands for the folder above, which `meanwhile` and
    `afterwards` get, too.
    """
    with tempfile.TemporaryDirectory(prefix="gravlex-test-") as name:
        folder = pathlib.Path(name)
        for place in (folder, *(folder / part for part in ("bin", "record", "work"))):
            place.mkdir(exist_ok=True)
            place.chmod(0o777)
        for file, content in dict(files).items():
            put(folder / "work" / file, content)
        (folder / "work" / "examples").symlink_to(EXAMPLES)
        for program in (PROGRAM, *PROGRAM.parent.glob(f"{PROGRAM.name}-*")):
            (folder / "bin" / program.name).symlink_to(program)
        path = f"{folder}/bin:{os.environ['PATH']}" if gnuplot else f"{folder}/bin"
        if isinstance(gnuplot, bytes):
            put(folder / "bin" / "gnuplot", gnuplot)
        elif gnuplot:
            (folder / "bin" / "gnuplot").symlink_to(gnuplot)
        result = run_to_the_end(
            [str(word).replace("{folder}", name) for word in command],
            {**environment(folder, PATH=path, RECORD=f"{folder}/record"), **dict(env)},
            meanwhile and (lambda process: meanwhile(process, folder)),
            **{"cwd": folder / "work", **more})
        if afterwards is not None:
            afterwards(folder)
        return result


def side_by_side(function, items):
    """The results in order, from two runs at a time."""
    with concurrent.futures.ThreadPoolExecutor(max_workers=2) as pool:
        try:
            yield from pool.map(function, items)
        finally:  # where nobody asks for more
            pool.shutdown(cancel_futures=True)


def require(*tools):
    missing = [tool for tool in tools if not shutil.which(tool)]
    if missing:
        sys.exit("missing: " + ", ".join(missing))


def skip_unless_it_runs(*command):
    """Ends a test for which this machine lacks something, or does not allow it."""
    if not shutil.which(command[0]) or subprocess.run(
            command, check=False, stdin=subprocess.DEVNULL, capture_output=True).returncode:
        print(f"{command[0]} is missing or does not run here")
        sys.exit(SKIPPED)
