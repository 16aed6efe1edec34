#!/usr/bin/python3
"""journey.py PROGRAM PICTURES: shows what Tidewell is for, where there is no display to look at.

On a private desktop: create a machine, write a script, run it in a disposable machine, read the output, find the run in
the history, and, where a Docker engine can run, start a container; with a picture of every tab. Every step is done and
read through the real window, from this process. Exit status 0 only when each step did what it should.
"""

import contextlib
import os
import sys

from harness import docker, enter_own_tools
from harness.desktop import Desktop, missing_tools
from harness.tidewell import Tidewell

SCRIPT = """\
echo "Hello from $(hostname), whose first process is $(cat /proc/1/comm)."
touch /etc/only-in-here && ls -l /etc/only-in-here
echo "This line went to standard error." >&2
"""


def step(text):
    print(f"-- {text}", flush=True)


def start_docker(stack):
    """The options with which Tidewell finds a Docker engine, ended with the stack; or why there is none."""
    if reason := docker.why_not():
        return {}, reason
    try:
        engine = stack.enter_context(docker.DockerEngine())
    except OSError as error:
        return {}, str(error)
    return {"tools": ("orb", "docker"), "environment": {"DOCKER_HOST": engine.address}}, None


def check(condition, failure):
    if not condition:
        raise AssertionError(failure)


def create_machine(tidewell):
    tidewell.select_tab("Machines")
    tidewell.wait_for("No machines yet. Create one above.")
    tidewell.find("Name (e.g. scratch)").set_text("box")
    tidewell.press("Create", "Create a machine")
    tidewell.find("box", role="panel")
    check(tidewell.machines() == {"box": "running"}, f"the machines are: {tidewell.machines()}")
    tidewell.select_tab("Run")
    tidewell.wait_for_choice("Machine", "box")


def run_container(tidewell):
    tidewell.find("Image (nginx:latest)").set_text(docker.IMAGE)
    tidewell.find("Ports (8080:80)").set_text("8080:80")
    tidewell.find("Name (optional)").set_text("web")
    tidewell.press("Run", "Run a container")
    tidewell.find("web", role="panel")
    tidewell.wait_until_enabled("Stop", "Stop web")


def journey(tidewell, pictures, no_docker):
    def picture(name):
        tidewell.take_picture(os.path.join(pictures, f"{name}.png"))

    tidewell.wait_for("OrbStack running")
    step("the window is open, and the header says: OrbStack running")

    create_machine(tidewell)
    step("a machine called box is created and runs")

    tidewell.write_script(SCRIPT)
    tidewell.turn_on_disposable_mode()
    step("a script is written and disposable mode is on")

    tidewell.press("Run")
    transcript = tidewell.wait_for_output("Deleted sbx-")
    picture("run")
    step("the run has ended; the output pane says:\n")
    print("\n".join("    " + line for line in transcript.splitlines()), end="\n\n")
    check("exit status 0 · " in transcript, "the script did not end with exit status 0")
    check("Hello from sbx-" in transcript, "the script's output is missing")
    check("This line went to standard error." in transcript, "the script's errors are missing")
    check(tidewell.machines() == {"box": "running"}, f"the machines are: {tidewell.machines()}")
    check(not os.path.exists("/etc/only-in-here"), "the script reached this computer's own files")
    step("the disposable machine is gone, and this computer's files are as before")

    tidewell.select_tab("Machines")
    tidewell.button("Stop", "Stop box")
    picture("machines")
    step("the Machines tab lists the machine called box")

    tidewell.select_tab("History")
    row = tidewell.wait_for(SCRIPT.splitlines()[0])
    caption = next(node.name for node in row.walk() if node.name.startswith("disposable (ubuntu) · exit 0 · "))
    picture("history")
    check(tidewell.history()[0]["command"] == SCRIPT, "the history file does not hold the run")
    step(f"the History tab and its file hold the run: {caption}")

    tidewell.select_tab("Containers")
    tidewell.find("Run", description="Run a container")
    if no_docker:
        step(f"the Containers tab is open, and stays empty: {no_docker}")
    else:
        run_container(tidewell)
        step("the Containers tab lists the container called web, which runs")
    picture("containers")

    tidewell.close_window()
    check(tidewell.wait_for_end() == 0, "the program did not end well")
    step(f"the window is closed and the program has ended; pictures of every tab are in {pictures}/")


def main():
    enter_own_tools()
    program, pictures = sys.argv[1:]
    if missing := missing_tools():
        sys.exit(f"The journey needs {' '.join(missing)}.")
    os.makedirs(pictures, exist_ok=True)
    try:
        with contextlib.ExitStack() as stack:
            options, no_docker = start_docker(stack)
            desktop = stack.enter_context(Desktop())
            journey(stack.enter_context(Tidewell(program, desktop, **options)), pictures, no_docker)
    except (AssertionError, OSError, RuntimeError) as error:
        print(f"The journey failed: {error}", file=sys.stderr)
        return 1
    print("The journey succeeded.")
    return 0


if __name__ == "__main__":
    sys.exit(main())
