"""What the tests of the real window share: one desktop for each file of tests, and for each test a
program with its own home folder and an assistant that the test plays."""

import os
import unittest
from pathlib import Path

from desktop import Desktop

DESKTOP = Desktop()

from aulora_driver import Program  # noqa: E402  (its bus has to be there first)
from recording_server import RecordingServer  # noqa: E402

unittest.addModuleCleanup(DESKTOP.close)


class AuloraTestCase(unittest.TestCase):
    """Reads from the environment what to run and where that program finds its assistant."""

    executable = os.environ["AULORA_PROGRAM"]
    host = os.environ["AULORA_SERVICE_HOST"]
    certificate = os.environ["AULORA_CERTIFICATE"]
    key = os.environ["AULORA_KEY"]
    pictures = Path(os.environ["AULORA_PICTURES"])

    def run(self, result=None):
        self._result = result
        return super().run(result)

    def setUp(self):
        self.desktop = DESKTOP
        self.port = int(self.host.rpartition(":")[2])
        self.assistant = RecordingServer(self.port, self.certificate, self.key)
        self.addCleanup(self.assistant.close)

    def start(self, home=None, quiet=True, **environment):
        """Starts the program and waits for its window. It is closed with the test at the latest,
        whatever it is at, and has to end well. Unless it is not expected to be quiet, it may not
        have printed anything by then."""
        program = Program(self.desktop, self.executable, home, environment)
        self.addCleanup(self._end, program, quiet)
        program.window
        return program

    def _has_failed(self):
        return any(getattr(test, "test_case", test) is self
                   for test, _ in self._result.failures + self._result.errors)

    def _end(self, program, quiet):
        if program.process.poll() is None and self._has_failed():
            program.picture(self.pictures / f"{self.id()}.png")
            program.kill()
        if program.process.poll() is None:
            self.addCleanup(program.kill)
            self.assertEqual(program.quit(), 0)
        if quiet:
            self.assertEqual(program.output, "")
