"""Where a recording is cut into partitions, and under which names these lie."""
from __future__ import annotations

import dataclasses
import os
import re
from typing import Iterable, List, Optional


@dataclasses.dataclass(frozen=True, order=True)
class Cut:
    """Frames from `begin` up to `end`, which is not among them, counted from 0 in their order."""

    begin: int
    end: int

    @property
    def frames(self) -> int:
        return self.end - self.begin

    def __str__(self) -> str:
        return f"frames {self.begin} to {self.end - 1}"

    @property
    def name(self) -> str:
        """Names in their order are cuts in theirs."""
        return f"{self.begin:012}-{self.end:012}"


def cut_named(name: str) -> Optional[Cut]:
    found = re.fullmatch(r"(\d{12,})-(\d{12,})", name)
    return Cut(int(found[1]), int(found[2])) if found else None


def cuts_in(folder: str) -> List[Cut]:
    """The partitions that have a folder in `folder`."""
    return sorted(cut for cut in map(cut_named, os.listdir(folder)) if cut)


def cuts_of(frames: int, size: int, made: Iterable[Cut]) -> List[Cut]:
    """All partitions of a recording. Cuts that were made before stay, so that nothing is worked on twice."""
    cuts: List[Cut] = []
    reached = 0
    for cut in [*sorted(made), Cut(frames, frames)]:
        cuts += [Cut(begin, min(begin + size, cut.begin)) for begin in range(reached, cut.begin, size)]
        cuts += [cut] if cut.frames else []
        reached = cut.end
    return cuts


def usual_size(frames: int, workers: int) -> int:
    """Frames of a partition: every worker gets some, and starting the program and warming averages up cost little."""
    return max(100, min(1000, frames // (4 * workers)))
