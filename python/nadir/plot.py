"""Draws disparities, elevation maps and regions with matplotlib, which nothing else of the package needs.

Each function draws on `axes`, or on a figure of its own, and returns the axes: `nadir.plot.regions(result).figure.savefig("map.png")`.
"""
from __future__ import annotations

import importlib
from typing import Any, Optional, Tuple

import numpy as np

from ._arrays import AnyArray, Floats
from ._road import Result

Limits = Optional[Tuple[float, float]]

UNKNOWN = "#969696"  # where there is no value, as in the program's pictures
COLOURS = "turbo"


def disparity(pixels: Floats, *, axes: Any = None, limits: Limits = None) -> Any:
    """Draws disparities.

    Args:
        pixels: float32 (height, width), pixels, nan for none.
        limits: what the ends of the colours mean; without them the lowest 3 and the highest 1 percent lie beyond.
    """
    axes = _axes(axes)
    shown = axes.imshow(pixels, cmap=_colours(), **_ends(pixels, limits), interpolation="nearest")
    axes.set(xlabel="column, pixels", ylabel="row, pixels")
    _bar(axes, shown, "disparity, pixels")
    return axes


def elevation(result: Result, heights: Optional[Floats] = None, *, axes: Any = None, limits: Limits = None) -> Any:
    """Draws the map of a result, in the world: row 0 on top, which an upright camera sees farthest away.

    Args:
        heights: another map of the same road instead, an average say: float32, mm, nan for unseen.
        limits: as of `disparity`.
    """
    axes = _axes(axes)
    taken = result.elevation if heights is None else heights
    shown = axes.imshow(taken, cmap=_colours(), extent=_extent(result), **_ends(taken, limits), interpolation="nearest")
    _name_world(axes)
    _bar(axes, shown, "height above the ground, mm")
    return axes


def regions(result: Result, *, axes: Any = None) -> Any:
    """Draws what stands on the ground: the map in grey, each region in a colour with its number and height, and the areas of
    interest as outlines with their names."""
    axes = _axes(axes)
    heights = result.elevation
    shown = axes.imshow(heights, cmap=_colours("Greys", "#d5e1ec"), extent=_extent(result), **_ends(heights, None),
                        interpolation="nearest")
    labels = result.labels
    if labels is not None:
        _colour_regions(axes, result, labels)
    for index, area in enumerate(result.road.areas):
        _outline(axes, result.road.area_outline_mm(index), area.name)
    _name_world(axes)
    _bar(axes, shown, "height above the ground, mm")
    return axes


def _colour_regions(axes: Any, result: Result, labels: AnyArray) -> None:
    colours = _matplotlib("pyplot").get_cmap("tab10").colors
    painted = np.zeros((*labels.shape, 4))
    for region in result.regions:
        painted[labels == region.label] = (*colours[(region.label - 1) % len(colours)], 0.9)
    axes.imshow(painted, extent=_extent(result), interpolation="nearest")
    for region in result.regions:
        _note(axes, (region.centre_x_mm, region.centre_y_mm), f"{region.label}\n{region.highest_mm} mm")


def _outline(axes: Any, corners: AnyArray, name: str) -> None:
    closed = np.vstack([corners, corners[:1]])
    axes.plot(closed[:, 0], closed[:, 1], color="black", linewidth=1.2, linestyle="--")
    top = corners[np.argmin(corners[:, 1])]
    axes.annotate(name, top, xytext=(0, 3), textcoords="offset points", fontsize="small")


def _note(axes: Any, place: Tuple[float, float], text: str) -> None:
    outline = _matplotlib("patheffects").withStroke(linewidth=2, foreground="white")
    axes.annotate(text, place, ha="center", va="center", fontsize="small", path_effects=[outline])


def _name_world(axes: Any) -> None:
    axes.set(xlabel="world x, mm", ylabel="world y, mm (far on top)")


def _extent(result: Result) -> Tuple[float, float, float, float]:
    """Left, right, bottom and top of the map in the world, whose y grows downwards."""
    (x, y), camera = result.road.map_corner_mm, result.road.camera
    return x, x + camera.map_width_cells * camera.cell_mm, y + camera.map_height_cells * camera.cell_mm, y


def _ends(values: Floats, limits: Limits) -> Any:
    if limits is None:
        known = values[~np.isnan(values)]
        limits = (float(np.percentile(known, 3)), float(np.percentile(known, 99))) if known.size else (0.0, 1.0)
    return {"vmin": limits[0], "vmax": limits[1]}


def _bar(axes: Any, shown: Any, words: str) -> None:
    axes.figure.colorbar(shown, ax=axes, label=words, extend="both")


def _colours(name: str = COLOURS, unknown: str = UNKNOWN) -> Any:
    return _matplotlib("pyplot").get_cmap(name).with_extremes(bad=unknown)


def _axes(axes: Any) -> Any:
    return _matplotlib("pyplot").subplots(layout="constrained")[1] if axes is None else axes


def _matplotlib(module: str) -> Any:
    try:
        return importlib.import_module(f"matplotlib.{module}")
    except ImportError as fault:
        raise ImportError("nadir.plot needs matplotlib, which is not there: apt-get install python3-matplotlib, or "
                          "pip install matplotlib") from fault
