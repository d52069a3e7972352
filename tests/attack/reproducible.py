"""The same sources give the same bytes, in whatever folder and whenever they are built: both libraries and the program.

What a build holds is built once more, from a copy of the sources elsewhere, and compared. scripts/test compares two of
its own builds of the libraries instead.
"""
import filecmp
import os
import pathlib
import shutil
import subprocess

from shared.skipped import Skipped

ROOT = pathlib.Path(__file__).resolve().parents[2]
COPIED = ["CMakeLists.txt", "LICENSE", "cmake", "ground", "include", "lab", "src", "tools"]
PRODUCTS = {"nadir": "libnadir.so", "nadirground": "ground/libnadirground.so", "nadir-tool": "tools/nadir"}


def cached(build, name):
    lines = (build / "CMakeCache.txt").read_text().splitlines()
    return next((line.split("=", 1)[1] for line in lines if line.startswith(name + ":")), "")


def copy_of_sources(folder):
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    for name in COPIED:
        take = shutil.copytree if (ROOT / name).is_dir() else shutil.copy
        take(ROOT / name, folder / name)
    return folder


def build_again(build, sources):
    """Builds products with the compiler and the flags of another build, and without a cache that could hand its files out."""
    again = sources / "again"
    same = [f"-D{name}={cached(build, name)}" for name in
            ("CMAKE_BUILD_TYPE", "CMAKE_C_COMPILER", "CMAKE_CXX_COMPILER", "CMAKE_C_FLAGS", "CMAKE_CXX_FLAGS", "BUILD_SHARED_LIBS")]
    same.append("-DNADIR_BUILD_TOOLS=ON")
    environment = {**os.environ, "CCACHE_DISABLE": "1"}
    subprocess.run(["cmake", "-G", "Ninja", "-S", sources, "-B", again, *same], check=True, env=environment, stdout=subprocess.DEVNULL)
    subprocess.run(["cmake", "--build", again, "-j", str(os.cpu_count()), "--target", *PRODUCTS], check=True, env=environment,
                   stdout=subprocess.DEVNULL)
    return again


def run(options):
    build = options.build.resolve()
    missing = [path for path in PRODUCTS.values() if not (build / path).exists()]
    if missing:
        raise Skipped(f"{build} has no {missing[0]}")
    # The copy's path is longer than the original's, and its files are younger.
    again = build_again(build, copy_of_sources(options.work / "a longer path"))
    differing = [path for path in PRODUCTS.values() if not filecmp.cmp(build / path, again / path, shallow=False)]
    return {"compared": len(PRODUCTS), "findings": [f"{path} has other bytes when it is built elsewhere" for path in differing]}
