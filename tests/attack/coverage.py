"""Counts which lines and branches of both libraries their tests run (gcov), and lists those that none runs.

Every line must run, but those that tests/attack/coverage_exceptions.txt names with a reason; of the branches 98 %. The
short form builds nothing: it sees that each exception still names a line of the sources.
"""

import collections
import os
import pathlib
import subprocess

from shared import suites

ROOT = pathlib.Path(__file__).resolve().parents[2]
EXCEPTIONS = ROOT / "tests/attack/coverage_exceptions.txt"
LIBRARIES = ("src/", "ground/")
OBJECTS = ("nadir_objects.dir", "nadirground_objects.dir", "nadir_road_kernels.dir")
# The share of branches that must be taken.
LEAST_BRANCHES = 98.0


def exceptions():
    """File and text of each line that need not run."""
    blocks = EXCEPTIONS.read_text().split("\n\n")
    parts = [[line.strip() for line in block.split("\n") if line and not line.startswith("#")] for block in blocks]
    return [(block[0], block[1], " ".join(block[2:])) for block in parts if block]


def stale_exceptions(excepted):
    """A sentence for each exception that names no line, or more than one, or gives no reason."""
    for file, text, reason in excepted:
        path = ROOT / file
        lines = path.read_text().split("\n") if path.is_file() else []
        count = [line.strip() for line in lines].count(text)
        if count != 1:
            yield f"{file}: an excepted line must be there once and is there {count} times: {text}"
        if not reason:
            yield f"{file}: no reason is given why this need not run: {text}"


def build_and_run(build, work):
    """Runs all suites of a fresh build that counts; what fails unchanged is an error of its own."""
    subprocess.run(["cmake", "-G", "Ninja", "--preset", "coverage", "-B", build], cwd=ROOT, check=True, stdout=subprocess.DEVNULL)
    subprocess.run(["ninja", "-C", build, *suites.targets(build)], check=True, stdout=subprocess.DEVNULL)
    for old in pathlib.Path(build).rglob("*.gcda"):
        old.unlink()
    for suite in suites.suites(build):
        if suite.name.startswith("nadir_trust_tests:Table"):  # minutes without the optimiser, for no line that others do not run
            continue
        passed, seconds = suites.timed_run(build, suite, work / "tmp", {"GCOV_ERROR_FILE": "/dev/null"})
        print(f"{suite.name} {seconds:.1f} s{'' if passed else ' FAILED'}", flush=True)
        if not passed:
            raise SystemExit(f"coverage: {suite.name} fails")


def counted(build):
    """How often each line ran, and each of its branches. A line of a template stands in several objects and instances: what
    one of them runs has run."""
    lines, branches = collections.Counter(), collections.defaultdict(dict)
    files = [path for path in pathlib.Path(build).rglob("*.gcno") if any(part in str(path) for part in OBJECTS)]
    for record in suites.gcov(files, branches=True):
        for file in record["files"]:
            name = os.path.relpath(os.path.join(record["current_working_directory"], file["file"]), ROOT)
            if not name.startswith(LIBRARIES):
                continue
            for line in file["lines"]:
                place = (name, line["line_number"])
                lines[place] += line["count"]
                taken = [branch["count"] for branch in line["branches"] if not branch["throw"]]
                old = branches[place].get(len(taken), [0] * len(taken))
                branches[place][len(taken)] = [a + b for a, b in zip(old, taken)]
    return lines, {(place, size, index): count for place, of_place in branches.items()
                   for size, taken in of_place.items() for index, count in enumerate(taken)}


def text_of(place):
    """The text of a line."""
    return (ROOT / place[0]).read_text().split("\n")[place[1] - 1].strip()


def run(options):
    """Counts, and fails on a line that nobody runs, on too few branches, on an exception that no longer stands."""
    excepted = exceptions()
    wrong = list(stale_exceptions(excepted))
    told = {"exceptions": len(excepted)}
    if not options.short:
        options.work.mkdir(parents=True, exist_ok=True)
        build = str(ROOT / "build/coverage")
        build_and_run(build, options.work.resolve())
        lines, branches = counted(build)
        wanted = {(file, text) for file, text, _ in excepted}
        idle = [place for place in sorted(lines) if not lines[place]]
        untaken = collections.Counter(place for (place, _, _), count in sorted(branches.items()) if not count)
        wrong += [f"{file}:{line}: no test runs: {text_of((file, line))}" for file, line in idle
                  if (file, text_of((file, line))) not in wanted]
        left = {(place[0], text_of(place)) for place in [*idle, *untaken]}
        wrong += [f"{file}: it does run, the exception can go: {text}" for file, text in sorted(wanted - left)]
        share = 100 * sum(map(bool, branches.values())) / len(branches)
        if share < LEAST_BRANCHES:
            wrong.append(f"{share:.2f} % of the branches are taken, which must be {LEAST_BRANCHES} %")
        (options.work / "untaken.txt").write_text(
            "".join(f"{file}:{line}: {count} not taken: {text_of((file, line))}\n" for (file, line), count in untaken.items()))
        told.update({"lines": len(lines), "lines run": len(lines) - len(idle), "branches": len(branches),
                     "branches taken": sum(map(bool, branches.values()))})
    return {**told, "findings": wrong}
