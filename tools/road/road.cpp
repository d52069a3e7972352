#include "tools/road/road.hpp"

#include <algorithm>

#include "ground/holes.hpp"
#include "ground/known_values.hpp"
#include "tools/base/error.hpp"
#include "tools/camera/areas_file.hpp"
#include "tools/camera/camera_file.hpp"
#include "tools/pictures/pictures.hpp"
#include "tools/road/pair_input.hpp"

namespace nadir::tool {

namespace {

// Regions are found on small maps only; larger cells cover the same ground.
void checkMap(const Camera& camera, const GroundOptions& options) {
  const uint32_t width = camera.mapWidthCells, height = camera.mapHeightCells, larger = std::max(width, height);
  if (options.noRegions || larger <= ground::largestRegionMap) return;
  const uint32_t cell = (larger * camera.cellMm + ground::largestRegionMap - 1) / ground::largestRegionMap;
  const auto fewer = [&](uint32_t cells) { return (cells * camera.cellMm + cell - 1) / cell; };
  throw Error(
      format("the map of %s has %s cells, and regions are found on at most %s: cell_mm = %u with %s cells covers "
             "the same ground (or leave the regions out with --no-regions)",
             options.camera.c_str(), sizeText(width, height).c_str(),
             sizeText(ground::largestRegionMap, ground::largestRegionMap).c_str(), cell,
             sizeText(fewer(width), fewer(height)).c_str()));
}

std::vector<ground::Area> readAllAreas(const GroundOptions& options) {
  const std::vector<ground::Area> ofCamera = readAreasOfCamera(options.camera);
  return options.areas.empty() ? ofCamera : readAreas(options.areas, ofCamera);
}

Grid<uint16_t> matched(const GroundOptions& options, ground::Pair pair, StageTimes& times) {
  const ground::MatchOptions settings{options.view, options.uniqueness, !options.noPostprocessing,
                                      readMaskFor(pair, options.mask)};
  return ground::match(std::move(pair), settings, times).disparity;
}

Grid<float> givenDisparities(const GroundOptions& options, const ground::Pair& pair) {
  Grid<float> disparity = readDisparity(options.disparity, options.disparityScale, SGM_DISP_SCALE);
  if (!sameSize(disparity, pair.left))
    throw Error(format("the disparity picture %s is %s pixels, the pictures are %s", options.disparity.c_str(),
                       sizeText(disparity.width, disparity.height).c_str(),
                       sizeText(pair.left.width, pair.left.height).c_str()));
  return disparity;
}

void findDisparities(GroundResult& r, const GroundOptions& options, ground::Pair pair, StageTimes& times) {
  r.picture = r.view == ground::View::left ? pair.left : pair.right;
  if (options.disparity.empty()) {
    r.matched = matched(options, std::move(pair), times);
    r.disparity = ground::unpacked(r.matched, SGM_DISP_SCALE);
  } else {
    r.disparity = givenDisparities(options, pair);
  }
}

size_t cellsIn(double squareMetres, const ElevMapParams& cells) {
  return static_cast<size_t>(squareMetres * 1e6 / cells.cellSizeX / cells.cellSizeY + 1e-9);
}

// From disparities to heights.
void measure(GroundResult& r, const GroundOptions& options, StageTimes& times) {
  const auto shift = static_cast<float>(r.camera.columnShiftPx);
  r.points =
      times.measure("world points", [&] { return ground::worldPoints(r.disparity, r.picture, r.context, shift); });
  r.map = times.measure("elevation map",
                        [&] { return ground::elevationMap(r.points, r.frame, r.context.orientation.height, r.rule); });
  if (const size_t largest = cellsIn(options.fillHolesM2, r.frame.cells))
    r.map.filled = times.measure("hole filling", [&] { return ground::fillHoles(r.map.heights, largest); });
  r.plane = times.measure("ground plane", [&] { return ground::fitGroundPlane(r.points, r.context); });
}

Findings find(const GroundResult& r, const GroundSetup& setup) {
  Findings f{regionRule(setup), {}, {}};
  f.regions = ground::findRegions(r.map.heights, r.frame, f.rule);
  for (size_t i = 0; i < setup.areas.size(); ++i)
    f.areas.push_back(ground::occupancyOf(setup.areas[i], setup.places[i], r.map.heights, f.regions));
  return f;
}

}  // namespace

// The areas too, so that a mistake in the last one does not wait for the matcher.
GroundSetup groundSetup(const GroundOptions& options) {
  GroundSetup s{options, readCamera(options.camera), {}, {}, {}, {}};
  checkMap(s.camera, options);
  s.context = ground::stereoContext(s.camera, options.view);
  s.frame = ground::mapFrame(s.context, s.camera);
  if (!options.noRegions) s.areas = readAllAreas(options);
  for (const ground::Area& area : s.areas) s.places.push_back(ground::cellsOf(area, s.frame, s.context));
  return s;
}

ground::RegionRule regionRule(const GroundSetup& setup) {
  const GroundOptions& options = setup.options;
  const ground::RegionRule usual = ground::usualRule(setup.camera.cellMm);
  return {options.minHeightMm.value_or(usual.minHeightMm), options.maxStepMm.value_or(usual.maxStepMm),
          options.minAreaM2.value_or(usual.minAreaM2)};
}

void checkSize(const ground::Pair& pair, const GroundSetup& setup) {
  const Camera& camera = setup.camera;
  if (pair.left.width == camera.widthPx && pair.left.height == camera.heightPx) return;
  throw Error(format("the pictures are %s pixels, but the camera of %s takes pictures of %s",
                     sizeText(pair.left.width, pair.left.height).c_str(), setup.options.camera.c_str(),
                     sizeText(camera.widthPx, camera.heightPx).c_str()));
}

GroundResult ground(const GroundSetup& setup, const std::string& left, const std::string& right, StageTimes& times) {
  const GroundOptions& options = setup.options;
  GroundResult r{};
  r.camera = setup.camera;
  r.view = options.view;
  r.rule = options.rule;
  r.context = setup.context;
  r.frame = setup.frame;
  ground::Pair pair = times.measure("reading", [&] { return readPair(left, right); });
  checkSize(pair, setup);
  findDisparities(r, options, std::move(pair), times);
  measure(r, options, times);
  if (!options.noRegions) r.findings = times.measure("regions", [&] { return find(r, setup); });
  return r;
}

}  // namespace nadir::tool
