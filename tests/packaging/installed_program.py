"""Uses the installed client as a student does, on a desktop without a display: asks, attaches an
image, closes the window and opens it again, goes on while the package is upgraded.

Usage: installed_program.py FOLDER, where the files "upgrade" (the client is open: upgrade now) and
"upgraded" tell this program and the one that runs it of each other's steps. What the client had
mapped into memory is left in "mapped-files", and what its window showed in "picture.png".
"""

import base64
import os
import subprocess
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "e2e"))
HOME = Path.home()

from desktop import Desktop, wait_until  # noqa: E402

DESKTOP = Desktop(width=1300, height=1000)

from aulora_driver import Program  # noqa: E402  (its bus has to be there first)

PROGRAM = "/usr/bin/aulora-ia"
FIRST = "¿Qué es la mitosis y para qué sirve?"
SECOND = "¿Qué es la meiosis?"
WITH_IMAGE = "¿Qué ves en esta imagen?"
# 64 × 64 pixels of one green, as a phone would write them.
HEIC = base64.b64decode("""
AAAAHGZ0eXBoZWljAAAAAG1pZjFoZWljbWlhZgAAAUJtZXRhAAAAAAAAACFoZGxyAAAAAAAAAABwaWN0AAAAAAAAAAAAAAAA
AAAAAA5waXRtAAAAAAABAAAAImlsb2MAAAAAREAAAQABAAAAAAFmAAEAAAAAAAAAFQAAACNpaW5mAAAAAAABAAAAFWluZmUC
AAAAAAEAAGh2YzEAAAAAwmlwcnAAAACkaXBjbwAAAHhodmNDAQNwAAAAAAAAAAAAHvAA/P34+AAADwMgAAEAGEABDAH//wNw
AAADAJAAAAMAAAMAHroCQCEAAQArQgEBA3AAAAMAkAAAAwAAAwAeoCCBBZbqSSmubgQEDAgAAAMACAAAAwAIQCIAAQAHRAHB
crAiQAAAABRpc3BlAAAAAAAAAEAAAABAAAAAEHBpeGkAAAAAAwgICAAAABZpcG1hAAAAAAAAAAEAAQOBAoMAAAAdbWRhdAAA
ABEoAa8EGPx5OOv/8hh/3ok4sw==""")


def step(text):
    print(f"  ok  {text}", flush=True)


def reply_to(program, question):
    """Asks a question; the whole reply, which has to be one."""
    program.ask(question)
    program.wait_for_status("En línea")
    reply = program.wait_for(program.whole_reply, "the whole reply")
    assert not reply.startswith("No pude completar"), reply
    assert len(reply.splitlines()) > 3, reply
    return reply


def image_files():
    """Images of two kinds that Qt reads with further plugins only, in the home folder."""
    subprocess.run(["convert", "-size", "60x40", "gradient:", str(HOME / "foto.webp")], check=True)
    (HOME / "foto.heic").write_bytes(HEIC)
    return ["foto.webp", "foto.heic"]


def attach(program, name):
    """Chooses an image in the program's own file chooser: the desktop has none."""
    program.button("Adjuntar imagen").click()
    program.choose_file(name)
    program.button("Quitar imagen")


def messages(history):
    """The messages of the one conversation there is."""
    assert len(history) == 1, history
    return history[0]["messages"]


def close(program):
    """Closes the window as a person does; what the client then has stored."""
    assert program.quit() == 0, program.output
    assert not program.output, program.output
    return program.history()


def open_again(history, beginning):
    """Opens the client on what it had stored: the whole conversation, and its beginning on the
    screen."""
    program = Program(DESKTOP, PROGRAM, HOME)
    counts = [f"{len(messages(history))} mensajes"]
    program.wait_for(lambda: [count for _, count, _ in program.conversations()] == counts,
                     f"one conversation of {counts[0]}")
    program.wait_for(lambda: program.messages()[:2] == beginning, "the first question and answer")
    assert program.history() == history, program.history()
    return program


def write_mapped_files(program, path):
    """Writes down the system's files that the program has loaded."""
    lines = Path(f"/proc/{program.process.pid}/maps").read_text().splitlines()
    files = {line.split(maxsplit=5)[5] for line in lines if "/usr/" in line}
    path.write_text("".join(f"{file}\n" for file in sorted(files)))


def main(folder):
    program = Program(DESKTOP, PROGRAM, HOME)
    program.wait_for(program.conversations, "the list of conversations")
    first = reply_to(program, FIRST)
    step(f"the client asked and got an answer of {len(first.splitlines())} lines")
    program.picture(folder / "picture.png")
    for name in image_files():
        attach(program, name)
        reply_to(program, WITH_IMAGE)
        question = messages(program.history())[-2]
        assert question.get("imagePreviewData"), f"{name} has no preview"
    step("images in WebP and HEIC were chosen, previewed, sent and answered")
    write_mapped_files(program, folder / "mapped-files")
    history = close(program)
    assert len(messages(history)) == 6, history

    program = open_again(history, [FIRST, first])
    step("closed and opened again, the client has the conversation")

    (folder / "upgrade").touch()
    wait_until((folder / "upgraded").exists, "the upgrade", timeout=120)
    reply_to(program, SECOND)
    longer = close(program)
    assert messages(longer)[:-2] == messages(history), longer
    assert messages(longer)[-2]["text"] == SECOND, longer
    step("upgraded while it ran, the client asked, stored the answer and closed")

    close(open_again(longer, [FIRST, first]))
    step("the upgraded client read all of it")


if __name__ == "__main__":
    try:
        main(Path(sys.argv[1]))
    finally:
        DESKTOP.close()
