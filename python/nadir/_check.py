"""What is wrong with a pair, if anything."""
from __future__ import annotations

import ctypes
from dataclasses import dataclass
from typing import Any, Optional

import numpy as np

from . import _arrays as arrays
from . import _findings as findings
from . import _records as records
from ._camera import Camera
from ._libraries import expect, ground, made, words

RANGES = (61, 122, 244)
OFFSET = np.dtype([("column", "f4"), ("row", "f4"), ("rows", "f4"), ("disparity_px", "f4")])


@dataclass(frozen=True)
class Checkup:
    """What was found of a pair. `include/nadir/check.h` explains each number; nan is what could not be measured.

    Attributes:
        verdict: "good", or what is to be put right first: "swapped", "offset", "turned", "unrectified" ...
        advice: what to do about it, a sentence.
        range: the least range that holds the pair, 0: none does.
        offsets: where rows differ by how much, a structured array of column, row, rows and disparity_px (float32).
    """

    verdict: str
    advice: str
    offsets: Any
    halvings: int
    range: int
    mean_left: float
    mean_right: float
    dark_left: float
    dark_right: float
    clipped_left: float
    clipped_right: float
    gain: float
    noise_left: float
    noise_right: float
    texture_left: float
    texture_right: float
    blur_left_px: float
    blur_right_px: float
    matched: float
    matched_aligned: float
    unmoved: float
    row_offset_px: float
    row_offset_left_px: float
    row_offset_middle_px: float
    row_offset_right_px: float
    row_offset_top_px: float
    row_offset_centre_px: float
    row_offset_bottom_px: float
    turn_deg: float
    scale_percent: float
    bend_px: float
    least_disparity_px: float
    largest_disparity_px: float
    nearer: float
    behind: float


def plane_of(array: arrays.AnyArray) -> records.Plane:
    return records.Plane(arrays.address(array), array.strides[0], array.shape[1], array.shape[0])


def offsets_in(checkup: records.Checkup) -> Any:
    """A copy, as the library's goes with the checker."""
    size = checkup.offset_count * ctypes.sizeof(records.RowOffset)
    return np.frombuffer(ctypes.string_at(checkup.offsets, size) if size else b"", OFFSET)


def check(left: Any, right: Any, *, camera: Optional[Camera] = None,
          range: int = 61) -> Checkup:  # pylint: disable=redefined-builtin
    """Says what is wrong with a pair, as `nadir check` does, with the same numbers.

    Args:
        left, right: arrays (height, width) of uint8 or uint16, at least 64 x 64.
        camera: pictures must have its size; None: the left picture's.
        range: the largest disparity that will be searched, pixels: 61, 122 or 244.

    Raises TypeError and ValueError for arrays and ranges that are none.

    >>> texture = np.random.default_rng(1).integers(200, 4000, (100, 200), dtype=np.uint16)
    >>> check(texture[:, :160], texture[:, 20:180]).verdict
    'good'
    >>> check(texture[:, 20:180], texture[:, :160]).verdict
    'swapped'
    """
    first, second = arrays.picture("left", left), arrays.picture("right", right)
    if first.dtype != second.dtype:
        raise TypeError(f"left is an array of {first.dtype} and right of {second.dtype}: they must be the same")
    if range not in RANGES:
        raise ValueError(f"range is {range}, but must be one of {RANGES}")
    height, width = first.shape if camera is None else (camera.height_px, camera.width_px)
    if not (64 <= width <= 65535 and 64 <= height <= 65535 and width * height <= arrays.MOST_PIXELS):
        raise ValueError(f"pictures of the shape {(height, width)} cannot be checked: the least is (64, 64)")
    checker = made("checker", width, height, fault=records.sized(records.Fault))
    pair, found = records.sized(records.Pair), records.sized(records.Checkup)
    pair.bits, pair.range = 8 * first.itemsize, range
    pair.left, pair.right = plane_of(first), plane_of(second)
    expect(ground().nadir_checker_process(checker.pointer, ctypes.byref(pair), ctypes.byref(found)))
    return findings.plain(Checkup, found, verdict=words(ground().nadir_verdict_name(found.verdict)),
                          advice=words(ground().nadir_verdict_advice(found.verdict)), offsets=offsets_in(found))
