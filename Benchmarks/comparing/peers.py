"""The terminals that Tidewell's output pane is compared with, each set up as its user would for long output."""

from dataclasses import dataclass, field


@dataclass(frozen=True)
class Peer:
    name: str
    # What is kept of the output, for the tables.
    keeps: str
    package: str
    # Starts the terminal; the command to run inside is added at the end.
    command: tuple
    # Settings files, by their path below the folder that is both that of settings and that of data.
    settings: dict = field(default_factory=dict)

    @property
    def title(self):
        return f"{self.name}, {self.keeps}"


# Enough for every line of the text.
_MANY_LINES = "2000000"


def _konsole(keeps, mode):
    profile = f"[General]\nName=Compare\n[Scrolling]\n{mode}\n[Cursor Options]\nBlinkingCursorEnabled=false\n"
    return Peer("konsole", keeps, "konsole", ("konsole", "--nofork", "--profile", "Compare", "-e"),
                {"konsole/Compare.profile": profile})  # fmt: skip


_XFCE = "[Configuration]\nScrollingUnlimited=TRUE\nMiscConfirmClose=FALSE\nMiscCursorBlinks=FALSE\n"
_KITTY = ("kitty", "--config", "NONE", "-o", "scrollback_lines=-1", "-o", "cursor_blink_interval=0",
          "-o", "update_check_interval=0", "-o", "confirm_os_window_close=0")  # fmt: skip

PEERS = (
    Peer("xterm", "1,024 lines", "xterm", ("xterm", "-sl", "1024", "-e")),
    Peer("xterm", "all lines", "xterm", ("xterm", "-sl", _MANY_LINES, "-e")),
    _konsole("1,000 lines", "HistoryMode=1\nHistorySize=1000"),
    _konsole("all lines", "HistoryMode=2"),
    Peer("xfce4-terminal", "all lines", "xfce4-terminal", ("xfce4-terminal", "--disable-server", "-x"),
         {"xfce4/terminal/terminalrc": _XFCE}),  # fmt: skip
    Peer("kitty", "all lines", "kitty", _KITTY),
    # It keeps no more lines than this, whatever is asked for.
    Peer("alacritty", "100,000 lines", "alacritty", ("alacritty", "-o", "scrolling.history=100000", "-e")),
)

# Besides the terminals: drawing without a graphics card, and xterm's own fonts.
SUPPORT_PACKAGES = ("libgl1-mesa-dri", "xfonts-base")
PACKAGES = tuple(dict.fromkeys(peer.package for peer in PEERS)) + SUPPORT_PACKAGES
