"""What a process and everything it started use, as the kernel tells it."""

import os
import re
import stat
import time

from harness.waiting import NotInTime

_TICKS_A_SECOND = os.sysconf("SC_CLK_TCK")
_LOOK_SECONDS, _IDLE_SHARE = 0.5, 0.04


def _read(*parts):
    try:
        with open(os.path.join("/proc", *map(str, parts))) as file:
            return file.read()
    except (FileNotFoundError, ProcessLookupError):
        return ""


def _fields(pid):
    """Of /proc/PID/stat, from the state on: the name before it may hold spaces and brackets."""
    return _read(pid, "stat").rpartition(")")[2].split()


def tree(root, without=None):
    """The process and its descendants, but for one branch."""
    parents = {}
    for name in os.listdir("/proc"):
        fields = _fields(name) if name.isdigit() else []
        if fields:
            parents.setdefault(int(fields[1]), []).append(int(name))
    found, waiting = [], [root]
    while waiting:
        pid = waiting.pop()
        if pid != without:
            found.append(pid)
            waiting += parents.get(pid, [])
    return found


def private_kib(pids):
    """Memory that no other process shares, in RAM or swapped out."""
    return sum(
        int(kib)
        for pid in pids
        for kib in re.findall(r"^(?:Private_\w+|Swap): +(\d+) kB$", _read(pid, "smaps_rollup"), re.MULTILINE)
    )


def nameless_file_kib(pids):
    """What the processes keep in open files without a name, where some terminals put their scrollback."""
    files = {}
    for pid in pids:
        try:
            descriptors = os.listdir(f"/proc/{pid}/fd")
        except FileNotFoundError:
            continue
        for descriptor in descriptors:
            try:
                file = os.stat(f"/proc/{pid}/fd/{descriptor}")
            except FileNotFoundError:
                continue
            if stat.S_ISREG(file.st_mode) and file.st_nlink == 0:
                files[file.st_dev, file.st_ino] = file.st_blocks // 2
    return sum(files.values())


def _processor_seconds(pids):
    return sum(int(fields[11]) + int(fields[12]) for pid in pids if (fields := _fields(pid))) / _TICKS_A_SECOND


def wait_until_idle(pids, limit=30):
    """Until the processes that `pids()` tells have left the processor alone for a while."""
    deadline = time.monotonic() + limit
    while time.monotonic() < deadline:
        before = _processor_seconds(pids())
        time.sleep(_LOOK_SECONDS)
        if _processor_seconds(pids()) - before <= _IDLE_SHARE * _LOOK_SECONDS:
            return
    raise NotInTime(f"not within {limit} s: idle")
