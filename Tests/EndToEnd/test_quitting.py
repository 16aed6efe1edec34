#!/usr/bin/python3
"""How the program ends while a run is going: by its window, by a signal, by a kill, with its display."""

import os
import signal

from harness import window_case
from harness.desktop import Desktop
from harness.tidewell import Tidewell
from harness.waiting import wait_until
from harness.window_case import WindowCase, main


class Quitting(WindowCase):
    def start_a_long_disposable_run(self, tidewell=None):
        tidewell = tidewell or self.start_running()
        tidewell.write_script("sleep 1000")
        tidewell.turn_on_disposable_mode()
        tidewell.press("Run")
        wait_until(lambda: any(name.startswith("sbx-") for name in tidewell.machines()), "the disposable machine")
        tidewell.button("Stop", "Stop the run")
        return tidewell

    def test_with_no_run_going_closing_the_window_ends_the_program(self):
        tidewell = self.start_running()
        tidewell.close_window()
        self.assertEqual(tidewell.wait_for_end(), 0)

    def test_a_run_that_is_going_is_asked_about_and_may_go_on(self):
        tidewell = self.start_a_long_disposable_run()
        tidewell.close_window()
        tidewell.wait_for("A run is in progress.")
        tidewell.press("Keep running")
        wait_until(lambda: not tidewell.shows("A run is in progress."), "the question is gone")
        self.assertTrue(tidewell.button("Stop", "Stop the run").is_enabled)
        self.assertEqual(len(tidewell.machines()), 1)
        self.assertIsNone(tidewell.process.poll())

    def test_stopping_it_deletes_the_machine_and_writes_the_history_before_the_end(self):
        tidewell = self.start_a_long_disposable_run()
        tidewell.close_window()
        tidewell.press("Stop it and quit")
        self.assertEqual(tidewell.wait_for_end(), 0)
        self.assertEqual(tidewell.machines(), {})
        (entry,) = tidewell.history()
        self.assertEqual((entry["command"], entry["note"]), ("sleep 1000", "stopped"))
        self.assertNotIn("exitCode", entry)

    def expect_a_stopped_run(self, tidewell):
        (entry,) = tidewell.history()
        self.assertEqual((entry["command"], entry["note"]), ("sleep 1000", "stopped"))

    def names_written_down(self, tidewell):
        folder = tidewell.path("home", "data", "Tidewell", "Disposable machines")
        return os.listdir(folder) if os.path.isdir(folder) else []

    def test_a_termination_signal_stops_the_run_deletes_its_machine_and_writes_the_history(self):
        for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            with self.subTest(number):
                tidewell = self.start_a_long_disposable_run()
                tidewell.process.send_signal(number)
                self.assertEqual(tidewell.wait_for_end(), 0)
                self.assertEqual(tidewell.machines(), {})
                self.expect_a_stopped_run(tidewell)
                self.assertEqual(self.names_written_down(tidewell), [])

    def test_with_the_display_the_run_ends_too_and_its_machine_is_deleted(self):
        with Desktop() as desktop, Tidewell(window_case.PROGRAM, desktop) as tidewell:
            tidewell.wait_for("OrbStack running")
            self.start_a_long_disposable_run(tidewell)
            desktop.end_display()
            tidewell.process.wait(60)
            self.expect_a_stopped_run(tidewell)
            wait_until(lambda: tidewell.machines() == {}, "the machine is deleted")

    def test_a_machine_that_a_killed_program_left_behind_is_told_and_can_be_deleted(self):
        tidewell = self.start_a_long_disposable_run()
        (name,) = tidewell.machines()
        self.assertEqual(self.names_written_down(tidewell), [name])
        tidewell.process.kill()
        tidewell.process.wait()
        tidewell.launch()
        tidewell.wait_for("OrbStack running")
        tidewell.select_tab("Machines")
        tidewell.wait_for(name)
        self.assertEqual(tidewell.find("Machine log").text, f"{name} was left behind by a run that was cut off.\n")
        tidewell.press("Delete", f"Delete {name}")
        tidewell.press_in_alert("Delete")
        tidewell.wait_for("No machines yet. Create one above.")
        self.assertEqual(tidewell.machines(), {})
        wait_until(lambda: self.names_written_down(tidewell) == [], "the name is struck out")


if __name__ == "__main__":
    main()
