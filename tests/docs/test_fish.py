# SPDX-License-Identifier: MIT
"""The completion of fish, as its own "complete -C" answers."""
import subprocess
import unittest

import expected

# fish finds the file by the name of a program that there is.
COMPLETE = """
set fish_complete_path $argv[1]
function (string split -f 1 " " $argv[2]); end
complete -C $argv[2]
"""


class Fish(expected.Completion):
    def answers(self, line):
        """The words that can take the place of the last word, whole, with their texts."""
        run = subprocess.run(
            ["fish", "--no-config", "-c", COMPLETE, f"{expected.MADE.name}/fish", line],
            cwd=self.folder.name, capture_output=True, text=True, check=True)
        self.assertEqual(run.stderr, "")
        answers = [answer.partition("\t") for answer in run.stdout.splitlines()]
        # Since version 4 fish names the words that only contain what was typed as well, but does
        # not offer them as long as others begin with it.
        typed = line.rpartition(" ")[2]
        best = [answer for answer in answers if answer[0].startswith(typed)]
        return {word: text for word, _, text in best or answers}

    def offers(self, line):
        """The same without what stands before the part of the word that is being typed."""
        return {word.rpartition("=")[2].rpartition(",")[2]: text
                for word, text in self.answers(line).items()}

    def completed(self, line):
        """The line with the only answer in place of the last word, else the line as it is."""
        answers = list(self.answers(line))
        if len(answers) != 1:
            return line
        word = answers[0].replace(" ", r"\ ")
        return line[:line.rindex(" ") + 1] + word + ("" if word.endswith("/") else " ")


if __name__ == "__main__":
    unittest.main()
