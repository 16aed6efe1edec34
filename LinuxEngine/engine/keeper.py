"""A machine's first process, the keeper: while it lives the machine runs, and with it every other process ends."""

import os
import select
import signal

from . import kernel, system
from .store import EngineError, remove_file

_NAMESPACES = kernel.NEW_MOUNTS | kernel.NEW_HOST_NAME | kernel.NEW_IPC | kernel.NEW_PIDS
_END_LIMIT_MILLISECONDS = 30_000


def start(machine):
    """Starts a stopped machine; the caller holds its lock. A keeper lives only once it is on record, whenever this
    process may be killed."""
    remove_file(machine.path("keeper.json"))
    news, report = os.pipe()
    word, on_record = os.pipe()
    builder = os.fork()
    if builder == 0:
        os.close(on_record)
        _build_and_exit(machine, report, word)
    os.close(report)
    os.close(word)
    with os.fdopen(news, "rb") as file, os.fdopen(on_record, "wb") as go:
        pid, _, trouble = file.read().decode(errors="replace").partition("\n")
        os.waitpid(builder, 0)
        if trouble or not pid:
            raise EngineError(f"start '{machine.name}': {trouble or 'the machine ended while it was starting'}")
        machine.set_keeper(int(pid))
        go.write(b"go")
        go.flush()
        # Only what is a program of the machine's can be entered. The pipe then has no reader any more.
        started = select.poll()
        started.register(go, 0)
        started.poll()


def stop(machine):
    """Ends every process in the machine; the caller holds its lock. True when the machine was running."""
    pid = machine.keeper()
    if pid is None:
        return False
    process = os.pidfd_open(pid)
    try:
        # A pid may have changed hands since it was looked up; the descriptor cannot.
        if machine.keeper() == pid:
            signal.pidfd_send_signal(process, signal.SIGKILL)
            _wait_for_end(process, machine.name)
    finally:
        os.close(process)
    remove_file(machine.path("keeper.json"))
    return True


def _wait_for_end(process, name):
    waiting = select.poll()
    waiting.register(process, select.POLLIN)
    if not waiting.poll(_END_LIMIT_MILLISECONDS):
        raise EngineError(f"stop '{name}': its processes do not end")


def _build_and_exit(machine, report, word):
    """Builds the machine's system and starts the keeper; reports the keeper's pid, a line feed, and any trouble."""
    try:
        os.setsid()
        os.umask(0o022)
        if os.geteuid() != 0:
            _become_root_of_a_user_namespace()
        kernel.close_to_others()
        kernel.unshare(_NAMESPACES)
        kernel.set_host_name(machine.name)
        system.build(machine)
        pid = os.fork()
        if pid == 0:
            _keep(report, word)
        os.write(report, f"{pid}\n".encode())
    except PermissionError as error:
        tell = f"\nthis system refuses it ({error.args[-1]}); the Linux engine needs root or user namespaces"
        os.write(report, tell.encode())
    except OSError as error:
        os.write(report, f"\n{error.args[-1]}".encode())
    finally:
        os._exit(0)


def _keep(report, word):
    """The keeper. Processes that lose their parent come to it, and the kernel buries them."""
    try:
        system.mount_processes()
        kernel.give_up_power_over_the_host()
        _let_go_of_everything_but(word)
        if os.read(word, 1):
            signal.signal(signal.SIGCHLD, signal.SIG_IGN)
            # Scripts can read with what environment it was started.
            os.execve("/bin/sleep", ["sleep", "infinity"], {})
    except OSError as error:
        os.write(report, f"\n{error.args[-1]}".encode())
    finally:
        os._exit(1)


def _let_go_of_everything_but(kept):
    """Whoever waits for the end of one of the caller's pipes must not wait for the machine's end."""
    nothing = os.open("/dev/null", os.O_RDWR)
    for descriptor in (0, 1, 2):
        os.dup2(nothing, descriptor)
    os.closerange(3, kept)
    os.closerange(kept + 1, os.sysconf("SC_OPEN_MAX"))


def _become_root_of_a_user_namespace():
    user, group = os.geteuid(), os.getegid()
    kernel.unshare(kernel.NEW_USER)
    for name, text in (("setgroups", "deny"), ("uid_map", f"0 {user} 1"), ("gid_map", f"0 {group} 1")):
        with open(f"/proc/self/{name}", "w", encoding="ascii") as file:
            file.write(text)
