#!/usr/bin/python3
"""small_pipes.py COMMAND [ARGUMENT...]: runs the command where no pipe can be enlarged, as it is on a Mac.

The kernel refuses that one request, to the command and what it starts. Exit status 77 where it takes no such filter.
"""

import ctypes
import os
import platform
import struct
import sys

F_SETPIPE_SZ = 1031
FCNTL = {"x86_64": 72, "aarch64": 25}.get(platform.machine())
LOAD, JUMP_IF_EQUAL, RETURN = 0x20, 0x15, 0x06
NUMBER_OF_THE_CALL, SECOND_ARGUMENT = 0, 24
REFUSE, ALLOW = 0x00050000 | 1, 0x7FFF0000
PR_SET_SECCOMP, FILTER_MODE, PR_SET_NO_NEW_PRIVS = 22, 2, 38

if FCNTL is None:
    print(f"skipped: the number of fcntl on {platform.machine()} is not known here")
    sys.exit(77)
steps = [(LOAD, 0, 0, NUMBER_OF_THE_CALL), (JUMP_IF_EQUAL, 0, 3, FCNTL),
         (LOAD, 0, 0, SECOND_ARGUMENT), (JUMP_IF_EQUAL, 0, 1, F_SETPIPE_SZ),
         (RETURN, 0, 0, REFUSE), (RETURN, 0, 0, ALLOW)]
code = ctypes.create_string_buffer(b"".join(struct.pack("HBBI", *step) for step in steps))
program = ctypes.create_string_buffer(struct.pack("HxxxxxxP", len(steps), ctypes.addressof(code)))
libc = ctypes.CDLL(None, use_errno=True)
if libc.prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) or libc.prctl(PR_SET_SECCOMP, FILTER_MODE, program):
    print(f"skipped: {os.strerror(ctypes.get_errno())}")
    sys.exit(77)
os.execv(sys.argv[1], sys.argv[1:])
