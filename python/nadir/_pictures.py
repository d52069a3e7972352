"""Picture files as arrays, read by the program as its commands read them."""
from __future__ import annotations

import os
import tempfile
from typing import Optional

import numpy as np

from . import _program
from . import _setup
from ._arrays import AnyArray
from ._camera import Path, checked_path


def read(path: Path, scale: Optional[float] = None) -> AnyArray:
    """Reads a picture: PNG, JPEG, PGM, PPM or BMP.

    Args:
        scale: what one pixel of disparity is stored as, of a file of disparities that does not say so itself.

    Returns: an array (height, width) of what the file says that it holds: intensities, uint8 or uint16 (colours become
    luminance, black of 8 bits becomes 1 because it is no gap in what was measured); disparities, float32 pixels; heights, float32
    mm, both nan where there is none; regions, uint16.

    Raises Error with the program's sentence for a file that cannot be read.

    >>> folder = tempfile.TemporaryDirectory()
    >>> scene = os.path.join(folder.name, "scene")
    >>> _program.run("synth", scene, "--size", "80x64", "--quiet")
    ''
    >>> left, truth = read(os.path.join(scene, "left.png")), read(os.path.join(scene, "disparity_gt.png"))
    >>> left.shape, str(left.dtype), str(truth.dtype)
    ((64, 80), 'uint16', 'float32')
    """
    with tempfile.TemporaryDirectory() as folder:
        numbers = os.path.join(folder, "numbers.npy")
        _program.run("preview", checked_path(path), "-o", numbers, *_setup.words_of(("scale",), {"scale": scale}))
        taken: AnyArray = np.load(numbers)
        return taken


def write_disparity(path: str, disparity: AnyArray) -> None:
    """Writes disparities in pixels as 16-bit PGM of pixels * 256, 0 for none."""
    levels = np.where(np.isnan(disparity), 0, np.rint(disparity * np.float64(256)))
    if levels.size and (levels.min() < 0 or levels.max() > 65535):
        raise ValueError("disparities must lie between 0 and 255.99 pixels")
    with open(path, "wb") as file:
        file.write(b"P5\n%d %d\n65535\n" % (levels.shape[1], levels.shape[0]))
        file.write(levels.astype(">u2").tobytes())
