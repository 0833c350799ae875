"""The desktop's own file chooser, asked for through the portal: what it is asked, and what becomes
of a choice, of none, and of a portal that goes away or never answers."""

import base64
import io
import os
import unittest
from pathlib import Path

from PIL import Image

from aulora_test_case import DESKTOP, AuloraTestCase
from desktop import wait_until
from desktop_portal import DesktopPortal


def image_bytes():
    buffer = io.BytesIO()
    Image.new("RGB", (300, 200), "#7a5").save(buffer, "PNG")
    return buffer.getvalue()


class PortalTest(AuloraTestCase):
    def setUp(self):
        super().setUp()
        self.files = Path(self.desktop.folder) / self.id()
        self.files.mkdir()

    def start_portal(self, kind="backend"):
        portal = DesktopPortal(DESKTOP, kind)
        self.addCleanup(portal.close)
        return portal

    def ask_for_image(self, program, portal):
        """Presses the button; what the desktop's chooser is asked."""
        def ask():
            # While the program thinks that a chooser is open, a press does nothing.
            program.button("Adjuntar imagen").press()
            return portal.event()
        return program.wait_for(ask, "the portal to be asked")

    def assert_own_chooser_opens(self, program):
        def press():
            program.button("Adjuntar imagen").press()
            return program.elements("dialog", "Elegí una imagen")
        program.wait_for(press, "the program's own chooser")
        self.desktop.press("Escape")
        program.wait_for(lambda: not program.elements("dialog"), "the chooser to go")

    def test_choice(self):
        portal = self.start_portal()
        program = self.start()
        asked = self.ask_for_image(program, portal)
        self.assertEqual(asked["title"], "Elegí una imagen")
        self.assertEqual(asked["parent"], f"x11:{int(program.window):x}")
        self.assertEqual(asked["options"]["accept_label"], "Abrir")
        self.assertFalse(asked["options"].get("multiple", False))
        ((name, patterns),) = asked["options"]["filters"]
        self.assertEqual(name, "Imágenes")
        for pattern in ("*.[jJ][pP][gG]", "*.[jJ][fF][iI][fF]", "*.[hH][eE][iI][cC]"):
            self.assertIn([0, pattern], patterns)
        self.assertEqual(program.elements("dialog"), [])

        path = self.files / "célula 100%.png"
        path.write_bytes(image_bytes())
        portal.choose(path.as_uri())
        program.button("Quitar imagen")
        program.button("Enviar").press()
        sent = self.assistant.next_request().json
        self.assertEqual(base64.b64decode(sent["imageBase64"]), image_bytes())
        self.assertEqual(sent["imageName"], "célula 100%.png")

    def test_name_that_is_not_utf8(self):
        portal = self.start_portal()
        program = self.start()
        with open(os.fsencode(self.files) + b"/radiograf\xeda.png", "wb") as file:
            file.write(image_bytes())
        self.ask_for_image(program, portal)
        portal.choose(self.files.as_uri() + "/radiograf%EDa.png")
        program.button("Quitar imagen")

    def test_file_that_is_gone(self):
        portal = self.start_portal()
        program = self.start()
        self.ask_for_image(program, portal)
        portal.choose((self.files / "nada.png").as_uri())
        program.element("label", "No pude leer la imagen seleccionada.")
        program.confirm("No pude cargar la imagen", "Aceptar")

    def test_cancelled(self):
        portal = self.start_portal()
        program = self.start()
        for _ in range(2):
            self.ask_for_image(program, portal)
            portal.cancel()
        program.ask("sin imagen")
        self.assertEqual(set(self.assistant.next_request().json), {"message", "userId"})

    def test_portal_that_goes_away(self):
        portal = self.start_portal()
        program = self.start()
        self.ask_for_image(program, portal)
        portal.portal.kill()
        portal.portal.wait()
        self.assert_own_chooser_opens(program)

    def test_backend_that_goes_away(self):
        portal = self.start_portal()
        program = self.start()
        self.ask_for_image(program, portal)
        portal.backend.kill()
        portal.backend.wait()
        portal.start_backend()
        self.ask_for_image(program, portal)
        self.assertEqual(program.elements("dialog"), [])

    def test_window_closed_under_the_dialog(self):
        portal = self.start_portal()
        program = self.start()
        asked = self.ask_for_image(program, portal)
        self.assertEqual(program.quit(), 0)
        closed = wait_until(portal.event, "the dialog to be closed")
        self.assertEqual(closed, {"closed": asked["handle"]})

    def test_portal_that_never_answers(self):
        portal = self.start_portal("silent")
        program = self.start()
        self.ask_for_image(program, portal)
        # The window goes on meanwhile.
        program.write("hola")
        program.element("dialog", "Elegí una imagen")

    def test_desktop_without_a_portal(self):
        self.assert_own_chooser_opens(self.start())


if __name__ == "__main__":
    unittest.main()
