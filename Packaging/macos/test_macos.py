#!/usr/bin/python3
"""The bundle's property list, and the scripts that finish and check a bundle, with stand-ins for the tools of a Mac."""

import os
import pathlib
import plistlib
import re
import subprocess
import sys
import tempfile
import unittest

HERE = pathlib.Path(__file__).resolve().parent
TREE = HERE.parent.parent


def plist():
    """The property list with CMake's variables filled in as the build fills them."""
    text = (HERE / "Info.plist.in").read_text(encoding="utf-8")
    for name, value in {"MACOSX_BUNDLE_EXECUTABLE_NAME": "Tidewell", "PROJECT_VERSION": "1.2.3",
                        "CMAKE_OSX_DEPLOYMENT_TARGET": "14.0"}.items():  # fmt: skip
        text = text.replace("${" + name + "}", value)
    return plistlib.loads(text.encode())


class PropertyList(unittest.TestCase):
    def test_nothing_is_left_unfilled(self):
        self.assertNotIn("${", repr(plist()))

    def test_the_names_agree_with_the_application(self):
        main = (TREE / "Sources" / "main.cpp").read_text(encoding="utf-8")
        domain = re.search(r'setOrganizationDomain\(u"([^"]*)"', main)[1]
        name = re.search(r'setApplicationName\(u"([^"]*)"', main)[1]
        # So preferences lie in a file that is named as the bundle, where the system and Homebrew look for them.
        self.assertEqual(plist()["CFBundleIdentifier"], ".".join([*reversed(domain.split(".")), name]))

    def test_the_icon_is_there(self):
        self.assertTrue((HERE.parent / "icon" / (plist()["CFBundleIconFile"] + ".icns")).is_file())

    def test_each_place_that_macos_guards_has_a_purpose(self):
        for place in ("DesktopFolder", "DocumentsFolder", "DownloadsFolder", "RemovableVolumes", "AppBundles"):
            self.assertTrue(plist()[f"NS{place}UsageDescription"].endswith("."), place)


class Bundle(unittest.TestCase):
    """A bundle of empty files, and stand-ins for the tools of a Mac which say what `says` holds of each file."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.bundle = self.folder / "Tidewell.app"
        self.contents = self.bundle / "Contents"
        for name in ("MacOS/Tidewell", "Resources/tidewell.icns", "PlugIns/platforms/libqcocoa.dylib",
                     "PlugIns/styles/libqmacstyle.dylib", "PlugIns/imageformats/libqjpeg.dylib",
                     "Frameworks/libzstd.1.dylib", "Frameworks/QtCore.framework/Versions/A/QtCore"):  # fmt: skip
            self.add(name)
        (self.contents / "MacOS" / "Tidewell").chmod(0o755)
        (self.contents / "Info.plist").write_bytes(plistlib.dumps(plist()))
        self.tool("codesign", f'[ "$1" = --verify ] || echo "$@" >>"{self.folder}/signed"')
        self.tool("file", 'case $2 in *.plist | *.icns) echo data ;; *) echo "Mach-O 64-bit" ;; esac')
        self.tool("lipo", "echo arm64")
        self.tool("plutil", '[ "$1" = -lint ] || /usr/bin/python3 -c "import plistlib, sys\n'
                            'print(plistlib.load(open(sys.argv[2], \'rb\'))[sys.argv[1]])" "$2" "$6"')  # fmt: skip
        self.otool("/usr/lib/libSystem.B.dylib", "14.0")

    def add(self, name):
        path = self.contents / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.touch()

    def tool(self, name, script):
        path = self.folder / "tools" / name
        path.parent.mkdir(exist_ok=True)
        path.write_text("#!/bin/bash\n" + script + "\n")
        path.chmod(0o755)

    def otool(self, library, system):
        self.tool("otool", f"""
            if [ "$1" = -L ]; then printf '%s:\\n\\t{library} (compatibility version 1.0.0)\\n' "$2"
            else printf '      cmd LC_BUILD_VERSION\\n    minos {system}\\n'; fi""")  # fmt: skip

    def run_script(self, name, **environment):
        environment = os.environ | {"PATH": f"{self.folder}/tools:/usr/bin:/bin"} | environment
        return subprocess.run(["bash", HERE / name, self.bundle], env=environment, capture_output=True, text=True)

    def signed(self):
        """(options, path within the bundle) of each signature, in order."""
        lines = (self.folder / "signed").read_text().splitlines()
        pairs = [line.rpartition(" ")[::2] for line in lines]
        return [(options, os.path.relpath(path, self.bundle)) for options, path in pairs]

    def test_it_is_signed_from_the_inside_out_and_the_application_last(self):
        result = self.run_script("finish")
        self.assertEqual(result.returncode, 0, result.stderr)
        paths = [path for _, path in self.signed()]
        self.assertEqual(paths[-2:], ["Contents/Frameworks/QtCore.framework", "."])
        self.assertEqual(set(paths[:-2]), {"Contents/Frameworks/libzstd.1.dylib",
                                           "Contents/PlugIns/platforms/libqcocoa.dylib",
                                           "Contents/PlugIns/styles/libqmacstyle.dylib"})  # fmt: skip
        self.assertEqual({options for options, _ in self.signed()}, {"--force --sign -"})

    def test_plugins_that_tidewell_has_no_use_for_are_taken_out(self):
        self.run_script("finish")
        self.assertEqual(sorted(path.name for path in (self.contents / "PlugIns").iterdir()), ["platforms", "styles"])

    def test_an_identity_signs_with_the_hardened_runtime_and_the_time(self):
        self.run_script("finish", TIDEWELL_SIGNING_IDENTITY="Developer ID")
        self.assertEqual({options for options, _ in self.signed()},
                         {"--force --sign Developer ID --options runtime --timestamp"})  # fmt: skip

    def test_a_signature_that_fails_is_not_passed_over(self):
        self.tool("codesign", 'case $* in *libzstd*) exit 1 ;; esac')
        self.assertNotEqual(self.run_script("finish").returncode, 0)

    def test_a_whole_bundle_is_fit(self):
        result = self.run_script("check")
        self.assertEqual((result.returncode, result.stderr), (0, ""), result.stdout)
        self.assertIn("fit to be handed on", result.stdout)

    def assert_unfit(self, fault):
        result = self.run_script("check")
        self.assertEqual(result.returncode, 1, result.stdout)
        self.assertIn(fault, result.stdout)

    def test_a_library_of_the_building_computer_makes_it_unfit(self):
        self.otool("/opt/homebrew/opt/zstd/lib/libzstd.1.dylib", "14.0")
        self.assert_unfit("wants /opt/homebrew/opt/zstd/lib/libzstd.1.dylib")

    def test_a_part_for_a_newer_macos_makes_it_unfit(self):
        self.otool("@rpath/QtCore", "14.10")
        self.assert_unfit("wants macOS 14.10, Info.plist promises 14.0")

    def test_a_part_for_an_older_macos_does_not(self):
        self.otool("@rpath/QtCore", "11.0")
        self.assertEqual(self.run_script("check").returncode, 0)

    def test_a_part_for_another_processor_makes_it_unfit(self):
        self.tool("lipo", 'case $2 in *zstd*) echo x86_64 ;; *) echo arm64 ;; esac')
        self.assert_unfit("libzstd.1.dylib is not for arm64")

    def test_a_missing_plugin_makes_it_unfit(self):
        (self.contents / "PlugIns/platforms/libqcocoa.dylib").unlink()
        self.assert_unfit("the plugin platforms/libqcocoa.dylib is missing")

    def test_a_broken_signature_makes_it_unfit(self):
        self.tool("codesign", "exit 1")
        self.assert_unfit("the signature is not whole")


class Cask(unittest.TestCase):
    def test_it_names_each_image_with_its_hash_and_the_version_once(self):
        with tempfile.TemporaryDirectory() as folder:
            images = [pathlib.Path(folder, name) for name in ("arm.dmg", "intel.dmg")]
            images[0].write_bytes(b"a")
            images[1].write_bytes(b"b")
            script = TREE / "Packaging" / "homebrew" / "write-cask"
            cask = subprocess.run(["bash", script, "1.2.3", "https://example.org/us/it", "sequoia", *images],
                                  capture_output=True, text=True, check=True).stdout  # fmt: skip
        # The hashes of "a" and "b".
        self.assertIn('arm:   "ca978112ca1bbdcafac231b39a23dc4da786eff8147c4e72b9807785afee48bb"', cask)
        self.assertIn('intel: "3e23e8160039594a33894f6564e1b1348bbd7a0088d42c4acb73eeaed59c009d"', cask)
        self.assertIn('url "https://example.org/us/it/releases/download/v#{version}/Tidewell-#{version}-#{arch}.dmg"', cask)
        self.assertEqual(cask.count("1.2.3"), 1)
        self.assertIn('depends_on macos: ">= :sequoia"', cask)

    def test_it_clears_what_the_application_leaves(self):
        cask = (TREE / "Packaging" / "homebrew" / "write-cask").read_text(encoding="utf-8")
        self.assertIn(f'Preferences/{plist()["CFBundleIdentifier"]}.plist', cask)


if __name__ == "__main__":
    program = unittest.main(verbosity=2, exit=False)
    failed = len(program.result.failures) + len(program.result.errors)
    print(f"{program.result.testsRun - failed} passed, {failed} failed")
    sys.exit(bool(failed))
