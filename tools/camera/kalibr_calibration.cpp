// Reads Kalibr's camera chains: cam0 and cam1 with pinhole lenses, and T_cn_cnm1 between them.
#include "tools/base/text.hpp"
#include "tools/camera/lens_items.hpp"

namespace nadir::tool {

namespace {

NadirLens pinhole(const CalibrationItem& intrinsics) {
  const std::vector<double> i = numbersOf(intrinsics, 4, "fx fy cx cy");
  CalibrationItem matrix = intrinsics;
  matrix.numbers = {i[0], 0, i[2], 0, i[1], i[3], 0, 0, 1};
  return lensOf(matrix);
}

void setModel(const CalibrationItems& items, const std::string& camera, const CalibrationOptions& options,
              NadirLens& lens) {
  const CalibrationItem& model = items.need({camera + ".distortion_model"}, "radtan, equi or none");
  const std::string& name = model.word;
  if (name == "none") return;
  if (name != "radtan" && name != "equi" && name != "equidistant")
    fail(model, "is " + name + ", and radtan, equi and none are supported; calibrate with one of them");
  const CalibrationItem& coefficients = items.need({camera + ".distortion_coeffs"}, "of " + name);
  if (coefficients.numbers.size() != 4) fail(coefficients, "is not what " + name + " has: 4 numbers");
  name == "radtan" ? setPlumbBob(coefficients, lens) : setFisheye(coefficients, lens);
  checkModel(model, lens, options.lens);
}

NadirLens lensOf(const CalibrationItems& items, const std::string& camera, const CalibrationOptions& options) {
  const CalibrationItem& model = items.need({camera + ".camera_model"}, "which must be pinhole");
  if (model.word != "pinhole")
    fail(model, "is " + model.word + ", and only pinhole is supported; calibrate with pinhole-equi");
  NadirLens lens = pinhole(items.need({camera + ".intrinsics"}, "fx fy cx cy"));
  setModel(items, camera, options, lens);
  if (const CalibrationItem* size = items.find({camera + ".resolution"})) {
    const std::vector<double> numbers = numbersOf(*size, 2, "a width and a height");
    lens.width_px = pixelsOf(*size, numbers[0]), lens.height_px = pixelsOf(*size, numbers[1]);
  }
  return lens;
}

// The rows of (R t; 0 0 0 1).
Pose poseOf(const CalibrationItem& item) {
  const std::vector<double> m = numbersOf(item, 16, "a matrix of 4 x 4");
  if (m[12] != 0 || m[13] != 0 || m[14] != 0 || m[15] != 1) fail(item, "is no transformation: its last row");
  CalibrationItem rotation = item, translation = item;
  rotation.numbers = {m[0], m[1], m[2], m[4], m[5], m[6], m[8], m[9], m[10]};
  translation.numbers = {m[3], m[7], m[11]};
  return {rotationOf(rotation), translationOf(translation), item};
}

Pose inverse(const Pose& pose) {
  const Rotation& r = pose.rotation;
  const Vector& t = pose.translation;
  return {{r[0], r[3], r[6], r[1], r[4], r[7], r[2], r[5], r[8]},
          {-(r[0] * t[0] + r[3] * t[1] + r[6] * t[2]), -(r[1] * t[0] + r[4] * t[1] + r[7] * t[2]),
           -(r[2] * t[0] + r[5] * t[1] + r[8] * t[2])},
          pose.origin};
}

}  // namespace

Calibration kalibrCalibration(const CalibrationItems& items, const CalibrationOptions& options) {
  Calibration calibration;
  if (const CalibrationItem* third = items.find({"cam2.intrinsics", "cam2.camera_model"}))
    fail(*third, "is of a third camera, and two are used; take a chain of two");
  calibration.lenses = {lensOf(items, "cam0", options), lensOf(items, "cam1", options)};
  calibration.pose = poseOf(items.need({"cam1.T_cn_cnm1"}, "where cam1 stands beside cam0"));
  if (calibration.pose->translation[0] > 0) {
    std::swap((*calibration.lenses)[0], (*calibration.lenses)[1]);
    calibration.pose = inverse(*calibration.pose);
    calibration.remarks.push_back(items.path() +
                                  ": cam1 is the left camera, as its T_cn_cnm1 says, and cam0 the right");
  }
  setUnit(metre, "in metres", calibration);
  addUnused(items, calibration);
  return calibration;
}

}  // namespace nadir::tool
