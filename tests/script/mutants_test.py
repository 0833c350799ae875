"""Which changes script/mutants --random makes in a source."""

import importlib.machinery
import importlib.util
import sys
import unittest
from pathlib import Path

SCRIPT = Path(__file__).parents[2] / "script" / "mutants"


def load_script():
    """The script as a module, without leaving compiled code beside it."""
    sys.dont_write_bytecode = True
    loader = importlib.machinery.SourceFileLoader("mutants", str(SCRIPT))
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader("mutants", loader))
    sys.modules["mutants"] = module
    loader.exec_module(module)
    return module


MUTANTS = load_script()


class ChangesTest(unittest.TestCase):
    def changed(self, source):
        """What becomes of the source by each change, as (kind, source) pairs."""
        return [(kind, source[:start] + instead + source[end:])
                for kind, start, end, instead in MUTANTS.changes_of(source)]

    def test_expressions(self):
        for source, expected in [
            ("a < b", [("comparison", "a <= b")]),
            ("a >= b", [("comparison", "a > b")]),
            ("a === b", [("comparison", "a !== b")]),
            ("f(7)", [("number", "f(8)")]),
            ("f(0.5)", [("number", "f(0.55)")]),
            ("x: true", [("truth", "x: false")]),
            ("if (!a)", [("negation", "if (a)")]),
        ]:
            with self.subTest(source):
                self.assertEqual(self.changed(source), expected)

    def test_what_is_left_alone(self):
        for source in ["// a < 1", "/* !a\n 2 */", 'f("1 < 2")', "f('3')", "`4`", "#if X > 5",
                       "template <int> f", "bool operator< (a)", "QList<int> a", "a->b", "x1", "0x1F",
                       "10'000", "a << b"]:
            with self.subTest(source):
                self.assertEqual(self.changed(source), [])

    def test_statements(self):
        self.assertEqual(self.changed("{\n    a();\n    b = c;\n}\n"), [
            ("statement", "{\n    {}\n    b = c;\n}\n"),
            ("statement", "{\n    a();\n    {}\n}\n"),
            ("order", "{\n    b = c;\n    a();\n}\n"),
        ])
        # The only statement of a condition, and one at another depth.
        self.assertEqual(self.changed("if (a)\n    b();\nc();\n"), [])
        self.assertEqual(self.changed("    a();\n        b();\n"), [
            ("statement", "    {}\n        b();\n"), ("statement", "    a();\n        {}\n")])

    def test_what_is_no_whole_statement(self):
        for source in ["    return f();", "    int a = f();", "    f(a,\n      b);", "    // f();",
                       "    const auto a = f();", "    using A = f();", "    break;",
                       "    R\"(\n    f();\n)\";"]:
            with self.subTest(source):
                self.assertEqual([kind for kind, _ in self.changed(source) if kind != "number"], [])

    def test_same_seed_same_changes(self):
        MUTANTS.tests_of = lambda folder: folder
        chosen = [[mutant for mutant, _ in zip(MUTANTS.random_mutants(seed, ["state"]), range(20))]
                  for seed in (1, 1, 2)]
        self.assertEqual(chosen[0], chosen[1])
        self.assertNotEqual(chosen[0], chosen[2])
        for mutant in chosen[0]:
            self.assertIsNone(mutant.complaint())
            self.assertNotEqual(mutant.text, mutant.instead)


if __name__ == "__main__":
    unittest.main()
