#!/usr/bin/python3
"""A minute of random use; monkey.py does it by hand for longer."""

import random

import monkey
from harness import engine_case, window_case
from harness.seed import seed_or


class RandomUse(window_case.WindowCase):
    def test_a_minute_of_it_leaves_the_program_alive_answering_and_level(self):
        # The last burst may begin at the end of the minute, and take its time to come to rest.
        engine_case.watch(400)
        seed = seed_or(random.randrange(1 << 31))
        tidewell = self.enterContext(monkey.start(window_case.PROGRAM, self.desktop))
        self.addCleanup(self._picture_a_failure)
        monkey.swing(tidewell, 60, seed)


if __name__ == "__main__":
    window_case.main()
