"""python -m nadir.batch: the same from a shell."""
from __future__ import annotations

import argparse
import importlib
import sys
from typing import Any, List, Sequence

from .._errors import Error
from . import run_words

DESCRIPTION = """Maps a recording in partitions, on all processors of this machine or all of a Dask cluster, and joins their lines
to those of one run of nadir ground over everything. Ended in any way, the same command goes on."""
EXAMPLES = """Options of nadir ground stand behind --. Examples:
  python -m nadir.batch walk --camera walk/camera.toml -o result -- --areas walk/areas.toml --fps 15
  python -m nadir.batch index.csv -o result --parquet -- --times ms
  python -m nadir.batch cam0 cam1 --camera camera.toml -o result --scheduler tcp://10.0.0.1:8786

Exit status: 0 done; 3 done, but damaged frames were skipped, whose lines say why; 1 failed, 2 wrong usage, 130 ended by
Ctrl-C."""
SKIPPED = 3


def parser() -> argparse.ArgumentParser:
    own = argparse.ArgumentParser("python -m nadir.batch", description=DESCRIPTION, epilog=EXAMPLES,
                                  formatter_class=argparse.RawDescriptionHelpFormatter, allow_abbrev=False)
    own.add_argument("source", metavar="SOURCE", help="folder, glob in quotes, or index (.csv), as for nadir ground")
    own.add_argument("right", metavar="RIGHT", nargs="?", help="the right camera's folder or glob, if it has its own")
    own.add_argument("--camera", metavar="FILE", help="camera file (default: every one that the index names)")
    own.add_argument("-o", "--output", metavar="FOLDER", required=True, help="receives frames.jsonl, run.json and parts/")
    own.add_argument("--partition", metavar="N", type=int, help="frames of a partition (default: 100 to 1000)")
    own.add_argument("--workers", metavar="N", type=int,
                     help="partitions at a time on this machine (default: one for each processor)")
    own.add_argument("--scheduler", metavar="ADDRESS", help="of a Dask cluster, whose workers do the work")
    own.add_argument("--attempts", metavar="N", type=int, default=3,
                     help="runs of a partition until it is given up (default: %(default)s)")
    own.add_argument("--pause", metavar="S", type=float, default=2.0,
                     help="seconds after the first of them, four times as many after each further one (default: %(default)s)")
    own.add_argument("--parquet", action="store_true", help="write frames.parquet too, which needs pyarrow")
    own.add_argument("-q", "--quiet", action="store_true", help="do not tell how far it is")
    return own


def client_of(scheduler: str) -> Any:
    try:
        distributed = importlib.import_module("distributed")
    except ImportError:
        raise Error("--scheduler needs Dask: python3-distributed of Debian, or distributed of PyPI") from None
    try:
        return distributed.Client(scheduler)
    except OSError as error:
        raise Error(f"no scheduler answers at {scheduler}: {error}") from None


def batch(words: Sequence[str], options: List[str]) -> int:
    own = parser().parse_args(words)
    client = client_of(own.scheduler) if own.scheduler else None
    source = (own.source, own.right) if own.right else own.source
    result = run_words(source, own.camera, own.output, client, partition=own.partition, workers=own.workers,
                       attempts=own.attempts, pause_s=own.pause, parquet=own.parquet, progress=not own.quiet,
                       options=options)
    print(f"{result.frames} frames, {result.skipped} skipped, {result.with_warnings} with warnings: "
          + ", ".join(result.logs))
    return SKIPPED if result.skipped else 0


def main(arguments: Sequence[str]) -> int:
    words, options = list(arguments), []
    if "--" in words:
        at = words.index("--")
        words, options = words[:at], words[at + 1:]
    try:
        return batch(words, options)
    except (TypeError, ValueError) as error:
        print(f"nadir.batch: {error}", file=sys.stderr)
        return 2
    except (Error, OSError) as error:
        print(f"nadir.batch: {error}", file=sys.stderr)
        return 1
    except KeyboardInterrupt:
        print("nadir.batch: interrupted; the same command goes on", file=sys.stderr)
        return 130


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
