"""The seed of a random test: every such test tells it, and can be made to take another."""

import os


def seed_or(usual):
    """The number in the variable TIDEWELL_SEED, or `usual` without one; prints it."""
    seed = int(os.environ.get("TIDEWELL_SEED", usual))
    print(f"TIDEWELL_SEED={seed}", flush=True)
    return seed
