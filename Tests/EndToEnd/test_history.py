#!/usr/bin/python3
"""The History tab: entries loaded back, deleted, cleared, and kept over a restart."""

import json
import os

from harness.waiting import wait_until
from harness.window_case import WindowCase, main

ENTRIES = [
    {"id": f"00000000-0000-0000-0000-00000000000{number}", "command": command, "machine": "box", "note": note,
     "date": "2026-03-01T14:05:09Z", "duration": 3.2} | outcome
    for number, (command, note, outcome) in enumerate([
        ("\n\necho newest\necho second line", "", {"exitCode": 0}),
        ("sleep 1000", "stopped", {}),
        ("<b>false</b>", "", {"exitCode": 127}),
    ])
]  # fmt: skip


class History(WindowCase):
    def start_on_tab(self):
        def write_history(tidewell):
            os.makedirs(tidewell.path("home", "data", "Tidewell"))
            with open(tidewell.path("home", "data", "Tidewell", "history.json"), "w", encoding="utf-8") as file:
                json.dump(ENTRIES, file)

        tidewell = self.start_running(before=write_history)
        tidewell.select_tab("History")
        return tidewell

    def row_names(self, tidewell):
        return [row.name for row in tidewell.rows("History")]

    def test_every_entry_has_its_row_newest_first(self):
        tidewell = self.start_on_tab()
        self.assertEqual(self.row_names(tidewell), ["echo newest", "sleep 1000", "<b>false</b>"])
        captions = [[node.name for node in row.find_all(role="label")][1] for row in tidewell.rows("History")]
        for caption, outcome in zip(captions, ("exit 0", "stopped", "exit 127"), strict=True):
            self.assertTrue(caption.startswith(f"box · {outcome} · 3.2s · "), caption)

    def test_an_entry_is_loaded_back_into_the_script(self):
        tidewell = self.start_on_tab()
        tidewell.press("Load", "Load echo newest")
        self.assertEqual(tidewell.find("Script").text, "\n\necho newest\necho second line")
        self.assertEqual(len(tidewell.history()), 3)

    def test_one_entry_is_deleted(self):
        tidewell = self.start_on_tab()
        tidewell.press("Delete", "Delete sleep 1000")
        wait_until(lambda: self.row_names(tidewell) == ["echo newest", "<b>false</b>"], "the row is gone")
        wait_until(lambda: [entry["id"][-1] for entry in tidewell.history()] == ["0", "2"], "the file holds the others")

    def test_all_entries_are_cleared(self):
        tidewell = self.start_on_tab()
        tidewell.press("Clear all")
        tidewell.wait_for("No runs yet.")
        wait_until(lambda: tidewell.history() == [], "the file holds no entry")
        self.assertFalse(tidewell.button("Clear all").is_enabled)

    def test_the_history_survives_a_restart(self):
        tidewell = self.start_on_tab()
        tidewell.press("Delete", "Delete sleep 1000")
        wait_until(lambda: len(tidewell.history()) == 2, "the entry is gone from the file")
        tidewell.close_window()
        tidewell.wait_for_end()
        tidewell.launch()
        tidewell.select_tab("History")
        self.assertEqual(self.row_names(tidewell), ["echo newest", "<b>false</b>"])


if __name__ == "__main__":
    main()
