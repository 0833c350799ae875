"""The program's own file chooser, where the desktop has none: what it lists, and how a file is
chosen with the mouse, with the keyboard and by a screen reader."""

import base64
import io
import os
import unittest
from pathlib import Path

from PIL import Image

from aulora_test_case import AuloraTestCase


def image_bytes(kind, color="#7a5"):
    """A picture of one colour in one of Pillow's formats."""
    buffer = io.BytesIO()
    Image.new("RGB", (300, 200), color).save(buffer, kind)
    return buffer.getvalue()


class ChooserTest(AuloraTestCase):
    def setUp(self):
        super().setUp()
        self.home = Path(self.desktop.folder) / self.id()
        self.home.mkdir()

    def file(self, name, data=None):
        path = self.home / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(image_bytes("JPEG") if data is None else data)
        return path

    def open_chooser(self, **environment):
        program = self.start(self.home, **environment)
        self.reopen(program)
        return program

    def reopen(self, program):
        program.button("Adjuntar imagen").press()
        program.element("dialog", "Elegí una imagen")
        program.button("Abrir")

    def listed(self, program):
        """Names and kinds of what the folder is said to hold, in their order."""
        items = [(item.rectangle[1], item.rectangle[0], item.name, item.description)
                 for item in program.elements("list item")
                 if item.description in ("Carpeta", "Imagen")]
        return [(name, kind) for _, _, name, kind in sorted(items)]

    def wait_for_listed(self, program, *names):
        program.wait_for(lambda: [name for name, _ in self.listed(program)] == list(names),
                         f"the chooser to list {names}")

    def wait_for_selected(self, program, name):
        program.wait_for(lambda: program.element("list item", name).has("selected"),
                         f"{name} to be selected")

    def wait_for_end(self, program):
        program.wait_for(lambda: not program.elements("dialog"), "the chooser to go")

    def assert_attached(self, program, name, data):
        self.wait_for_end(program)
        program.button("Quitar imagen")
        program.button("Enviar").press()
        sent = self.assistant.next_request().json
        self.assertEqual(base64.b64decode(sent["imageBase64"], validate=True), data)
        self.assertEqual(sent["imageName"], name)

    def test_file_chosen_with_the_mouse(self):
        data = image_bytes("JPEG")
        for name in ("IMG_0001.JPG", "Foto.Jpg", "placa.jpe", "escaneo.jfif"):
            self.file(name, data)
        self.file("notas.txt", b"nada que elegir")
        self.file(".oculta.png")
        self.file("Clases/uno.png")
        program = self.open_chooser()
        self.wait_for_listed(program, "Clases", "escaneo.jfif", "Foto.Jpg", "IMG_0001.JPG",
                             "placa.jpe")
        self.assertEqual(self.listed(program)[:2], [("Clases", "Carpeta"),
                                                    ("escaneo.jfif", "Imagen")])
        program.element("label", "Tipo de archivo: Imágenes")
        # Nothing is selected yet.
        program.button("Abrir").press()
        program.choose_file("escaneo.jfif")
        self.assert_attached(program, "escaneo.jfif", data)

    def test_folder_and_file_opened_by_double_clicks(self):
        data = image_bytes("PNG")
        self.file("Clases/uno.png", data)
        program = self.open_chooser()
        for name in ("Clases", "uno.png"):
            x, y = program.element("list item", name).center
            self.desktop.click(x, y)
            self.desktop.click(x, y)
        self.assert_attached(program, "uno.png", data)

    def test_file_chosen_with_the_keyboard(self):
        data = image_bytes("PNG")
        for name in ("a/1.png", "b/2.png", "b/3.png", "c.png"):
            self.file(name, data)
        program = self.open_chooser()
        self.wait_for_listed(program, "a", "b", "c.png")

        def press(key, name):
            self.desktop.press(key)
            program.wait_for(lambda: program.focused().name == name, f"{key} to lead to {name}")

        self.assertEqual(program.focused().name, "Archivos")
        press("Right", "a")
        press("Right", "b")
        press("End", "c.png")
        press("Home", "a")
        press("Right", "b")
        self.desktop.press("Return")
        self.wait_for_listed(program, "2.png", "3.png")
        press("BackSpace", "b")
        self.wait_for_listed(program, "a", "b", "c.png")
        self.desktop.press("Return")
        self.wait_for_listed(program, "2.png", "3.png")
        press("alt+Up", "b")
        self.desktop.press("Return")
        self.wait_for_listed(program, "2.png", "3.png")
        press("Right", "2.png")
        press("Down", "3.png")
        self.desktop.press("Return")
        self.assert_attached(program, "3.png", data)
        program.wait_for(lambda: program.composer.has("focused"), "the composer to be back")

    def test_tab_reaches_everything_and_stays_inside(self):
        self.file("a.png")
        program = self.open_chooser()
        self.wait_for_listed(program, "a.png")
        self.desktop.press("Right")
        program.wait_for(lambda: program.focused().name == "a.png", "the file to have the keyboard")
        stops = []
        for _ in range(7):
            self.desktop.press("Tab")
            before = stops[-1] if stops else "a.png"
            program.wait_for(lambda before=before: program.focused().name != before,
                             f"the keyboard to leave {before}")
            stops.append(program.focused().name)
        self.assertEqual(stops, ["Cancelar", "Abrir", "Inicio", "Equipo", "Carpeta superior",
                                 "a.png", "Cancelar"])

    def test_left_without_a_choice(self):
        self.file("a.png")
        program = self.start(self.home)
        for leave in (lambda: program.button("Cancelar").click(),
                      lambda: program.button("Cancelar").press(),
                      lambda: self.desktop.press("Escape")):
            self.reopen(program)
            self.wait_for_listed(program, "a.png")
            leave()
            self.wait_for_end(program)
        program.ask("sin imagen")
        self.assertEqual(set(self.assistant.next_request().json), {"message", "userId"})

    def test_folders_at_hand(self):
        self.file("Imágenes/pieza.png")
        self.file("Descargas/adjunto.png")
        self.file("suelta.png")
        self.file(".config/user-dirs.dirs", 'XDG_PICTURES_DIR="$HOME/Imágenes"\n'
                  'XDG_DOWNLOAD_DIR="$HOME/Descargas"\nXDG_DESKTOP_DIR="$HOME/"\n'.encode())
        program = self.open_chooser()
        self.wait_for_listed(program, "pieza.png")
        for place, names in {"Inicio": ("Descargas", "Imágenes", "suelta.png"),
                             "Descargas": ("adjunto.png",), "Imágenes": ("pieza.png",)}.items():
            # The places stand before the folders of the same names.
            program.element("list item", place).press()
            self.wait_for_listed(program, *names)
            program.wait_for(lambda: program.elements("list item", place)[0].has("selected"),
                             f"{place} to be the place that is shown")
        self.assertEqual(program.elements("list item", "Escritorio"), [])
        program.element("list item", "Equipo").press()
        program.wait_for(lambda: ("home", "Carpeta") in self.listed(program), "the whole machine")

    def test_next_choice_begins_where_the_last_was_made(self):
        data = image_bytes("PNG")
        self.file("Clases/uno.png", data)
        program = self.open_chooser()
        program.choose_file("Clases")
        self.wait_for_listed(program, "uno.png")
        program.choose_file("uno.png")
        self.assert_attached(program, "uno.png", data)
        self.reopen(program)
        self.wait_for_listed(program, "uno.png")

    def test_name_that_is_not_utf8(self):
        data = image_bytes("PNG")
        with open(os.fsencode(self.home) + b"/radiograf\xeda.png", "wb") as file:
            file.write(data)
        program = self.open_chooser()
        program.choose_file("radiograf\ufffda.png")
        self.wait_for_end(program)
        program.button("Quitar imagen")
        program.button("Enviar").press()
        sent = self.assistant.next_request().json
        self.assertEqual(base64.b64decode(sent["imageBase64"]), data)
        self.assertEqual(sent["imageMimeType"], "image/png")

    def test_folder_without_images(self):
        self.file("notas.txt", b"nada que elegir")
        program = self.open_chooser()
        program.element("label", "No hay imágenes en esta carpeta.")
        self.desktop.press("Right", "Return")
        program.button("Abrir").press()
        program.button("Carpeta superior").press()
        self.wait_for_selected(program, self.home.name)

    def test_thumbnails(self):
        # Reds and blues that nothing else in the window has.
        self.file("azul.png", image_bytes("PNG", "#0000ff"))
        self.file("rota.png", b"no soy una imagen")
        self.file("roja.jpg", image_bytes("JPEG", "#ff0000"))
        program = self.open_chooser()
        self.wait_for_listed(program, "azul.png", "roja.jpg", "rota.png")
        path = self.home / ".window.png"

        def colors(name):
            x, y, width, height = program.element("list item", name).rectangle
            left, top = program.element("frame", "Aulora IA").rectangle[:2]
            program.picture(path)
            item = Image.open(path).convert("RGB").crop(
                (x - left, y - top, x - left + width, y - top + height))
            return {color for count, color in item.getcolors(width * height) if count > 100}

        program.wait_for(lambda: (0, 0, 255) in colors("azul.png"), "the blue picture")
        program.wait_for(lambda: any(r > 250 and g < 5 and b < 5 for r, g, b in colors("roja.jpg")),
                         "the red picture")


if __name__ == "__main__":
    unittest.main()
