#!/usr/bin/python3
"""Scripts in machines: what goes in and comes out, what they see, and how they end."""

import os
import signal
import subprocess
import tempfile

from harness.engine_case import ORB, EngineCase, main, watch


class Streams(EngineCase):
    def setUp(self):
        super().setUp()
        self.create()

    def test_the_script_arrives_byte_for_byte(self):
        data = os.urandom(5_000_000)
        result = subprocess.run([ORB, "-m", "box", "cat"], env=self.environment, input=data, capture_output=True)
        self.assertEqual((result.returncode, result.stdout == data), (0, True))

    def test_output_and_errors_stay_apart_and_the_status_is_handed_back(self):
        result = self.script("box", "echo out; echo err >&2; exit 7")
        self.assertEqual((result.stdout, result.stderr, result.returncode), ("out\n", "err\n", 7))

    def test_sh_runs_scripts_as_bash_does(self):
        self.assertEqual(self.script("box", "echo $0", shell="sh").stdout, "sh\n")

    def test_words_after_the_machine_are_handed_over_unchanged(self):
        result = self.orb("-m", "box", "printf", "[%s]", "a b", "$HOME", "-m", "")
        self.assertEqual(result.stdout, "[a b][$HOME][-m][]")

    def test_a_command_that_does_not_exist_is_told(self):
        self.assert_fails(self.orb("-m", "box", "no-such-command"), "orb: no-such-command: command not found", 127)

    def test_a_script_ended_by_a_signal_has_the_status_a_shell_would_give(self):
        self.assertEqual(self.script("box", "kill -KILL $$").returncode, 137)

    def test_nobody_reads_the_output_so_the_writer_ends(self):
        process = self.start_orb("-m", "box", "yes")
        process.stdout.close()
        self.assertEqual(process.wait(), 141)

    def test_output_arrives_while_the_script_runs(self):
        process = self.start_orb("-m", "box", "bash", "-s")
        process.stdin.write("echo first\n")
        process.stdin.flush()
        self.assertEqual(process.stdout.readline(), "first\n")
        self.assertIsNone(process.poll())
        process.stdin.close()
        self.assertEqual(process.wait(), 0)

    def test_a_script_without_input_meets_the_end_of_file(self):
        self.assertEqual(self.orb("-m", "box", "cat").stdout, "")

    def test_what_a_script_leaves_in_the_background_lives_on(self):
        mark = f"2000{os.getpid()}"
        self.script("box", f"nohup sleep {mark} >/dev/null 2>&1 &")
        while len(self.host_pids_with(mark)) != 1:
            pass


class System(EngineCase):
    def setUp(self):
        super().setUp()
        self.create()

    def test_the_machine_has_a_host_name_and_processes_of_its_own(self):
        names = self.script("box", "hostname; getent hosts box | wc -l; cat /etc/hostname").stdout
        self.assertEqual(names, "box\n1\nbox\n")
        first, *others = self.script("box", "ps -e -o pid=,comm=").stdout.split("\n")
        self.assertEqual(first.split(), ["1", "sleep"])
        self.assertLess(len(others), 6)

    def test_what_a_script_changes_stays_in_its_machine(self):
        self.create("other")
        file = f"/etc/tidewell-test-{os.getpid()}"
        self.addCleanup(subprocess.run, ["rm", "-f", file], check=True)
        self.assert_succeeds(self.script("box", f"echo changed > {file}; mkdir /opt/new"))
        # Without root the folders inside the system's belong to somebody else, in a machine as outside.
        self.assertEqual(self.script("box", "rm /usr/bin/env").returncode, 0 if os.geteuid() == 0 else 1)
        self.assertEqual(self.script("box", f"cat {file}; ls /opt").stdout, "changed\nnew\n")
        self.assertNotEqual(self.script("other", f"cat {file} 2>/dev/null").returncode, 0)
        self.assertFalse(os.path.exists(file))
        self.assertTrue(os.path.exists("/usr/bin/env"))

    def test_the_script_begins_in_a_home_that_is_not_the_hosts(self):
        result = self.script("box", 'pwd; echo "$HOME $USER"; id -u; cd ~root; pwd; ls -A')
        self.assertEqual(result.stdout, "/var/roothome\n/var/roothome root\n0\n/var/roothome\n")

    def test_little_of_the_callers_environment_gets_in(self):
        self.environment |= {"SECRET": "x", "http_proxy": "http://proxy:1", "LD_PRELOAD": ""}
        self.assertEqual(self.script("box", 'echo "${SECRET-none} $http_proxy"').stdout, "none http://proxy:1\n")

    def test_devices_work(self):
        script = "echo x > /dev/null; head -c 3 /dev/zero | wc -c; cat < /dev/stdin; ls /dev/shm; echo e > /dev/stderr"
        result = self.script("box", script)
        self.assertEqual((result.stdout, result.stderr), ("3\n", "e\n"))
        self.assertEqual(self.script("box", "script -qec 'tty' /dev/null | tr -d '\\r'").stdout, "/dev/pts/0\n")

    def test_files_of_the_host_are_seen_and_written_under_mnt_mac(self):
        with tempfile.TemporaryDirectory(prefix="it's ", dir="/tmp") as folder:
            with open(os.path.join(folder, "in"), "w", encoding="utf-8") as file:
                file.write("from the host\n")
            prefix = folder.replace("'", "'\\''")
            result = self.script("box", f"cd -- '/mnt/mac{prefix}' && cat in && echo back > out; ls /tmp")
            self.assertEqual((result.stdout, result.returncode), ("from the host\n", 0))
            with open(os.path.join(folder, "out"), encoding="utf-8") as file:
                self.assertEqual(file.read(), "back\n")

    def test_files_outside_the_systems_folders_are_shared_at_their_own_path(self):
        home = os.path.expanduser("~")
        if home.split("/")[1] not in ("home", "root"):
            self.skipTest(f"the home folder {home} is inside one of the system's folders")
        with tempfile.TemporaryDirectory(prefix=".tidewell-test-", dir=home) as folder:
            self.assert_succeeds(self.script("box", f"echo shared > {folder}/file"))
            with open(os.path.join(folder, "file"), encoding="utf-8") as file:
                self.assertEqual(file.read(), "shared\n")

    def test_the_stored_machines_are_out_of_a_scripts_reach(self):
        self.assertEqual(self.script("box", f"ls -A /mnt/mac{self.state}").stdout, "")

    def test_the_hosts_settings_and_clock_cannot_be_changed(self):
        for attempt in ("echo 1 > /proc/sys/vm/swappiness", "date -s 2001-01-01", "echo s > /proc/sysrq-trigger"):
            if attempt.endswith("sysrq-trigger") and not os.path.exists("/proc/sysrq-trigger"):
                continue
            self.assertNotEqual(self.script("box", attempt).returncode, 0, attempt)

    def test_orphans_are_buried(self):
        self.script("box", "for i in 1 2 3; do (setsid sh -c 'sleep 0 &' &) ; done; wait")
        self.assertEqual(self.script("box", "ps -e -o stat= | grep -c Z").stdout, "0\n")


class Ends(EngineCase):
    def setUp(self):
        super().setUp()
        self.create()
        self.mark = f"3000{os.getpid()}"

    def assert_nothing_left(self, process):
        """The pipes end, and no process of the script is left."""
        process.stdout.read()
        process.stderr.read()
        self.assertEqual(self.host_pids_with(self.mark), [])
        self.assertEqual(self.states(), {"box": "running"})

    def test_termination_ends_the_script_and_all_that_it_started(self):
        process = self.start_script("box", f"sleep {self.mark} & (setsid sleep {self.mark} &)\n"
                                           f"env -i /usr/bin/setsid -f sleep {self.mark}\n"
                                           f"echo ready; sleep {self.mark}")  # fmt: skip
        while len(self.host_pids_with(self.mark)) < 4:
            pass
        process.terminate()
        self.assertEqual(process.wait(), -signal.SIGTERM)
        self.assert_nothing_left(process)

    def test_termination_lets_the_script_tidy_up(self):
        process = self.start_script("box", f"trap 'echo tidied; exit' TERM; echo ready; sleep {self.mark} & wait")
        process.terminate()
        self.assertEqual(process.wait(), -signal.SIGTERM)
        self.assertEqual(process.stdout.read(), "tidied\n")
        self.assert_nothing_left(process)

    def test_a_script_that_ignores_termination_is_ended_after_a_moment(self):
        process = self.start_script("box", f"trap '' TERM; echo ready; sleep {self.mark}; sleep {self.mark}")
        process.terminate()
        process.wait(20)
        self.assert_nothing_left(process)

    def test_a_stopped_script_ends_too(self):
        process = self.start_script("box", f"echo ready; sleep {self.mark} & kill -STOP $$")
        process.terminate()
        process.wait(20)
        self.assert_nothing_left(process)

    def test_a_client_that_is_killed_takes_its_script_with_it(self):
        process = self.start_script("box", f"echo ready; setsid sleep {self.mark} & sleep {self.mark}")
        process.kill()
        process.wait()
        self.assert_nothing_left(process)

    def test_a_script_that_starts_processes_without_end_is_ended(self):
        endless = f"while :; do sleep {self.mark} & sleep 0.01; done"
        process = self.start_script("box", f"trap '' TERM; echo ready; {endless}")
        process.terminate()
        process.wait(30)
        self.assert_nothing_left(process)

    def test_stopping_the_machine_ends_the_script(self):
        process = self.start_script("box", f"echo ready; sleep {self.mark}")
        self.assert_succeeds(self.orb("stop", "box"))
        self.assertEqual(process.wait(), 137)
        self.assertEqual(self.host_pids_with(self.mark), [])

    def test_deleting_the_machine_ends_the_script(self):
        process = self.start_script("box", f"echo ready; sleep {self.mark}")
        self.assert_succeeds(self.orb("delete", "-f", "box"))
        self.assertEqual(process.wait(), 137)

    def test_a_stopped_machine_starts_when_a_script_is_run_in_it(self):
        self.orb("stop")
        self.assertEqual(self.script("box", "hostname").stdout, "box\n")
        self.assertEqual(self.orb("status").stdout, "Running\n")

    def test_a_machine_can_be_entered_as_soon_as_it_has_started(self):
        watch(180)
        for _ in range(30):
            self.orb("stop", "box")
            self.assert_succeeds(self.orb("-m", "box", "true"))

    def test_twenty_scripts_at_once_each_get_their_own_output(self):
        processes = [self.start_orb("-m", "box", "bash", "-s") for _ in range(20)]
        for number, process in enumerate(processes):
            process.stdin.write(f"echo {number}; exit {number}")
            process.stdin.close()
        for number, process in enumerate(processes):
            self.assertEqual((process.stdout.read(), process.wait()), (f"{number}\n", number))


if __name__ == "__main__":
    main()
