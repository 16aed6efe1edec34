"""The machine and the versions, in plain words."""

import os
import platform
import re
import subprocess

from .peers import PEERS


def _first(pattern, path, otherwise):
    with open(path) as file:
        found = re.search(pattern, file.read(), re.MULTILINE)
    return found[1] if found else otherwise


def machine():
    processor = _first(r"^model name\s*: (.*)$", "/proc/cpuinfo", platform.machine())
    gib = int(_first(r"^MemTotal: +(\d+) kB", "/proc/meminfo", "0")) / 2**20
    system = _first(r'^PRETTY_NAME="(.*)"$', "/etc/os-release", "Linux")
    return f"{len(os.sched_getaffinity(0))} cores ({processor}), {gib:.0f} GiB of memory, {system}, no graphics card"


def _package_version(package):
    command = ("dpkg-query", "--show", "--showformat", "${Version}", package)
    try:
        return subprocess.run(command, capture_output=True, text=True).stdout or None
    except FileNotFoundError:
        return None


def versions():
    """By package; without those that are not installed."""
    packages = [*dict.fromkeys(peer.package for peer in PEERS), "libqt6widgets6", "xvfb", "libgl1-mesa-dri"]
    return {package: version for package in packages if (version := _package_version(package))}


def fonts():
    """The files of all that the system has."""
    return [os.path.join(folder, name) for folder, _, names in os.walk("/usr/share/fonts") for name in names]


def commit(repository):
    """Of what is measured, with a mark where it has changes since."""
    command = ("git", "-C", repository, "describe", "--always", "--dirty", "--exclude", "*")
    return subprocess.run(command, capture_output=True, text=True).stdout.strip() or "unknown"
