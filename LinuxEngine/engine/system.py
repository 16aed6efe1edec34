"""A machine's own Linux system: a copy-on-write layer over the host's, with devices, scratch folders and processes of
its own, and the host's files shared as OrbStack shares the Mac's."""

import os

from . import kernel
from .store import state_folder

HOME = "/var/roothome"

# What a system is made of. Of these a machine sees the host's, and changes to them are its own.
_LAYERED_FOLDERS = ("bin", "etc", "lib", "lib32", "lib64", "libx32", "sbin", "usr", "var")
# Some systems have more, much of it mounted from elsewhere, where a layer does not reach: the host's, only to be read.
_READ_ONLY_FOLDERS = ("efi", "gnu", "nix", "ostree", "snap", "sysroot")
# These it has for itself from the first. Every other folder at the top holds people's files, which it shares, and so do two
# of these on the host.
_OWN_FOLDERS = ("boot", "dev", "mnt", "opt", "proc", "run", "sys", "tmp")
_NOT_SHARED = {*_LAYERED_FOLDERS, *_OWN_FOLDERS, "lost+found"} - {"mnt", "tmp"}
_DEVICES = ("null", "zero", "full", "random", "urandom", "tty")
_DEVICE_LINKS = {"fd": "/proc/self/fd", "stdin": "/proc/self/fd/0", "stdout": "/proc/self/fd/1",
                 "stderr": "/proc/self/fd/2", "ptmx": "pts/ptmx"}  # fmt: skip
_QUIET = kernel.MOUNT_NO_SETUID | kernel.MOUNT_NO_DEVICES | kernel.MOUNT_NO_EXECUTE
_SHARED = kernel.MOUNT_BIND | kernel.MOUNT_RECURSIVE


def furnish(machine):
    """Gives a new machine its name and a home of its own: the host's stays out of reach of `rm -rf ~`."""
    os.makedirs(machine.path("upper", "etc"))
    os.makedirs(machine.path("upper" + HOME), mode=0o700)
    with open("/etc/passwd", encoding="utf-8", errors="surrogateescape") as file:
        accounts = [line.split(":") for line in file]
    for fields in accounts:
        if fields[0] == "root" and len(fields) > 5:
            fields[5] = HOME
    _write(machine, "passwd", "".join(":".join(fields) for fields in accounts))
    _write(machine, "hostname", machine.name + "\n")
    _write(machine, "hosts", f"127.0.0.1 localhost\n127.0.1.1 {machine.name}\n::1 localhost\n")


def _write(machine, name, text):
    with open(machine.path("upper", "etc", name), "w", encoding="utf-8", errors="surrogateescape") as file:
        file.write(text)


def build(machine):
    """Mounts the machine's system in this mount namespace and makes it the root."""
    root = machine.path("root")
    kernel.mount(None, "/", None, kernel.MOUNT_RECURSIVE | kernel.MOUNT_PRIVATE)
    kernel.mount(machine.path("upper"), root, None, kernel.MOUNT_BIND)
    # Sharing the host's root would otherwise share this mount within itself.
    kernel.mount(None, root, None, kernel.MOUNT_UNBINDABLE)
    for name in _OWN_FOLDERS:
        if not os.path.lexists(f"{root}/{name}"):
            os.mkdir(f"{root}/{name}")
    for name in _LAYERED_FOLDERS:
        _mount_layer(machine, name)
    _share_host_files(root)
    # A device that lies about, in another system's folder or from before a script could make none, is one of the host's.
    kernel.restrict(root, kernel.MOUNT_NO_DEVICES)
    _mount_devices(root + "/dev")
    kernel.mount("tmpfs", root + "/tmp", "tmpfs", kernel.MOUNT_NO_DEVICES, "mode=1777")
    kernel.mount("tmpfs", root + "/run", "tmpfs", kernel.MOUNT_NO_DEVICES, "mode=755")
    os.mkdir(root + "/run/lock")
    _share_name_servers(root)
    if _root_is_somebody_else_outside():
        kernel.mount("/sys", root + "/sys", None, _SHARED)
    else:
        kernel.mount("sysfs", root + "/sys", "sysfs", _QUIET | kernel.MOUNT_READ_ONLY)
    kernel.change_root(root)


def _make_place(path):
    """A folder to mount on. A link that a script left there would be followed out of the machine."""
    if os.path.lexists(path) and (os.path.islink(path) or not os.path.isdir(path)):
        os.remove(path)
    os.makedirs(path, exist_ok=True)


def mount_processes():
    """To be called by the machine's first process; keeps the host's settings in /proc from being changed."""
    kernel.mount("proc", "/proc", "proc", _QUIET)
    for name in ("acpi", "bus", "fs", "irq", "scsi", "sys", "sysrq-trigger"):
        path = f"/proc/{name}"
        if os.path.exists(path):
            kernel.mount(path, path, None, kernel.MOUNT_BIND)
            kernel.mount(None, path, None, kernel.MOUNT_BIND | kernel.MOUNT_REMOUNT | kernel.MOUNT_READ_ONLY | _QUIET)


def _root_is_somebody_else_outside():
    """In a user namespace root has no power over the host, and needs none of its own protected from it."""
    with open("/proc/self/uid_map", encoding="ascii") as file:
        return file.read().split() != ["0", "0", "4294967295"]


def _mount_layer(machine, name):
    source, target = f"/{name}", machine.path("root", name)
    if os.path.islink(source):
        if not os.path.lexists(target):
            os.symlink(os.readlink(source), target)
    elif os.path.isdir(source):
        upper, work = machine.path("upper", name), machine.path("work", name)
        _make_place(upper)
        os.makedirs(work, exist_ok=True)
        options = f"lowerdir={source},upperdir={upper},workdir={work}"
        if _root_is_somebody_else_outside():
            options += ",userxattr"
        kernel.mount("overlay", target, "overlay", 0, options)


def _share_host_files(root):
    """The host's files at /mnt/mac, where those of the system can only be read, and people's at their own path, too."""
    for place in ("/mnt", "/mnt/mac"):
        _make_place(root + place)
    kernel.mount("/", root + "/mnt/mac", None, _SHARED)
    kernel.restrict(root + "/mnt/mac", kernel.MOUNT_READ_ONLY)
    for name in ("proc", "sys", "dev", "run"):
        _hide(f"{root}/mnt/mac/{name}")
    for entry in os.scandir("/"):
        if not entry.is_dir(follow_symlinks=False) or entry.name in _NOT_SHARED:
            continue
        if entry.name not in _OWN_FOLDERS:
            _make_place(root + entry.path)
            kernel.mount(entry.path, root + entry.path, None, _SHARED)
        if entry.name in _READ_ONLY_FOLDERS:
            kernel.restrict(root + entry.path, kernel.MOUNT_READ_ONLY)
        else:
            kernel.mount(entry.path, root + "/mnt/mac" + entry.path, None, _SHARED)
    for state in (root + state_folder(), root + "/mnt/mac" + state_folder()):
        if os.path.isdir(state):
            _hide(state)


def _hide(folder):
    kernel.mount("tmpfs", folder, "tmpfs", kernel.MOUNT_READ_ONLY, "size=4k,mode=555")


def _mount_devices(folder):
    kernel.mount("tmpfs", folder, "tmpfs", kernel.MOUNT_NO_SETUID, "mode=755")
    for name in _DEVICES:
        os.close(os.open(f"{folder}/{name}", os.O_CREAT | os.O_WRONLY, 0o666))
        kernel.mount(f"/dev/{name}", f"{folder}/{name}", None, kernel.MOUNT_BIND)
    for name, target in _DEVICE_LINKS.items():
        os.symlink(target, f"{folder}/{name}")
    for name in ("pts", "shm", "mqueue"):
        os.mkdir(f"{folder}/{name}")
    kernel.mount("devpts", folder + "/pts", "devpts", _QUIET & ~kernel.MOUNT_NO_DEVICES, "newinstance,ptmxmode=666")
    kernel.mount("tmpfs", folder + "/shm", "tmpfs", kernel.MOUNT_NO_SETUID | kernel.MOUNT_NO_DEVICES, "mode=1777")
    kernel.mount("mqueue", folder + "/mqueue", "mqueue", _QUIET)


def _share_name_servers(root):
    """The list may stand in /run, of which the machine has its own."""
    path = os.path.realpath("/etc/resolv.conf")
    if path.startswith("/run/") and os.path.isfile(path):
        os.makedirs(os.path.dirname(root + path), exist_ok=True)
        with open(path, "rb") as source, open(root + path, "wb") as copy:
            copy.write(source.read())
