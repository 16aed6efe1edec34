"""The program worked by the keyboard alone: what is reached, is reached by Tab and by shortcuts; what is read, is read
over the accessibility bus."""

from .waiting import Gone, NotInTime, wait_until

# Qt calls the selected tab focused wherever the keyboard is.
_NEVER_THE_FOCUS = ("page tab", "filler")
_MOST_STEPS = 60


class Keyboard:
    def __init__(self, tidewell):
        self._tidewell = tidewell
        tidewell.wait_for_keyboard()

    def focused(self):
        """The innermost thing that has the keyboard."""
        found = None
        for node in self._tidewell.root.walk():
            try:
                if "focused" in node.states and node.role not in _NEVER_THE_FOCUS:
                    found = node
            except Gone:
                continue
        return found

    def press(self, *keys):
        self._tidewell.press_keys(*keys)

    def write(self, text):
        self._tidewell.type_text(text)

    def tab_to(self, name, description=None):
        """Presses Tab (Control-Tab in the script) until the thing has the keyboard."""
        visited = []
        for _ in range(_MOST_STEPS):
            node = self.focused()
            if node and node.name == name and description in (None, node.description):
                return node
            visited.append(repr(node))
            # In the script a Tab is a tab.
            self.press("ctrl+Tab" if node and node.name == "Script" else "Tab")
            try:
                wait_until(lambda before=node: self.focused() != before, "Tab moves on", limit=10)
            except NotInTime:
                break
        raise AssertionError(f"Tab does not reach {name!r} {description or ''}; it reached\n" + "\n".join(visited))

    def press_button(self, label, description=None):
        """Tabs to a button, and presses it once it can be pressed."""
        self._tidewell.wait_until_enabled(label, description)
        self.tab_to(label, description)
        self.press("space")

    def fill(self, name, text):
        """Replaces the text of a field."""
        field = self.tab_to(name)
        self.press("ctrl+a")
        self.write(text)
        wait_until(lambda: field.text == text, f"{name!r} holds {text!r}")

    def choose(self, label, item):
        """Walks down a combo box, which has the keyboard, to an item."""
        while self._tidewell.picker(label).name != item:
            before = self._tidewell.picker(label).name
            self.press("Down")
            wait_until(lambda was=before: self._tidewell.picker(label).name != was, f"{label} moves on", limit=10)
