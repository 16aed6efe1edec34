"""The four screens as the documents show them (see document_pictures.py): filled with what people do."""

from .containers import WEB, container, docker
from .staging import listing, open_tab, run_in_box, scene, staged, with_history, with_machines

MACHINES = [
    ("box", "running", "ubuntu", "noble"),
    ("build", "running", "debian", "trixie"),
    ("compiler", "stopped", "debian", "bookworm"),
    ("scratch", "stopped", "alpine", "3.22"),
]
CONTAINERS = [
    WEB,
    container(2, "database", "postgres:17", "running", "Up 2 hours", "0.0.0.0:5432->5432/tcp"),
    container(3, "cache", "redis:8", "running", "Up 26 minutes"),
    container(4, "migration", "registry.example.org/shop:1.4", "exited", "Exited (0) 2 hours ago"),
]
RUNS = [
    ("for test in tests/*.sh; do\n    sh \"$test\"\ndone", "box", 0, "", 48.3),
    ("apt-get update && apt-get install -y shellcheck", "disposable (debian)", 0, "", 21.7),
    ("shellcheck install.sh", "box", 1, "", 0.4),
    ("make -j4 && make test", "build", 2, "", 73.9),
    ("curl -fsS https://example.org/feed | head", "disposable (alpine)", 0, "", 1.2),
    ("./wait-for-the-server", "build", None, "timed out", 600.0),
    ("tail -f /var/log/syslog", "box", None, "stopped", 95.6),
]
SCRIPT = """\
# What is this machine, and what is it missing?
echo "Hello from $(hostname)."
for file in /etc/passwd /etc/fstab /etc/no-such-file; do
    wc -l "$file" || failures=$((failures + 1))
done
exit ${failures:-0}"""


@scene(**with_machines("box"))
def documents_run(tidewell):
    run_in_box(tidewell, 'echo "The first run only says hello."')
    tidewell.wait_for_output("exit status 0 · ")
    run_in_box(tidewell, SCRIPT)
    tidewell.wait_for_output("exit status 1 · ")
    tidewell.button("Run")


@scene(**staged(orb=listing(*MACHINES)))
def documents_machines(tidewell):
    open_tab(tidewell, "Machines")
    tidewell.find("scratch", role="panel")


@scene(before=with_history(RUNS))
def documents_history(tidewell):
    open_tab(tidewell, "History")
    tidewell.find("tail -f /var/log/syslog", role="panel")


@scene(**staged(docker=docker(*CONTAINERS)))
def documents_containers(tidewell):
    open_tab(tidewell, "Containers")
    tidewell.find("migration", role="panel")
