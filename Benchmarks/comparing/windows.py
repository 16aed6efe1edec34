"""The one window on the private desktop: that it is there, and how large it is."""

import subprocess

from harness.waiting import wait_until

WIDTH, HEIGHT = 960, 760
# Terminals take whole character cells, and some keep a margin.
_NEAR = 60


def _tool(desktop, *command):
    return subprocess.run(command, env=desktop.environment, capture_output=True, text=True).stdout


def windows(desktop):
    return [line.split()[0] for line in _tool(desktop, "wmctrl", "-l").splitlines()]


def size(desktop, window):
    lines = _tool(desktop, "xdotool", "getwindowgeometry", "--shell", window).split()
    values = dict(line.split("=") for line in lines)
    return int(values.get("WIDTH", 0)), int(values.get("HEIGHT", 0))


def wait_for_window_of_common_size(desktop):
    """Waits for the window and gives it the size that all have, as near as it lets itself be given it. Returns it."""
    window = wait_until(lambda: windows(desktop), "the window is there")[0]
    _tool(desktop, "xdotool", "windowsize", window, str(WIDTH), str(HEIGHT))

    def has_size():
        width, height = size(desktop, window)
        return abs(width - WIDTH) <= _NEAR and abs(height - HEIGHT) <= _NEAR

    wait_until(has_size, f"the window is about {WIDTH} by {HEIGHT}")
    return window


def wait_until_none(desktop):
    wait_until(lambda: not windows(desktop), "the window is gone")
