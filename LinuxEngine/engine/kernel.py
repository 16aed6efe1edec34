"""The kernel calls that Python 3.11 does not offer, each raising OSError with what was tried."""

import ctypes
import os

NEW_MOUNTS = 0x00020000
NEW_HOST_NAME = 0x04000000
NEW_IPC = 0x08000000
NEW_USER = 0x10000000
NEW_PIDS = 0x20000000

MOUNT_READ_ONLY = 0x1
MOUNT_NO_SETUID = 0x2
MOUNT_NO_DEVICES = 0x4
MOUNT_NO_EXECUTE = 0x8
MOUNT_REMOUNT = 0x20
MOUNT_BIND = 0x1000
MOUNT_RECURSIVE = 0x4000
MOUNT_UNBINDABLE = 0x20000
MOUNT_PRIVATE = 0x40000
UNMOUNT_DETACHED = 0x2

_SET_DUMPABLE = 4
_SET_CHILD_SUBREAPER = 36
_DROP_FROM_BOUNDING_SET = 24
_CAPABILITY_SETS_VERSION = 0x20080522
# To mount (or uncover what is mounted over), to look into a process that may, and ways around both: to open a file by its
# number on the disk, to make a device, to run code in the kernel. And to set up the network, which is the host's.
_CAPABILITIES_OVER_THE_HOST = {"dac_read_search": 2, "net_admin": 12, "sys_module": 16, "sys_rawio": 17,
                               "sys_ptrace": 19, "sys_admin": 21, "sys_boot": 22, "sys_time": 25, "mknod": 27,
                               "perfmon": 38, "bpf": 39}  # fmt: skip
_SET_MOUNT_ATTRIBUTES_NUMBER = 442
_FROM_THE_WORKING_FOLDER = -100
_RECURSIVELY = 0x8000
_PIVOT_ROOT_NUMBERS = {"x86_64": 155, "aarch64": 41}

_library = ctypes.CDLL(None, use_errno=True)


def _check(result, attempt):
    if result != 0:
        number = ctypes.get_errno()
        raise OSError(number, f"{attempt}: {os.strerror(number)}")


def unshare(namespaces):
    """Moves this process into new namespaces (for NEW_PIDS: the children it starts from now on)."""
    _check(_library.unshare(namespaces), "new namespaces")


def enter(process, namespaces):
    """Moves this process into namespaces of the process behind a pid file descriptor."""
    _check(_library.setns(process, namespaces), "entering the machine")


def mount(source, target, kind=None, flags=0, options=None):
    _check(
        _library.mount(
            os.fsencode(source) if source else None,
            os.fsencode(target),
            kind.encode() if kind else None,
            ctypes.c_ulong(flags),
            os.fsencode(options) if options else None,
        ),
        f"mount {kind or 'bind'} on {target}",
    )


def restrict(folder, flags):
    """A mount with all that is mounted in it: MOUNT_READ_ONLY, MOUNT_NO_DEVICES, whose numbers are the same here."""
    attributes = (ctypes.c_uint64 * 4)(flags)
    _check(
        _library.syscall(
            ctypes.c_long(_SET_MOUNT_ATTRIBUTES_NUMBER),
            ctypes.c_long(_FROM_THE_WORKING_FOLDER),
            os.fsencode(folder),
            ctypes.c_ulong(_RECURSIVELY),
            attributes,
            ctypes.c_size_t(ctypes.sizeof(attributes)),
        ),
        f"restricting {folder}",
    )


def change_root(folder):
    """Makes a mounted folder the root of this mount namespace and lets the old root go."""
    os.chdir(folder)
    number = _PIVOT_ROOT_NUMBERS.get(os.uname().machine)
    if number is None:
        raise OSError(f"changing the root is not known on {os.uname().machine}")
    _check(_library.syscall(ctypes.c_long(number), b".", b"."), "change of root")
    _check(_library.umount2(b".", UNMOUNT_DETACHED), "leaving the old root")
    os.chdir("/")


def set_host_name(name):
    encoded = name.encode()
    _check(_library.sethostname(encoded, ctypes.c_size_t(len(encoded))), "host name")


def adopt_orphans():
    """Descendants whose parents end become children of this process instead of their namespace's first one."""
    _check(_library.prctl(_SET_CHILD_SUBREAPER, 1, 0, 0, 0), "adopting orphans")


def close_to_others():
    """Until it starts a program, no script looks into this process and its children: their environment, memory and what
    they have open, the interpreter among it, are the host's."""
    _check(_library.prctl(_SET_DUMPABLE, 0, 0, 0, 0), "closing to others")


def give_up_power_over_the_host():
    """From here on this process, and what is started from it, cannot mount, set the clock, load kernel modules or reach
    the hardware."""
    # Effective, permitted, inheritable, each for 32 capabilities, and again for the others. What is inheritable or ambient
    # would survive the start of a program, whatever the bounding set lacks; without the first there is none of the second.
    header, sets = (ctypes.c_uint32 * 2)(_CAPABILITY_SETS_VERSION, 0), (ctypes.c_uint32 * 6)()
    _check(_library.capget(header, sets), "reading its capabilities")
    for name, number in _CAPABILITIES_OVER_THE_HOST.items():
        _check(_library.prctl(_DROP_FROM_BOUNDING_SET, number, 0, 0, 0), f"giving up {name}")
        first = number // 32 * 3
        for place in range(first, first + 3):
            sets[place] &= ~(1 << number % 32)
    _check(_library.capset(header, sets), "giving up capabilities")
