#!/usr/bin/python3
"""pictures.py PROGRAM FOLDER [SCENE...]: pictures of every screen in every state, to be looked at.

Each scene (see scenes/) is brought about in a fresh window and pictured light and dark, at the smallest size and
large: FOLDER/SCENE-light-small.png and so on. With QT_SCALE_FACTOR=1.5 they are as on a screen of that scale.
"""

import os
import sys

from harness import enter_own_tools, themes
from harness.desktop import Desktop
from harness.tidewell import Tidewell
from scenes import SCENES

SCALE = float(os.environ.get("QT_SCALE_FACTOR", 1))
SIZES = {"small": (round(820 * SCALE), round(640 * SCALE)), "large": (round(1440 * SCALE), round(900 * SCALE))}
# Room around the window for its frame.
MARGIN = (20, 60)


def picture(program, desktop, size, theme, name, path, window_only=False):
    bring, options = SCENES[name]
    stage = options.get("before")

    def before(tidewell):
        themes.prepare(theme, tidewell)
        if stage:
            stage(tidewell)

    options = options | {"before": before, "environment": themes.environment(theme)}
    with Tidewell(program, desktop, **options) as tidewell:
        desktop.wait_for_focus(tidewell.process.pid)
        desktop.place_window(tidewell.process.pid, *SIZES[size])
        bring(tidewell)
        desktop.take_picture(path, tidewell.process.pid if window_only else None)


def main():
    enter_own_tools()
    program, folder, *names = sys.argv[1:]
    os.makedirs(folder, exist_ok=True)
    failures = 0
    for size, (width, height) in SIZES.items():
        with Desktop(width + MARGIN[0], height + MARGIN[1]) as desktop:
            for theme in themes.NAMES:
                for name in names or SCENES:
                    path = os.path.join(folder, f"{name}-{theme}-{size}.png")
                    try:
                        picture(program, desktop, size, theme, name, path)
                        print(path, flush=True)
                    except AssertionError as error:
                        failures += 1
                        print(f"{path}: {error}", file=sys.stderr, flush=True)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
