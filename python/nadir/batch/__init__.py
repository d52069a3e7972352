"""Recordings larger than a machine's patience: `nadir ground` over partitions, on all processors or all of a cluster.

A recording is cut into partitions of consecutive frames. Each is a run of the program of its own, on whatever worker is
free, and the program joins their lines: they are to the byte those of its own run over everything. Nothing but files
tells what is done, so that a batch that was ended, at any moment and in any way, is begun again with the same call.

    OUT/frames.jsonl, OUT/run.json      as `nadir ground` writes them over everything
    OUT/parts/FROM-TO/                  a partition's own lines, and its maps: elevation/NAME.png, average/NAME.png
    OUT/working/FROM-TO/                one that is not whole yet

`python -m nadir.batch --help` does the same from a shell. docs/batch.md tells of clusters, and of very long recordings.
"""
from __future__ import annotations

import concurrent.futures
import dataclasses
import os
from typing import Any, Dict, List, Optional, Sequence, Tuple, Union

from .. import _program
from .._errors import Error
from ._cuts import Cut, cuts_in, cuts_of, usual_size
from ._index import cameras_in
from ._parquet import check_parquet, write_parquet
from ._progress import Progress
from ._work import Patience, Recording, ended, work_on

__all__ = ["Result", "run"]

Path = Union[str, "os.PathLike[str]"]
OWN_OPTIONS = {"camera", "frames", "help", "join", "json", "output", "quiet", "resume", "strict"}


@dataclasses.dataclass(frozen=True)
class Result:
    """What a batch has come to, over all cameras.

    Attributes:
        logs: the joined frames.jsonl of each camera.
        frames: lines in them.
        skipped: those of damaged frames, which hold a reason and no results.
        with_warnings: those whose results may not be relied on, which say why.
    """

    logs: Tuple[str, ...]
    frames: int
    skipped: int
    with_warnings: int


def run(source: Union[Path, Tuple[Path, Path]], camera: Optional[Path], out: Path, client: Any = None, *,
        partition: Optional[int] = None, workers: Optional[int] = None, attempts: int = 3, pause_s: float = 2.0,
        parquet: bool = False, progress: bool = True, **settings: Any) -> Result:
    """Maps a recording in partitions, and joins their lines to those of one run of `nadir ground` over everything.

    Args:
        source: a folder, a glob or an index (.csv), as `nadir ground` takes them; or two, of both cameras.
        camera: the camera file; None for every one that the index names, each with results in a folder OUT/NAME of its own.
        out: the folder of the results, which all workers can reach.
        client: a dask.distributed.Client, whose workers have this package; None for this machine.
        partition: frames of a partition; by default 100 to 1000, so that each worker gets some.
        workers: partitions worked on at a time without a client; by default one for each processor.
        attempts, pause_s: how often a partition is tried whose run ended with a fault that may pass (a file that is not
            there, no memory, a worker that was killed), and the seconds after the first one; each pause is four times
            the one before.
        parquet: write frames.parquet beside each frames.jsonl too, which needs pyarrow.
        progress: tell on standard error how far it is.
        settings: options of `nadir ground` by their names: areas="areas.toml", no_maps=True, fps=15.

    Raises:
        nadir.Error: the program refused what it was told, or partitions were given up: its sentence names the first.
            All others are there, and the same call goes on with those that are not.
        TypeError: a setting is one of those that a batch gives the program itself.
        ValueError: partition, workers or attempts are less than 1.

    Example:
        >>> import nadir.batch, os, tempfile
        >>> from nadir import _program
        >>> folder = tempfile.mkdtemp()
        >>> walk = os.path.join(folder, "walk")
        >>> _ = _program.run("synth", walk, "--frames", 3, "--size", "160x120", "--no-truth-pictures", "--height", 3500)
        >>> done = nadir.batch.run(walk, os.path.join(walk, "camera.toml"), os.path.join(folder, "result"),
        ...                        partition=2, progress=False, average=2)
        >>> done.frames, done.skipped, len(open(done.logs[0]).readlines())
        (3, 0, 3)
    """
    return run_words(source, camera, out, client, partition=partition, workers=workers, attempts=attempts,
                     pause_s=pause_s, parquet=parquet, progress=progress, options=words_of(settings))


def words_of(settings: Dict[str, Any]) -> List[str]:
    """Settings as the command line has them: True is a flag, and False and None are left out."""
    words: List[str] = []
    for name, value in settings.items():
        option = "--" + name.replace("_", "-")
        if value is True:
            words.append(option)
        elif value is not None and value is not False:
            values = value if isinstance(value, (list, tuple)) else [value]
            words += [option, *map(_program.words_of, values)]
    return words


def run_words(source: Union[Path, Tuple[Path, Path]], camera: Optional[Path], out: Path, client: Any, *,
              partition: Optional[int], workers: Optional[int], attempts: int, pause_s: float, parquet: bool,
              progress: bool, options: Sequence[str]) -> Result:
    """The same with the options as words."""
    for name, number in (("partition", partition), ("workers", workers), ("attempts", attempts)):
        if number is not None and number < 1:
            raise ValueError(f"{name} is {number}, and has to be at least 1")
    own = OWN_OPTIONS & {word.split("=")[0][2:] for word in options if word.startswith("--")}
    if own:
        raise TypeError(f"{', '.join(sorted(own))}: a batch gives that to nadir ground itself, or has no use for it")
    if parquet:
        check_parquet()
    if "--threads" not in options:
        options = [*options, "--threads", "1"]
    if workers is None:
        workers = sum(client.nthreads().values()) if client else len(os.sched_getaffinity(0))
    patience = Patience(attempts, pause_s)
    batches = [planned(recording, partition, max(workers, 1)) for recording in recordings_of(source, camera, out, options)]
    with client.get_executor(pure=False) if client else concurrent.futures.ThreadPoolExecutor(workers) as executor:
        work_through(executor, batches, patience, progress)
    counts = [joined(batch) for batch in batches]
    logs = tuple(os.path.join(batch.recording.out, "frames.jsonl") for batch in batches)
    for log in logs if parquet else ():
        write_parquet(log)
    return Result(logs, *(sum(count[name] for count in counts) for name in ("frames", "skipped", "with_warnings")))


def recordings_of(source: Union[Path, Tuple[Path, Path]], camera: Optional[Path], out: Path,
                  options: Sequence[str]) -> List[Recording]:
    sources = tuple(os.fspath(path) for path in source) if isinstance(source, tuple) else (os.fspath(source),)
    here = os.getcwd()
    if camera is not None:
        return [Recording(here, sources, os.fspath(camera), os.fspath(out), tuple(options))]
    if not sources[0].endswith(".csv"):
        raise Error(f"{sources[0]} is no index, so that it names no camera: name one")
    return [Recording(here, sources, path, os.path.join(out, name), tuple(options))
            for name, path in cameras_in(sources[0]).items()]


@dataclasses.dataclass(frozen=True)
class Batch:
    """A recording and its partitions, of which `missing` are not there yet."""

    recording: Recording
    frames: int
    missing: List[Cut]


def planned(recording: Recording, partition: Optional[int], workers: int) -> Batch:
    """The program counts the frames, and refuses here what it would refuse in every partition."""
    for folder in ("parts", "working"):
        os.makedirs(recording.path(folder), exist_ok=True)
    frames = join(recording)["frames_in_all"]
    there = cuts_in(recording.path("parts"))
    begun = [cut for cut in cuts_in(recording.path("working")) if cut not in there]
    cuts = cuts_of(frames, partition or usual_size(frames, workers), [*there, *begun])
    return Batch(recording, frames, [cut for cut in cuts if cut not in set(there)])


def join(recording: Recording) -> Dict[str, Any]:
    return ended(recording, "-o", recording.out, "--join", os.path.join(recording.out, "parts"))


def joined(batch: Batch) -> Dict[str, Any]:
    counts = join(batch.recording)
    if counts["frames"] < batch.frames:
        raise Error(f"{batch.recording.out}: partitions were joined up to frame {counts['frames']} of {batch.frames}")
    return counts


def fate(task: "concurrent.futures.Future[str]") -> Tuple[str, bool]:
    """Why a partition is not there, or ""; and whether that is because its worker was lost."""
    try:
        return task.result(), False
    except Exception as error:  # whatever the client says of its cluster
        return f"a worker was lost: {type(error).__name__}: {error}", True


def work_through(executor: concurrent.futures.Executor, batches: List[Batch], patience: Patience, shown: bool) -> None:
    """Has all partitions made. One that is given up does not keep others from being made."""
    frames = sum(batch.frames for batch in batches)
    progress = Progress(frames, frames - sum(cut.frames for batch in batches for cut in batch.missing), shown)
    tasks = {executor.submit(work_on, batch.recording, cut, patience): (batch.recording, cut, 1)
             for batch in batches for cut in batch.missing}
    given_up: List[str] = []
    try:
        while tasks:
            done, _ = concurrent.futures.wait(tasks, return_when=concurrent.futures.FIRST_COMPLETED)
            for task in done:
                recording, cut, attempt = tasks.pop(task)
                reason, is_lost = fate(task)
                if not reason:
                    progress.advance(cut.frames)
                elif is_lost and attempt < patience.attempts:
                    progress.say(f"{cut}: {reason}; they are tried again")
                    tasks[executor.submit(work_on, recording, cut, patience)] = (recording, cut, attempt + 1)
                else:
                    given_up.append(f"{cut}: {reason}")
                    progress.say("given up: " + given_up[-1])
    finally:
        for task in tasks:
            task.cancel()
    if given_up:
        raise Error(f"{len(given_up)} partitions were given up; the same call tries them again. {given_up[0]}")
