"""Images in the real window: chosen, dropped, pasted, sent, looked at, and refused."""

import base64
import io
import os
import time
import unittest
from pathlib import Path

from PIL import Image

from aulora_test_case import AuloraTestCase

PROMPT = ("Analizá esta imagen con finalidad educativa médica. "
          "Describí los hallazgos relevantes y explicalos de forma didáctica.")
NOT_AN_IMAGE = "El archivo no parece ser una imagen válida."
TOO_LARGE = "La imagen es demasiado grande. Elegí una imagen de menos de 12 MB."


def image_bytes(kind, size=(900, 600)):
    """A picture in one of Pillow's formats."""
    buffer = io.BytesIO()
    Image.linear_gradient("L").resize(size).convert("RGB").save(buffer, kind)
    return buffer.getvalue()


class ImagesTest(AuloraTestCase):
    def setUp(self):
        super().setUp()
        self.files = Path(self.desktop.folder) / self.id()
        self.files.mkdir()

    def file(self, name, data):
        path = self.files / name
        path.write_bytes(data)
        return path

    def drop(self, program, mime_type, path, welcome=True, before_drop=None):
        """Drags from another program's window and lets go over the middle of ours, having called
        before_drop."""
        x, y = self.desktop.position(program.window)
        taken = self.desktop.drag_from(os.environ["AULORA_DRAG_SOURCE"], mime_type, path,
                                       (x + 600, y + 300), welcome, before_drop)
        self.assertEqual(taken, welcome)

    def wait_for_chip(self, program):
        program.button("Quitar imagen")
        program.wait_for(lambda: program.composer.description == "Preguntá sobre la imagen...",
                         "the other placeholder")

    def assert_alert(self, program, message):
        alert = program.element("dialog", "No pude cargar la imagen")
        program.wait_for(lambda: message in [e.name for e in program.tree()], message)
        alert.button("Aceptar").press()
        program.wait_for(lambda: not program.elements("dialog"), "the alert to go")
        self.assertEqual(program.elements("button", "Quitar imagen"), [])

    def assert_sent(self, request, data, mime_type, name, message=PROMPT):
        sent = request.json
        self.assertEqual(set(sent),
                         {"message", "userId", "imageBase64", "imageMimeType", "imageName"})
        self.assertEqual(base64.b64decode(sent["imageBase64"], validate=True), data)
        self.assertEqual((sent["imageMimeType"], sent["imageName"], sent["message"]),
                         (mime_type, name, message))

    def send_alone(self, program):
        """Sends the pending image without a text; the request."""
        program.button("Enviar").press()
        return self.assistant.next_request()

    def start_with_dead_mount(self):
        """A program with a question in its composer and an image on a mount that does not answer;
        the image's path."""
        program = self.start(LD_PRELOAD=os.environ["AULORA_DEAD_MOUNT"])
        (self.files / "dead-mount").mkdir()
        path = self.file("dead-mount/a.png", image_bytes("PNG"))
        program.write("¿Qué es?")
        self.drop(program, "text/uri-list", path)
        return program, path

    def assert_sent_alone(self, request, message):
        self.assertEqual(set(request.json), {"message", "userId"})
        self.assertEqual(request.json["message"], message)

    def test_file_on_a_dead_mount_does_not_delay_the_end(self):
        program, _ = self.start_with_dead_mount()
        program.button("Enviar").press()
        began = time.monotonic()
        self.assertEqual(program.quit(), 0)
        # It would wait for ever. Under load an ordinary end takes seconds, too.
        self.assertLess(time.monotonic() - began, 5)
        messages = program.history()[0]["messages"]
        self.assertEqual([message["text"] for message in messages], ["¿Qué es?"])

    def test_question_goes_alone_when_its_image_fails(self):
        program, path = self.start_with_dead_mount()
        program.button("Enviar").press()
        program.button("Casos Clínicos").press()
        program.wait_for(lambda: program.composer.text != "¿Qué es?", "the card's prompt")
        prompt = program.composer.text
        path.unlink()
        self.assert_sent_alone(self.assistant.next_request(), "¿Qué es?")
        self.assert_alert(program, "No pude leer la imagen arrastrada.")
        self.assertEqual(program.composer.text, prompt)
        self.assertEqual(len(self.assistant.seen), 1)

    def test_question_goes_alone_when_its_conversation_is_left(self):
        program, _ = self.start_with_dead_mount()
        program.button("Enviar").press()
        program.button("Nueva conversación").press()
        self.assert_sent_alone(self.assistant.next_request(), "¿Qué es?")
        program.wait_for_conversations(("Nueva conversación", "0 mensajes", True),
                                       ("¿Qué es?", "1 mensajes", False))

    def test_question_goes_with_the_text_and_image_of_its_press(self):
        program = self.start()
        data = image_bytes("PNG", (6000, 5000))
        program.write("¿Qué es?")
        self.drop(program, "text/uri-list", self.file("grande.png", data))
        program.button("Enviar").press()
        # The drag has taken the keyboard to another window.
        program.composer.click()
        self.desktop.type("Otra")
        self.assert_sent(self.assistant.next_request(), data, "image/png", "grande.png",
                         "¿Qué es?")
        program.wait_for(lambda: "Otra" in program.composer.text, "what was typed since")

    def test_dropped_file_is_sent_unchanged_and_looked_at(self):
        program = self.start()
        data = image_bytes("PNG")
        self.drop(program, "text/uri-list", self.file("célula.png", data))
        self.wait_for_chip(program)
        request = self.send_alone(program)
        self.assert_sent(request, data, "image/png", "célula.png")
        program.wait_for(lambda: not program.elements("button", "Quitar imagen"),
                         "the chip to go")
        request.answer("Un degradé.\n")
        program.wait_for_status("En línea")
        program.wait_for_conversations((PROMPT[:34] + "…", "2 mensajes", True))

        program.button("Ver imagen adjunta").press()
        program.button("Cerrar imagen").press()
        program.wait_for(lambda: not program.elements("button", "Cerrar imagen"),
                         "the viewer to close")
        program.button("Ver imagen adjunta").click()
        program.button("Cerrar imagen")
        self.desktop.press("Escape")
        program.wait_for(lambda: not program.elements("button", "Cerrar imagen"),
                         "the viewer to close")

        self.assertEqual(program.quit(), 0)
        question = program.history()[0]["messages"][0]
        self.assertEqual((question["text"], question["attachmentName"]),
                         ("Analizar imagen", "célula.png"))
        preview = Image.open(io.BytesIO(base64.b64decode(question["imagePreviewData"])))
        self.assertEqual((preview.format, preview.size), ("JPEG", (700, 467)))

    def test_overlay_invites_the_drop(self):
        program = self.start()
        title = "Soltá la imagen para analizarla"

        def see_overlay():
            program.element("label", title)
            program.element("label", "Aulora IA puede analizar imágenes médicas con finalidad "
                                     "educativa.")

        self.assertEqual(program.elements("label", title), [])
        path = self.file("a.png", image_bytes("PNG"))
        self.drop(program, "text/uri-list", path, before_drop=see_overlay)
        program.wait_for(lambda: not program.elements("label", title), "the overlay to go")
        self.wait_for_chip(program)

    def test_question_waits_for_its_image(self):
        program = self.start()
        data = image_bytes("PNG", (6000, 5000))
        program.write("¿Qué es?")
        self.drop(program, "text/uri-list", self.file("grande.png", data))
        program.button("Enviar").press()
        self.assert_sent(self.assistant.next_request(), data, "image/png", "grande.png",
                         "¿Qué es?")

    def test_dropped_data(self):
        program = self.start()
        data = image_bytes("JPEG")
        self.drop(program, "image/jpeg", self.file("x", data))
        self.wait_for_chip(program)
        self.assert_sent(self.send_alone(program), data, "image/jpeg", "imagen")

    def test_pasted_image_with_a_question(self):
        program = self.start()
        data = image_bytes("PNG")
        program.write("¿Qué se ve?")
        self.desktop.copy(data, "image/png")
        self.desktop.press("ctrl+v")
        self.wait_for_chip(program)
        self.assertEqual(program.composer.text, "¿Qué se ve?")
        self.desktop.press("Return")
        self.assert_sent(self.assistant.next_request(), data, "image/png", "imagen",
                         "¿Qué se ve?")

    def test_removed_again(self):
        program = self.start()
        self.drop(program, "text/uri-list", self.file("a.png", image_bytes("PNG")))
        self.wait_for_chip(program)
        program.button("Quitar imagen").press()
        program.wait_for(lambda: program.composer.description == "Preguntale a Aulora IA...",
                         "the usual placeholder")
        program.ask("sin imagen")
        self.assertEqual(set(self.assistant.next_request().json), {"message", "userId"})

    def test_what_is_no_image_is_refused(self):
        program = self.start()
        largest = 12 * 1024 * 1024
        for name, data, message in [
            ("texto.png", b"no soy una imagen", NOT_AN_IMAGE),
            ("vacía.jpg", b"", NOT_AN_IMAGE),
            ("enorme.jpg", image_bytes("JPEG").ljust(largest + 1, b"\0"), TOO_LARGE),
            ("dibujo.jpg", b'<svg xmlns="http://www.w3.org/2000/svg" width="9" height="9"/>',
             NOT_AN_IMAGE),
        ]:
            with self.subTest(name):
                self.drop(program, "text/uri-list", self.file(name, data))
                self.assert_alert(program, message)
        data = image_bytes("JPEG").ljust(largest, b"\0")
        self.drop(program, "text/uri-list", self.file("justa.jpg", data))
        self.wait_for_chip(program)

    def test_nothing_is_dropped_into_a_reply(self):
        program = self.start()
        path = self.file("a.png", image_bytes("PNG"))
        program.ask("solo texto")
        request = self.assistant.next_request()
        program.wait_for_status("Procesando")
        self.drop(program, "text/uri-list", path, welcome=False)
        self.assertEqual(program.elements("button", "Quitar imagen"), [])
        request.answer("Listo.\n")
        program.wait_for_status("En línea")
        self.drop(program, "text/uri-list", path)
        self.wait_for_chip(program)

    def test_analysis_off_takes_nothing(self):
        program = self.start()
        path = self.file("a.png", image_bytes("PNG"))
        self.drop(program, "text/uri-list", path)
        self.wait_for_chip(program)
        self.switch_analysis(program)
        program.wait_for(lambda: not program.elements("button", "Quitar imagen"),
                         "the pending image to go")
        self.drop(program, "text/uri-list", path, welcome=False)
        program.button("Adjuntar imagen").press()
        program.composer.click()
        self.desktop.copy(path.read_bytes(), "image/png")
        self.desktop.press("ctrl+v")
        program.ask("solo texto")
        self.assertEqual(set(self.assistant.next_request().json), {"message", "userId"})
        self.assertEqual(program.elements("button", "Abrir"), [])

    def switch_analysis(self, program):
        program.button("Configuración").press()
        program.element("check box", "Análisis de imágenes").press()
        program.button("Cerrar configuración").press()
        program.wait_for(lambda: not program.elements("button", "Cerrar configuración"),
                         "the sheet to close")

    def test_thumbnails_off(self):
        program = self.start()
        self.drop(program, "text/uri-list", self.file("a.png", image_bytes("PNG")))
        self.wait_for_chip(program)
        self.send_alone(program).answer("Bien.\n")
        program.button("Ver imagen adjunta")
        program.button("Configuración").press()
        program.element("check box", "Mostrar miniaturas").press()
        program.button("Cerrar configuración").press()
        program.wait_for(lambda: not program.elements("button", "Ver imagen adjunta"),
                         "the thumbnail to go")


if __name__ == "__main__":
    unittest.main()
