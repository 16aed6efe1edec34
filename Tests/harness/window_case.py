"""What the end-to-end test files share: a desktop a file, a program a test, and the picture of a failure."""

import os
import signal
import sys
import unittest

import harness
from harness import engine_case
from harness.desktop import Desktop, missing_tools
from harness.tidewell import Tidewell

LIMIT_SECONDS = 120
PROGRAM = None


class WindowCase(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.desktop = cls.enterClassContext(Desktop())

    def setUp(self):
        engine_case.watch(LIMIT_SECONDS)
        self.addCleanup(signal.alarm, 0)

    def start(self, **options):
        """Starts the program with a home and an engine of its own."""
        tidewell = self.enterContext(Tidewell(PROGRAM, self.desktop, **options))
        self.addCleanup(self._picture_a_failure)
        return tidewell

    def start_running(self, **options):
        """Starts the program and waits until it knows that the engine runs."""
        tidewell = self.start(**options)
        tidewell.wait_for("OrbStack running")
        return tidewell

    def _picture_a_failure(self):
        if any(error for _, error in self._outcome.result.failures + self._outcome.result.errors if _ is self):
            self.desktop.take_picture(os.path.join(os.getcwd(), self.id().rpartition(".")[2] + ".png"))


def main():
    """test_FILE.py PROGRAM [unittest's arguments]"""
    global PROGRAM
    harness.enter_own_tools()
    # The tests' module is the running script; this one it has imported, and both must see the same program.
    PROGRAM = os.path.realpath(sys.argv.pop(1))
    if missing := missing_tools():
        engine_case.skip(f"not installed: {' '.join(missing)}")
    engine_case.main()
