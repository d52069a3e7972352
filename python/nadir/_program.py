"""Runs the program `nadir` for what the libraries do not do."""
from __future__ import annotations

import json as _json
import os
import subprocess
from typing import Any, Union

from ._errors import ProgramError
from ._places import program_path

Argument = Union[str, int, float, "os.PathLike[str]"]


def words_of(argument: Argument) -> str:
    """An argument as the command line has it; a float in as many digits as tell it from all others."""
    if isinstance(argument, os.PathLike):
        return os.fspath(argument)
    return repr(argument) if isinstance(argument, float) else str(argument)


def run(*arguments: Argument) -> str:
    """What the program prints when it is run with these arguments.

    Raises ProgramError with the program's own sentence unless it ends with status 0.
    """
    ran = subprocess.run([program_path(), *map(words_of, arguments)], stdin=subprocess.DEVNULL, capture_output=True,
                         encoding="utf-8", errors="replace", check=False)
    if ran.returncode != 0:
        raise ProgramError(ran.stderr.strip() or f"nadir ended with status {ran.returncode}", ran.returncode, ran.stdout)
    return ran.stdout


def json(*arguments: Argument) -> Any:
    """The same with --json, read: dictionaries, lists, numbers."""
    return _json.loads(run(*arguments, "--json"))
