"""What a stereo camera will see and measure, before it hangs."""
from __future__ import annotations

from dataclasses import dataclass
from typing import Any, Optional, Tuple, Union

from . import _program
from . import _setup
from ._camera import MAP, Camera, Path

OPTIONS = ("camera", "size", "focal", "fov", "baseline", "height", "tilt", "see", "tallest", "output", "force")

Point = Tuple[float, float]
Extent = Union[None, str, Tuple[float, float]]


@dataclass(frozen=True)
class PlannedPlace:
    """A row of the picture on the map, "near", "middle" or "far", in the middle of what both pictures show.

    Attributes:
        ground_mm: world (x, y); `forward_mm` is how far that is before the camera.
        disparity_px: of the ground there.
        height_step_mm: what 1/16 pixel of disparity is worth.
        greatest_height_mm: of a thing that stands there and is measured; `limited_by` the "range" or the "picture".
        points_per_cell: pixels that see the ground of a cell of the map.
    """

    place: str
    column_px: float
    row_px: float
    ground_mm: Point
    forward_mm: float
    disparity_px: float
    height_step_mm: float
    greatest_height_mm: float
    limited_by: str
    points_per_cell: float


@dataclass(frozen=True)
class Plan:
    """What a camera will see and measure; docs/plan.md explains each number.

    Attributes:
        camera: ready to use, with its map.
        range_px: the least `range` of a road that measures the tallest things all over the map.
        outline_mm: the ground that both pictures show, world (x, y); left_mm to area_m2 are its measures.
        tallest_from_mm, tallest_to_mm: before the camera, where the tallest things are measured; None for nowhere.
    """

    camera: Camera
    tallest_mm: float
    range_px: int
    left_mm: float
    right_mm: float
    near_mm: float
    far_mm: float
    area_m2: float
    reaches_horizon: bool
    outline_mm: Tuple[Point, ...]
    places: Tuple[PlannedPlace, ...]
    tallest_from_mm: Optional[float]
    tallest_to_mm: Optional[float]
    cell_mm: int
    cells_per_person: float


def plan(*, camera: Optional[Path] = None, size: Extent = None, focal: Optional[float] = None,
         fov: Optional[float] = None, baseline: Optional[float] = None, height: Optional[float] = None,
         tilt: Optional[float] = None, see: Extent = None, tallest: Optional[float] = None,
         output: Optional[Path] = None, force: bool = False) -> Plan:
    """Tells what a camera will see, or with `see` which camera sees what is asked for.

    Args:
        camera: a camera file, instead of the numbers.
        size: of the pictures in pixels, (width, height) or "640x480".
        see: ground that is to be seen, mm along the rows and away from the camera, (3000, 2000) or "3000x2000".
        output: a folder that receives camera.toml and a drawing, plan.svg.

    The others are the options of `nadir plan`, mm, pixels and degrees. Raises Error with the program's sentence.

    >>> planned = plan(see=(3000, 2000), height=2600)
    >>> planned.range_px, [place.place for place in planned.places], planned.places[0].height_step_mm < 10
    (61, ['near', 'middle', 'far'], True)
    """
    options = {"camera": camera, "size": _extent(size), "focal": focal, "fov": fov, "baseline": baseline,
               "height": height, "tilt": tilt, "see": _extent(see), "tallest": tallest, "output": output, "force": force}
    return _plan_of(**_program.json("plan", *_setup.words_of(OPTIONS, options)))


def _plan_of(schema: int, camera: Any, ground: Any, places: Any, **others: Any) -> Plan:  # pylint: disable=unused-argument
    outline = tuple((x, y) for x, y in ground.pop("outline_mm"))
    return Plan(camera=_camera_of(**camera), places=tuple(_place_of(**place) for place in places), outline_mm=outline,
                **ground, **others)


def _place_of(ground_mm: Any, **others: Any) -> PlannedPlace:
    return PlannedPlace(ground_mm=(ground_mm[0], ground_mm[1]), **others)


def _camera_of(map: Any, **numbers: Any) -> Camera:  # pylint: disable=redefined-builtin
    return Camera(**numbers, **{name: map[key] for name, key in MAP.items()})


def _extent(sides: Extent) -> Optional[str]:
    return "x".join(map(_program.number_of, sides)) if isinstance(sides, tuple) else sides

