#!/usr/bin/python3
"""The header: OrbStack missing, stopped, started, stopped from the window, installed, and an install cancelled."""

from harness.waiting import wait_until
from harness.window_case import WindowCase, main


class OrbStackStates(WindowCase):
    def test_an_engine_that_is_stopped_is_started_from_the_header(self):
        tidewell = self.start(engine_started=False)
        tidewell.wait_for("OrbStack stopped")
        self.assertTrue(tidewell.shows("Start OrbStack to run commands."))
        self.assertFalse(tidewell.button("Stop", "Stop OrbStack").is_enabled)
        tidewell.press("Start", "Start OrbStack")
        tidewell.wait_for("OrbStack running")
        self.assertEqual(tidewell.orb("status").stdout, "Running\n")
        wait_until(lambda: not tidewell.shows("Start OrbStack to run commands."), "the hint is gone")
        self.assertFalse(tidewell.button("Start", "Start OrbStack").is_enabled)

    def test_an_engine_that_runs_is_stopped_from_the_header(self):
        tidewell = self.start_running()
        tidewell.orb("create", "debian", "box")
        tidewell.press("Stop", "Stop OrbStack")
        tidewell.wait_for("OrbStack stopped")
        self.assertEqual(tidewell.orb("status").stdout, "Stopped\n")
        self.assertEqual(tidewell.machines(), {"box": "stopped"})

    def test_without_orb_and_homebrew_the_website_is_offered(self):
        tidewell = self.start(tools=(), engine_started=False)
        tidewell.wait_for("OrbStack not installed")
        self.assertTrue(tidewell.button("Get OrbStack").is_enabled)
        self.assertTrue(
            tidewell.shows(
                "Homebrew was not found, so the app will not install anything. Get OrbStack from orbstack.dev "
                "(free for personal use), then come back here."
            )
        )
        self.assertFalse(tidewell.button("Run").is_enabled)

    def test_orb_that_appears_later_is_found_by_the_poll(self):
        tidewell = self.start(tools=())
        tidewell.wait_for("OrbStack not installed")
        tidewell.add_tool("orb")
        tidewell.wait_for("OrbStack running")

    def test_homebrew_installs_it_and_the_engine_is_started_after_it(self):
        tidewell = self.start(tools=(), engine_started=False)
        tidewell.add_tool("brew", f'echo "$@" > {tidewell.path("brew-arguments")}\n'
                                  f'echo "==> Installing Cask orbstack"\nread line < {tidewell.path("go")}\n'
                                  f'ln -s {tidewell.orb_path} /opt/homebrew/bin/orb\n')  # fmt: skip
        tidewell.make_pipe("go")
        tidewell.press("Install OrbStack")
        tidewell.wait_for("Installing OrbStack with Homebrew…")
        log = tidewell.find(name="Setup log")
        wait_until(lambda: "==> Installing Cask orbstack" in log.text, "brew's output in the log")
        self.assertFalse(tidewell.button("Install OrbStack").is_enabled)
        tidewell.write_pipe("go")
        tidewell.wait_for("OrbStack running")
        wait_until(lambda: "\nInstall finished.\n$ orb start\n" in log.text, "both steps in the log")
        self.assertTrue(log.text.startswith("$ brew install --cask orbstack\n"))
        with open(tidewell.path("brew-arguments"), encoding="utf-8") as file:
            self.assertEqual(file.read(), "install --cask orbstack\n")

    def test_an_install_can_be_cancelled(self):
        tidewell = self.start(tools=(), engine_started=False)
        tidewell.add_tool("brew", "echo begun; exec sleep 1000\n")
        tidewell.press("Install OrbStack")
        tidewell.find(name="Setup log")
        tidewell.press("Cancel")
        tidewell.wait_for("Install cancelled.")
        self.assertTrue(tidewell.button("Install OrbStack").is_enabled)
        self.assertFalse(tidewell.shows("In progress"))

    def test_an_install_that_fails_is_told(self):
        tidewell = self.start(tools=(), engine_started=False)
        tidewell.add_tool("brew", "echo 'Error: no room' >&2; exit 3\n")
        tidewell.press("Install OrbStack")
        tidewell.wait_for("Install failed (exit 3). See the log.")
        log = tidewell.find(name="Setup log")
        wait_until(lambda: "Error: no room\n" in log.text, "brew's error in the log")


if __name__ == "__main__":
    main()
