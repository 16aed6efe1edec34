#!/usr/bin/python3
"""All output of a run: told of, shown in a window of its own, saved."""

import hashlib
import os

from harness.keyboard import Keyboard
from harness.waiting import wait_until
from harness.window_case import WindowCase, main

EARLIER = "Earlier output is kept: Run ▸ Show All Output"


def with_box(tidewell):
    tidewell.orb("create", "debian", "box")


class AllOutput(WindowCase):
    def start_run(self, script):
        tidewell = self.start_running(before=with_box)
        tidewell.wait_for_choice("Machine", "box")
        tidewell.write_script(script)
        tidewell.press("Run")
        return tidewell

    def test_what_the_screen_lets_go_of_is_in_the_window_and_in_the_file(self):
        tidewell = self.start_run("seq 200000")
        tidewell.wait_for_output("exit status 0 · ")
        tidewell.wait_for(EARLIER)
        self.assertNotIn("\n100000\n", tidewell.output)
        window = tidewell.show_all_output()
        tidewell.press_keys("ctrl+Home")
        pane = window.find("Output", role="text")
        wait_until(lambda: pane.text.startswith("$ orb -m box bash -s\n1\n2\n"), "the window shows the first lines")

        path = tidewell.path("output.txt")
        tidewell.save_output(path)
        wait_until(lambda: os.path.exists(path), "the file is there")
        with open(path, "rb") as file:
            saved = file.read()
        printed = "".join(f"{number}\n" for number in range(1, 200001)).encode()
        command, _, rest = saved.partition(b"\n")
        self.assertEqual(command, b"$ orb -m box bash -s")
        self.assertEqual(hashlib.sha256(rest[: len(printed)]).digest(), hashlib.sha256(printed).digest())
        self.assertTrue(rest[len(printed) :].startswith("\nexit status 0 · ".encode()))

    def test_the_window_is_worked_by_the_keyboard_while_a_run_goes(self):
        tidewell = self.start_run("i=0; while :; do echo line $((i=i+1)); sleep 0.01; done")
        tidewell.wait_for_output("\nline 200\n")
        tidewell.show_all_output()
        keyboard = Keyboard(tidewell)
        self.assertEqual(keyboard.focused().name, "Output")
        keyboard.press("ctrl+Home")
        tidewell.button("Jump to End")
        keyboard.press_button("Jump to End")
        tidewell.wait_until_gone("Jump to End")
        self.assertEqual(keyboard.focused().name, "Output")
        keyboard.press("ctrl+w")
        tidewell.wait_until_gone("All Output")
        tidewell.button("Stop", "Stop the run")


if __name__ == "__main__":
    main()
