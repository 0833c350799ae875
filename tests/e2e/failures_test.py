"""What a person reads when an exchange fails; a question is never sent twice."""

import socket
import subprocess
import tempfile
import unittest
from datetime import datetime, timedelta, timezone
from pathlib import Path

from aulora_test_case import AuloraTestCase
from recording_server import RecordingServer

PREFIX = "No pude completar la respuesta de Aulora IA.\n\n"
LOST = "Se perdió la conexión con el servicio."
INSECURE = "No se pudo establecer una conexión segura con el servicio."

ISSUER = """
[ca]
default_ca = issuer
[issuer]
database = {folder}/index
new_certs_dir = {folder}
default_md = sha256
rand_serial = yes
copy_extensions = copy
policy = any
[any]
commonName = supplied
"""


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
        notice = PREFIX + "El servicio rechazó la conexión."
        self.assert_notice(program, "¿hay alguien?", notice)
        program.element("notification", notice)

    def serve_with(self, host, years=1, trusted=True):
        """Takes the assistant's place with a certificate of its own: for a host, from a year ago to
        so many years from now, issued by whom the program trusts or by nobody."""
        self.assistant.close()
        folder = Path(tempfile.mkdtemp(dir=self.desktop.folder))
        key, wish, certificate = (folder / f"other.{suffix}" for suffix in ("key", "csr", "pem"))
        (folder / "index").touch()
        (folder / "ca").write_text(ISSUER.format(folder=folder))
        now = datetime.now(timezone.utc)
        begin, end = (f"{now + timedelta(days=365 * each):%Y%m%d%H%M%SZ}" for each in (-1, years))
        issuer = (["-cert", self.certificate, "-keyfile", self.key] if trusted
                  else ["-selfsign", "-keyfile", key])
        for command in (
            ["req", "-new", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-noenc",
             "-subj", f"/CN={host}", "-addext", f"subjectAltName=DNS:{host}", "-keyout", key,
             "-out", wish],
            # The only command of Debian 12's OpenSSL and of 13's that takes an end in the past.
            ["ca", "-batch", "-notext", "-config", folder / "ca", "-in", wish, *issuer,
             "-startdate", begin, "-enddate", end, "-out", certificate],
        ):
            subprocess.run(["openssl", *command], check=True, capture_output=True)
        server = RecordingServer(self.port, certificate, key)
        self.addCleanup(server.close)
        return server

    def test_certificates(self):
        program = self.start()
        for question, certificate in {"de nadie": {"host": "localhost", "trusted": False},
                                      "de otro": {"host": "otro.example"},
                                      "vencido": {"host": "localhost", "years": -0.5}}.items():
            with self.subTest(question):
                impostor = self.serve_with(**certificate)
                program.ask(question)
                self.assert_notice(program, question, PREFIX + INSECURE)
                self.assertEqual(impostor.seen, [])
                impostor.close()
        # What is wrong with them is nothing else: one as it should be is trusted.
        assistant = self.serve_with("localhost")
        program.ask("en regla")
        assistant.next_request().answer("Te escucho.\n")
        self.assert_notice(program, "en regla", "Te escucho.")

    def test_no_encryption(self):
        self.assistant.close()
        program = self.start()
        with socket.create_server(("localhost", self.port)) as server:
            program.ask("a la vista")
            connection, _ = server.accept()
            with connection:
                connection.sendall(b"HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\nno\n")
                self.assert_notice(program, "a la vista", PREFIX + INSECURE)

    def test_something_else_answers(self):
        program = self.start()
        program.ask("¿correo?")
        request = self.assistant.next_request()
        request.send_raw(b"220 correo.example ESMTP\r\n")
        self.assert_notice(program, "¿correo?",
                           PREFIX + "La respuesta del servidor no es válida.")

    def test_silence_leaves_the_rest_at_work(self):
        program = self.start()
        program.ask("¿seguís ahí?")
        request = self.assistant.next_request()
        request.begin()
        request.write("Un mom")
        program.wait_for_status("Procesando")
        program.write("mientras tanto")
        program.button("Configuración").press()
        program.button("Cerrar configuración").press()
        program.button("Nueva conversación").press()
        program.wait_for_composer("")
        program.element("list item", "¿seguís ahí?").press()
        program.wait_for_messages("¿seguís ahí?")
        request.write("ento.\n")
        request.finish()
        program.wait_for_messages("¿seguís ahí?", "Un momento.")
        program.wait_for_status("En línea")
        self.assertEqual(len(self.assistant.seen), 1)

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
