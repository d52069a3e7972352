"""Runs every command of the program while something fails, and judges what it leaves: the parts allocations and calls."""
import json
import os
import pathlib
import random
import re
import shutil
import signal
import subprocess
import time

from shared.skipped import Skipped

ROOT = pathlib.Path(__file__).resolve().parents[3]
LONGEST = 60  # seconds; a run of these takes a fraction of one
MARGIN = 4  # allocations and calls more than were counted, since threads do not always need the same number
PROGRESS = re.compile(r"[a-z]+ing \d+ of \d+ .*")
TIMES = re.compile(r"\d+(\.\d+)?( *)(ms|s|frames/s)\b")

SCENE = "scene/left.png scene/right.png"
FRAMES = "--size 64x64 --frames 3 --no-truth-pictures --threads 2"


class Command:
    """A command line whose outputs land in the folder out."""

    def __init__(self, name, line, resumes=False, every=1):
        self.name, self.arguments = name, line.split()
        self.resumes = resumes  # the same line with --resume goes on with what is there
        self.every = every  # of its allocations, the slow ones

    def undisturbed(self, attack):
        """What a run without faults gives: twice, because everything is compared with it."""
        first, second = (attack.run(self, "") for _ in range(2))
        if first.status != 0 or first.files != second.files or first.table != second.table:
            raise RuntimeError(f"{self.name} does not give the same twice: {first.status}\n{first.sentences}\n{second.sentences}")
        return first


COMMANDS = [
    Command("synth", "synth out --size 64x64"),
    Command("synth frames", f"synth out {FRAMES}", resumes=True),
    Command("disparity", f"disparity {SCENE} -o out/d.png"),
    Command("check", f"check {SCENE} -o out/rows.png"),
    Command("ground", f"ground {SCENE} --camera scene/camera.toml -o out"),
    Command("ground frames", "ground walk --camera walk/camera.toml --areas walk/areas.toml -o out --threads 2", resumes=True),
    Command("evaluate", "evaluate d.png scene/disparity_gt.png --error-map out/errors.png"),
    Command("evaluate regions", "evaluate ground scene"),
    Command("evaluate tracks", "evaluate tracks walk --plot out/plot.svg"),
    Command("camera", "camera import --baseline-mm 120 --focal-px 610 --principal-x-px 319.5 --principal-y-px 239.5"
            " --width-px 640 --height-px 480 --height-mm 1200 --tilt-deg -35 -o out/camera.toml"),
    Command("camera of a calibration", "camera import calib.txt --height-mm 1200 --tilt-deg -35 -o out/camera.toml"),
    Command("rectify", f"rectify {SCENE} --calibration calib.txt --height-mm 1200 --tilt-deg -35 -o out"),
    Command("plan", "plan --see 3000x2000 --tallest 2000 --height 2600 -o out"),
    Command("preview", "preview d.png -o out/preview.png"),
    Command("tune", "tune scene --trials 3 -o out/plot.svg"),
    Command("verify", "verify", every=10),
]

# Of the cameras of a scene of 64 x 64 pixels.
CALIBRATION = "cam0=[60 0 32; 0 60 32; 0 0 1]\ncam1=[60 0 33; 0 60 32; 0 0 1]\nbaseline=120\nwidth=64\nheight=64\n"

INPUTS = [
    "synth scene --size 64x64 --scene people",
    f"synth walk {FRAMES}",
    f"disparity {SCENE} -o d.png",
    f"ground {SCENE} --camera scene/camera.toml -o ground",
    "ground walk --camera walk/camera.toml --areas walk/areas.toml -o tracks",
]


class Ended:
    """What is to be seen of a run that has ended."""

    def __init__(self, status, out, err, files):
        self.status = status
        self.table = TIMES.sub(r"#\2\3", re.sub(r" +", " ", out))
        self.sentences = [line for line in err.splitlines() if not PROGRESS.fullmatch(line)]
        self.files = files


class Attack:
    """The folder of the runs, the program, and the library that lets its calls fail."""

    def __init__(self, options, library):
        self.folder = options.work / "runs"
        self.program = (options.build / "tools/nadir").resolve()
        self.library = (options.build / "tests/attack" / library).resolve()
        if not self.library.exists():
            raise Skipped(f"{self.library} is not built for this processor")
        shutil.rmtree(self.folder, ignore_errors=True)
        self.folder.mkdir(parents=True)
        (self.folder / "calib.txt").write_text(CALIBRATION)
        for line in INPUTS:
            subprocess.run([self.program, *line.split()], cwd=self.folder, check=True, capture_output=True)

    def files(self):
        out = self.folder / "out"
        return {str(path.relative_to(out)): path.read_bytes() for path in sorted(out.rglob("*")) if path.is_file()}

    def lay(self, files):
        """Makes the folder out with these files alone."""
        shutil.rmtree(self.folder / "out", ignore_errors=True)
        for name in files:
            (self.folder / "out" / name).parent.mkdir(parents=True, exist_ok=True)
            (self.folder / "out" / name).write_bytes(files[name])
        (self.folder / "out").mkdir(exist_ok=True)

    def run(self, command, fault, before=None, more=()):
        """One run onto the files `before`; with None, onto what is there."""
        if before is not None or not more:
            self.lay(before or {})
        environment = dict(os.environ, NADIR_FAULT=fault, LD_PRELOAD=str(self.library), LC_ALL="C")
        ran = subprocess.Popen([self.program, *command.arguments, *more], cwd=self.folder, env=environment, text=True,
                               errors="replace", stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        try:
            out, err = ran.communicate(timeout=LONGEST)
        except subprocess.TimeoutExpired:
            ran.kill()
            out, err = ran.communicate()
            err += "it did not end\n"
        return Ended(ran.returncode, out, err, self.files())

    def counts(self, command):
        """How often an undisturbed run calls what can fail, by kind."""
        told = self.folder / "counts"
        os.environ["NADIR_FAULT_COUNTS"] = str(told)
        try:
            self.run(command, "")
        finally:
            del os.environ["NADIR_FAULT_COUNTS"]
        counted = {kind: int(number) for kind, number in (line.split() for line in told.read_text().splitlines())}
        told.unlink()
        return {kind: number + MARGIN for kind, number in counted.items() if number > 0}

    def faults_of(self, command, whole, fault):
        """What is wrong with a run in which something failed, a sentence each."""
        old = {} if command.resumes else {name: b"old " + name.encode() for name in whole.files}
        ended = self.run(command, fault, old)
        wrong = list(wrong_with(ended, whole, old, command.resumes))
        if command.resumes and ended.status == 1:
            resumed = self.run(command, "", more=["--resume"])
            if resumed.status != 0 or resumed.files != whole.files:
                wrong.append(f"--resume gives other results afterwards, status {resumed.status}: {resumed.sentences}")
        return [f"{command.name}: {fault}: {sentence}" for sentence in wrong]


def wrong_with(ended, whole, old, resumes):
    new_sentences = [sentence for sentence in ended.sentences if sentence not in whole.sentences]
    left = [name for name in ended.files if name not in whole.files]
    if left:
        yield f"it leaves {left}"
    if ended.status == 0:
        if ended.files != whole.files or ended.table != whole.table or new_sentences:
            yield f"it tells success, but its results differ: {new_sentences}"
    elif ended.status == 1:
        if len(new_sentences) != 1 or not new_sentences[0].startswith("nadir: "):
            yield f"it does not tell why in one sentence: {new_sentences}"
        if not resumes and ended.files not in (old, whole.files):
            yield "the results are neither the old nor the new ones: " + ", ".join(changed(ended.files, old))
    else:
        told = signal.Signals(-ended.status).name if ended.status < 0 else f"status {ended.status}"
        yield f"it ends with {told}: {ended.sentences}"


def changed(files, old):
    return [name for name in old if files.get(name) != old[name]]


def planned(attack, error_of):
    """Every fault of every command with its index, in the order of the commands: each call once, and from then on. What all
    of them allocate before they look at their arguments, four fifths of all, fails in the first one alone."""
    alike = attack.counts(Command("version", "--version")).get("allocation", 0) * 19 // 20  # it looks at one itself
    for command in COMMANDS:
        for kind, number in sorted(attack.counts(command).items()):
            for call in range(1, number + 1):
                known = kind == "allocation" and call <= alike and command is not COMMANDS[0]
                if not known and (kind != "allocation" or call % command.every == 0):
                    for mode in ("once", "on"):
                        yield command, f"{kind} {call} {mode} {error_of(kind)}"


def run(options, library, error_of, sampled):
    """Tries all faults, or in the short form `sampled` of them; goes on where an earlier run was ended."""
    attack = Attack(options, library)
    whole = {command.name: command.undisturbed(attack) for command in COMMANDS}
    plan = list(planned(attack, error_of))
    random.Random(options.seed).shuffle(plan)
    reached = options.work / "reached.json"
    done = json.loads(reached.read_text()) if reached.exists() else {"tried": 0, "findings": []}
    end = time.monotonic() + 60 * (options.minutes or 1e6)
    for command, fault in plan[done["tried"] : sampled if options.short else None]:
        if time.monotonic() > end:
            break
        done["findings"] += attack.faults_of(command, whole[command.name], fault)
        done["tried"] += 1
        if done["tried"] % 1000 == 0:
            reached.write_text(json.dumps(done))
            print(f"{done['tried']} of {len(plan)}, {len(done['findings'])} findings", flush=True)
    reached.write_text(json.dumps(done))
    return {"commands": len(COMMANDS), "faults planned": len(plan), "faults tried": done["tried"], "findings": done["findings"]}
