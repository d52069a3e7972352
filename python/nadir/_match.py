"""From a pair of pictures to disparities."""
from __future__ import annotations

import ctypes
import threading
import warnings
from typing import Any, List, Optional, Tuple, Union

import numpy as np

from . import _arrays as arrays
from . import _records as records
from . import _setup
from ._errors import ResultWarning
from ._findings import sentence_of, warnings_in
from ._libraries import Handle, expect, ground, made

OPTIONS = ("grid", "uniqueness", "check", "support", "refine", "range", "no_postproc")


class Matcher:
    """A road that ends at the disparities, and what its last frame gave; both for one thread."""

    def __init__(self, words: Tuple[str, ...], shape: Tuple[int, ...]) -> None:
        camera = records.sized(records.Camera)
        camera.height_px, camera.width_px = shape
        settings, fault = _setup.match_settings(words), records.sized(records.Fault)
        self.road: Handle = made("road", ctypes.byref(camera), ctypes.byref(settings), None, 0, fault=fault)
        self.result: Handle = made("result", self.road.pointer)
        self.findings = records.sized(records.Findings)
        self.lent: Tuple[Optional[int], arrays.Shorts] = (None, np.empty((0, 0), np.uint16))

    def disparities(self, frame: records.Frame) -> arrays.Shorts:
        """They hold until the next frame."""
        library, result = ground(), self.result.pointer
        expect(library.nadir_road_process(self.road.pointer, ctypes.byref(frame), result))
        expect(library.nadir_result_read(result, ctypes.byref(self.findings)))
        plane = self.findings.disparity
        if self.lent[0] != plane.data:
            self.lent = plane.data, arrays.lent(self.result, plane, "uint16")
        return self.lent[1]


class Matchers(threading.local):
    """The matcher that a thread has used last, because most pairs are like the one before."""

    def __init__(self) -> None:
        self.known: List[Tuple[Any, Matcher]] = []

    def matcher(self, options: Tuple[Any, ...], shape: Tuple[int, ...]) -> Matcher:
        if not self.known or self.known[0][0] != (options, shape):
            words = _setup.words_of(OPTIONS, dict(zip(OPTIONS, options)))
            self.known = []  # so that there is never memory for two
            self.known = [((options, shape), Matcher(words, shape))]
        return self.known[0][1]


MATCHERS = Matchers()


def frame_of(left: arrays.AnyArray, right: arrays.AnyArray, mask: Optional[arrays.AnyArray]) -> records.Frame:
    """It holds as long as the arrays do."""
    frame = records.sized(records.Frame)
    frame.bits = 8 * left.itemsize
    frame.left, frame.left_stride = arrays.address(left), left.strides[0]
    frame.right, frame.right_stride = arrays.address(right), right.strides[0]
    if mask is not None:
        frame.mask, frame.mask_stride = arrays.address(mask), mask.strides[0]
    return frame


def match(left: Any, right: Any, *, mask: Any = None, raw: bool = False, grid: Optional[str] = None,
          uniqueness: Optional[int] = None, check: Optional[str] = None, support: Optional[int] = None,
          refine: Optional[str] = None, range: Union[int, str, None] = None,  # pylint: disable=redefined-builtin
          no_postproc: bool = False) -> arrays.AnyArray:
    """Matches a rectified pair.

    Args:
        left: the left picture, an array (height, width) of uint8, or of uint16 where 0 means no data, best in the range
            of a 12-bit camera. Rows may lie apart in memory; any other layout is copied.
        right: the right picture, of the same shape and type; what is seen in both lies further left in it.
        mask: None, or uint8 or bool (height, width): pixels that are not 0 get no disparity.
        raw: give uint16 in 1/16 pixel, 0 for none, instead of float32 in pixels, nan for none.
        grid: "left" or "right": the view whose pixels get the disparities.
        uniqueness: how much worse, in 1/128 of the best cost, every other match must be.
        check: "none", "flip", "sides" or "both": match again to tell guesses from measurements.
        support: with flip and both: how many pixels around must be close to what only one pass says.
        refine: "surface" or "none".
        range: the largest disparity that is found, pixels: 61, 122 or 244.
        no_postproc: leave out the 3x3 median and the removal and filling of single pixels.

    `nadir disparity --help` says more of each option; what is None is as it is there, and the results have the same
    bits. Why they may not be relied on is said by `warnings.warn` (`ResultWarning`).

    Returns:
        An array (height, width) of its own.

    Raises:
        TypeError, ValueError: an array of another type or shape; what is right is said.
        Error: the program refuses an option, in its own words.

    >>> import numpy as np
    >>> texture = np.random.default_rng(1).integers(200, 4000, (80, 140), dtype=np.uint16)
    >>> left, right = texture[:, :120], texture[:, 9:129]  # what lies 9 pixels further left on the right
    >>> disparity = match(left, right)
    >>> disparity.dtype, disparity.shape, float(np.nanmedian(disparity))
    (dtype('float32'), (80, 120), 9.0)
    """
    first, second = arrays.pair(left, right)
    masked = None if mask is None else arrays.mask_of(mask, first.shape)
    options = (grid, uniqueness, check, support, refine, range, no_postproc)
    matcher = MATCHERS.matcher(options, first.shape)
    found = matcher.disparities(frame_of(first, second, masked))
    if matcher.findings.warning_count:
        for warning in warnings_in(matcher.findings):
            warnings.warn(sentence_of(warning), ResultWarning, stacklevel=2)
    if raw:
        return found.copy()
    return arrays.pixels_of(found)
