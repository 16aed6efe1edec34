"""What was measured in one run, kept in a file after every single measurement, so that a run can be taken up again."""

import datetime
import json
import os

# Fewer make no median to rely on.
_PUBLISHED_ROUNDS = 5


class CannotRun(Exception):
    """A measurement that gave no figure; the text is the reason."""


def _now():
    return datetime.datetime.now().astimezone().isoformat(timespec="minutes")


class Results:
    """rounds[n][subject] is a list of figures, one for each text or case, each named by its "what"; or a reason in words
    why there are none."""

    def __init__(self, path, values):
        self._path, self._values = path, values

    @classmethod
    def begin(cls, path, about):
        return cls(path, about | {"began": _now(), "ended": _now(), "rounds": []})

    @classmethod
    def resume(cls, path):
        with open(path) as file:
            return cls(path, json.load(file))

    def __getitem__(self, name):
        return self._values[name]

    @property
    def is_draft(self):
        """Whether the run is less than what is published."""
        return bool(self["only"] or self["skip"] or self["quick"] or self["rounds_wanted"] < _PUBLISHED_ROUNDS)

    def has(self, number, subject):
        rounds = self._values["rounds"]
        return number < len(rounds) and subject in rounds[number]

    def add(self, number, subject, outcome):
        rounds = self._values["rounds"]
        while len(rounds) <= number:
            rounds.append({})
        rounds[number][subject] = outcome
        self._values["ended"] = _now()
        os.makedirs(os.path.dirname(self._path), exist_ok=True)
        with open(self._path + ".new", "w") as file:
            json.dump(self._values, file, indent=1)
        os.replace(self._path + ".new", self._path)
