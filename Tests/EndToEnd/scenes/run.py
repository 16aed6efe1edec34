"""The Run screen, with its alert, and the question before quitting."""

import os

from harness.keyboard import Keyboard
from harness.waiting import wait_until

from .staging import HANGING, LONG, listing, run_in_box, scene, staged, with_machines


def share_a_deep_folder(tidewell):
    folder = tidewell.path("home", "a folder with quite a long name", "in another one", LONG)
    os.makedirs(folder)
    tidewell.share_folder(folder)


@scene()
def run_idle(tidewell):
    tidewell.wait_for("OrbStack running")


@scene(**with_machines("box"))
def run_with_the_focus_in_the_script(tidewell):
    tidewell.wait_for_choice("Machine", "box")
    Keyboard(tidewell).tab_to("Script")


@scene(**with_machines("box"))
def run_with_the_focus_on_the_empty_box(tidewell):
    tidewell.wait_for_choice("Machine", "box")
    Keyboard(tidewell).tab_to("Disposable mode")


@scene(**with_machines("box"))
def run_running(tidewell):
    run_in_box(tidewell, 'for i in $(seq 40); do echo "line $i"; done\nsleep 1000')
    tidewell.wait_for_output("line 40\n")


@scene(**with_machines("box"))
def run_finished_with_every_kind(tidewell):
    run_in_box(tidewell, "echo 'plain output'; echo 'an error' >&2")
    tidewell.wait_for_output("exit status 0 · ")
    run_in_box(tidewell, "exit 3")
    tidewell.wait_for_output("exit status 3 · ")
    run_in_box(tidewell, "echo waiting; sleep 1000")
    tidewell.wait_for_output("\nwaiting\n")
    tidewell.press("Stop", "Stop the run")
    tidewell.wait_for_output("Stopped by user.")
    tidewell.button("Run")


@scene(**with_machines("box"))
def run_finished_with_odd_output(tidewell):
    script = r"""for i in $(seq 40); do printf 'a line that is longer than the pane is wide, part %s; ' $i; done; echo
printf '\033[31mescape codes\033[0m, tabs:\tone\ttwo, \x07 and \xff\n'
echo '日本語 한국어 العربية עברית 👩‍👩‍👧‍👦 é'
echo '<b>no markup</b> &amp;'
for i in $(seq 30); do echo "one of many lines of a script that does not fit the editor"; done >/dev/null
# 5
# 6
# 7
# 8
# 9
# 10
# 11
# 12
exit 2"""
    run_in_box(tidewell, script)
    tidewell.wait_for_output("exit status 2 · ")
    tidewell.button("Run")


@scene(**with_machines("box"))
def run_find_bar(tidewell):
    script = r"""for i in $(seq 340); do echo "step $i: Warning, nothing to do"; echo "a warning as an error" >&2; done
sleep 1000"""
    run_in_box(tidewell, script)
    tidewell.wait_for_output("step 340: ")
    tidewell.press_keys("ctrl+f")
    tidewell.find("Find in output").set_text("warning")
    labels = lambda: [node.name for node in tidewell.root.find_all(role="label")]
    wait_until(lambda: any(name.endswith(" of 680") for name in labels()), "the matches are counted")


@scene()
def run_disposable_alert(tidewell):
    tidewell.wait_for("OrbStack running")
    tidewell.find("Disposable mode").press()
    tidewell.wait_for("Use disposable mode?")


@scene()
def run_disposable_mode(tidewell):
    tidewell.wait_for("OrbStack running")
    tidewell.turn_on_disposable_mode()


@scene(**with_machines("box"))
def run_shared_folder(tidewell):
    tidewell.wait_for_choice("Machine", "box")
    share_a_deep_folder(tidewell)


@scene(**staged(orb=listing((LONG, "running", "debian", "12"), otherwise=HANGING)))
def run_with_everything_on(tidewell):
    tidewell.wait_for("OrbStack running")
    share_a_deep_folder(tidewell)
    tidewell.turn_on_disposable_mode()
    tidewell.find("Packages, e.g. git curl").set_text("git curl build-essential " * 4)
    tidewell.write_script("echo one\nsleep 1000")
    tidewell.press("Run")
    tidewell.button("Stop", "Stop the run")


@scene(**with_machines("box"))
def run_quit_question(tidewell):
    run_in_box(tidewell, "sleep 1000")
    tidewell.button("Stop", "Stop the run")
    tidewell.close_window()
    tidewell.wait_for("A run is in progress.")
