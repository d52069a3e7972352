"""The road from a pair of pictures to what stands on the ground, and what it finds."""
from __future__ import annotations

import ctypes
import os
import tempfile
import threading
from dataclasses import replace
from functools import cached_property
from typing import Any, List, NamedTuple, Optional, Sequence, Tuple

import numpy as np

from . import _arrays as arrays
from . import _findings as findings
from . import _program
from . import _records as records
from . import _setup
from ._camera import Area, Camera, area_of, checked_path
from ._libraries import NOTHING_FOUND, Handle, expect, ground, made
from ._match import frame_of
from ._rectifier import Rectifier

OPTIONS = ("for", "percentile", "min_points", "fill_holes", "no_regions", "min_height", "max_step", "min_area", "dip", "grid",
           "uniqueness", "check", "support", "refine", "range", "tallest", "no_postproc", "areas")

POINT = np.dtype([("x_mm", "f4"), ("y_mm", "f4"), ("z_mm", "f4"), ("disparity_px", "f4"), ("column", "u4"),
                  ("row", "u4"), ("cell", "u4"), ("reserved", "u4")])


def setup_of(camera: Camera, words: Tuple[str, ...]) -> Any:
    """What `nadir ground` would give the library."""
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "camera.toml")
        camera.write(path)
        return _program.json("ground", "left", "right", "-o", "folder", "--dry-run", "--camera", path, *words)


def camera_record(told: Any) -> records.Camera:
    """The library's record of a camera as the program tells it."""
    moved = {f"map_{key}" if key != "cell_mm" else key: value for key, value in told["map"].items()}
    return records.filled(records.Camera, {**{k: v for k, v in told.items() if k != "map"}, **moved})


def checked_areas(areas: Any) -> Tuple[Area, ...]:
    taken = tuple(areas)
    for area in taken:
        if not isinstance(area, Area):
            raise TypeError(f"areas holds {type(area).__name__}, but must hold nadir.Area alone, or be a file's path")
    return taken


def area_records(areas: Sequence[Area]) -> Tuple[Any, List[Any]]:
    """The areas as the library takes them, and the corners that they lead to."""
    corners = [np.array(area.pixels or area.ground_mm, np.int32) for area in areas]
    entries = [records.Area(ctypes.sizeof(records.Area), 0 if area.pixels else 1, len(points), 0, arrays.address(points),
                            area.min_height_mm, area.max_height_mm) for area, points in zip(areas, corners)]
    return (records.Area * len(entries))(*entries), corners


class Prepared(NamedTuple):
    """A frame as the library takes it, and the arrays that it leads to."""

    record: records.Frame
    arrays: Tuple[Any, ...]
    given: Optional[arrays.AnyArray]


class Road:
    """The road of a camera: from a pair of pictures to heights above the ground and what stands there.

    It serves one thread at a time: another one that uses it meanwhile waits. For several threads make a road for each;
    the interpreter is free while a road works.

    Args:
        camera: whose mount is known. If it has lenses, pairs are rectified first.
        settings: options of `nadir ground` by their names: `for_="people"`, `percentile`, `min_points`, `fill_holes`,
            `no_regions`, `min_height`, `max_step`, `min_area`, `dip`, `grid`, `uniqueness`, `check`, `support`, `refine`,
            `range`, `tallest`, `no_postproc`, and `areas`: a file of areas or a sequence of `Area`, beside the camera's.
            `nadir ground --help` says what each is if it is not given; results have the same bits as there.

    Raises:
        Error: with the program's sentence for a setting or a number of the camera, and the library's for an area.
        TypeError: there is no such setting, or it is no number and no text.

    >>> camera = Camera(baseline_mm=100, focal_px=200, principal_x_px=79.5, principal_y_px=59.5, width_px=160,
    ...                 height_px=120, height_mm=1000, tilt_deg=0, map_width_cells=32, map_height_cells=32, cell_mm=20)
    >>> road = Road(camera, check="none", min_height=100)
    >>> texture = np.random.default_rng(1).integers(200, 4000, (120, 200), dtype=np.uint16)
    >>> result = road.process(texture[:, :160], texture[:, 20:180])  # 20 px: open ground, 1000 mm away
    >>> result.elevation.shape, float(np.nanmax(result.elevation)) < 20, len(result.regions)
    ((32, 32), True, 0)
    """

    def __init__(self, camera: Camera, **settings: Any) -> None:
        if not isinstance(camera, Camera):
            raise TypeError(f"camera is {type(camera).__name__}, but must be a nadir.Camera: Camera.read(path) makes one")
        areas = settings.get("areas")
        if areas is not None and not isinstance(areas, (str, os.PathLike)):
            camera, settings = replace(camera, areas=(*camera.areas, *checked_areas(areas))), {**settings, "areas": None}
        elif areas is not None:
            settings["areas"] = checked_path(areas)
        self.camera = camera
        told = setup_of(camera, _setup.words_of(OPTIONS, settings))
        self.areas: Tuple[Area, ...] = tuple(area_of(area) for area in told["areas"])
        self._record = camera_record(told["camera"])
        self._settings = records.filled(records.Settings, told["settings"])
        self._rectifiers = told["rectifier"] and Rectifier.told(told["rectifier"])
        self.handle = self._made()
        self.lock = threading.RLock()

    def _made(self) -> Handle:
        entries, _corners = area_records(self.areas)
        fault = records.sized(records.Fault)
        return made("road", ctypes.byref(self._record), ctypes.byref(self._settings), entries, len(entries), fault=fault)

    @property
    def shape(self) -> Tuple[int, int]:
        """Of the rectified pictures: (height, width)."""
        return self._record.height_px, self._record.width_px

    @cached_property
    def map_corner_mm(self) -> Tuple[float, float]:
        """World x and y where the map's first cell begins; docs/coordinates.md draws it."""
        context = (ctypes.c_float * 27)()  # StereoCtx, whose lowerLeft lies behind 64 bytes
        expect(ground().nadir_road_context(self.handle.pointer, context))
        return context[16], context[17]

    def area_outline_mm(self, index: int) -> arrays.AnyArray:
        """The corners on the ground of one of `areas`: int32 (corners, 2), world x and y."""
        placed = records.sized(records.PlacedArea)
        expect(ground().nadir_road_area(self.handle.pointer, index, ctypes.byref(placed)))
        corners = (ctypes.c_int32 * (2 * placed.corner_count)).from_address(placed.ground_mm)
        return np.array(corners, np.int32).reshape(-1, 2)

    def process(self, left: Any = None, right: Any = None, *, mask: Any = None, disparity: Any = None) -> Result:
        """Works on a frame.

        Args:
            left, right: the pair, arrays (height, width) of uint8 or uint16 as for `match`; of the lenses' size where
                the camera has lenses.
            mask: None, or uint8 or bool of the rectified shape: pixels that are not 0 get no disparity.
            disparity: float32 (height, width) in pixels, nan for none: nothing is matched then, and the pictures may be
                left out.

        Raises TypeError and ValueError for arrays of another type or shape, and Error where the library refuses them.
        """
        return self.processed(self.prepared(left, right, mask, disparity))

    def prepared(self, left: Any = None, right: Any = None, mask: Any = None, disparity: Any = None) -> Prepared:
        """What a frame's arguments come to, for `processed`."""
        given = None if disparity is None else arrays.disparities_of(disparity, self.shape)
        masked = None if mask is None else arrays.mask_of(mask, self.shape)
        frame = records.sized(records.Frame)
        if given is None or left is not None or right is not None:
            left, right = arrays.pair(left, right)
            if self._rectifiers:
                left, right = self._rectifiers.process(left, right)
            frame = frame_of(arrays.of_shape("left", left, self.shape), right, masked)
        if given is not None:
            frame.disparity, frame.disparity_stride = arrays.address(given), given.strides[0]
        return Prepared(frame, (left, right, masked), given)

    def processed(self, frame: Prepared) -> Result:
        """Works on a frame that is prepared."""
        with self.lock:
            memory = made("result", self.handle.pointer)
            expect(ground().nadir_road_process(self.handle.pointer, ctypes.byref(frame.record), memory.pointer))
        return Result(self, memory, frame.given)


class Result:
    """What a frame gave. Its arrays lie in its own memory, cannot be written to, and keep it alive.

    Attributes:
        road: whose it is.
        disparity_raw: uint16 (height, width), 1/16 pixel, 0 for none; None where disparities were given.
        elevation_raw: uint16 (map height, map width), mm above the ground, 0 for unseen.
        point_counts: uint32 (map height, map width), the points over each cell.
        labels: uint16 (map height, map width), the region of each cell, 0 for none; None without regions.
        regions: what stands on the ground, `labels` holds label 1, 2, ... of them.
        areas: what stands in each area, in the order of the road's.
        warnings: why it may not be relied on; empty when all is well.
        pixels: what became of the picture's pixels.
        trust: how far it can be trusted.
    """

    def __init__(self, road: Road, memory: Handle, given: Optional[arrays.AnyArray]) -> None:
        self.road, self.memory, self._given = road, memory, given
        self._found = records.sized(records.Findings)
        expect(ground().nadir_result_read(memory.pointer, ctypes.byref(self._found)))

    @cached_property
    def disparity_raw(self) -> Optional[arrays.Shorts]:
        return arrays.lent(self.memory, self._found.disparity, "uint16") if self._found.disparity.data else None

    @cached_property
    def elevation_raw(self) -> arrays.Shorts:
        return arrays.lent(self.memory, self._found.heights, "uint16")

    @cached_property
    def point_counts(self) -> arrays.AnyArray:
        return arrays.lent(self.memory, self._found.point_counts, "uint32")

    @cached_property
    def labels(self) -> Optional[arrays.Shorts]:
        return arrays.lent(self.memory, self._found.labels, "uint16") if self._found.labels.data else None

    @cached_property
    def disparity(self) -> arrays.Floats:
        """float32 (height, width), pixels, nan for none: an array of its own."""
        if self._given is not None:
            return self._given.copy()
        assert self.disparity_raw is not None
        return arrays.pixels_of(self.disparity_raw)

    @cached_property
    def elevation(self) -> arrays.Floats:
        """float32 (map height, map width), mm above the ground, nan for unseen: an array of its own."""
        return arrays.heights_of(self.elevation_raw)

    @cached_property
    def regions(self) -> List[findings.Region]:
        return findings.regions_in(self._found)

    @cached_property
    def areas(self) -> List[findings.Occupancy]:
        return findings.areas_in(self._found, tuple(area.name for area in self.road.areas))

    @cached_property
    def warnings(self) -> List[findings.Warning]:
        return [findings.warning_of(one) for one in findings.warnings_in(self._found)]

    @cached_property
    def pixels(self) -> findings.PixelCounts:
        return findings.pixels_in(self._found)

    @cached_property
    def trust(self) -> findings.Trust:
        return findings.trust_in(self._found)

    def _frame(self) -> records.Frame:
        frame = records.sized(records.Frame)
        if self._given is not None:
            frame.disparity, frame.disparity_stride = arrays.address(self._given), self._given.strides[0]
        return frame

    def points(self) -> Any:
        """The points of the frame, row by row, as a structured array of x_mm, y_mm, z_mm (float32, world),
        disparity_px (float32), column, row and cell (uint32; of the map, 2^32 - 1 beside it)."""
        points, count = np.empty(self._found.points, POINT), ctypes.c_size_t()
        with self.road.lock:
            expect(ground().nadir_road_points(self.road.handle.pointer, ctypes.byref(self._frame()),
                                              self.memory.pointer, arrays.address(points), len(points),
                                              ctypes.byref(count)))
        return points

    def ground_plane(self) -> Optional[findings.GroundPlane]:
        """The ground as the points show it, or None where a tenth of them do not agree on one."""
        plane = records.sized(records.GroundPlane)
        with self.road.lock:
            status = ground().nadir_road_ground_plane(self.road.handle.pointer, ctypes.byref(self._frame()),
                                                      self.memory.pointer, ctypes.byref(plane))
        if status == NOTHING_FOUND:
            return None
        expect(status)
        return findings.plain(findings.GroundPlane, plane)
