#!/usr/bin/python3
"""Starting the program while it runs, and on a small display."""

import errno
import fcntl
import json
import os
import signal
import subprocess

from harness.desktop import ENDS_WITH_US, Desktop
from harness.waiting import LIMIT_SECONDS, wait_until
from harness.window_case import WindowCase, main


class StartingAgain(WindowCase):
    def start_again(self, tidewell, **variables):
        process = subprocess.Popen([*ENDS_WITH_US, tidewell.program], env=tidewell.environment | variables,
                                   stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)  # fmt: skip
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process

    def test_a_second_start_brings_the_first_window_forward_and_ends(self):
        tidewell = self.start_running()
        self.desktop.wait_for_focus(tidewell.process.pid)
        self.desktop.minimise_window(tidewell.process.pid)
        self.assertEqual(self.start_again(tidewell).wait(LIMIT_SECONDS), 0)
        self.desktop.wait_for_focus(tidewell.process.pid)
        self.assertIsNone(tidewell.process.poll())
        tidewell.select_tab("History")
        tidewell.wait_for("No runs yet.")

    def is_read_by_nobody(self, pipe):
        try:
            os.close(os.open(pipe, os.O_WRONLY | os.O_NONBLOCK))
        except OSError as error:
            return error.errno == errno.ENXIO
        return False

    def stopped_while_it_saves(self):
        """A program halted while it still saves, though whoever starts now is the first; nothing where it has ended."""
        folder = None

        def write_history(tidewell):
            nonlocal folder
            folder = tidewell.path("home", "data", "Tidewell")
            os.makedirs(folder)
            entry = {"id": "00000000-0000-0000-0000-000000000001", "command": "true", "machine": "box", "exitCode": 0,
                     "note": "", "date": "2026-03-01T14:05:09Z", "duration": 1}  # fmt: skip
            with open(os.path.join(folder, "history.json"), "w", encoding="utf-8") as file:
                json.dump([entry], file)

        tidewell = self.start_running(before=write_history)
        tidewell.select_tab("History")
        tidewell.button("Delete", "Delete true")
        lock = os.open(folder, os.O_RDONLY)
        self.addCleanup(os.close, lock)
        fcntl.flock(lock, fcntl.LOCK_EX)
        # What cannot be saved now is tried again at the end, which waits a second for the folder; held, it lasts.
        tidewell.press("Delete", "Delete true")
        tidewell.wait_for("No runs yet.")
        tidewell.close_window()
        tidewell.wait_for("The history could not be saved.")
        tidewell.press_in_alert("Quit anyway")
        wait_until(lambda: self.is_read_by_nobody(os.path.join(folder, "running")), "whoever starts now is the first")
        self.addCleanup(tidewell.process.send_signal, signal.SIGCONT)
        tidewell.process.send_signal(signal.SIGSTOP)
        return tidewell if tidewell.process.poll() is None else None

    def test_a_start_while_the_first_one_still_saves_has_a_window(self):
        # It saves for a second, in which a busy computer may not get to halting it.
        tidewell = next((one for _ in range(3) if (one := self.stopped_while_it_saves())), None)
        self.assertIsNotNone(tidewell, "it had ended each time")
        self.desktop.wait_for_focus(self.start_again(tidewell).pid)

    def test_a_start_while_a_signal_ends_the_first_one_has_a_window(self):
        tidewell = self.start_running()
        tidewell.write_script("sleep 1000")
        tidewell.turn_on_disposable_mode()
        tidewell.press("Run")
        wait_until(lambda: "running" in tidewell.machines().values(), "the disposable machine")
        (name,) = tidewell.machines()
        machine = os.open(os.path.join(tidewell.environment["TIDEWELL_ENGINE_STATE"], "machines", name), os.O_RDONLY)
        fcntl.flock(machine, fcntl.LOCK_EX)  # it cannot be deleted meanwhile
        tidewell.process.send_signal(signal.SIGTERM)
        pipe = tidewell.path("home", "data", "Tidewell", "running")
        wait_until(lambda: self.is_read_by_nobody(pipe), "whoever starts now is the first")
        self.assertFalse(os.path.exists(tidewell.path("home", "data", "Tidewell", "history.json")), "its run goes on")
        second = self.start_again(tidewell)
        self.desktop.wait_for_focus(second.pid)
        os.close(machine)
        self.assertEqual(tidewell.wait_for_end(), 0)
        self.assertIsNone(second.poll())

    def test_another_home_has_a_window_of_its_own(self):
        tidewell = self.start_running()
        other = self.start_again(tidewell, XDG_DATA_HOME=tidewell.path("home", "another"))
        self.desktop.wait_for_focus(other.pid)
        self.assertIsNone(tidewell.process.poll())

    def test_what_was_killed_does_not_stand_in_the_way_of_the_next_start(self):
        tidewell = self.start_running()
        tidewell.process.kill()
        tidewell.process.wait()
        tidewell.launch()
        tidewell.wait_for("OrbStack running")


class SmallDisplay(WindowCase):
    HEIGHT = 1400

    @classmethod
    def setUpClass(cls):
        cls.desktop = cls.enterClassContext(Desktop(2000, cls.HEIGHT))

    def test_the_first_window_ends_above_the_end_of_a_small_display_of_scale_2(self):
        tidewell = self.start(environment={"QT_SCALE_FACTOR": "2"})
        self.desktop.wait_for_focus(tidewell.process.pid)
        self.assertLessEqual(self.desktop.window_bottom(tidewell.process.pid), self.HEIGHT)


if __name__ == "__main__":
    main()
