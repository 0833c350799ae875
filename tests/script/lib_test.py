"""That a copy of the checkout builds, whatever build came along with it."""

import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).parents[2]


class BuildTest(unittest.TestCase):
    def setUp(self):
        self.folder = Path(tempfile.mkdtemp()).resolve()
        self.addCleanup(shutil.rmtree, self.folder)

    def build(self, checkout):
        """What is in a build folder with a cache once a script of this checkout has built: asked of
        cmake, of which only the call is seen."""
        tools = self.folder / "tools"
        tools.mkdir(exist_ok=True)
        (tools / "cmake").write_text('#!/bin/sh\necho "$@" >> "$CALLS"\n')
        (tools / "cmake").chmod(0o755)
        script = checkout / "script" / "make"
        script.write_text('#!/bin/sh\n. "$(dirname "$0")/lib"\nbuild dev program\n')
        calls = self.folder / "calls"
        calls.write_text("")
        subprocess.run(["sh", script], check=True,
                       env={"PATH": f"{tools}:/usr/bin:/bin", "CALLS": str(calls)})
        self.assertEqual(calls.read_text(), "--preset dev\n--build --preset dev --target program\n")
        return sorted(path.name for path in (checkout / "build").glob("dev/*"))

    def checkout(self, name, made_in):
        checkout = self.folder / name
        (checkout / "script").mkdir(parents=True)
        (checkout / "build" / "dev").mkdir(parents=True)
        shutil.copy(ROOT / "script" / "lib", checkout / "script")
        cache = f"CMAKE_BUILD_TYPE:STRING=Debug\nCMAKE_HOME_DIRECTORY:INTERNAL={made_in}\n"
        (checkout / "build" / "dev" / "CMakeCache.txt").write_text(cache)
        (checkout / "build" / "dev" / "program.o").touch()
        return checkout

    def test_build_of_this_checkout_is_kept(self):
        checkout = self.checkout("here", made_in=self.folder / "here")
        self.assertEqual(self.build(checkout), ["CMakeCache.txt", "program.o"])

    def test_build_of_another_checkout_is_forgotten(self):
        for made_in in (self.folder / "there", self.folder / "here too"):
            with self.subTest(made_in):
                checkout = self.checkout(f"copy of {made_in.name}", made_in)
                self.assertEqual(self.build(checkout), [])


if __name__ == "__main__":
    unittest.main()
