"""docs/performance.svg: one bar a program, long where much output is shown in a second."""

from xml.sax.saxutils import escape

from .figures import Figures
from .page import count_of_rounds
from .subjects import SUBJECTS

_WIDTH, _TOP, _ROW, _BAR, _BOTTOM = 880, 84, 30, 18, 44
_LEFT, _LONGEST, _MEMORY = 280, 360, 852

_STYLE = """
    text { font: 14px system-ui, -apple-system, "Segoe UI", "DejaVu Sans", sans-serif; fill: #1f2328 }
    .title { font-size: 18px; font-weight: 600 }
    .small { font-size: 12px; fill: #59636e }
    .strong { font-weight: 600 }
    .card { fill: #ffffff; stroke: #d1d9e0 }
    .ours { fill: #0969da } .limit { fill: #0969da; fill-opacity: 0.3 } .other { fill: #8c959f }
    @media (prefers-color-scheme: dark) {
      text { fill: #f0f6fc }
      .small { fill: #9198a1 }
      .card { fill: #0d1117; stroke: #3d444d }
      .ours { fill: #4493f8 } .limit { fill: #4493f8; fill-opacity: 0.4 } .other { fill: #656c76 }
    }"""


def _text(x, y, text, kind="", anchor="start"):
    return f'  <text x="{x}" y="{y}" class="{kind}" text-anchor="{anchor}">{escape(text)}</text>'


def _rows(figures):
    """(subject, MiB a second, memory in words), fastest first; nothing of what did not run."""
    rows = []
    for subject in SUBJECTS:
        speed = figures.median(subject.name, "mib_per_second")
        if speed:
            memory, files = (figures.median(subject.name, f"{kind}bytes_per_byte") for kind in ("", "file_"))
            rows.append((subject, speed, f"{memory:.2f}" + (f" and {files:.2f} in files" if files else "")))
    return sorted(rows, key=lambda row: -row[1])


def _bar(top, longest, subject, speed, memory):
    line, length = top + _BAR - 4, max(1, round(_LONGEST * speed / longest))
    strong = "strong" if subject.kind == "ours" else ""
    yield _text(_LEFT - 12, line, subject.title, strong, "end")
    yield f'  <rect x="{_LEFT}" y="{top}" width="{length}" height="{_BAR}" rx="3" class="{subject.kind}"/>'
    yield _text(_LEFT + length + 8, line, f"{speed:.0f}", strong)
    yield _text(_MEMORY, line, memory, strong, "end")


def picture(results):
    rows = _rows(Figures(results["rounds"]))
    height = _TOP + len(rows) * _ROW + _BOTTOM
    longest = max((speed for _, speed, _ in rows), default=1)
    summary = "; ".join(f"{subject.title}: {speed:.0f}" for subject, speed, _ in rows)
    lines = [
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {_WIDTH} {height}" width="{_WIDTH}" height="{height}" '
        f'role="img" aria-labelledby="title summary">',
        '  <title id="title">Output in a window, MiB a second</title>',
        f'  <desc id="summary">{escape(summary)}</desc>',
        f"  <style>{_STYLE}\n  </style>",
        f'  <rect x="0.5" y="0.5" width="{_WIDTH - 1}" height="{height - 1}" rx="8" class="card"/>',
        _text(28, 38, "Output in a window: MiB a second", "title"),
        _text(_MEMORY, 64, "memory, bytes a byte", "small", "end"),
        *(part for row, values in enumerate(rows) for part in _bar(_TOP + row * _ROW, longest, *values)),
        _text(28, height - 18, f"{results['mib']} MiB of 80-column lines, {count_of_rounds(results)}, medians.", "small"),
        "</svg>",
    ]
    return "\n".join(lines) + "\n"
