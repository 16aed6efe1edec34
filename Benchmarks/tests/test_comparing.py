#!/usr/bin/python3
"""The comparison with terminals: what counts, what is told, and that nothing is made up."""

import os
import pty
import socket
import subprocess
import sys
import tempfile
import time
import types
import unittest

_BENCHMARKS = os.path.dirname(os.path.dirname(os.path.realpath(__file__)))
sys.path[:0] = [_BENCHMARKS, os.path.join(os.path.dirname(_BENCHMARKS), "Tests")]

try:
    from comparing import bars, host, inside, ours, processes, run, terminal
except ImportError as reason:
    print(f"skipped: {reason}")
    sys.exit(77)
from comparing.figures import Figures  # noqa: E402
from comparing.page import page  # noqa: E402
from comparing.peers import PEERS, Peer  # noqa: E402
from comparing.picture import picture  # noqa: E402
from comparing.results import CannotRun, Results  # noqa: E402

_DESKTOP = types.SimpleNamespace(environment=dict(os.environ))


def speed(value, **others):
    return {"mib_per_second": value, "bytes_per_byte": 1.0} | others


def answer_when_asked(screen):
    """Plays a terminal until it is asked where its cursor is; what was written to it before that."""
    taken = b""
    while not taken.endswith(inside.WHERE_IS_THE_CURSOR):
        taken += os.read(screen, 65536)
    os.write(screen, b"\x1b[1;1R")
    return taken.removesuffix(inside.WHERE_IS_THE_CURSOR)


class Comparing(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def results(self, **about):
        about = {"rounds_wanted": 2, "only": None, "skip": [], "quick": False, "mib": 1, "machine": "a machine",
                 "versions": {}, "commit": "abc"} | about  # fmt: skip
        return Results.begin(os.path.join(self.folder, "results.json"), about)

    def measured(self, **outcomes):
        """A run of one round."""
        results = self.results()
        for title, outcome in outcomes.items():
            results.add(0, title, outcome)
        return results

    def bar(self, results, what):
        return next(bar for bar in bars.bars(Figures(results["rounds"])) if bar.what == what)

    def test_a_median_is_of_the_rounds_that_gave_a_figure(self):
        results = self.results()
        for number, outcome in enumerate((speed(3), "it crashed", speed(1), speed(9))):
            results.add(number, "xterm", outcome)
        figures = Figures(results["rounds"])
        self.assertEqual(figures.median("xterm", "mib_per_second"), 3)
        self.assertEqual(figures.reason("xterm"), "it crashed")
        self.assertIsNone(figures.median("konsole", "mib_per_second"))

    def test_a_run_goes_on_where_it_was_left(self):
        done = []

        def planned():
            yield "one", False, lambda: done.append("one") or speed(1)
            yield "minutes", True, lambda: done.append("minutes") or {}

        results = self.results()
        results.add(0, "one", speed(1))

        def goes_on(deadline):
            return run.measure(Results.resume(os.path.join(self.folder, "results.json")), planned, deadline, rest=lambda _: None)

        self.assertFalse(goes_on(deadline=0))
        self.assertTrue(goes_on(float("inf")))
        self.assertEqual(done, ["minutes", "one"])

    def test_only_a_whole_run_is_published(self):
        self.assertFalse(self.results(rounds_wanted=5).is_draft)
        for less in ({"rounds_wanted": 4}, {"only": ["ours"]}, {"skip": ["xterm"]}, {"quick": True}):
            self.assertTrue(self.results(**{"rounds_wanted": 5} | less).is_draft, less)

    def test_a_round_can_be_of_some_alone(self):
        def titles(**about):
            return [title for title, _, _ in run.measurements(self.results(**about), _DESKTOP, "", "")]

        self.assertEqual(len(titles()), len(ours.PROGRAMS) + len(PEERS))
        self.assertEqual(titles(only=["konsole"]), ["konsole, 1,000 lines", "konsole, all lines"])
        self.assertEqual(titles(only=["terminals"], skip=["konsole"]),
                         [peer.title for peer in PEERS if peer.name != "konsole"])  # fmt: skip

    def test_a_name_that_nothing_has_is_refused(self):
        compare = os.path.join(_BENCHMARKS, "compare")
        done = subprocess.run([compare, "--page", "--only", "no-such-program"], capture_output=True, text=True)
        self.assertEqual(done.returncode, 2)
        self.assertIn("invalid choice: 'no-such-program'", done.stderr)

    def test_a_script_without_end_is_held_to_its_bars(self):
        figures = {"gap_worst_ms": 40, "idle_mib": 30, "peak_mib": 1600, "jump_worst_ms": 2, "stop_ms": 9, "cleared_mib": 41}
        results = self.measured(RunningYes=figures)
        self.assertTrue(self.bar(results, "`yes` for 10 minutes: the window answers within").passes)
        self.assertFalse(self.bar(results, "`yes` for 10 minutes: memory").passes)
        self.assertEqual(self.bar(results, "`yes` for 10 minutes: memory over idle after Clear").measured, 11)
        self.assertIsNone(self.bar(results, "random text for a minute: memory").passes)

    def test_a_terminal_that_did_not_run_has_its_reason_in_place_of_figures(self):
        results = self.measured(ShowingOutput=speed(80), **{PEERS[0].title: "not installed", PEERS[1].title: speed(10)})
        self.assertIn(f"| {PEERS[0].title} |  | did not run: not installed |", page(results))
        self.assertIn(f"| {PEERS[1].title} |  | 10 | once | 8 |", page(results))
        self.assertIn(f"| {PEERS[2].title} |  | not measured |", page(results))
        self.assertNotIn(PEERS[0].title, picture(results))
        self.assertIn(PEERS[1].title, picture(results))

    def test_a_bar_is_passed_missed_or_not_measured(self):
        what = "speed over that of the fastest terminal"
        self.assertIsNone(self.bar(self.measured(ShowingOutput=speed(80)), what).passes)
        terminals = {PEERS[0].title: speed(10), PEERS[1].title: speed(5)}
        self.assertTrue(self.bar(self.measured(ShowingOutput=speed(80), **terminals), what).passes)
        missed = self.measured(ShowingOutput=speed(79), **terminals)
        self.assertFalse(self.bar(missed, what).passes)
        self.assertIn(f"| {what} | at least 8 times | 7.9 times | **miss** |", page(missed))

    def test_what_the_host_disturbed_is_measured_again_after_a_rest_but_not_for_ever(self):
        def tries(*taken):
            readings, rests, count = iter(taken), [], iter(range(1, 9))
            number = host.undisturbed(lambda: next(count), lambda: next(readings), rests.append)
            return number, len(rests)

        hour = 3600
        self.assertEqual(tries(5, 5), (1, 0))
        self.assertEqual(tries(0, hour, hour, hour), (2, 1))
        self.assertEqual(tries(0, hour, 0, hour, 0, hour), (4, 3))
        self.assertGreaterEqual(host.taken_seconds(), 0)

    def test_what_takes_minutes_is_measured_after_a_rest_and_tells_what_the_host_took_meanwhile(self):
        happened, readings = [], iter((5, 7))

        def measurement():
            happened.append("measured")
            return {"mib": 1}

        figures = host.rested(measurement, lambda: next(readings), lambda _: happened.append("rested"))
        self.assertEqual(figures, {"mib": 1, "seconds_taken_by_the_host": 2})
        self.assertEqual(happened, ["rested", "measured"])

    def test_a_terminal_that_is_not_there_is_told_so(self):
        with self.assertRaisesRegex(CannotRun, "^not installed$"):
            terminal.measure(Peer("none", "nothing", "none", ("no-such-terminal",)), _DESKTOP, os.devnull)

    def test_a_terminal_that_does_not_start_is_told_with_its_last_words(self):
        peer = Peer("broken", "nothing", "none", ("sh", "-c", "echo one; echo no display >&2; exit 3"))
        with self.assertRaisesRegex(CannotRun, "^ended with status 3 before it ran a command: no display$"):
            terminal.measure(peer, _DESKTOP, os.devnull)

    def test_a_program_of_ours_that_fails_gives_no_figures(self):
        program = os.path.join(self.folder, "Failing")
        with open(program, "w") as file:
            file.write('#!/bin/sh\necho \'{"seconds": 1}\'\necho broken >&2\nexit 4\n')
        os.chmod(program, 0o755)
        with self.assertRaisesRegex(CannotRun, "^ended with status 4: broken$"):
            ours.measure(ours.Program("Failing"), _DESKTOP, self.folder, None)
        with self.assertRaisesRegex(CannotRun, "^not built$"):
            ours.measure(ours.Program("Missing"), _DESKTOP, self.folder, None)

    def test_several_figures_of_one_program_are_told_apart(self):
        program = os.path.join(self.folder, "Measuring")
        with open(program, "w") as file:
            file.write('#!/bin/sh\necho \'{"what":"going","ms":1}\'\n[ "$1" = one ] || echo \'{"what":"coming","ms":2}\'\n')
        os.chmod(program, 0o755)

        def measured(case):
            return ours.measure(ours.Program("Measuring", case, (case,)), _DESKTOP, self.folder, None)

        self.assertEqual(measured("one"), {"ms": 1})
        self.assertEqual(measured("two"), {"going: ms": 1, "coming: ms": 2})

    def test_what_a_program_prints_is_worded_a_line_an_object(self):
        printed = '{"what":"starting","ours_ms":12.3456,"bytes":104857600}\n{"what":"idling","threads":0}\n'
        shown = subprocess.run([os.path.join(_BENCHMARKS, "show")], input=printed, capture_output=True, text=True)
        self.assertEqual((shown.returncode, shown.stdout, shown.stderr),
                         (0, "starting: ours ms 12.3, bytes 104,857,600\nidling: threads 0\n", ""))  # fmt: skip

    def test_nameless_files_and_descendants_count_and_a_branch_can_be_left_out(self):
        script = (
            "import os, sys, tempfile\n"
            "file = tempfile.TemporaryFile()\n"
            "file.write(b'x' * 2**20)\n"
            "file.flush()\n"
            "print(os.getpid(), flush=True)\n"
            "sys.stdin.read()\n"
        )
        command = ["sh", "-c", '"$0" -c "$1"; exit 0', sys.executable, script]
        with subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True) as parent:
            child = int(parent.stdout.readline())
            self.assertEqual(processes.tree(parent.pid), [parent.pid, child])
            self.assertEqual(processes.tree(parent.pid, without=child), [parent.pid])
            self.assertGreaterEqual(processes.nameless_file_kib([parent.pid, child]), 1024)
            self.assertGreater(processes.private_kib([child]), 1024)
            parent.stdin.close()

    def test_the_time_ends_when_the_terminal_has_taken_everything_in(self):
        text, path = os.path.join(self.folder, "text"), os.path.join(self.folder, "socket")
        with open(text, "wb") as file:
            file.write(b"a line\n" * 20_000)
        with socket.socket(socket.AF_UNIX) as listener:
            listener.bind(path)
            listener.listen()
            child, screen = pty.fork()
            if child == 0:
                os.execv(sys.executable, [sys.executable, os.path.join(_BENCHMARKS, "comparing", "inside.py"), path, text])
            connection, _ = listener.accept()
            answer_when_asked(screen)
            lines = connection.makefile("rw")
            self.assertEqual(int(lines.readline()), child)
            print("now", file=lines, flush=True)
            began = time.monotonic()
            taken = answer_when_asked(screen)
            whole = time.monotonic() - began
            self.assertEqual(taken.replace(b"\r\n", b"\n"), b"a line\n" * 20_000)
            self.assertLess(abs(float(lines.readline()) - whole), 0.5)
            lines.close()
            connection.close()
            self.assertEqual(os.waitpid(child, 0)[1], 0)
            os.close(screen)


if __name__ == "__main__":
    unittest.main()
