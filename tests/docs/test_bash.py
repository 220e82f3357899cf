# SPDX-License-Identifier: MIT
"""The completion of bash: what its function offers, and what pressing tab does."""
import re
import shlex
import subprocess
import unittest

import expected

# Found by the name of the program.
FILE = f"{expected.MADE.name}/bash/gravlex-script"

# Calls the function as bash does when tab is pressed for the second time.
CALL = r"""
source "$1"
cd "$2"
shift 2
compopt() { :; }
COLUMNS=200 COMP_TYPE=63 COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
_gravlex "$1"
printf '%s\n' "${COMPREPLY[@]}"
"""

SETUP = r"""
PS1='ready> '
bind 'set bell-style none'
bind 'set enable-bracketed-paste off'
show_line() { printf '\n<%s>\n' "$READLINE_LINE"; READLINE_LINE=''; READLINE_POINT=0; }
bind -x '"\C-g": show_line'
"""


def split(line):
    """The words as readline splits them: "=" is one of its own, an open quote stays."""
    words = re.findall(r"""=|(?:'[^']*|\\.|[^\s=])+""", line)
    return words + [""] if line.endswith(" ") else words


class Bash(expected.OnTerminal):
    command = ["bash", "--norc", "--noprofile", "-i"]
    setup = f"source {shlex.quote(FILE)}{SETUP}"

    def offers(self, line):
        run = subprocess.run(["bash", "-c", CALL, "bash", FILE, self.folder.name, *split(line)],
                             capture_output=True, text=True, check=True)
        self.assertEqual(run.stderr, "")
        found = {}
        for reply in filter(None, run.stdout.splitlines()):
            word, _, text = reply.partition(" ")
            found[re.sub(r".*,", "", word).replace("\\", "")] = text.strip()[1:-1]
        return found

    def test_other_names(self):
        script = expected.LISTED.texts("gravlex-script")
        self.assertEqual(self.offers("/usr/bin/gravlex-script -"), script)
        self.assertEqual(self.offers("g -"), expected.LISTED.texts("gravlex"))

    def test_no_file_names_for_kinds(self):
        self.assertEqual(self.completed("gravlex --data fi"), "gravlex --data fi")

    def test_texts_only_in_lists(self):
        self.assertEqual(self.completed("gravlex --smser"), "gravlex --smserr")
        self.shell.press("gravlex --smser\t\t\t")
        self.shell.read_until(r"--smserrfill +\(Plot sM\(s\) standard deviations as filled area\)")
        self.completed("")

    def test_exclamation_mark(self):
        self.assertEqual(self.completed(r"gravlex --data all,\!sec"), r"gravlex --data all,\!sec")
        self.assertEqual(self.completed("gravlex --data all,!se"), r"gravlex --data all,\!sec")
        self.assertEqual(self.completed("gravlex --data 'all,!se"), "gravlex --data 'all,!sec'")


if __name__ == "__main__":
    unittest.main()
