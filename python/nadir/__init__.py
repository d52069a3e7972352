"""Stereo vision for cameras that look at the ground: from numpy arrays to disparities, heights and what stands there.

The package calls the shared libraries libnadir and libnadirground, and runs the program `nadir` for what they do not
do; nothing is worked out twice, so all results have the same bits as the program's.
"""
from ._camera import Area, Camera
from ._check import Checkup, check
from ._errors import Error, ProgramError, ResultWarning
from ._evaluate import AreaErrors, DisparityErrors, HeightErrors, ObjectVerdict, RegionErrors, TrackErrors, evaluate
from ._findings import GroundPlane, Occupancy, PixelCounts, Region, Share, Trust, Warning  # pylint: disable=redefined-builtin
from ._level import Levelled, level
from ._libraries import version
from ._match import match
from ._pictures import read
from ._plan import Plan, PlannedPlace, plan
from ._rectifier import Rectifier
from ._road import Result, Road
from ._synth import Scene, synth
from ._tracker import Track, Tracker

__all__ = ["Area", "AreaErrors", "Camera", "Checkup", "DisparityErrors", "Error", "GroundPlane", "HeightErrors",
           "Levelled", "ObjectVerdict", "Occupancy", "PixelCounts", "Plan", "PlannedPlace", "ProgramError",
           "Rectifier", "Region", "RegionErrors", "Result", "ResultWarning", "Road", "Scene", "Share", "Track",
           "TrackErrors", "Tracker", "Trust", "Warning", "check", "evaluate", "level", "match", "plan", "read",
           "synth", "version"]
