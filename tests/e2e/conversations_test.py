"""The list of conversations: titles, counts, order, reuse, selection and clearing."""

import unittest

from aulora_test_case import AuloraTestCase

NEW = "Nueva conversación"


class ConversationsTest(AuloraTestCase):
    def ask_and_wait(self, program, text):
        program.ask(text)
        self.assistant.next_request().answer("Bien.\n")
        program.wait_for_status("En línea")

    def test_titles(self):
        program = self.start()
        family = "👨‍👩‍👧‍👦"
        accented = "e\u0301"
        for text, title in [
            ("a" * 34, "a" * 34),
            ("b" * 35, "b" * 34 + "…"),
            (family * 34, family * 34),
            (family * 35, family * 34 + "…"),
            (accented * 34, accented * 34),
            (accented * 35, accented * 34 + "…"),
        ]:
            with self.subTest(title):
                program.button(NEW).press()
                program.wait_for(lambda: program.conversations()[0][0] == NEW,
                                 "the new conversation")
                program.write_pasted(text)
                self.desktop.press("Return")
                self.assistant.next_request().answer("Bien.\n")
                program.wait_for_status("En línea")
                program.wait_for(lambda title=title: program.conversations()[0]
                                 == (title, "2 mensajes", True), f"the title {title}")

    def test_title_is_set_once(self):
        program = self.start()
        self.ask_and_wait(program, "primera pregunta")
        self.ask_and_wait(program, "segunda pregunta")
        program.wait_for_conversations(("primera pregunta", "4 mensajes", True))

    def test_new_conversation_is_reused_and_newest_comes_first(self):
        program = self.start()
        self.ask_and_wait(program, "uno")
        for _ in range(2):
            program.button(NEW).press()
            program.wait_for_conversations((NEW, "0 mensajes", True), ("uno", "2 mensajes", False))
        program.element("list item", "uno").press()
        program.wait_for_conversations((NEW, "0 mensajes", False), ("uno", "2 mensajes", True))
        program.button(NEW).press()
        program.wait_for_conversations((NEW, "0 mensajes", True), ("uno", "2 mensajes", False))
        self.ask_and_wait(program, "dos")
        program.wait_for_conversations(("dos", "2 mensajes", True), ("uno", "2 mensajes", False))

        program.element("list item", "uno").press()
        program.wait_for_messages("uno", "Bien.")
        self.assertEqual(program.quit(), 0)
        again = self.start(program.home)
        again.wait_for_conversations(("dos", "2 mensajes", True), ("uno", "2 mensajes", False))
        again.wait_for_messages("dos", "Bien.")

    def test_selecting_discards_what_was_typed(self):
        program = self.start()
        self.ask_and_wait(program, "uno")
        program.write("a medias")
        program.element("list item", "uno").press()
        program.wait_for_composer("")

    def test_clearing(self):
        program = self.start()
        self.ask_and_wait(program, "secreto médico")
        program.button("Borrar historial").press()
        program.confirm("¿Borrar historial?", "Cancelar")
        program.wait_for_conversations(("secreto médico", "2 mensajes", True))

        for key in ("Escape", "Return"):
            program.button("Borrar historial").press()
            program.wait_for(lambda: program.button("Cancelar").has("focused"), "the safe answer")
            self.desktop.press(key)
            program.wait_for(lambda: not program.elements("dialog"), "the alert to go")
            program.wait_for_conversations(("secreto médico", "2 mensajes", True))

        program.button("Borrar historial").press()
        program.confirm("¿Borrar historial?", "Borrar historial")
        program.wait_for_conversations((NEW, "0 mensajes", True))
        self.assertEqual(program.quit(), 0)
        (only,) = program.history()
        self.assertEqual((only["title"], only["messages"]), (NEW, []))
        for file in (program.home / ".local/share/aulora-ia").iterdir():
            if file.is_file():
                self.assertNotIn("secreto".encode(), file.read_bytes(), file.name)

    def test_identifier_survives_clearing(self):
        program = self.start()
        program.ask("uno")
        first = self.assistant.next_request()
        first.answer("Bien.\n")
        program.wait_for_status("En línea")
        program.button("Borrar historial").press()
        program.confirm("¿Borrar historial?", "Borrar historial")
        program.wait_for_conversations((NEW, "0 mensajes", True))
        program.ask("dos")
        self.assertEqual(self.assistant.next_request().json["userId"], first.json["userId"])


if __name__ == "__main__":
    unittest.main()
