"""Waiting for conditions, never for time alone."""

import time

LIMIT_SECONDS = 30
_PAUSE_SECONDS = 0.02


class Gone(Exception):
    """The thing asked about is no longer there."""


class NotInTime(AssertionError):
    """A condition did not come true before the watchdog's time was over."""


def wait_until(condition, what, limit=LIMIT_SECONDS):
    """The condition's first true value; `what` names it in the failure. A question to something that has just gone
    counts as not yet."""
    deadline = time.monotonic() + limit
    while True:
        try:
            if value := condition():
                return value
        except Gone:
            pass
        if time.monotonic() > deadline:
            raise NotInTime(f"not within {limit} s: {what}")
        time.sleep(_PAUSE_SECONDS)
