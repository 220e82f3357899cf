#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Runs the whole-program cases tests/cases/TOPIC/NAME; tests/cases.txt tells their form. Each runs
in a folder of its own with its input files and a link to the examples.
"""

import argparse
import difflib
import pathlib
import re
import shlex
import shutil
import sys

import case_file
import running

TESTS = pathlib.Path(__file__).resolve().parent
CASES = TESTS / "cases"
# The words for a missing program differ from shell to shell.
NOT_FOUND = re.compile(rb"(?m)^(/bin/)?sh: .*gnuplot.*not found$")


def section_of(record):
    """The name of the section that expects what the stand-in has noted in that file."""
    return record.replace("-", " ").replace(".args", " arguments").removesuffix(".in")


def run(case, options):
    """Runs one case; returns what it showed, by the names of the sections that expect it."""
    gnuplot = None if "gnuplot missing" in case.given else \
        case.given.get("gnuplot script", options.standin)
    command = [*options.wrapper, options.program, *case.arguments]
    if "run" in case.given:
        command = ["/bin/sh", "run", *command]
    env = dict(line.split("=", 1) for line in case.given.get("env", b"").decode().splitlines())
    result = running.run(command, {**case.given, **case.inputs}, gnuplot,
                         {"RECORDER": options.standin, **env})
    stderr = b"did not end in time\n" if result.left else NOT_FOUND.sub(
        b"sh: gnuplot: not found", result.stderr)
    return case_file.without_usual({
        "stdout": result.stdout, "stderr": stderr, "status": b"%d\n" % result.status,
        **{section_of(name): data for name, data in result.recorded.items()}})


def visible(data):
    """Lines of printable text; a line end that is missing or strange is seen, too."""
    return [case_file.escaped(line) for line in data.decode("latin-1").split("\n")]


def difference(section, expected, found):
    lines = difflib.unified_diff(visible(expected or b""), visible(found or b""),
                                 f"{section} expected", f"{section} found", lineterm="")
    if expected is None or found is None:
        return [f"{section}: {'not expected' if expected is None else 'missing'}", *lines]
    return list(lines)


def check(path, options):
    """Returns the lines that tell where a case differs; none when it passes."""
    try:
        case = case_file.load(path)
    except (case_file.Refused, OSError, ValueError) as error:
        return [f"{path}: {error}"]
    found = run(case, options)
    if options.accept:
        path.write_text(case_file.written(case, found))
    return [line for section in sorted(case.expected.keys() | found.keys())
            if case.expected.get(section) != found.get(section)
            for line in difference(section, case.expected.get(section), found.get(section))]


def chosen(names):
    """The files of all topics, or of the TOPIC and TOPIC/NAME arguments, which may be paths."""
    cases = [path for path in sorted(CASES.glob("*/*")) if path.is_file()]
    some = []
    for name in names:
        wanted = {CASES / name, pathlib.Path(name).resolve()}
        of_name = [path for path in cases if wanted & {path, path.parent}]
        if not of_name:
            sys.exit(f"no case: {name}")
        some += of_name
    return some if names else cases


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
        cases = [case for case in cases if "\n== run\n" not in case.read_text()]
    failed = 0
    for case, lines in zip(cases, running.side_by_side(lambda case: check(case, options), cases)):
        failed += bool(lines) and not options.accept
        if lines or options.verbose:
            word = "ok" if not lines else "WROTE" if options.accept else "FAIL"
            print(f"{word:5} {case.relative_to(CASES)}", *lines, sep="\n")
        if failed and options.first_failure:
            sys.exit(1)
    print(f"{len(cases) - failed} passed, {failed} failed")
    sys.exit(failed > 0)


if __name__ == "__main__":
    main()
