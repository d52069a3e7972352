// Both cameras meet half-way, and their rows are laid along the baseline.
#include "ground/lens/views.hpp"

#include <algorithm>
#include <cmath>

#include "ground/lens/lens_model.hpp"
#include "ground/lens/turns.hpp"

namespace nadir::ground {

namespace {

constexpr double leastCosine = 0.5;  // of the angle between the baseline and the picture's right

constexpr double farthestMm = 1e6;  // as NadirCamera's baseline

struct Turns {
  Turn left, right;
};

double smallestFocal(const NadirLens& a, const NadirLens& b) {
  return std::min(std::min(a.focal_x_px, a.focal_y_px), std::min(b.focal_x_px, b.focal_y_px));
}

Vector3 middleRay(const NadirLens& lens) {
  return {((lens.width_px - 1.0) / 2 - lens.principal_x_px) / lens.focal_x_px,
          ((lens.height_px - 1.0) / 2 - lens.principal_y_px) / lens.focal_y_px, 1};
}

NadirRectifiedView viewOf(const NadirLens& size, const Turn& turn, double focal, const PlanePoint& principal) {
  NadirRectifiedView view{};
  view.size = sizeof view;
  view.width_px = size.width_px;
  view.height_px = size.height_px;
  std::copy_n(turn.m, 9, view.rotation);
  view.focal_px = focal;
  view.principal_x_px = principal.x;
  view.principal_y_px = principal.y;
  return view;
}

bool isOutOfReach(const PlanePoint& principal) {
  constexpr double farthestPx = 1e6;  // as NadirCamera's principal point
  return !(std::fabs(principal.x) <= farthestPx && std::fabs(principal.y) <= farthestPx);
}

Judgement laidOut(const NadirLens& left, const NadirLens& right, const Turns& turns, Views& views) {
  const Vector3 a = turns.left * middleRay(left), b = turns.right * middleRay(right);
  if (!(a.z > 0 && b.z > 0)) return {NADIR_BAD_CAMERA, "rotation"};
  const double focal = smallestFocal(left, right);
  const PlanePoint principal = {(left.width_px - 1.0) / 2 - focal * (a.x / a.z + b.x / b.z) / 2,
                                (left.height_px - 1.0) / 2 - focal * (a.y / a.z + b.y / b.z) / 2};
  if (isOutOfReach(principal)) return {NADIR_BAD_CAMERA, "rotation"};
  views.left = viewOf(left, turns.left, focal, principal);
  views.right = viewOf(left, turns.right, focal, principal);
  return {};
}

}  // namespace

// The right camera is turned back by half of the rotation, the left one forward; what is then left between them is the
// baseline, from the right camera to the left one.
Judgement findViews(const NadirLens& left, const NadirLens& right, const double (&rotation)[9],
                    const double (&translation)[3], Views& views) {
  Turn between{};
  std::copy_n(rotation, 9, between.m);
  if (!isRotation(between)) return {NADIR_BAD_CAMERA, "rotation"};
  const Vector3 shift = {translation[0], translation[1], translation[2]};
  views.baselineMm = length(shift);
  if (!(views.baselineMm > 0 && views.baselineMm <= farthestMm)) return {NADIR_BAD_CAMERA, "translation_mm"};
  const Turn half = halfOf(between), back = half.transposed();
  if (!isRotation(half)) return {NADIR_BAD_CAMERA, "rotation"};
  const Vector3 toLeft = back * shift;
  if (!(-toLeft.x >= leastCosine * views.baselineMm)) return {NADIR_BAD_CAMERA, "translation_mm"};
  const Turn along = turnBetween(toLeft, {-1, 0, 0});
  return laidOut(left, right, {along * half, along * back}, views);
}

}  // namespace nadir::ground
