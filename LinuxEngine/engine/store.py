"""The stored machines: one folder each, of which the operating folder's layout is

    running                 holds the identity of the host's boot while the engine is started
    in-use                  locked, shared, by each program that was started with the engine
    machines/NAME/          locked (flock) by whoever changes the machine
        record.json         what `list` shows
        keeper.json         the first process of a started machine; a leftover one names no live process
        resume              the machine ran when the whole engine was stopped
        upper/ work/ root/  the machine's own files, overlayfs's scratch folder, the mount point
    machines/.new-*         being made          machines/.old-*     being deleted

A folder gets or loses its name in one rename, so a crash leaves no machine that is half there.
"""

import fcntl
import json
import os
import re
import secrets
import stat
import sys
import time
from contextlib import contextmanager

# Of Linux's ioctl: the same numbers on every processor that this runs on. They speak of 8 bytes; the kernel takes 4.
_GET_FLAGS = 0x80086601
_SET_FLAGS = 0x40086602
_FLAGS_SIZE = 4
_IMMUTABLE_OR_ONLY_APPENDED = 0x10 | 0x20

NAME_PATTERN = re.compile(r"[A-Za-z0-9][A-Za-z0-9.-]{0,62}")


class EngineError(Exception):
    """A sentence for the user."""


class MachineMissing(EngineError):
    """There is no such machine, or no more."""

    def __init__(self, name):
        super().__init__(f"[-32602] no machine found: '{name}'")


def _chosen_folder():
    home = os.environ.get("XDG_STATE_HOME") or os.path.join(os.path.expanduser("~"), ".local", "state")
    return os.environ.get("TIDEWELL_ENGINE_STATE") or os.path.join(home, "tidewell-engine")


def state_folder():
    """Private to the user. Tests name their own by TIDEWELL_ENGINE_STATE."""
    return os.path.realpath(_chosen_folder())


def machines_folder():
    return os.path.join(state_folder(), "machines")


def prepare():
    """Raises EngineError where the folder, or a link in its place, is somebody else's: in /dev/shm anybody may make one,
    and whoever owns it could put other files into the machines."""
    os.makedirs(state_folder(), mode=0o700, exist_ok=True)
    for path in (_chosen_folder(), state_folder()):
        if os.lstat(path).st_uid != os.geteuid():
            raise EngineError(f"{path} belongs to another user. TIDEWELL_ENGINE_STATE names a folder to use instead.")
    os.chmod(state_folder(), 0o700)
    os.makedirs(machines_folder(), mode=0o700, exist_ok=True)


def _boot_identity():
    with open("/proc/sys/kernel/random/boot_id", encoding="ascii") as file:
        return file.read().strip()


def _read(path):
    try:
        with open(path, encoding="utf-8") as file:
            return file.read()
    except OSError:
        return ""


def write(path, text):
    """Replaces a file in one step."""
    with open(path + ".new", "w", encoding="utf-8") as file:
        file.write(text)
    os.replace(path + ".new", path)


def engine_is_running():
    return _read(os.path.join(state_folder(), "running")).strip() == _boot_identity()


def mark_engine(running):
    path = os.path.join(state_folder(), "running")
    if running:
        write(path, _boot_identity())
    else:
        remove_file(path)


def remove_file(path):
    try:
        os.remove(path)
    except FileNotFoundError:
        pass


def start_time_of(pid):
    """When a process started, in clock ticks since boot; with the pid it names one process for good."""
    try:
        with open(f"/proc/{pid}/stat", encoding="utf-8", errors="replace") as file:
            fields = file.read().rpartition(")")[2].split()
    except OSError:
        return None
    return None if fields[0] in ("Z", "X") else int(fields[19])


class Machine:
    """One machine's folder."""

    def __init__(self, name, folder=None):
        self.name = name
        self.folder = folder or os.path.join(machines_folder(), name)

    def path(self, *parts):
        return os.path.join(self.folder, *parts)

    @property
    def record(self):
        """What was stored at its creation; a damaged record still lets the machine be listed and deleted."""
        try:
            record = json.loads(_read(self.path("record.json")))
            if isinstance(record, dict) and isinstance(record.get("image"), dict):
                return record
        except ValueError:
            pass
        return {"id": "", "image": {"distro": "", "version": "", "arch": "", "variant": "default"}, "config": {}}

    def keeper(self):
        """The pid of the machine's first process, or nothing when the machine is stopped."""
        try:
            keeper = json.loads(_read(self.path("keeper.json")))
            pid, started, boot = keeper["pid"], keeper["started"], keeper["boot"]
        except (ValueError, KeyError, TypeError):
            return None
        return pid if boot == _boot_identity() and start_time_of(pid) == started else None

    def set_keeper(self, pid):
        keeper = {"pid": pid, "started": start_time_of(pid), "boot": _boot_identity()}
        write(self.path("keeper.json"), json.dumps(keeper))

    @contextmanager
    def locked(self):
        """Holds the machine against every other change; fails when it was deleted meanwhile."""
        try:
            descriptor = os.open(self.folder, os.O_RDONLY | os.O_DIRECTORY)
        except OSError:
            raise MachineMissing(self.name) from None
        try:
            fcntl.flock(descriptor, fcntl.LOCK_EX)
            if not os.path.exists(self.folder) or not os.path.samestat(os.fstat(descriptor), os.stat(self.folder)):
                raise MachineMissing(self.name)
            yield
        finally:
            os.close(descriptor)


def find(name):
    machine = Machine(name)
    if not NAME_PATTERN.fullmatch(name) or not os.path.isdir(machine.folder):
        raise MachineMissing(name)
    return machine


def all_machines():
    try:
        names = sorted(os.listdir(machines_folder()))
    except FileNotFoundError:
        names = []
    return [Machine(name) for name in names if not name.startswith(".")]


@contextmanager
def made(name, record):
    """Makes a machine's folder and holds its lock while the caller starts it; takes it back when that fails."""
    failure = f"[-32098] create '{name}'"
    if not NAME_PATTERN.fullmatch(name):
        raise EngineError(f"{failure}: invalid machine name")
    prepare()
    sweep()
    staging = os.path.join(machines_folder(), f".new-{secrets.token_hex(8)}")
    os.mkdir(staging, 0o700)
    descriptor = os.open(staging, os.O_RDONLY | os.O_DIRECTORY)
    try:
        fcntl.flock(descriptor, fcntl.LOCK_EX)
        for part in ("upper", "work", "root"):
            os.mkdir(os.path.join(staging, part), 0o755)
        write(os.path.join(staging, "record.json"), json.dumps(record))
        machine = Machine(name)
        try:
            os.rename(staging, machine.folder)
        except OSError:
            remove_tree(staging)
            raise EngineError(f"{failure} : machine already exists") from None
        try:
            yield machine
        except BaseException:
            discard(machine)
            raise
    finally:
        os.close(descriptor)


def discard(machine):
    """Takes a stopped machine's name away at once, then its files."""
    grave = os.path.join(machines_folder(), f".old-{secrets.token_hex(8)}")
    os.rename(machine.folder, grave)
    remove_tree(grave)


def sweep():
    """Removes what a crash left half made or half deleted: folders that nobody holds and that are not brand-new."""
    for name in os.listdir(machines_folder()):
        if not name.startswith((".new-", ".old-")):
            continue
        folder = os.path.join(machines_folder(), name)
        try:
            descriptor = os.open(folder, os.O_RDONLY | os.O_DIRECTORY)
        except OSError:
            continue
        try:
            fcntl.flock(descriptor, fcntl.LOCK_EX | fcntl.LOCK_NB)
            if time.time() - os.fstat(descriptor).st_mtime > 60:
                remove_tree(folder)
        except OSError:
            pass  # held by somebody, or not to be removed today: no reason not to make another machine
        finally:
            os.close(descriptor)


def remove_tree(folder):
    """Removes a folder with everything in it: also closed folders (overlayfs leaves one), and files that a script made
    immutable."""
    try:
        _remove_tree(folder)
    except PermissionError:
        _make_mutable(folder)
        _remove_tree(folder)


def _remove_tree(folder):
    import shutil  # only here: it costs a `list` or `status` a third of its time

    for parent, folders, _ in os.walk(folder):
        for name in folders:
            path = os.path.join(parent, name)
            if not os.path.islink(path):
                os.chmod(path, 0o700)
    shutil.rmtree(folder)


def _make_mutable(folder):
    """Takes back what `chattr +i` and `chattr +a` set, on folders and files."""
    for parent, _, files in os.walk(folder):
        for path in (parent, *(os.path.join(parent, name) for name in files)):
            try:
                # To open a device is to use it.
                if stat.S_IFMT(os.lstat(path).st_mode) not in (stat.S_IFREG, stat.S_IFDIR):
                    continue
                descriptor = os.open(path, os.O_RDONLY | os.O_NOFOLLOW | os.O_NONBLOCK)
            except OSError:
                continue
            try:
                flags = fcntl.ioctl(descriptor, _GET_FLAGS, bytes(_FLAGS_SIZE))
                mutable = int.from_bytes(flags, sys.byteorder) & ~_IMMUTABLE_OR_ONLY_APPENDED
                fcntl.ioctl(descriptor, _SET_FLAGS, mutable.to_bytes(_FLAGS_SIZE, sys.byteorder))
            except OSError:
                pass
            finally:
                os.close(descriptor)
