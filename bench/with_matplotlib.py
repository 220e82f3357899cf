#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""with_matplotlib.py INPUT IMAGE: what a user's own script would do: sM(s), theory and differences
of the first two sets of the first table, 1200 x 800. The system's Python: there matplotlib is."""

import re
import sys

import matplotlib
matplotlib.use("Agg")
import matplotlib.pyplot as plt
import numpy as np


def read_sets(path):
    """An array of rows for each data set of the first table: between its rules stand a line that
    names the set, the labels, and the rows."""
    with open(path) as file:
        table = file.read().split("Table 2.")[0]
    parts = re.split("^ ?-{9,}\n", table, flags=re.MULTILINE)
    return [np.loadtxt(rows.splitlines())
            for head, rows in zip(parts, parts[2:]) if "Set:" in head]


figure, axes = plt.subplots(figsize=(12, 8), dpi=100)
for number, (s, sms, tsms, dsms) in enumerate(rows[:, :4].T for rows in read_sets(sys.argv[1])[:2]):
    axes.plot(s, tsms + 2 * number, color="#AA0000", linewidth=2)
    axes.plot(s, sms + 2 * number, "o", markerfacecolor="none", markeredgecolor="black",
              markersize=4)
    axes.plot(s, dsms - 1 - 0.5 * number, color="black", linewidth=2)
axes.set_xlabel("s")
axes.set_ylabel("sM(s)")
axes.set_yticks([])
figure.savefig(sys.argv[2])
