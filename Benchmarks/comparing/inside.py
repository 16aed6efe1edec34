"""inside.py SOCKET FILE: runs inside a terminal, and times how long the terminal takes for a file.

The end of `cat` is not the end: much may wait in the pseudo-terminal and in the terminal's own buffers. So the question
where the cursor is goes after it; a terminal answers once it has taken in everything before.
"""

import os
import socket
import subprocess
import sys
import time
import tty

WHERE_IS_THE_CURSOR = b"\x1b[6n"


def ask_terminal(descriptor):
    os.write(descriptor, WHERE_IS_THE_CURSOR)
    answer = b""
    while not answer.endswith(b"R"):
        part = os.read(descriptor, 64)
        if not part:
            raise EOFError("the terminal is gone")
        answer += part


def main(path, file):
    terminal = os.open("/dev/tty", os.O_RDWR)
    # No echo of the answer, and no wait for a line's end. What is written is still laid out as lines.
    tty.setcbreak(terminal)
    with socket.socket(socket.AF_UNIX) as connection:
        connection.connect(path)
        lines = connection.makefile("rw")
        ask_terminal(terminal)
        print(os.getpid(), file=lines, flush=True)
        lines.readline()
        start = time.monotonic()
        subprocess.run(["cat", file], check=True)
        ask_terminal(terminal)
        print(time.monotonic() - start, file=lines, flush=True)
        # Until the memory is read, and the other side closes.
        lines.readline()


if __name__ == "__main__":
    main(*sys.argv[1:])
