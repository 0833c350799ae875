"""The program asks the local service, which has its questions answered by a model that the test
plays."""

import json
import os
import subprocess
import unittest

from aulora_test_case import AuloraTestCase
from desktop import die_with_parent
from recording_server import RecordingServer


class ModelBridgeTest(AuloraTestCase):
    def setUp(self):
        super().setUp()
        # The service takes the place of the assistant that other tests play.
        self.assistant.close()
        self.model = RecordingServer(0)
        self.addCleanup(self.model.close)
        self.service = subprocess.Popen(
            [os.environ["AULORA_LOCAL_SERVICE"], "--port", str(self.port),
             "--cert", self.certificate, "--key", self.key,
             "--model-url", f"http://127.0.0.1:{self.model.port}/v1", "--model", "prueba"],
            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True,
            preexec_fn=die_with_parent)
        self.addCleanup(self.end_service)
        self.assertIn("Escuchando", self.service.stdout.readline())

    def end_service(self):
        self.service.terminate()
        self.service.wait()
        self.service.stdout.close()

    def say(self, request, text):
        """Sends a piece of the model's answer."""
        event = {"choices": [{"index": 0, "delta": {"content": text}}]}
        request.write(f"data: {json.dumps(event)}\n\n")

    def test_answer_grows_line_by_line_and_is_shown_with_the_marks_that_the_program_knows(self):
        program = self.start()
        question = "¿Qué es la mitosis?"
        program.ask(question)
        request = self.model.next_request()
        self.assertEqual(request.path, "/v1/chat/completions")
        self.assertEqual(request.json["model"], "prueba")
        self.assertIs(request.json["stream"], True)
        self.assertEqual(request.json["messages"][-1], {"role": "user", "content": question})
        request.begin()
        request.write(": ping\n\n")
        self.say(request, "<think>El estudiante pregunta por")
        self.say(request, " la mitosis.</think>\n\n#### La __mito")
        self.say(request, "sis__\n\nUna célula $2n$ da dos células *iguales*")
        # The heading is shown while its paragraph is still being written.
        program.wait_for_messages(question, "La mitosis")

        self.say(request, ".\n\n| Fase | Qué pasa |\n|---|---|\n| Profase | se condensa |\n")
        self.say(request, "| Anafase | $4n \\rightarrow 2n$ por polo |\n\n---\n\n* El ADN ya est")
        self.say(request, "aba duplicado.\n* Consume H_2O y ATP.\n\n1. Profase\n2) Metafase\n")
        request.write("data: [DONE]\n")
        request.finish()
        program.wait_for_status("En línea")
        program.wait_for_messages(
            question,
            "La mitosis\nUna célula 2n da dos células iguales.\n"
            "Fase: Profase; Qué pasa: se condensa\nFase: Anafase; Qué pasa: 4n → 2n por polo\n"
            "El ADN ya estaba duplicado.\nConsume H₂O y ATP.\n1. Profase\n2. Metafase")
        self.pictures.mkdir(parents=True, exist_ok=True)
        program.picture(self.pictures / "model-bridge.png")

        # The next question carries the conversation.
        program.ask("¿y la meiosis?")
        request = self.model.next_request()
        self.assertEqual([message["role"] for message in request.json["messages"]],
                         ["system", "user", "assistant", "user"])
        request.begin()
        self.say(request, "Son dos divisiones.")
        request.finish()
        program.wait_for(lambda: program.messages()[-1:] == ["Son dos divisiones."], "the answer")
        program.wait_for_status("En línea")
        self.assertEqual(program.quit(), 0)
        self.assertEqual(
            program.history()[0]["messages"][1]["text"],
            "### La **mitosis**\nUna célula 2n da dos células iguales.\n"
            "- Fase: Profase; Qué pasa: se condensa\n- Fase: Anafase; Qué pasa: 4n → 2n por polo\n"
            "- El ADN ya estaba duplicado.\n- Consume H₂O y ATP.\n1. Profase\n2. Metafase")

    def test_fault_before_the_first_line_is_told_with_its_status(self):
        program = self.start()
        program.ask("hola")
        self.model.next_request().answer("{}", status=500)
        program.wait_for_messages("hola", "No pude completar la respuesta de Aulora IA.\n\n"
                                          "Error del servidor (502).")

    def test_fault_in_the_middle_keeps_what_came(self):
        program = self.start()
        program.ask("hola")
        request = self.model.next_request()
        request.begin()
        self.say(request, "uno\n\ndos")
        program.wait_for_messages("hola", "uno")
        request.cut()
        program.wait_for_messages("hola", "uno", "No pude completar la respuesta de Aulora IA.\n\n"
                                                 "Se perdió la conexión con el servicio.")


if __name__ == "__main__":
    unittest.main()
