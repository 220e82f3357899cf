# SPDX-License-Identifier: MIT
"""The completion of bash: what its function offers, and what pressing tab does."""
import re
import shlex
import subprocess
import unittest

import expected
import program

FILE = program.ROOT / "completions/gravlex.bash"

# Calls the function as bash does when tab is pressed for the second time.
CALL = r"""
source "$1"
shift
compopt() { :; }
COLUMNS=200 COMP_TYPE=63 COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
_gravlex gravlex
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
    words = re.findall(r"""=|(?:'[^']*|[^\s=])+""", line)
    return words + [""] if line.endswith(" ") else words


class Bash(expected.OnTerminal):
    command = ["bash", "--norc", "--noprofile", "-i"]
    setup = f"source {shlex.quote(str(FILE))}{SETUP}"

    def offers(self, line):
        run = subprocess.run(["bash", "-c", CALL, "bash", FILE, *split(line)],
                             capture_output=True, text=True, check=True)
        self.assertEqual(run.stderr, "")
        found = {}
        for reply in run.stdout.splitlines():
            word, _, text = reply.partition(" ")
            found[re.sub(r".*,", "", word).replace("\\", "")] = text.strip()[1:-1]
        return found

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
