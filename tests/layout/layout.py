#!/usr/bin/env python3
"""Holds the folders to the arrows between them: layout.py ROOT, or layout.py --self-test

Every folder may include itself and the rooms that the table names, all of which stand above it in the table: arrows lead
downward only, so a change can break only what lies above it. A folder inside of a room belongs to it unless it is a room
of its own. What is included is named by its path from the project's root, from src/ for the library's own sources. Two
headers below one folder have no type of the same name.
"""
import os
import re
import sys
import tempfile

# A room, and the rooms that it may include. The lowest come first.
ROOMS = {
    # the contracts
    "include/nadir": "",
    # the library
    "src/core": "include/nadir",
    "src/simd": "include/nadir src/core",
    "src/numeric": "include/nadir src/core",
    "src/geometry": "include/nadir src/core",
    "src/imgproc": "include/nadir src/core src/simd",
    "src/segment": "include/nadir src/core src/geometry",
    "src/camera": "include/nadir src/core src/geometry",
    "src/stereo": "include/nadir src/core src/simd",
    # what tests, benchmarks and the program share
    "lab": "include/nadir",
    "lab/scene": "include/nadir lab",
    "lab/verify": "include/nadir lab lab/scene",
    # the road from a pair of pictures to what stands on the ground
    "ground/kernels": "include/nadir src/core src/simd",
    "ground/records": "include/nadir",
    "ground/stations": "include/nadir ground/kernels ground/records",
    "ground/tracks": "include/nadir ground/records",
    "ground/trust": "include/nadir ground/kernels ground/records",
    "ground/lens": "include/nadir ground/kernels ground/records ground/trust",
    "ground/floor": "include/nadir ground/records ground/trust",
    "ground/check": "include/nadir ground/kernels ground/records ground/trust",
    "ground": "include/nadir ground/check ground/floor ground/kernels ground/lens ground/records ground/stations"
              " ground/tracks ground/trust",
    # the program
    "tools/base": "include/nadir lab ground/records",
    "tools/files": "include/nadir lab tools/base",
    "tools/pictures": "include/nadir lab tools/base tools/files",
    "tools/draw": "include/nadir lab tools/base tools/files tools/pictures",
    "tools/camera": "include/nadir lab tools/base tools/files tools/pictures tools/draw",
    "tools/road": "include/nadir lab tools/base tools/files tools/pictures tools/draw tools/camera",
    "tools/synth": "include/nadir lab lab/scene tools/base tools/files tools/pictures tools/draw tools/camera"
                   " tools/road",
    "tools/evaluate": "include/nadir lab tools/base tools/files tools/pictures tools/draw tools/camera tools/road"
                      " tools/synth",
    "tools/report": "include/nadir lab tools/base tools/files tools/pictures tools/draw tools/camera tools/road"
                    " tools/synth tools/evaluate",
    "tools/sequence": "include/nadir lab tools/base tools/files tools/pictures tools/draw tools/camera tools/road"
                      " tools/synth tools/evaluate tools/report",
    "tools/plan": "include/nadir lab tools/base tools/files tools/pictures tools/draw tools/camera tools/road tools/report",
    "tools/tune": "include/nadir lab tools/base tools/files tools/pictures tools/draw tools/camera tools/road"
                  " tools/synth tools/evaluate tools/report tools/sequence",
    "tools/commands": "include/nadir lab lab/scene lab/verify tools/base tools/files tools/pictures tools/draw"
                      " tools/camera tools/road tools/synth tools/evaluate tools/report tools/sequence tools/plan"
                      " tools/tune",
    "tools": "include/nadir lab tools/base tools/files tools/pictures tools/commands",
    # everything that runs them
    "python/wheel": "",
    "examples": "include/nadir",
    "tests/models": "include/nadir lab",
    "tests/support": "include/nadir lab src/simd tests/models",
    "bench": "include/nadir lab src/core src/simd src/geometry src/imgproc src/segment src/stereo tests/support",
    "tests/api": "include/nadir lab tests/models tests/support",
    "tests/api/ground": "include/nadir lab lab/scene tests/models tests/support",
    "tests/counts": "include/nadir lab tests/support",
    "tests/alloc": "include/nadir lab tests/models tests/support tests/counts",
    "tests/road": "include/nadir lab src/simd tests/models tests/support",
    "tests/golden": "include/nadir lab tests/support",
    "tests/lab": "include/nadir lab lab/scene lab/verify",
    "tests/trust": "include/nadir lab lab/scene ground/trust",
    "tests/kernels": "include/nadir lab src/core src/simd src/imgproc src/stereo ground/kernels tests/support",
    "tests/readers": "include/nadir lab tools/base tools/files tools/pictures tools/draw tools/camera tools/evaluate"
                     " tools/sequence",
    "tests/fuzz": "include/nadir lab src/simd tests/models tests/support tests/readers",
    "tests/attack": "include/nadir lab tests/readers",
    "tests/abi": "include/nadir",
    "tests/install": "",
    "tests/isolation": "",
    "tests/tool": "include/nadir lab",
    "tests/attack/faults": "",
    "scripts/measure": "",
}

# Arrows that lead upward all the same, each with its reason. One that is not needed any more must go.
EXCEPTIONS = {
    ("tests/models", "tests/support/integers.hpp"): "a model needs the integers' edges, shapes need a model",
}

LARGEST_FOLDER = 30  # sources in one folder outside of tests/: more of them are a hall in which nothing is found

# Below these a name is one type in all headers: two would be linked as if they were the same.
ONE_NAMESPACE = ("ground", "lab", "tools")

INCLUDE = re.compile(r'\s*#\s*include\s*(["<])([^">]+)[">]')
TYPE = re.compile(r"(?:struct|union|enum class|enum|class) (\w+)[^;(]*\{")


def sources(root):
    for folder, inner, names in os.walk(root):
        inner[:] = sorted(d for d in inner if not d.startswith((".", "build")) and d != "out")
        for name in sorted(names):
            if name.endswith((".cpp", ".hpp", ".c", ".h")):
                yield os.path.relpath(os.path.join(folder, name), root)


def room_of(path):
    """The innermost room that a file lies in, or nothing."""
    folder = os.path.dirname(path)
    while folder and folder not in ROOMS:
        folder = os.path.dirname(folder)
    return folder


def included(root, path):
    """Line numbers, what stands there, and the included file from the root, or None where there is no such file."""
    with open(os.path.join(root, path), encoding="utf-8") as file:
        for number, line in enumerate(file, 1):
            found = INCLUDE.match(line)
            if not found:
                continue
            quote, name = found.groups()
            if quote == "<" and not name.startswith("nadir/"):
                continue
            start = "include/" if quote == "<" else "src/" if path.startswith("src/") else ""
            places = [start + name] if start else [name, "src/" + name]
            yield number, name, next((p for p in places if os.path.exists(os.path.join(root, p))), None)


def complaints(root):
    found, needed, sizes = [], set(), {}
    for path in sources(root):
        room = room_of(path)
        sizes.setdefault(os.path.dirname(path), []).append(path)
        if not room:
            found.append(f"{path}: tests/layout/layout.py has no room for it")
            continue
        for line, name, target in included(root, path):
            if target is None:
                found.append(f"{path}:{line}: \"{name}\" is no path from the project's root (or src/)")
            elif room_of(target) not in [room] + ROOMS[room].split():
                if (room, name) in EXCEPTIONS:
                    needed.add((room, name))
                else:
                    found.append(f"{path}:{line}: {room} must not include {name}")
    for folder, inside in sizes.items():
        if len(inside) > LARGEST_FOLDER and not folder.startswith("tests/"):
            found.append(f"{folder}: {len(inside)} sources, more than {LARGEST_FOLDER}")
    found += types_of_two_headers(root)
    for exception in sorted(EXCEPTIONS.keys() - needed):
        found.append("tests/layout/layout.py: nobody needs the exception that {} includes {}".format(*exception))
    return found


def types_of_two_headers(root):
    """A sentence for each name that is a type in one header and another one in a second."""
    homes = {}
    for path in sources(root):
        top = path.split(os.sep)[0]
        if top not in ONE_NAMESPACE or not path.endswith(".hpp"):
            continue
        with open(os.path.join(root, path), encoding="utf-8") as file:
            names = {found.group(1) for found in map(TYPE.match, file) if found}
        for name in names:
            homes.setdefault((top, name), []).append(path)
    return [f"{paths[1]}: {paths[0]} has a type called {name}, too" for (_, name), paths in sorted(homes.items()) if paths[1:]]


def upward_rules():
    """Rooms that name one below them in the table."""
    order = list(ROOMS)
    return [f"tests/layout/layout.py: {room} lists {other}, which does not stand above it"
            for room in ROOMS for other in ROOMS[room].split() if order.index(other) >= order.index(room)]


PLANTS = {  # what is planted, and the words that must answer
    "an arrow upward": ({"tools/base/a.hpp": '#include "tools/draw/b.hpp"\n', "tools/draw/b.hpp": ""},
                        "tools/base must not include tools/draw/b.hpp"),
    "the library from the road": ({"ground/a.cpp": '#include "core/b.hpp"\n', "src/core/b.hpp": ""},
                                  "ground must not include core/b.hpp"),
    "the road from the program": ({"ground/stations/a.cpp": '#include "lab/grid.hpp"\n', "lab/grid.hpp": ""},
                                  "ground/stations must not include lab/grid.hpp"),
    "a bare name": ({"tools/draw/a.cpp": '#include "b.hpp"\n', "tools/draw/b.hpp": ""}, "is no path from"),
    "a folder that nobody knows": ({"common/a.hpp": ""}, "has no room for it"),
    "a hall": ({f"lab/a{i}.hpp": "" for i in range(LARGEST_FOLDER + 1)}, "more than"),
    "one name for two types": ({"ground/lens/a.hpp": "struct Place {\n", "ground/check/b.hpp": "struct Place {\n"},
                               "has a type called Place, too"),
    "an exception without need": ({"lab/a.hpp": ""}, "nobody needs the exception that tests/models includes tests/support/integers.hpp"),
}


def self_test():
    missed = 0
    for what, (files, words) in PLANTS.items():
        with tempfile.TemporaryDirectory() as root:
            for path, text in files.items():
                os.makedirs(os.path.join(root, os.path.dirname(path)), exist_ok=True)
                with open(os.path.join(root, path), "w", encoding="utf-8") as file:
                    file.write(text)
            heard = any(words in complaint for complaint in complaints(root))
        print(f"{what}: {'found' if heard else 'MISSED'}")
        missed += not heard
    return missed


def main():
    if sys.argv[1] == "--self-test":
        return self_test()
    found = upward_rules() + complaints(sys.argv[1])
    print("\n".join(found) if found else "every folder includes what it may")
    return len(found)


if __name__ == "__main__":
    sys.exit(1 if main() else 0)
