// The program's way onto the road: what the user names becomes a road, and pairs become results.
#pragma once

#include <nadir/ground.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "lab/grid.hpp"
#include "tools/base/warnings.hpp"
#include "tools/camera/areas_file.hpp"
#include "tools/camera/calibration.hpp"
#include "tools/camera/camera.hpp"
#include "tools/road/halve.hpp"
#include "tools/road/match_options.hpp"
#include "tools/road/pair_input.hpp"
#include "tools/road/pair_rectifier.hpp"
#include "tools/road/timed_stages.hpp"

namespace nadir::tool {

// Throws for a status that only a lack of memory or a mistake of this program can explain.
void expect(NadirStatus status);

// A camera as the library takes it.
NadirCamera cameraRecord(const Camera& camera);

// What the user may say. A file with an empty name is not given.
struct RoadOptions {
  std::string camera, mask, disparity, areas;
  CalibrationOptions calibration;  // no files: the camera file's own, or the pictures are rectified
  double disparityScale = 0;       // of the given disparities; 0: what their file says
  uint32_t scaleDown = 1;          // of the pictures; automatic: until the range fits
  MatchOptions match = matchOptionsOfMaps();
  std::string preset;               // empty for none; what is given here stands above what it holds
  std::optional<double> tallestMm;  // above the ground: what an automatic range must measure
  std::optional<double> percentile;
  uint32_t minPoints = usualSettings().min_points;
  double fillHolesM2 = usualSettings().fill_holes_m2;
  bool noRegions = false;
  bool mountMayLack = false;                                       // some mount is then used
  std::optional<double> minHeightMm, maxStepMm, dipMm, minAreaM2;  // else the usual ones for the map's cells
};

struct Destroy {
  void operator()(NadirRoad* road) const { nadir_road_destroy(road); }
  void operator()(NadirResult* result) const { nadir_result_destroy(result); }
  void operator()(NadirTracker* tracker) const { nadir_tracker_destroy(tracker); }
};
using RoadHandle = std::unique_ptr<NadirRoad, Destroy>;
using ResultHandle = std::unique_ptr<NadirResult, Destroy>;
using TrackerHandle = std::unique_ptr<NadirTracker, Destroy>;

// An area as it lies on the map.
struct WatchedArea {
  Area area;
  std::vector<Point_s32> ground;  // its corners, world x and y in mm
  size_t cells;
  bool wholeOnMap;
};

// What is the same for every pair of a camera: read and checked once.
struct Road {
  RoadOptions options;
  PictureSize taken;  // the size that pictures have before they are scaled down
  Camera camera;      // of the pictures that are measured
  NadirSettings settings;
  RoadHandle handle;
  StereoCtx context;  // of the measured view and the map
  std::vector<WatchedArea> areas;
  std::optional<Calibration> calibration;          // complete
  std::unique_ptr<const PairRectifier> rectifier;  // of it

  bool findsRegions() const { return settings.until == NADIR_UNTIL_ALL; }
};

Road roadOf(const RoadOptions& options);

// What an automatic range has come to, and what the pictures have.
std::string rangeSentence(const Road& road);
std::string scaleDownSentence(const Road& road);

NadirFrame frameOf(const Pair& pair, const Grid<uint8_t>& mask);
ResultHandle newResult(const NadirRoad& road);

// Another road of the same kind, for another thread.
RoadHandle copyOf(const Road& road);

// The pair as the road takes it, rectified where it has a calibration, and scaled down. Throws where it is not of the
// size that the camera file says.
Pair fittingPair(const Road& road, Pair pair, StageTimes& times);

// What came of a pair.
struct PairResult {
  Grid<uint16_t> picture;  // the view's
  Grid<float> given;       // the disparities that the user gave; without pixels where the pair was matched
  ResultHandle memory;
  NadirFindings findings;          // in that memory
  std::vector<NadirPoint> points;  // these two are found on demand
  std::optional<NadirGroundPlane> plane;
};

// Works on the pair in the two files. The handle is of this road or a copy of it; the result's memory is used again.
void work(const Road& road, NadirRoad& handle, const std::string& left, const std::string& right, StageTimes& times,
          PairResult& result);

// The map of disparities that the road did not match.
Grid<uint16_t> heightsOfGiven(const Road& road, const Grid<float>& disparity);

// Finds the points, row by row, and the ground that they show.
void addPoints(const Road& road, PairResult& result, StageTimes& times);

// What the matcher alone makes of a pair, on the grid of the view.
struct Matching {
  Grid<uint16_t> disparity;  // SGM_DISP_SCALE per pixel, 0 for none
  NadirPixelCounts counts;
  Warnings warnings;
};
NadirSettings matchSettings(const MatchOptions& options);
Matching matched(const Pair& pair, const Grid<uint8_t>& mask, const MatchOptions& options, StageTimes& times);

// The frame's warnings, for people and programs.
Warnings warningsOf(const NadirFindings& findings);

// A copy of a plane of the library's.
template <class T>
Grid<T> gridOf(const NadirPlane& plane) {
  Grid<T> grid(plane.width, plane.height);
  for (uint32_t y = 0; y < plane.height; ++y) {
    const auto* row = reinterpret_cast<const T*>(static_cast<const uint8_t*>(plane.data) + y * plane.stride);
    std::copy(row, row + plane.width, grid.row(y));
  }
  return grid;
}

}  // namespace nadir::tool
