"""Arrays on their way into the libraries and out of them, without a copy wherever that can be."""
from __future__ import annotations

import os
from typing import Any, Set, Tuple

import numpy as np
import numpy.typing as npt

from . import _records as records
from ._libraries import Handle

Floats = npt.NDArray[np.float32]
Shorts = npt.NDArray[np.uint16]
AnyArray = npt.NDArray[Any]

SIDES = (5, 65535)  # of a picture, pixels
MOST_PIXELS = 2**25
NONE = np.float32(np.nan)


# The types that are taken, in either order of bytes.
PICTURES, MASKS, DISPARITIES = ({kind for one in types for kind in (np.dtype(one), np.dtype(one).newbyteorder("S"))}
                                for types in (("uint8", "uint16"), ("uint8", "bool"), ("float32",)))


def checked(name: str, array: Any, types: Set[np.dtype[Any]]) -> AnyArray:
    """The argument as a two-dimensional array of one of the types."""
    taken: AnyArray = array if type(array) is np.ndarray else made_array(name, array)
    if taken.dtype not in types:
        wanted = " or ".join(sorted({one.name for one in types}, key=lambda one: (len(one), one)))
        raise TypeError(f"{name} is an array of {taken.dtype}, but must be of {wanted}")
    if taken.ndim != 2:
        raise ValueError(f"{name} has the shape {taken.shape}, but must have two dimensions: (height, width)")
    height, width = taken.shape
    if not (SIDES[0] <= height <= SIDES[1] and SIDES[0] <= width <= SIDES[1] and height * width <= MOST_PIXELS):
        raise ValueError(f"{name} has the shape {taken.shape}, but each side must be {SIDES[0]} to {SIDES[1]}, "
                         f"and at most {MOST_PIXELS} pixels in all")
    return taken


def made_array(name: str, array: Any) -> AnyArray:
    """What numpy makes of something else."""
    if isinstance(array, (str, bytes, os.PathLike)):
        raise TypeError(f"{name} is {type(array).__name__}, but must be an array: read the picture first")
    if isinstance(array, np.ma.MaskedArray):
        raise TypeError(f"{name} is a masked array, whose mask would be lost: fill it first")
    try:
        return np.asarray(array)
    except ValueError as fault:
        raise TypeError(f"{name} is {type(array).__name__}, which makes no array: {fault}") from fault


def in_rows(array: AnyArray) -> AnyArray:
    """The array itself where its rows lie one behind the other with any gap between them, else a copy."""
    across, along = array.strides
    fits = array.dtype.isnative and along == array.itemsize and across >= array.shape[1] * array.itemsize
    fits = fits and across % array.itemsize == 0 and array.flags.aligned
    return array if fits else np.ascontiguousarray(array, array.dtype.newbyteorder("="))


def picture(name: str, array: Any) -> AnyArray:
    return in_rows(checked(name, array, PICTURES))


def pair(left: Any, right: Any) -> Tuple[AnyArray, AnyArray]:
    """Two pictures of one size and one depth."""
    first, second = picture("left", left), picture("right", right)
    if first.shape != second.shape:
        raise ValueError(f"left has the shape {first.shape} and right {second.shape}: they must be the same")
    if first.dtype != second.dtype:
        raise TypeError(f"left is an array of {first.dtype} and right of {second.dtype}: they must be the same")
    return first, second


def of_shape(name: str, array: AnyArray, shape: Tuple[int, ...]) -> AnyArray:
    if array.shape != shape:
        raise ValueError(f"{name} has the shape {array.shape}, but must have {shape}")
    return array


def mask_of(array: Any, shape: Tuple[int, ...]) -> AnyArray:
    """Bytes, those that are not 0 masked."""
    return in_rows(of_shape("mask", checked("mask", array, MASKS), shape))


def disparities_of(array: Any, shape: Tuple[int, ...]) -> AnyArray:
    return in_rows(of_shape("disparity", checked("disparity", array, DISPARITIES), shape))


def address(array: AnyArray) -> int:
    return int(array.__array_interface__["data"][0])


class Lent:
    """Memory of the library as numpy takes it: the array refers to this, and this to the memory's owner."""

    def __init__(self, owner: Handle, where: int, kind: np.dtype[Any], shape: Tuple[int, ...],
                 strides: Tuple[int, ...]) -> None:
        self.owner = owner
        self.__array_interface__ = {"version": 3, "data": (where, True), "typestr": kind.str, "shape": shape,
                                    "strides": strides}


def lent(owner: Handle, plane: records.Plane, kind: Any) -> AnyArray:
    """A plane as an array that cannot be written to and that keeps its owner alive."""
    form = np.dtype(kind)
    return np.asarray(Lent(owner, plane.data, form, (plane.height, plane.width), (plane.stride, form.itemsize)))


def pixels_of(raw: Shorts) -> Floats:
    """Disparities of 1/16 pixel in pixels, nan for none."""
    pixels = raw.astype(np.float32)
    np.multiply(pixels, np.float32(1 / 16), out=pixels)
    np.copyto(pixels, NONE, where=np.equal(raw, 0))
    return pixels


def heights_of(raw: Shorts) -> Floats:
    """Heights in mm, nan for what is unseen."""
    heights = raw.astype(np.float32)
    np.copyto(heights, NONE, where=np.equal(raw, 0))
    return heights
