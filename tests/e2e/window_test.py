"""The window itself: its size and its limits, scale factors, the keyboard alone, a second launch."""

import os
import unittest
from pathlib import Path

from PIL import Image

from aulora_test_case import AuloraTestCase


def spaces_between_letters(picture):
    """The widths of what is empty between the columns that a dark word takes, in pixels."""
    background = max(picture.getcolors(), key=lambda entry: entry[0])[1]
    columns = [x for x in range(picture.width)
               if min(picture.getpixel((x, y)) for y in range(picture.height)) < background * 3 / 4]
    return [after - before - 1 for before, after in zip(columns, columns[1:])]


class WindowTest(AuloraTestCase):
    def test_opens_at_its_size_and_keeps_its_minimum(self):
        program = self.start()
        window = program.window
        self.assertEqual(self.desktop.size(window), (1120, 820))
        self.desktop.resize(window, 500, 400)
        program.wait_for(lambda: self.desktop.size(window) == (940, 700), "the smallest size")
        self.desktop.resize(window, 1500, 1100)
        program.wait_for(lambda: self.desktop.size(window) == (1500, 1100), "a larger size")

    def test_scale_factors(self):
        for factor in ("1", "1.5", "2"):
            with self.subTest(factor):
                program = self.start(QT_SCALE_FACTOR=factor)
                size = (round(1120 * float(factor)), round(820 * float(factor)))
                program.wait_for(lambda size=size: self.desktop.size(program.window) == size,
                                 f"the size {size}")
                button = tuple(round(length * float(factor)) for length in (212, 42))
                program.wait_for(lambda button=button: program.button("Nueva conversación")
                                 .rectangle[2:] == button, f"a button of {button}")
                program.ask("hola")
                self.assistant.next_request().answer("Buenas.\n")
                program.wait_for_messages("hola", "Buenas.")
                self.assertEqual(program.quit(), 0)

    def test_no_letter_is_lost_at_any_scale(self):
        path = Path(self.desktop.folder) / "letters.png"
        for factor in (1, 1.5, 2):
            with self.subTest(factor):
                program = self.start(QT_SCALE_FACTOR=str(factor))
                program.button("Configuración").press()

                def is_whole(word, program=program, factor=factor):
                    x, y, width, height = program.element("radio button", word).rectangle
                    left, top = program.element("frame", "Aulora IA").rectangle[:2]
                    program.picture(path)
                    word = Image.open(path).convert("L").crop(
                        (x - left, y - top, x - left + width, y - top + height))
                    spaces = spaces_between_letters(word)
                    return len(spaces) > 20 * factor and max(spaces) < 4 * factor

                for word in ("Compacto", "Grande"):
                    program.wait_for(lambda word=word, is_whole=is_whole: is_whole(word),
                                     f"every letter of {word}")
                self.assertEqual(program.quit(), 0)

    def tab_to(self, program, role, name):
        """Presses Tab until an element has the keyboard; those that had it on the way."""
        passed = []
        for _ in range(60):
            focused = program.focused()
            if focused:
                passed.append((focused.role, focused.name))
                if passed[-1] == (role, name):
                    return passed
            self.desktop.press("Tab")
        raise AssertionError(f"Tab does not lead to the {role} {name!r} but to {passed}")

    def test_keyboard_alone_from_start_to_answer(self):
        program = self.start()
        program.wait_for(program.conversations, "the window's content")
        self.tab_to(program, "text", "Mensaje")
        self.desktop.type("solo con teclas")
        self.desktop.press("Return")
        self.assistant.next_request().answer("Se puede.\n")
        program.wait_for_messages("solo con teclas", "Se puede.")

        self.tab_to(program, "button", "Nueva conversación")
        self.desktop.press("space")
        program.wait_for_conversations(("Nueva conversación", "0 mensajes", True),
                                       ("solo con teclas", "2 mensajes", False))
        self.tab_to(program, "button", "Configuración")
        self.desktop.press("Return")
        program.button("Cerrar configuración")
        self.desktop.press("Escape")
        program.wait_for(lambda: program.button("Configuración").has("focused"),
                         "the keyboard to be given back")

        self.tab_to(program, "button", "Borrar historial")
        self.desktop.press("space")
        program.wait_for(lambda: program.button("Cancelar").has("focused"), "the safe answer")
        self.tab_to(program, "button", "Borrar historial")
        self.desktop.press("Return")
        program.wait_for_conversations(("Nueva conversación", "0 mensajes", True))

    def test_tab_goes_round_through_everything(self):
        program = self.start()
        program.write("algo que enviar")
        wanted = {(element.role, element.name) for element in program.elements("button")}
        passed = []
        for _ in range(3 * len(wanted)):
            self.desktop.press("Tab")
            focused = program.focused()
            if focused:
                passed.append((focused.role, focused.name))
        self.assertEqual(wanted - set(passed), set())
        self.assertIn(("text", "Mensaje"), passed)

    def test_keys_that_end_the_program(self):
        for keys, behind_a_sheet in (("ctrl+w", False), ("ctrl+q", False), ("ctrl+q", True)):
            with self.subTest(f"{keys}, sheet: {behind_a_sheet}"):
                program = self.start()
                program.ask("hola")
                self.assistant.next_request().answer("Buenas.\n")
                program.wait_for_messages("hola", "Buenas.")
                if behind_a_sheet:
                    program.button("Configuración").press()
                    program.button("Cerrar configuración")
                self.desktop.press(keys)
                self.assertEqual(program.wait(), 0)
                texts = [message["text"] for message in program.history()[0]["messages"]]
                self.assertEqual(texts, ["hola", "Buenas."])

    def test_second_launch_raises_the_first_window(self):
        program = self.start()
        self.desktop.minimize(program.window)
        program.wait_for(lambda: not self.desktop.windows("Aulora IA"), "the window to be hidden")
        self.assertEqual(program.launch().wait(20), 0)
        program.wait_for(lambda: self.desktop.windows("Aulora IA"), "the window to come back")
        self.assertEqual(len(self.desktop.windows("Aulora IA")), 1)
        self.assertIsNone(program.process.poll())

    def test_damaged_store_is_kept_and_the_program_starts(self):
        program = self.start()
        self.assertEqual(program.quit(), 0)
        store = program.home / ".local/share/aulora-ia/preferences.sqlite"
        store.write_bytes(b"this is no database at all, not even a short one" * 100)
        again = self.start(program.home, quiet=False)
        again.wait_for_conversations(("Nueva conversación", "0 mensajes", True))
        kept = list(store.parent.glob("preferences.sqlite.corrupt-*"))
        self.assertEqual(len(kept), 1)
        self.assertTrue(kept[0].read_bytes().startswith(b"this is no database"))
        self.assertRegex(again.output, r"\AError cargando historial: [^\n]+\n\Z")

    def test_fifo_or_folder_in_place_of_the_store_is_said_and_left_alone(self):
        for make in (os.mkfifo, os.mkdir):
            program = self.start()
            self.assertEqual(program.quit(), 0)
            store = program.home / ".local/share/aulora-ia/preferences.sqlite"
            store.unlink()
            make(store)
            again = self.start(program.home, quiet=False)
            again.wait_for_conversations(("Nueva conversación", "0 mensajes", True))
            again.wait_for(lambda: "Error guardando" in again.output, "the failed save to be said")
            self.assertRegex(again.output, r"\AError cargando historial: [^\n]+\n"
                                           r"Error guardando historial: [^\n]+\n\Z")
            self.assertEqual(again.quit(), 0)
            self.assertFalse(store.is_file())


if __name__ == "__main__":
    unittest.main()
