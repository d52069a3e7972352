// Points in the world, made of disparities.
#pragma once

#include <nadir/nadir.h>

#include "ground/match.hpp"
#include "ground/records/camera.hpp"

namespace nadir::ground {

// The library's view of a camera: baseline, focal length and principal point rounded to its fixed-point units.
//
// view  the picture whose pixels have the disparities: its camera's centre is the world's origin.
StereoCtx stereoContext(const Camera& camera, View view);

struct WorldPoint {
  Point3_f32 world;    // mm, z downwards
  Point_f32 image;     // the pixel that it comes from, (0, 0) is the centre of the first
  float disparity;     // with the column shift: 0 at infinity
  uint16_t intensity;  // of that pixel
};

// A point for every pixel that has a disparity, row after row. Those that the column shift puts at infinity or beyond
// are left out.
//
// disparity  pixels, NaN for none.
// picture    the view's, of the same size.
std::vector<WorldPoint> worldPoints(const Grid<float>& disparity, const Grid<uint16_t>& picture,
                                    const StereoCtx& context, float columnShift);

}  // namespace nadir::ground
