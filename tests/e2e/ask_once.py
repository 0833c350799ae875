"""Shows the program working where there is no display: opens its window on a desktop of its own,
types a question, waits for the whole reply and writes a picture of the window.

Usage: ask_once.py PROGRAM PICTURE
"""

import os
import sys
from pathlib import Path

# The person's own conversations, not those of a test.
OWN_FOLDERS = {name: os.environ[name] for name in ("XDG_DATA_HOME",) if name in os.environ}
HOME = Path.home()

from desktop import Desktop  # noqa: E402

DESKTOP = Desktop(width=1200, height=1800)

from aulora_driver import Program  # noqa: E402  (its bus has to be there first)

QUESTION = "¿Qué es la mitosis y para qué sirve?"
FAILURE = "No pude completar la respuesta"


def main(executable, picture):
    program = Program(DESKTOP, executable, HOME, OWN_FOLDERS)
    DESKTOP.resize(program.window, 1120, 1700)
    conversations = program.wait_for(program.conversations, "the list of conversations")
    title, count, _ = conversations[0]
    print(f"The window is open with {len(conversations)} conversation(s); "
          f"the first, {title!r}, has {count}.")
    program.ask(QUESTION)
    # It was another one from the moment the composer was empty.
    program.wait_for_status("En línea")
    reply = program.wait_for(program.whole_reply, "the whole reply")
    program.picture(picture)
    if reply.startswith(FAILURE):
        sys.exit(f"Asked {QUESTION!r} and got no answer:\n{reply}")
    print(f"Asked {QUESTION!r} and got {len(reply.splitlines())} lines.")
    print(f"A picture of the window is in {picture}")
    return program.quit()


if __name__ == "__main__":
    try:
        sys.exit(main(*sys.argv[1:]))
    finally:
        DESKTOP.close()
