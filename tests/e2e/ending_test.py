"""How the program ends: closed, told to, or without a display, also in the middle of a reply; and
what keeps a second one from starting."""

import os
import signal
import subprocess
import time
import unittest

from aulora_driver import Program
from aulora_test_case import AuloraTestCase
from desktop import wait_until

LOCK = ".local/share/aulora-ia/instance.lock"


class EndingTest(AuloraTestCase):
    def growing_reply(self, program):
        """Asks, and has two lines of the reply on the screen."""
        program.ask("pregunta")
        request = self.assistant.next_request()
        request.begin()
        request.write("uno\ndos\n")
        program.wait_for_messages("pregunta", "uno\ndos")
        return request

    def texts(self, program):
        return [message["text"] for message in program.history()[0]["messages"]]

    def test_closing_the_window_keeps_the_lines_of_a_growing_reply(self):
        program = self.start()
        self.growing_reply(program)
        self.assertEqual(program.quit(), 0)
        self.assertEqual(self.texts(program), ["pregunta", "uno\ndos\n"])

    def test_closing_before_the_first_line_keeps_the_question_alone(self):
        program = self.start()
        program.ask("pregunta")
        self.assistant.next_request().begin()
        self.assertEqual(program.quit(), 0)
        self.assertEqual(self.texts(program), ["pregunta"])

    def test_signals_end_it_like_closing_the_window(self):
        for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            with self.subTest(number.name):
                program = self.start()
                self.growing_reply(program)
                program.process.send_signal(number)
                self.assertEqual(program.wait(), 0)
                self.assertEqual(self.texts(program), ["pregunta", "uno\ndos\n"])

    def test_a_signal_at_any_moment_of_the_start_ends_it(self):
        for delay in (0.02, 0.05, 0.1, 0.2, 0.4):
            with self.subTest(delay):
                program = Program(self.desktop, self.executable)
                self.addCleanup(program.kill)
                time.sleep(delay)
                program.process.send_signal(signal.SIGTERM)
                # Not by the limit of five seconds. The system itself ends it before main() begins.
                self.assertIn(program.wait(4.5), (0, -signal.SIGTERM))
                self.assertEqual(program.output, "")

    def test_loss_of_the_display_keeps_the_lines_of_a_growing_reply(self):
        program = self.start(quiet=False)
        self.growing_reply(program)
        subprocess.run(["xkill", "-id", program.window], check=True, stdout=subprocess.DEVNULL,
                       env=self.desktop.environment)
        self.assertEqual(program.wait(), 1)
        self.assertEqual(self.texts(program), ["pregunta", "uno\ndos\n"])

    def test_a_disk_that_does_not_answer_holds_it_for_five_seconds(self):
        for name, end in (("closed", Program.quit), ("told to", self.terminate)):
            with self.subTest(name):
                program = self.start(quiet=False, LD_PRELOAD=os.environ["AULORA_DEAD_MOUNT"])
                (program.home / "dead-disk").touch()
                program.ask("pregunta")
                self.assistant.next_request().begin()
                begin = time.monotonic()
                self.assertEqual(end(program), 1)
                self.assertGreaterEqual(time.monotonic() - begin, 5)
                self.assertEqual(program.output,
                                 "Error guardando historial: el disco no respondió a tiempo.\n")

    def terminate(self, program):
        program.process.send_signal(signal.SIGTERM)
        return program.wait()

    def test_a_leftover_lock_keeps_nobody_out(self):
        for contents in (b"", b"1\naulora-ia\nanother-computer\n", b"\xff" * 5000):
            with self.subTest(contents[:20]):
                first = self.start()
                self.assertEqual(first.quit(), 0)
                (first.home / LOCK).write_bytes(contents)
                again = self.start(first.home)
                self.assertEqual(again.quit(), 0)

    def test_stopped_program_is_told_of_and_stays_the_only_one(self):
        program = self.start()
        program.process.send_signal(signal.SIGSTOP)
        self.addCleanup(program.process.send_signal, signal.SIGCONT)
        begin = time.monotonic()
        self.assertEqual(program.launch().wait(20), 1)
        self.assertGreaterEqual(time.monotonic() - begin, 2)
        self.assertEqual(program.output, "Aulora IA ya está en marcha y no responde.\n")
        program.process.send_signal(signal.SIGCONT)
        self.assertEqual(program.launch().wait(20), 0)
        # What the second one said is not the first one's.
        program.forget_output()

    def test_started_again_while_it_ends(self):
        program = self.start()
        program.process.send_signal(signal.SIGTERM)
        again = Program(self.desktop, self.executable, program.home)
        self.addCleanup(again.kill)
        self.assertEqual(program.wait(), 0)
        self.assertTrue(wait_until(lambda: self.desktop.windows("Aulora IA")
                                   or again.process.poll() is not None, "the second window"))
        self.assertIsNone(again.process.poll())


if __name__ == "__main__":
    unittest.main()
