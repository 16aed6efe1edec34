"""One measurement of one terminal on a desktop: the seconds it takes for a text, and the memory it holds afterwards."""

import os
import shutil
import socket
import subprocess
import sys
import tempfile

from harness.desktop import ENDS_WITH_US
from harness.waiting import NotInTime

from . import processes, windows
from .results import CannotRun

_INSIDE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "inside.py")
_LIMIT_SECONDS = 170


def _environment(desktop, scratch):
    return desktop.environment | {
        "HOME": scratch,
        "XDG_CONFIG_HOME": os.path.join(scratch, "settings"),
        "XDG_DATA_HOME": os.path.join(scratch, "settings"),
        "XDG_CACHE_HOME": os.path.join(scratch, "cache"),
        "LC_ALL": "C.UTF-8",
        # There is no graphics card; without this some look for one first.
        "LIBGL_ALWAYS_SOFTWARE": "1",
        "QT_QPA_PLATFORM": "xcb",
    }


def _write_settings(peer, scratch):
    for path, text in peer.settings.items():
        path = os.path.join(scratch, "settings", path)
        os.makedirs(os.path.dirname(path))
        with open(path, "w") as file:
            file.write(text)


def _connection(listener, process):
    """Of the program inside the terminal."""
    listener.settimeout(0.1)
    for _ in range(300):
        try:
            return listener.accept()[0]
        except TimeoutError:
            if process.poll() is not None:
                raise CannotRun(f"ended with status {process.returncode} before it ran a command") from None
    raise CannotRun("ran no command within 30 s")


def _figures(desktop, process, connection, size):
    connection.settimeout(_LIMIT_SECONDS)
    lines = connection.makefile("rw")
    said = lines.readline()
    if not said:
        raise CannotRun("does not tell where its cursor is")
    inside = int(said)

    def pids():
        return processes.tree(process.pid, without=inside)

    window = windows.wait_for_window_of_common_size(desktop)
    processes.wait_until_idle(pids)
    idle = processes.private_kib(pids())
    print("now", file=lines, flush=True)
    said = lines.readline()
    if not said:
        raise CannotRun("ended before it had taken everything")
    seconds = float(said)
    processes.wait_until_idle(pids)
    end, files = processes.private_kib(pids()), processes.nameless_file_kib(pids())
    width, height = windows.size(desktop, window)
    return {
        "bytes": size, "seconds": seconds, "mib_per_second": size / seconds / 2**20,
        "idle_kib": idle, "end_kib": end, "bytes_per_byte": (end - idle) * 1024 / size,
        "file_bytes_per_byte": files * 1024 / size, "width": width, "height": height,
    }  # fmt: skip


def measure(peer, desktop, file):
    """The figures of one run; CannotRun says why there are none."""
    if shutil.which(peer.command[0]) is None:
        raise CannotRun("not installed")
    with tempfile.TemporaryDirectory(prefix="tidewell-terminal-", ignore_cleanup_errors=True) as scratch:
        _write_settings(peer, scratch)
        path = os.path.join(scratch, "socket")
        with socket.socket(socket.AF_UNIX) as listener, open(os.path.join(scratch, "log"), "w+b") as log:
            listener.bind(path)
            listener.listen()
            process = subprocess.Popen(
                [*ENDS_WITH_US, *peer.command, sys.executable, _INSIDE, path, file],
                env=_environment(desktop, scratch), cwd=scratch, stdin=subprocess.DEVNULL, stdout=log, stderr=log,
            )  # fmt: skip
            try:
                with _connection(listener, process) as connection:
                    return _figures(desktop, process, connection, os.path.getsize(file))
            except (CannotRun, NotInTime, OSError) as reason:
                log.seek(0)
                said = log.read().decode(errors="replace").strip().splitlines()
                raise CannotRun(": ".join([str(reason), *said[-1:]])) from reason
            finally:
                _end(process)
                windows.wait_until_none(desktop)


def _end(process):
    process.terminate()
    try:
        process.wait(30)
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait()
