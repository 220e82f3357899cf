# SPDX-License-Identifier: MIT
"""documents.py check|redraw DOCUMENT...: runs the commands that the documents show.

Blocks that begin with "```sh gallery" hold them, one a line; a backslash at the end continues a
line. Those of a block run one after another in a folder of their own, with a copy of examples/ and
an "ssh" for which each machine is this one. Every command must quietly do something: write a
file, which must be of the kind that its name says, open a window, or print. gravlex-watch goes on
until control-C comes, when its window is there and in the pictures. A block "```python" behind
them runs in the same folder, and a block "```text" is what the last of them has printed.

The pictures of docs/pictures/ that are shown between a block and the next one are what its
commands draw: an image of that name, an EPS or PDF of that name, or, for names that begin with
"window", the window, or the browser if they write a page for one. "redraw" writes these pictures,
"check" compares them: to the pixel with the gnuplot that drew them, which the SVG images among
them name, by what they show with any other. A picture before the first block is one that another
block draws.
"""

import collections
import functools
import os
import re
import shutil
import signal
import subprocess
import sys

import files
import sessions
import running
from running import ROOT
from sessions import expect

PICTURES = ROOT / "docs" / "pictures"
MOST_BYTES = 150_000
# Letters are drawn a little different on another system: this share of the pixels may differ.
TOLERANCE = 0.003
# Another gnuplot draws lines and bars a little different. A colour that has this share of the
# pixels is there, and neither much more nor much less of it.
SEEN = 0.003
MUCH = 1.5
NAMES_FILE = re.compile(r" (-o|--png|--eps|--svg)[ =](?!- )")
OPENS_WINDOW = re.compile(r"\bgravlex (?!.*--(png|eps|svg|term)\b).*\.out$|\bgnuplot -persist")
SHOWN = re.compile(r"\]\((?:docs/)?pictures/([^)]+)\)")
DRAWN_WITH_LETTERS = "+----"  # a corner of the frame
# How a file begins, by the end of its name.
BEGINNINGS = {".png": b"\x89PNG\r\n", ".pdf": b"%PDF-1.", ".eps": b"%!PS-Adobe-", ".svg": b"<?xml",
              ".html": b"<!DOCTYPE html>", ".csv": b"set,s,", ".gp": b"# A gnuplot script",
              ".out": b" KOVA "}
# As the real one does, it begins in the home folder, and in the surroundings of a login.
SSH = """#!/bin/sh
while case $1 in -*) true ;; *) false ;; esac; do shift; done
shift
[ "$1" = -- ] && shift
cd && SHELL=/bin/sh exec sh -c "$*"
"""


def read_parts(document):
    """The text before the first block, and the list of (code, text up to the next block)."""
    text = document.read_text(encoding="utf-8")
    before, *parts = re.split(r"^```sh gallery\n", text, flags=re.MULTILINE)
    return before, [part.split("\n```\n", 1) for part in parts]


def read_blocks(document):
    """A list of (steps, names of the pictures that show them); a step is (language, text)."""
    blocks = []
    for code, rest in read_parts(document)[1]:
        commands = re.sub(r" *\\\n *", " ", code).splitlines()
        further = re.findall(r"^```(python|text)\n(.*?)^```$", rest, re.MULTILINE | re.DOTALL)
        blocks.append(([("sh", command) for command in commands] + further, SHOWN.findall(rest)))
    return blocks


def files_in(folder):
    return {path for path in folder.rglob("*.*") if path.suffix in BEGINNINGS}


def check_file(path):
    expect(path.read_bytes().startswith(BEGINNINGS[path.suffix]), f"{path.name} is something else")


def run_command(command, folder, display):
    """Runs one command, which must quietly do what it says. Returns what it has printed."""
    before, count = files_in(folder), len(sessions.windows(display))
    opens_window = OPENS_WINDOW.search(command)
    status, out, err = sessions.run(command, folder, display if opens_window else None)
    expect(status == 0, f"{command}: status {status}, {err}")
    expect(sessions.is_quiet(err), f"{command}: said {err}")
    written = files_in(folder) - before
    for path in written:
        check_file(path)
    if opens_window:
        sessions.wait_for_windows(display, count + 1)
    else:
        expect(written or out and not NAMES_FILE.search(command), f"{command}: wrote nothing")
    return out


def watch(command, names, folder, display):
    """Runs gravlex-watch until its window is there, and in the pictures of that name."""
    def interrupt(process):
        sessions.wait_for_windows(display, 1)
        for name in names:
            make_picture(folder / name, display)
        os.killpg(process.pid, signal.SIGINT)

    status, _, err = sessions.run(command, folder, display, interrupt)
    expect(status == -signal.SIGINT and sessions.is_quiet(err), f"{command}: {status}, {err}")


def check_printed(printed, text):
    """A drawing's blanks at the ends of lines are not in the document; another gnuplot puts other
    letters."""
    if DRAWN_WITH_LETTERS in text:
        expect(DRAWN_WITH_LETTERS in printed, f"nothing is drawn:\n{printed}")
        if not is_same_gnuplot():
            return
        printed = "".join(f"{line.rstrip()}\n" for line in printed.rstrip().split("\n"))
    expect(printed == text, f"printed is\n{printed}")


def run_steps(steps, names, folder, display):
    printed = None
    for language, text in steps:
        if text.startswith("gravlex-watch "):
            watch(text, names, folder, display)
        elif language == "sh":
            printed = run_command(text, folder, display)
        elif language == "python":
            status, printed, err = sessions.run([sys.executable, "-c", text], folder)
            expect(status == 0, f"the program ends with {status}: {err}")
        else:
            check_printed(printed, text)


def is_of_window(picture):
    return picture.name.startswith("window")


def make_picture(picture, display):
    """Makes that picture of what has been drawn, unless it is there already."""
    if picture.exists() or any(picture.parent.glob("*.html")):
        return  # a browser is needed by "redraw" only
    if is_of_window(picture):
        found = sessions.windows(display)
        expect(len(found) == 1, f"{picture.name} could be any of {len(found)} windows")
        sessions.screenshot(display, found[0], picture)
    for suffix in (".eps", ".pdf"):
        for figure in picture.parent.rglob(picture.stem + suffix):
            files.render(figure, picture, 150, 4)
    expect(picture.exists(), f"no command of its block draws {picture.name}")


def draw_block(steps, names, handle):
    """Runs what a block holds and calls handle(picture) for each picture."""
    with sessions.work_folder() as folder, sessions.x_display() as display:
        running.put(folder / "bin" / "ssh", SSH)
        run_steps(steps, names, folder, display)
        for name in names:
            make_picture(folder / name, display)
            handle(folder / name)


# ---- Check -------------------------------------------------------------------------------------

def share_of_difference(old, new):
    """The share of the pixels that differ clearly."""
    if old[:2] != new[:2]:
        return 1
    pairs = enumerate(zip(old[2], new[2]))
    clear = {place // 3 for place, (one, other) in pairs if abs(one - other) > 64}
    return len(clear) / (new[0] * new[1])


def svg_without_version(path):
    return re.sub(r"<desc>.*?</desc>", "", path.read_text("latin-1"))


def check_pixels(known, picture):
    hint = f"docs/pictures/{picture.name} is not what its command draws: run script/gallery"
    if picture.suffix == ".svg":
        expect(svg_without_version(known) == svg_without_version(picture), hint)
    else:
        share = share_of_difference(files.read_png(known), files.read_png(picture))
        expect(share <= TOLERANCE, f"{hint} ({100 * share:.1f} % of the pixels differ)")


def color_shares(pixels):
    """The share of each colour, in steps of a quarter of red, green and blue."""
    steps = pixels.translate(bytes(byte // 64 for byte in range(256)))
    counts = collections.Counter(zip(steps[0::3], steps[1::3], steps[2::3]))
    return {color: count * 3 / len(pixels) for color, count in counts.items()}


def look(path):
    """What an SVG image shows, wherever in the file it stands."""
    width, height, series, texts = files.read_svg(path)
    return width, height, series, sorted(texts)


def check_look(known, picture):
    hint = f"docs/pictures/{picture.name} is not what its command draws"
    if picture.suffix == ".svg":
        expect(look(known) == look(picture), hint)
        return
    old, new = files.read_png(known), files.read_png(picture)
    expect(old[:2] == new[:2], f"{hint}: {new[:2]} pixels instead of {old[:2]}")
    old, new = color_shares(old[2]), color_shares(new[2])
    for color in old.keys() | new.keys():
        low, high = sorted((old.get(color, 0), new.get(color, 0)))
        expect(high < SEEN or high < MUCH * low,
               f"{hint}: {100 * high:.2f} % of the pixels near {[64 * part for part in color]} "
               f"in one and {100 * low:.2f} % in the other")


@functools.cache
def is_same_gnuplot():
    """Whether the gnuplot that draws is the one that drew docs/pictures."""
    images = "".join(path.read_text("latin-1") for path in PICTURES.glob("*.svg"))
    kept = set(re.findall(r"<desc>Produced by (.*?) *</desc>", images))
    expect(len(kept) == 1, f"docs/pictures does not name the gnuplot that drew it: {kept}")
    here = subprocess.run(["gnuplot", "--version"], stdout=subprocess.PIPE, text=True, check=True)
    return kept == {here.stdout.strip().replace("gnuplot", "GNUPLOT")}


def check_picture(picture):
    """Compares a new picture with the one in the documents. Windows differ from user to user."""
    known = PICTURES / picture.name
    expect(known.exists(), f"docs/pictures/{picture.name} is not there: run script/gallery")
    size = known.stat().st_size
    expect(size <= MOST_BYTES, f"docs/pictures/{picture.name} is too large: {size} bytes")
    if not is_of_window(picture):
        (check_pixels if is_same_gnuplot() else check_look)(known, picture)


def drawn_names(documents):
    return [name for document in documents for _, names in read_blocks(document) for name in names]


def check_names(documents):
    """Each picture is drawn by one block, each that is shown is there, and none is left over."""
    names = drawn_names(documents)
    twice = {name for name in names if names.count(name) > 1}
    expect(not twice, f"drawn by more than one block: {twice}")
    there = {path.name for path in PICTURES.iterdir()}
    expect(there == set(names), f"pictures without a block, or the reverse: {there ^ set(names)}")
    shown = {name for document in documents for name in SHOWN.findall(read_parts(document)[0])}
    expect(shown <= there, f"shown but not there: {shown - there}")


def make_test(label, function, *arguments):
    def test():
        function(*arguments)
    test.__name__ = label
    return test


def check(documents):
    tests = [make_test("pictures of the documents", check_names, documents)]
    for document in documents:
        blocks = read_blocks(document)
        tests += [make_test(f"{document.name}: {steps[0][1]}",
                            draw_block, steps, names, check_picture)
                  for steps, names in blocks]
        expect(blocks, f"{document.name} shows no commands")
    sessions.run_tests(tests)


# ---- Redraw ------------------------------------------------------------------------------------

def photograph_page(page, picture):
    """Writes what a browser shows of a page into an image."""
    # Its own messages are many and mean nothing.
    subprocess.run(["chromium", "--headless", "--no-sandbox", "--disable-gpu", "--hide-scrollbars",
                    f"--user-data-dir={page.parent}/browser", f"--screenshot={picture}",
                    "--window-size=1000,680", page.as_uri()],
                   timeout=running.TIME_LIMIT, stderr=subprocess.DEVNULL, check=True)


def keep_picture(picture):
    for page in picture.parent.glob("*.html"):
        photograph_page(page, picture)
    shutil.copyfile(picture, PICTURES / picture.name)
    print(f"docs/pictures/{picture.name}", flush=True)


def redraw(documents):
    running.require(*sessions.TOOLS, "chromium")
    PICTURES.mkdir(exist_ok=True)
    names = drawn_names(documents)
    for path in PICTURES.iterdir():
        if path.name not in names:
            path.unlink()
    for document in documents:
        for steps, pictures in read_blocks(document):
            if pictures:
                draw_block(steps, pictures, keep_picture)


if __name__ == "__main__":
    ACTION = {"check": check, "redraw": redraw}[sys.argv[1]]
    ACTION([ROOT / name for name in sys.argv[2:]])
