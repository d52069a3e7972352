"""Asks the program what its options come to: it alone knows which settings follow from which words."""
from __future__ import annotations

import os
from functools import lru_cache
from typing import Any, Mapping, SupportsFloat, Tuple

from . import _program
from . import _records as records


def words_of(known: Tuple[str, ...], options: Mapping[str, Any]) -> Tuple[str, ...]:
    """Options as arguments of the program: min_height=300 is --min-height=300, None is left out."""
    words = []
    for name, value in sorted(options.items()):
        plain = name.rstrip("_")  # for_, as `for` is a word of Python's
        if plain not in known:
            raise TypeError(f"there is no setting {name}; there are {', '.join(known)}")
        if not (value is None or isinstance(value, (str, SupportsFloat, os.PathLike))):
            raise TypeError(f"{name} is {type(value).__name__}, but must be a text or a number")
        option = "--" + plain.replace("_", "-")
        if value is True:
            words.append(option)
        elif value is not None and value is not False:
            words.append(f"{option}={_program.words_of(value)}")
    return tuple(words)


@lru_cache(maxsize=64)
def match_settings(words: Tuple[str, ...]) -> records.Settings:
    """Those of nadir disparity with these options."""
    asked = _program.json("disparity", "left", "right", "-o", "disparity.png", "--dry-run", *words)
    return records.filled(records.Settings, asked)
