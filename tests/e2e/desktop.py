"""A desktop without a display: an X server, a window manager, a message bus and the accessibility
bus, all of this process's own, all gone when it ends."""

import ctypes
import os
import re
import shutil
import signal
import subprocess
import tempfile
import time
from pathlib import Path

_PR_SET_PDEATHSIG = 1
_LIBC = ctypes.CDLL(None)

# Spare keys, which get the letters that the plain layout lacks. The layout is changed before keys
# are pressed: changing it meanwhile loses letters.
_SPARE_KEYS = [f"<I{code}>" for code in range(180, 256)]
_PLAIN = set(map(chr, range(32, 127)))


def die_with_parent():
    """Makes a child end when this process does, however that happens."""
    _LIBC.prctl(_PR_SET_PDEATHSIG, signal.SIGKILL)


def wait_until(condition, what, timeout=20.0):
    """Asks condition until it yields something true, which is returned; fails after timeout
    seconds, saying what was waited for."""
    deadline = time.monotonic() + timeout
    while True:
        answer = condition()
        if answer:
            return answer
        if time.monotonic() > deadline:
            raise AssertionError(f"waited {timeout:g} s in vain for {what[:400]}")
        time.sleep(0.02)


class Desktop:
    """Starts everything when made. `environment` is what a program needs to appear on it; it is
    also put into this process, whose accessibility library reads it once. `folder` is for whatever
    need not outlive the desktop."""

    def __init__(self, width=2400, height=1800):
        self.folder = Path(tempfile.mkdtemp(prefix="aulora-desktop-"))
        self._processes = []
        self._extra_letters = []
        self._drag_source = None
        self.environment = {
            "PATH": os.environ["PATH"],
            "LANG": "C.UTF-8",
            "HOME": str(self.folder),
            "XDG_RUNTIME_DIR": str(self.folder),
            "TMPDIR": str(self.folder),
            "DISPLAY": self._start_display(width, height),
            "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
            # Qt 6.8 says whenever it is asked for an element that has gone meanwhile.
            "QT_LOGGING_RULES": "qt.accessibility.atspi.warning=false",
        }
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = self._start_bus()
        self._start(["openbox", "--sm-disable"])
        self._load_keyboard()
        os.environ.update(self.environment)

    def close(self):
        """Ends what was started, newest first."""
        for process in reversed(self._processes):
            process.terminate()
            process.wait()
            if process.stdout:
                process.stdout.close()
        shutil.rmtree(self.folder, ignore_errors=True)

    def type(self, text):
        """Presses and releases the keys of text, as a person would on a keyboard that has them."""
        letters = [letter for letter in text if letter not in _PLAIN]
        new = [letter for letter in dict.fromkeys(letters) if letter not in self._extra_letters]
        if new:
            self._extra_letters += new
            self._load_keyboard()
        self._run("xdotool", "type", "--delay", "4", "--", text)

    def press(self, *keys):
        """Presses keys or chords one after the other, by X name: press("ctrl+a", "BackSpace")."""
        self._run("xdotool", "key", "--delay", "4", *keys)

    def click(self, x, y, button=1):
        """Moves the pointer to a point of the screen, in pixels, and clicks there."""
        self._run("xdotool", "mousemove", str(x), str(y), "click", str(button))

    def move_pointer(self, x, y):
        """Moves the pointer to a point of the screen, in pixels."""
        self._run("xdotool", "mousemove", str(x), str(y))

    def drag_from(self, executable, mime_type, path, point, welcome=True, before_drop=None):
        """Drags what a file holds from another program to a point of the screen and lets go;
        whether it was taken. Waits to be welcome there, and calls before_drop; or else stays for a
        second."""
        if self._drag_source:
            self._drag_source.kill()
            self._drag_source.wait()
        said = self.folder / "drag"
        with said.open("w") as output:
            # It stays until the next one: what it holds may still be asked for.
            self._drag_source = self._start([str(executable), mime_type, str(path)], stdout=output)

        def says(word):
            return word in said.read_text().split()

        window = wait_until(lambda: self.windows("Drag source"), "the program to drag from")[0]
        x, y = self.position(window)
        self._run("xdotool", "mousemove", str(x + 50), str(y + 50), "mousedown", "1")
        steps = iter(range(1, 1_000_000))

        def pull():
            # A drag begins, and is answered, when the pointer moves.
            self.move_pointer(x + 50 + next(steps) % 20, y + 60)
            return says("begun")

        def hover():
            self.move_pointer(point[0] + next(steps) % 20, point[1])
            return says("welcome")

        wait_until(pull, "the drag to begin")
        if welcome:
            wait_until(hover, "the drag to be welcome")
            if before_drop:
                before_drop()
        else:
            end = time.monotonic() + 1
            while time.monotonic() < end:
                assert not hover(), "the drag was not to be welcome"
        self._run("xdotool", "mouseup", "1")
        wait_until(lambda: says("taken") or says("refused"), "the drag to end")
        return says("taken")

    def windows(self, title):
        """The ids of the visible windows with this title."""
        found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", f"^{re.escape(title)}$"],
                               env=self.environment, capture_output=True, text=True)
        return found.stdout.split()

    def start_input_method(self):
        """Starts an input method for programs that look for one on the bus; its process."""
        method = self._start(["/usr/bin/python3", str(Path(__file__).with_name("input_method.py"))],
                             stdout=subprocess.PIPE, text=True)
        assert method.stdout.readline() == "ready\n"
        return method

    def resize(self, window, width, height):
        """Asks the window manager for another size, in pixels; the window may refuse."""
        self._run("xdotool", "windowsize", window, str(width), str(height))

    def size(self, window):
        """A window's width and height in pixels."""
        geometry = self._geometry(window)
        return geometry["WIDTH"], geometry["HEIGHT"]

    def close_window(self, window):
        """Closes a window the way its close button does, from wherever the keyboard is."""
        self._run("xdotool", "windowactivate", "--sync", window, "key", "--delay", "4", "alt+F4")

    def minimize(self, window):
        """Hides a window the way its minimise button does."""
        self._run("xdotool", "windowminimize", window)

    def copy(self, data, target):
        """Puts bytes on the clipboard as another program would, under a target such as
        "UTF8_STRING" or "image/png"."""
        owner = self._start(["xclip", "-selection", "clipboard", "-target", target, "-quiet"],
                            stdin=subprocess.PIPE)
        owner.stdin.write(data)
        owner.stdin.close()
        # What another copy left there may be under the same target.
        paste = ["xclip", "-selection", "clipboard", "-target", target, "-out"]
        wait_until(lambda: subprocess.run(paste, env=self.environment,
                                          capture_output=True).stdout == data,
                   "the clipboard to be filled")

    def brightness(self, window):
        """The mean lightness of what a window shows, from 0 to 1."""
        return float(self._run("import", "-silent", "-window", window, "-colorspace", "gray",
                               "-format", "%[fx:mean]", "info:-"))

    def position(self, window):
        """The top left corner of what a window shows, in pixels of the screen."""
        geometry = self._geometry(window)
        return geometry["X"], geometry["Y"]

    def picture(self, window, path):
        """Writes what a window shows as a picture, without its frame."""
        Path(path).parent.mkdir(parents=True, exist_ok=True)
        self._run("import", "-silent", "-window", window, str(path))

    def _geometry(self, window):
        answer = self._run("xdotool", "getwindowgeometry", "--shell", window)
        return {name: int(value) for name, value in (line.split("=") for line in answer.split())}

    def _start_display(self, width, height):
        read, write = os.pipe()
        self._start(["Xvfb", "-displayfd", str(write), "-screen", "0", f"{width}x{height}x24",
                     "-nolisten", "tcp", "-noreset"], environment=dict(os.environ), pass_fds=[write])
        os.close(write)
        with os.fdopen(read) as number:
            return f":{number.readline().strip()}"

    def _start_bus(self):
        # Of all the services that are installed it starts only the accessibility bus, so that a
        # desktop has no more than what a test gives it.
        services = self.folder / "services"
        services.mkdir()
        for service in Path("/usr/share/dbus-1/services").glob("org.a11y.*.service"):
            (services / service.name).symlink_to(service)
        configuration = self.folder / "bus.conf"
        configuration.write_text(f"""<!DOCTYPE busconfig PUBLIC
            "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
            "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
            <busconfig>
              <type>session</type>
              <listen>unix:dir={self.folder}</listen>
              <servicedir>{services}</servicedir>
              <policy context="default">
                <allow send_destination="*" eavesdrop="true"/>
                <allow eavesdrop="true"/>
                <allow own="*"/>
              </policy>
            </busconfig>""")
        bus = self._start(["dbus-daemon", f"--config-file={configuration}", "--nofork",
                           "--nosyslog", "--print-address"], stdout=subprocess.PIPE, text=True)
        return bus.stdout.readline().strip()

    def _load_keyboard(self):
        keys = "".join(f"key {key} {{ [ U{ord(letter):04X} ] }};\n"
                       for key, letter in zip(_SPARE_KEYS, self._extra_letters, strict=False))
        self._run("xkbcomp", "-w", "0", "-", self.environment["DISPLAY"], input=f"""xkb_keymap {{
            xkb_keycodes {{ include "evdev+aliases(qwerty)" }};
            xkb_types {{ include "complete" }};
            xkb_compat {{ include "complete" }};
            xkb_symbols {{ include "pc+us+inet(evdev)"
            {keys}
            key <I170> {{ [ dead_acute ] }}; key <I171> {{ [ dead_tilde ] }};
            key <I172> {{ [ Multi_key ] }}; }};
        }};""")

    def _start(self, command, environment=None, **options):
        quiet = {"stdin": subprocess.DEVNULL, "stdout": subprocess.DEVNULL,
                 "stderr": subprocess.DEVNULL}
        process = subprocess.Popen(command, env=environment or self.environment,
                                   preexec_fn=die_with_parent, **(quiet | options))
        self._processes.append(process)
        return process

    def _run(self, *command, **options):
        return subprocess.run(command, env=self.environment, check=True, text=True,
                              capture_output=True, **options).stdout
