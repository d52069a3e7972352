"""Runs the program, and compares what two runs have left behind."""
import hashlib
import os
import pathlib
import re
import subprocess

from shared.skipped import Skipped

DONE = (0, 3)  # 3: done, and not all of it can be relied on, which is no fault of the writing


def program(options):
    path = options.build.resolve() / "tools/nadir"
    if not path.exists():
        raise Skipped(f"{path} is not built")
    return path


def run(command, folder):
    """Runs to the end, which must be a good one."""
    done = subprocess.run(command, cwd=folder, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    if done.returncode not in DONE:
        raise RuntimeError(f"{' '.join(map(str, command))} ended with {done.returncode}: {done.stdout[-2000:]}")
    return done


def start(command, folder, **options):
    return subprocess.Popen(command, cwd=folder, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, **options)


def contents(folder):
    """A sum of every file's bytes by its path."""
    folder = pathlib.Path(folder)
    return {str(path.relative_to(folder)): hashlib.sha256(path.read_bytes()).hexdigest()
            for path in sorted(folder.rglob("*")) if path.is_file()}


def parts(folder):
    """Temporary files that are left."""
    return [name for name in contents(folder) if re.search(r"\.part$", name)]


def difference(want, got):
    """What differs between two results of contents(), in words; empty where nothing does."""
    names = sorted(name for name in want.keys() | got.keys() if want.get(name) != got.get(name))
    return ", ".join(f"{name} is {'missing' if name not in got else 'too many' if name not in want else 'different'}"
                     for name in names[:5])


def make_inputs(nadir, folder, frames=24):
    """A pair and a sequence, small enough that many runs take seconds."""
    folder.mkdir(parents=True, exist_ok=True)
    if not (folder / "pair").exists():
        run([nadir, "synth", "pair", "--size", "160x120", "--scene", "people"], folder)
    if not (folder / "walk").exists():
        run([nadir, "synth", "walk.new", "--frames", str(frames), "--size", "96x64", "--no-truth-pictures"], folder)
        os.rename(folder / "walk.new", folder / "walk")


def pair_command(nadir, inputs, output, *more):
    pair = inputs / "pair"
    return [nadir, "ground", pair / "left.png", pair / "right.png", "--camera", pair / "camera.toml", "-o", output, *more]


def sequence_command(nadir, inputs, output, *more):
    walk = inputs / "walk"
    return [nadir, "ground", walk, "--camera", walk / "camera.toml", "--areas", walk / "areas.toml", "-o", output,
            "--threads", "2", "--resume", *more]
