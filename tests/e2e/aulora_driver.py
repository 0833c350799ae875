"""Drives the built program from outside, the way a person and a screen reader do: it finds elements
by role and accessible name, presses and types, and reads what is shown. It knows nothing of the
code. Make a Desktop before importing this module: the accessibility library looks for its bus once.
"""

import json
import sqlite3
import subprocess
import tempfile
import warnings
from pathlib import Path

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402  (the version has to be chosen first)

from desktop import die_with_parent, wait_until  # noqa: E402

WINDOW_TITLE = "Aulora IA"
STORE = Path(".local/share/aulora-ia/preferences.sqlite")


class Element:
    """One element of the accessibility tree. Everything is asked anew each time."""

    def __init__(self, desktop, accessible, scale):
        self._desktop = desktop
        self._accessible = accessible
        self._scale = scale

    @property
    def role(self):
        name = self._accessible.get_role_name()
        # What AT-SPI before 2.54 calls it.
        return "button" if name == "push button" else name

    @property
    def name(self):
        return self._accessible.get_name()

    @property
    def description(self):
        return self._accessible.get_description()

    @property
    def text(self):
        """The text inside an editable field."""
        # Qt returns U+2029 between paragraphs.
        return Atspi.Text.get_text(self._accessible, 0, -1).replace("\u2029", "\n")

    @property
    def rectangle(self):
        """x, y, width and height in pixels of the screen."""
        # Qt leaves its own scale factor out.
        box = self._accessible.get_extents(Atspi.CoordType.SCREEN)
        return tuple(round(self._scale * length)
                     for length in (box.x, box.y, box.width, box.height))

    @property
    def center(self):
        x, y, width, height = self.rectangle
        return x + width // 2, y + height // 2

    def has(self, state):
        """Whether the element is in a state: "focused", "checked", "selected", "sensitive" …"""
        return self._accessible.get_state_set().contains(getattr(Atspi.StateType, state.upper()))

    def press(self):
        """The action that a screen reader takes on a button or a switch."""
        # Qt lists its own actions before those of the same name that QML adds.
        self._act("Press", "Toggle")

    def focus(self):
        """Gives the element the keyboard, as a screen reader does."""
        self._act("SetFocus")

    def click(self):
        """A click of the mouse in the middle of it."""
        self._desktop.click(*self.center)

    def _act(self, *names):
        with warnings.catch_warnings():
            # pyatspi calls an older function of the same name.
            warnings.simplefilter("ignore", DeprecationWarning)
            offered = [Atspi.Action.get_action_name(self._accessible, index)
                       for index in range(Atspi.Action.get_n_actions(self._accessible))]
        index = max((i for i, name in enumerate(offered) if name in names), default=None)
        assert index is not None, f"{self.role} {self.name!r} offers {offered}, not {names}"
        Atspi.Action.do_action(self._accessible, index)

    def button(self, name):
        """The button with this name somewhere below."""
        return next(element for element in _descendants(self)
                    if element.role == "button" and element.name == name)

    def children(self):
        for index in range(self._accessible.get_child_count()):
            child = self._accessible.get_child_at_index(index)
            if child:
                yield Element(self._desktop, child, self._scale)


class Program:
    """One run of the program. Its home folder is its own, unless one is given, and may outlive it."""

    def __init__(self, desktop, executable, home=None, environment=()):
        self.desktop = desktop
        self.home = Path(home or tempfile.mkdtemp(prefix="home-", dir=desktop.folder))
        self._executable = Path(executable).resolve()
        self._environment = desktop.environment | {"HOME": str(self.home)} | dict(environment)
        self._log = Path(tempfile.mkstemp(prefix="output-", dir=desktop.folder)[1])
        self.process = self.launch()

    def launch(self):
        """Starts the program (once more) in the same home folder."""
        with self._log.open("ab") as log:
            return subprocess.Popen([self._executable], env=self._environment, cwd=self.home,
                                    stdin=subprocess.DEVNULL, stdout=log, stderr=log,
                                    preexec_fn=die_with_parent)

    def quit(self):
        """Closes the window as its close button does and waits for the program to end."""
        self.desktop.close_window(self.window)
        return self.wait()

    def kill(self):
        """Ends the program without asking it."""
        self.process.kill()
        return self.wait()

    def wait(self, timeout=20):
        """Waits for the program's end; its exit status."""
        return self.process.wait(timeout)

    @property
    def output(self):
        """What the program has written to its standard output and standard error."""
        return self._log.read_text(errors="replace")

    def forget_output(self):
        """Leaves out of `output` what was written so far."""
        self._log.write_bytes(b"")

    @property
    def window(self):
        """The id of the program's window, once it is there."""
        return wait_until(lambda: self.desktop.windows(WINDOW_TITLE), "the window")[0]

    def picture(self, path):
        """Writes what the window shows as a picture."""
        self.desktop.picture(self.window, path)

    def tree(self):
        """Every element of the program that is on the bus now, parents first."""
        bus = Atspi.get_desktop(0)
        bus.clear_cache()
        for index in range(bus.get_child_count()):
            application = bus.get_child_at_index(index)
            if application and application.get_process_id() == self.process.pid:
                application.set_cache_mask(Atspi.Cache.NONE)
                scale = float(self._environment.get("QT_SCALE_FACTOR", 1))
                yield from _descendants(Element(self.desktop, application, scale))

    def elements(self, role, name=None):
        """The visible elements with a role and, if given, a name, as they are now."""
        # A view that goes away while it is read takes its branch of the tree with it.
        try:
            return [element for element in self.tree()
                    if element.role == role and name in (None, element.name)
                    and element.has("visible")]
        except GLib.Error:
            return []

    def element(self, role, name):
        """The one element with this role and name, waited for."""
        return wait_until(lambda: self.elements(role, name), f"the {role} {name!r}")[0]

    def button(self, name):
        return self.element("button", name)

    @property
    def composer(self):
        return self.element("text", "Mensaje")

    def messages(self):
        """The texts of the questions and replies on the screen and near it, from the top."""
        # A reply that is still growing ends in a line feed, which nobody sees.
        return [element.name.rstrip("\n") for element in self.elements("paragraph")]

    def whole_reply(self):
        """The text of the message at the bottom, once nothing is to be added to it and the list
        has been scrolled to its end."""
        messages = self.elements("paragraph")
        if not messages or messages[-1].name.endswith("\n"):
            return None
        _, top, _, height = messages[-1].rectangle
        is_in_view = top + height <= self.composer.rectangle[1]
        return messages[-1].name if is_in_view else None

    def conversations(self):
        """Title, count line and whether it is selected, of each row, from the top."""
        rows = sorted(self.elements("list item"), key=lambda row: row.rectangle[1])
        return [(row.name, row.description, row.has("selected")) for row in rows]

    def wait_for(self, condition, what):
        """Waits for a condition, unless the program ends first."""
        def holds():
            assert self.process.poll() is None, f"the program ended; it said: {self.output}"
            try:
                return condition()
            except GLib.Error:
                return None
        return wait_until(holds, what)

    def wait_for_conversations(self, *rows):
        """Rows as conversations() gives them."""
        self.wait_for(lambda: self.conversations() == list(rows), f"the conversations {rows}")

    def wait_for_composer(self, text):
        self.wait_for(lambda: self.composer.text == text, f"the composer to hold {text!r}")

    def wait_for_messages(self, *texts):
        self.wait_for(lambda: self.messages() == list(texts), f"the messages {texts}")

    def wait_for_status(self, text):
        self.wait_for(lambda: self.elements("label", text), f"the status {text!r}")

    def write(self, text):
        """Puts the cursor into the composer with the mouse and types."""
        self.composer.click()
        self.wait_for(lambda: self.composer.has("focused"), "the composer to take the keyboard")
        before = self.composer.text
        self.desktop.type(text)
        self.wait_for_composer(before + text)

    def ask(self, text):
        """Types a question and sends it with Return."""
        self.write(text)
        self.desktop.press("Return")
        self.wait_for_composer("")

    def write_pasted(self, text):
        """Puts a text that no keyboard has into the composer, through the clipboard."""
        self.composer.click()
        self.wait_for(lambda: self.composer.has("focused"), "the composer to take the keyboard")
        self.desktop.copy(text.encode(), "UTF8_STRING")
        self.desktop.press("ctrl+v")
        self.wait_for_composer(text)

    def focused(self):
        """The element that has the keyboard, if any; not what is around it."""
        # What is around it counts as focused, too, and comes before it.
        return next((element for element in reversed(list(self.tree())) if element.has("focused")
                     and element.role not in ("application", "frame", "dialog")), None)

    def confirm(self, title, answer):
        """Waits for an alert and presses one of its buttons."""
        alert = self.element("dialog", title)
        alert.button(answer).press()
        self.wait_for(lambda: not self.elements("dialog", title), "the alert to go")

    def choose_file(self, name):
        """Chooses a file of the folder that the program's own file chooser shows."""
        self.element("list item", name).click()
        self.wait_for(lambda: self.element("list item", name).has("selected"), f"{name} to be chosen")
        self.button("Abrir").click()

    def in_sheet(self, name):
        """A button of the settings sheet, whatever else has the same name behind it."""
        return self.elements("button", name)[-1]

    def store(self, query):
        """Rows of the program's store, read without touching it."""
        path = self.home / STORE
        with sqlite3.connect(f"file:{path}?mode=ro", uri=True) as store:
            return store.execute(query).fetchall()

    def history(self):
        """The stored conversations, newest first."""
        rows = self.store("select value from preferences where key = 'aulora.conversations.v3'")
        return json.loads(rows[0][0])

    def write_store(self, key, value):
        """Puts a value into the store of a program that is not running."""
        with sqlite3.connect(self.home / STORE) as store:
            store.execute("insert or replace into preferences values(?, ?)", [key, value])


def _descendants(element):
    yield element
    for child in element.children():
        yield from _descendants(child)
