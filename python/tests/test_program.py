"""The program as the package runs it."""
import os
import subprocess
import sys
import tempfile
import unittest
from unittest import mock

import nadir
from nadir import _libraries, _places, _program


class Program(unittest.TestCase):
    def test_says_its_version(self):
        self.assertRegex(_program.run("--version"), r"^nadir \d+\.\d+\.\d+|^\d+\.\d+\.\d+")

    def test_runs_as_a_module(self):
        ran = subprocess.run([sys.executable, "-m", "nadir", "disparity", "--no-such-option"], stderr=subprocess.PIPE, text=True,
                             check=False)
        self.assertEqual((ran.returncode, ran.stderr.split(":")[0]), (2, "nadir"))

    def test_raises_its_own_sentence(self):
        with tempfile.TemporaryDirectory() as folder, self.assertRaisesRegex(nadir.Error, "nowhere.png") as raised:
            _program.run("disparity", os.path.join(folder, "nowhere.png"), os.path.join(folder, "nowhere.png"),
                         "-o", os.path.join(folder, "d.png"))
        self.assertEqual(raised.exception.status, 1)

    def test_arguments_are_words_that_keep_every_bit(self):
        self.assertEqual(_program.words_of(0.1), "0.1")
        self.assertEqual(_program.words_of(7), "7")


class Places(unittest.TestCase):
    def test_package_then_build_then_system(self):
        with tempfile.TemporaryDirectory() as folder, mock.patch.object(_places, "PLATFORM", os.path.join(folder, "package")):
            built = os.path.join(folder, "build", "tools", "nadir")
            carried = os.path.join(folder, "package", "nadir")
            with mock.patch.dict(os.environ, {"NADIR_PYTHON_BUILD": os.path.join(folder, "build"), "PATH": folder}):
                with self.assertRaisesRegex(nadir.Error, "neither in the package"):
                    _places.program_path()
                for path in (built, carried):
                    os.makedirs(os.path.dirname(path))
                    with open(path, "w", encoding="ascii"):
                        pass
                    self.assertEqual(_places.program_path(), path)
                self.assertEqual(_places.library_path("nadirground"), "libnadirground.so.0")

    def test_a_library_that_is_nowhere_is_named(self):
        with mock.patch.dict(_places.LIBRARIES, {"nadir": "libnadir-nowhere.so"}), \
                mock.patch.dict(_places.BUILT, {"libnadir-nowhere.so": ""}), \
                self.assertRaisesRegex(nadir.Error, "libnadir cannot be loaded: libnadir-nowhere.so") as raised:
            _libraries.loaded("nadir")
        self.assertEqual(raised.exception.status, 0)


if __name__ == "__main__":
    unittest.main()
