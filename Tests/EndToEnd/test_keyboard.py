#!/usr/bin/python3
"""Everything done by the keyboard alone."""

import unittest

from harness import docker
from harness.docker import IMAGE, DockerEngine
from harness.keyboard import Keyboard
from harness.waiting import wait_until
from harness.window_case import WindowCase, main


class ByKeyboard(WindowCase):
    def start_with_keyboard(self, **options):
        tidewell = self.start_running(**options)
        return tidewell, Keyboard(tidewell)

    def test_a_script_is_written_and_run_in_a_disposable_machine(self):
        tidewell, keyboard = self.start_with_keyboard()
        keyboard.fill("Script", "echo $0; sleep 1000")
        keyboard.press_button("Disposable mode")
        tidewell.wait_for("Use disposable mode?")
        keyboard.press_button("Turn on")
        tidewell.wait_until_gone("Use disposable mode?")
        keyboard.tab_to("ubuntu")
        keyboard.choose("Distribution", "alpine")
        keyboard.press("ctrl+Return")
        tidewell.wait_for_output(" sh -s\nsh\n")
        keyboard.press_button("Stop", "Stop the run")
        tidewell.wait_for_output("Deleted sbx-")
        self.assertEqual(tidewell.machines(), {})

    def test_output_is_selected_and_copied(self):
        tidewell, keyboard = self.start_with_keyboard(before=lambda tidewell: tidewell.orb("create", "debian", "box"))
        tidewell.wait_for_choice("Machine", "box")
        keyboard.fill("Script", "echo copied")
        keyboard.press("ctrl+Return")
        tidewell.wait_for_output("exit status 0 · ")
        keyboard.tab_to("Output")
        keyboard.press("ctrl+a", "ctrl+c")
        keyboard.tab_to("Script")
        keyboard.press("ctrl+a", "ctrl+v")
        wait_until(lambda: "\ncopied\n\nexit status 0 · " in tidewell.find("Script").text, "the output was pasted")

    def test_a_machine_is_created_stopped_started_and_deleted(self):
        tidewell, keyboard = self.start_with_keyboard()
        keyboard.press("ctrl+2")
        tidewell.wait_for("No machines yet. Create one above.")
        keyboard.tab_to("ubuntu")
        keyboard.choose("Distro", "debian")
        keyboard.fill("Name (e.g. scratch)", "box")
        keyboard.press_button("Create")
        tidewell.wait_for("debian trixie · running")
        keyboard.press_button("Stop", "Stop box")
        tidewell.wait_for("debian trixie · stopped")
        keyboard.press_button("Start", "Start box")
        tidewell.wait_for("debian trixie · running")
        keyboard.press_button("Delete", "Delete box")
        tidewell.wait_for("Delete box?")
        keyboard.press("Escape")
        tidewell.wait_until_gone("Delete box?")
        self.assertEqual(tidewell.machines(), {"box": "running"})
        keyboard.press_button("Delete", "Delete box")
        tidewell.wait_for("Delete box?")
        keyboard.tab_to("Delete", "")
        keyboard.press("space")
        tidewell.wait_for("No machines yet. Create one above.")
        self.assertEqual(tidewell.machines(), {})

    def test_history_is_loaded_deleted_and_cleared(self):
        tidewell, keyboard = self.start_with_keyboard(before=lambda tidewell: tidewell.orb("create", "debian", "box"))
        tidewell.wait_for_choice("Machine", "box")
        for number in (1, 2, 3):
            keyboard.fill("Script", f"exit {number}")
            keyboard.press("ctrl+Return")
            tidewell.wait_for_output(f"exit status {number} · ")
            tidewell.wait_until_enabled("Run")
        keyboard.press("ctrl+3")
        keyboard.press_button("Load", "Load exit 2")
        wait_until(lambda: tidewell.find("Script").text == "exit 2", "the script is loaded")
        keyboard.press("ctrl+3")
        keyboard.press_button("Delete", "Delete exit 2")
        tidewell.wait_until_gone("exit 2")
        self.assertEqual([entry["command"] for entry in tidewell.history()], ["exit 3", "exit 1"])
        keyboard.press_button("Clear all")
        tidewell.wait_for("No runs yet.")

    def test_orbstack_is_stopped_and_started(self):
        tidewell, keyboard = self.start_with_keyboard()
        keyboard.press_button("Stop", "Stop OrbStack")
        tidewell.wait_for("OrbStack stopped")
        keyboard.press_button("Start", "Start OrbStack")
        tidewell.wait_for("OrbStack running")

    def test_the_window_is_closed_by_its_shortcut(self):
        tidewell, keyboard = self.start_with_keyboard()
        keyboard.press("ctrl+q")
        self.assertEqual(tidewell.wait_for_end(), 0)


class ContainersByKeyboard(WindowCase):
    def setUp(self):
        super().setUp()
        if reason := docker.why_not():
            raise unittest.SkipTest(reason)
        try:
            self.engine = self.enterContext(DockerEngine())
        except OSError as error:
            raise unittest.SkipTest(str(error)) from None

    def test_a_container_is_run_read_stopped_started_and_removed(self):
        tidewell = self.start_running(tools=("orb", "docker"), environment={"DOCKER_HOST": self.engine.address})
        keyboard = Keyboard(tidewell)
        keyboard.press("ctrl+4")
        tidewell.wait_for("No containers.")
        keyboard.fill("Image (nginx:latest)", IMAGE)
        keyboard.fill("Ports (8080:80)", "8080:80")
        keyboard.fill("Name (optional)", "web")
        keyboard.press_button("Run", "Run a container")
        tidewell.find("web", role="panel")
        keyboard.press_button("Logs", "Logs web")
        tidewell.wait_for("Logs: web")
        keyboard.press_button("Close")
        tidewell.wait_until_gone("Logs: web")
        keyboard.press_button("Stop", "Stop web")
        wait_until(lambda: self.engine.state("web") == "exited", "web has stopped")
        keyboard.press_button("Start", "Start web")
        wait_until(lambda: self.engine.state("web") == "running", "web runs")
        self.engine.run("create", "--name", "made-elsewhere", IMAGE)
        keyboard.press_button("Refresh")
        tidewell.find("made-elsewhere", role="panel")
        keyboard.press_button("Remove", "Remove web")
        wait_until(lambda: self.engine.state("web") == "", "web is removed")


if __name__ == "__main__":
    main()
