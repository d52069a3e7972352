"""The golden results are the same whatever the libraries are compiled for and by: 32-bit x86 with floats in SSE2, 32-bit ARM
with and without NEON, gcc and clang, without optimisation and with all of it, and for just this processor.

Each platform configures and builds the libraries, the golden results and the checks of the interface in a folder of its own,
and runs them. x87 must be refused. The short form, a stage of scripts/test, tries that alone: its other stages build for
the platforms that differ most.
"""
import os
import pathlib
import re
import shutil
import subprocess

from shared.skipped import Skipped

ROOT = pathlib.Path(__file__).resolve().parents[2]
TARGETS = ["nadir_golden_tests", "nadir_abi"]
REFUSAL = "floats must be computed as floats"


def cross(processor, flags):
    """A cross compiler's own flags, in place of those that its toolchain file gives."""
    return [f"--toolchain={ROOT}/cmake/toolchains/{processor}.cmake", f"-DCMAKE_C_FLAGS={flags}", f"-DCMAKE_CXX_FLAGS={flags}"]


def native(compilers, flags):
    c, cxx = compilers
    return [f"-DCMAKE_C_COMPILER={c}", f"-DCMAKE_CXX_COMPILER={cxx}", f"-DCMAKE_C_FLAGS_RELEASE={flags} -DNDEBUG",
            f"-DCMAKE_CXX_FLAGS_RELEASE={flags} -DNDEBUG"]


GCC, CLANG = ("gcc", "g++"), ("clang-14", "clang++-14")
SSE, ARM = "-msse2 -mfpmath=sse", "-march=armv7-a -mfloat-abi=hard -mfpu="
PLATFORMS = {
    "i686": cross("i686", SSE),
    "i686-scalar": cross("i686", SSE) + ["-DNADIR_SIMD=OFF"],
    "armv7-vfpv3-d16": cross("armv7", ARM + "vfpv3-d16"),
    "armv7-neon": cross("armv7", ARM + "neon"),
    "armv7-neon-vfpv4": cross("armv7", ARM + "neon-vfpv4"),
    "gcc-O0": native(GCC, "-O0"),
    "gcc-O3": native(GCC, "-O3"),
    "gcc-native": native(GCC, "-O3 -march=native"),
    "clang-O0": native(CLANG, "-O0"),
    "clang-O3": native(CLANG, "-O3"),
    "clang-native": native(CLANG, "-O3 -march=native"),
}


def ran(*command):
    """Whether a command ended well, and all that it said."""
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace")
    return done.returncode == 0, done.stdout


def configured(folder, arguments):
    return ran("cmake", "-G", "Ninja", "-S", str(ROOT), "-B", str(folder), "-DBUILD_TESTING=ON", *arguments)


def tests_passed(folder, arguments):
    """How many tests a platform passes, or what it says where one fails."""
    good, said = configured(folder, arguments)
    if good:
        good, said = ran("cmake", "--build", str(folder), "-j", str(os.cpu_count()), "--target", *TARGETS)
    if good:
        good, said = ran("ctest", "--test-dir", str(folder), "--no-tests=error", "--output-on-failure", "-R",
                         r"^(golden|abi\.(signatures|level|records))")
    return (int(re.search(r"tests passed, 0 tests failed out of (\d+)", said)[1]), "") if good else (0, said[-2000:])


def x87_is_refused(folder):
    good, said = configured(folder, cross("i686", "-mfpmath=387"))
    if not good:
        return False
    good, said = ran("cmake", "--build", str(folder), "--target", "nadir")
    return not good and REFUSAL in said


def run(options):
    for needed in ("i686-linux-gnu-g++", "arm-linux-gnueabihf-g++", "clang++-14"):
        if not shutil.which(needed):
            raise Skipped(f"{needed} is not installed; scripts/packages cross installs it")
    figures, findings = {}, []
    for name, arguments in ({} if options.short else PLATFORMS).items():
        figures[name], said = tests_passed(options.work / name, arguments)
        print(f"{name}: {figures[name]} tests passed", flush=True)
        if said:
            findings.append(f"{name}: {said}")
    figures["x87 refused"] = "yes" if x87_is_refused(options.work / "x87") else "no"
    if figures["x87 refused"] == "no":
        findings.append("a compiler that computes in x87 is not refused")
    return {**figures, "findings": findings}
