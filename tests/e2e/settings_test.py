"""The settings sheet: each change is stored and shown at once."""

import unittest

from aulora_test_case import AuloraTestCase


class SettingsTest(AuloraTestCase):
    def open_settings(self, program):
        program.button("Configuración").press()
        program.button("Cerrar configuración")

    def preference(self, program, key):
        rows = program.store(
            f"select value from preferences where key = 'aulora.settings.{key}'")
        return rows[0][0] if rows else None

    def wait_for_preference(self, program, key, value):
        program.wait_for(lambda: self.preference(program, key) == value, f"{key} = {value!r}")

    def test_fresh_store_holds_no_setting(self):
        program = self.start()
        self.open_settings(program)
        self.assertTrue(program.element("radio button", "Sistema").has("checked"))
        self.assertTrue(program.element("radio button", "Normal").has("checked"))
        self.assertTrue(program.element("check box", "Análisis de imágenes").has("checked"))
        self.assertTrue(program.element("check box", "Mostrar miniaturas").has("checked"))
        self.assertEqual(program.store("select * from preferences where key like '%settings%'"), [])

    def test_each_choice_is_stored_at_once(self):
        program = self.start()
        self.open_settings(program)
        for key, choices in {
            "appearance": {"Oscuro": "dark", "Claro": "light", "Sistema": "system"},
            "textSize": {"Compacto": "compact", "Grande": "large", "Normal": "standard"},
        }.items():
            for label, value in choices.items():
                program.element("radio button", label).press()
                self.wait_for_preference(program, key, value)
                program.wait_for(
                    lambda label=label: program.element("radio button", label).has("checked"),
                    f"{label} to be checked")
        for key, label in {"imageAnalysis": "Análisis de imágenes",
                           "imagePreviews": "Mostrar miniaturas"}.items():
            for value in (0, 1):
                program.element("check box", label).press()
                self.wait_for_preference(program, key, value)
        program.button("Cerrar configuración").press()
        program.wait_for(lambda: not program.elements("button", "Cerrar configuración"),
                         "the sheet to close")

    def test_scheme_changes_while_the_sheet_is_open(self):
        program = self.start()
        self.open_settings(program)
        for label, is_dark in (("Oscuro", True), ("Claro", False)):
            program.element("radio button", label).press()
            program.wait_for(lambda is_dark=is_dark: self.is_dark(program) == is_dark,
                             f"the window to be {label}")

    def is_dark(self, program):
        return self.desktop.brightness(program.window) < 0.5

    def test_unknown_texts_select_nothing_and_a_press_repairs(self):
        program = self.start()
        program.ask("medida")
        self.assistant.next_request().answer("\n".join(["- una línea"] * 10))
        program.wait_for_status("En línea")
        program.wait_for(lambda: len(program.messages()) == 2, "the messages")
        height = program.elements("paragraph")[1].rectangle[3]
        self.assertFalse(self.is_dark(program))
        self.assertEqual(program.quit(), 0)
        program.write_store("aulora.settings.appearance", "sepia")
        program.write_store("aulora.settings.textSize", "LARGE")
        again = self.start(program.home)
        again.wait_for(lambda: len(again.messages()) == 2, "the messages")
        self.assertEqual(again.elements("paragraph")[1].rectangle[3], height)
        self.assertFalse(self.is_dark(again))
        self.open_settings(again)
        for label in ("Sistema", "Claro", "Oscuro", "Compacto", "Normal", "Grande"):
            self.assertFalse(again.element("radio button", label).has("checked"), label)
        again.element("radio button", "Claro").press()
        self.wait_for_preference(again, "appearance", "light")

    def test_settings_survive_a_restart(self):
        program = self.start()
        self.open_settings(program)
        program.element("radio button", "Grande").press()
        program.element("check box", "Mostrar miniaturas").press()
        self.wait_for_preference(program, "imagePreviews", 0)
        self.desktop.press("Escape")
        program.wait_for(lambda: not program.elements("button", "Cerrar configuración"),
                         "the sheet to close")
        self.assertEqual(program.quit(), 0)
        again = self.start(program.home)
        self.open_settings(again)
        self.assertTrue(again.element("radio button", "Grande").has("checked"))
        self.assertFalse(again.element("check box", "Mostrar miniaturas").has("checked"))

    def test_text_size_scales_the_replies(self):
        program = self.start()
        program.ask("medida")
        self.assistant.next_request().answer("\n".join(["- una línea"] * 10))
        program.wait_for_status("En línea")
        program.wait_for(lambda: len(program.messages()) == 2, "the messages")

        def height():
            return program.elements("paragraph")[1].rectangle[3]

        normal = height()
        self.open_settings(program)
        for label, is_shown in {"Compacto": lambda: height() < normal,
                                "Grande": lambda: height() > normal,
                                "Normal": lambda: height() == normal}.items():
            program.element("radio button", label).press()
            program.wait_for(is_shown, f"the reply to be {label}")

    def test_clearing_from_the_sheet(self):
        program = self.start()
        program.ask("uno")
        self.assistant.next_request().answer("Bien.\n")
        program.wait_for_status("En línea")
        self.open_settings(program)
        program.in_sheet("Borrar historial").press()
        program.confirm("¿Borrar historial?", "Cancelar")
        self.assertEqual(program.elements("button", "Cerrar configuración"), [])
        program.wait_for_conversations(("uno", "2 mensajes", True))
        self.open_settings(program)
        program.in_sheet("Borrar historial").press()
        program.confirm("¿Borrar historial?", "Borrar historial")
        program.wait_for_conversations(("Nueva conversación", "0 mensajes", True))


if __name__ == "__main__":
    unittest.main()
