"""The command line of `compare`."""

import argparse

from .run import NAMES


def arguments(description):
    parser = argparse.ArgumentParser(description=description, formatter_class=argparse.RawDescriptionHelpFormatter)
    add = parser.add_argument
    add("--install", action="store_true", help="install the terminals first")
    add("--rounds", type=int, default=5, metavar="N", help="rounds of the run; 5, and a draft with fewer")
    add("--only", nargs="+", choices=NAMES, metavar="NAME", help="ours, terminals, or names of programs; a draft")
    add("--skip", nargs="+", choices=NAMES, default=[], metavar="NAME", help="the same, to leave out; a draft")
    add("--quick", action="store_true", help="one round of 8 MiB, without what takes minutes; a draft")
    add("--minutes", type=float, default=float("inf"), metavar="M", help="begin nothing after M minutes")
    add("--resume", action="store_true", help="go on with the last run, as it was begun")
    add("--page", action="store_true", help="measure nothing: write the page of the last run again")
    return parser.parse_args()
