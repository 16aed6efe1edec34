#!/usr/bin/python3
"""The Containers tab on a real Docker engine."""

import re
import unittest

from harness import docker
from harness.docker import IMAGE, DockerEngine
from harness.waiting import wait_until
from harness.window_case import WindowCase, main

AGE = re.compile(r"Less than a second|About an? \w+|\d+ (?:seconds?|minutes?|hours?)")


class Containers(WindowCase):
    @classmethod
    def setUpClass(cls):
        if reason := docker.why_not():
            raise unittest.SkipTest(reason)
        super().setUpClass()
        try:
            cls.engine = cls.enterClassContext(DockerEngine())
        except OSError as error:
            raise unittest.SkipTest(str(error)) from None

    def setUp(self):
        super().setUp()
        self.addCleanup(self.engine.remove_all)

    def start_on_tab(self):
        tidewell = self.start_running(tools=("orb", "docker"), environment={"DOCKER_HOST": self.engine.address})
        tidewell.select_tab("Containers")
        return tidewell

    def printed(self):
        """What the Docker client prints for the same things, whatever their age."""
        output = self.engine.run("ps", "-a", "--format", "{{.Names}}\t{{.Image}} · {{.Status}}\t{{.Ports}}").stdout
        return [[part for part in line.split("\t") if part] for line in AGE.sub("a while", output).splitlines()]

    def test_the_list_says_what_the_docker_client_prints(self):
        self.engine.run("run", "-d", "--name", "web", "-p", "8080:80", "-p", "127.0.0.1:5353:53/udp", IMAGE)
        self.engine.run("run", "--name", "gone", IMAGE, "sh", "-c", "exit 3", check=False)
        self.engine.run("create", "--name", "never-started", IMAGE)
        self.engine.run("run", "-d", "--name", "paused", IMAGE)
        self.engine.run("pause", "paused")
        tidewell = self.start_on_tab()
        wait_until(lambda: len(tidewell.rows("Containers")) == 4, "four rows")

        shown = self.wait_until_as_printed(tidewell)
        self.assertEqual([texts[0] for texts in shown], ["paused", "never-started", "gone", "web"])
        self.assertEqual(len(shown[3]), 3)
        self.assertIn("8080->80/tcp", shown[3][2])
        self.assertIn("Exited (3)", shown[2][1])
        for name, can_start, can_stop in (("web", False, True), ("gone", True, False), ("never-started", True, False)):
            self.assertEqual(tidewell.button("Start", f"Start {name}").is_enabled, can_start)
            self.assertEqual(tidewell.button("Stop", f"Stop {name}").is_enabled, can_stop)

    def wait_until_as_printed(self, tidewell):
        """The texts of the rows, once they are what the client prints."""

        def same():
            tidewell.press("Refresh")
            shown = self.row_texts(tidewell)
            return shown if shown == self.printed() else None

        return wait_until(same, "the rows say what the client prints")

    def row_texts(self, tidewell):
        """What each row says, from top to bottom, without its coloured circle and whatever its age."""
        found = []
        for row in tidewell.rows("Containers"):
            names = [AGE.sub("a while", node.name) for node in row.find_all(role="label")]
            found.append([name for name in names if name not in ("running", "not running")])
        return found

    def test_a_container_is_run_with_a_name_and_ports(self):
        tidewell = self.start_on_tab()
        tidewell.wait_for("No containers.")
        tidewell.find("Image (nginx:latest)").set_text(f" {IMAGE} ")
        tidewell.find("Ports (8080:80)").set_text("8081:81, 127.0.0.1:8082:82/tcp")
        tidewell.find("Name (optional)").set_text("mine")
        tidewell.press("Run", "Run a container")
        tidewell.wait_for_text("Started mine.")
        tidewell.find("mine", role="panel")
        self.assertEqual(self.engine.state("mine"), "running")
        ports = self.engine.run("port", "mine").stdout
        self.assertIn("81/tcp -> 0.0.0.0:8081\n", ports)
        self.assertIn("82/tcp -> 127.0.0.1:8082\n", ports)

    def test_what_docker_refuses_is_told(self):
        self.engine.run("run", "-d", "--name", "taken", IMAGE)
        tidewell = self.start_on_tab()
        tidewell.find("Image (nginx:latest)").set_text(IMAGE)
        tidewell.find("Name (optional)").set_text("taken")
        tidewell.press("Run", "Run a container")
        tidewell.wait_for_text("docker run failed: ", "is already in use by container")
        tidewell.find("Image (nginx:latest)").set_text("-rf")
        tidewell.press("Run", "Run a container")
        tidewell.wait_for_text("Enter a valid image name, for example nginx:latest.")

    def test_a_container_is_stopped_started_and_removed(self):
        self.engine.run("run", "-d", "--name", "web", IMAGE)
        tidewell = self.start_on_tab()
        tidewell.press("Stop", "Stop web")
        wait_until(lambda: self.engine.state("web") == "exited", "web has stopped")
        tidewell.press("Start", "Start web")
        wait_until(lambda: self.engine.state("web") == "running", "web runs")
        tidewell.press("Remove", "Remove web")
        wait_until(lambda: self.engine.state("web") == "", "web is removed")
        tidewell.wait_for("No containers.")

    def test_a_log_is_read_in_its_sheet(self):
        self.engine.run("run", "-d", "--name", "web", IMAGE)
        self.engine.run("create", "--name", "silent", IMAGE)
        wait_until(lambda: self.engine.run("logs", "web").stderr, "web has said all")
        tidewell = self.start_on_tab()
        tidewell.press("Logs", "Logs web")
        tidewell.wait_for("Logs: web")
        self.assertEqual(tidewell.find("Container log").text, "to stdout\nto stderr")
        tidewell.press("Close")
        tidewell.wait_until_gone("Logs: web")
        tidewell.press("Logs", "Logs silent")
        tidewell.wait_for("Logs: silent")
        self.assertEqual(tidewell.find("Container log").text, "(no log output)")

    def test_an_engine_that_is_killed_leaves_the_last_list_and_the_reason(self):
        self.engine.run("run", "-d", "--name", "web", IMAGE)
        tidewell = self.start_on_tab()
        tidewell.find("web", role="panel")
        self.engine.kill()
        self.addCleanup(lambda: self.engine.start() if not self.engine.answers() else None)
        tidewell.press("Refresh")
        tidewell.wait_for_text("Cannot connect to the Docker daemon at ")
        tidewell.find("web", role="panel")
        self.engine.start()
        tidewell.wait_until_text_is_gone("Cannot connect to the Docker daemon at ")
        self.wait_until_as_printed(tidewell)

    def test_an_engine_that_is_killed_during_an_action_ends_it_with_the_reason(self):
        # So long does Docker wait for a process that does not end when asked.
        self.engine.run("run", "-d", "--name", "stubborn", "--stop-timeout", "100", IMAGE, "sleep", "1000")
        tidewell = self.start_on_tab()
        tidewell.press("Stop", "Stop stubborn")
        tidewell.wait_for("In progress")
        self.assertFalse(tidewell.button("Remove", "Remove stubborn").is_enabled)
        self.engine.kill()
        self.addCleanup(lambda: self.engine.start() if not self.engine.answers() else None)
        tidewell.wait_for_text("docker stop failed: ")
        tidewell.wait_until_gone("In progress")
        self.assertTrue(tidewell.button("Remove", "Remove stubborn").is_enabled)

    def test_a_container_that_went_meanwhile_is_told(self):
        self.engine.run("create", "--name", "brief", IMAGE)
        tidewell = self.start_on_tab()
        # It goes after the click, so that no poll takes its row first.
        real = f'"{docker.client()}"'
        tidewell.add_tool("docker", f'[ "$1" != start ] || {real} rm brief > /dev/null\nexec {real} "$@"\n')
        tidewell.press("Start", "Start brief")
        tidewell.wait_for_text("docker start failed: ", "No such container: brief")
        tidewell.wait_for("No containers.")


class WithoutDocker(WindowCase):
    def test_a_missing_docker_is_told(self):
        tidewell = self.start_running()
        tidewell.select_tab("Containers")
        tidewell.wait_for_text("The docker command was not found. Install OrbStack (it provides docker) and start it.")
        tidewell.find("Image (nginx:latest)").set_text("x")
        self.assertFalse(tidewell.button("Run", "Run a container").is_enabled)


if __name__ == "__main__":
    main()
