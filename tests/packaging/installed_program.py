"""Uses the installed client as a student does, on a desktop without a display: asks, attaches an
image, closes the window and opens it again, goes on while the package is upgraded.

Usage: installed_program.py FOLDER, where the files "upgrade" (the client is open: upgrade now) and
"upgraded" tell this program and the one that runs it of each other's steps. What the client had
mapped into memory is left in "mapped-files", and what its window showed in "picture.png".
"""

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


def attach_image(program):
    """Chooses an image in the toolkit's own file chooser: there is no other here."""
    # WebP needs the additional image formats.
    subprocess.run(["convert", "-size", "60x40", "gradient:", str(HOME / "foto.webp")], check=True)
    program.button("Adjuntar imagen").press()
    program.choose_file("foto.webp")
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
    attach_image(program)
    with_image = reply_to(program, WITH_IMAGE)
    assert "WebP" in with_image, with_image
    step("an image in WebP was chosen, sent and answered")
    maps = Path(f"/proc/{program.process.pid}/maps").read_text()
    (folder / "mapped-files").write_text(
        "\n".join(sorted({line.split(maxsplit=5)[5] for line in maps.splitlines()
                          if len(line.split()) > 5 and line.split()[5].startswith("/usr/")})))
    program.picture(folder / "picture.png")
    close(program)

    program = Program(DESKTOP, PROGRAM, HOME)
    program.wait_for_messages(FIRST, first, WITH_IMAGE, with_image)
    step("closed and opened again, the conversation is there")

    (folder / "upgrade").touch()
    wait_until((folder / "upgraded").exists, "the upgrade", timeout=120)
    second = reply_to(program, SECOND)
    texts = [FIRST, first, WITH_IMAGE, with_image, SECOND, second]
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
