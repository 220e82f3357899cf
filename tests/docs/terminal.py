# SPDX-License-Identifier: MIT
"""A shell on a terminal of its own, to press keys in."""
import fcntl
import os
import pty
import re
import select
import shutil
import signal
import struct
import termios
import time

ESCAPES = re.compile(r"\x1b(?:\[[0-9;?>=]*[A-Za-z]|\][^\x07]*\x07|[=>()][0B]?)|[\r\x07]")
MOVES = re.compile(r"\x1b\[[0-9;]*[A-H]")  # of the cursor: what follows stands elsewhere
PATIENCE = 30.0  # seconds


def shown(text):
    return ESCAPES.sub("", MOVES.sub("\n", text))


class Shell:
    def __init__(self, command, folder, environment):
        assert shutil.which(command[0]), f"{command[0]} is not installed"
        self.pid, self.terminal = pty.fork()
        if self.pid == 0:
            os.chdir(folder)
            os.execvpe(command[0], command, os.environ | {"TERM": "xterm"} | environment)
        self.unread = ""
        # Wide enough for every line, high enough for every list.
        fcntl.ioctl(self.terminal, termios.TIOCSWINSZ, struct.pack("HHHH", 200, 300, 0, 0))

    def press(self, keys):
        os.write(self.terminal, keys.encode())

    def read_until(self, pattern):
        """The match of the pattern in what the shell writes; what follows it is left to read."""
        end = time.monotonic() + PATIENCE
        while time.monotonic() < end:
            text = shown(self.unread)
            match = re.search(pattern, text)
            if match:
                self.unread = text[match.end():]
                return match
            if select.select([self.terminal], [], [], 0.1)[0]:
                self.unread += os.read(self.terminal, 65536).decode(errors="replace")
        raise AssertionError(f"waited in vain for {pattern!r} in {shown(self.unread)!r}")

    def close(self):
        os.kill(self.pid, signal.SIGHUP)
        os.close(self.terminal)
        os.waitpid(self.pid, 0)
