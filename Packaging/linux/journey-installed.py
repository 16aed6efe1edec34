#!/usr/bin/python3
"""journey-installed.py PICTURES: the journey of Tests/EndToEnd/journey.py through the installed Tidewell, started by its
launcher; the engine is the installed one, too. For try-package."""

import os
import subprocess
import sys

HERE = os.path.dirname(os.path.realpath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "..", "Tests", "EndToEnd"))

import journey  # noqa: E402
from harness import engine_case, tidewell  # noqa: E402
from harness.accessibility import application  # noqa: E402
from harness.desktop import ENDS_WITH_US, Desktop  # noqa: E402
from harness.waiting import wait_until  # noqa: E402

LAUNCHER, PROGRAM = "/usr/bin/tidewell", "/usr/lib/tidewell/Tidewell"
engine_case.ORB = tidewell.ORB = "/usr/lib/tidewell/LinuxEngine/orb"


class Launched:
    """The launcher's process, known by the pid of the program that it has started, which owns the window."""

    def __init__(self, launcher):
        self._launcher = launcher
        self.pid = wait_until(self._program, f"{PROGRAM} runs")

    def _program(self):
        for pid in filter(str.isdigit, os.listdir("/proc")):
            try:
                # Not by its path, which is another one seen from outside its mount namespace.
                if os.path.samefile(f"/proc/{pid}/exe", PROGRAM):
                    return int(pid)
            except OSError:
                pass
        return None

    def __getattr__(self, name):
        return getattr(self._launcher, name)


class Installed(tidewell.Tidewell):
    """Where the tests put tools into the folder of the tools, here the launcher does."""

    def __init__(self, desktop):
        super().__init__(LAUNCHER, desktop, tools=(), engine_started=False)
        tidewell._TOOLS = desktop.environment["XDG_RUNTIME_DIR"] + "/no-tools"
        os.mkdir(tidewell._TOOLS)

    def launch(self):
        with open(self.path("tidewell.log"), "ab") as log:
            launcher = subprocess.Popen([*ENDS_WITH_US, LAUNCHER], env=self.environment, stdin=subprocess.DEVNULL,
                                        stdout=log, stderr=log)  # fmt: skip
        self.process = Launched(launcher)
        self.root = application(self.desktop.accessibility, self.process.pid)
        wait_until(lambda: self.root.children, "a window")


def main():
    with Desktop() as desktop, Installed(desktop) as installed:
        journey.journey(installed, sys.argv[1], "a minimal system has no Docker engine")
    print("The journey succeeded.")


if __name__ == "__main__":
    main()
