"""nadir.Rectifier, nadir.check and nadir.level against what the program makes of the same files."""
import json
import subprocess
import unittest
from dataclasses import replace

import numpy as np

import nadir
import scene
from nadir import _places, _program

LENSES = {side: {"model": "plumb-bob", "focal_x_px": 125.0, "focal_y_px": 125.5, "principal_x_px": 79.0,
                 "principal_y_px": 60.0, "k1": bend} for side, bend in (("left_lens", -0.2), ("right_lens", -0.1))}
POSE = {"rotation": [1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0], "translation_mm": [-130.0, 0.0, 0.0]}


def with_lenses():
    return replace(scene.camera(), lenses={**LENSES, "pose": POSE})


class Rectifier(unittest.TestCase):
    def rectified_files(self, left, right, name):
        with_lenses().write(scene.path("lenses.toml"), force=True)
        _program.run("rectify", *scene.files(left, right, name), "--calibration", scene.path("lenses.toml"), "--height-mm",
                     3000, "--tilt-deg", -30, "-o", scene.path(name))
        return [scene.read_png(scene.path(f"{name}/{side}.png")) for side in ("left", "right")]

    def test_has_the_bits_of_the_program(self):
        rectifier = nadir.Rectifier(with_lenses())
        pair = scene.pair()
        for name, (left, right) in {"deep": pair, "shallow": [(one // 16).astype(np.uint8) for one in pair]}.items():
            with self.subTest(name):
                expected = self.rectified_files(left, right, name)
                for side, wanted in zip(rectifier.process(left, right), expected):
                    self.assertEqual(side.dtype, left.dtype)
                    self.assertEqual(side.tobytes(), wanted.tobytes())

    def test_a_calibration_may_be_a_file(self):
        with_lenses().write(scene.path("own.toml"), force=True)
        ours = nadir.Rectifier(scene.camera(), scene.path("own.toml")).process(*scene.pair())
        for first, second in zip(ours, nadir.Rectifier(with_lenses()).process(*scene.pair())):
            self.assertEqual(first.tobytes(), second.tobytes())

    def test_a_road_of_a_camera_with_lenses_rectifies(self):
        left, right = scene.pair()
        with_lenses().write(scene.path("lenses.toml"), force=True)
        _program.run("ground", *scene.files(left, right, "lens"), "--camera", scene.path("lenses.toml"), "-o",
                     scene.path("lens_out"), "--write", "npy")
        result = nadir.Road(with_lenses()).process(left, right)
        self.assertEqual(result.elevation.tobytes(), np.load(scene.path("lens_out/elevation.npy")).tobytes())
        self.assertEqual(result.disparity.tobytes(), np.load(scene.path("lens_out/disparity.npy")).tobytes())

    def test_refuses_what_is_of_another_kind(self):
        rectifier, (left, right) = nadir.Rectifier(with_lenses()), scene.pair()
        with self.assertRaisesRegex(ValueError, r"\(119, 160\), but must have \(120, 160\)"):
            rectifier.process(left, right[1:])
        with self.assertRaisesRegex(TypeError, "float64"):
            rectifier.process(left * 1.0, right)
        with self.assertRaisesRegex(ValueError, "no lenses"):
            nadir.Rectifier(scene.camera())
        with self.assertRaisesRegex(TypeError, "str"):
            nadir.Rectifier("camera.toml")
        broken = {**LENSES, "pose": {**POSE, "rotation": [0.0] * 9}}
        with self.assertRaisesRegex(nadir.Error, "rotation"):
            nadir.Rectifier(replace(scene.camera(), lenses=broken))


class Check(unittest.TestCase):
    def told(self, left, right, *words):
        ran = subprocess.run([_places.program_path(), "check", *scene.files(left, right, "check"), "--json", *words],
                             capture_output=True, check=False, encoding="utf-8")
        self.assertIn(ran.returncode, (0, 3), ran.stderr)
        return json.loads(ran.stdout)

    def assert_same(self, checkup, told):
        self.assertEqual(checkup.verdict, told["verdict"])
        for ours, theirs in [(checkup.row_offset_px, told["rows"]["offset_px"]), (checkup.turn_deg, told["rows"]["turn_deg"]),
                             (checkup.mean_left, told["left"]["mean"]), (checkup.blur_right_px, told["right"]["blur_px"]),
                             (checkup.largest_disparity_px, told["disparities"]["largest_px"])]:
            self.assertEqual(None if np.isnan(ours) else round(ours, 3), theirs)

    def test_has_the_numbers_of_the_program(self):
        left, right = scene.pair()
        for pair in ((left, right), (right, left), (left, left), (left[:-3], right[3:])):
            self.assert_same(nadir.check(*pair), self.told(*pair))
        shallow = [(one // 16).astype(np.uint8) for one in (left, right)]
        self.assert_same(nadir.check(*shallow), self.told(*shallow))

    def test_another_size_is_a_verdict(self):
        left, right = scene.pair()
        self.assertEqual(nadir.check(left, right[2:]).verdict, "size")
        self.assertEqual(nadir.check(left, right, camera=replace(scene.camera(), width_px=320)).verdict, "size")

    def test_offsets_are_their_own(self):
        offsets = nadir.check(*scene.pair()).offsets
        kept = offsets.copy()
        nadir.check(*scene.pair()[::-1])
        self.assertGreater(len(offsets), 50)
        np.testing.assert_array_equal(offsets, kept)

    def test_refuses_what_is_no_pair(self):
        left, right = scene.pair()
        for arguments, named, kind in [((left, right.astype(np.uint8)), {}, TypeError), ((left[:20], right[:20]), {}, ValueError),
                                       ((left, None), {}, TypeError), ((left, right), {"range": 2**32 + 61}, ValueError),
                                       ((left, right), {"range": "61"}, ValueError)]:
            with self.subTest(named), self.assertRaises(kind):
                nadir.check(*arguments, **named)


class Level(unittest.TestCase):
    def setUp(self):
        self.pair, self.camera_file = scene.pair(), scene.camera_file()
        self.files = scene.path("scene/left.png"), scene.path("scene/right.png")

    def test_has_the_numbers_of_the_program(self):
        told = _program.json("level", *self.files, *self.files, "--camera", self.camera_file)
        camera = replace(nadir.Camera.read(self.camera_file), height_mm=None, tilt_deg=None)
        found = nadir.level(camera, [self.pair, self.pair])
        for name in ("height_mm", "tilt_deg", "pan_deg", "height_deviation_mm", "axis_below_horizon_deg", "roll_deg"):
            self.assertEqual(round(getattr(found, name), 4), told[name])
        self.assertEqual((found.pairs, found.pairs_without_floor, found.range),
                         (told["pairs"], told["pairs_without_floor"], told["range_px"]))
        self.assertEqual(found.taken.shape, (120, 160))
        self.assertGreater((found.taken == 2).mean(), 0.5)

    def test_no_floor_is_an_error(self):
        noise = np.random.default_rng(1).integers(0, 4000, (2, 120, 160), dtype=np.uint16)
        with self.assertRaisesRegex(nadir.Error, "no floor is seen") as raised:
            nadir.level(nadir.Camera.read(self.camera_file), [tuple(noise)])
        self.assertEqual(raised.exception.status, 13)

    def test_refuses_what_is_of_another_kind(self):
        camera = nadir.Camera.read(self.camera_file)
        with self.assertRaisesRegex(ValueError, "empty"):
            nadir.level(camera, [])
        with self.assertRaisesRegex(ValueError, "range is 60"):
            nadir.level(camera, [self.pair], range=60)
        with self.assertRaisesRegex(ValueError, "shape"):
            nadir.level(camera, [[picture[1:] for picture in self.pair]])


if __name__ == "__main__":
    unittest.main()
