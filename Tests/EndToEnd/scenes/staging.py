"""What the scenes share. A scene is a function that brings a started program into a state; it is registered with the
options of the start."""

import json
import os
import shlex
import uuid

SCENES = {}

LONG = "a-name-that-goes-on-" * 12
RUNS = '[ "$1" != status ] || { echo Running; exit; }\n'
HANGING = "exec sleep 1000\n"


def scene(**options):
    def register(bring):
        SCENES[bring.__name__.replace("_", "-")] = (bring, options)
        return bring

    return register


def staged(**tools):
    """Tools in place of the real ones."""

    def add(tidewell):
        for name, script in tools.items():
            tidewell.add_tool(name, script)

    return {"tools": () if "orb" in tools or "brew" in tools else ("orb",), "before": add}


def with_machines(*names):
    def make(tidewell):
        for name in names:
            tidewell.orb("create", "debian", name)

    return {"before": make}


def with_history(runs):
    """A history of these runs, newest first: each a command, machine, exit code, note and duration."""

    def write(tidewell):
        folder = tidewell.path("home", "data", "Tidewell")
        os.makedirs(folder)
        entries = []
        for command, machine, code, note, duration in runs:
            entry = {"id": str(uuid.uuid4()).upper(), "command": command, "machine": machine, "exitCode": code}
            entries.append(entry | {"note": note, "date": "2026-03-01T14:05:00Z", "duration": duration})
        with open(os.path.join(folder, "history.json"), "w", encoding="utf-8") as file:
            json.dump(entries, file)

    return write


def listing(*machines, otherwise=""):
    """An `orb` that runs and lists machines, each a name, state, distribution and version; what else it is asked for is
    up to `otherwise`."""
    records = [
        {"name": name, "state": state, "image": {"distro": distro, "version": version}}
        for name, state, distro, version in machines
    ]
    return f'{RUNS}[ "$1" != list ] || {{ echo {shlex.quote(json.dumps(records))}; exit; }}\n{otherwise}'


def open_tab(tidewell, label, header="OrbStack running"):
    tidewell.wait_for(header)
    tidewell.select_tab(label)


def run_in_box(tidewell, script):
    tidewell.wait_for_choice("Machine", "box")
    tidewell.write_script(script)
    tidewell.press("Run")
