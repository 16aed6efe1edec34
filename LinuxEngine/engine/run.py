"""Running a command in a started machine.

    orb        waits outside, and passes on the end: by the exit status, or by the signal that it received itself
    warden     inside, the command's parent, to whom everything the command leaves behind comes; it hears of orb's end,
               however that came, by the end of a pipe, and then ends all of it: politely, and after a moment for good
    command    has orb's own standard input, output and error, so every byte goes straight through
"""

import os
import select
import signal
import time

from . import kernel, system
from .store import EngineError

_PASSED_ON = ("TERM", "LANG", "LC_ALL", "TZ", "http_proxy", "https_proxy", "no_proxy",
              "HTTP_PROXY", "HTTPS_PROXY", "NO_PROXY")  # fmt: skip
_GRACE_SECONDS = 2.0
_ENDING_SIGNALS = (signal.SIGTERM, signal.SIGINT, signal.SIGHUP)


def run(machine, command):
    """Runs the command in the machine, whose keeper lives, and returns its exit status as a shell would."""
    keeper = machine.keeper()
    try:
        process = os.pidfd_open(keeper or 0)
    except OSError:
        keeper = None
    if keeper is None or machine.keeper() != keeper:
        raise EngineError(f"the machine '{machine.name}' was stopped")
    user = 0 if os.geteuid() == 0 else kernel.NEW_USER
    orb_lives, orb_holds = os.pipe()
    kernel.close_to_others()
    kernel.enter(process, user | kernel.NEW_PIDS)
    # Taken one after another below: one that comes just before it is waited for is not overlooked either.
    news = {*_ENDING_SIGNALS, signal.SIGCHLD}
    signal.signal(signal.SIGCHLD, signal.SIG_DFL)
    signal.pthread_sigmask(signal.SIG_BLOCK, news)
    warden = os.fork()
    if warden == 0:
        os.close(orb_holds)
        _watch_over(command, process, orb_lives)
    received = None
    while True:
        number = signal.sigwait(news)
        if number == signal.SIGCHLD:
            ended, status = os.waitpid(warden, os.WNOHANG)
            if ended:
                break
        elif received is None:
            received = number
            os.close(orb_holds)
    if received is not None:
        signal.signal(received, signal.SIG_DFL)
        signal.pthread_sigmask(signal.SIG_UNBLOCK, news)
        os.kill(os.getpid(), received)
    return _shell_status(status)


def _shell_status(status):
    return 128 + os.WTERMSIG(status) if os.WIFSIGNALED(status) else os.WEXITSTATUS(status)


def _watch_over(command, process, orb_lives):
    """The warden: ends with the command's exit status."""
    try:
        for number in _ENDING_SIGNALS:
            signal.signal(number, signal.SIG_DFL)
        signal.pthread_sigmask(signal.SIG_SETMASK, ())
        kernel.enter(process, kernel.NEW_MOUNTS | kernel.NEW_HOST_NAME | kernel.NEW_IPC)
        kernel.give_up_power_over_the_host()
        os.setsid()
        kernel.adopt_orphans()
        child_ended = _child_ends()
        pid = os.fork()
        if pid == 0:
            _become(command)
        status = _wait(pid, child_ended, orb_lives)
        os._exit(128 if status is None else status)
    except OSError as error:
        os.write(2, f"orb: {error.args[-1]}\n".encode())
    finally:
        os._exit(1)


def _child_ends():
    """A pipe that has something to read whenever a child has ended."""
    reading, writing = os.pipe()
    for end in (reading, writing):
        os.set_blocking(end, False)
    signal.set_wakeup_fd(writing, warn_on_full_buffer=False)
    signal.signal(signal.SIGCHLD, lambda *_: None)
    return reading


def _wait(command, child_ended, orb_lives):
    """The command's exit status; nothing when orb ended first and everything was ended with it."""
    news = select.poll()
    news.register(child_ended, select.POLLIN)
    news.register(orb_lives, select.POLLIN)
    while True:
        ready = {descriptor for descriptor, _ in news.poll()}
        if orb_lives in ready:
            _end_all(child_ended)
            return None
        status = _bury(command, child_ended)[0]
        if status is not None:
            return status


def _bury(command, child_ended):
    """Takes note of every ended child: the command's exit status if it was among them, and whether others live."""
    try:
        os.read(child_ended, 4096)
    except BlockingIOError:
        pass
    found = None
    while True:
        try:
            pid, status = os.waitpid(-1, os.WNOHANG)
        except ChildProcessError:
            return found, False
        if pid == 0:
            return found, True
        if pid == command:
            found = _shell_status(status)


def _end_all(child_ended):
    news = select.poll()
    news.register(child_ended, select.POLLIN)
    _send(signal.SIGTERM)
    _send(signal.SIGCONT)
    deadline = time.monotonic() + _GRACE_SECONDS
    while _bury(None, child_ended)[1]:
        left = deadline - time.monotonic()
        if left > 0:
            news.poll(left * 1000)
        else:
            # Once more each time round: a process may have been born while the others were being found.
            _send(signal.SIGKILL)
            news.poll(100)


def _send(number):
    for pid in _descendants():
        try:
            os.kill(pid, number)
        except ProcessLookupError:
            pass


def _descendants():
    children = {}
    for entry in os.listdir("/proc"):
        if not entry.isdigit():
            continue
        try:
            with open(f"/proc/{entry}/stat", encoding="utf-8", errors="replace") as file:
                parent = int(file.read().rpartition(")")[2].split()[1])
        except OSError:
            continue
        children.setdefault(parent, []).append(int(entry))
    found = list(children.get(os.getpid(), []))
    for pid in found:
        found.extend(children.get(pid, []))
    return found


def _become(command):
    signal.set_wakeup_fd(-1)
    for number in range(1, signal.NSIG):
        if number not in (signal.SIGKILL, signal.SIGSTOP):
            try:
                signal.signal(number, signal.SIG_DFL)
            except (OSError, ValueError):
                pass
    signal.pthread_sigmask(signal.SIG_SETMASK, [])
    try:
        os.setsid()
        os.umask(0o022)
        os.chdir(system.HOME)
        # A folder that the caller has open would be a way out.
        os.closerange(3, os.sysconf("SC_OPEN_MAX"))
        environment = {name: os.environ[name] for name in _PASSED_ON if name in os.environ}
        environment |= {"HOME": system.HOME, "USER": "root", "LOGNAME": "root", "SHELL": "/bin/bash",
                        "PATH": "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin"}  # fmt: skip
        os.environ["PATH"] = environment["PATH"]
        os.execvpe(command[0], command, environment)
    except FileNotFoundError:
        os.write(2, f"orb: {command[0]}: command not found\n".encode())
        os._exit(127)
    except OSError as error:
        os.write(2, f"orb: {command[0]}: {error.args[-1]}\n".encode())
    finally:
        os._exit(126)
