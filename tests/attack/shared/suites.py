"""Runs the test suites of a build, one by one, and tells which lines of the sources each of them runs (gcov)."""

import collections
import json
import os
import pathlib
import re
import resource
import shutil
import signal
import subprocess

# A suite is a program and what it is called with; a program without suites of GoogleTest is one as a whole.
Suite = collections.namedtuple("Suite", "name program arguments")

# The programs whose tests say what the libraries and the program do, relative to the build's folder.
GTEST_PROGRAMS = {
    "nadir_api_tests": "tests/api",
    "nadir_ground_tests": "tests/api/ground",
    "nadir_alloc_tests": "tests/alloc",
    "nadir_road_tests": "tests/road",
    "nadir_road_alloc_tests": "tests/road",
    "nadir_trust_tests": "tests/trust",
    "nadir_verify_tests": "tests/lab",
    "nadir_tool_tests": "tests/tool",
}
OTHER_PROGRAMS = {
    "nadir_kernels": "tests/kernels",
    "nadir_golden_tests": "tests/golden",
    "nadir_road_threads": "tests/road",
}
# One that prints figures for people, and one of times and page faults, which other work on the machine disturbs.
LEFT_OUT = {"Figures", "RoadPageFaults"}


def targets(build):
    """The programs that a build has rules for."""
    known = subprocess.run(["ninja", "-C", build, "-t", "targets", "all"], capture_output=True, text=True, check=True).stdout
    programs = {**GTEST_PROGRAMS, **OTHER_PROGRAMS}
    return [name for name, folder in programs.items() if f"\n{folder}/{name}:" in known]


def suites_of_program(build, name):
    """The suites of one program."""
    if name in OTHER_PROGRAMS:
        return [Suite(name, f"{OTHER_PROGRAMS[name]}/{name}", [])]
    program = f"{GTEST_PROGRAMS[name]}/{name}"
    listed = subprocess.run([f"{build}/{program}", "--gtest_list_tests"], capture_output=True, text=True, check=True).stdout
    heads = [line.split("#")[0].strip() for line in listed.splitlines() if re.match(r"[\w/]+\.( |$)", line)]
    arguments = ["--gtest_brief=1", "--gtest_fail_fast", "--gtest_break_on_failure"]
    return [Suite(f"{name}:{head}", program, [f"--gtest_filter={head}*", *arguments])
            for head in heads if head.rstrip(".") not in LEFT_OUT]


def suites(build):
    """All suites of a build."""
    return [suite for name in targets(build) for suite in suites_of_program(build, name)]


def limit(seconds):
    """Ends a suite that works for too long or writes without end, and leaves no core behind. Signals have their usual
    meaning: a shell takes some away from what it runs in the background."""
    def apply():
        for number in (signal.SIGINT, signal.SIGHUP, signal.SIGQUIT):
            signal.signal(number, signal.SIG_DFL)
        resource.setrlimit(resource.RLIMIT_CPU, (seconds, seconds + 1))
        resource.setrlimit(resource.RLIMIT_FSIZE, (1 << 36, 1 << 36))
        resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    return apply


def run(build, suite, temporary, cpu_seconds=600, environment=None):
    """Whether a suite passes. Time is the processor's, which other work on the machine does not change; a suite that only
    waits is ended by the clock."""
    shutil.rmtree(temporary, ignore_errors=True)
    pathlib.Path(temporary).mkdir(parents=True)
    process = subprocess.Popen([f"{build}/{suite.program}", *suite.arguments], stdout=subprocess.DEVNULL,
                               stderr=subprocess.DEVNULL, stdin=subprocess.DEVNULL, start_new_session=True, cwd=temporary,
                               env={**os.environ, "TMPDIR": str(temporary), **(environment or {})},
                               preexec_fn=limit(cpu_seconds))
    try:
        return process.wait(timeout=60 + 8 * cpu_seconds) == 0
    except subprocess.TimeoutExpired:
        return False
    finally:
        try:
            os.killpg(process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        process.wait()


def timed_run(build, suite, temporary, environment=None):
    """Whether a suite passes, and the processor's seconds it took with all that it started."""
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    passed = run(build, suite, temporary, environment=environment)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return passed, after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime


def gcov(notes_and_counts, branches=False):
    """What gcov tells of files of counts beside their notes: a record for each object."""
    for first in range(0, len(notes_and_counts), 20):
        some = [str(path) for path in notes_and_counts[first:first + 20]]
        told = subprocess.run(["gcov", "--json-format", "--stdout", *(["-b"] if branches else []), *some],
                              capture_output=True, check=True).stdout
        for line in told.splitlines():
            if line.startswith(b"{"):
                yield json.loads(line)


def lines_that_ran(build, counts, root, is_wanted):
    """File and line of everything that ran, and of everything that could."""
    ran, known = set(), set()
    files = [path for path in pathlib.Path(counts).rglob("*.gcda") if is_wanted(str(path))]
    for path in files:
        notes = path.with_suffix(".gcno")
        original = pathlib.Path(build) / notes.relative_to(counts)
        if not notes.exists() and original.exists():
            notes.symlink_to(original)
    for record in gcov([path for path in files if path.with_suffix(".gcno").exists()]):
        for file in record["files"]:
            name = os.path.relpath(os.path.join(record["current_working_directory"], file["file"]), root)
            if name.startswith(".."):
                continue
            for line in file["lines"]:
                known.add((name, line["line_number"]))
                if line["count"]:
                    ran.add((name, line["line_number"]))
    return ran, known


def lines_of_suite(build, suite, root, work, is_wanted):
    """Runs one suite of a build made with --coverage: whether it passes, its time, and its lines."""
    counts = pathlib.Path(work) / "counts"
    shutil.rmtree(counts, ignore_errors=True)
    strip = str(len(pathlib.Path(build).resolve().parts) - 1)
    # Where a test lets writing fail, the counts fail too, and must not tell the test so.
    passed, seconds = timed_run(build, suite, pathlib.Path(work) / "tmp",
                                {"GCOV_PREFIX": str(counts), "GCOV_PREFIX_STRIP": strip, "GCOV_ERROR_FILE": "/dev/null"})
    return passed, seconds, *lines_that_ran(build, counts, root, is_wanted)
