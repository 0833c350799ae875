"""What a screen reader finds on each screen: everything that is seen, in reading order, by the right
role, and nothing else."""

import unittest

from aulora_test_case import AuloraTestCase

SIDEBAR = [("image", "Aulora IA"), ("label", "INTELIGENCIA MÉDICA EDUCATIVA"),
           ("button", "Nueva conversación"), ("label", "HISTORIAL"), ("label", "1"),
           ("button", "Borrar historial"), ("list", "Conversaciones")]
SIDEBAR_FOOT = [("button", "Configuración")]
# The home screen is a little higher than the pane, which then is a stop of the keyboard.
HOME = [("panel", "Conversación"), ("image", "Aulora IA"), ("label", "¿Qué querés estudiar hoy?"),
        ("button", "Biología Celular"), ("button", "Histología"),
        ("button", "Embriología"), ("button", "Genética"), ("button", "Anatomía"),
        ("button", "Medicina Interna"), ("label", "HERRAMIENTAS DE ESTUDIO"),
        ("button", "Explicar"), ("button", "Practicar"), ("button", "Comparar"),
        ("button", "Razonar"), ("button", "Casos Clínicos")]
COMPOSER = [("button", "Adjuntar imagen"), ("label", "Preguntale a Aulora IA..."),
            ("text", "Mensaje"), ("button", "Enviar"),
            ("label", "Herramienta educativa. Verificá la información médica relevante."),
            ("label", "AULORA IA   ·   EDUCACIÓN MÉDICA   ·   2026"), ("label", "EQUIPO AULORA IA")]
SETTINGS = [("label", "Configuración"), ("label", "Personalizá la experiencia de Aulora IA"),
            ("button", "Cerrar configuración"),
            ("label", "APARIENCIA"), ("label", "Elegí cómo querés visualizar la aplicación."),
            ("radio button", "Sistema"), ("radio button", "Claro"), ("radio button", "Oscuro"),
            ("label", "TEXTO DE LAS RESPUESTAS"),
            ("label", "Modificá el tamaño del texto del chat."), ("panel", "Tamaño"),
            ("radio button", "Compacto"), ("radio button", "Normal"), ("radio button", "Grande"),
            ("label", "IMÁGENES"), ("label", "Controlá el análisis visual y la visualización."),
            ("check box", "Análisis de imágenes"), ("check box", "Mostrar miniaturas"),
            ("label", "HISTORIAL"), ("label", "Administrá las conversaciones guardadas."),
            ("button", "Borrar historial"),
            ("label", "ACERCA DE"), ("label", "Información de Aulora IA."), ("image", "Aulora IA"),
            ("label", "Inteligencia médica educativa orientada al aprendizaje, integración de "
             "contenidos y razonamiento médico.")]
SETTINGS_END = [("label", "EQUIPO AULORA IA"),
                ("label", "EDUCACIÓN MÉDICA · SOFTWARE EDUCATIVO · 2026")]
ALERT = [("label", "¿Borrar historial?"),
         ("label", "Se eliminarán todas las conversaciones guardadas en este dispositivo. La memoria "
          "de Aulora IA en el servidor no se modificará."),
         ("button", "Borrar historial"), ("button", "Cancelar")]


# What is around the content, and what is there for a moment only.
PASSING = ("application", "frame", "notification")


def read(program):
    """Role and name of everything in the window, in order."""
    return [(element.role, element.name.rstrip("\n")) for element in program.tree()
            if element.has("visible") and element.role not in PASSING]


class ScreenReaderTest(AuloraTestCase):
    maxDiff = None

    def assert_reads(self, program, *expected):
        """Waits for the whole window to read so; shows the difference if it never does."""
        wanted = [each for part in expected for each in part]
        try:
            program.wait_for(lambda: read(program) == wanted, "the window to read as it should")
        except AssertionError:
            self.assertEqual(read(program), wanted)

    def test_home(self):
        program = self.start()
        self.assert_reads(program, SIDEBAR, [("list item", "Nueva conversación")], SIDEBAR_FOOT,
                          [("label", "En línea")], HOME, COMPOSER)

    def test_conversation(self):
        program = self.start()
        program.ask("¿Qué es la mitosis?")
        sidebar = [*SIDEBAR, ("list item", "¿Qué es la mitosis?"), *SIDEBAR_FOOT]
        question = [("paragraph", "¿Qué es la mitosis?")]
        request = self.assistant.next_request()
        self.assert_reads(program, sidebar, [("label", "Procesando")], question,
                          [("label", "Aulora IA"), ("label", "Preparando respuesta…")], COMPOSER)
        request.begin()
        request.write("# La **mitosis**\n- Una célula\n1. Dos *hijas*\n")
        program.element("notification", "Aulora IA está respondiendo")
        request.finish()
        program.element("notification", "Respuesta terminada")
        self.assert_reads(program, sidebar, [("label", "En línea")], question,
                          [("paragraph", "La mitosis\nUna célula\n1. Dos *hijas*")], COMPOSER)
        (row,) = program.elements("list item")
        self.assertTrue(row.has("selected"))
        self.assertEqual(row.description, "2 mensajes")
        self.assertEqual(program.composer.description, "Preguntale a Aulora IA...")

    def test_sheet_and_alert(self):
        program = self.start()
        program.button("Configuración").press()
        behind = [*SIDEBAR, ("list item", "Nueva conversación"), *SIDEBAR_FOOT,
                  ("label", "En línea"), *HOME, *COMPOSER]
        self.assert_reads(program, behind, [("dialog", "Configuración")], SETTINGS)
        inside = program.element("label", "ACERCA DE").center

        def at_the_end():
            self.desktop.click(*inside, button=5)
            return read(program)[-2:] == SETTINGS_END
        program.wait_for(at_the_end, "the end of the settings")

        program.in_sheet("Borrar historial").press()
        self.assert_reads(program, behind, [("dialog", "¿Borrar historial?")], ALERT)


if __name__ == "__main__":
    unittest.main()
