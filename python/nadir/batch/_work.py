"""What a worker does: it runs the program over a partition until that is whole, and then gives it its name."""
from __future__ import annotations

import dataclasses
import fcntl
import json
import os
import shutil
import time
from typing import Any, Dict, Tuple

from .. import _program
from .._errors import Error, ProgramError
from ._cuts import Cut

SKIPPED_FRAMES = 3  # the program's exit status where all is done, but not all of it can be relied on
WRONG_USAGE = 2
INTERRUPTED = 130


@dataclasses.dataclass(frozen=True)
class Recording:
    """What `nadir ground` is told of one camera's frames."""

    folder: str  # in which all paths are meant: a worker stands elsewhere
    source: Tuple[str, ...]
    camera: str
    out: str
    options: Tuple[str, ...]

    @property
    def words(self) -> Tuple[str, ...]:
        return ("ground", *self.source, "--camera", self.camera, *self.options, "--resume")

    def path(self, *names: str) -> str:
        return os.path.join(self.folder, self.out, *names)


@dataclasses.dataclass(frozen=True)
class Patience:
    """How often a fault that may pass is tried again, and after how long: each pause is four times the one before."""

    attempts: int
    pause_s: float

    def wait(self, attempt: int) -> None:
        time.sleep(self.pause_s * 4 ** attempt)


def ended(recording: Recording, *words: str) -> Dict[str, Any]:
    """What the program prints at its end. Damaged frames are lines with a reason, and no reason to stop."""
    try:
        text = _program.run(*recording.words, *words, "--json", folder=recording.folder)
    except ProgramError as error:
        if error.status != SKIPPED_FRAMES:
            raise
        text = error.output
    counts: Dict[str, Any] = json.loads(text)
    return counts


def sync_folder(path: str) -> None:
    number = os.open(path, os.O_RDONLY)
    try:
        os.fsync(number)
    finally:
        os.close(number)


def wait_for_lock(folder: str) -> None:
    """Waits while a program writes into a folder: it outlives the worker that started it, where that was killed alone."""
    number = os.open(folder, os.O_RDONLY)
    try:
        fcntl.flock(number, fcntl.LOCK_EX)
    except OSError:  # not every file system has locks
        pass
    finally:
        os.close(number)


def give_name(recording: Recording, cut: Cut) -> None:
    """From here on the partition is there, and it is whole: the program has brought its files to the disk."""
    try:
        os.rename(recording.path("working", cut.name), recording.path("parts", cut.name))
    except OSError:
        if not os.path.isdir(recording.path("parts", cut.name)):
            raise
        shutil.rmtree(recording.path("working", cut.name), ignore_errors=True)  # another worker was as fast
    for folder in ("parts", "working"):
        sync_folder(recording.path(folder))


def work_once(recording: Recording, cut: Cut) -> None:
    if os.path.isdir(recording.path("parts", cut.name)):
        return
    working = os.path.join(recording.out, "working", cut.name)
    os.makedirs(recording.path("working", cut.name), exist_ok=True)
    wait_for_lock(recording.path("working", cut.name))
    if os.path.isdir(recording.path("parts", cut.name)):  # whoever had the lock made it
        return
    ended(recording, "-o", working, "--frames", f"{cut.begin}:{cut.end}")
    give_name(recording, cut)


def work_on(recording: Recording, cut: Cut, patience: Patience) -> str:
    """Makes a partition. Returns why that was not possible, or "" where it is there.

    What was done of it before, here or on another machine, stays. Raises InterruptedError where a signal has ended the
    program: then this worker is about to end, too.
    """
    for attempt in range(patience.attempts):
        try:
            work_once(recording, cut)
            return ""
        except (Error, OSError) as error:
            reason = str(error).strip().splitlines()[-1] if str(error).strip() else repr(error)
            status = getattr(error, "status", None)
            if status == INTERRUPTED:
                raise InterruptedError(reason) from None
            if status == WRONG_USAGE:
                break
        if attempt + 1 < patience.attempts:
            patience.wait(attempt)
    return reason
