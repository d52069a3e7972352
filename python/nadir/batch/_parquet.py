"""Lines of frames as a Parquet file, where pyarrow is there."""
from __future__ import annotations

import importlib
import importlib.util
import os

from .._errors import Error


def check_parquet() -> None:
    """Raises Error without pyarrow, before hours are spent on what then cannot be written."""
    if importlib.util.find_spec("pyarrow") is None:
        raise Error("Parquet files need pyarrow, which is not installed: install it, or leave parquet out; "
                    "frames.jsonl has all of it")


def write_parquet(lines: str) -> str:
    """Writes frames.parquet beside the lines; the table is in memory once. Returns its path."""
    path = os.path.splitext(lines)[0] + ".parquet"
    table = importlib.import_module("pyarrow.json").read_json(lines)
    importlib.import_module("pyarrow.parquet").write_table(table, path + ".part")
    os.replace(path + ".part", path)
    return path
