// The other way round: a camera for what is to be seen.
#pragma once

#include "tools/camera/camera.hpp"

namespace nadir::tool {

// A rectangle of ground, and things on it that are to be seen up to their tops.
struct Wish {
  double widthMm, depthMm;  // along the picture's rows, and away from the camera
  double tallestMm;
  double heightMm;  // of the camera
  uint32_t widthPx, heightPx;
};

// The camera with the finest heights for it, and its map. Throws Error where none can be hung so low.
Camera proposedCamera(const Wish& wish);

}  // namespace nadir::tool
