# SPDX-License-Identifier: MIT
"""The manual page as a reader sees it: sections of paragraphs, list items and table rows."""
import re
import subprocess
from html.parser import HTMLParser

# Marks around an argument, a word that stands for something else.
BEGIN, END = "\x01", "\x02"


def plain(text):
    return text.replace(BEGIN, "").replace(END, "")


def matches(message, head):
    """Whether a head shows the message, with an argument for each conversion."""
    wanted = re.sub("%[a-z]", f"{BEGIN}x{END}", message)
    shown = re.sub(f"{BEGIN}[^{END}]+{END}", f"{BEGIN}x{END}", head)
    return " ".join(wanted.split()) == " ".join(shown.split())


class Page(HTMLParser):
    """items: (section, heads, body) of every list item; rows: (section, cells) of every table row.
    Heads that follow each other without a body share the body of the last."""

    def __init__(self, html):
        super().__init__()
        self.items, self.rows = [], []
        self.section, self.text, self.heads, self.cells = "", "", [], []
        self.feed(html)

    def take(self):
        text, self.text = " ".join(self.text.split()), ""
        return text

    def handle_starttag(self, tag, attrs):
        if tag in ("h1", "dt", "dd", "td"):
            self.text = ""
        elif tag == "tr":
            self.cells = []
        elif tag == "var":
            self.text += BEGIN

    def handle_endtag(self, tag):
        if tag == "h1":
            self.section = self.take()
        elif tag == "var":
            self.text += END
        elif tag == "dt":
            self.heads.append(self.take())
        elif tag == "dd":
            body = plain(self.take())
            if body:
                self.items.append((self.section, self.heads, body))
                self.heads = []
        elif tag == "td":
            self.cells.append(plain(self.take()))
        elif tag == "tr":
            self.rows.append((self.section, self.cells))

    def handle_data(self, data):
        self.text += data

    def items_of(self, section):
        return [(heads, body) for where, heads, body in self.items if where == section]


def lint(path):
    """What mandoc complains about, but for pages that this machine may not have."""
    run = subprocess.run(["mandoc", "-T", "lint", path], capture_output=True, text=True)
    lines = (run.stdout + run.stderr).splitlines()
    return [line for line in lines
            if not re.search("referenced manual not found|outdated mandoc.db", line)]


def read(path):
    run = subprocess.run(["mandoc", "-T", "html", path], capture_output=True, text=True, check=True)
    return Page(run.stdout)
