"""The camera file: a stereo camera that looks at the ground, its areas of interest and its lenses."""
from __future__ import annotations

import json
import os
import tempfile
from dataclasses import dataclass, fields
from typing import Any, Dict, List, Mapping, Optional, Tuple, Union

from . import _program

Path = Union[str, "os.PathLike[str]"]
Corner = Tuple[int, int]


def quoted(value: Any) -> str:
    """Numbers, lists and texts as TOML has them, which is as JSON has them, but for letters in two halves."""
    return json.dumps(value, ensure_ascii=False)


@dataclass(frozen=True)
class Area:
    """An area of interest: a polygon of 3 to 100 corners.

    Attributes:
        name: of its own among those of a camera.
        pixels: its corners on the measured picture, (column, row), where the ground shows; or
        ground_mm: its corners on the ground, world (x, y) in whole mm. One of both is given.
        min_height_mm, max_height_mm: in it regions are cells higher than the one and not higher than the other; 0: as
            everywhere.
    """

    name: str
    pixels: Tuple[Corner, ...] = ()
    ground_mm: Tuple[Corner, ...] = ()
    min_height_mm: int = 0
    max_height_mm: int = 0

    def __post_init__(self) -> None:
        if bool(self.pixels) == bool(self.ground_mm):
            raise ValueError(f"area {self.name!r}: give its corners in pixels or in ground_mm, one of both")

    def toml(self) -> str:
        corners = "pixels" if self.pixels else "ground_mm"
        lines = ["[[area]]", f"name = {quoted(self.name)}",
                 f"{corners} = {json.dumps([list(corner) for corner in getattr(self, corners)])}"]
        lines += [f"{name} = {height}" for name, height in (("min_height_mm", self.min_height_mm),
                                                            ("max_height_mm", self.max_height_mm)) if height]
        return "\n".join(lines) + "\n"


def area_of(told: Mapping[str, Any]) -> Area:
    """An area as the program tells it."""
    corners = tuple((x, y) for x, y in told["corners"])
    return Area(told["name"], **{told["unit"]: corners}, min_height_mm=told.get("min_height_mm", 0),
                max_height_mm=told.get("max_height_mm", 0))


# Keys of the file whose table is the map's.
MAP = {"map_width_cells": "width_cells", "map_height_cells": "height_cells", "cell_mm": "cell_mm",
       "map_offset_x_mm": "offset_x_mm", "map_offset_y_mm": "offset_y_mm"}


@dataclass(frozen=True)
class Camera:
    """A stereo camera: its optics, its mount and the map that it fills. docs/ground.md explains each number.

    Lengths are mm, angles degrees, pictures pixels, and picture coordinates count from the centre of the first pixel. A
    mount that nobody knows yet is None: such a camera can be levelled and written, but makes no road. Another camera is
    made by `dataclasses.replace(camera, height_mm=2600)`.

    >>> camera = Camera(baseline_mm=120, focal_px=610, principal_x_px=319.5, principal_y_px=239.5, width_px=640,
    ...                 height_px=480, height_mm=2600, tilt_deg=-30)
    >>> folder = tempfile.TemporaryDirectory()
    >>> path = os.path.join(folder.name, "camera.toml")
    >>> camera.write(path)
    >>> Camera.read(path) == camera
    True

    Attributes:
        areas: its areas of interest.
        lenses: what the tables left_lens, right_lens and pose say; None where pictures are rectified already.
    """

    baseline_mm: float
    focal_px: float
    principal_x_px: float
    principal_y_px: float
    width_px: int
    height_px: int
    height_mm: Optional[float] = None
    tilt_deg: Optional[float] = None
    pan_deg: float = 0.0
    column_shift_px: float = 0.0
    map_width_cells: int = 128
    map_height_cells: int = 128
    cell_mm: int = 50
    map_offset_x_mm: float = 0.0
    map_offset_y_mm: float = 0.0
    areas: Tuple[Area, ...] = ()
    lenses: Optional[Mapping[str, Mapping[str, Any]]] = None

    @staticmethod
    def read(path: Path) -> Camera:
        """Reads a camera file.

        Raises Error with the program's sentence for every mistake in it.
        """
        return camera_of(_program.json("camera", "show", checked_path(path)))

    @staticmethod
    def imported(*files: Path, unit_mm: Optional[float] = None, lens: Optional[str] = None,
                 **numbers: float) -> Camera:
        """The camera of a calibration, one file or two, as `nadir camera import` reads them.

        Args:
            files: OpenCV's, ROS', Kalibr's or Middlebury's.
            unit_mm: the millimetres of one unit of length of the calibration, where it does not say so itself.
            lens: "plumb-bob" or "fisheye", where it does not say so itself.
            numbers: what goes before the calibration or is not in it: `height_mm=2600, tilt_deg=-30`.

        Raises Error with the program's sentence.
        """
        words = [*_options({"unit_mm": unit_mm, "lens": lens}), *_options(_by_option(numbers))]
        with tempfile.TemporaryDirectory() as folder:
            made = os.path.join(folder, "camera.toml")
            _program.run("camera", "import", "-o", made, *words, *[checked_path(file) for file in files])
            return Camera.read(made)

    def write(self, path: Path, force: bool = False) -> None:
        """Writes a camera file.

        Args:
            force: replace a camera file that was edited, or that has areas or lenses.

        Raises Error with the program's sentence for a number out of range, and where a file is kept.
        """
        numbers = {field.name: getattr(self, field.name) for field in fields(self)
                   if field.name not in ("areas", "lenses")}
        others = "".join("\n" + text for text in [_lens_tables(self.lenses), *[area.toml() for area in self.areas]]
                         if text).encode()
        force_words = ["--force"] if force else []
        _program.run("camera", "import", "-o", checked_path(path), *force_words, *_options(_by_option(numbers)))
        if others:
            with open(path, "ab") as file:
                file.write(others)


def camera_of(told: Mapping[str, Any]) -> Camera:
    """A camera as the program tells it."""
    numbers: Dict[str, Any] = {field.name: told[field.name] for field in fields(Camera) if field.name in told}
    numbers.update({name: told["map"][key] for name, key in MAP.items()})
    numbers["areas"] = tuple(area_of(area) for area in told["areas"])
    return Camera(**numbers)


def checked_path(path: Any) -> str:
    """A path that is none of the program's options, whatever it begins with."""
    if not isinstance(path, (str, os.PathLike)):
        raise TypeError(f"the path is {type(path).__name__}, but must be a text or a path")
    text = os.fspath(path)
    return os.path.join(".", text) if text.startswith("-") else text


def _by_option(numbers: Mapping[str, Any]) -> Dict[str, Any]:
    """Numbers by the names that the program's options have, which do not tell the map's."""
    known = {field.name for field in fields(Camera)} - {"areas", "lenses"}
    for name, value in numbers.items():
        if name not in known:
            raise TypeError(f"a camera has no number {name}; it has {', '.join(sorted(known))}")
        if value is not None and not hasattr(value, "__index__") and not hasattr(value, "__float__"):
            raise TypeError(f"{name} is {type(value).__name__}, but must be a number")
    return {MAP.get(name, name): value for name, value in numbers.items()}


def _options(values: Mapping[str, Any]) -> List[str]:
    return [f"--{name.replace('_', '-')}={_program.words_of(value)}" for name, value in values.items()
            if value is not None]


def _lens_tables(lenses: Optional[Mapping[str, Mapping[str, Any]]]) -> str:
    tables = ["\n".join([f"[{table}]", *[f"{key} = {quoted(value)}" for key, value in keys.items()]]) + "\n"
              for table, keys in (lenses or {}).items()]
    return "\n".join(tables)
