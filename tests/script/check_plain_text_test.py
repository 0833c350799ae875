"""What script/check-plain-text lets pass and what it rejects."""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

CHECK = Path(__file__).parents[2] / "script" / "check-plain-text"


class CheckPlainTextTest(unittest.TestCase):
    def check(self, **files):
        """Runs the check over files given by name; its exit status and what it printed."""
        with tempfile.TemporaryDirectory() as folder:
            for name, source in files.items():
                Path(folder, f"{name}.qml").write_text(source, encoding="utf-8")
            run = subprocess.run([sys.executable, CHECK, folder], capture_output=True, text=True)
            return run.returncode, run.stdout.replace(folder + "/", "")

    def test_passes(self):
        for source in [
            "Item {}",
            "Text { text: title; textFormat: Text.PlainText }",
            "TextEdit {\n    textFormat: TextEdit.PlainText\n    Item { width: 1 }\n}",
            "T.Label { Behavior on color { X {} } textFormat: Text.PlainText }",
            "Item { // Text { }\n /* Label { } */ property string s: \"TextArea { }\" }",
            "TextMetrics {}",
        ]:
            with self.subTest(source):
                self.assertEqual(self.check(A=source)[0], 0)

    def test_rejects(self):
        for source, line in [
            ("Text {}", "A.qml:1: Text does not state textFormat: Text.PlainText\n"),
            ("Item {\n    Label { text: title }\n}",
             "A.qml:2: Label does not state textFormat: Text.PlainText\n"),
            ("T.TextArea {}", "A.qml:1: T.TextArea does not state textFormat: Text.PlainText\n"),
            # The inner item's format is not the outer one's.
            ("Text { TextEdit { textFormat: TextEdit.PlainText } }",
             "A.qml:1: Text does not state textFormat: Text.PlainText\n"),
            ("Text { Item {} // textFormat: Text.PlainText\n}",
             "A.qml:1: Text does not state textFormat: Text.PlainText\n"),
            ("TextEdit { textFormat: TextEdit.AutoText }",
             "A.qml:1: the text format is TextEdit.AutoText\n"),
            ("Caption { textFormat: Text.RichText }", "A.qml:1: the text format is Text.RichText\n"),
        ]:
            with self.subTest(source):
                self.assertEqual(self.check(A=source), (1, line))

    def test_component_of_our_own_is_checked_once(self):
        plain = "Text { textFormat: Text.PlainText }"
        self.assertEqual(self.check(Label=plain, A="Label { text: title }")[0], 0)
        self.assertEqual(self.check(Label="Text {}", A="Label { text: title }")[0], 1)


if __name__ == "__main__":
    unittest.main()
