"""Our own programs, each of which measures by itself and prints what came out as JSON."""

import json
import os
import shutil
import subprocess
import tempfile
from dataclasses import dataclass

from harness.desktop import ENDS_WITH_US

from .results import CannotRun

_SCRIPTS = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
_LIMIT_SECONDS = 900


@dataclass(frozen=True)
class Program:
    name: str
    # What is measured, where the program can measure several things.
    case: str = ""
    options: tuple = ()
    # The kind of text it is given a file of, if it wants one.
    text: str = ""
    # Takes minutes: left out of quick runs, and measured once in a run.
    is_long: bool = False

    @property
    def title(self):
        return f"{self.name} {self.case}".strip()


SHOWING = Program("ShowingOutput", text="plain")
STORING = Program("StoringOnly", text="plain")
STOCK = Program("StockEditor", text="plain")
ALTERNATING = Program("ShowingOutput", "alternating", ("--alternating",), "plain")
FURTHER_TEXTS = (
    ALTERNATING,
    Program("ShowingOutput", "wide", text="wide"),
    Program("ShowingOutput", "one-line", text="one-line"),
    Program("ShowingOutput", "codes", text="codes"),
)
# What the alternating streams are to be seen beside: each line is a write of its own there, and a writer has its limit.
LINE_BY_LINE = Program("ShowingOutput", "line by line", ("--line-by-line",), "plain")
WRITING_LINES = Program("WritingLines", text="plain")
LEAVING = Program("LeavingAndResizing", text="plain")
COPYING = Program("CopyingOutput", text="plain")
APPENDING = Program("AppendingChunks")
STARTING_AND_IDLING = Program("start-and-idle", is_long=True)
# A little less than the ten minutes after which the application itself ends a script.
YES = Program("RunningYes", options=("595",), is_long=True)
# What hardly compresses goes to the disk within seconds.
RANDOM_TEXT = Program("RunningYes", "of random text", ("60", "exec base64 -w 76 /dev/urandom"), is_long=True)
PROGRAMS = (
    SHOWING, STORING, STOCK, *FURTHER_TEXTS, LINE_BY_LINE, WRITING_LINES, LEAVING, COPYING, APPENDING,
    STARTING_AND_IDLING, YES, RANDOM_TEXT,
)  # fmt: skip


def _figures(said):
    """Of one JSON object a line, each named by its "what"; the name counts only where there are several."""
    objects = [json.loads(line) for line in said.splitlines()]
    return {
        name if len(objects) == 1 else f"{figures['what']}: {name}": value
        for figures in objects
        for name, value in figures.items()
        if name != "what"
    }


def measure(program, desktop, folder, file):
    """The figures of one run of the program built in the folder; CannotRun says why there are none."""
    executable = shutil.which(program.name, path=f"{folder}{os.pathsep}{_SCRIPTS}")
    if executable is None:
        raise CannotRun("not built")
    command = [executable, *program.options, *([file] if file else [])]
    with tempfile.TemporaryDirectory(prefix="tidewell-ours-", ignore_cleanup_errors=True) as scratch:
        environment = desktop.environment | {"HOME": scratch, "QT_QPA_PLATFORM": "xcb", "LC_ALL": "C.UTF-8"}
        try:
            done = subprocess.run([*ENDS_WITH_US, *command], env=environment, timeout=_LIMIT_SECONDS, cwd=scratch,
                                  stdin=subprocess.DEVNULL, capture_output=True, text=True, errors="replace")  # fmt: skip
        except subprocess.TimeoutExpired:
            raise CannotRun(f"not at its end within {_LIMIT_SECONDS} s") from None
        if done.returncode != 0:
            raise CannotRun(": ".join([f"ended with status {done.returncode}", *done.stderr.strip().splitlines()[-1:]]))
        return _figures(done.stdout)
