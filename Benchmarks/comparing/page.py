"""docs/performance.md, out of what a run measured."""

from . import bars, ours
from .figures import Figures, number
from .method import METHOD, REPEATING
from .subjects import SUBJECTS


def count_of_rounds(results):
    count = len(results["rounds"])
    return "one round" if count == 1 else f"{count} rounds"


def _span(values):
    return f"{number(min(values))} to {number(max(values))}" if len(values) > 1 else "once"


def _table(heads, rows):
    yield "| " + " | ".join(heads) + " |"
    yield "|---" * len(heads) + "|"
    for row in rows:
        yield "| " + " | ".join(cell.replace("|", "\\|") for cell in row) + " |"


def _speed_rows(figures, versions):
    our_speed = figures.median(ours.SHOWING.title, "mib_per_second")
    for subject in SUBJECTS:
        version = versions.get(subject.package, "")
        speeds = figures.values(subject.name, "mib_per_second")
        if not speeds:
            reason = figures.reason(subject.name)
            yield subject.title, version, f"did not run: {reason}" if reason else "not measured", "", "", "", ""
            continue
        speed = figures.median(subject.name, "mib_per_second")
        yield (
            subject.title, version, number(speed), _span(speeds), number(our_speed / speed) if our_speed else "–",
            number(figures.median(subject.name, "bytes_per_byte")),
            number(figures.median(subject.name, "file_bytes_per_byte") or 0),
        )  # fmt: skip


def _bar_rows(figures):
    for bar in bars.bars(figures):
        outcome = {None: "not measured", True: "pass", False: "**miss**"}[bar.passes]
        measured = "–" if bar.measured is None else f"{number(bar.measured)} {bar.unit}"
        yield bar.what, f"{bar.comparison} {number(bar.limit)} {bar.unit}", measured, outcome


def _rows_of_our_own(figures):
    for program in ours.PROGRAMS:
        reason = figures.reason(program.title)
        if reason:
            yield program.title, f"did not run: {reason}", "", ""
        for field in figures.fields(program.title):
            median, values = figures.median(program.title, field), figures.values(program.title, field)
            yield program.title, field.replace("_", " "), number(median), _span(values)


def _summary(figures):
    speed = figures.median(ours.SHOWING.title, "mib_per_second")
    title, fastest = bars.fastest_terminal(figures)
    if not speed or not fastest:
        return "Tidewell or the terminals were not measured in this run."
    return (
        f"Tidewell shows {number(speed)} MiB of output a second, {number(speed / fastest)} times what the fastest terminal "
        f"of this comparison does ({title})."
    )


def page(results):
    figures = Figures(results["rounds"])
    speed_heads = ("program", "version", "MiB a second", "lowest to highest", "Tidewell is … times as fast",
                   "memory, bytes a byte", "files, bytes a byte")  # fmt: skip
    draft = ["**A draft, of less than a whole run: no figure to quote.**", ""] if results.is_draft else []
    parts = [
        "# Performance", "", *draft, _summary(figures), "", "![Output in a window, MiB a second](performance.svg)", "",
        f"{results['mib']} MiB of text, {count_of_rounds(results)} between {results['began']} and {results['ended']}. "
        f"Tidewell as of {results['commit']}, in a release build. Machine: {results['machine']}.", "",
        "## The same text in every window", "", *_table(speed_heads, _speed_rows(figures, results["versions"])), "",
        "## What Tidewell is held to", "", *_table(("what", "bar", "median", ""), _bar_rows(figures)), "",
        "## How it is measured", "", METHOD,
        "## How to repeat it", "", REPEATING,
        "## Every figure of our own", "",
        *_table(("program", "figure", "median", "lowest to highest"), _rows_of_our_own(figures)),
    ]  # fmt: skip
    return "\n".join(parts) + "\n"
