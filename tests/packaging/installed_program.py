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
    """Images of two kinds that the toolkit reads with further plugins only, in the home folder."""
    subprocess.run(["convert", "-size", "60x40", "gradient:", str(HOME / "foto.webp")], check=True)
    (HOME / "foto.heic").write_bytes(HEIC)
    return ["foto.webp", "foto.heic"]


def attach(program, name):
    """Chooses an image in the toolkit's own file chooser: there is no other here."""
    program.button("Adjuntar imagen").press()
    program.choose_file(name)
    program.button("Quitar imagen")


def stored_texts(program):
    """The texts of the newest stored conversation, without blanks at their ends."""
    return [message["text"].strip() for message in program.history()[0]["messages"]]


def close(program):
    assert program.quit() == 0, program.output
    assert not program.output, program.output


def main(folder):
    program = Program(DESKTOP, PROGRAM, HOME)
    program.wait_for(program.conversations, "the list of conversations")
    first = reply_to(program, FIRST)
    step(f"the client asked and got an answer of {len(first.splitlines())} lines")
    texts = [FIRST, first]
    for name in image_files():
        attach(program, name)
        texts += [WITH_IMAGE, reply_to(program, WITH_IMAGE)]
        assert "imagePreviewData" in program.history()[0]["messages"][-2], f"{name} has no preview"
    step("images in WebP and HEIC were chosen, previewed, sent and answered")
    maps = Path(f"/proc/{program.process.pid}/maps").read_text()
    (folder / "mapped-files").write_text(
        "\n".join(sorted({line.split(maxsplit=5)[5] for line in maps.splitlines()
                          if len(line.split()) > 5 and line.split()[5].startswith("/usr/")})))
    program.picture(folder / "picture.png")
    close(program)

    program = Program(DESKTOP, PROGRAM, HOME)
    program.wait_for(lambda: program.messages()[-2:] == texts[-2:], "the last question and answer")
    assert stored_texts(program) == texts, stored_texts(program)
    step("closed and opened again, the conversation is there")

    (folder / "upgrade").touch()
    wait_until((folder / "upgraded").exists, "the upgrade", timeout=120)
    second = reply_to(program, SECOND)
    texts += [SECOND, second]
    assert stored_texts(program) == texts, stored_texts(program)
    close(program)
    step("upgraded while it ran, the client asked, stored the answer and closed")

    program = Program(DESKTOP, PROGRAM, HOME)
    program.wait_for(lambda: program.messages()[-2:] == [SECOND, second], "the last answer")
    assert stored_texts(program) == texts, stored_texts(program)
    close(program)
    step("the upgraded client opened what the one before had stored")


if __name__ == "__main__":
    try:
        main(Path(sys.argv[1]))
    finally:
        DESKTOP.close()
