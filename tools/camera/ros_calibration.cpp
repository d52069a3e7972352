// Reads pairs of ROS camera_info: K D R P of each camera, as its calibrator writes them or as a message shows them.
#include "tools/base/error.hpp"
#include "tools/base/text.hpp"
#include "tools/camera/lens_items.hpp"

namespace nadir::tool {

namespace {

void setModel(const CalibrationItems& items, const CalibrationItem& d, const CalibrationOptions& options,
              NadirLens& lens) {
  const CalibrationItem* model = items.find({"distortion_model"});
  if (!model || model->word.empty()) return setByCount(d, options.lens, lens);
  const std::string& name = model->word;
  if (name == "equidistant" || name == "fisheye")
    setFisheye(d, lens);
  else if (name == "plumb_bob" || name == "rational_polynomial" || name == "thin_prism" || name == "none")
    setPlumbBob(d, lens);
  else
    fail(*model, "is " + name + ", and plumb_bob, rational_polynomial, thin_prism and equidistant are supported");
  checkModel(*model, lens, options.lens);
}

// A message says so of pictures that the driver has made smaller; the matrices are of whole ones.
void refuseCutPictures(const CalibrationItems& items) {
  for (const char* name : {"binning_x", "binning_y"})
    if (const CalibrationItem* item = items.find({name})) numberOf(*item, 0, 1);
  for (const char* name : {"roi.x_offset", "roi.y_offset"})
    if (const CalibrationItem* item = items.find({name})) numberOf(*item, 0, 0);
}

NadirLens lensIn(const CalibrationItems& items, const CalibrationItem& k, const CalibrationOptions& options,
                 Calibration& calibration) {
  NadirLens lens = lensOf(k);
  if (const CalibrationItem* d = items.find({"distortion_coefficients", "D"}))
    setModel(items, *d, options, lens);
  else
    calibration.remarks.push_back(items.path() + ": distortion_coefficients is missing: taken as 0, no distortion");
  return lens;
}

Rotation rotationIn(const CalibrationItems& items, Calibration& calibration) {
  if (const CalibrationItem* r = items.find({"rectification_matrix", "R"})) return rotationOf(*r);
  calibration.remarks.push_back(items.path() + ": rectification_matrix is missing: taken as no rotation");
  return identity();
}

void setSize(const CalibrationItems& items, Calibration& calibration) {
  nadir::tool::setSize(items.find({"image_width", "width"}), items.find({"image_height", "height"}),
                       calibration.widthPx, calibration.heightPx);
}

void checkSameSize(const CalibrationItems& leftItems, const CalibrationItems& rightItems, const Calibration& left) {
  Calibration right;
  setSize(rightItems, right);
  if (left.widthPx == right.widthPx && left.heightPx == right.heightPx) return;
  throw Error(format("the pictures differ in size: those of %s are %s pixels, those of %s %s", leftItems.path().c_str(),
                     sizeText(left.widthPx, left.heightPx).c_str(), rightItems.path().c_str(),
                     sizeText(right.widthPx, right.heightPx).c_str()));
}

}  // namespace

Calibration rosCalibration(const CalibrationItems& left, const CalibrationItems& right,
                           const CalibrationOptions& options) {
  Calibration calibration;
  refuseCutPictures(left), refuseCutPictures(right);
  setOptics(projectionOf(left.need({"projection_matrix", "P"}, "")),
            projectionOf(right.need({"projection_matrix", "P"}, "")), "left P", "right P", calibration);
  setSize(left, calibration);
  checkSameSize(left, right, calibration);
  const CalibrationItem *leftK = left.find({"camera_matrix", "K"}), *rightK = right.find({"camera_matrix", "K"});
  if (leftK || rightK) {
    left.need({"camera_matrix", "K"}, ""), right.need({"camera_matrix", "K"}, "");
    calibration.lenses = {lensIn(left, *leftK, options, calibration), lensIn(right, *rightK, options, calibration)};
    calibration.rotations = {rotationIn(left, calibration), rotationIn(right, calibration)};
    for (NadirLens& lens : *calibration.lenses)
      lens.width_px = calibration.widthPx, lens.height_px = calibration.heightPx;
  }
  setUnit(metre, "in metres", calibration);
  addUnused(left, calibration), addUnused(right, calibration);
  return calibration;
}

}  // namespace nadir::tool
