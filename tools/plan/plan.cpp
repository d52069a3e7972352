// Finds the ground that both pictures show, and what a disparity is worth on it.
#include "tools/plan/plan.hpp"

#include <algorithm>
#include <cmath>

#include "tools/base/error.hpp"
#include "tools/road/road.hpp"

namespace nadir::tool {

namespace {

constexpr double stepPx = 1.0 / 16;  // of the disparities that the matcher gives

// Beyond it a map tells little: errors of half a pixel are eight times as much.
constexpr double coarsestStepMm = 20;

// A cell that fewer pixels see would often be empty.
constexpr double leastPointsPerCell = 2;

constexpr uint32_t roundCellMm = 5;
constexpr uint32_t mostCells = NADIR_LARGEST_REGION_MAP;

// ---- rows ----

Pixel middleOf(const CameraView& view, double row) {
  return {(view.firstSharedColumn(row) + view.camera().widthPx - 1) / 2, row};
}

double disparityOf(const CameraView& view, double row) {
  const std::optional<SeenPoint> point = view.groundAt(middleOf(view, row));
  return point ? point->disparityPx : 0;
}

// Rows from the near end of the ground to the far one.
struct Rows {
  double near, far;
  bool toEdge;  // the far one is the picture's edge
};

// The farthest row, from `near` on, whose disparity is not below `least`; disparities fall from near to far.
Rows rowsDownTo(const CameraView& view, double least) {
  const double last = view.camera().heightPx - 1.0;
  const bool lowerIsNear = disparityOf(view, last) >= disparityOf(view, 0);
  const double near = lowerIsNear ? last : 0, edge = last - near;
  if (disparityOf(view, near) < least) return {near, near, false};
  if (disparityOf(view, edge) >= least) return {near, edge, true};
  double good = near, bad = edge;
  while (std::abs(good - bad) > 0.01) {
    const double row = (good + bad) / 2;
    (disparityOf(view, row) >= least ? good : bad) = row;
  }
  return {near, good, false};
}

std::vector<GroundPoint> outlineOf(const CameraView& view, const Rows& rows) {
  constexpr int parts = 16;
  const double last = view.camera().widthPx - 1.0;
  std::vector<GroundPoint> outline, right;
  for (int i = 0; i <= parts; ++i) {
    const double row = rows.near + (rows.far - rows.near) * i / parts;
    const auto leftEnd = view.placeAt({view.firstSharedColumn(row), row}), rightEnd = view.placeAt({last, row});
    if (!leftEnd || !rightEnd) break;
    outline.push_back(*leftEnd);
    right.push_back(*rightEnd);
  }
  outline.insert(outline.end(), right.rbegin(), right.rend());
  return outline;
}

double areaM2(const std::vector<GroundPoint>& polygon) {
  double twice = 0;
  for (size_t i = 0; i < polygon.size(); ++i) {
    const GroundPoint &a = polygon[i], &b = polygon[(i + 1) % polygon.size()];
    twice += a.xMm * b.yMm - b.xMm * a.yMm;
  }
  return std::abs(twice) / 2e6;
}

// ---- the map ----

struct Extent {
  double left, right, top, bottom;  // world x and y
};

Extent extentOf(const std::vector<GroundPoint>& polygon) {
  Extent e{polygon[0].xMm, polygon[0].xMm, polygon[0].yMm, polygon[0].yMm};
  for (const GroundPoint& p : polygon) {
    e.left = std::min(e.left, p.xMm), e.right = std::max(e.right, p.xMm);
    e.top = std::min(e.top, p.yMm), e.bottom = std::max(e.bottom, p.yMm);
  }
  return e;
}

uint32_t roundUp(double value, uint32_t unit) { return static_cast<uint32_t>(std::ceil(value / unit)) * unit; }

// A map's corner lies half of its width from where the optical axis meets the ground, on both axes.
void layMap(const CameraView& view, const Rows& rows, Camera& camera) {
  const Extent extent = extentOf(outlineOf(view, rows));
  const std::optional<GroundPoint> axis = view.placeAt({camera.principalXPx, camera.principalYPx});
  if (!axis) throw Error("the optical axis does not meet the ground: tilt_deg must lie between -89.9 and 89.9");
  camera.cellMm = usefulCellMm(view.groundOfPixel(middleOf(view, rows.far)),
                               std::max(extent.right - extent.left, extent.bottom - extent.top));
  const auto cells = [&](double mm) {
    return std::clamp<uint32_t>(roundUp(mm, camera.cellMm) / camera.cellMm, 2, mostCells);
  };
  camera.mapWidthCells = cells(extent.right - extent.left);
  camera.mapHeightCells = cells(extent.bottom - extent.top);
  const double half = std::floor(camera.mapWidthCells / 2.0) * camera.cellMm;
  camera.mapOffsetXMm = std::round(extent.left - axis->xMm + half);
  camera.mapOffsetYMm = std::round(extent.top - axis->yMm + half);
}

// The rows of a map's near and far edge, as far as they are among those.
Rows rowsOfMap(const CameraView& view, const Rows& rows, const Camera& camera) {
  const GroundPoint corner = mapCorner(camera);
  const double x = corner.xMm + camera.cellMm * (camera.mapWidthCells / 2.0);
  const auto rowAt = [&](double y, double otherwise) {
    const std::optional<SeenPoint> point = view.seen({x, y}, 0);
    const double row = point ? point->left.row : otherwise;
    return std::clamp(row, std::min(rows.near, rows.far), std::max(rows.near, rows.far));
  };
  const double top = rowAt(corner.yMm, rows.far),
               bottom = rowAt(corner.yMm + camera.cellMm * camera.mapHeightCells, rows.near);
  const bool lowerIsNear = rows.near >= rows.far;
  return lowerIsNear ? Rows{bottom, top, false} : Rows{top, bottom, false};
}

uint32_t rangeFor(const Camera& camera, double tallestMm) {
  const NadirCamera record = cameraRecord(camera);
  NadirSettings settings;
  nadir_settings_fill(&settings, &record);
  uint32_t range = settings.range;
  const NadirStatus status = nadir_road_range(&record, &settings, tallestMm, &range);
  if (status == NADIR_BAD_CAMERA)
    throw Error(format("with a tilt of %g degrees the ground lies too far off for a map: turn the cameras down",
                       camera.tiltDeg));
  expect(status);
  return range;
}

// ---- places ----

// The greatest height whose top both pictures show within the range, to a millimetre.
void setGreatestHeight(const CameraView& view, uint32_t rangePx, PlannedPlace& place) {
  const auto seen = [&](double height) { return view.seen(place.ground, height); };
  double good = 0, bad = view.camera().heightMm;
  while (bad - good > 1) {
    const double height = (good + bad) / 2;
    const std::optional<SeenPoint> top = seen(height);
    (top && view.isInBoth(*top) && top->disparityPx <= rangePx ? good : bad) = height;
  }
  const std::optional<SeenPoint> above = seen(bad);
  place.greatestHeightMm = std::floor(good);
  place.rangeEndsIt = above && view.isInBoth(*above);
}

PlannedPlace placeAt(const char* name, const CameraView& view, double row, const Plan& plan) {
  const Camera& camera = plan.camera;
  PlannedPlace place{name, middleOf(view, row), {}, 0, 0, 0, 0, false, 0};
  place.ground = *view.placeAt(place.pixel);
  place.forwardMm = -place.ground.yMm;
  place.disparityPx = view.groundAt(place.pixel)->disparityPx;
  place.stepMm = camera.heightMm * stepPx / (place.disparityPx + camera.columnShiftPx);
  place.pointsPerCell = 1.0 * camera.cellMm * camera.cellMm / view.groundOfPixel(place.pixel);
  setGreatestHeight(view, plan.rangePx, place);
  return place;
}

constexpr int samples = 200;

// The first and the last of the rows where things of the height are measured.
void setTallest(const CameraView& view, const Rows& rows, Plan& plan) {
  plan.tallestFromMm = plan.tallestToMm = std::nan("");
  for (int i = 0; i <= samples; ++i) {
    const PlannedPlace place = placeAt("", view, rows.near + (rows.far - rows.near) * i / samples, plan);
    if (place.greatestHeightMm < plan.tallestMm) continue;
    if (std::isnan(plan.tallestFromMm)) plan.tallestFromMm = place.forwardMm;
    plan.tallestToMm = place.forwardMm;
  }
}

// The disparity of the ground where a step is as coarse as a map may have.
double disparityOfMapsEnd(const Camera& camera) {
  return std::max(leastDisparityPx, camera.heightMm * stepPx / coarsestStepMm - camera.columnShiftPx);
}

}  // namespace

uint32_t usefulCellMm(double pixelMm2, double sideMm) {
  const double side = std::max(std::sqrt(leastPointsPerCell * pixelMm2), sideMm / mostCells);
  return std::clamp<uint32_t>(roundUp(side, roundCellMm), 2 * roundCellMm, 10000);
}

GroundPoint mapCorner(const Camera& camera) {
  const std::optional<GroundPoint> axis = CameraView(camera).placeAt({camera.principalXPx, camera.principalYPx});
  if (!axis) throw Error("the optical axis does not meet the ground");
  const double half = std::floor(camera.mapWidthCells / 2.0) * camera.cellMm;
  return {axis->xMm - half + camera.mapOffsetXMm, axis->yMm - half + camera.mapOffsetYMm};
}

Plan planOf(Camera camera, double tallestMm) {
  const CameraView view(camera);
  const Rows rows = rowsDownTo(view, leastDisparityPx);
  if (rows.near == rows.far)
    throw Error("no ground is seen with 2 pixels of disparity: hang the cameras lower, or farther apart");
  Rows well = rowsDownTo(view, disparityOfMapsEnd(camera));
  if (well.near == well.far) well = rows;
  if (camera.cellMm == unknownCount) layMap(view, well, camera);
  well = rowsOfMap(view, well, camera);
  Plan plan{camera, tallestMm, rangeFor(camera, tallestMm), outlineOf(view, rows), !rows.toEdge, 0, {}, 0, 0, 0};
  plan.areaM2 = areaM2(plan.outline);
  for (const auto& [name, part] : {std::pair("near", 0.0), std::pair("middle", 0.5), std::pair("far", 1.0)})
    plan.places.push_back(placeAt(name, view, well.near + (well.far - well.near) * part, plan));
  setTallest(view, rows, plan);
  constexpr double ellipse = 3.14159265358979323846 / 4;
  plan.cellsPerPerson = ellipse * personWidthMm * personDepthMm / (1.0 * camera.cellMm * camera.cellMm);
  return plan;
}

}  // namespace nadir::tool
