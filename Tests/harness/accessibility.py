"""The window as assistive technology sees it, read and driven over the accessibility bus (AT-SPI).

Nothing is cached: every question goes to the program, whose answer is the state of the window at that moment. A node
that has gone meanwhile raises Gone.
"""

from gi.repository import Gio, GLib

from .waiting import LIMIT_SECONDS, Gone, NotInTime, wait_until

_REPLY_MILLISECONDS = LIMIT_SECONDS * 1000
_PREFIX = "org.a11y.atspi."
_LABELLED_BY = 2
_STATES = {"active": 1, "checked": 4, "editable": 7, "enabled": 8, "focusable": 11, "focused": 12, "modal": 16,
           "multi-line": 17, "selected": 23, "sensitive": 24, "showing": 25, "visible": 30}  # fmt: skip


class Node:
    """One accessible thing."""

    def __init__(self, bus, owner, path):
        self._bus, self._owner, self._path = bus, owner, path

    def __eq__(self, other):
        return (self._owner, self._path) == (other._owner, other._path)

    def __hash__(self):
        return hash((self._owner, self._path))

    def __repr__(self):
        return f"<{self.role} {self.name!r} {self.description!r}>"

    def _call(self, interface, method, arguments=None):
        try:
            reply = self._bus.call_sync(self._owner, self._path, _PREFIX + interface, method, arguments, None,
                                        Gio.DBusCallFlags.NONE, _REPLY_MILLISECONDS, None)  # fmt: skip
        except GLib.Error as error:
            raise Gone(f"{method}: {error.message}") from None
        return reply.unpack()

    def _property(self, interface, name):
        try:
            reply = self._bus.call_sync(self._owner, self._path, "org.freedesktop.DBus.Properties", "Get",
                                        GLib.Variant("(ss)", (_PREFIX + interface, name)), None,
                                        Gio.DBusCallFlags.NONE, _REPLY_MILLISECONDS, None)  # fmt: skip
        except GLib.Error as error:
            raise Gone(f"{name}: {error.message}") from None
        return reply.unpack()[0]

    @property
    def name(self):
        return self._property("Accessible", "Name")

    @property
    def description(self):
        return self._property("Accessible", "Description")

    @property
    def role(self):
        return self._call("Accessible", "GetRoleName")[0]

    @property
    def states(self):
        low, high = self._call("Accessible", "GetState")[0]
        bits = low | high << 32
        return {name for name, bit in _STATES.items() if bits >> bit & 1}

    @property
    def children(self):
        return [Node(self._bus, *child) for child in self._call("Accessible", "GetChildren")[0]]

    @property
    def interfaces(self):
        return [name.removeprefix(_PREFIX) for name in self._call("Accessible", "GetInterfaces")[0]]

    @property
    def labels(self):
        """The things that label this one."""
        relations = self._call("Accessible", "GetRelationSet")[0]
        return [Node(self._bus, *target) for kind, targets in relations if kind == _LABELLED_BY for target in targets]

    @property
    def text(self):
        """What a text field or label says."""
        if "Text" not in self.interfaces:
            return self.name
        return self._call("Text", "GetText", GLib.Variant("(ii)", (0, -1)))[0]

    @property
    def is_shown(self):
        return "showing" in self.states

    @property
    def is_enabled(self):
        return {"enabled", "sensitive"} <= self.states

    def walk(self):
        """This node and all below it, in the order of the tree; what goes meanwhile is left out."""
        yield self
        try:
            children = self.children
        except Gone:
            return
        for child in children:
            yield from child.walk()

    def walk_shown(self):
        """As `walk`, without what is hidden: below that may be a list of thousands."""
        try:
            children = self.children
        except Gone:
            return
        for child in children:
            try:
                if not child.is_shown:
                    continue
            except Gone:
                continue
            yield child
            yield from child.walk_shown()

    def find_all(self, name=None, role=None, description=None):
        """The shown nodes below this one that have all that is given."""
        found = []
        for node in self.walk():
            try:
                if name is not None and node.name != name or role is not None and node.role != role:
                    continue
                if description is not None and node.description != description or not node.is_shown:
                    continue
            except Gone:
                continue
            found.append(node)
        return found

    def find(self, name=None, role=None, description=None, limit=LIMIT_SECONDS):
        """The one shown node that has all that is given, waited for; it fails when there are several."""
        wanted = {"name": name, "role": role, "description": description}
        what = ", ".join(f"{key} {value!r}" for key, value in wanted.items() if value is not None)
        try:
            found = wait_until(lambda: self.find_all(name, role, description), f"a shown thing with {what}", limit)
        except NotInTime as error:
            raise NotInTime(f"{error}\n{self.outline()}") from None
        if len(found) > 1:
            raise AssertionError(f"{len(found)} shown things with {what}:\n{self.outline()}")
        return found[0]

    def outline(self, depth=0):
        """The shown tree as text, for failures."""
        try:
            if depth and not self.is_shown:
                return ""
            line = f"{'  ' * depth}{self.role} {self.name!r} {self.description!r} {' '.join(sorted(self.states))}\n"
            return line + "".join(child.outline(depth + 1) for child in self.children)
        except Gone:
            return ""

    def press(self):
        """Presses a button or switches a toggle; it fails on one that a person could not press."""
        if not self.is_enabled or not self.is_shown:
            raise AssertionError(f"{self!r} cannot be pressed")
        for index, action in enumerate(self._call("Action", "GetActions")[0]):
            if action[0] in ("Press", "press", "Toggle", "click"):
                self._call("Action", "DoAction", GLib.Variant("(i)", (index,)))
                return
        raise AssertionError(f"{self!r} has nothing to press")

    def set_text(self, text):
        """Replaces the text of a field."""
        if not {"editable", "enabled"} <= self.states:
            raise AssertionError(f"{self!r} cannot be edited")
        self._call("EditableText", "SetTextContents", GLib.Variant("(s)", (text,)))


def application(bus, pid):
    """The program's root node, once it has come to the accessibility bus."""
    registry = Node(bus, _PREFIX + "Registry", "/org/a11y/atspi/accessible/root")

    def find():
        for node in registry.children:
            try:
                reply = bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                      "GetConnectionUnixProcessID", GLib.Variant("(s)", (node._owner,)), None,
                                      Gio.DBusCallFlags.NONE, _REPLY_MILLISECONDS, None)  # fmt: skip
            except GLib.Error:
                continue
            if reply.unpack()[0] == pid:
                return node
        return None

    return wait_until(find, f"process {pid} on the accessibility bus")
