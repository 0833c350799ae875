"""From the first start to a stored answer, and what the next starts make of it."""

import shutil
import unittest

from aulora_test_case import AuloraTestCase


class FirstRunTest(AuloraTestCase):
    def test_starts_with_one_empty_conversation(self):
        program = self.start()
        program.wait_for_conversations(("Nueva conversación", "0 mensajes", True))
        program.wait_for_composer("")
        program.wait_for_status("En línea")
        self.assertEqual(program.quit(), 0)
        # The installation has no identifier before the first question.
        self.assertEqual(program.store("select key from preferences"),
                         [("aulora.conversations.v3",)])

    def test_question_gets_its_streamed_answer(self):
        program = self.start()
        program.ask("¿Qué es la mitosis?")
        request = self.assistant.next_request()
        program.wait_for_status("Procesando")
        program.wait_for_messages("¿Qué es la mitosis?")

        request.begin()
        request.write("La división de una célula\n\n")
        program.wait_for_messages("¿Qué es la mitosis?", "La división de una célula")
        request.write("en dos células hijas.\n")
        program.wait_for_messages("¿Qué es la mitosis?",
                                  "La división de una célula\nen dos células hijas.")
        request.finish()
        program.wait_for_status("En línea")

        self.assertEqual((request.method, request.path), ("POST", "/api/chat"))
        self.assertEqual(request.headers["content-type"], "application/json")
        self.assertEqual(set(request.json), {"message", "userId"})
        self.assertEqual(request.json["message"], "¿Qué es la mitosis?")
        self.assertRegex(request.json["userId"],
                         r"^aulora-[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}$")
        self.assertEqual(len(self.assistant.seen), 1)

    def test_button_sends_too(self):
        program = self.start()
        program.write("hola")
        program.button("Enviar").press()
        self.assistant.next_request().answer("Buenas.\n")
        program.wait_for_messages("hola", "Buenas.")

    def test_restart_keeps_everything(self):
        program = self.start()
        program.ask("uno")
        request = self.assistant.next_request()
        request.answer("respuesta\n")
        program.wait_for_status("En línea")
        program.wait_for_messages("uno", "respuesta")
        self.assertEqual(program.quit(), 0)

        again = self.start(program.home)
        again.wait_for_messages("uno", "respuesta")
        again.wait_for_conversations(("uno", "2 mensajes", True))
        again.ask("dos")
        self.assertEqual(self.assistant.next_request().json["userId"], request.json["userId"])

    def test_history_that_cannot_be_read_is_said_in_one_line_and_replaced(self):
        program = self.start()
        self.assertEqual(program.quit(), 0)
        program.write_store("aulora.conversations.v3", b"""[
            {"id": "3F2504E0-4F89-11D3-9A0C-0305E82C3301", "title": "uno", "messages": []},
            {"id": "3F2504E0-4F89-11D3-9A0C-0305E82C3302", "messages": []}]""")
        again = self.start(program.home, quiet=False)
        again.wait_for_conversations(("Nueva conversación", "0 mensajes", True))
        self.assertRegex(again.output, r"\AError cargando historial: [^\n]+\n\Z")
        self.assertEqual(again.quit(), 0)
        self.assertEqual([conversation["title"] for conversation in again.history()],
                         ["Nueva conversación"])

    def test_store_holds_typed_values(self):
        program = self.start()
        program.ask("uno")
        self.assistant.next_request().answer("respuesta\n")
        program.wait_for_messages("uno", "respuesta")
        self.assertEqual(program.quit(), 0)
        self.assertEqual(
            dict(program.store("select key, typeof(value) from preferences")),
            {"aulora.conversations.v3": "blob", "aulora.installation.userId": "text"})
        store = program.home / ".local/share/aulora-ia/preferences.sqlite"
        self.assertEqual(store.stat().st_mode & 0o777, 0o600)
        self.assertEqual(store.parent.stat().st_mode & 0o777, 0o700)

    def test_store_replaced_while_the_program_runs_loses_nothing(self):
        program = self.start()
        program.ask("uno")
        user = self.assistant.next_request()
        user.answer("respuesta\n")
        program.wait_for_messages("uno", "respuesta")
        self.assertEqual(program.quit(), 0)
        store = program.home / ".local/share/aulora-ia/preferences.sqlite"
        backup = shutil.copy(store, program.home / "backup.sqlite")
        content = backup.read_bytes()

        again = self.start(program.home, quiet=False)
        again.ask("dos")
        self.assistant.next_request().answer("otra\n")
        again.wait_for_messages("uno", "respuesta", "dos", "otra")
        again.wait_for(lambda: len(again.history()[0]["messages"]) == 4, "the answer to be stored")
        backup.replace(store)
        again.ask("tres")
        self.assistant.next_request().answer("la última\n")
        again.wait_for_messages("uno", "respuesta", "dos", "otra", "tres", "la última")
        self.assertEqual(again.quit(), 0)

        self.assertRegex(again.output, r"\AError guardando historial: [^\n]+\n\Z")
        self.assertEqual([message["text"] for message in again.history()[0]["messages"]],
                         ["uno", "respuesta", "dos", "otra", "tres", "la última"])
        self.assertEqual(again.store("select value from preferences "
                                     "where key = 'aulora.installation.userId'"),
                         [(user.json["userId"],)])
        kept = list(store.parent.glob("preferences.sqlite.corrupt-*"))
        self.assertEqual([path.read_bytes() for path in kept], [content])


if __name__ == "__main__":
    unittest.main()
