// Completes calibrations and compares them with cameras.
#include "tools/camera/rectification.hpp"

#include <algorithm>
#include <cmath>

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"
#include "tools/camera/lens_items.hpp"

namespace nadir::tool {

namespace {

// Poses are printed with fewer digits than the views that were made of them.
constexpr double poseTolerance = 0.01;
constexpr double baselineTolerance = 0.001;  // of its length

double lengthOf(const Vector& v) { return std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]); }

Vector turned(const Rotation& r, const Vector& v) {
  return {r[0] * v[0] + r[1] * v[1] + r[2] * v[2], r[3] * v[0] + r[4] * v[1] + r[5] * v[2],
          r[6] * v[0] + r[7] * v[1] + r[8] * v[2]};
}

Rotation product(const Rotation& a, const Rotation& b) {
  Rotation c{};
  for (size_t i = 0; i < 9; ++i)
    for (size_t k = 0; k < 3; ++k) c[i] += a[i / 3 * 3 + k] * b[3 * k + i % 3];
  return c;
}

// ---- sizes ----

void setSize(NadirLens& lens, const Calibration& calibration, const PictureSize& pictures) {
  if (lens.width_px == 0) lens.width_px = pictures.width, lens.height_px = pictures.height;
  if (lens.width_px == 0)
    throw Error(calibration.path + " does not say the pictures' size; give --width-px and --height-px");
  if (pictures.width != 0 && (lens.width_px != pictures.width || lens.height_px != pictures.height))
    throw UnusableFile(format("the pictures are %s pixels, but the cameras of %s take pictures of %s",
                              sizeText(pictures.width, pictures.height).c_str(), calibration.path.c_str(),
                              sizeText(lens.width_px, lens.height_px).c_str()));
}

// ---- what contradicts itself ----

// R1 and R2 turn the cameras so that they look the same way, and the right one lies along the rows.
void checkRotations(const Calibration& calibration) {
  const Pose& pose = *calibration.pose;
  const auto& [left, right] = *calibration.rotations;
  const Rotation turnedRight = product(right, pose.rotation);
  const Vector along = turned(right, pose.translation);
  double off = std::hypot(along[1], along[2]) / lengthOf(pose.translation);
  for (size_t i = 0; i < 9; ++i) off = std::max(off, std::abs(turnedRight[i] - left[i]));
  if (off > poseTolerance || along[0] > 0)
    fail(pose.origin, "does not fit the rotations of the views, R1 and R2; take files of one calibration");
}

void checkBaseline(const Calibration& calibration) {
  const double length = lengthOf(calibration.pose->translation), baseline = calibration.optics->baseline;
  if (std::abs(length - baseline) > baselineTolerance * length)
    fail(calibration.pose->origin, format("is %g long, but the baseline is %g (%s); take files of one calibration",
                                          length, baseline, calibration.origins.at("baseline_mm").c_str()));
}

// ---- what is found ----

[[noreturn]] void failToRectify(const Calibration& calibration, const NadirFault& fault) {
  const std::string field = fault.field ? fault.field : "";
  if (field == "translation_mm")
    fail(calibration.pose->origin, "is of a camera that is not right of the first one; exchange the two");
  if (field == "rotation") fail(calibration.pose->origin, "is of cameras that look apart: they share no view");
  throw Error(format("%s: the %s lens: %s is out of range", calibration.path.c_str(), fault.area ? "right" : "left",
                     field.c_str()));
}

struct FoundViews {
  NadirRectifiedView left = {}, right = {};
};

FoundViews foundViews(const Calibration& calibration) {
  const Pose& pose = *calibration.pose;
  const double length = lengthOf(pose.translation);
  constexpr double usualBaselineMm = 100;  // in whichever unit the length was, the views are the same
  double translation[3], baselineMm = 0;
  for (size_t i = 0; i < 3; ++i) translation[i] = pose.translation[i] / length * usualBaselineMm;
  FoundViews views;
  views.left.size = views.right.size = sizeof views.left;
  NadirFault fault = {};
  fault.size = sizeof fault;
  const auto& [left, right] = *calibration.lenses;
  if (nadir_rectified_views(&left, &right, pose.rotation.data(), translation, &views.left, &views.right, &baselineMm,
                            &fault) != NADIR_OK)
    failToRectify(calibration, fault);
  return views;
}

Rotation rotationOf(const NadirRectifiedView& view) {
  Rotation rotation;
  std::copy(view.rotation, view.rotation + 9, rotation.begin());
  return rotation;
}

void setOptics(const FoundViews& views, Calibration& calibration) {
  const double x = views.left.principal_x_px;
  calibration.optics = Optics{views.left.focal_px, x, views.left.principal_y_px, views.right.principal_x_px - x,
                              lengthOf(calibration.pose->translation)};
  for (const char* key : {"focal_px", "principal_x_px", "principal_y_px", "column_shift_px"})
    calibration.origins[key] = "found for the rectified pictures";
  calibration.origins["baseline_mm"] = "length of " + calibration.pose->origin.key;
}

void findViews(Calibration& calibration) {
  if (!calibration.pose) {
    const char* what = calibration.rotations ? "the views' focal length and principal points (P1, P2)"
                                             : "how the cameras stand to each other (R, T)";
    throw Error(format("%s: it does not say %s, which rectifying needs", calibration.path.c_str(), what));
  }
  const FoundViews views = foundViews(calibration);
  if (!calibration.rotations) calibration.rotations = {rotationOf(views.left), rotationOf(views.right)};
  if (!calibration.optics) setOptics(views, calibration);
}

// ---- cameras ----

struct Agreement {
  const char* key;
  double value, tolerance;
};

std::vector<Agreement> agreementsWith(const Calibration& calibration) {
  const Optics& o = *calibration.optics;
  std::vector<Agreement> all = {{"width_px", double(calibration.widthPx), 0},
                                {"height_px", double(calibration.heightPx), 0},
                                {"focal_px", o.focalPx, tolerancePx},
                                {"principal_x_px", o.principalXPx, tolerancePx},
                                {"principal_y_px", o.principalYPx, tolerancePx},
                                {"column_shift_px", o.columnShiftPx, tolerancePx}};
  const double baseline = o.baseline * calibration.unitMm;
  if (baseline > 0) all.push_back({"baseline_mm", baseline, baselineTolerance * baseline});
  return all;
}

}  // namespace

void checkConsistency(const Calibration& calibration) {
  if (calibration.pose && calibration.rotations) checkRotations(calibration);
  if (calibration.pose && calibration.optics) checkBaseline(calibration);
}

void complete(Calibration& calibration, const PictureSize& pictures) {
  if (!calibration.lenses)
    throw Error(calibration.path +
                ": it holds no lenses (M1, M2), which rectifying needs; are the pictures rectified?");
  for (NadirLens& lens : *calibration.lenses) setSize(lens, calibration, pictures);
  if (!calibration.rotations || !calibration.optics) findViews(calibration);

  if (calibration.widthPx != 0) return;
  calibration.widthPx = (*calibration.lenses)[0].width_px;
  calibration.heightPx = (*calibration.lenses)[0].height_px;
}

std::array<NadirRectifiedView, 2> viewsOf(const Calibration& calibration) {
  const Optics& optics = *calibration.optics;
  std::array<NadirRectifiedView, 2> views = {};
  for (size_t i = 0; i < views.size(); ++i) {
    NadirRectifiedView& view = views[i];
    view.size = sizeof view;
    view.width_px = calibration.widthPx, view.height_px = calibration.heightPx;
    std::copy((*calibration.rotations)[i].begin(), (*calibration.rotations)[i].end(), view.rotation);
    view.focal_px = optics.focalPx;
    view.principal_x_px = optics.principalXPx + (i == 1 ? optics.columnShiftPx : 0);
    view.principal_y_px = optics.principalYPx;
  }
  return views;
}

ImportedCamera cameraOf(const Calibration& calibration) {
  ImportedCamera result{{}, calibration.origins};
  Camera& camera = result.camera;
  const Optics& optics = *calibration.optics;
  camera.focalPx = optics.focalPx;
  camera.principalXPx = optics.principalXPx;
  camera.principalYPx = optics.principalYPx;
  camera.columnShiftPx = optics.columnShiftPx;
  if (calibration.unitMm > 0) camera.baselineMm = optics.baseline * calibration.unitMm;
  result.origins["baseline_mm"] += ", " + calibration.unit;
  camera.widthPx = calibration.widthPx, camera.heightPx = calibration.heightPx;
  if (camera.widthPx != 0) result.origins["width_px"] = result.origins["height_px"] = "the pictures' size";
  return result;
}

bool holdsCalibration(const std::string& cameraPath) {
  const CalibrationFile file = readCalibrationFile(cameraPath);
  const CalibrationItems items = tomlItems(file);
  return items.hasTable("left_lens") || items.hasTable("right_lens");
}

void checkAgreement(const Calibration& calibration, const std::string& cameraPath) {
  const CalibrationItems items = tomlItems(readCalibrationFile(cameraPath));
  for (const Agreement& a : agreementsWith(calibration)) {
    const CalibrationItem* item = items.find({a.key});
    const double said = item ? item->numbers.at(0) : 0;  // only the column shift may be missing
    if (std::abs(said - a.value) <= a.tolerance) continue;
    const CalibrationItem missing{cameraPath, a.key, 1, {}, ""};
    fail(item ? *item : missing,
         format("is %.10g, but the calibration %s says %.10g; nadir camera import makes the camera "
                "file that fits it",
                said, calibration.path.c_str(), a.value));
  }
}

}  // namespace nadir::tool
