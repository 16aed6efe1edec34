#!/usr/bin/python3
"""What a script made immutable is deleted with its machine all the same, and nothing else is touched for it."""

import os
import subprocess
import sys
import tempfile
import unittest.mock

from harness import REPOSITORY
from harness.engine_case import EngineCase, main

sys.path.insert(0, os.path.join(REPOSITORY, "LinuxEngine"))
from engine import store  # noqa: E402


class Immutable(EngineCase):
    def test_what_a_script_made_immutable_is_deleted_with_its_machine_and_keeps_no_other_from_being_made(self):
        self.create()
        mark = "mkdir /opt/kept && touch /opt/kept/file /opt/log && chattr +i /opt/kept/file /opt/kept && chattr +a /opt/log"
        if self.script("box", mark).returncode != 0:
            self.skipTest("nothing can be made immutable here")
        self.assert_succeeds(self.orb("stop", "box"))
        machines = os.path.join(self.state, "machines")
        os.rename(os.path.join(machines, "box"), os.path.join(machines, ".old-0123"))
        os.utime(os.path.join(machines, ".old-0123"), (1, 1))
        self.create()
        self.assertEqual(os.listdir(machines), ["box"])
        self.assert_succeeds(self.script("box", mark))
        self.assert_succeeds(self.orb("delete", "-f", "box"))
        self.assertEqual(os.listdir(machines), [])

    def test_for_that_nothing_is_opened_but_files_and_folders(self):
        with tempfile.TemporaryDirectory(dir=self.scratch) as folder:
            pipe = os.path.join(folder, "pipe")
            os.mkfifo(pipe)
            # It waits until somebody opens the other end, as a device may wait for somebody to wake it.
            with subprocess.Popen(["sh", "-c", 'echo waiting; : > "$1"', "sh", pipe], stdout=subprocess.PIPE) as waiting:
                self.addCleanup(waiting.kill)
                waiting.stdout.readline()
                while not self._sleeps(waiting.pid):
                    pass
                store._make_mutable(folder)
                self.assertTrue(self._sleeps(waiting.pid))
                waiting.kill()

    @staticmethod
    def _sleeps(pid):
        with open(f"/proc/{pid}/stat", encoding="utf-8") as file:
            return file.read().rpartition(")")[2].split()[0] == "S"

    def test_flags_are_a_32_bit_number_in_either_order_of_bytes(self):
        for order in ("little", "big"):
            flags = {"kept": 0x80030}

            def kernel(_, request, argument):
                if request == store._GET_FLAGS:
                    return flags["kept"].to_bytes(4, order) + argument[4:]
                flags["kept"] = int.from_bytes(argument[:4], order)

            with self.subTest(order), unittest.mock.patch("fcntl.ioctl", kernel), \
                    unittest.mock.patch("sys.byteorder", order):  # fmt: skip
                store._make_mutable(self.scratch)
                self.assertEqual(flags["kept"], 0x80000)


if __name__ == "__main__":
    main()
