"""Which hosts script/package refuses, and that what it packages tells one version everywhere."""

import re
import subprocess
import unittest
from pathlib import Path

ROOT = Path(__file__).parents[2]
PACKAGE = ROOT / "script" / "package"


class PackageTest(unittest.TestCase):
    def test_refused_hosts(self):
        for arguments in [
            [], [""], [" "], ["a b"], ["a.test\nb.test"], ["a.test", "b.test"],
            ["https://a.test"], ["a.test/api"], ["certificate/localhost.pem"], ["a@b.test"],
            ["a..test"], ["-a.test"], ["a-.test"], [".test"], ["a.test."], ["año.test"],
            ["a.test:"], ["a.test:0"], ["a.test:65536"], ["a.test:443000"], ["a.test:x"],
            ["a.test:1:2"], ["[::1]:8443"], ["::1"],
            ["localhost"], ["LocalHost:8443"], ["a.localhost"], ["localhost.localdomain"],
            ["127.0.0.1"], ["127.1:8443"], ["0.0.0.0"], ["ip6-localhost"],
        ]:
            with self.subTest(arguments):
                run = subprocess.run([PACKAGE, *arguments], capture_output=True, text=True)
                self.assertEqual(run.returncode, 2)
                self.assertRegex(run.stderr, r"\Ascript/package: [^\n]+\n\Z")
                self.assertEqual(run.stdout, "")


class VersionTest(unittest.TestCase):
    def found(self, pattern, *path):
        """What the pattern's groups hold where it first fits in a file."""
        return re.search(pattern, ROOT.joinpath(*path).read_text(encoding="utf-8")).groups()

    def test_one_version_everywhere(self):
        version, date = self.found(r"## \[(\d[^\]]*)\] - (\S+)", "CHANGELOG.md")
        self.assertEqual(self.found(r"project\(\S+ VERSION (\S+)", "CMakeLists.txt"), (version,))
        self.assertEqual(self.found(r'<release version="([^"]+)" date="([^"]+)"', "packaging",
                                    "ar.aulora.AuloraIA.metainfo.xml"), (version, date))
        self.assertEqual(self.found(r"\Aaulora-ia \(([^)]+)\)", "packaging", "debian", "changelog"),
                         (version,))


if __name__ == "__main__":
    unittest.main()
