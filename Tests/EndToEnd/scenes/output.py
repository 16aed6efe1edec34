"""All output: the caption on the Run screen, the window of its own, and how far the saving of it has come."""

import resource

from .staging import run_in_box, scene, with_machines

# Far more than the Run screen keeps, so that with the line of the exit status it lets go of most.
LONG_OUTPUT = "for i in $(seq 60000); do echo \"line $i of a long output\"; done; echo 'and an error' >&2"


def run_long(tidewell):
    run_in_box(tidewell, LONG_OUTPUT)
    tidewell.wait_for_output("exit status 0 · ")
    tidewell.button("Run")


@scene(**with_machines("box"))
def output_earlier(tidewell):
    run_long(tidewell)
    tidewell.wait_for("Earlier output is kept: Run ▸ Show All Output")


@scene(**with_machines("box"))
def output_window(tidewell):
    run_long(tidewell)
    tidewell.show_all_output()


@scene(**with_machines("box"))
def output_window_scrolled(tidewell):
    run_long(tidewell)
    tidewell.show_all_output()
    tidewell.press_keys("ctrl+Home")
    tidewell.button("Jump to End")


@scene(**with_machines("box"))
def output_window_with_a_lost_front(tidewell):
    tidewell.wait_for("OrbStack running")
    resource.prlimit(tidewell.process.pid, resource.RLIMIT_FSIZE, (1 << 20, 1 << 20))
    # Does not compress, and is more than what may be in memory.
    run_in_box(tidewell, "head -c 400000000 /dev/urandom | base64")
    tidewell.wait_for_text("exit status 0")
    tidewell.show_all_output()


@scene(**with_machines("box"))
def output_saving(tidewell):
    run_in_box(tidewell, "yes 'a line that is printed again and again' | head -c 6000000000")
    tidewell.wait_for_text("exit status 0")
    tidewell.save_output(tidewell.path("output.txt"))
    tidewell.wait_for("Saving “output.txt”…")
