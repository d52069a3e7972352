"""Lets `nadir ground` work through long sequences, and a loop of both libraries run, while their resident memory and open
descriptors are read every second. Neither may grow.
"""
import os
import pathlib
import shutil
import statistics
import time

from shared import runs

MINUTES, SHORT_SECONDS = 60, 6
FRAMES = 12000  # of one run of the program; the same pictures come again and again
WARM_SHARE = 0.2  # until every buffer has grown to what it needs, and threads have their arenas
LARGEST_GROWTH_KB = 1024  # between the medians of the first and of the last third
MOST_DESCRIPTORS = 2  # by which they may seem to grow: files come and go between two samples
LARGEST_SPREAD_KB = 16384  # frames that wait to be written come and go


def sample(process):
    """Resident KB and open descriptors; nothing once the process has ended."""
    folder = pathlib.Path(f"/proc/{process.pid}")
    try:
        status = (folder / "status").read_text()
        resident = next(int(line.split()[1]) for line in status.splitlines() if line.startswith("VmRSS:"))
        return resident, len(os.listdir(folder / "fd"))
    except (FileNotFoundError, ProcessLookupError, StopIteration):
        return None


def watched(command, folder, seconds, interval):
    """The samples of a run, which is ended when its time is over."""
    process, samples, end = runs.start(command, folder), [], time.monotonic() + seconds
    while time.monotonic() < end and process.poll() is None:
        time.sleep(interval)
        taken = sample(process)
        if taken:
            samples.append(taken)
    ended_itself = process.poll()
    process.kill()
    process.wait()
    if ended_itself not in (None, *runs.DONE):
        raise RuntimeError(f"{' '.join(map(str, command))} ended with {ended_itself}")
    return samples


def growth(values):
    third = max(1, len(values) // 3)
    return statistics.median(values[-third:]) - statistics.median(values[:third])


def judge(name, samples):
    """Figures of one run and what is wrong with them."""
    warm = samples[int(len(samples) * WARM_SHARE):]
    if len(warm) < 6:
        return None, []  # too short to say anything
    resident, descriptors = zip(*warm)
    figures = {"growth": growth(resident), "spread": max(resident) - min(resident), "descriptors": growth(descriptors)}
    findings = []
    if figures["growth"] > LARGEST_GROWTH_KB or figures["spread"] > LARGEST_SPREAD_KB:
        findings.append(f"{name}: memory grows by {figures['growth']:.0f} KB, its spread is {figures['spread']} KB")
    if figures["descriptors"] > MOST_DESCRIPTORS:
        findings.append(f"{name}: open descriptors grow by {figures['descriptors']:.0f}")
    return figures, findings


def endless_walk(inputs, frames):
    """A sequence of many frames, each a link to one of a few pictures."""
    walk = inputs / f"walk{frames}"
    for side in ("left", "right"):
        pictures = sorted((inputs / "walk" / side).iterdir())
        (walk / side).mkdir(parents=True, exist_ok=True)
        for frame in range(frames):
            link = walk / side / f"{frame:06}.png"
            if not link.exists():
                os.link(pictures[frame % len(pictures)], link)
    return walk


def sequence(options, inputs, seconds):
    nadir, output = runs.program(options), options.work / "out"
    walk = endless_walk(inputs, 3000 if options.short else FRAMES)
    shutil.rmtree(output, ignore_errors=True)
    command = [nadir, "ground", walk, "--camera", inputs / "walk/camera.toml", "--areas", inputs / "walk/areas.toml",
               "-o", output, "--threads", "2"]
    samples = watched(command, options.work, seconds, 0.2 if options.short else 1)
    shutil.rmtree(output, ignore_errors=True)
    return samples


def loop(options, seconds):
    program = options.build.resolve() / "tests/attack/nadir_soak"
    if not program.exists():
        raise runs.Skipped(f"{program} is not built")
    return watched([program], options.work, seconds, 0.2 if options.short else 1)


def run(options):
    inputs = options.work / "inputs"
    runs.make_inputs(runs.program(options), inputs, 12)
    whole = SHORT_SECONDS if options.short else 60 * (options.minutes or MINUTES)
    figures, findings, end = {}, [], time.monotonic() + whole
    collected = {"loop": [loop(options, whole / 2)], "sequence": []}
    while time.monotonic() < end - 2:
        collected["sequence"].append(sequence(options, inputs, end - time.monotonic()))
        print(f"soak: {max(0, end - time.monotonic()):.0f} s left", flush=True)
    for name, runs_of in collected.items():
        judged = [judge(name, samples) for samples in runs_of]
        findings += [finding for _, found in judged for finding in found]
        told = [one for one, _ in judged if one]
        figures[f"{name}: samples"] = sum(map(len, runs_of))
        figures[f"{name}: largest growth, KB"] = max((one["growth"] for one in told), default="not measured")
        figures[f"{name}: largest spread, KB"] = max((one["spread"] for one in told), default="not measured")
        figures[f"{name}: growth of descriptors"] = max((one["descriptors"] for one in told), default="not measured")
    if not all(any(len(samples) > 7 for samples in runs_of) for runs_of in collected.values()):
        findings.append("the time was too short to see anything")
    return {"seconds": round(whole), **figures, "findings": findings}
