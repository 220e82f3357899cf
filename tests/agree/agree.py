#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Runs the program and the reference on the same random inputs; they must agree in every byte.

    agree.py --plain BUILD/tests/plain/plain [--runs N] [--seed S] [--keep DIR]

Compared are standard output, standard error, the exit status, the number of gnuplot sessions, and
the arguments and standard input of each. What differs is made smaller and left in a folder of the
keep folder: the input, the command line, and what each program gave. `--first N --runs 1` repeats
one run. The last line is `N runs, N differences`; the exit status is 1 if there are any.
"""

import argparse
import random
import shlex
import shutil
import subprocess
import sys
from collections import Counter
from pathlib import Path

import inputs
import options

sys.path.append(f"{sys.path[0]}/..")
import running

INPUT = "result.out"
MOST_KEPT = 20
MOST_TRIALS = 300


class Case:
    """One run: the command line, the input and the machine that it meets."""

    def __init__(self, args, content, surroundings):
        self.args, self.content, self.surroundings = args, content, surroundings


def make_case(seed, n):
    rnd = random.Random("%s:%d" % (seed, n))
    content, tables, labels, stacking = inputs.input_file(rnd)
    name = INPUT
    if inputs.chance(rnd, 0.01):
        name = rnd.choice(["no-such-file", ".", "/dev/null", "/proc/self/mem", ""])
    args = options.command_line(rnd, tables, labels, stacking, name)
    surroundings = {"status": 0, "missing": False, "merged": inputs.chance(rnd, 0.1)}
    if inputs.chance(rnd, 0.03):
        surroundings["status"] = rnd.choice([1, 2, 127, 255])
    if inputs.chance(rnd, 0.02):
        surroundings["missing"], surroundings["merged"] = True, False
    return Case(args, content, surroundings)


def without_shell_message(err):
    """When a program ends without waiting, the shell that finds no gnuplot may say so in the midst
    of the last message, or to nobody. Returns the other bytes, sorted."""
    letters = Counter(err)
    shell = Counter(b"sh: 1: gnuplot: not found\n")
    while shell <= letters:
        letters -= shell
    return bytes(sorted(letters.elements()))


def run_program(program, case):
    """Returns what the run gave, a dictionary of byte strings."""
    machine = case.surroundings
    result = running.run(
        ["gravlex", *case.args], {INPUT: case.content}, executable=program,
        gnuplot=None if machine["missing"] else running.STANDIN,
        env={"STANDIN_STATUS": str(machine["status"])},
        stderr=subprocess.STDOUT if machine["merged"] else subprocess.PIPE)
    if result.left:
        return {"status": b"did not end in time"}
    err = result.stderr
    if machine["missing"] and result.status == 1:
        err = without_shell_message(err)
    return {"status": b"%d" % result.status, "stdout": result.stdout, "stderr": err,
            **result.recorded}


def run_both(programs, case):
    return list(running.side_by_side(lambda program: run_program(program, case), programs))


def same_but_for_nan_sign(ours, theirs):
    """No machine promises the sign of a nan that arithmetic gives."""
    if ours.keys() != theirs.keys():
        return False
    return all(ours[part].replace(b"-nan", b"nan") == theirs[part].replace(b"-nan", b"nan")
               for part in ours)


def judge(ours, theirs):
    """Returns '' for agreement, 'nan' if only signs of nan differ, else what differs."""
    for given in (ours, theirs):
        if given["status"] not in (b"0", b"1"):
            return "a bad end: status " + given["status"].decode()
    if ours == theirs:
        return ""
    if same_but_for_nan_sign(ours, theirs):
        return "nan"
    parts = sorted(ours.keys() | theirs.keys())
    return ", ".join(part for part in parts if ours.get(part) != theirs.get(part))


def shorter(items, accept, trials):
    """Drops ever smaller runs of items as long as the rest is still accepted."""
    size = max(len(items) // 2, 1)
    while size >= 1 and trials[0] > 0:
        at = 0
        while at < len(items) and trials[0] > 0:
            rest = items[:at] + items[at + size:]
            trials[0] -= 1
            if accept(rest):
                items = rest
            else:
                at += size
        size //= 2
    return items


def minimise(programs, case, verdict):
    """Makes the command line and the input smaller while the same parts still differ."""
    trials = [MOST_TRIALS]

    def differs(args, content):
        trial = Case(args, content, case.surroundings)
        return judge(*run_both(programs, trial)) == verdict

    args = shorter(case.args, lambda rest: differs(rest, case.content), trials)
    trials[0] = MOST_TRIALS
    lines = case.content.split(b"\n")
    lines = shorter(lines, lambda rest: differs(args, b"\n".join(rest)), trials)
    return Case(args, b"\n".join(lines), case.surroundings)


def show_part(part, ours, theirs):
    """Prints the first line that differs."""
    a, b = (given.get(part) for given in (ours, theirs))
    if a is None or b is None:
        print("  %s: only from the %s" % (part, "program" if b is None else "plain one"))
        return
    a, b = a.split(b"\n"), b.split(b"\n")
    for i in range(max(len(a), len(b))):
        left, right = (lines[i] if i < len(lines) else None for lines in (a, b))
        if left != right:
            print("  %s, line %d\n    program: %r\n    plain:   %r" % (part, i + 1, left, right))
            return


def keep_case(folder, case, given):
    """Leaves everything that is needed to look into a difference."""
    if folder.exists():
        shutil.rmtree(folder)
    folder.mkdir(parents=True)
    (folder / INPUT).write_bytes(case.content)
    (folder / "command").write_text(
        "gravlex " + shlex.join(case.args) + "\n# " + repr(case.surroundings) + "\n")
    for side, parts in zip(("program", "plain"), given):
        (folder / side).mkdir()
        for part, content in parts.items():
            (folder / side / part).write_bytes(content)


def report(n, verdict, case, given, folder):
    print("run %d: %s" % (n, verdict))
    print("  gravlex " + shlex.join(case.args))
    if any(case.surroundings.values()):
        print("  " + repr(case.surroundings))
    ours, theirs = given
    for part in sorted(ours.keys() | theirs.keys()):
        if ours.get(part) != theirs.get(part):
            show_part(part, ours, theirs)
    print("  kept in %s" % folder, flush=True)


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--plain", required=True, type=Path)
    parser.add_argument("--runs", type=int, default=1000)
    parser.add_argument("--first", type=int, default=1, help="number of the first run")
    parser.add_argument("--seed", default="1")
    parser.add_argument("--keep", type=Path, default=Path("agree-differences"))
    return parser.parse_args()


def main():
    settings = parse_arguments()
    differences = signs = 0
    programs = [running.PROGRAM, settings.plain.absolute()]
    for n in range(settings.first, settings.first + settings.runs):
        case = make_case(settings.seed, n)
        verdict = judge(*run_both(programs, case))
        if verdict == "nan":
            signs += 1
        elif verdict:
            differences += 1
            if differences <= MOST_KEPT:
                small = minimise(programs, case, verdict)
                given = run_both(programs, small)
                kept = settings.keep / ("run-%d" % n)
                keep_case(kept, small, given)
                report(n, verdict, small, given, kept)
    if signs:
        print("%d runs differ in the sign of a nan only" % signs)
    print("%d runs, %d differences" % (settings.runs, differences))
    return 1 if differences else 0


if __name__ == "__main__":
    sys.exit(main())
