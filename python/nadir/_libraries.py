"""Both shared libraries, loaded when they are first needed, and their calls with the types that the headers say."""
from __future__ import annotations

import ctypes
from ctypes import POINTER, c_char_p, c_double, c_int32, c_int64, c_size_t, c_uint32, c_void_p
from functools import lru_cache
from typing import Any, Callable, Optional

from . import _records as records
from ._errors import Error
from ._places import library_path

OK, NO_MEMORY, NOTHING_FOUND = 0, 1, 13  # NADIR_OK and so on; ctypes gives the interpreter's lock back in every call

_HANDLE, _NEW, _FAULT = c_void_p, POINTER(c_void_p), POINTER(records.Fault)

# What each function returns and takes. Status 0 is success.
CALLS = {
    "nadir_status_text": (c_char_p, c_int32),
    "nadir_settings_fill": (c_int32, POINTER(records.Settings), POINTER(records.Camera)),
    "nadir_road_create": (c_int32, POINTER(records.Camera), POINTER(records.Settings), POINTER(records.Area), c_uint32,
                          _NEW, _FAULT),
    "nadir_road_destroy": (None, _HANDLE),
    "nadir_road_context": (c_int32, _HANDLE, c_void_p),
    "nadir_road_area": (c_int32, _HANDLE, c_uint32, POINTER(records.PlacedArea)),
    "nadir_result_create": (c_int32, _HANDLE, _NEW),
    "nadir_result_destroy": (None, _HANDLE),
    "nadir_road_process": (c_int32, _HANDLE, POINTER(records.Frame), _HANDLE),
    "nadir_result_read": (c_int32, _HANDLE, POINTER(records.Findings)),
    "nadir_road_points": (c_int32, _HANDLE, POINTER(records.Frame), _HANDLE, c_void_p, c_size_t, POINTER(c_size_t)),
    "nadir_road_ground_plane": (c_int32, _HANDLE, POINTER(records.Frame), _HANDLE, POINTER(records.GroundPlane)),
    "nadir_warning_name": (c_char_p, c_uint32),
    "nadir_warning_number_name": (c_char_p, c_uint32, c_uint32),
    "nadir_warning_sentence": (c_char_p, c_uint32),
    "nadir_warning_scale": (c_double, c_uint32, c_uint32),
    "nadir_track_settings_fill": (c_int32, POINTER(records.TrackSettings)),
    "nadir_tracker_create": (c_int32, _HANDLE, POINTER(records.TrackSettings), _NEW, _FAULT),
    "nadir_tracker_destroy": (None, _HANDLE),
    "nadir_tracker_step": (c_int32, _HANDLE, _HANDLE, c_int64),
    "nadir_tracker_read": (c_int32, _HANDLE, c_uint32, POINTER(records.Track)),
    "nadir_tracker_average": (c_int32, _HANDLE, POINTER(records.Plane)),
    "nadir_tracker_save": (c_size_t, _HANDLE, c_void_p, c_size_t),
    "nadir_tracker_load": (c_int32, _HANDLE, c_void_p, c_size_t),
    "nadir_rectifier_create": (c_int32, POINTER(records.Lens), POINTER(records.RectifiedView), _NEW, _FAULT),
    "nadir_rectifier_destroy": (None, _HANDLE),
    "nadir_rectifier_process": (c_int32, _HANDLE, c_uint32, c_void_p, c_size_t, c_void_p, c_size_t),
    "nadir_checker_create": (c_int32, c_uint32, c_uint32, _NEW, _FAULT),
    "nadir_checker_destroy": (None, _HANDLE),
    "nadir_checker_process": (c_int32, _HANDLE, POINTER(records.Pair), POINTER(records.Checkup)),
    "nadir_verdict_name": (c_char_p, c_uint32),
    "nadir_verdict_advice": (c_char_p, c_uint32),
    "nadir_level_create": (c_int32, _HANDLE, _NEW),
    "nadir_level_destroy": (None, _HANDLE),
    "nadir_level_add": (c_int32, _HANDLE, POINTER(records.Frame), _HANDLE),
    "nadir_level_read": (c_int32, _HANDLE, POINTER(records.Levelled)),
    "nadir_level_taken": (c_int32, _HANDLE, POINTER(records.Plane)),
}


def loaded(library: str) -> ctypes.CDLL:
    try:
        return ctypes.CDLL(library_path(library))
    except OSError as fault:
        raise Error(f"lib{library} cannot be loaded: {fault}") from fault


@lru_cache(maxsize=None)
def ground() -> Any:
    """libnadirground; libnadir, which it stands on, is loaded first, so that it is the one that belongs to it."""
    loaded("nadir")
    library = loaded("nadirground")
    for name, (returns, *takes) in CALLS.items():
        function = getattr(library, name)
        function.restype, function.argtypes = returns, takes
    return library


@lru_cache(maxsize=None)
def version() -> str:
    """The version of libnadir that is loaded: "0.2.0"."""
    function = loaded("nadir").nadir_version
    function.restype = c_char_p
    text: bytes = function()
    return text.decode()


def words(text: Optional[bytes]) -> str:
    return (text or b"").decode()


def expect(status: int, fault: Optional[records.Fault] = None) -> None:
    """Raises what a status says unless it says success."""
    if status == OK:
        return
    if status == NO_MEMORY:
        raise MemoryError("the library found no memory")
    field = words(fault.field) if fault is not None else ""
    text = words(ground().nadir_status_text(status))
    raise Error(f"{field}: {text}" if field else text, status, field)


class Handle:
    """An object of the library, which is given back with the last reference to this.

    Arrays that lie in it refer to it, so it outlives them. It cannot be copied: two would give the same back.
    """

    __slots__ = ("pointer", "_destroy", "__weakref__")

    def __init__(self, pointer: c_void_p, destroy: Callable[[c_void_p], None]) -> None:
        self.pointer = pointer
        self._destroy = destroy

    def __del__(self) -> None:
        self._destroy(self.pointer)

    def __reduce__(self) -> Any:
        raise TypeError("what belongs to the library can be neither copied nor pickled; its arrays can")


def made(kind: str, *arguments: Any, fault: Optional[records.Fault] = None) -> Handle:
    """What nadir_KIND_create makes; the last argument of those that have one is the fault."""
    library, pointer = ground(), c_void_p()
    named = () if fault is None else (ctypes.byref(fault),)
    expect(getattr(library, f"nadir_{kind}_create")(*arguments, ctypes.byref(pointer), *named), fault)
    return Handle(pointer, getattr(library, f"nadir_{kind}_destroy"))
