"""The header's states, but for "running", which stands above most of the other scenes."""

from .staging import HANGING, RUNS, scene, staged


@scene(**staged(orb=HANGING))
def header_checking(tidewell):
    tidewell.wait_for("Checking…")


@scene(**staged(brew=HANGING))
def header_not_installed(tidewell):
    tidewell.button("Install OrbStack")


@scene(tools=())
def header_not_installed_without_homebrew(tidewell):
    tidewell.button("Get OrbStack")


@scene(engine_started=False)
def header_stopped(tidewell):
    tidewell.wait_for("OrbStack stopped")


@scene(**staged(orb='[ "$1" = start ] || exit 1\necho "waiting for the virtual machine"\n' + HANGING))
def header_starting(tidewell):
    tidewell.wait_for("OrbStack stopped")
    tidewell.press("Start", "Start OrbStack")
    tidewell.wait_for("OrbStack starting…")


@scene(**staged(brew='for i in $(seq 8); do echo "==> Downloading part $i of 8"; done\n' + HANGING))
def header_installing(tidewell):
    tidewell.press("Install OrbStack")
    tidewell.wait_for_text("part 8")


@scene(**staged(orb=RUNS + "[ \"$1\" != list ] || { echo '[]'; exit; }\nseq 3000 | tr '\\n' ' ' >&2\nexit 1\n"))
def header_failure_of_many_words(tidewell):
    tidewell.wait_for("OrbStack running")
    tidewell.press("Stop", "Stop OrbStack")
    tidewell.wait_for_text("Stop failed: ")
