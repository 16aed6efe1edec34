"""The built program on a private desktop, with tools, a home, a history and an engine of its own."""

import json
import os
import shutil
import subprocess

import engine_case

from . import REPOSITORY
from .accessibility import Gone, application
from .waiting import wait_until

ORB = engine_case.ORB
_BUTTON_ROLES = ("push button", "button")
_WITH_TOOLS = os.path.join(REPOSITORY, "Tools", "with-tools")


class Tidewell:
    """Lives in a `with` block. Its engine is started unless told otherwise; every machine ends with it."""

    def __init__(self, program, desktop, tools=("orb",), engine_started=True, environment=None):
        self.program, self.desktop = os.path.realpath(program), desktop
        self._wanted_tools, self._engine_started, self._extra = tools, engine_started, environment or {}
        self.process = None

    def __enter__(self):
        self.scratch = engine_case.scratch_folder()
        self.tools = self.path("tools")
        for folder in ("tools", "home"):
            os.mkdir(self.path(folder))
        self.environment = self.desktop.environment | {
            "HOME": self.path("home"),
            "XDG_CONFIG_HOME": self.path("home", "config"),
            "XDG_DATA_HOME": self.path("home", "data"),
            "TIDEWELL_ENGINE_STATE": self.path("engine"),
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
        self.orb("stop")
        shutil.rmtree(self.scratch)

    def launch(self):
        """Starts the program (again); the window is there when this returns."""
        with open(self.path("tidewell.log"), "ab") as log:
            self.process = subprocess.Popen([_WITH_TOOLS, "--alone", self.tools, self.program], env=self.environment,
                                            stdin=subprocess.DEVNULL, stdout=log, stderr=log)  # fmt: skip
        self.root = application(self.desktop.accessibility, self.process.pid)
        wait_until(lambda: self.root.children, "a window")

    def path(self, *parts):
        return os.path.join(self.scratch, *parts)

    def add_tool(self, name, script=None):
        """Puts a tool where the program looks first: the engine's `orb`, the host's tool of that name, or a script."""
        path = os.path.join(self.tools, name)
        if script is not None:
            with open(path + ".new", "w", encoding="utf-8") as file:
                file.write("#!/bin/bash\n" + script)
            os.chmod(path + ".new", 0o755)
            os.replace(path + ".new", path)
        else:
            os.symlink(ORB if name == "orb" else shutil.which(name), path)

    def remove_tool(self, name):
        os.remove(os.path.join(self.tools, name))

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

    def button(self, label, description=None, **options):
        """A shown button; where two share a label, the description tells which."""

        def find():
            return [node for node in self.root.find_all(name=label, description=description) if node.role in _BUTTON_ROLES]

        found = self._only(find, f"a button {label!r} {description or ''}", **options)
        return found

    def _only(self, find, what, **options):
        try:
            found = wait_until(find, what, **options)
        except AssertionError as error:
            raise type(error)(f"{error}\n{self.root.outline()}") from None
        if len(found) > 1:
            raise AssertionError(f"{len(found)} times {what}:\n{self.root.outline()}")
        return found[0]

    def press(self, label, description=None):
        """Presses a button once it can be pressed."""
        wait_until(lambda: self._try(lambda: self.button(label, description).is_enabled), f"{label} can be pressed")
        self.button(label, description).press()

    @staticmethod
    def _try(question):
        try:
            return question()
        except Gone:
            return None

    def shows(self, name):
        """Whether a thing with this name is shown now."""
        return bool(self.root.find_all(name=name))

    def wait_for(self, name):
        return wait_until(lambda: self.root.find_all(name=name), f"{name!r} is shown")[0]

    def select_tab(self, label):
        tabs = [node for node in self.root.find_all(name=label) if node.role not in _BUTTON_ROLES + ("label",)]
        if len(tabs) != 1:
            raise AssertionError(f"{len(tabs)} tabs {label!r}:\n{self.root.outline()}")
        tabs[0].press()

    def write_script(self, script):
        self.find(name="Script").set_text(script)

    @property
    def output(self):
        return self.find(name="Output", role="text").text

    def wait_for_output(self, part):
        """The output, once it holds the part."""
        try:
            return wait_until(lambda: self._output_with(part), f"{part!r} in the output")
        except AssertionError as error:
            raise AssertionError(f"{error}; it holds: {self.output!r}") from None

    def _output_with(self, part):
        output = self.output
        return output if part in output else None

    def wait_for_end(self):
        """Waits until this program has ended by itself; its exit status."""
        return self.process.wait(30)

    def take_picture(self, path):
        self.desktop.take_picture(path)
