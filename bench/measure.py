#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Measure the tool beside the plain way and print a table; see script/bench.

usage: measure.py BUILD-FOLDER [REPETITIONS]

Both programs run in turns, with a gnuplot that swallows what it is sent, so that a machine that
is busy for a while slows both. Processor time is user plus system time of the process alone.
"""

import argparse
import filecmp
import json
import os
import pathlib
import shutil
import statistics
import subprocess
import sys

STACKED = ["--data", "sms,tsms,dsms", "--ccombine", "1-1"]
EVERYTHING = []  # each column of each set in a panel of its own

# Inputs (make_inputs.cpp) with the arguments that they are drawn with; how often as many
# repetitions a work of a few milliseconds needs.
WORKS = {
    "typical": (STACKED, 20),
    "rows1": (EVERYTHING, 1),
    "rows2": (EVERYTHING, 1),
    "long": (EVERYTHING, 1),
    "sets200": (STACKED, 1),
    "sets400": (STACKED, 1),
}

LONG_NUMBERS = 2 * 100000 * 16  # kept of the long input
FREE_BYTES = 8e6  # of the peak memory, before numbers count

FUNCTIONS = ["line read", "row read", "row written", "look-up/10", "look-up/100",
             "shift phase/25", "shift phase/50", "shift phase/100"]


class Bench:
    def __init__(self, build):
        self.build = build.resolve()
        self.folder = self.build / "bench"
        self.costs = self.folder / "costs"
        self.programs = {"gravlex": self.build / "gravlex",
                         "plain": self.build / "tests" / "plain" / "plain"}
        self.swallowing = self.install_gnuplot(
            "swallow", f'exec "{self.folder / "swallow"}"')
        self.real = self.install_gnuplot(
            "real", f'exec "{self.folder / "cost"}" "{self.costs}" '
                    f'"{shutil.which("gnuplot")}" "$@"')

    def install_gnuplot(self, name, command):
        """Make a folder with a gnuplot and return the search path that begins with it."""
        folder = self.folder / ("gnuplot-" + name)
        folder.mkdir(exist_ok=True)
        script = folder / "gnuplot"
        script.write_text(f"#!/bin/sh\n{command}\n")
        script.chmod(0o755)
        return f"{folder}:{os.environ['PATH']}"

    def run(self, program, work, path, **environment):
        """Run one program once; return a (seconds, bytes) of each process measured."""
        self.costs.unlink(missing_ok=True)
        command = [self.folder / "cost", self.costs, self.programs[program], *WORKS[work][0],
                   self.folder / (work + ".out")]
        # The terminal that costs gnuplot least.
        environment = os.environ | {"PATH": path, "GNUTERM": "unknown"} | environment
        subprocess.run(command, env=environment, check=True, stdin=subprocess.DEVNULL,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        lines = self.costs.read_text().splitlines()
        return [(int(time) / 1e9, int(size)) for time, size in map(str.split, lines)]

    def check(self, work):
        """Programs that do not write the same cannot be compared. Serves as warm-up, too."""
        copies = {program: self.folder / ("sent-by-" + program) for program in self.programs}
        for program, copy in copies.items():
            self.run(program, work, self.swallowing, BENCH_COPY=str(copy))
        if not filecmp.cmp(*copies.values(), shallow=False):
            sys.exit(f"{work}: gravlex and the plain way sent different bytes")
        for copy in copies.values():
            copy.unlink()

    def measure(self, repetitions):
        """Return the median (seconds, bytes) of each program for each work."""
        for work in WORKS:
            self.check(work)
        results = {work: {program: [] for program in self.programs} for work in WORKS}
        for _ in range(repetitions):
            for work, (_, often) in WORKS.items():
                for program in often * list(self.programs):
                    results[work][program] += self.run(program, work, self.swallowing)
        return {work: {program: [statistics.median(column) for column in zip(*costs)]
                       for program, costs in result.items()}
                for work, result in results.items()}

    def measure_share(self, work, repetitions):
        """Return the median times of gravlex and of the real gnuplot at its end of the pipe."""
        times = []
        for _ in range(repetitions):
            (gnuplot, _), (gravlex, _) = self.run("gravlex", work, self.real)
            times.append((gravlex, gnuplot))
        return [statistics.median(column) for column in zip(*times)]

    def measure_functions(self, repetitions):
        """Return the median processor time of each benchmark in nanoseconds an item."""
        out = self.folder / "functions.json"
        subprocess.run([self.folder / "functions", f"--benchmark_out={out}",
                        "--benchmark_out_format=json", "--benchmark_min_time=0.1",
                        f"--benchmark_repetitions={repetitions}",
                        "--benchmark_enable_random_interleaving=true"],
                       check=True, stderr=subprocess.DEVNULL)
        results = json.loads(out.read_text())["benchmarks"]
        failed = [r["name"] for r in results if r.get("error_occurred")]
        if failed:
            sys.exit(f"{failed[0]}: gravlex and the plain way have different results")
        runs = {}
        for result in results:
            if result["run_type"] == "iteration":
                runs.setdefault(result["run_name"], []).append(1e9 / result["items_per_second"])
        return {name: statistics.median(times) for name, times in runs.items()}


def row(what, gravlex, other, ratio, goal=""):
    print(f"{what:<32}{gravlex:>13}{other:>13}{ratio:>10}   {goal}")


def ms(seconds):
    return f"{seconds * 1e3:.2f} ms"


def ns(nanoseconds):
    return f"{nanoseconds / 1e3:.1f} us" if nanoseconds >= 1e4 else f"{nanoseconds:.1f} ns"


def times(ratio):
    return f"{ratio:.2f} x"


def print_works(costs):
    goals = {"long": "at least 6 x", "sets400": "at least 30 x", "typical": "at least 1 x"}
    row("processor time", "gravlex", "plain", "faster", "goal")
    for work, cost in costs.items():
        gravlex, plain = cost["gravlex"][0], cost["plain"][0]
        row(work, ms(gravlex), ms(plain), times(plain / gravlex), goals.get(work, ""))


def print_growth(costs):
    print()
    row("growth of the processor time", "gravlex", "plain", "", "goal")
    for small, large, goal in (("sets200", "sets400", "gravlex at most 2.3 x"),
                               ("rows1", "rows2", ""),
                               ("rows1", "long", "gravlex at most 4.2 x")):
        growth = {program: costs[large][program][0] / costs[small][program][0]
                  for program in costs[large]}
        row(f"{small} to {large}", times(growth["gravlex"]), times(growth["plain"]), "", goal)


def print_memory(costs):
    print()
    row("peak memory", "gravlex", "plain", "", "goal")
    goal = f"gravlex at most {9 * LONG_NUMBERS / 1e6 + FREE_BYTES / 1e6:.1f} MB"
    peaks = [costs["long"][program][1] for program in ("gravlex", "plain")]
    row("long", *(f"{peak / 1e6:.1f} MB" for peak in peaks), "", goal)
    row("a number kept, all but 8 MB",
        *(f"{(peak - FREE_BYTES) / LONG_NUMBERS:.2f} B" for peak in peaks), "",
        "gravlex at most 9 B")
    peaks = [costs["typical"][program][1] for program in ("gravlex", "plain")]
    row("typical", *(f"{peak / 1e6:.1f} MB" for peak in peaks), "")


def print_share(gravlex, gnuplot):
    print()
    row("beside the real gnuplot", "gravlex", "gnuplot", "share", "goal")
    row("long", ms(gravlex), ms(gnuplot), f"{100 * gravlex / gnuplot:.2f} %", "at most 4 %")


def print_functions(results):
    goals = {"row read": "at least 5 x", "row written": "at least 4 x"}
    print()
    row("functions", "gravlex", "plain", "faster", "goal")
    for function in FUNCTIONS:
        what, _, size = function.partition("/")
        pair = [results["/".join(filter(None, (what, program, size)))]
                for program in ("gravlex", "plain")]
        label = f"{what}, {size} {'sets' if what == 'shift phase' else 'curves'}" if size else what
        row(label, ns(pair[0]), ns(pair[1]), times(pair[1] / pair[0]), goals.get(function, ""))


def main():
    parser = argparse.ArgumentParser(usage="%(prog)s BUILD-FOLDER [REPETITIONS]")
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("repetitions", type=int, nargs="?", default=5)
    arguments = parser.parse_args()
    bench = Bench(arguments.build)
    repetitions = arguments.repetitions
    print(f"Medians of {repetitions} runs in turns; functions: the time of one item\n", flush=True)
    costs = bench.measure(repetitions)
    print_works(costs)
    print_growth(costs)
    print_memory(costs)
    print_share(*bench.measure_share("long", (repetitions + 1) // 2))
    print_functions(bench.measure_functions(repetitions))


if __name__ == "__main__":
    main()
