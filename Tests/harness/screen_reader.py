"""A real screen reader (Orca) on the private desktop, without a voice: what it would speak is read from its record."""

import json
import os
import re
import shutil
import subprocess
import tempfile

from .desktop import ENDS_WITH_US
from .waiting import LIMIT_SECONDS, NotInTime, wait_until

_PROGRAM = "orca"
# Another one says the same in other words.
_KNOWN_VERSION = "43."

# Each utterance of the record is followed by the voice it is for.
_SPOKEN = re.compile(r"SPEECH OUTPUT: '(.*)'(?: voice=\w+)? ?(?:None|\[.*|\{.*)?$", re.MULTILINE)
_SETTINGS = {
    "profile": ["Default", "default"],
    "startingProfile": ["Default", "default"],
    "speechServerFactory": "",  # no voice
    "enableBraille": False,
    "enableSound": False,
    "enableKeyEcho": False,
    "enablePositionSpeaking": True,
}
# The record is to be read while it is written.
_CUSTOMIZATIONS = "import orca.debug\n\norca.debug.debugFile.reconfigure(line_buffering=True)\n"


def why_not():
    """Why nothing can be heard here; nothing when it can."""
    if shutil.which(_PROGRAM) is None:
        return f"not installed: {_PROGRAM}"
    version = subprocess.run([_PROGRAM, "--version"], capture_output=True, text=True).stdout.strip()
    if not version.startswith(_KNOWN_VERSION):
        return f"the words of {_PROGRAM} {version} are not known here"
    # It looks at the whole computer for another of the same user's, and starts only when there is none.
    if subprocess.run(["pgrep", "-u", str(os.getuid()), "-x", _PROGRAM], capture_output=True).returncode == 0:
        return f"{_PROGRAM} is running already"
    return ""


class ScreenReader:
    """Lives in a `with` block."""

    def __init__(self, desktop):
        self._desktop = desktop
        self._read = 0
        self._heard = []
        self._echoes = set()

    def __enter__(self):
        self._folder = tempfile.mkdtemp(prefix="tidewell-screen-reader-")
        self._record = self._path("record")
        settings = {"general": _SETTINGS, "pronunciations": {}, "keybindings": {}, "profiles": {"default": _SETTINGS}}
        with open(self._path("user-settings.conf"), "w", encoding="utf-8") as file:
            json.dump(settings, file)
        with open(self._path("orca-customizations.py"), "w", encoding="utf-8") as file:
            file.write(_CUSTOMIZATIONS)
        command = [_PROGRAM, "--user-prefs", self._folder, "--debug-file", self._record]
        environment = self._desktop.environment | {"HOME": self._folder, "LC_ALL": "C.UTF-8"}
        with open(self._path("output"), "wb") as output:
            self._process = subprocess.Popen([*ENDS_WITH_US, *command], env=environment, stdin=subprocess.DEVNULL,
                                             stdout=output, stderr=output)  # fmt: skip
        try:
            self.expect("Screen reader on.")
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        self._process.terminate()
        try:
            self._process.wait(10)
        except subprocess.TimeoutExpired:
            self._process.kill()
            self._process.wait()
        shutil.rmtree(self._folder)

    def _path(self, name):
        return os.path.join(self._folder, name)

    def _listen(self):
        """Takes what was spoken since the last call."""
        try:
            with open(self._record, "rb") as file:
                file.seek(self._read)
                # A line may be half written.
                lines = file.read().rpartition(b"\n")[0]
        except FileNotFoundError:
            return
        self._read += len(lines)
        spoken = _SPOKEN.findall(lines.decode(errors="replace"))
        self._heard += [said for said in spoken if said not in self._echoes]

    def forget(self):
        """What was spoken until now counts no more."""
        self._listen()
        self._heard.clear()
        self._echoes.clear()

    def typing(self, text):
        """From now on, the single characters of this text are not counted: the reader tells typing from moving the
        cursor by the last key that it knows of, and speaks the character at the cursor when that key reaches it late."""
        self._echoes |= set(text)

    def expect(self, *utterances, limit=LIMIT_SECONDS):
        """Waits until these utterances were spoken, in this order and nothing besides since those expected before; each
        is its text or a pattern."""

        self._wait_until(lambda: len(self._heard) >= len(utterances), utterances, limit)
        for said, expected in zip(self._heard, utterances):
            fits = expected.fullmatch(said) if isinstance(expected, re.Pattern) else expected == said
            if not fits:
                raise AssertionError(f"expected {utterances}, heard {self._heard}")
        del self._heard[: len(utterances)]

    def expect_each_of(self, *utterances, limit=LIMIT_SECONDS):
        """Waits until each of these utterances was spoken since those expected before; none may be spoken twice."""
        self._wait_until(lambda: set(utterances) <= set(self._heard), utterances, limit)
        if len(set(self._heard)) < len(self._heard):
            raise AssertionError(f"expected each of {utterances} once, heard {self._heard}")
        self._heard.clear()

    def _wait_until(self, condition, utterances, limit):
        def ask():
            self._listen()
            if self._process.poll() is not None:
                with open(self._path("output"), encoding="utf-8", errors="replace") as output:
                    raise AssertionError(f"the screen reader ended with {self._process.returncode}\n{output.read()}")
            return condition()

        try:
            wait_until(ask, f"{utterances} is spoken", limit)
        except NotInTime as error:
            raise NotInTime(f"{error}; heard: {self._heard}") from None
