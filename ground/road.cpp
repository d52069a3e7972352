// The stations in their order.
#include "ground/road.hpp"

#include "ground/holes.hpp"
#include "ground/records/known_values.hpp"

namespace nadir::ground {

namespace {

void findDisparities(Result& r, const Settings& settings, Input input, const StageRunner& run) {
  r.picture = settings.view == View::left ? input.pair.left : input.pair.right;
  r.disparity = std::move(input.disparity);
  if (!r.disparity.pixels.empty()) return;
  const MatchOptions options{settings.view, settings.uniqueness, settings.postprocess, std::move(input.mask)};
  r.matched = match(std::move(input.pair), options, run).disparity;
  r.disparity = unpacked(r.matched, SGM_DISP_SCALE);
}

// A patch of exactly that area counts as no larger, although the quotient may come out a little below a whole number.
size_t cellsIn(double squareMetres, const ElevMapParams& cells) {
  return static_cast<size_t>(squareMetres * 1e6 / cells.cellSizeX / cells.cellSizeY + 1e-9);
}

void findHeights(Result& r, const Setup& setup, const StageRunner& run) {
  const Settings& settings = setup.settings;
  const auto shift = static_cast<float>(setup.camera.columnShiftPx);
  const float groundZ = setup.context.orientation.height;
  r.points =
      stageResult(run, "world points", [&] { return worldPoints(r.disparity, r.picture, setup.context, shift); });
  r.map =
      stageResult(run, "elevation map", [&] { return elevationMap(r.points, setup.frame, groundZ, settings.cells); });
  if (const size_t largest = cellsIn(settings.fillHolesM2, setup.frame.cells))
    r.map.filled = stageResult(run, "hole filling", [&] { return fillHoles(r.map.heights, largest); });
  r.plane = stageResult(run, "ground plane", [&] { return fitGroundPlane(r.points, setup.context); });
}

Findings findingsOn(const Grid<uint16_t>& heights, const RegionRule& rule, const Setup& setup) {
  Findings f{findRegions(heights, setup.frame, rule), {}};
  for (const PlacedArea& area : setup.areas) f.areas.push_back(occupancyOf(area, heights, f.regions));
  return f;
}

}  // namespace

Setup setupOf(const Camera& camera, const Settings& settings, const std::vector<Area>& areas) {
  Setup s{camera, settings, stereoContext(camera, settings.view), {}, {}};
  s.frame = mapFrame(s.context, camera);
  for (const Area& area : areas) s.areas.push_back(placedArea(area, s.frame, s.context));
  return s;
}

Result resultOf(const Setup& setup, Input input, const StageRunner& run) {
  Result r{};
  findDisparities(r, setup.settings, std::move(input), run);
  findHeights(r, setup, run);
  if (const auto& rule = setup.settings.regions)
    r.findings = stageResult(run, "regions", [&] { return findingsOn(r.map.heights, *rule, setup); });
  return r;
}

}  // namespace nadir::ground
