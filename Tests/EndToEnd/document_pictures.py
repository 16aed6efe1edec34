#!/usr/bin/python3
"""document_pictures.py PROGRAM: makes docs/pictures anew, the four screens, filled, in light and dark."""

import os
import sys

from harness import REPOSITORY, enter_own_tools, themes
from harness.desktop import Desktop
from pictures import MARGIN, SIZES, picture

FOLDER = os.path.join(REPOSITORY, "docs", "pictures")


def main():
    enter_own_tools()
    (program,) = sys.argv[1:]
    os.makedirs(FOLDER, exist_ok=True)
    width, height = SIZES["small"]
    with Desktop(width + MARGIN[0], height + MARGIN[1]) as desktop:
        for screen in ("run", "machines", "history", "containers"):
            for theme in themes.NAMES:
                path = os.path.join(FOLDER, f"{screen}-{theme}.png")
                picture(program, desktop, "small", theme, f"documents-{screen}", path, window_only=True)
                print(path, flush=True)


if __name__ == "__main__":
    main()
