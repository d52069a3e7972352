"""A mount found from pictures of open floor."""
from __future__ import annotations

import ctypes
from dataclasses import dataclass
from typing import Any, Iterable, List, Optional, Tuple, Union

from . import _arrays as arrays
from . import _findings as findings
from . import _records as records
from ._camera import Camera
from ._errors import Error
from ._libraries import NOTHING_FOUND, expect, ground, made
from ._rectifier import mounted
from ._road import Road

RANGES = (61, 122, 244)


@dataclass(frozen=True)
class Levelled:
    """A mount as pairs of open floor show it; an error exceeds a deviation in one of ten cases.

    `dataclasses.replace(camera, height_mm=found.height_mm, tilt_deg=found.tilt_deg, pan_deg=found.pan_deg)` is the camera
    with this mount; pan_deg is nan where the camera looks along the floor, roll_deg where it looks straight down.

    Attributes:
        pairs, pairs_without_floor: those that it was found from, and those left out.
        range: with which the floor was found, pixels.
        floor_share: of the last pair's pixels with a disparity, those on its floor.
        taken: uint8 (height, width) of the last pair with a floor: 0 without disparity, 1 off the floor, 2 on it.
    """

    height_mm: float
    tilt_deg: float
    pan_deg: float
    height_deviation_mm: float
    tilt_deviation_deg: float
    pan_deviation_deg: float
    axis_below_horizon_deg: float
    roll_deg: float
    axis_deviation_deg: float
    roll_deviation_deg: float
    floor_share: float
    pairs: int
    pairs_without_floor: int
    range: int
    taken: Any


def level(camera: Camera, pairs: Iterable[Tuple[Any, Any]], *,
          range: Union[int, str] = "auto") -> Levelled:  # pylint: disable=redefined-builtin
    """Finds height, tilt and pan of a camera, as `nadir level` does, with the same bits.

    Args:
        camera: its mount is not used and may be missing. If it has lenses, pairs are rectified first.
        pairs: of open floor: (left, right), arrays as for `match`.
        range: the largest disparity that is looked for, 61, 122 or 244, or "auto", the least with which a floor is found.

    Raises:
        Error: no pair shows a floor.
        TypeError, ValueError: arrays of another type or shape than the camera's.

    >>> import numpy as np
    >>> texture = np.random.default_rng(1).integers(200, 4000, (120, 200), dtype=np.uint16)
    >>> camera = Camera(baseline_mm=100, focal_px=200, principal_x_px=79.5, principal_y_px=59.5, width_px=160,
    ...                 height_px=120)
    >>> found = level(camera, [(texture[:, :160], texture[:, 20:180])])  # 20 px everywhere: 1000 mm, straight down
    >>> round(found.height_mm), abs(found.tilt_deg) < 0.1
    (1000, True)
    """
    taken = list(pairs)
    if range != "auto" and range not in RANGES:
        raise ValueError(f"range is {range}, but must be one of {RANGES} or 'auto'")
    if not taken:
        raise ValueError("pairs is empty: at least one is needed")
    for one in RANGES if range == "auto" else (range,):
        # The plane is refined by intensities: one pass of the matcher shows where it is.
        road = Road(mounted(camera), no_regions=True, check="none", refine="none", range=one)
        found = levelled_on(road, taken, int(one))
        if found is not None:
            return found
    raise Error("no floor is seen: it must fill a fifth of what is seen at least, have a texture, and nothing may lie "
                "below it", NOTHING_FOUND)


def levelled_on(road: Road, pairs: List[Tuple[Any, Any]], longest: int) -> Optional[Levelled]:
    library, handle, without = ground(), made("level", road.handle.pointer), 0
    for left, right in pairs:
        frame = road.prepared(left, right)
        result = road.processed(frame)
        status = library.nadir_level_add(handle.pointer, ctypes.byref(frame.record), result.memory.pointer)
        without += status == NOTHING_FOUND
        if status != NOTHING_FOUND:
            expect(status)
    found, plane = records.sized(records.Levelled), records.Plane()
    if library.nadir_level_read(handle.pointer, ctypes.byref(found)) == NOTHING_FOUND:
        return None
    expect(library.nadir_level_taken(handle.pointer, ctypes.byref(plane)))
    return findings.plain(Levelled, found, pairs_without_floor=without, range=longest,
                          taken=arrays.lent(handle, plane, "uint8").copy())
