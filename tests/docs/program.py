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
    def __init__(self, name, short, variable, text, label):
        self.name, self.short, self.variable = name, short, variable
        self.text, self.label = text, label
        self.spellings = {f"--{name}"} | ({f"-{short}"} if short else set())

    def default(self):
        """The initial value of the option's variable if it is one number, else None."""
        match = re.search(rf"\b{self.variable} = (-?[\d.]+)[,;]", source("run/options.cpp"))
        return float(match[1]) if match and self.variable else None


def options():
    """The option table, with popt's own two options."""
    row = re.compile(
        rf"""\{{"(?P<name>[\w-]+)",\s*(?:'(?P<short>\w)'|'\\0'),\s*POPT_ARG_\w+,\s*
             (?:&(?P<variable>\w+)|nullptr),\s*\w+,\s*
             (?P<text>{STRINGS}),\s*(?:"(?P<label>\w+)"|nullptr)\}}""", re.X)
    table = source("run/options.cpp").partition("optionsTable[] = {")[2]
    table, _, _ = table.partition("POPT_AUTOHELP")
    found = [Option(m["name"], m["short"], m["variable"], joined(m["text"]), m["label"])
             for m in row.finditer(table)]
    assert len(found) == len(re.findall(r'\{"', table)), "an option row could not be parsed"
    return found + [Option("help", "?", None, "Show this help message", None),
                    Option("usage", None, None, "Display brief usage message", None)]


def help_options():
    """Spellings and argument label of each option of --help."""
    run = subprocess.run([PROGRAM, "--help"], capture_output=True, text=True, check=True)
    lines = re.findall(r"^  (?:-(\S), |    )--([\w-]+)(?:=(\w+))?", run.stdout, re.M)
    assert lines, run.stdout
    return {(f"--{name}", f"-{short}" if short else None, label or None)
            for short, name, label in lines}


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


def messages():
    """Every format string for standard output and standard error, a line each, with its stream."""
    found = set()
    for path in sorted((ROOT / "src/kova").rglob("*.cpp")):
        for match in CALL.finditer(path.read_text(encoding="latin-1")):
            stream = STREAMS.get(match["call"], match["stream"])
            if match["format"] is None or stream not in ("stdout", "stderr"):
                continue
            lines = joined(match["format"]).split("\n")
            found |= {(line.strip(), stream) for line in lines if re.sub("%[a-z]", "", line)}
    assert len(found) > 50, "the messages could not be found"
    return found
