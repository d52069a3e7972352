// Reads the calibration of a camera file: plain numbers for both lenses and the pose, beside those of rectified
// pictures.
#include <algorithm>
#include <cmath>

#include "tools/base/text.hpp"
#include "tools/camera/camera_file.hpp"
#include "tools/camera/lens_items.hpp"

namespace nadir::tool {

namespace {

const char* const plumbBobNames[] = {"k1", "k2", "p1", "p2", "k3", "k4", "k5", "k6", "s1", "s2", "s3", "s4"};
const char* const fisheyeNames[] = {"k1", "k2", "k3", "k4"};

// Those that are not there are 0, as everybody writes them.
template <size_t count>
void setCoefficients(const CalibrationItems& items, const std::string& table, const char* const (&names)[count],
                     NadirLens& lens) {
  for (size_t i = 0; i < count; ++i)
    if (const CalibrationItem* item = items.find({table + names[i]})) lens.coefficients[i] = numberOf(*item, -1e6, 1e6);
}

NadirLens lensIn(const CalibrationItems& items, const std::string& table, const std::string& word) {
  const auto number = [&](const char* name, double low) {
    return numberOf(items.need({table + name}, "in pixels"), low, low > 0 ? 100000 : 65535);
  };
  NadirLens lens = {};
  lens.size = sizeof lens;
  lens.focal_x_px = number("focal_x_px", 1), lens.focal_y_px = number("focal_y_px", 1);
  lens.principal_x_px = number("principal_x_px", -65535), lens.principal_y_px = number("principal_y_px", -65535);
  setSize(items.find({table + "width_px"}), items.find({table + "height_px"}), lens.width_px, lens.height_px);
  const CalibrationItem& model = items.need({table + "model"}, "none, plumb-bob or fisheye");
  if (model.word == "plumb-bob")
    lens.model = NADIR_LENS_BROWN, setCoefficients(items, table, plumbBobNames, lens);
  else if (model.word == "fisheye")
    lens.model = NADIR_LENS_FISHEYE, setCoefficients(items, table, fisheyeNames, lens);
  else if (model.word != "none")
    fail(model, "is " + model.word + ", and none, plumb-bob and fisheye are supported");
  if (model.word != "none") checkModel(model, lens, word);
  return lens;
}

// The file's other keys count where all are there that make a view.
void setOptics(const CalibrationItems& items, Calibration& calibration) {
  const CalibrationItem *focal = items.find({"focal_px"}), *x = items.find({"principal_x_px"});
  const CalibrationItem *y = items.find({"principal_y_px"}), *shift = items.find({"column_shift_px"});
  const CalibrationItem* baseline = items.find({"baseline_mm"});
  setSize(items.find({"width_px"}), items.find({"height_px"}), calibration.widthPx, calibration.heightPx);
  if (!focal || !x || !y || !baseline) return;
  calibration.optics = Optics{numberOf(*focal, 1, 100000), numberOf(*x, -65535, 65535), numberOf(*y, -65535, 65535),
                              shift ? numberOf(*shift, -65535, 65535) : 0, numberOf(*baseline, 0.01, 100000)};
  for (const char* key : {"focal_px", "principal_x_px", "principal_y_px", "column_shift_px", "baseline_mm"})
    calibration.origins[key] = key;
}

// The file's keys and areas are other readers', a key of the calibration that nobody has asked for is a mistake.
void refuseUnknown(const CalibrationItems& items) {
  for (const CalibrationItem& item : items) {
    const bool isOurs =
        item.key.rfind("left_lens", 0) == 0 || item.key.rfind("right_lens", 0) == 0 || item.key.rfind("pose", 0) == 0;
    if (isOurs && !item.used) fail(item, "is no key of a camera file's calibration, or none of this lens model");
  }
}

}  // namespace

Calibration ownCalibration(const CalibrationItems& items, const CalibrationOptions& options) {
  Calibration calibration;
  calibration.lenses = {lensIn(items, "left_lens.", options.lens), lensIn(items, "right_lens.", options.lens)};
  const CalibrationItem& r = items.need({"pose.rotation"}, "9 numbers by rows, from the left camera to the right one");
  const CalibrationItem& t = items.need({"pose.translation_mm"}, "3 numbers, the first one near -baseline_mm");
  calibration.pose = Pose{rotationOf(r), translationOf(t), t};
  setOptics(items, calibration);
  setUnit(1, "in mm", calibration);
  refuseUnknown(items);
  return calibration;
}

}  // namespace nadir::tool
