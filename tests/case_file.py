# SPDX-License-Identifier: MIT
"""Reads and writes whole-program cases and their inputs; tests/cases.txt tells their form.

Text is latin-1 here: every byte is one character.
"""

import re
import shlex
import typing
from pathlib import Path

TESTS = Path(__file__).resolve().parent
FORM = TESTS / "cases.txt"
WIDTH = 99  # columns; what is expected is broken into lines where that can be read


class Refused(Exception):
    """What is wrong with a file, in words."""


# ---- Bytes -------------------------------------------------------------------------------------

ESCAPE = re.compile(r"\\(?:x([0-9A-F]{2})|\{(\d+) ((?:\\s|[^\\{}])+)\}|(.?))")
LETTERS = {"\\": "\\", "t": "\t", "r": "\r", "s": " ", "-": "", "=": "=", "@": "@"}
SIGNS = {"\\": r"\\", "\t": r"\t", "\r": r"\r"}
RUN = re.compile(r"([ -[\]-z|~]{1,4}?)\1{9,}")
LIKE_A_MARKER = re.compile(r"(?m)^==(?!=*\\?$).*")  # a rule of layout 1 is none


def meant(escape):
    number, count, repeated, letter = escape.groups()
    if number:
        return chr(int(number, 16))
    if count:
        return int(count) * unescaped(repeated)
    if letter not in LETTERS:
        raise Refused(f"unknown escape {escape[0]}")
    return LETTERS[letter]


def unescaped(line):
    return ESCAPE.sub(meant, line)


def with_signs(text):
    return re.sub(r"[^ -~]|\\", lambda c: SIGNS.get(c[0], f"\\x{ord(c[0]):02X}"), text)


def escaped(line):
    text, at = "", 0
    for run in RUN.finditer(line):
        unit, length = run[1], len(run[0])
        # The rules of a table are counted only where they would not fit on a screen.
        if length >= (128 if unit == "-" else 80):
            counted = f"{length // len(unit)} " + unit.replace(" ", r"\s")
            text += with_signs(line[at:run.start()]) + "\\{" + counted + "}"
            at = run.end()
    text = re.sub(" $", r"\\s", text + with_signs(line[at:]))
    return "\\" + text if text.startswith("@") or LIKE_A_MARKER.match(text) else text


# ---- Abbreviations: each stands for whole lines ------------------------------------------------

FIELD = re.compile(r"<(\w+)(?:=([^>]*))?>")
ARGUMENT = re.compile(r"(\w+)=(?:'([^']*)'|([^' ]+))(?: |$)")
BARE_VALUE = re.compile(r"yes|no|-?[\d.]+|-?inf|-?nan")


class Block(typing.NamedTuple):
    lines: list
    usual: dict  # the values by name; None for those that are not usual
    pattern: re.Pattern  # finds the block in a text; its groups are the values


def block_of(lines):
    usual = {field[1]: field[2] for line in lines for field in FIELD.finditer(line)}
    known = set()

    def group(field):
        again = field[1] in known
        known.add(field[1])
        return f"(?P={field[1]})" if again else f"(?P<{field[1]}>[^'\n]*)"

    pattern = ""
    for line in lines:
        may_be_missing = any(usual[field[1]] is None for field in FIELD.finditer(line))
        pattern += "(?:" + FIELD.sub(group, re.escape(line)) + "\n)" + "?" * may_be_missing
    return Block(lines, usual, re.compile(pattern))


def read_blocks():
    blocks = [block.split("\n") for block in FORM.read_text().split("\n@")[1:]]
    return {name: block_of([unescaped(line) for line in lines if line]) for name, *lines in blocks}


BLOCKS = read_blocks()


def block_text(block, arguments):
    given = list(ARGUMENT.finditer(arguments))
    values = {value[1]: value[2] if value[3] is None else value[3] for value in given}
    if "".join(value[0] for value in given) != arguments or set(values) - set(block.usual):
        raise Refused(f"no values of such a name or form: {arguments}")
    values = {**block.usual, **values}
    return "".join(FIELD.sub(lambda field: values[field[1]], line) + "\n" for line in block.lines
                   if all(values[field[1]] is not None for field in FIELD.finditer(line)))


def columns_text(arguments):
    columns = arguments.split(", ") if arguments else []
    names = [column.removeprefix("not ") for column in columns]
    taken = [number for number, name in enumerate(names) if columns[number] == name]
    return "".join(line + "\n" for line in (
        f"{len(names)} types of data have been found:",
        *(f" {number} {name} " for number, name in enumerate(names)),
        f"{len(taken)} types of data are subject to process:",
        *(f" {rank} {names[number]} (column {number})" for rank, number in enumerate(taken))))


def rows_again(before):
    """The rows that follow the last plot command."""
    rows = before.rpartition("\nplot ")[2].partition("\n")[2].partition("set ")[0]
    if not rows or "\nplot " not in before:
        raise Refused("no data that could come again")
    return rows


def expanded(name, arguments, before):
    """What @NAME ARGUMENTS stands for behind that text."""
    if name in BLOCKS:
        return block_text(BLOCKS[name], arguments)
    if name == "columns":
        return columns_text(arguments)
    if (name, arguments) == ("data", "again"):
        return rows_again(before)
    raise Refused(f"unknown abbreviation @{name} {arguments}")


def block_arguments(block, match):
    return " ".join(f"{name}={value}" if BARE_VALUE.fullmatch(value) else f"{name}='{value}'"
                    for name, value in match.groupdict().items()
                    if value not in (None, block.usual[name]))


def columns_arguments(match):
    names = re.findall(r" \d+ (.*) \n", match[1])
    taken = re.findall(r"\(column (\d+)\)\n", match[2])
    return ", ".join(name if str(number) in taken else f"not {name}"
                     for number, name in enumerate(names))


COLUMNS = re.compile(r"\d+ types of data have been found:\n((?: \d+ .* \n)*)"
                     r"\d+ types of data are subject to process:\n((?: \d+ .*\)\n)*)")


def guesses(text, at):
    """The abbreviations that may stand for what is there."""
    yield "data", "again"
    match = COLUMNS.match(text, at)
    if match:
        yield "columns", columns_arguments(match)
    for name, block in BLOCKS.items():
        match = block.pattern.match(text, at)
        if match:
            yield name, block_arguments(block, match)


def next_line(text, at):
    """What the next lines are in a section, abbreviated if they can be, and where they end."""
    for name, arguments in guesses(text, at):
        try:
            lines = expanded(name, arguments, text[:at])
        except Refused:  # nothing to come again
            continue
        if lines and text.startswith(lines, at):
            return "@" + escaped(f"{name} {arguments}".rstrip()), at + len(lines)
    line, end, _ = text[at:].partition("\n")
    return escaped(line) + ("" if end else "\\"), at + len(line + end)


# ---- Sections ----------------------------------------------------------------------------------

def decoded(section):
    """The bytes that a section stands for."""
    *lines, rest = re.sub(r"(?<!\\)((?:\\\\)*)\\\n", r"\1", section).split("\n")
    text = ""
    for line in lines:
        if line.startswith("@"):
            name, _, arguments = unescaped(line[1:]).partition(" ")
            text += expanded(name, arguments, text)
        else:
            text += unescaped(line) + "\n"
    return (text + unescaped(rest)).encode("latin-1")


def broken(line):
    """The line in pieces that are not too wide, if it has places for that."""
    pieces = re.findall(r"(?:'[^']*'|[^' ])+ ?" if re.match("@echo|@settings", line) else
                        ".+?(?:, |$)", line)
    text, column = "", 0
    for piece in pieces:
        if column and column + len(piece) >= WIDTH:
            text, column = text + "\\\n" + "\\" * bool(LIKE_A_MARKER.match(piece)), 0
        text, column = text + piece, column + len(piece)
    return text


def encoded(data):
    """The section that stands for the bytes."""
    text, at = data.decode("latin-1"), 0
    lines = []
    while at < len(text):
        line, at = next_line(text, at)
        lines.append(broken(line))
    if lines and lines[-1] == "":
        lines[-1] = r"\-"
    return "".join(line + "\n" for line in lines)


# ---- Files -------------------------------------------------------------------------------------

SECTION = re.compile(r"(?m)^== (.*)\n")
EXPECTED = re.compile(r"status|stdout|stderr|gnuplot \d+( arguments)?")
GIVEN = re.compile(r"env|run|gnuplot script|gnuplot missing|[\w-]+\.\w+")
AS_IT_IS = {"env", "run", "gnuplot script"}
HIDDEN = re.compile(r"(?m)[^ -~\n]| $|[^\n]\Z")
USUAL = {"status": b"0\n", "stdout": b"", "stderr": b""}
USUAL_ARGUMENTS = b"-persist\n"


class Case(typing.NamedTuple):
    kept: str  # the part of the file that does not depend on what is expected
    arguments: list
    given: dict  # sections: scripts, environment and input files
    inputs: dict  # the named inputs that the case speaks of, as inputs/NAME
    expected: dict  # sections, where they are not the usual ones


def visible_text(path):
    text = path.read_bytes().decode("latin-1")
    hidden = HIDDEN.search(text)
    if hidden:
        raise Refused(f"{hidden[0]!r} in line {text.count(chr(10), 0, hidden.start()) + 1}")
    return text


def named_inputs(text):
    return {name: decoded(visible_text(TESTS / name))
            for name in re.findall(r"\binputs/[\w-]+", text)}


def without_usual(sections):
    return {name: data for name, data in sections.items() if data != USUAL.get(name) and
            not (name.endswith(" arguments") and data == USUAL_ARGUMENTS)}


def section_of(marker, body):
    """The name of the section and its bytes."""
    if re.fullmatch(r"status -?\d+", marker):
        return "status", marker[7:].encode() + b"\n" + decoded(body)
    if not (EXPECTED.fullmatch(marker) or GIVEN.fullmatch(marker)):
        raise Refused(f"unknown marker == {marker}")
    return marker, body.encode() if marker in AS_IT_IS else decoded(body)


def load(path):
    head, *rest = SECTION.split(visible_text(path))
    reason = re.match(r"(#.*\n)*", head)[0]
    if not re.search(r"\w", reason):
        raise Refused("does not say why it exists")
    unknown = LIKE_A_MARKER.search("\n".join([head, *rest[1::2]]))
    if unknown:
        raise Refused(f"unknown marker {unknown[0]}")
    kept, sections = head, {}
    for marker, body in zip(rest[::2], rest[1::2]):
        name, data = section_of(marker, body)
        if name in sections:
            raise Refused(f"twice: == {name}")
        sections[name] = data
        kept += "" if EXPECTED.fullmatch(name) else f"== {marker}\n{body}"
    return Case(kept, shlex.split(unescaped(head[len(reason):])),
                {name: data for name, data in sections.items() if GIVEN.fullmatch(name)},
                named_inputs(kept),
                without_usual({name: data for name, data in sections.items()
                               if EXPECTED.fullmatch(name)}))


def rank(name):
    word, number, *_ = f"{name} 0".split()
    return ["status", "stdout", "stderr", "gnuplot"].index(word), int(number), name


def written(case, found):
    """The text of the case's file with these as its expected sections."""
    text = case.kept
    for name in sorted(without_usual(found), key=rank):
        text += f"== {name} {found[name].decode()}" if name == "status" else \
            f"== {name}\n{encoded(found[name])}"
    return text
