"""What the program renders, judges and plans, as dataclasses with its numbers."""
import json
import unittest
from dataclasses import asdict

import numpy as np

import nadir
import scene
from nadir import _program


class Synth(unittest.TestCase):
    def test_a_pair_is_the_programs(self):
        made = nadir.synth(scene.path("people"), scene="people", size=(80, 64), seed=7, tilt=-20, noise=0)
        _program.run("synth", scene.path("same"), "--scene=people", "--size=80x64", "--seed=7", "--tilt=-20", "--noise=0")
        self.assertEqual((made.frames, made.scene, made.objects, made.camera.tilt_deg), (0, "people", 6, -20))
        for name in ("left", "right"):
            self.assertEqual(made.picture(name).tobytes(), scene.read_png(scene.path(f"same/{name}.png")).tobytes())
        self.assertEqual(made.left.tobytes(), made.picture("left").tobytes())
        self.assertEqual(made.picture("regions_gt").dtype, np.uint16)

    def test_refusals_are_the_programs(self):
        with self.assertRaisesRegex(nadir.ProgramError, "--scene: nowhere"):
            nadir.synth(scene.path("refused"), scene="nowhere")
        with self.assertRaisesRegex(TypeError, "tilt is list"):
            nadir.synth(scene.path("refused"), tilt=[1])


class Pictures(unittest.TestCase):
    def test_each_kind_is_what_it_holds(self):
        left, _ = scene.pair()
        self.assertEqual(nadir.read(scene.path("scene/left.png")).tobytes(), left.tobytes())
        stored = scene.read_png(scene.path("scene/disparity_gt.png"))
        truth = nadir.read(scene.path("scene/disparity_gt.png"))
        self.assertEqual(truth[stored > 0].tolist(), (stored[stored > 0] / np.float32(256)).tolist())
        self.assertTrue(np.isnan(truth[stored == 0]).all())
        eight = scene.write_pgm(scene.path("eight.pgm"), np.array([[0, 1], [2, 255]], np.uint8))
        self.assertEqual((nadir.read(eight).tolist(), nadir.read(eight).dtype), ([[1, 1], [2, 255]], np.uint8))
        coarse = scene.write_pgm(scene.path("coarse.pgm"), np.array([[0, 64]], np.uint16))
        self.assertEqual(nadir.read(coarse, scale=64)[0, 1], 1)

    def test_what_is_no_picture_is_refused(self):
        with self.assertRaisesRegex(nadir.ProgramError, "nowhere.png"):
            nadir.read(scene.path("nowhere.png"))
        with self.assertRaisesRegex(TypeError, "the path is int"):
            nadir.read(3)


class Evaluate(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        left, right = scene.pair()
        cls.result = nadir.Road(scene.camera()).process(left, right)
        cls.ground = scene.path("judged")
        _program.run("ground", *scene.files(left, right, "judged"), "--camera", scene.camera_file(), "-o", cls.ground,
                     "--write", "map,regions,disparity")

    def told(self, picture, truth, *options):
        return _program.json("evaluate", scene.path(picture), scene.path(truth), *options)

    def test_arrays_are_judged_as_files(self):
        told = self.told("judged/disparity.png", "scene/disparity_gt.png")
        truth = scene.path("scene/disparity_gt.png")
        for picture in (self.result.disparity, scene.path("judged/disparity.png")):
            errors = nadir.evaluate(picture, truth)
            self.assertEqual(errors, nadir.evaluate(picture, nadir.read(truth)))
            self.assertEqual(errors.bad, {0.5: told["bad_0.5"], 1: told["bad_1"], 2: told["bad_2"]})
            self.assertEqual((errors.pixels, errors.density, errors.rms), (told["pixels"], told["density"], told["rms"]))

    def test_maps_and_regions(self):
        heights = nadir.evaluate(scene.path("judged/elevation.png"), scene.path("scene/elevation_gt.png"))
        self.assertEqual(asdict(heights), self.told("judged/elevation.png", "scene/elevation_gt.png"))
        regions = nadir.evaluate(self.ground, scene.path("scene"))
        self.assertIsInstance(regions, nadir.RegionErrors)
        self.assertEqual(json.loads(json.dumps(asdict(regions))), self.told("judged", "scene"))

    def test_sequences(self):
        made = nadir.synth(scene.path("walk"), frames=3, size=(80, 64), no_truth_pictures=True)
        _program.run("ground", made.folder, "--camera", made.path("camera.toml"), "--areas", made.path("areas.toml"), "-o",
                     scene.path("walked"), "--quiet")
        areas = nadir.evaluate(scene.path("walked"), made.folder)
        self.assertEqual([asdict(area) for area in areas], self.told("walked", "walk")["areas"])
        self.assertEqual((made.frames, made.picture("left", 2).shape, made.objects), (3, (64, 80), None))

    def test_warnings_are_told(self):
        with self.assertWarnsRegex(nadir.ResultWarning, "nadir:grid"):
            nadir.evaluate(scene.path("judged/disparity.png"), scene.path("scene/disparity_gt.png"), visible="right")

    def test_hostile_arguments(self):
        truth = np.full((64, 80), 20, np.float32)
        for wrong, fault in ((truth.astype(int), TypeError), (truth[0], ValueError), (truth - 30, ValueError), (truth * 20, ValueError),
                             (truth * np.inf, ValueError)):
            with self.assertRaises(fault):
                nadir.evaluate(wrong, truth)
        with self.assertRaisesRegex(ValueError, "scale is for files"):
            nadir.evaluate(truth, truth, scale=16)
        with self.assertRaises(nadir.ProgramError):
            nadir.evaluate(truth, truth[:, :70])


class Plan(unittest.TestCase):
    def test_numbers_are_the_programs(self):
        told = _program.json("plan", "--fov=65", "--baseline=120", "--height=3000", "--tilt=-30", "--tallest=1500")
        planned = nadir.plan(fov=65, baseline=120, height=3000, tilt=-30, tallest=1500)
        for name, number in told.items():
            if name not in ("schema", "camera", "ground", "places"):
                self.assertEqual(getattr(planned, name), number)
        self.assertEqual([json.loads(json.dumps(asdict(place))) for place in planned.places], told["places"])
        self.assertEqual(planned.area_m2, told["ground"]["area_m2"])
        self.assertEqual(planned.outline_mm[3], tuple(told["ground"]["outline_mm"][3]))

    def test_a_proposal_is_a_camera(self):
        planned = nadir.plan(see=(3000, 2000), height=2600, output=scene.path("plan"))
        written = nadir.Camera.read(scene.path("plan/camera.toml"))
        self.assertAlmostEqual(planned.camera.focal_px, written.focal_px, places=3)
        self.assertEqual(planned.camera.map_width_cells, written.map_width_cells)
        self.assertEqual(nadir.plan(camera=scene.path("plan/camera.toml")).range_px, planned.range_px)

    def test_refusals_are_the_programs(self):
        with self.assertRaisesRegex(nadir.ProgramError, "--see"):
            nadir.plan(see="wide", height=2600)


if __name__ == "__main__":
    unittest.main()
