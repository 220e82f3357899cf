# SPDX-License-Identifier: MIT
"""What the program's source says about itself: options, kind words and messages."""
import re
import subprocess
import sys

sys.path.append(f"{sys.path[0]}/..")
import running
from running import PROGRAM, ROOT

STRING = r'"(?:[^"\\]|\\.)*"'
STRINGS = rf"(?:{STRING}\s*)+"
ESCAPES = {"n": "\n", "t": "\t", '"': '"', "\\": "\\"}


def draw(test, command, files):
    """Runs a command line that the documents show. It must draw without a word on standard error.
    Returns what it printed and what it sent to gnuplot."""
    result = running.run(["sh", "-c", command], files)
    test.assertEqual((result.status, result.stderr), (0, b""), result.stdout)
    sent = b"".join(result.streams).decode("latin-1")
    test.assertRegex(sent, r"(?m)^plot  '-'")
    return result.stdout.decode(), sent


def source(name):
    return (ROOT / "src/kova" / name).read_text(encoding="latin-1")


def joined(strings):
    """The value of adjacent C string literals."""
    text = "".join(literal[1:-1] for literal in re.findall(STRING, strings))
    return re.sub(r"\\(.)", lambda match: ESCAPES[match[1]], text)


class Option:
    """Without a name, a short one or an argument these are empty."""

    def __init__(self, name, short, label, text):
        self.name, self.short, self.label, self.text = name, short, label, text
        self.spellings = frozenset([f"--{name}"] * bool(name) + [f"-{short}"] * bool(short))

    def default(self):
        """The initial value of the option's variable if it is one number, else None."""
        text = source("run/options.cpp")
        variable = re.search(rf'\{{"{self.name}",[^"]*&(\w+)', text)
        match = variable and re.search(rf"\b{variable[1]} = (-?[\d.]+)[,;]", text)
        return float(match[1]) if match else None


def options(path=PROGRAM):
    """The options as a program shows them."""
    run = subprocess.run([path, "--help"], capture_output=True, text=True, check=True)
    rows = re.findall(r"^  (?:-(\S), |    )--([\w-]+)(?:=(\S+))?(.*(?:\n {12,}.*)*)", run.stdout,
                      re.M)
    assert rows, run.stdout
    return [Option(name, short, label, " ".join(text.split()))
            for short, name, label, text in rows]


def kind_words():
    """Each word of a kind list with the long and the short name of its kind."""
    words = re.findall(r'\{"(\w+)", (P_GINT_\w+)\}', source("run/selection.cpp"))
    rows = re.findall(rf"\{{(P_GINT_\w+), ({STRING}), ({STRING}),", source("run/kinds.cpp"))
    names = {flag: (joined(name), joined(short)) for flag, name, short in rows}
    assert len(words) == 15 and len(names) == 17
    return {word: names[flag] for word, flag in words}


CALL = re.compile(
    rf"\b(?P<call>say|complain|fail|fprintf|vfprintf|fputs|printf|puts|perror)\(\s*"
    rf"(?:(?P<stream>\w+),\s*)?(?P<format>{STRINGS})?")
STREAMS = {"say": "stdout", "printf": "stdout", "puts": "stdout",
           "complain": "stderr", "perror": "stderr"}


def messages(paths):
    """Every format string for standard output and standard error, a line each, with its stream."""
    found = set()
    for path in paths:
        for match in CALL.finditer(path.read_text(encoding="latin-1")):
            stream = STREAMS.get(match["call"], match["stream"])
            if match["format"] is None or stream not in ("stdout", "stderr"):
                continue
            lines = joined(match["format"]).split("\n")
            found |= {(line.strip(), stream) for line in lines if re.sub("%[a-z]", "", line)}
    found.discard(("%s: %s", "stderr"))  # the form in which other programs say them
    return found
