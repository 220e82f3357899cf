# SPDX-License-Identifier: MIT
"""The completion of zsh: what it lists on the screen, and what pressing tab does."""
import re
import shlex
import unittest

import expected

# Control-n does as control-g does, after the list. That must be one key: zsh lists nothing while
# others wait.
SETUP = r"""
PS1='ready> ' PROMPT_EOL_MARK='' LISTMAX=1000
fpath=({completions} $fpath)
autoload -U compinit
compinit -D -u
setopt no_beep no_list_packed
zstyle ':completion:*' list-separator '##'
zstyle ':completion:*' list-grouped no
zstyle ':completion:*' menu no
show_line() {{ zle -cR ''; zle -I; print -r -- "<$BUFFER>"; BUFFER='' }}
zle -N show_line
bindkey -e
bindkey '^G' show_line
list_all() {{ zle list-choices; zle -R; show_line }}
zle -N list_all
bindkey '^N' list_all
unset zle_bracketed_paste
"""


class Zsh(expected.OnTerminal):
    command = ["zsh", "-f", "-i"]
    setup = SETUP.format(completions=shlex.quote(f"{expected.MADE.name}/zsh"))

    def offers(self, line):
        self.shell.press(f"{line}\x0e")
        screen = self.shell.read_until(r"(?s)(.*)\n<.*>\n")[1]
        return dict(re.findall(r"^(\S+) +## (.*?) *$", screen, re.M))

    def test_nothing_else(self):
        self.assertEqual(self.offers("gravlex --help --gr"), {})
        self.assertEqual(self.offers("gravlex --dread sms -d"), {})


if __name__ == "__main__":
    unittest.main()
