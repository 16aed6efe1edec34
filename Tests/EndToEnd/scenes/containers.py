"""The Containers screen with its log sheet."""

import json
import shlex

from .staging import LONG, open_tab, scene, staged


def container(number, name, image, state, status, ports=""):
    return {"ID": f"{number:012x}", "Names": name, "Image": image, "State": state, "Status": status, "Ports": ports}


def docker(*containers, otherwise="exec sleep 1000"):
    """A `docker` that lists containers, has logs and is otherwise busy."""
    lines = "".join(f"    echo {shlex.quote(json.dumps(each))}\n" for each in containers)
    return f"""\
case $1 in
ps)
{lines}    ;;
logs) for i in $(seq 60); do echo "line $i of the log"; done; seq 200 | tr '\\n' ' ' ;;
*) {otherwise} ;;
esac
"""


WEB = container(1, "web", "nginx:latest", "running", "Up 2 hours (healthy)", "0.0.0.0:8080->80/tcp, [::]:8080->80/tcp")
DATABASE = container(2, "database", "postgres:16", "exited", "Exited (137) 5 seconds ago")
MANY_PORTS = ", ".join(f"0.0.0.0:{port}->{port}/tcp" for port in range(9000, 9040))
ENDLESS = container(3, LONG, f"registry.example.org/{LONG}:latest", "running", "Up 3 days", MANY_PORTS)
CONTAINERS = docker(WEB, DATABASE, ENDLESS)
NO_ENGINE = """\
socket=unix:///Users/ann/.orbstack/run/docker.sock
echo "Cannot connect to the Docker daemon at $socket. Is the docker daemon running?" >&2
exit 1
"""
DENIED = """echo "docker: Error response from daemon: pull access denied for redis, repository does not exist or may \
require 'docker login': denied: requested access to the resource is denied.

Run 'docker run --help' for more information" >&2; exit 125"""


def run_redis(tidewell):
    tidewell.find("Image (nginx:latest)").set_text("redis:7")
    tidewell.press("Run", "Run a container")


@scene(**staged(docker="exit 0\n"))
def containers_empty(tidewell):
    open_tab(tidewell, "Containers")
    tidewell.wait_for("No containers.")


@scene(**staged(docker=CONTAINERS))
def containers_filled(tidewell):
    open_tab(tidewell, "Containers")
    tidewell.find("web", role="panel")


@scene(**staged(docker=docker(*(container(n, f"web-{n}", "nginx", "running", "Up 2 hours") for n in range(1, 25)))))
def containers_in_number(tidewell):
    open_tab(tidewell, "Containers")
    tidewell.find("web-1", role="panel")


@scene(**staged(docker=CONTAINERS))
def containers_busy(tidewell):
    open_tab(tidewell, "Containers")
    run_redis(tidewell)
    tidewell.wait_for("In progress")


@scene(**staged(docker=docker(WEB, DATABASE, otherwise=DENIED)))
def containers_failed_run(tidewell):
    open_tab(tidewell, "Containers")
    run_redis(tidewell)
    tidewell.wait_for_text("pull access denied")


@scene(**staged(docker=NO_ENGINE))
def containers_error(tidewell):
    open_tab(tidewell, "Containers")
    tidewell.wait_for_text("Cannot connect to the Docker daemon")


@scene(**staged(docker=CONTAINERS))
def containers_error_over_a_list(tidewell):
    open_tab(tidewell, "Containers")
    tidewell.find("web", role="panel")
    tidewell.add_tool("docker", NO_ENGINE)
    tidewell.press("Refresh")
    tidewell.wait_for_text("Cannot connect to the Docker daemon")


@scene()
def containers_docker_missing(tidewell):
    open_tab(tidewell, "Containers")
    tidewell.wait_for_text("The docker command was not found.")


@scene(tools=())
def containers_tools_missing(tidewell):
    open_tab(tidewell, "Containers", "OrbStack not installed")
    tidewell.press("Refresh")
    tidewell.wait_for_text("The docker command was not found.")


@scene(**staged(docker=CONTAINERS))
def containers_log(tidewell):
    open_tab(tidewell, "Containers")
    tidewell.press("Logs", "Logs web")
    tidewell.wait_for("Logs: web")


@scene(**staged(docker=CONTAINERS))
def containers_log_with_a_long_title(tidewell):
    open_tab(tidewell, "Containers")
    tidewell.press("Logs", f"Logs {LONG}")
    tidewell.wait_for("Close")


@scene(**staged(docker=CONTAINERS))
def containers_orbstack_stopped(tidewell):
    open_tab(tidewell, "Containers")
    tidewell.find("web", role="panel")
    tidewell.press("Stop", "Stop OrbStack")
    tidewell.wait_for("OrbStack stopped")
