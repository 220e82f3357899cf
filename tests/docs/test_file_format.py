# SPDX-License-Identifier: MIT
"""docs/file-format.md: its examples are read as it says, its labels are the program's."""
import re
import unittest

import program

TEXT = (program.ROOT / "docs/file-format.md").read_text()


def blocks(language):
    return re.findall(rf"^```{language}\n(.*?)^```$", TEXT, re.M | re.S)


class FileFormat(unittest.TestCase):
    def said(self, command, files):
        """What is printed about the reading of the file."""
        printed, _ = program.draw(self, command, files)
        said = re.search(r"(?s)table=1\n(.*?)\d+ Curve groups", printed)[1]
        return re.sub(" +$", "", said, flags=re.M)

    def test_examples(self):
        examples = re.findall(r"^`(layout\d\.out)`:\n\n```text\n(.*?)^```$", TEXT, re.M | re.S)
        answers = blocks("console")
        self.assertEqual(len(examples), 2)
        self.assertEqual(len(answers), 2)
        for (name, text), answer in zip(examples, answers):
            with self.subTest(name):
                self.assertEqual(self.said(f"gravlex --curves 1-1,2-1 {name}", {name: text}),
                                 answer)

    def test_windows_line_ends(self):
        for text, answer in zip(blocks("text"), blocks("console")):
            files = {"windows.out": text.replace("\n", "\r\n")}
            self.assertEqual(self.said("gravlex windows.out", files), answer)

    def test_writer(self):
        writer, = blocks("python")
        command, = re.findall(r"^    (gravlex .* mine\.out)$", TEXT, re.M)
        printed, sent = program.draw(self, f"python3 write.py && {command}", {"write.py": writer})
        self.assertEqual(printed.count("Number of data points: 3"), 2)
        self.assertEqual(sent.count("'-'"), 4)

    def test_labels(self):
        rows = re.findall(r"^\| `( .*?)\\\|` \| .*? \| (.*?) \|$", TEXT, re.M)
        documented = {label + "|": word.strip("`") for label, word in rows}
        labels = dict(re.findall(r'\{"([^"]+\|)", (P_GINT_\w+)\}',
                                 program.source("input/tables.cpp")))
        words = {flag: word for word, flag in
                 re.findall(r'\{"(\w+)", (P_GINT_\w+)\}', program.source("run/selection.cpp"))}
        words |= {"P_GINT_S": "(always read)", "P_GINT_R": "(none)"}
        self.assertEqual(len(labels), 17)
        self.assertEqual(documented, {label: words[flag] for label, flag in labels.items()})
        written = dict(re.findall(r'"(\w+)": "([^"]+\|)"', blocks("python")[0]))
        for word, label in written.items():
            self.assertIn(label, labels)
            self.assertIn(word, (documented[label], "s"))


if __name__ == "__main__":
    unittest.main()
