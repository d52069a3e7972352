"""Cuts the power: the program writes to a file system in a file (ext4, its usual settings), and that file is copied in
the midst of it, as a disk would be found afterwards. In every copy each file under its final name is whole, the results
of before or the new ones; no line of frames.jsonl lacks its maps; and a run that goes on ends with the bytes of an
undisturbed one. Needs root and loop devices.
"""
import contextlib
import os
import random
import shutil
import signal
import subprocess
import time

from shared import runs
from shared.skipped import Skipped

MOMENTS, SHORT_MOMENTS = 50, 2
MEGABYTES = 24


def mount(image, place):
    """The journal is written every second, not every five, so that short runs see it written by itself, too."""
    place.mkdir(exist_ok=True)
    subprocess.run(["umount", "-q", place])  # what a run that was killed has left
    done = subprocess.run(["mount", "-o", "loop,commit=1", image, place], capture_output=True, text=True)
    if done.returncode:
        raise Skipped(f"no file system in a file can be mounted here: {done.stderr.strip()}")


@contextlib.contextmanager
def mounted(image, place):
    mount(image, place)
    try:
        yield place
    finally:
        subprocess.run(["umount", place], check=True)


def new_image(path):
    with open(path, "wb") as file:
        file.truncate(MEGABYTES << 20)
    maker = shutil.which("mkfs.ext4", path=os.environ["PATH"] + ":/usr/sbin:/sbin")
    if not maker:
        raise Skipped("there is no mkfs.ext4")
    subprocess.run([maker, "-q", "-F", path], check=True)


def still_copy(image, copy):
    """Whoever writes is stopped; what the system itself still writes may not end up half in the copy."""
    for _ in range(100):
        shutil.copyfile(image, copy)
        if subprocess.run(["cmp", "-s", image, copy]).returncode == 0:
            return
    raise RuntimeError("the file system does not come to rest")


def cut(command, place, moment, image, copy):
    """Copies the image at a moment of the run or behind it, and lets the run end. False where it was over by then."""
    process = runs.start(command, place)
    time.sleep(moment)
    process.send_signal(signal.SIGSTOP)
    running = process.poll() is None
    still_copy(image, copy)
    process.send_signal(signal.SIGCONT)
    process.wait()
    return running


def timed(command, work):
    """What an undisturbed run makes, and how long it takes."""
    begin = time.monotonic()
    shutil.rmtree(work / "out", ignore_errors=True)
    runs.run(command, work)
    return runs.contents(work / "out"), time.monotonic() - begin


class Pair:
    """A pair whose results replace those of another run."""

    name = "pair"

    def __init__(self, nadir, inputs, work):
        self.old = runs.pair_command(nadir, inputs, "out", "--min-height", "300")
        self.new = runs.pair_command(nadir, inputs, "out")
        self.old_contents, _ = timed(self.old, work)
        self.new_contents, self.seconds = timed(self.new, work)

    def prepare(self, place):
        runs.run(self.old, place)
        os.sync()

    def judge(self, place):
        got = {name: content for name, content in runs.contents(place / "out").items() if not name.endswith(".part")}
        missing = [f"{name} is lost" for name in self.old_contents if name not in got]
        halves = [f"{name} is neither the old one nor the new one" for name, content in got.items()
                  if content not in (self.old_contents.get(name), self.new_contents.get(name))]
        return missing + halves

    def go_on(self, place):
        for name in runs.parts(place / "out"):
            (place / "out" / name).unlink()
        runs.run(self.new, place)
        return runs.difference(self.new_contents, runs.contents(place / "out"))


class Sequence:
    """A sequence from its beginning."""

    name = "sequence"

    def __init__(self, nadir, inputs, work):
        self.new = runs.sequence_command(nadir, inputs, "out")
        self.new_contents, self.seconds = timed(self.new, work)
        self.lines = (work / "out/frames.jsonl").read_bytes().splitlines(keepends=True)

    def prepare(self, place):
        os.sync()

    def judge(self, place):
        out = place / "out"
        found = runs.contents(out) if out.exists() else {}
        halves = [f"{name} is not whole" for name, content in found.items()
                  if not name.endswith((".part", "frames.jsonl")) and content != self.new_contents.get(name)]
        log = (out / "frames.jsonl").read_bytes() if "frames.jsonl" in found else b""
        whole = [line for line in log.splitlines(keepends=True) if line.endswith(b"\n")]
        foreign = [] if whole == self.lines[:len(whole)] else ["frames.jsonl holds lines that nobody wrote"]
        lacking = [f"line {frame + 1} of frames.jsonl has no {kind}" for frame in range(len(whole))
                   for kind in ("elevation", "average") if f"{kind}/{frame:06}.png" not in found]
        return halves + foreign + lacking

    def go_on(self, place):
        runs.run(self.new, place)
        return runs.difference(self.new_contents, runs.contents(place / "out"))


def examined(case, copy, place):
    with mounted(copy, place):
        wrong = case.judge(place)
        if wrong:
            return wrong
        rest = case.go_on(place)
        return [f"after going on: {rest}"] if rest else []


def moment_of(case, chance, work):
    """One cut, on a file system of its own; the number of cuts and what was found."""
    image, copy, place = work / "disk.img", work / "cut.img", work / "disk"
    moment = chance.uniform(0, 1) * case.seconds + (0 if chance.random() < 0.7 else 1 + chance.random())
    new_image(image)
    with mounted(image, place):
        case.prepare(place)
        running = cut(case.new, place, moment, image, copy)
    wrong = examined(case, copy, work / "found")
    return running, [f"{case.name}: {sentence}" for sentence in wrong]


def run(options):
    if os.geteuid() != 0:
        raise Skipped("only root can mount a file system")
    nadir, inputs = runs.program(options), options.work / "inputs"
    runs.make_inputs(nadir, inputs, 60)
    chance, begin = random.Random(options.seed), time.monotonic()
    cases = [Pair(nadir, inputs, options.work), Sequence(nadir, inputs, options.work)]
    cuts, midst, findings = 0, 0, []
    goal = SHORT_MOMENTS if options.short else MOMENTS
    while midst < goal and (not options.minutes or time.monotonic() < begin + 60 * options.minutes):
        running, found = moment_of(cases[cuts % 2], chance, options.work)
        cuts, midst, findings = cuts + 1, midst + running, findings + found
        print(f"cuts: {midst} of {goal} while the program ran, {cuts - midst} behind it, {len(findings)} findings", flush=True)
    return {"cuts while the program ran": midst, "cuts after its end": cuts - midst, "findings": findings}
