#!/usr/bin/python3
"""test_history_under_faults.py PROBE FAILING_CALLS [unittest's arguments]: the history while system calls fail and while
its writer is killed. KILLS=1000 in the environment kills that often."""

import errno
import json
import os
import random
import signal
import subprocess
import sys
import tempfile
import time
import unittest

from harness.seed import seed_or

PROBE = FAILING_CALLS = None
KILLS = int(os.environ.get("KILLS", "40"))


class Case(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.file = os.path.join(self.folder, "Tidewell", "history.json")

    def probe(self, first, count=1, **variables):
        """Adds runs; returns the error of the last and whether the failing call was made."""
        command = [PROBE, self.folder, str(first), str(count)]
        done = subprocess.run(command, env=os.environ | variables, stdout=subprocess.PIPE, text=True, timeout=60, check=True)  # fmt: skip
        error, was_made = done.stdout.splitlines()
        return error, was_made == "1"

    def numbers(self):
        """The numbers of the runs in the file, newest first; it must be whole."""
        with open(self.file, encoding="utf-8") as file:
            entries = json.load(file)
        for entry in entries:
            number = int(entry["id"][:8], 16)
            self.assertEqual(entry["command"], f"command {number} " * 500)
        return [int(entry["id"][:8], 16) for entry in entries]

    def litter(self):
        return [name for name in os.listdir(os.path.dirname(self.file)) if name != "history.json"]


class FailingCalls(Case):
    def setUp(self):
        super().setUp()
        if FAILING_CALLS == "none":
            self.skipTest("calls can be made to fail on Linux only, and not under a sanitizer")

    def sweep(self, prepare, check):
        tried = 0
        for error in (errno.EIO, errno.ENOSPC, errno.EACCES):
            call = 0
            was_made = True
            while was_made:
                call += 1
                prepare()
                told, was_made = self.probe(2, LD_PRELOAD=FAILING_CALLS, FAIL_BELOW=self.folder, FAIL_CALL=str(call),
                                            FAIL_ERROR=str(error))  # fmt: skip
                tried += was_made
                with self.subTest(call=call, error=errno.errorcode[error]):
                    check(told)
        self.assertGreater(tried, 20)
        print(f"{tried} failures", file=sys.stderr)

    def prepare(self, content=None):
        subprocess.run(["rm", "-rf", os.path.dirname(self.file)], check=True)
        if content is None:
            self.probe(1)
            return
        os.mkdir(os.path.dirname(self.file))
        with open(self.file, "wb") as file:
            file.write(content)

    def test_both_runs_are_in_the_file_whichever_call_failed_once(self):
        def check(_):
            self.assertEqual(self.numbers(), [2, 1])
            self.assertEqual(self.litter(), [])
            self.probe(3)
            self.assertEqual(self.numbers(), [3, 2, 1])
            self.assertEqual(self.litter(), [])

        self.sweep(self.prepare, check)

    def test_the_bytes_of_a_damaged_file_survive_whichever_call_failed_once(self):
        damaged = b'[{"id":"the user\'s own bytes"'

        def check(_):
            contents = []
            for name in os.listdir(os.path.dirname(self.file)):
                with open(os.path.join(self.folder, "Tidewell", name), "rb") as file:
                    contents.append(file.read())
            self.assertIn(damaged, contents)
            self.probe(3)
            self.assertIn(3, self.numbers())

        self.sweep(lambda: self.prepare(damaged), check)

    def test_a_file_that_cannot_be_read_is_set_aside_and_the_next_run_saved(self):
        for error in (errno.EACCES, errno.EPERM, errno.EIO):
            with self.subTest(error=errno.errorcode[error]):
                self.prepare()
                with open(self.file, "rb") as file:
                    unreadable = file.read()
                told = self.probe(2, LD_PRELOAD=FAILING_CALLS, UNREADABLE=self.file, FAIL_ERROR=str(error))
                self.assertEqual(told, ("", False))
                self.assertEqual(self.numbers(), [2])
                (aside,) = self.litter()
                self.assertTrue(aside.startswith("history.json.damaged-"), aside)
                with open(os.path.join(os.path.dirname(self.file), aside), "rb") as file:
                    self.assertEqual(file.read(), unreadable)

    def test_a_file_stays_where_it_is_when_there_is_no_descriptor_left_to_read_it(self):
        self.prepare()
        told, _ = self.probe(2, LD_PRELOAD=FAILING_CALLS, UNREADABLE=self.file, FAIL_ERROR=str(errno.EMFILE))
        self.assertEqual(told, os.strerror(errno.EMFILE))
        self.assertEqual(self.numbers(), [1])
        self.assertEqual(self.litter(), [])


class Kills(Case):
    def test_a_writer_that_is_killed_leaves_the_old_or_the_new_list(self):
        chance = random.Random(seed_or(time.time_ns() % 1_000_000))
        self.probe(1, 60)
        first = 100
        for _ in range(KILLS):
            before = max(self.numbers())
            writer = subprocess.Popen([PROBE, self.folder, str(first), "100000"], stdout=subprocess.DEVNULL)
            time.sleep(chance.uniform(0.01, 0.12))  # a random moment is what is tested
            writer.send_signal(signal.SIGKILL)
            writer.wait()
            numbers = self.numbers()
            self.assertEqual(len(numbers), 50)
            self.assertGreaterEqual(max(numbers), before)
            new = sorted((number for number in numbers if number >= first), reverse=True)
            self.assertEqual(new, list(range(max(numbers), max(numbers) - len(new), -1)), "none is missing in between")
            first += 100_000
        self.assertEqual(self.probe(first), ("", False))
        self.assertEqual(max(self.numbers()), first)
        print(f"{KILLS} kills left {len(self.litter())} temporary files", file=sys.stderr)


if __name__ == "__main__":
    PROBE, FAILING_CALLS = sys.argv.pop(1), sys.argv.pop(1)
    unittest.main()
