"""The Machines screen and the question before a deletion."""

from .staging import HANGING, LONG, RUNS, listing, open_tab, scene, staged, with_machines

BOX = ("box", "running", "debian", "12")
SCRATCH = ("scratch", "stopped", "alpine", "3.20")
REFUSED = 'echo "rpc error: connection refused" >&2\nexit 1\n'


def create(tidewell, name):
    tidewell.find("Name (e.g. scratch)").set_text(name)
    tidewell.press("Create")


@scene()
def machines_empty(tidewell):
    open_tab(tidewell, "Machines")
    tidewell.wait_for("No machines yet. Create one above.")


@scene(**with_machines("box", "scratch", "web"))
def machines_filled(tidewell):
    tidewell.orb("stop", "scratch")
    open_tab(tidewell, "Machines")
    tidewell.wait_for("debian trixie · stopped")


@scene(**staged(orb=listing(BOX, (LONG, LONG, LONG, LONG), ("bare", "stopped", "", ""), SCRATCH)))
def machines_with_long_texts(tidewell):
    open_tab(tidewell, "Machines")
    tidewell.wait_for("alpine 3.20 · stopped")


@scene(**staged(orb=listing(*((f"m{number}", "running", "ubuntu", "noble") for number in range(25)))))
def machines_in_number(tidewell):
    open_tab(tidewell, "Machines")
    tidewell.find("m0", role="panel")


@scene(**staged(orb=listing(otherwise='echo "downloading the image"\n' + HANGING)))
def machines_busy_with_the_first(tidewell):
    open_tab(tidewell, "Machines")
    create(tidewell, "box")
    tidewell.wait_for("In progress")


@scene(**staged(orb=listing(BOX, SCRATCH, otherwise='for i in $(seq 12); do echo "step $i of 12"; done\n' + HANGING)))
def machines_busy(tidewell):
    open_tab(tidewell, "Machines")
    create(tidewell, "web")
    tidewell.find("Machine log", role="text")
    tidewell.wait_for_text("step 12")


@scene(**staged(orb=listing(BOX, SCRATCH)))
def machines_refused_name(tidewell):
    open_tab(tidewell, "Machines")
    create(tidewell, "Upper-Case")
    tidewell.wait_for_text("Use lowercase letters")


@scene(**staged(orb=RUNS + REFUSED))
def machines_error(tidewell):
    open_tab(tidewell, "Machines")
    tidewell.wait_for_text("rpc error: connection refused")


@scene(**staged(orb=listing(BOX, SCRATCH)))
def machines_error_over_a_list(tidewell):
    open_tab(tidewell, "Machines")
    tidewell.find("box", role="panel")
    tidewell.add_tool("orb", RUNS + REFUSED)
    tidewell.wait_for_text("rpc error: connection refused")


@scene(**with_machines("box"))
def machines_deletion_alert(tidewell):
    open_tab(tidewell, "Machines")
    tidewell.press("Delete", "Delete box")
    tidewell.wait_for("Delete box?")


@scene(**staged(orb=listing((LONG, "running", "debian", "12"))))
def machines_deletion_alert_with_a_long_name(tidewell):
    open_tab(tidewell, "Machines")
    tidewell.press("Delete", f"Delete {LONG}")
    tidewell.wait_for("The machine and everything inside it will be removed permanently.")


@scene(**with_machines("box"))
def machines_orbstack_stopped(tidewell):
    open_tab(tidewell, "Machines")
    tidewell.press("Stop", "Stop OrbStack")
    tidewell.wait_for("OrbStack is not running, so machines cannot be listed.")


@scene(tools=())
def machines_tools_missing(tidewell):
    open_tab(tidewell, "Machines", "OrbStack not installed")
    tidewell.wait_for("OrbStack is not running, so machines cannot be listed.")
