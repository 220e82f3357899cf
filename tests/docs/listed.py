# SPDX-License-Identifier: MIT
"""completions/options, the list that all completions are made of."""
import subprocess

import program

FOLDER = program.ROOT / "completions"
LIST = (FOLDER / "options").read_text()


class Listed:
    def __init__(self, text):
        """sections: the lines of each; refused: which of the common options a program has not."""
        self.text, self.sections = text, {}
        for line in text.splitlines():
            if line.startswith("["):
                section = self.sections.setdefault(line.strip("[]"), [])
            elif line.startswith(" "):
                section[-1] += line
            elif line and not line.startswith("#"):
                section.append(line)
        rows = (line.split() for line in self.sections["programs"])
        self.refused = {name: refused for name, _, *refused in rows}

    def words(self, section):
        return dict(line.split(None, 1) for line in self.sections[section])

    def options(self, name):
        """Those of one program, each with the type of its argument."""
        for head, lines in self.sections.items():
            word, *owners = head.split()
            if word == "options" and (not owners or name in owners):
                for long, short, takes, text in (line.split(None, 3) for line in lines):
                    label, _, kind = takes.removesuffix("...").partition(":")
                    option = program.Option(long[2:], short[1:], label.strip("-"), text)
                    if long not in self.refused[name]:
                        yield option, kind

    def texts(self, name):
        """Every spelling of every option with its help text."""
        return {spelling: option.text for option, _ in self.options(name)
                for spelling in option.spellings}

    def generate(self, folder):
        source = folder / "options"
        source.write_text(self.text)
        subprocess.run(["sh", FOLDER / "generate", source, folder], check=True)
