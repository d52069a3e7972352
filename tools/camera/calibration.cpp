// Tells calibrations from each other by what they hold, and has each read by its own reader.
#include "tools/camera/calibration.hpp"

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"
#include "tools/camera/lens_items.hpp"
#include "tools/camera/rectification.hpp"
#include "tools/files/files.hpp"

namespace nadir::tool {

namespace {

enum class Kind { openCv, ros, kalibr, middlebury, own };

const char* nameOf(Kind kind) {
  switch (kind) {
    case Kind::openCv: return "OpenCV's";
    case Kind::ros: return "a ROS camera_info";
    case Kind::kalibr: return "a Kalibr camchain";
    case Kind::middlebury: return "a calib.txt";
    case Kind::own: return "a camera file";
  }
  return "";
}

bool holds(const CalibrationItems& items, std::initializer_list<const char*> keys) {
  for (const CalibrationItem& item : items)
    for (const char* key : keys)
      if (item.key == key) return true;
  return false;
}

Kind kindOf(const CalibrationItems& items) {
  if (items.hasTable("cam0")) return Kind::kalibr;
  if (items.hasTable("left_lens") || items.hasTable("right_lens")) return Kind::own;
  if (holds(items, {"cam0"})) return Kind::middlebury;
  if (holds(items, {"M1", "M2", "K1", "K2", "cameraMatrix1", "D1", "D2", "T", "R1", "R2", "P1", "P2", "Q"}))
    return Kind::openCv;
  if (holds(items, {"projection_matrix", "P", "camera_matrix", "K", "image_width"})) return Kind::ros;
  throw Error(items.path() +
              ":1: it holds no calibration that is known: neither OpenCV's (M1, P1, Q), a ROS camera_info "
              "(camera_matrix, projection_matrix), a Kalibr camchain (cam0, cam1), a calib.txt (cam0=[...]) nor the "
              "tables [left_lens], [right_lens] and [pose] of a camera file");
}

// Two files of one calibration become one.
Calibration calibrationIn(const CalibrationItems& first, const CalibrationItems* second,
                          const CalibrationOptions& options) {
  const Kind kind = kindOf(first);
  if (second && kindOf(*second) != kind)
    throw Error(format("%s is %s and %s is %s; take two files of one calibration", first.path().c_str(), nameOf(kind),
                       second->path().c_str(), nameOf(kindOf(*second))));
  if (kind == Kind::ros) {
    if (!second) throw Error(first.path() + " is a ROS camera_info of one camera; give the right camera's file too");
    return rosCalibration(first, *second, options);
  }
  if (kind == Kind::openCv) {
    CalibrationItems both = first;
    if (second) both.add(*second);
    return openCvCalibration(both, options);
  }
  if (second)
    throw Error(format("%s is %s, which says all by itself; leave %s out", first.path().c_str(), nameOf(kind),
                       second->path().c_str()));
  if (kind == Kind::kalibr) return kalibrCalibration(first, options);
  return kind == Kind::own ? ownCalibration(first, options) : middleburyCalibration(first, options);
}

}  // namespace

CalibrationFile readCalibrationFile(const std::string& path) { return {path, readTypedText(path)}; }

Calibration parsedCalibration(const std::vector<CalibrationFile>& files, const CalibrationOptions& options) {
  const CalibrationItems first = calibrationItems(files.at(0));
  const CalibrationItems second = files.size() > 1 ? calibrationItems(files[1]) : CalibrationItems();
  Calibration calibration = calibrationIn(first, files.size() > 1 ? &second : nullptr, options);
  calibration.path = first.path();
  checkConsistency(calibration);
  if (options.unitMm > 0) setUnit(options.unitMm, format("a unit being %g mm", options.unitMm), calibration);
  return calibration;
}

Calibration readCalibration(const CalibrationOptions& options) {
  std::vector<CalibrationFile> files;
  for (const std::string& path : options.files) files.push_back(readCalibrationFile(path));
  return parsedCalibration(files, options);
}

}  // namespace nadir::tool
