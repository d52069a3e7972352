"""What stands on the ground, and how far that can be trusted, as dataclasses."""
from __future__ import annotations

from dataclasses import dataclass
from typing import Any, Dict, Iterator, List, Tuple, Type, TypeVar

from . import _records as records
from ._libraries import ground, words


@dataclass(frozen=True)
class Region:
    """What stands on the ground: neighbouring cells that are high enough and join without a large step.

    left, top, right and bottom are its box in cells, half-open; the centre is in the world. At an edge of the map or
    of a picture it may go on, and be higher, beyond it.
    """

    label: int
    cells: int
    highest_mm: int
    median_mm: int
    left: int
    top: int
    right: int
    bottom: int
    at_map_edge: bool
    centre_x_mm: float
    centre_y_mm: float
    area_m2: float
    at_picture_edge: bool


@dataclass(frozen=True)
class Share:
    """The cells of a region that lie in an area."""

    label: int
    cells: int
    highest_mm: int
    median_mm: int


@dataclass(frozen=True)
class Occupancy:
    """What stands in an area of interest. Heights are 0 where nothing does; `piece_mm` is that of a piece of half a region."""

    name: str
    cells: int
    seen_cells: int
    covered_cells: int
    highest_mm: int
    median_mm: int
    piece_mm: int
    regions: Tuple[Share, ...]


@dataclass(frozen=True)
class Warning:  # pylint: disable=redefined-builtin
    """Why a result may not be relied on: a name that stays, a sentence for people, and its numbers by name."""

    id: str
    sentence: str
    numbers: Dict[str, float]


@dataclass(frozen=True)
class PixelCounts:
    """What became of the picture's pixels; `filled` are some of those with a value."""

    value: int
    ambiguous: int
    removed: int
    masked: int
    border: int
    filled: int


@dataclass(frozen=True)
class Trust:
    """How far a result can be trusted, as numbers that `include/nadir/ground.h` explains; nan for what was not measured."""

    searched: bool
    dark_left: float
    dark_right: float
    clipped_left: float
    clipped_right: float
    matched: float
    value: float
    range_end: float
    cut_off: float
    on_ground: float
    below_ground: float
    height_off_mm: float
    tilt_off_deg: float
    pan_off_deg: float
    height_deviation_mm: float
    tilt_deviation_deg: float
    pan_deviation_deg: float
    found_height_mm: float
    found_tilt_deg: float
    found_pan_deg: float
    found_share: float
    map_seen: float
    least_top_mm: float
    greatest_top_mm: float


@dataclass(frozen=True)
class GroundPlane:
    """The ground as a frame's points show it near the mount's: what the camera would have to say for it to be the ground."""

    points: int
    inliers: int
    height_mm: float
    tilt_deg: float
    pan_deg: float
    axis_below_horizon_deg: float
    roll_deg: float
    rms_mm: float
    rms_px: float


Plain = TypeVar("Plain")
BOOLS = ("at_map_edge", "at_picture_edge", "searched")


def plain(kind: Type[Plain], record: Any, **others: Any) -> Plain:
    """A dataclass with the members of its names of a record, which it does not need afterwards."""
    names = [name for name in kind.__dataclass_fields__ if name not in others]  # type: ignore[attr-defined]
    values = {name: getattr(record, name) for name in names}
    return kind(**{name: bool(value) if name in BOOLS else value for name, value in values.items()}, **others)


def listed(kind: Type[records.Record], address: Any, count: int) -> Iterator[records.Record]:
    """Records that lie so many bytes apart as the first one says."""
    step = kind.from_address(address).size if count else 0
    return (kind.from_address(address + i * step) for i in range(count))


def warnings_in(findings: records.Findings) -> Iterator[records.Warning]:
    return listed(records.Warning, findings.warnings, findings.warning_count)


def sentence_of(warning: records.Warning) -> str:
    form = words(ground().nadir_warning_sentence(warning.id))
    conversions = form.replace("%%", "").count("%")  # a number may have none
    return form % tuple(warning.numbers[i] * ground().nadir_warning_scale(warning.id, i) for i in range(conversions))


def warning_of(warning: records.Warning) -> Warning:
    names = [words(ground().nadir_warning_number_name(warning.id, i)) for i in range(warning.count)]
    return Warning(words(ground().nadir_warning_name(warning.id)), sentence_of(warning),
                   dict(zip(names, warning.numbers)))


def regions_in(findings: records.Findings) -> List[Region]:
    return [plain(Region, one) for one in listed(records.Region, findings.regions, findings.region_count)]


def areas_in(findings: records.Findings, names: Tuple[str, ...]) -> List[Occupancy]:
    """Of the road's areas, by their names in its order."""
    shares = [plain(Share, one) for one in listed(records.Share, findings.shares, findings.share_count)]
    areas = listed(records.Occupancy, findings.areas, findings.area_count)
    return [plain(Occupancy, one, name=name,
                  regions=tuple(shares[one.first_share:one.first_share + one.share_count]))
            for name, one in zip(names, areas)]


def pixels_in(findings: records.Findings) -> PixelCounts:
    return plain(PixelCounts, records.PixelCounts.from_address(findings.pixels))


def trust_in(findings: records.Findings) -> Trust:
    return plain(Trust, records.Trust.from_address(findings.trust))
