"""nadir.match against the files of nadir disparity, and what it refuses."""
import threading
import unittest
import warnings

import numpy as np

import nadir
import scene
from nadir import _arrays, _program

OPTIONS = [{}, {"check": "flip"}, {"check": "both", "support": 12, "uniqueness": 20}, {"refine": "none", "no_postproc": True},
           {"grid": "right", "range": 122}]


def words(options):
    return [f"--{name.replace('_', '-')}" + ("" if value is True else f"={value}") for name, value in options.items()]


def matched_files(left, right, name, *arguments):
    """What the program makes of the same pair: pixels, and sixteenths."""
    pair = scene.files(left, right, name)
    _program.run("disparity", *pair, "-o", scene.path(f"{name}.npy"), "--no-preview", *arguments)
    _program.run("disparity", *pair, "-o", scene.path(f"{name}.png"), "--no-preview", *arguments)
    return np.load(scene.path(f"{name}.npy")), scene.read_png(scene.path(f"{name}.png"))


class Match(unittest.TestCase):
    def assert_same(self, left, right, options, mask=None):
        extra = [] if mask is None else ["--mask", scene.write_pgm(scene.path("mask.pgm"), mask)]
        pixels, raw = matched_files(left, right, "match", *words(options), *extra)
        self.assertEqual(nadir.match(left, right, mask=mask, **options).tobytes(), pixels.tobytes())
        self.assertEqual(nadir.match(left, right, mask=mask, raw=True, **options).tobytes(), raw.tobytes())

    def test_has_the_bits_of_the_program(self):
        for options in OPTIONS:
            with self.subTest(options):
                self.assert_same(*scene.pair(), options)

    def test_of_8_bits_and_with_a_mask(self):
        left, right = (np.minimum(picture // 16, 255).astype(np.uint8) for picture in scene.pair())
        self.assert_same(left, right, {})
        mask = np.zeros(left.shape, np.uint8)
        mask[20:60, 30:90] = 7
        self.assert_same(left, right, {}, mask)
        self.assertEqual(nadir.match(left, right, mask=mask != 0).tobytes(), nadir.match(left, right, mask=mask).tobytes())

    def test_layouts_do_not_matter(self):
        left, right = scene.pair()
        expected = nadir.match(left, right).tobytes()
        wide = np.full((120, 400), 999, np.uint16)
        wide[:, 7:167], wide[:, 200:360] = left, right
        odd = np.zeros(120 * 160 * 2 + 1, np.uint8)[1:].view(np.uint16).reshape(120, 160)
        odd[:] = left
        for name, (first, second) in {
                "rows apart": (wide[:, 7:167], wide[:, 200:360]),
                "columns first": (np.asfortranarray(left), np.asfortranarray(right)),
                "upside down": (left[::-1].copy()[::-1], right[::-1].copy()[::-1]),
                "mirrored": (left[:, ::-1].copy()[:, ::-1], right),
                "every second": (np.repeat(left, 2, axis=1)[:, ::2], np.repeat(right, 2, axis=0)[::2]),
                "foreign bytes": (left.astype(">u2"), right.astype(">u2")),
                "odd addresses": (odd, right),
                "a buffer": (memoryview(left), memoryview(right)),
        }.items():
            with self.subTest(name):
                self.assertEqual(nadir.match(first, second).tobytes(), expected)
        left.flags.writeable = right.flags.writeable = False
        self.assertEqual(nadir.match(left, right).tobytes(), expected)

    def test_rows_apart_are_not_copied(self):
        wide = np.zeros((40, 100), np.uint16)
        for given, taken_as_it_is in [(wide, True), (wide[::2, 30:60], True), (wide[:, ::2], False), (wide[::-1], False),
                                      (wide.T, False), (np.broadcast_to(wide[0], (40, 100)), False)]:
            self.assertEqual(_arrays.in_rows(given) is given, taken_as_it_is)

    def test_results_are_their_own(self):
        left, right = scene.pair()
        first = nadir.match(left, right, raw=True)
        kept = first.copy()
        nadir.match(left.copy(), np.roll(right, -5, axis=1), raw=True)
        np.testing.assert_array_equal(first, kept)
        first[:] = 0  # may be written to

    def test_threads_at_once(self):
        left, right = scene.pair()
        expected, found = nadir.match(left, right).tobytes(), []
        threads = [threading.Thread(target=lambda: found.append(nadir.match(left, right).tobytes())) for _ in range(8)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(found, [expected] * 8)

    def test_warns_where_the_program_does(self):
        left, right = scene.pair()
        with self.assertWarnsRegex(nadir.ResultWarning, "swapped"):
            nadir.match(right, left)
        with warnings.catch_warnings():
            warnings.simplefilter("error")
            nadir.match(left, right)

    def test_refuses_what_is_no_picture(self):
        left, right = scene.pair()
        huge = np.broadcast_to(np.uint8(1), (2**33, 640))
        for second, kind, said in [
                (None, TypeError, "right is an array of object"),
                ("right.png", TypeError, "read the picture first"),
                ([[1, 2], [3]], TypeError, "right"),
                (right.astype(np.float32), TypeError, "float32, but must be of uint8 or uint16"),
                (right.astype(np.int16), TypeError, "int16"),
                (right.astype(bool), TypeError, "bool"),
                (right.astype(complex), TypeError, "complex"),
                (right.astype(np.uint8), TypeError, "uint16 and right of uint8"),
                (np.ma.masked_equal(right, 0), TypeError, "masked"),
                (np.zeros(3, "u2,u2"), TypeError, "right"),
                (right[:-1], ValueError, r"\(120, 160\) and right \(119, 160\)"),
                (right[None], ValueError, r"\(1, 120, 160\)"),
                (right[0], ValueError, "two dimensions"),
                (np.uint16(5), ValueError, "two dimensions"),
                (right[:0], ValueError, r"\(0, 160\)"),
                (right[:4, :4], ValueError, "5 to 65535"),
                (huge, ValueError, "8589934592"),
                (np.broadcast_to(np.uint16(1), (60000, 60000)), ValueError, "pixels in all")]:
            with self.subTest(str(type(second)) + said), self.assertRaisesRegex(kind, said):
                nadir.match(left, second)
            with self.subTest(said), self.assertRaises(kind):
                nadir.match(second, right)
        for mask, kind, said in [(left, TypeError, "bool or uint8"), (np.zeros((5, 5), bool), ValueError, r"\(5, 5\)")]:
            with self.assertRaisesRegex(kind, said):
                nadir.match(left, right, mask=mask)

    def test_takes_numpys_numbers(self):
        left, right = scene.pair()
        self.assertEqual(nadir.match(left, right, uniqueness=np.int64(20), check="flip").tobytes(),
                         nadir.match(left, right, uniqueness=20, check="flip").tobytes())

    def test_refuses_options_in_the_programs_words(self):
        left, right = scene.pair()
        for options, said in [({"check": "twice"}, "--check"), ({"range": 2**70}, "--range"), ({"uniqueness": -1}, "--uniq"),
                              ({"support": 2**32 + 1}, "--support"), ({"uniqueness": float("nan")}, "--uniqueness"),
                              ({"grid": "--output=/tmp/x"}, "--grid"), ({"support": 1e300}, "--support")]:
            with self.subTest(options), self.assertRaisesRegex(nadir.Error, said) as raised:
                nadir.match(left, right, **options)
            self.assertEqual(raised.exception.status, 2)
        with self.assertRaisesRegex(TypeError, "check is object"):
            nadir.match(left, right, check=object())
        with self.assertRaisesRegex(ValueError, "null"):
            nadir.match(left, right, check="no\0ne")


if __name__ == "__main__":
    unittest.main()
