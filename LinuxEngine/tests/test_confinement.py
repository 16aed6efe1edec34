#!/usr/bin/python3
"""What a script cannot do from a machine to the computer, tried by scripts that mean to."""

import os
import socket
import subprocess
import tempfile
import unittest

from harness.engine_case import ORB, EngineCase, main

# With ctypes, as a script would that brings its own program. Each ends with 0 when it got where it must not.
_TRACE = "import ctypes, sys; exit(ctypes.CDLL(None).ptrace(16, int(sys.argv[1]), 0, 0) != 0)"
_SET_NETWORK = """
import fcntl, socket
device = socket.socket()
fcntl.ioctl(device, 0x8914, fcntl.ioctl(device, 0x8913, b"lo".ljust(40, b"\\0")))
"""
_OPEN_BY_NUMBER = """
import ctypes, os, struct
c = ctypes.CDLL(None)
handle = ctypes.create_string_buffer(struct.pack("Ii", 120, 0) + bytes(120))
if c.name_to_handle_at(-100, b"/mnt/mac/etc/passwd", handle, ctypes.byref(ctypes.c_int()), 0) != 0:
    exit(1)
shared = os.open("/mnt/mac/tmp", os.O_RDONLY)
exit(c.open_by_handle_at(shared, handle, os.O_RDWR) < 0)
"""
# Of a process outside a machine, to which a socket leads: through the network, which is the computer's.
_TAKE_WHAT_ANOTHER_HAS_OPEN = """
import ctypes, socket, sys
client = socket.socket(socket.AF_UNIX)
client.connect("\\0" + sys.argv[1])
exit(ctypes.CDLL(None).syscall(438, client.getsockopt(socket.SOL_SOCKET, 77), int(sys.argv[2]), 0) < 0)
"""
# Whoever has the interpreter of one of the engine's processes open can write it, the computer's own, once that has ended.
_WAIT_FOR_ONE_OF_THE_ENGINES = """
import os
print("ready", flush=True)
while True:
    with open("/proc/loadavg") as file:
        newest = int(file.read().split()[-1])
    for pid in (1, *range(newest, newest + 4)):
        try:
            program = os.open(f"/proc/{pid}/exe", os.O_RDONLY)
            if pid != os.getpid() and "python" in os.readlink(f"/proc/self/fd/{program}"):
                print(f"open: the program of {pid}", flush=True)
            os.close(program)
            with open(f"/proc/{pid}/environ") as file:
                if "SECRET" in file.read():
                    print(f"read: the environment of {pid}", flush=True)
        except OSError:
            pass
"""


class Confinement(EngineCase):
    def setUp(self):
        super().setUp()
        self.create()

    def assert_refused(self, *attempts):
        for attempt in attempts:
            with self.subTest(attempt):
                self.assertNotEqual(self.script("box", attempt).returncode, 0)

    def test_the_hosts_system_can_be_read_and_not_changed(self):
        with tempfile.NamedTemporaryFile(prefix="tidewell-test-", dir="/var/tmp") as file:
            self.assertEqual(self.script("box", f"cat /mnt/mac{file.name}; cat /mnt/mac/etc/passwd").returncode, 0)
            self.assert_refused(f"rm -f /mnt/mac{file.name}", f"echo changed > /mnt/mac{file.name}")
            self.assertEqual(file.read(), b"")
            self.assertTrue(os.path.exists(file.name))
        for folder in ("/", "/boot", "/etc", "/opt", "/usr", "/var"):
            new = os.path.join(folder, f"tidewell-test-{os.getpid()}")
            self.addCleanup(subprocess.run, ["rm", "-f", new], check=True)
            self.assert_refused(f"touch /mnt/mac{new}")

    def test_nothing_can_be_mounted_or_uncovered(self):
        self.assert_refused(
            "mount -t tmpfs tmpfs /opt",
            "mount --bind /home /opt",
            "mount -o remount,bind,rw /mnt/mac",
            "mount -o remount,bind,rw /mnt/mac/etc",
            "mount -o remount,bind,rw /proc/sys",
            "umount /proc/sys",
            "umount -l /mnt/mac/proc",
            "umount -l /mnt/mac",
        )

    def test_neither_the_hardware_nor_the_network_can_be_set_up(self):
        self.assert_refused("test -w /proc/bus", "test -w /proc/fs", f"python3 -c '{_SET_NETWORK}'")

    def test_a_user_namespace_of_ones_own_uncovers_nothing_either(self):
        self.assert_refused(
            *(
                f"unshare --user --map-root-user --mount {command}"
                for command in (
                    "umount -l /mnt/mac/proc",
                    "umount -l /proc/sys",
                    "mount -o remount,bind,rw /mnt/mac",
                    "mount -o remount,bind,rw /proc/sys",
                )
            )
        )

    def test_no_process_with_more_rights_can_be_taken_over(self):
        self.assert_refused(
            "nsenter --target 1 --mount true",
            f"python3 -c '{_TRACE}' $PPID",
            "cat /proc/$PPID/environ",
            "exec 3> /proc/$PPID/mem",
        )

    def test_no_process_has_more_power_than_a_script(self):
        powers = self.script("box", "grep -h CapPrm /proc/[0-9]*/status | sort -u").stdout.splitlines()
        self.assertEqual(len(powers), 1, powers)

    def test_a_run_that_starts_cannot_be_reached_from_another(self):
        self.environment |= {"SECRET": "x"}
        waiting = self.start_script("box", f"exec python3 - <<'END'\n{_WAIT_FOR_ONE_OF_THE_ENGINES}\nEND")
        for _ in range(30):
            self.assert_succeeds(self.orb("-m", "box", "true"))
        waiting.terminate()
        self.assertEqual(waiting.stdout.read(), "")

    def test_nothing_is_taken_out_of_a_process_of_the_computer_that_a_socket_leads_to(self):
        name = f"tidewell-test-{os.getpid()}"
        with socket.socket(socket.AF_UNIX) as listening:
            listening.bind("\0" + name)
            listening.listen()
            take = f"python3 - {name} {listening.fileno()} <<'END'\n{_TAKE_WHAT_ANOTHER_HAS_OPEN}\nEND"
            self.assert_refused(take)

    def test_what_the_caller_has_open_or_in_its_environment_stays_outside(self):
        self.environment |= {"SECRET": "x"}
        self.create("other")
        with self.subTest("environment"):
            self.assertNotEqual(self.script("other", "grep -q SECRET /proc/1/environ").returncode, 0)
        folder = os.open("/", os.O_RDONLY)
        self.addCleanup(os.close, folder)
        with self.subTest("folder"):
            listed = self.orb("-m", "box", "ls", f"/proc/self/fd/{folder}/", pass_fds=[folder])
            self.assertNotEqual(listed.returncode, 0)

    @unittest.skipIf(os.geteuid() != 0, "only root can hand a power down")
    def test_powers_that_outlive_a_change_of_program_are_given_up_too(self):
        def handing_down(*arguments):
            powers = ["setpriv", "--inh-caps=+sys_admin", "--ambient-caps=+sys_admin"]
            return subprocess.run([*powers, ORB, *arguments], env=self.environment, capture_output=True, text=True)

        self.assert_succeeds(handing_down("create", "debian", "other"))
        for attempt in ("mount -t tmpfs tmpfs /opt", "nsenter --target 1 --mount true"):
            with self.subTest(attempt):
                self.assertNotEqual(handing_down("-m", "other", *attempt.split()).returncode, 0)
        same = 'test "$(grep CapPrm /proc/1/status)" = "$(grep CapPrm /proc/self/status)"'
        self.assert_succeeds(self.script("other", same))

    def test_a_machine_that_starts_again_follows_no_link_of_a_script_out_of_itself(self):
        self.assert_succeeds(self.script("box", f"mv /mnt /opt && ln -s {self.scratch} /mnt"))
        self.assert_succeeds(self.orb("stop", "box"))
        self.assert_succeeds(self.script("box", "cat /mnt/mac/etc/passwd >/dev/null"))
        self.assertEqual(os.listdir(self.scratch), ["state"])
        self.assert_succeeds(self.script("box", f"mv /mnt /opt/again && mkdir /mnt && ln -s {self.scratch} /mnt/mac"))
        self.assert_succeeds(self.orb("stop", "box"))
        self.assert_succeeds(self.script("box", "test -d /mnt/mac/etc"))

    def test_no_file_is_reached_past_its_path_and_no_device_made(self):
        self.assert_refused(f"python3 - <<'END'\n{_OPEN_BY_NUMBER}\nEND", "mknod /opt/disk b 8 0", "mknod /opt/null c 1 3")

    def test_what_people_share_can_be_written(self):
        home = os.path.expanduser("~")
        for folder in ("/tmp", home) if home.split("/")[1] in ("home", "root") else ("/tmp",):
            with tempfile.TemporaryDirectory(prefix=".tidewell-test-", dir=folder) as shared:
                self.assert_succeeds(self.script("box", f"echo written > /mnt/mac{shared}/file"))
                self.assertTrue(os.path.exists(shared + "/file"))


if __name__ == "__main__":
    main()
