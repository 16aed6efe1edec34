"""The states worth a picture, one file a part of the window."""

from . import containers, documents, header, history, machines, output, quitting, run  # noqa: F401  each registers its scenes
from .staging import SCENES

__all__ = ["SCENES"]
