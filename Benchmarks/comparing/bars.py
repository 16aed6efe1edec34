"""What Tidewell is held to. Each bar is judged by the median of the run, and says so where nothing was measured."""

import operator
from dataclasses import dataclass

from .ours import (
    ALTERNATING,
    APPENDING,
    COPYING,
    FURTHER_TEXTS,
    LEAVING,
    LINE_BY_LINE,
    RANDOM_TEXT,
    SHOWING,
    STARTING_AND_IDLING,
    STORING,
    WRITING_LINES,
    YES,
)
from .peers import PEERS

_COMPARISONS = {"at most": operator.le, "at least": operator.ge}


@dataclass(frozen=True)
class Bar:
    what: str
    comparison: str
    limit: float
    unit: str
    # The median, or None where it was not measured.
    measured: float | None

    @property
    def passes(self):
        return None if self.measured is None else _COMPARISONS[self.comparison](self.measured, self.limit)


def _ratio(one, other):
    return None if one is None or not other else one / other


def fastest_terminal(figures):
    """Its title and its MiB a second; None and None where none ran."""
    speeds = [(figures.median(peer.title, "mib_per_second"), peer.title) for peer in PEERS]
    speed, title = max(((speed, title) for speed, title in speeds if speed), default=(None, None))
    return title, speed


def _plain(figures):
    def ours(field):
        return figures.median(SHOWING.title, field)

    speed = ours("mib_per_second")
    storing = figures.median(STORING.title, "mib_per_second")
    fastest = fastest_terminal(figures)[1]
    yield Bar("speed over that of the fastest terminal", "at least", 8, "times", _ratio(speed, fastest))
    yield Bar("speed over storing and repainting nothing", "at least", 0.5, "times", _ratio(speed, storing))
    yield Bar("between two turns of the event loop, 99th percentile", "at most", 17, "ms", ours("gap_p99_ms"))
    yield Bar("between two turns of the event loop, longest", "at most", 33, "ms", ours("gap_worst_ms"))
    yield Bar("repaints", "at least", 30, "a second", ours("frames_per_second"))
    yield Bar("memory over the idle application", "at most", 1.3, "bytes a byte", ours("bytes_per_byte"))


def _further_texts(figures):
    plain = figures.median(SHOWING.title, "mib_per_second")
    for program in FURTHER_TEXTS:

        def ours(field, title=program.title):
            return figures.median(title, field)

        case = program.case
        slower = _ratio(plain, ours("mib_per_second"))
        yield Bar(f"{case}: time over that of the plain text", "at most", 2, "times", slower)
        yield Bar(f"{case}: memory", "at most", 3, "bytes a byte", ours("bytes_per_byte"))
        yield Bar(f"{case}: between two turns, longest", "at most", 50, "ms", ours("gap_worst_ms"))


def _line_by_line(figures):
    def slower(than):
        return _ratio(figures.median(than.title, "mib_per_second"), figures.median(ALTERNATING.title, "mib_per_second"))

    yield Bar("alternating: time over that of the same lines written one at a time to one stream", "at most", 2, "times",
              slower(LINE_BY_LINE))  # fmt: skip
    yield Bar("alternating: time over that of its writer alone, which nobody makes wait", "at most", 2, "times",
              slower(WRITING_LINES))  # fmt: skip


def _whole_transcript(figures):
    for act in ("leaving the Run tab", "coming back", "resizing"):
        milliseconds = figures.median(LEAVING.title, f"{act}: median_ms")
        yield Bar(f"{act}, 100 MiB in the transcript", "at most", 33, "ms", milliseconds)
    yield Bar("first frame after “Copy output” of 100 MiB", "at most", 300, "ms",
              figures.median(COPYING.title, "median_ms"))  # fmt: skip
    yield Bar("one chunk of 80 bytes, to 100 MiB over to nothing", "at most", 1.2, "times",
              figures.median(APPENDING.title, "ratio"))  # fmt: skip


def _starting_and_idling(figures):
    def median(field):
        return figures.median(STARTING_AND_IDLING.title, field)

    def growth(of):
        before, after = median(f"Tidewell: {of}_before"), median(f"Tidewell: {of}_after")
        return None if before is None or after is None else after - before

    over = "over that of the smallest Qt window with ten widgets"
    yield Bar(f"first paint {over}", "at most", 1.25, "times", median("starting: ratio"))
    yield Bar("the same with every tool taking 30 s to answer", "at most", 1.25, "times",
              median("starting with slow tools: ratio"))  # fmt: skip
    processor = _ratio(median("Tidewell: processor_ms"), median("smallest window: processor_ms"))
    yield Bar(f"5 idle minutes: processor time {over} and the same children", "at most", 1.3, "times", processor)
    yield Bar("the same with the children's time", "at most", 1.3, "times",
              _ratio(median("Tidewell: with_children_ms"), median("smallest window: with_children_ms")))  # fmt: skip
    for of, what, unit in (
        ("kib", "memory", "KiB"),
        ("descriptors", "descriptors", "descriptors"),
        ("threads", "threads", "threads"),
    ):
        yield Bar(f"5 idle minutes: growth of {what}", "at most", 0, unit, growth(of))


def _without_end(figures):
    for program, what in ((YES, "`yes` for 10 minutes"), (RANDOM_TEXT, "random text for a minute")):

        def ours(field, title=program.title):
            return figures.median(title, field)

        idle, cleared = ours("idle_mib"), ours("cleared_mib")
        yield Bar(f"{what}: the window answers within", "at most", 50, "ms", ours("gap_worst_ms"))
        yield Bar(f"{what}: memory", "at most", 1536, "MiB", ours("peak_mib"))
        yield Bar(f"{what}: a jump to anywhere in what was shown", "at most", 50, "ms", ours("jump_worst_ms"))
        yield Bar(f"{what}: from Stop to the end of the run", "at most", 50, "ms", ours("stop_ms"))
        yield Bar(f"{what}: memory over idle after Clear", "at most", 32, "MiB",
                  None if cleared is None else cleared - idle)  # fmt: skip


def bars(figures):
    parts = (_plain, _further_texts, _line_by_line, _whole_transcript, _starting_and_idling, _without_end)
    return [bar for part in parts for bar in part(figures)]
