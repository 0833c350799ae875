"""Which programs script/check-hardening lets pass and which it rejects."""

import subprocess
import tempfile
import unittest
from pathlib import Path

CHECK = Path(__file__).parents[2] / "script" / "check-hardening"
# One buffer that is guarded and filled by a function that is checked.
SOURCE = """
#include <string.h>
int main(int count, char **arguments)
{
    char text[16];
    strcpy(text, arguments[0]);
    return strlen(text) + count;
}
"""
HARDENED = ["-O2", "-fPIE", "-pie", "-fstack-protector-strong", "-U_FORTIFY_SOURCE",
            "-D_FORTIFY_SOURCE=2", "-Wl,-z,relro,-z,now"]


class CheckHardeningTest(unittest.TestCase):
    def check(self, *flags):
        """Builds the program and runs the check; its exit status and what it printed."""
        with tempfile.TemporaryDirectory() as folder:
            subprocess.run(["cc", "-w", "-x", "c", "-", "-o", Path(folder, "program"), *flags],
                           input=SOURCE, text=True, check=True)
            run = subprocess.run([CHECK, folder], capture_output=True, text=True)
            return run.returncode, run.stdout

    def test_passes(self):
        status, table = self.check(*HARDENED)
        self.assertEqual(status, 0, table)
        self.assertRegex(table, r"\nprogram +yes +yes +yes +none +yes +yes\n")

    def test_rejects(self):
        for weakness, column in [
            ("-no-pie", 1), ("-Wl,-z,lazy", 2), ("-Wl,-z,norelro", 2), ("-Wl,-z,execstack", 3),
            ("-Wl,-rpath,/tmp", 4), ("-fno-stack-protector", 5), ("-U_FORTIFY_SOURCE", 6),
        ]:
            with self.subTest(weakness):
                status, table = self.check(*HARDENED, weakness)
                self.assertEqual(status, 1, table)
                row = table.splitlines()[1].split()
                self.assertEqual([i for i, cell in enumerate(row) if cell == "MISSING"], [column])

    def test_nothing_to_check(self):
        with tempfile.TemporaryDirectory() as folder:
            run = subprocess.run([CHECK, folder], capture_output=True, text=True)
            self.assertEqual((run.returncode, run.stderr), (1, f"There is no program in {folder}\n"))


if __name__ == "__main__":
    unittest.main()
