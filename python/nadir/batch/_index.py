"""Which cameras an index tells of."""
from __future__ import annotations

import csv
import os
from typing import Dict

from .._errors import Error


def cameras_in(index: str) -> Dict[str, str]:
    """The camera files of an index, by the names of their results' folders: those of the files without ending."""
    cameras: Dict[str, str] = {}
    with open(index, newline="", encoding="utf-8-sig") as rows:
        for name in dict.fromkeys(row.get("camera") or "" for row in csv.DictReader(rows)):
            if not name:
                raise Error(f"not every row of {index} names a camera: name one for all of them")
            path = os.path.join(os.path.dirname(index), name)
            other = cameras.setdefault(os.path.splitext(os.path.basename(name))[0], path)
            if os.path.realpath(other) != os.path.realpath(path):
                raise Error(f"the cameras {other} and {path} of {index} have the same name")
    return cameras
