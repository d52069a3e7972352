// A plane in space as the disparities that it has over the picture.
//
// A point lies on the plane n * P = h where its disparity is baseline / h * (n.x * (x - cx) + n.y * (y - cy) + n.z *
// f): a linear function of column and row. The matcher's errors are alike everywhere in it, while in space they grow
// with the square of the distance.
#pragma once

#include <nadir/camera.h>

#include <cstdint>

namespace nadir::ground {

// Disparities as they are matched, without the column shift, in pixels.
struct DisparityPlane {
  double perColumn = 0, perRow = 0, atOrigin = 0;

  double at(double x, double y) const { return perColumn * x + perRow * y + atOrigin; }
};

// The plane on the ground where the camera file has it.
DisparityPlane expectedGround(const StereoCtx& context, double columnShift);

// The same plane over a picture that is mirrored left to right, as the matcher has the left view.
DisparityPlane mirrored(const DisparityPlane& plane, uint32_t width);

// What the camera file would have to say for a plane to be the ground.
struct Mount {
  double heightMm, tiltDeg, panDeg;
};

Mount mountOf(const DisparityPlane& plane, const StereoCtx& context, double columnShift);

// The normal equations of a plane through points, by least squares.
class PlaneEquations {
 public:
  void add(double x, double y, double disparity) { addWeighted(x, y, 1, disparity); }

  // weightedDisparity is the weight times the disparity. It stands here so that a weight of 1 costs nothing.
  void addWeighted(double x, double y, double weight, double weightedDisparity) {
    n_ += weight;
    x_ += weight * x;
    y_ += weight * y;
    xx_ += weight * (x * x);
    xy_ += weight * (x * y);
    yy_ += weight * (y * y);
    d_ += weightedDisparity;
    xd_ += x * weightedDisparity;
    yd_ += y * weightedDisparity;
  }

  bool isEmpty() const { return n_ == 0; }

  // Those of the points that are not `part` of these.
  PlaneEquations without(const PlaneEquations& part) const;

  // False where the points lie on one line, or are fewer than three.
  bool solve(DisparityPlane& plane) const;

  // The inverse of the equations' matrix, row after row; times the variance of a disparity it is that of the plane's
  // three numbers. False as above.
  bool invert(double (&inverse)[9]) const;

 private:
  double n_ = 0, x_ = 0, y_ = 0, xx_ = 0, xy_ = 0, yy_ = 0, d_ = 0, xd_ = 0, yd_ = 0;
};

}  // namespace nadir::ground
