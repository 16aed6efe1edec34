"""The History screen. Nothing in it can be busy or fail; what is around it can."""

import json
import os
import uuid

from .staging import LONG, open_tab, run_in_box, scene, with_machines

OUTCOMES = [
    ("\n\napt-get update\nmake test", "box", 0, "", 3.2),
    ("exit 127", "disposable (ubuntu)", 127, "", 0.04),
    ("sleep 100000", "box", None, "timed out", 600.1),
    ("make", "box", None, "stopped", 59.96),
    (f"echo {LONG}", LONG, -1, "", 1.0),
    ("<b>no markup</b>", "box", None, LONG, 1.0),
    ("echo 日本語", "build", None, "", 0),
]


def with_history(count):
    def write(tidewell):
        folder = tidewell.path("home", "data", "Tidewell")
        os.makedirs(folder)
        entries = []
        for number in range(count):
            command, machine, code, note, duration = OUTCOMES[number % len(OUTCOMES)]
            entry = {"id": str(uuid.uuid4()).upper(), "command": command, "machine": machine, "exitCode": code}
            entries.append(entry | {"note": note, "date": "2026-03-01T14:05:00Z", "duration": duration})
        with open(os.path.join(folder, "history.json"), "w", encoding="utf-8") as file:
            json.dump(entries, file)

    return write


def with_history_and_a_machine(tidewell):
    with_history(3)(tidewell)
    with_machines("box")["before"](tidewell)


@scene()
def history_empty(tidewell):
    open_tab(tidewell, "History")
    tidewell.wait_for("No runs yet.")


@scene(before=with_history(7))
def history_filled(tidewell):
    open_tab(tidewell, "History")
    tidewell.find("echo 日本語", role="panel")


@scene(before=with_history(25))
def history_in_number(tidewell):
    open_tab(tidewell, "History")
    tidewell.wait_for("Last 50 runs")


@scene(before=with_history_and_a_machine)
def history_during_a_run(tidewell):
    run_in_box(tidewell, "sleep 1000")
    tidewell.button("Stop", "Stop the run")
    tidewell.select_tab("History")
    tidewell.find("exit 127", role="panel")


@scene(before=with_history(3), engine_started=False)
def history_orbstack_stopped(tidewell):
    open_tab(tidewell, "History", "OrbStack stopped")
    tidewell.find("exit 127", role="panel")


@scene(before=with_history(3), tools=())
def history_tools_missing(tidewell):
    open_tab(tidewell, "History", "OrbStack not installed")
    tidewell.find("exit 127", role="panel")
