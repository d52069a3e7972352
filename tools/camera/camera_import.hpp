// The calibrations that people have, made into a camera.
#pragma once

#include <map>
#include <string>

#include "tools/camera/camera_file.hpp"

namespace nadir::tool {

struct ImportedCamera {
  Camera camera;
  std::map<std::string, std::string> origins;  // by key: where its value comes from
};

// A calibration file's text, with its name for the messages.
struct CalibrationFile {
  std::string path, text;
};

CalibrationFile readCalibration(const std::string& path);

// OpenCV's stereo calibration: the projection matrices P1 and P2, or where they are missing the matrix Q.
//
// unitMm  the millimetres of one unit of length: the file does not say it. 0 asks to throw where it is needed.
ImportedCamera importOpenCv(const CalibrationFile& file, double unitMm);

// A pair of ROS camera_info files.
//
// unitMm  0 means metres, as ROS has it.
ImportedCamera importRos(const CalibrationFile& left, const CalibrationFile& right, double unitMm);

}  // namespace nadir::tool
