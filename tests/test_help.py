#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Help and usage: the option library words them, so only what is ours in them is looked for."""

import re
import subprocess
import sys

import running

# Long name, short name, argument label, help text; in the order of the help.
OPTIONS = """
version    | v |          | Print version
png        |   | filename | Create image 'filename' in PNG format
eps        |   | filename | Create image 'filename' in EPS format
svg        |   | filename | Create image 'filename' in SVG format
imgw       | w | width    | Width of image in pixels
imgl       | l | length   | Length of image in pixels
grid       |   |          | Plot grid
legend     |   |          | Plot legend
no-xtics   |   |          | Do not plot xtics
ytics      |   |          | Plot ytics
x2tics     |   |          | Plot x2tics
y2tics     |   |          | Plot y2tics
ratio      | r | ratio    | Set aspect ratio for the image
term       |   | tname    | Set terminal to 'tname'
bglp1      |   |          | Add 1 to background data
no-multiplot |  |         | Plot curves in separate windows
no-autoshifts | |         | No auto shifts for data in ccombine mode
shiftmult  |   | shift    | Shift multiplier
lw         |   | factor   | Factor for width of lines
elw        |   | factor   | Factor for width of error bars
psf        |   | factor   | Factor for size of exp. data points
smsef      |   | factor   | Factor for standard deviations of sM(s)
efa        |   | factor   | Transparency factor for filled areas of standard deviations
dread      | d | types    | Read only indicated data types \
(int,tint,dint,rint,lint,bgl,rbgl,lbgl,sms,tsms,dsms,sec,iat,smss,ints,all)
dcombine   |   | types    | Plot indicated data types on the same graph
data       |   | types    | Combination of --dread and --dcombine
table      | t | integer  | Table number, from which data should be read
cread      | c | curves   | Read only indicated data set(s) (e.g. 1-1,2-1)
ccombine   |   | curves   | Plot indicated data on the same graph
curves     |   | curves   | Combination of --cread and --ccombine
smserrbars |   |          | Plot sM(s) standard deviations as error bars
dsmserrbars |  |          | Plot sM(s) standard deviations as error bars for delta sM(s)
smserrfill |   |          | Plot sM(s) standard deviations as filled area
dsmserrfill |  |          | Plot sM(s) standard deviations as filled area for delta sM(s)
dsmslerrfill | |          | Plot sM(s) standard deviations as filled area for levels of delta sM(s)
style_sms  |   | style    | Plot style for sM(s)
ptype_sms  |   | type     | Point type for sM(s)
xmin       |   | value    | Set minimal value on the x-scale
xmax       |   | value    | Set maximal value on the x-scale
"""

failures = 0


def check(truth, what):
    global failures
    if not truth:
        failures += 1
        print("FAIL", what)


def words(*arguments):
    """What a run prints, line breaks and blanks made one: the library breaks lines as it likes."""
    run = subprocess.run([running.PROGRAM, *arguments], capture_output=True, text=True,
                         env={"LC_ALL": "C", "PATH": "/nonexistent"}, check=False)
    check(run.returncode == 0, f"{arguments} ends with status {run.returncode}")
    check(run.stderr == "", f"{arguments} prints on standard error: {run.stderr}")
    return " ".join(run.stdout.split())


def main():
    rows = [[cell.strip() for cell in line.split("|")] for line in OPTIONS.strip().splitlines()]
    check(len(rows) == 39, "39 options")
    entries = []
    for name, short, label, text in rows:
        option = (f"-{short}, " if short else "") + f"--{name}" + (f"={label}" if label else "")
        entries.append(f"{option} {text}")
    entries += ["Help options:", "-?, --help"]

    for argument in "--help", "-?":
        text = words(argument)
        check(re.match(r"Usage: \S*gravlex \[options\.\.\.\] inputfile ", text),
              f"{argument}: first words: {text[:60]}")
        position = 0
        for name, short, _, _ in rows:
            check(short or not re.search(rf", --{name}\b", text),
                  f"{argument}: --{name} has a short name")
        for entry in entries:
            # The line is broken within the long list of kinds, too.
            pattern = r" ?".join(re.escape(part) for part in re.split(r" |(?<=,)", entry))
            found = re.search(r"(^| )" + pattern + "( |$)", text[position:])
            check(found, f"{argument}: not found, or out of order: {entry}")
            position += found.start() if found else 0

    for arguments in [], ["--usage"]:
        text = words(*arguments)
        check(re.match(r"Usage: \S*gravlex ", text), f"{arguments}: first words: {text[:60]}")
        check(text.endswith("[options...] inputfile"), f"{arguments}: last words: {text[-60:]}")
        for name, short, label, _ in rows:
            option = f"--{name}" + (f"={label}" if label else "")
            check(option + "]" in text, f"{arguments}: {option}")
            check(not short or "-" + short in text or short in text.split("]")[0],
                  f"{arguments}: -{short}")

    print(f"{failures} failed")
    sys.exit(failures > 0)


main()
