// The camera file: a stereo camera, its mount and the map that it fills, in TOML with the units in the names.
#pragma once

#include <limits>
#include <string>
#include <variant>
#include <vector>

#include "tools/files/files.hpp"

namespace nadir::tool {

// What nobody has said yet. A camera in use has none of it; one just imported may.
constexpr double unknownNumber = std::numeric_limits<double>::quiet_NaN();
constexpr uint32_t unknownCount = 0;

// The pictures are rectified. Picture coordinates count from the CENTRE of the top left pixel, which is (0, 0).
struct Camera {
  double baselineMm = unknownNumber;
  double focalPx = unknownNumber;
  double principalXPx = unknownNumber;  // of the left picture
  double principalYPx = unknownNumber;  // of both
  // The right picture's principal column minus the left one's. It is ADDED to a matched disparity
  // (left column - right column) to give the one that is 0 at infinity: Z = focal * baseline / (disparity + shift).
  double columnShiftPx = 0;
  uint32_t widthPx = unknownCount;
  uint32_t heightPx = unknownCount;

  double heightMm = unknownNumber;  // of the camera's centre above the ground
  double tiltDeg = unknownNumber;   // 0 looks straight down, towards -90 raises the picture's upper edge to the horizon
  double panDeg = 0;                // about the picture's vertical, positive to its left

  uint32_t mapWidthCells = unknownCount;   // along world x
  uint32_t mapHeightCells = unknownCount;  // along world y
  uint32_t cellMm = unknownCount;
  // Moves the map in world x and y from where it lies by itself: its corner of smallest x and y is half of its WIDTH
  // away, on both axes, from the ground point that the optical axis meets.
  double mapOffsetXMm = 0;
  double mapOffsetYMm = 0;
};

// A key of the file.
struct CameraKey {
  const char* table;  // "" for the top
  const char* name;
  std::variant<double Camera::*, uint32_t Camera::*> member;
  double low, high;  // both allowed
  bool optional;     // the default is then Camera's
  const char* meaning;
};

// In the file's order.
const std::vector<CameraKey>& cameraKeys();

// A whole number.
bool isCount(const CameraKey& key);

bool isKnown(const Camera& camera, const CameraKey& key);
double valueOf(const Camera& camera, const CameraKey& key);
void setValue(Camera& camera, const CameraKey& key, double value);

// "" for a good value, else what is wrong with it.
std::string mistakeIn(double value, const CameraKey& key);

// Throws Error with a line "FILE:LINE: KEY: reason" for every mistake.
Camera readCamera(const std::string& path);

// `text` is the file's; `path` is for the messages alone.
Camera parseCamera(const std::string& text, const std::string& path);

// The file's text with a comment for every key. What is unknown becomes a comment that asks for it.
std::string cameraText(const Camera& camera);
Bytes cameraBytes(const Camera& camera);

}  // namespace nadir::tool
