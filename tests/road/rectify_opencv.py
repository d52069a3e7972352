#!/usr/bin/env python3
"""Compares rectifiers with OpenCV's maps and pictures for every kind of lens: rectify_opencv.py LIBNADIRGROUND

Skips with a word where python3-opencv is not installed.
"""
import ctypes
import sys

try:
    import cv2
    import numpy
except ImportError as missing:
    print(f"skipped: {missing}")
    sys.exit(0)

WIDTH, HEIGHT = 320, 240
CAMERA = numpy.array([[249.6, 0, 156.8], [0, 256.0, 122.4], [0, 0, 1]])
VIEW = numpy.array([[217.6, 0, 153.6, 0], [0, 217.6, 124.8, 0], [0, 0, 1, 0]])
TURN = cv2.Rodrigues(numpy.array([0.02, -0.05, 0.03]))[0]
NONE, BROWN, FISHEYE = 0, 1, 2
LENSES = {
    "none": (NONE, []),
    "plumb bob of 4": (BROWN, [-0.28, 0.09, 0.001, -0.0008]),
    "plumb bob of 5": (BROWN, [-0.28, 0.09, 0.001, -0.0008, -0.01]),
    "rational": (BROWN, [0.3, 0.05, 0.001, -0.0008, 0.01, 0.6, 0.1, 0.02]),
    "thin prism": (BROWN, [-0.28, 0.09, 0.001, -0.0008, -0.01, 0.01, 0.002, 0.001, 0.003, -0.001, 0.002, -0.002]),
    "fisheye": (FISHEYE, [-0.02, 0.004, -0.001, 0.0003]),
}


class Lens(ctypes.Structure):
    _fields_ = [(name, ctypes.c_uint32) for name in ("size", "width", "height", "model")] + \
        [(name, ctypes.c_double) for name in ("focal_x", "focal_y", "principal_x", "principal_y")] + \
        [("coefficients", ctypes.c_double * 12)]


class View(ctypes.Structure):
    _fields_ = [(name, ctypes.c_uint32) for name in ("size", "width", "height", "reserved")] + \
        [("rotation", ctypes.c_double * 9)] + \
        [(name, ctypes.c_double) for name in ("focal", "principal_x", "principal_y")]


def demand(status):
    if status != 0:
        sys.exit(f"the library answers {status}")


class Rectifier:
    def __init__(self, library, model, coefficients):
        lens = Lens(ctypes.sizeof(Lens), WIDTH, HEIGHT, model, CAMERA[0, 0], CAMERA[1, 1], CAMERA[0, 2], CAMERA[1, 2],
                    (ctypes.c_double * 12)(*coefficients))
        view = View(ctypes.sizeof(View), WIDTH, HEIGHT, 0, (ctypes.c_double * 9)(*TURN.ravel()), VIEW[0, 0],
                    VIEW[0, 2], VIEW[1, 2])
        self.library, self.record = library, ctypes.c_void_p()
        demand(library.nadir_rectifier_create(ctypes.byref(lens), ctypes.byref(view), ctypes.byref(self.record), None))

    def sources(self):
        """Where each pixel comes from, not-a-number where that is nowhere."""
        x, y = ctypes.c_double(), ctypes.c_double()
        found = numpy.full((HEIGHT, WIDTH, 2), numpy.nan)
        for row in range(HEIGHT):
            for column in range(WIDTH):
                if self.library.nadir_rectifier_source(self.record, column, row, ctypes.byref(x), ctypes.byref(y)) == 0:
                    found[row, column] = x.value, y.value
        return found

    def picture(self, pixels):
        out = numpy.zeros_like(pixels)
        demand(self.library.nadir_rectifier_process(
            self.record, 8 * pixels.itemsize, ctypes.c_void_p(pixels.ctypes.data), ctypes.c_size_t(pixels.strides[0]),
            ctypes.c_void_p(out.ctypes.data), ctypes.c_size_t(out.strides[0])))
        return out


def maps_of(model, coefficients):
    arguments = (TURN, VIEW, (WIDTH, HEIGHT), cv2.CV_32FC1)
    if model == FISHEYE:
        return cv2.fisheye.initUndistortRectifyMap(CAMERA, numpy.array(coefficients), *arguments)
    return cv2.initUndistortRectifyMap(CAMERA, numpy.array(coefficients) if coefficients else None, *arguments)


def smooth(kind, largest):
    noise = numpy.random.default_rng(1).random((HEIGHT, WIDTH)).astype(numpy.float32)
    blurred = cv2.GaussianBlur(noise, (0, 0), 2)
    return (largest * (0.1 + 0.8 * (blurred - blurred.min()) / (blurred.max() - blurred.min()))).astype(kind)


def complaints(name, rectifier, x, y):
    sources = rectifier.sources()
    off = numpy.abs(sources - numpy.dstack([x, y]))
    known = numpy.isfinite(off[..., 0])
    margin = 1 / 64
    inside = (x > margin) & (y > margin) & (x < WIDTH - 1 - margin) & (y < HEIGHT - 1 - margin)
    print(f"{name}: {known.sum()} pixels, largest distance {off[known].max():.5f} pixels")
    found = []
    if known.sum() < WIDTH * HEIGHT / 2 or not (known >= inside).all():
        found.append(f"{name}: pixels lack a source")
    if not (off[known] <= 1 / 64).all():
        found.append(f"{name}: a source is more than 1/64 pixel off")
    for kind, largest in ((numpy.uint8, 255), (numpy.uint16, 65535)):
        pixels = smooth(kind, largest)
        theirs = cv2.remap(pixels.astype(numpy.float32), x, y, cv2.INTER_LINEAR)
        differences = numpy.abs(rectifier.picture(pixels) - theirs)[known & inside]
        if not (differences <= 0.01 * largest).all():
            found.append(f"{name}, {kind.__name__}: a pixel is {differences.max()} off")
    return found


def main():
    library = ctypes.CDLL(sys.argv[1])
    found = []
    for name, (model, coefficients) in LENSES.items():
        found += complaints(name, Rectifier(library, model, coefficients), *maps_of(model, coefficients))
    print("\n".join(found) if found else "all maps are within 1/64 pixel")
    return len(found)


if __name__ == "__main__":
    sys.exit(1 if main() else 0)
