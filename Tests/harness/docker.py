"""A real Docker engine for tests: on a private socket, with private data, in process and network namespaces of its own,
so that the host keeps nothing of it. Its one image is made here, without the network."""

import glob
import os
import secrets
import shutil
import signal
import subprocess
import tarfile

from harness import engine_case

from .desktop import ENDS_WITH_US
from .waiting import wait_until

IMAGE = "tidewell-test:latest"
_NEEDED = ("dockerd", "containerd", "busybox", "unshare")


def why_not():
    """Why no engine can run here; nothing when one can be tried."""
    if os.geteuid() != 0:
        return "a Docker engine needs root"
    missing = [tool for tool in _NEEDED if shutil.which(tool) is None]
    if client() is None:
        missing.append("docker")
    if missing:
        return f"not installed: {' '.join(missing)}"
    return "" if _can_make_control_groups() else "the system's control groups are read-only here"


def _can_make_control_groups():
    with open("/proc/self/mounts", encoding="utf-8") as file:
        mounts = [line.split() for line in file]
    return any(kind.startswith("cgroup") and os.access(path, os.W_OK) for _, path, kind, *_ in mounts)


def client():
    """The Docker client of the system's own packages, or else whichever is there."""
    return shutil.which("docker", path="/usr/bin:/bin") or shutil.which("docker")


class DockerEngine:
    """Lives in a `with` block; every container ends with it."""

    def __enter__(self):
        self._folder = engine_case.scratch_folder()
        self.address = f"unix://{self._folder}/docker.sock"
        self._cgroup = f"tidewell-test-{secrets.token_hex(4)}"
        self._process = None
        try:
            self.start()
            self._make_image()
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        if self._process and self._process.poll() is None:
            self.remove_all()
            self.kill()
        for folder in glob.glob(f"/sys/fs/cgroup/**/{self._cgroup}/", recursive=True):
            for inner, _, _ in os.walk(folder, topdown=False):
                os.rmdir(inner)
        shutil.rmtree(self._folder)

    def start(self):
        """Starts the engine (again) on the data it has."""
        command = ["dockerd", "--data-root", f"{self._folder}/data", "--exec-root", f"{self._folder}/exec",
                   "--pidfile", f"{self._folder}/pid", "--host", self.address, "--cgroup-parent", f"/{self._cgroup}",
                   "--iptables=false", "--ip6tables=false", "--ip-forward=false", "--ip-masq=false"]  # fmt: skip
        # In a new process namespace a number left over from the last would be taken for a living process's.
        shutil.rmtree(f"{self._folder}/exec", ignore_errors=True)
        if os.path.exists(f"{self._folder}/pid"):
            os.remove(f"{self._folder}/pid")
        with open(f"{self._folder}/log", "ab") as log:
            self._process = subprocess.Popen([*ENDS_WITH_US, "unshare", "--net", "--pid", "--fork", "--kill-child",
                                              "--mount-proc", "sh", "-c", 'busybox ip link set lo up && exec "$@"',
                                              "sh", *command],
                                             stdin=subprocess.DEVNULL, stdout=log, stderr=log)  # fmt: skip
        wait_until(lambda: self.answers() or self._process.poll() is not None, "the Docker engine answers", limit=90)
        if self._process.poll() is not None:
            with open(f"{self._folder}/log", encoding="utf-8", errors="replace") as log:
                raise OSError(f"the Docker engine did not start: {log.read()[-500:]}")

    def kill(self):
        """Ends the engine and all its containers at once; none is left when this returns."""
        pid = self._process.pid
        with open(f"/proc/{pid}/task/{pid}/children", encoding="ascii") as file:
            for child in file.read().split():
                os.kill(int(child), signal.SIGKILL)
        self._process.wait()

    def answers(self):
        return self.run("version", check=False).returncode == 0

    def run(self, *arguments, check=True):
        """Runs the Docker client."""
        environment = os.environ | {"DOCKER_HOST": self.address}
        return subprocess.run([client(), *arguments], env=environment, check=check, capture_output=True, text=True)

    def remove_all(self):
        if containers := self.run("ps", "-aq", "--no-trunc").stdout.split():
            self.run("rm", "-f", *containers)

    def state(self, name):
        return self.run("inspect", "-f", "{{.State.Status}}", name, check=False).stdout.strip()

    def _make_image(self):
        """One file, busybox, under its names. As a container's first process `sleep` ends only when killed."""
        path = os.path.join(self._folder, "image.tar")
        with tarfile.open(path, "w") as image:
            image.add(shutil.which("busybox"), "bin/busybox", recursive=False)
            for name in ("sh", "sleep", "echo"):
                link = tarfile.TarInfo(f"bin/{name}")
                link.type, link.linkname = tarfile.SYMTYPE, "busybox"
                image.addfile(link)
        command = "trap exit TERM; echo to stdout; echo to stderr >&2; sleep 1000 & wait"
        self.run("import", "-c", f'CMD ["/bin/sh", "-c", "{command}"]', path, IMAGE)
