"""Everything that shows the plain text, as the tables and the picture name it."""

from dataclasses import dataclass

from .ours import SHOWING, STOCK, STORING
from .peers import PEERS


@dataclass(frozen=True)
class Subject:
    # Under which the results are kept.
    name: str
    title: str
    # The package whose version is told; none for what this commit holds.
    package: str | None = None
    kind: str = "other"


SUBJECTS = (
    Subject(SHOWING.title, "Tidewell", kind="ours"),
    Subject(STORING.title, "stored, nothing repainted", kind="limit"),
    *(Subject(peer.title, peer.title, peer.package) for peer in PEERS),
    Subject(STOCK.title, "stock editor, filled once a frame", "libqt6widgets6"),
)
