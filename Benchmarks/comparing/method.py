"""The words of docs/performance.md that do not depend on what came out."""

from .windows import HEIGHT, WIDTH

METHOD = f"""\
- Ours and theirs take turns: each round runs every program once. The tables give medians over the rounds, with the lowest
  and the highest.
- All draw on the same display without a screen (Xvfb), under the same window manager, in windows of about {WIDTH} by
  {HEIGHT}. Terminals that want a graphics card draw with Mesa's software renderer.
- The text is the same file for all: varied lines of 80 columns, a twentieth of them with letters beyond ASCII.
- Before each of them shows it, the text and the files of all fonts are read once: a system may have dropped them from memory
  since the round before.
- A terminal starts with a small program inside. Once the window has its size and the terminal leaves the processor alone,
  that program times `cat` of the text and, after it, the question where the cursor is (`ESC [ 6 n`). The answer comes when
  the terminal has taken in everything before; what it has yet to draw is not counted against it.
- Tidewell is timed in its own window, from the press on Run, through its own tool runner and a shell that runs `cat` of
  the text, until the run is over and the window has painted its end.
- A script that writes to its two streams by turns must write each line by itself, 1.3 million times for this text. What
  that takes when nobody makes the writer wait is what `WritingLines` tells. Where this alone is more than twice the time of
  the plain text, nothing that reads can pass the bar of the alternating streams; the two further ones tell Tidewell's part.
- Starting and idling are watched from outside, on a display without a window manager, once in a run: 51 starts of
  the application and of the smallest window by turns, and five minutes of both at the same time. Scripts without end run
  once as well.
- Where the host of a virtual machine took more than a hundredth of the processor time, it is measured again after a rest
  of 45 s, ours and theirs alike, up to three times. What takes minutes is measured once, after such a rest, and what the
  host took meanwhile stands with its figures. So does the longest time that a thread of the highest priority, which only
  wakes every millisecond, was not woken: no window on that machine answers sooner.
- Memory is what no other process shares (private in `/proc/PID/smaps_rollup`; of a terminal with all its processes, once it
  is idle again), less what it was before the text, over the bytes of the text. Some terminals keep their lines in
  nameless files instead; these are told apart. A terminal that is told to keep fewer lines holds only those.
"""

REPEATING = """\
    Tools/install-packages
    Benchmarks/compare --install     # builds, installs the terminals from apt, measures, writes this page
    Benchmarks/compare --quick       # a first look: one round of a small text, written to build/compare

Give it the machine: other work shows in every figure. `--minutes 2` ends in time and `--resume` goes on with the run.
"""
