"""Typing a question and sending it: keys, blanks, lines, and what an exchange allows meanwhile."""

import unittest

from aulora_test_case import AuloraTestCase


class ComposerTest(AuloraTestCase):
    def test_every_way_to_send(self):
        program = self.start()
        ways = {"Return": lambda: self.desktop.press("Return"),
                "keypad Enter": lambda: self.desktop.press("KP_Enter"),
                "button pressed": lambda: program.button("Enviar").press(),
                "button clicked": lambda: program.button("Enviar").click()}
        for way, send in ways.items():
            with self.subTest(way):
                program.write(f"por {way}")
                send()
                request = self.assistant.next_request()
                self.assertEqual(request.json["message"], f"por {way}")
                program.wait_for_composer("")
                request.answer("Sí.\n")
                program.wait_for_status("En línea")

    def test_shift_and_alt_return_make_lines(self):
        program = self.start()
        program.write("uno")
        self.desktop.press("shift+Return")
        self.desktop.type("dos")
        self.desktop.press("alt+Return")
        self.desktop.type("tres")
        program.wait_for_composer("uno\ndos\ntres")
        self.desktop.press("Return")
        self.assertEqual(self.assistant.next_request().json["message"], "uno\ndos\ntres")
        program.wait_for(lambda: program.conversations()[0][0] == "uno dos tres",
                         "the title on one line")

    def test_blanks_are_trimmed_and_alone_are_not_sent(self):
        program = self.start()
        program.button("Enviar").press()
        program.write("   ")
        self.desktop.press("shift+Return", "Return")
        program.button("Enviar").press()
        program.wait_for_composer("   \n")
        self.desktop.type(" hola  ")
        program.wait_for_composer("   \n hola  ")
        self.desktop.press("Return")
        self.assertEqual(self.assistant.next_request().json["message"], "hola")
        program.wait_for_messages("hola")
        self.assertEqual(len(self.assistant.seen), 1)

    def test_while_a_reply_streams_one_types_but_cannot_send(self):
        program = self.start()
        program.ask("uno")
        request = self.assistant.next_request()
        program.wait_for_status("Procesando")
        program.write("dos")
        self.desktop.press("Return")
        program.button("Enviar").press()
        request.answer("Listo.\n")
        program.wait_for_status("En línea")
        program.wait_for_messages("uno", "Listo.")
        self.assertEqual(program.composer.text, "dos")
        self.assertEqual(len(self.assistant.seen), 1)
        self.desktop.press("Return")
        self.assertEqual(self.assistant.next_request().json["message"], "dos")

    def test_grows_to_five_lines_and_then_scrolls(self):
        program = self.start()
        program.write("1")
        x, y, _, line_height = program.composer.rectangle
        bottom = y + line_height
        for count in range(1, 8):
            if count > 1:
                self.desktop.press("shift+Return")
                self.desktop.type(str(count))
            program.wait_for_composer("\n".join(str(number + 1) for number in range(count)))
            # The last line stays where the first one was, and no more than five are seen.
            self.wait_for_top(program, bottom - count * line_height)
            self.desktop.press("ctrl+Home")
            self.wait_for_top(program, bottom - min(count, 5) * line_height)
            self.desktop.press("ctrl+End")

    def wait_for_top(self, program, y):
        """Waits until the composer's text begins there, give or take the fractions of lines."""
        program.wait_for(lambda: abs(program.composer.rectangle[1] - y) <= 4,
                         f"the text to begin at {y}")

    def test_undo(self):
        program = self.start()
        program.write("borrador")
        self.desktop.press("ctrl+a", "BackSpace")
        program.wait_for_composer("")
        self.desktop.press("ctrl+z")
        program.wait_for_composer("borrador")

    def test_dead_keys_compose_and_do_not_send(self):
        program = self.start()
        program.write("gen")
        self.desktop.press("dead_acute", "e", "dead_tilde", "n", "Multi_key", "apostrophe", "o")
        program.wait_for_composer("genéñó")

    def test_input_method_composes_and_does_not_send(self):
        method = self.desktop.start_input_method()
        self.addCleanup(method.terminate)
        program = self.start(QT_IM_MODULE="ibus", IBUS_USE_PORTAL="1")
        program.write("de ")
        # "n" begins a word, Return ends it, and the next Return is the program's.
        self.desktop.press("n", "i", "Return")
        program.wait_for_composer("de 日")
        self.assertEqual(self.assistant.seen, [])
        self.desktop.press("Return")
        self.assertEqual(self.assistant.next_request().json["message"], "de 日")


if __name__ == "__main__":
    unittest.main()
