#!/usr/bin/python3
"""Which of the computer's folders a machine shares, on a computer that has more of them than this one."""

import os
import subprocess
import tempfile
import unittest

from harness.engine_case import ORB, EngineCase, main

_OF_THE_SYSTEM = ("efi", "gnu", "nix", "ostree", "snap", "sysroot")
# A root of its own, with this computer's folders but for those that it is given, and a disk that is mounted in /mnt. Without
# root one is that of a user namespace.
_ANOTHER_COMPUTER = """
root=$1 orb=$2 folders=$3
mount -t tmpfs tmpfs "$root"
mount --make-unbindable "$root"
cd "$root"
mkdir -p mnt/disk $folders
for folder in $folders; do touch "$folder/kept"; done
mount -t tmpfs tmpfs mnt/disk
for entry in /*; do
    [ ! -e ".$entry" ] || continue
    if [ -L "$entry" ]; then
        cp -P "$entry" .
    elif [ -d "$entry" ]; then
        mkdir ".$entry"
        mount --rbind "$entry" ".$entry"
    fi
done
pivot_root . .
umount -l .
cd /
"$orb" create debian box >/dev/null
"$orb" -m box bash -s
"""


class Sharing(EngineCase):
    def on_another_computer(self, script, after=""):
        """The result of a script in a machine there, and of what is done on that computer itself afterwards."""
        own = [] if os.geteuid() == 0 else ["--user", "--map-root-user"]
        place = os.path.join(self.scratch, "root")
        os.mkdir(place)
        arguments = ["bash", place, ORB, " ".join(_OF_THE_SYSTEM)]
        return subprocess.run(["unshare", *own, "--mount", "bash", "-euc", _ANOTHER_COMPUTER + after, *arguments],
                              env=self.environment, input=script, capture_output=True, text=True)  # fmt: skip

    def test_disks_below_mnt_are_peoples_and_can_be_written(self):
        result = self.on_another_computer("ls /mnt; echo written > /mnt/mac/mnt/disk/file", "cat /mnt/disk/file")
        self.assertEqual((result.stdout, result.stderr), ("mac\nwritten\n", ""))

    def test_a_machine_that_is_kept_on_such_a_disk_is_not_shared_with_itself(self):
        moved = 'export TIDEWELL_ENGINE_STATE=/mnt/disk/state\n"$orb" create debian there >/dev/null\n'
        look = '"$orb" -m there bash -c "echo own > /file; cat /file; ls /mnt /mnt/mac/mnt/disk/state"\n"$orb" delete -f there'
        result = self.on_another_computer("true", moved + look)
        self.assertEqual((result.stdout, result.stderr), ("own\n/mnt:\nmac\n\n/mnt/mac/mnt/disk/state:\n", ""))

    def test_what_some_systems_are_made_of_is_seen_and_only_read(self):
        tries = "".join(
            f"for file in /{name} /mnt/mac/{name}; do ls $file; echo > $file/new && echo wrote; rm $file/kept; done 2>&-\n"
            for name in _OF_THE_SYSTEM
        )
        result = self.on_another_computer(tries + "true", "cd /; ls $folders")
        listed = "\n\n".join(f"{name}:\nkept" for name in _OF_THE_SYSTEM) + "\n"
        self.assertEqual((result.stdout, result.stderr), ("kept\n" * 2 * len(_OF_THE_SYSTEM) + listed, ""))

    @unittest.skipIf(os.geteuid() != 0, "only root can make a device")
    def test_devices_among_the_shared_files_cannot_be_opened(self):
        self.create()
        home = os.path.expanduser("~")
        for parent, shared in (("/tmp", "/mnt/mac/tmp"), ("/var/tmp", "/mnt/mac/var/tmp"), ("/var/tmp", "/var/tmp"),
                               (home, "/mnt/mac" + home), (home, home)):  # fmt: skip
            with tempfile.TemporaryDirectory(prefix=".tidewell-test-", dir=parent) as folder, self.subTest(shared):
                os.mknod(f"{folder}/null", 0o20666, os.makedev(1, 3))
                path = shared + folder[len(parent) :] + "/null"
                self.assertEqual(self.script("box", f"test -c {path} && ! cat {path}").returncode, 0)

    @unittest.skipIf(os.geteuid() != 0, "only root can make a device")
    def test_devices_that_are_left_in_a_machine_cannot_be_opened(self):
        self.create()
        for folder in ("", "var/"):
            place = os.path.join(self.state, "machines", "box", "upper", folder)
            os.mknod(place + "null", 0o20666, os.makedev(1, 3))
            with self.subTest(folder):
                self.assertEqual(self.script("box", f"test -c /{folder}null && ! cat /{folder}null").returncode, 0)


if __name__ == "__main__":
    main()
