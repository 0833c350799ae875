"""What script/find-model makes of the servers that may be there."""

import socket
import subprocess
import threading
import unittest
from http.server import BaseHTTPRequestHandler, HTTPServer
from pathlib import Path

SCRIPT = Path(__file__).parents[2] / "script/find-model"


class FindModelTest(unittest.TestCase):
    def serve(self, answer, status=200, headers=()):
        """A server on a free port that answers everything alike."""
        paths = []

        class Handler(BaseHTTPRequestHandler):
            def do_GET(self):
                paths.append(self.path)
                self.send_response(status)
                for name, value in dict(headers).items():
                    self.send_header(name, value)
                self.end_headers()
                self.wfile.write(answer.encode())

            def log_message(self, *_):
                pass

        server = HTTPServer(("127.0.0.1", 0), Handler)
        threading.Thread(target=server.serve_forever, daemon=True).start()
        self.addCleanup(server.server_close)
        self.addCleanup(server.shutdown)
        return server.server_port, paths

    def unused_port(self):
        server = HTTPServer(("127.0.0.1", 0), BaseHTTPRequestHandler)
        server.server_close()
        return server.server_port

    def find(self, *ports):
        command = ["/usr/bin/python3", str(SCRIPT), *map(str, ports)]
        return subprocess.run(command, check=True, capture_output=True, text=True).stdout

    def test_first_model_of_the_first_server_that_answers(self):
        port, paths = self.serve('{"data": [{"id": "llama3:8b"}, {"id": "otro"}]}')
        other, _ = self.serve('{"data": [{"id": "tercero"}]}')
        self.assertEqual(self.find(self.unused_port(), port, other),
                         f"http://127.0.0.1:{port}/v1\nllama3:8b\n")
        self.assertEqual(paths, ["/v1/models"])

    def test_nothing_when_nobody_listens(self):
        self.assertEqual(self.find(self.unused_port()), "")

    def test_nothing_when_something_else_answers(self):
        for answer in ("hola", "[]", "{}", '{"data": []}', '{"data": null}', '{"data": [1]}',
                       '{"data": [{"id": 7}]}', '{"data": [{"id": "dos palabras"}]}',
                       '{"data": [{"id": "--key"}]}', '{"data": [{"id": "a\\nb"}]}'):
            with self.subTest(answer):
                self.assertEqual(self.find(self.serve(answer)[0]), "")
        self.assertEqual(self.find(self.serve('{"data": [{"id": "a"}]}', 404)[0]), "")
        self.assertEqual(self.find(self.serve("[" * 200_000)[0]), "")

    def test_nothing_when_what_answers_is_no_web_server(self):
        listener = socket.create_server(("127.0.0.1", 0))
        self.addCleanup(listener.close)

        def greet():
            connection, _ = listener.accept()
            with connection:
                connection.sendall(b"SSH-2.0-OpenSSH_9.2\r\n")
                connection.recv(1000)

        threading.Thread(target=greet, daemon=True).start()
        self.assertEqual(self.find(listener.getsockname()[1]), "")

    def test_redirects_are_not_followed(self):
        elsewhere, paths = self.serve('{"data": [{"id": "ajeno"}]}')
        port, _ = self.serve("", 302, {"Location": f"http://127.0.0.1:{elsewhere}/v1/models"})
        self.assertEqual(self.find(port), "")
        self.assertEqual(paths, [])


if __name__ == "__main__":
    unittest.main()
