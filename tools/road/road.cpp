// Options and files become a setup, and the files of a pair the road's input.
#include "tools/road/road.hpp"

#include <algorithm>

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"
#include "tools/camera/areas_file.hpp"
#include "tools/camera/camera_file.hpp"
#include "tools/pictures/pictures.hpp"
#include "tools/road/pair_input.hpp"

namespace nadir::tool {

namespace {

// Regions are found on small maps only; larger cells cover the same ground.
void checkMap(const Camera& camera, const RoadOptions& options) {
  const uint32_t most = ground::largestRegionMap;
  const uint32_t width = camera.mapWidthCells, height = camera.mapHeightCells, larger = std::max(width, height);
  if (options.noRegions || larger <= most) return;
  const uint32_t cell = (larger * camera.cellMm + most - 1) / most;
  const auto fewer = [&](uint32_t cells) { return (cells * camera.cellMm + cell - 1) / cell; };
  throw Error(
      format("the map of %s has %s cells, and regions are found on at most %s: cell_mm = %u with %s cells covers "
             "the same ground (or leave the regions out with --no-regions)",
             options.camera.c_str(), sizeText(width, height).c_str(), sizeText(most, most).c_str(), cell,
             sizeText(fewer(width), fewer(height)).c_str()));
}

std::vector<ground::Area> readAllAreas(const RoadOptions& options) {
  if (options.noRegions) return {};
  const std::vector<ground::Area> ofCamera = readAreasOfCamera(options.camera);
  return options.areas.empty() ? ofCamera : readAreas(options.areas, ofCamera);
}

ground::Settings settingsOf(const RoadOptions& options, const Camera& camera) {
  ground::Settings settings;
  settings.view = options.view;
  settings.uniqueness = options.uniqueness;
  settings.postprocess = !options.noPostprocessing;
  settings.cells = options.cells;
  settings.fillHolesM2 = options.fillHolesM2;
  const ground::RegionRule usual = ground::usualRule(camera.cellMm);
  if (!options.noRegions)
    settings.regions = {options.minHeightMm.value_or(usual.minHeightMm), options.maxStepMm.value_or(usual.maxStepMm),
                        options.minAreaM2.value_or(usual.minAreaM2)};
  return settings;
}

Grid<float> givenDisparities(const RoadOptions& options, const ground::Pair& pair) {
  Grid<float> disparity = readDisparity(options.disparity, options.disparityScale, SGM_DISP_SCALE);
  if (!sameSize(disparity, pair.left))
    throw Error(format("the disparity picture %s is %s pixels, the pictures are %s", options.disparity.c_str(),
                       sizeText(disparity.width, disparity.height).c_str(),
                       sizeText(pair.left.width, pair.left.height).c_str()));
  return disparity;
}

ground::Input inputOf(ground::Pair pair, const RoadOptions& options) {
  if (!options.disparity.empty()) {
    Grid<float> disparity = givenDisparities(options, pair);
    return {std::move(pair), {}, std::move(disparity)};
  }
  Grid<uint8_t> mask = readMaskFor(pair, options.mask);
  return {std::move(pair), std::move(mask), {}};
}

}  // namespace

// The areas are read too, so that a mistake in the last one does not wait for the matcher.
Road roadOf(const RoadOptions& options) {
  const Camera camera = readCamera(options.camera);
  checkMap(camera, options);
  return {options, ground::setupOf(camera, settingsOf(options, camera), readAllAreas(options))};
}

void checkSize(const ground::Pair& pair, const Road& road) {
  const Camera& camera = road.setup.camera;
  if (pair.left.width == camera.widthPx && pair.left.height == camera.heightPx) return;
  throw Error(format("the pictures are %s pixels, but the camera of %s takes pictures of %s",
                     sizeText(pair.left.width, pair.left.height).c_str(), road.options.camera.c_str(),
                     sizeText(camera.widthPx, camera.heightPx).c_str()));
}

ground::Result resultOf(const Road& road, const std::string& left, const std::string& right,
                        const ground::StageRunner& run) {
  ground::Pair pair = ground::stageResult(run, "reading", [&] { return readPair(left, right); });
  checkSize(pair, road);
  return ground::resultOf(road.setup, inputOf(std::move(pair), road.options), run);
}

}  // namespace nadir::tool
