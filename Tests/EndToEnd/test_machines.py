#!/usr/bin/python3
"""The Machines tab on the Linux engine."""

from harness.waiting import wait_until
from harness.window_case import WindowCase, main


class Machines(WindowCase):
    def start_on_tab(self, *names):
        def make_machines(tidewell):
            for name in names:
                tidewell.orb("create", "debian", name)

        tidewell = self.start_running(before=make_machines)
        tidewell.select_tab("Machines")
        return tidewell

    def log(self, tidewell):
        return tidewell.find("Machine log").text

    def test_a_machine_is_created_stopped_started_and_deleted(self):
        tidewell = self.start_on_tab()
        tidewell.wait_for("No machines yet. Create one above.")
        tidewell.choose("Distro", "debian")
        tidewell.find("Name (e.g. scratch)").set_text(" scratch ")
        tidewell.press("Create")
        tidewell.wait_for("debian trixie · running")
        first, second, *others = tidewell.wait_for_text("Machine scratch is ready.\n").split("\n")
        self.assertEqual((first, others), ("$ orb create debian scratch", ["", "Machine scratch is ready.", ""]))
        self.assertTrue(second.startswith("scratch is running. "), second)
        self.assertEqual(tidewell.machines(), {"scratch": "running"})
        self.assertFalse(tidewell.button("Start", "Start scratch").is_enabled)

        tidewell.press("Stop", "Stop scratch")
        tidewell.wait_for("debian trixie · stopped")
        self.assertEqual(tidewell.machines(), {"scratch": "stopped"})
        tidewell.press("Start", "Start scratch")
        tidewell.wait_for("debian trixie · running")

        tidewell.press("Delete", "Delete scratch")
        tidewell.wait_for("Delete scratch?")
        self.assertTrue(tidewell.shows("The machine and everything inside it will be removed permanently."))
        tidewell.press_in_alert("Delete")
        tidewell.wait_for("No machines yet. Create one above.")
        wait_until(lambda: self.log(tidewell) == "Deleted scratch.\n", "the log tells of the deletion")
        self.assertEqual(tidewell.machines(), {})

    def test_a_deletion_that_is_called_off_leaves_the_machine(self):
        tidewell = self.start_on_tab("box")
        tidewell.press("Delete", "Delete box")
        tidewell.press_in_alert("Cancel")
        tidewell.wait_until_gone("Delete box?")
        self.assertEqual(tidewell.machines(), {"box": "running"})

    def test_names_that_cannot_be_are_explained(self):
        tidewell = self.start_on_tab("box")
        tidewell.find("box", role="panel")
        name = tidewell.find("Name (e.g. scratch)")
        for text, explanation in (("Box", "Use lowercase letters, digits and dashes for the name.\n"),
                                  ("box", "A machine named box already exists.\n")):  # fmt: skip
            name.set_text(text)
            tidewell.press("Create")
            wait_until(lambda: self.log(tidewell) == explanation, f"the log says {explanation!r}")
        name.set_text("  ")
        wait_until(lambda: not tidewell.button("Create").is_enabled, "Create cannot be pressed")

    def test_a_machine_made_elsewhere_appears_and_one_that_went_disappears(self):
        tidewell = self.start_on_tab("first")
        tidewell.find("first", role="panel")
        tidewell.orb("create", "ubuntu", "second")
        tidewell.find("second", role="panel")
        tidewell.orb("delete", "-f", "first")
        wait_until(lambda: [row.name for row in tidewell.rows("Machines")] == ["second"], "only the second is listed")

    def test_a_machine_that_went_meanwhile_is_told(self):
        tidewell = self.start_on_tab("box")
        # It goes after the click, so that no poll takes its row first.
        real = f'"{tidewell.orb_path}"'
        tidewell.add_tool("orb", f'[ "$1" != stop ] || {real} delete -f box > /dev/null\nexec {real} "$@"\n')
        tidewell.press("Stop", "Stop box")
        wait_until(lambda: self.log(tidewell) == "orb stop box failed: [-32602] no machine found: 'box'\n", "the log")
        tidewell.wait_for("No machines yet. Create one above.")

    def test_with_the_engine_stopped_the_tab_says_so(self):
        tidewell = self.start_on_tab("box")
        tidewell.find("Name (e.g. scratch)").set_text("other")
        tidewell.press("Stop", "Stop OrbStack")
        tidewell.wait_for("OrbStack is not running, so machines cannot be listed.")
        self.assertFalse(tidewell.button("Create").is_enabled)
        tidewell.press("Start", "Start OrbStack")
        tidewell.find("box", role="panel")


if __name__ == "__main__":
    main()
