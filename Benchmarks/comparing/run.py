"""A run: rounds in which ours and theirs take turns."""

import time

from . import host, ours, peers, surroundings, terminal
from .results import CannotRun, Results
from .texts import text_file

_MIB, _QUICK_MIB = 100, 8
# By which a run can be of some alone.
NAMES = sorted({"ours", "terminals"} | {name for each in (*ours.PROGRAMS, *peers.PEERS) for name in (each.name, each.title)})


def begin(options, repository, path):
    """A run as the command line wants it, with nothing measured yet."""
    about = {
        "rounds_wanted": 1 if options.quick else options.rounds,
        "only": options.only,
        "skip": options.skip,
        "quick": options.quick,
        "mib": _QUICK_MIB if options.quick else _MIB,
        "machine": surroundings.machine(),
        "versions": surroundings.versions(),
        "commit": surroundings.commit(repository),
    }
    return Results.begin(path, about)


def _is_chosen(results, names):
    only, skip = results["only"], results["skip"]
    return (only is None or not names.isdisjoint(only)) and names.isdisjoint(skip)


def measurements(results, desktop, programs, folder):
    """(title, whether it takes minutes, the measurement), in the order of a round. `folder` keeps the texts."""

    fonts = surroundings.fonts()

    def file(kind):
        if not kind:
            return None
        path = text_file(programs, folder, kind, results["mib"])
        host.read([path, *fonts])
        return path

    for program in ours.PROGRAMS:
        if _is_chosen(results, {"ours", program.name, program.title}):
            yield program.title, program.is_long, lambda program=program: ours.measure(
                program, desktop, programs, file(program.text)
            )
    for peer in peers.PEERS:
        if _is_chosen(results, {"terminals", peer.name, peer.title}):
            yield peer.title, False, lambda peer=peer: terminal.measure(peer, desktop, file("plain"))


def measure(results, planned, deadline, rest=time.sleep):
    """Goes on where the results end, with what `planned()` lists. Whether everything is measured."""
    for number in range(results["rounds_wanted"]):
        for title, is_long, measurement in planned():
            if results.has(number, title) or (is_long and (number > 0 or results["quick"])):
                continue
            if time.monotonic() > deadline:
                return False
            try:
                outcome = (host.rested if is_long else host.undisturbed)(measurement, rest=rest)
                said = f"{outcome['mib_per_second']:.1f} MiB/s" if "mib_per_second" in outcome else "measured"
            except CannotRun as reason:
                outcome, said = str(reason), f"did not run: {reason}"
            results.add(number, title, outcome)
            print(f"round {number + 1}: {title}: {said}", flush=True)
    return True
