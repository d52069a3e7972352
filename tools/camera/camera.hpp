// The numbers of a stereo camera that looks at the ground: its optics, its mount and the map that it fills.
#pragma once

#include <cstdint>
#include <limits>

namespace nadir::tool {

// These stand for what nobody has said yet. A camera in use has none of them; one just imported may.
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

}  // namespace nadir::tool
