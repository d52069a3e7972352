"""Rendered scenes, whose every measure is known."""
from __future__ import annotations

import os
from dataclasses import dataclass
from typing import Any, Optional, Tuple, Union

from . import _program
from . import _setup
from ._arrays import AnyArray
from ._camera import Camera, Path, checked_path
from ._pictures import read

OPTIONS = ("scene", "seed", "noise", "dead_area", "frames", "fps", "threads", "resume", "no_truth_pictures", "size", "baseline",
           "focal", "height", "tilt", "pan", "grid")


@dataclass(frozen=True)
class Scene:
    """A rendered pair, or a sequence of pairs, and the folder that holds it; `nadir synth --help` lists its files.

    Attributes:
        frames: of a sequence; 0 for a pair. The figures below are those of a pair, and None for a sequence.
        occluded_percent: pixels of the left picture that the right one does not show.
    """

    folder: str
    frames: int
    scene: Optional[str] = None
    least_disparity_px: Optional[float] = None
    largest_disparity_px: Optional[float] = None
    occluded_percent: Optional[float] = None
    objects: Optional[int] = None
    tallest_mm: Optional[float] = None

    @property
    def camera(self) -> Camera:
        return Camera.read(self.path("camera.toml"))

    @property
    def left(self) -> AnyArray:
        """The left picture of a pair: uint16 (height, width), 12 bits."""
        return self.picture("left")

    @property
    def right(self) -> AnyArray:
        return self.picture("right")

    def path(self, name: str) -> str:
        """Of one of its files: "areas.toml"."""
        return os.path.join(self.folder, name)

    def picture(self, name: str, frame: int = 0) -> AnyArray:
        """One of its pictures as `nadir.read` gives it: "left", "disparity_gt", "elevation_gt", "regions_gt"."""
        return read(self.path(f"{name}/{frame:06}.png" if self.frames else f"{name}.png"))


def synth(folder: Path, *, scene: Optional[str] = None, seed: Optional[int] = None, noise: Optional[float] = None,
          dead_area: bool = False, frames: Optional[int] = None, fps: Optional[float] = None, threads: Optional[int] = None,
          resume: bool = False, no_truth_pictures: bool = False, size: Union[None, str, Tuple[int, int]] = None,
          baseline: Optional[float] = None, focal: Optional[float] = None, height: Optional[float] = None,
          tilt: Optional[float] = None, pan: Optional[float] = None, grid: Optional[str] = None) -> Scene:
    """Renders a stereo pair, or with `frames` a sequence, of a scene with the truth about it.

    Args:
        folder: receives the files; made unless it exists.
        size: of the pictures, (width, height) or "640x480".

    The others are the options of `nadir synth`, mm, pixels and degrees; `nadir synth --help` tells what each is if it is not
    given. Raises Error with the program's sentence.

    >>> import tempfile
    >>> folder = tempfile.TemporaryDirectory()
    >>> made = synth(os.path.join(folder.name, "scene"), scene="people", size=(80, 64))
    >>> made.objects, made.left.shape, made.camera.height_mm
    (6, (64, 80), 3000.0)
    """
    if isinstance(size, tuple):
        size = "x".join(map(_program.number_of, size))
    options = {"scene": scene, "seed": seed, "noise": noise, "dead_area": dead_area, "frames": frames, "fps": fps,
               "threads": threads, "resume": resume, "no_truth_pictures": no_truth_pictures, "size": size,
               "baseline": baseline, "focal": focal, "height": height, "tilt": tilt, "pan": pan, "grid": grid}
    path, words = checked_path(folder), _setup.words_of(OPTIONS, options)
    if frames is not None:
        _program.run("synth", path, *words, "--quiet")
        return Scene(path, int(frames))
    figures: Any = _program.json("synth", path, *words)
    return Scene(path, 0, **figures)
