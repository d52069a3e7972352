"""Fuzzing with libFuzzer under AddressSanitizer and UndefinedBehaviorSanitizer: a target for every parser of the program
and every interface that keeps a state (`tests/fuzz/`), inputs of up to a megabyte, seeds that the program and the targets
make themselves. The plan is ten million executions in all.
"""
import json
import os
import pathlib
import re
import shutil
import subprocess
import time

from shared import runs

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
EXECUTIONS = 10_000_000
LONGEST = 1_000_000  # bytes of an input
SLICE_SECONDS = 60  # of a target before the next one has its turn
LARGE_EVERY = 4  # of so many turns of a reader one begins with inputs near the longest
BETWEEN = b"\x1d"  # tests/readers: between the files of one reader


def targets(options):
    """The programs by their names. They have a build of their own, and are copied, so that it may change meanwhile."""
    for command in (["cmake", "-G", "Ninja", "--preset", "fuzz"], ["cmake", "--build", "build/fuzz"]):
        done = subprocess.run(command, cwd=ROOT, capture_output=True, text=True)
        if done.returncode:
            raise runs.Skipped(f"the targets cannot be built: {done.stdout[-500:]}{done.stderr[-500:]}")
    folder = options.work / "targets"
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir()
    programs = [path for path in (ROOT / "build/fuzz/tests/fuzz").glob("nadir_fuzz_*") if path.is_file()]
    return {path.name[len("nadir_fuzz_"):]: shutil.copy(path, folder) for path in sorted(programs)}


def seed_files(options):
    """What the program writes, by the target that reads it."""
    nadir, folder = runs.program(options), options.work / "seeds"
    runs.make_inputs(nadir, folder, 2)
    pair, walk = folder / "pair", folder / "walk"
    if not (folder / "g").exists():
        runs.run(runs.pair_command(nadir, folder, "g"), folder)
    if not (folder / "s").exists():
        runs.run(runs.sequence_command(nadir, folder, "s"), folder)
    log, settings = folder / "s/frames.jsonl", folder / "s/run.json"
    return {"picture": [[folder / "g/regions.png"]], "measurement": [[folder / "g/regions.png"], [folder / "g/elevation.png"]],
            "camera": [[pair / "camera.toml"]], "areas": [[walk / "areas.toml"]], "log": [[log]],
            "tracks": [[log, settings, walk / "truth.jsonl"]], "regions": [[folder / "g/summary.json", pair / "scene.json"]],
            "settings": [[settings, settings]]}


def foreign():
    """What other programs write, which ours cannot make."""
    return {target: [[path.read_bytes()] for path in sorted((ROOT / "tests/fuzz/corpus" / target).glob("seed-*"))]
            for target in ("calibration", "index")}


def enlarged(options, target, small):
    """Nearly as long as the longest input: a large picture, many lines, or one text far down in its file."""
    if target in ("picture", "measurement"):
        folder = options.work / "seeds/large"
        if not folder.exists():
            runs.run([runs.program(options), "synth", folder, "--size", "720x540"], options.work)
        return (folder / "left.png").read_bytes()
    room = LONGEST - len(small)
    return small * (LONGEST // len(small)) if target == "log" else b"\n" * room + small


def plant(folder, number, content):
    folder.mkdir(parents=True, exist_ok=True)
    (folder / f"seed{number}").write_bytes(content)


def plant_seeds(options):
    seeds = {target: [[path.read_bytes() for path in paths] for paths in given] for target, given in seed_files(options).items()}
    for target, given in {**seeds, **foreign()}.items():
        for number, files in enumerate(given):
            plant(options.work / "corpus" / target, number, BETWEEN.join(files))
        plant(options.work / "large" / target, 0, enlarged(options, target, BETWEEN.join(given[0])))


def corpora(options, target, turn):
    """The folder that new inputs go to, and what else a turn begins with; interfaces know no large inputs."""
    large = options.work / "large" / target
    if large.exists() and turn % LARGE_EVERY == LARGE_EVERY - 1:
        return [large]
    return [options.work / "corpus" / target, ROOT / "tests/fuzz/corpus" / target]


def fuzzed(program, target, options, turn, number):
    """One turn of a target, the `number`th of all: how many inputs it tried, and what it found."""
    folders, found = corpora(options, target, turn), options.work / "found" / target
    for folder in (folders[0], found):
        folder.mkdir(parents=True, exist_ok=True)
    command = [program, *folders, f"-seed={options.seed + number}",
               f"-max_total_time={SLICE_SECONDS}", f"-max_len={LONGEST}", "-timeout=120", "-rss_limit_mb=3000",
               f"-artifact_prefix={found}/", "-print_final_stats=1", "-verbosity=0"]
    environment = dict(os.environ, ASAN_OPTIONS="max_malloc_fill_size=16777216" if target == "ground" else "")
    done = subprocess.run(command, capture_output=True, text=True, errors="replace", env=environment)
    told = re.search(r"stat::number_of_executed_units:\s*(\d+)", done.stderr)
    findings = [] if done.returncode == 0 else [f"{target}: {done.stderr.strip()[-1500:]}"]
    return int(told[1]) if told else 0, findings


def run(options):
    """The state is kept after every turn, so that a run of days can be ended and taken up."""
    if options.short:
        raise runs.Skipped("the short form is the tests fuzz.* of the preset fuzz")
    programs, kept = targets(options), options.work / "state.json"
    state = json.loads(kept.read_text()) if kept.exists() else {"turns": 0, "executions": {}, "findings": []}
    plant_seeds(options)
    end = time.monotonic() + 60 * options.minutes if options.minutes else float("inf")
    while sum(state["executions"].values()) < EXECUTIONS and time.monotonic() < end:
        turn, place = divmod(state["turns"], len(programs))
        target = list(programs)[place]
        tried, findings = fuzzed(programs[target], target, options, turn, state["turns"])
        state["turns"] += 1
        state["executions"][target] = state["executions"].get(target, 0) + tried
        state["findings"] += findings
        kept.write_text(json.dumps(state, indent=1))
        print(f"fuzz: {target}: {tried}, in all {sum(state['executions'].values())}, {len(state['findings'])} findings", flush=True)
    executions = {f"executions of {target}": count for target, count in sorted(state["executions"].items())}
    return {"executions": sum(state["executions"].values()), **executions, "findings": state["findings"]}
