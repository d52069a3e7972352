#!/usr/bin/env python3
"""Rectifies pictures of a chessboard and measures in which rows both show its corners: chessboard.py NADIR

They agree to 0.2 pixels in the mean, with the views that the calibration has and with those that are found without them.
Needs Debian's python3-opencv, which finds corners, and the chessboard of NADIR_DATA. Status 77 says what is missing.
"""
import os
import pathlib
import subprocess
import sys
import tempfile

MOST_PX = 0.2
INNER_CORNERS = (9, 6)
PAIRS = ("01", "05", "09")

try:
    import cv2
except ImportError:
    print("skipped: python3-opencv is not installed")
    sys.exit(77)
BOARD = pathlib.Path(os.environ.get("NADIR_DATA", "/nowhere")) / "chessboard"
if not BOARD.is_dir():
    print("skipped: NADIR_DATA names no folder with a chessboard")
    sys.exit(77)


def corners(path):
    picture = cv2.imread(str(path), cv2.IMREAD_GRAYSCALE)
    found, places = cv2.findChessboardCorners(picture, INNER_CORNERS)
    if not found:
        sys.exit(f"no chessboard is found in {path}")
    steps = (cv2.TERM_CRITERIA_EPS | cv2.TERM_CRITERIA_MAX_ITER, 30, 0.01)
    return cv2.cornerSubPix(picture, places, (5, 5), (-1, -1), steps).reshape(-1, 2)


def row_offsets(nadir, folder, number, calibration):
    out = folder / f"rectified{number}"
    subprocess.run([nadir, "rectify", BOARD / f"left{number}.jpg", BOARD / f"right{number}.jpg", "--calibration",
                    *calibration, "-o", out], check=True, capture_output=True)
    return abs(corners(out / "left.png")[:, 1] - corners(out / "right.png")[:, 1])


def without_views(folder):
    """The same calibration without R1, R2, P1, P2 and Q, which stand at its end."""
    text = (BOARD / "extrinsics.yml").read_text()
    (folder / "pose.yml").write_text(text[:text.index("R1:")])
    return folder / "pose.yml"


def main():
    nadir = sys.argv[1]
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        for what, pose in (("given", BOARD / "extrinsics.yml"), ("found", without_views(folder))):
            offsets = [row_offsets(nadir, folder, number, [BOARD / "intrinsics.yml", pose]) for number in PAIRS]
            mean = sum(o.mean() for o in offsets) / len(offsets)
            print(f"views {what}: rows differ by {mean:.3f} pixels in the mean")
            if not mean <= MOST_PX:
                sys.exit(f"more than {MOST_PX}")


main()
