"""A rendered pair, made once for a file of tests, and the program's files as arrays."""
import os
import struct
import tempfile
import zlib
from functools import lru_cache

import numpy as np

import nadir
from nadir import _program

FOLDER = tempfile.TemporaryDirectory(prefix="nadir-python-")


def path(name):
    return os.path.join(FOLDER.name, name)


def defiltered(kind, row, above, step):
    """A row of a PNG as it was before it was made small."""
    row = bytearray(row)
    for i, byte in enumerate(row):
        left, up, corner = (row[i - step] if i >= step else 0), above[i], (above[i - step] if i >= step else 0)
        nearest = min((abs(up - corner), 0, left), (abs(left - corner), 1, up), (abs(left + up - 2 * corner), 2, corner))[2]
        row[i] = (byte + (0, left, up, (left + up) // 2, nearest)[kind]) % 256
    return row


def read_png(name):
    """A grey picture of 8 or 16 bits."""
    with open(name, "rb") as file:
        data, place, packed = file.read(), 8, b""
    while place < len(data):
        length, kind = struct.unpack(">I4s", data[place:place + 8])
        body = data[place + 8:place + 8 + length]
        if kind == b"IHDR":
            width, height, bits = struct.unpack(">IIB", body[:9])
        packed += body if kind == b"IDAT" else b""
        place += length + 12
    rows, size, above, plain = zlib.decompress(packed), width * bits // 8, None, b""
    for y in range(height):
        start = y * (size + 1)
        above = defiltered(rows[start], rows[start + 1:start + 1 + size], above or bytes(size), bits // 8)
        plain += above
    return np.frombuffer(plain, f">u{bits // 8}").reshape(height, width).astype(f"u{bits // 8}")


def write_pgm(name, picture):
    with open(name, "wb") as file:
        file.write(b"P5 %d %d %d\n" % (picture.shape[1], picture.shape[0], 65535 if picture.itemsize == 2 else 255))
        file.write(picture.astype(f">u{picture.itemsize}").tobytes())
    return name


@lru_cache(maxsize=None)
def pair():
    """Left and right of 160 x 120 pixels, 12 bits; scene/camera.toml is beside them."""
    _program.run("synth", path("scene"), "--size", "160x120")
    return read_png(path("scene/left.png")), read_png(path("scene/right.png"))


def files(left, right, name):
    """The pair as two files."""
    return write_pgm(path(f"{name}_left.pgm"), left), write_pgm(path(f"{name}_right.pgm"), right)


def camera():
    pair()
    return nadir.Camera.read(path("scene/camera.toml"))


def camera_file():
    pair()
    return path("scene/camera.toml")
