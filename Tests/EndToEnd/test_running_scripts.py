#!/usr/bin/python3
"""The main job: scripts run in machines from the real window."""

import os
import re

from harness.waiting import wait_until
from harness.window_case import WindowCase, main


class RunningScripts(WindowCase):
    def test_a_script_runs_in_a_disposable_machine_that_is_then_gone(self):
        tidewell = self.start_running()
        tidewell.make_pipe("go")
        script = f"hostname; echo error >&2; read line < /mnt/mac{tidewell.path('go')}; echo $line; exit 3"
        tidewell.write_script(script)
        tidewell.turn_on_disposable_mode()
        self.assertTrue(
            tidewell.shows("Each run creates a fresh machine, runs in it, then deletes it. Nothing persists.")
        )
        tidewell.press("Run")
        # The script waits for us: what is shown now was streamed while it runs.
        output = tidewell.wait_for_output("error\n")
        name = re.search(r"Creating disposable machine (sbx-[0-9a-f]{6}) \(ubuntu\)…\n", output).group(1)
        self.assertIn(f"$ orb -m {name} bash -s\n", output)
        self.assertIn(f"{name}\n", output)
        self.assertEqual(tidewell.machines(), {name: "running"})
        tidewell.write_pipe("go", "the last line\n")
        output = tidewell.wait_for_output(f"Deleted {name}.\n")
        end = rf"the last line\n\nexit status 3 · \d+\.\ds\nDeleting disposable machine {name}…\n"
        self.assertRegex(output, end)
        self.assertEqual(tidewell.machines(), {})
        (entry,) = wait_until(tidewell.history, "an entry in the history file")
        self.assertEqual((entry["command"], entry["machine"], entry["exitCode"], entry["note"]),
                         (script, "disposable (ubuntu)", 3, ""))  # fmt: skip

    def test_a_run_is_stopped_by_its_button(self):
        tidewell = self.start_running()
        tidewell.write_script("echo begun; sleep 1000 & wait")
        tidewell.turn_on_disposable_mode()
        tidewell.press("Run")
        tidewell.wait_for_output("begun\n")
        tidewell.press("Stop", "Stop the run")
        output = tidewell.wait_for_output("Deleted sbx-")
        self.assertIn("\nStopped by user.\n", output)
        self.assertNotIn("exit status", output)
        self.assertEqual(tidewell.machines(), {})
        (entry,) = wait_until(tidewell.history, "an entry in the history file")
        self.assertEqual((entry["note"], "exitCode" in entry), ("stopped", False))

    def test_what_a_script_changes_in_a_machine_of_ones_own_is_there_for_the_next(self):
        tidewell = self.start(before=lambda tidewell: tidewell.orb("create", "debian", "box"))
        tidewell.wait_for_choice("Machine", "box")
        tidewell.write_script("echo kept > /etc/kept")
        tidewell.press("Run")
        tidewell.wait_for_output("exit status 0 · ")
        tidewell.press("Clear", "Clear the output")
        wait_until(lambda: tidewell.output == "", "the output is cleared")
        tidewell.write_script("cat /etc/kept; hostname")
        tidewell.press("Run")
        output = tidewell.wait_for_output("exit status 0 · ")
        self.assertTrue(output.startswith("$ orb -m box bash -s\nkept\nbox\n"), output)
        self.assertFalse(os.path.exists("/etc/kept"))
        self.assertEqual([entry["machine"] for entry in tidewell.history()], ["box", "box"])

    def test_a_distribution_without_bash_gets_sh(self):
        tidewell = self.start_running()
        tidewell.write_script("echo $0")
        tidewell.turn_on_disposable_mode()
        tidewell.choose("Distribution", "alpine")
        tidewell.press("Run")
        self.assertRegex(tidewell.wait_for_output("Deleted sbx-"), r"\$ orb -m sbx-\w{6} sh -s\nsh\n\nexit status 0")

    def test_a_shared_folder_is_where_the_script_runs_and_what_it_can_change(self):
        tidewell = self.start(before=lambda tidewell: tidewell.orb("create", "debian", "box"))
        folder = tidewell.path("home", "it's shared")
        os.mkdir(folder)
        tidewell.share_folder(folder)
        self.assertTrue(
            tidewell.shows(
                "Warning: a script can change or delete files in a shared folder. The command runs with that folder "
                "as its working directory."
            )
        )
        tidewell.write_script("echo from the machine > file; echo done")
        tidewell.press("Run")
        output = tidewell.wait_for_output("exit status 0 · ")
        self.assertTrue(output.startswith(f"$ orb -m box bash -s   (folder: {folder})\ndone\n"), output)
        with open(os.path.join(folder, "file"), encoding="utf-8") as file:
            self.assertEqual(file.read(), "from the machine\n")

    def test_output_that_looks_like_markup_or_escape_codes_is_text(self):
        tidewell = self.start(before=lambda tidewell: tidewell.orb("create", "debian", "box"))
        tidewell.write_script(r"""printf '<b>bold</b> <img src="x"> &amp; \033[31mred\033[0m \007bell\n'""")
        tidewell.press("Run")
        output = tidewell.wait_for_output("exit status 0 · ")
        self.assertIn('<b>bold</b> <img src="x"> &amp; ', output)
        self.assertRegex(output, r"\[31mred.?\[0m")

    def test_a_script_that_asks_for_input_meets_its_end_at_once(self):
        tidewell = self.start(before=lambda tidewell: tidewell.orb("create", "debian", "box"))
        tidewell.write_script("cat; echo after")
        tidewell.press("Run")
        self.assertIn("exit status 0 · ", tidewell.wait_for_output("exit status"))

    def test_packages_are_checked_before_anything_runs(self):
        tidewell = self.start(before=lambda tidewell: tidewell.orb("create", "debian", "box"))
        tidewell.wait_for_choice("Machine", "box")
        tidewell.find(name="Packages, e.g. git curl").set_text("git; rm -rf /")
        tidewell.press("Install packages")
        output = tidewell.wait_for_output("Package names may only contain")
        self.assertEqual(output, "Package names may only contain letters, digits and . + _ : = ~ -\n")
        self.assertEqual(tidewell.history(), [])


if __name__ == "__main__":
    main()
