#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Runs the whole-program cases: one folder tests/cases/TOPIC/NAME/ each, all of it data.

    cmd             arguments of the program, split as a shell would; may span lines
    stdout, stderr  what must be printed; absent: nothing
    status          exit status that must come; absent: 0
    gnuplot-N.args  arguments of the N-th gnuplot that must be started, one a line, and
    gnuplot-N.in    every byte of its standard input; absent: no N-th gnuplot
    gnuplot         script found as gnuplot instead of the stand-in; it may call "$RECORDER" "$@"
                    to record like it. The one word "missing": no gnuplot on the path
    env             more environment, NAME=VALUE lines
    run             sh script that starts the program, which is its "$@", e.g. with a closed output
    note            a line for the reader
Other files are input. A case runs in a copy of its folder, beside a link to the examples.
"""

import argparse
import concurrent.futures
import difflib
import os
import pathlib
import re
import shlex
import shutil
import signal
import subprocess
import sys
import tempfile

TESTS = pathlib.Path(__file__).resolve().parent
CASES = TESTS / "cases"
STANDIN = TESTS / "standin" / "gnuplot"
TIME_LIMIT = 120  # seconds; a case takes milliseconds, but not under a checker on a busy machine
# Settings of the tools that watch the program; nothing else comes in from outside.
KEPT = re.compile(r"(ASAN|UBSAN|LSAN)_OPTIONS|GCOV_PREFIX(_STRIP)?|LLVM_PROFILE_FILE")
# The words for a missing program differ from shell to shell.
NOT_FOUND = re.compile(rb"(?m)^(/bin/)?sh: .*gnuplot.*not found$")
EXPECTED = re.compile(r"stdout|stderr|status|gnuplot-[0-9]+\.(args|in)")


def environment(case, folder):
    """Path with the case's gnuplot first, and nothing of the user's own settings."""
    # A list that a later one replaces is dropped, not freed: a short run needs no better.
    env = {"ASAN_OPTIONS": "detect_leaks=0"}
    env.update((name, value) for name, value in os.environ.items() if KEPT.fullmatch(name))
    bin_folder = folder / "bin"
    bin_folder.mkdir()
    script = case / "gnuplot"
    missing = script.exists() and script.read_text().strip() == "missing"
    if script.exists() and not missing:
        shutil.copy(script, bin_folder / "gnuplot")
        (bin_folder / "gnuplot").chmod(0o755)
    elif missing:
        (bin_folder / "sh").symlink_to("/bin/sh")
    else:
        (bin_folder / "gnuplot").symlink_to(STANDIN)
    env["PATH"] = str(bin_folder) + ("" if missing else ":/usr/bin:/bin")
    env.update(LC_ALL="C", HOME=str(folder), RECORDER=str(STANDIN), RECORD=str(folder / "record"))
    if (case / "env").exists():
        env.update(line.split("=", 1) for line in (case / "env").read_text().splitlines())
    return env


def run(case, options):
    """Runs one case; returns what it showed, as the files that would expect it."""
    with tempfile.TemporaryDirectory(prefix="gravlex-case-") as name:
        folder = pathlib.Path(name)
        (folder / "record").mkdir()
        shutil.copytree(case, folder / "work")
        (folder / "work" / "examples").symlink_to(TESTS.parent / "examples")
        command = options.wrapper + [options.program]
        command += shlex.split((case / "cmd").read_text())
        if (case / "run").exists():
            command = ["/bin/sh", "run"] + command
        process = subprocess.Popen(command, cwd=folder / "work", env=environment(case, folder),
                                   stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                   stderr=subprocess.PIPE, start_new_session=True)
        # A gnuplot that the program did not wait for still holds these pipes, so that their end
        # is also the end of the last recording.
        try:
            stdout, stderr = process.communicate(timeout=TIME_LIMIT)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            process.wait()
            stdout, stderr = b"", b"did not end in time\n"
        stderr = NOT_FOUND.sub(b"sh: gnuplot: not found", stderr)
        found = {"stdout": stdout, "stderr": stderr, "status": b"%d\n" % process.returncode}
        found.update((path.name, path.read_bytes()) for path in (folder / "record").iterdir())
        return without_defaults(found)


def without_defaults(files):
    defaults = (("stdout", b""), ("stderr", b""), ("status", b"0\n"))
    return {key: text for key, text in files.items() if (key, text) not in defaults}


def expectations(case):
    return without_defaults({path.name: path.read_bytes() for path in case.iterdir()
                             if EXPECTED.fullmatch(path.name)})


def visible(text):
    """Lines of printable text; a line end that is missing or strange is seen, too."""
    return [line.decode("latin-1").encode("unicode_escape").decode()
            for line in text.split(b"\n")]


def difference(key, expected, found):
    lines = difflib.unified_diff(visible(expected or b""), visible(found or b""),
                                 f"{key} expected", f"{key} found", lineterm="")
    if expected is None or found is None:
        return [f"{key}: {'not expected' if expected is None else 'missing'}", *lines]
    return list(lines)


def accept(case, found):
    for key in expectations(case):
        (case / key).unlink()
    for key, text in found.items():
        (case / key).write_bytes(text)


def check(case, options):
    """Returns the lines that tell where a case differs; none when it passes."""
    expected = expectations(case)
    found = run(case, options)
    if options.accept:
        accept(case, found)
    return [line for key in sorted(expected.keys() | found.keys())
            if expected.get(key) != found.get(key)
            for line in difference(key, expected.get(key), found.get(key))]


def chosen(names):
    """The case folders of all topics, or of the TOPIC and TOPIC/NAME arguments."""
    cases = []
    for name in names or [""]:
        some = sorted(path.parent for path in (CASES / name).glob("**/cmd"))
        if not some:
            sys.exit(f"no case: {name}")
        cases += some
    return cases


def main():
    parser = argparse.ArgumentParser(description="Run the whole-program cases.")
    parser.add_argument("--program", required=True, type=os.path.abspath)
    parser.add_argument("--accept", action="store_true", help="rewrite the expectations")
    parser.add_argument("--wrapper", default="", help="command that starts the program")
    parser.add_argument("--first-failure", action="store_true", help="stop there")
    parser.add_argument("--verbose", action="store_true", help="name the cases that pass, too")
    parser.add_argument("case", nargs="*", help="TOPIC or TOPIC/NAME; default: all")
    options = parser.parse_args()

    cases = chosen(options.case)
    options.wrapper = shlex.split(options.wrapper)
    if options.wrapper:
        options.wrapper[0] = shutil.which(options.wrapper[0]) or options.wrapper[0]
        # Closed streams and tight limits would hit the wrapper, too.
        cases = [case for case in cases if not (case / "run").exists()]
    failed = 0
    with concurrent.futures.ThreadPoolExecutor(max_workers=2) as pool:
        for case, lines in zip(cases, pool.map(lambda case: check(case, options), cases)):
            failed += bool(lines)
            if lines or options.verbose:
                print(f"{'FAIL' if lines else 'ok  '} {case.relative_to(CASES)}", *lines, sep="\n")
            if lines and options.first_failure:
                pool.shutdown(cancel_futures=True)
                sys.exit(1)
    print(f"{len(cases) - failed} passed, {failed} failed")
    sys.exit(failed > 0)


if __name__ == "__main__":
    main()
