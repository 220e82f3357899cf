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
import difflib
import pathlib
import re
import shlex
import shutil
import sys

import running

TESTS = pathlib.Path(__file__).resolve().parent
CASES = TESTS / "cases"
# The words for a missing program differ from shell to shell.
NOT_FOUND = re.compile(rb"(?m)^(/bin/)?sh: .*gnuplot.*not found$")
EXPECTED = re.compile(r"stdout|stderr|status|gnuplot-[0-9]+\.(args|in)")


def run(case, options):
    """Runs one case; returns what it showed, as the files that would expect it."""
    files = {path.name: path.read_bytes() for path in case.iterdir()}
    gnuplot = files.get("gnuplot", options.standin)
    if gnuplot == b"missing\n":
        gnuplot = None
    command = [*options.wrapper, options.program, *shlex.split(files["cmd"].decode())]
    if "run" in files:
        command = ["/bin/sh", "run", *command]
    env = dict(line.split("=", 1) for line in files.get("env", b"").decode().splitlines())
    result = running.run(command, files, gnuplot, {"RECORDER": options.standin, **env})
    stderr = b"did not end in time\n" if result.left else NOT_FOUND.sub(
        b"sh: gnuplot: not found", result.stderr)
    return without_defaults({"stdout": result.stdout, "stderr": stderr,
                             "status": b"%d\n" % result.status, **result.recorded})


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
    parser.add_argument("--program", default=running.PROGRAM, type=pathlib.Path)
    parser.add_argument("--standin", type=pathlib.Path,
                        help="the stand-in for gnuplot, if it is not where it was built")
    parser.add_argument("--accept", action="store_true", help="rewrite the expectations")
    parser.add_argument("--wrapper", default="", help="command that starts the program")
    parser.add_argument("--skip", action="append", default=[], metavar="TOPIC/NAME")
    parser.add_argument("--first-failure", action="store_true", help="stop there")
    parser.add_argument("--verbose", action="store_true", help="name the cases that pass, too")
    parser.add_argument("case", nargs="*", help="TOPIC or TOPIC/NAME; default: all")
    options = parser.parse_args()

    skipped = chosen(options.skip) if options.skip else []
    cases = [case for case in chosen(options.case) if case not in skipped]
    options.program = options.program.absolute()
    options.standin = (options.standin or running.standin_of(options.program)).absolute()
    options.wrapper = shlex.split(options.wrapper)
    if options.wrapper:
        options.wrapper[0] = shutil.which(options.wrapper[0]) or options.wrapper[0]
        # Closed streams and tight limits would hit the wrapper, too.
        cases = [case for case in cases if not (case / "run").exists()]
    failed = 0
    for case, lines in zip(cases, running.side_by_side(lambda case: check(case, options), cases)):
        failed += bool(lines)
        if lines or options.verbose:
            print(f"{'FAIL' if lines else 'ok  '} {case.relative_to(CASES)}", *lines, sep="\n")
        if lines and options.first_failure:
            sys.exit(1)
    print(f"{len(cases) - failed} passed, {failed} failed")
    sys.exit(failed > 0)


if __name__ == "__main__":
    main()
