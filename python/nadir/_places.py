"""Where the shared libraries and the program lie: in the package, in a build folder, or where the system has them."""
from __future__ import annotations

import os
import shutil
from typing import Optional

from ._errors import Error

LIBRARIES = {"nadir": "libnadir.so.0", "nadirground": "libnadirground.so.0"}
PLATFORM = os.path.join(os.path.dirname(os.path.abspath(__file__)), "_platform")  # which a wheel fills
# Where a build folder has them, which NADIR_PYTHON_BUILD names.
BUILT = {"libnadir.so.0": "", "libnadirground.so.0": "ground", "nadir": "tools"}


def carried(name: str) -> Optional[str]:
    """The path of a file that the package carries or the build folder holds, or None where neither does."""
    build = os.environ.get("NADIR_PYTHON_BUILD")
    folders = [PLATFORM] + ([os.path.join(build, BUILT[name])] if build else [])
    paths = [os.path.join(folder, name) for folder in folders]
    return next((path for path in paths if os.path.isfile(path)), None)


def library_path(library: str) -> str:
    """What to load for "nadir" or "nadirground": a path, or a name that the system's loader knows."""
    return carried(LIBRARIES[library]) or LIBRARIES[library]


def program_path() -> str:
    """The path of the program `nadir`."""
    path = carried("nadir") or shutil.which("nadir")
    if path is None:
        raise Error("the program nadir is neither in the package, nor in NADIR_PYTHON_BUILD, nor in PATH")
    return path
