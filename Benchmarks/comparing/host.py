"""The host of a virtual machine may take processor time from it, most of all after long work. What was measured meanwhile
tells of the host."""

import os
import time

_MOST_TAKEN = 0.01
_REST_SECONDS = 45
_TRIES = 4


def taken_seconds():
    """Processor time that the host has taken since the system was started."""
    with open("/proc/stat") as file:
        return int(file.readline().split()[8]) / os.sysconf("SC_CLK_TCK")


def read(paths):
    """Brings files into memory, from which a system may drop what nobody has used for some minutes."""
    for path in paths:
        with open(path, "rb") as file:
            while file.read(1 << 20):
                pass


def undisturbed(measurement, taken=taken_seconds, rest=time.sleep):
    """Measures again, after a rest, where the host took more than a hundredth of the time; the last try counts anyway."""
    for _ in range(_TRIES - 1):
        before, start = taken(), time.monotonic()
        outcome = measurement()
        if taken() - before <= _MOST_TAKEN * (time.monotonic() - start) * os.cpu_count():
            return outcome
        rest(_REST_SECONDS)
    return measurement()


def rested(measurement, taken=taken_seconds, rest=time.sleep):
    """Measures once, after a rest: for what takes minutes. Tells with the figures how much the host took meanwhile."""
    rest(_REST_SECONDS)
    before = taken()
    outcome = measurement()
    return outcome | {"seconds_taken_by_the_host": taken() - before}
