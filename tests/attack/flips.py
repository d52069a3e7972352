"""Flips every bit of files that the program has written, and lets it read each damaged one. A PNG is refused or has the
same pixels and texts; a text (camera, areas, frames.jsonl, summary.json, run.json) is refused with the place of the
damage, or read as it then stands and within range.
"""
import random
import re
import subprocess

from shared import runs

SAMPLED = 17  # in the short form one bit of so many is flipped in texts; odd, so that all of a byte's have their turn


def made(options):
    """The readers of tests/readers and the files that they are given."""
    nadir, folder = runs.program(options), options.work / "inputs"
    runs.make_inputs(nadir, folder, 3)
    pair, walk = folder / "pair", folder / "walk"
    if not (folder / "g").exists():
        runs.run(runs.pair_command(nadir, folder, "g"), folder)
    if not (folder / "s").exists():
        runs.run(runs.sequence_command(nadir, folder, "s"), folder)
    short = [("picture", [folder / "g/regions.png"]), ("camera", [pair / "camera.toml"]), ("areas", [walk / "areas.toml"]),
             ("log", [folder / "s/frames.jsonl"]), ("regions", [folder / "g/summary.json", pair / "scene.json"]),
             ("settings", [folder / "s/run.json", folder / "s/run.json"]),
             ("tracks", [folder / "s/frames.jsonl", folder / "s/run.json", walk / "truth.jsonl"])]
    return short if options.short else short + [("picture", [folder / "g/disparity.png"])]


def flipped(options, chance, reader, files):
    every = SAMPLED if options.short and reader != "picture" else 1
    command = [options.build.resolve() / "tests/attack/nadir_flips", reader, str(every), str(chance.randrange(every)), *files]
    return subprocess.run(command, cwd=options.work, capture_output=True, text=True)


def run(options):
    if not (options.build / "tests/attack/nadir_flips").exists():
        raise runs.Skipped("nadir_flips is not built")
    chance, findings = random.Random(options.seed), []
    totals = dict.fromkeys(("flips", "refused", "read the same", "read as they then stood"), 0)
    for reader, files in made(options):
        done = flipped(options, chance, reader, files)
        print(f"flips: {reader}: {done.stdout.strip()}", flush=True)
        for name in totals:
            told = re.search(rf"(\d+) {name}", done.stdout)
            totals[name] += int(told[1]) if told else 0
        if done.returncode:
            findings.append(f"{reader}: status {done.returncode}: {done.stderr.strip()[-1500:]}")
    return {**totals, "findings": findings}
