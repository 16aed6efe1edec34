"""The questions before the end, and what is told after one that cut a run off."""

import os

from .staging import HANGING, RUNS, listing, open_tab, run_in_box, scene, staged, with_machines

# Makes a machine, lists it, and cannot delete it.
KEEPS = RUNS + """case "$1" in
create) echo "$3" > "$HOME/made" ;;
list) printf '[{"name":"%s","state":"running"}]' "$(cat "$HOME/made")" ;;
delete) echo "rpc error: connection refused" >&2; exit 1 ;;
-m) exec sleep 1000 ;;
esac
"""
# Ends with the program alone.
IGNORES = listing(otherwise="""[ "$1" = -m ] || exit 0
trap '' TERM
while kill -0 $PPID; do sleep 0.1; done
""")


def stop_a_disposable_run_and_quit(tidewell):
    tidewell.wait_for("OrbStack running")
    tidewell.turn_on_disposable_mode()
    tidewell.write_script("sleep 1000")
    tidewell.press("Run")
    tidewell.wait_for_output("$ orb -m")
    tidewell.close_window()
    tidewell.press("Stop it and quit")


def create_and_quit(tidewell):
    open_tab(tidewell, "Machines")
    tidewell.find("Name (e.g. scratch)").set_text("box")
    tidewell.press("Create")
    tidewell.wait_for_text("$ orb create ubuntu box")
    tidewell.close_window()
    tidewell.button("Quit when it is done")


@scene(**staged(orb=KEEPS))
def quitting_with_a_machine_not_deleted(tidewell):
    stop_a_disposable_run_and_quit(tidewell)
    tidewell.button("Quit anyway")


@scene(**staged(orb=IGNORES))
def quitting_with_a_run_not_ended(tidewell):
    stop_a_disposable_run_and_quit(tidewell)
    tidewell.wait_for("The run has not ended yet.")


@scene(**staged(orb=listing(otherwise=HANGING)))
def quitting_during_an_operation(tidewell):
    create_and_quit(tidewell)


@scene(**staged(orb=listing(otherwise=HANGING)))
def quitting_during_an_operation_again(tidewell):
    create_and_quit(tidewell)
    tidewell.press("Quit when it is done")
    tidewell.wait_until_gone("Quit when it is done")
    tidewell.close_window()
    tidewell.button("Quit anyway")


@scene(**with_machines("box"))
def quitting_with_a_history_not_saved(tidewell):
    tidewell.wait_for("OrbStack running")
    folder = tidewell.path("home", "data", "Tidewell")
    os.rename(folder, f"{folder} of before")
    with open(folder, "wb"):
        pass
    run_in_box(tidewell, "true")
    tidewell.wait_for_text("exit status 0")
    tidewell.close_window()
    tidewell.wait_for("The history could not be saved.")


def write_a_name_down(tidewell):
    tidewell.add_tool("orb", listing(("sbx-12ab34", "running", "ubuntu", "noble")))
    folder = tidewell.path("home", "data", "Tidewell", "Disposable machines")
    os.makedirs(folder)
    with open(os.path.join(folder, "sbx-12ab34"), "wb"):
        pass


@scene(tools=(), before=write_a_name_down)
def machines_with_one_left_behind(tidewell):
    open_tab(tidewell, "Machines")
    tidewell.wait_for("sbx-12ab34")
