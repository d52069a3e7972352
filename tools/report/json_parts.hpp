// The parts that the JSON of a pair and the JSON of a sequence have in common.
#pragma once

#include <nadir/ground.h>

#include <vector>

#include "tools/base/json_value.hpp"
#include "tools/base/warnings.hpp"
#include "tools/camera/areas_file.hpp"
#include "tools/camera/camera.hpp"

namespace nadir::tool {

// The form of summary.json, of the lines of frames.jsonl and of run.json, as they tell it. Those of version 0.1.0 tell
// none: theirs is the first, in which a reader might refuse a member that it did not know. From the second on it must
// not, so members may be added under the same number.
constexpr int resultSchema = 2;

// A measured number in thousandths of its unit, which is far below what is measured here.
Json measuredJson(double value);

double squareMetres(size_t cells, const StereoCtx& context);

// The area of so many cells to the square millimetre, so that it tells their number.
Json squareMetresJson(size_t cells, const StereoCtx& context);

// A part of a whole as a fraction of 1, and 0 of nothing.
Json shareJson(size_t part, size_t whole);

// Every key of the camera file.
Json cameraJson(const Camera& camera);

// The settings that make cells a region.
Json ruleJson(const NadirSettings& settings);
Json cornersJson(const std::vector<Point_s32>& corners);
Json regionJson(const NadirRegion& region, const StereoCtx& context);

Json warningsJson(const Warnings& warnings);

// How far a frame's mount is from what the camera file says.
Json driftJson(const NadirTrust& trust);

// Adds the heights of an area's own rule, as far as it has one.
void addRule(Json& json, const Area& area);

// Adds the heights of some cells, null where there is no cell.
void addHeights(Json& json, uint32_t cells, uint32_t highestMm, uint32_t medianMm);

}  // namespace nadir::tool
