"""Runs the program `nadir` for what the libraries do not do."""
from __future__ import annotations

import json as _json
import os
import subprocess
from typing import Any, Optional, SupportsFloat, Union

from ._errors import ProgramError
from ._places import program_path

Argument = Union[str, SupportsFloat, "os.PathLike[str]"]


def number_of(value: Any) -> str:
    """A number, numpy's too, in as many digits as tell it from all others."""
    return str(value.__index__()) if hasattr(value, "__index__") else repr(float(value))


def words_of(argument: Argument) -> str:
    """An argument as the command line has it."""
    if isinstance(argument, os.PathLike):
        return os.fspath(argument)
    return argument if isinstance(argument, str) else number_of(argument)


def told(*arguments: Argument, folder: Optional[str] = None) -> subprocess.CompletedProcess[str]:
    """What the program says when it is run with these arguments, in `folder` (here).

    Raises ProgramError with the program's own sentence unless it ends with status 0.
    """
    ran = subprocess.run([program_path(), *map(words_of, arguments)], stdin=subprocess.DEVNULL, capture_output=True,
                         encoding="utf-8", errors="replace", check=False, cwd=folder)
    if ran.returncode != 0:
        raise ProgramError(ran.stderr.strip() or f"nadir ended with status {ran.returncode}", ran.returncode, ran.stdout)
    return ran


def run(*arguments: Argument, folder: Optional[str] = None) -> str:
    """What the program prints then."""
    return told(*arguments, folder=folder).stdout


def json(*arguments: Argument) -> Any:
    """The same with --json, read: dictionaries, lists, numbers."""
    return _json.loads(run(*arguments, "--json"))
