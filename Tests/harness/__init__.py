"""What the tests in Python stand on: the Linux engine, a private desktop, the built program on it, and its window as
assistive technology sees it."""

import os
import sys

REPOSITORY = os.path.dirname(os.path.dirname(os.path.dirname(os.path.realpath(__file__))))
_WITH_OWN_TOOLS = os.path.join(REPOSITORY, "Tools", "with-own-tools")
_INSIDE = "TIDEWELL_HAS_OWN_TOOLS"


def enter_own_tools():
    """Begins this program anew where the tool folders are its own, unless it is there already. What prevents it is told,
    with exit status 77."""
    if _INSIDE not in os.environ:
        os.environ[_INSIDE] = "yes"
        os.execv(_WITH_OWN_TOOLS, [_WITH_OWN_TOOLS, "--alone", sys.executable, *sys.argv])
