"""An input method as programs find it on the message bus, for one word: the letters "n" and "i" are
shown as they are composed, and Return ends them as 日. All other keys are the program's."""

from gi.repository import Gio, GLib

INTERFACES = Gio.DBusNodeInfo.new_for_xml("""<node>
  <interface name="org.freedesktop.IBus.Portal">
    <method name="CreateInputContext">
      <arg type="s" direction="in"/><arg type="o" direction="out"/>
    </method>
  </interface>
  <interface name="org.freedesktop.IBus.InputContext">
    <method name="ProcessKeyEvent">
      <arg type="u" direction="in"/><arg type="u" direction="in"/><arg type="u" direction="in"/>
      <arg type="b" direction="out"/>
    </method>
    <method name="SetCursorLocation">
      <arg type="i" direction="in"/><arg type="i" direction="in"/>
      <arg type="i" direction="in"/><arg type="i" direction="in"/>
    </method>
    <method name="FocusIn"/>
    <method name="FocusOut"/>
    <method name="Reset"/>
    <method name="SetCapabilities"><arg type="u" direction="in"/></method>
    <method name="SetSurroundingText">
      <arg type="v" direction="in"/><arg type="u" direction="in"/><arg type="u" direction="in"/>
    </method>
    <signal name="CommitText"><arg type="v"/></signal>
    <signal name="UpdatePreeditText"><arg type="v"/><arg type="u"/><arg type="b"/></signal>
    <property name="ContentType" type="(uu)" access="write"/>
    <property name="ClientCommitPreedit" type="(b)" access="write"/>
  </interface>
</node>""").interfaces

CONTEXT = "/org/freedesktop/IBus/InputContext_1"
RELEASED = 1 << 30
RETURN = 0xff0d


def ibus_text(text):
    attributes = GLib.Variant("(sa{sv}av)", ("IBusAttrList", {}, []))
    return GLib.Variant("(sa{sv}sv)", ("IBusText", {}, text, attributes))


class InputMethod:
    def __init__(self, bus):
        self._bus = bus
        self._composed = ""

    def called(self, _bus, _sender, _path, _interface, method, arguments, invocation):
        if method == "CreateInputContext":
            invocation.return_value(GLib.Variant("(o)", (CONTEXT,)))
        elif method == "ProcessKeyEvent":
            key, _code, state = arguments.unpack()
            invocation.return_value(GLib.Variant("(b)", (self._takes(key, state),)))
        else:
            invocation.return_value(None)

    def _takes(self, key, state):
        """Whether a key is part of a word that is being composed."""
        if state & RELEASED:
            return False
        if key in map(ord, "ni"):
            self._compose(self._composed + chr(key))
            return True
        if key == RETURN and self._composed:
            self._compose("")
            self._tell("CommitText", GLib.Variant("(v)", (ibus_text("日"),)))
            return True
        return False

    def _compose(self, text):
        self._composed = text
        self._tell("UpdatePreeditText",
                   GLib.Variant("(vub)", (ibus_text(text), len(text), bool(text))))

    def _tell(self, signal, values):
        self._bus.emit_signal(None, CONTEXT, "org.freedesktop.IBus.InputContext", signal, values)


def main():
    bus = Gio.bus_get_sync(Gio.BusType.SESSION)
    method = InputMethod(bus)
    for path, interface in zip(("/org/freedesktop/IBus", CONTEXT), INTERFACES, strict=True):
        bus.register_object(path, interface, method.called, None, lambda *_: True)
    Gio.bus_own_name_on_connection(bus, "org.freedesktop.portal.IBus", Gio.BusNameOwnerFlags.NONE,
                                   lambda *_: print("ready", flush=True), None)
    GLib.MainLoop().run()


if __name__ == "__main__":
    main()
