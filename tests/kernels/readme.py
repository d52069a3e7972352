#!/usr/bin/env python3
"""Compares the README's table of kernels with what nadir_kernels --list prints: readme.py README PROGRAM...

The README joins kernels that have the same levels to one row. Only the levels that this build has can be compared: on
x86-64 those of x86, on ARM NEON. readme.py --self-test README PROGRAM... changes every cell in turn, each of which must
be noticed.
"""
import subprocess
import sys

# The kernels behind each row of the README.
ROWS = {
    "census, penalties, costs, path costs": "census penalties costs path",
    "minimum search, peak check": "find_min peak_check",
    "the matcher's walk (disparity, distinctiveness)": "refine walk_disparity walk_distinctness",
    "median, maximum, erode, dilate, clean":
        "median_u16 median_s16 maximum erode_u8 dilate_u8 clean_u8 erode_u16 dilate_u16 clean_u16",
    "thresholds, arithmetic, masks":
        "zero_inside zero_outside add subtract multiply shift_left shift_right_u16 shift_right_s16 divide_u16 divide_s16"
        " keep_set_u8 clear_set_u8 keep_set_u16 clear_set_u16",
    "Gauss, pull-push, halving, averages over time": "gauss_across gauss_down pull push halve mean",
    "the road: pictures, opinions, points, cells, ranks":
        "take16 take8 mirror16 mirror8 mirror_mask mirror_codes halve_known agree support close mean_close compare move"
        " pixels_of pixels_given place ranked rectify16 rectify8",
}


def cells(line):
    return [cell.strip().strip("`") for cell in line.strip().strip("|").split("|")]


def table(lines):
    """A table's rows by their first cell, each a record of level and cell."""
    header = [name.lower().replace("avx-512", "avx512") for name in cells(lines[0])[1:]]
    return {row[0]: dict(zip(header, row[1:])) for row in map(cells, lines[2:])}


def table_in(text):
    lines = text.splitlines()
    start = next((i for i, line in enumerate(lines) if line.startswith("| kernel |")), None)
    if start is None:
        return {}
    end = next(i for i in range(start, len(lines) + 1) if i == len(lines) or not lines[i].startswith("|"))
    return table(lines[start:end])


def expected(level, levels_of_kernels, levels):
    """What the README says of a level: yes, or which level runs instead; None where the row's kernels differ."""
    own = {bool(kernel[level]) for kernel in levels_of_kernels}
    if len(own) != 1:
        return None
    if own == {True}:
        return "yes"
    if level == "neon":
        return "compiled loops"
    below = [other for other in levels[:levels.index(level)] if all(kernel[other] for kernel in levels_of_kernels)]
    return "as " + {"scalar": "scalar", "sse4.1": "SSE4.1", "avx2": "AVX2"}[below[-1]]


def complaints(readme, kernels):
    named = " ".join(ROWS.values()).split()
    found = [f"kernel {name}: in no row of the README" for name in kernels.keys() - set(named)]
    found += [f"kernel {name}: there is none" for name in set(named) - kernels.keys()]
    found += [f"row {row}: missing or not known" for row in readme.keys() ^ ROWS.keys()]
    for row, names in ROWS.items():
        of_row = [kernels[name] for name in names.split() if name in kernels]
        levels = list(of_row[0]) if of_row else []
        for level in levels:
            said, is_so = readme.get(row, {}).get(level), expected(level, of_row, levels)
            if said != is_so:
                found.append(f"row {row}: {level} is {said!r}, and should be {is_so!r}")
    return found


def missed_changes(readme, kernels):
    compared = next(iter(kernels.values())).keys()
    changes = [(row, level) for row in readme for level in compared]
    return [change for change in changes
            if not complaints({**readme, change[0]: {**readme[change[0]], change[1]: "perhaps"}}, kernels)]


def main(arguments):
    is_self_test = arguments[0] == "--self-test"
    path, *program = arguments[is_self_test:]
    with open(path, encoding="utf-8") as file:
        readme = table_in(file.read())
    listed = subprocess.run([*program, "--list"], check=True, stdout=subprocess.PIPE, text=True).stdout
    kernels = table_in(listed)
    if is_self_test:
        missed = missed_changes(readme, kernels)
        print(f"not noticed: {missed}" if missed else f"every change of {len(readme)} rows is noticed")
        return bool(missed) or not readme or not kernels
    found = complaints(readme, kernels)
    print("\n".join(found) if found else f"{len(kernels)} kernels in {len(readme)} rows")
    return bool(found) or not kernels


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
