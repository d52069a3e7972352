"""Changes lines of the libraries and of the program, one at a time, and sees whether a test notices.

Each mutant is built in a copy of the tree and tried against the suites alone that run its line, told by gcov, the fastest
first, until one fails. What compiles to the same bytes, or not at all, is no mutant; another one takes its place. Every
verdict is kept at once, and a later run goes on behind them.
"""

import collections
import hashlib
import itertools
import json
import os
import pathlib
import random
import re
import shutil
import signal
import subprocess
import sys
import textwrap
import time

from shared import mutations, suites

ROOT = pathlib.Path(__file__).resolve().parents[2]
PROGRAM = ("tools/files/", "tools/pictures/", "tools/camera/", "tools/base/json", "tools/base/known_values", "tools/base/text",
           "tools/sequence/frame_", "tools/sequence/run_settings", "tools/sequence/settings_difference", "tools/report/json_parts",
           "tools/report/ply", "tools/road/pair_input")
COUNTING = ROOT / "tests/attack/shared/counting.cmake"
SURVIVORS = ROOT / "tests/attack/survivors.md"
SURVIVORS_HEAD = """# Mutants that survive

`scripts/trust mutants` changes one line of the project at a time and sees whether a test notices. This list holds what none
noticed: the line, what it was changed to, and why that may be so. The script writes the list and keeps the reasons, which
people write.
"""
# The share of the mutants that must be noticed, in percent.
LEAST_NOTICED = 98
# How many mutants must be counted before the share of the noticed says something.
WANTED = 500
# CMake names objects by their paths below tools/.
OBJECTS_OF_PROGRAM = [path.replace("tools/", ".dir/") for path in PROGRAM]
# The share of each part in all mutants, as a pattern of turns.
TURNS = ["library", "road", "library", "program"]
MUTATED_OBJECTS = re.compile(r"nadir_objects\.dir|nadirground_objects\.dir|nadir_road_kernels\.dir|nadir_tool_\w+\.dir|nadir-tool\.dir")
FLAGS = ["-DCMAKE_BUILD_TYPE=Release", "-DBUILD_TESTING=ON", "-DBUILD_SHARED_LIBS=OFF", "-DNADIR_BUILD_TOOLS=ON",
         "-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=gold"]
OUTCOMES = ("noticed", "survived")


def part_of(file):
    """Which part of the project a source belongs to; none if it is not to be changed."""
    if not file.endswith((".cpp", ".hpp")) or "neon" in file:
        return None
    if file.startswith("src/"):
        return "library"
    if file.startswith("ground/"):
        return "road"
    # A header of the program would rebuild half of it.
    return "program" if file.startswith(PROGRAM) and file.endswith(".cpp") else None


def sources_of(root):
    """The project's files, as git knows them."""
    return subprocess.run(["git", "-C", root, "ls-files"], capture_output=True, text=True, check=True).stdout.splitlines()


def state_of_sources(tree):
    """A number that changes with any file that a map of lines depends on."""
    digest = hashlib.sha256()
    for folder in ("src", "ground", "tools", "lab", "include", "tests"):
        for path in sorted((tree / folder).rglob("*")):
            if path.is_file() and "attack" not in path.parts:
                digest.update(str(path.relative_to(tree)).encode() + path.read_bytes())
    return digest.hexdigest()


class Tree:
    """A copy of the project with a build of its own, in which one worker tries one mutant after the other."""

    def __init__(self, work, number):
        self.path = work / f"tree{number}"
        self.build = self.path / "build/plain"
        self.temporary = work / f"tmp{number}"

    def follow(self, root):
        """Takes over what has changed, and nothing else, so that little is built again."""
        wanted = set(sources_of(root))
        for name in wanted:
            copy, original = self.path / name, root / name
            if original.is_file() and (not copy.exists() or copy.read_bytes() != original.read_bytes()):
                copy.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(original, copy)
        for path in self.path.rglob("*"):
            if path.is_file() and "build" not in path.relative_to(self.path).parts and str(path.relative_to(self.path)) not in wanted:
                path.unlink()

    def make(self, counting=""):
        """Builds everything that suites run. A build that counts lines becomes one that does not, and the other way, so
        that tests are compiled once for both."""
        command = ["cmake", "--no-warn-unused-cli", "-G", "Ninja", "-S", str(self.path), "-B", str(self.build), *FLAGS,
                   f"-DCMAKE_PROJECT_INCLUDE={counting}" if counting else "-UCMAKE_PROJECT_INCLUDE", "-DNADIR_COUNTED=-O1"]
        subprocess.run(command, check=True, stdout=subprocess.DEVNULL)
        subprocess.run(["ninja", "-C", str(self.build), *suites.targets(self.build)], check=True, stdout=subprocess.DEVNULL)

    def prepare(self):
        """Builds the tree and remembers every object that can be changed."""
        self.make()
        self.users = self.objects_of_sources()
        self.originals = {name: (self.build / name).read_bytes() for names in self.users.values() for name in names}

    def objects_of_sources(self):
        """Which of the objects that can be changed are made from each file."""
        users = collections.defaultdict(set)
        told = subprocess.run(["ninja", "-C", str(self.build), "-t", "deps"], capture_output=True, text=True, check=True).stdout
        for block in told.split("\n\n"):
            head, *files = block.split("\n")
            name = head.split(":")[0]
            if not MUTATED_OBJECTS.search(name):
                continue
            for file in files:
                full = os.path.normpath(os.path.join(self.build, file.strip()))
                if full.startswith(str(self.path)):
                    users[os.path.relpath(full, self.path)].add(name)
        return users

    def ninja(self, names):
        """Whether some targets can be built."""
        return subprocess.run(["ninja", "-C", str(self.build), "-j1", *names], stdout=subprocess.DEVNULL).returncode == 0

    def verdict(self, tried, known):
        """What becomes of a mutant that stands in the tree."""
        objects = sorted(self.users[tried.file])
        if not objects or not self.ninja(objects):
            return "uncompilable", ""
        if all((self.build / name).read_bytes() == self.originals[name] for name in objects):
            return "same", ""
        for suite, seconds in known:
            if not self.ninja([suite.program]):
                return "uncompilable", ""
            if not suites.run(self.build, suite, self.temporary, cpu_seconds=int(5 * seconds) + 3):
                return "noticed", suite.name
        return "survived", ""

    def attempt(self, tried, known):
        """Puts a mutant into the tree, sees what becomes of it and takes it out again."""
        source = self.path / tried.file
        times, text, start = source.stat(), source.read_text(), time.time()
        lines = text.split("\n")
        assert lines[tried.line - 1] == tried.before, tried
        lines[tried.line - 1] = tried.after
        source.write_text("\n".join(lines))
        try:
            return self.verdict(tried, known)
        finally:
            source.write_text(text)
            os.utime(source, ns=(times.st_atime_ns, times.st_mtime_ns))
            self.put_back(tried.file, times.st_mtime_ns + 1000, start)

    def put_back(self, file, moment, start):
        """Gives objects their old bytes, with a time that tells ninja so, and removes what was linked with the others."""
        for name in self.users[file]:
            (self.build / name).write_bytes(self.originals[name])
            os.utime(self.build / name, ns=(moment, moment))
        for path in self.build.rglob("*"):
            linked = path.suffix == ".a" or (path.suffix == "" and os.access(path, os.X_OK))
            if linked and path.is_file() and path.stat().st_mtime >= start - 1:
                path.unlink()


class Map:
    """Which suites run each line, and how long each suite takes undisturbed."""

    def __init__(self, kept):
        self.digest = kept["digest"]
        self.suites = [suites.Suite(*suite) for suite in kept["suites"]]
        self.seconds = kept["seconds"]
        self.left_out = kept["left_out"]
        self.noticed = collections.Counter()
        self.failing = set()
        self.lines = {file: {int(line): set(numbers) for line, numbers in of_file.items()} for file, of_file in kept["lines"].items()}

    def order(self, number):
        return "tool" in self.suites[number].program, self.seconds[number]

    def of_line(self, file, line):
        """The suites for a line: first those that noticed most in its file so far, then the fastest, and the program's last,
        since they start it again and again. A line that is no code of its own takes those of the code around it: the
        other lines of its statement, or all that run the file where it is a constant."""
        of_file = self.lines.get(file, {})
        if line in of_file:
            numbers = of_file[line]
        else:
            above = max((known for known in of_file if known < line), default=None)
            below = min((known for known in of_file if known > line), default=None)
            numbers = of_file.get(above, set()) | of_file.get(below, set())
            numbers = numbers or set().union(*of_file.values()) if of_file else set(range(len(self.suites)))
        numbers = [n for n in numbers if self.suites[n].name not in self.failing]
        numbers.sort(key=lambda n: (-self.noticed[file, self.suites[n].name], *self.order(n)))
        return [(self.suites[n], self.seconds[n]) for n in numbers]


def made_map(tree, work, digest):
    """Runs every suite of a build that counts lines."""
    tree.make(COUNTING)
    kept = {"digest": digest, "suites": [], "seconds": [], "left_out": [], "lines": {}}
    wanted = lambda path: bool(MUTATED_OBJECTS.search(path)) and ("/tools/CMakeFiles/" not in path or any(part in path for part in OBJECTS_OF_PROGRAM))
    for suite in suites.suites(tree.build):
        passed, seconds, ran, known = suites.lines_of_suite(tree.build, suite, tree.path, work / "map", wanted)
        print(f"map: {suite.name} {seconds:.1f} s, {len(ran)} lines{'' if passed else ', left out: it fails unchanged'}", flush=True)
        if not passed:
            kept["left_out"].append(suite.name)
            continue
        number = len(kept["suites"])
        kept["suites"].append(suite)
        kept["seconds"].append(round(seconds, 2))
        for file, line in known:
            numbers = kept["lines"].setdefault(file, {}).setdefault(line, [])
            if (file, line) in ran:
                numbers.append(number)
    return kept


def current_map(tree, work):
    """The map of the tree's lines, made once for its sources and tests."""
    file, digest = work / "map.json", state_of_sources(tree.path)
    if not file.exists() or json.loads(file.read_text())["digest"] != digest:
        file.write_text(json.dumps(made_map(tree, work, digest)))
    return Map(json.loads(file.read_text()))


def leave_out_failing(tree, lines, work):
    """Takes suites out of a map that fail in the unchanged tree: they would notice everything. Which do is found once."""
    file = work / "failing.json"
    if not file.exists() or json.loads(file.read_text())["digest"] != lines.digest:
        failing = [suite.name for suite in lines.suites if not suites.run(tree.build, suite, tree.temporary)]
        file.write_text(json.dumps({"digest": lines.digest, "failing": failing}))
    lines.failing = set(json.loads(file.read_text())["failing"])
    print(f"left out, as they fail unchanged: {' '.join(sorted(lines.failing)) or 'none'}", flush=True)


def key(mutation):
    """What stays of a mutation when lines move: the same change of the same text in the same file."""
    return f"{mutation.file}|{mutation.before.strip()}|{mutation.after.strip()}"


def candidates(tree, seed):
    """For each part its lines in an order that the seed gives, and one change of each line, so that long lines do not
    take the place of short ones; then a second change of each, and so on."""
    chance, found = random.Random(seed), collections.defaultdict(list)
    for file in sorted(sources_of(ROOT)):
        if part_of(file) and (tree.path / file).exists():
            for of_line in mutations.mutations(file, (tree.path / file).read_text()):
                found[part_of(file)].append(chance.sample(of_line, len(of_line)))
    ordered = {}
    for part, lines in found.items():
        chance.shuffle(lines)
        ordered[part] = [of_line[turn] for turn in range(max(map(len, lines))) for of_line in lines if turn < len(of_line)]
    return ordered


def verdicts(work):
    """Every verdict so far, the last of each mutant."""
    file = work / "state.jsonl"
    kept = [json.loads(line) for line in file.read_text().splitlines()] if file.exists() else []
    return {record["key"]: record for record in kept}


def of_today(done, tree):
    """The verdicts on lines that still stand: what is said of others says nothing of the project as it is."""
    lines = {file: set((tree.path / file).read_text().split("\n")) for file in {record["file"] for record in done.values()}
             if (tree.path / file).exists()}
    return {name: record for name, record in done.items() if record["before"] in lines.get(record["file"], ())}


def try_all(tree, chosen, lines, work, commit):
    """Tries mutants one after the other and keeps each verdict."""
    for part, tried in chosen:
        start = time.time()
        result, by = tree.attempt(tried, lines.of_line(tried.file, tried.line))
        record = {"key": key(tried), "part": part, "result": result, "by": by, "commit": commit, "tests": lines.digest,
                  "seconds": round(time.time() - start, 1), **tried._asdict()}
        lines.noticed[tried.file, by] += 1
        with open(work / "state.jsonl", "a") as state:
            state.write(json.dumps(record) + "\n")
        print(f"{result:12} {record['seconds']:5} s {tried.file}:{tried.line} {tried.kind} {by}", flush=True)
        yield record


def in_turns(ordered, done):
    """Untried mutants, parts by turns, for as long as too few are counted; `done` grows while this goes on."""
    queues = {part: iter(of_part) for part, of_part in ordered.items()}
    for part in itertools.cycle(TURNS):
        tried = next((mutation for mutation in queues[part] if key(mutation) not in done), None)
        if not tried or sum(record["result"] in OUTCOMES for record in done.values()) >= WANTED:
            return
        yield part, tried


def survivors_again(done, tree, digest):
    """What survived with other tests than those of today."""
    for record in [record for record in done.values() if record["result"] == "survived" and record["tests"] != digest]:
        lines = (tree.path / record["file"]).read_text().split("\n")
        places = [number for number, line in enumerate(lines, 1) if line == record["before"]]
        line = min(places, key=lambda place: abs(place - record["line"]))
        fields = {**{name: record[name] for name in mutations.Mutation._fields}, "line": line}
        yield record["part"], mutations.Mutation(**fields)


def reasons():
    """Why each survivor may survive, as the list of survivors has it."""
    file, kept = None, {}
    for block in re.split(r"\n\n|\n(?=- )", SURVIVORS.read_text() if SURVIVORS.exists() else ""):
        lines = [line.strip() for line in block.strip().split("\n")]
        if lines[0].startswith("## "):
            file = lines[0][3:]
        elif lines[0].startswith("- `") and len(lines) > 2:
            kept[f"{file}|{lines[0][3:-1]}|{lines[1][1:-1]}"] = " ".join(lines[2:])
    return kept


def write_survivors(done):
    """Writes the list of survivors and keeps the reasons that are there; a sentence for each that has none."""
    known, survived = reasons(), [record for record in done.values() if record["result"] == "survived"]
    text, file = SURVIVORS_HEAD, None
    for record in sorted(survived, key=lambda record: (record["file"], record["line"], record["after"])):
        text += f"\n## {record['file']}\n\n" if record["file"] != file else ""
        file = record["file"]
        text += f"- `{record['before'].strip()}`\n  `{record['after'].strip()}`\n"
        text += "".join(f"  {line}\n" for line in textwrap.wrap(known.get(record["key"], ""), 118))
        if record["key"] not in known:
            yield f"{file}:{record['line']}: survives and no reason says why: {record['after'].strip()}"
    SURVIVORS.write_text(text)


def too_few(done):
    """A sentence where the tests notice too few."""
    results = [record["result"] for record in done.values()]
    noticed, survived = results.count("noticed"), results.count("survived")
    if noticed < LEAST_NOTICED / 100 * (noticed + survived):
        yield f"{noticed} of {noticed + survived} mutants are noticed, which must be {LEAST_NOTICED} %"


def left_out(lines):
    """A sentence for each suite that fails without any change: what it would notice seems to survive."""
    for name in sorted({*lines.left_out, *lines.failing}):
        yield f"{name} fails in the unchanged tree and is left out"


def figures(done, findings):
    """How many there are of each verdict, in all and of each part."""
    counted = [record for record in done.values() if record["result"] in OUTCOMES]
    noticed = lambda records: sum(record["result"] == "noticed" for record in records)
    told = {"mutants": len(counted), "noticed": noticed(counted), "survived": len(counted) - noticed(counted),
            "not counted, the same object": sum(record["result"] == "same" for record in done.values()),
            "not counted, uncompilable": sum(record["result"] == "uncompilable" for record in done.values())}
    for part in sorted(set(TURNS)):
        of_part = [record for record in counted if record["part"] == part]
        told[part] = f"{noticed(of_part)} of {len(of_part)} noticed"
    return {**told, "findings": findings}


# A project of one source, in which the mutator must notice what its test notices, and nothing else.
SMALL = {
    "CMakeLists.txt": """cmake_minimum_required(VERSION 3.22)
project(small CXX)
add_library(nadir_objects OBJECT src/small.cpp)
add_subdirectory(tests/golden)
""",
    "tests/golden/CMakeLists.txt": """add_executable(nadir_golden_tests test.cpp $<TARGET_OBJECTS:nadir_objects>)
""",
    "tests/golden/test.cpp": """int least(int a, int b);
int half(int a);
int main() { return least(1, 2) == 1 && least(4, 3) == 3 && half(0) == 0 ? 0 : 1; }
""",
    "src/small.cpp": """// Says nothing / 2 of a comment.
int least(int a, int b) {
  if (a < b) return a;
  return b;
}
int half(int a) {
  return a / 2;
}
""",
}
OF_SMALL = {
    "if (a <= b) return a;": "same",  # of equal numbers either is the least, and the compiler knows
    "if (!(a < b)) return a;": "noticed",
    "return a * 2;": "survived",  # half of 0 alone is asked for
    "return a / 3;": "survived",
}


def self_test(work):
    """Whether the mutants of the small project get the verdicts that they must get."""
    tree = Tree(work.resolve(), 0)
    for name, text in SMALL.items():
        (tree.path / name).parent.mkdir(parents=True, exist_ok=True)
        (tree.path / name).write_text(text)
    lines = Map(made_map(tree, work, ""))
    tree.prepare()
    found = {}
    for tried in sum(mutations.mutations("src/small.cpp", SMALL["src/small.cpp"]), []):
        found[tried.after.strip()] = tree.attempt(tried, lines.of_line(tried.file, tried.line))[0]
    wrong = [f"the mutant '{text}' is {found.get(text)}, which must be {OF_SMALL.get(text)}"
             for text in sorted({**OF_SMALL, **found}) if found.get(text) != OF_SMALL.get(text)]
    return {"mutants of the small project": len(found), "findings": wrong}


def run(options):
    """Tries mutants until enough are counted or time is up, and all that survived once more where the tests have changed
    since."""
    work = options.work
    if options.short:
        return self_test(work)
    work.mkdir(parents=True, exist_ok=True)
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))  # which takes the mutant out of the tree
    commit = subprocess.run(["git", "-C", ROOT, "describe", "--always", "--dirty"], capture_output=True, text=True, check=True).stdout.strip()
    tree = Tree(work.resolve(), 0)
    tree.follow(ROOT)
    lines, done, start = current_map(tree, work), of_today(verdicts(work), tree), time.time()
    lines.noticed.update((record["file"], record["by"]) for record in done.values())
    tree.prepare()
    leave_out_failing(tree, lines, work)
    chosen = itertools.chain(survivors_again(done, tree, lines.digest), in_turns(candidates(tree, options.seed), done))
    for record in try_all(tree, chosen, lines, work, commit):
        done[record["key"]] = record
        if options.minutes and time.time() - start > 60 * options.minutes:
            break
    return figures(done, [*too_few(done), *left_out(lines), *write_survivors(done)])
