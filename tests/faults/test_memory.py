# SPDX-License-Identifier: MIT
"""Lets every allocation of a run fail, once and for ever, until there is none left to fail.

All allocations count: those of the program, and those that the C and C++ libraries and popt make
for it. Then memory runs out for real, at more and more of it.
"""

import collections
import dataclasses
import itertools
import os
import re
import signal
import sys
import tempfile
import time

import harness
import running

# Name: arguments and environment.
RUNS = {
    "layout 1": ("--no-autoshifts one.out", {}),
    "layout 2": ("--no-autoshifts two.out", {}),
    "stacked": ("--data sms,tsms,dsms --curves 1-1,2-1 two.out", {}),
    "long": ("--data sms,tsms --curves 1-1,2-1 --smserrfill long.out", {}),
    "image": ("--data sms,smss --curves 1-1,2-1 --smserrbars --png a.png one.out", {}),
    "images": ("--dread sms,tsms --no-multiplot --svg a.svg two.out", {"GNUTERM": ""}),
    "numbers": ("-t1 -w 300 --imgl=200 -r 0.5 --lw 2 --xmin 2 --png a.png one.out", {}),
    "screen": ("--data sms --ccombine 1-1 --term x11 --eps a.eps one.out", {"DISPLAY": ":0"}),
    "usage": ("", {}),
    "help": ("--help", {}),
    "version": ("--version", {}),
    "wrong option": ("--dread sms --cread 1-1 --nonsense", {}),
    "lists": ("--curves 1-1,2-1 --ccombine 1-1 --dread nonsense two.out", {}),
    "no input": ("none.out", {}),
}
PROGRAM_RUNS = {
    "gravlex-script": ("-o a --no-multiplot -d sms,smss --curves 2-1 --smserrbars two.out", {}),
    "gravlex-figure": ("-o a.html -n 2-1=x --data sms,smss --curves 2-1 --smserrfill two.out", {}),
    "gravlex-table": ("-o a --dread sms one.out", {}),
    "gravlex-table --list": ("two.out", {}),
    "gravlex-join": ("-o a -c 1-1 one.out two.out", {}),
    "gravlex-watch": ("--term dumb --dread sms two.out", {}),
}
# What gravlex-figure takes for pictures, and gravlex-watch for a window that is closed with the
# first picture.
DRAWS = b"""#!/bin/sh
[ $# = 1 ] || exec echo 'gnuplot_svg = function <svg></svg>'
while read -r line; do
    case $line in
    *ready*) printf '\\nready dumb\\n' >&2 ;;
    load*) touch "$RECORD/loaded"; printf '\\ndrawn 1\\nclosed\\n' >&2; exit ;;
    esac
done
"""
WAITING = b" (waiting for a change)\n"
FILES = {"one.out": harness.layout_1(), "two.out": harness.layout_2(),
         "long.out": harness.layout_1(points=900)}
BIG = "--data sms,tsms,dsms --curves 1-1,2-1 --smserrbars big.out"
BIG_FILES = {"big.out": harness.layout_1(points=8000)}
MESSAGE = b"Cannot allocate memory\n"
BUFFER_MESSAGE = b"Cannot allocate memory for buffer!\n"
# A list that lacks it is a wrong option like any other: what comes after it is looked at as well.
OPTIONS_MESSAGE = re.compile(
    rb"Cannot allocate memory\n"
    rb"((Cannot allocate memory|virtual memory exhausted\.|\w+: wrong data .*|--nonsense: .*)\n)+\Z")
# What the programs beside gravlex say: more than once only about options.
SENTENCES = re.compile(rb"(?s)(?=.*memory)((virtual memory exhausted\.|gravlex-[^\n]+)\n)+")
# What popt leaves out of the first line of its help without leaving a sign of it: it asks next how
# wide the terminal is, and where there is none the error of that hides the other.
UNSEEN = (b"Usage:", b" [options...] inputfile\n")
STEP = 16  # runs before the end is looked for


class Tally:
    """What came of all runs."""
    runs = 0
    failed = 0
    outcomes = collections.Counter()
    messages = collections.Counter()


def judge(what, result, wrong, caller=""):
    Tally.runs += 1
    Tally.messages[result.stderr] += 1
    ending = result.stderr.decode("latin-1").strip() or "no word on standard error"
    Tally.outcomes[caller, result.status, ending] += 1
    if wrong:
        Tally.failed += 1
        print(f"{what}: {'; '.join(wrong)}\n{harness.describe(result)}")


def end_when_it_waits(said):
    """gravlex-watch goes on after a reading that fails, for as long as it is let."""
    def wait(process, _):
        end = time.monotonic() + running.TIME_LIMIT
        while process.poll() is None and time.monotonic() < end:
            if said().endswith(WAITING):
                process.terminate()
            time.sleep(0.01)
    return wait


def run(name, memory):
    """The result, and the library that asked for the first allocation that failed."""
    arguments, env = {**RUNS, **PROGRAM_RUNS}[name]
    program = name if name in PROGRAM_RUNS else running.PROGRAM.name
    env = {"LD_PRELOAD": harness.PRELOAD, "FAULTS_MEMORY": memory, "FAULTS_NOTE": "note", **env}
    callers = []
    made = {}

    def look(folder):
        callers.extend((folder / "work" / "note").read_text().splitlines())
        made.update((path.name, path.read_bytes()) for path in (folder / "work").iterdir()
                    if path.name not in {*FILES, "note", "examples"})

    with tempfile.TemporaryFile() as errors:
        def said():
            return running.COVERAGE.sub(b"", os.pread(errors.fileno(), 1 << 20, 0))

        more = {} if name != "gravlex-watch" else {
            "stderr": errors, "meanwhile": end_when_it_waits(said)}
        result = running.run(
            [*program.split(), *arguments.split()], {**FILES, "note": ""}, env=env, afterwards=look,
            gnuplot=DRAWS if name in PROGRAM_RUNS else running.STANDIN, **more)
        result = dataclasses.replace(result, stderr=result.stderr + said())
    result.recorded.update(made)
    return result, os.path.basename(callers[0]) if callers else None


def wrong_message(result, right, caller):
    """Without memory the program says so once, and last. For what a library asked for, it may also
    end for another reason."""
    said = result.stderr.count(MESSAGE) + result.stderr.count(BUFFER_MESSAGE)
    if result.status != 1 or \
            said == 1 and result.stderr.endswith((MESSAGE, BUFFER_MESSAGE)) or \
            OPTIONS_MESSAGE.match(result.stderr):
        return []
    own = caller == running.PROGRAM.name
    if not own and (right.status == 1 and result.stderr == right.stderr or
                    harness.NO_PIPE.search(result.stdout)):
        return []
    return ["status 1 with another message"]


def forgotten(name, result, caller):
    """The option after a list that lacked memory must be looked at."""
    looked_at = b"'nonsense'" in result.stderr
    own = caller == running.PROGRAM.name
    return ["the next option was not looked at"] if own and name == "lists" and not looked_at else []


def faults_of_program(result, right):
    """One beside gravlex leaves what it was asked for, or a sentence."""
    wanted = -signal.SIGTERM if result.stderr.endswith(WAITING) else 1
    told = result.status == wanted and SENTENCES.fullmatch(result.stderr)
    if result == right or told and not result.recorded and \
            right.stdout.startswith(result.stdout):
        return []
    return [f"another result, with {list(result.recorded)}"]


def without_gaps(name, result, right):
    """The result with the whole text of popt where pieces are missing and its lines end elsewhere."""
    rest = iter(b"".join(right.stdout.split()))
    gaps = result.status == 1 and all(b in rest for b in b"".join(result.stdout.split()))
    unseen = name == "help" and any(
        result.stdout == right.stdout.replace(piece, b"", 1) for piece in UNSEEN)
    return dataclasses.replace(result, stdout=right.stdout) if gaps or unseen else result


def fail_each(name, kind):
    """Runs with the first, second ... allocation failing. How many there were."""
    right, _ = run(name, "1000000000")
    for first in itertools.count(1, STEP):
        numbers = range(first, first + STEP)
        results = running.side_by_side(lambda n: run(name, f"{n}{kind}"), numbers)
        for number, (result, caller) in zip(numbers, results):
            if caller is None:
                judge(f"{name}, undisturbed", result, [] if result == right else ["changed"])
                return number - 1
            if name in ("usage", "help"):
                result = without_gaps(name, result, right)
            if name in PROGRAM_RUNS:
                judge(f"{name}, allocation {number}{kind} from {caller}", result,
                      faults_of_program(result, right), caller)
                continue
            judge(f"{name}, allocation {number}{kind} from {caller}", result,
                  harness.faults_of(result, right) +
                  wrong_message(result, right, caller) +
                  (forgotten(name, result, caller) if kind == "" else []), caller)


def fail_all(names):
    for name in names:
        counts = [fail_each(name, kind) for kind in ("", "+")]
        print(f"{name}: {counts[0]} allocations failed once, {counts[1]} and all after them")
        if 0 in counts:
            sys.exit("not one allocation was seen: nothing was tested")


def run_short(size):
    env = {} if size is None else {"LD_PRELOAD": harness.PRELOAD, "FAULTS_SPACE": str(size)}
    return running.run([running.PROGRAM, *BIG.split()], BIG_FILES, env=env)


def run_out():
    """Runs with more and more memory, until it is enough."""
    right = run_short(None)
    places = set()
    for first in itertools.count(0, 64 * STEP):
        sizes = range(first, first + 64 * STEP, 64)
        for size, result in zip(sizes, running.side_by_side(run_short, sizes)):
            judge(f"{size} KiB", result, harness.faults_of(result, right))
            if result.status == 0:
                print(f"enough at {size} KiB, too little in {len(places)} places before")
                return len(places) > 2
            places.add(len(result.stdout) + sum(len(stream) for stream in result.streams))


def main():
    if sys.argv[1:] == ["programs"]:
        fail_all(PROGRAM_RUNS)
        sys.exit(Tally.failed > 0)
    fail_all(RUNS)
    # The address sanitizer keeps memory of its own, which has no such end.
    sanitized = b"__asan_init" in running.PROGRAM.read_bytes()
    if not sanitized and not run_out():
        sys.exit("memory never ran out: nothing was tested")
    for (caller, status, ending), count in sorted(Tally.outcomes.items()):
        print(f"{count:5} {caller}: status {status}, {ending}")
    for message in (MESSAGE, BUFFER_MESSAGE):
        if Tally.messages[message] == 0:
            Tally.failed += 1
            print("never said:", message)
    print(f"{Tally.runs} runs, {Tally.failed} failed")
    sys.exit(Tally.failed > 0)


if __name__ == "__main__":
    main()
