#!/usr/bin/python3
"""Programs that are run with the engine in OrbStack's place: how long it runs, and what becomes of signals."""

import fcntl
import os
import signal
import subprocess
import unittest

from harness.engine_case import ORB, EngineCase, main

WITH_ENGINE = os.path.join(os.path.dirname(ORB), "with-engine")
# Tells that it is there, then waits until its standard input ends.
WAITING = "echo ready; cat >/dev/null"
SIGNALS = (signal.SIGTERM, signal.SIGINT, signal.SIGHUP)


class Programs(EngineCase):
    def start(self, script):
        process = subprocess.Popen([WITH_ENGINE, "sh", "-c", script], env=self.environment, stdin=subprocess.PIPE,
                                   stdout=subprocess.PIPE, text=True, preexec_fn=self.heed_signals)  # fmt: skip
        self.addCleanup(process.stdout.close)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        self.addCleanup(process.stdin.close)
        self.assertEqual(process.stdout.readline(), "ready\n")
        return process

    def heed_signals(self):
        """Whoever started the tests may have left them ignored."""
        for number in SIGNALS:
            signal.signal(number, signal.SIG_DFL)

    def end(self, process):
        process.stdin.close()
        return process.wait()

    def test_the_engine_runs_for_a_program_and_its_machines_stop_with_it(self):
        self.create()
        self.orb("stop")
        program = self.start("orb=/opt/homebrew/bin/orb; $orb status >&2 || exit; " + WAITING + "; exit 7")
        self.assertEqual(self.states(), {"box": "running"})
        self.assertEqual(self.end(program), 7)
        self.assertEqual(self.states(), {"box": "stopped"})
        self.assertEqual(self.orb("status").stdout, "Stopped\n")

    def test_a_program_that_ends_first_leaves_the_other_ones_machines_running(self):
        first = self.start(WAITING)
        self.create()
        second = self.start(WAITING)
        self.end(second)
        self.assertEqual(self.states(), {"box": "running"})
        third = self.start(WAITING)
        self.end(first)
        self.assertEqual(self.states(), {"box": "running"}, "the one that came first is no more than the others")
        self.end(third)
        self.assertEqual(self.states(), {"box": "stopped"})

    def test_a_signal_reaches_the_program_which_ends_as_it_likes(self):
        for number in SIGNALS:
            script = f"trap 'echo told; kill $!; exit 5' {int(number)}; sleep 100 & echo ready; wait; wait"
            program = self.start(script)
            self.create(f"box{int(number)}")
            program.send_signal(number)
            self.assertEqual((program.stdout.readline(), program.wait()), ("told\n", 5))
            self.assertNotIn("running", self.states().values())

    def test_a_machine_that_is_deleted_meanwhile_keeps_no_other_from_being_stopped(self):
        for name in ("a", "b", "c"):
            self.create(name)
        folder = os.path.join(self.state, "machines", "b")
        held = os.open(folder, os.O_RDONLY)
        fcntl.flock(held, fcntl.LOCK_EX)
        stop = self.start_orb("stop")
        while self.states()["a"] == "running":
            pass
        os.rename(folder, folder + "-away")
        os.close(held)
        self.assertEqual((stop.wait(), stop.stderr.read()), (0, ""))
        self.assertEqual(self.states()["c"], "stopped")
        self.assertEqual(self.orb("status").stdout, "Stopped\n")
        os.rename(folder + "-away", folder)

    @unittest.skipIf(os.geteuid() != 0, "only root can give a folder away")
    def test_a_state_folder_of_another_user_is_refused_and_so_is_a_link(self):
        os.mkdir(self.state)
        os.chown(self.state, 65534, -1)
        self.assert_refused()
        os.chown(self.state, 0, -1)
        folder = self.state + "-elsewhere"
        os.rename(self.state, folder)
        os.symlink(folder, self.state)
        os.lchown(self.state, 65534, -1)
        self.assert_refused()
        self.assertEqual(os.listdir(folder), [])

    def assert_refused(self):
        program = subprocess.run([WITH_ENGINE, "echo", "ready"], env=self.environment, capture_output=True, text=True)
        sentence = f"{self.state} belongs to another user. TIDEWELL_ENGINE_STATE names a folder to use instead."
        self.assert_fails(program, sentence)
        self.assert_fails(self.orb("start"), sentence)


if __name__ == "__main__":
    main()
