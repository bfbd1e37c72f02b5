#!/usr/bin/env python3
"""Packs the application twice and looks into the zip file.
Usage: package_test.py Quillmont.app
"""
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest
import zipfile

PACKER = pathlib.Path(__file__).resolve().parents[2] / "packaging/macos/zip_application.py"


def pack(application, target):
    subprocess.run([sys.executable, "-B", PACKER, application, target], check=True,
                   stdout=subprocess.DEVNULL)
    return target.read_bytes()


class Package(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        self.copy = self.folder / "Quillmont.app"
        shutil.copytree(APPLICATION, self.copy)

    def test_depends_on_nothing_but_what_is_packed(self):
        first = pack(APPLICATION, self.folder / "first.zip")
        for part in self.copy.rglob("*"):
            os.utime(part, (0, 0))
            if not part.is_dir():
                part.chmod(part.stat().st_mode & 0o700)
        self.assertEqual(pack(self.copy, self.folder / "second.zip"), first)

    def test_differs_when_a_file_does(self):
        first = pack(self.copy, self.folder / "first.zip")
        (self.copy / "Contents/Resources/uninstall.sh").write_text("exit\n")
        self.assertNotEqual(pack(self.copy, self.folder / "second.zip"), first)

    def test_keeps_what_can_be_run(self):
        target = self.folder / "Quillmont.app.zip"
        pack(APPLICATION, target)
        with zipfile.ZipFile(target) as archive:
            modes = {info.filename: info.external_attr >> 16 & 0o777 for info in archive.infolist()}
        self.assertEqual(modes["Quillmont.app/Contents/MacOS/Quillmont"], 0o755)
        self.assertEqual(modes["Quillmont.app/Contents/Resources/uninstall.sh"], 0o755)
        self.assertEqual(modes["Quillmont.app/Contents/Info.plist"], 0o644)


if __name__ == "__main__":
    APPLICATION = pathlib.Path(sys.argv[1]).resolve()
    unittest.main(argv=sys.argv[:1])
