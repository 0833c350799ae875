"""A reply that streams while the person does other things."""

import unittest

from aulora_test_case import AuloraTestCase


class StreamingTest(AuloraTestCase):
    def begin(self, program, question):
        program.ask(question)
        request = self.assistant.next_request()
        request.begin()
        return request

    def test_long_reply_arrives_whole(self):
        program = self.start()
        request = self.begin(program, "larga")
        lines = [f"línea {number}" for number in range(2000)]
        for line in lines:
            request.write(line + "\n")
        request.finish()
        program.wait_for_status("En línea")
        program.wait_for(lambda: program.messages()[-1:] == ["\n".join(lines)], "all of the reply")

        def end_of_reply():
            _, y, _, height = program.elements("paragraph")[-1].rectangle
            return y + height
        # What follows it is the space between rows and the end of the list; below is the composer's
        # own space around its text, and a line.
        end_of_pane = program.composer.rectangle[1] - 13 - 11 - 1
        program.wait_for(lambda: abs(end_of_reply() + 23 + 1 - end_of_pane) <= 2,
                         f"the pane to follow the reply to {end_of_pane}")

    def test_bytes_one_by_one(self):
        program = self.start()
        request = self.begin(program, "lenta")
        for byte in "Célula 🧫\r\ny tejido\n".encode():
            request.write(bytes([byte]))
        request.finish()
        program.wait_for_messages("lenta", "Célula 🧫\ny tejido")

    def test_empty_reply_leaves_the_question_alone(self):
        program = self.start()
        self.begin(program, "nada").finish()
        program.wait_for_status("En línea")
        self.assertEqual(program.messages(), ["nada"])

    def test_blank_lines_are_lost_and_ends_trimmed(self):
        program = self.start()
        request = self.begin(program, "párrafos")
        request.write("\n\n  uno\n\n\ndos  \n\n")
        request.finish()
        program.wait_for_status("En línea")
        program.wait_for(lambda: len(program.messages()) == 2, "the reply")
        self.assertEqual(program.quit(), 0)
        self.assertEqual(program.history()[0]["messages"][1]["text"], "uno\ndos")

    def test_switching_after_the_first_line_keeps_filling_its_conversation(self):
        program = self.start()
        request = self.begin(program, "primera")
        request.write("uno\n")
        program.wait_for_messages("primera", "uno")
        program.button("Nueva conversación").press()
        program.wait_for(lambda: program.messages() == [], "the empty conversation")
        request.write("dos\n")
        request.finish()
        program.wait_for_status("En línea")
        self.assertEqual(program.messages(), [])
        program.element("list item", "primera").press()
        program.wait_for_messages("primera", "uno\ndos")

    def test_switching_before_the_first_line_loses_the_reply(self):
        program = self.start()
        request = self.begin(program, "primera")
        program.wait_for_messages("primera")
        program.button("Nueva conversación").press()
        program.wait_for(lambda: len(program.conversations()) == 2, "the second conversation")
        request.write("uno\ndos\n")
        request.finish()
        program.wait_for_status("En línea")
        self.assertEqual(program.quit(), 0)
        second, first = program.history()
        self.assertEqual([message["text"] for message in first["messages"]], ["primera"])
        self.assertEqual([(message["text"], message["isUser"]) for message in second["messages"]],
                         [("", False)])

    def test_clearing_before_the_first_line_loses_the_reply(self):
        program = self.start()
        request = self.begin(program, "primera")
        program.wait_for_messages("primera")
        program.button("Borrar historial").press()
        program.confirm("¿Borrar historial?", "Borrar historial")
        program.wait_for_conversations(("Nueva conversación", "0 mensajes", True))
        request.write("uno\ndos\n")
        request.finish()
        program.wait_for_status("En línea")
        self.assertEqual(program.quit(), 0)
        (only,) = program.history()
        self.assertEqual([(message["text"], message["isUser"]) for message in only["messages"]],
                         [("", False)])

    def test_failure_lands_where_the_person_is(self):
        program = self.start()
        request = self.begin(program, "primera")
        request.write("uno\n")
        program.wait_for_messages("primera", "uno")
        program.button("Nueva conversación").press()
        program.wait_for(lambda: program.messages() == [], "the empty conversation")
        request.cut()
        program.wait_for(lambda: len(program.messages()) == 1, "the notice")
        self.assertEqual(program.quit(), 0)
        second, first = program.history()
        self.assertEqual([message["text"] for message in first["messages"]], ["primera", "uno\n"])
        self.assertEqual(second["messages"][0]["text"],
                         "No pude completar la respuesta de Aulora IA.\n\n"
                         "Se perdió la conexión con el servicio.")

    def test_clearing_drops_what_still_arrives(self):
        program = self.start()
        request = self.begin(program, "primera")
        request.write("uno\n")
        program.wait_for_messages("primera", "uno")
        program.button("Borrar historial").press()
        program.confirm("¿Borrar historial?", "Borrar historial")
        program.wait_for_conversations(("Nueva conversación", "0 mensajes", True))
        request.write("dos\n")
        request.finish()
        program.wait_for_status("En línea")
        self.assertEqual(program.messages(), [])
        self.assertEqual(program.quit(), 0)
        self.assertEqual([c["messages"] for c in program.history()], [[]])


if __name__ == "__main__":
    unittest.main()
