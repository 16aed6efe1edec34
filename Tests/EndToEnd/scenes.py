"""The states worth a picture: each a function that brings a started program into it, and the options of the start."""

import json
import os
import shlex

SCENES = {}

_RUNS = '[ "$1" != status ] || { echo Running; exit; }\n'
_HANGING = "exec sleep 1000\n"
_LONG = "a-name-that-goes-on-" * 12
_CONTAINERS = [
    {"ID": "1a2b3c4d5e6f", "Names": "web", "Image": "nginx:latest", "State": "running",
     "Status": "Up 2 hours (healthy)", "Ports": "0.0.0.0:8080->80/tcp, [::]:8080->80/tcp"},
    {"ID": "2a2b3c4d5e6f", "Names": "database", "Image": "postgres:16", "State": "exited",
     "Status": "Exited (137) 5 seconds ago", "Ports": ""},
    {"ID": "3a2b3c4d5e6f", "Names": _LONG, "Image": f"registry.example.org/{_LONG}:latest", "State": "running",
     "Status": "Up 3 days", "Ports": ", ".join(f"0.0.0.0:{port}->{port}/tcp" for port in range(9000, 9040))},
]  # fmt: skip
_PS = "".join(f"    echo {shlex.quote(json.dumps(container))}\n" for container in _CONTAINERS)
_DOCKER = f"""\
case $1 in
ps)
{_PS}    ;;
logs) for i in $(seq 60); do echo "line $i of the log"; done ;;
*) exec sleep 1000 ;;
esac
"""
_NO_ENGINE = """\
socket=unix:///Users/ann/.orbstack/run/docker.sock
echo "Cannot connect to the Docker daemon at $socket. Is the docker daemon running?" >&2
exit 1
"""


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


def open_tab(tidewell, label):
    tidewell.wait_for("OrbStack running")
    tidewell.select_tab(label)


def run_in_box(tidewell, script):
    tidewell.wait_for_choice("Machine", "box")
    tidewell.write_script(script)
    tidewell.press("Run")


@scene(**staged(orb=_HANGING))
def header_checking(tidewell):
    tidewell.wait_for("Checking…")


@scene(**staged(brew=_HANGING))
def header_not_installed(tidewell):
    tidewell.button("Install OrbStack")


@scene(tools=())
def header_not_installed_without_homebrew(tidewell):
    tidewell.button("Get OrbStack")


@scene(engine_started=False)
def header_stopped(tidewell):
    tidewell.wait_for("OrbStack stopped")


@scene(**staged(orb='[ "$1" = start ] || exit 1\necho "waiting for the virtual machine"\n' + _HANGING))
def header_starting(tidewell):
    tidewell.wait_for("OrbStack stopped")
    tidewell.press("Start", "Start OrbStack")
    tidewell.wait_for("OrbStack starting…")


@scene(**staged(brew='for i in $(seq 8); do echo "==> Downloading part $i of 8"; done\n' + _HANGING))
def header_installing(tidewell):
    tidewell.press("Install OrbStack")
    tidewell.wait_for_text("part 8")


@scene()
def run_idle(tidewell):
    tidewell.wait_for("OrbStack running")


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
    folder = tidewell.path("home", "a folder with quite a long name", "in another one", _LONG)
    os.makedirs(folder)
    tidewell.share_folder(folder)


@scene(**with_machines("box"))
def run_quit_question(tidewell):
    run_in_box(tidewell, "sleep 1000")
    tidewell.button("Stop", "Stop the run")
    tidewell.close_window()
    tidewell.wait_for("A run is in progress.")


@scene()
def machines_empty(tidewell):
    open_tab(tidewell, "Machines")
    tidewell.wait_for("No machines yet. Create one above.")


@scene(**with_machines("box", "scratch", "web"))
def machines_filled(tidewell):
    tidewell.orb("stop", "scratch")
    open_tab(tidewell, "Machines")
    tidewell.wait_for("debian trixie · stopped")


@scene(**staged(orb=_RUNS + '[ "$1" != list ] || { echo "[]"; exit; }\necho "downloading the image"\n' + _HANGING))
def machines_busy(tidewell):
    open_tab(tidewell, "Machines")
    tidewell.find("Name (e.g. scratch)").set_text("box")
    tidewell.press("Create")
    tidewell.wait_for("In progress")


@scene(**staged(orb=_RUNS + 'echo "rpc error: connection refused" >&2\nexit 1\n'))
def machines_error(tidewell):
    open_tab(tidewell, "Machines")
    tidewell.wait_for_text("rpc error: connection refused")


@scene(**with_machines("box"))
def machines_deletion_alert(tidewell):
    open_tab(tidewell, "Machines")
    tidewell.press("Delete", "Delete box")
    tidewell.wait_for("Delete box?")


@scene(**with_machines("box"))
def machines_orbstack_stopped(tidewell):
    open_tab(tidewell, "Machines")
    tidewell.press("Stop", "Stop OrbStack")
    tidewell.wait_for("OrbStack is not running, so machines cannot be listed.")


@scene()
def history_empty(tidewell):
    open_tab(tidewell, "History")
    tidewell.wait_for("No runs yet.")


@scene(**with_machines("box"))
def history_filled(tidewell):
    for script, status in (("echo one", 0), ("exit 127", 127), (f"echo {_LONG}", 0)):
        run_in_box(tidewell, script)
        tidewell.wait_for_output(f"exit status {status} · ")
        tidewell.button("Run")
        tidewell.press("Clear", "Clear the output")
    open_tab(tidewell, "History")
    tidewell.find("exit 127", role="panel")


@scene(**staged(docker="exit 0\n"))
def containers_empty(tidewell):
    open_tab(tidewell, "Containers")
    tidewell.wait_for("No containers.")


@scene(**staged(docker=_DOCKER))
def containers_filled(tidewell):
    open_tab(tidewell, "Containers")
    tidewell.find("web", role="panel")


@scene(**staged(docker=_DOCKER))
def containers_busy(tidewell):
    open_tab(tidewell, "Containers")
    tidewell.find("Image (nginx:latest)").set_text("redis:7")
    tidewell.press("Run", "Run a container")
    tidewell.wait_for("In progress")


@scene(**staged(docker=_NO_ENGINE))
def containers_error(tidewell):
    open_tab(tidewell, "Containers")
    tidewell.wait_for_text("Cannot connect to the Docker daemon")


@scene()
def containers_docker_missing(tidewell):
    open_tab(tidewell, "Containers")
    tidewell.wait_for_text("The docker command was not found.")


@scene(**staged(docker=_DOCKER))
def containers_log(tidewell):
    open_tab(tidewell, "Containers")
    tidewell.press("Logs", "Logs web")
    tidewell.wait_for("Logs: web")


@scene(**staged(docker=_DOCKER))
def containers_orbstack_stopped(tidewell):
    open_tab(tidewell, "Containers")
    tidewell.find("web", role="panel")
    tidewell.press("Stop", "Stop OrbStack")
    tidewell.wait_for("OrbStack stopped")
