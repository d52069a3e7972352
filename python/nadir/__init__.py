"""Stereo vision for cameras that look at the ground: from numpy arrays to disparities, heights and what stands there.

The package calls the shared libraries libnadir and libnadirground, and runs the program `nadir` for what they do not
do; nothing is worked out twice, so all results have the same bits as the program's.
"""
from ._camera import Area, Camera
from ._check import Checkup, check
from ._errors import Error, ProgramError, ResultWarning
from ._findings import GroundPlane, Occupancy, PixelCounts, Region, Share, Trust, Warning  # pylint: disable=redefined-builtin
from ._level import Levelled, level
from ._libraries import version
from ._match import match
from ._rectifier import Rectifier
from ._road import Result, Road
from ._tracker import Track, Tracker

__all__ = ["Area", "Camera", "Checkup", "Error", "GroundPlane", "Levelled", "Occupancy", "PixelCounts", "ProgramError",
           "Rectifier", "Region", "Result", "ResultWarning", "Road", "Share", "Track", "Tracker", "Trust", "Warning", "check", "level",
           "match", "version"]
