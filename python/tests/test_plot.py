"""What is drawn lies where it belongs and says its units; and the walk of examples/walk.py, which draws all of it."""
import json
import os
import subprocess
import sys
import unittest
from unittest import mock

import matplotlib
import numpy as np

import nadir
import nadir.plot
import scene

matplotlib.use("Agg")
ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")


class Plots(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        areas = [nadir.Area("yard", ground_mm=((-500, -2500), (700, -2500), (700, -900))),
                 nadir.Area("seen", pixels=((40, 30), (120, 30), (120, 100)))]
        cls.result = nadir.Road(scene.camera(), areas=areas).process(*scene.pair())

    def labels(self, axes):
        return axes.get_xlabel(), axes.get_ylabel(), axes.figure.axes[1].get_ylabel()

    def test_disparities(self):
        axes = nadir.plot.disparity(self.result.disparity, limits=(5, 20))
        self.assertEqual(self.labels(axes), ("column, pixels", "row, pixels", "disparity, pixels"))
        self.assertEqual(axes.images[0].get_clim(), (5, 20))
        nadir.plot.disparity(np.full((8, 8), np.nan, np.float32)).figure.canvas.draw()

    def test_maps_lie_in_the_world(self):
        axes = nadir.plot.elevation(self.result)
        self.assertEqual(self.labels(axes), ("world x, mm", "world y, mm (far on top)", "height above the ground, mm"))
        with open(scene.path("scene/scene.json"), encoding="utf-8") as file:
            told = json.load(file)
        left, right, bottom, top = axes.images[0].get_extent()
        self.assertAlmostEqual(left, told["map_corner_x_mm"], places=2)
        self.assertAlmostEqual(top, told["map_corner_y_mm"], places=2)
        rows, columns = self.result.elevation.shape
        self.assertEqual((right - left, bottom - top), (columns * 40, rows * 40), "cells of 40 mm")

    def test_regions_and_areas_lie_on_the_map(self):
        axes = nadir.plot.regions(self.result)
        axes.figure.canvas.draw()
        self.assertGreater(len(self.result.regions), 1)
        notes = {text.get_text(): text.xy for text in axes.texts}
        for region in self.result.regions:
            self.assertEqual(notes[f"{region.label}\n{region.highest_mm} mm"], (region.centre_x_mm, region.centre_y_mm))
        yard, seen = [line.get_xydata() for line in axes.lines]
        self.assertEqual(yard.tolist(), [[-500, -2500], [700, -2500], [700, -900], [-500, -2500]])
        self.assertEqual(len(seen), 4)
        self.assertIn("seen", notes)

    def test_without_matplotlib_it_says_what_is_missing(self):
        with mock.patch.dict(sys.modules, {"matplotlib.pyplot": None}):
            with self.assertRaisesRegex(ImportError, "apt-get install python3-matplotlib"):
                nadir.plot.elevation(self.result)


class Walk(unittest.TestCase):
    def test_it_arrives(self):
        out = scene.path("walk")
        ran = subprocess.run([sys.executable, os.path.join(ROOT, "examples", "walk.py"), out], stdout=subprocess.PIPE,
                             text=True, check=True, env={**os.environ, "MPLBACKEND": "Agg"})
        self.assertRegex(ran.stdout, r"pictures \(240, 320\) uint16\n9\d% of the pixels .* 1\.\d% of")
        self.assertRegex(ran.stdout, r"region 6: \d+ mm high around")
        heights = eval(ran.stdout.rsplit("last heights:")[1])  # pylint: disable=eval-used
        for walker, low, high in (("walker 1", 1650, 1850), ("walker 2", 1600, 1800), ("walker 3", 1050, 1250)):
            self.assertTrue(low < heights[walker] < high, heights)
        for name in ("disparity.png", "regions.png", "heights.png"):
            self.assertGreater(os.path.getsize(os.path.join(out, name)), 20_000)


if __name__ == "__main__":
    unittest.main()
