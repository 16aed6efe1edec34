"""Numbers for people, and medians over the rounds of a run."""

import statistics


def number(value):
    """Three digits; more only where they stand before the point."""
    if value is None:
        return "–"
    if abs(value) >= 99.5:
        return f"{value:,.0f}"
    return "0" if abs(value) < 0.0005 else f"{value:.3g}"


class Figures:
    def __init__(self, rounds):
        self._rounds = rounds

    def _outcomes(self, subject, kind):
        return [outcomes[subject] for outcomes in self._rounds if isinstance(outcomes.get(subject), kind)]

    def values(self, subject, field):
        """One a round, where the round has one."""
        return [figures[field] for figures in self._outcomes(subject, dict) if figures.get(field) is not None]

    def median(self, subject, field):
        """None where nothing was measured."""
        values = self.values(subject, field)
        return statistics.median(values) if values else None

    def fields(self, subject):
        """The names of the subject's numbers."""
        return [
            field
            for figures in self._outcomes(subject, dict)[:1]
            for field, value in figures.items()
            if isinstance(value, (int, float))
        ]

    def reason(self, subject):
        """Why there are no figures, or fewer than rounds, or None."""
        return next(iter(self._outcomes(subject, str)), None)
