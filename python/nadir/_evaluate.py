"""Results judged by the truth."""
from __future__ import annotations

import json
import os
import tempfile
import warnings
from dataclasses import dataclass
from typing import Any, Dict, List, Optional, Tuple, Union

import numpy as np
import numpy.typing as npt

from . import _program
from . import _setup
from ._arrays import DISPARITIES, checked
from ._camera import Path, checked_path
from ._errors import ResultWarning
from ._pictures import write_disparity

OPTIONS = ("scale", "truth_scale", "visible", "error_map", "error_range", "heights", "plot", "area")


@dataclass(frozen=True)
class DisparityErrors:
    """Errors of disparities in pixels, disparity - truth; shares are fractions of 1.

    Attributes:
        density: of the pixels with a known truth, the share that has a value.
        bad: of the pixels with both, the share whose error exceeds 0.5, 1 and 2 pixels, by these numbers.
    """

    pixels: int
    truth_pixels: int
    compared_pixels: int
    density: Optional[float]
    bad: Dict[float, Optional[float]]
    mean: Optional[float]
    median: Optional[float]
    mean_absolute: Optional[float]
    median_absolute: Optional[float]
    percentile_95_absolute: Optional[float]
    rms: Optional[float]


@dataclass(frozen=True)
class HeightErrors:
    """Errors of an elevation map, mm; `seen_share` is the share of the cells with a known truth that are seen."""

    cells: int
    truth_cells: int
    compared_cells: int
    seen_share: Optional[float]
    mean_mm: Optional[float]
    median_mm: Optional[float]
    mean_absolute_mm: Optional[float]
    median_absolute_mm: Optional[float]
    percentile_95_absolute_mm: Optional[float]
    rms_mm: Optional[float]


@dataclass(frozen=True)
class ObjectVerdict:
    """What became of an object of a scene: "found", "missed", "split" or "merged", and the labels of its regions.

    Errors are those of the region that was found, `area_error` a share of the object's area; None for what was not
    found, and the area's for what is cut off.
    """

    region: int
    kind: str
    verdict: str
    labels: Tuple[int, ...]
    position_error_mm: Optional[float]
    height_error_mm: Optional[float]
    cut_off: bool
    area_error: Optional[float]


@dataclass(frozen=True)
class RegionErrors:
    """Regions compared with a scene's objects; `nadir evaluate --help` says when one is found, missed, split or merged."""

    objects: int
    found: int
    missed: int
    split: int
    merged: int
    missed_cut_off: int
    false_regions: int
    position_mean_mm: Optional[float]
    position_largest_mm: Optional[float]
    height_mean_mm: Optional[float]
    height_mean_absolute_mm: Optional[float]
    height_largest_mm: Optional[float]
    area_mean: Optional[float]
    area_mean_absolute: Optional[float]
    verdicts: Tuple[ObjectVerdict, ...]


@dataclass(frozen=True)
class TrackErrors:
    """Errors of the heights in an area over a sequence, mm; `share` is that of the frames with a truth that have a height."""

    frames: int
    share: Optional[float]
    mean_mm: Optional[float]
    mean_absolute_mm: Optional[float]
    rms_mm: Optional[float]
    percentile_95_absolute_mm: Optional[float]


@dataclass(frozen=True)
class AreaErrors:
    """What an area of interest tells of its tallest figure: tracked over the frames, and by each frame alone."""

    name: str
    frames: int
    frames_with_truth: int
    tracked: TrackErrors
    single: TrackErrors


Errors = Union[DisparityErrors, HeightErrors, RegionErrors, List[AreaErrors]]
Judged = Union[Path, npt.NDArray[np.float32]]


def evaluate(picture: Judged, truth: Judged, *, scale: Optional[float] = None, truth_scale: Optional[float] = None,
             visible: Optional[str] = None, error_map: Optional[Path] = None, error_range: Optional[float] = None,
             heights: bool = False, plot: Optional[Path] = None, area: Optional[str] = None) -> Errors:
    """Compares disparities, an elevation map or regions with the truth.

    Args:
        picture: a file of disparities or heights, or the folder of `nadir ground`; or disparities, float32 (height,
            width) in pixels, nan for none, which are judged in steps of 1/256 pixel (and none is what that rounds to 0).
        truth: the same of the true ones; or the folder of `nadir.synth`.

    The others are the options of `nadir evaluate`.

    Returns: DisparityErrors, HeightErrors of two maps, RegionErrors of two folders, and of two folders of sequences the
    AreaErrors of each area. What it is warned of is said by `warnings.warn` (`ResultWarning`).

    Raises Error with the program's sentence, TypeError and ValueError for arrays of another type or shape.

    >>> truth = np.full((60, 80), 20, np.float32)
    >>> found = np.where(np.arange(80) < 20, np.float32(np.nan), truth + np.float32(0.25))
    >>> errors = evaluate(found, truth)
    >>> errors.density, errors.mean, errors.bad[0.5] == 0
    (0.75, 0.25, True)
    """
    options = {"scale": scale, "truth_scale": truth_scale, "visible": visible, "error_map": error_map,
               "error_range": error_range, "heights": heights, "plot": plot, "area": area}
    with tempfile.TemporaryDirectory() as folder:
        first = _file_of("picture", picture, "scale", options, folder)
        second = _file_of("truth", truth, "truth_scale", options, folder)
        said = _program.told("evaluate", first, second, *_setup.words_of(OPTIONS, options), "--json")
    for line in said.stderr.splitlines():
        warnings.warn(line, ResultWarning, stacklevel=2)
    return _errors_of(json.loads(said.stdout))


def _file_of(name: str, judged: Any, scale: str, options: Dict[str, Any], folder: str) -> str:
    """The path of what is judged; an array becomes a file whose scale is told."""
    if isinstance(judged, (str, os.PathLike)):
        return checked_path(judged)
    if options[scale] is not None:
        raise ValueError(f"{scale} is for files, but {name} is an array, of pixels")
    path = os.path.join(folder, name + ".pgm")
    write_disparity(path, checked(name, judged, DISPARITIES))
    options[scale] = 256
    return path


def _errors_of(told: Dict[str, Any]) -> Errors:
    """Which comparison was made is told by what it counts."""
    if "areas" in told:
        return [_area_of(**area) for area in told["areas"]]
    if "objects" in told:
        return RegionErrors(verdicts=tuple(_verdict_of(**one) for one in told.pop("verdicts")), **told)
    if "cells" in told:
        return HeightErrors(**told)
    bad = {float(key[4:]): told.pop(key) for key in [key for key in told if key.startswith("bad_")]}
    return DisparityErrors(bad=bad, **told)


def _area_of(tracked: Any, single: Any, **others: Any) -> AreaErrors:
    return AreaErrors(tracked=TrackErrors(**tracked), single=TrackErrors(**single), **others)


def _verdict_of(labels: Any, **others: Any) -> ObjectVerdict:
    return ObjectVerdict(labels=tuple(labels), **others)
