"""The whole program killed while a reply streams, and told to end with a large history: what it had
saved is there, whatever the moment. The environment says how often."""

import base64
import json
import os
import random
import shutil
import signal
import sqlite3
import tempfile
import threading
import time
import unittest
from pathlib import Path

from aulora_driver import STORE, Program
from aulora_test_case import AuloraTestCase

KEY = "aulora.conversations.v3"
MESSAGES_OF_60_MB = 800
PREVIEW_SIZE = 56_000


def texts(history):
    """Every message's text by its conversation's and its own id."""
    return {(conversation["id"], message["id"]): message["text"]
            for conversation in history for message in conversation["messages"]}


def left_behind(home):
    """The conversations in the store of a program that is gone, as its next run finds them. The
    store itself stays untouched."""
    with tempfile.TemporaryDirectory() as folder:
        copy = shutil.copytree((home / STORE).parent, Path(folder) / "copy",
                               ignore=shutil.ignore_patterns("*.lock"))
        store = sqlite3.connect(copy / STORE.name)
        try:
            rows = store.execute("select value from preferences where key = ?", [KEY]).fetchall()
        finally:
            store.close()
        return json.loads(rows[0][0])


class TortureTest(AuloraTestCase):
    def setUp(self):
        super().setUp()
        self.random = random.Random(2026)
        self.losses = []

    def report(self, what):
        print(f"{what}; lost: {len(self.losses)}", flush=True)
        self.assertEqual(self.losses, [])

    def launch(self, home):
        program = Program(self.desktop, self.executable, home)
        self.addCleanup(program.kill)
        return program

    def test_kills_while_a_reply_streams(self):
        kills = int(os.environ.get("AULORA_WINDOW_KILLS", 4))
        runs_of_a_home = 20
        saved = 0
        for kill in range(kills):
            if kill % runs_of_a_home == 0:
                home = None
                kept = {}
            program = self.launch(home)
            home = program.home
            if kept:
                count = f"{len(kept)} mensajes"
                program.wait_for(lambda: [row[1] for row in program.conversations()] == [count],
                                 count)
            program.ask(f"pregunta {kill}")
            request = self.assistant.next_request()
            threading.Thread(target=self.stream, args=(request, program), daemon=True).start()
            time.sleep(self.random.random())
            # What another program can read is saved, for good.
            seen = texts(program.history())
            time.sleep(self.random.random() / 10)
            program.kill()
            now = texts(left_behind(home))
            saved += len(seen)
            for place, text in (kept | seen).items():
                if not now.get(place, "").startswith(text):
                    self.losses.append((kill, text, now.get(place)))
            kept = now
        self.report(f"{kills} kills of the program while a reply streams, {saved} messages seen "
                    "on disk before")

    def stream(self, request, program):
        request.begin()
        while program.process.poll() is None:
            request.write("otra línea de la respuesta\n")
            time.sleep(0.003)

    def test_terminations_with_a_large_history(self):
        terminations = int(os.environ.get("AULORA_TERMINATIONS", 3))
        home = self.home_with_60_mb()
        kept = texts(left_behind(home))
        told_late = 0
        slowest = 0
        for number in range(terminations):
            program = self.launch(home)
            question = None
            if self.random.random() < 0.75:
                question = f"pregunta {number}"
                program.window
                program.ask(question)
                self.assistant.next_request().begin()
            time.sleep(self.random.random())
            program.process.send_signal(signal.SIGTERM)
            began = time.monotonic()
            status = program.wait(30)
            slowest = max(slowest, time.monotonic() - began)
            now = texts(left_behind(home))
            for place, text in kept.items():
                if now.get(place) != text:
                    self.losses.append((number, text, now.get(place)))
            is_saved = question is None or question in now.values()
            is_told = "Error guardando historial: " in program.output
            told_late += is_told
            # The system itself ends a program that has not begun to listen to signals.
            if not (is_saved or is_told) or status not in (0, 1, -signal.SIGTERM):
                self.losses.append((number, question, status, program.output))
            kept = now
        self.report(f"{terminations} terminations with a history of 60 MB, the slowest end "
                    f"{slowest:.1f} s, {told_late} told of what the disk did not take in time")

    def home_with_60_mb(self):
        """A home folder whose history has that size."""
        program = self.start()
        self.assertEqual(program.quit(), 0)
        conversations = []
        for index in range(MESSAGES_OF_60_MB):
            if index % 20 == 0:
                conversations.append({"id": self.uuid(), "title": f"Caso {index}", "messages": []})
            preview = base64.b64encode(self.random.randbytes(PREVIEW_SIZE)).decode()
            conversations[-1]["messages"].append(
                {"id": self.uuid(), "text": f"mensaje {index}", "isUser": True,
                 "attachmentName": "rx.jpg", "imagePreviewData": preview})
        program.write_store(KEY, json.dumps(conversations).encode())
        return program.home

    def uuid(self):
        digits = "%032X" % self.random.getrandbits(128)
        return "-".join((digits[:8], digits[8:12], digits[12:16], digits[16:20], digits[20:]))


if __name__ == "__main__":
    unittest.main()
