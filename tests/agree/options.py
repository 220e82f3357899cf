# SPDX-License-Identifier: MIT
"""Random command lines for agree.py, in keeping with the file that they are to read."""

from inputs import INT_KINDS, ODD_LABELS, SMS_KINDS, WORDS, chance

FLAGS = ["--grid", "--legend", "--no-xtics", "--ytics", "--x2tics", "--y2tics", "--bglp1"]
DEVIATIONS = ["--smserrbars", "--dsmserrbars", "--smserrfill", "--dsmserrfill", "--dsmslerrfill"]
NUMBERS = ["--ratio", "-r", "--shiftmult", "--lw", "--elw", "--psf", "--smsef", "--efa", "--xmin",
           "--xmax"]
VALUES = ["0", "1", "0.5", "2", "-1", "1.75", "10", "1e3", "0.05", "-0.0", "3.14159"]
ODD_VALUES = ["nan", "inf", "-inf", "1e300", "1e400", "1e-400", "-1e100", "0x10", "abc", "", "1x",
              " 2", "1,5"]
ODD_INTEGERS = ["0", "-1", "0x10", "010", "2147483648", "99999999999999999999", "1.5", "x", "",
                "49"]
ODD_WORDS = ["Int", "foo", " int", "int ", "s", "r", "!all", "!foo", "", "all", "!int", "!sms"]


def kind_list(rnd):
    if chance(rnd, 0.3):
        base = ["all"] + rnd.choice([[], ["!" + rnd.choice(WORDS)], ["lint", "lbgl"]])
    else:
        family = rnd.choice([SMS_KINDS, SMS_KINDS, INT_KINDS, WORDS])
        base = rnd.sample(family, rnd.randrange(1, 5))
    if chance(rnd, 0.04):
        base.insert(rnd.randrange(len(base) + 1), rnd.choice(ODD_WORDS))
    text = ",".join(base)
    if chance(rnd, 0.02):
        text = rnd.choice([text + ",", "," + text, "", ",,", text.replace(",", ",,"),
                           (text + ",") * 12, ("int," * 30)[:rnd.choice([99, 100, 101])]])
    return text


def pair_list(rnd, labels):
    items = [rnd.choice(labels) for _ in range(rnd.choice([1, 2, 2, 3]))]
    if chance(rnd, 0.3):
        items = labels[:]
    if chance(rnd, 0.08):
        items.append("%d-%d" % (rnd.randrange(30), rnd.randrange(4)))
    if chance(rnd, 0.04):
        items.insert(rnd.randrange(len(items) + 1), rnd.choice(ODD_LABELS).replace("\0", ""))
    text = ",".join(items)
    if chance(rnd, 0.02):
        text = rnd.choice([text + ",", "," + text, "", ",,", " " + text, text + " ",
                           "0" * rnd.choice([96, 97, 98]) + "1-1"])
    return text


def argument(rnd, option, value):
    """The ways in which popt takes an argument."""
    if option.startswith("--") and chance(rnd, 0.5):
        return [option + "=" + value]
    if not option.startswith("--") and chance(rnd, 0.3):
        return [option + value]
    return [option, value]


def integer(rnd, usual):
    return rnd.choice(ODD_INTEGERS) if chance(rnd, 0.04) else str(usual)


def selection(rnd, tables, labels, stacking):
    groups = []
    if stacking:
        kinds = rnd.choice(["all", "all,lint,lbgl", ",".join(SMS_KINDS), ",".join(INT_KINDS)])
        return [["--data", kinds], [rnd.choice(["--curves", "--ccombine"]), ",".join(labels)]]
    if chance(rnd, 0.6):
        groups.append(argument(rnd, "--data", kind_list(rnd)))
    if chance(rnd, 0.6):
        groups.append(argument(rnd, "--curves", pair_list(rnd, labels)))
    for option, share in (("--dread", 0.06), ("-d", 0.05), ("--dcombine", 0.12)):
        if chance(rnd, share):
            groups.append(argument(rnd, option, kind_list(rnd)))
    for option, share in (("--cread", 0.06), ("-c", 0.05), ("--ccombine", 0.15)):
        if chance(rnd, share):
            groups.append(argument(rnd, option, pair_list(rnd, labels)))
    if chance(rnd, 0.25):
        groups.append(argument(rnd, rnd.choice(["--table", "-t"]),
                               integer(rnd, rnd.randrange(1, tables + 2))))
    return groups


def drawing(rnd):
    groups = [[flag] for flag in FLAGS if chance(rnd, 0.12)]
    groups += [[flag] for flag in DEVIATIONS if chance(rnd, 0.15)]
    groups += [[flag] for flag in ("--no-multiplot", "--no-autoshifts") if chance(rnd, 0.12)]
    for option in NUMBERS:
        if chance(rnd, 0.06):
            value = rnd.choice(ODD_VALUES if chance(rnd, 0.1) else VALUES)
            groups.append(argument(rnd, option, value))
    for option in ("--png", "--eps", "--svg"):
        if chance(rnd, 0.15):
            name = rnd.choice(["a.png", "x y", "f.svg", 'q"uote', "", "%s"])
            groups.append(argument(rnd, option, name))
    for option in ("--imgw", "-w", "--imgl", "-l"):
        if chance(rnd, 0.06):
            groups.append(argument(rnd, option, integer(rnd, rnd.randrange(1, 3000))))
    if chance(rnd, 0.05):
        groups.append(argument(rnd, "--term", rnd.choice(["x11", "qt size 3,4", ""])))
    if chance(rnd, 0.1):
        style = rnd.choice([1, 2, 3, 4, 1, 2, 3, 4, 0, 5, -1])
        groups.append(argument(rnd, "--style_sms", integer(rnd, style)))
    if chance(rnd, 0.08):
        groups.append(argument(rnd, "--ptype_sms", integer(rnd, rnd.randrange(-1, 20))))
    return groups


def command_line(rnd, tables, labels, stacking, name):
    if chance(rnd, 0.01):
        return rnd.choice([[], ["--help"], ["-?"], ["--usage"], ["--version"], ["-v", name],
                           ["--"], ["--png"], ["-w"], ["--version", "--foo"], ["-vx", name]])
    groups = selection(rnd, tables, labels, stacking) + drawing(rnd)
    rnd.shuffle(groups)
    if chance(rnd, 0.01):
        groups.append([rnd.choice(["--foo", "-z", "--grid=1", "-vv", "--dat=int", "--no-grid"])])
    if not chance(rnd, 0.005):
        groups.insert(rnd.randrange(len(groups) + 1), [name])
    if chance(rnd, 0.01):
        groups.append(["another.out"])
    return [word for group in groups for word in group]
