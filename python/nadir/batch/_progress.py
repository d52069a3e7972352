"""How far a batch is, on standard error."""
from __future__ import annotations

import sys
import time


def duration(seconds: float) -> str:
    """As people say it: 45 s, 12 min, 3.5 h, 2.1 days."""
    for least, unit in ((172800, "days"), (7200, "h")):
        if seconds >= least:
            return f"{seconds / (86400 if unit == 'days' else 3600):.1f} {unit}"
    return f"{seconds / 60:.0f} min" if seconds >= 120 else f"{seconds:.0f} s"


class Progress:
    """Tells, at most once a second, how much is done, the rate, and the time that remains.

    Frames of an earlier run are done, but do not count for the rate.
    """

    def __init__(self, total: int, done: int, shown: bool) -> None:
        self.total, self.done, self.before, self.shown = total, done, done, shown
        self.begun = self.told = time.monotonic()

    def sentence(self) -> str:
        seconds = time.monotonic() - self.begun
        rate = (self.done - self.before) / seconds if seconds > 0 else 0.0
        if rate == 0:
            return f"{self.done} of {self.total} frames"
        left = duration((self.total - self.done) / rate)
        return f"{self.done} of {self.total} frames, {rate:.3g} a second, {left} left"

    def advance(self, frames: int) -> None:
        self.done += frames
        if self.done == self.total or time.monotonic() - self.told >= 1:
            self.told = time.monotonic()
            self.say(self.sentence())

    def say(self, sentence: str) -> None:
        if self.shown:
            print("nadir.batch: " + sentence, file=sys.stderr, flush=True)
