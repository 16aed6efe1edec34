#!/usr/bin/python3
"""What the scripts do and say on a Mac, whose commands are imitated, and that they use nothing a Mac lacks."""

import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

TOP = pathlib.Path(__file__).resolve().parent.parent
PACKAGES = re.sub("#.*", "", (TOP / "Tools" / "packages-homebrew.txt").read_text()).split()


class Mac(unittest.TestCase):
    """A folder of imitated commands, which is all that a script finds on its path."""

    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.prefix = pathlib.Path(scratch.name) / "prefix"
        self.commands = pathlib.Path(scratch.name) / "commands"
        self.commands.mkdir()
        for tool in ("bash", "cat", "dirname", "env", "sed"):
            (self.commands / tool).symlink_to(shutil.which(tool))
        self.imitate("uname", "echo Darwin")
        self.imitate("sysctl", "exit 1")
        self.imitate("xcode-select", "echo /Library/Developer/CommandLineTools")
        self.imitate("xcrun", 'echo "Apple clang version 16.0.0 (clang-1600.0.26.3)"')
        self.imitate("brew", f'case $1 in --prefix) echo {self.prefix} ;; *) echo "brew $*" ;; esac')
        for package in PACKAGES:
            (self.prefix / "opt" / package).mkdir(parents=True)

    def imitate(self, command, script):
        """Puts a command there that runs this line of shell."""
        (self.commands / command).write_text(f"#!/bin/bash\n{script}\n")
        (self.commands / command).chmod(0o755)

    def run_script(self, *command):
        """What a script says, all of it, and its status."""
        result = subprocess.run(command, env={"PATH": str(self.commands)}, stdout=subprocess.PIPE,
                                stderr=subprocess.STDOUT, text=True)
        return result.returncode, result.stdout


class InstallingPackages(Mac):
    def install(self, *before):
        return self.run_script(*before, TOP / "Tools" / "install-packages", "--tests")

    def assert_refused(self, *words):
        status, said = self.install()
        self.assertEqual(status, 1)
        for word in words:
            self.assertIn(word, said)
        self.assertEqual(said.count("\n"), 1, said)

    def test_nothing_is_said_or_installed_where_everything_is_there(self):
        self.assertEqual(self.install(), (0, ""))

    def test_what_is_missing_is_installed_and_nothing_else(self):
        (self.prefix / "opt" / "qtbase").rmdir()
        (self.prefix / "opt" / "icu4c").rmdir()
        self.assertEqual(self.install(), (0, "brew install icu4c qtbase\n"))

    def test_an_alias_counts_as_installed(self):
        (self.prefix / "opt" / "icu4c").rename(self.prefix / "opt" / "icu4c@78")
        (self.prefix / "opt" / "icu4c").symlink_to("icu4c@78")
        self.assertEqual(self.install(), (0, ""))

    def test_qt_comes_without_the_browser_engine(self):
        self.assertIn("qtbase", PACKAGES)
        self.assertNotIn("qt", PACKAGES)

    def test_no_homebrew(self):
        (self.commands / "brew").unlink()
        self.assert_refused("https://brew.sh")

    def test_homebrew_that_is_not_on_the_path(self):
        brew = self.commands / "brew"
        elsewhere = brew.rename(self.prefix / "brew")
        for tool in ("true", "id", "mktemp", "unshare", "mount", "mkdir", "umount", "rmdir", "ln"):
            (self.commands / tool).symlink_to(shutil.which(tool, path="/usr/sbin:/usr/bin:/sbin:/bin"))
        status, said = self.run_script(
            TOP / "Tools" / "with-own-tools", "bash", "-c",
            f"ln -s {elsewhere} /opt/homebrew/bin/brew && {TOP}/Tools/install-packages")
        if status == 77:
            self.skipTest(said.strip())
        self.assertEqual((status, said), (1, "Homebrew is installed but not on the path: say "
                                             '`eval "$(/opt/homebrew/bin/brew shellenv)"`, and try again.\n'))

    def test_no_command_line_tools(self):
        self.imitate("xcode-select", 'echo "error: unable to get active developer directory" >&2; exit 2')
        self.assert_refused("xcode-select --install")

    def test_an_xcode_before_16(self):
        self.imitate("xcrun", 'echo "Apple clang version 15.0.0 (clang-1500.3.9.4)"')
        self.assert_refused("Xcode 16")

    def test_an_xcode_whose_licence_was_not_agreed_to(self):
        self.imitate("xcrun", 'echo "You have not agreed to the Xcode license agreements." >&2; exit 69')
        self.assert_refused("You have not agreed")

    def test_a_shell_under_rosetta(self):
        self.imitate("sysctl", '[ "$*" = "-n sysctl.proc_translated" ] && echo 1')
        self.assert_refused("Rosetta", "arch -arm64 bash")

    def test_a_shell_beside_rosetta(self):
        self.imitate("sysctl", '[ "$*" = "-n sysctl.proc_translated" ] && echo 0')
        self.assertEqual(self.install(), (0, ""))

    def test_icu_is_looked_for_where_homebrew_keeps_it(self):
        script = self.prefix / "ask.cmake"
        script.write_text(f'include({TOP}/CMake/Homebrew.cmake)\nmessage("ICU: ${{ICU_ROOT}}")\n')
        self.imitate("brew", '[ "$*" = "--prefix icu4c" ] && echo /opt/homebrew/opt/icu4c@78')
        self.assertEqual(self.run_script(shutil.which("cmake"), "-DCMAKE_HOST_APPLE=ON", "-P", script),
                         (0, "ICU: /opt/homebrew/opt/icu4c@78\n"))


class Running(Mac):
    """./run, with a build that takes no time."""

    def setUp(self):
        super().setUp()
        self.top = self.prefix / "checkout"
        (self.top / "Tools").mkdir(parents=True)
        shutil.copy(TOP / "run", self.top)
        (self.top / "Tools" / "install-packages").symlink_to(self.commands / "install-packages")
        for command in ("install-packages", "cmake"):
            self.imitate(command, "")
        self.imitate("open", 'echo "open $*"')
        self.imitate("pgrep", "exit 1")

    def test_the_new_build_is_opened(self):
        self.assertEqual(self.run_script(self.top / "run"), (0, "open build/release/Tidewell.app\n"))

    def test_an_older_build_that_is_running_is_not_brought_forward_as_the_new_one(self):
        self.imitate("pgrep", '[ "$*" = "-x Tidewell" ] && echo 4711')
        status, said = self.run_script(self.top / "run")
        self.assertEqual(status, 1)
        self.assertIn("Tidewell is running already", said)
        self.assertNotIn("4711", said)


class Words(unittest.TestCase):
    # The bash of macOS is 3.2, and an empty list is an unset name to it under `set -u`.
    MISSING = re.compile(r"""\b(mapfile|readarray|nproc|coproc)\b|\bwait\ -n|\b(declare|local|typeset)\ -[Ang]|BASHPID|EPOCH
        |\$\{\w+(,|\^)|\$\{\w+@|&>>|\|&|;;&|\w+\+?=\(""", re.VERBOSE)

    def test_the_scripts_use_nothing_that_the_bash_of_macos_lacks(self):
        scripts = [TOP / "run", TOP / "test", TOP / ".ci" / "run", *sorted((TOP / "Tools").iterdir())]
        scripts = [path for path in scripts if path.read_bytes().startswith(b"#!/usr/bin/env bash")]
        self.assertGreater(len(scripts), 8)
        for path in scripts:
            for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
                found = self.MISSING.search(line.partition("#")[0] if line.startswith("#") else line)
                self.assertFalse(found, f"{path.relative_to(TOP)}:{number}: {line.strip()}")


if __name__ == "__main__":
    program = unittest.main(verbosity=2, exit=False)
    failed = len(program.result.failures) + len(program.result.errors)
    print(f"{program.result.testsRun - failed} passed, {failed} failed")
    sys.exit(bool(failed))
