"""The records of ctypes are those of the headers, as tests/abi/records_ground.c states them, which C compilers hold to."""
import ctypes
import os
import re
import unittest

from nadir import _libraries, _records

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")
KINDS = {"uint32_t": ctypes.c_uint32, "int64_t": ctypes.c_int64, "size_t": ctypes.c_size_t, "float": ctypes.c_float,
         "double": ctypes.c_double, "NadirPlane": _records.Plane, "doubleThree": ctypes.c_double * 3,
         "doubleFour": ctypes.c_double * 4, "doubleNine": ctypes.c_double * 9, "doubleTwelve": ctypes.c_double * 12}
UNUSED = {"Measurement"}  # a log is replayed in C alone


def read(path):
    with open(os.path.join(ROOT, path), encoding="utf-8") as file:
        return file.read()


def stated():
    """By record: its members with their types, in order, and its size."""
    records = {}
    for kind, arguments in re.findall(r"^(FIRST|NEXT|LAST)\((.*)\);", read("tests/abi/records_ground.c"), re.M):
        record, *others = [one.strip() for one in arguments.split(",")]
        members, _ = records.setdefault(record[len("Nadir"):], ([], []))
        if kind == "LAST":
            records[record[len("Nadir"):]][1].append(int(others[2]))
        else:
            members.append((others[-1], others[-2]))
    return {name: (members, size[0]) for name, (members, size) in records.items()}


def ours():
    return {name: kind for name, kind in vars(_records).items()
            if isinstance(kind, type) and issubclass(kind, ctypes.Structure) and kind is not ctypes.Structure}


@unittest.skipUnless(ctypes.sizeof(ctypes.c_void_p) == 8, "records_ground.c is compared on 64 bits")
class Records(unittest.TestCase):
    def test_none_is_missing(self):
        self.assertEqual(set(stated()) - UNUSED, set(ours()))

    def test_members_lie_where_the_compiler_has_them(self):
        for name, (members, size) in stated().items():
            if name in UNUSED:
                continue
            with self.subTest(name):
                self.assertEqual([member for member, _ in ours()[name]._fields_], [member for member, _ in members])
                self.assertEqual(ctypes.sizeof(ours()[name]), size)
                end = 0
                for member, kind in members:
                    place = getattr(ours()[name], member)
                    self.assertEqual(place.offset, end, member)
                    end += place.size
                    if kind in KINDS:
                        self.assertIs(dict(ours()[name]._fields_)[member], KINDS[kind], member)
                    else:
                        self.assertIn("*" if "*" in kind else "StageBegun", kind)
                        self.assertIn(dict(ours()[name]._fields_)[member], (ctypes.c_void_p, ctypes.c_char_p))


class Calls(unittest.TestCase):
    def test_declarations_have_as_many_arguments_as_the_headers(self):
        text = "".join(read(f"include/nadir/{name}.h") for name in ("ground", "rectify", "check", "level"))
        for name, (_, *takes) in _libraries.CALLS.items():
            with self.subTest(name):
                declared = re.search(rf"NADIR_API [^;]*?\b{name}\(([^;]*)\);", text)
                self.assertIsNotNone(declared)
                self.assertEqual(len(takes), len(declared.group(1).split(",")))


if __name__ == "__main__":
    unittest.main()
