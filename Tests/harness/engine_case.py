"""What the engine's tests share: an `orb` with a state folder of its own, and the closing line of a test file."""

import json
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import unittest

from harness import REPOSITORY

ORB = os.path.join(REPOSITORY, "LinuxEngine", "orb")
LIMIT_SECONDS = 60
SKIPPED = 77  # ctest's SKIP_RETURN_CODE


def scratch_folder():
    """A new folder that can hold machines: overlayfs keeps no layer on another overlay, as in a container's /tmp."""
    kind = subprocess.run(["stat", "-f", "-c", "%T", tempfile.gettempdir()], capture_output=True, text=True, check=True)
    return tempfile.mkdtemp(prefix="tidewell-", dir="/dev/shm" if kind.stdout.startswith("overlay") else None)


_terminated = False


def watch(seconds):
    """The watchdog: raises in the test when it takes longer, or when this process is to end, so that what the test
    started still ends with it."""

    def too_long(*_):
        raise TimeoutError(f"the test took longer than {seconds} s")

    def terminate(*_):
        global _terminated
        _terminated = True
        raise TimeoutError("the tests were terminated")

    if _terminated:
        raise unittest.SkipTest("the tests were terminated")
    signal.signal(signal.SIGTERM, terminate)
    signal.signal(signal.SIGALRM, too_long)
    signal.alarm(seconds)


class EngineCase(unittest.TestCase):
    """Every test has an engine of its own, ended with everything in it when the test ends."""

    def setUp(self):
        watch(LIMIT_SECONDS)
        self.addCleanup(signal.alarm, 0)
        self.scratch = scratch_folder()
        self.state = os.path.join(self.scratch, "state")
        self.environment = os.environ | {"TIDEWELL_ENGINE_STATE": self.state}
        self.addCleanup(self._clean_up)

    def _clean_up(self):
        for machine in self.machines():
            self.orb("delete", "-f", machine["name"])
        self.orb("stop")
        while self.keepers() != []:
            pass
        shutil.rmtree(self.scratch)

    def orb(self, *arguments, text=None, **options):
        """Runs `orb` to its end. Without `text` its standard input is empty."""
        options |= {"stdin": subprocess.DEVNULL} if text is None else {"input": text}
        return subprocess.run([ORB, *arguments], env=self.environment, capture_output=True, text=True, **options)

    def start_orb(self, *arguments):
        process = subprocess.Popen([ORB, *arguments], env=self.environment, stdin=subprocess.PIPE,
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)  # fmt: skip
        self.addCleanup(process.kill)
        for stream in (process.stdin, process.stdout, process.stderr):
            self.addCleanup(stream.close)
        return process

    def start_script(self, machine, script):
        """Starts a script and returns its `orb` once the script has printed its first line, "ready"."""
        process = self.start_orb("-m", machine, "bash", "-s")
        process.stdin.write(script)
        process.stdin.close()
        self.assertEqual(process.stdout.readline(), "ready\n")
        return process

    def create(self, name="box", distribution="debian"):
        self.assert_succeeds(self.orb("create", distribution, name))
        return name

    def script(self, machine, text, shell="bash"):
        return self.orb("-m", machine, shell, "-s", text=text)

    def machines(self):
        return json.loads(self.orb("list", "-f", "json").stdout)

    def states(self):
        return {machine["name"]: machine["state"] for machine in self.machines()}

    def host_pids_with(self, word):
        """The host's processes that have a word among their arguments."""
        found = []
        for entry in os.listdir("/proc"):
            if entry.isdigit():
                try:
                    with open(f"/proc/{entry}/cmdline", "rb") as file:
                        if word.encode() in file.read().split(b"\0"):
                            found.append(int(entry))
                except OSError:
                    pass
        return found

    def keepers(self):
        """The host's processes whose root is a machine of this engine, none of which may outlive it."""
        found = []
        for entry in os.listdir("/proc"):
            if entry.isdigit():
                try:
                    with open(f"/proc/{entry}/mountinfo", encoding="utf-8") as file:
                        if f"upperdir={self.state}/" in file.read():
                            found.append(int(entry))
                except OSError:
                    pass
        return found

    def assert_succeeds(self, result):
        self.assertEqual((result.returncode, result.stderr), (0, ""))

    def assert_fails(self, result, message, status=1):
        self.assertEqual((result.returncode, result.stdout, result.stderr), (status, "", message + "\n"))


def namespaces_refused():
    """Why this computer cannot run machines; nothing when it can."""
    scratch = scratch_folder()
    environment = os.environ | {"TIDEWELL_ENGINE_STATE": scratch}
    made = subprocess.run([ORB, "create", "debian", "probe"], env=environment, capture_output=True, text=True)
    subprocess.run([ORB, "delete", "-f", "probe"], env=environment, capture_output=True)
    shutil.rmtree(scratch)
    return made.stderr.strip() if made.returncode else ""


class _CountingResult(unittest.TextTestResult):
    passed = 0

    def addSuccess(self, test):
        super().addSuccess(test)
        self.passed += 1


def skip(reason):
    print(f"skipped: {reason}")
    sys.exit(SKIPPED)


def main():
    """Runs the tests of the calling file."""
    if refused := namespaces_refused():
        skip(refused)
    runner = unittest.TextTestRunner(verbosity=2, resultclass=_CountingResult)
    result = unittest.main(testRunner=runner, exit=False).result
    failed = len(result.failures) + len(result.errors) + len(result.unexpectedSuccesses)
    print(f"{result.passed} passed, {failed} failed" + (f", {len(result.skipped)} skipped" if result.skipped else ""))
    if not failed and not result.passed and result.skipped:
        skip(result.skipped[0][1])
    sys.exit(0 if result.passed and not failed else 1)
