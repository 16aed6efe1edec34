#!/usr/bin/python3
"""What assistive technology is told of the output unasked."""

from harness.accessibility_events import AccessibilityEvents
from harness.keyboard import Keyboard
from harness.waiting import wait_until
from harness.window_case import WindowCase, main

MOST_AT_ONCE = 16 * 1024


class TellingOfOutput(WindowCase):
    def setUp(self):
        super().setUp()
        self.events = self.enterContext(AccessibilityEvents(self.desktop.accessibility))

    def run_script(self, script):
        """Runs the script to its end; the program and its output pane."""
        tidewell = self.start_running(before=lambda tidewell: tidewell.orb("create", "debian", "box"))
        tidewell.wait_for_choice("Machine", "box")
        tidewell.write_script(script)
        pane = tidewell.find("Output", role="text")
        tidewell.press("Run")
        tidewell.wait_for_output("exit status 0 · ")
        return tidewell, pane

    def test_all_that_arrives_is_told_once_and_where(self):
        _, pane = self.run_script("echo one; seq 1000; printf 'last'")
        wait_until(lambda: "".join(text for _, text in self.events.inserted(pane)) == pane.text, "all of it is told")
        end = 0
        for place, text in self.events.inserted(pane):
            self.assertEqual(place, end)
            self.assertNotEqual(text, "")
            end += len(text)

    def test_of_a_flood_the_last_is_told(self):
        _, pane = self.run_script("seq 50000")

        def told_to_the_end():
            told = self.events.inserted(pane)
            return told and pane.text[told[-1][0] :] == told[-1][1]

        wait_until(told_to_the_end, "the end is told")
        self.assertEqual(max(len(text.encode()) for _, text in self.events.inserted(pane)), MOST_AT_ONCE)

    def test_the_caret_is_told_while_the_output_has_the_keyboard_and_not_what_the_find_bar_finds(self):
        tidewell, pane = self.run_script("echo one")
        keyboard = Keyboard(tidewell)
        keyboard.tab_to("Output")
        self.events.forget()
        keyboard.press("ctrl+Home")
        keyboard.press("Right")
        keyboard.press("shift+Right")
        keyboard.press("ctrl+a")
        everything = len(pane.text)
        wait_until(lambda: self.events.carets(pane) == [0, 1, 2, everything], "the caret's places are told")
        keyboard.press("ctrl+f")
        self.events.forget()
        keyboard.write("one")
        tidewell.wait_for("1 of 1")
        self.assertEqual(self.events.carets(pane), [])


if __name__ == "__main__":
    main()
