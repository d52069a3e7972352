"""Kills the program at random moments and lets it go on: sequences (`nadir ground`) and rendered ones (`nadir synth
--frames`) with `--resume`, pairs by running them again. The results must be those of undisturbed runs to the byte, after
every kill each of a pair's files is whole, and where a run went on no temporary file stays.
"""
import random
import shutil
import signal
import subprocess
import time

from shared import runs

KILLS, SHORT_KILLS = 200, 6


class Case:
    """A command that makes a folder, and how long it takes undisturbed."""

    def __init__(self, name, command, work):
        self.name, self.command = name, command
        self.output = work / name
        self.whole = self.undisturbed()

    def undisturbed(self):
        shutil.rmtree(self.output, ignore_errors=True)
        begin = time.monotonic()
        runs.run(self.command(self.output), self.output.parent)
        self.seconds = time.monotonic() - begin
        return runs.contents(self.output)


def killed(case, moment):
    """Starts the command and kills it then; False where it was over before."""
    process = runs.start(case.command(case.output), case.output.parent)
    try:
        process.wait(moment)
    except subprocess.TimeoutExpired:
        process.send_signal(signal.SIGKILL)
    return process.wait() == -signal.SIGKILL


def halves(case):
    """Files under their final names that are not what an undisturbed run makes of them."""
    found = runs.contents(case.output) if case.output.exists() else {}
    return [name for name, content in found.items() if name in case.whole and content != case.whole[name]
            and not name.endswith(".jsonl")]


def judge(case, kills):
    """What is wrong after a run to the end."""
    runs.run(case.command(case.output), case.output.parent)
    got = runs.contents(case.output)
    if case.name == "pair":  # nobody tells whose the temporary files of a killed run are
        got = {name: content for name, content in got.items() if not name.endswith(".part")}
    wrong = runs.difference(case.whole, got)
    return [f"{case.name}, after {kills} kills: {wrong}"] if wrong else []


def round_of(case, chance, most):
    """Up to a few kills and then a run to the end: how many kills, and what was found."""
    shutil.rmtree(case.output, ignore_errors=True)
    kills, findings = 0, []
    for _ in range(most):
        if not killed(case, chance.uniform(0, 1.1) * case.seconds):
            break
        kills += 1
        findings += [f"{case.name}: {name} is neither absent nor whole after a kill" for name in halves(case)]
    return kills, findings + judge(case, kills)


def cases(options):
    nadir, inputs = runs.program(options), options.work / "inputs"
    runs.make_inputs(nadir, inputs)
    rendering = ["--frames", "12", "--size", "96x64", "--threads", "2", "--resume"]
    return [Case("sequence", lambda output: runs.sequence_command(nadir, inputs, output), options.work),
            Case("pair", lambda output: runs.pair_command(nadir, inputs, output), options.work),
            Case("rendered", lambda output: [nadir, "synth", output, *rendering], options.work)]


def run(options):
    chance, begin = random.Random(options.seed), time.monotonic()
    total, rounds, findings = 0, 0, []
    attacked = cases(options)
    goal = SHORT_KILLS if options.short else KILLS
    while total < goal and (not options.minutes or time.monotonic() < begin + 60 * options.minutes):
        case = attacked[rounds % len(attacked)]
        kills, found = round_of(case, chance, 2 if options.short else 5)
        total, rounds, findings = total + kills, rounds + 1, findings + found
        print(f"kills: {total} of {goal}, {rounds} rounds, {len(findings)} findings", flush=True)
    return {"kills": total, "runs to the end": rounds, "findings": findings}
