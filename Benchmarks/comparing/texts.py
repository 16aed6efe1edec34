"""The texts that are shown, each in a file, made by the program that the tests' texts come from, too."""

import os
import subprocess


def text_file(programs, folder, kind, mib):
    """The file with about that much of the text of this kind; made when it is not there."""
    path = os.path.join(folder, f"{kind}-{mib}.txt")
    if not os.path.exists(path):
        os.makedirs(folder, exist_ok=True)
        with open(path + ".new", "wb") as file:
            subprocess.run([os.path.join(programs, "Texts"), kind, str(mib)], stdout=file, check=True)
        os.rename(path + ".new", path)
    return path
