"""What nobody should pass, and ten thousand calls: exceptions instead of crashes, references and memory as before."""
import ctypes
import gc
import os
import sys
import unittest
import warnings
from dataclasses import replace

import numpy as np

import nadir
import scene

CALLS = 10000
TYPES = ("u1", "<u2", ">u2", "i1", "i2", "u4", "i8", "f2", "f4", "f8", "c16", "?", "O", "S3", "U2", "M8[s]", "V5")
REFUSALS = (TypeError, ValueError, nadir.Error)


def resident_bytes():
    with open("/proc/self/statm", encoding="ascii") as file:
        return int(file.read().split()[1]) * 4096


def odd_array(random):
    """An array of any type, shape and strides, over memory of its own."""
    if random.random() < 0.5:  # most others would be refused for the first thing that is odd
        array = random.integers(0, 200, (random.choice([12, 16, 70]), 16), dtype=random.choice(["u1", "u2"]))
        return array[:, ::-1] if random.random() < 0.2 else array.T if random.random() < 0.1 else array
    kind = np.dtype(str(random.choice(TYPES)))
    shape = tuple(random.choice([0, 1, 4, 5, 12, 16, 17, 70], size=random.integers(0, 4)))
    array = np.zeros(shape, kind)
    if random.random() < 0.5 and kind.kind in "uif":
        array[...] = random.integers(0, 100, shape)
    for change in random.choice(5, size=2):
        if change == 0 and array.ndim:
            array = array[tuple(slice(None, None, int(random.choice([-2, -1, 1, 2, 3]))) for _ in array.shape)]
        elif change == 1:
            array = array.T
        elif change == 2 and array.ndim == 2 and array.size:
            array = np.broadcast_to(array[:1], (12, array.shape[1]))
        elif change == 3 and array.ndim == 2 and array.size:
            array = np.lib.stride_tricks.as_strided(array, (array.shape[0], 5), (array.strides[0], 0))
        elif change == 4:
            array.flags.writeable = False
    return array


def odd_argument(random):
    others = [None, 3, "left.png", b"12", [], [[1, 2], [3, 4]], {}, object(), float("nan"), np.uint8(3), memoryview(b"abc"),
              np.matrix([[1, 2], [3, 4]]), range(5), scene.pair(), lambda: None, np.ndarray]
    return others[random.integers(len(others))] if random.random() < 0.2 else odd_array(random)


def small_camera():
    return replace(scene.camera(), width_px=16, height_px=12, principal_x_px=7.5, principal_y_px=5.5, focal_px=12,
                   map_width_cells=8, map_height_cells=8)


class Unfriendly:
    def __array__(self, *_):
        raise RuntimeError("it makes no array")


class Hostile(unittest.TestCase):
    def setUp(self):
        self.enterContext(warnings.catch_warnings())
        warnings.simplefilter("ignore")

    def test_any_arguments_give_results_or_exceptions(self):
        random, road, taken = np.random.default_rng(5), nadir.Road(small_camera(), check="none"), 0
        for _ in range(1000):
            first, second, third = (odd_argument(random) for _ in range(3))
            if random.random() < 0.5 and isinstance(first, np.ndarray):
                second = first.copy()
            for call in (lambda: nadir.match(first, second, mask=third if random.random() < 0.2 else None),
                         lambda: road.process(first, second), lambda: road.process(disparity=third),
                         lambda: nadir.check(first, second)):
                try:
                    call()
                    taken += 1
                except REFUSALS:
                    pass
        self.assertGreater(taken, 100)

    def test_what_makes_no_array_says_so_itself(self):
        with self.assertRaisesRegex(RuntimeError, "no array"):
            nadir.match(Unfriendly(), scene.pair()[1])

    def test_an_owner_that_goes_away_cannot_while_arrays_are_there(self):
        memory = bytearray(np.ascontiguousarray(scene.pair()[0]).tobytes())
        picture = np.frombuffer(memory, np.uint16).reshape(120, 160)
        expected = nadir.match(*scene.pair()).tobytes()
        with self.assertRaises(BufferError):
            memory.clear()
        self.assertEqual(nadir.match(picture, scene.pair()[1]).tobytes(), expected)
        released = memoryview(memory)
        released.release()
        with self.assertRaises(REFUSALS):
            nadir.match(released, scene.pair()[1])

    def test_objects_that_were_never_made(self):
        for kind, use in ((nadir.Road, lambda it: it.process(*scene.pair())), (nadir.Tracker, lambda it: it.tracks()),
                          (nadir.Rectifier, lambda it: it.process(*scene.pair())), (nadir.Result, lambda it: it.regions)):
            with self.assertRaises(AttributeError):
                use(kind.__new__(kind))

    def test_settings_of_any_kind(self):
        random, camera = np.random.default_rng(6), small_camera()
        values = [float("nan"), float("inf"), -float("inf"), 2**31, 2**32, 2**64, -1, 1e308, "", "nan", "--json", "x" * 100000,
                  True, None, b"1", [], {}, 1j, np.float32(3), np.int8(-1), object(), "\udcff"]
        names = ("min_height", "percentile", "min_points", "fill_holes", "range", "uniqueness", "support", "check", "for_", "areas")
        for _ in range(60):
            settings = {str(random.choice(names)): values[random.integers(len(values))] for _ in range(2)}
            try:
                nadir.Road(camera, **settings)
            except REFUSALS:
                pass
            except OSError as fault:  # the system refuses so long an argument
                self.assertIn(fault.errno, (7, 36), settings)


@unittest.skipIf("asan" in os.environ.get("LD_PRELOAD", ""), "a sanitizer keeps memory of its own")
class Steady(unittest.TestCase):
    """References, Python's blocks and the process's memory are after many calls what they were before."""

    def setUp(self):
        self.enterContext(warnings.catch_warnings())
        warnings.simplefilter("ignore")

    def assert_steady(self, call, *kept):
        for _ in range(CALLS // 20):
            call()
        gc.collect()
        references, blocks, resident = [sys.getrefcount(one) for one in kept], sys.getallocatedblocks(), resident_bytes()
        for _ in range(CALLS):
            call()
        gc.collect()
        self.assertEqual([sys.getrefcount(one) for one in kept], references)
        self.assertLess(sys.getallocatedblocks() - blocks, 200)
        self.assertLess(resident_bytes() - resident, 4 << 20)

    def test_match(self):
        left, right = (np.ascontiguousarray(picture[:12, :16]) for picture in scene.pair())
        self.assert_steady(lambda: nadir.match(left, right), left, right)

    def test_road_and_tracker(self):
        left, right = (picture[:12, :16] for picture in scene.pair())
        road = nadir.Road(small_camera(), check="none")
        tracker, time = nadir.Tracker(road), iter(range(10**9))

        def frame():
            result = road.process(left, right)
            tracker.step(result, next(time))
            return result.elevation_raw, result.regions, result.warnings, result.trust, tracker.average_raw()

        self.assert_steady(frame, left, right, road, tracker)

    def test_refusals(self):
        left, right = (picture[:12, :16] for picture in scene.pair())
        road = nadir.Road(small_camera(), check="none")

        def refused():
            for wrong in (left[:-1], None):
                try:
                    road.process(left, wrong)
                except (TypeError, ValueError):
                    continue
                raise AssertionError("it was taken")

        self.assert_steady(refused, left, right, road)


if __name__ == "__main__":
    unittest.main()
