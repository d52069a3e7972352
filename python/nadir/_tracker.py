"""What goes from frame to frame: tracked heights and averaged maps."""
from __future__ import annotations

import ctypes
import operator
import threading
from dataclasses import dataclass
from typing import Any, List, Optional

from . import _arrays as arrays
from . import _records as records
from . import _setup
from ._libraries import NOTHING_FOUND, Handle, expect, ground, made
from ._road import Result, Road, setup_of

OPTIONS = ("average", "track_noise")
TIMES = (-(2**63), 2**63 - 1)


@dataclass(frozen=True)
class Track:
    """The height of what stands in an area, its rate, and how uncertain the height is (standard deviation)."""

    height_mm: float
    rate_mm_per_s: float
    deviation_mm: float


class Tracker:
    """Follows the heights in a road's areas, and averages its maps; one thread at a time, others wait.

    Args:
        road: whose results it takes, or those of a road of the same camera, settings and number of areas.
        average: maps in the window that the average is taken over, 1 to 1000.
        track_noise: how uncertain a frame's height is at least, standard deviation, mm.

    What is None is as in `nadir ground --help`. Raises Error with the program's sentence for a number out of range.

    >>> import numpy as np
    >>> from nadir import Area, Camera
    >>> camera = Camera(baseline_mm=100, focal_px=200, principal_x_px=79.5, principal_y_px=59.5, width_px=160,
    ...                 height_px=120, height_mm=1000, tilt_deg=0, map_width_cells=32, map_height_cells=32, cell_mm=20,
    ...                 areas=(Area("middle", pixels=((40, 30), (120, 30), (120, 90), (40, 90))),))
    >>> road = Road(camera)
    >>> tracker = Tracker(road, average=2)
    >>> disparity = np.full((120, 160), 20, np.float32)  # the ground, 1000 mm away
    >>> disparity[50:70, 60:100] = 25  # and what stands 200 mm high on it
    >>> for frame in range(3):
    ...     tracker.step(road.process(disparity=disparity), time_ns=frame * 10**8)
    >>> [round(track.height_mm) for track in tracker.tracks()]
    [200]
    """

    def __init__(self, road: Road, *, average: Optional[int] = None, track_noise: Optional[float] = None) -> None:
        if not isinstance(road, Road):
            raise TypeError(f"road is {type(road).__name__}, but must be a nadir.Road")
        words = _setup.words_of(OPTIONS, {"average": average, "track_noise": track_noise})
        settings = records.filled(records.TrackSettings, setup_of(road.camera, ("--no-regions", *words))["track"])
        self.area_count = len(road.areas)
        self._handle: Handle = made("tracker", road.handle.pointer, ctypes.byref(settings),
                                    fault=records.sized(records.Fault))
        self._lock = threading.RLock()

    def step(self, result: Result, time_ns: int) -> None:
        """Takes a frame's findings, in the order of the frames.

        Args:
            time_ns: when it was taken, nanoseconds from any beginning; never before the last one.

        Raises Error where the time goes back, and where the result is of a road of another kind.
        """
        if not isinstance(result, Result):
            raise TypeError(f"result is {type(result).__name__}, but must be what nadir.Road.process gave")
        time = operator.index(time_ns)
        if not TIMES[0] <= time <= TIMES[1]:
            raise ValueError(f"time_ns is {time}, beyond 64 bits")
        with self._lock:
            expect(ground().nadir_tracker_step(self._handle.pointer, result.memory.pointer, time))

    def tracks(self) -> List[Optional[Track]]:
        """What is tracked in each area after the last step, in the order of the road's areas; None where nothing is."""
        with self._lock:
            return [self._track(area) for area in range(self.area_count)]

    def _track(self, area: int) -> Optional[Track]:
        track = records.sized(records.Track)
        expect(ground().nadir_tracker_read(self._handle.pointer, area, ctypes.byref(track)))
        return Track(track.height_mm, track.rate_mm_per_s, track.deviation_mm) if track.active else None

    def average_raw(self) -> Optional[arrays.Shorts]:
        """The mean of the last maps, uint16 (map height, map width), mm, 0 where fewer than half have a height; an array of
        its own. None before the first map."""
        plane = records.Plane()
        with self._lock:
            status = ground().nadir_tracker_average(self._handle.pointer, ctypes.byref(plane))
            if status != NOTHING_FOUND:
                expect(status)
                return arrays.lent(self._handle, plane, "uint16").copy()
        return None

    def average(self) -> Optional[arrays.Floats]:
        """The same as float32, nan where fewer than half have a height."""
        raw = self.average_raw()
        return None if raw is None else arrays.heights_of(raw)

    def save(self) -> bytes:
        """All that it knows, so that another process goes on with `load`."""
        with self._lock:
            size = ground().nadir_tracker_save(self._handle.pointer, None, 0)
            memory = ctypes.create_string_buffer(size)
            ground().nadir_tracker_save(self._handle.pointer, memory, size)
        return memory.raw

    def load(self, saved: Any) -> None:
        """Takes up what a tracker of the same settings, areas and map size has saved.

        Raises Error, and stays as it was, where that is damaged or of another tracker.
        """
        memory = bytes(memoryview(saved))
        with self._lock:
            expect(ground().nadir_tracker_load(self._handle.pointer, memory, len(memory)))
