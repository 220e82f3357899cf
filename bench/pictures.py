#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Measure a picture of gravlex-figure beside gravlex's and matplotlib's, and gravlex-table beside
reading alone; see script/bench.

usage: pictures.py BUILD-FOLDER [REPETITIONS]

The programs run in turns. Processor time is user plus system time of a program and of the gnuplot
that it waits for.
"""

import os
import pathlib
import statistics
import sys

from measure import ms, row, times

ROOT = pathlib.Path(__file__).resolve().parent.parent
SHOWN = ["--data", "sms,tsms,dsms", "--curves"]


def processor_time(command, environment):
    """Seconds of one run, with those of the processes that it has waited for."""
    pid = os.posix_spawnp(command[0], command, environment,
                          file_actions=[(os.POSIX_SPAWN_OPEN, fd, os.devnull, os.O_RDWR, 0)
                                        for fd in (0, 1, 2)])
    _, status, usage = os.wait4(pid, 0)
    return status, usage.ru_utime + usage.ru_stime


def median_times(commands, repetitions, **environment):
    """The median time of each command; the first run of each only warms up."""
    results = {name: [] for name in commands}
    for repetition in range(repetitions + 1):
        for name, command in commands.items():
            status, seconds = processor_time([str(word) for word in command],
                                             os.environ | environment)
            if status:
                sys.exit(f"{name}: status {os.waitstatus_to_exitcode(status)}")
            if repetition:
                results[name].append(seconds)
    return {name: statistics.median(seconds) for name, seconds in results.items()}


def picture_commands(build, source, sets, folder):
    """Each draws 1200 x 800 pixels."""
    return {
        "figure": [build / "gravlex-figure", "-f", "-o", folder / "figure.png", "-s", "12x8",
                    "--dpi", "254", *SHOWN, sets, source],
        "gravlex": [build / "gravlex", "--png", folder / "gravlex.png", *SHOWN, sets, source],
        "matplotlib": [ROOT / "bench" / "with_matplotlib.py", source, folder / "peer.png"],
    }


def print_pictures(build, folder, repetitions):
    row("picture, 1200 x 800", "figure", "matplotlib", "share", "goal")
    for what, source, sets, goal in (
            ("two sets of 160 points", ROOT / "examples" / "ccl4.out", "1-1,2-1", 0.25),
            ("two sets of 20,000 points", folder / "points.out", "1-1,2-1", 0.8)):
        cost = median_times(picture_commands(build, source, sets, folder), repetitions)
        row(what, ms(cost["figure"]), ms(cost["matplotlib"]),
            times(cost["figure"] / cost["matplotlib"]), f"at most {goal}")
    row("the same beside gravlex --png", ms(cost["figure"]), ms(cost["gravlex"]),
        times(cost["figure"] / cost["gravlex"]), "at most 0.125")


# Where there is no gnuplot, little of gravlex comes after the reading.
def print_table(build, folder, repetitions):
    source = folder / "long.out"
    cost = median_times({
        "table": [build / "gravlex-table", source],
        "reading": [build / "gravlex", source],
    }, repetitions, PATH=str(folder / "nothing"))
    print()
    row(f"CSV of {source.stat().st_size / 1e6:.0f} MB", "table", "reading", "share", "goal")
    row("long", ms(cost["table"]), ms(cost["reading"]), times(cost["table"] / cost["reading"]),
        "at most 4")


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    repetitions = int(sys.argv[2]) if len(sys.argv) > 2 else 5
    folder = build / "bench"
    print()
    print_pictures(build, folder, repetitions)
    print_table(build, folder, repetitions)


if __name__ == "__main__":
    main()
