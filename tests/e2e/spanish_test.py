"""Not one English word: every name and description on every screen and in every dialog is a text of
ours, as it stands here, or what the test itself put there."""

import io
import os
import unittest
from pathlib import Path

from PIL import Image

from aulora_test_case import AuloraTestCase

TEXTS = """\
# The window
Aulora IA
INTELIGENCIA MÉDICA EDUCATIVA
Nueva conversación
HISTORIAL
Borrar historial
Conversaciones
Conversación
1
0 mensajes
1 mensajes
2 mensajes
3 mensajes
4 mensajes
Configuración
En línea
Procesando
AULORA IA   ·   EDUCACIÓN MÉDICA   ·   2026
EQUIPO AULORA IA
EDUCACIÓN MÉDICA · SOFTWARE EDUCATIVO · 2026
# The home of a conversation
¿Qué querés estudiar hoy?
Biología Celular
Célula y función
Histología
Tejidos y órganos
Embriología
Desarrollo humano
Genética
Genes y herencia
Anatomía
Estructura humana
Medicina Interna
Clínica y razonamiento
HERRAMIENTAS DE ESTUDIO
Explicar
Practicar
Comparar
Razonar
Casos Clínicos
Integrá signos, síntomas, laboratorio y fisiopatología.
# The composer
Adjuntar imagen
Preguntale a Aulora IA...
Preguntá sobre la imagen...
Mensaje
Enviar
Herramienta educativa. Verificá la información médica relevante.
Imagen adjunta
imagen
Quitar imagen
# An exchange
Preparando respuesta…
Escribiendo…
Analizar imagen
Analizá esta imagen con finalidad …
Ver imagen adjunta
Aulora IA está respondiendo
Respuesta terminada
Cerrar imagen
# The settings
Personalizá la experiencia de Aulora IA
Cerrar configuración
APARIENCIA
Elegí cómo querés visualizar la aplicación.
Sistema
Claro
Oscuro
TEXTO DE LAS RESPUESTAS
Modificá el tamaño del texto del chat.
Tamaño
Compacto
Normal
Grande
IMÁGENES
Controlá el análisis visual y la visualización.
Análisis de imágenes
Mostrar miniaturas
Administrá las conversaciones guardadas.
ACERCA DE
Información de Aulora IA.
Inteligencia médica educativa orientada al aprendizaje, integración de contenidos y razonamiento médico.
# The alerts
¿Borrar historial?
Se eliminarán todas las conversaciones guardadas en este dispositivo. La memoria de Aulora IA en el servidor no se modificará.
Cancelar
No pude cargar la imagen
El archivo no parece ser una imagen válida.
Aceptar
# The drop of an image
Soltá la imagen para analizarla
Aulora IA puede analizar imágenes médicas con finalidad educativa.
# The file chooser
Elegí una imagen
Inicio
Imágenes
Equipo
Carpeta superior
Archivos
Carpeta
Imagen
Tipo de archivo: Imágenes
No hay imágenes en esta carpeta.
Leyendo la carpeta…
Abrir
"""


class SpanishTest(AuloraTestCase):
    def setUp(self):
        super().setUp()
        self.home = Path(self.desktop.folder) / self.id()
        self.home.mkdir()
        self.known = {line for line in TEXTS.splitlines() if not line.startswith("# ")}
        self.known |= {"", self.home.name, "Clases", "célula.png", "falsa.png", "Título"}

    def read(self, program, *expected):
        """Waits for elements with the names expected, and reads all there are."""
        program.wait_for(lambda: {element.name.rstrip("\n") for element in program.tree()
                                  if element.has("visible")} >= set(expected), f"{expected}")
        # What stands for the process goes by the name of its file.
        unknown = {text for element in program.tree() if element.role != "application"
                   for text in (element.name.rstrip("\n"), element.description)} - self.known
        self.assertEqual(unknown, set())

    def test_every_screen_and_dialog(self):
        picture = io.BytesIO()
        Image.new("RGB", (300, 200), "#7a5").save(picture, "PNG")
        (self.home / "Clases").mkdir()
        (self.home / "célula.png").write_bytes(picture.getvalue())
        (self.home / "falsa.png").write_bytes(b"no soy una imagen")
        program = self.start(self.home)
        self.read(program, "Nueva conversación", "Enviar")

        program.button("Configuración").press()
        self.read(program, "Cerrar configuración", "ACERCA DE")
        program.button("Cerrar configuración").press()
        program.wait_for(lambda: not program.elements("dialog"), "the settings to go")

        program.button("Borrar historial").press()
        self.read(program, "¿Borrar historial?", "Cancelar")
        program.confirm("¿Borrar historial?", "Cancelar")

        program.button("Adjuntar imagen").press()
        self.read(program, "Elegí una imagen", "Abrir", "célula.png")
        program.choose_file("Clases")
        self.read(program, "No hay imágenes en esta carpeta.", "Clases")
        program.button("Carpeta superior").press()
        program.choose_file("falsa.png")
        self.read(program, "No pude cargar la imagen", "Aceptar")
        program.confirm("No pude cargar la imagen", "Aceptar")

        def read_overlay():
            self.read(program, "Soltá la imagen para analizarla")

        x, y = self.desktop.position(program.window)
        self.desktop.drag_from(os.environ["AULORA_DRAG_SOURCE"], "text/uri-list",
                               self.home / "célula.png", (x + 600, y + 300), True, read_overlay)
        self.read(program, "Quitar imagen", "célula.png")
        program.button("Enviar").press()
        request = self.assistant.next_request()
        self.read(program, "Preparando respuesta…", "Procesando")
        request.begin()
        request.write("# Título\n")
        self.read(program, "Título", "Procesando")
        request.finish()
        self.read(program, "En línea")

        program.button("Ver imagen adjunta").press()
        self.read(program, "Cerrar imagen")
        program.button("Cerrar imagen").press()
        program.wait_for(lambda: not program.elements("button", "Cerrar imagen"),
                         "the viewer to go")


if __name__ == "__main__":
    unittest.main()
