"""What the end-to-end tests stand on: a private desktop, the built program on it, and its window as assistive
technology sees it."""

import os
import sys

REPOSITORY = os.path.dirname(os.path.dirname(os.path.dirname(os.path.dirname(os.path.realpath(__file__)))))
sys.path.insert(0, os.path.join(REPOSITORY, "LinuxEngine", "tests"))
