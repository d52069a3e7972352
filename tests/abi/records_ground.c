/* The memory layout of libnadirground's records, on 32-bit and on 64-bit processors. Each member begins where the one
 * before ends, at a multiple of its own size, and the last one ends the record: without hidden holes every byte means
 * something, and processors that align 64-bit members differently agree. Compiling this file is the test; it is
 * compiled as C and, through records_ground.cpp, as C++. */
#include <nadir/check.h>
#include <nadir/ground.h>
#include <nadir/level.h>
#include <nadir/rectify.h>

#include "tests/abi/holds.h"

/* A plane within a record is aligned like its pointer. */
#define ALIGNED(record, type, field) \
  HOLDS(offsetof(record, field) % (sizeof(type) > 8 ? sizeof(void*) : sizeof(type)) == 0)
#define END(record, field) (offsetof(record, field) + sizeof(((record*)0)->field))

#define FIRST(record, type, field) FIELD(record, type, field, 0, 0)
#define NEXT(record, before, type, field) \
  ALIGNED(record, type, field);           \
  FIELD(record, type, field, END(record, before), END(record, before))
#define LAST(record, field, on32, on64)        \
  HOLDS(END(record, field) == sizeof(record)); \
  SIZE(record, on32, on64)

FIRST(NadirFault, uint32_t, size);
NEXT(NadirFault, size, uint32_t, area);
NEXT(NadirFault, area, uint32_t, corner);
NEXT(NadirFault, corner, uint32_t, reserved);
NEXT(NadirFault, reserved, const char*, field);
LAST(NadirFault, field, 20, 24);

FIRST(NadirCamera, uint32_t, size);
NEXT(NadirCamera, size, uint32_t, width_px);
NEXT(NadirCamera, width_px, uint32_t, height_px);
NEXT(NadirCamera, height_px, uint32_t, cell_mm);
NEXT(NadirCamera, cell_mm, uint32_t, map_width_cells);
NEXT(NadirCamera, map_width_cells, uint32_t, map_height_cells);
NEXT(NadirCamera, map_height_cells, double, baseline_mm);
NEXT(NadirCamera, baseline_mm, double, focal_px);
NEXT(NadirCamera, focal_px, double, principal_x_px);
NEXT(NadirCamera, principal_x_px, double, principal_y_px);
NEXT(NadirCamera, principal_y_px, double, column_shift_px);
NEXT(NadirCamera, column_shift_px, double, height_mm);
NEXT(NadirCamera, height_mm, double, tilt_deg);
NEXT(NadirCamera, tilt_deg, double, pan_deg);
NEXT(NadirCamera, pan_deg, double, map_offset_x_mm);
NEXT(NadirCamera, map_offset_x_mm, double, map_offset_y_mm);
LAST(NadirCamera, map_offset_y_mm, 104, 104);

FIRST(NadirArea, uint32_t, size);
NEXT(NadirArea, size, uint32_t, unit);
NEXT(NadirArea, unit, uint32_t, corner_count);
NEXT(NadirArea, corner_count, uint32_t, reserved);
NEXT(NadirArea, reserved, const int32_t*, corners);
NEXT(NadirArea, corners, uint32_t, min_height_mm);
NEXT(NadirArea, min_height_mm, uint32_t, max_height_mm);
LAST(NadirArea, max_height_mm, 28, 32);

FIRST(NadirSettings, uint32_t, size);
NEXT(NadirSettings, size, uint32_t, until);
NEXT(NadirSettings, until, uint32_t, grid);
NEXT(NadirSettings, grid, uint32_t, uniqueness);
NEXT(NadirSettings, uniqueness, uint32_t, postprocess);
NEXT(NadirSettings, postprocess, uint32_t, min_points);
NEXT(NadirSettings, min_points, double, percentile);
NEXT(NadirSettings, percentile, double, fill_holes_m2);
NEXT(NadirSettings, fill_holes_m2, double, min_height_mm);
NEXT(NadirSettings, min_height_mm, double, max_step_mm);
NEXT(NadirSettings, max_step_mm, double, min_area_m2);
NEXT(NadirSettings, min_area_m2, uint32_t, check);
NEXT(NadirSettings, check, uint32_t, refine);
NEXT(NadirSettings, refine, uint32_t, range);
NEXT(NadirSettings, range, uint32_t, support);
NEXT(NadirSettings, support, double, dip_mm);
LAST(NadirSettings, dip_mm, 88, 88);

FIRST(NadirPlane, const void*, data);
NEXT(NadirPlane, data, size_t, stride);
NEXT(NadirPlane, stride, uint32_t, width);
NEXT(NadirPlane, width, uint32_t, height);
LAST(NadirPlane, height, 16, 24);

FIRST(NadirPlacedArea, uint32_t, size);
NEXT(NadirPlacedArea, size, uint32_t, cells);
NEXT(NadirPlacedArea, cells, uint32_t, whole_on_map);
NEXT(NadirPlacedArea, whole_on_map, uint32_t, corner_count);
NEXT(NadirPlacedArea, corner_count, const int32_t*, ground_mm);
NEXT(NadirPlacedArea, ground_mm, NadirPlane, mask);
LAST(NadirPlacedArea, mask, 36, 48);

typedef void (*StageBegun)(void*, const char*);
FIRST(NadirFrame, uint32_t, size);
NEXT(NadirFrame, size, uint32_t, bits);
NEXT(NadirFrame, bits, const void*, left);
NEXT(NadirFrame, left, const void*, right);
NEXT(NadirFrame, right, size_t, left_stride);
NEXT(NadirFrame, left_stride, size_t, right_stride);
NEXT(NadirFrame, right_stride, const uint8_t*, mask);
NEXT(NadirFrame, mask, size_t, mask_stride);
NEXT(NadirFrame, mask_stride, const float*, disparity);
NEXT(NadirFrame, disparity, size_t, disparity_stride);
NEXT(NadirFrame, disparity_stride, StageBegun, on_stage);
NEXT(NadirFrame, on_stage, void*, user);
LAST(NadirFrame, user, 48, 88);

FIRST(NadirPixelCounts, uint32_t, size);
NEXT(NadirPixelCounts, size, uint32_t, value);
NEXT(NadirPixelCounts, value, uint32_t, ambiguous);
NEXT(NadirPixelCounts, ambiguous, uint32_t, removed);
NEXT(NadirPixelCounts, removed, uint32_t, masked);
NEXT(NadirPixelCounts, masked, uint32_t, border);
NEXT(NadirPixelCounts, border, uint32_t, filled);
NEXT(NadirPixelCounts, filled, uint32_t, reserved);
LAST(NadirPixelCounts, reserved, 32, 32);

FIRST(NadirRegion, uint32_t, size);
NEXT(NadirRegion, size, uint32_t, label);
NEXT(NadirRegion, label, uint32_t, cells);
NEXT(NadirRegion, cells, uint32_t, highest_mm);
NEXT(NadirRegion, highest_mm, uint32_t, median_mm);
NEXT(NadirRegion, median_mm, uint32_t, left);
NEXT(NadirRegion, left, uint32_t, top);
NEXT(NadirRegion, top, uint32_t, right);
NEXT(NadirRegion, right, uint32_t, bottom);
NEXT(NadirRegion, bottom, uint32_t, at_map_edge);
NEXT(NadirRegion, at_map_edge, double, centre_x_mm);
NEXT(NadirRegion, centre_x_mm, double, centre_y_mm);
NEXT(NadirRegion, centre_y_mm, double, area_m2);
NEXT(NadirRegion, area_m2, uint32_t, at_picture_edge);
NEXT(NadirRegion, at_picture_edge, uint32_t, reserved);
LAST(NadirRegion, reserved, 72, 72);

FIRST(NadirOccupancy, uint32_t, size);
NEXT(NadirOccupancy, size, uint32_t, cells);
NEXT(NadirOccupancy, cells, uint32_t, seen_cells);
NEXT(NadirOccupancy, seen_cells, uint32_t, covered_cells);
NEXT(NadirOccupancy, covered_cells, uint32_t, highest_mm);
NEXT(NadirOccupancy, highest_mm, uint32_t, median_mm);
NEXT(NadirOccupancy, median_mm, uint32_t, first_share);
NEXT(NadirOccupancy, first_share, uint32_t, share_count);
NEXT(NadirOccupancy, share_count, uint32_t, piece_mm);
LAST(NadirOccupancy, piece_mm, 36, 36);

FIRST(NadirShare, uint32_t, size);
NEXT(NadirShare, size, uint32_t, label);
NEXT(NadirShare, label, uint32_t, cells);
NEXT(NadirShare, cells, uint32_t, highest_mm);
NEXT(NadirShare, highest_mm, uint32_t, median_mm);
NEXT(NadirShare, median_mm, uint32_t, reserved);
LAST(NadirShare, reserved, 24, 24);

FIRST(NadirFindings, uint32_t, size);
NEXT(NadirFindings, size, uint32_t, region_count);
NEXT(NadirFindings, region_count, uint32_t, area_count);
NEXT(NadirFindings, area_count, uint32_t, share_count);
NEXT(NadirFindings, share_count, uint32_t, warning_count);
NEXT(NadirFindings, warning_count, uint32_t, points);
NEXT(NadirFindings, points, uint32_t, points_inside);
NEXT(NadirFindings, points_inside, uint32_t, seen_cells);
NEXT(NadirFindings, seen_cells, uint32_t, filled_cells);
NEXT(NadirFindings, filled_cells, uint32_t, reserved);
NEXT(NadirFindings, reserved, NadirPlane, disparity);
NEXT(NadirFindings, disparity, NadirPlane, heights);
NEXT(NadirFindings, heights, NadirPlane, point_counts);
NEXT(NadirFindings, point_counts, NadirPlane, labels);
NEXT(NadirFindings, labels, const NadirPixelCounts*, pixels);
NEXT(NadirFindings, pixels, const NadirRegion*, regions);
NEXT(NadirFindings, regions, const NadirOccupancy*, areas);
NEXT(NadirFindings, areas, const NadirShare*, shares);
NEXT(NadirFindings, shares, const NadirWarning*, warnings);
NEXT(NadirFindings, warnings, const NadirTrust*, trust);
LAST(NadirFindings, trust, 128, 184);

FIRST(NadirTrust, uint32_t, size);
NEXT(NadirTrust, size, uint32_t, searched);
NEXT(NadirTrust, searched, double, dark_left);
NEXT(NadirTrust, dark_left, double, dark_right);
NEXT(NadirTrust, dark_right, double, clipped_left);
NEXT(NadirTrust, clipped_left, double, clipped_right);
NEXT(NadirTrust, clipped_right, double, matched);
NEXT(NadirTrust, matched, double, value);
NEXT(NadirTrust, value, double, range_end);
NEXT(NadirTrust, range_end, double, cut_off);
NEXT(NadirTrust, cut_off, double, on_ground);
NEXT(NadirTrust, on_ground, double, below_ground);
NEXT(NadirTrust, below_ground, double, height_off_mm);
NEXT(NadirTrust, height_off_mm, double, tilt_off_deg);
NEXT(NadirTrust, tilt_off_deg, double, pan_off_deg);
NEXT(NadirTrust, pan_off_deg, double, height_deviation_mm);
NEXT(NadirTrust, height_deviation_mm, double, tilt_deviation_deg);
NEXT(NadirTrust, tilt_deviation_deg, double, pan_deviation_deg);
NEXT(NadirTrust, pan_deviation_deg, double, found_height_mm);
NEXT(NadirTrust, found_height_mm, double, found_tilt_deg);
NEXT(NadirTrust, found_tilt_deg, double, found_pan_deg);
NEXT(NadirTrust, found_pan_deg, double, found_share);
NEXT(NadirTrust, found_share, double, map_seen);
NEXT(NadirTrust, map_seen, double, least_top_mm);
NEXT(NadirTrust, least_top_mm, double, greatest_top_mm);
LAST(NadirTrust, greatest_top_mm, 192, 192);

typedef double doubleFour[4];
FIRST(NadirWarning, uint32_t, size);
NEXT(NadirWarning, size, uint32_t, id);
NEXT(NadirWarning, id, uint32_t, count);
NEXT(NadirWarning, count, uint32_t, reserved);
NEXT(NadirWarning, reserved, doubleFour, numbers);
LAST(NadirWarning, numbers, 48, 48);

FIRST(NadirGroundPlane, uint32_t, size);
NEXT(NadirGroundPlane, size, uint32_t, points);
NEXT(NadirGroundPlane, points, uint32_t, inliers);
NEXT(NadirGroundPlane, inliers, uint32_t, reserved);
NEXT(NadirGroundPlane, reserved, double, height_mm);
NEXT(NadirGroundPlane, height_mm, double, tilt_deg);
NEXT(NadirGroundPlane, tilt_deg, double, pan_deg);
NEXT(NadirGroundPlane, pan_deg, double, axis_below_horizon_deg);
NEXT(NadirGroundPlane, axis_below_horizon_deg, double, roll_deg);
NEXT(NadirGroundPlane, roll_deg, double, rms_mm);
NEXT(NadirGroundPlane, rms_mm, double, rms_px);
LAST(NadirGroundPlane, rms_px, 72, 72);

FIRST(NadirPoint, float, x_mm);
NEXT(NadirPoint, x_mm, float, y_mm);
NEXT(NadirPoint, y_mm, float, z_mm);
NEXT(NadirPoint, z_mm, float, disparity_px);
NEXT(NadirPoint, disparity_px, uint32_t, column);
NEXT(NadirPoint, column, uint32_t, row);
NEXT(NadirPoint, row, uint32_t, cell);
NEXT(NadirPoint, cell, uint32_t, reserved);
LAST(NadirPoint, reserved, 32, 32);

FIRST(NadirTrackSettings, uint32_t, size);
NEXT(NadirTrackSettings, size, uint32_t, average_frames);
NEXT(NadirTrackSettings, average_frames, double, noise_mm);
NEXT(NadirTrackSettings, noise_mm, double, acceleration_mm_per_s2);
NEXT(NadirTrackSettings, acceleration_mm_per_s2, double, patience_s);
NEXT(NadirTrackSettings, patience_s, double, disparity_px);
LAST(NadirTrackSettings, disparity_px, 40, 40);

FIRST(NadirTrack, uint32_t, size);
NEXT(NadirTrack, size, uint32_t, active);
NEXT(NadirTrack, active, double, height_mm);
NEXT(NadirTrack, height_mm, double, rate_mm_per_s);
NEXT(NadirTrack, rate_mm_per_s, double, deviation_mm);
LAST(NadirTrack, deviation_mm, 32, 32);

FIRST(NadirMeasurement, uint32_t, size);
NEXT(NadirMeasurement, size, uint32_t, area_count);
NEXT(NadirMeasurement, area_count, int64_t, time_ns);
NEXT(NadirMeasurement, time_ns, const double*, highest_mm);
NEXT(NadirMeasurement, highest_mm, NadirPlane, heights);
NEXT(NadirMeasurement, heights, const double*, piece_mm);
LAST(NadirMeasurement, piece_mm, 40, 56);

typedef double doubleTwelve[12];
typedef double doubleNine[9];
FIRST(NadirLens, uint32_t, size);
NEXT(NadirLens, size, uint32_t, width_px);
NEXT(NadirLens, width_px, uint32_t, height_px);
NEXT(NadirLens, height_px, uint32_t, model);
NEXT(NadirLens, model, double, focal_x_px);
NEXT(NadirLens, focal_x_px, double, focal_y_px);
NEXT(NadirLens, focal_y_px, double, principal_x_px);
NEXT(NadirLens, principal_x_px, double, principal_y_px);
NEXT(NadirLens, principal_y_px, doubleTwelve, coefficients);
LAST(NadirLens, coefficients, 144, 144);

FIRST(NadirRectifiedView, uint32_t, size);
NEXT(NadirRectifiedView, size, uint32_t, width_px);
NEXT(NadirRectifiedView, width_px, uint32_t, height_px);
NEXT(NadirRectifiedView, height_px, uint32_t, reserved);
NEXT(NadirRectifiedView, reserved, doubleNine, rotation);
NEXT(NadirRectifiedView, rotation, double, focal_px);
NEXT(NadirRectifiedView, focal_px, double, principal_x_px);
NEXT(NadirRectifiedView, principal_x_px, double, principal_y_px);
LAST(NadirRectifiedView, principal_y_px, 112, 112);

typedef double doubleThree[3];
FIRST(NadirLevelled, uint32_t, size);
NEXT(NadirLevelled, size, uint32_t, pairs);
NEXT(NadirLevelled, pairs, double, height_mm);
NEXT(NadirLevelled, height_mm, double, tilt_deg);
NEXT(NadirLevelled, tilt_deg, double, pan_deg);
NEXT(NadirLevelled, pan_deg, double, height_deviation_mm);
NEXT(NadirLevelled, height_deviation_mm, double, tilt_deviation_deg);
NEXT(NadirLevelled, tilt_deviation_deg, double, pan_deviation_deg);
NEXT(NadirLevelled, pan_deviation_deg, double, axis_below_horizon_deg);
NEXT(NadirLevelled, axis_below_horizon_deg, double, roll_deg);
NEXT(NadirLevelled, roll_deg, double, axis_deviation_deg);
NEXT(NadirLevelled, axis_deviation_deg, double, roll_deviation_deg);
NEXT(NadirLevelled, roll_deviation_deg, double, floor_share);
NEXT(NadirLevelled, floor_share, doubleThree, plane);
LAST(NadirLevelled, plane, 120, 120);

FIRST(NadirPair, uint32_t, size);
NEXT(NadirPair, size, uint32_t, bits);
NEXT(NadirPair, bits, uint32_t, range);
NEXT(NadirPair, range, uint32_t, reserved);
NEXT(NadirPair, reserved, NadirPlane, left);
NEXT(NadirPair, left, NadirPlane, right);
LAST(NadirPair, right, 48, 64);

FIRST(NadirRowOffset, float, column);
NEXT(NadirRowOffset, column, float, row);
NEXT(NadirRowOffset, row, float, rows);
NEXT(NadirRowOffset, rows, float, disparity_px);
LAST(NadirRowOffset, disparity_px, 16, 16);

FIRST(NadirCheckup, uint32_t, size);
NEXT(NadirCheckup, size, uint32_t, verdict);
NEXT(NadirCheckup, verdict, uint32_t, halvings);
NEXT(NadirCheckup, halvings, uint32_t, range);
NEXT(NadirCheckup, range, const NadirRowOffset*, offsets);
NEXT(NadirCheckup, offsets, size_t, offset_count);
NEXT(NadirCheckup, offset_count, double, mean_left);
NEXT(NadirCheckup, mean_left, double, mean_right);
NEXT(NadirCheckup, mean_right, double, dark_left);
NEXT(NadirCheckup, dark_left, double, dark_right);
NEXT(NadirCheckup, dark_right, double, clipped_left);
NEXT(NadirCheckup, clipped_left, double, clipped_right);
NEXT(NadirCheckup, clipped_right, double, gain);
NEXT(NadirCheckup, gain, double, noise_left);
NEXT(NadirCheckup, noise_left, double, noise_right);
NEXT(NadirCheckup, noise_right, double, texture_left);
NEXT(NadirCheckup, texture_left, double, texture_right);
NEXT(NadirCheckup, texture_right, double, blur_left_px);
NEXT(NadirCheckup, blur_left_px, double, blur_right_px);
NEXT(NadirCheckup, blur_right_px, double, matched);
NEXT(NadirCheckup, matched, double, matched_aligned);
NEXT(NadirCheckup, matched_aligned, double, unmoved);
NEXT(NadirCheckup, unmoved, double, row_offset_px);
NEXT(NadirCheckup, row_offset_px, double, row_offset_left_px);
NEXT(NadirCheckup, row_offset_left_px, double, row_offset_middle_px);
NEXT(NadirCheckup, row_offset_middle_px, double, row_offset_right_px);
NEXT(NadirCheckup, row_offset_right_px, double, row_offset_top_px);
NEXT(NadirCheckup, row_offset_top_px, double, row_offset_centre_px);
NEXT(NadirCheckup, row_offset_centre_px, double, row_offset_bottom_px);
NEXT(NadirCheckup, row_offset_bottom_px, double, turn_deg);
NEXT(NadirCheckup, turn_deg, double, scale_percent);
NEXT(NadirCheckup, scale_percent, double, bend_px);
NEXT(NadirCheckup, bend_px, double, least_disparity_px);
NEXT(NadirCheckup, least_disparity_px, double, largest_disparity_px);
NEXT(NadirCheckup, largest_disparity_px, double, nearer);
NEXT(NadirCheckup, nearer, double, behind);
LAST(NadirCheckup, behind, 264, 272);
