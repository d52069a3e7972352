"""nadir.Tracker against the lines and averaged maps of a sequence of nadir ground."""
import gc
import json
import unittest
from dataclasses import replace

import nadir
import scene
from nadir import _program

FRAMES, RATE = 14, 15


class Tracker(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        walk = scene.path("walk")
        _program.run("synth", walk, "--frames", FRAMES, "--fps", RATE, "--size", "160x120", "--height", 3500,
                     "--no-truth-pictures")
        _program.run("ground", walk, "--camera", f"{walk}/camera.toml", "--areas", f"{walk}/areas.toml", "-o",
                     scene.path("walked"), "--fps", RATE, "--average", 5, "--track-noise", 3.5)
        cls.pairs = [[nadir.read(f"{walk}/{side}/{frame:06}.png") for side in ("left", "right")]
                     for frame in range(FRAMES)]
        with open(scene.path("walked/frames.jsonl"), encoding="utf-8") as file:
            cls.lines = [json.loads(line) for line in file]
        cls.road = nadir.Road(nadir.Camera.read(f"{walk}/camera.toml"), areas=f"{walk}/areas.toml")

    def tracker(self):
        return nadir.Tracker(self.road, average=5, track_noise=3.5)

    def test_tracks_are_those_of_the_lines(self):
        tracker, followed = self.tracker(), 0
        for frame, (pair, line) in enumerate(zip(self.pairs, self.lines)):
            result = self.road.process(*pair)
            tracker.step(result, frame * 10**9 // RATE)
            self.assertEqual([area.highest_mm or None for area in result.areas], [a["highest_mm"] for a in line["areas"]])
            tracks = tracker.tracks()
            followed += sum(track is not None for track in tracks)
            for track, area in zip(tracks, line["areas"]):
                self.assertEqual(None if track is None else round(track.height_mm, 1), area["tracked_mm"])
                self.assertEqual(None if track is None else round(track.deviation_mm, 1), area["tracked_deviation_mm"])
            name = scene.path(f"walked/average/{line['name']}.png")
            if frame in (2, FRAMES - 1):
                self.assertEqual(tracker.average_raw().tobytes(), scene.read_png(name).tobytes())
        self.assertGreater(followed, FRAMES)

    def test_goes_on_from_what_was_saved(self):
        first, second = self.tracker(), self.tracker()
        results = [self.road.process(*pair) for pair in self.pairs[:6]]
        for frame, result in enumerate(results[:5]):
            first.step(result, frame * 10**8)
        second.load(first.save())
        first.step(results[5], 10**9)
        second.step(results[5], 10**9)
        self.assertEqual(first.tracks(), second.tracks())
        self.assertEqual(first.save(), second.save())

    def test_average_is_its_own(self):
        tracker = self.tracker()
        self.assertIsNone(tracker.average())
        tracker.step(self.road.process(*self.pairs[0]), 0)
        average = tracker.average()
        kept = average.tobytes()
        tracker.step(self.road.process(*self.pairs[9]), 1)
        del tracker
        gc.collect()
        self.assertEqual(average.tobytes(), kept)

    def test_refuses_what_is_of_another_kind(self):
        tracker, result = self.tracker(), self.road.process(*self.pairs[0])
        tracker.step(result, 5)
        saved = tracker.save()
        for arguments, kind, said in [((result, 4), nadir.Error, "time"), ((None, 6), TypeError, "NoneType"),
                                      ((result, 2**63), ValueError, "64 bits"), ((result, 1.5), TypeError, "float")]:
            with self.subTest(said), self.assertRaisesRegex(kind, said):
                tracker.step(*arguments)
        other = nadir.Road(scene.camera()).process(*scene.pair())
        with self.assertRaises(nadir.Error):
            tracker.step(other, 6)
        for state in (b"", saved[:-1], saved[:40] + b"\xff" + saved[41:]):
            with self.assertRaises(nadir.Error):
                tracker.load(state)
        self.assertEqual(tracker.save(), saved)
        with self.assertRaisesRegex(TypeError, "str"):
            tracker.load("saved")
        for numbers in ({"average": 0}, {"average": 2**32 + 5}, {"track_noise": float("nan")}):
            with self.assertRaises(nadir.Error):
                nadir.Tracker(self.road, **numbers)
        with self.assertRaisesRegex(TypeError, "nadir.Road"):
            nadir.Tracker(result)

    def test_without_areas(self):
        road = nadir.Road(replace(self.road.camera, areas=()), no_regions=True)
        tracker = nadir.Tracker(road)
        tracker.step(road.process(*self.pairs[0]), 0)
        self.assertEqual(tracker.tracks(), [])


if __name__ == "__main__":
    unittest.main()
