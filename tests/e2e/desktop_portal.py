"""A desktop's portal for the tests: xdg-desktop-portal with a back-end of ours, which shows no
dialog but does what the test tells it; or one that never answers.

Run as a program, this file is that back-end, or that silent portal:
    desktop_portal.py backend | silent
The back-end writes what it is asked, one JSON object a line, and reads how to answer: the URI of a
file, or an empty line for a dialog that is cancelled.
"""

import json
import subprocess
import sys
from pathlib import Path

from desktop import die_with_parent, wait_until

PORTAL = "/usr/libexec/xdg-desktop-portal"
PORTAL_NAME = "org.freedesktop.portal.Desktop"
BACKEND_NAME = "org.freedesktop.impl.portal.desktop.aulora"
PORTAL_OBJECT = "/org/freedesktop/portal/desktop"
INTERFACES = """<node>
  <interface name="org.freedesktop.impl.portal.FileChooser">
    <method name="OpenFile">
      <arg type="o" direction="in"/> <arg type="s" direction="in"/>
      <arg type="s" direction="in"/> <arg type="s" direction="in"/>
      <arg type="a{sv}" direction="in"/>
      <arg type="u" direction="out"/> <arg type="a{sv}" direction="out"/>
    </method>
  </interface>
  <interface name="org.freedesktop.impl.portal.Request"> <method name="Close"/> </interface>
  <interface name="org.freedesktop.portal.FileChooser">
    <method name="OpenFile">
      <arg type="s" direction="in"/> <arg type="s" direction="in"/>
      <arg type="a{sv}" direction="in"/> <arg type="o" direction="out"/>
    </method>
  </interface>
</node>"""


class DesktopPortal:
    """Runs on a Desktop until close()."""

    def __init__(self, desktop, kind="backend"):
        folder = Path(desktop.folder) / "portal"
        folder.mkdir(exist_ok=True)
        (folder / "aulora.portal").write_text(
            f"[portal]\nDBusName={BACKEND_NAME}\n"
            "Interfaces=org.freedesktop.impl.portal.FileChooser\nUseIn=aulora\n")
        # How newer ones are told.
        (folder / "portals.conf").write_text("[preferred]\ndefault=aulora\n")
        self._environment = desktop.environment | {
            "XDG_DESKTOP_PORTAL_DIR": str(folder), "XDG_CURRENT_DESKTOP": "aulora"}
        self._processes = []
        self._events = folder / "events"
        self._events.write_text("")
        self._heard = self._events.open()
        if kind == "backend":
            self.start_backend()
            self.portal = self._start([PORTAL])
        else:
            self._start_ours("silent")
        self._wait_for(PORTAL_NAME)

    def close(self):
        for process in self._processes:
            process.kill()
            process.wait()
            if process.stdin:
                process.stdin.close()
        self._heard.close()
        wait_until(lambda: not self._has_owner(PORTAL_NAME), "the portal to go")

    def start_backend(self):
        self.backend = self._start_ours("backend")
        self._wait_for(BACKEND_NAME)

    def event(self):
        """What was heard next, if anything: a request with its title and options, or a closing."""
        line = self._heard.readline()
        return json.loads(line) if line else None

    def choose(self, uri):
        print(uri, file=self.backend.stdin, flush=True)

    def cancel(self):
        self.choose("")

    def _start_ours(self, kind):
        with self._events.open("a") as events:
            return self._start([sys.executable, __file__, kind], stdin=subprocess.PIPE,
                               stdout=events, text=True)

    def _start(self, command, **options):
        quiet = {"stdin": subprocess.DEVNULL, "stdout": subprocess.DEVNULL,
                 "stderr": subprocess.DEVNULL}
        process = subprocess.Popen(command, env=self._environment, preexec_fn=die_with_parent,
                                   **(quiet | options))
        self._processes.append(process)
        return process

    def _wait_for(self, name):
        wait_until(lambda: self._has_owner(name), f"{name} on the bus")

    def _has_owner(self, name):
        answer = subprocess.run(
            ["dbus-send", "--session", "--print-reply=literal", "--dest=org.freedesktop.DBus",
             "/", "org.freedesktop.DBus.NameHasOwner", f"string:{name}"],
            env=self._environment, capture_output=True, text=True)
        return "true" in answer.stdout


def serve(kind):
    """Answers on the bus until it is ended."""
    from gi.repository import Gio, GLib

    bus = Gio.bus_get_sync(Gio.BusType.SESSION)
    interfaces = {each.name: each for each in Gio.DBusNodeInfo.new_for_xml(INTERFACES).interfaces}
    waiting = []

    def say(**event):
        print(json.dumps(event), flush=True)

    def be_asked(_connection, _sender, path, interface, method, arguments, invocation):
        if method == "Close":
            say(closed=path)
            invocation.return_value(None)
            return
        waiting.append(invocation)
        if interface == "org.freedesktop.impl.portal.FileChooser":
            handle, _, parent, title, options = arguments.unpack()
            bus.register_object(handle, interfaces["org.freedesktop.impl.portal.Request"], be_asked)
            say(handle=handle, parent=parent, title=title, options=options)
        else:
            say(title=arguments.unpack()[1])

    def read_answer(channel, _condition):
        uri = channel.readline().strip()
        results = {"uris": GLib.Variant("as", [uri])} if uri else {}
        waiting.pop(0).return_value(GLib.Variant("(ua{sv})", (0 if uri else 1, results)))
        return True

    if kind == "backend":
        name, interface = BACKEND_NAME, "org.freedesktop.impl.portal.FileChooser"
        GLib.io_add_watch(sys.stdin, GLib.IO_IN, read_answer)
    else:
        name, interface = PORTAL_NAME, "org.freedesktop.portal.FileChooser"
    bus.register_object(PORTAL_OBJECT, interfaces[interface], be_asked)
    Gio.bus_own_name_on_connection(bus, name, Gio.BusNameOwnerFlags.NONE)
    GLib.MainLoop().run()


if __name__ == "__main__":
    serve(sys.argv[1])
