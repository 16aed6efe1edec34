"""Light and dark for the program under test. Outside a desktop environment Qt is light; the palette of one that has a
dark theme makes it dark, by the same way as it would be there."""

import os

_DARK = """\
[General]
widgetStyle=fusion
[Colors:Window]
BackgroundNormal=42,46,50
ForegroundNormal=252,252,252
[Colors:View]
BackgroundNormal=27,30,32
BackgroundAlternate=35,38,41
ForegroundNormal=252,252,252
[Colors:Button]
BackgroundNormal=49,54,59
ForegroundNormal=252,252,252
[Colors:Selection]
BackgroundNormal=61,174,233
ForegroundNormal=252,252,252
[Colors:Tooltip]
BackgroundNormal=49,54,59
ForegroundNormal=252,252,252
"""

NAMES = ("light", "dark")


def environment(theme):
    """What the program's environment needs besides."""
    if theme == "light":
        return {}
    return {"QT_QPA_PLATFORMTHEME": "kde", "XDG_CURRENT_DESKTOP": "KDE", "KDE_SESSION_VERSION": "5"}


def prepare(theme, tidewell):
    """To be called before the program is started."""
    if theme == "dark":
        os.makedirs(tidewell.path("home", "config"))
        with open(tidewell.path("home", "config", "kdeglobals"), "w", encoding="utf-8") as file:
            file.write(_DARK)
