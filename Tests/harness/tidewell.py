"""The built program on a private desktop, with tools, a home, a history and an engine of its own."""

import json
import os
import shutil
import subprocess
import tempfile

from harness import engine_case

from . import docker
from .accessibility import application
from .desktop import ENDS_WITH_US
from .waiting import LIMIT_SECONDS, NotInTime, wait_until

ORB = engine_case.ORB
# Qt's words, older and newer.
_BUTTON_ROLES = ("push button", "button")
_ALERT_ROLES = ("alert message", "alert", "notification")
_DIALOG_ROLES = (*_ALERT_ROLES, "dialog")
# Empty and ours: see enter_own_tools.
_TOOLS = "/opt/homebrew/bin"


class Tidewell:
    """Lives in a `with` block. Its engine is started unless told otherwise; every machine ends with it."""

    def __init__(self, program, desktop, tools=("orb",), engine_started=True, environment=None, before=None):
        """`before` is called with this object just before the program is started."""
        self.program, self.desktop = os.path.realpath(program), desktop
        self._wanted_tools, self._engine_started, self._extra = tools, engine_started, environment or {}
        self._before = before
        self.process = None

    def __enter__(self):
        # Two folders, since where machines can be kept is not always where they can share files from.
        self.scratch, self._engine = tempfile.mkdtemp(prefix="tidewell-"), engine_case.scratch_folder()
        os.mkdir(self.path("home"))
        for tool in os.listdir(_TOOLS):
            self.remove_tool(tool)
        self.environment = self.desktop.environment | {
            "HOME": self.path("home"),
            "XDG_CONFIG_HOME": self.path("home", "config"),
            "XDG_DATA_HOME": self.path("home", "data"),
            "TIDEWELL_ENGINE_STATE": self._engine,
            # No test ever reaches the host's own Docker engine.
            "DOCKER_HOST": f"unix://{self.path('no-docker.sock')}",
            "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
            "QT_QPA_PLATFORM": "xcb",
            "LC_ALL": "C.UTF-8",
        }
        self.environment |= self._extra
        for tool in self._wanted_tools:
            self.add_tool(tool)
        try:
            if self._engine_started:
                self.orb("start")
            if self._before:
                self._before(self)
            self.launch()
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        if self.process and self.process.poll() is None:
            self.process.terminate()
            try:
                self.process.wait(10)
            except subprocess.TimeoutExpired:
                self.process.kill()
                self.process.wait()
        for name in self.machines():
            self.orb("delete", "-f", name)
        self.orb("stop")
        shutil.rmtree(self.scratch)
        shutil.rmtree(self._engine)

    def launch(self):
        """Starts the program (again); the window is there when this returns."""
        with open(self.path("tidewell.log"), "ab") as log:
            self.process = subprocess.Popen([*ENDS_WITH_US, self.program], env=self.environment,
                                            stdin=subprocess.DEVNULL, stdout=log, stderr=log)  # fmt: skip
        self.root = application(self.desktop.accessibility, self.process.pid)
        wait_until(lambda: self.root.children, "a window")

    def path(self, *parts):
        return os.path.join(self.scratch, *parts)

    def add_tool(self, name, script=None):
        """Puts a tool where the program looks first: the engine's `orb`, the host's `docker`, or a script."""
        path = os.path.join(_TOOLS, name)
        if script is not None:
            with open(path + ".new", "w", encoding="utf-8") as file:
                file.write("#!/bin/bash\n" + script)
            os.chmod(path + ".new", 0o755)
            os.replace(path + ".new", path)
        else:
            # A copy, since a client in /usr/local/bin is out of sight for the program.
            os.symlink(ORB, path) if name == "orb" else shutil.copy(docker.client(), path)

    orb_path = ORB

    def make_pipe(self, name):
        """A named pipe in the scratch folder, at which a tool can be made to wait; a script finds it under /mnt/mac."""
        os.mkfifo(self.path(name))

    def write_pipe(self, name, text="\n"):
        with open(self.path(name), "w", encoding="utf-8") as pipe:
            pipe.write(text)

    def remove_tool(self, name):
        os.remove(os.path.join(_TOOLS, name))

    def orb(self, *arguments, text=None):
        """Asks the engine from outside the program."""
        given = {"stdin": subprocess.DEVNULL} if text is None else {"input": text}
        return subprocess.run([ORB, *arguments], env=self.environment, capture_output=True, text=True, **given)

    def machines(self):
        """What the engine lists: names with their states."""
        return {machine["name"]: machine["state"] for machine in json.loads(self.orb("list", "-f", "json").stdout)}

    def history(self):
        """The entries in the history file, newest first."""
        try:
            with open(self.path("home", "data", "Tidewell", "history.json"), encoding="utf-8") as file:
                return json.load(file)
        except FileNotFoundError:
            return []

    # The window

    def find(self, name=None, role=None, description=None, **options):
        return self.root.find(name, role, description, **options)

    def button(self, label, description=None):
        """A shown button; where two share a label, the description tells which."""

        def find():
            return [node for node in self.root.find_all(label, description=description) if node.role in _BUTTON_ROLES]

        what = f"a button {label!r} {description or ''}"
        found = self._waited_for(find, what)
        if len(found) > 1:
            raise AssertionError(f"{len(found)} times {what}:\n{self.root.outline()}")
        return found[0]

    def _waited_for(self, condition, what):
        """As wait_until, but a crash is the end."""

        def ask():
            if self.process.poll() is not None:
                with open(self.path("tidewell.log"), encoding="utf-8", errors="replace") as log:
                    end = f"the program ended with {self.process.returncode}\n{log.read()}"
                raise AssertionError(f"waiting for {what}: {end}")
            return condition()

        try:
            return wait_until(ask, what)
        except NotInTime as error:
            raise NotInTime(f"{error}\n{self.root.outline()}") from None

    def press(self, label, description=None):
        """Presses a button once it can be pressed."""
        self.wait_until_enabled(label, description).press()

    def wait_until_enabled(self, label, description=None):
        """The button, or other thing to press, once it can be pressed."""

        def find():
            nodes = self.root.find_all(label, description=description)
            return [node for node in nodes if node.role in _BUTTON_ROLES + ("check box",) and node.is_enabled]

        found = self._waited_for(find, f"{label!r} {description or ''} can be pressed")
        if len(found) > 1:
            raise AssertionError(f"{len(found)} times {label!r} {description or ''}:\n{self.root.outline()}")
        return found[0]

    def press_in_alert(self, label):
        """Presses a button of the alert that is open."""

        def find():
            return [node for node in self.root.children if node.role in _ALERT_ROLES and node.is_shown]

        alert = self._waited_for(find, "an alert")[0]
        next(node for node in alert.find_all(label) if node.role in _BUTTON_ROLES).press()

    def shows(self, name):
        """Whether a thing with this name is shown now."""
        return bool(self.root.find_all(name))

    def wait_for(self, name):
        return self._waited_for(lambda: self.root.find_all(name), f"{name!r} is shown")[0]

    def _says(self, parts):
        return [node for node in self.root.find_all(role="text") if all(part in node.text for part in parts)]

    def wait_for_text(self, *parts):
        """Waits for a read-only text, such as an error, that holds the parts."""
        return self._waited_for(lambda: self._says(parts), f"a text with {parts}")[0].text

    def wait_until_text_is_gone(self, *parts):
        self._waited_for(lambda: not self._says(parts), f"the text with {parts} is gone")

    def rows(self, name):
        """The rows of a list, from top to bottom."""
        return self.find(name, role="list").children

    def wait_until_gone(self, name):
        self._waited_for(lambda: not self.root.find_all(name), f"{name!r} is gone")

    def select_tab(self, label):
        self.find(label, role="page tab").press()

    def picker(self, label):
        """A combo box, whose name on Linux is its choice, by what labels it."""
        boxes = self.root.find_all(role="combo box")
        return next(box for box in boxes if label in [node.name for node in box.labels])

    def wait_for_choice(self, label, item):
        self._waited_for(lambda: self.picker(label).name == item, f"{label} stands on {item!r}")

    def choose(self, label, item):
        """Chooses an item of a combo box by the keyboard."""
        box = self.picker(label)
        items = [node.name for node in box.find_all(role="list item")]
        box.press()
        self._waited_for(lambda: box.find_all(role="list"), "the list of items")
        self.press_keys("Home", *["Down"] * items.index(item), "Return")
        self.wait_for_choice(label, item)

    def write_script(self, script):
        self.find("Script").set_text(script)

    def turn_on_disposable_mode(self):
        self.find("Disposable mode").press()
        self.press("Turn on")
        self._waited_for(lambda: "checked" in self.find("Disposable mode").states, "disposable mode is on")

    def share_folder(self, folder):
        """Chooses a folder in the dialog."""
        self.press("Share a folder…")
        self.find("Directory:", role="text").set_text(folder)
        self.press("Share")
        self.wait_until_gone("Directory:")

    @property
    def output(self):
        """What the output pane says now."""
        return "".join(node.text for node in self.root.find_all("Output", role="text"))

    def show_all_output(self):
        """The window of all output, opened by its shortcut."""
        self.press_keys("ctrl+alt+o")
        window = self.wait_for("All Output")
        self._waited_for(lambda: "active" in window.states, "the window of all output has the keyboard")
        return window

    def save_output(self, path):
        """Saves all output by its shortcut."""
        self.press_keys("ctrl+s")
        self.find("File name:", role="text").set_text(path)
        self.press("Save")
        self.wait_until_gone("File name:")

    def wait_for_output(self, part):
        """The output, once it holds the part."""
        try:
            self._waited_for(lambda: part in self.output, f"{part!r} in the output")
        except NotInTime as error:
            raise NotInTime(f"{error}; it holds: {self.output!r}") from None
        return self.output

    def wait_for_keyboard(self):
        """Waits until the keyboard is with the program, and within it with a dialog while there is one."""

        def has_keyboard():
            windows = [node for node in self.root.children if node.is_shown]
            dialogs = [node for node in windows if node.role in _DIALOG_ROLES]
            return any("active" in node.states for node in dialogs or windows)

        self.desktop.wait_for_focus(self.process.pid)
        self._waited_for(has_keyboard, "the window or its dialog has the keyboard")

    def press_keys(self, *keys):
        self.wait_for_keyboard()
        self.desktop.press_keys(*keys)

    def type_text(self, text):
        self.wait_for_keyboard()
        self.desktop.type_text(text)

    def close_window(self):
        """Asks the window to close, as its close button does."""
        self.desktop.close_window(self.process.pid)

    def wait_for_end(self):
        """Waits until the program has ended by itself; its exit status."""
        try:
            return self.process.wait(LIMIT_SECONDS)
        except subprocess.TimeoutExpired:
            raise NotInTime(f"the program does not end\n{self.root.outline()}") from None

    def take_picture(self, path):
        self.desktop.take_picture(path)
