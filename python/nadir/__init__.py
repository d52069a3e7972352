"""Stereo vision for cameras that look at the ground: from numpy arrays to disparities, heights and what stands there.

The package calls the shared libraries libnadir and libnadirground, and runs the program `nadir` for what they do not
do; nothing is worked out twice, so all results have the same bits as the program's.
"""
from ._errors import Error, ProgramError

__all__ = ["Error", "ProgramError"]
