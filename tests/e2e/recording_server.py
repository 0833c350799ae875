"""An assistant that a test plays itself: it records each request and sends what the test says."""

import json
import queue
import socket
import ssl
import threading
from dataclasses import dataclass, field


@dataclass
class Request:
    """One request as it came, and the connection it came on."""

    method: str
    path: str
    headers: dict
    body: bytes
    _connection: socket.socket = field(repr=False)

    @property
    def json(self):
        """The body, read as JSON."""
        return json.loads(self.body)

    def begin(self, status=200):
        """Sends the head of a reply whose body ends when the connection does not: chunked."""
        self._send(f"HTTP/1.1 {status} Status\r\nContent-Type: text/plain; charset=utf-8\r\n"
                   "Transfer-Encoding: chunked\r\nConnection: close\r\n\r\n".encode())

    def write(self, text):
        """Sends one chunk of the body."""
        data = text.encode() if isinstance(text, str) else text
        self._send(b"%x\r\n%s\r\n" % (len(data), data))

    def finish(self):
        """Ends the body as it should end."""
        self._send(b"0\r\n\r\n")
        self.cut()

    def cut(self):
        """Closes the connection where it stands."""
        try:
            self._connection.shutdown(socket.SHUT_RDWR)
        except OSError:
            pass
        self._connection.close()

    def answer(self, text, status=200):
        """Sends a whole reply."""
        self.begin(status)
        if text:
            self.write(text)
        self.finish()

    def send_raw(self, data):
        """Sends bytes that need not be a reply at all."""
        self._send(data)

    def _send(self, data):
        try:
            self._connection.sendall(data)
        except OSError:
            pass  # The program left; what that means is for the test to find.


class RecordingServer:
    """Listens as soon as it is made, over TLS if it has a certificate; on a free port when that is
    0. One connection carries one request."""

    def __init__(self, port, certificate=None, key=None):
        self._context = None
        if certificate:
            self._context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
            self._context.load_cert_chain(certificate, key)
        self._requests = queue.Queue()
        self.seen = []
        self._socket = socket.create_server(("localhost", port))
        threading.Thread(target=self._accept, daemon=True).start()

    @property
    def port(self):
        return self._socket.getsockname()[1]

    def next_request(self, timeout=20.0):
        """Waits for a request; fails when none comes."""
        try:
            return self._requests.get(timeout=timeout)
        except queue.Empty:
            raise AssertionError(f"no request came in {timeout:g} s") from None

    def close(self):
        """Stops listening and closes what is open: from now on connections are refused."""
        if self._socket.fileno() >= 0:
            self._socket.shutdown(socket.SHUT_RDWR)
            self._socket.close()
        for request in self.seen:
            request.cut()

    def _accept(self):
        while True:
            try:
                plain, _ = self._socket.accept()
            except OSError:
                return
            threading.Thread(target=self._receive, args=(plain,), daemon=True).start()

    def _receive(self, plain):
        try:
            connection = plain
            if self._context:
                connection = self._context.wrap_socket(plain, server_side=True)
            stream = connection.makefile("rb")
            method, path, _ = stream.readline().decode("latin-1").split(" ", 2)
            headers = {}
            while (line := stream.readline().decode("latin-1").strip()):
                name, value = line.split(":", 1)
                headers[name.lower()] = value.strip()
            body = stream.read(int(headers.get("content-length", 0)))
        except (OSError, ValueError):
            return  # Not a request: a connection opened ahead, or one that the program gave up.
        request = Request(method, path, headers, body, connection)
        self.seen.append(request)
        self._requests.put(request)
