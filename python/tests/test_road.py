"""nadir.Road against the files of nadir ground, and what its arrays and threads may do."""
import copy
import ctypes
import gc
import json
import pickle
import threading
import unittest
from dataclasses import replace

import numpy as np

import nadir
import scene
from nadir import Area, _libraries, _program

AREAS = (Area("middle", pixels=((40, 30), (120, 30), (120, 100), (40, 100))),
         Area("far", ground_mm=((-900, -2600), (900, -2600), (900, -1500)), min_height_mm=50, max_height_mm=4000))
SETTINGS = [{}, {"for_": "people"}, {"check": "none", "fill_holes": 0.05, "min_points": 2, "percentile": 50.5},
            {"grid": "right", "min_height": 80, "max_step": 300, "min_area": 0.004, "dip": 20, "range": 61}]


def words(settings):
    return [f"--{name.rstrip('_').replace('_', '-')}={value}" for name, value in settings.items()]


def ground_files(left, right, camera, *arguments):
    """The folder into which the program writes what it makes of the same pair."""
    camera.write(scene.path("road.toml"), force=True)
    _program.run("ground", *scene.files(left, right, "road"), "--camera", scene.path("road.toml"), "-o", scene.path("out"),
                 "--write", "map,regions,disparity,npy,points", *arguments)
    return lambda name: scene.path(f"out/{name}")


class Road(unittest.TestCase):
    def setUp(self):
        self.left, self.right = scene.pair()
        self.camera = replace(scene.camera(), areas=AREAS)

    def assert_same(self, result, out):
        self.assertEqual(result.disparity.tobytes(), np.load(out("disparity.npy")).tobytes())
        self.assertEqual(result.elevation.tobytes(), np.load(out("elevation.npy")).tobytes())
        self.assertEqual(result.labels.tobytes(), scene.read_png(out("regions.png")).tobytes())
        with open(out("summary.json"), encoding="utf-8") as file:
            self.assert_told(result, json.load(file))

    def assert_told(self, result, summary):
        self.assertEqual([(r.label, r.cells, r.highest_mm, r.median_mm, r.at_map_edge, r.at_picture_edge)
                          for r in result.regions],
                         [(r["label"], r["cells"], r["highest_mm"], r["median_mm"], r["at_map_edge"], r["at_picture_edge"])
                          for r in summary["regions"]])
        self.assertEqual([(a.name, a.cells, a.seen_cells, a.covered_cells, a.highest_mm or None, a.median_mm or None,
                           [(s.label, s.cells, s.highest_mm, s.median_mm) for s in a.regions]) for a in result.areas],
                         [(a["name"], a["cells"], a["seen_cells"], a["covered_cells"], a["highest_mm"], a["median_mm"],
                           [(s["label"], s["cells"], s["highest_mm"], s["median_mm"]) for s in a["regions"]])
                          for a in summary["areas"]])
        self.assertEqual([(w.id, w.sentence) for w in result.warnings],
                         [(w["id"], w["sentence"]) for w in summary["warnings"]])
        self.assertEqual(round(result.trust.matched, 3), summary["trust"]["matched_share"])
        self.assertEqual(result.pixels.value, summary["disparity"]["with_value"])
        self.assertEqual(len(result.points()), summary["points"])
        self.assertEqual(int(result.point_counts.sum()), summary["map"]["points_inside"])
        plane = result.ground_plane()
        self.assertAlmostEqual(plane.height_mm, summary["ground_plane"]["height_mm"], 3)

    def test_has_the_bits_of_the_program(self):
        for settings in SETTINGS:
            with self.subTest(settings):
                out = ground_files(self.left, self.right, self.camera, *words(settings))
                self.assert_same(nadir.Road(self.camera, **settings).process(self.left, self.right), out)

    def test_raw_numbers_are_those_of_the_pictures(self):
        out = ground_files(self.left, self.right, self.camera)
        result = nadir.Road(self.camera).process(self.left, self.right)
        self.assertEqual(result.disparity_raw.tobytes(), scene.read_png(out("disparity.png")).tobytes())
        self.assertEqual(result.elevation_raw.tobytes(), scene.read_png(out("elevation.png")).tobytes())

    def test_finds_something(self):  # or the comparison above says little
        result = nadir.Road(self.camera).process(self.left, self.right)
        self.assertGreater(len(result.regions), 2)
        self.assertGreater(result.areas[0].covered_cells, 0)
        self.assertEqual(int(result.labels.max()), len(result.regions))

    def test_warnings_are_the_programs(self):
        out = ground_files(self.right, self.left, self.camera)
        result = nadir.Road(self.camera).process(self.right, self.left)
        self.assertEqual([warning.id for warning in result.warnings], ["left-and-right-swapped"])
        with open(out("summary.json"), encoding="utf-8") as file:
            self.assertEqual(result.warnings[0].sentence, json.load(file)["warnings"][0]["sentence"])

    def test_given_disparities_and_masks(self):
        road = nadir.Road(self.camera, check="none")
        matched = road.process(self.left, self.right)
        given = road.process(disparity=matched.disparity)
        self.assertEqual(given.elevation_raw.tobytes(), matched.elevation_raw.tobytes())
        self.assertIsNone(given.disparity_raw)
        self.assertEqual(given.disparity.tobytes(), matched.disparity.tobytes())
        wide = np.full((120, 200), np.nan, np.float32)
        wide[:, 10:170] = matched.disparity
        self.assertEqual(road.process(disparity=wide[:, 10:170]).elevation_raw.tobytes(), matched.elevation_raw.tobytes())
        self.assertEqual(len(given.points()), len(matched.points()))
        hidden = road.process(self.left, self.right, mask=np.ones((120, 160), bool))
        self.assertEqual(hidden.pixels.masked + hidden.pixels.border, 120 * 160)

    def test_areas_may_come_from_a_file_or_a_list(self):
        with open(scene.path("areas.toml"), "w", encoding="utf-8") as file:
            file.write("\n".join(area.toml() for area in AREAS))
        plain = replace(self.camera, areas=())
        expected = nadir.Road(self.camera).process(self.left, self.right).areas
        for areas in (AREAS, list(AREAS), scene.path("areas.toml")):
            self.assertEqual(nadir.Road(plain, areas=areas).process(self.left, self.right).areas, expected)
        with self.assertRaisesRegex(TypeError, "areas holds str"):
            nadir.Road(plain, areas=["door"])

    def test_without_regions(self):
        road = nadir.Road(replace(self.camera, map_width_cells=200, map_height_cells=150, areas=()), no_regions=True)
        result = road.process(self.left, self.right)
        self.assertEqual((result.labels, result.regions, result.areas), (None, [], []))
        self.assertEqual(result.elevation.shape, (150, 200))

    def test_arrays_keep_their_memory(self):
        result = nadir.Road(self.camera).process(self.left, self.right)
        views = [result.elevation_raw, result.labels[3:, ::2], result.disparity_raw.T, result.point_counts]
        kept = [view.copy() for view in views]
        del result
        gc.collect()
        for _ in range(3):
            nadir.Road(self.camera).process(self.right, self.left)
        for view, copied in zip(views, kept):
            np.testing.assert_array_equal(view, copied)
            with self.assertRaises(ValueError):
                view[...] = 0
            with self.assertRaises(ValueError):
                view.flags.writeable = True

    def test_results_outlive_the_next_frame(self):
        road = nadir.Road(self.camera)
        first = road.process(self.left, self.right)
        kept = first.elevation_raw.copy()
        road.process(self.right, self.left)
        np.testing.assert_array_equal(first.elevation_raw, kept)

    def test_one_road_in_many_threads_waits(self):
        road, found = nadir.Road(self.camera), []
        expected = road.process(self.left, self.right).elevation.tobytes()

        def work():
            for _ in range(3):
                result = road.process(self.left, self.right)
                found.append((result.elevation.tobytes(), result.ground_plane()))

        threads = [threading.Thread(target=work) for _ in range(6)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(len(found), 18)
        self.assertEqual(set(found), {(expected, found[0][1])})

    def test_the_interpreter_is_free_meanwhile(self):
        held = ctypes.PyDLL(None).abs._flags_ & ~ctypes.CDLL(None).abs._flags_  # what ctypes calls FUNCFLAG_PYTHONAPI
        self.assertNotEqual(held, 0)
        for name in _libraries.CALLS:
            self.assertFalse(getattr(_libraries.ground(), name)._flags_ & held, name)

    def test_cannot_be_copied(self):
        road = nadir.Road(self.camera)
        result = road.process(self.left, self.right)
        for what in (road, result):
            for copying in (copy.deepcopy, pickle.dumps):
                with self.assertRaises(TypeError):
                    copying(what)
        self.assertEqual(pickle.loads(pickle.dumps(result.elevation)).tobytes(), result.elevation.tobytes())
        self.assertEqual(pickle.loads(pickle.dumps(result.labels)).tobytes(), result.labels.tobytes())
        self.assertEqual(pickle.loads(pickle.dumps(result.regions)), result.regions)

    def test_refuses_what_is_of_another_kind(self):
        road = nadir.Road(self.camera)
        for arguments, named, kind, said in [
                ((), {}, TypeError, "left is an array of object"),
                ((self.left,), {}, TypeError, "right is an array of object"),
                ((self.left[:100], self.right[:100]), {}, ValueError, r"\(100, 160\), but must have \(120, 160\)"),
                ((), {"disparity": self.left}, TypeError, "float32"),
                ((), {"disparity": np.zeros((9, 9), np.float32)}, ValueError, r"\(9, 9\)"),
                ((), {"disparity": np.zeros((120, 160), np.float64)}, TypeError, "float64, but must be of float32"),
                ((self.left, self.right), {"mask": np.zeros((1, 1), np.uint8)}, ValueError, r"\(1, 1\)")]:
            with self.subTest(said), self.assertRaisesRegex(kind, said):
                road.process(*arguments, **named)
        for settings, kind, said in [({"tilt": 3}, TypeError, "no setting tilt"), ({"output": "/tmp/x"}, TypeError, "output"),
                                     ({"min_height": float("nan")}, nadir.Error, "min-height"),
                                     ({"min_height": float("inf")}, nadir.Error, "min-height"),
                                     ({"min_points": 2**32 + 1}, nadir.Error, "min-points"),
                                     ({"fill_holes": -1}, nadir.Error, "fill-holes"), ({"dip": b"x"}, TypeError, "bytes"),
                                     ({"for_": "cats"}, nadir.Error, "--for"), ({"areas": 3}, TypeError, "int"),
                                     ({"areas": scene.path("none.toml")}, nadir.Error, "none.toml")]:
            with self.subTest(settings), self.assertRaisesRegex(kind, said):
                nadir.Road(self.camera, **settings)
        with self.assertRaisesRegex(TypeError, "camera is str"):
            nadir.Road("camera.toml")
        off = replace(self.camera, areas=(Area("sky", ground_mm=((9000, 9000), (9100, 9000), (9100, 9100))),))
        with self.assertRaisesRegex(nadir.Error, "sky"):
            nadir.Road(off)


if __name__ == "__main__":
    unittest.main()
