"""What the program tells assistive technology unasked, over the accessibility bus."""

from gi.repository import Gio, GLib

_REGISTRY = ("org.a11y.atspi.Registry", "/org/a11y/atspi/registry", "org.a11y.atspi.Registry")
# A program tells only what somebody has asked to hear.
_WANTED = ("object:text-changed", "object:text-caret-moved")


class AccessibilityEvents:
    """What is told of texts. Lives in a `with` block; the program is started within it."""

    def __init__(self, bus):
        self._bus = bus
        self._told = []

    def __enter__(self):
        for kind in _WANTED:
            self._ask("RegisterEvent", GLib.Variant("(sass)", (kind, [], "")))
        self._subscription = self._bus.signal_subscribe(None, "org.a11y.atspi.Event.Object", None, None, None,
                                                        Gio.DBusSignalFlags.NONE, self._note)  # fmt: skip
        return self

    def __exit__(self, *_):
        self._bus.signal_unsubscribe(self._subscription)
        for kind in _WANTED:
            self._ask("DeregisterEvent", GLib.Variant("(s)", (kind,)))

    def _ask(self, method, arguments):
        self._bus.call_sync(*_REGISTRY, method, arguments, None, Gio.DBusCallFlags.NONE, -1, None)

    def _note(self, _bus, owner, path, _interface, kind, arguments):
        detail, first, second, value = arguments.unpack()[:4]
        self._told.append(((owner, path), kind, detail, first, second, value))

    def _of(self, node, kind, detail):
        context = GLib.MainContext.default()
        while context.iteration(False):
            pass
        return [told[3:] for told in self._told if told[:3] == ((node._owner, node._path), kind, detail)]

    def inserted(self, node):
        """The texts that came into a text, each with its place."""
        return [(first, value) for first, _, value in self._of(node, "TextChanged", "insert")]

    def carets(self, node):
        """The places that the caret of a text came to; one that is told twice in a row counts once."""
        places = [first for first, _, _ in self._of(node, "TextCaretMoved", "")]
        return [place for index, place in enumerate(places) if index == 0 or places[index - 1] != place]

    def forget(self):
        """What was told until now counts no more."""
        while GLib.MainContext.default().iteration(False):
            pass
        self._told.clear()
