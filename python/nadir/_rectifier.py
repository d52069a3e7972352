"""From the pictures that cameras take to rectified ones."""
from __future__ import annotations

import ctypes
import os
import tempfile
from dataclasses import replace
from typing import Any, Mapping, Optional, Tuple

import numpy as np

from . import _arrays as arrays
from . import _program
from . import _records as records
from ._camera import Camera, Path, checked_path
from ._libraries import Handle, expect, ground, made


class Side:
    """One of both cameras: its picture's shape, the rectified one's, and the library's rectifier."""

    def __init__(self, told: Mapping[str, Any]) -> None:
        lens, view = records.filled(records.Lens, told["lens"]), records.filled(records.RectifiedView, told["view"])
        self.taken = (lens.height_px, lens.width_px)
        self.rectified = (view.height_px, view.width_px)
        fault = records.sized(records.Fault)
        self.handle: Handle = made("rectifier", ctypes.byref(lens), ctypes.byref(view), fault=fault)

    def process(self, picture: arrays.AnyArray) -> arrays.AnyArray:
        rectified = np.empty(self.rectified, picture.dtype)
        expect(ground().nadir_rectifier_process(self.handle.pointer, 8 * picture.itemsize, arrays.address(picture),
                                                picture.strides[0], arrays.address(rectified), rectified.strides[0]))
        return rectified


class Rectifier:
    """Takes pairs of cameras with lenses to rectified ones, as `nadir rectify` does, with the same bits.

    It does not change while it is used: any number of threads may use one at the same time.

    Args:
        camera: with lenses, or beside `calibration` whichever fits it.
        calibration: files of a calibration, one or two; None: the camera's own lenses.
        unit_mm, lens: as for `Camera.imported`.

    Raises Error with the program's sentence.

    >>> lens = {"model": "plumb-bob", "focal_x_px": 120, "focal_y_px": 120, "principal_x_px": 79.5,
    ...         "principal_y_px": 59.5, "k1": -0.1}
    >>> pose = {"rotation": [1, 0, 0, 0, 1, 0, 0, 0, 1], "translation_mm": [-100, 0, 0]}
    >>> camera = Camera(baseline_mm=100, focal_px=120, principal_x_px=79.5, principal_y_px=59.5, width_px=160,
    ...                 height_px=120, lenses={"left_lens": lens, "right_lens": lens, "pose": pose})
    >>> bent = np.full((120, 160), 1000, np.uint16)
    >>> left, right = Rectifier(camera).process(bent, bent)
    >>> left.shape, int(left[60, 80])
    ((120, 160), 1000)
    """

    def __init__(self, camera: Camera, *calibration: Path, unit_mm: Optional[float] = None,
                 lens: Optional[str] = None) -> None:
        if not isinstance(camera, Camera):
            raise TypeError(f"camera is {type(camera).__name__}, but must be a nadir.Camera")
        if not calibration and camera.lenses is None:
            raise ValueError("the camera has no lenses, and no calibration is given: nothing says how to rectify")
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "camera.toml")
            mounted(camera).write(path)
            files = ["--calibration", *[checked_path(file) for file in calibration]] if calibration else []
            words = [f"--{name}={value}" for name, value in (("unit-mm", unit_mm), ("lens", lens)) if value is not None]
            told = _program.json("ground", "left", "right", "-o", "folder", "--no-regions", "--dry-run", "--camera", path,
                                 *words, *files)
        self._sides = Side(told["rectifier"]["left"]), Side(told["rectifier"]["right"])

    @classmethod
    def told(cls, told: Mapping[str, Any]) -> Rectifier:
        """Of what the program tells."""
        rectifier = cls.__new__(cls)
        rectifier._sides = Side(told["left"]), Side(told["right"])
        return rectifier

    def process(self, left: Any, right: Any) -> Tuple[arrays.AnyArray, arrays.AnyArray]:
        """The rectified pair, arrays of its own of the same type.

        Args:
            left, right: arrays (height, width) of the lenses' size, uint8 or uint16. A 0 of uint16 is no data, before
                and after.

        Raises TypeError and ValueError for arrays of another type or shape.
        """
        first, second = self._sides
        left = arrays.of_shape("left", arrays.picture("left", left), first.taken)
        right = arrays.of_shape("right", arrays.picture("right", right), second.taken)
        return first.process(left), second.process(right)


def mounted(camera: Camera) -> Camera:
    """Any mount will do where none is needed."""
    return replace(camera, height_mm=camera.height_mm or 1000.0, tilt_deg=camera.tilt_deg or 0.0)
