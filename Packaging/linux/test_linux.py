#!/usr/bin/python3
"""The installed files of Linux agree with each other and with the application."""

import configparser
import pathlib
import re
import sys
import unittest
import xml.etree.ElementTree

HERE = pathlib.Path(__file__).resolve().parent
TREE = HERE.parent.parent
MAIN = (TREE / "Sources" / "main.cpp").read_text(encoding="utf-8")
IDENTITY = re.search(r'setDesktopFileName\(u"([^"]*)"', MAIN)[1]


class InstalledFiles(unittest.TestCase):
    def setUp(self):
        self.page = xml.etree.ElementTree.parse(HERE / f"{IDENTITY}.metainfo.xml").getroot()
        file = configparser.ConfigParser(interpolation=None)
        file.optionxform = str
        file.read(HERE / f"{IDENTITY}.desktop", encoding="utf-8")
        self.entry = file["Desktop Entry"]

    def test_the_newest_release_is_the_version_that_is_built(self):
        version = re.search(r"project\(Tidewell VERSION (\S+)", (TREE / "CMakeLists.txt").read_text(encoding="utf-8"))[1]
        self.assertEqual(self.page.find("releases/release").get("version"), version)
        headings = re.findall(r"^## (\S+)", (TREE / "CHANGELOG.md").read_text(encoding="utf-8"), re.MULTILINE)
        self.assertEqual(headings[0], version)

    def test_the_page_the_entry_and_the_window_have_one_identity(self):
        self.assertEqual(self.page.findtext("id"), IDENTITY)
        self.assertEqual(self.page.findtext("launchable"), f"{IDENTITY}.desktop")
        self.assertEqual(self.entry["Icon"], IDENTITY)
        self.assertEqual(self.entry["StartupWMClass"], re.search(r'setApplicationName\(u"([^"]*)"', MAIN)[1])

    def test_the_entry_starts_what_is_installed(self):
        self.assertTrue((HERE / self.entry["Exec"]).stat().st_mode & 0o100)


if __name__ == "__main__":
    program = unittest.main(verbosity=2, exit=False)
    failed = len(program.result.failures) + len(program.result.errors)
    print(f"{program.result.testsRun - failed} passed, {failed} failed")
    sys.exit(bool(failed))
