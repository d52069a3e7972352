// What follows from a calibration: how pictures are rectified, and the camera that the rectified ones are of.
#pragma once

#include "tools/camera/calibration.hpp"
#include "tools/camera/camera_file.hpp"

namespace nadir::tool {

struct PictureSize {
  uint32_t width = 0, height = 0;
};

// Throws where the pose does not fit the views: files of two calibrations, say.
void checkConsistency(const Calibration& calibration);

// Finds what the calibration leaves open: sizes, rotations and optics. Throws where something that rectifying needs is
// missing, and where it tells of pictures of another size.
//
// pictures  of the cameras; 0 where nobody knows
void complete(Calibration& calibration, const PictureSize& pictures);

// What the library makes a rectifier of, from a complete calibration; the left one, the right one.
std::array<NadirRectifiedView, 2> viewsOf(const Calibration& calibration);

struct ImportedCamera {
  Camera camera;
  std::map<std::string, std::string> origins;  // by key: where its value comes from
};

// The camera of a calibration that has optics; without a unit of length its baseline is unknown.
ImportedCamera cameraOf(const Calibration& calibration);

// True where a camera file holds lenses: it is a calibration, too.
bool holdsCalibration(const std::string& cameraPath);

// Throws for the first key of a camera file that the complete calibration contradicts.
void checkAgreement(const Calibration& calibration, const std::string& cameraPath);

}  // namespace nadir::tool
