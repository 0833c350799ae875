"""What a person reads when an exchange fails; a question is never sent twice."""

import subprocess
import unittest
from pathlib import Path

from aulora_test_case import AuloraTestCase
from recording_server import RecordingServer

PREFIX = "No pude completar la respuesta de Aulora IA.\n\n"
LOST = "Se perdió la conexión con el servicio."


class FailuresTest(AuloraTestCase):
    def assert_notice(self, program, *texts):
        """The last messages of the conversation, as stored; the status falls back."""
        program.wait_for_status("En línea")
        program.wait_for(
            lambda: [m["text"] for m in program.history()[0]["messages"]][-len(texts):]
            == list(texts), f"the stored messages {texts}")

    def test_statuses(self):
        program = self.start()
        for status in (301, 302, 307, 308, 400, 404, 418, 500, 502, 503):
            with self.subTest(status):
                program.ask(f"estado {status}")
                self.assistant.next_request().send_raw(
                    f"HTTP/1.1 {status} X\r\nLocation: https://{self.host}/api/chat\r\n"
                    "Content-Length: 5\r\nConnection: close\r\n\r\nnada\n".encode())
                self.assert_notice(program, f"estado {status}",
                                   PREFIX + f"Error del servidor ({status}).")
        self.assertEqual(len(self.assistant.seen), 10)

    def test_success_without_content(self):
        program = self.start()
        program.ask("vacío")
        self.assistant.next_request().send_raw(
            b"HTTP/1.1 204 No Content\r\nConnection: close\r\n\r\n")
        self.assert_notice(program, "vacío")

    def test_connection_cut(self):
        program = self.start()
        program.ask("sin cabecera")
        self.assistant.next_request().cut()
        self.assert_notice(program, "sin cabecera", PREFIX + LOST)

        program.ask("a medias")
        request = self.assistant.next_request()
        request.begin()
        request.write("parte de la respuesta\n")
        program.wait_for(lambda: "parte de la respuesta" in program.messages(), "the first line")
        request.cut()
        self.assert_notice(program, "a medias", "parte de la respuesta\n", PREFIX + LOST)
        self.assertEqual(len(self.assistant.seen), 2)

    def test_refused(self):
        self.assistant.close()
        program = self.start()
        program.ask("¿hay alguien?")
        self.assert_notice(program, "¿hay alguien?",
                           PREFIX + "El servicio rechazó la conexión.")

    def test_unknown_certificate(self):
        self.assistant.close()
        folder = Path(self.desktop.folder)
        subprocess.run(["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt",
                        "ec_paramgen_curve:prime256v1", "-noenc", "-subj", "/CN=localhost",
                        "-addext", "subjectAltName=DNS:localhost", "-keyout", folder / "other.key",
                        "-out", folder / "other.pem"], check=True, capture_output=True)
        impostor = RecordingServer(self.port, folder / "other.pem", folder / "other.key")
        self.addCleanup(impostor.close)
        program = self.start()
        program.ask("secreto")
        self.assert_notice(program, "secreto", PREFIX
                           + "No se pudo establecer una conexión segura con el servicio.")
        self.assertEqual(impostor.seen, [])

    def test_works_again_after_a_failure(self):
        program = self.start()
        program.ask("uno")
        self.assistant.next_request().answer("", status=500)
        self.assert_notice(program, "uno", PREFIX + "Error del servidor (500).")
        program.ask("dos")
        self.assistant.next_request().answer("Ahora sí.\n")
        self.assert_notice(program, "dos", "Ahora sí.")


if __name__ == "__main__":
    unittest.main()
