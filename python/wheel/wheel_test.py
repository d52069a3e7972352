#!/usr/bin/env python3
"""The wheel, made of a build, looked into, installed in a clean environment and used there: wheel_test.py BUILD"""
import glob
import os
import re
import subprocess
import sys
import tempfile
import unittest
import zipfile

import make

# What is there wherever a manylinux wheel may be installed; libgcc and libstdc++ are asked for by the XML parser.
EVERYWHERE = re.compile(r"lib(c|m|gcc_s|stdc\+\+|pthread)\.so\.\d|ld-linux.*\.so\.\d")
PIP, = glob.glob("/usr/share/python-wheels/pip-*.whl")  # which `python3 -m venv` would take seconds to unpack

EXAMPLE = os.path.join(make.ROOT, "examples", "regions.py")
# What a user does; then it prints the libraries and the program that were in use.
USE = """
import re, runpy, sys
from nadir import _places
runpy.run_path(sys.argv[1])
with open("/proc/self/maps") as maps:
    print(*sorted(set(re.findall(r"/\\S*libnadir\\S*", maps.read()))), _places.program_path(), sep="\\n")
"""


def read_elf(option, path):
    return subprocess.run(["readelf", "-W", option, path], check=True, stdout=subprocess.PIPE, text=True).stdout


class Wheel(unittest.TestCase):
    build = ""

    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.path = make.make(cls.build, os.path.join(cls.folder.name, "wheel"))
        cls.unpacked = os.path.join(cls.folder.name, "unpacked")
        with zipfile.ZipFile(cls.path) as wheel:
            wheel.extractall(cls.unpacked)
        cls.carried = sorted(glob.glob(os.path.join(cls.unpacked, "nadir/_platform/*")))

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def test_is_named_by_the_newest_symbol_that_it_needs(self):
        needed = {int(minor) for path in self.carried
                  for minor in re.findall(r"Name: GLIBC_2\.(\d+)", read_elf("--version-info", path))}
        self.assertRegex(os.path.basename(self.path), rf"^nadir-[\d.]+\w*-py3-none-manylinux_2_{max(needed)}_\w+\.whl$")

    def test_asks_for_nothing_that_machines_lack(self):
        names = [os.path.basename(path) for path in self.carried]
        self.assertEqual(names[:2] + names[3:], ["libnadir.so.0", "libnadirground.so.0", "nadir"])
        for path in self.carried:
            for library in re.findall(r"\(NEEDED\).*\[(.*)\]", read_elf("--dynamic", path)):
                self.assertTrue(library in names or EVERYWHERE.fullmatch(library), f"{path} needs {library}")

    def test_has_the_licence_of_everything_in_it(self):
        licences = {os.path.basename(path).split("-")[0].split(".")[0]
                    for path in glob.glob(os.path.join(self.unpacked, "*.dist-info/licenses/*"))}
        self.assertEqual(licences, {"LICENSE", "libcli11", "libjpeg62", "libpng", "libstb", "libstdc++", "libtinyxml2",
                                    "libtomlplusplus", "libyaml", "nlohmann", "zlib1g"})

    def test_is_the_same_whenever_it_is_made(self):
        again = make.make(self.build, os.path.join(self.folder.name, "again"))
        self.assertEqual(make.contents(again), make.contents(self.path))

    def test_works_in_a_clean_environment(self):
        """numpy, which no installer could fetch here, is the system's; everything else is the wheel's."""
        home = os.path.join(self.folder.name, "home")
        python = os.path.join(home, "bin", "python3")
        clean = {"HOME": self.folder.name, "PATH": "/usr/bin:/bin"}
        subprocess.run([sys.executable, "-m", "venv", "--without-pip", "--system-site-packages", home], check=True)
        subprocess.run([python, os.path.join(PIP, "pip"), "install", "--quiet", "--no-index", "--no-deps", self.path],
                       check=True, env=clean)
        ran = subprocess.run([python, "-c", USE, EXAMPLE], cwd=self.folder.name, env=clean, stdout=subprocess.PIPE, text=True,
                             check=True)
        installed, = glob.glob(os.path.join(home, "lib", "python3*", "site-packages", "nadir", "_platform"))
        *regions, library, road_library, program = ran.stdout.splitlines()
        self.assertEqual([library, road_library, program],
                         [os.path.join(installed, name) for name in ("libnadir.so.0", "libnadirground.so.0", "nadir")])
        self.assertEqual(len(regions), 6)
        for number, region in enumerate(regions, 1):
            self.assertRegex(region, rf"^Region\(label={number}, cells=\d+, highest_mm=\d+, ")


if __name__ == "__main__":
    Wheel.build = os.path.abspath(sys.argv.pop(1))
    unittest.main(verbosity=2)
