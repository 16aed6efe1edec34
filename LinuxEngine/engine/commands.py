"""The command line, with the texts and streams of the real `orb`."""

import os
import sys

from . import store
from .store import EngineError

_USAGE = """usage: orb status
       orb start [NAME]
       orb stop [NAME]
       orb list [-f json]
       orb create DISTRO[:VERSION] [NAME]
       orb delete [-f] NAME
       orb -m NAME [COMMAND [ARGUMENT...]]
"""

# What OrbStack takes when no version is named. Whatever is named, the system inside is the host's.
_DISTRIBUTIONS = {
    "alma": "10", "alpine": "3.22", "arch": "current", "centos": "10-Stream", "debian": "trixie", "devuan": "excalibur",
    "fedora": "42", "gentoo": "current", "kali": "current", "nixos": "25.05", "opensuse": "tumbleweed", "oracle": "10",
    "rocky": "10", "ubuntu": "noble", "void": "current",
}  # fmt: skip
_ARCHITECTURES = {"x86_64": "amd64", "aarch64": "arm64"}


def main(arguments):
    commands = {"status": _status, "start": _start, "stop": _stop, "list": _list, "create": _create,
                "delete": _delete, "-m": _run}  # fmt: skip
    command = commands.get(arguments[0]) if arguments else None
    if command is None:
        return _usage()
    os.umask(0o022)
    try:
        return command(arguments[1:])
    except EngineError as error:
        print(error, file=sys.stderr)
    except OSError as error:
        print(f"orb: {error}", file=sys.stderr)
    except KeyboardInterrupt:
        return 130
    return 1


def _usage():
    sys.stderr.write(_USAGE)
    return 2


def _status(arguments):
    if arguments:
        return _usage()
    running = store.engine_is_running()
    print("Running" if running else "Stopped")
    return 0 if running else 1


def _start(arguments):
    if len(arguments) > 1 or any(argument.startswith("-") for argument in arguments):
        return _usage()
    if arguments:
        _started(store.find(arguments[0]))
    else:
        _start_engine()
    return 0


def _start_engine():
    """Machines that ran when the engine was stopped run again."""
    if store.engine_is_running():
        return
    store.prepare()
    store.mark_engine(running=True)
    for machine in store.all_machines():
        if os.path.exists(machine.path("resume")):
            _started(machine)


def _started(machine):
    from . import keeper

    _start_engine()
    with machine.locked():
        store.remove_file(machine.path("resume"))
        if machine.keeper() is None:
            keeper.start(machine)


def _stop(arguments):
    if len(arguments) > 1 or any(argument.startswith("-") for argument in arguments):
        return _usage()
    from . import keeper

    if arguments:
        machine = store.find(arguments[0])
        with machine.locked():
            keeper.stop(machine)
        return 0
    for machine in store.all_machines():
        try:
            with machine.locked():
                if keeper.stop(machine):
                    store.write(machine.path("resume"), "")
        except store.MachineMissing:
            pass  # deleted meanwhile, and stopped with that
    store.mark_engine(running=False)
    return 0


def _list(arguments):
    if arguments not in ([], ["-f", "json"], ["--format", "json"]):
        return _usage()
    machines = [(machine, "stopped" if machine.keeper() is None else "running") for machine in store.all_machines()]
    if arguments:
        import json

        records = [machine.record | {"name": machine.name, "state": state} for machine, state in machines]
        print(json.dumps(records, separators=(",", ":")))
        return 0
    rows = [("NAME", "STATE", "DISTRO", "VERSION", "ARCH"), ("----", "-----", "------", "-------", "----")]
    for machine, state in machines:
        image = machine.record["image"]
        rows.append((machine.name, state, image["distro"], image["version"], image["arch"]))
    widths = [max(len(row[column]) for row in rows) for column in range(4)]
    for row in rows:
        print("  ".join([row[column].ljust(widths[column]) for column in range(4)] + [row[4]]))
    return 0


def _create(arguments):
    if len(arguments) not in (1, 2) or any(argument.startswith("-") for argument in arguments):
        return _usage()
    from . import keeper, system

    distribution, _, version = arguments[0].partition(":")
    name = arguments[-1] if len(arguments) == 2 else distribution
    if distribution not in _DISTRIBUTIONS:
        raise EngineError(f"[-32098] create '{name}': unknown distribution '{distribution}'")
    architecture = os.uname().machine
    image = {"distro": distribution, "version": version or _DISTRIBUTIONS[distribution],
             "arch": _ARCHITECTURES.get(architecture, architecture), "variant": "default"}  # fmt: skip
    record = {"id": _new_identity(), "name": name, "image": image,
              "config": {"isolated": False, "default_username": "root"}, "builtin": False}  # fmt: skip
    _start_engine()
    with store.made(name, record) as machine:
        try:
            system.furnish(machine)
            keeper.start(machine)
        except (EngineError, OSError) as error:
            raise EngineError(f"[-32098] create '{name}': {error}") from None
    print(f"{name} is running. The system inside is this computer's own: {_host_system()}.")
    return 0


def _new_identity():
    """26 characters, the first of which tell the time, so that identities sort by age."""
    import secrets
    import time

    alphabet = "0123456789ABCDEFGHJKMNPQRSTVWXYZ"
    number = int(time.time() * 1000) << 80 | secrets.randbits(80)
    return "".join(alphabet[number >> shift & 31] for shift in range(125, -5, -5))


def _host_system():
    try:
        with open("/etc/os-release", encoding="utf-8") as file:
            for line in file:
                if line.startswith("PRETTY_NAME="):
                    return line.partition("=")[2].strip().strip('"')
    except OSError:
        pass
    return "Linux"


def _delete(arguments):
    force = [argument for argument in arguments if argument in ("-f", "--force")]
    names = [argument for argument in arguments if argument not in force]
    if len(names) != 1 or names[0].startswith("-"):
        return _usage()
    from . import keeper

    machine = store.find(names[0])
    if not force and not _agreed(machine.name):
        return 1
    with machine.locked():
        keeper.stop(machine)
        store.discard(machine)
    return 0


def _agreed(name):
    print("WARNING: This will PERMANENTLY DELETE ALL DATA in the following machines:")
    print(f"  {name}\n\nYou cannot undo this action.\nContinue [y/N]? ", end="", flush=True)
    return sys.stdin.readline().strip().lower() in ("y", "yes")


def _run(arguments):
    if not arguments:
        return _usage()
    from . import run

    machine = store.find(arguments[0])
    _started(machine)
    return run.run(machine, arguments[1:] or ["bash"])
