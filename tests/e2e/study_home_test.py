"""What an empty conversation offers: eleven controls, each of which begins a question."""

import unittest

from aulora_test_case import AuloraTestCase

PROMPTS = {
    "Biología Celular": "Quiero estudiar Biología Celular. ",
    "Histología": "Quiero estudiar Histología. ",
    "Embriología": "Quiero estudiar Embriología. ",
    "Genética": "Quiero estudiar Genética. ",
    "Anatomía": "Quiero estudiar Anatomía. ",
    "Medicina Interna": "Quiero estudiar Medicina Interna. ",
    "Explicar": "Explicame paso a paso: ",
    "Practicar": "Creá preguntas de autoevaluación sobre: ",
    "Comparar": "Compará estos conceptos: ",
    "Razonar": "Ayudame a razonar clínicamente sobre: ",
    "Casos Clínicos": "Quiero trabajar con un caso clínico sobre: ",
}


class StudyHomeTest(AuloraTestCase):
    def test_each_control_replaces_what_was_typed(self):
        program = self.start()
        program.write("algo a medias")
        for title, prompt in PROMPTS.items():
            with self.subTest(title):
                program.button(title).press()
                program.wait_for_composer(prompt)
        self.assertEqual(program.conversations(), [("Nueva conversación", "0 mensajes", True)])
        self.assertEqual(self.assistant.seen, [])

    def test_mouse_presses_them_too(self):
        program = self.start()
        for title in ("Genética", "Comparar", "Casos Clínicos"):
            program.button(title).click()
            program.wait_for_composer(PROMPTS[title])

    def test_prompt_is_completed_sent_and_leaves_the_home(self):
        program = self.start()
        program.button("Genética").press()
        program.wait_for_composer("Quiero estudiar Genética. ")
        program.composer.focus()
        self.desktop.press("ctrl+End")
        self.desktop.type("Herencia")
        program.wait_for_composer("Quiero estudiar Genética. Herencia")
        self.desktop.press("Return")
        self.assertEqual(self.assistant.next_request().json["message"],
                         "Quiero estudiar Genética. Herencia")
        program.wait_for(lambda: not program.elements("button", "Genética"),
                         "the home to go")


if __name__ == "__main__":
    unittest.main()
