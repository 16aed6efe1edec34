#!/usr/bin/python3
"""What a real screen reader says, key by key: everything once, and nothing else."""

import re
import unittest

from harness import screen_reader
from harness.keyboard import Keyboard
from harness.screen_reader import ScreenReader
from harness.waiting import wait_until
from harness.window_case import WindowCase, main

TABS = {number + 1: name for number, name in enumerate(("Run", "Machines", "History", "Containers"))}
STOP_ORBSTACK = ("Stop push button.", "Stop OrbStack.")


def tab(number):
    return (f"{TABS[number]} page tab.", f"{number} of 4.")


class Heard(WindowCase):
    @classmethod
    def setUpClass(cls):
        if reason := screen_reader.why_not():
            raise unittest.SkipTest(reason)
        super().setUpClass()
        cls.reader = cls.enterClassContext(ScreenReader(cls.desktop))

    def setUp(self):
        super().setUp()
        self.reader.forget()

    def start_listening(self, **options):
        """Starts the program; its window and that OrbStack runs have been heard, whichever is known first."""
        self.tidewell = self.start(**options)
        self.keyboard = Keyboard(self.tidewell)
        self.reader.expect_each_of("Tidewell frame.", "Script text.", "notification OrbStack running.")
        self.tidewell.wait_for("OrbStack running")

    def press(self, key, *utterances):
        """Presses a key and hears what it does, each utterance as text or pattern."""
        self.keyboard.press(key)
        self.reader.expect(*utterances)

    def write(self, name, text):
        """Types into the field that has the keyboard."""
        field = self.keyboard.focused()
        self.assertEqual(field.name, name)
        self.reader.typing(text)
        self.keyboard.write(text)
        wait_until(lambda: field.text == text, f"{name!r} holds {text!r}")

    def test_the_run_tab_is_walked_through(self):
        self.start_listening(before=lambda tidewell: tidewell.orb("create", "debian", "box"))
        self.tidewell.wait_for_choice("Machine", "box")
        self.press("ctrl+Tab", "Machine combo box.", "box.")
        self.press("Tab", "Disposable mode check box not checked.")
        self.press("Tab", "Share a folder… push button.")
        self.press("Tab", "10 minute time limit check box checked.")
        self.press("space", "not checked")
        self.press("Tab", "Packages, e.g. git curl text.")
        self.write("Packages, e.g. git curl", "git")
        self.press("Tab", "Install packages push button.")
        self.press("Tab", "Copy output push button.")
        self.press("Tab", "Clear push button.", "Clear the output.")
        self.press("Tab", "Output read only text.", "Output appears here.")
        self.press("Tab", *STOP_ORBSTACK)
        self.press("Tab", *tab(1))
        self.press("Right", *tab(2))
        self.press("Left", *tab(1))
        self.press("Tab", "Script text.")
        self.press("shift+Tab", *tab(1))

    def test_a_run_in_a_disposable_machine_is_heard_from_its_start_to_its_end_and_found_in_the_history(self):
        self.start_listening()
        self.write("Script", "seq 1000; exit 3")
        self.press("ctrl+Tab", "Machine combo box.", "No machines.")
        self.press("Tab", "Disposable mode check box not checked.")
        question = (
            "alert Use disposable mode?",
            "Every run will create a brand new Linux machine, run your commands, and then delete the machine. This takes "
            "longer, and anything created inside is lost.",
            "Turn on push button.",
        )
        self.press("space", *question)
        self.press("space", "Tidewell frame.", "Disposable mode check box checked.")
        self.press("Tab", "Distribution combo box.", "ubuntu.")
        self.press("Down", "debian")
        self.press(
            "ctrl+Return",
            re.compile("notification Creating sbx-[0-9a-f]{6}…"),
            re.compile(r"notification Running in sbx-[0-9a-f]{6}\."),
            re.compile(r"notification exit status 3 · \d+\.\ds\."),
            re.compile("notification Deleting sbx-[0-9a-f]{6}…"),
        )
        self.tidewell.wait_until_enabled("Run")
        self.press("ctrl+3", *tab(3))
        self.press("Tab", "Clear all push button.", "Delete all entries of the history.")
        row = ("History.", "list.", "seq 1000; exit 3 panel.", re.compile(r"disposable \(debian\) · exit 3 · .*"))
        self.press("Tab", *row, "Load push button.", "Load seq 1000; exit 3.")
        self.press("space", "Script text.", "seq 1000; exit 3.")
        self.press("ctrl+3", *tab(3))
        self.press("Tab", "Clear all push button.", "Delete all entries of the history.")
        self.press("Tab", *row, "Load push button.", "Load seq 1000; exit 3.")
        self.press("Tab", "Delete push button.", "Delete seq 1000; exit 3.")
        self.press("space", *tab(3))

    def test_how_often_a_text_is_found_in_the_output_is_heard(self):
        self.start_listening(before=lambda tidewell: tidewell.orb("create", "debian", "box"))
        self.tidewell.wait_for_choice("Machine", "box")
        self.write("Script", "seq 30")
        self.press("ctrl+Return", "notification Running in box.", re.compile(r"notification exit status 0 · \d+\.\ds\."))
        self.press("ctrl+f", "Find in output text.")
        self.write("Find in output", "7")
        self.reader.expect("notification 3 of 3.")
        self.press("Return", "notification 1 of 3.")
        self.press("Tab", "Previous match push button.")
        self.press("space", "notification 3 of 3.")
        self.press("Escape", "Script text.", "seq 30.")

    def test_a_machine_is_created_and_deleted(self):
        self.start_listening()
        self.press("ctrl+2", *tab(2))
        self.press("Tab", "New sandbox panel.", "Distro combo box.", "ubuntu.")
        self.press("Down", "debian")
        self.press("Tab", "Name (e.g. scratch) text.")
        self.write("Name (e.g. scratch)", "box")
        self.press("Return", "notification Machine box is ready.")
        self.tidewell.wait_for("debian trixie · running")
        self.press("Return", "notification A machine named box already exists.")
        self.press("Tab", "Create push button.", "Create a machine.")
        self.press("Tab", "Machine log read only text.")
        row = ("Machines.", "list.", "box panel.", "debian trixie · running")
        self.press("Tab", *row, "Stop push button.", "Stop box.")
        self.press("Tab", "Delete push button.", "Delete box.")
        question = (
            "alert Delete box?",
            "The machine and everything inside it will be removed permanently.",
            "Cancel push button.",
        )
        self.press("space", *question)
        self.press("Escape", "Tidewell frame.", *row, "Delete push button.", "Delete box.")
        self.press("space", *question)
        self.press("shift+Tab", "Delete push button.")
        self.keyboard.press("space")
        # Where the keyboard is while the machine is being deleted may be heard, too.
        self.reader.expect_each_of("notification Deleted box.", "Name (e.g. scratch) text.")

    def test_the_fields_for_a_container_and_why_there_is_none_are_heard(self):
        self.start_listening()
        missing = "The docker command was not found. Install OrbStack (it provides docker) and start it."
        self.press("ctrl+4", *tab(4), f"notification {missing}")
        self.press("Tab", "Refresh push button.", "List the containers again.")
        self.press("Tab", "Run a container panel.", "Image (nginx:latest) text.")
        self.press("Tab", "Ports (8080:80) text.")
        self.press("Tab", "Name (optional) text.")
        self.press("Tab", *STOP_ORBSTACK)
        self.press("shift+Tab", "Run a container panel.", "Name (optional) text.")
        self.press("shift+Tab", "Ports (8080:80) text.")


if __name__ == "__main__":
    main()
