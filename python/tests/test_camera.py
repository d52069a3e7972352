"""Camera files: read, written, imported, and areas and lenses that stay in them."""
import os
import unittest
from dataclasses import FrozenInstanceError, replace

import numpy as np

import nadir
import scene
from nadir import Area, Camera

CALIBRATION = ("cam0=[600 0 320.5; 0 600 240.25; 0 0 1]\ncam1=[600 0 310.5; 0 600 240.25; 0 0 1]\ndoffs=-10\n"
               "baseline=120\nwidth=640\nheight=480\n")
OPTICS = dict(baseline_mm=120, focal_px=600.1, principal_x_px=0.1 + 0.2, principal_y_px=240, width_px=640, height_px=480)
LENSES = {"left_lens": {"model": "plumb-bob", "focal_x_px": 600.0, "focal_y_px": 600.0, "principal_x_px": 320.0,
                        "principal_y_px": 240.0, "k1": -0.2},
          "right_lens": {"model": "fisheye", "focal_x_px": 610.0, "focal_y_px": 610.0, "principal_x_px": 320.0,
                         "principal_y_px": 240.0, "k1": 0.01},
          "pose": {"rotation": [1.0, 0, 0, 0, 1, 0, 0, 0, 1], "translation_mm": [-120.0, 0, 0]}}
AREAS = (Area('the "door"\\\n\u00fc\U0001f6aa', pixels=((220, 90), (410, 90), (450, 300))),
         Area("table", ground_mm=((-500, -1200), (500, -1200), (500, -400)), min_height_mm=300, max_height_mm=2200))


class CameraFiles(unittest.TestCase):
    def written(self, camera):
        path = scene.path("written.toml")
        camera.write(path, force=True)
        return Camera.read(path)

    def test_numbers_come_back_to_the_bit(self):
        camera = Camera(**OPTICS, height_mm=1234.5678901234567, tilt_deg=-1 / 3, pan_deg=1e-7, map_offset_y_mm=-300.25)
        self.assertEqual(self.written(camera), camera)

    def test_areas_and_lenses_stay(self):
        camera = Camera(**OPTICS, height_mm=2000, tilt_deg=0, areas=AREAS, lenses=LENSES)
        self.assertEqual(self.written(camera), camera)

    def test_a_mount_may_be_missing(self):
        camera = Camera(**OPTICS)
        self.assertEqual(self.written(camera), camera)
        with self.assertRaisesRegex(nadir.Error, "height_mm"):
            nadir.Road(camera)

    def test_numpys_numbers_are_numbers(self):
        numbers = {name: np.float64(value) if isinstance(value, float) else np.int64(value) for name, value in OPTICS.items()}
        self.assertEqual(self.written(Camera(**numbers)), Camera(**OPTICS))

    def test_imported_has_the_programs_numbers(self):
        with open(scene.path("calib.txt"), "w", encoding="utf-8") as file:
            file.write(CALIBRATION)
        camera = Camera.imported(scene.path("calib.txt"), height_mm=2600, tilt_deg=-30, cell_mm=25, map_offset_x_mm=0.5)
        self.assertEqual(camera, Camera(120, 600, 320.5, 240.25, 640, 480, 2600, -30, 0, -10, cell_mm=25, map_offset_x_mm=0.5))

    def test_a_file_that_was_edited_is_kept(self):
        path = scene.path("edited.toml")
        Camera(**OPTICS).write(path)
        with open(path, "a", encoding="utf-8") as file:
            file.write("# mine\n")
        with self.assertRaisesRegex(nadir.Error, "force"):
            Camera(**OPTICS).write(path)

    def test_mistakes_are_the_programs_sentences(self):
        with self.assertRaisesRegex(nadir.Error, "nowhere.toml"):
            Camera.read(scene.path("nowhere.toml"))
        with self.assertRaisesRegex(nadir.Error, "focal.px"):
            Camera(**{**OPTICS, "focal_px": float("nan")}).write(scene.path("bad.toml"))
        with self.assertRaisesRegex(nadir.Error, "width-px"):
            Camera(**{**OPTICS, "width_px": 2**40}).write(scene.path("bad.toml"))
        with self.assertRaisesRegex(nadir.Error, "--strange"):
            Camera.read("--strange")
        self.assertFalse(os.path.exists(scene.path("bad.toml")))

    def test_wrong_types_are_named(self):
        with self.assertRaisesRegex(TypeError, "the path is int"):
            Camera.read(3)
        with self.assertRaisesRegex(TypeError, "no number heigth_mm"):
            Camera.imported(heigth_mm=3)
        with self.assertRaisesRegex(TypeError, "focal_px is list"):
            Camera(**{**OPTICS, "focal_px": [1]}).write(scene.path("bad.toml"))
        with self.assertRaisesRegex(ValueError, "one of both"):
            Area("none")
        with self.assertRaises(FrozenInstanceError):
            Camera(**OPTICS).focal_px = 3

    def test_an_areas_mistake_is_the_programs(self):
        with self.assertRaisesRegex(nadir.Error, "corners"):
            nadir.Road(replace(scene.camera(), areas=(Area("line", pixels=((1, 1), (2, 2))),)))


if __name__ == "__main__":
    unittest.main()
