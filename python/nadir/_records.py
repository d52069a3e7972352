"""The records of include/nadir/{ground,rectify,check,level}.h as ctypes has them; tests/test_records.py holds them to those."""
from __future__ import annotations

import ctypes
from typing import Any, List, Tuple, Type, TypeVar

KINDS = {"u32": ctypes.c_uint32, "i64": ctypes.c_int64, "size": ctypes.c_size_t, "f32": ctypes.c_float,
         "f64": ctypes.c_double, "pointer": ctypes.c_void_p, "text": ctypes.c_char_p, "f64x3": ctypes.c_double * 3,
         "f64x4": ctypes.c_double * 4, "f64x9": ctypes.c_double * 9, "f64x12": ctypes.c_double * 12}


def members(*lines: str, **records: Any) -> List[Tuple[str, Any]]:
    """Fields from lines of a kind and its members' names: "u32 size area"; kinds of other records by keyword."""
    kinds = {**KINDS, **records}
    return [(name, kinds[line.split()[0]]) for line in lines for name in line.split()[1:]]


class Fault(ctypes.Structure):
    _fields_ = members("u32 size area corner reserved", "text field")


class Camera(ctypes.Structure):
    _fields_ = members(
        "u32 size width_px height_px cell_mm map_width_cells map_height_cells",
        "f64 baseline_mm focal_px principal_x_px principal_y_px column_shift_px height_mm tilt_deg pan_deg",
        "f64 map_offset_x_mm map_offset_y_mm")


class Area(ctypes.Structure):
    _fields_ = members("u32 size unit corner_count reserved", "pointer corners", "u32 min_height_mm max_height_mm")


class Settings(ctypes.Structure):
    _fields_ = members("u32 size until grid uniqueness postprocess min_points",
                       "f64 percentile fill_holes_m2 min_height_mm max_step_mm min_area_m2",
                       "u32 check refine range support", "f64 dip_mm")


class Plane(ctypes.Structure):
    _fields_ = members("pointer data", "size stride", "u32 width height")


class PlacedArea(ctypes.Structure):
    _fields_ = members("u32 size cells whole_on_map corner_count", "pointer ground_mm", "plane mask", plane=Plane)


class Frame(ctypes.Structure):
    _fields_ = members("u32 size bits", "pointer left right", "size left_stride right_stride", "pointer mask",
                       "size mask_stride", "pointer disparity", "size disparity_stride", "pointer on_stage user")


class PixelCounts(ctypes.Structure):
    _fields_ = members("u32 size value ambiguous removed masked border filled reserved")


class Region(ctypes.Structure):
    _fields_ = members("u32 size label cells highest_mm median_mm left top right bottom at_map_edge",
                       "f64 centre_x_mm centre_y_mm area_m2", "u32 at_picture_edge reserved")


class Occupancy(ctypes.Structure):
    _fields_ = members("u32 size cells seen_cells covered_cells highest_mm median_mm first_share share_count piece_mm")


class Share(ctypes.Structure):
    _fields_ = members("u32 size label cells highest_mm median_mm reserved")


class Trust(ctypes.Structure):
    _fields_ = members(
        "u32 size searched", "f64 dark_left dark_right clipped_left clipped_right matched value range_end cut_off",
        "f64 on_ground below_ground height_off_mm tilt_off_deg pan_off_deg height_deviation_mm tilt_deviation_deg",
        "f64 pan_deviation_deg found_height_mm found_tilt_deg found_pan_deg found_share map_seen least_top_mm",
        "f64 greatest_top_mm")


class Warning(ctypes.Structure):  # pylint: disable=redefined-builtin
    _fields_ = members("u32 size id count reserved", "f64x4 numbers")


class Findings(ctypes.Structure):
    _fields_ = members(
        "u32 size region_count area_count share_count warning_count points points_inside seen_cells filled_cells",
        "u32 reserved", "plane disparity heights point_counts labels",
        "pointer pixels regions areas shares warnings trust", plane=Plane)


class Point(ctypes.Structure):
    _fields_ = members("f32 x_mm y_mm z_mm disparity_px", "u32 column row cell reserved")


class GroundPlane(ctypes.Structure):
    _fields_ = members("u32 size points inliers reserved",
                       "f64 height_mm tilt_deg pan_deg axis_below_horizon_deg roll_deg rms_mm rms_px")


class TrackSettings(ctypes.Structure):
    _fields_ = members("u32 size average_frames", "f64 noise_mm acceleration_mm_per_s2 patience_s disparity_px")


class Track(ctypes.Structure):
    _fields_ = members("u32 size active", "f64 height_mm rate_mm_per_s deviation_mm")


class Lens(ctypes.Structure):
    _fields_ = members("u32 size width_px height_px model",
                       "f64 focal_x_px focal_y_px principal_x_px principal_y_px", "f64x12 coefficients")


class RectifiedView(ctypes.Structure):
    _fields_ = members("u32 size width_px height_px reserved", "f64x9 rotation",
                       "f64 focal_px principal_x_px principal_y_px")


class Levelled(ctypes.Structure):
    _fields_ = members(
        "u32 size pairs", "f64 height_mm tilt_deg pan_deg height_deviation_mm tilt_deviation_deg pan_deviation_deg",
        "f64 axis_below_horizon_deg roll_deg axis_deviation_deg roll_deviation_deg floor_share", "f64x3 plane")


class Pair(ctypes.Structure):
    _fields_ = members("u32 size bits range reserved", "plane left right", plane=Plane)


class RowOffset(ctypes.Structure):
    _fields_ = members("f32 column row rows disparity_px")


class Checkup(ctypes.Structure):
    _fields_ = members(
        "u32 size verdict halvings range", "pointer offsets", "size offset_count",
        "f64 mean_left mean_right dark_left dark_right clipped_left clipped_right gain noise_left noise_right",
        "f64 texture_left texture_right blur_left_px blur_right_px matched matched_aligned unmoved row_offset_px",
        "f64 row_offset_left_px row_offset_middle_px row_offset_right_px row_offset_top_px row_offset_centre_px",
        "f64 row_offset_bottom_px turn_deg scale_percent bend_px least_disparity_px largest_disparity_px nearer behind")


Record = TypeVar("Record", bound=ctypes.Structure)


def sized(kind: Type[Record]) -> Record:
    """A record of zeros that says its size, as the libraries ask for it."""
    record = kind()
    record.size = ctypes.sizeof(kind)
    return record


def filled(kind: Type[Record], values: Any) -> Record:
    """The same with the values that are named, of a dictionary."""
    record = sized(kind)
    types = dict(kind._fields_)  # type: ignore[arg-type]
    for name, value in values.items():
        setattr(record, name, types[name](*value) if isinstance(value, list) else value)
    return record
