"""The History screen. Nothing in it can be busy or fail; what is around it can."""

from .staging import LONG, open_tab, run_in_box, scene, with_history, with_machines

OUTCOMES = [
    ("\n\napt-get update\nmake test", "box", 0, "", 3.2),
    ("exit 127", "disposable (ubuntu)", 127, "", 0.04),
    ("sleep 100000", "box", None, "timed out", 600.1),
    ("make", "box", None, "stopped", 59.96),
    (f"echo {LONG}", LONG, -1, "", 1.0),
    ("<b>no markup</b>", "box", None, LONG, 1.0),
    ("echo 日本語", "build", None, "", 0),
]


def with_runs(count):
    return with_history([OUTCOMES[number % len(OUTCOMES)] for number in range(count)])


def with_history_and_a_machine(tidewell):
    with_runs(3)(tidewell)
    with_machines("box")["before"](tidewell)


@scene()
def history_empty(tidewell):
    open_tab(tidewell, "History")
    tidewell.wait_for("No runs yet.")


@scene(before=with_runs(7))
def history_filled(tidewell):
    open_tab(tidewell, "History")
    tidewell.find("echo 日本語", role="panel")


@scene(before=with_runs(25))
def history_in_number(tidewell):
    open_tab(tidewell, "History")
    tidewell.wait_for("Last 50 runs")


@scene(before=with_history_and_a_machine)
def history_during_a_run(tidewell):
    run_in_box(tidewell, "sleep 1000")
    tidewell.button("Stop", "Stop the run")
    tidewell.select_tab("History")
    tidewell.find("exit 127", role="panel")


@scene(before=with_runs(3), engine_started=False)
def history_orbstack_stopped(tidewell):
    open_tab(tidewell, "History", "OrbStack stopped")
    tidewell.find("exit 127", role="panel")


@scene(before=with_runs(3), tools=())
def history_tools_missing(tidewell):
    open_tab(tidewell, "History", "OrbStack not installed")
    tidewell.find("exit 127", role="panel")
