// Reads OpenCV's stereo calibrations: the lenses M1 D1 M2 D2, the pose R T and, where given, the views R1 R2 P1 P2 or
// Q.
#include "tools/base/error.hpp"
#include "tools/base/text.hpp"
#include "tools/camera/lens_items.hpp"

namespace nadir::tool {

namespace {

NadirLens lensOf(const CalibrationItems& items, const std::string& side, const CalibrationOptions& options,
                 Calibration& calibration) {
  NadirLens lens = lensOf(items.need({"M" + side, "K" + side, "cameraMatrix" + side}, "beside the other lens's"));
  if (const CalibrationItem* d = items.find({"D" + side, "distCoeffs" + side}))
    setByCount(*d, options.lens, lens);
  else
    calibration.remarks.push_back(
        format("%s: D%s is missing: taken as 0, no distortion", items.path().c_str(), side.c_str()));
  return lens;
}

// Programs write the size under different names, and often not at all.
void setSizes(const CalibrationItems& items, uint32_t& width, uint32_t& height) {
  if (const CalibrationItem* both = items.find({"image_size", "imageSize", "size"})) {
    const std::vector<double> numbers = numbersOf(*both, 2, "a width and a height");
    width = pixelsOf(*both, numbers[0]), height = pixelsOf(*both, numbers[1]);
    return;
  }
  setSize(items.find({"image_width", "imageWidth", "width"}), items.find({"image_height", "imageHeight", "height"}),
          width, height);
}

// Models with a mirror, and others that bend light in ways that the supported lenses do not.
void refuseOtherModels(const CalibrationItems& items) {
  for (const char* name : {"xi", "xi1", "xi2"})
    if (const CalibrationItem* item = items.find({name}))
      fail(*item, "is of an omnidirectional camera, which is not supported; pinhole and fisheye lenses are");
}

// (1 0 0 -cx; 0 1 0 -cy; 0 0 0 f; 0 0 1/baseline (cx - cx')/baseline): what gives Z = f / (d / baseline + last).
void setOptics(const CalibrationItem& item, Calibration& calibration) {
  const std::vector<double> q = numbersOf(item, 16, "a matrix of 4 x 4");
  const double focal = q[11], perBaseline = q[14];
  if (!(focal > 0)) fail(item, "has a focal length that is not positive");
  if (!(perBaseline > 0)) fail(item, "is of a second camera that is not right of the first one; exchange the two");
  calibration.optics = Optics{focal, -q[3], -q[7], q[15] / perBaseline, 1 / perBaseline};
  calibration.origins = {{"focal_px", "Q[2,3]"},
                         {"principal_x_px", "-Q[0,3]"},
                         {"principal_y_px", "-Q[1,3]"},
                         {"column_shift_px", "Q[3,3] / Q[3,2]"},
                         {"baseline_mm", "1 / Q[3,2]"}};
}

void setViews(const CalibrationItems& items, Calibration& calibration) {
  const CalibrationItem *r1 = items.find({"R1"}), *r2 = items.find({"R2"}), *q = items.find({"Q"});
  const CalibrationItem *p1 = items.find({"P1"}), *p2 = items.find({"P2"});
  if (p1 || p2) {
    const CalibrationItem &left = items.need({"P1"}, "beside P2"), &right = items.need({"P2"}, "beside P1");
    setOptics(projectionOf(left), projectionOf(right), "P1", "P2", calibration);
  } else if (q) {
    setOptics(*q, calibration);
  }
  if (!r1 && !r2) return;
  items.need({"R1"}, "beside R2"), items.need({"R2"}, "beside R1");
  calibration.rotations = {rotationOf(*r1), rotationOf(*r2)};
}

}  // namespace

Calibration openCvCalibration(const CalibrationItems& items, const CalibrationOptions& options) {
  Calibration calibration;
  refuseOtherModels(items);
  setViews(items, calibration);
  if (items.find({"M1", "K1", "cameraMatrix1", "M2", "K2", "cameraMatrix2"}))
    calibration.lenses = {lensOf(items, "1", options, calibration), lensOf(items, "2", options, calibration)};
  const CalibrationItem *r = items.find({"R"}), *t = items.find({"T"});
  if (r || t) {
    items.need({"R"}, "beside T"), items.need({"T"}, "beside R");
    calibration.pose = Pose{rotationOf(*r), translationOf(*t), *t};
  }
  setSizes(items, calibration.widthPx, calibration.heightPx);
  if (calibration.lenses)
    for (NadirLens& lens : *calibration.lenses)
      lens.width_px = calibration.widthPx, lens.height_px = calibration.heightPx;
  addUnused(items, calibration);
  return calibration;
}

}  // namespace nadir::tool
