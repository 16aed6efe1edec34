"""A private desktop: a display without a screen, a window manager, a session bus and an accessibility bus."""

import os
import select
import shutil
import subprocess
import tempfile

from gi.repository import Gio

from .waiting import LIMIT_SECONDS, NotInTime, wait_until

_NEEDED = ("Xvfb", "openbox", "dbus-daemon", "xdotool", "wmctrl", "import")
# However this process may end, what it started ends too.
ENDS_WITH_US = ("setpriv", "--pdeathsig", "TERM")


def missing_tools():
    return [tool for tool in _NEEDED if shutil.which(tool) is None]


class Desktop:
    """Lives in a `with` block; everything it started ends with it."""

    def __init__(self, width=1000, height=800):
        self._size = f"{width}x{height}x24"
        self._processes = []

    def __enter__(self):
        self._folder = tempfile.mkdtemp(prefix="tidewell-desktop-")
        self.environment = {name: value for name, value in os.environ.items() if not name.startswith(("DBUS_", "XDG_"))}
        self.environment |= {"XDG_RUNTIME_DIR": self._folder, "GSETTINGS_BACKEND": "memory", "NO_AT_BRIDGE": "1"}
        try:
            self.environment["DISPLAY"] = ":" + self._start_reporting(
                "Xvfb", "-displayfd", "{report}", "-screen", "0", self._size, "-nolisten", "tcp", "-noreset"
            )
            # A bus of its own type, so that nothing of the user's session is reached or started.
            address = self._start_reporting("dbus-daemon", "--session", "--nofork", "--print-address={report}")
            self.environment["DBUS_SESSION_BUS_ADDRESS"] = address
            # A window that comes while it still takes over the display may be overlooked and stay unmapped.
            is_up = os.path.join(self._folder, "openbox-is-up")
            self._start("openbox", "--sm-disable", "--startup", f"touch {is_up}")
            wait_until(lambda: os.path.exists(is_up), "openbox is ready")
            session = _connect(address)
            reply = session.call_sync("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress",
                                      None, None, Gio.DBusCallFlags.NONE, -1, None)  # fmt: skip
            session.close_sync(None)
            self.accessibility = _connect(reply.unpack()[0])
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        for process in reversed(self._processes):
            process.terminate()
        for process in self._processes:
            try:
                process.wait(10)
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()
        shutil.rmtree(self._folder, ignore_errors=True)

    def _start(self, *command, **options):
        log = open(os.path.join(self._folder, os.path.basename(command[0]) + ".log"), "wb")
        with log:
            self._processes.append(
                subprocess.Popen([*ENDS_WITH_US, *command], env=self.environment, stdin=subprocess.DEVNULL,
                                 stdout=log, stderr=log, **options)  # fmt: skip
            )

    def _start_reporting(self, *command):
        """Starts a server that writes one line to a descriptor once it is ready; returns the line."""
        reading, writing = os.pipe()
        self._start(*(part.format(report=writing) for part in command), pass_fds=[writing])
        os.close(writing)
        with os.fdopen(reading) as file:
            if not select.select([file], [], [], LIMIT_SECONDS)[0]:
                raise NotInTime(f"{command[0]} is ready")
            line = file.readline().strip()
        if not line:
            raise RuntimeError(f"{command[0]} did not start")
        return line

    def _tool(self, *command, **options):
        options |= {"env": self.environment, "capture_output": True, "text": True, "check": True}
        return subprocess.run(command, **options).stdout

    def wait_for_focus(self, pid):
        """Waits until a window of the process has the keyboard."""

        def has_focus():
            try:
                return self._tool("xdotool", "getwindowfocus", "getwindowpid").strip() == str(pid)
            except subprocess.CalledProcessError:
                return False

        wait_until(has_focus, f"a window of process {pid} has the keyboard")

    def press_keys(self, *keys):
        """Presses keys, or combinations such as ctrl+Return, in the window that has the keyboard."""
        self._tool("xdotool", "key", "--clearmodifiers", *keys)

    def type_text(self, text):
        self._tool("xdotool", "type", "--delay", "2", "--file", "-", input=text)

    def _window(self, pid):
        return self._tool("xdotool", "search", "--onlyvisible", "--pid", str(pid)).split()[0]

    def close_window(self, pid):
        """Asks the window manager to close the process's window, as the window's close button does."""
        self._tool("wmctrl", "-i", "-c", self._window(pid))

    def window_bottom(self, pid):
        """Where the process's window ends, in pixels from the top of the display."""
        lines = self._tool("xdotool", "getwindowgeometry", "--shell", self._window(pid)).split()
        place = dict(line.split("=") for line in lines)
        return int(place["Y"]) + int(place["HEIGHT"])

    def minimise_window(self, pid):
        """Minimises the process's window, as its button does."""
        self._tool("xdotool", "windowminimize", "--sync", self._window(pid))

    def place_window(self, pid, width, height):
        """Moves the process's window, with its frame, to the corner of the display and gives it a size."""
        window = self._window(pid)
        self._tool("wmctrl", "-i", "-r", window, "-e", "10,1,20,-1,-1")
        self._tool("xdotool", "windowsize", "--sync", window, str(width), str(height))

    def resize_window(self, pid, width, height):
        """Asks for a size of the process's window, which may keep another."""
        self._tool("wmctrl", "-i", "-r", self._window(pid), "-e", f"10,-1,-1,{width},{height}")

    def end_display(self):
        """Ends the display under every program that is on it."""
        display = self._processes[0]
        display.kill()
        display.wait()

    def take_picture(self, path, pid=None):
        """A picture of the whole desktop, or of the process's window without its frame."""
        window = "root" if pid is None else self._window(pid)
        self._tool("import", "-window", window, "-strip", "-quality", "95", path)


def _connect(address):
    flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
    return Gio.DBusConnection.new_for_address_sync(address, flags, None, None)
