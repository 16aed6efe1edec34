#!/usr/bin/python3
"""The floors of the house: what is drawn holds, and what breaks it is found."""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

FLOORS = os.path.join(os.path.dirname(os.path.dirname(os.path.realpath(__file__))), "Tools", "floors")
PICTURE = "| floor | rooms |\n| --- | --- |\n| 1 | `Ground/` · `Cellar/` |\n| 2 | `Roof/` |\n"


class Floors(unittest.TestCase):
    def check(self, **files):
        """What is said of a house with these files, named FOLDER_NAME, each holding one include."""
        with tempfile.TemporaryDirectory() as folder:
            top = pathlib.Path(folder)
            (top / "docs").mkdir()
            (top / "docs" / "architecture.md").write_text(PICTURE)
            for name, included in files.items():
                path = top / "Sources" / name.replace("_", "/")
                path.parent.mkdir(parents=True, exist_ok=True)
                path.with_suffix(".h").write_text(f'#include "{included}"\n')
            return subprocess.run([FLOORS, folder], capture_output=True, text=True)

    def test_the_sources_keep_to_what_is_drawn(self):
        self.assertEqual(subprocess.run([FLOORS], capture_output=True, text=True).returncode, 0)

    def test_an_include_downward_or_beside_is_allowed(self):
        self.assertEqual(self.check(Roof_a="Ground/b.h", Ground_b="Cellar/c.h").returncode, 0)

    def test_an_include_upward_is_refused_and_named(self):
        result = self.check(Ground_b="Roof/a.h", Roof_a="Roof/b.h")
        self.assertEqual((result.returncode, result.stdout), (1, 'Sources/Ground/b.h:1 climbs: #include "Roof/a.h"\n'))

    def test_an_include_upward_from_a_folder_below_a_room_is_refused(self):
        self.assertIn("climbs", self.check(Ground_Rows_b="Roof/a.h").stdout)

    def test_a_circle_on_one_floor_is_refused(self):
        result = self.check(Ground_b="Cellar/c.h", Cellar_c="Ground/b.h")
        self.assertEqual(result.returncode, 1)
        self.assertIn("closes a circle: Ground > Cellar > Ground", result.stdout)

    def test_a_room_that_is_not_drawn_is_refused(self):
        self.assertIn("Sources/Attic/a.h stands in a room that is not drawn", self.check(Attic_a="Ground/b.h").stdout)


if __name__ == "__main__":
    program = unittest.main(verbosity=2, exit=False)
    failed = len(program.result.failures) + len(program.result.errors)
    print(f"{program.result.testsRun - failed} passed, {failed} failed")
    sys.exit(bool(failed))
