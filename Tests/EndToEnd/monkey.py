#!/usr/bin/python3
"""monkey.py PROGRAM [SECONDS]: presses, types, changes tabs and sizes at random, with tools that fail at random.

After each burst the program must be alive and answer within a second, what goes on must come to an end, and descriptors,
threads, children and memory must be level. The seed is printed; with TIDEWELL_SEED=… the same is tried, though what the
window then shows may differ with the time that things take.
"""

import os
import random
import subprocess
import sys
import time

from harness import enter_own_tools
from harness.desktop import Desktop
from harness.seed import seed_or
from harness.tidewell import ORB, Tidewell
from harness.waiting import Gone, NotInTime, wait_until

_ACTIONS_A_BURST = 25
_ANSWERS_WITHIN_SECONDS = 1
_ENDS_WITHIN_SECONDS = 60
# A leak would grow with each burst; these are what one state of the window needs more than another.
_MORE = {"descriptors": 8, "threads": 4, "MiB": 150}
# What is needed no more may be given back a while after all has come to rest.
_LEVEL_WITHIN_SECONDS = 30

# Each call does what the real tool does, or fails in one of the ways that tools fail.
_TOOL = """\
case $((RANDOM %% 12)) in
0) echo "no such thing" >&2; exit 1 ;;
1) echo "[{]]} not json"; exit 0 ;;
2) sleep 2; exit 1 ;;
3) kill -KILL $$ ;;
4) head -c 3000000 /dev/urandom; exit 0 ;;
5) printf 'half a character: \\xe2\\x82'; exit 7 ;;
esac
exec %s "$@"
"""

_SCRIPTS = ("echo hello", "seq 100000", "sleep 20", "exit 3", "head -c 1000000 /dev/urandom", "kill -KILL $$", "cat",
            "for i in $(seq 2000); do echo out; echo error >&2; done", "", "\0", "echo '\u202e\U0001f469\u200d\U0001f4bb'")  # fmt: skip
_TEXTS = ("", "box", "a" * 3000, "-rf", "../..", "x y", "\u202e\u0000", "8080:80", "nginx", "curl git", "'; rm -rf /",
          "\U0001f469\u200d\U0001f4bb", "\n\n", "<b>bold</b>", "%s%n")  # fmt: skip
_KEYS = ("Tab", "shift+Tab", "Escape", "space", "Return", "ctrl+Return", "Down", "Up", "Home", "End", "Next", "Prior",
         "ctrl+a", "ctrl+c", "ctrl+z", "ctrl+1", "ctrl+2", "ctrl+3", "ctrl+4", "x")  # fmt: skip
# The program is to stay, and files outside the test's own folder as they are.
_NEVER_PRESSED = ("Stop it and quit", "Quit anyway", "Quit when it is done", "Create New Folder")
# The first of them that is there closes what asks.
_CLOSING = ("Cancel", "Keep running", "Keep open", "OK")
_PRESSED_ROLES = ("push button", "button", "check box", "page tab", "toggle button")


class Monkey:
    def __init__(self, tidewell, seed):
        self._tidewell, self._random = tidewell, random.Random(seed)
        self._last = []
        self.actions = 0

    def burst(self):
        for _ in range(_ACTIONS_A_BURST):
            action = self._random.choices(
                (self._press, self._fill, self._keys, self._size), weights=(10, 4, 6, 1)
            )[0]  # fmt: skip
            try:
                action()
            except Gone:
                pass
            self.actions += 1
            self._expect_an_answer()
        self._come_to_rest()

    def levels(self):
        folder = f"/proc/{self._tidewell.process.pid}"
        with open(f"{folder}/smaps_rollup", encoding="utf-8") as file:
            private = sum(int(line.split()[1]) for line in file if line.startswith("Private_"))
        return {"descriptors": len(os.listdir(f"{folder}/fd")), "threads": len(os.listdir(f"{folder}/task")),
                "MiB": private // 1024}  # fmt: skip

    def expect_level(self, first):
        def grown():
            now = self.levels()
            return [f"{what} grew from {first[what]} to {now[what]}"
                    for what, more in _MORE.items() if now[what] > first[what] + more]  # fmt: skip

        try:
            wait_until(lambda: not grown(), "what it holds is level", limit=_LEVEL_WITHIN_SECONDS)
        except NotInTime as error:
            raise AssertionError(f"{error}: {', '.join(grown())}") from None

    def what_it_did(self):
        return "\n".join(self._last[-_ACTIONS_A_BURST:])

    def _did(self, what):
        self._last.append(what)

    def _press(self):
        nodes = [node for node in self._tidewell.root.walk_shown()
                 if node.role in _PRESSED_ROLES and node.is_enabled and node.name not in _NEVER_PRESSED]  # fmt: skip
        if not nodes:
            return
        node = self._random.choice(nodes)
        self._did(f"press {node!r}")
        try:
            node.press()
        except AssertionError:
            pass  # It changed since.

    def _fill(self):
        nodes = [node for node in self._tidewell.root.walk_shown()
                 if {"editable", "enabled"} <= node.states and node.role == "text"]  # fmt: skip
        if not nodes:
            return
        node = self._random.choice(nodes)
        text = self._random.choice(_SCRIPTS if node.name == "Script" else _TEXTS).replace("\0", "")
        self._did(f"fill {node!r} with {text[:40]!r}")
        try:
            node.set_text(text)
        except AssertionError:
            pass

    def _keys(self):
        keys = self._random.choices(_KEYS, k=self._random.randint(1, 4))
        self._did(f"keys {keys}")
        self._tidewell.desktop.press_keys(*keys)

    def _size(self):
        size = (self._random.randint(300, 1000), self._random.randint(200, 780))
        self._did(f"size {size}")
        try:
            self._tidewell.desktop.resize_window(self._tidewell.process.pid, *size)
        except (subprocess.CalledProcessError, IndexError):
            # A list or a tip that was its first window has closed since.
            raise Gone("the window") from None

    def _expect_an_answer(self):
        if (status := self._tidewell.process.poll()) is not None:
            raise AssertionError(f"the program ended with {status}")
        asked = time.monotonic() - self._kept_waiting()
        try:
            self._tidewell.root.name  # noqa: B018
        except Gone as error:
            raise AssertionError(f"the program did not answer: {error}") from None
        took = time.monotonic() - self._kept_waiting() - asked
        if took > _ANSWERS_WITHIN_SECONDS:
            raise AssertionError(f"the program answered after {took:.2f} s")

    def _kept_waiting(self):
        """For how many seconds the main thread could have run while other threads, of whatever program, had the
        processors."""
        with open(f"/proc/{self._tidewell.process.pid}/schedstat", encoding="ascii") as file:
            return int(file.read().split()[1]) / 1e9

    def _come_to_rest(self):
        """Closes what asks, stops what runs, and waits until nothing goes on."""

        def at_rest():
            self._expect_an_answer()
            try:
                shown = [(node, node.name, node.role) for node in self._tidewell.root.walk_shown()]
                for label in _CLOSING:
                    for node, name, role in shown:
                        if name == label and role in _PRESSED_ROLES and node.is_enabled:
                            node.press()
                            return False
                stops = [node for node, name, _ in shown if name == "Stop" and node.description == "Stop the run"]
                if stops and stops[0].is_enabled:
                    stops[0].press()
                    return False
                bars = [node for node, _, role in shown if role == "progress bar"]
            except (Gone, AssertionError):
                return False
            return not bars and not stops

        wait_until(at_rest, "nothing goes on any more", limit=_ENDS_WITHIN_SECONDS)


def swing(tidewell, seconds, seed):
    """Raises when something went wrong, with what was done last; else the number of actions."""
    monkey = Monkey(tidewell, seed)
    end = time.monotonic() + seconds
    first = None
    try:
        while time.monotonic() < end:
            monkey.burst()
            # The first burst shows each screen and fills what is kept.
            first = first or monkey.levels()
            monkey.expect_level(first)
        last = monkey.levels()
    except (AssertionError, Gone, OSError, subprocess.SubprocessError) as error:
        log = open(tidewell.path("tidewell.log"), encoding="utf-8", errors="replace").read()[-4000:]
        raise AssertionError(f"seed {seed}, after {monkey.actions} actions: {error}\n{monkey.what_it_did()}\n{log}") from None
    return monkey.actions, first, last


def start(program, desktop):
    return Tidewell(program, desktop, tools=(), before=lambda tidewell: tidewell.add_tool("orb", _TOOL % ORB))


def main():
    enter_own_tools()
    seconds = float(sys.argv[2]) if len(sys.argv) > 2 else 60
    seed = seed_or(random.randrange(1 << 31))
    with Desktop() as desktop, start(sys.argv[1], desktop) as tidewell:
        actions, first, last = swing(tidewell, seconds, seed)
    print(f"{actions} actions in {seconds:.0f} s; at first {first}, at last {last}")


if __name__ == "__main__":
    main()
