"""The program as the package runs it."""
import os
import subprocess
import sys
import tempfile
import unittest

import nadir
from nadir import _program


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


if __name__ == "__main__":
    unittest.main()
