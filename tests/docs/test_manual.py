# SPDX-License-Identifier: MIT
"""gravlex(1) says all that there is to say about the program, and nothing else."""
import re
import unittest

import manual
import program
from manual import matches, plain

PATH = program.ROOT / "man/gravlex.1"
PAGE = manual.read(PATH)
MESSAGES = program.messages(path for part in ("run", "input", "plot")
                            for path in sorted((program.ROOT / "src/kova" / part).glob("*.cpp")))
STREAMS = {"stdout": "Standard output.", "stderr": "Standard error."}


def option_heads():
    """Spellings and argument label of each item of OPTIONS, with its text."""
    for heads, body in PAGE.items_of("OPTIONS"):
        for head in heads:
            match = re.fullmatch(r"(?:(-\S), )?(--[\w-]+)(?:=(\w+))?", plain(head))
            yield (match[2], match[1] or "", match[3] or ""), body


class Manual(unittest.TestCase):
    def test_lint(self):
        self.assertEqual(manual.lint(PATH), [])

    def test_options(self):
        shown = {(f"--{o.name}", o.short and f"-{o.short}", o.label) for o in program.options()}
        self.assertEqual({head for head, _ in option_heads()}, shown)

    def test_defaults(self):
        bodies = {head[0]: body for head, body in option_heads()}
        for option in program.options():
            body = bodies[f"--{option.name}"]
            if option.name in ("version", "help", "usage", "data", "curves", "xmin", "xmax"):
                continue
            self.assertRegex(body, "Default: ", option.name)
            # Style and point type have theirs in the table of kinds.
            if option.default() is not None and not option.name.endswith("_sms"):
                number = re.search(r"Default: ([\d.]*\d)", body)
                self.assertEqual(float(number[1]), option.default(), option.name)

    def test_kind_words(self):
        rows = {cells[0]: tuple(cells[1:3]) for section, cells in PAGE.rows
                if section == "DATA KINDS" and cells[0] not in ("Word", "none")}
        self.assertEqual(rows, program.kind_words())
        heads = [plain(head) for heads, _ in PAGE.items_of("DATA KINDS") for head in heads]
        self.assertEqual(heads, ["word", "!word", "all"])

    def test_messages(self):
        items = PAGE.items_of("DIAGNOSTICS")
        for message, stream in sorted(MESSAGES):
            bodies = [body for heads, body in items for head in heads if matches(message, head)]
            self.assertTrue(bodies, f"not in DIAGNOSTICS: {message}")
            self.assertTrue(any(body.startswith(STREAMS[stream]) for body in bodies),
                            f"not said to be on {stream}: {message}")

    def test_no_other_messages(self):
        for heads, body in PAGE.items_of("DIAGNOSTICS"):
            if not body.startswith("Standard "):
                continue  # a message of the shell or of gnuplot
            for head in heads:
                self.assertTrue(any(matches(message, head) for message, _ in MESSAGES),
                                f"no longer a message: {plain(head)}")


if __name__ == "__main__":
    unittest.main()
