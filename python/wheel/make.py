#!/usr/bin/env python3
"""Makes the wheel of what a build holds: make.py BUILD FOLDER

It prints the wheel's path. A wheel is a zip of the package, the libraries and the program, with a list of what is in it;
Python's own zipfile writes that in fewer lines than it takes to tell setuptools of files that it did not compile and of a
name for every version of Python.
"""
import base64
import glob
import hashlib
import os
import re
import subprocess
import sys
import sysconfig
import tempfile
import zipfile

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(os.path.dirname(HERE))
# Whose code is in the program, by the packages that have their licences.
LINKED = ("libcli11-dev", "libjpeg62-turbo-dev", "libpng-dev", "libstb-dev", "libstdc++-*-dev", "libtinyxml2-dev",
          "libtomlplusplus-dev", "libyaml-cpp-dev", "nlohmann-json3-dev", "zlib1g-dev")

METADATA = """Metadata-Version: 2.1
Name: nadir
Version: {version}
Summary: Stereo vision for cameras that look at the ground
License: Apache-2.0
Requires-Python: >=3.9
Requires-Dist: numpy
Provides-Extra: plot
Requires-Dist: matplotlib; extra == "plot"
"""

WHEEL = """Wheel-Version: 1.0
Generator: nadir
Root-Is-Purelib: false
Tag: {tag}
"""


def contents(path):
    with open(path, "rb") as file:
        return file.read()


def version():
    """The library's version as Python writes it: 0.2.0-dev is 0.2.0.dev0."""
    header = contents(os.path.join(ROOT, "include/nadir/api.h")).decode()
    numbers = re.findall(r"#define NADIR_VERSION_(?:MAJOR|MINOR|PATCH) (\d+)", header)
    stage = re.search(r'#define NADIR_VERSION_STAGE "-?(\w*)"', header)[1]
    return ".".join(numbers) + (f".{stage}0" if stage else "")


def newest_glibc(paths):
    """The N of the newest GLIBC_2.N that any of these files asks for."""
    symbols = subprocess.run(["objdump", "-T", *paths], check=True, stdout=subprocess.PIPE, text=True).stdout
    return max(int(minor) for minor in re.findall(r"\*UND\*.*\(GLIBC_2\.(\d+)", symbols))


def platform_files(build, folder):
    """Libraries and program by the names that they are looked for; the build's names for them are links to others."""
    subprocess.run(["cmake", "--install", build, "--component", "wheel", "--strip", "--prefix", folder],
                   check=True, stdout=subprocess.DEVNULL)
    wanted = [name for name in sorted(os.listdir(folder)) if re.search(r"(^nadir|\.so\.\d+)$", name)]
    return {f"nadir/_platform/{name}": os.path.join(folder, name) for name in wanted}


def package_files():
    """What Python reads, wherever in the package it lies."""
    start = os.path.join(ROOT, "python")
    found = glob.glob(os.path.join(start, "nadir/**/*.py"), recursive=True) + [os.path.join(start, "nadir/py.typed")]
    return {os.path.relpath(path, start): path for path in sorted(found)}


def licences():
    """The licences of all that the wheel holds, by their names in it."""
    found = {"LICENSE": os.path.join(ROOT, "LICENSE")}
    for package in LINKED:
        path, = glob.glob(f"/usr/share/doc/{package}/copyright")
        found[os.path.basename(os.path.dirname(path)) + ".txt"] = path
    return found


def write(path, members):
    """The zip; the same members give the same bytes whenever it is written."""
    with zipfile.ZipFile(path, "w") as wheel:
        for name, (content, runs) in members.items():
            entry = zipfile.ZipInfo(name)
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.external_attr = (0o100755 if runs else 0o100644) << 16
            wheel.writestr(entry, content)


def record(members):
    """The list of the wheel's members with their hashes and sizes, which installers compare."""
    def line(name, content):
        digest = base64.urlsafe_b64encode(hashlib.sha256(content).digest()).rstrip(b"=").decode()
        return f"{name},sha256={digest},{len(content)}\n"
    return "".join(line(name, content) for name, (content, _) in members.items())


def make(build, folder):
    with tempfile.TemporaryDirectory() as platform:
        carried = platform_files(build, platform)
        architecture = sysconfig.get_platform().split("-")[-1]
        tag = f"py3-none-manylinux_2_{newest_glibc(carried.values())}_{architecture}"
        members = {name: (contents(path), False) for name, path in package_files().items()}
        members.update({name: (contents(path), name.endswith("/nadir")) for name, path in carried.items()})
    info = f"nadir-{version()}.dist-info"
    members.update({f"{info}/licenses/{name}": (contents(path), False) for name, path in licences().items()})
    members[f"{info}/METADATA"] = (METADATA.format(version=version()).encode(), False)
    members[f"{info}/WHEEL"] = (WHEEL.format(tag=tag).encode(), False)
    members[f"{info}/RECORD"] = ((record(members) + f"{info}/RECORD,,\n").encode(), False)

    os.makedirs(folder, exist_ok=True)
    path = os.path.join(folder, f"nadir-{version()}-{tag}.whl")
    write(path, members)
    return path


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    print(make(*sys.argv[1:]))
