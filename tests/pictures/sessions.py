# SPDX-License-Identifier: MIT
"""Runs gravlex with the real gnuplot, without a display or with one that only the test sees."""

import contextlib
import os
import pathlib
import re
import select
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import traceback

sys.path.append(f"{sys.path[0]}/..")
import running
from running import PROGRAM, TIME_LIMIT

PATIENCE = 60  # seconds until a window must have appeared
TOOLS = ("gnuplot", "Xvfb", "setpriv", "gs", "xwininfo", "import", "stream")


class Failure(Exception):
    """What is wrong, in words for the reader."""


def expect(condition, text):
    if not condition:
        raise Failure(text)


@contextlib.contextmanager
def work_folder():
    """A folder to draw in, with a copy of the samples where the root of the project has them."""
    with tempfile.TemporaryDirectory(prefix="gravlex-pictures-") as name:
        folder = pathlib.Path(name)
        shutil.copytree(running.EXAMPLES, folder / "examples")
        yield folder


def run(command, folder, display=None, meanwhile=None):
    """Runs a list of words, or a line for the shell. Returns (status, standard output, error).
    `meanwhile` gets the process.

    The output goes to files: a window that stays open keeps a pipe open as well.
    """
    env = running.environment(folder, PATH=f"{folder}/bin:{PROGRAM.parent}:{os.environ['PATH']}")
    if display:
        env |= {"DISPLAY": display["name"], "XDG_RUNTIME_DIR": str(folder)}
    with open(folder / "stdout", "w+b") as out, open(folder / "stderr", "w+b") as err:
        process = running.start(command, shell=isinstance(command, str), cwd=folder, env=env,
                                stdout=out, stderr=err)
        if display:
            display["groups"].append(process.pid)
        try:
            if meanwhile:
                meanwhile(process)
            status = process.wait(TIME_LIMIT)
        finally:
            if process.poll() is None:
                os.killpg(process.pid, signal.SIGKILL)
        out.seek(0)
        err.seek(0)
        return status, out.read().decode("latin-1"), err.read().decode("latin-1")


def is_quiet(stderr):
    """Whether nothing was said but the line that comes with every image, and what the window's
    toolkit and GNU parallel say of a container."""
    return set(stderr.splitlines(keepends=True)) <= {
        running.PIPE_LINE,
        "WARNING: Glycin running without sandbox. "
        "Bubblewrap (bwrap) doesn't work in the environment.\n",
        "lscpu: failed to determine number of CPUs: "
        "/sys/devices/system/cpu/possible: No such file or directory\n"}


def draw(arguments, folder, display=None):
    """Runs gravlex, which must end well and without complaints. Returns its standard output."""
    status, out, err = run([PROGRAM, *arguments.split()], folder, display)
    expect(status == 0, f"gravlex {arguments}: status {status}, {err}")
    expect(is_quiet(err), f"gravlex {arguments}: said {err}")
    return out


@contextlib.contextmanager
def x_display():
    """A display of our own. All that was started on it is ended with it."""
    display = {"groups": []}
    reader, writer = os.pipe()
    # The kernel ends the server, and so its clients, if this process is killed.
    server = subprocess.Popen(
        ["setpriv", "--pdeathsig", "KILL", "Xvfb", "-displayfd", str(writer),
         "-screen", "0", "1280x1024x24", "-nolisten", "tcp"],
        pass_fds=[writer], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    os.close(writer)
    try:
        with os.fdopen(reader) as pipe:
            expect(select.select([pipe], [], [], PATIENCE)[0], "Xvfb does not start")
            number = pipe.readline().strip()
        expect(number, "Xvfb does not start")
        display["name"] = ":" + number
        yield display
    finally:
        server.terminate()
        server.wait(TIME_LIMIT)
        for group in display["groups"]:
            with contextlib.suppress(ProcessLookupError):
                os.killpg(group, signal.SIGKILL)


def ask(display, *words):
    env = dict(os.environ, DISPLAY=display["name"], LC_ALL="C")
    return subprocess.run(words, env=env, timeout=TIME_LIMIT, text=True,
                          capture_output=True, check=False)


def windows(display):
    """The ids of the visible windows in which gnuplot draws."""
    tree = ask(display, "xwininfo", "-root", "-tree").stdout
    found = re.findall(r'(0x[0-9a-f]+) "(?:Gnuplot|gravlex-watch)[^"]*"', tree)
    return [window for window in found
            if "IsViewable" in ask(display, "xwininfo", "-id", window).stdout]


def wait_for_windows(display, count):
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        found = windows(display)
        if len(found) >= count:
            return found
        time.sleep(0.2)
    raise Failure(f"{len(windows(display))} windows after {PATIENCE} seconds instead of {count}")


def screenshot(display, window, image):
    """Writes what the window shows into an image, once it has finished drawing."""
    before = None
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        shot = ask(display, "import", "-window", window, f"png:{image}")
        expect(shot.returncode == 0, f"no screenshot: {shot.stderr}")
        now = image.read_bytes()
        # A window comes up empty, and so small as a file.
        if now == before and len(now) > 10000:
            return
        before = now
        time.sleep(0.5)
    raise Failure(f"the window shows nothing, or goes on changing, after {PATIENCE} seconds")


def run_tests(tests):
    """Runs the functions one by one, says how each went, and ends the program."""
    running.require(*TOOLS)
    failed = 0
    for test in tests:
        try:
            test()
            print(f"ok    {test.__name__}", flush=True)
        except Exception as error:
            failed += 1
            print(f"FAIL  {test.__name__}: {error}", flush=True)
            if not isinstance(error, Failure):
                traceback.print_exc()
    print(f"{len(tests) - failed} passed, {failed} failed")
    sys.exit(failed > 0 or not tests)
