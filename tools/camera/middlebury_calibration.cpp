// Reads Middlebury's calib.txt, of pairs that are rectified and have no distortion.
#include <cmath>

#include "tools/base/text.hpp"
#include "tools/camera/lens_items.hpp"

namespace nadir::tool {

namespace {

// As a projection, whose last column the baseline gives: (f 0 cx 0; 0 f cy 0; 0 0 1 0).
CalibrationItem projectionItem(const CalibrationItem& camera, double baseline) {
  const std::vector<double> m = numbersOf(camera, 9, "a matrix of 3 x 3");
  CalibrationItem item = camera;
  item.numbers = {m[0], m[1], m[2], -m[0] * baseline, m[3], m[4], m[5], 0, m[6], m[7], m[8], 0};
  return item;
}

}  // namespace

Calibration middleburyCalibration(const CalibrationItems& items, const CalibrationOptions&) {
  Calibration calibration;
  const CalibrationItem &left = items.need({"cam0"}, ""), &right = items.need({"cam1"}, "");
  const double baseline = numberOf(items.need({"baseline"}, "in mm"), 1e-3, 1e6);
  const CalibrationItem leftItem = projectionItem(left, 0), rightItem = projectionItem(right, baseline);
  setOptics(projectionOf(leftItem), projectionOf(rightItem), "cam0", "cam1", calibration);
  calibration.origins["baseline_mm"] = "baseline";
  calibration.lenses = {lensOf(left), lensOf(right)};
  calibration.rotations = {identity(), identity()};
  setSize(items.find({"width"}), items.find({"height"}), calibration.widthPx, calibration.heightPx);
  for (NadirLens& lens : *calibration.lenses)
    lens.width_px = calibration.widthPx, lens.height_px = calibration.heightPx;
  if (const CalibrationItem* shift = items.find({"doffs"}))
    if (const double told = numberOf(*shift, -65535, 65535), known = calibration.optics->columnShiftPx;
        std::abs(told - known) > tolerancePx)
      fail(*shift, format("is %g, and the principal columns of cam1 and cam0 differ by %g", told, known));
  setUnit(1, "in mm", calibration);
  addUnused(items, calibration);
  return calibration;
}

}  // namespace nadir::tool
