#!/usr/bin/python3
"""Closing the window while a run is going."""

from harness.waiting import wait_until
from harness.window_case import WindowCase, main


class Quitting(WindowCase):
    def start_a_long_disposable_run(self):
        tidewell = self.start_running()
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


if __name__ == "__main__":
    main()
