// What a stereo calibration says, whoever has written it: lenses, how the cameras stand to each other, and the
// rectified views where it has chosen them.
#pragma once

#include <nadir/rectify.h>

#include <array>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tools/camera/calibration_items.hpp"

namespace nadir::tool {

using Rotation = std::array<double, 9>;  // by rows
using Vector = std::array<double, 3>;

// From the left camera to the right one: x_right = rotation * x_left + translation.
struct Pose {
  Rotation rotation;
  Vector translation;      // in the calibration's unit of length
  CalibrationItem origin;  // of the translation, for the messages
};

// The rectified pictures' common optics.
struct Optics {
  double focalPx, principalXPx, principalYPx;  // of the left picture
  double columnShiftPx;                        // right principal column - left one
  double baseline;                             // in the calibration's unit of length
};

struct Calibration {
  std::string path;                                // of its first file, for the messages
  std::optional<std::array<NadirLens, 2>> lenses;  // the left one, the right one; a size of 0 is not told
  std::optional<Pose> pose;
  std::optional<std::array<Rotation, 2>> rotations;  // from each camera to its rectified view
  std::optional<Optics> optics;
  uint32_t widthPx = 0, heightPx = 0;          // of the rectified pictures; 0: as the cameras' own
  double unitMm = 0;                           // millimetres of its unit of length; 0: it does not say
  std::string unit;                            // in words
  std::map<std::string, std::string> origins;  // by key of the camera file: what its value is in the calibration
  std::vector<std::string> remarks;            // sentences: what was taken for what is missing
  std::vector<std::string> unused;             // sentences: the keys that nothing follows from
};

// What a user may say besides.
struct CalibrationOptions {
  std::vector<std::string> files;
  double unitMm = 0;  // 0: not given
  std::string lens;   // "plumb-bob" or "fisheye": what four coefficients are where a file does not say it
};

CalibrationFile readCalibrationFile(const std::string& path);

// Reads one file or two, told from each other by what they hold.
Calibration readCalibration(const CalibrationOptions& options);
Calibration parsedCalibration(const std::vector<CalibrationFile>& files, const CalibrationOptions& options);

// The readers of each kind.
Calibration openCvCalibration(const CalibrationItems& items, const CalibrationOptions& options);
Calibration rosCalibration(const CalibrationItems& left, const CalibrationItems& right,
                           const CalibrationOptions& options);
Calibration kalibrCalibration(const CalibrationItems& items, const CalibrationOptions& options);
Calibration middleburyCalibration(const CalibrationItems& items, const CalibrationOptions& options);
Calibration ownCalibration(const CalibrationItems& items, const CalibrationOptions& options);

}  // namespace nadir::tool
